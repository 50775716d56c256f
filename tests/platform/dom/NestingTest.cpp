#include "platform/dom/Nesting.h"

#include <gtest/gtest.h>

#include <random>

#include "platform/dom/NormalTree.h"
#include "platform/dom/Projection.h"
#include "platform/dom/ViewStandIn.h"

namespace pw::dom {
namespace {

using test::NormalTree;

/** Builds below `parent` what the text says, whether or not a parser would: "<p[<ul[<li[x]]]y]". */
void Build(Document& document, Node& parent, std::string_view& text) {
    std::string data;
    const auto write = [&] {
        if (!data.empty()) document.insertNode(parent, *document.createText(data), nullptr);
        data.clear();
    };
    while (!text.empty()) {
        const char c = text.front();
        text.remove_prefix(1);
        if (c == ']') break;
        if (c != '<') {
            data += c;
            continue;
        }
        write();
        const auto open = text.find('[');
        const std::string head(text.substr(0, open));
        text.remove_prefix(open + 1);
        const auto blank = head.find(' ');
        Node* node = document.createElement(head.substr(0, blank));
        if (blank != head.npos) {
            const auto equals = head.find('=');
            document.setAttribute(*node, head.substr(blank + 1, equals - blank - 1),
                                  head.substr(equals + 1));
        }
        document.insertNode(parent, *node, nullptr);
        Build(document, *node, text);
    }
    write();
}

TEST(NestingTest, WhatIsMendedReadsBackAsItIs) {
    struct Row {
        const char* name;
        const char* tree;
        const char* markup;
    };
    const Row rows[] = {
        {"fine as it is", "<p[a<b[c]]<ul[<li[<p[d]]]<div[<h1[e]]",
         "<p>a<b>c</b></p><ul><li><p>d</p></li></ul><div><h1>e</h1></div>"},
        {"a list alone in a paragraph", "<p class=x[<ul[<li[a]]]",
         "<ul class=\"x\"><li>a</li></ul>"},
        {"a list alone in an aligned one", "<p align=center[<ul[<li[a]]]",
         "<ul style=\"text-align: center\"><li>a</li></ul>"},
        {"a list within text and formatting", "<p id=n[a<b[c<ul[<li[d]]e]f]",
         "<p id=\"n\">a<b>c</b></p><b><ul><li>d</li></ul></b><p><b>e</b>f</p>"},
        {"a paragraph in a paragraph", "<p[a<p[b]c]", "<p>a</p><p>b</p><p>c</p>"},
        {"a heading in a paragraph in a cell", "<table[<tbody[<tr[<td[<p[a<h2[b]]]]]]",
         "<table><tbody><tr><td><p>a</p><h2>b</h2></td></tr></tbody></table>"},
        {"a heading in a heading", "<h1[a<h2[b]]", "<h1>a</h1><h2>b</h2>"},
        {"a link in a link, formatted", "<a href=x[1<i[2<a href=y[3]]4]",
         "<a href=\"x\">1<i>2</i></a><i><a href=\"y\">3</a></i><a href=\"x\">4</a>"},
        {"items in an item", "<ul[<li[a<li[b]<div[<li[c]]]]",
         "<ul><li>a</li><li>b</li><div><li>c</li></div></ul>"},
        {"terms", "<dl[<dt[a<dd[b]]]", "<dl><dt>a</dt><dd>b</dd></dl>"},
        {"a list in an item", "<ul[<li[a<ul[<li[b]]]]", "<ul><li>a<ul><li>b</li></ul></li></ul>"},
        {"forms and buttons", "<form[a<div[<form[b]]]<button[c<button[d]]",
         "<form>a<div>b</div></form><button>c</button><button>d</button>"},
        {"a selection field", "<select[<option[a<b[c]<option[d]]]",
         "<select><option>ac</option><option>d</option></select>"},
        {"rows and cells where none can be", "<p[<td[a]]<div[<tr[<td[b]]]", "<p>a</p><div>b</div>"},
        {"cells without a row", "<table[<td[a]<td[b]]",
         "<table><tbody><tr><td>a</td><td>b</td></tr></tbody></table>"},
        {"text and a list in a table", "<table[a<tbody[<tr[<ul[<li[b]]<td[c]]]]",
         "a<ul><li>b</li></ul><table><tbody><tr><td>c</td></tr></tbody></table>"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        const auto document = Document::parse("<!DOCTYPE html><body></body>");
        document->clearHistory();
        {
            const Document::Step step(*document);
            std::string_view text = row.tree;
            Build(*document, *document->body(), text);
            mendNesting(*document, document->body()->children());
        }
        EXPECT_EQ(document->innerHTML(*document->body()), row.markup);
        EXPECT_EQ(NormalTree(*document), NormalTree(*Document::parse(document->html())));
        EXPECT_TRUE(document->undo());
        EXPECT_EQ(document->html(), "<!DOCTYPE html><body></body>");
    }
}

TEST(NestingTest, TheCaretStaysInTheText) {
    const auto document = Document::parse("<!DOCTYPE html><body></body>");
    std::string_view text = "<p[a<ul[<li[bcd]]]";
    Build(*document, *document->body(), text);
    Node* item = document->tags("li").front()->firstChild();
    document->collapse({item, 2});
    mendNesting(*document, document->body()->children());
    EXPECT_EQ(document->selection().focus, (Position{item, 2}));
}

/** What a view could come to: anything moved into anything, and things put around others. */
class ViewWalk : public testing::TestWithParam<const char*> {
  protected:
    using View = test::ViewStandIn;

    std::size_t Pick(std::size_t count) { return random_() % count; }

    void Step(View& view) {
        static constexpr const char* kTags[] = {"ul", "li", "p",     "h2",   "b",      "a",   "div",
                                                "td", "tr", "table", "form", "button", "nobr"};
        std::vector<View::Item*> items = view.below(view.find("body"));
        std::vector<View::Item*> elements;
        std::ranges::copy_if(items, std::back_inserter(elements), [](const View::Item* item) {
            return item->type == 1 && item->name != "br" && item->name != "script";
        });
        if (elements.empty()) return;
        View::Item* item = items[Pick(items.size())];
        View::Item* target = elements[Pick(elements.size())];
        if (Pick(3) == 0) {
            View::Item* around = view.make(1, kTags[Pick(std::size(kTags))]);
            view.insert(item->parent, around, View::indexOf(item));
            view.insert(around, item, 0);
        } else if (!View::contains(item, target)) {
            view.insert(target, item, Pick(target->children.size() + 1));
        }
    }

    std::mt19937 random_{20261123};
};

TEST_P(ViewWalk, ReadsBackAsItIsAfterEachStep) {
    for (int round = 0; round < 60; ++round) {
        const auto document = Document::parse(GetParam());
        Projection projection(*document);
        View view;
        view.start(projection.snapshot());
        projection.acknowledge(view.seen());
        for (int step = 0; step < 12; ++step) {
            const std::string before = document->html();
            Step(view);
            std::vector<std::string> batches;
            const std::string batch = view.flush();
            if (batch.empty()) continue;
            ASSERT_EQ(projection.applyBatch(batch), Projection::Result::Applied);
            for (std::string message; !(message = projection.takeOutgoing()).empty();) {
                ASSERT_EQ(view.take(message, batches), "applied");
                projection.acknowledge(view.seen());
            }
            ASSERT_EQ(view.tree(), View::tree(*document->root()));
            ASSERT_EQ(NormalTree(*document), NormalTree(*Document::parse(document->html())))
                << "before: " << before << "\nnow: " << document->html();
        }
        while (document->undo()) {
        }
        ASSERT_EQ(document->html(), GetParam());
    }
}

INSTANTIATE_TEST_SUITE_P(
    Nesting, ViewWalk,
    testing::Values("<!DOCTYPE html><html><body><p>a<b>c</b>d</p><ul><li>e</li><li>f</li></ul>"
                    "<table><tbody><tr><td>g</td><td><p>h</p></td></tr></tbody></table>"
                    "<h1>i<a href=x>j</a></h1></body></html>",
                    "<!DOCTYPE html><BODY bgcolor=x><P>a<B>c</B>d<P>e<UL><LI>f<LI>g</UL>"
                    "<TABLE><tr><td>h<td>i</TABLE><A href=j>k</A> l"));

}  // namespace
}  // namespace pw::dom
