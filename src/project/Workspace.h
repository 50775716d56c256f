#pragma once
// What the project's routines need of the program around them: a status line, a progress bar, the
// open pages, the explorers. The main window implements it; tests and the command line use one
// without a screen.
#include <functional>
#include <string>
#include <vector>

#include "platform/dom/Document.h"

namespace pw {

class HtmlEditor;

/** Which view of an open page is up. */
namespace ViewState {
constexpr int Normal = 1;
constexpr int Html = 2;
constexpr int Preview = 3;
}  // namespace ViewState

/** A page that stands open in a window. */
class OpenPage {
  public:
    virtual ~OpenPage() = default;
    virtual const std::string& PageKey() const = 0;
    /** A ViewState. */
    virtual int CurrentViewState() const = 0;
    virtual void SetToNormalEditMode() = 0;
    /** Takes over what the user did in whichever view is up, and waits until nothing is due. False
     *  when the source view holds text that can't be a page: the document is then the page as it
     * was before that text, and must not be taken for what the user sees. */
    virtual bool TakeOverEdits() = 0;
    /** Why it could not, as a message for the user, who has not been told by it; "" when it could.
     */
    virtual std::string SourceProblem() const { return {}; }
    /** The document was changed from outside: a view that shows a copy of it shows it anew. */
    virtual void ShowChanges() = 0;
    virtual dom::Document& Document() = 0;
    /** The cleaned text of the page, as it goes to a file; a masked frameset is still masked. */
    virtual std::string UpdateHTML() = 0;
    /** Loads text as if it had been typed in the source view; one undo step. */
    virtual bool SetHTML(const std::string& html) = 0;
    virtual const std::string& BaseURL() const = 0;
    virtual bool IsDirty() = 0;
    virtual void MarkClean() = 0;
    /** Writes a picture of the visible page as JPEG; false when it could not. */
    virtual bool Capture(const std::string& path) = 0;
    /** Shows the page's title and file name in its caption. */
    virtual void RefreshCaption() = 0;
    /** Writes the page to the scratch area first. False when that can't be, of which the user has
     *  been told: the window stays, and what it holds must not be given up. */
    virtual bool CloseWindow() = 0;
};

class Workspace {
  public:
    virtual ~Workspace() = default;

    // Status.
    virtual void ShowStatus(const std::string& text) = 0;
    /** The resting text of the status bar. */
    void ResetStatus() { ShowStatus("For Help, press F1"); }
    virtual void ShowProgress(bool visible) = 0;
    virtual void SetProgress(int value) = 0;
    virtual void ShowBusyPointer(bool busy) = 0;

    // Open pages.
    virtual std::vector<OpenPage*> OpenPages() = 0;
    virtual OpenPage* FindOpenPage(const std::string& key) = 0;
    virtual std::string CurrentPageKey() const = 0;
    virtual void ShowPage(const std::string& key, const std::string& title,
                          const std::string& filename, int pageType) = 0;
    /** Without asking; each page is written to the scratch area unless `discard`. */
    virtual void CloseAllPages(bool discard) = 0;

    // Explorers and the state of the tools.
    virtual std::string SelectedProjectNode() const = 0;
    virtual void SelectProjectNode(const std::string& key) = 0;
    virtual void RefillProjectExplorer() = 0;
    virtual void UpdatePageExplorer(const std::string& key) = 0;
    virtual void RefreshTasks() = 0;
    virtual void ResetUI() = 0;
    virtual void RefreshCaption() = 0;  ///< of the main window
    /** True while the main window is the one in front and not minimised. */
    virtual bool IsForeground() const = 0;
    /** The font tools show these, and commands 402 and 403 are fired. */
    virtual void ApplyDefaultFont(const std::string& font, int size) = 0;
    /** Size in the status bar to zero, auto-save counter to "0", explorers and clipboard empty. */
    virtual void ResetForNewProject() = 0;
};

/** The pointer of a stretch of work, for as long as it lives; they may lie within each other. */
class BusyPointer {
  public:
    explicit BusyPointer(Workspace& workspace) : workspace_(workspace) {
        workspace_.ShowBusyPointer(true);
    }
    ~BusyPointer() { workspace_.ShowBusyPointer(false); }
    BusyPointer(const BusyPointer&) = delete;
    BusyPointer& operator=(const BusyPointer&) = delete;

  private:
    Workspace& workspace_;
};

}  // namespace pw
