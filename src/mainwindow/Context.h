#pragma once
// The state of the whole program that the main window's routines share, and the way from one to the
// other. One object for each run (and for each test); nothing of it is global.
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/dom/Document.h"

namespace pw {

class CommandBar;
class frmDocument;
class frmMDIMain;
class PageFinder;
class Project;
struct FrameContext;
struct ProjectContext;

/** Which pane the Edit commands and the context menu act on. */
enum class Pane { Page = 0, ProjectExplorer = 1, PageExplorer = 2, TaskList = 3 };

enum class MouseButton { None, Left, Right };

/** What an element dialog does when it is confirmed. */
enum class DialogMode { None = 0, Insert = 1, Edit = 2 };

/** Every open page, in the order in which they were opened. Owns the page windows. */
class OpenDocumentList {
  public:
    OpenDocumentList();
    ~OpenDocumentList();
    frmDocument& Add(std::unique_ptr<frmDocument> document);
    frmDocument* Find(const std::string& key) const;
    /** Takes it out; the caller keeps it alive as long as its handlers run. */
    std::unique_ptr<frmDocument> Remove(const std::string& key);
    const std::vector<std::unique_ptr<frmDocument>>& All() const { return documents_; }
    bool Empty() const { return documents_.empty(); }
    int Count() const { return int(documents_.size()); }

  private:
    std::vector<std::unique_ptr<frmDocument>> documents_;
};

struct MainContext {
    MainContext(FrameContext& frameContext, ProjectContext& projectContext, frmMDIMain& mainWindow,
                CommandBar& bar);
    ~MainContext();

    FrameContext& frame;
    ProjectContext& project;
    Project& model;  ///< the one project, as in `project`
    frmMDIMain& window;
    CommandBar& barMain;

    OpenDocumentList OpenDocuments;
    std::string CurrentPageKey;  ///< "" when nothing is open
    DialogMode ElementDialogMode = DialogMode::None;
    Pane CommandFocus = Pane::Page;
    Pane ContextPane = Pane::Page;
    bool SelectingFromExplorer = false;  ///< the page's selection comes from the page explorer
    MouseButton ExplorerPress = MouseButton::None;  ///< that is down on the project explorer
    bool ClosingProject = false;                    ///< windows go in a row: none gets to the front
    bool FormatsFilled = false;                     ///< the font tools have their lists
    std::optional<bool> WelcomeShown;               ///< the page of the empty window
    double ConnectionChecked = -1e9;                ///< monotonic seconds
    const std::unique_ptr<PageFinder> Finder;       ///< Find and Replace

    /** The element last hit by the mouse or chosen in the page explorer, in the current page. */
    dom::Node* CurrentElement() const { return element_; }
    void SetCurrentElement(dom::Node* element, const frmDocument* owner) {
        element_ = element;
        owner_ = element ? owner : nullptr;
    }
    /** Before the nodes of that page die. */
    void ForgetElementOf(const frmDocument* owner) {
        if (owner_ == owner) SetCurrentElement(nullptr, nullptr);
    }
    /** The page in front, or none. */
    frmDocument* CurrentDocument() const { return OpenDocuments.Find(CurrentPageKey); }

  private:
    dom::Node* element_ = nullptr;
    const frmDocument* owner_ = nullptr;
};

}  // namespace pw
