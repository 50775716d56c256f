// Whole jobs through the commands, with nothing faked but the screen and the answers of the user.
#include "mainwindow/Program.h"

#include <gtest/gtest.h>

#include "mainwindow/Commands.h"
#include "mainwindow/Explorers.h"
#include "mainwindow/RecentProjects.h"
#include "mainwindow/UIState.h"
#include "platform/controls/Dialog.h"
#include "platform/dom/TextRange.h"
#include "project/InsertPage.h"
#include "project/Pages.h"
#include "support/TestProgram.h"

namespace pw {
namespace {

using test::TestProgram;

std::string FileOf(TestProgram& program, const std::string& key) {
    const Page* page = program.project().FindPage(key);
    return page ? ReadTextFile(program.frame().files, page->Filename) : "(no page)";
}

/** As a user would who types into the first paragraph. */
void Type(TestProgram& program, const std::string& text) {
    dom::Document& document = program.page().Document();
    const auto paragraphs = document.tags("p");
    ASSERT_FALSE(paragraphs.empty());
    document.setInnerText(*paragraphs.front(), text);
    program.Settle();
}

TEST(Program, AFreshStartShowsTheWelcomePage) {
    TestProgram program;
    ASSERT_EQ(program.result, StartupResult::Running);
    EXPECT_TRUE(program.surface.visible);
    EXPECT_TRUE(program.surface.welcome);
    EXPECT_EQ(program.surface.caption, "Pagewick");
    EXPECT_EQ(program.window().sbrMain[0].Caption(), "For Help, press F1");
    EXPECT_FALSE(program.window().prgProgress.Visible());
    EXPECT_TRUE(program.surface.timerInterval > 0);
}

TEST(Program, TellsOfANewerVersionAtItsEnd) {
    struct {
        const char* newest;
        bool told;
    } const rows[] = {
        {"", false}, {"1.9.9", false}, {"2.0.0", false}, {"2.0.1", true}, {"3", false}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.newest);
        TestProgram program;
        program.frame().settings.NewestVersion = row.newest;
        if (row.told)
            program.dialogs().ExpectMessage(Answer::Ok,
                                            "This software has been updated to a newer version.");
        EXPECT_TRUE(program.window().Form_QueryUnload());
    }
}

TEST(Program, MakesEditsSavesReopensAndPublishesASite) {
    TestProgram program;
    const std::string file = program.frame().settings.ProjectsFolder + "\\site.pwp";

    program.Press(3);
    EXPECT_FALSE(program.surface.welcome);
    ASSERT_EQ(program.context().OpenDocuments.Count(), 1);
    program.Press(2);
    ASSERT_EQ(program.context().OpenDocuments.Count(), 2);
    const std::string second = program.context().CurrentPageKey;
    EXPECT_EQ(program.window().SelectedProjectNode(), second);

    const std::string before = program.page().Document().html();
    Type(program, "Hello");
    EXPECT_TRUE(program.project().IsDirty);
    program.Press(101);
    EXPECT_EQ(program.page().Document().html(), before);
    program.Press(102);
    const std::string edited = program.page().Document().html();
    EXPECT_NE(edited.find("Hello"), std::string::npos);

    program.dialogs().ExpectFile(file);
    program.Press(7);
    EXPECT_FALSE(program.project().IsDirty);
    EXPECT_FALSE(program.page().IsDirty());
    EXPECT_EQ(FileOf(program, second), edited);
    EXPECT_EQ(RecentProjects(program.frame()), std::vector<std::string>{file});

    program.Press(904);
    EXPECT_TRUE(program.context().OpenDocuments.Empty());
    EXPECT_EQ(program.context().CurrentPageKey, "");
    EXPECT_TRUE(program.surface.documents.empty());

    program.dialogs().ExpectFile(file);
    program.Press(6);
    EXPECT_TRUE(program.project().IsLoaded);
    EXPECT_EQ(FileOf(program, second), edited);
    program.PressNode(second);
    EXPECT_EQ(program.page().Document().html(), edited);

    program.outer.folder.Put("out\\keep.txt", "");
    program.dialogs().ExpectFolder(program.outer.folder.Path("out"));
    program.dialogs().ExpectMessage(Answer::Ok, "successfully published as HTML");
    program.Press(17);
    const std::string published = program.outer.folder.Path("out") + "\\" + program.project().Name +
                                  "\\" + GetFileName(program.project().FindPage(second)->Filename);
    EXPECT_EQ(ReadTextFile(program.frame().files, published), edited);
}

TEST(Program, ClosingAPageAlwaysWritesIt) {
    TestProgram program;
    program.Press(3);
    const std::string key = program.context().CurrentPageKey;
    Type(program, "Not lost");
    ASSERT_TRUE(program.page().Surface().events.closing());
    EXPECT_NE(FileOf(program, key).find("Not lost"), std::string::npos);
    EXPECT_TRUE(program.project().IsDirty);
    EXPECT_FALSE(program.project().FindPage(key)->IsOpen);
    EXPECT_EQ(program.context().CurrentPageKey, "");
    EXPECT_EQ(program.window().tvwPageExplorer.Count(), 0u);
    program.Settle();
    program.PressNode(key);
    EXPECT_NE(program.page().Document().html().find("Not lost"), std::string::npos);
}

TEST(Program, TheNextPageComesUpWhenOneCloses) {
    TestProgram program;
    program.Press(3);
    const std::string first = program.context().CurrentPageKey;
    program.Press(2);
    const std::string second = program.context().CurrentPageKey;
    program.Press(2);
    program.PressNode(first);
    EXPECT_EQ(program.context().CurrentPageKey, first);
    program.window().FindOpenPage(first)->CloseWindow();
    program.Settle();
    EXPECT_NE(program.context().CurrentPageKey, first);
    EXPECT_NE(program.context().CurrentPageKey, "");
    EXPECT_EQ(program.surface.front, &program.page().Surface());
    program.bar().OpenBand("mnuWindow");
    EXPECT_EQ(program.bar().Caption(905),
              "&1 " + program.window().Context().OpenDocuments.Find(second)->Caption());
    program.Press(905);
    EXPECT_EQ(program.context().CurrentPageKey, second);
    EXPECT_TRUE(program.bar().FindTool(901)->enabled);
}

TEST(Program, ExitAsksAboutUnsavedChanges) {
    struct Row {
        const char* name;
        Answer answer;
        const char* file;  ///< chosen in the save dialog; "" cancels it
        bool ends;
    };
    const Row rows[] = {
        {"cancel", Answer::Cancel, nullptr, false},
        {"yes and a name", Answer::Yes, "kept.pwp", true},
        {"yes, but no name", Answer::Yes, "", false},
        {"no", Answer::No, nullptr, true},
    };
    for (const Row& row : rows) {
        TestProgram program;
        program.Press(3);
        Type(program, "Hello");
        program.dialogs().ExpectMessage(row.answer, "lost by exiting");
        const std::string folder = program.frame().settings.ProjectsFolder;
        if (row.file) program.dialogs().ExpectFile(*row.file ? folder + "\\" + row.file : "");
        const std::string run = program.frame().runFolder;
        program.bar().Click(19);
        EXPECT_EQ(program.ended, row.ends) << row.name;
        EXPECT_EQ(FolderExists(program.frame().files, run), !row.ends) << row.name;
        if (row.ends && row.file) {
            EXPECT_EQ(RecentProjects(program.frame()).front(), folder + "\\kept.pwp");
        }
        if (row.ends) {
            EXPECT_EQ(FileExists(program.frame().files, folder + "\\kept.pwp"),
                      row.answer == Answer::Yes)
                << row.name;
        }
    }
}

TEST(Program, OpensWhatItIsStartedWith) {
    test::TemporaryFolder pages;
    pages.Put("Hello.HTML", "<html><head><title>Hi</title></head><body>x</body></html>");
    TestProgram program(pages.Path("Hello.HTML"));
    EXPECT_TRUE(program.project().IsLoaded);
    EXPECT_EQ(program.project().Name, "Hello");
    EXPECT_EQ(program.surface.caption, "Pagewick - Hello");
    EXPECT_EQ(program.page().Document().title(), "Hi");
    TestProgram nothing(pages.Path("missing.pwp"));
    EXPECT_FALSE(nothing.project().IsLoaded);
    EXPECT_TRUE(nothing.surface.welcome);
}

TEST(Program, EditCommandsActOnThePaneThatTheUserIsIn) {
    TestProgram program;
    program.Press(3);
    const std::string first = program.context().CurrentPageKey;
    Type(program, "Precious");
    program.Press(2);
    const std::string second = program.context().CurrentPageKey;
    program.PressNode(first);
    program.Press(107);

    // In the page: Delete takes the text and no page.
    program.Press(106);
    EXPECT_EQ(program.page().Document().html().find("Precious"), std::string::npos);
    EXPECT_EQ(program.project().PageCount(), 2);
    program.Press(101);

    // In the explorer: the page goes, and no text of the other one.
    program.Press(107);
    program.window().PaneFocused(Pane::ProjectExplorer);
    program.window().tvwProjectExplorer.UserSelect(second);
    EXPECT_EQ(program.context().CurrentPageKey, first) << "arrow keys open nothing";
    program.Press(106);
    EXPECT_EQ(program.project().PageCount(), 1);
    EXPECT_EQ(program.context().OpenDocuments.Count(), 1);
    EXPECT_NE(program.page().Document().html().find("Precious"), std::string::npos);
}

TEST(Program, CopiesAndCutsPagesInTheExplorer) {
    TestProgram program;
    program.Press(3);
    const std::string first = program.context().CurrentPageKey;
    Type(program, "Copied");
    TreeView& tree = program.window().tvwProjectExplorer;
    tree.UserSelect(first);
    tree.MouseUp(true);
    program.Press(1104);
    tree.UserSelect(first);
    tree.MouseUp(true);
    program.Press(1105);
    ASSERT_EQ(program.project().PageCount(), 2);
    const Page* copy = program.project().PageIndex().Item(2)->Item;
    EXPECT_EQ(copy->Name.rfind("Copy of ", 0), 0u) << copy->Name;
    EXPECT_NE(FileOf(program, copy->Key()).find("Copied"), std::string::npos);

    const auto press = [&](const std::string& key, int tool) {
        tree.UserSelect(key);
        tree.MouseUp(true);
        program.Press(tool);
        return program.project().PageCount();
    };
    const std::string second = copy->Key();
    EXPECT_EQ(press(first, 1103), 1);
    program.dialogs().ExpectMessage(Answer::No, "was cut and has not been pasted yet");
    EXPECT_EQ(press(second, 1103), 1) << "the page cut before lives in the clipboard alone";
    EXPECT_EQ(press(second, 1105), 2);
    EXPECT_EQ(press(second, 1103), 1);
    EXPECT_EQ(press(program.project().PageIndex().Item(1)->Key(), 1105), 2);

    program.dialogs().ExpectDialog("frmFolder", [](Dialog& dialog) {
        static_cast<TextBox*>(dialog.Find("txtName"))->UserSetText("Sub");
        static_cast<Button*>(dialog.Find("cmdOK"))->UserClick();
    });
    program.Press(4);
    ASSERT_EQ(program.project().WebSites().Item(1)->Sections().Count(), 1);
    const std::string folder = program.window().SelectedProjectNode();
    tree.UserSelect(folder);
    tree.MouseUp(false);
    EXPECT_FALSE(program.bar().IsEnabled(103));
    EXPECT_TRUE(program.bar().IsEnabled(105));
    program.dialogs().ExpectMessage(Answer::No, "Deleting this folder");
    program.Press(106);
    EXPECT_EQ(program.project().WebSites().Item(1)->Sections().Count(), 1);
    program.dialogs().ExpectMessage(Answer::Yes, "Deleting this folder");
    program.Press(106);
    EXPECT_EQ(program.project().WebSites().Item(1)->Sections().Count(), 0);
}

TEST(Program, InsertsLineBreaksAtTheCaretAndRefusesWithAnObjectSelected) {
    TestProgram program;
    program.Press(3);
    Type(program, "ab");
    dom::Document& document = program.page().Document();
    document.collapse({document.tags("p").front()->firstChild(), 1});
    program.Press(328);
    EXPECT_NE(document.html().find("a<BR clear=left>b"), std::string::npos) << document.html();
    dom::Selection object;
    object.type = dom::SelectionType::Control;
    object.control = document.tags("br").front();
    document.setSelection(object);
    program.dialogs().ExpectMessage(Answer::Ok, "object is selected");
    program.Press(327);
    EXPECT_EQ(document.tags("br").size(), 1u);
}

TEST(Program, AlignsTheSelectedTableItself) {
    TestProgram program;
    program.Press(3);
    frmDocument& page = program.page();
    ASSERT_TRUE(page.SetHTML("<body><table><tr><td>x</td></tr></table></body>"));
    dom::Node* table = page.Document().tags("table").front();
    page.m_docEvents_onmousedown(table);
    // Without an engine the paragraph commands are off; the table takes its alignment all the same.
    MenuFormat(program.context(), 410);
    EXPECT_EQ(table->getAttribute("align"), "center");
}

TEST(Program, TableCommandsFollowTheCaret) {
    TestProgram program;
    program.Press(3);
    frmDocument& page = program.page();
    ASSERT_TRUE(page.SetHTML("<body><p>x</p><table><tr><td>a<td>b</table></body>"));
    dom::Document& document = page.Document();
    const auto caretIn = [&](dom::Node* element) {
        document.collapse({element->firstChild(), 0});
        ResetUI(program.context());
    };
    caretIn(document.tags("p").front());
    for (int tool = 602; tool <= 609; ++tool)
        EXPECT_FALSE(program.bar().IsEnabled(tool)) << tool;
    caretIn(document.tags("td").front());
    EXPECT_FALSE(program.bar().IsEnabled(608));
    for (const int tool : {609, 606, 604, 602, 607, 605, 603})
        program.Press(tool);
    EXPECT_EQ(document.tags("tr").size(), 1u);
    document.setSelection({dom::SelectionType::Text,
                           {document.tags("td").front()->firstChild(), 0},
                           {document.tags("td").back()->firstChild(), 1},
                           nullptr});
    program.Settle();
    ResetUI(program.context());
    program.Press(608);
    EXPECT_EQ(document.tags("td").size(), 1u);
    for (int step = 0; step < 8; ++step)
        program.Press(101);
    EXPECT_EQ(document.innerHTML(*document.body()), "<p>x</p><table><tr><td>a<td>b</table>");
}

TEST(Program, StatusShowsWhatACommandDoes) {
    TestProgram program;
    program.bar().PointerEnters(9);
    EXPECT_EQ(program.window().sbrMain[0].Caption(), "Saves the current page as an HTML file");
    program.bar().PointerLeaves();
    EXPECT_EQ(program.window().sbrMain[0].Caption(), "For Help, press F1");
}

}  // namespace
}  // namespace pw
