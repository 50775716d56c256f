#pragma once
// The program as a whole, without a screen of its own: the objects that live as long as it does,
// the steps of its start and of its end. The desktop program hands it a window and real files; a
// test hands it surfaces in memory.
#include <functional>
#include <memory>
#include <string>

#include "frame/Context.h"
#include "frame/Startup.h"
#include "mainwindow/Surfaces.h"
#include "mainwindow/frmMDIMain.h"
#include "project/omProj/Project.h"

namespace pw {

class RunFolder;
class FileLock;

/** The picture that stands while the program starts. */
class SplashSurface {
  public:
    virtual ~SplashSurface() = default;
    virtual void Show() = 0;
    virtual void SetTopmost(bool topmost) = 0;
    virtual void Close() = 0;
};

struct ProgramParts {
    /** The window, made when the start comes to it. The program must not outlive it. */
    std::function<MainWindowSurface&()> makeWindow;
    /** Called when the controls of the main window stand, and nothing is shown yet. */
    std::function<void(frmMDIMain&)> bindWindow;
    /** None: the start shows no picture. */
    std::function<std::unique_ptr<SplashSurface>(FrameContext&)> makeSplash;
    /** Called at the end of the shutdown. */
    std::function<void()> endProcess;
};

class Program : private StartupSteps, private ShutdownSteps {
  public:
    Program(const World& world, Places places, ProgramParts parts);
    ~Program() override;

    /** `file` is the path named to the program, with backslashes, or "". When it answers Ended, the
     *  user was told why, and the process is to end. */
    StartupResult Start(const std::string& file);
    /** From the window's unload, once. */
    void Shutdown();

    FrameContext& Frame() { return frame_; }
    Project& TheProject() { return *project_; }
    /** After Start answered Running. */
    frmMDIMain& Window() { return *window_; }

  private:
    // --- StartupSteps ---------------------------------------------------------------------------
    bool IsAnotherInstanceRunning() override;
    void ShowSplash() override;
    void SetSplashTopmost(Topmost topmost) override;
    void UnloadSplash() override;
    void ShowCustomerInfo() override;
    bool CreateSupportObject(SupportObject which) override;
    int InitializeSupportObject(SupportObject which, const std::string& accessCode, int major,
                                int minor) override;
    void LoadHostingProfile(const std::string&) override {}
    MainWindowLayout& LoadMainWindow() override;
    void ResetUI() override;
    void CreateWorkingFolders() override;
    void SetUpColorPicker(const std::string&, const std::string&) override {}
    void HideProgressPanel() override;
    void BuildToolbarsAndMenus() override;
    void BuildInsertMenus() override {}
    void ShowMainWindow() override;
    void EnableMainWindow() override;
    Recovery OfferRecovery() override;
    bool IsProjectOpen() override;
    void ShowKindlerun() override {}
    void ShowTips() override;
    void ShowProjectOpen(int) override {}
    void InitNewProject() override;
    void RefreshProjectState() override;
    void OpenProject(const std::string& path) override;
    void OpenHTMLAsProject(const std::string& path) override;

    // --- ShutdownSteps --------------------------------------------------------------------------
    bool IsProjectBusy() override;
    void HideProgress() override;
    void ShowStatus(const std::string& text) override;
    const MainWindowLayout& Layout() override { return *window_; }
    std::string HostingProfileTemporaryFile() override { return {}; }
    void RemoveWorkingFolders() override;
    void HideMainWindow() override;
    int FormCount() override;
    std::string FormName(int index) override;
    void UnloadForm(int index) override;
    void EndProcess() override;

    ProgramParts parts_;
    FrameContext frame_;
    std::unique_ptr<SplashSurface> splash_;
    std::unique_ptr<FileLock> instance_;
    std::unique_ptr<RunFolder> run_;
    std::unique_ptr<Project> project_;
    std::unique_ptr<frmMDIMain> window_;
    bool shutDown_ = false;
};

}  // namespace pw
