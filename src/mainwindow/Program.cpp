#include "mainwindow/Program.h"

#include <utility>

#include "frame/FunctionLibrary.h"
#include "mainwindow/Explorers.h"
#include "mainwindow/Finding.h"
#include "mainwindow/RecentProjects.h"
#include "mainwindow/UIState.h"
#include "mainwindow/frmDocument.h"
#include "mainwindow/frmTip.h"
#include "platform/posix/FileLock.h"
#include "platform/posix/RunFolder.h"
#include "platform/posix/SingleInstance.h"
#include "project/Journal.h"
#include "project/Lifecycle.h"
#include "project/Recovery.h"
#include "project/Scratch.h"
#include "publishing/frmCustInfo.h"

namespace pw {

Program::Program(const World& world, Places places, ProgramParts parts)
    : parts_(std::move(parts)), frame_(world, std::move(places)) {}

Program::~Program() {
    // Nothing may be asked of a project that is gone.
    frame_.errorLog.projectAuthor = nullptr;
}

StartupResult Program::Start(const std::string& file) {
    return pw::Start(frame_, *this, file);
}

// --- Start --------------------------------------------------------------------------------------

bool Program::IsAnotherInstanceRunning() {
    return BecomeSingleInstance(frame_.places, instance_) == LockOutcome::Held;
}

void Program::ShowSplash() {
    if (!parts_.makeSplash) return;
    splash_ = parts_.makeSplash(frame_);
    splash_->Show();
}

void Program::SetSplashTopmost(Topmost topmost) {
    if (splash_) splash_->SetTopmost(topmost == Topmost::On);
}

void Program::UnloadSplash() {
    if (splash_) splash_->Close();
    splash_.reset();
}

void Program::ShowCustomerInfo() {
    frmCustInfo dialog(frame_);
    frame_.dialogs.ShowModal(dialog);
}

bool Program::CreateSupportObject(SupportObject which) {
    if (which != SupportObject::Project) return true;  // made by those who use them
    project_ = std::make_unique<Project>(frame_.files);
    frame_.errorLog.projectAuthor = [this] { return project_->AuthorName; };
    return true;
}

int Program::InitializeSupportObject(SupportObject which, const std::string& accessCode, int major,
                                     int minor) {
    if (which != SupportObject::Project) return 0;
    return project_->Initialize(accessCode, major, minor);
}

MainWindowLayout& Program::LoadMainWindow() {
    frame_.settings.HTMLTemplateFilename = BuildPath(frame_.places.programFolder, "blank.htm");
    window_ = std::make_unique<frmMDIMain>(frame_, *project_, parts_.makeWindow());
    // The layout that is restored next shows and hides toolbars: they have to stand.
    window_->BuildBars();
    if (parts_.bindWindow) parts_.bindWindow(*window_);
    window_->Surface().events.unload = [this] { Shutdown(); };
    return *window_;
}

void Program::ResetUI() {
    window_->ResetUI();
}

void Program::CreateWorkingFolders() {
    run_ = RunFolder::Create(frame_.files, frame_.places.temporaryFolder);
    if (!run_) throw Failure("The folder for temporary files can not be made.");
    frame_.runFolder = run_->Path();
    pw::CreateWorkingFolders(frame_);
}

void Program::HideProgressPanel() {
    window_->ShowProgress(false);
}

void Program::BuildToolbarsAndMenus() {
    window_->BuildBars();
}

void Program::ShowMainWindow() {
    window_->RefreshCaption();
    window_->ResetStatus();
    window_->Surface().Show();
}

void Program::EnableMainWindow() {
    window_->StartTimer();
}

Recovery Program::OfferRecovery() {
    const bool recovered = pw::OfferRecovery(window_->ProjectState(), run_);
    return recovered ? Recovery::ProjectOpened : Recovery::None;
}

bool Program::IsProjectOpen() {
    return project_->IsLoaded;
}

void Program::ShowTips() {
    frmTip dialog(frame_);
    frame_.dialogs.ShowModal(dialog);
}

void Program::InitNewProject() {
    pw::InitNewProject(window_->ProjectState());
}

void Program::RefreshProjectState() {
    window_->RefreshCaption();
    window_->ResetUI();
}

void Program::OpenProject(const std::string& path) {
    if (pw::OpenProject(window_->ProjectState(), path, Silent::No)) AddRecentProject(frame_, path);
}

void Program::OpenHTMLAsProject(const std::string& path) {
    static_cast<void>(pw::OpenHTMLAsProject(window_->ProjectState(), path));
}

// --- End ----------------------------------------------------------------------------------------

void Program::Shutdown() {
    if (std::exchange(shutDown_, true) || !window_) return;
    AddRecentProject(frame_, frame_.settings.ProjectFilename);
    pw::Shutdown(frame_, *this);
}

bool Program::IsProjectBusy() {
    return project_->Busy();
}

void Program::HideProgress() {
    window_->ShowProgress(false);
}

void Program::ShowStatus(const std::string& text) {
    window_->ShowStatus(text);
}

void Program::RemoveWorkingFolders() {
    // The user was asked about unsaved changes before: what is left here is given up.
    window_->CloseAllPages(true);
    // The scratch folders lie in the run folder, which goes as one. Where it will not, they are
    // emptied only if no journal names what is in them.
    const bool forgotten = JournalClear(window_->ProjectState());
    if (!run_ || run_->Remove() == FileError::None) return;
    if (forgotten) pw::ClearWorkingFolders(frame_, ScratchFolders::Remove);
    throw Failure("The folder for temporary files can not be removed.");
}

void Program::HideMainWindow() {
    window_->Context().Finder->Close();
    window_->Surface().Hide();
}

int Program::FormCount() {
    return int(window_->OpenPages().size());
}

std::string Program::FormName(int) {
    return "frmDocument";
}

void Program::UnloadForm(int) {
    window_->CloseAllPages(true);
}

void Program::EndProcess() {
    if (parts_.endProcess) parts_.endProcess();
}

}  // namespace pw
