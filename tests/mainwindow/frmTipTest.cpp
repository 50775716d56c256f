#include "mainwindow/frmTip.h"

#include <gtest/gtest.h>

#include "support/TestProgram.h"

namespace pw {
namespace {

struct Tips : testing::Test {
    Tips() {
        test.frame.places.programFolder = test.folder.Path("program");
        EXPECT_TRUE(MakeFolder(*test.files, support));
    }
    void Write(const std::string& tips) {
        EXPECT_TRUE(WriteTextFile(*test.files, tips, support + "\\tips.txt"));
    }
    /** What a new box shows first, and after `presses` of the next button. */
    std::string Shown(int presses = 0) {
        frmTip dialog(test.frame);
        dialog.Form_Load();
        for (int i = 0; i < presses; ++i)
            dialog.cmdNext.UserClick();
        return dialog.lblTip.Caption();
    }
    test::TestContext test;
    const std::string support = test.folder.Path("program") + "\\support";
};

TEST_F(Tips, FollowEachOtherFromShowingToShowing) {
    Write("one\r\nthis & that\r\n\r\nlast");
    EXPECT_EQ(Shown(), "one");
    EXPECT_EQ(Shown(), "this && that");
    EXPECT_EQ(Shown(), "last") << "a file without a final line break loses nothing";
    EXPECT_EQ(Shown(3), "one");
    for (const int stored : {-1, 3, 4000}) {
        EXPECT_TRUE(SetRegNumber(*test.hive, "General", "Next Tip", stored));
        EXPECT_EQ(Shown(), "one") << stored;
        EXPECT_EQ(RegNumber(*test.hive, "General", "Next Tip"), 1);
    }
}

TEST_F(Tips, WithoutAFileAreUnavailable) {
    for (const char* content : {"", "\r\n\r\n"}) {
        if (*content) Write(content);
        frmTip dialog(test.frame);
        dialog.Form_Load();
        EXPECT_EQ(dialog.lblTip.Caption(), "Tips are unavailable.");
        EXPECT_FALSE(dialog.cmdNext.Enabled());
    }
}

TEST_F(Tips, TheBoxIsTheSetting) {
    Write("one\n");
    test.frame.settings.ShowTips = true;
    frmTip dialog(test.frame);
    EXPECT_TRUE(dialog.chkShowTips.Checked());
    dialog.chkShowTips.UserSetChecked(false);
    dialog.cmdClose.UserClick();
    EXPECT_FALSE(test.frame.settings.ShowTips);
}

TEST_F(Tips, ADistributorsPictureAndCaptionReplaceTheProgramsOwn) {
    const std::string program = test.frame.places.programFolder;
    const std::string picture = program + "\\cobrand.png";
    const std::string dot =
        std::string("\x89PNG\r\n\x1a\n\0\0\0\rIHDR\0\0\0\x10\0\0\0\x10\x08\2\0\0\0", 29);
    EXPECT_TRUE(WriteTextFile(*test.files, dot, picture));
    EXPECT_EQ(frmTip(test.frame).imgTip.Filename(), "") << "no brand file";
    std::string brand = "Acme";
    brand.resize(256);
    EXPECT_TRUE(
        WriteTextFile(*test.files, brand + std::string("\1\0\0\0", 4), program + "\\cobrand.ocb"));
    test.frame.brand.SetBrandFile(program + "\\cobrand.ocb");
    frmTip dialog(test.frame);
    EXPECT_EQ(dialog.imgTip.Filename(), picture);
    EXPECT_EQ(dialog.Title(), "Pagewick provided by Acme");
}

TEST(TipOfTheDay, IsOnTheHelpMenuAndComesWithTheProgram) {
    test::TestProgram program;
    program.dialogs().ExpectDialog("frmTip", [](Dialog& dialog) {
        EXPECT_TRUE(static_cast<Button*>(dialog.Find("cmdNext"))->Enabled());
        static_cast<Button*>(dialog.Find("cmdClose"))->UserClick();
    });
    program.Press(1002);
}

}  // namespace
}  // namespace pw
