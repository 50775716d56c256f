#include "editing/ElementRecognition.h"

#include <gtest/gtest.h>

#include "platform/Text.h"
#include "platform/dom/TextRange.h"
#include "project/Pages.h"
#include "support/MarkupSelection.h"
#include "support/TestProgram.h"

namespace pw {
namespace {

/** The element with id "x" of a page with that body. */
struct Marked {
    explicit Marked(const std::string& body)
        : document(dom::Document::parseText("<html><body>" + body + "</body></html>")),
          element(document->elementById("x")) {}
    std::unique_ptr<dom::Document> document;
    dom::Node* element;
};

TEST(ElementRecognition, ADialogEditsTheBiggerThing) {
    struct Row {
        const char* body;
        const char* tag;
    };
    const Row rows[] = {
        {"<table><tr><td><p><b id=x>t</b></p></td></tr></table>", "TD"},
        {"<p><b id=x>t</b></p>", "HTML"},
        {"<table><tr id=x><td>t</td></tr></table>", "TABLE"},
        {"<table><tr><th><i id=x>t</i></th></tr></table>", "HTML"},
        {"<table><tr><td><a id=x href=y>t</a></td></tr></table>", "A"},
        {"<div id=x>t</div>", "DIV"},
    };
    for (const Row& row : rows) {
        const Marked page(row.body);
        EXPECT_EQ(GetValidElement(page.element)->tagName(), row.tag) << row.body;
    }
    EXPECT_EQ(GetValidElement(nullptr), nullptr);
}

TEST(ElementRecognition, HasAWordForEachElement) {
    struct Row {
        const char* body;
        const char* word;
    };
    const Row rows[] = {
        {"<a id=x type=ommerge href=y>", "Merge Variable"},
        {"<a id=x href=y>", "Link"},
        {"<a id=x>", "Bookmark"},
        {"<img id=x>", "Image"},
        {"<img id=x dynsrc=v>", "Video"},
        {"<input id=x>", "Text Box"},
        {"<input id=x type=CheckBox>", "Checkbox"},
        {"<input id=x type=submit>", "Command Button"},
        {"<input id=x type=image>", "Image Button"},
        {"<textarea id=x></textarea>", "Scrolling Textbox"},
        {"<table><tr><th id=x>t</th></tr></table>", "Table Cell"},
        {"<table id=x></table>", "Table"},
        {"<p id=x>", ""},
    };
    for (const Row& row : rows)
        EXPECT_EQ(GetElementTypeName(Marked(row.body).element), row.word) << row.body;
    EXPECT_EQ(GetElementTypeName(nullptr), "");
}

TEST(ElementRecognition, TheParentIsTheNearestInFrontInTheSource) {
    struct Row {
        const char* body;
        const char* tag;
        const char* found;
    };
    const Row rows[] = {
        {"<form><p id=x>t</p></form>", "FORM", "FORM"},
        {"<form></form><p id=x>t</p>", "form", "FORM"},
        {"<p id=x>t</p><form></form>", "FORM", "none"},
        {"<hr><p id=x>t</p>", "", "HR"},
        {"<p id=x>t</p>", "", "BODY"},
        {"<form id=x></form>", "FORM", "FORM"},
        {"<!-- c --><p id=x>t</p>", "", "!"},
    };
    for (const Row& row : rows) {
        const Marked page(row.body);
        const dom::Node* found = GetParentElement(*page.document, page.element, row.tag);
        EXPECT_EQ(found ? found->tagName() : "none", row.found) << row.body;
    }
    const Marked page("<hr><p id=x>t</p>");
    EXPECT_EQ(GetParentElement(*page.document, nullptr, ""), nullptr);
    page.document->removeNode(*page.element);
    EXPECT_EQ(GetParentElement(*page.document, page.element, ""), nullptr);
}

TEST(ElementRecognition, WritesIntoOpenAndClosedPages) {
    test::TestProgram program;
    program.Press(3);
    ProjectContext& project = program.window().ProjectState();
    const std::string key = program.context().CurrentPageKey;
    dom::Document& document = program.page().Document();
    document.collapse({document.tags("p").front(), 0});
    program.frame().settings.ShowCommentsInExplorer = true;
    EXPECT_TRUE(InsertComment(project, "a -- b"));
    EXPECT_NE(document.html().find("</p><!--a - - b-->"), std::string::npos) << document.html();
    EXPECT_TRUE(InsertScript(project, key, ScriptPlace::Head, {"s.js", "", "", true, "one"}));
    EXPECT_EQ(document.elementById("one")->parent(), document.head());
    EXPECT_TRUE(document.undo());
    EXPECT_EQ(document.elementById("one"), nullptr);

    program.page().CloseWindow();
    program.Settle();
    program.project().IsDirty = false;
    EXPECT_TRUE(
        InsertScript(project, key, ScriptPlace::Body, {"", "f();", "text/javascript", false, ""}));
    const std::string file = ReadTextFile(program.frame().files, GetPage(project, key)->Filename);
    EXPECT_NE(file.find("<script type=\"text/javascript\">f();</script>"), std::string::npos)
        << file;
    EXPECT_TRUE(program.project().IsDirty) << "the file is the project's";
    EXPECT_EQ(GetElementAtCaret(project, key), nullptr);
}

TEST(ElementRecognition, InsertionsReadBackOrAreRefused) {
    test::TestProgram program;
    program.Press(3);
    ProjectContext& project = program.window().ProjectState();
    const std::string key = program.context().CurrentPageKey;
    dom::Document& document = program.page().Document();
    const auto caretIn = [&](const std::string& tag) {
        EXPECT_TRUE(program.page().SetHTML(
            "<html><head><title>t</title></head><body><table><tr><td>c</td></tr></table>"
            "<select><option>o</select><p>x</p></body></html>"));
        document.collapse({document.tags(tag).at(0), 0});
        return document.html();
    };
    // 1. Comments, at places where one can stand and with texts that would end one.
    for (const char* text : {"plain", "---", "a ---- b-", "", " -", "two\r\nlines", "<p>&amp;"}) {
        for (const char* tag : {"p", "td", "option", "tr", "title", "html"}) {
            caretIn(tag);
            EXPECT_TRUE(InsertComment(project, text)) << tag << " " << text;
            ASSERT_EQ(document.tags("!").size(), 1u) << document.html();
            const auto again = dom::Document::parseText(document.html());
            ASSERT_EQ(again->tags("!").size(), 1u) << again->html();
            EXPECT_TRUE(again->body()->contains(*again->tags("!")[0])) << again->html();
            EXPECT_EQ(again->tags("!")[0]->data(), document.tags("!")[0]->data());
        }
    }
    for (const char* text : {">", "->", "a<!--b"}) {
        const std::string before = caretIn("p");
        if (const auto outcome = InsertComment(project, text); !outcome)
            EXPECT_EQ(document.html(), before) << outcome.problem();
        else
            EXPECT_EQ(dom::Document::parseText(document.html())->tags("!").size(), 1u);
    }
    // 2. Scripts.
    for (const char* tag : {"p", "td", "option", "html"}) {
        caretIn(tag);
        EXPECT_TRUE(InsertScript(project, key, ScriptPlace::Body, {"", "a < b;", "", false, "s"}));
        const auto again = dom::Document::parseText(document.html());
        ASSERT_TRUE(again->elementById("s")) << document.html();
        EXPECT_TRUE(again->body()->contains(*again->elementById("s"))) << document.html();
    }
    const std::string before = caretIn("p");
    for (const char* text : {"f('</script>')", "<!-- <script>"}) {
        EXPECT_FALSE(InsertScript(project, key, ScriptPlace::Body, {"", text, "", false, ""}));
        EXPECT_EQ(document.html(), before);
    }
}

TEST(ElementRecognition, SelectsElementsAsWhatTheyAre) {
    const struct {
        const char* markup;
        const char* tag;
        const char* selected;
    } rows[] = {
        {"<p>a<b>c</b></p>", "b", "<p>a<b>^c|</b></p>"},
        {"<p>a<hr>", "hr", "OBJECT"},
        {"<p><input>", "input", "OBJECT"},
        {"<p><img>", "img", "OBJECT"},
        {"<select><option>a</select>", "select", "OBJECT"},
        {"<textarea>a</textarea>", "textarea", "OBJECT"},
        {"<table><tr><td>a</table>", "table", "OBJECT"},
        {"<object><p>a</object>", "object", "OBJECT"},
        {"<p>a<input type=Hidden>", "input", "NOTHING"},
        {"<script>f()</script>", "script", "NOTHING"},
        {"<style>p{}</style>", "style", "NOTHING"},
        {"<table><tbody><tr><td>a</td><td>b</td></tr></tbody></table>", "tr",
         "<table><tbody><tr><td>^a</td><td>b|</td></tr></tbody></table>"},
        {"<p>a<a type=\"omMerge\">b</a></p>", "a", "<p>a^<a type=\"omMerge\">b</a>|</p>"},
    };
    for (const auto& row : rows) {
        const auto page = test::pageOf(row.markup);
        dom::Node* element = page->tags(row.tag).at(0);
        SelectElement(*page, *element);
        const dom::Selection& selection = page->selection();
        if (selection.type == dom::SelectionType::Text) {
            // The texts at the ends are written with the marks in them.
            const std::string marked =
                ReplaceAll(ReplaceAll(test::markupOf(*page), "|", ""), "^", "");
            EXPECT_EQ(marked, ReplaceAll(ReplaceAll(row.selected, "|", ""), "^", "")) << row.markup;
            EXPECT_EQ(dom::TextRange::fromSelection(*page).text(),
                      dom::TextRange::fromSelection(*test::pageOf(row.selected)).text());
        } else {
            EXPECT_STREQ(selection.control == element ? "OBJECT" : "NOTHING", row.selected)
                << row.markup;
        }
    }
}

}  // namespace
}  // namespace pw
