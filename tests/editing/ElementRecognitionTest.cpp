#include "editing/ElementRecognition.h"

#include <gtest/gtest.h>

#include "project/Pages.h"
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
    InsertComment(project, "a -- b");
    EXPECT_NE(document.html().find("</p><!--a - - b-->"), std::string::npos) << document.html();
    InsertScript(project, key, ScriptPlace::Head, {"s.js", "", "", true, "one"});
    EXPECT_NE(document.html().find("s.js"), std::string::npos);
    EXPECT_EQ(document.elementById("one")->parent(), document.documentElement());
    EXPECT_TRUE(document.undo());
    EXPECT_EQ(document.elementById("one"), nullptr);

    program.page().CloseWindow();
    program.Settle();
    program.project().IsDirty = false;
    InsertScript(project, key, ScriptPlace::Body, {"", "f();", "text/javascript", false, ""});
    const std::string file = ReadTextFile(program.frame().files, GetPage(project, key)->Filename);
    EXPECT_NE(file.find("<script type=\"text/javascript\">f();</script>"), std::string::npos)
        << file;
    EXPECT_TRUE(program.project().IsDirty) << "the file is the project's";
    EXPECT_EQ(GetElementAtCaret(project, key), nullptr);
}

}  // namespace
}  // namespace pw
