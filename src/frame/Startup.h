#pragma once
// The entry procedure and the way out: the order of the steps. What needs the screen or an upper
// floor is handed in as an interface.
#include <string>

namespace pw {

struct FrameContext;
class MainWindowLayout;

constexpr const char* kAccessCode = "BQMAZXLKVD";

/** Created in this order. */
enum class SupportObject { Project, HostingProvider, ColorPicker, FileTransfer };
enum class Topmost { Off, On };
enum class Recovery { None, ProjectOpened };

class StartupSteps {
  public:
    virtual ~StartupSteps() = default;

    virtual bool IsAnotherInstanceRunning() = 0;
    /** Shown without modality and drawn at once. */
    virtual void ShowSplash() = 0;
    virtual void SetSplashTopmost(Topmost topmost) = 0;
    virtual void UnloadSplash() = 0;
    /** Modal; returns when the user's details are stored or the dialog was cancelled. */
    virtual void ShowCustomerInfo() = 0;
    /** False when it cannot be created. Exceptions count as false. */
    virtual bool CreateSupportObject(SupportObject which) = 0;
    /** 0 when compatible, 1 and more when not. */
    virtual int InitializeSupportObject(SupportObject which, const std::string& accessCode,
                                        int major, int minor) = 0;
    virtual void LoadHostingProfile(const std::string& file) = 0;
    /** Hidden and disabled; it lives until the process ends. */
    virtual MainWindowLayout& LoadMainWindow() = 0;
    virtual void ResetUI() = 0;
    virtual void CreateWorkingFolders() = 0;
    virtual void SetUpColorPicker(const std::string& supportFolder,
                                  const std::string& helpFile) = 0;
    virtual void HideProgressPanel() = 0;
    virtual void BuildToolbarsAndMenus() = 0;
    virtual void BuildInsertMenus() = 0;
    virtual void ShowMainWindow() = 0;
    virtual void EnableMainWindow() = 0;
    /** Asks about what crashed runs have left, and opens one of them if the user wants it. */
    virtual Recovery OfferRecovery() = 0;

    virtual bool IsProjectOpen() = 0;
    virtual void ShowKindlerun() = 0;            ///< modal
    virtual void ShowTips() = 0;                 ///< modal
    virtual void ShowProjectOpen(int mode) = 0;  ///< modal
    virtual void InitNewProject() = 0;
    /** The main window's state that depends on whether a project is open. */
    virtual void RefreshProjectState() = 0;
    virtual void OpenProject(const std::string& path) = 0;
    /** Makes a new project of the page. */
    virtual void OpenHTMLAsProject(const std::string& path) = 0;
};

enum class StartupResult { Running, Ended };

/**
 * `commandLine` is the path named to the program, with backslashes, or "". Ended means that a check
 * failed and was told to the user: the process is to end.
 */
StartupResult Start(FrameContext& context, StartupSteps& steps, const std::string& commandLine);

class ShutdownSteps {
  public:
    virtual ~ShutdownSteps() = default;

    virtual bool IsProjectBusy() = 0;
    virtual void HideProgress() = 0;
    virtual void ShowStatus(const std::string& text) = 0;
    virtual const MainWindowLayout& Layout() = 0;
    /** Path of the hosting profile's temporary file, or "". */
    virtual std::string HostingProfileTemporaryFile() = 0;
    /** Empties and removes them. */
    virtual void RemoveWorkingFolders() = 0;
    virtual void HideMainWindow() = 0;  ///< explorers and status controls first
    virtual int FormCount() = 0;
    virtual std::string FormName(int index) = 0;
    virtual void UnloadForm(int index) = 0;
    virtual void EndProcess() = 0;
};

/** From the main window's unload only. A step that fails is logged; the others still run. */
void Shutdown(FrameContext& context, ShutdownSteps& steps);

/** True when the page engine is there and new enough. */
bool IsBrowserAvailable(FrameContext& context);
/** The desktop's browser: default of the setting `IE Browser`. */
std::string GetBrowserPath(const FrameContext& context);
/**
 * The path with every name spelled as its folder lists it. The path as given when no file results.
 */
std::string ResolveLongPath(const FrameContext& context, const std::string& path);

}  // namespace pw
