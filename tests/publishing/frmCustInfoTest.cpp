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

}  // namespace
}  // namespace pw
