#pragma once
// Turns any HTML file (a template, a file that the user picked, a page being copied) into a page of
// the project.
#include <functional>
#include <string>

#include "platform/dom/Document.h"
#include "project/Pages.h"

namespace pw {

class FileAdmission;
class MediaPuller;

enum class ShowInsertedPage { No, Yes };
enum class ApplyDefaultFont { No, Yes };

/** What those who rewrite links get to see. */
struct PageBeingInserted {
    dom::Document& document;          ///< the page, or the text in place of its frames
    Page& page;                       ///< may be given attachments
    const std::string& sourceFolder;  ///< what references are relative to
    const std::string& targetFolder;  ///< where the new file will lie
    FileAdmission& admission;
};

struct InsertPageRequest {
    std::string sourceFile;
    Container folder;  ///< where to; neither: the first site
    ShowInsertedPage show = ShowInsertedPage::No;
    ApplyDefaultFont font = ApplyDefaultFont::No;
    std::string copyOfName;  ///< not empty: the page is a copy, and its title says so
    std::string title;       ///< "" keeps the document's title, or makes one where it has none

    // For those who insert many pages that belong together.
    /** Folder that references are relative to, where it is not the source file's own. */
    std::string baseFolder;
    /** Name of the new file, chosen by the caller among the free ones; "" chooses here. */
    std::string fileName;
    /** Rewrites what the media pulling leaves alone. Called once for a page, and twice for a frame
     *  page: for its frames, and for the text that stands in their place where there are none. */
    std::function<void(const PageBeingInserted&)> rewriteLinks;
    MediaPuller* media = nullptr;  ///< shared, so that no picture is looked at twice
    /** What may come along, the source file included; none: what the page's tags are for and its
     *  own folder holds. Notes what was left out. */
    FileAdmission* admission = nullptr;
    /** A page of an earlier insertion from the same file: it is made anew in its place. */
    Page* again = nullptr;
};

/**
 * Inserts the page and returns it; none on failure, with the project as it was and a sentence for
 * the user in `reason`. Pictures, backgrounds, style sheets and scripts that are admitted are
 * copied into the `media` folder beside the page; everything else keeps its bytes.
 */
Page* InsertPage(ProjectContext& context, const InsertPageRequest& request,
                 std::string* reason = nullptr);

/** The free name for the file of a page that comes from `sourceFile`. */
std::string ChoosePageName(const ProjectContext& context, const std::string& sourceFile,
                           bool isDefault, const std::function<bool(const std::string&)>& isTaken);

}  // namespace pw
