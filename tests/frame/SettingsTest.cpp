#include "frame/Settings.h"

#include <set>

#include "frame/MainWindowLayout.h"
#include "support/FakeMainWindowLayout.h"
#include "support/TestContext.h"

namespace pw {
namespace {

using test::FakeMainWindowLayout;
using test::TestContext;

TEST(Settings, HaveDefaultsInAnEmptyHive) {
    TestContext test;
    const Settings& settings = test.frame.settings;
    const Places& places = test.frame.places;
    EXPECT_FALSE(settings.RunOnce);
    EXPECT_TRUE(settings.ShowTips && settings.ShowKindlerun && settings.AutoSave);
    EXPECT_EQ(settings.ProjectsFolder, places.dataFolder + "\\projects");
    EXPECT_EQ(settings.ImageLibraryFolder, places.dataFolder + "\\media\\clipart");
    EXPECT_EQ(settings.ImageFolder, places.documentsFolder);
    EXPECT_EQ(settings.AutoSaveFrequency, 10);
    EXPECT_EQ(settings.DefaultFontSize, 10);
    EXPECT_EQ(settings.DefaultFontColor, "#000000");
    EXPECT_EQ(settings.ConnectionSpeed, 1);
    EXPECT_EQ(settings.DownloadTime, 60);
    EXPECT_EQ(settings.GridHorizontal, 50);
    EXPECT_EQ(settings.HTMLTagColor, 0x800080u);
    EXPECT_EQ(settings.HTMLBackgroundColor, 0xFFFFFFu);
    EXPECT_EQ(settings.WHOISPort, 43);
    EXPECT_EQ(settings.Flags, 255);
    EXPECT_EQ(settings.UserName(), "");
}

TEST(Settings, CheckWhatIsStored) {
    struct Row {
        const char* section;
        const char* name;
        std::int32_t stored;
        std::int32_t Settings::*property;
        std::int32_t expected;
    };
    for (const Row& row :
         {Row{"General", "AutoSave Frequency", 0, &Settings::AutoSaveFrequency, 10},
          Row{"General", "AutoSave Frequency", 1, &Settings::AutoSaveFrequency, 1},
          Row{"Project", "Connection Speed", 12, &Settings::ConnectionSpeed, 8},
          Row{"Project", "Connection Speed", -3, &Settings::ConnectionSpeed, 1},
          Row{"Project", "Download Time", 0, &Settings::DownloadTime, 60},
          Row{"Project", "Grid Vertical", 7, &Settings::GridVertical, 7},
          Row{"Other", "Skill Level", 3, &Settings::SkillLevel, 0},
          Row{"Other", "Skill Level", -1, &Settings::SkillLevel, 0},
          Row{"Other", "Skill Level", 2, &Settings::SkillLevel, 2},
          Row{"WHOIS", "Port", 99, &Settings::WHOISPort, 43},
          Row{"WHP", "Support", -5, &Settings::WHPSupport, -5}}) {
        SCOPED_TRACE(std::string(row.name) + "=" + std::to_string(row.stored));
        TestContext test;
        ASSERT_TRUE(SetRegNumber(*test.hive, row.section, row.name, row.stored));
        ReadSettings(test.frame);
        EXPECT_EQ(test.frame.settings.*row.property, row.expected);
    }
}

TEST(Settings, TakeTheStartUpSwitchesOnlyFromAnInstaller) {
    TestContext test;
    SettingsHive& hive = *test.hive;
    ASSERT_TRUE(SetRegNumber(hive, "Settings", "Show Tips", 0));
    ASSERT_TRUE(SetRegNumber(hive, "Settings", "Show Kindlerun", 1));
    ASSERT_TRUE(SetRegNumber(hive, "Other", "Show Kindlerun", 0));
    ASSERT_TRUE(SetRegNumber(hive, "General", "AutoSave", 0));
    ReadSettings(test.frame);
    EXPECT_TRUE(test.frame.settings.ShowTips && test.frame.settings.ShowKindlerun &&
                test.frame.settings.AutoSave);
    ASSERT_TRUE(SetRegNumber(hive, "Settings", "Run Once", 0xFFFFFFFF));
    ReadSettings(test.frame);
    EXPECT_FALSE(test.frame.settings.ShowTips || test.frame.settings.ShowKindlerun ||
                 test.frame.settings.AutoSave);
}

TEST(Settings, TreatAWrongTypeAsMissing) {
    TestContext test;
    ASSERT_TRUE(SetRegText(*test.hive, "General", "AutoSave Frequency", "5"));
    ASSERT_TRUE(SetRegNumber(*test.hive, "General", "First Name", 5));
    ASSERT_TRUE(SetRegText(*test.hive, "General", "Last Name", " Lee "));
    ASSERT_TRUE(SetRegText(*test.hive, "WHOIS", "Host", "whois.example.com"));
    ReadSettings(test.frame);
    EXPECT_EQ(test.frame.settings.AutoSaveFrequency, 10);
    EXPECT_EQ(test.frame.settings.Firstname, "");
    EXPECT_EQ(test.frame.settings.UserName(), "Lee");
    EXPECT_NE(test.frame.settings.WHOISHost, "whois.example.com") << "a host without a port";
    ASSERT_TRUE(SetRegNumber(*test.hive, "WHOIS", "Port", 4343));
    ReadSettings(test.frame);
    EXPECT_EQ(test.frame.settings.WHOISHost, "whois.example.com");
    EXPECT_EQ(test.frame.settings.WHOISPort, 4343);
}

TEST(Settings, SaveTheSession) {
    TestContext test;
    FakeMainWindowLayout window;
    window.geometry = {-30, 45, 9000, 6000};
    window.explorers = {209, 211};
    window.toolbars = {"Format", "Table"};
    test.frame.settings.ShowTips = false;
    test.frame.settings.ImageFolder = "\\pictures";
    ASSERT_TRUE(SetRegNumber(*test.hive, "Settings", "Run Once", 1));
    SaveSessionSettings(test.frame, window);
    const auto stored = [&](const char* name) { return RegNumber(*test.hive, "Settings", name); };
    EXPECT_EQ(stored("Run Once"), 0);
    EXPECT_EQ(stored("Show Tips"), 0);
    EXPECT_EQ(stored("Show Kindlerun"), 1);
    EXPECT_EQ(RegText(*test.hive, "Settings", "Image Folder"), "\\pictures");
    EXPECT_EQ(stored("App Left"), 0);
    EXPECT_EQ(stored("App Top"), 45);
    EXPECT_EQ(stored("App Width"), 9000);
    EXPECT_EQ(stored("Explorers"), 5);
    EXPECT_EQ(stored("Toolbars"), 1 | 64);

    window.state = WindowState::Maximised;
    window.geometry.width = 1;
    window.toolbars.clear();
    test.frame.settings.SkillLevel = 2;
    SaveSessionSettings(test.frame, window);
    EXPECT_EQ(stored("App Width"), 9000) << "a maximised window keeps the last normal size";
    EXPECT_EQ(stored("Toolbars"), 1 | 64) << "an advanced user's toolbars are fixed";
    EXPECT_EQ(test.frame.errorLog.Count(), 0);
}

TEST(Settings, RestoreTheWindowIfItFitsTheScreen) {
    struct Row {
        const char* name;
        TwipRect stored;
        bool fits;
    };
    for (const Row& row :
         {Row{"fits", {15, 15, 9000, 6000}, true}, Row{"left of 0", {0, 15, 9000, 6000}, false},
          Row{"beyond the right", {18200, 15, 9000, 6000}, false},
          Row{"too narrow", {15, 15, 2400, 6000}, false},
          Row{"as wide as the screen", {15, 15, 19200, 6000}, false},
          Row{"too low", {15, 15, 9000, 360}, false},
          Row{"below the bottom", {15, 14400 - 1000, 9000, 6000}, false},
          Row{"never stored", {0, 0, 0, 0}, false}}) {
        SCOPED_TRACE(row.name);
        TestContext test;
        FakeMainWindowLayout before, after;
        before.geometry = row.stored;
        SaveSessionSettings(test.frame, before);
        RestoreWindowState(test.frame, after, ApplyGeometry::Yes);
        EXPECT_EQ(after.state, row.fits ? WindowState::Normal : WindowState::Maximised);
        if (row.fits) {
            EXPECT_EQ(after.geometry.width, row.stored.width);
        }
    }
}

TEST(Settings, RestoreToolbarsByLevelAndExplorers) {
    TestContext test;
    FakeMainWindowLayout stored;
    stored.toolbars = {"Insert", "Layering"};
    stored.explorers = {210};
    FakeMainWindowLayout fresh;
    fresh.explorers = {209};
    RestoreWindowState(test.frame, fresh, ApplyGeometry::No);
    EXPECT_EQ(fresh.state, WindowState::Normal) << "size and position are left alone";
    EXPECT_EQ(fresh.standardLevel, 0) << "nothing stored yet";
    EXPECT_EQ(fresh.explorers, std::set<int>{209}) << "a new user's window is not emptied";

    SaveSessionSettings(test.frame, stored);
    for (int level = 0; level <= 2; ++level) {
        SCOPED_TRACE(level);
        FakeMainWindowLayout window;
        window.toolbars = {"Table"};
        test.frame.settings.SkillLevel = level;
        RestoreWindowState(test.frame, window, ApplyGeometry::No);
        EXPECT_EQ(window.standardLevel, level == 0 ? -1 : level);
        if (level == 0) {
            EXPECT_EQ(window.toolbars, stored.toolbars);
        }
        EXPECT_EQ(window.explorers, stored.explorers);
    }
}

}  // namespace
}  // namespace pw
