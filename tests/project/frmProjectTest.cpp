#include "project/frmProject.h"

#include "support/TestProject.h"

namespace pw {
namespace {

using test::TestProject;

void Show(TestProject& test, const std::function<void(frmProject&)>& act) {
    frmProject dialog(test.context);
    test.dialogs.ExpectDialog("frmProject", [&](Dialog&) { act(dialog); });
    test.dialogs.ShowModal(dialog);
}

TEST(frmProject, ShowsAndWritesTheProperties) {
    TestProject test;
    Project& project = test.project;
    project.Name = "Shop";
    project.CompanyFax = "123";
    project.VersionBuild = 7;
    project.Created = MakeDate(2026, 11, 22, 21, 46, 0);
    Show(test, [&](frmProject& form) {
        EXPECT_EQ(form.txtProjectName.Text(), "Shop");
        EXPECT_EQ(form.txtCompanyFax.Text(), "123");
        EXPECT_EQ(form.txtVersion[2].Text(), "7");
        EXPECT_TRUE(form.chkAutoVer.Checked());
        EXPECT_EQ(form.lblSummary[0].Caption(), "Sunday, November 22, 2026 9:46:00 PM");
        EXPECT_EQ(form.lblSummary[1].Caption(), project.CreatedBy);
        EXPECT_EQ(form.lblSummary[4].Caption(), "0");
        EXPECT_EQ(form.lblSummary[5].Caption(), "0 byte(s)");
        for (const auto& [tab, topic] : {std::pair{1, 10080}, {2, 10650}, {0, 10070}}) {
            form.tabProject.UserSelect(tab);
            EXPECT_EQ(form.helpTopic, topic);
        }
        form.txtProjectName.UserSetText("  Tea:/\\ \"Shop\"?*<>| ");
        form.txtVersion[0].UserSetText("v2.1");
        form.txtVersion[1].UserSetText("");
        form.txtCompanyWeb.UserSetText("http://example.com/");
        form.txtAuthorLocation.UserSetText("Kyoto");
        form.chkAutoVer.UserSetChecked(false);
        form.cmdOK.UserClick();
    });
    EXPECT_EQ(project.Name, "Tea Shop");
    EXPECT_EQ(project.VersionMajor, 21);
    EXPECT_EQ(project.VersionMinor, 0);
    EXPECT_EQ(project.VersionBuild, 7);
    EXPECT_EQ(project.CompanyWebSite, "http://example.com/");
    EXPECT_EQ(project.AuthorLocation, "Kyoto");
    EXPECT_FALSE(project.AutoVersion);
    EXPECT_TRUE(project.IsLoaded);
    EXPECT_TRUE(project.IsDirty);
    EXPECT_EQ(test.workspace.Count("RefreshCaption"), 1);
}

TEST(frmProject, NeedsAName) {
    TestProject test;
    Show(test, [&](frmProject& form) {
        form.txtProjectName.UserSetText("  ");
        EXPECT_FALSE(form.cmdOK.Enabled());
        form.cmdOK.UserClick();
        EXPECT_FALSE(form.Confirmed());
        form.txtProjectName.UserSetText("x");
        EXPECT_TRUE(form.cmdOK.Enabled());
        form.cmdCancel.UserClick();
    });
    EXPECT_EQ(test.project.Name, kNewProjectName);
    EXPECT_FALSE(test.project.IsDirty);
}

}  // namespace
}  // namespace pw
