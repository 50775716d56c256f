#pragma once
// Publishing as HTML: the site as a folder of plain files.
#include <string>

#include "project/ProjectContext.h"

namespace pw {

struct PublishResult {
    bool published = false;
    std::string folder;  ///< where the site lies
    std::string reason;  ///< whole sentences for the user when it was not published
};

/** Writes the site into a sub-folder of `folder` that bears the project's name, over what is there.
 *  Shows nothing. Open pages are brought up to date first. */
PublishResult PublishAsHTML(ProjectContext& context, const std::string& folder);

/** The command: asks for the folder, publishes, and says what came of it. */
void AskAndPublishAsHTML(ProjectContext& context);

}  // namespace pw
