#pragma once
// Links between the pages of a project: every reference follows when a page or a folder gets
// another name or place.
#include <string>
#include <string_view>
#include <vector>

#include "project/LinkAttributes.h"
#include "project/ProjectContext.h"
#include "project/omProj/Project.h"

namespace pw {

/** The HTML of an open page as its window has it, else of its file; "" when there is neither. A
 *  masked frameset of an open page is still masked. */
std::string GetPageHTML(ProjectContext& context, const Page& page);
/** Up to the end of the last "</frameset>"; the whole text of a page without a frameset. */
std::string_view GetFramesetText(std::string_view html);

/** What was changed in one page or style sheet, in the order of the changes. */
struct UpdatedPage {
    std::string page;  ///< its key; "" for a style sheet
    std::string file;  ///< its path on disk
    /** Of a frame page the frameset is masked. A style sheet has one change: its former text. */
    std::vector<ChangedReference> changes;
};

/** What an update of the links did. */
struct LinkUpdate {
    int changed = 0;                      ///< pages
    std::vector<std::string> notUpdated;  ///< names of pages that could not be read or written
    int lostBookmarks = 0;                ///< links that led to a bookmark, and now to its page
    std::vector<UpdatedPage> pages;       ///< for whoever takes it back

    /** "3 links lost their bookmark."; "" when none did. */
    std::string LossText() const;
    /** Names the pages whose links could not follow, as a message for the user; "" when all did. */
    std::string ProblemText(std::string_view what) const;
};

/**
 * Makes every link to the file `oldPath` lead to `newPath`; both are paths on disk. Open pages
 * change in their windows, unsaved and not as steps of the user's; closed ones in their files. A
 * closed page without such a reference is neither parsed nor written. A link or frame counts as one
 * when the old path occurs in its full form, so that a link to a bookmark becomes a plain one,
 * unless the user's settings keep bookmarks; whatever else leads to the page has to mean the very
 * file. A page that can't be brought up to date is logged, and the others go on.
 */
LinkUpdate UpdateLinksInProject(ProjectContext& context, const std::string& oldPath,
                                const std::string& newPath);

/** What UpdateFollowing goes through. */
enum class Follow {
    Links,         ///< for a page that has got another place
    AllReferences  ///< for a folder: pictures, styles and style sheets too
};
/** The same for a page or folder that lies elsewhere now: every reference that leads through it
 *  follows, matched as a whole, and keeps its query and bookmark. */
LinkUpdate UpdateFollowing(ProjectContext& context, const Move& move, Follow what);

/** Makes the references in an open page that lead where something has lain before the moves of this
 *  session lead to where it lies now, unless a file stands there again. */
void FollowMoves(ProjectContext& context, const std::string& pageKey, dom::Document& document);

/**
 * Gives the file of a page another name, which has an extension, and brings the links up to date.
 * False, and nothing changed, when that can't be; `reason` then gets a sentence for the user. True
 * with such a sentence when the page is renamed and links on some pages could not follow. `update`
 * gets what was done to the links.
 */
[[nodiscard]] bool RenamePage(ProjectContext& context, Page& page, const std::string& newName,
                              std::string* reason, LinkUpdate* update = nullptr);

}  // namespace pw
