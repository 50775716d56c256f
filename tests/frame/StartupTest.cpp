#include "frame/Startup.h"

#include "support/FakeMainWindowLayout.h"
#include "support/TestContext.h"

namespace pw {
namespace {

using test::FakeMainWindowLayout;
using test::TestContext;

/** Writes down each step; faults and answers are set from outside. */
class RecordingSteps : public StartupSteps {
  public:
    bool IsAnotherInstanceRunning() override { return anotherInstance; }
    void ShowSplash() override { Note("splash"); }
    void SetSplashTopmost(Topmost topmost) override {
        Note(topmost == Topmost::On ? "splash on top" : "splash not on top");
    }
    void UnloadSplash() override { Note("splash gone"); }
    void ShowCustomerInfo() override { Note("customer"); }
    bool CreateSupportObject(SupportObject which) override {
        Note("create " + std::to_string(int(which)));
        if (int(which) == throwing) throw Failure("no library");
        return int(which) != missing;
    }
    int InitializeSupportObject(SupportObject which, const std::string& accessCode, int major,
                                int minor) override {
        EXPECT_EQ(accessCode, "BQMAZXLKVD");
        EXPECT_EQ(major, ProgramVersion().major);
        EXPECT_EQ(minor, ProgramVersion().minor);
        return int(which) == incompatible ? 1 : 0;
    }
    void LoadHostingProfile(const std::string& file) override {
        Note("profile " + GetFileName(file));
    }
    MainWindowLayout& LoadMainWindow() override {
        Note("window");
        return window;
    }
    void ResetUI() override { Note("reset"); }
    void CreateWorkingFolders() override {
        Note("folders");
        if (foldersFail) throw Failure("disk full");
    }
    void SetUpColorPicker(const std::string& supportFolder, const std::string& helpFile) override {
        Note("picker " + GetFileName(supportFolder) + " " + GetFileName(helpFile));
    }
    void HideProgressPanel() override { Note("progress"); }
    void BuildToolbarsAndMenus() override { Note("menus"); }
    void BuildInsertMenus() override { Note("insert menus"); }
    void ShowMainWindow() override { Note("show"); }
    void EnableMainWindow() override { Note("enable"); }
    Recovery OfferRecovery() override {
        Note("recovery");
        projectOpen |= recovery == Recovery::ProjectOpened;
        return recovery;
    }
    bool IsProjectOpen() override { return projectOpen; }
    void ShowKindlerun() override { Note("kindlerun"); }
    void ShowTips() override { Note("tips"); }
    void ShowProjectOpen(int mode) override { Note("open dialog " + std::to_string(mode)); }
    void InitNewProject() override { Note("new"); }
    void RefreshProjectState() override { Note("refresh"); }
    void OpenProject(const std::string& path) override {
        Note("open " + GetFileName(path));
        projectOpen = true;
    }
    void OpenHTMLAsProject(const std::string& path) override {
        Note("import " + GetFileName(path));
        projectOpen = true;
    }

    std::string log;
    bool anotherInstance = false;
    int missing = -1, throwing = -1, incompatible = -1;
    bool foldersFail = false;
    bool projectOpen = false;
    Recovery recovery = Recovery::None;
    FakeMainWindowLayout window;

  private:
    void Note(const std::string& step) { log += (log.empty() ? "" : ", ") + step; }
};

constexpr const char* kUntilShown =
    "splash, create 0, create 1, create 2, create 3, window, reset, folders, "
    "picker support index.html, progress, menus, insert menus, splash on top, show, "
    "splash not on top, splash gone, recovery";

void MakeKnownUser(TestContext& test) {
    ASSERT_TRUE(SetRegText(*test.hive, "General", "First Name", "Ann"));
    ASSERT_TRUE(SetRegText(*test.hive, "General", "User E-mail", "ann@example.com"));
}

TEST(Startup, RunsItsStepsInOrder) {
    TestContext test;
    MakeKnownUser(test);
    RecordingSteps steps;
    EXPECT_EQ(Start(test.frame, steps, ""), StartupResult::Running);
    EXPECT_EQ(steps.log, kUntilShown + std::string(", kindlerun, enable, reset, refresh"));
}

TEST(Startup, AsksANewUserBeforeAnythingElse) {
    TestContext test;
    RecordingSteps steps;
    EXPECT_EQ(Start(test.frame, steps, ""), StartupResult::Running);
    EXPECT_EQ(steps.log.substr(0, 26), "splash, customer, create 0");
}

TEST(Startup, DecidesWhatTheUserSeesFirst) {
    struct Row {
        const char* name;
        const char* file;  // named on the command line
        bool kindlerun, tips;
        Recovery recovery;
        const char* seen;
    };
    for (const Row& row :
         {Row{"tips", "", false, true, Recovery::None,
              "tips, open dialog 3, enable, reset, refresh"},
          Row{"dialog", "", false, false, Recovery::None, "open dialog 3, enable, reset, refresh"},
          Row{"project", "Site.PWP", true, true, Recovery::None,
              "new, refresh, open Site.PWP, enable, reset"},
          Row{"page", "Page.HTML", true, true, Recovery::None,
              "refresh, import Page.HTML, enable, reset"},
          Row{"other file", "a.txt", true, true, Recovery::None, "enable, reset, refresh"},
          Row{"missing file", "-none.pwp", true, true, Recovery::None,
              "kindlerun, enable, reset, refresh"},
          Row{"quoted file", "\"Site.PWP\"", true, true, Recovery::None,
              "kindlerun, enable, reset, refresh"},
          Row{"recovered", "Site.PWP", true, true, Recovery::ProjectOpened, "enable, reset"}}) {
        SCOPED_TRACE(row.name);
        TestContext test;
        MakeKnownUser(test);
        for (const char* name : {"Site.PWP", "Page.HTML", "a.txt"})
            test.folder.Put(name, "x");
        ASSERT_TRUE(SetRegNumber(*test.hive, "Settings", "Run Once", 1));
        ASSERT_TRUE(SetRegNumber(*test.hive, "Settings", "Show Tips", row.tips));
        ASSERT_TRUE(SetRegNumber(*test.hive, "Other", "Show Kindlerun", row.kindlerun));
        RecordingSteps steps;
        steps.recovery = row.recovery;
        const std::string file = *row.file ? test.folder.Path(row.file) : "";
        EXPECT_EQ(Start(test.frame, steps, file), StartupResult::Running);
        EXPECT_EQ(steps.log, kUntilShown + std::string(", ") + row.seen);
    }
}

TEST(Startup, EndsWithAMessageWhenACheckFails) {
    struct Row {
        const char* message;
        Icon icon;
        std::function<void(RecordingSteps&)> fault;
        const char* lastStep;
    };
    for (const Row& row : {Row{"The application is already running.", Icon::Exclamation,
                               [](auto& s) { s.anotherInstance = true; }, ""},
                           Row{"Unable to load Project DLL.", Icon::Stop,
                               [](auto& s) { s.missing = 0; }, "create 0"},
                           Row{"WHP Support Object is not compatible with this application.",
                               Icon::Stop, [](auto& s) { s.incompatible = 1; }, "create 1"},
                           Row{"Unable to load HTML Color Picker DLL.", Icon::Stop,
                               [](auto& s) { s.throwing = 2; }, "create 2"},
                           Row{"FTP Object is not compatible with this application.", Icon::Stop,
                               [](auto& s) { s.incompatible = 3; }, "create 3"}}) {
        SCOPED_TRACE(row.message);
        TestContext test;
        MakeKnownUser(test);
        RecordingSteps steps;
        row.fault(steps);
        test.dialogs.ExpectMessage(Answer::Ok, row.message);
        EXPECT_EQ(Start(test.frame, steps, ""), StartupResult::Ended);
        const Message& message = test.dialogs.Messages().at(0);
        EXPECT_EQ(message.title, "Pagewick");
        EXPECT_EQ(message.icon, row.icon);
        const auto comma = steps.log.rfind(", ");
        EXPECT_EQ(comma == std::string::npos ? steps.log : steps.log.substr(comma + 2),
                  row.lastStep);
    }
}

TEST(Startup, RefusesAnEngineThatIsMissingOrOld) {
    for (const auto& [version, good] :
         std::vector<std::pair<std::string, bool>>{{"", false},
                                                   {"4.9", false},
                                                   {"5", true},
                                                   {"5.0.2", true},
                                                   {"102.0.5005.177", true},
                                                   {"x", false}}) {
        SCOPED_TRACE(version);
        TestContext test;
        const auto hive = MakeMemoryHive({version});
        FrameContext frame{{*test.files, *hive, test.clock, *test.system, test.loop, test.dialogs,
                            test.clipboard, test.launcher},
                           test.frame.places};
        EXPECT_EQ(IsBrowserAvailable(frame), good);
        if (good) continue;
        RecordingSteps steps;
        test.dialogs.ExpectMessage(
            Answer::Ok,
            "Pagewick requires Microsoft Internet Explorer 5.0 or higher, which can "
            "not be located.\n\nPlease install");
        EXPECT_EQ(Start(frame, steps, ""), StartupResult::Ended);
        EXPECT_EQ(steps.log, "");
    }
}

TEST(Startup, GoesOnWhenALaterStepFails) {
    TestContext test;
    MakeKnownUser(test);
    test.folder.Put("profile\\data\\whp\\G1.owh", "x");
    ASSERT_TRUE(SetRegText(*test.hive, "WHP", "Default GUID", "G1"));
    RecordingSteps steps;
    steps.foldersFail = true;
    EXPECT_EQ(Start(test.frame, steps, ""), StartupResult::Running);
    EXPECT_NE(steps.log.find("create 3, profile G1.owh, window"), std::string::npos);
    EXPECT_NE(steps.log.find("folders, picker"), std::string::npos);
    EXPECT_EQ(test.frame.errorLog.LastTag(), "SystemFunctions.Main.CreateWorkingFolders");
}

TEST(Startup, FindsBrowserAndSpelling) {
    TestContext test;
    const std::string browser = test.folder.Put("bin\\browser", "");
    for (const auto& [path, expected] : std::vector<std::pair<std::string, std::string>>{
             {browser, browser}, {"\\none", "\\none\\iexplore.exe"}}) {
        const auto hive = MakeMemoryHive({"5.0", path});
        const FrameContext frame{{*test.files, *hive, test.clock, *test.system, test.loop,
                                  test.dialogs, test.clipboard, test.launcher},
                                 test.frame.places};
        EXPECT_EQ(GetBrowserPath(frame), expected);
    }
    const std::string page = test.folder.Put("Long Folder\\Page.html", "x");
    EXPECT_EQ(ResolveLongPath(test.frame, test.folder.Path("long folder\\PAGE.HTML")), page);
    EXPECT_EQ(ResolveLongPath(test.frame, page), page);
    EXPECT_EQ(ResolveLongPath(test.frame, "\\none\\a.html"), "\\none\\a.html");
}

/** The way out, with what each step did written down. */
class RecordingEnd : public ShutdownSteps {
  public:
    bool IsProjectBusy() override { return busy-- > 0; }
    void HideProgress() override { log += "progress "; }
    void ShowStatus(const std::string& text) override { log += "'" + text + "' "; }
    const MainWindowLayout& Layout() override { return window; }
    std::string HostingProfileTemporaryFile() override { return temporaryFile; }
    void RemoveWorkingFolders() override {
        log += "folders ";
        throw Failure("disk error");
    }
    void HideMainWindow() override { log += "hide "; }
    int FormCount() override { return 3; }
    std::string FormName(int index) override { return index == 1 ? "frmMDIMain" : "frmDocument"; }
    void UnloadForm(int index) override { log += "unload" + std::to_string(index) + " "; }
    void EndProcess() override { log += "end"; }

    int busy = 2;
    std::string temporaryFile;
    std::string log;
    FakeMainWindowLayout window;
};

TEST(Shutdown, RunsEveryStepEvenIfOneFails) {
    TestContext test;
    RecordingEnd steps;
    steps.temporaryFile = test.folder.Put("profile.tmp", "x");
    steps.window.explorers = {209};
    Shutdown(test.frame, steps);
    EXPECT_EQ(steps.log, "progress 'Closing Pagewick...' folders hide unload2 unload0 end");
    EXPECT_LE(steps.busy, 0);
    EXPECT_FALSE(test.folder.Has("profile.tmp"));
    EXPECT_EQ(RegNumber(*test.hive, "Settings", "Explorers"), 1);
    EXPECT_EQ(test.frame.errorLog.LastTag(), "SystemFunctions.Shutdown.RemoveWorkingFolders");
}

TEST(Help, OpensATopicOrOffersTheInternet) {
    TestContext test;
    test.folder.Put("help\\index.html", "");
    test.folder.Put("help\\12.html", "");
    test.frame.helpFile = test.folder.Path("help\\index.html");
    for (const int topic : {0, 12, 13})
        ShowHelp(test.frame, topic);
    const auto& urls = test.launcher.urls;
    ASSERT_EQ(urls.size(), 3u);
    EXPECT_EQ(urls[0], "file://" + test.folder.Native("help/index.html"));
    EXPECT_EQ(urls[1], "file://" + test.folder.Native("help/12.html"));
    EXPECT_EQ(urls[2], urls[0]);

    test.frame.helpFile = test.folder.Path("none");
    test.dialogs.ExpectMessage(Answer::No, "The help file cannot be located or is out of date.");
    ShowHelp(test.frame, 0);
    EXPECT_EQ(urls.size(), 3u);
    test.dialogs.ExpectMessage(Answer::Yes);
    ShowHelp(test.frame, 0);
    EXPECT_EQ(urls.back().substr(0, 8), "https://");
}

}  // namespace
}  // namespace pw
