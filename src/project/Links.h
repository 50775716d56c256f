#pragma once
// Links between the pages of a project: the frames that a link can aim at, the rewriting of every
// reference when a page's file is renamed, and a list of all links with whether they stand.
#include <string>
#include <string_view>
#include <vector>

#include "platform/controls/Controls.h"
#include "project/ProjectContext.h"
#include "project/omProj/Project.h"

namespace pw {

/** Fills the tree with every named frame, below the pages and folders that lead to it. The tag of a
 *  frame's node is "1", of any other "0"; a frame's key is its page's key and its name. */
void BuildTargetsList(TreeView& tree, ProjectContext& context);
/** Names of the frames in the frameset text of a page, in their order. */
std::vector<std::string> FrameNames(std::string_view html);

/** The HTML of an open page as its window has it, else of its file; "" when there is neither. */
std::string GetPageHTML(ProjectContext& context, const Page& page);
/** Up to the end of the last "</frameset>"; the whole text of a page without a frameset. */
std::string_view GetFramesetText(std::string_view html);

/**
 * Makes every reference to the file `oldPath` point at `newPath`, in open and closed pages; both
 * are paths on disk. A closed page without such a reference is neither parsed nor written. A link
 * counts as a reference when the old path occurs in its full form, so that one with a bookmark
 * becomes a plain link. Returns how many pages were changed.
 */
int UpdateLinksInProject(ProjectContext& context, const std::string& oldPath,
                         const std::string& newPath);

/** Renames the file of a page and brings the links up to date. False, and nothing changed, when the
 *  file can't be renamed; `reason` then gets a sentence for the user. `newName` has an extension.
 */
[[nodiscard]] bool RenamePage(ProjectContext& context, Page& page, const std::string& newName,
                              std::string* reason);

enum class LinkState { Stands, Missing, Elsewhere };  ///< Elsewhere: not a file of the project
struct LinkRecord {
    std::string pageKey;
    std::string target;  ///< as written
    LinkState state = LinkState::Stands;
};
/** Every link of every page, in the order of the pages. A link with a bookmark stands when the
 *  bookmark does. */
std::vector<LinkRecord> ListLinks(ProjectContext& context);

}  // namespace pw
