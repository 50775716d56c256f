#include "platform/dom/Document.h"

#include <random>
#include <stdexcept>

#include "support/MarkupSelection.h"

namespace pw::dom {
namespace {

using test::pageOf;
using test::stateOf;

/** Types or deletes at the caret as the view reports it. */
void type(Document& page, std::string_view text) {
    const Document::OriginScope view(page, Origin::View);
    const Document::Step step(page, StepKind::Typing);
    const Position caret = page.selection().focus;
    page.replaceText(*caret.node, caret.offset, 0, text);
    const Position behind{caret.node, caret.offset + text.size()};
    page.setSelection({SelectionType::Text, behind, behind, nullptr}, Origin::View);
}

void erase(Document& page) {
    const Document::OriginScope view(page, Origin::View);
    const Document::Step step(page, StepKind::Deleting);
    const Position caret = page.selection().focus;
    page.replaceText(*caret.node, caret.offset - 1, 1, "");
    const Position before{caret.node, caret.offset - 1};
    page.setSelection({SelectionType::Text, before, before, nullptr}, Origin::View);
}

class HistoryTest : public testing::Test {
  protected:
    void open(std::string_view markup) {
        page = pageOf(markup);
        page->setClock([this] { return now; });
    }
    std::string undo() {
        page->undo();
        return stateOf(*page);
    }
    std::string redo() {
        page->redo();
        return stateOf(*page);
    }

    std::unique_ptr<Document> page;
    double now = 100;
};

TEST_F(HistoryTest, TypingIsOneStep) {
    open("<p>a|</p>");
    type(*page, "b");
    type(*page, "c");
    EXPECT_EQ(stateOf(*page), "<p>abc|</p> undo");
    EXPECT_EQ(undo(), "<p>a|</p> redo");
    EXPECT_EQ(redo(), "<p>abc|</p> undo");
}

TEST_F(HistoryTest, WhatEndsAStepOfTyping) {
    struct Row {
        const char* name;
        std::function<void()> between;
        const char* afterUndo;
    };
    const std::vector<Row> rows = {
        {"nothing", [] {}, "<p>a|</p> redo"},
        {"half a second", [&] { now += 0.5; }, "<p>a|</p> redo"},
        {"more than a second", [&] { now += 1.1; }, "<p>ab|</p> undo redo"},
        {"the caret jumps",
         [&] {
             page->collapse({page->selection().focus.node, 0});
         },
         "<p>|ab</p> undo redo"},
        {"a seal", [&] { page->sealStep(); }, "<p>ab|</p> undo redo"},
        {"a save", [&] { page->markClean(); }, "<p>ab|</p> undo redo"},
        {"an undo and a redo",
         [&] {
             page->undo();
             page->redo();
         },
         "<p>ab|</p> undo redo"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        open("<p>a|</p>");
        type(*page, "b");
        row.between();
        type(*page, "c");
        EXPECT_EQ(undo(), row.afterUndo);
    }
}

TEST_F(HistoryTest, DeletingIsAStepOfItsOwn) {
    open("<p>a|</p>");
    type(*page, "b");
    erase(*page);
    erase(*page);
    EXPECT_EQ(stateOf(*page), "<p>|</p> undo");
    EXPECT_EQ(undo(), "<p>ab|</p> undo redo");
    EXPECT_EQ(undo(), "<p>a|</p> redo");
}

TEST_F(HistoryTest, AStepIsUndoneWhole) {
    open("<p>^a|</p><p>b</p>");
    {
        const Document::Step step(*page);
        Node* body = page->body();
        page->setAttribute(*body->firstChild(), "class", "x");
        {
            const Document::Step inner(*page);
            page->removeNode(*body->lastChild());
        }
        page->insertAdjacentHTML(*body, "beforeEnd", "<hr><p>c</p>");
        EXPECT_FALSE(page->canUndo()) << "while the step is open";
        EXPECT_FALSE(page->undo());
    }
    EXPECT_EQ(stateOf(*page), "<p class=\"x\">^a|</p><hr><p>c</p> undo");
    EXPECT_EQ(undo(), "<p>^a|</p><p>b</p> redo");
    EXPECT_EQ(redo(), "<p class=\"x\">^a|</p><hr><p>c</p> undo");
}

TEST_F(HistoryTest, AnEmptyStepIsNone) {
    open("<p>a|</p>");
    { const Document::Step step(*page); }
    page->setAttribute(*page->body()->firstChild(), "class", std::nullopt);
    page->setText(*page->body()->firstChild()->firstChild(), "a");
    EXPECT_EQ(stateOf(*page), "<p>a|</p>");
}

TEST_F(HistoryTest, ANewChangeForgetsWhatWasUndone) {
    open("<p>a|</p>");
    page->setAttribute(*page->body()->firstChild(), "class", "x");
    page->undo();
    type(*page, "b");
    EXPECT_EQ(stateOf(*page), "<p>ab|</p> undo");
    EXPECT_EQ(undo(), "<p>a|</p> redo");
}

TEST_F(HistoryTest, DirtyFollowsUndoAndRedo) {
    open("<p>a|</p>");
    EXPECT_FALSE(page->isDirty());
    type(*page, "b");
    EXPECT_TRUE(page->isDirty());
    page->markClean();
    EXPECT_FALSE(page->isDirty());
    page->undo();
    EXPECT_TRUE(page->isDirty());
    page->redo();
    EXPECT_FALSE(page->isDirty());
    page->undo();
    type(*page, "c");
    page->undo();
    EXPECT_TRUE(page->isDirty()) << "the clean state can't be reached any more";
    page->clearHistory();
    EXPECT_TRUE(page->isDirty());
    EXPECT_EQ(stateOf(*page), "<p>a|</p>");
}

TEST_F(HistoryTest, NodesMadeOutsideOfTheTreeComeBackAsTheyWere) {
    open("<p>a<b>b</b></p>|");
    Node* bold = page->tags("b")[0];
    Node* wrapper = page->createElement("div");
    page->setAttribute(*wrapper, "class", "x");
    page->insertNode(*wrapper, *page->createText("1"), nullptr);
    page->insertNode(*wrapper, *bold, nullptr);
    page->insertNode(*wrapper, *page->createText("2"), bold);
    page->insertNode(*page->body(), *wrapper, nullptr);
    page->setAttribute(*wrapper, "class", "y");
    const std::string edited = page->html();
    const std::string source = "<p>a<b>b</b></p>|";
    while (page->undo()) {
    }
    EXPECT_EQ(stateOf(*page), source + " redo");
    while (page->redo()) {
    }
    EXPECT_EQ(page->html(), edited);
}

TEST(CarriedBytes, SurviveWhatTheViewDoesWhenItSplitsAText) {
    struct Row {
        const char* name;
        bool nodeFirst;  ///< the new node comes before the old one is shortened
        std::size_t offset;
        std::size_t length;  ///< of the part that moves
        const char* expected;
    };
    // The text is eight bytes: two, two, a blank, and one, a line end, one.
    const std::string source = "<p>&eacute;&Auml; x\r\ny</p>\r\n";
    for (const Row& row :
         {Row{"the end", false, 4, 4, "<p>&eacute;&Auml;</p><p> x\r\ny</p>\r\n"},
          Row{"the end, the node first", true, 2, 6, "<p>&eacute;</p><p>&Auml; x\r\ny</p>\r\n"},
          Row{"the beginning", false, 0, 2, "<p>&Auml; x\r\ny</p><p>&eacute;</p>\r\n"}}) {
        SCOPED_TRACE(row.name);
        const auto page = Document::parseText(source);
        Node* paragraph = page->tags("p")[0];
        Node* text = paragraph->firstChild();
        const std::string moving = text->data().substr(row.offset, row.length);
        const auto add = [&] {
            Node* half = page->createElement("p");
            page->insertNode(*half, *page->createText(moving), nullptr);
            page->insertNode(*paragraph->parent(), *half, paragraph->next());
        };
        {
            const Document::OriginScope view(*page, Origin::View);
            const Document::Step step(*page, StepKind::Typing);
            if (row.nodeFirst) add();
            page->replaceText(*text, row.offset, row.length, "");
            if (!row.nodeFirst) add();
        }
        EXPECT_EQ(page->html(), row.expected);
        page->undo();
        EXPECT_EQ(page->html(), source);
        page->redo();
        EXPECT_EQ(page->html(), row.expected);
    }
}

TEST_F(HistoryTest, ObserversHearOfEveryChange) {
    struct Observer : DocumentObserver {
        void documentChanged(const Change& change) override {
            static constexpr const char* kNames[] = {"insert", "remove", "attribute",
                                                     "text",   "text",   "source"};
            heard +=
                std::string(kNames[int(change.kind)]) + std::to_string(int(change.origin)) + " ";
        }
        void selectionChanged(Origin) override { heard += "selection "; }
        void historyChanged() override { heard += "history "; }
        std::string heard;
    } observer;
    open("<p>a|</p>");
    page->addObserver(&observer);
    type(*page, "b");
    EXPECT_EQ(observer.heard, "text1 history ");
    observer.heard.clear();
    page->undo();
    EXPECT_EQ(observer.heard, "text2 selection history ");
    observer.heard.clear();
    page->removeNode(*page->body()->firstChild());
    EXPECT_EQ(observer.heard, "remove0 history ");
    page->removeObserver(&observer);
}

/** Any edits, undone to the bottom and done again to the top, give the same pages. */
class RandomWalk : public testing::TestWithParam<const char*> {};

TEST_P(RandomWalk, UndoAndRedoReachEveryPageAgain) {
    for (unsigned seed = 1; seed <= 12; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        const auto below = [&](std::size_t count) { return std::size_t(random() % count); };
        const auto page = Document::parseText(GetParam());
        std::vector<std::string> pages{page->html()};
        for (int round = 0; round < 60; ++round) {
            std::vector<Node*> nodes;
            for (Node* node = page->body(); node; node = node->following(page->body())) {
                nodes.push_back(node);
            }
            Node* node = nodes[below(nodes.size())];
            Node* other = nodes[below(nodes.size())];
            const std::string before = page->html();
            switch (below(9)) {
                case 0:
                    if (node->isElement())
                        page->setAttribute(*node, "class", std::to_string(round));
                    break;
                case 1:
                    if (node->isElement() && !node->attributes().empty()) {
                        page->setAttribute(*node, node->attributes()[0].name, std::nullopt);
                    }
                    break;
                case 2:
                    if (node != page->body()) page->removeNode(*node);
                    break;
                case 3:
                    if (other->isElement() && !node->contains(*other)) {
                        const auto children = other->children();
                        Node* spot = children.empty() ? nullptr : children[below(children.size())];
                        page->moveNode(*other, *node, spot);
                    }
                    break;
                case 4:
                    if (!node->isElement() && !node->data().empty()) {
                        std::size_t at = below(node->data().size());
                        while (at > 0 && (node->data()[at] & 0xC0) == 0x80)
                            --at;
                        page->replaceText(*node, at, 0, "<&x");
                    }
                    break;
                case 5:
                    if (!node->isElement()) page->setText(*node, "new &amp; text");
                    break;
                case 6:
                    if (node->isElement()) {
                        page->insertAdjacentHTML(*node, "afterBegin", "<p>a<b>b</p><ul><li>c");
                    }
                    break;
                case 7:
                    if (node != page->body() && node->isElement()) {
                        page->setOuterHTML(*node, "<i>x</i>y");
                    }
                    break;
                default:
                    if (node->isText()) page->splitText(*node, below(node->data().size() + 1));
            }
            if (page->html() != before) pages.push_back(page->html());
        }
        const std::string last = page->html();
        std::size_t at = pages.size();
        std::string previous = last;
        while (page->undo()) {
            const std::string now = page->html();
            if (now == previous) continue;
            ASSERT_GT(at, 0u);
            while (at > 0 && pages[at - 1] != now)
                --at;
            ASSERT_GT(at, 0u) << "a page that was never there:\n" << now;
            previous = now;
        }
        EXPECT_EQ(page->html(), GetParam());
        EXPECT_FALSE(page->isDirty());
        EXPECT_FALSE(page->canUndo());
        while (page->redo()) {
        }
        EXPECT_EQ(page->html(), last);
        EXPECT_FALSE(page->canRedo());
    }
}

INSTANTIATE_TEST_SUITE_P(
    Pages, RandomWalk,
    testing::Values(
        "<!DOCTYPE html>\r\n<html>\r\n<body>\r\n<h1 id=a>T&eacute;t</h1>\r\n<p>a &amp; b <b>c</b>"
        "\r\n<p>d<ul><li>e<li>f</ul><table><tr><td>g<td>h</table></body>\r\n</html>\r\n",
        "<p><b>1<p>2<i>3</b>4</i>5<table>x<tr><td>6</table></p>7<font color=red>8<div>9",
        "<table>a<tr>b<td>c</td>d</tr><b>e</table>f<svg><g/><a/></svg>g</p>h</body>\ni"));

TEST_F(HistoryTest, ARolledBackStepNeverWas) {
    struct Row {
        const char* name;
        std::function<void(Document&)> edit;
    };
    const std::vector<Row> rows = {
        {"attribute", [](Document& d) { d.setAttribute(*d.body()->firstChild(), "class", "x"); }},
        {"text", [](Document& d) { d.setText(*d.body()->firstChild()->firstChild(), "other"); }},
        {"nodes", [](Document& d) { d.setInnerHTML(*d.body(), "<h1>x</h1>"); }},
        {"source", [](Document& d) { EXPECT_TRUE(d.setHtml("<!doctype html><p>x")); }},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        open("<p>^a|b</p>");
        page->setAttribute(*page->body(), "class", "y");
        page->undo();
        page->markClean();
        const std::string before = page->html();
        {
            Document::Step step(*page);
            row.edit(*page);
            step.rollBack();
            EXPECT_EQ(page->html(), before);
        }
        EXPECT_EQ(stateOf(*page), "<p>^a|b</p> redo");
        EXPECT_FALSE(page->isDirty());
        EXPECT_THROW(
            {
                const Document::Step step(*page);
                row.edit(*page);
                throw std::runtime_error("refused");
            },
            std::runtime_error);
        EXPECT_EQ(page->html(), before);
        EXPECT_EQ(stateOf(*page), "<p>^a|b</p> redo");
    }
}

TEST_F(HistoryTest, APartOfAStepIsRolledBackAlone) {
    open("<p>a|</p>");
    {
        Document::Step step(*page);
        page->setAttribute(*page->body()->firstChild(), "class", "x");
        {
            Document::Step inner(*page);
            page->removeNode(*page->body()->firstChild());
            inner.rollBack();
        }
        page->setAttribute(*page->body()->firstChild(), "id", "y");
    }
    EXPECT_EQ(stateOf(*page), "<p class=\"x\" id=\"y\">a|</p> undo");
    EXPECT_EQ(undo(), "<p>a|</p> redo");
}

/** A project whose address of a page changes while a page with links to it is open. */
class UpkeepTest : public HistoryTest {
  protected:
    void openLink() {
        open("<a href=\"old\">x|</a>");
        page->setUpkeep([this](Document& document) { follow(document); });
    }
    void follow(Document& document) const {
        for (Node* link : document.links())
            if (link->getAttribute("href") == "old" && address == "new")
                document.setAttribute(*link, "href", "new");
    }
    void rename() {
        address = "new";
        const Document::Step step(*page, StepKind::Upkeep);
        follow(*page);
    }
    std::string address = "old";
};

TEST_F(UpkeepTest, IsNoStepOfTheUser) {
    openLink();
    rename();
    EXPECT_EQ(stateOf(*page), "<a href=\"new\">x|</a>");
    EXPECT_TRUE(page->isDirty());
}

TEST_F(UpkeepTest, StaysUnderUndoAndRedo) {
    openLink();
    type(*page, "1");
    page->sealStep();
    type(*page, "2");
    rename();
    type(*page, "3");
    EXPECT_EQ(undo(), "<a href=\"new\">x12|</a> undo redo");
    EXPECT_EQ(undo(), "<a href=\"new\">x1|</a> undo redo");
    EXPECT_EQ(undo(), "<a href=\"new\">x|</a> redo");
    EXPECT_EQ(redo(), "<a href=\"new\">x1|</a> undo redo");
    EXPECT_EQ(redo(), "<a href=\"new\">x12|</a> undo redo");
    EXPECT_EQ(redo(), "<a href=\"new\">x123|</a> undo");
}

TEST_F(UpkeepTest, ReachesWhatUndoAndRedoBringBack) {
    openLink();
    Node* link = page->body()->firstChild();
    page->removeNode(*link);
    rename();
    EXPECT_EQ(undo().substr(0, 14), "<a href=\"new\">") << "a link that was gone at the rename";
    page->redo();
    EXPECT_EQ(page->html().find("href"), std::string::npos);
    page->undo();
    type(*page, "1");
    EXPECT_EQ(undo().substr(0, 14), "<a href=\"new\">");
    EXPECT_FALSE(page->canUndo());
}

TEST_F(UpkeepTest, BetweenUndoAndRedo) {
    openLink();
    type(*page, "1");
    page->undo();
    rename();
    EXPECT_EQ(redo(), "<a href=\"new\">x1|</a> undo");
    EXPECT_EQ(undo(), "<a href=\"new\">x|</a> redo");
    type(*page, "2");
    EXPECT_EQ(stateOf(*page), "<a href=\"new\">x2|</a> undo");
    EXPECT_EQ(undo(), "<a href=\"new\">x|</a> redo");
    EXPECT_EQ(redo(), "<a href=\"new\">x2|</a> undo");
}

}  // namespace
}  // namespace pw::dom
