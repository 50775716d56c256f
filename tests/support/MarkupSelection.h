#pragma once
// Pages for editing tests, written as markup of the body with the selection in it: "^" is the
// anchor, "|" the focus. "|" alone is a caret.
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/dom/Document.h"

namespace pw::test {

namespace detail {

inline bool isMark(char c) {
    return c == '^' || c == '|';
}

inline std::string withoutMarks(std::string_view markup) {
    std::string out;
    for (const char c : markup) {
        if (!isMark(c)) out += c;
    }
    return out;
}

/** The place of a mark, as indexes from the body down and an offset, in a page without marks. */
struct MarkPath {
    std::vector<std::size_t> indexes;
    std::size_t offset = 0;
    bool found = false;
};

inline bool isOnlyMarks(const dom::Node& node) {
    return node.isText() && withoutMarks(node.data()).empty();
}

inline MarkPath findMark(const dom::Node& body, char mark) {
    for (const dom::Node* node = &body; node; node = node->following(&body)) {
        if (!node->isText()) continue;
        const std::size_t at = node->data().find(mark);
        if (at == std::string::npos) continue;
        MarkPath path;
        path.found = true;
        const bool alone = isOnlyMarks(*node);
        if (!alone) path.offset = withoutMarks(node->data().substr(0, at)).size();
        const dom::Node* step = node;
        while (step != &body) {
            std::size_t index = 0;
            for (const dom::Node* s = step->previous(); s; s = s->previous()) {
                if (!isOnlyMarks(*s)) ++index;
            }
            path.indexes.insert(path.indexes.begin(), index);
            step = step->parent();
        }
        if (alone) {
            path.offset = path.indexes.back();
            path.indexes.pop_back();
        }
        return path;
    }
    return {};
}

inline dom::Position follow(dom::Node* body, const MarkPath& path) {
    dom::Node* node = body;
    for (const std::size_t index : path.indexes)
        node = node->children().at(index);
    return {node, path.offset};
}

inline void write(const dom::Node& node, const dom::Selection& selection, std::string& out) {
    const auto marksAt = [&](std::size_t offset) {
        std::string marks;
        if (selection.type != dom::SelectionType::Text) return marks;
        const dom::Position here{const_cast<dom::Node*>(&node), offset};
        if (selection.anchor == here && !selection.collapsed()) marks += '^';
        if (selection.focus == here) marks += '|';
        return marks;
    };
    if (node.isText()) {
        for (std::size_t i = 0; i <= node.data().size(); ++i) {
            out += marksAt(i);
            if (i == node.data().size()) break;
            const char c = node.data()[i];
            out += c == '<' ? "&lt;" : c == '&' ? "&amp;" : std::string(1, c);
        }
        return;
    }
    if (node.isComment()) {
        out += "<!--" + node.data() + "-->";
        return;
    }
    std::size_t index = 0;
    for (const dom::Node* child = node.firstChild(); child; child = child->next()) {
        out += marksAt(index++);
        if (!child->isElement()) {
            write(*child, selection, out);
            continue;
        }
        out += "<" + child->localName();
        for (const dom::Attribute& attribute : child->attributes()) {
            out += " " + attribute.name + "=\"" + attribute.value + "\"";
        }
        out += selection.control == child ? " SELECTED>" : ">";
        write(*child, selection, out);
        static constexpr std::string_view kVoid[] = {"br", "hr", "img", "input"};
        bool isVoid = false;
        for (const std::string_view tag : kVoid)
            isVoid |= child->is(tag);
        if (!isVoid) out += "</" + child->localName() + ">";
    }
    out += marksAt(index);
}

}  // namespace detail

/** A page whose body holds this markup, with the selection that is marked in it. */
inline std::unique_ptr<dom::Document> pageOf(std::string_view markup) {
    const std::string before = "<html><head><title>t</title></head><body>";
    const std::string behind = "</body></html>";
    const auto marked = dom::Document::parseText(before + std::string(markup) + behind);
    auto page = dom::Document::parseText(before + detail::withoutMarks(markup) + behind);
    const detail::MarkPath focus = detail::findMark(*marked->body(), '|');
    if (!focus.found) return page;
    const detail::MarkPath anchor = detail::findMark(*marked->body(), '^');
    dom::Selection selection;
    selection.type = dom::SelectionType::Text;
    selection.focus = detail::follow(page->body(), focus);
    selection.anchor = anchor.found ? detail::follow(page->body(), anchor) : selection.focus;
    page->setSelection(selection);
    return page;
}

/** The body's markup, canonical, with the selection marked in it. */
inline std::string markupOf(const dom::Document& page) {
    std::string out;
    detail::write(*page.body(), page.selection(), out);
    return out;
}

/** As markupOf, with what can be undone and redone behind it: "<p>a|</p> undo" … */
inline std::string stateOf(const dom::Document& page) {
    return markupOf(page) + (page.canUndo() ? " undo" : "") + (page.canRedo() ? " redo" : "");
}

}  // namespace pw::test
