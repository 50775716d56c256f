#include "frame/Startup.h"

#include "frame/Context.h"
#include "frame/FunctionLibrary.h"
#include "platform/Text.h"

namespace pw {

namespace {

struct SupportMessages {
    SupportObject which;
    const char* notLoaded;
    const char* notCompatible;
};
constexpr SupportMessages kSupportObjects[] = {
    {SupportObject::Project, "Unable to load Project DLL.",
     "Project Support Object is not compatible with this application."},
    {SupportObject::HostingProvider, "Unable to load WHP DLL.",
     "WHP Support Object is not compatible with this application."},
    {SupportObject::ColorPicker, "Unable to load HTML Color Picker DLL.",
     "Color Support Object is not compatible with this application."},
    {SupportObject::FileTransfer, "Unable to load FTP DLL.",
     "FTP Object is not compatible with this application."},
};

/** One start of the program. */
class Startup {
  public:
    Startup(FrameContext& context, StartupSteps& steps) : context_(context), steps_(steps) {}

    StartupResult Run(const std::string& commandLine) {
        context_.brand.SetBrandFile(BuildPath(context_.places.programFolder, "cobrand.ocb"));
        if (!PassesChecks()) return StartupResult::Ended;
        ReadSettings(context_);
        steps_.ShowSplash();
        if (context_.settings.UserEmail.empty() || context_.settings.UserName().empty())
            steps_.ShowCustomerInfo();
        if (!CreateSupportObjects()) return StartupResult::Ended;

        // From here on a step that fails is logged, and the start goes on without it.
        Step("LoadHostingProfile", [&] { LoadDefaultHostingProfile(); });
        BuildMainWindow();
        Step("FirstDialog", [&] { ShowFirst(commandLine); });
        Step("EnableMainWindow", [&] { steps_.EnableMainWindow(); });
        Step("ResetUI", [&] { steps_.ResetUI(); });
        if (!steps_.IsProjectOpen())
            Step("RefreshProjectState", [&] { steps_.RefreshProjectState(); });
        return StartupResult::Running;
    }

  private:
    template <typename F>
    void Step(const char* name, F body) {
        Trap(context_.errorLog, "SystemFunctions.", std::string("Main.") + name, body);
    }

    bool Refuse(const std::string& text, Icon icon) {
        context_.dialogs.MsgBox({text, context_.brand.FormCaption(), icon});
        return false;
    }

    bool PassesChecks() {
        if (steps_.IsAnotherInstanceRunning())
            return Refuse("The application is already running.", Icon::Exclamation);
        if (!IsBrowserAvailable(context_)) {
            return Refuse(context_.brand.FormCaption() +
                              " requires Microsoft Internet Explorer 5.0 or higher, which can not "
                              "be located.\n\n"
                              "Please install Microsoft Internet Explorer 5.0 or higher and try "
                              "again.",
                          Icon::Exclamation);
        }
        return true;
    }

    bool CreateSupportObjects() {
        const Version& version = context_.version;
        for (const SupportMessages& object : kSupportObjects) {
            const bool made = Trap(context_.errorLog, "SystemFunctions.", "Main", false,
                                   [&] { return steps_.CreateSupportObject(object.which); });
            if (!made) return Refuse(object.notLoaded, Icon::Stop);
            const int result = Trap(context_.errorLog, "SystemFunctions.", "Main", 1, [&] {
                return steps_.InitializeSupportObject(object.which, kAccessCode, version.major,
                                                      version.minor);
            });
            if (result >= 1) return Refuse(object.notCompatible, Icon::Stop);
        }
        return true;
    }

    void LoadDefaultHostingProfile() {
        const Settings& settings = context_.settings;
        if (settings.DefaultWHPGUID.empty()) return;
        const auto file = BuildPath(settings.WHPFolder, settings.DefaultWHPGUID + ".owh");
        if (FileExists(context_.files, file)) steps_.LoadHostingProfile(file);
    }

    void BuildMainWindow() {
        MainWindowLayout& window = steps_.LoadMainWindow();
        RestoreWindowState(context_, window, ApplyGeometry::Yes);
        Step("ResetUI", [&] { steps_.ResetUI(); });
        Step("CreateWorkingFolders", [&] { steps_.CreateWorkingFolders(); });
        Step("SetUpColorPicker", [&] {
            steps_.SetUpColorPicker(BuildPath(context_.places.programFolder, "support"),
                                    context_.helpFile);
        });
        Step("HideProgressPanel", [&] { steps_.HideProgressPanel(); });
        Step("BuildToolbarsAndMenus", [&] { steps_.BuildToolbarsAndMenus(); });
        Step("BuildInsertMenus", [&] { steps_.BuildInsertMenus(); });
        // The splash stays in front while the main window comes up.
        steps_.SetSplashTopmost(Topmost::On);
        steps_.ShowMainWindow();
        steps_.SetSplashTopmost(Topmost::Off);
        steps_.UnloadSplash();
    }

    void ShowFirst(const std::string& commandLine) {
        // What a crash has left comes before anything that could take its place.
        if (steps_.OfferRecovery() == Recovery::ProjectOpened) return;
        if (FileExists(context_.files, commandLine))
            OpenFromCommandLine(ResolveLongPath(context_, commandLine));
        else
            ShowFirstDialog();
    }

    void ShowFirstDialog() {
        if (context_.settings.ShowKindlerun) {
            steps_.ShowKindlerun();
            return;
        }
        if (steps_.IsProjectOpen()) return;
        if (context_.settings.ShowTips) steps_.ShowTips();
        constexpr int atStartup = 3;
        steps_.ShowProjectOpen(atStartup);
    }

    void OpenFromCommandLine(const std::string& path) {
        const std::string extension = ToLower(GetExtension(path));
        if (extension == "pwp") {
            steps_.InitNewProject();
            steps_.RefreshProjectState();
            steps_.OpenProject(path);
        } else if (extension == "htm" || extension == "html") {
            steps_.RefreshProjectState();
            steps_.OpenHTMLAsProject(path);
        }
    }

    FrameContext& context_;
    StartupSteps& steps_;
};

}  // namespace

StartupResult Start(FrameContext& context, StartupSteps& steps, const std::string& commandLine) {
    return Startup(context, steps).Run(commandLine);
}

void Shutdown(FrameContext& context, ShutdownSteps& steps) {
    const auto step = [&context](const char* name, const auto& body) {
        Trap(context.errorLog, "SystemFunctions.", std::string("Shutdown.") + name, body);
    };
    step("Wait", [&] { context.loop.WaitUntil([&] { return !steps.IsProjectBusy(); }); });
    step("ShowStatus", [&] {
        steps.HideProgress();
        steps.ShowStatus("Closing " + context.brand.FormCaption() + "...");
    });
    step("SaveSessionSettings", [&] { SaveSessionSettings(context, steps.Layout()); });
    step("DeleteTemporaryFile", [&] {
        const std::string file = steps.HostingProfileTemporaryFile();
        if (!file.empty()) DeleteFile(context.files, file);
    });
    step("RemoveWorkingFolders", [&] { steps.RemoveWorkingFolders(); });
    step("HideMainWindow", [&] { steps.HideMainWindow(); });
    step("ProcessEvents", [&] { context.loop.ProcessEvents(); });
    step("UnloadForms", [&] {
        for (int index = steps.FormCount() - 1; index >= 0; --index) {
            if (steps.FormName(index) != "frmMDIMain") steps.UnloadForm(index);
        }
    });
    steps.EndProcess();
}

bool IsBrowserAvailable(FrameContext& context) {
    return Trap(context.errorLog, "SystemFunctions.", "IsBrowserAvailable", false, [&] {
        const HiveValue value = RegGetValue(context.hive, kMachineRoot,
                                            "Software\\Microsoft\\Internet Explorer", "Version");
        const auto* version = std::get_if<std::string>(&value);
        if (!version) return false;
        const auto parts = Split(*version, '.');
        const double minor = parts.size() > 1 ? Val(parts[1]) : 0;
        return Val(parts[0]) >= 5 && minor >= 0;
    });
}

std::string GetBrowserPath(const FrameContext& context) {
    const HiveValue value =
        RegGetValue(context.hive, kMachineRoot, "Software\\Microsoft\\IE4\\Setup", "Path");
    const auto* path = std::get_if<std::string>(&value);
    if (!path || path->empty()) return "";
    // The table names the desktop's browser itself, or the folder that holds one.
    return FileExists(context.files, *path) ? *path : BuildPath(*path, "iexplore.exe");
}

std::string ResolveLongPath(const FrameContext& context, const std::string& path) {
    std::string rebuilt = GetDriveRoot(path);
    for (const std::string& name : Split(std::string_view(path).substr(rebuilt.size()), '\\')) {
        if (name.empty()) continue;
        std::vector<FolderEntry> entries;
        std::string spelled = name;
        // A folder that may be passed through but not listed keeps the name as given.
        if (context.files.List(rebuilt, entries) == FileError::None) {
            const auto is = [&](const FolderEntry& entry) { return entry.name == name; };
            if (std::none_of(entries.begin(), entries.end(), is)) {
                for (const FolderEntry& entry : entries) {
                    if (EqualsNoCase(entry.name, name)) spelled = entry.name;
                }
            }
        }
        rebuilt = BuildPath(rebuilt, spelled);
    }
    return FileExists(context.files, rebuilt) ? rebuilt : path;
}

}  // namespace pw
