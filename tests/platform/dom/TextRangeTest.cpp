#include "platform/dom/TextRange.h"
#include "support/CpuTimer.h"

#include "support/MarkupSelection.h"

namespace pw::dom {
namespace {

using test::markupOf;
using test::pageOf;
using test::stateOf;

TEST(Selection, IsDeleted) {
    struct Row {
        const char* name;
        const char* before;
        const char* after;
    };
    for (const Row& row : {
             Row{"a caret", "<p>a|b</p>", "<p>a|b</p>"},
             Row{"within a text", "<p>a^bc|d</p>", "<p>a|d</p>"},
             Row{"backwards", "<p>a|bc^d</p>", "<p>a|d</p>"},
             Row{"over an element", "<p>a^b<b>c</b>d|e</p>", "<p>a|e</p>"},
             Row{"into an element", "<p>a^b<b>c|d</b>e</p>", "<p>a|<b>d</b>e</p>"},
             Row{"two paragraphs become one", "<p>a^b</p><p>x</p><p>c|d</p>", "<p>a|d</p>"},
             Row{"with what follows", "<p>a^b</p><p>c|<i>d</i></p><hr>", "<p>a|<i>d</i></p><hr>"},
             Row{"two list items", "<ul><li>a^b</li><li>c|d</li></ul>", "<ul><li>a|d</li></ul>"},
             Row{"out of a list", "<p>a^b</p><ul><li>c|d</li><li>e</li></ul>",
                 "<p>a|d</p><ul><li>e</li></ul>"},
             Row{"cells stay",
                 "<table><tbody><tr><td>a^b</td><td>c</td><td>d|e</td></tr></tbody></table>",
                 "<table><tbody><tr><td>a|</td><td></td><td>e</td></tr></tbody></table>"},
             Row{"a whole table",
                 "<p>a^b</p><table><tbody><tr><td>x</td></tr></tbody></table><p>c|d</p>",
                 "<p>a|d</p>"},
             Row{"an image", "<p>a^<img>|b</p>", "<p>a|b</p>"},
         }) {
        SCOPED_TRACE(row.name);
        const auto page = pageOf(row.before);
        const std::string html = page->html();
        page->deleteSelection();
        EXPECT_EQ(markupOf(*page), row.after);
        if (!page->canUndo()) continue;
        page->undo();
        EXPECT_EQ(stateOf(*page), std::string(row.before) + " redo");
        EXPECT_EQ(page->html(), html);
        page->redo();
        EXPECT_EQ(stateOf(*page), std::string(row.after) + " undo");
    }
}

TEST(TextRange, PastesNothingWhereNoContentCanStand) {
    struct Row {
        const char* tag;
        const char* before;
        const char* pasted;
        const char* after;
    };
    for (const Row& row : {
             Row{"input", "<p>a<input>b</p>", "x", "<p>a<input>xb</p>"},
             Row{"img", "<p><img></p>", "x", "<p><img>x</p>"},
             Row{"hr", "<hr>", "<p>x</p>", "<hr><p>x</p>"},
             Row{"script", "<script>f()</script>", "x", "<script>f()</script>x"},
             Row{"textarea", "<p><textarea>a</textarea></p>", "x",
                 "<p><textarea>a</textarea>x</p>"},
             Row{"select", "<select><option>a</option></select>", "x",
                 "<select><option>a</option></select>x"},
             Row{"option", "<select><option>a</option></select>", "x",
                 "<select><option>a</option></select>x"},
             Row{"object", "<object><p>a</p></object>", "x", "<object><p>a</p></object>x"},
             Row{"table", "<table><tbody><tr><td>a</td></tr></tbody></table>", "x",
                 "<table><tbody><tr><td>xa</td></tr></tbody></table>"},
             Row{"tr", "<table><tbody><tr><td>a</td></tr></tbody></table>", "<b>x</b>",
                 "<table><tbody><tr><td><b>x</b>a</td></tr></tbody></table>"},
             Row{"table", "<table></table>", "x", "<table></table>x"},
             Row{"tr", "<table><tbody><tr><td>a</td></tr></tbody></table>", "<td>x</td>",
                 "<table><tbody><tr><td>x</td><td>a</td></tr></tbody></table>"},
             Row{"ul", "<ul><li>a</li></ul>", "x", "<ul><li>xa</li></ul>"},
             Row{"ul", "<ul><li>a</li></ul>", "<li>x</li>", "<ul><li>x</li><li>a</li></ul>"},
             Row{"title", "<p>a</p>", "x", "x<p>a</p>"},
             Row{"a", "<p>a<a type=\"omMerge\">v</a>b</p>", "x",
                 "<p>a<a type=\"omMerge\">v</a>xb</p>"},
         }) {
        SCOPED_TRACE(row.before);
        for (const bool isRange : {false, true}) {
            const auto page = pageOf(row.before);
            Node* element = page->tags(row.tag).at(0);
            const bool isList = element->is("ul");
            if (isRange && isList) continue;  // what is selected in a list is text
            const Position start{element, 0};
            const Position end{element, isRange ? element->children().size() : 0};
            TextRange(*page, start, end).pasteHTML(row.pasted);
            EXPECT_EQ(markupOf(*page), row.after) << isRange;
            const auto again = Document::parseText(page->html());
            EXPECT_EQ(markupOf(*again), row.after) << "reads back as it is";
        }
    }
}

TEST(Selection, OfAnObject) {
    const auto page = pageOf("<p>a<img>b</p>");
    Node* image = page->images()[0];
    const Position place{image->parent(), 1};
    page->setSelection({SelectionType::Control, place, place, image});
    EXPECT_EQ(page->elementAtCaret(), image);
    EXPECT_TRUE(TextRange::fromSelection(*page).collapsed());
    page->deleteSelection();
    EXPECT_EQ(markupOf(*page), "<p>a|b</p>");
    page->undo();
    EXPECT_EQ(page->selection().control, image);
}

TEST(Selection, StaysAtItsPlaceWhenTheProgramEdits) {
    using Edit = void (*)(Document&, Node&);
    struct Row {
        const char* name;
        const char* before;
        Edit edit;  ///< gets the first child of the body
        const char* after;
    };
    for (const Row& row : {
             Row{"text in front", "<p>ab|c</p>",
                 [](Document&d, Node&p) { d.replaceText(*p.firstChild(), 0, 1, "xyz"); },
                 "<p>xyzb|c</p>"},
             Row{"text behind", "<p>ab|c</p>",
                 [](Document&d, Node&p) { d.replaceText(*p.firstChild(), 2, 1, "xyz"); },
                 "<p>ab|xyz</p>"},
             Row{"text around", "<p>ab|c</p>",
                 [](Document&d, Node&p) { d.replaceText(*p.firstChild(), 1, 2, "x"); },
                 "<p>a|x</p>"},
             Row{"the node goes", "<p>a<b>b|</b>c</p>",
                 [](Document&d, Node&p) { d.removeNode(*p.firstChild()->next()); }, "<p>a|c</p>"},
             Row{"a sibling comes", "<p><b>a</b>|<i>b</i></p>",
                 [](Document&d, Node&p) {
                     d.insertNode(p, *d.createElement("hr"), p.firstChild());
                 },
                 "<p><hr><b>a</b>|<i>b</i></p>"},
             Row{"a sibling goes", "<p><b>a</b><i>b</i>|</p>",
                 [](Document&d, Node&p) { d.removeNode(*p.firstChild()); }, "<p><i>b</i>|</p>"},
             Row{"the text is cut in two", "<p>a^bc|d</p>",
                 [](Document&d, Node&p) { d.splitText(*p.firstChild(), 2); }, "<p>a^bc|d</p>"},
         }) {
        SCOPED_TRACE(row.name);
        const auto page = pageOf(row.before);
        row.edit(*page, *page->body()->firstChild());
        EXPECT_EQ(markupOf(*page), row.after);
        page->undo();
        EXPECT_EQ(markupOf(*page), row.before);
    }
}

TEST(TextRange, PastesMarkup) {
    struct Row {
        const char* name;
        const char* before;
        const char* html;
        const char* after;
    };
    for (const Row& row : {
             Row{"text into a paragraph", "<p>a|b</p>", "x<b>y</b>", "<p>ax<b>y</b>|b</p>"},
             Row{"over a selection", "<p>a^bc|d</p>", "x", "<p>ax|d</p>"},
             Row{"a block splits the paragraph", "<p class=\"k\">a|b</p>", "<hr>",
                 "<p class=\"k\">a</p><hr>|<p class=\"k\">b</p>"},
             Row{"through formatting", "<p>a<b>b|c</b></p>", "<hr>",
                 "<p>a<b>b</b></p><hr>|<p><b>c</b></p>"},
             Row{"at the beginning", "<p>|a</p>", "<table></table>", "<table></table>|<p>a</p>"},
             Row{"at the end", "<p>a|</p>", "<hr>", "<p>a</p><hr>|"},
             Row{"text around a block", "<p>a|b</p>", "x<hr>y", "<p>ax</p><hr><p>y|b</p>"},
             Row{"into a cell", "<table><tbody><tr><td>a|</td></tr></tbody></table>", "<p>x</p>",
                 "<table><tbody><tr><td>a<p>x</p>|</td></tr></tbody></table>"},
             Row{"into an empty body", "|", "<p>x</p>", "<p>x</p>|"},
             Row{"nothing", "<p>a^b|c</p>", "", "<p>a|c</p>"},
         }) {
        SCOPED_TRACE(row.name);
        const auto page = pageOf(row.before);
        const std::string html = page->html();
        TextRange::fromSelection(*page).pasteHTML(row.html);
        EXPECT_EQ(stateOf(*page), std::string(row.after) + " undo");
        page->undo();
        EXPECT_EQ(stateOf(*page), std::string(row.before) + " redo");
        EXPECT_EQ(page->html(), html);
        page->redo();
        EXPECT_EQ(stateOf(*page), std::string(row.after) + " undo");
    }
}

TEST(TextRange, KeepsBytesWhenAParagraphIsSplit) {
    const auto page = Document::parseText("<body><P>&eacute;x &Auml;y</P></body>");
    Node* text = page->tags("p")[0]->firstChild();
    TextRange(*page, {text, 3}, {text, 3}).pasteHTML("<HR>");
    EXPECT_EQ(page->html(), "<body><P>&eacute;x</P><HR><p> &Auml;y</p></body>");
}

TEST(TextRange, ReadsAndReplacesText) {
    struct Row {
        const char* name;
        const char* before;
        const char* text;
        const char* html;
        const char* with;
        const char* after;  ///< with the range selected
    };
    for (const Row& row : {
             Row{"within a text", "<p>a^b|c</p>", "b", "b", "x&y", "<p>a^x&amp;y|c</p>"},
             Row{"over elements", "<p>a^b<b>c</b>d|e</p>", "bcd", "b<b>c</b>d", "x",
                 "<p>a^x|e</p>"},
             Row{"half an element", "<p>^a<b>b|c</b></p>", "ab", "a<b>b</b>", "x",
                 "<p>^x|<b>c</b></p>"},
             Row{"two paragraphs", "<p>a^b</p><p>c|d</p>", "b\r\n\r\nc", "<p>b</p><p>c</p>", "x",
                 "<p>a^x|d</p>"},
             Row{"lines", "<p>a^b|c</p>", "b", "b", "x\r\ny", "<p>a^x<br>y|c</p>"},
         }) {
        SCOPED_TRACE(row.name);
        const auto page = pageOf(row.before);
        TextRange range = TextRange::fromSelection(*page);
        EXPECT_EQ(range.text(), row.text);
        EXPECT_EQ(range.htmlText(), row.html);
        range.setText(row.with);
        range.select();
        EXPECT_EQ(stateOf(*page), std::string(row.after) + " undo");
        page->undo();
        EXPECT_EQ(stateOf(*page), std::string(row.before) + " redo");
    }
}

TEST(TextRange, Finds) {
    struct Row {
        const char* name;
        const char* before;  ///< looks from the caret
        const char* what;
        int span;
        int flags;
        const char* after;  ///< "" when it finds nothing
    };
    const int all = 100000;
    for (const Row& row : {
             Row{"forwards", "<p>|one two one</p>", "one", all, 0, "<p>^one| two one</p>"},
             Row{"from the caret", "<p>o|ne two one</p>", "one", all, 0, "<p>one two ^one|</p>"},
             Row{"backwards", "<p>one two one|</p>", "one", -all, 0, "<p>one two ^one|</p>"},
             Row{"backwards from within", "<p>one two on|e</p>", "one", -all, 0,
                 "<p>^one| two one</p>"},
             Row{"across elements", "<p>|a<b>b</b>c</p>", "ABC", all, 0, "<p>^a<b>b</b>c|</p>"},
             Row{"across collapsed blanks", "<p>|a\n  b</p>", "a b", all, 0, "<p>^a\n  b|</p>"},
             Row{"with case", "<p>|One one</p>", "one", all, TextRange::MatchCase,
                 "<p>One ^one|</p>"},
             Row{"whole words", "<p>|bones one</p>", "one", all, TextRange::WholeWord,
                 "<p>bones ^one|</p>"},
             Row{"beyond the span", "<p>|one two</p>", "two", 5, 0, ""},
             Row{"letters of other lengths", "<p>|x \xC3\x84pfel</p>", "\xC3\xA4PFEL", all, 0,
                 "<p>x ^\xC3\x84pfel|</p>"},
             Row{"nothing", "<p>|a</p>", "b", all, 0, ""},
         }) {
        SCOPED_TRACE(row.name);
        const auto page = pageOf(row.before);
        TextRange range = TextRange::fromSelection(*page);
        EXPECT_EQ(range.findText(row.what, row.span, row.flags), *row.after != 0);
        range.select();
        if (*row.after) {
            EXPECT_EQ(markupOf(*page), row.after);
        }
    }
}

TEST(TextRange, ReplacesWhatItHoldsInTheFormattingOfItsStart) {
    struct Row {
        const char* name;
        const char* before;
        const char* with;
        const char* after;
    };
    for (const Row& row : {
             Row{"within a text", "<p>a^bc|d</p>", "x", "<p>a^x|d</p>"},
             Row{"out of formatting", "<p><b>^wo</b>rd| x</p>", "new", "<p><b>^new|</b> x</p>"},
             Row{"into formatting", "<p>a ^wo<b>rd|</b>!</p>", "new", "<p>a ^new|!</p>"},
             Row{"a part of formatting", "<p>^a<i>b|c</i></p>", "x", "<p>^x|<i>c</i></p>"},
             Row{"formatting is emptied", "<p>a<b><i>^b|</i></b>c</p>", "", "<p>a|c</p>"},
             Row{"a bookmark stays", "<p><a name=\"n\">^b|</a>c</p>", "",
                 "<p><a name=\"n\">|</a>c</p>"},
             Row{"lines", "<p>a^b|c</p>", "x\r\ny", "<p>a^x<br>y|c</p>"},
         }) {
        SCOPED_TRACE(row.name);
        const auto page = pageOf(row.before);
        const std::string html = page->html();
        TextRange range = TextRange::fromSelection(*page);
        range.setText(row.with);
        range.select();
        EXPECT_EQ(markupOf(*page), row.after);
        page->undo();
        EXPECT_EQ(page->html(), html);
        EXPECT_FALSE(page->canUndo());
    }
}

TEST(TextRange, ReplacesManyAtOnce) {
    struct Row {
        const char* name;
        const char* before;
        const char* with;
        const char* after;
    };
    for (const Row& row : {
             Row{"bytes in between stay", "<p>one&eacute;one &amp;one</p>", "1",
                 "<p>1&eacute;1 &amp;1</p>"},
             Row{"what is put in is escaped", "<p>one one</p>", "<&>",
                 "<p>&lt;&amp;&gt; &lt;&amp;&gt;</p>"},
             Row{"what would become a reference", "<p>& one &one</p>", "amp;",
                 "<p>& amp; &amp;amp;</p>"},
             Row{"over formatting", "<p>one o<b>n</b>e one on<i>e one</i></p>", "1",
                 "<p>1 1 1 1<i> 1</i></p>"},
             Row{"the same", "<p>one &eacute; one</p>", "one", "<p>one &eacute; one</p>"},
             Row{"longer and shorter", "<p>one ONE o<b>ne</b></p>", "three",
                 "<p>three three three</p>"},
         }) {
        SCOPED_TRACE(row.name);
        const auto page = Document::parseText(row.before);
        std::vector<TextRange> found = TextRange(*page).findAll("one", 999, 0);
        TextRange::replaceAll(found, row.with);
        EXPECT_EQ(page->html(), row.after);
        for (const TextRange& range : found)
            EXPECT_EQ(range.text(), row.with);
        EXPECT_EQ(page->undo(), std::string(row.before) != row.after);
        EXPECT_EQ(page->html(), row.before);
    }
    // A text as long as a page takes no longer than many short ones.
    std::string html = "<pre>";
    for (int i = 0; i < 15000; ++i)
        html += "a line with &eacute; and one more\n";
    const auto page = Document::parseText(html);
    std::vector<TextRange> found = TextRange(*page).findAll("one", 999999, 0);
    EXPECT_EQ(found.size(), 15000u);
    const test::CpuTimer timer;
    TextRange::replaceAll(found, "none");
    EXPECT_LT(timer.Seconds(), 3);
    EXPECT_EQ(page->html().size(), html.size() + 15000);
}

TEST(TextRange, MovesByVisibleCharacters) {
    const auto page = pageOf("<p>a\xC3\xA4<b>c</b></p><p>|d</p>");
    TextRange range = TextRange::fromSelection(*page);
    EXPECT_EQ(range.moveCharacters(-3), -3);
    range.select();
    EXPECT_EQ(markupOf(*page), "<p>a\xC3\xA4<b>|c</b></p><p>d</p>");
    EXPECT_EQ(range.moveCharacters(-9), -2);
    EXPECT_EQ(range.moveCharacters(99), 6);
    TextRange whole(*page);
    EXPECT_TRUE(whole.contains(range));
    EXPECT_FALSE(range.contains(whole));
}

}  // namespace
}  // namespace pw::dom
