#include "platform/dom/Projection.h"

#include <gtest/gtest.h>

#include <deque>

#include "platform/Text.h"
#include "platform/dom/ViewStandIn.h"

namespace pw::dom {
namespace {

using test::ViewStandIn;

/** A document, its projection, and a view with a queue of messages in each direction. */
class Pair {
  public:
    explicit Pair(std::string_view html) : document(Document::parse(html)), projection(*document) {
        const std::string first = projection.snapshot();
        view.start(first);
        projection.acknowledge(view.seen());
    }

    void sendFromView() {
        if (const std::string batch = view.flush(kind); !batch.empty()) up.push_back("b" + batch);
    }
    void sendFromProgram() {
        if (const std::string message = projection.takeOutgoing(); !message.empty())
            down.push_back(message);
    }
    void deliverToProgram() {
        if (up.empty()) return;
        const std::string message = up.front();
        up.pop_front();
        if (message[0] == 'a') {
            projection.acknowledge(std::uint32_t(std::stoul(message.substr(1))));
        } else if (message[0] == 'l') {
            projection.viewIsLost(std::uint32_t(std::stoul(message.substr(1))));
        } else if (projection.applyBatch(message.substr(1)) != Projection::Result::Applied) {
            ++snapshots;
            up.push_back("b" + view.everything());
        }
    }
    void deliverToView() {
        if (down.empty()) return;
        std::vector<std::string> batches;
        const std::string answer = view.take(down.front(), batches);
        down.pop_front();
        for (const std::string& batch : batches)
            up.push_back("b" + batch);
        if (!answer.empty())
            up.push_back((answer == "lost" ? "l" : "a") + std::to_string(view.seen()));
    }
    void settle() {
        for (int i = 0; i < 1000; ++i) {
            sendFromView();
            sendFromProgram();
            if (up.empty() && down.empty() && projection.settled()) return;
            deliverToProgram();
            deliverToView();
        }
        ADD_FAILURE() << "the two sides never come to rest";
    }
    std::string programTree() const { return ViewStandIn::tree(*document->root()); }
    std::string body() const { return document->innerHTML(*document->body()); }

    std::unique_ptr<Document> document;
    Projection projection;
    ViewStandIn view;
    std::string kind = "c";
    std::deque<std::string> up;
    std::deque<std::string> down;
    int snapshots = 0;
};

TEST(ProjectionTest, ASnapshotHoldsTheTree) {
    Pair pair(
        "<!-- before --><html><body class=x><p>One <b>two</b></p></body></html><!-- behind -->");
    EXPECT_EQ(pair.view.tree(), pair.programTree());
}

// What the view does to a page, and what it comes to in the document.
TEST(ProjectionTest, BatchesChangeOnlyWhatTheyName) {
    struct Row {
        const char* name;
        void (*act)(ViewStandIn&);
        const char* expected;
    };
    // The source is odd on purpose: what is not named must keep it.
    const char* page =
        "<HTML><BODY><P align=left>One <B>two</B> three<p ID=q>Four</p></BODY></HTML>";
    const Row rows[] = {
        {"typing", [](ViewStandIn& view) { view.write(view.text("One"), "One more "); },
         "<HTML><BODY><P align=left>One more <B>two</B> three<p ID=q>Four</p></BODY></HTML>"},
        {"attribute", [](ViewStandIn& view) { view.set(view.find("b"), "class", "x"); },
         "<HTML><BODY><P align=left>One <B class=\"x\">two</B> three<p "
         "ID=q>Four</p></BODY></HTML>"},
        {"removal", [](ViewStandIn& view) { view.remove(view.find("b")); },
         "<HTML><BODY><P align=left>One  three<p ID=q>Four</p></BODY></HTML>"},
        {"a new node round a known one",
         [](ViewStandIn& view) {
             ViewStandIn::Item* bold = view.find("b");
             ViewStandIn::Item* italic = view.make(1, "i");
             view.insert(bold->parent, italic, ViewStandIn::indexOf(bold));
             view.insert(italic, bold, 0);
         },
         "<HTML><BODY><P align=left>One <i><B>two</B></i> three<p ID=q>Four</p></BODY></HTML>"},
        {"a known node moved",
         [](ViewStandIn& view) {
             ViewStandIn::Item* bold = view.find("b");
             view.insert(view.text("Four")->parent, bold, 9);
         },
         "<HTML><BODY><P align=left>One  three<p ID=q>Four<B>two</B></p></BODY></HTML>"},
        {"unwrapped",
         [](ViewStandIn& view) {
             ViewStandIn::Item* bold = view.find("b");
             ViewStandIn::Item* text = bold->children[0];
             view.insert(bold->parent, text, ViewStandIn::indexOf(bold));
             view.remove(bold);
         },
         "<HTML><BODY><P align=left>One two three<p ID=q>Four</p></BODY></HTML>"},
        {"parent and child change places",
         [](ViewStandIn& view) {
             ViewStandIn::Item* bold = view.find("b");
             ViewStandIn::Item* paragraph = bold->parent;
             ViewStandIn::Item* body = paragraph->parent;
             view.insert(body, bold, 0);
             view.insert(bold, paragraph, 9);
         },
         nullptr},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        Pair pair(page);
        row.act(pair.view);
        pair.settle();
        EXPECT_EQ(pair.view.tree(), pair.programTree());
        if (row.expected) {
            EXPECT_EQ(pair.document->html(), row.expected);
        }
        EXPECT_EQ(pair.snapshots, 0);
        EXPECT_TRUE(pair.document->undo());
        EXPECT_FALSE(pair.document->canUndo());
        EXPECT_EQ(pair.document->html(), page);
        pair.settle();
        EXPECT_EQ(pair.view.tree(), pair.programTree());
    }
}

// What the browser does to merge variables in spite of all is mended with its batch.
TEST(ProjectionTest, VariablesStayWhole) {
    struct Row {
        const char* name;
        const char* kind;
        void (*act)(ViewStandIn&);
        const char* expected;
    };
    using View = ViewStandIn;
    const auto unit = [](const std::string& text) {
        return "<a type=omMerge name=V>" + text + "</a>";
    };
    const Row rows[] = {
        {"typed behind it", "t", [](View& v) { v.write(v.text("Val"), "Val is"); }, "a[Val] isb"},
        {"typed in front of it", "t", [](View& v) { v.write(v.text("Val"), "theVal"); },
         "athe[Val]b"},
        {"typed at both ends", "t", [](View& v) { v.write(v.text("Val"), "xValy"); }, "ax[Val]yb"},
        {"typed within it", "t", [](View& v) { v.write(v.text("Val"), "Vxal"); }, "a[Val]xb"},
        {"a part of it deleted", "d", [](View& v) { v.write(v.text("Val"), "Va"); }, "ab"},
        {"a part of it replaced", "t", [](View& v) { v.write(v.text("Val"), "Vix"); }, "aixb"},
        {"all of it replaced", "t", [](View& v) { v.write(v.text("Val"), "new"); }, "anewb"},
        {"a break put into it", "p", [](View& v) { v.insert(v.find("a"), v.make(1, "br"), 1); },
         "a[Val]<br>b"},
        {"typed in formatting of its own", "t",
         [](View& v) {
             v.insert(v.find("a"), v.make(1, "i"), 1);
             v.insert(v.find("i"), v.make(3, "x"), 0);
         },
         "a[Val]xb"},
        {"copied for a new paragraph", "p",
         [](View& v) {
             View::Item* copy = v.make(1, "a");
             v.set(copy, "type", "omMerge");
             v.set(copy, "name", "V");
             v.insert(v.find("p"), copy, 9);
             v.insert(copy, v.make(1, "br"), 0);
         },
         "a[Val]b<br>"},
        {"put into another place", "d",
         [](View& v) {
             View::Item* copy = v.make(1, "a");
             v.set(copy, "type", "omMerge");
             v.set(copy, "name", "V");
             v.remove(v.find("a"));
             v.insert(v.find("p"), copy, 0);
         },
         "<a name=\"V\" type=\"omMerge\"></a>ab"},
        {"formatted within", "c",
         [](View& v) {
             View::Item* bold = v.make(1, "b");
             v.insert(v.find("a"), bold, 0);
             v.insert(bold, v.text("Val"), 0);
         },
         "a<b>[Val]</b>b"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        const std::string page = "<html><body><p>a" + unit("Val") + "b</p></body></html>";
        Pair pair(page);
        pair.kind = row.kind;
        row.act(pair.view);
        pair.settle();
        const std::string expected =
            ReplaceAll(ReplaceAll(row.expected, "[", "<a type=omMerge name=V>"), "]", "</a>");
        EXPECT_EQ(pair.body(), "<p>" + expected + "</p>");
        EXPECT_EQ(pair.view.tree(), pair.programTree());
        EXPECT_TRUE(pair.document->undo());
        EXPECT_FALSE(pair.document->canUndo()) << "the mending belongs to the edit";
        EXPECT_EQ(pair.document->html(), page);
    }
}

TEST(ProjectionTest, OffsetsOfTheViewAreUtf16) {
    Pair pair("<html><body><p>a\xF0\x9F\x98\x80\xC3\xA9z</p></body></html>");
    const Node* text = pair.document->tags("p")[0]->firstChild();
    const std::string id = std::to_string(pair.projection.viewId(text));
    // Behind the smiley, which has two units and four bytes, the accented letter is replaced.
    const std::string batch = "{\"n\":1,\"seen\":1,\"kind\":\"t\",\"t\":[[" + id +
                              ",3,1,1,\"\\ud83d\\ude00e\"]],\"sel\":[1," + id + ",6," + id + ",5]}";
    ASSERT_EQ(pair.projection.applyBatch(batch), Projection::Result::Applied);
    EXPECT_EQ(text->data(),
              "a\xF0\x9F\x98\x80\xF0\x9F\x98\x80"
              "ez");
    EXPECT_EQ(pair.document->selection().anchor.offset, 10u);
    EXPECT_EQ(pair.document->selection().focus.offset, 9u);
    pair.document->collapse({pair.document->tags("p")[0]->firstChild(), 5});
    EXPECT_NE(pair.projection.takeOutgoing().find("\"sel\":[1," + id + ",3," + id + ",3]"),
              std::string::npos);
}

TEST(ProjectionTest, TypingMergesAndCommandsDoNot) {
    struct Row {
        const char* name;
        std::vector<std::string> kinds;
        int steps;
    };
    const Row rows[] = {{"typing", {"t", "t", "t"}, 1},
                        {"deleting", {"d", "d"}, 1},
                        {"the kind changes", {"t", "d", "t"}, 3},
                        {"commands", {"c", "c"}, 2},
                        {"a paragraph between", {"t", "p", "t"}, 2}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        Pair pair("<html><body><p>x</p></body></html>");
        for (const std::string& kind : row.kinds) {
            pair.kind = kind;
            auto* text = pair.view.text("x");
            pair.view.write(text, text->data + "y");
            pair.settle();
        }
        int steps = 0;
        while (pair.document->undo())
            ++steps;
        EXPECT_EQ(steps, row.steps);
    }
}

TEST(ProjectionTest, ALostBatchBringsTheWholeTree) {
    Pair pair("<html><body><p>one</p><p>two</p></body></html>");
    pair.view.write(pair.view.text("one"), "one!");
    (void)pair.view.flush();  // never arrives
    pair.view.write(pair.view.text("two"), "two!");
    pair.settle();
    EXPECT_EQ(pair.snapshots, 1);
    EXPECT_EQ(pair.body(), "<p>one!</p><p>two!</p>");
    EXPECT_TRUE(pair.document->undo());
    EXPECT_EQ(pair.body(), "<p>one</p><p>two</p>");
}

TEST(ProjectionTest, WhatIsNoBatchIsRefusedWithoutAChange) {
    const char* const rows[] = {"",
                                "nonsense",
                                "[]",
                                "{\"n\":1}",
                                "{\"n\":\"x\",\"seen\":0,\"kind\":\"c\"}",
                                "{\"n\":1,\"seen\":0,\"kind\":\"c\",\"k\":[[1]]}",
                                "{\"n\":1,\"seen\":0,\"kind\":\"c\",\"k\":[[1,[[5,1,\"p\"]]]]}",
                                "{\"n\":1,\"seen\":0,\"kind\":\"c\",\"t\":[[1,-1,0,0,\"x\"]]}",
                                "{\"n\":1,\"seen\":0,\"kind\":\"c\",\"a\":[[99999,\"x\",\"y\"]]}",
                                "{\"n\":1,\"seen\":0,\"kind\":\"c\",\"k\":[[99999,[]]]}",
                                "{\"n\":1,\"seen\":0,\"kind\":\"c\",\"k\":[[1,[88888]]]}",
                                "{\"n\":1,\"seen\":0,\"kind\":\"c\",\"t\":[[1,0,0,0,\"\\ud800\"]]}",
                                "{\"sel\":[1,2]}"};
    Pair pair("<html><body><p>one</p></body></html>");
    const std::string before = pair.document->html();
    for (const char* row : rows) {
        SCOPED_TRACE(row);
        EXPECT_NE(pair.projection.applyBatch(row), Projection::Result::Applied);
        EXPECT_EQ(pair.document->html(), before);
        EXPECT_FALSE(pair.document->canUndo());
    }
    // The view is asked for everything, and then goes on as ever.
    EXPECT_EQ(pair.projection.applyBatch(pair.view.everything()), Projection::Result::Applied);
    EXPECT_EQ(pair.document->html(), before);
    pair.view.write(pair.view.text("one"), "one two");
    pair.settle();
    EXPECT_EQ(pair.body(), "<p>one two</p>");
}

// Both sides change the page before either has heard of the other.
TEST(ProjectionTest, ChangesThatCrossAreBroughtTogether) {
    struct Row {
        const char* name;
        void (*user)(ViewStandIn&);
        void (*program)(Document&);
        const char* expected;
    };
    const Row rows[] = {
        {"different places", [](ViewStandIn& view) { view.write(view.text("two"), "two!"); },
         [](Document& page) { page.setAttribute(*page.tags("p")[0], "id", "a"); },
         "<p id=\"a\">one</p><p>two!</p>"},
        {"typing, and a new block in the same parent",
         [](ViewStandIn& view) { view.write(view.text("two"), "two!"); },
         [](Document& page) { page.insertAdjacentHTML(*page.body(), "afterBegin", "<h1>T</h1>"); },
         "<h1>T</h1><p>one</p><p>two!</p>"},
        {"both add children to one parent",
         [](ViewStandIn& view) { view.insert(view.find("body"), view.make(1, "hr"), 9); },
         [](Document& page) {
             page.insertAdjacentHTML(*page.tags("p")[0], "afterEnd", "<h1>T</h1>");
         },
         "<p>one</p><h1>T</h1><p>two</p><hr>"},
        {"the program removes where the user types",
         [](ViewStandIn& view) { view.write(view.text("one"), "one!"); },
         [](Document& page) { page.removeNode(*page.tags("p")[0]); }, "<p>two</p>"},
        {"the user removes what the program changes",
         [](ViewStandIn& view) { view.remove(view.find("p")); },
         [](Document& page) { page.setAttribute(*page.tags("p")[0], "id", "a"); }, "<p>two</p>"},
        {"typing in front of what the program rewrites",
         [](ViewStandIn& view) { view.write(view.text("one"), "1one"); },
         [](Document& page) { page.replaceText(*page.tags("p")[0]->firstChild(), 2, 1, "EE"); },
         "<p>1onEE</p><p>two</p>"},
        {"typing behind what the program rewrites",
         [](ViewStandIn& view) { view.write(view.text("one"), "one1"); },
         [](Document& page) { page.replaceText(*page.tags("p")[0]->firstChild(), 0, 1, "OO"); },
         "<p>OOne1</p><p>two</p>"},
        {"typing within what the program rewrites",
         [](ViewStandIn& view) { view.write(view.text("one"), "on1e"); },
         [](Document& page) { page.setText(*page.tags("p")[0]->firstChild(), "new"); },
         "<p>new1</p><p>two</p>"},
        {"the same attribute", [](ViewStandIn& view) { view.set(view.find("p"), "id", "user"); },
         [](Document& page) { page.setAttribute(*page.tags("p")[0], "id", "program"); },
         "<p id=\"program\">one</p><p>two</p>"},
        {"both move the same node",
         [](ViewStandIn& view) { view.insert(view.find("body"), view.text("one"), 9); },
         [](Document& page) {
             page.moveNode(*page.tags("p")[1], *page.tags("p")[0]->firstChild(), nullptr);
         },
         "<p></p><p>twoone</p>"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        Pair pair("<html><body><p>one</p><p>two</p></body></html>");
        row.user(pair.view);
        row.program(*pair.document);
        pair.sendFromProgram();
        pair.settle();
        EXPECT_EQ(pair.body(), row.expected);
        EXPECT_EQ(pair.view.tree(), pair.programTree());
        while (pair.document->undo()) {
        }
        EXPECT_EQ(pair.body(), "<p>one</p><p>two</p>");
    }
}

// --- Random pages, edits and delays -------------------------------------------------------------

class RandomWalk {
  public:
    explicit RandomWalk(unsigned seed) : random_(seed), pair(page()) {}

    void step() {
        switch (pick(9)) {
            case 0:
            case 1:
            case 2:
                userEdits();
                break;
            case 3:
                programEdits();
                break;
            case 4:
                pair.sendFromView();
                break;
            case 5:
                pair.sendFromProgram();
                break;
            case 6:
            case 7:
                pair.deliverToProgram();
                break;
            case 8:
                pair.deliverToView();
                break;
        }
    }

  private:
    std::size_t pick(std::size_t count) { return random_() % count; }

    std::string page() {
        std::string html = "<HTML><Body>";
        for (int i = 0; i < 12; ++i)
            html += "<P>Text " + std::to_string(i) + " <b>bold</b> more\n<ul><li>a<li>b</ul>";
        return html + "</Body></HTML>";
    }

    void userEdits() {
        ViewStandIn& view = pair.view;
        auto items = view.below(view.find("body") ? view.find("body") : view.root());
        if (items.empty()) return;
        auto* item = items[pick(items.size())];
        auto* other = items[pick(items.size())];
        switch (pick(8)) {
            case 0:
            case 1:
                if (item->type == 3)
                    view.write(item, item->data.substr(0, pick(item->data.size() + 1)) + "typed" +
                                         item->data.substr(item->data.size() -
                                                           pick(item->data.size() + 1)));
                break;
            case 2:
                if (item->type == 1)
                    view.set(item, "class",
                             pick(3) ? std::optional<std::string>("c" + std::to_string(pick(9)))
                                     : std::nullopt);
                break;
            case 3:
                view.remove(item);
                break;
            case 4:
                if (other->type == 1 && !ViewStandIn::contains(item, other))
                    view.insert(other, item, pick(4));
                break;
            case 5: {
                auto* wrapper = view.make(1, "i");
                view.insert(item->parent, wrapper, ViewStandIn::indexOf(item));
                view.insert(wrapper, item, 0);
                break;
            }
            case 6:
                if (item->type == 1) {
                    const auto children = item->children;
                    for (auto* child : children)
                        view.insert(item->parent, child, ViewStandIn::indexOf(item));
                    view.remove(item);
                }
                break;
            case 7: {
                auto* element = view.make(1, "div");
                view.insert(element, view.make(3, "new text"), 0);
                if (!ViewStandIn::contains(other, item)) view.insert(element, other, 1);
                if (item->parent) view.insert(item->parent, element, ViewStandIn::indexOf(item));
                break;
            }
        }
    }

    void programEdits() {
        Document& page = *pair.document;
        if (!page.body()) return;
        std::vector<Node*> nodes;
        for (Node* node = page.body()->following(page.body()); node;
             node = node->following(page.body()))
            nodes.push_back(node);
        if (nodes.empty()) return;
        Node* node = nodes[pick(nodes.size())];
        Node* other = nodes[pick(nodes.size())];
        switch (pick(8)) {
            case 0:
                if (node->isElement()) page.setAttribute(*node, "title", std::to_string(pick(9)));
                break;
            case 1:
                if (node->isText()) page.replaceText(*node, pick(node->data().size() + 1), 0, "by");
                break;
            case 2:
                if (node->isText()) page.setText(*node, "whole");
                break;
            case 3:
                page.removeNode(*node);
                break;
            case 4:
                if (other->isElement() && !node->contains(*other))
                    page.moveNode(*other, *node, other->firstChild());
                break;
            case 5:
                if (node->isElement())
                    page.insertAdjacentHTML(*node, "afterEnd", "<em>in <b>it</b></em>");
                break;
            case 6:
                page.undo();
                break;
            case 7:
                page.redo();
                break;
        }
    }

    std::mt19937 random_;

  public:
    Pair pair;
};

TEST(ProjectionTest, RandomEditsOnBothSidesConverge) {
    for (unsigned seed = 1; seed <= 60; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        RandomWalk walk(seed);
        const std::string loaded = walk.pair.document->html();
        for (int round = 0; round < 8; ++round) {
            for (int i = 0; i < 40; ++i)
                walk.step();
            walk.pair.settle();
            ASSERT_EQ(walk.pair.view.tree(), walk.pair.programTree()) << "round " << round;
        }
        while (walk.pair.document->undo()) {
        }
        ASSERT_EQ(walk.pair.document->html(), loaded);
        walk.pair.settle();
        ASSERT_EQ(walk.pair.view.tree(), walk.pair.programTree());
        while (walk.pair.document->redo()) {
        }
        walk.pair.settle();
        ASSERT_EQ(walk.pair.view.tree(), walk.pair.programTree());
    }
}

}  // namespace
}  // namespace pw::dom
