// Where an exception ends that a handler lets out.
#include <gtest/gtest.h>

#include "platform/controls/Dialog.h"
#include "platform/dom/Document.h"
#include "support/TestContext.h"

namespace pw {
namespace {

struct SampleDialog : Dialog {
    SampleDialog() : Dialog("frmSample", "Sample") {}
    ControlArray<Button, 2> cmdPress{this, "cmdPress"};
    TextBox txtText{this, "txtText"};
};

void Fail() {
    throw Failure("The cupboard is bare");
}

struct Handlers : testing::Test {
    /** Shows the dialog and acts on it. */
    void Show(Dialog& shown, std::function<void()> act) {
        test.dialogs.ExpectDialog(shown.FormName(), [act](Dialog&) { act(); });
        test.frame.dialogs.ShowModal(shown);
    }
    void ExpectTold() { test.dialogs.ExpectMessage(Answer::Ok, "The cupboard is bare."); }
    const std::string& LastTag() { return test.frame.errorLog.LastTag(); }

    test::TestContext test;
    SampleDialog dialog;
};

TEST_F(Handlers, TheOutermostLogsAndTellsAndTheDialogStays) {
    dialog.cmdPress[1].Click = Fail;
    Show(dialog, [&] {
        ExpectTold();
        dialog.cmdPress[1].UserClick();
        EXPECT_TRUE(dialog.IsOpen());
    });
    EXPECT_EQ(LastTag(), "Sample.cmdPress_Click");
    EXPECT_NE(test.dialogs.Messages().back().text.find("error.log"), std::string::npos);
}

TEST_F(Handlers, OneCausedByAnotherLetsThrough) {
    bool isDone = false;
    dialog.txtText.Change = Fail;
    dialog.cmdPress[0].Click = [&] {
        dialog.txtText.SetText("x");
        isDone = true;
    };
    Show(dialog, [&] {
        ExpectTold();
        dialog.cmdPress[0].UserClick();
    });
    EXPECT_FALSE(isDone) << "the rest of the outer handler counted on it";
    EXPECT_EQ(LastTag(), "Sample.cmdPress_Click") << "told and logged once, by the outermost";
    EXPECT_EQ(test.frame.errorLog.Count(), 1);
}

TEST_F(Handlers, OneInADialogOrInAWaitSparesTheHandlerAroundIt) {
    SampleDialog inner;
    inner.cmdPress[0].Click = Fail;
    SampleDialog beside;
    beside.cmdPress[0].Click = Fail;
    bool isDone = false;
    dialog.cmdPress[0].Click = [&] {
        Show(inner, [&] {
            ExpectTold();
            inner.cmdPress[0].UserClick();
            EXPECT_TRUE(inner.IsOpen());
        });
        beside.SetFaults(&test.frame.faults);
        ExpectTold();
        test.loop.Post([&] { beside.cmdPress[0].UserClick(); });
        test.loop.ProcessEvents();
        isDone = true;
    };
    Show(dialog, [&] { dialog.cmdPress[0].UserClick(); });
    EXPECT_TRUE(isDone);
    EXPECT_EQ(test.frame.errorLog.Count(), 2);
}

TEST_F(Handlers, InAnOpenStepNothingIsSwallowed) {
    const auto page = dom::Document::parse("<p>as it was</p>");
    const std::string before = page->html();
    dialog.txtText.Change = Fail;
    dialog.SetFaults(&test.frame.faults);
    const auto edit = [&] {
        const dom::Document::Step step(*page);
        page->setTitle("half");
        Trap(test.frame.errorLog, "Module.", "Inner", [&] { dialog.txtText.SetText("x"); });
        page->setTitle("whole");
    };
    Trap(test.frame.errorLog, "Module.", "Outer", edit);
    EXPECT_EQ(LastTag(), "Module.Outer");
    EXPECT_EQ(test.frame.errorLog.Count(), 1);
    EXPECT_EQ(page->html(), before);
    EXPECT_FALSE(page->canUndo() || page->canRedo());
}

TEST_F(Handlers, AreNotGuardedWhereNobodyCanBeTold) {
    dialog.txtText.Change = Fail;
    EXPECT_THROW(dialog.txtText.SetText("x"), Failure);
    EXPECT_THROW(dialog.txtText.SetText("y"), Failure) << "the depth is counted back";
}

}  // namespace
}  // namespace pw
