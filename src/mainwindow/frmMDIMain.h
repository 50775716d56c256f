#pragma once
// The main window without its screen: the command bar, the explorers, the status bar, and what the
// lower floors ask of the program around them. The skin binds its widgets to the controls by name.
#include <array>
#include <memory>
#include <string>
#include <vector>

#include "frame/MainWindowLayout.h"
#include "mainwindow/CSplitter.h"
#include "mainwindow/Context.h"
#include "mainwindow/PageTree.h"
#include "mainwindow/Surfaces.h"
#include "platform/controls/CommandBar.h"
#include "platform/controls/Controls.h"
#include "project/ProjectContext.h"
#include "project/Workspace.h"

namespace pw {

class frmMDIMain : public ControlOwner, public Workspace, public MainWindowLayout {
  public:
    /** All three must outlive it. */
    frmMDIMain(FrameContext& frame, Project& project, MainWindowSurface& surface);
    ~frmMDIMain() override;

    // --- What is seen ---------------------------------------------------------------------------
    CommandBar barMain{this};
    Frame picExplorers{this, "picExplorers"};  ///< hidden with the last explorer
    Frame picProjectExplorer{this, "picProjectExplorer"};
    TreeView tvwProjectExplorer{this, "tvwProjectExplorer"};
    Frame picPageExplorer{this, "picPageExplorer"};
    TreeView tvwPageExplorer{this, "tvwPageExplorer"};
    Frame picTaskExplorer{this, "picTaskExplorer"};
    ListView lvwTasks{this, "lvwTasks"};
    /** Beside the explorers, between the two trees, above the tasks: as in kSplitterValues. */
    CSplitter splitterExplorer{this, "splitterExplorer", CSplitter::Direction::Vertical,
                               CSplitter::Side::Before, &picExplorers};
    CSplitter splitterTrees{this, "splitterTrees", CSplitter::Direction::Horizontal,
                            CSplitter::Side::Before, &picProjectExplorer};
    CSplitter splitterTask{this, "splitterTask", CSplitter::Direction::Horizontal,
                           CSplitter::Side::After, &picTaskExplorer};
    /** 0: status text, 1: connection, 2: download time. `tag` is the number of the picture. */
    ControlArray<Label, 3> sbrMain{this, "sbrMain"};
    ProgressBar prgProgress{this, "prgProgress"};  ///< a panel of the status bar, hidden at rest

    std::string ModuleName() const override { return "MDIMain"; }
    const std::string& Caption() const { return caption_; }
    MainWindowSurface& Surface() { return surface_; }
    MainContext& Context() { return context_; }
    ProjectContext& ProjectState() { return project_; }
    /** What the page explorer shows, element by element. */
    PageTree& PageElements() { return pageTree_; }

    // --- What the user does beside the commands -------------------------------------------------
    /** Presses the close box of an explorer; `tool` is 209, 210 or 211. */
    void picExplorer_Closed(int tool);
    /** The keyboard is in another pane now: the Edit commands follow. */
    void PaneFocused(Pane pane);
    /** Opens the menu of connection speeds. */
    void sbrMain_PanelClick(int panel);

    // --- Start and end --------------------------------------------------------------------------
    /** Builds menus and toolbars and hides the progress panel. */
    void BuildBars();
    /** The journal, and automatic saves as the settings say; again after they changed. */
    void StartTimer();
    /** Asks to save; false keeps the program open. Decides nothing else. */
    bool Form_QueryUnload();

    // --- Workspace ------------------------------------------------------------------------------
    void ShowStatus(const std::string& text) override;
    void ShowProgress(bool visible) override;
    void SetProgress(int value) override;
    void ShowBusyPointer(bool busy) override;
    std::vector<OpenPage*> OpenPages() override;
    OpenPage* FindOpenPage(const std::string& key) override;
    std::string CurrentPageKey() const override { return context_.CurrentPageKey; }
    void ShowPage(const std::string& key, const std::string& title, const std::string& filename,
                  int pageType) override;
    void CloseAllPages(bool discard) override;
    std::string SelectedProjectNode() const override { return tvwProjectExplorer.SelectedKey(); }
    void SelectProjectNode(const std::string& key) override;
    void RefillProjectExplorer() override;
    void UpdatePageExplorer(const std::string& key) override;
    void RefreshTasks() override;
    void ResetUI() override;
    void RefreshCaption() override;
    bool IsForeground() const override;
    void ApplyDefaultFont(const std::string& font, int size) override;
    void ResetForNewProject() override;

    // --- MainWindowLayout -----------------------------------------------------------------------
    WindowState State() const override;
    void Maximise() override { surface_.Maximise(); }
    TwipRect Geometry() const override;
    void SetGeometry(const TwipRect& geometry) override;
    TwipRect Screen() const override;
    bool IsExplorerShown(int tool) const override;
    void ShowExplorer(int tool, Visibility visibility) override;
    bool IsToolbarVisible(const std::string& name) const override;
    void ShowToolbar(const std::string& name, Visibility visibility) override;
    int SplitterSize(int index) const override { return splitters_[std::size_t(index)]->Size(); }
    void SetSplitterSize(int index, int size) override {
        splitters_[std::size_t(index)]->SetSize(size);
    }
    void ShowStandardToolbars(int skillLevel) override;

    // --- For the page windows -------------------------------------------------------------------
    /** Takes it out of the open documents; it dies when the event that closed it is over. */
    void DocumentClosed(const frmDocument& document);
    /** Brings an open page to the front, and the keyboard to it. */
    void ActivatePage(const std::string& key);
    /** As soon as the events that are being handled are over. */
    void CloseLater(const std::string& key);
    /** The page in front now comes up again when the one before it closes. */
    void NoteActivation(const std::string& key);
    /** Count of minutes since the last automatic save, as a decimal text. */
    std::string autoSaveTag = "0";

  private:
    void TellOfNewerVersion();
    void ConnectSurface();
    void OpenPageWindow(const std::string& key, const std::string& title,
                        const std::string& filename, int pageType);
    void RaisePage(frmDocument& document, int pageType);

    const std::array<CSplitter*, 3> splitters_{&splitterExplorer, &splitterTrees, &splitterTask};
    FrameContext& frame_;
    MainWindowSurface& surface_;
    ProjectContext project_;
    MainContext context_;
    PageTree pageTree_;
    std::string caption_;
    int busyDepth_ = 0;
    int ticks_ = 0;                             // since the last automatic save was thought of
    std::vector<std::string> activationOrder_;  // keys, the page in front last
    /** Weakly held by the task that empties it, which can outlive the window. */
    std::shared_ptr<std::vector<std::unique_ptr<frmDocument>>> buried_;
};

}  // namespace pw
