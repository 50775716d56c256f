#include "platform/dom/RangeEdit.h"

#include <algorithm>
#include <unordered_set>

#include "platform/dom/Escape.h"
#include "platform/dom/FlatText.h"
#include "platform/dom/StartTag.h"
#include "platform/dom/Tags.h"
#include "platform/dom/Units.h"

namespace pw::dom {

namespace {

bool isTablePart(const Node& node) {
    for (const char* tag : {"td", "th", "tr", "tbody", "thead", "tfoot", "caption", "colgroup"}) {
        if (node.is(tag)) return true;
    }
    return false;
}

/** A part of a table that holds cells, not content. */
bool isTableFrame(const Node& node) {
    return node.is("table") ||
           (isTablePart(node) && !node.is("td") && !node.is("th") && !node.is("caption"));
}

bool isBlank(std::string_view text) {
    return text.find_first_not_of(" \t\r\n\f") == text.npos;
}

bool isBlock(const Node& node) {
    return node.isElement() && isBlockTag(node.localName());
}

/** Holds text but no blocks: a block put into it splits it. */
bool isParagraph(const Node& node) {
    for (const char* tag : {"p", "h1", "h2", "h3", "h4", "h5", "h6", "address", "pre"}) {
        if (node.is(tag)) return true;
    }
    return false;
}

Node* blockAround(Node* node) {
    while (node && !isBlock(*node))
        node = node->parent();
    return node;
}

bool isEmpty(const Node& node) {
    for (const Node* at = node.firstChild(); at; at = at->following(&node)) {
        if (at->isText() ? !at->data().empty() : at->isElement() && isVoid(*at)) return false;
    }
    return true;
}

struct Ordered {
    Position begin;
    Position end;
};

Ordered inOrder(const Position& a, const Position& b) {
    return comparePositions(a, b) <= 0 ? Ordered{a, b} : Ordered{b, a};
}

/** What of the range has to go: whole nodes, but of tables only the content of cells. */
std::vector<Node*> wholeNodes(const Position& begin, const Position& end) {
    const Boundary from = boundaryOf(begin);
    const Boundary to = boundaryOf(end);
    std::unordered_set<const Node*> around;
    for (const Node* node = to.node; node; node = node->parent())
        around.insert(node);
    for (const Node* node = end.node; node; node = node->parent())
        around.insert(node);
    std::vector<Node*> found;
    auto* node = const_cast<Node*>(from.node);
    if (node && node == begin.node && node->isText()) node = node->followingSkippingChildren();
    while (node && node != to.node) {
        const bool table = isTablePart(*node);
        if (around.contains(node) || table) {
            node = node->following();
            continue;
        }
        found.push_back(node);
        node = node->followingSkippingChildren();
    }
    return found;
}

void removeWithEmptyParents(Document& document, Node* node, const Node* keep) {
    while (node && node != keep && !isTablePart(*node) && !node->is("body") && isEmpty(*node)) {
        Node* parent = node->parent();
        document.removeNode(*node);
        node = parent;
    }
}

}  // namespace

int comparePositions(const Position& a, const Position& b) {
    if (a == b) return 0;
    // Places as paths of child indexes from the root.
    const auto path = [](const Position& position) {
        std::vector<std::size_t> indexes{position.offset};
        for (const Node* node = position.node; node && node->parent(); node = node->parent()) {
            indexes.push_back(node->index());
        }
        std::reverse(indexes.begin(), indexes.end());
        return indexes;
    };
    const std::vector<std::size_t> first = path(a);
    const std::vector<std::size_t> second = path(b);
    const std::size_t shorter = std::min(first.size(), second.size());
    for (std::size_t i = 0; i < shorter; ++i) {
        if (first[i] != second[i]) return first[i] < second[i] ? -1 : 1;
    }
    // A place in front of a child comes before the places in it.
    return first.size() < second.size() ? -1 : first.size() > second.size() ? 1 : 0;
}

Position withinBody(const Document& document, Position place) {
    Node* body = document.body();
    if (!body || body->is("frameset") || !place.node || body->contains(*place.node)) return place;
    if (place.node != document.root() && !document.isConnected(place.node)) return place;
    const bool isInFront = comparePositions(place, {body, 0}) <= 0;
    return {body, isInFront ? 0 : body->children().size()};
}

Position deleteRange(Document& document, Position a, Position b) {
    if (!a.node || !b.node) return a;
    a = withinBody(document, a);
    b = withinBody(document, b);
    auto [begin, end] = inOrder(a, b);
    Document::Step step(document);
    if (begin.node == end.node && begin.node->isText()) {
        document.replaceText(*begin.node, begin.offset, end.offset - begin.offset, "");
        return begin;
    }
    Node* firstBlock = blockAround(begin.node);
    Node* lastBlock = blockAround(end.node);
    const std::vector<Node*> whole = wholeNodes(begin, end);
    if (end.node->isText()) document.replaceText(*end.node, 0, end.offset, "");
    if (begin.node->isText()) {
        document.replaceText(*begin.node, begin.offset, begin.node->data().size() - begin.offset,
                             "");
    }
    for (Node* node : whole) {
        if (document.isConnected(node)) document.removeNode(*node);
    }
    if (end.node->isText() && end.node->data().empty()) removeEmptied(document, *end.node);
    const bool joins = firstBlock && lastBlock && firstBlock != lastBlock &&
                       document.isConnected(lastBlock) && !isTablePart(*firstBlock) &&
                       !isTablePart(*lastBlock) && !lastBlock->contains(*firstBlock) &&
                       !lastBlock->is("body");
    if (!joins) return begin;
    // The text behind the end comes into the paragraph of the beginning.
    Node* spot = nullptr;
    Node* target = firstBlock;
    if (firstBlock->contains(*lastBlock)) {
        spot = lastBlock;
        while (spot->parent() != firstBlock)
            spot = spot->parent();
    }
    while (Node* child = lastBlock->firstChild()) {
        if (isBlock(*child)) break;
        document.moveNode(*target, *child, spot);
    }
    removeWithEmptyParents(document, lastBlock, firstBlock);
    return begin;
}

Position removeEmptied(Document& document, Node& text) {
    Node* node = &text;
    // What has a name is there to be found by it.
    const auto isFormattingOf = [](const Node* around, const Node* inner) {
        return around && around->firstChild() == inner && around->lastChild() == inner &&
               (isFormattingTag(around->localName()) || around->is("span")) &&
               !around->hasAttribute("id") && !around->hasAttribute("name");
    };
    while (isFormattingOf(node->parent(), node))
        node = node->parent();
    if (!node->parent()) return {node, 0};
    const Position place{node->parent(), node->index()};
    document.removeNode(*node);
    return place;
}

Node* splitText(Document& document, Node& text, std::size_t offset) {
    if (offset == 0 || offset >= text.data().size()) return nullptr;
    return document.splitText(text, offset);
}

Node* splitElements(Document& document, Position place, Node& limit) {
    Node* node = place.node;
    Node* next = nullptr;  // the first node behind the place, a child of `parent`
    Node* parent = nullptr;
    if (node->isText()) {
        parent = node->parent();
        if (place.offset == 0) {
            next = node;
        } else {
            splitText(document, *node, place.offset);
            next = node->next();
        }
    } else {
        parent = node;
        next = node->firstChild();
        for (std::size_t i = 0; next && i < place.offset; ++i)
            next = next->next();
    }
    while (parent != &limit) {
        Node* above = parent->parent();
        if (!next) {
            next = parent->next();
        } else if (next == parent->firstChild()) {
            next = parent;
        } else {
            Node* half = document.createElement(parent->localName());
            for (const Attribute& attribute : parent->attributes()) {
                if (attribute.name != "id") {
                    document.setAttribute(*half, attribute.name, attribute.value);
                }
            }
            document.insertNode(*above, *half, parent->next());
            while (next) {
                Node* following = next->next();
                document.moveNode(*half, *next, nullptr);
                next = following;
            }
            next = half;
        }
        parent = above;
    }
    return next;
}

namespace {

/** Nothing that shows, but perhaps the break that keeps an empty line open. */
bool holdsNothing(const Node& node) {
    const Node* child = node.firstChild();
    return !child || (!child->next() && (child->is("br") || child->data().empty()) &&
                      !child->firstChild() && (child->isText() || child->is("br")));
}

Position behind(Node& node) {
    if (node.isText()) return {&node, node.data().size()};
    return {node.parent(), node.index() + 1};
}

}  // namespace

// --- Places for content -------------------------------------------------------------------------

namespace {

/** What may stand directly in elements that hold lists of others. */
struct ListOnly {
    std::string_view tag;
    std::string_view items[4];
};
constexpr ListOnly kListOnly[] = {
    {"table", {"caption", "thead", "tbody", "tfoot"}},
    {"thead", {"tr"}},
    {"tbody", {"tr"}},
    {"tfoot", {"tr"}},
    {"tr", {"td", "th"}},
    {"colgroup", {"col"}},
    {"ul", {"li", "ul", "ol"}},
    {"ol", {"li", "ul", "ol"}},
    {"dir", {"li"}},
    {"menu", {"li"}},
    {"dl", {"dt", "dd", "div"}},
};

const ListOnly* listOnly(const Node& node) {
    for (const ListOnly& list : kListOnly)
        if (node.is(list.tag)) return &list;
    return nullptr;
}

bool isItemOf(const ListOnly& list, const Node& node) {
    return node.isElement() && std::ranges::any_of(list.items, [&](auto item) {
               return !item.empty() && node.is(item);
           });
}

/** An element in which no content of a page can stand: it has none, or none but text that is not
 *  the page's, or is edited as one. */
bool isClosed(const Node& node) {
    static constexpr std::string_view kObjects[] = {
        "applet",   "audio",  "canvas",   "datalist", "frame", "frameset", "object", "option",
        "optgroup", "select", "textarea", "title",    "video", "math",     "svg"};
    return node.isElement() &&
           (isVoid(node) || holdsRawText(node) || isUnit(node) ||
            std::ranges::any_of(kObjects, [&](auto tag) { return node.is(tag); }));
}

/** The first of these below a node, in document order. */
Node* firstItem(Node& list) {
    for (Node* node = list.following(&list); node; node = node->following(&list)) {
        if (node->is("td") || node->is("th") || node->is("li") || node->is("dd") ||
            node->is("dt") || node->is("caption"))
            return node;
    }
    return nullptr;
}

}  // namespace

Position placeForContent(Document& document, Position place, const std::vector<Node*>& nodes) {
    if (!place.node) return place;
    // 1. Out of what is closed, whichever of the elements around it that is.
    Node* closed = nullptr;
    for (Node* node = place.node; node; node = node->parent())
        if (isClosed(*node)) closed = node;
    if (closed && closed->parent()) place = {closed->parent(), closed->index() + 1};
    // 2. Into the page, where the place is beside it.
    Node* body = document.body();
    if (body && !body->contains(*place.node)) {
        const bool isInFront = comparePositions(place, {body, 0}) < 0;
        place = {body, isInFront ? 0 : body->children().size()};
    }
    // 3. Into an item of the list that it is in, or behind a list without any.
    for (const ListOnly* list = listOnly(*place.node); list; list = listOnly(*place.node)) {
        const auto belongs = [&](const Node* node) {
            return isItemOf(*list, *node) || node->isComment() ||
                   (node->isText() && isBlank(node->data()));
        };
        if (!nodes.empty() && std::ranges::all_of(nodes, belongs)) break;
        Node* at = place.node->firstChild();
        for (std::size_t i = 0; at && i < place.offset; ++i)
            at = at->next();
        while (at && !isItemOf(*list, *at))
            at = at->next();
        const bool isBehind = !at;
        for (at = at ? at : place.node->lastChild(); at && !isItemOf(*list, *at);)
            at = at->previous();
        Node* item = at ? (listOnly(*at) ? firstItem(*at) : at) : nullptr;
        if (!item) {
            place = {place.node->parent(), place.node->index() + 1};
        } else {
            place = {item, isBehind ? item->children().size() : 0};
        }
    }
    return place;
}

bool isNoContent(const Position& begin, const Position& end) {
    if (!begin.node || !end.node) return false;
    const Node& element = begin.node->isText() ? *begin.node->parent() : *begin.node;
    const bool isOfObject =
        begin.node->isText() ? holdsRawText(element) : isClosed(element) || isTableFrame(element);
    return isOfObject && element.contains(*end.node);
}

Position insertNodesAt(Document& document, Position place, const std::vector<Node*>& nodes) {
    if (nodes.empty() || !place.node) return place;
    place = withinBody(document, place);
    Document::Step step(document);
    place = placeForContent(document, place, nodes);
    Node* block = blockAround(place.node);
    const bool blocks =
        std::any_of(nodes.begin(), nodes.end(), [](const Node* node) { return isBlock(*node); });
    if (!blocks || !block || !isParagraph(*block) || !block->parent()) {
        Node* container = place.node->isText() ? place.node->parent() : place.node;
        // Blocks leave the formatting that the place is in: a paragraph within bold is none.
        if (blocks && block) container = block;
        Node* next = splitElements(document, place, *container);
        for (Node* node : nodes)
            document.insertNode(*container, *node, next);
        return behind(*nodes.back());
    }
    // Text in front of the first block and behind the last stays in the halves of the paragraph.
    Node* above = block->parent();
    Node* next = splitElements(document, place, *above);
    Node* tail = next && next != block && next->previous() == block ? next : nullptr;
    Node* head = next == block ? nullptr : block;
    if (next == block) tail = block;
    Position end;
    std::size_t first = 0;
    std::size_t last = nodes.size();
    while (head && first < last && !isBlock(*nodes[first])) {
        document.insertNode(*head, *nodes[first++], nullptr);
    }
    while (tail && last > first && !isBlock(*nodes[last - 1]))
        --last;
    for (std::size_t i = first; i < last; ++i)
        document.insertNode(*above, *nodes[i], next);
    Node* inTail = tail ? tail->firstChild() : nullptr;
    for (std::size_t i = last; i < nodes.size(); ++i)
        document.insertNode(*tail, *nodes[i], inTail);
    // An empty paragraph was there for the caret alone.
    if (holdsNothing(*block)) document.removeNode(*block);
    return behind(*nodes.back());
}

std::string markupBetween(const Document& document, Position a, Position b) {
    if (!a.node || !b.node) return {};
    const auto [begin, end] = inOrder(a, b);
    const Boundary from = boundaryOf(begin);
    const Boundary to = boundaryOf(end);
    const Node* top = begin.node->isElement() ? begin.node : begin.node->parent();
    while (top && !top->contains(*end.node))
        top = top->parent();
    if (top && top->isText()) top = top->parent();
    if (!top) return {};
    const auto holds = [](const Node& node, const Boundary& boundary) {
        return boundary.node && node.contains(*boundary.node);
    };
    const auto context = [](const Node& node) {
        return holdsRawText(*node.parent()) ? TextContext::Raw : TextContext::Normal;
    };
    std::string out;
    bool begun = false;
    const Node* node = top->firstChild();
    while (node) {
        const bool first = node == from.node;
        const bool last = node == to.node;
        begun |= first;
        if (last && !node->isText()) begun = false;
        if (node->isText() && begun && (first || last)) {
            const std::size_t begins = first ? from.offset : 0;
            const std::size_t ends = last ? to.offset : node->data().size();
            if (begins < ends) {
                out += escapeText(std::string_view(node->data()).substr(begins, ends - begins),
                                  context(*node), "\n");
            }
        } else if (node->isElement() &&
                   ((!begun && holds(*node, from)) || (begun && !last && holds(*node, to)))) {
            out += canonicalStartTag(*node, "\n");
            node = node->firstChild();
            continue;
        } else if (begun) {
            out += document.outerHTML(*node);
        }
        if (last) begun = false;
        const bool done = last;
        while (node && (done || !node->next())) {
            node = node->parent();
            if (node == top) return out;
            if (node) out += "</" + node->localName() + ">";
        }
        if (node) node = node->next();
    }
    return out;
}

}  // namespace pw::dom
