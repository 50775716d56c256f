// Find and Replace in both views, as a user does it: over the menu and the buttons.
#include "mainwindow/Finding.h"

#include <gtest/gtest.h>

#include "platform/Text.h"
#include "support/MarkupSelection.h"
#include "support/TestProgram.h"

namespace pw {
namespace {

constexpr const char* kFinished = "Finished searching the page.";
enum Press { FindNext, Replace, ReplaceAll, Cancel };

struct Finding : testing::Test {
    Finding() { program.Press(3); }

    void Open(const std::string& body, int tool = frmFindReplace::kReplace) {
        const std::string page =
            "<html><head><title>t</title></head><body>" + body + "</body></html>";
        ASSERT_TRUE(program.page().SetHTML(page));
        document().setSelection({});
        document().clearHistory();
        program.Press(tool);
        form().txtFind.UserSetText("one");
        form().txtReplace.UserSetText("1");
    }
    void OpenSource(const std::string& text) {
        program.page().picViewTab_MouseUp(1000);
        box().UserType(text);
        box().Select(0, 0);
        program.Press(frmFindReplace::kReplace);
        form().txtFind.UserSetText("one");
        form().txtReplace.UserSetText("1");
    }
    frmFindReplace& form() { return *program.context().Finder->Form(); }
    dom::Document& document() { return program.page().Document(); }
    MemorySourceBox& box() { return program.pageSurface().source; }
    std::string Status() { return program.window().sbrMain[0].Caption(); }
    void Click(Press button) {
        form().cmdProcess[std::size_t(button)].UserClick();
        program.Settle();
    }
    /** The text that is selected in the source, with its place. */
    std::string SelectedSource() {
        return std::to_string(box().SelStart()) + " " +
               box().Text().substr(box().SelStart(), box().SelLength());
    }
    test::TestProgram program;
};

TEST_F(Finding, ShowsWhatEachToolNeeds) {
    struct Row {
        int tool;
        const char* title;
        bool replaces;
    };
    for (const Row& row : {Row{108, "Find", false}, Row{109, "Replace", true}}) {
        program.Press(row.tool);
        EXPECT_TRUE(form().IsOpen());
        EXPECT_EQ(form().Title(), row.title);
        EXPECT_EQ(form().txtReplace.Visible(), row.replaces);
        EXPECT_EQ(form().lblReplace.Visible(), row.replaces);
        EXPECT_EQ(form().cmdProcess[Replace].Visible(), row.replaces);
        EXPECT_EQ(form().cmdProcess[ReplaceAll].Visible(), row.replaces);
        EXPECT_EQ(form().cboDirection.Text(), "Down");
        for (const auto& [text, enabled] : {std::pair{"", false}, {"  ", false}, {" x", true}}) {
            form().txtFind.UserSetText(text);
            for (const Press button : {FindNext, Replace, ReplaceAll}) {
                EXPECT_EQ(form().cmdProcess[std::size_t(button)].Enabled(), enabled);
            }
        }
    }
    EXPECT_FALSE(program.dialogs().IsModalOpen()) << "the page stays in reach";
    Click(Cancel);
    EXPECT_FALSE(form().IsOpen());
}

TEST_F(Finding, GoesFromMatchToMatchInNormalView) {
    struct Row {
        const char* name;
        const char* before;
        const char* what;
        bool matchCase, wholeWord, down;
        std::vector<const char*> matches;
    };
    for (const Row& row : {
             Row{"down",
                 "<p>one two One</p>",
                 "one",
                 false,
                 false,
                 true,
                 {"<p>^one| two One</p>", "<p>one two ^One|</p>"}},
             Row{"up",
                 "<p>one two One</p>",
                 "one",
                 false,
                 false,
                 false,
                 {"<p>one two ^One|</p>", "<p>^one| two One</p>"}},
             Row{"side by side",
                 "<p>oneone</p>",
                 "one",
                 false,
                 false,
                 true,
                 {"<p>^one|one</p>", "<p>one^one|</p>"}},
             Row{"side by side, up",
                 "<p>oneone</p>",
                 "one",
                 false,
                 false,
                 false,
                 {"<p>one^one|</p>", "<p>^one|one</p>"}},
             Row{"with case", "<p>One one</p>", "one", true, false, true, {"<p>One ^one|</p>"}},
             Row{"whole words",
                 "<p>bones, one\xE2\x80\x94two</p>",
                 "ONE",
                 false,
                 true,
                 true,
                 {"<p>bones, ^one|\xE2\x80\x94two</p>"}},
             Row{"whole words, up",
                 "<p>one ones</p>",
                 "one",
                 false,
                 true,
                 false,
                 {"<p>^one| ones</p>"}},
             Row{"through formatting",
                 "<p><b>wo</b>rd</p>",
                 "word",
                 false,
                 false,
                 true,
                 {"<p><b>^wo</b>rd|</p>"}},
             Row{"blanks of any kind",
                 "<p>a&nbsp;b</p>",
                 "a b",
                 true,
                 false,
                 true,
                 {"<p>^a\xC2\xA0"
                  "b|</p>"}},
             Row{"letters of any case",
                 "<p>\xC3\x84pfel</p>",
                 "\xC3\xA4PFEL",
                 false,
                 false,
                 true,
                 {"<p>^\xC3\x84pfel|</p>"}},
             Row{"what is not there", "<p>two</p>", "one", false, false, true, {}},
         }) {
        SCOPED_TRACE(row.name);
        Open(row.before, frmFindReplace::kFind);
        form().txtFind.UserSetText(row.what);
        form().chkOption_0.UserSetChecked(row.matchCase);
        form().chkOption_1.UserSetChecked(row.wholeWord);
        form().cboDirection.UserSelect(row.down ? 1 : 0);
        // The second round: behind the message the search starts afresh.
        for (int round = 0; round < 2; ++round) {
            for (const char* match : row.matches) {
                Click(FindNext);
                EXPECT_EQ(test::markupOf(document()), match);
            }
            program.dialogs().ExpectMessage(Answer::Ok, kFinished);
            Click(FindNext);
            EXPECT_EQ(program.dialogs().Pending(), 0u);
        }
        EXPECT_FALSE(document().canUndo());
        Click(Cancel);
    }
    EXPECT_EQ(program.dialogs().Messages().front().title, program.frame().brand.FormCaption());
}

TEST_F(Finding, GoesOnFromWhereTheUserPutTheCaret) {
    Open("<p>one</p><p>one</p><p>one</p>");
    Click(FindNext);
    document().collapse({document().tags("p")[1]->firstChild(), 3});
    Click(FindNext);
    EXPECT_EQ(test::markupOf(document()), "<p>one</p><p>one</p><p>^one|</p>");
    form().cboDirection.UserSelect(0);
    Click(FindNext);
    EXPECT_EQ(test::markupOf(document()), "<p>one</p><p>^one|</p><p>one</p>");
    // The matched paragraph goes, by whatever way.
    document().removeNode(*document().tags("p")[1]);
    form().cboDirection.UserSelect(1);
    Click(FindNext);
    EXPECT_EQ(test::markupOf(document()), "<p>one</p><p>^one|</p>");
    // Another page comes to the front.
    program.Press(2);
    Open("<p>two one</p>");
    Click(FindNext);
    EXPECT_EQ(test::markupOf(document()), "<p>two ^one|</p>");
}

TEST_F(Finding, ReplacesOneAfterTheOtherInNormalView) {
    Open("<p>one <i>o</i>ne One</p>");
    form().txtReplace.UserSetText("ones");
    Click(Replace);
    EXPECT_EQ(test::markupOf(document()), "<p>^one| <i>o</i>ne One</p>") << "first it is shown";
    Click(Replace);
    EXPECT_EQ(test::markupOf(document()), "<p>ones| <i>o</i>ne One</p>");
    Click(Replace);
    Click(Replace);
    EXPECT_EQ(test::markupOf(document()), "<p>ones <i>ones|</i> One</p>")
        << "in the formatting of the start";
    form().cboDirection.UserSelect(0);
    Click(FindNext);
    EXPECT_EQ(test::markupOf(document()), "<p>ones <i>^one|s</i> One</p>")
        << "what was replaced is text as any other";
    program.Press(101);
    program.Press(101);
    EXPECT_EQ(document().html(),
              "<html><head><title>t</title></head><body><p>one <i>o</i>ne One</p></body></html>");
    EXPECT_FALSE(document().canUndo());
}

TEST_F(Finding, ReplacesAllInNormalView) {
    struct Row {
        const char* name;
        const char* before;
        const char* with;
        int finds;  ///< presses of Find Next in front of it
        bool down;
        const char* after;
        const char* status;
    };
    for (const Row& row : {
             Row{"all", "<p>one</p><p>two one</p>", "1", 0, true, "<p>1</p><p>two 1</p>",
                 "2 texts were replaced on the page."},
             Row{"what holds the search text", "<p>one one</p>", "one one", 0, true,
                 "<p>one one one one</p>", "2 texts were replaced on the page."},
             Row{"from the match on", "<p>one one one</p>", "1", 2, true, "<p>one 1 1</p>",
                 "2 texts were replaced on the page."},
             Row{"upwards from the match on", "<p>one one one</p>", "1", 2, false, "<p>1 1 one</p>",
                 "2 texts were replaced on the page."},
             Row{"by nothing", "<p>a <b>one</b></p><p><a name=\"n\">one</a>one</p>", "", 0, true,
                 "<p>a </p><p><a name=\"n\"></a></p>", "3 texts were replaced on the page."},
             Row{"through formatting", "<p><b>o</b>n<i>e</i>!</p><p>on<u>e</u></p>", "1", 0, true,
                 "<p><b>1</b>!</p><p>1</p>", "2 texts were replaced on the page."},
             Row{"one", "<p>one</p>", "1 & <2>", 0, true, "<p>1 &amp; &lt;2&gt;</p>",
                 "1 text was replaced on the page."},
         }) {
        SCOPED_TRACE(row.name);
        Open(row.before);
        form().txtReplace.UserSetText(row.with);
        form().cboDirection.UserSelect(row.down ? 1 : 0);
        for (int i = 0; i < row.finds; ++i)
            Click(FindNext);
        const std::string before = document().html();
        Click(ReplaceAll);
        EXPECT_EQ(document().innerHTML(*document().body()), row.after);
        EXPECT_EQ(Status(), row.status);
        EXPECT_TRUE(document().undo());
        EXPECT_EQ(document().html(), before);
        EXPECT_FALSE(document().canUndo()) << "one step";
        EXPECT_TRUE(program.project().IsDirty);
    }
    program.dialogs().ExpectMessage(Answer::Ok, kFinished);
    form().txtFind.UserSetText("nowhere");
    Click(ReplaceAll);
    EXPECT_EQ(program.dialogs().Pending(), 0u);
    EXPECT_FALSE(document().canUndo());
}

TEST_F(Finding, WorksOnTheSourceInHtmlView) {
    OpenSource("<p>one</p>\r\n one One");
    Click(FindNext);
    EXPECT_EQ(SelectedSource(), "3 one");
    Click(FindNext);
    EXPECT_EQ(SelectedSource(), "13 one");
    Click(Replace);
    EXPECT_EQ(box().Text(), "<p>one</p>\r\n 1 One");
    Click(Replace);
    EXPECT_EQ(SelectedSource(), "15 One") << "without a selection it looks for one";
    program.dialogs().ExpectMessage(Answer::Ok, kFinished);
    Click(FindNext);
    EXPECT_EQ(program.dialogs().Pending(), 0u);
    Click(FindNext);
    EXPECT_EQ(SelectedSource(), "3 one") << "afresh";
    form().chkOption_0.UserSetChecked(true);
    form().cboDirection.UserSelect(0);
    program.dialogs().ExpectMessage(Answer::Ok, kFinished);
    Click(FindNext);
    EXPECT_EQ(program.dialogs().Pending(), 0u);
    EXPECT_TRUE(program.page().HasPendingSource());
}

TEST_F(Finding, AWholeWordOfTheSourceStandsBetweenBlanks) {
    OpenSource("<p>one</p> one one one, one");
    form().chkOption_1.UserSetChecked(true);
    Click(FindNext);
    EXPECT_EQ(SelectedSource(), "11 one");
    Click(FindNext);
    EXPECT_EQ(SelectedSource(), "15 one");
    program.dialogs().ExpectMessage(Answer::Ok, kFinished);
    Click(FindNext);
    box().Select(0, 0);
    program.dialogs().ExpectMessage(Answer::Ok, kFinished);
    Click(ReplaceAll);
    EXPECT_EQ(box().Text(), "<p>one</p> 1 1 one, one");
    EXPECT_EQ(program.dialogs().Pending(), 0u);
}

TEST_F(Finding, ReplacesAllInTheSourceAsOneStep) {
    struct Row {
        const char* name;
        int finds;
        bool down;
        const char* after;
    };
    for (const Row& row :
         {Row{"from the caret", 0, true, "1 a 1 b 1"},
          Row{"from the match", 2, true, "one a 1 b 1"}, Row{"upwards", 2, false, "1 a 1 b One"}}) {
        SCOPED_TRACE(row.name);
        OpenSource("one a ONE b One");
        form().cboDirection.UserSelect(row.down ? 1 : 0);
        if (!row.down) box().Select(box().Text().size(), 0);
        for (int i = 0; i < row.finds; ++i)
            Click(FindNext);
        program.dialogs().ExpectMessage(Answer::Ok, kFinished);
        Click(ReplaceAll);
        EXPECT_EQ(box().Text(), row.after);
        EXPECT_EQ(program.dialogs().Pending(), 0u);
        box().Undo();
        EXPECT_EQ(box().Text(), "one a ONE b One");
    }
}

TEST_F(Finding, IsIgnoredInThePreviewAndWithoutAPage) {
    Open("<p>one</p>");
    program.page().picViewTab_MouseUp(2000);
    Click(FindNext);
    Click(ReplaceAll);
    program.page().SetToNormalEditMode();
    EXPECT_FALSE(document().canUndo());
    program.Press(904);
    Click(FindNext);
    EXPECT_TRUE(program.dialogs().Messages().empty());
}

TEST_F(Finding, AgainWithoutTheDialog) {
    program.Press(110);
    EXPECT_TRUE(form().IsOpen()) << "there is nothing to look for yet";
    Open("<p>one</p><p>one</p><p>one</p>");
    Click(FindNext);
    Click(Cancel);
    program.Press(110);
    EXPECT_FALSE(form().IsOpen());
    EXPECT_EQ(test::markupOf(document()), "<p>one</p><p>^one|</p><p>one</p>");
    program.Press(110);
    program.Press(111);
    EXPECT_EQ(test::markupOf(document()), "<p>one</p><p>^one|</p><p>one</p>");
    program.Press(110);
    program.dialogs().ExpectMessage(Answer::Ok, kFinished);
    program.Press(110);
    program.Press(110);
    EXPECT_EQ(test::markupOf(document()), "<p>^one|</p><p>one</p><p>one</p>");
    EXPECT_EQ(program.dialogs().Pending(), 0u);
}

TEST_F(Finding, RemembersWhatWasSearched) {
    Open("<p>one two</p>");
    Click(FindNext);
    form().txtFind.UserSetText("Two");
    form().txtReplace.UserSetText("2");
    Click(FindNext);
    form().txtFind.UserSetText("TWO");
    program.dialogs().ExpectMessage(Answer::Ok, kFinished);
    Click(FindNext);
    EXPECT_EQ(form().txtFind.Items(), (std::vector<std::string>{"TWO", "Two", "one"}));
    EXPECT_EQ(form().txtReplace.Items(), (std::vector<std::string>{"2", "1"}));
    EXPECT_EQ(form().txtFind.Text(), "TWO");
    // What is selected is what one looks for next, and another program knows it all.
    document().setSelection({});
    dom::Node* text = document().tags("p")[0]->firstChild();
    dom::TextRange(document(), {text, 0}, {text, 4}).select();
    program.Press(108);
    EXPECT_EQ(form().txtFind.Text(), "one");
    PageFinder other(program.context());
    document().setSelection({});
    other.Open(108);
    EXPECT_EQ(other.Form()->txtFind.Items(), (std::vector<std::string>{"TWO", "Two", "one"}));
}

}  // namespace
}  // namespace pw
