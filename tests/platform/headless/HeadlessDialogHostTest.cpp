#include "platform/headless/HeadlessDialogHost.h"

#include <gtest/gtest.h>

#include <sstream>

#include "platform/controls/Dialog.h"
#include "platform/headless/HeadlessMessageLoop.h"

namespace pw {
namespace {

TEST(HeadlessDialogHost, AnswersTheScriptAndReportsTheRest) {
    std::vector<std::string> unscripted;
    HeadlessDialogHost host([&](const std::string& question) { unscripted.push_back(question); });
    host.ExpectMessage(Answer::Yes, "save");
    EXPECT_EQ(host.MsgBox({"Do you want to save?", "T", Icon::Question, Buttons::YesNoCancel}),
              Answer::Yes);
    host.ExpectMessage(Answer::Yes, "save");
    EXPECT_EQ(host.MsgBox({"Delete it?", "T", Icon::Question, Buttons::YesNo}), Answer::No);
    EXPECT_EQ(unscripted, std::vector<std::string>{"message 'T': Delete it?"});
    EXPECT_EQ(host.Pending(), 1u);

    Dialog dialog("frmFolder", "Folder");
    bool modal = false;
    host.ExpectDialog("frmFolder", [&](Dialog& shown) {
        modal = host.IsModalOpen() && shown.IsOpen();
        shown.Close();
    });
    host.ShowModal(dialog);
    EXPECT_TRUE(modal);
    EXPECT_FALSE(host.IsModalOpen() || dialog.IsOpen());
    host.ShowModal(dialog);
    EXPECT_EQ(unscripted.back(), "dialog frmFolder 'Folder'");
    EXPECT_FALSE(dialog.IsOpen());

    host.ExpectFile("\\a.pwp");
    EXPECT_EQ(host.SaveFile({"Save As"}), "\\a.pwp");
    EXPECT_EQ(host.OpenFile({"Open"}), "");
    EXPECT_EQ(unscripted.back(), "file to open 'Open'");
    EXPECT_EQ(host.FileQuestions().size(), 2u);
}

TEST(PrintingDialogHost, TellsAndTakesTheDefault) {
    std::ostringstream out;
    PrintingDialogHost host(out);
    EXPECT_EQ(host.MsgBox({"Go on?", "T", Icon::Question, Buttons::YesNo}), Answer::Yes);
    EXPECT_EQ(host.MsgBox({"Sure?", "T", Icon::Question, Buttons::YesNo, Answer::No}), Answer::No);
    EXPECT_EQ(host.MsgBox({"Done.", "T"}), Answer::Ok);
    EXPECT_EQ(out.str(), "Go on?\nSure?\nDone.\n");
}

TEST(HeadlessMessageLoop, RunsWhatWasPosted) {
    HeadlessMessageLoop loop;
    int runs = 0;
    std::function<void()> again = [&] {
        ++runs;
        loop.Post(again);
    };
    loop.Post(again);
    loop.ProcessEvents();
    EXPECT_EQ(runs, 1) << "what a task posts is not due yet";
    loop.WaitUntil([&] { return runs == 5; });
    EXPECT_EQ(runs, 5);
}

}  // namespace
}  // namespace pw
