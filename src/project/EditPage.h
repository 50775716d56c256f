#pragma once
// The one way to change a page from outside its window, whether it stands open or lies in its file.
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Outcome.h"
#include "platform/dom/Document.h"
#include "project/ProjectContext.h"

namespace pw {

class Page;

/** Whether the change is one of the user's steps in an open page. What a rename, a move or a merge
 *  variable does to a page is not: it belongs to the whole project, and an undo in one page must
 *  not bring an old address or value back. */
enum class PageStep { OfTheUser, OfTheProject };

/** Changes the page. Whatever it throws takes back what it has changed. */
using PageEdit = std::function<void(dom::Document&)>;
/** A quick look at the text of a closed page: false spares parsing it. The text can be the bytes of
 *  a file in any encoding in which tags can be read as they are. */
using PageLook = std::function<bool(std::string_view text)>;

/**
 * Runs `edit` on the page: on the document of its window, as one step; or on its file, which is
 * read, parsed, edited and written in its encoding when something changed. The frameset of a frame
 * page is masked in both, as in the window. Marks page and project as changed and the journal as
 * behind. True when the page was changed; a problem names the page, which is then as it was. A
 * missing file is no problem: nothing is changed.
 */
Outcome<bool> EditPage(ProjectContext& context, Page& page, PageStep step, const PageEdit& edit,
                       const PageLook& mayConcern = {});

struct EditedPages {
    int changed = 0;
    std::vector<std::string> left;      ///< names of pages that could not be edited
    std::vector<std::string> problems;  ///< of these, in the same order
};
/** EditPage for all pages of the project, in the order of the page index; the walk goes on after a
 *  page that could not be edited. `edit` is told which page it is given. */
EditedPages EditAllPages(ProjectContext& context, PageStep step,
                         const std::function<void(Page&, dom::Document&)>& edit,
                         const std::function<bool(Page&, std::string_view text)>& mayConcern = {});

/** What the project has become since, told to a page that an undo or redo has taken back. */
void BringUpToDate(ProjectContext& context, const std::string& pageKey, dom::Document& document);

}  // namespace pw
