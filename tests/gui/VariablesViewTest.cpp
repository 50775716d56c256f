// Merge variables in a real view: each is one unit there, whatever is typed beside it.
#include <QInputMethodEvent>

#include "EditorFixture.h"
#include "platform/Text.h"
#include "support/MarkupSelection.h"

namespace pw {
namespace {

/** In the rows of these tests "[" and "]" stand for the tags of a variable. */
const std::string kStart = "<a type=\"omMerge\" name=\"V\">";

std::string Long(const std::string& markup) {
    return ReplaceAll(ReplaceAll(markup, "[", kStart), "]", "</a>");
}
std::string Short(std::string markup) {
    for (std::size_t at = markup.find(kStart); at != markup.npos; at = markup.find(kStart)) {
        const std::size_t end = markup.find("</a>", at);
        markup.replace(end, 4, "]");
        markup.replace(at, kStart.size(), "[");
    }
    return markup;
}

class VariablesViewTest : public test::EditorFixture {
  protected:
    void SetUp() override { open("<html><body><p>x</p></body></html>"); }

    /** Shows this body, with the selection that is marked in it. */
    void put(const std::string& markup) {
        const std::string text = Long(markup);
        const auto marked = dom::Document::parseText("<body>" + text);
        document->setInnerHTML(*document->body(), test::detail::withoutMarks(text));
        const auto focus = test::detail::findMark(*marked->body(), '|');
        const auto anchor = test::detail::findMark(*marked->body(), '^');
        dom::Selection selection;
        selection.type = dom::SelectionType::Text;
        selection.focus = test::detail::follow(document->body(), focus);
        selection.anchor =
            anchor.found ? test::detail::follow(document->body(), anchor) : selection.focus;
        document->setSelection(selection);
        view.Flush();
        document->clearHistory();
    }
    /** Types; names of other keys stand in braces. */
    void keys(const std::string& what) {
        static const std::map<std::string, Qt::Key> named = {
            {"Home", Qt::Key_Home},    {"End", Qt::Key_End},        {"Left", Qt::Key_Left},
            {"Right", Qt::Key_Right},  {"Back", Qt::Key_Backspace}, {"Del", Qt::Key_Delete},
            {"Enter", Qt::Key_Return}, {"Tab", Qt::Key_Tab}};
        for (std::size_t i = 0; i < what.size(); ++i) {
            if (what[i] != '{') {
                QTest::keyClick(keyboard(), what[i]);
                continue;
            }
            const std::size_t end = what.find('}', i);
            QTest::keyClick(keyboard(), named.at(what.substr(i + 1, end - i - 1)));
            i = end;
        }
        view.Flush();
    }
    /** The document is what the view shows and what its own text says, and goes back to what it
     * was. */
    void check(const std::string& before) {
        EXPECT_EQ(viewTree(), documentTree());
        EXPECT_EQ(parsedTree(*dom::Document::parseText(document->html())->root()),
                  parsedTree(*document->root()));
        while (document->undo()) {
        }
        EXPECT_EQ(body(), test::detail::withoutMarks(Long(before)));
        view.Flush();
    }
};

TEST_F(VariablesViewTest, AreUnitsForEveryKey) {
    const struct {
        const char* before;
        const char* keys;
        const char* after;
    } rows[] = {
        // Typing goes beside it, wherever the caret has come from.
        {"<p>a[Val]|b</p>", "x", "<p>a[Val]x|b</p>"},
        {"<p>a|[Val]b</p>", "x", "<p>ax|[Val]b</p>"},
        {"<p>[Val]|</p>", "xy", "<p>[Val]xy|</p>"},
        {"<p>|[Val]</p>", "xy", "<p>xy|[Val]</p>"},
        {"<p>[V|al]b</p>", "x", "<p>x|[Val]b</p>"},
        {"<p>[Va|l]b</p>", "x", "<p>[Val]x|b</p>"},
        {"<p>[Val]|[Val]</p>", "x", "<p>[Val]x|[Val]</p>"},
        {"[Val]|", "x", "[Val]x|"},
        {"|[Val]", "x", "x|[Val]"},
        {"<p>a<br>|[Val]b</p>", "xy", "<p>a<br>xy|[Val]b</p>"},
        {"<p>[Val]|<br>b</p>", "x", "<p>[Val]x|<br>b</p>"},
        {"<p>[Val]|<a href=\"x\">l</a></p>", "x", "<p>[Val]x|<a href=\"x\">l</a></p>"},
        {"<table><tbody><tr><td>[Val]|</td></tr></tbody></table>", "x",
         "<table><tbody><tr><td>[Val]x|</td></tr></tbody></table>"},
        // Selected, it gives way whole.
        {"<p>[V^al]b|</p>", "x", "<p>x|</p>"},
        {"<p>a^b[Va|l]b</p>", "x", "<p>ax|b</p>"},
        {"<p>a^[Val]|b</p>", "x", "<p>ax|b</p>"},
        {"<p>a^b</p><p>|[Val]e</p>", "x", "<p>ax|[Val]e</p>"},
        // The caret passes over it.
        {"<p>a[Val]|b</p>", "{Left}x", "<p>ax|[Val]b</p>"},
        {"<p>a|[Val]b</p>", "{Right}x", "<p>a[Val]x|b</p>"},
        {"<p>[Val]abc|</p>", "{Home}x{End}y", "<p>x[Val]abcy|</p>"},
        {"<p>[Val]|</p>", "{Home}x", "<p>x|[Val]</p>"},
        {"<p>a|bc[Val]</p>", "{End}x", "<p>abc[Val]x|</p>"},
        {"<p>a<br>[Val]b|</p>", "{Home}x", "<p>a<br>x|[Val]b</p>"},
        {"<p>a<br>[Val]|b</p>", "{Left}x", "<p>a<br>x|[Val]b</p>"},
        {"<p>[Val]</p><p>|a</p>", "{Left}x", "<p>[Val]x|</p><p>a</p>"},
        // Backspace and Delete take it whole, and nothing with it.
        {"<p>a[Val]|b</p>", "{Back}x", "<p>ax|b</p>"},
        {"<p>a|[Val]b</p>", "{Del}x", "<p>ax|b</p>"},
        {"<p>a|[Val]b</p>", "{Back}x", "<p>x|[Val]b</p>"},
        {"<p>a[Val]|b</p>", "{Del}x", "<p>a[Val]x|</p>"},
        {"<p>[Val]|[Val]</p>", "{Back}x", "<p>x|[Val]</p>"},
        {"<p>a [Val]|b</p>", "{Back}x", "<p>a x|b</p>"},
        {"<p>a|<br>[Val]b</p>", "{Del}x", "<p>ax|[Val]b</p>"},
        {"<p>a<br>|[Val]b</p>", "{Back}x", "<p>ax|[Val]b</p>"},
        // Paragraphs become one with those in them.
        {"<p>a</p><p>|[Val]</p>", "{Back}x", "<p>ax|[Val]</p>"},
        {"<p>a|</p><p>[Val]b</p>", "{Del}x", "<p>ax|[Val]b</p>"},
        {"<p>a[Val]</p><p>|[Val]b</p>", "{Back}x", "<p>a[Val]x|[Val]b</p>"},
        {"<p>a[Val]|</p><p>b</p>", "{Del}x", "<p>a[Val]x|b</p>"},
        {"<p>a</p><p>|b[Val]c</p>", "{Back}x", "<p>ax|b[Val]c</p>"},
        {"<ul><li>a</li><li>|[Val]</li></ul>", "{Back}x", "<ul><li>ax|[Val]</li></ul>"},
        {"<p>a</p><table><tbody><tr><td>|[Val]</td></tr></tbody></table>", "{Back}x",
         "<p>a</p><table><tbody><tr><td>x|[Val]</td></tr></tbody></table>"},
        // Enter copies nothing.
        {"<p>a[Val]|b</p>", "{Enter}x", "<p>a[Val]</p><p>x|b</p>"},
        {"<p>a|[Val]b</p>", "{Enter}x", "<p>a</p><p>x|[Val]b</p>"},
        {"<p>a[Val]|</p>", "{Enter}x", "<p>a[Val]</p><p>x|</p>"},
        {"<p>|[Val]</p>", "{Enter}x", "<p><br></p><p>x|[Val]</p>"},
        {"<p>[Val]|[Val]</p>", "{Enter}x", "<p>[Val]</p><p>x|[Val]</p>"},
        {"<h1>[Val]|</h1>", "{Enter}x", "<h1>[Val]</h1><p>x|</p>"},
        {"<p><b>[Val]|</b></p>", "{Enter}x", "<p><b>[Val]</b></p><p>x|</p>"},
        {"<p><b>a[Val]|</b>b</p>", "{Enter}x", "<p><b>a[Val]</b></p><p>x|b</p>"},
        {"<ul><li>[Val]|</li></ul>", "{Enter}x", "<ul><li>[Val]</li><li>x|</li></ul>"},
        {"<p>a[Val]|</p>", "{Enter}{Back}x", "<p>a[Val]x|</p>"},
        // One without a value is a unit as well.
        {"<p>a[]|b</p>", "xy", "<p>a[]xy|b</p>"},
        {"<p>|[]</p>", "x", "<p>x|[]</p>"},
        {"<p>a|[]b</p>", "{Right}x", "<p>a[]x|b</p>"},
        {"<p>a[]|b</p>", "{Left}x", "<p>ax|[]b</p>"},
        {"<p>a[]|b</p>", "{Back}x", "<p>ax|b</p>"},
        {"<p>a|[]b</p>", "{Del}x", "<p>ax|b</p>"},
        {"<p>a[]|</p>", "{Enter}x", "<p>a[]</p><p>x|</p>"},
        {"<p>a</p><p>|[]b</p>", "{Back}x", "<p>ax|[]b</p>"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.before) + " " + row.keys);
        put(row.before);
        keys(row.keys);
        EXPECT_EQ(Short(test::markupOf(*document)), row.after);
        check(row.before);
    }
}

TEST_F(VariablesViewTest, TakeFormatting) {
    const struct {
        const char* before;
        const char* command;
        const char* argument;
        const char* after;
    } rows[] = {
        {"<p>a^[Val]|b</p>", "bold", "", "<p>a<b>[Val]</b>b</p>"},
        {"<p>^a[Val]b|</p>", "bold", "", "<p><b>a[Val]b</b></p>"},
        {"<p>a^[Val]b|</p>", "italic", "", "<p>a<i>[Val]b</i></p>"},
        {"<p>^[Val]|</p>", "foreColor", "#ff0000", "<p><font color=\"#ff0000\">[Val]</font></p>"},
        {"<p>^[Val]|</p>", "fontName", "Arial", "<p><font face=\"Arial\">[Val]</font></p>"},
        {"<p><b>^[Val]|</b></p>", "bold", "", "<p>[Val]</p>"},
        {"<p><b>^a[Val]|</b></p>", "removeFormat", "", "<p>a[Val]</p>"},
        {"<p>a[Val]|</p>", "formatBlock", "h2", "<h2>a[Val]</h2>"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.before) + " " + row.command);
        put(row.before);
        view.Execute(row.command, row.argument);
        EXPECT_EQ(Short(body()), row.after);
        check(row.before);
    }
}

TEST_F(VariablesViewTest, StandBesideWhatIsComposedAndPressed) {
    put("<p>a[Val]|b</p>");
    QInputMethodEvent preedit(QStringLiteral("\u3042"), {});
    QApplication::sendEvent(keyboard(), &preedit);
    QInputMethodEvent commit;
    commit.setCommitString(QStringLiteral("\u3042"));
    QApplication::sendEvent(keyboard(), &commit);
    QTest::qWait(100);
    view.Flush();
    EXPECT_EQ(Short(body()), "<p>a[Val]\u3042b</p>");
    EXPECT_EQ(viewTree(), documentTree());

    // A press on it puts the caret beside it, on the nearer side.
    for (const bool isLeft : {true, false}) {
        put("<p>a[Value of it]b|</p>");
        QTest::mouseClick(keyboard(), Qt::LeftButton, {}, at("p a", isLeft ? 0.2 : 0.8));
        QTest::qWait(100);
        view.Flush();
        keys("x");
        EXPECT_EQ(Short(body()), isLeft ? "<p>ax[Value of it]b</p>" : "<p>a[Value of it]xb</p>");
    }
    // An empty one is shown, and what shows it is not in the page.
    put("<p>a[]b|</p>");
    EXPECT_GT(boxOf("p a").width(), 8);
    EXPECT_EQ(viewTree(), documentTree());
}

}  // namespace
}  // namespace pw
