#include "platform/editor/HtmlEditor.h"

#include <gtest/gtest.h>

#include "platform/dom/TextRange.h"
#include "platform/editor/EditorFormats.h"
#include "platform/headless/HeadlessMessageLoop.h"
#include "platform/headless/MemoryClipboard.h"
#include "support/StandInEditor.h"
#include "support/TemporaryFolder.h"

namespace pw {
namespace {

class HtmlEditorTest : public testing::Test {
  public:
    void load(const std::string& body) {
        ASSERT_TRUE(editor.LoadHTML("<html><body>" + body + "</body></html>"));
    }
    std::string body() { return editor.DOM().innerHTML(*editor.DOM().body()); }
    dom::Node* text(const std::string& holds) {
        for (dom::Node* node = editor.DOM().root(); node; node = node->following())
            if (node->isText() && node->data().find(holds) != std::string::npos) return node;
        return nullptr;
    }
    void select(const std::string& what) {
        dom::Node* node = text(what);
        ASSERT_TRUE(node);
        const std::size_t at = node->data().find(what);
        editor.DOM().setSelection(
            {dom::SelectionType::Text, {node, at}, {node, at + what.size()}, nullptr});
    }
    void selectObject(const char* tag) {
        editor.DOM().setSelection(
            {dom::SelectionType::Control, {}, {}, editor.DOM().tags(tag).front()});
    }
    void caretBehind(const std::string& what) {
        dom::Node* node = text(what);
        ASSERT_TRUE(node);
        editor.DOM().collapse({node, node->data().find(what) + what.size()});
    }

    test::TemporaryFolder folder;
    std::unique_ptr<FileSystem> files = MakePosixFileSystem();
    HeadlessMessageLoop loop;
    MemoryClipboard clipboard;
    HtmlEditor editor{*files, loop, &clipboard};
};

TEST_F(HtmlEditorTest, AFileComesBackByteForByte) {
    const std::string bytes = "<HTML>\r\n<title>T\xE9st</title><Body BGCOLOR=red>\r\nx</body>";
    const std::string path = folder.Put("site\\a page.htm", bytes);
    int completed = 0;
    editor.DocumentComplete = [&] { ++completed; };
    ASSERT_TRUE(editor.LoadDocument(path));
    loop.ProcessEvents();
    EXPECT_EQ(completed, 1);
    EXPECT_EQ(editor.CurrentDocumentPath(), path);
    EXPECT_EQ(editor.BaseURL(), folder.Path("site") + "\\");
    EXPECT_EQ(editor.DocumentTitle(), "T\xC3\xA9st");
    EXPECT_FALSE(editor.IsDirty());
    EXPECT_EQ(editor.SaveDocument(folder.Path("copy.htm")), 0);
    EXPECT_EQ(folder.Get("copy.htm"), bytes);
}

TEST_F(HtmlEditorTest, WhatCannotBeLoadedLeavesAnEmptyDocument) {
    struct Row {
        const char* name;
        std::string path;
    };
    std::string deep;
    for (int i = 0; i < 200'000; ++i)
        deep += "<div>";
    const Row rows[] = {{"missing", folder.Path("nothing.htm")},
                        {"a folder", folder.Path()},
                        {"nested beyond reason", folder.Put("deep.htm", deep)}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        load("<p>before</p>");
        EXPECT_FALSE(editor.LoadDocument(row.path));
        EXPECT_FALSE(editor.LastError().empty());
        EXPECT_EQ(body(), "");
        EXPECT_FALSE(editor.IsDirty());
    }
}

TEST_F(HtmlEditorTest, AFileThatCannotBeWrittenSaysSo) {
    load("x");
    EXPECT_NE(editor.SaveDocument(folder.Path("no\\such\\folder\\x.htm")), 0);
    EXPECT_FALSE(editor.LastError().empty());
}

TEST_F(HtmlEditorTest, WritingTheTextKeepsWhatStandsInBoth) {
    load("<P ID=a>one</P><p>two</p>");
    const dom::Node* first = editor.DOM().elementById("a");
    EXPECT_TRUE(editor.SetDocumentHTML("<html><body><P ID=a>one</P><p>three</p></body></html>"));
    EXPECT_EQ(editor.DOM().elementById("a"), first);
    EXPECT_TRUE(editor.IsDirty());
    editor.ExecCommand(DECMD_UNDO);
    EXPECT_EQ(body(), "<P ID=a>one</P><p>two</p>");
    EXPECT_FALSE(editor.IsDirty());
}

TEST_F(HtmlEditorTest, DisplayChangedComesOnceForManyChanges) {
    load("<p>one</p>");
    loop.ProcessEvents();
    int changed = 0;
    editor.DisplayChanged = [&] { ++changed; };
    editor.DOM().setAttribute(*editor.DOM().tags("p")[0], "id", "x");
    editor.DOM().setTitle("t");
    EXPECT_EQ(changed, 0);
    loop.ProcessEvents();
    EXPECT_EQ(changed, 1);
    select("one");
    loop.ProcessEvents();
    EXPECT_EQ(changed, 2);
    loop.ProcessEvents();
    EXPECT_EQ(changed, 2);
}

TEST_F(HtmlEditorTest, AnEditorMayGoWithEventsStillDue) {
    int changed = 0;
    {
        HtmlEditor other(*files, loop);
        other.DisplayChanged = [&] { ++changed; };
        other.NewDocument();
        other.DOM().setTitle("t");
    }
    loop.ProcessEvents();
    EXPECT_EQ(changed, 0);
}

TEST_F(HtmlEditorTest, StatesFollowTheSelection) {
    struct Row {
        const char* name;
        void (*select)(HtmlEditorTest&);
        int command;
        CommandState state;
    };
    const auto none = [](HtmlEditorTest& test) { test.editor.DOM().setSelection({}); };
    const auto caret = [](HtmlEditorTest& test) { test.caretBehind("one"); };
    const auto word = [](HtmlEditorTest& test) { test.select("one"); };
    const auto picture = [](HtmlEditorTest& test) { test.selectObject("img"); };
    const auto link = [](HtmlEditorTest& test) { test.caretBehind("link"); };
    const Row rows[] = {
        {"cut without a selection", none, DECMD_CUT, CommandState::Disabled},
        {"cut at a caret", caret, DECMD_CUT, CommandState::Disabled},
        {"cut a word", word, DECMD_CUT, CommandState::Enabled},
        {"copy a picture", picture, DECMD_COPY, CommandState::Enabled},
        {"delete at a caret", caret, DECMD_DELETE, CommandState::Disabled},
        {"delete a word", word, DECMD_DELETE, CommandState::Enabled},
        {"paste", caret, DECMD_PASTE, CommandState::Enabled},
        {"select all", none, DECMD_SELECTALL, CommandState::Enabled},
        {"undo of nothing", none, DECMD_UNDO, CommandState::Disabled},
        {"unlink outside a link", caret, DECMD_UNLINK, CommandState::Disabled},
        {"unlink in a link", link, DECMD_UNLINK, CommandState::Enabled},
        {"bold without a view", word, DECMD_BOLD, CommandState::Disabled},
        {"an unknown command", word, 12345, CommandState::Disabled},
        {"a new table at a caret", caret, DECMD_INSERTTABLE, CommandState::Enabled},
        {"a new table over a picture", picture, DECMD_INSERTTABLE, CommandState::Disabled},
        {"a row outside of tables", caret, DECMD_INSERTROW, CommandState::Disabled},
        {"a layer without a view", picture, DECMD_MAKE_ABSOLUTE, CommandState::Disabled},
        {"names of formats", none, DECMD_GETBLOCKFMTNAMES, CommandState::Enabled},
    };
    load("<p>one <a href=x>link</a> <img src=a.gif></p>");
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        row.select(*this);
        EXPECT_EQ(editor.QueryStatus(row.command), row.state);
    }
}

/** A view that knows where everything stands, and nothing else. */
struct StillSurface : test::StandInEditor {
    std::optional<Placement> FreePlaceOf(const dom::Node&) override { return Placement{10, 20}; }
    void MarkCells(const std::vector<dom::Node*>& cells) override {
        marked.push_back(cells.size());
    }
    std::vector<std::size_t> marked;
};

TEST_F(HtmlEditorTest, LayersArePlacedByTheView) {
    StillSurface surface;
    HtmlEditor seen(*files, loop, &clipboard, &surface);
    ASSERT_TRUE(seen.LoadHTML("<body><img></body>"));
    dom::Node* image = seen.DOM().images().front();
    seen.DOM().setSelection({dom::SelectionType::Control, {}, {}, image});
    seen.ExecCommand(DECMD_MAKE_ABSOLUTE);
    EXPECT_EQ(image->getAttribute("style"), "position: absolute; left: 10px; top: 20px");
    EXPECT_EQ(seen.QueryStatus(DECMD_MAKE_ABSOLUTE), CommandState::Latched);
    surface.events.placed(*image, {5, 6, 70, {}});
    EXPECT_EQ(image->getAttribute("style"), "position: absolute; left: 5px; top: 6px");
    EXPECT_EQ(image->getAttribute("width"), "70");
    seen.ExecCommand(DECMD_UNDO);
    seen.ExecCommand(DECMD_UNDO);
    EXPECT_EQ(seen.DocumentHTML(), "<body><img></body>");
}

TEST_F(HtmlEditorTest, CellsThatACommandWouldActOnAreMarked) {
    StillSurface surface;
    HtmlEditor seen(*files, loop, &clipboard, &surface);
    ASSERT_TRUE(seen.LoadHTML("<body><table><tr><td>a<td>b<tr><td>c<td>d</table>x</body>"));
    const auto cells = seen.DOM().tags("td");
    const auto select = [&](dom::Node* from, dom::Node* to) {
        seen.DOM().setSelection(
            {dom::SelectionType::Text, {from->firstChild(), 0}, {to->firstChild(), 1}, nullptr});
        loop.ProcessEvents();
    };
    loop.ProcessEvents();
    select(cells[0], cells[0]);
    EXPECT_TRUE(surface.marked.empty());
    select(cells[0], cells[2]);
    select(cells[0], cells[3]);
    select(cells[0], cells[3]);
    select(cells[1], cells[1]);
    EXPECT_EQ(surface.marked, (std::vector<std::size_t>{2, 4, 0}));
}

TEST_F(HtmlEditorTest, CutCopyAndPaste) {
    load("<p>One <b>two</b> three</p><p>Four</p>");
    select("two");
    editor.ExecCommand(DECMD_COPY);
    EXPECT_EQ(clipboard.Text(), "two");
    EXPECT_FALSE(editor.IsDirty());
    editor.ExecCommand(DECMD_CUT);
    EXPECT_EQ(editor.DOM().innerText(*editor.DOM().body()).find("two"), std::string::npos);
    caretBehind("Four");
    editor.ExecCommand(DECMD_PASTE);
    EXPECT_NE(editor.DOM().innerText(*editor.DOM().body()).find("Fourtwo"), std::string::npos);
    // Each is one step.
    EXPECT_TRUE(editor.DOM().undo());
    EXPECT_TRUE(editor.DOM().undo());
    EXPECT_FALSE(editor.DOM().canUndo());
    EXPECT_EQ(body(), "<p>One <b>two</b> three</p><p>Four</p>");
}

TEST_F(HtmlEditorTest, ObjectsAreCutAndReplacedWhole) {
    load("<p>a<img src=x.gif>b</p>");
    selectObject("img");
    editor.ExecCommand(DECMD_CUT);
    EXPECT_EQ(body(), "<p>ab</p>");
    EXPECT_NE(clipboard.Html().find("<img src=x.gif>"), std::string::npos);
    editor.ExecCommand(DECMD_UNDO);
    selectObject("img");
    clipboard.Set("word", "");
    editor.ExecCommand(DECMD_PASTE);
    EXPECT_EQ(body(), "<p>awordb</p>");
    editor.ExecCommand(DECMD_UNDO);
    EXPECT_EQ(body(), "<p>a<img src=x.gif>b</p>");
}

TEST_F(HtmlEditorTest, PastingIntoAPageWithoutACaret) {
    load("<p>one</p>");
    clipboard.Set("", "<h1>two</h1>");
    editor.DOM().setSelection({});
    editor.ExecCommand(DECMD_PASTE);
    EXPECT_EQ(body(), "<p>one</p><h1>two</h1>");
}

TEST_F(HtmlEditorTest, PastedParagraphsStandOnTheirOwn) {
    struct Row {
        const char* name;
        const char* page;
        const char* pasted;
    };
    const Row rows[] = {
        {"in bold text of a cell", "<table><tbody><tr><td><b>ab|cd</b></td></tr></tbody></table>",
         "<table><tbody><tr><td><b>ab</b><p>x</p><p>y|</p><b>cd</b></td></tr></tbody></table>"},
        {"in bold text of a paragraph", "<p><b>ab|cd</b></p>",
         "<p><b>ab</b></p><p>x</p><p>y|</p><p><b>cd</b></p>"},
        {"in an empty paragraph", "<p>a</p><p>|<br></p><p>b</p>",
         "<p>a</p><p>x</p><p>y|</p><p>b</p>"},
        {"in an item", "<ul><li>ab|</li></ul>", "<ul><li>ab<p>x</p><p>y|</p></li></ul>"},
    };
    for (const Row& row : rows) {
        const std::string page = row.page;
        const std::size_t at = page.find('|');
        load(page.substr(0, at) + "<!--caret-->" + page.substr(at + 1));
        dom::Node* mark = editor.DOM().tags("!")[0];
        dom::Node* before = mark->previous();
        dom::Node* parent = mark->parent();
        const std::size_t index = mark->index();
        editor.DOM().removeNode(*mark);
        editor.DOM().collapse(before && before->isText()
                                  ? dom::Position{before, before->data().size()}
                                  : dom::Position{parent, index});
        clipboard.Set("", "<p>x</p><p>y</p>");
        editor.ExecCommand(DECMD_PASTE);
        const dom::Position caret = editor.DOM().selection().focus;
        ASSERT_TRUE(caret.node && caret.node->isText()) << row.name;
        editor.DOM().replaceText(*caret.node, caret.offset, 0, "|");
        EXPECT_EQ(body(), row.pasted) << row.name;
    }
}

TEST_F(HtmlEditorTest, SelectAllThenDeleteEmptiesThePage) {
    load("<p>one</p><table><tr><td>x</td></tr></table>");
    editor.ExecCommand(DECMD_SELECTALL);
    editor.ExecCommand(DECMD_DELETE);
    EXPECT_EQ(editor.DOM().innerText(*editor.DOM().body()).find_first_not_of("\r\n "),
              std::string::npos);
    editor.ExecCommand(DECMD_UNDO);
    EXPECT_EQ(body(), "<p>one</p><table><tr><td>x</td></tr></table>");
}

TEST_F(HtmlEditorTest, UnlinkKeepsTheTextAndBookmarks) {
    load("<p><a href=x>li<b>nk</b></a> and <a name=m>mark</a> and <a href=y>other</a></p>");
    caretBehind("nk");
    editor.ExecCommand(DECMD_UNLINK);
    EXPECT_EQ(body(), "<p>li<b>nk</b> and <a name=m>mark</a> and <a href=y>other</a></p>");
    editor.ExecCommand(DECMD_SELECTALL);
    editor.ExecCommand(DECMD_UNLINK);
    EXPECT_EQ(body(), "<p>li<b>nk</b> and <a name=m>mark</a> and other</p>");
    editor.ExecCommand(DECMD_UNDO);
    editor.ExecCommand(DECMD_UNDO);
    EXPECT_FALSE(editor.IsDirty());
}

TEST_F(HtmlEditorTest, BlockFormats) {
    struct Row {
        const char* html;
        const char* format;
    };
    const Row rows[] = {
        {"<p>x</p>", "Normal"},
        {"x", "Normal"},
        {"<h3>a <b>x</b></h3>", "Heading 3"},
        {"<pre>x</pre>", "Formatted"},
        {"<address>x</address>", "Address"},
        {"<ol><li>x</ol>", "Numbered List"},
        {"<ul><li>x</ul>", "Bulleted List"},
        {"<dir><li>x</dir>", "Directory List"},
        {"<menu><li>x</menu>", "Menu List"},
        {"<dl><dt>x</dl>", "Definition Term"},
        {"<dl><dd>x</dl>", "Definition"},
        {"<ul><li><table><tr><td>x</table></ul>", "Normal"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.html);
        load(row.html);
        caretBehind("x");
        EXPECT_EQ(editor.ExecCommand(DECMD_GETBLOCKFMT), row.format);
    }
    EXPECT_TRUE(editor.ExecCommand(DECMD_GETBLOCKFMTNAMES)
                    .starts_with("Normal\nFormatted\nAddress\nHeading 1\n"));
}

TEST(EditorFormatsTest, TextsOfTheViewAndOfTheDialogs) {
    EXPECT_EQ(ColorText("rgb(255, 0, 16)"), "#ff0010");
    EXPECT_EQ(ColorText("rgba(1, 2, 3, 0.5)"), "#010203");
    EXPECT_EQ(ColorText("16711680"), "#0000ff");
    EXPECT_EQ(ColorText("red"), "red");
    EXPECT_EQ(FirstFont("\"Times New Roman\", serif"), "Times New Roman");
    EXPECT_EQ(FirstFont("Arial"), "Arial");
    EXPECT_EQ(AddressOfFolder("\\home\\ann\\my site\\"), "file:///home/ann/my%20site/");
    EXPECT_EQ(AddressOfFolder("\\home\\caf\xC3\xA9"), "file:///home/caf%C3%A9/");
    EXPECT_EQ(AddressOfFolder("http://example.org/"), "http://example.org/");
}

}  // namespace
}  // namespace pw
