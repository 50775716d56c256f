#pragma once
// Publishing as HTML: the site as a folder of plain files.
#include <string>
#include <vector>

#include "project/ProjectContext.h"

namespace pw {

struct PublishResult {
    bool published = false;
    std::string folder;     ///< where the site lies
    std::string firstPage;  ///< file of the page that a visitor comes to; "" without a page
    std::string reason;     ///< whole sentences for the user when it was not published
    /** Links that lead nowhere, as they are written, each with the title of its page. */
    std::vector<std::string> deadLinks;
    std::vector<std::string> warnings;  ///< sentences about what was published as it stood
};

/**
 * Writes the site into a sub-folder of `folder` that bears the project's name, over what is there:
 * the pages, the files that the project lists and those that the pages refer to. Shows nothing.
 * Open pages and all variables are brought up to date first.
 */
PublishResult PublishAsHTML(ProjectContext& context, const std::string& folder);

/** The command: asks for the folder, publishes, and says what came of it. */
void AskAndPublishAsHTML(ProjectContext& context);

}  // namespace pw
