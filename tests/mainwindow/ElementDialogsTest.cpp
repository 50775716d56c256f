#include "mainwindow/ElementDialogs.h"

#include <gtest/gtest.h>

#include "editing/frmPage.h"
#include "mainwindow/Explorers.h"
#include "mainwindow/UIState.h"
#include "support/TestProgram.h"

namespace pw {
namespace {

using test::TestProgram;

/** Elements against what the properties command shows: the form's name, or "" for nothing. */
TEST(ElementDialogs, TheElementSaysWhichDialog) {
    TestProgram program;
    program.Press(3);
    MainContext& context = program.context();
    struct Row {
        const char* body;
        const char* form;
        const char* caption;
    };
    const Row rows[] = {
        {"<p id=x>text", "frmPage", "Page P&roperties..."},
        {"<b id=x>text</b>", "frmPage", "Page P&roperties..."},
        {"<table><tr><th><b id=x>t</b></th></tr></table>", "frmPage", "Page P&roperties..."},
        {"<table><tr><td><b id=x>t</b></td></tr></table>", "", "Table Cell P&roperties..."},
        {"<div id=x>text</div>", "", "P&roperties..."},
        {"<p>a <a id=x type=omMerge name='Project Name' href=y>n</a>", "frmVariables",
         "Merge Variable P&roperties..."},
        {"<embed id=x src=a.swf>", "", "P&roperties..."},
        {"<img id=x src=a.gif>", "", "Image P&roperties..."},
    };
    for (const Row& row : rows) {
        ASSERT_TRUE(program.page().SetHTML(std::string("<body>") + row.body + "</body>"));
        program.page().m_docEvents_onmousedown(program.page().Document().elementById("x"));
        program.page().m_docEvents_onmouseup();
        const bool shown = *row.form != 0;
        EXPECT_EQ(program.bar().IsEnabled(201), shown) << row.body;
        EXPECT_EQ(program.bar().IsEnabled(1107), shown) << row.body;
        EXPECT_EQ(program.bar().Caption(201), row.caption) << row.body;
        EXPECT_EQ(OpensOnDoubleClick(context), row.form == std::string("frmVariables")) << row.body;
        for (const Pane pane : {Pane::Page, Pane::PageExplorer}) {
            context.ContextPane = pane;
            if (shown) program.dialogs().ExpectDialog(row.form, [](Dialog&) {});
            program.bar().Click(shown ? 201 : 1107);
            EXPECT_EQ(program.dialogs().Pending(), 0u) << row.body;
        }
        context.ContextPane = Pane::Page;
    }
    EXPECT_EQ(context.ElementDialogMode, DialogMode::Edit);
}

TEST(ElementDialogs, AnElementThatIsNotInThePageInFrontHasNone) {
    TestProgram program;
    program.Press(3);
    MainContext& context = program.context();
    frmDocument& first = program.page();
    EXPECT_FALSE(HasElementDialog(context)) << "nothing was pressed on yet";
    dom::Node* paragraph = first.Document().tags("p").front();
    first.m_docEvents_onmousedown(paragraph);
    EXPECT_TRUE(HasElementDialog(context));
    first.picViewTab_MouseUp(1000);
    EXPECT_FALSE(HasElementDialog(context)) << "HTML view";
    first.SetToNormalEditMode();
    EXPECT_TRUE(HasElementDialog(context));
    program.Press(2);
    EXPECT_FALSE(HasElementDialog(context)) << "of the page behind";
    first.BringToFront();
    first.Form_Activate();
    first.Document().removeNode(*paragraph);
    EXPECT_FALSE(HasElementDialog(context)) << "removed";
}

TEST(ElementDialogs, APageNodeOpensItsPage) {
    TestProgram program;
    program.Press(3);
    const std::string key = program.context().CurrentPageKey;
    program.page().CloseWindow();
    program.Settle();
    MainContext& context = program.context();
    program.window().SelectProjectNode(key);
    context.ContextPane = Pane::ProjectExplorer;
    ResetUI(context);
    program.dialogs().ExpectDialog("frmPage", [](Dialog& dialog) {
        auto& page = static_cast<frmPage&>(dialog);
        page.txtTitle.UserSetText("Renamed");
        page.cmdOK.UserClick();
    });
    program.Press(201);
    ASSERT_EQ(context.CurrentPageKey, key);
    EXPECT_TRUE(program.page().Caption().starts_with("Renamed ["));
    EXPECT_EQ(program.window().tvwProjectExplorer.Find(key)->text, "Renamed");
    EXPECT_TRUE(program.page().IsDirty());
    program.Press(101);
    EXPECT_FALSE(program.page().Caption().starts_with("Renamed"));
    EXPECT_NE(program.window().tvwProjectExplorer.Find(key)->text, "Renamed");
    program.Press(102);
    EXPECT_EQ(program.window().tvwProjectExplorer.Find(key)->text, "Renamed");
}

}  // namespace
}  // namespace pw
