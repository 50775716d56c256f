#include "platform/dom/Units.h"

#include <algorithm>
#include <unordered_set>

#include "platform/Text.h"
#include "platform/dom/Tags.h"

namespace pw::dom {

namespace {

std::string nameOf(const Node& unit) {
    return ToLower(unit.getAttribute("name"));
}

std::string textOf(const Node& unit) {
    std::string text;
    for (const Node* node = &unit; node; node = node->following(&unit)) {
        if (node->isText()) text += node->data();
        if (node->is("br")) text += '\n';
    }
    return text;
}

/** How many bytes of the unit's text stand in front of a place in it. */
std::size_t offsetIn(const Node& unit, const Position& place) {
    const Node* stop = place.node->isText() ? place.node : nullptr;
    if (!stop) {
        stop = place.node->firstChild();
        for (std::size_t i = 0; stop && i < place.offset; ++i)
            stop = stop->next();
        if (!stop) stop = place.node->followingSkippingChildren(&unit);
    }
    std::size_t offset = place.node->isText() ? place.offset : 0;
    for (const Node* node = &unit; node && node != stop; node = node->following(&unit))
        offset += node->isText() ? node->data().size() : node->is("br") ? 1 : 0;
    return offset;
}

bool splitsCharacter(const std::string& text, std::size_t at) {
    return at < text.size() && (static_cast<unsigned char>(text[at]) & 0xC0) == 0x80;
}

/** How a text was edited: what was put in front of it, within it and behind it; and whether some of
 *  its own is gone. */
struct Edit {
    std::string front;
    std::string behind;
    bool isCut = false;
};

Edit editOf(const std::string& before, const std::string& after) {
    if (const std::size_t at = after.find(before); at != after.npos)
        return {after.substr(0, at), after.substr(at + before.size()), false};
    std::size_t head = 0;
    std::size_t tail = 0;
    const std::size_t most = std::min(before.size(), after.size());
    while (head < most && before[head] == after[head])
        ++head;
    while (splitsCharacter(before, head) || splitsCharacter(after, head))
        --head;
    while (tail < most - head && before[before.size() - 1 - tail] == after[after.size() - 1 - tail])
        ++tail;
    while (splitsCharacter(before, before.size() - tail) ||
           splitsCharacter(after, after.size() - tail))
        --tail;
    return {"", after.substr(head, after.size() - head - tail), head + tail < before.size()};
}

/** Puts text in front of a node; the last of the new nodes. */
Node* insertText(Document& document, Node& parent, Node* before, const std::string& text) {
    Node* last = nullptr;
    bool isFirst = true;
    for (const std::string& line : Split(text, '\n')) {
        if (!isFirst) document.insertNode(parent, *(last = document.createElement("br")), before);
        if (!line.empty()) document.insertNode(parent, *(last = document.createText(line)), before);
        isFirst = false;
    }
    return last;
}

bool isPlainFormatting(const Node& node) {
    return node.isElement() && !node.is("a") &&
           (isFormattingTag(node.localName()) || node.is("span")) && !node.hasAttribute("id") &&
           !node.hasAttribute("name");
}

}  // namespace

bool isUnit(const Node& node) {
    return node.is("a") && EqualsNoCase(node.getAttribute("type"), "omMerge");
}

Node* unitAround(Node* node) {
    while (node && !isUnit(*node))
        node = node->parent();
    return node;
}

UnitGuard::UnitGuard(Document& document, const ViewBatch& batch) : document_(document) {
    for (const ViewBatch::TextChange& change : batch.texts)
        touch(unitAround(change.node));
    for (const ViewBatch::List& list : batch.lists)
        touch(unitAround(list.parent));
    for (const ViewBatch::AttributeChange& change : batch.attributes)
        if (isUnit(*change.element) && EqualsNoCase(change.name, "style") && change.value &&
            change.value->empty() && !change.element->hasAttribute("style"))
            unstyled_.push_back(change.element);
    if (batch.kind() != StepKind::Command) findCopies(batch);
}

void UnitGuard::touch(Node* unit) {
    if (!unit || !document_.isConnected(unit)) return;
    for (const Touched& known : touched_)
        if (known.unit == unit) return;
    const Node* only = unit->firstChild() == unit->lastChild() ? unit->firstChild() : nullptr;
    touched_.push_back({unit, textOf(*unit), document_.innerHTML(*unit), only});
}

void UnitGuard::findCopies(const ViewBatch& batch) {
    for (const ViewBatch::List& list : batch.lists)
        if (list.parent->is("a") && !document_.isConnected(list.parent))
            newAnchors_.push_back(list.parent);
    if (newAnchors_.empty()) return;
    std::unordered_set<const Node*> placed;
    for (const ViewBatch::List& list : batch.lists)
        placed.insert(list.children.begin(), list.children.end());
    for (const ViewBatch::List& list : batch.lists) {
        for (const Node* child = list.parent->firstChild(); child; child = child->next()) {
            if (placed.contains(child)) continue;
            for (const Node* node = child; node; node = node->following(child))
                if (isUnit(*node)) going_.push_back(nameOf(*node));
        }
    }
}

// One that comes in place of one that goes, as when paragraphs are joined, is no copy.
bool UnitGuard::isCopy(const Node& anchor) const {
    return document_.isConnected(&anchor) && isUnit(anchor) &&
           textOf(anchor).find_first_not_of('\n') == std::string::npos &&
           std::ranges::find(going_, nameOf(anchor)) == going_.end();
}

void UnitGuard::mend() {
    if (touched_.empty() && newAnchors_.empty() && unstyled_.empty()) return;
    const Document::OriginScope program(document_, Origin::Program);
    for (Node* unit : unstyled_)
        document_.setAttribute(*unit, "style", std::nullopt);
    for (const Touched& touched : touched_) {
        if (!document_.isConnected(touched.unit)) continue;
        if (textOf(*touched.unit) != touched.text) mendText(touched);
        if (document_.isConnected(touched.unit)) liftFormatting(touched);
    }
    for (Node* anchor : newAnchors_)
        if (isCopy(*anchor)) dissolve(*anchor);
}

void UnitGuard::mendText(const Touched& touched) {
    Node& unit = *touched.unit;
    Node& parent = *unit.parent();
    const std::string after = textOf(unit);
    const Edit edit = editOf(touched.text, after);
    const Selection selection = document_.selection();
    const bool isWithin =
        selection.type == SelectionType::Text && unit.contains(*selection.focus.node);
    const bool isInFront =
        isWithin && offsetIn(unit, selection.focus) <= edit.front.size() && !edit.front.empty();
    Node* front = insertText(document_, parent, &unit, edit.front);
    Node* behind = insertText(document_, parent, unit.next(), edit.behind);
    if (!edit.isCut) document_.setInnerHTML(unit, touched.markup);
    const Node* typed = isInFront ? front : behind ? behind : &unit;
    Position caret{&parent, typed->index() + 1};
    if (typed->isText()) caret = {const_cast<Node*>(typed), typed->data().size()};
    if (edit.isCut) {
        const std::size_t at = unit.index();
        document_.removeNode(unit);
        if (typed == &unit) caret = {&parent, at};
    }
    if (isWithin) document_.collapse(caret);
}

void UnitGuard::dissolve(Node& copy) {
    Node& parent = *copy.parent();
    Selection selection = document_.selection();
    const std::size_t at = copy.index();
    for (Position* place : {&selection.anchor, &selection.focus})
        if (place->node == &copy) *place = {&parent, at + place->offset};
    for (Node* child : copy.children())
        document_.moveNode(parent, *child, &copy);
    document_.removeNode(copy);
    if (selection.type == SelectionType::Text) document_.setSelection(selection);
}

void UnitGuard::liftFormatting(const Touched& touched) {
    Node& unit = *touched.unit;
    Node* inner = unit.firstChild();
    if (!inner || inner->next() || inner == touched.only || !isPlainFormatting(*inner)) return;
    const Selection selection = document_.selection();
    Node* outer = inner;
    while (inner->firstChild() && !inner->firstChild()->next() &&
           isPlainFormatting(*inner->firstChild()))
        inner = inner->firstChild();
    document_.moveNode(*unit.parent(), *outer, &unit);
    for (Node* child : inner->children())
        document_.moveNode(unit, *child, nullptr);
    document_.moveNode(*inner, unit, nullptr);
    if (selection.type != SelectionType::Text) return;
    // A selection of all of it is one of the unit.
    if (unit.contains(*selection.anchor.node) && unit.contains(*selection.focus.node) &&
        !selection.collapsed())
        document_.setSelection({SelectionType::Text, {inner, 0}, {inner, 1}, nullptr});
    else
        document_.setSelection(selection);
}

}  // namespace pw::dom
