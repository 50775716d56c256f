#include <random>

#include "platform/dom/Document.h"
#include "support/MarkupSelection.h"

namespace pw::dom {
namespace {

const char* const kPage =
    "<!DOCTYPE html>\n<html>\n<head><title>t</title></head>\n<body bgcolor=red>\n"
    "<h1>Head</h1>\n<p class='a'>one &amp; two</p>\n<p>three</b></p>\n"
    "<ul>\n<li>x\n<li>y\n</ul>\n<!-- c -->\n</body>\n</html>\n";

std::string replaced(std::string text, std::string_view what, std::string_view with) {
    const std::size_t at = text.find(what);
    return at == std::string::npos ? text : text.replace(at, what.size(), with);
}

TEST(SourceEdit, IsWrittenAsItWasTypedAndUndone) {
    struct Row {
        const char* name;
        const char* what;
        const char* with;
    };
    for (const Row& row : {
             Row{"nothing", "", ""},
             Row{"a word", "one", "1"},
             Row{"a reference instead of a character", "Head", "H&#101;ad"},
             Row{"quotes", "class='a'", "class=\"a\""},
             Row{"blanks in a tag", "<h1>", "<h1  >"},
             Row{"an attribute", "class='a'", "class='b' id=c"},
             Row{"an attribute goes", " bgcolor=red", ""},
             Row{"the doctype", "<!DOCTYPE html>", "<!doctype HTML>"},
             Row{"the doctype goes", "<!DOCTYPE html>\n", ""},
             Row{"a stray tag", "</b>", "</i></u>"},
             Row{"another tag", "<h1>Head</h1>", "<h2>Head</h2>"},
             Row{"a new paragraph", "<ul>", "<p>new<b>er</b></p>\n<ul>"},
             Row{"a paragraph goes", "<p>three</b></p>\n", ""},
             Row{"a list item is moved", "<li>x\n<li>y", "<li>y\n<li>x"},
             Row{"around it all", "<h1>Head</h1>\n", "<div><h1>Head</h1>\n"},
             Row{"disorder comes", "<ul>", "<table>x<tr>y<td>z</table><ul>"},
             Row{"misnesting comes", "<h1>Head</h1>", "<b><h1>He</b>ad</h1>"},
             Row{"the comment", "<!-- c -->", "<!-- d --><!e>"},
             Row{"content behind the page", "</html>\n", "</html>\n<p>z"},
             Row{"the head goes", "<head><title>t</title></head>\n", ""},
             Row{"a frameset", "<body bgcolor=red>", "<frameset><frame></frameset><body>"},
         }) {
        SCOPED_TRACE(row.name);
        const auto page = Document::parseText(kPage);
        const std::string text = replaced(kPage, row.what, row.with);
        ASSERT_TRUE(page->setHtml(text));
        EXPECT_EQ(page->html(), text);
        EXPECT_EQ(page->canUndo(), text != kPage);
        page->undo();
        EXPECT_EQ(page->html(), kPage);
        EXPECT_FALSE(page->isDirty());
        EXPECT_FALSE(page->canUndo());
        page->redo();
        EXPECT_EQ(page->html(), text);
        // The tree is the one that the text has.
        const auto fresh = Document::parseText(text);
        EXPECT_EQ(page->all().size(), fresh->all().size());
        EXPECT_EQ(test::markupOf(*page), test::markupOf(*fresh));
        EXPECT_EQ(page->doctype(), fresh->doctype());
        EXPECT_EQ(page->quirks(), fresh->quirks());
    }
}

TEST(SourceEdit, KeepsTheNodesThatStandInBoth) {
    const auto page = Document::parseText(kPage);
    Node* heading = page->tags("h1")[0];
    Node* paragraph = page->tags("p")[0];
    Node* item = page->tags("li")[1];
    page->collapse({paragraph->firstChild(), 5});
    ASSERT_TRUE(page->setHtml(replaced(replaced(kPage, "<ul>", "<hr><ul>"), "one", "o n e")));
    EXPECT_EQ(page->tags("h1")[0], heading);
    EXPECT_EQ(page->tags("p")[0], paragraph);
    EXPECT_EQ(page->tags("li")[1], item);
    EXPECT_EQ(page->selection().focus, (Position{paragraph->firstChild(), 7}));
}

TEST(SourceEdit, KeepsNodesThatTheProgramHasMade) {
    const auto page = Document::parseText(kPage);
    Node* first = page->tags("p")[0];
    page->insertAdjacentHTML(*first, "afterEnd",
                             "<p align=right>n&eacute;w <b>one</b><br>&amp; <img src='a.gif'></p>"
                             "<!-- note --><script>a < b</script>");
    page->setInnerHTML(*page->tags("li")[0], "<i>x</i>");
    std::vector<Node*> made;
    for (const char* tag : {"b", "br", "img", "!", "script", "i"})
        made.push_back(page->tags(tag)[0]);
    Node* text = page->tags("b")[0]->firstChild();
    const std::string before = page->html();
    ASSERT_TRUE(page->setHtml(replaced(before, "three", "3")));
    for (const Node* node : made)
        EXPECT_TRUE(page->isConnected(node)) << node->tagName();
    EXPECT_TRUE(page->isConnected(text));
    EXPECT_EQ(page->html(), replaced(before, "three", "3"));
    page->undo();
    EXPECT_EQ(page->html(), before);
}

TEST(SourceEdit, ReplacesAStretch) {
    const auto page = Document::parseText("<P  ID=a>x</P>");
    ASSERT_TRUE(page->replaceSource(2, 4, " "));
    EXPECT_EQ(page->html(), "<P ID=a>x</P>");
    ASSERT_TRUE(page->replaceSource(8, 99, "y"));
    EXPECT_EQ(page->html(), "<P ID=a>y");
}

TEST(SourceEdit, ARefusedTextChangesNothing) {
    const auto page = Document::parseText(kPage);
    std::string deep;
    for (int i = 0; i < 20000; ++i)
        deep += "<div>";
    ParseError error;
    EXPECT_FALSE(page->setHtml(deep, &error));
    EXPECT_FALSE(error.message.empty());
    EXPECT_EQ(page->html(), kPage);
    EXPECT_FALSE(page->canUndo());
    EXPECT_ANY_THROW(page->setInnerHTML(*page->body(), deep));
    EXPECT_EQ(page->html(), kPage);
}

TEST(SourceEdit, TellsWhenThePageMustBeShownAnew) {
    struct Observer : DocumentObserver {
        void documentReloaded() override { ++reloads; }
        int reloads = 0;
    } observer;
    const auto page = Document::parseText(kPage);
    page->addObserver(&observer);
    ASSERT_TRUE(page->setHtml(replaced(kPage, "one", "two")));
    EXPECT_EQ(observer.reloads, 0);
    ASSERT_TRUE(page->setHtml(replaced(kPage, "<!DOCTYPE html>", "")));
    EXPECT_EQ(observer.reloads, 1);
    EXPECT_TRUE(page->quirks());
    page->undo();
    EXPECT_EQ(observer.reloads, 2);
    EXPECT_FALSE(page->quirks());
    page->removeObserver(&observer);
}

TEST(SourceEdit, RandomEditsOfTheSourceAreWrittenAsTyped) {
    static constexpr const char* kBits[] = {"<p>",
                                            "</p>",
                                            "<b>",
                                            "</b>",
                                            "<i>",
                                            "</i>",
                                            "x",
                                            " ",
                                            "\n",
                                            "&amp;",
                                            "<li>",
                                            "</ul>",
                                            "<table>",
                                            "<td>",
                                            "<tr>",
                                            "</table>",
                                            "<!--",
                                            "-->",
                                            "<br>",
                                            "\"",
                                            "'",
                                            "=",
                                            ">",
                                            "<",
                                            "</body>",
                                            "</html>",
                                            "<a href=x>",
                                            "<div class='y'>",
                                            "</div>",
                                            "<font>",
                                            "<!doctype x>",
                                            "<svg>",
                                            "<select>",
                                            "<option>",
                                            "<title>",
                                            "<script>",
                                            "</script>",
                                            "<form>",
                                            "&",
                                            ";"};
    for (unsigned seed = 1; seed <= 25; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        const auto page = Document::parseText(kPage);
        std::vector<std::string> pages{kPage};
        for (int round = 0; round < 40; ++round) {
            std::string text = page->html();
            const std::size_t at = random() % (text.size() + 1);
            const std::size_t removed = random() % 3 == 0 ? random() % 12 : 0;
            text.replace(at, std::min(removed, text.size() - at),
                         kBits[random() % std::size(kBits)]);
            ASSERT_TRUE(page->setHtml(text));
            ASSERT_EQ(page->html(), text);
            if (text != pages.back()) pages.push_back(text);
            const auto fresh = Document::parseText(text);
            ASSERT_EQ(test::markupOf(*page), test::markupOf(*fresh));
            // Other edits in between.
            if (round % 5 == 0 && page->body()->firstChild()) {
                Node* node = page->all()[random() % page->all().size()];
                if (node->isElement()) page->setAttribute(*node, "id", std::to_string(round));
                if (page->html() != pages.back()) pages.push_back(page->html());
            }
        }
        while (page->undo()) {
            const std::string now = page->html();
            while (!pages.empty() && pages.back() != now)
                pages.pop_back();
            ASSERT_FALSE(pages.empty()) << "a page that was never there";
        }
        EXPECT_EQ(page->html(), kPage);
        EXPECT_FALSE(page->isDirty());
    }
}

}  // namespace
}  // namespace pw::dom
