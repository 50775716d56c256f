#include "mainwindow/PageDrops.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "project/Attachments.h"
#include "project/Pages.h"
#include "support/TestProgram.h"

namespace pw {
namespace {

using std::string_literals::operator""s;
using testing::HasSubstr;

constexpr int kPaste = 105;
constexpr int kUndo = 101;

struct PageDropsTest : testing::Test {
    PageDropsTest() {
        program.Press(3);
        dom::Document& document = Document();
        document.setInnerHTML(*document.body(), "<p>before x behind</p>");
        dom::Node* text = document.tags("p")[0]->firstChild();
        document.collapse({text, std::string("before x").size()});
        document.clearHistory();
        document.markClean();
    }
    dom::Document& Document() { return program.page().Document(); }
    std::string Body() { return Document().innerHTML(*Document().body()); }
    std::string Put(const std::string& name, const std::string& bytes) {
        return program.outer.folder.Put(name, bytes);
    }
    test::TestProgram program;
    const std::string gif = "GIF89a\x09\0\x07\0\xF0\0\0;"s;
};

TEST_F(PageDropsTest, DroppedFilesStandAtTheCaretAndAreOneStep) {
    const std::string before = Body();
    program.page().docDHTMLEditor.FilesBrought({Put("a.gif", gif), Put("b.pdf", "%PDF")});
    EXPECT_EQ(Body(),
              "<p>before x<img src=\"media/a.gif\" alt=\"a\" width=\"9\" height=\"7\"><br>"
              "<a href=\"media/b.pdf\">b.pdf</a> behind</p>");
    program.Settle();
    EXPECT_TRUE(program.project().IsDirty);
    program.Press(kUndo);
    EXPECT_EQ(Body(), before);
    EXPECT_FALSE(Document().canUndo());
}

TEST_F(PageDropsTest, FilesOfAFileManagerArePasted) {
    program.outer.clipboard.SetFiles({Put("a.gif", gif), program.outer.folder.Path("gone.gif")});
    program.dialogs().ExpectMessage(Answer::Ok, "'gone.gif' does not exist.");
    program.Press(kPaste);
    EXPECT_THAT(Body(), HasSubstr("x<img src=\"media/a.gif\""));

    // The list of what the page carries follows when it is written.
    Page* page = GetPage(program.context().project, program.context().CurrentPageKey);
    ASSERT_TRUE(page);
    SaveAttachments(program.context().project, Document(), program.page().BaseURL(), *page);
    ASSERT_EQ(page->Attachments().Count(), 1);
    EXPECT_EQ(GetFileName(page->Attachments().Item(1)->Filename()), "a.gif");
}

TEST_F(PageDropsTest, ADroppedPageShowsInTheExplorer) {
    const std::size_t nodes = program.window().tvwProjectExplorer.Count();
    program.page().docDHTMLEditor.FilesBrought({Put("in\\b.html", "<title>B</title>")});
    EXPECT_THAT(Body(), HasSubstr("x<a href=\"b.htm\">B</a>"));
    EXPECT_EQ(program.window().tvwProjectExplorer.Count(), nodes + 1);
}

TEST_F(PageDropsTest, PicturesInPastedMarkupAreCopied) {
    const std::string picture = ToNativePath(Put("lu.gif", gif));
    program.outer.clipboard.Set("", "<p class=x>map: <img src='file://" + picture + "'></p>");
    program.Press(kPaste);
    EXPECT_EQ(Body(), "<p>before xmap: <img src=\"media/lu.gif\"> behind</p>");
}

TEST_F(PageDropsTest, MarkupPastedIntoAParagraphKeepsParagraphsApart) {
    struct Row {
        const char* name;
        const char* html;
        const char* body;
    };
    const Row rows[] = {
        {"one paragraph", "<p>new</p>", "<p>before xnew behind</p>"},
        {"two", "<p>new</p><p>more</p>", "<p>before x</p><p>new</p><p>more</p><p> behind</p>"},
        {"a list", "<ul><li>new</li></ul>", "<p>before x</p><ul><li>new</li></ul><p> behind</p>"},
    };
    const std::string before = Body();
    for (const Row& row : rows) {
        program.outer.clipboard.Set("", row.html);
        program.Press(kPaste);
        EXPECT_EQ(Body(), row.body) << row.name;
        // As the page is read when it is opened again.
        const auto again = dom::Document::parse(Document().html());
        EXPECT_EQ(again->all().size(), Document().all().size()) << row.name;
        program.Press(kUndo);
        EXPECT_EQ(Body(), before) << row.name;
    }
}

}  // namespace
}  // namespace pw
