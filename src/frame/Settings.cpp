#include "frame/Settings.h"

#include <iterator>

#include "frame/Context.h"
#include "frame/FunctionLibrary.h"
#include "frame/MainWindowLayout.h"
#include "frame/Startup.h"
#include "platform/Text.h"

namespace pw {

namespace {

/** Reads the values of one key below the program's own. */
class Section {
  public:
    Section(const SettingsHive& hive, const char* name) : hive_(hive), name_(name) {}

    std::string Text(const char* value) const { return RegText(hive_, name_, value); }
    std::string Text(const char* value, const std::string& whenEmpty) const {
        const std::string text = Text(value);
        return text.empty() ? whenEmpty : text;
    }
    std::int32_t Number(const char* value) const { return RegNumber(hive_, name_, value); }
    std::int32_t AtLeast(std::int32_t least, const char* value, std::int32_t otherwise) const {
        const std::int32_t number = Number(value);
        return number < least ? otherwise : number;
    }
    bool Flag(const char* value) const { return Number(value) != 0; }
    bool Has(const char* value) const {
        const std::string key = std::string(kSettingsKey) + "\\" + name_;
        return !std::holds_alternative<std::monostate>(hive_.Get(kUserRoot, key, value));
    }

  private:
    const SettingsHive& hive_;
    const char* name_;
};

std::string UserFolder(const FrameContext& context, const char* name) {
    return BuildPath(context.places.dataFolder, name);
}

void ReadGeneral(FrameContext& context, const Section& general) {
    Settings& settings = context.settings;
    settings.Firstname = general.Text("First Name");
    settings.Lastname = general.Text("Last Name");
    settings.UserCompany = general.Text("User Company");
    settings.UserEmail = general.Text("User E-mail");
    settings.ProjectsFolder = general.Text("Projects Folder", UserFolder(context, "projects"));
    settings.TemplatesFolder = general.Text("Templates Folder", UserFolder(context, "templates"));
    settings.WHPFolder = general.Text("WHP Folder", UserFolder(context, "whp"));
    settings.ThemesFolder = general.Text("Themes Folder", UserFolder(context, "themes"));
    settings.ImageLibraryFolder =
        general.Text("Image Library Folder", UserFolder(context, "media\\clipart"));
    settings.AutoSave = settings.RunOnce ? general.Flag("AutoSave") : true;
    settings.AutoSaveFrequency = general.AtLeast(1, "AutoSave Frequency", 10);
    context.helpFile =
        general.Text("Help File", BuildPath(context.places.programFolder, "help\\index.html"));
}

void ReadProject(Settings& settings, const Section& project) {
    settings.DefaultFont = project.Text("Default Font");
    settings.DefaultFontSize = 10;
    const std::int32_t size = project.Number("Default Font Size");
    if (size > 0 && size <= INT16_MAX) settings.DefaultFontSize = std::int16_t(size);
    settings.DefaultFontColor = project.Text("Default Font Color", "#000000");
    settings.ConnectionSpeed = std::clamp(project.Number("Connection Speed"), 1, 8);
    settings.DownloadTime = project.AtLeast(1, "Download Time", 60);
    settings.ShowCommentsInExplorer = project.Flag("Show Comments In Explorer");
    settings.KeepBookmarks = project.Flag("Keep Bookmarks");
    settings.GridHorizontal = project.AtLeast(1, "Grid Horizontal", 50);
    settings.GridVertical = project.AtLeast(1, "Grid Vertical", 50);
}

void ReadOther(FrameContext& context, const Section& other) {
    Settings& settings = context.settings;
    settings.HTMLTagColor = std::uint32_t(other.AtLeast(1, "HTML Tag Color", 0x800080));
    settings.HTMLPropertyColor = std::uint32_t(other.AtLeast(1, "HTML Property Color", 0x0000FF));
    settings.HTMLValueColor = std::uint32_t(other.AtLeast(1, "HTML Value Color", 0xFF0000));
    settings.HTMLBackgroundColor =
        std::uint32_t(other.AtLeast(1, "HTML Background Color", 0xFFFFFF));
    settings.IEFilename = other.Text("IE Browser");
    if (settings.IEFilename.empty()) settings.IEFilename = GetBrowserPath(context);
    settings.NNFilename = other.Text("NN Browser");
    const std::int32_t level = other.Number("Skill Level");
    settings.SkillLevel = level < 0 || level > 2 ? 0 : level;
    settings.SendErrorLog = other.Flag("Send Error log");
}

void ReadServices(Settings& settings, const Section& whp, const Section& whois) {
    settings.DefaultWHPGUID = whp.Text("Default GUID");
    settings.DefaultWHPName = whp.Text("Default Name");
    settings.WHPSupport = whp.Number("Support");
    const std::string host = whois.Text("Host");
    const std::int32_t port = whois.Number("Port");
    if (!host.empty() && port != 0) {
        settings.WHOISHost = host;
        settings.WHOISPort = port;
    }
    settings.WHOISDomains = whois.Text("Domains");
    settings.WHOISAvailable = whois.Text("Available");
}

constexpr int kToolbarCount = int(std::size(kToolbarNames));
constexpr int kExpert = 2;

bool FitsScreen(const TwipRect& window, const TwipRect& screen) {
    return window.left >= 1 && window.left < screen.width - 1000 && window.width >= 2401 &&
           window.width < screen.width && window.height > 360 && window.height < screen.height &&
           window.top >= 1 && window.top < screen.height - 1000;
}

void RestoreToolbars(const Section& stored, int skillLevel, MainWindowLayout& window) {
    const std::int32_t bits = stored.Number("Toolbars");
    if (skillLevel != 0 || bits == 0) {
        window.ShowStandardToolbars(skillLevel);
        return;
    }
    for (int i = 0; i < kToolbarCount; ++i)
        window.ShowToolbar(kToolbarNames[i],
                           bits & (1 << i) ? Visibility::Shown : Visibility::Hidden);
}

}  // namespace

std::string Settings::UserName() const {
    return Trim(Trim(Firstname) + " " + Trim(Lastname));
}

void ReadSettings(FrameContext& context) {
    const Section root(context.hive, ""), stored(context.hive, "Settings");
    const Section other(context.hive, "Other");
    Settings& settings = context.settings;
    settings.CampaignCode = root.Text("Campaign Code");
    settings.ClientType = root.Number("Type");
    settings.NewestVersion = root.Text("Newest Version");
    // COMPAT: `Run Once` is written back as 0, so the three switches that hang on it come up true
    // unless an installer has set it.
    settings.RunOnce = stored.Flag("Run Once");
    settings.ShowTips = settings.RunOnce ? stored.Flag("Show Tips") : true;
    settings.ShowKindlerun = settings.RunOnce ? other.Flag("Show Kindlerun") : true;
    settings.ImageFolder = stored.Text("Image Folder", context.places.documentsFolder);
    settings.HTMLPageFolder = stored.Text("HTML Page Folder", context.places.documentsFolder);
    ReadGeneral(context, Section(context.hive, "General"));
    ReadProject(settings, Section(context.hive, "Project"));
    ReadOther(context, other);
    ReadServices(settings, Section(context.hive, "WHP"), Section(context.hive, "WHOIS"));
    settings.Flags = 255;
}

void SaveSessionSettings(FrameContext& context, const MainWindowLayout& window) {
    Trap(context.errorLog, "SystemFunctions.", "SaveSessionSettings", [&] {
        const Settings& settings = context.settings;
        bool kept = true;
        const auto number = [&](const char* name, std::int32_t value) {
            kept &= SetRegNumber(context.hive, "Settings", name, value);
        };
        const auto text = [&](const char* name, const std::string& value) {
            kept &= SetRegText(context.hive, "Settings", name, value);
        };
        const HiveBatch batch(context.hive);
        kept &= context.hive.CreateKey(kUserRoot, std::string(kSettingsKey) + "\\Settings");
        number("Show Tips", settings.ShowTips);
        // COMPAT: nothing reads this copy; the one that counts lies in `Other`.
        number("Show Kindlerun", settings.ShowKindlerun);
        text("Image Folder", settings.ImageFolder);
        text("HTML Page Folder", settings.HTMLPageFolder);
        number("Run Once", 0);
        if (window.State() == WindowState::Normal) {
            const TwipRect at = window.Geometry();
            number("App Width", at.width);
            number("App Height", at.height);
            number("App Left", std::max(at.left, 0));
            number("App Top", std::max(at.top, 0));
        }
        for (int i = 0; i < int(std::size(kSplitterValues)); ++i)
            number(kSplitterValues[i], window.SplitterSize(i));
        std::int32_t explorers = 0;
        for (int tool = kFirstExplorerTool; tool <= kLastExplorerTool; ++tool)
            explorers |= int(window.IsExplorerShown(tool)) << (tool - kFirstExplorerTool);
        number("Explorers", explorers);
        if (settings.SkillLevel != kExpert) {
            std::int32_t toolbars = 0;
            for (int i = 0; i < kToolbarCount; ++i)
                toolbars |= int(window.IsToolbarVisible(kToolbarNames[i])) << i;
            number("Toolbars", toolbars);
        }
        if (!kept) throw Failure("Some settings could not be stored");
    });
}

void RestoreWindowState(FrameContext& context, MainWindowLayout& window, ApplyGeometry geometry) {
    Trap(context.errorLog, "SystemFunctions.", "RestoreWindowState", [&] {
        const Section stored(context.hive, "Settings");
        if (geometry == ApplyGeometry::Yes) {
            const TwipRect at{stored.Number("App Left"), stored.Number("App Top"),
                              stored.Number("App Width"), stored.Number("App Height")};
            if (FitsScreen(at, window.Screen()))
                window.SetGeometry(at);
            else
                window.Maximise();
            for (int i = 0; i < int(std::size(kSplitterValues)); ++i)
                window.SetSplitterSize(i, stored.Number(kSplitterValues[i]));
        }
        RestoreToolbars(stored, context.settings.SkillLevel, window);
        // Before the first session the window keeps the explorers that it came with.
        if (!stored.Has("Explorers")) return;
        const std::int32_t explorers = stored.Number("Explorers");
        for (int tool = kFirstExplorerTool; tool <= kLastExplorerTool; ++tool) {
            const bool shown = explorers & (1 << (tool - kFirstExplorerTool));
            window.ShowExplorer(tool, shown ? Visibility::Shown : Visibility::Hidden);
        }
    });
}

}  // namespace pw
