// Edits that are made of the primitives.
#include <stdexcept>

#include "platform/Text.h"
#include "platform/dom/DocumentImpl.h"
#include "platform/dom/Escape.h"
#include "platform/dom/Parser.h"
#include "platform/dom/Tags.h"
#include "platform/dom/TextSource.h"

namespace pw::dom {

namespace {

enum class Place { BeforeBegin, AfterBegin, BeforeEnd, AfterEnd };

Place placeOf(std::string_view where) {
    struct Row {
        const char* name;
        Place place;
    };
    static constexpr Row kRows[] = {{"beforebegin", Place::BeforeBegin},
                                    {"afterbegin", Place::AfterBegin},
                                    {"beforeend", Place::BeforeEnd},
                                    {"afterend", Place::AfterEnd}};
    for (const Row& row : kRows) {
        if (EqualsNoCase(where, row.name)) return row.place;
    }
    throw std::invalid_argument("\"" + std::string(where) +
                                "\" is no place at an element. It must be beforeBegin, afterBegin, "
                                "beforeEnd or afterEnd.");
}

struct Spot {
    Node* parent;
    Node* before;
};

Spot spotAt(Node& element, Place place) {
    if (place == Place::AfterBegin) return {&element, element.firstChild()};
    if (place == Place::BeforeEnd) return {&element, nullptr};
    if (!element.parent()) {
        throw std::logic_error("The element stands nowhere, so nothing can be put beside it.");
    }
    return {element.parent(), place == Place::BeforeBegin ? &element : element.next()};
}

std::string contextOf(const Node& node) {
    return node.isElement() ? node.localName() : std::string("body");
}

}  // namespace

void Document::moveNode(Node& parent, Node& node, Node* before) {
    if (before == &node) before = node.next_;
    if (node.parent_ == &parent && node.next_ == before) return;
    if (node.contains(parent)) throw std::logic_error("A node cannot be put into itself.");
    Step step(*this);
    Gateway gateway(*this);
    gateway.remove(node);
    gateway.insert(parent, node, before);
}

std::vector<Node*> Document::parseFragment(std::string_view html, std::string_view contextTag) {
    ParseError error;
    std::vector<Node*> nodes = Parser(*this).parseFragment(html, contextTag, &error);
    if (!error.message.empty()) throw std::runtime_error(error.message);
    return nodes;
}

Node* Document::splitText(Node& text, std::size_t offset) {
    if (!text.isText() || !text.parent_ || offset == 0 || offset >= text.data_.size()) {
        return nullptr;
    }
    Step step(*this);
    Node* tail = createText(std::string_view(text.data_).substr(offset));
    const std::size_t length = text.data_.size() - offset;
    const std::string_view bytes = text.own_ ? std::string_view(*text.own_) : text.start_;
    if (text.sourced_ && (text.raw_ || !bytes.starts_with(kCDataBegin))) {
        SourceSplice cut = spliceSource(bytes, text, offset, length, "", impl_->lineEnd);
        if (cut.inserted.empty()) {
            tail->sourced_ = true;
            tail->raw_ = text.raw_;
            tail->own_ = std::make_unique<std::string>(std::move(cut.removed));
        }
    }
    const Selection before = selection_;
    insertNode(*text.parent_, *tail, text.next_);
    replaceText(text, offset, length, "");
    // A selection in the part that was cut off goes with it.
    Selection moved = selection_;
    const auto follow = [&](const Position& from, Position& to) {
        if (from.node == &text && from.offset > offset) to = {tail, from.offset - offset};
    };
    follow(before.anchor, moved.anchor);
    follow(before.focus, moved.focus);
    setSelection(moved);
    return tail;
}

void Document::setTitle(std::string_view title) {
    Node* top = head();
    if (!top) return;
    for (Node* node = top; node; node = node->following(top)) {
        if (node->is("title")) return setInnerText(*node, title);
    }
    Step step(*this);
    Node* element = createElement("title");
    insertNode(*element, *createText(title), nullptr);
    // Behind the declaration of the encoding, which must come early.
    Node* before = top->first_;
    for (Node* node = top->first_; node; node = node->next_) {
        if (node->is("meta")) before = node->next_;
    }
    insertNode(*top, *element, before);
}

void Document::setInnerHTML(Node& element, std::string_view html) {
    const std::vector<Node*> nodes = parseFragment(html, contextOf(element));
    Step step(*this);
    while (element.first_)
        removeNode(*element.first_);
    for (Node* node : nodes)
        insertNode(element, *node, nullptr);
}

void Document::setInnerText(Node& element, std::string_view text) {
    const std::string plain = withLineFeeds(text);
    const bool oneText = plain.find('\n') == std::string::npos || element.is("pre") ||
                         element.is("listing") || holdsRawText(element) ||
                         isEscapableRawTextTag(element.name_);
    Step step(*this);
    Node* only = element.first_ && element.first_ == element.last_ ? element.first_ : nullptr;
    if (oneText && only && only->isText() && !plain.empty()) return setText(*only, plain);
    while (element.first_)
        removeNode(*element.first_);
    if (oneText) {
        if (!plain.empty()) insertNode(element, *createText(plain), nullptr);
        return;
    }
    bool first = true;
    for (const std::string& line : Split(plain, '\n')) {
        if (!first) insertNode(element, *createElement("br"), nullptr);
        if (!line.empty()) insertNode(element, *createText(line), nullptr);
        first = false;
    }
}

Node* Document::setOuterHTML(Node& element, std::string_view html) {
    Node* parent = element.parent_;
    if (!parent) throw std::logic_error("The element stands nowhere, so it cannot be replaced.");
    const std::vector<Node*> nodes = parseFragment(html, contextOf(*parent));
    Step step(*this);
    for (Node* node : nodes)
        insertNode(*parent, *node, &element);
    removeNode(element);
    return nodes.empty() ? nullptr : nodes.front();
}

void Document::insertAdjacentHTML(Node& element, std::string_view where, std::string_view html) {
    const Spot spot = spotAt(element, placeOf(where));
    const std::vector<Node*> nodes = parseFragment(html, contextOf(*spot.parent));
    Step step(*this);
    for (Node* node : nodes)
        insertNode(*spot.parent, *node, spot.before);
}

void Document::insertAdjacentElement(Node& element, std::string_view where, Node& other) {
    const Spot spot = spotAt(element, placeOf(where));
    Step step(*this);
    insertNode(*spot.parent, other, spot.before);
}

}  // namespace pw::dom
