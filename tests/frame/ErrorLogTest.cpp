#include "frame/ErrorLog.h"

#include "support/TestContext.h"

namespace pw {
namespace {

using test::TestContext;

std::string LogOf(const TestContext& test) {
    return ReadTextFile(*test.files, BuildPath(test.frame.settings.ProjectsFolder, "error.log"));
}

TEST(ErrorLog, WritesTheWholeRecord) {
    TestContext test;
    test.frame.settings.CampaignCode = "C7";
    test.frame.settings.UserCompany = "Ann & Co";
    test.frame.settings.UserEmail = "ann@example.com";
    test.frame.errorLog.LogError("while saving", Failure(53, "File not found"), "Module.", "Proc");
    const std::string log = LogOf(test);
    const std::string start =
        "[ERROR INFO]\r\nDate=11/22/2026 9:30:00 AM\r\nError=53 File not found\r\n"
        "Procedure=Module.Proc\r\nCustom Error=while saving\r\n[APP INFO]\r\nVersion=" +
        GetVersionString() +
        "\r\nCampaign Code=C7\r\nCompany=Ann & Co\r\nE-mail=ann@example.com\r\n[SYSTEM INFO]\r\n"
        "Computer=";
    EXPECT_EQ(log.substr(0, start.size()), start) << "and no author before there is a project";
    EXPECT_NE(log.find("\r\nNumber of processors="), log.npos);

    test.frame.errorLog.projectAuthor = [] { return std::optional<std::string>("Ann\r\nError=9"); };
    test.frame.errorLog.LogError("", 9, "M.", "Q");
    const std::string both = LogOf(test);
    EXPECT_EQ(both.substr(0, log.size()), log) << "records are appended";
    EXPECT_NE(both.find("\r\nAuthor Name=Ann  Error=9\r\n[SYSTEM INFO]"), both.npos)
        << "a value cannot forge a line";
}

TEST(ErrorLog, HasAPlaceBeforeTheProjectsFolder) {
    TestContext test;
    test.frame.settings.ProjectsFolder = test.folder.Path("none");
    test.frame.errorLog.LogError("", 1, "A.", "B");
    EXPECT_FALSE(test.folder.Has("none"));
    const std::string early = BuildPath(test.frame.places.dataFolder, "error.log");
    EXPECT_EQ(test.frame.errorLog.Path(), early);
    EXPECT_NE(ReadTextFile(*test.files, early).find("Procedure=A.B"), std::string::npos);
}

TEST(ErrorLog, IsQuietWhenItCannotWrite) {
    TestContext test;
    test.frame.settings.ProjectsFolder = test.folder.Path("none");
    test.frame.places.dataFolder = test.folder.Path("nowhere");
    test.frame.errorLog.LogError("", 1, "A.", "B");
    EXPECT_FALSE(test.folder.Has("nowhere"));
    test.frame.settings.ProjectsFolder = test.folder.Path();
    test.frame.errorLog.projectAuthor = []() -> std::optional<std::string> { throw 1; };
    test.frame.errorLog.LogError("", 1, "A.", "C");
    EXPECT_EQ(test.frame.errorLog.LastTag(), "A.C");
}

TEST(ErrorLog, TrapReturnsTheFailureValueAndLogs) {
    TestContext test;
    ErrorLog& log = test.frame.errorLog;
    EXPECT_EQ(Trap(log, "M.", "Fine", -1, [] { return 5; }), 5);
    EXPECT_EQ(log.Count(), 0);
    EXPECT_EQ(Trap(log, "M.", "Named", -1, []() -> int { throw Failure(7, "x"); }), -1);
    EXPECT_EQ(Trap(log, "M.", "Text", std::string("none"), []() -> std::string { throw 3; }),
              "none");
    Trap(log, "M.", "Void", [] { throw std::out_of_range("no such key"); });
    EXPECT_EQ(log.Count(), 3);
    EXPECT_EQ(log.LastTag(), "M.Void");
    const std::string text = LogOf(test);
    for (const char* line : {"Error=7 x", "Error=1 Unknown failure", "Error=5 no such key"})
        EXPECT_NE(text.find(line), text.npos) << line;
}

}  // namespace
}  // namespace pw
