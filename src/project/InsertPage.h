#pragma once
// Turns any HTML file (a template, a file that the user picked, a page being copied) into a page of
// the project.
#include <functional>
#include <string>

#include "platform/dom/Document.h"
#include "project/Pages.h"

namespace pw {

class MediaPuller;

enum class ShowInsertedPage { No, Yes };
enum class ApplyDefaultFont { No, Yes };

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
    /** Rewrites what the media pulling leaves alone; `targetFolder` is the new page's folder. May
     *  add files to the page's attachments. */
    std::function<void(dom::Document& document, Page& page, const std::string& targetFolder)>
        rewriteLinks;
    MediaPuller* media = nullptr;  ///< shared, so that no picture is looked at twice
};

/**
 * Inserts the page and returns it; none on failure, with the project as it was and a sentence for
 * the user in `reason`. Pictures, backgrounds, style sheets and scripts that lie on this machine
 * are copied into the `media` folder beside the page; everything else keeps its bytes.
 */
Page* InsertPage(ProjectContext& context, const InsertPageRequest& request,
                 std::string* reason = nullptr);

/** The free name, without its extension, for the file of a page that comes from `sourceFile`. */
std::string ChoosePageName(const ProjectContext& context, const std::string& sourceFile,
                           bool isDefault, const std::function<bool(const std::string&)>& isTaken);

/** Cut, copy and paste of pages in the project explorer. */
bool CopyPage(ProjectContext& context, std::string_view key);
bool CutPage(ProjectContext& context, std::string_view key);
/** Into the folder or site at the key, or that the page at the key lies in. */
Page* PastePage(ProjectContext& context, std::string_view targetKey, std::string* reason = nullptr);

}  // namespace pw
