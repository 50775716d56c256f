#pragma once
// The settings of the program: one plain object that is filled from the hive at start-up and
// written back by the routines named at the properties' keys. Paths are written with backslashes.
#include <cstdint>
#include <string>

namespace pw {

struct FrameContext;
class MainWindowLayout;

/** The file of the hive in the folder of settings. */
constexpr const char* kSettingsFile = "settings.hive";

constexpr const char* kSettingsKey = "Software\\Ombrino\\Pagewick\\2.0";

/** Labels for `Settings::ConnectionSpeed`, which counts from 1. */
constexpr const char* kConnectionSpeeds[] = {"14.4K Modem",
                                             "28.8K Modem",
                                             "33.6K Modem",
                                             "56K Modem",
                                             "56K Single ISDN",
                                             "112K Dual ISDN",
                                             "256K DSL/Cable",
                                             "300K DSL/Cable",
                                             "512K DSL/Cable",
                                             "T1",
                                             "T3",
                                             "10M LAN"};

/** The toolbars in the order of their bits in the stored layout. */
constexpr const char* kToolbarNames[] = {"Format",   "Forms",    "Insert", "Insert Advanced",
                                         "Layering", "Standard", "Table"};

class Settings {
  public:
    std::string CampaignCode;
    std::int32_t ClientType = 0;
    std::string NewestVersion;  ///< of the program, as far as it has been told; "" is unknown

    bool RunOnce = false;
    bool ShowTips = false;
    bool ShowKindlerun = false;
    std::string ImageFolder;
    std::string HTMLPageFolder;

    std::string Firstname;
    std::string Lastname;
    std::string UserCompany;
    std::string UserEmail;
    std::string ProjectsFolder;
    std::string TemplatesFolder;
    std::string WHPFolder;
    std::string ThemesFolder;
    std::string ImageLibraryFolder;
    bool AutoSave = false;
    std::int32_t AutoSaveFrequency = 0;  ///< minutes

    std::string DefaultFont;
    std::int16_t DefaultFontSize = 0;
    std::string DefaultFontColor;  ///< "#rrggbb"
    std::int32_t ConnectionSpeed = 0;
    std::int32_t DownloadTime = 0;  ///< seconds
    bool ShowCommentsInExplorer = false;
    bool KeepBookmarks = false;       ///< of links to a page that gets another name
    std::int32_t GridHorizontal = 0;  ///< pixels
    std::int32_t GridVertical = 0;

    std::uint32_t HTMLTagColor = 0;  ///< 0x00BBGGRR, as the three below
    std::uint32_t HTMLPropertyColor = 0;
    std::uint32_t HTMLValueColor = 0;
    std::uint32_t HTMLBackgroundColor = 0;
    std::string IEFilename;
    std::string NNFilename;
    std::int32_t SkillLevel = 0;  ///< 0 beginner, 1 intermediate, 2 expert
    bool SendErrorLog = false;

    std::string DefaultWHPGUID;
    std::string DefaultWHPName;
    std::int32_t WHPSupport = 0;

    std::string WHOISHost = "whois.iana.org";
    std::int32_t WHOISPort = 43;
    std::string WHOISDomains;
    std::string WHOISAvailable;

    std::int32_t Flags = 0;

    // Never stored.
    std::string ProjectFilename;  ///< "" for a project that was never saved
    std::string HTMLTemplateFilename;
    std::string WorkingFolder;
    std::string PreviewFolder;
    std::string MediaFolder;
    std::string ThemePreviewFolder;
    bool AutoBuild = false;

    std::string UserName() const;
};

/** Fills `context.settings` and `context.helpFile` from the hive, with defaults and range checks.
 */
void ReadSettings(FrameContext& context);
/** Writes what a session changes, and the layout of the main window. */
void SaveSessionSettings(FrameContext& context, const MainWindowLayout& window);

enum class ApplyGeometry { No, Yes };
/** Gives the window its stored size, toolbars and explorers. */
void RestoreWindowState(FrameContext& context, MainWindowLayout& window, ApplyGeometry geometry);

}  // namespace pw
