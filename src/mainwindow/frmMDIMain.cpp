#include "mainwindow/frmMDIMain.h"

#include <algorithm>
#include <utility>

#include "frame/Context.h"
#include "frame/FunctionLibrary.h"
#include "mainwindow/CommandCatalogue.h"
#include "mainwindow/Commands.h"
#include "mainwindow/Explorers.h"
#include "mainwindow/RecentProjects.h"
#include "mainwindow/UIState.h"
#include "mainwindow/frmDocument.h"
#include "project/Journal.h"
#include "project/Lifecycle.h"
#include "project/MergeVariables.h"
#include "project/Pages.h"

namespace pw {

namespace {
constexpr const char* kModule = "MDIMain.";
}

frmMDIMain::frmMDIMain(FrameContext& frame, Project& project, MainWindowSurface& surface)
    : frame_(frame),
      surface_(surface),
      project_{.frame = frame, .project = project, .workspace = *this},
      context_(frame, project_, *this, barMain),
      pageTree_(frame, tvwPageExplorer),
      buried_(std::make_shared<std::vector<std::unique_ptr<frmDocument>>>()) {
    SetFaults(&frame.faults);
    prgProgress.SetVisible(false);
    picTaskExplorer.SetVisible(false);
    ConnectExplorers(context_);
    ConnectCommandBar(context_);
    ConnectSurface();
}

frmMDIMain::~frmMDIMain() {
    surface_.events = {};
    surface_.SetAutoSaveTimer(0, nullptr);
}

void frmMDIMain::ConnectSurface() {
    surface_.events.queryUnload = [this] { return Form_QueryUnload(); };
    surface_.events.newProject = [this] { barMain.Click(3); };
    surface_.events.openProject = [this] { barMain.Click(6); };
    surface_.events.openRecent = [this](const std::string& path) {
        OpenChosenProject(context_, path);
    };
}

void frmMDIMain::BuildBars() {
    ShowProgress(false);
    if (!barMain.BandNames().empty()) return;
    CatalogueNames names;
    names.product = frame_.brand.FormCaption();
    names.provider = frame_.settings.DefaultWHPName;
    names.publishesToProvider = frame_.settings.ClientType == 1;
    BuildCommandBar(barMain, names);
    pw::ShowStandardToolbars(context_, frame_.settings.SkillLevel);
}

void frmMDIMain::StartTimer() {
    // One timer for both: the journal wants to be asked often.
    constexpr int kInterval = 2000;
    ticks_ = 0;
    surface_.SetAutoSaveTimer(kInterval, [this] {
        JournalTick(project_);
        if (++ticks_ * kInterval < kAutoSaveInterval) return;
        ticks_ = 0;
        if (frame_.settings.AutoSave) AutoSaveTick(project_, autoSaveTag, surface_.IsMinimised());
    });
}

bool frmMDIMain::Form_QueryUnload() {
    return TrapAndTell(frame_.faults, kModule, "Form_QueryUnload", false, [&] {
        for (const auto& document : context_.OpenDocuments.All())
            document->TakeOverEdits();
        if (!MayGiveUpProject(project_, GivingUp::ForExit, barMain.Caption(19))) return false;
        TellOfNewerVersion();
        return true;
    });
}

void frmMDIMain::TellOfNewerVersion() {
    const std::string& newest = frame_.settings.NewestVersion;
    if (newest.empty() || CompareVersions(newest, GetVersionString()) != 1) return;
    frame_.dialogs.MsgBox(
        {"This software has been updated to a newer version.\n\nPlease visit the "
         "Pagewick Web site for information on how to update your software.",
         kApplicationTitle, Icon::Information});
}

// --- What the user does beside the commands -----------------------------------------------------

void frmMDIMain::picExplorer_Closed(int tool) {
    pw::ShowExplorer(context_, tool, false);
}

void frmMDIMain::PaneFocused(Pane pane) {
    if (FocusInForce(context_) == pane) return;
    context_.CommandFocus = Pane::Page;
    context_.ContextPane = pane;
    pw::ResetUI(context_);
}

void frmMDIMain::sbrMain_PanelClick(int panel) {
    constexpr int kDownloadPanel = 2;
    if (panel == kDownloadPanel) barMain.PopUp(kDownloadMenu);
}

// --- Workspace: status --------------------------------------------------------------------------

void frmMDIMain::ShowStatus(const std::string& text) {
    ShowStatusText(context_, text);
}

void frmMDIMain::ShowProgress(bool visible) {
    prgProgress.SetVisible(visible);
    if (!visible) prgProgress.SetValue(0);
}

void frmMDIMain::SetProgress(int value) {
    prgProgress.SetValue(value);
}

void frmMDIMain::ShowBusyPointer(bool busy) {
    // Stretches of work lie within each other; only the outermost changes the pointer.
    busyDepth_ += busy ? 1 : -1;
    busyDepth_ = std::max(busyDepth_, 0);
    if (busyDepth_ == (busy ? 1 : 0)) surface_.SetBusyPointer(busy);
}

// --- Workspace: open pages ----------------------------------------------------------------------

std::vector<OpenPage*> frmMDIMain::OpenPages() {
    std::vector<OpenPage*> pages;
    for (const auto& document : context_.OpenDocuments.All())
        pages.push_back(document.get());
    return pages;
}

OpenPage* frmMDIMain::FindOpenPage(const std::string& key) {
    return context_.OpenDocuments.Find(key);
}

void frmMDIMain::ShowPage(const std::string& key, const std::string& title,
                          const std::string& filename, int pageType) {
    TrapAndTell(frame_.faults, "UIFunctions.", "ShowPage", [&] {
        if (frmDocument* open = context_.OpenDocuments.Find(key)) {
            RaisePage(*open, pageType);
        } else {
            OpenPageWindow(key, title, filename, pageType);
        }
        pw::ResetUI(context_);
    });
}

void frmMDIMain::OpenPageWindow(const std::string& key, const std::string& title,
                                const std::string& filename, int pageType) {
    Page* page = GetPage(project_, key);
    if (!page) return;
    if (page->Name.empty()) page->Name = title;
    frmDocument& document =
        context_.OpenDocuments.Add(std::make_unique<frmDocument>(context_, key));
    page->IsOpen = true;
    document.RefreshCaption();
    context_.CurrentPageKey = key;
    document.BringToFront();
    document.Form_Activate();
    if (!FileExists(frame_.files, filename)) return;
    if (!document.Load(filename, pageType)) {
        frame_.dialogs.MsgBox(
            {"Page '" + title + "' can not be shown. " + document.docDHTMLEditor.LastError(),
             frame_.brand.FormCaption(), Icon::Exclamation, Buttons::Ok});
        return;
    }
    UpdateMergeVariablesOnThisPage(project_, document.Document());
    // What opening did is nothing that the user could want undone.
    document.Document().clearHistory();
    InitDHTMLFormats(context_);
    pw::UpdatePageExplorer(context_, key);
    document.FocusView();
}

void frmMDIMain::RaisePage(frmDocument& document, int pageType) {
    document.BringToFront();
    document.Form_Activate();
    document.WaitUntilReady();
    document.FocusView();
    if (pageType != PageType::Frames) return;
    // The frames show files: those must hold what the other windows hold.
    bool saved = false;
    for (const auto& other : context_.OpenDocuments.All()) {
        Page* page = GetPage(project_, other->PageKey());
        if (!page || page->PageType == PageType::Frames || !other->IsDirty()) continue;
        if (!other->TakeOverEdits()) continue;
        saved = SavePageFile(project_, *page) || saved;
    }
    if (saved) document.ReloadFrames();
}

void frmMDIMain::ActivatePage(const std::string& key) {
    frmDocument* document = context_.OpenDocuments.Find(key);
    const Page* page = GetPage(project_, key);
    if (document) RaisePage(*document, page ? page->PageType : PageType::Ordinary);
}

void frmMDIMain::CloseAllPages(bool discard) {
    context_.ClosingProject = true;
    std::vector<std::string> keys;
    for (const auto& document : context_.OpenDocuments.All())
        keys.push_back(document->PageKey());
    for (const std::string& key : keys) {
        frmDocument* document = context_.OpenDocuments.Find(key);
        const auto how = discard ? frmDocument::Closing::Discard : frmDocument::Closing::Write;
        if (document && !document->Form_Unload(how)) break;
    }
    context_.ClosingProject = false;
    pw::ResetUI(context_);
}

void frmMDIMain::NoteActivation(const std::string& key) {
    std::erase(activationOrder_, key);
    activationOrder_.push_back(key);
}

void frmMDIMain::CloseLater(const std::string& key) {
    frame_.loop.Post([this, key, alive = std::weak_ptr(buried_)] {
        OpenPage* page = alive.expired() ? nullptr : FindOpenPage(key);
        if (page) page->CloseWindow();
    });
}

void frmMDIMain::DocumentClosed(const frmDocument& document) {
    const std::string key = document.PageKey();
    pageTree_.Forget(document);
    buried_->push_back(context_.OpenDocuments.Remove(key));
    std::erase(activationOrder_, key);
    frame_.loop.Post([weak = std::weak_ptr(buried_)] {
        const auto buried = weak.lock();
        if (!buried) return;
        const auto dead = std::exchange(*buried, {});
    });

    if (context_.CurrentPageKey == key) context_.CurrentPageKey.clear();
    if (context_.OpenDocuments.Empty()) {
        ClearPageExplorer(context_);
        if (!tvwProjectExplorer.Roots().empty())
            tvwProjectExplorer.SetSelected(tvwProjectExplorer.Roots().front()->key);
        pw::ResetUI(context_);
    } else if (context_.CurrentPageKey.empty() && !context_.ClosingProject) {
        frmDocument* next = context_.OpenDocuments.Find(activationOrder_.back());
        next->BringToFront();
        next->Form_Activate();
    }
}

// --- Workspace: explorers and tools -------------------------------------------------------------

void frmMDIMain::SelectProjectNode(const std::string& key) {
    tvwProjectExplorer.SetSelected(key);
}

void frmMDIMain::RefillProjectExplorer() {
    pw::RefillProjectExplorer(context_);
}

void frmMDIMain::UpdatePageExplorer(const std::string& key) {
    pw::UpdatePageExplorer(context_, key);
}

void frmMDIMain::RefreshTasks() {
    pw::RefreshTasks(context_);
}

void frmMDIMain::ResetUI() {
    pw::ResetUI(context_);
}

void frmMDIMain::RefreshCaption() {
    caption_ = MainWindowCaption(project_);
    surface_.SetCaption(caption_);
}

bool frmMDIMain::IsForeground() const {
    return surface_.IsForeground() && !surface_.IsMinimised();
}

void frmMDIMain::ApplyDefaultFont(const std::string& font, int size) {
    barMain.SetComboText(402, font);
    barMain.SetComboText(403, std::to_string(size));
    if (!font.empty()) MenuFormat(context_, 402);
    MenuFormat(context_, 403);
}

void frmMDIMain::ResetForNewProject() {
    autoSaveTag = "0";
    project_.copiedPage = {};
    tvwProjectExplorer.Clear();
    ClearPageExplorer(context_);
    lvwTasks.Clear();
    UpdateDownloadTime(context_);
}

// --- MainWindowLayout ---------------------------------------------------------------------------

WindowState frmMDIMain::State() const {
    if (surface_.IsMinimised()) return WindowState::Minimised;
    return surface_.IsMaximised() ? WindowState::Maximised : WindowState::Normal;
}

namespace {

TwipRect ToTwips(const WindowGeometry& geometry) {
    return {geometry.left, geometry.top, geometry.width, geometry.height};
}

}  // namespace

TwipRect frmMDIMain::Geometry() const {
    return ToTwips(surface_.Geometry());
}

void frmMDIMain::SetGeometry(const TwipRect& geometry) {
    surface_.SetGeometry({geometry.left, geometry.top, geometry.width, geometry.height});
}

TwipRect frmMDIMain::Screen() const {
    return ToTwips(surface_.Screen());
}

bool frmMDIMain::IsExplorerShown(int tool) const {
    return pw::IsExplorerShown(context_, tool);
}

void frmMDIMain::ShowExplorer(int tool, Visibility visibility) {
    pw::ShowExplorer(context_, tool, visibility == Visibility::Shown);
}

bool frmMDIMain::IsToolbarVisible(const std::string& name) const {
    const Band* band = const_cast<CommandBar&>(barMain).FindBand(name);
    return band && band->visible;
}

void frmMDIMain::ShowToolbar(const std::string& name, Visibility visibility) {
    barMain.SetBandVisible(name, visibility == Visibility::Shown);
    barMain.SetChecked(CommandOfToolbar(name), visibility == Visibility::Shown);
}

void frmMDIMain::ShowStandardToolbars(int skillLevel) {
    pw::ShowStandardToolbars(context_, skillLevel);
}

}  // namespace pw
