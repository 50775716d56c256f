#pragma once
// Files and pictures from outside that the user drops or pastes on an open page. They are copied
// into the `media` folder beside the page, under a free name or that of an equal file; HTML files
// become pages of the project. What the page then needs is markup that refers to them.
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/editor/CleanMarkup.h"
#include "project/FileAdmission.h"
#include "project/ProjectContext.h"

namespace pw {

struct TakenFiles {
    /** What stands for them in the page, to be inserted by the caller; "" when there is nothing. */
    std::string html;
    bool addedPages = false;
    std::vector<std::string> problems;  ///< sentences for the user, one for each file left out
    /** What pages and style sheets name and may not have, as long as nobody has agreed to it. */
    std::vector<LeftOutFile> leftOut;
    /** Takes these files along after all; answers what could not be taken. To be called before
     *  anything else is done. */
    std::function<std::vector<std::string>(const std::vector<std::string>& files)> takeLeftOut;
};

/** A picture becomes an image with its size, an HTML file a new page beside this one and a link to
 *  it, any other file a link to its copy. Folders, pipes, devices and what cannot be read are left
 *  out. */
TakenFiles TakeFiles(ProjectContext& context, const std::string& pageKey,
                     const std::vector<std::string>& files);

/** A picture without a file, such as one copied from a paint program; `extension` tells its kind.
 */
TakenFiles TakePicture(ProjectContext& context, const std::string& pageKey, std::string_view bytes,
                       std::string_view extension);

/** How the references of pasted markup come into the page: pictures of this machine that are such
 * by their content, and those that stand in the markup itself, are copied; links to files of the
 *  project become relative. Other files are not for a site to publish. */
AddressAdopter AdoptIntoPage(ProjectContext& context, const std::string& pageKey);

}  // namespace pw
