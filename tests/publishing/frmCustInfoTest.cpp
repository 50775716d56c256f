#include "publishing/frmCustInfo.h"

#include <gtest/gtest.h>

#include "support/TestContext.h"

namespace pw {
namespace {

TEST(CustInfo, IsDoneWhenAllThreeAreFilledAndIsKept) {
    test::TestContext outer;
    outer.dialogs.ExpectDialog("frmCustInfo", [](Dialog& dialog) {
        auto& info = static_cast<frmCustInfo&>(dialog);
        EXPECT_FALSE(info.cmdDone.Enabled());
        info.txtFName.UserSetText(" Ann ");
        info.txtLName.UserSetText("Miller");
        info.txtEmail.UserSetText("  ");
        EXPECT_FALSE(info.cmdDone.Enabled());
        info.txtEmail.UserSetText("ann@example.org");
        info.cmdDone.UserClick();
        EXPECT_FALSE(info.IsOpen());
    });
    frmCustInfo dialog(outer.frame);
    outer.frame.dialogs.ShowModal(dialog);
    EXPECT_EQ(outer.frame.settings.UserName(), "Ann Miller");
    ReadSettings(outer.frame);
    EXPECT_EQ(outer.frame.settings.UserName(), "Ann Miller");
    EXPECT_EQ(outer.frame.settings.UserEmail, "ann@example.org");
}

TEST(CustInfo, SaysWhenItCanNotBeKept) {
    test::TestContext outer;
    outer.hive->refused = {"Last Name"};
    outer.dialogs.ExpectDialog("frmCustInfo", [&](Dialog& dialog) {
        auto& info = static_cast<frmCustInfo&>(dialog);
        info.txtFName.UserSetText("Ann");
        info.txtLName.UserSetText("Miller");
        info.txtEmail.UserSetText("ann@example.org");
        outer.dialogs.ExpectMessage(Answer::Ok, "could not be stored");
        info.cmdDone.UserClick();
        EXPECT_TRUE(info.IsOpen());
        outer.hive->refused.clear();
        outer.hive->refusesCommit = true;
        outer.dialogs.ExpectMessage(Answer::Ok, "could not be stored");
        info.cmdDone.UserClick();
        EXPECT_TRUE(info.IsOpen());
    });
    frmCustInfo dialog(outer.frame);
    outer.frame.dialogs.ShowModal(dialog);
    EXPECT_EQ(outer.frame.settings.UserName(), "Ann Miller") << "as long as the program runs";
}

}  // namespace
}  // namespace pw
