#include "mainwindow/frmOptions.h"

#include <gtest/gtest.h>

#include "support/TestProgram.h"

namespace pw {
namespace {

using test::TestProgram;

/** Opens the dialog through its command and does `act` in it. */
void Edit(TestProgram& program, std::function<void(frmOptions&)> act) {
    program.dialogs().ExpectDialog("frmOptions", [act = std::move(act)](Dialog& dialog) {
        act(static_cast<frmOptions&>(dialog));
    });
    program.Press(505);
}

TEST(Options, WritesEverySettingAndReadsItBack) {
    TestProgram program;
    Edit(program, [](frmOptions& dialog) {
        EXPECT_EQ(dialog.txtFirstName.Text(), "Ann");
        EXPECT_TRUE(dialog.optSkillLevel[2].Checked());
        dialog.txtLastName.UserSetText("Miller");
        dialog.txtFolders[2].UserSetText("\\srv\\pictures");
        dialog.chkAutoSave.UserSetChecked(true);
        dialog.txtAutoSave.UserSetText("7x");
        dialog.cboFontName.UserSelect(1);
        dialog.cboFontSize.UserSelect(2);
        dialog.optColor[0].SetValue(0x0000FF);
        dialog.optColor[4].SetValue(0x102030);
        dialog.cboConnectionSpeed.UserSelect(5);
        dialog.txtDownloadTime.UserSetText("0");
        dialog.txtGridSpacing[0].UserSetText("12px");
        dialog.optSkillLevel[1].UserClick();
        dialog.chkShowKindlerun.UserSetChecked(false);
        EXPECT_FALSE(dialog.chkKeepBookmarks.Checked());
        dialog.chkKeepBookmarks.UserSetChecked(true);
        dialog.cmdOK.UserClick();
        EXPECT_FALSE(dialog.IsOpen());
    });
    const auto check = [](const Settings& settings) {
        EXPECT_EQ(settings.Lastname, "Miller");
        EXPECT_EQ(settings.ImageLibraryFolder, "\\srv\\pictures");
        EXPECT_EQ(settings.AutoSaveFrequency, 7);
        EXPECT_EQ(settings.DefaultFont, "Verdana");
        EXPECT_EQ(settings.DefaultFontSize, 12);
        EXPECT_EQ(settings.DefaultFontColor, "#ff0000");
        EXPECT_EQ(settings.HTMLBackgroundColor, 0x102030u);
        EXPECT_EQ(settings.ConnectionSpeed, 6);
        EXPECT_EQ(settings.DownloadTime, 60);
        EXPECT_EQ(settings.GridHorizontal, 12);
        EXPECT_EQ(settings.SkillLevel, 1);
        EXPECT_TRUE(settings.KeepBookmarks);
    };
    check(program.frame().settings);
    EXPECT_EQ(RegNumber(*program.outer.hive, "Other", "Show Kindlerun"), 0);
    ReadSettings(program.frame());
    check(program.frame().settings);
}

TEST(Options, SaysWhatCouldNotBeStored) {
    TestProgram program;
    test::RefusingHive& hive = *program.outer.hive;
    hive.refused = {"Last Name", "Skill Level"};
    program.dialogs().ExpectMessage(Answer::Ok,
                                    "could not be stored and stay as they were: Last Name, Skill");
    program.dialogs().ExpectMessage(Answer::Ok, "None of the options");
    Edit(program, [&](frmOptions& dialog) {
        dialog.txtFirstName.UserSetText("Bob");
        dialog.txtLastName.UserSetText("Miller");
        dialog.optSkillLevel[1].UserClick();
        dialog.cmdOK.UserClick();
        EXPECT_TRUE(dialog.IsOpen());
        EXPECT_EQ(program.frame().settings.UserName(), "Bob");
        EXPECT_EQ(program.frame().settings.SkillLevel, 2);
        hive.refused.clear();
        hive.refusesCommit = true;
        dialog.cmdOK.UserClick();
        EXPECT_TRUE(dialog.IsOpen());
        EXPECT_EQ(program.frame().settings.SkillLevel, 2);
        hive.refusesCommit = false;
        dialog.cmdOK.UserClick();
        EXPECT_FALSE(dialog.IsOpen());
    });
    EXPECT_EQ(program.frame().settings.UserName(), "Bob Miller");
}

TEST(Options, CancelWritesNothing) {
    TestProgram program;
    Edit(program, [](frmOptions& dialog) {
        dialog.txtFirstName.UserSetText("Bob");
        dialog.optSkillLevel[0].UserClick();
        dialog.cmdCancel.UserClick();
    });
    EXPECT_EQ(program.frame().settings.Firstname, "Ann");
    EXPECT_EQ(program.frame().settings.SkillLevel, 2);
}

TEST(Options, AppliesToWhatIsOpen) {
    TestProgram program;
    program.Press(3);
    program.Press(2);
    program.page().picViewTab_MouseUp(1000);
    const MemoryDocument& inHtml = program.pageSurface();
    const MemoryDocument& inNormal = *program.surface.documents.front();
    Edit(program, [](frmOptions& dialog) {
        dialog.optColor[1].SetValue(0x123456);
        dialog.txtGridSpacing[1].UserSetText("33");
        dialog.txtNNPath.UserSetText("\\usr\\bin\\second");
        dialog.cmdOK.UserClick();
    });
    EXPECT_EQ(inHtml.source.colors.tag, 0x123456u);
    EXPECT_EQ(inNormal.source.colors.tag, 0u) << "not in HTML view";
    for (const auto& document : program.context().OpenDocuments.All())
        EXPECT_EQ(document->docDHTMLEditor.SnapToGridY(), 33);
    EXPECT_TRUE(program.bar().IsEnabled(208));
    program.Press(208);
    ASSERT_EQ(program.outer.launcher.started.size(), 1u);
    EXPECT_EQ(program.outer.launcher.started[0].first, "\\usr\\bin\\second");

    Edit(program, [](frmOptions& dialog) {
        dialog.optSkillLevel[0].UserClick();
        dialog.cmdOK.UserClick();
    });
    EXPECT_EQ(inNormal.tabs, 2);
    EXPECT_FALSE(program.window().IsToolbarVisible("Forms"));
}

TEST(Options, AsksForPathsAndColors) {
    TestProgram program;
    program.dialogs().ExpectFolder("\\new\\themes");
    program.dialogs().ExpectFile("\\usr\\bin\\browser");
    program.dialogs().ExpectColor(Color{0xABCDEF});
    program.dialogs().ExpectColor(std::nullopt);
    program.dialogs().ExpectMessage(Answer::Ok, "is not a full path");
    Edit(program, [](frmOptions& dialog) {
        dialog.cmdBrowse[3].UserClick();
        EXPECT_EQ(dialog.txtFolders[3].Text(), "\\new\\themes");
        dialog.cmdBrowse[5].UserClick();
        EXPECT_EQ(dialog.txtIEPath.Text(), "\\usr\\bin\\browser");
        dialog.optColor[3].UserClick();
        EXPECT_EQ(dialog.optColor[3].Value(), 0xABCDEFu);
        dialog.optColor[3].UserClick();
        EXPECT_EQ(dialog.optColor[3].Value(), 0xABCDEFu);
        dialog.txtFolders[0].UserSetText("sites");
        dialog.cmdOK.UserClick();
        EXPECT_TRUE(dialog.IsOpen());
        dialog.chkAutoSave.UserSetChecked(false);
        EXPECT_FALSE(dialog.txtAutoSave.Enabled());
        dialog.cmdCancel.UserClick();
    });
}

}  // namespace
}  // namespace pw
