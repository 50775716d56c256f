// The parts of the menus that are made when they open.
#include <gtest/gtest.h>

#include "mainwindow/CommandCatalogue.h"
#include "mainwindow/RecentProjects.h"
#include "mainwindow/frmWindows.h"
#include "platform/Text.h"
#include "support/TestProgram.h"

namespace pw {
namespace {

using test::TestProgram;

std::string Items(TestProgram& program, const char* band, int first, int last) {
    program.bar().OpenBand(band);
    std::string items;
    bool line = false;
    for (const BandItem& item : program.bar().FindBand(band)->items) {
        EXPECT_FALSE(line && item.kind == BandItem::Kind::Separator) << "two lines in a row";
        line = item.kind == BandItem::Kind::Separator;
        if (item.number >= first && item.number <= last)
            items += std::to_string(item.number) + " " + item.caption + "|";
    }
    return items;
}

TEST(RecentProjectsMenu, OpensThemAndForgetsThoseThatAreGone) {
    TestProgram program;
    const auto shown = [&] { return Items(program, "mnuFile", kFirstRecentTool, kLastRecentTool); };
    EXPECT_EQ(shown(), "");
    program.Press(3);
    const std::string first = program.outer.folder.Path("A & B.pwp");
    ASSERT_EQ(program.project().Save(first), ProjectResult::Success);
    const std::string gone = program.outer.folder.Path("gone.pwp");
    AddRecentProject(program.frame(), first);
    AddRecentProject(program.frame(), gone);
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(shown(), "21 &1 " + MenuPath(gone) + "|22 &2 " +
                               ReplaceAll(MenuPath(first), "&", "&&") + "|");
    }
    EXPECT_EQ(program.bar().FindTool(22)->description, "Opens the project " + ToNativePath(first));
    EXPECT_EQ(program.bar().FindBand("mnuFile")->items.back().number, 19);

    program.project().IsDirty = false;
    program.dialogs().ExpectMessage(Answer::Ok, "is not there any more");
    program.Press(21);
    EXPECT_EQ(ListedProjects(program.frame()), std::vector<std::string>{first});
    EXPECT_TRUE(program.project().IsLoaded) << "nothing was given up for it";
    EXPECT_EQ(shown().substr(0, 5), "21 &1");
    program.Press(21);
    EXPECT_EQ(program.frame().settings.ProjectFilename, first);
}

TEST(RecentProjectsMenu, ShortensLongPathsByWholeFolders) {
    EXPECT_EQ(MenuPath("\\home\\ann\\Shop.pwp"), "/home/ann/Shop.pwp");
    const std::string deep = "\\home\\ann\\" + std::string(30, 'x') + "\\sites\\Shop.pwp";
    EXPECT_EQ(MenuPath(deep), "\u2026/" + std::string(30, 'x') + "/sites/Shop.pwp");
    const std::string wide = "\\home\\" + std::string(80, 'x') + ".pwp";
    EXPECT_EQ(MenuPath(wide), "\u2026/" + std::string(80, 'x') + ".pwp") << "a name stays whole";
}

struct WindowMenu : testing::Test {
    WindowMenu() {
        program.Press(3);
        while (program.context().OpenDocuments.Count() < 10)
            program.Press(2);
    }
    const std::string& KeyAt(std::size_t place) {
        return program.context().OpenDocuments.All().at(place)->PageKey();
    }
    TestProgram program;
};

TEST_F(WindowMenu, ListsNinePagesAndThenTheRest) {
    const std::string shown = Items(program, "mnuWindow", kFirstWindowTool, kMoreWindowsTool);
    EXPECT_EQ(shown.find("905 &1 "), 0u);
    EXPECT_NE(shown.find("|913 &9 "), std::string::npos);
    EXPECT_NE(shown.find("|914 &More Windows...|"), std::string::npos);
    program.Press(907);
    EXPECT_EQ(program.context().CurrentPageKey, KeyAt(2));
    program.bar().OpenBand("mnuWindow");
    EXPECT_TRUE(program.bar().FindTool(907)->checked);
    EXPECT_FALSE(program.bar().FindTool(905)->checked);
    program.page().CloseWindow();
    program.page().CloseWindow();
    program.Settle();
    EXPECT_EQ(Items(program, "mnuWindow", kMoreWindowsTool, kMoreWindowsTool), "");
}

TEST_F(WindowMenu, TheListActivatesAndCloses) {
    const std::string third = KeyAt(2);
    const std::string fourth = KeyAt(3);
    program.page().Document().setTitle("changed");
    program.dialogs().ExpectDialog("frmWindows", [&](Dialog& shown) {
        auto& dialog = static_cast<frmWindows&>(shown);
        ListView& list = dialog.lvwWindows;
        EXPECT_EQ(list.Count(), 10);
        EXPECT_EQ(list.Row(list.Selected()).key, program.context().CurrentPageKey);
        EXPECT_EQ(list.Row(list.Selected()).cells[1], "Changed");
        list.UserSelect(2);
        dialog.cmdCloseWindow.UserClick();
        EXPECT_EQ(list.Count(), 9);
        EXPECT_EQ(list.FindKey(third), -1);
        EXPECT_EQ(list.Row(list.Selected()).key, fourth);
        dialog.cmdOK.UserClick();
    });
    program.Press(914);
    EXPECT_EQ(program.context().CurrentPageKey, fourth);
    EXPECT_EQ(program.context().OpenDocuments.Count(), 9);
}

TEST(PrintCommand, PrintsThePageInFrontAndLeavesItAsItIs) {
    TestProgram program;
    program.Press(3);
    program.page().Document().setTitle("Offers");
    program.page().MarkClean();
    const std::string html = program.page().Document().html();
    program.Press(18);
    EXPECT_EQ(program.pageSurface().printed, std::vector<std::string>{"Offers"});
    EXPECT_FALSE(program.page().IsDirty());
    EXPECT_EQ(program.page().Document().html(), html);

    program.pageSurface().printerFails = true;
    program.dialogs().ExpectMessage(Answer::Ok, "can not be printed");
    program.Press(18);
    // Closing is put off until the printer lets go of the page.
    program.pageSurface().printerFails = false;
    bool stood = false;
    program.pageSurface().whilePrinting = [&] {
        program.page().CloseWindow();
        stood = program.context().OpenDocuments.Count() == 1;
    };
    program.Press(18);
    EXPECT_TRUE(stood);
    EXPECT_TRUE(program.context().OpenDocuments.Empty());
    EXPECT_FALSE(program.bar().IsEnabled(18));
}

}  // namespace
}  // namespace pw
