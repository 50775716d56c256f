#pragma once
// Links between the pages of a project: every reference follows when the file of a page gets
// another name.
#include <string>
#include <string_view>
#include <vector>

#include "project/ProjectContext.h"
#include "project/omProj/Project.h"

namespace pw {

/** The HTML of an open page as its window has it, else of its file; "" when there is neither. A
 *  masked frameset of an open page is still masked. */
std::string GetPageHTML(ProjectContext& context, const Page& page);
/** Up to the end of the last "</frameset>"; the whole text of a page without a frameset. */
std::string_view GetFramesetText(std::string_view html);

/** What an update of the links did. */
struct LinkUpdate {
    int changed = 0;                      ///< pages
    std::vector<std::string> notUpdated;  ///< names of pages that could not be read or written
};

/**
 * Makes every reference to the file `oldPath` point at `newPath`; both are paths on disk. Open
 * pages change in their windows, undoable and unsaved, closed ones in their files. A closed page
 * without such a reference is neither parsed nor written. A link counts as one when the old path
 * occurs in its full form, so that a link to a bookmark becomes a plain one. A page that can't be
 * brought up to date is logged, and the others go on.
 */
LinkUpdate UpdateLinksInProject(ProjectContext& context, const std::string& oldPath,
                                const std::string& newPath);

/**
 * Gives the file of a page another name, which has an extension, and brings the links up to date.
 * False, and nothing changed, when that can't be; `reason` then gets a sentence for the user. True
 * with such a sentence when the page is renamed and links on some pages could not follow.
 */
[[nodiscard]] bool RenamePage(ProjectContext& context, Page& page, const std::string& newName,
                              std::string* reason);

}  // namespace pw
