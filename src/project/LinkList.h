#pragma once
// All links of a project, and whether they stand.
#include <string>
#include <vector>

#include "project/ProjectContext.h"
#include "project/omProj/Project.h"

namespace pw {

enum class LinkState {
    Stands,
    Missing,   ///< the site has no such file, or the page no such bookmark
    Elsewhere  ///< an address of the web, a script or the like, which is not tested
};

struct LinkRecord {
    const Page* page = nullptr;  ///< where it stands
    std::string target;          ///< as written
    LinkState state = LinkState::Elsewhere;
};

/** Every link, frame and other reference from page to page or file (see LinkAttributes.h), in the
 *  order of the project tree and of the pages' text. */
std::vector<LinkRecord> ListLinks(ProjectContext& context);

}  // namespace pw
