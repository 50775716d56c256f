#include "platform/dom/Gateway.h"

#include <cassert>
#include <stdexcept>

#include "platform/Text.h"
#include "platform/dom/DocumentImpl.h"
#include "platform/dom/Escape.h"
#include "platform/dom/SelectionUpkeep.h"
#include "platform/dom/StartTag.h"
#include "platform/dom/Tags.h"

namespace pw::dom {

namespace {

bool isBlank(std::string_view bytes) {
    return bytes.find_first_not_of(" \t\r\n\f") == bytes.npos;
}

/** True when `a` stands in front of `b` in the page and is not around it. */
bool standsBefore(const Node& a, const Node& b) {
    std::vector<const Node*> pathA;
    std::vector<const Node*> pathB;
    for (const Node* node = &a; node; node = node->parent())
        pathA.push_back(node);
    for (const Node* node = &b; node; node = node->parent())
        pathB.push_back(node);
    while (!pathA.empty() && !pathB.empty() && pathA.back() == pathB.back()) {
        pathA.pop_back();
        pathB.pop_back();
    }
    if (pathA.empty() || pathB.empty()) return false;
    for (const Node* node = pathA.back(); node; node = node->next()) {
        if (node == pathB.back()) return true;
    }
    return false;
}

/** Formatting that was left open inside does not go on outside. */
bool limitsFormatting(const Node& node) {
    for (const char* tag : {"td", "th", "caption", "object", "applet", "marquee", "template"}) {
        if (node.is(tag)) return true;
    }
    return false;
}

/** The end tag in the letters of the start tag. */
std::string endTagFor(const Node& node, std::string_view start) {
    const std::string& name = node.localName();
    if (start.size() > name.size() && EqualsNoCase(start.substr(1, name.size()), name)) {
        return "</" + std::string(start.substr(1, name.size())) + ">";
    }
    return "</" + name + ">";
}

}  // namespace

std::string_view& Gateway::pieceOf(Node& node, Piece piece) {
    switch (piece) {
        case Piece::Lead:
            return node.lead_;
        case Piece::Start:
            return node.start_;
        case Piece::EndLead:
            return node.endLead_;
        case Piece::End:
            break;
    }
    return node.end_;
}

// --- Building -----------------------------------------------------------------------------------

void Gateway::append(Node& parent, Node& child) {
    child.parent_ = &parent;
    child.previous_ = parent.last_;
    (parent.last_ ? parent.last_->next_ : parent.first_) = &child;
    parent.last_ = &child;
}

// --- Working out a primitive --------------------------------------------------------------------

void Gateway::insert(Node& parent, Node& node, Node* before) {
    if (node.contains(parent)) throw std::logic_error("A node cannot be put into itself.");
    if (before && before->parent_ != &parent) {
        throw std::logic_error("The place in front of which a node goes is in another element.");
    }
    if (node.parent_) throw std::logic_error("The node has a place in the page already.");
    Primitive primitive{Change::Kind::InsertNode, &node, &parent, before};
    if (worksOut(node, parent)) {
        Node* previous = before ? before->previous_ : parent.last_;
        if (previous) closeImplied(primitive, *previous, &node);
        if (before) closeImplied(primitive, node, before);
        // The end tag of a paragraph's or an item's own parent ends it only when that is a block.
        else if (parent.isElement() && !isBlockTag(parent.name_))
            closeImplied(primitive, node, &parent);
        prepareParent(primitive, parent);
        closeUnclosedFormatting(primitive, parent, before);
    }
    perform(std::move(primitive));
}

void Gateway::remove(Node& node) {
    if (!node.parent_) return;
    Primitive primitive{Change::Kind::RemoveNode, &node, node.parent_, node.next_};
    if (worksOut(node, *node.parent_)) {
        if (node.previous_ && node.next_) closeImplied(primitive, *node.previous_, node.next_);
        keepLead(primitive, node);
        nameEmptied(primitive, *node.parent_, node);
    }
    perform(std::move(primitive));
}

void Gateway::setAttribute(Node& element, std::string_view name, std::optional<std::string> value) {
    if (value && value->find('\r') != std::string::npos) value = withLineFeeds(*value);
    Primitive primitive{Change::Kind::SetAttribute, &element};
    primitive.index = element.attributes_.size();
    primitive.name = element.foreign_ ? std::string(name) : ToLower(name);
    for (std::size_t i = 0; i < element.attributes_.size(); ++i) {
        if (!EqualsNoCase(element.attributes_[i].name, name)) continue;
        primitive.index = i;
        primitive.name = element.attributes_[i].name;
        primitive.oldValue = element.attributes_[i].value;
        break;
    }
    if (primitive.oldValue == value) return;
    primitive.newValue = std::move(value);
    if (bytes_ == Bytes::WorkOut && element.sourced_ && !element.clone_) {
        const std::string& lineEnd = document_.impl_->lineEnd;
        std::string tag;
        if (element.start_.empty()) {
            // The tag was implied: now it has to be written, with all its attributes.
            tag = patchStartTag(canonicalStartTag(element, lineEnd), primitive.name,
                                primitive.newValue, lineEnd);
        } else {
            tag = patchStartTag(element.start_, primitive.name, primitive.newValue, lineEnd);
        }
        primitive.pieces.push_back(
            {&element, Piece::Start, element.start_, document_.impl_->bytes.keep(std::move(tag))});
    }
    perform(std::move(primitive));
}

void Gateway::replaceText(Node& node, std::size_t offset, std::size_t removed,
                          std::string_view inserted, Change::Kind kind) {
    if (node.isElement()) throw std::logic_error("Only text and comments hold text.");
    offset = std::min(offset, node.data_.size());
    removed = std::min(removed, node.data_.size() - offset);
    Primitive primitive{kind, &node};
    primitive.offset = offset;
    primitive.removed = node.data_.substr(offset, removed);
    primitive.inserted =
        inserted.find('\r') == inserted.npos ? std::string(inserted) : withLineFeeds(inserted);
    if (primitive.removed == primitive.inserted) return;
    if (node.sourced_) {
        SourceSplice splice = spliceSource(node.own_ ? *node.own_ : node.start_, node, offset,
                                           removed, primitive.inserted, document_.impl_->lineEnd);
        primitive.sourceOffset = splice.offset;
        primitive.removedSource = std::move(splice.removed);
        primitive.insertedSource = std::move(splice.inserted);
    }
    perform(std::move(primitive));
}

void Gateway::replaceStretches(Node& node, const std::vector<TextStretch>& stretches,
                               std::string_view inserted) {
    if (stretches.empty()) return;
    constexpr auto kind = Change::Kind::ReplaceText;
    const std::string changed = replaceInText(node.data_, stretches, inserted);
    if (changed == node.data_) return;
    if (node.isText() && node.sourced_) {
        const std::string_view source = node.own_ ? std::string_view(*node.own_) : node.start_;
        const auto bytes =
            replaceInSource(source, node, stretches, inserted, document_.impl_->lineEnd);
        if (bytes) return replaceSourcedText(node, changed, *bytes);
    } else {
        const std::size_t begin = stretches.front().offset;
        const std::size_t behind =
            node.data_.size() - stretches.back().offset - stretches.back().length;
        const std::size_t removed = node.data_.size() - begin - behind;
        return replaceText(node, begin, removed,
                           changed.substr(begin, changed.size() - begin - behind), kind);
    }
    const Document::Step step(document_);
    for (auto stretch = stretches.rbegin(); stretch != stretches.rend(); ++stretch)
        replaceText(node, stretch->offset, stretch->length, inserted, kind);
}

void Gateway::replaceSourcedText(Node& node, std::string_view data, std::string_view bytes) {
    const auto differing = [](std::string_view from, std::string_view to) {
        const std::size_t shorter = std::min(from.size(), to.size());
        std::size_t begin = 0;
        while (begin < shorter && from[begin] == to[begin])
            ++begin;
        std::size_t end = 0;
        while (end < shorter - begin && from[from.size() - 1 - end] == to[to.size() - 1 - end]) {
            ++end;
        }
        // Whole characters only.
        const auto inside = [](std::string_view s, std::size_t at) {
            return at < s.size() && (s[at] & 0xC0) == 0x80;
        };
        while (begin > 0 && (inside(from, begin) || inside(to, begin)))
            --begin;
        while (end > 0 && (inside(from, from.size() - end) || inside(to, to.size() - end)))
            --end;
        return std::pair(begin, end);
    };
    Primitive primitive{Change::Kind::ReplaceText, &node};
    const auto [begin, end] = differing(node.data_, data);
    primitive.offset = begin;
    primitive.removed = node.data_.substr(begin, node.data_.size() - begin - end);
    primitive.inserted = data.substr(begin, data.size() - begin - end);
    const std::string_view old = node.own_ ? std::string_view(*node.own_) : node.start_;
    const auto [first, last] = differing(old, bytes);
    primitive.sourceOffset = first;
    primitive.removedSource = old.substr(first, old.size() - first - last);
    primitive.insertedSource = bytes.substr(first, bytes.size() - first - last);
    perform(std::move(primitive));
}

void Gateway::replacePieces(Node& node, std::vector<PieceChange> pieces,
                            std::optional<bool> quirks) {
    Primitive primitive{Change::Kind::ReplaceSource, &node};
    primitive.pieces = std::move(pieces);
    primitive.quirks = quirks;
    perform(std::move(primitive));
}

bool Gateway::worksOut(const Node& a, const Node& b) const {
    return bytes_ == Bytes::WorkOut && (a.tracked_ || b.tracked_);
}

/** An element whose end tag is implied by what follows needs one when something else follows. */
void Gateway::closeImplied(Primitive& primitive, Node& open, const Node* next) {
    if (!open.isElement() || !open.sourced_ || open.clone_ || !open.end_.empty()) return;
    if (isVoid(open) || open.is("html") || open.is("body")) return;
    if (open.foreign_ && open.start_.ends_with("/>")) return;
    if (next->isElement() && !next->isForeign() && startEnds(open.name_, next->localName())) return;
    if (open.start_.empty() && open.is("head")) return;
    primitive.pieces.push_back(
        {&open, Piece::End, open.end_, document_.impl_->bytes.keep(endTagFor(open, open.start_))});
}

/** What is new must not become bold because a tag far in front of it was left open. */
void Gateway::closeUnclosedFormatting(Primitive& primitive, const Node& parent,
                                      const Node* before) {
    for (Node* open : document_.impl_->unclosed) {
        if (!open->end_.empty() || !open->connected_ || open->contains(parent)) continue;
        const Node* reference = before ? before : parent.last_ ? parent.last_ : &parent;
        if (open != reference && !standsBefore(*open, *reference) && !reference->contains(*open)) {
            continue;
        }
        if (before && before->contains(*open)) continue;
        const Node* limit = open->parent_;
        while (limit && !limitsFormatting(*limit))
            limit = limit->parent_;
        if (limit && !limit->contains(parent)) continue;
        if (open->cloned_ && open->home_ >= 0) {
            primitive.islands.push_back(open->home_);
            continue;
        }
        bool listed = false;
        for (const PieceChange& change : primitive.pieces)
            listed |= change.node == open;
        if (listed) continue;
        primitive.pieces.push_back({open, Piece::End, open->end_,
                                    document_.impl_->bytes.keep(endTagFor(*open, open->start_))});
    }
}

/** "<g/>" cannot hold anything, nor can the paragraph that a stray "</p>" makes; and the line end
 *  that the parser drops at the beginning of an empty pre must not become text. */
void Gateway::prepareParent(Primitive& primitive, Node& parent) {
    if (!parent.sourced_ || !parent.isElement() || parent.first_) return;
    ByteStore& bytes = document_.impl_->bytes;
    if (dropsFirstLineEnd(parent) && (parent.endLead_ == "\n" || parent.endLead_ == "\r\n")) {
        primitive.pieces.push_back({&parent, Piece::EndLead, parent.endLead_, {}});
    }
    const bool selfClosed = parent.foreign_ && parent.start_.ends_with("/>");
    const bool stray = parent.is("p") && parent.start_.empty() && !parent.clone_;
    if (!selfClosed && !stray) return;
    const std::string start =
        selfClosed ? std::string(parent.start_.substr(0, parent.start_.size() - 2)) + ">"
                   : canonicalStartTag(parent, document_.impl_->lineEnd);
    primitive.pieces.push_back({&parent, Piece::Start, parent.start_, bytes.keep(start)});
    if (parent.end_.empty()) {
        primitive.pieces.push_back(
            {&parent, Piece::End, parent.end_, bytes.keep(endTagFor(parent, start))});
    }
}

/** The doctype and tags that belong to no node stand in front of some node. They stay when that
 *  node goes: what follows takes them over. */
void Gateway::keepLead(Primitive& primitive, Node& node) {
    if (isBlank(node.lead_)) return;
    primitive.pieces.push_back({&node, Piece::Lead, node.lead_, {}});
    Node& heir = node.next_ ? *node.next_ : *node.parent_;
    const Piece piece = node.next_ ? Piece::Lead : Piece::EndLead;
    const std::string_view old = node.next_ ? heir.lead_ : heir.endLead_;
    primitive.pieces.push_back(
        {&heir, piece, old,
         document_.impl_->bytes.keep(std::string(node.lead_) + std::string(old))});
}

/** A part of a table whose tags the parser has made up from what stood in it has to have its own
 *  when that goes. */
void Gateway::nameEmptied(Primitive& primitive, Node& parent, const Node& going) {
    if (!parent.isElement() || !parent.sourced_ || parent.clone_ || !parent.start_.empty()) return;
    if (!parent.parent_ || !parent.parent_->isElement()) return;
    if (!parent.is("tbody") && !parent.is("tr") && !parent.is("colgroup")) return;
    for (const Node* child = parent.first_; child; child = child->next_)
        if (child != &going && child->isElement()) return;
    const std::string start = canonicalStartTag(parent, document_.impl_->lineEnd);
    ByteStore& bytes = document_.impl_->bytes;
    primitive.pieces.push_back({&parent, Piece::Start, parent.start_, bytes.keep(start)});
    if (parent.end_.empty())
        primitive.pieces.push_back(
            {&parent, Piece::End, parent.end_, bytes.keep(endTagFor(parent, start))});
}

bool Gateway::sharesStartTag(const Node& node) const {
    return node.clone_ || node.cloned_;
}

// --- Applying -----------------------------------------------------------------------------------

void Gateway::perform(Primitive primitive) {
    Document::Impl& impl = *document_.impl_;
    const bool recorded =
        primitive.node->tracked_ || (primitive.parent && primitive.parent->tracked_);
    if (!recorded) {
        // Nodes that were never in the tree come and go with the primitive that puts them there.
        apply(primitive, Direction::Forwards, impl.origin);
        return;
    }
    primitive.node->tracked_ = true;
    if (primitive.parent) primitive.parent->tracked_ = true;
    if (impl.history.inStep()) {
        apply(primitive, Direction::Forwards, impl.origin);
        carryBytes(primitive);
        impl.history.record(std::move(primitive));
        return;
    }
    StepKind kind = StepKind::Command;
    if (impl.origin == Origin::View &&
        (primitive.kind == Change::Kind::ReplaceText || primitive.kind == Change::Kind::SetText)) {
        kind = primitive.inserted.empty() ? StepKind::Deleting : StepKind::Typing;
    }
    impl.history.beginStep(kind);
    apply(primitive, Direction::Forwards, impl.origin);
    impl.history.record(std::move(primitive));
    impl.history.endStep();
}

void Gateway::carryBytes(const Primitive& primitive) {
    CarriedBytes& carried = document_.impl_->carried;
    if (bytes_ == Bytes::Given) return;
    if (primitive.kind == Change::Kind::InsertNode) carried.inserted(*primitive.node);
    if (primitive.removed.empty() && primitive.inserted.empty()) return;
    carried.touched(*primitive.node);
    const bool plain = primitive.node->isText() && !primitive.node->raw_;
    if (plain && primitive.node->sourced_)
        carried.taken(primitive.removed, primitive.removedSource);
}

void Gateway::apply(Primitive& primitive, Direction direction, Origin origin) {
    Document::Impl& impl = *document_.impl_;
    const bool forwards = direction == Direction::Forwards;
    ++impl.gate;
    Change change{primitive.kind, origin, primitive.node};
    switch (primitive.kind) {
        case Change::Kind::InsertNode:
        case Change::Kind::RemoveNode: {
            const bool links = (primitive.kind == Change::Kind::InsertNode) == forwards;
            change.kind = links ? Change::Kind::InsertNode : Change::Kind::RemoveNode;
            change.parent = primitive.parent;
            change.before = primitive.before;
            if (links) {
                applyPieces(primitive, forwards);
                link(*primitive.parent, *primitive.node, primitive.before);
            } else {
                unlink(*primitive.node);
                applyPieces(primitive, forwards);
            }
            countStructure(primitive, forwards ? 1 : -1);
            break;
        }
        case Change::Kind::SetAttribute:
            change.name = primitive.name;
            applyAttribute(primitive, forwards);
            applyPieces(primitive, forwards);
            count(*primitive.node, forwards ? 1 : -1, sharesStartTag(*primitive.node));
            break;
        case Change::Kind::SetText:
        case Change::Kind::ReplaceText:
            change.offset = primitive.offset;
            change.removed = (forwards ? primitive.removed : primitive.inserted).size();
            change.inserted = forwards ? primitive.inserted : primitive.removed;
            applyText(primitive, forwards);
            count(*primitive.node, forwards ? 1 : -1, false);
            break;
        case Change::Kind::ReplaceSource:
            applyPieces(primitive, forwards);
            if (primitive.quirks) {
                std::swap(*primitive.quirks, impl.quirks);
                impl.reloadDue = true;
            }
            break;
    }
    for (const int island : primitive.islands) {
        impl.islands[std::size_t(island)].structure += forwards ? 1 : -1;
        count(*impl.islands[std::size_t(island)].parent, forwards ? 1 : -1, false);
    }
    --impl.gate;
    ++document_.revision_;
    notify(change);
}

void Gateway::applyAttribute(Primitive& primitive, bool forwards) {
    std::vector<Attribute>& attributes = primitive.node->attributes_;
    const auto& from = forwards ? primitive.oldValue : primitive.newValue;
    const auto& to = forwards ? primitive.newValue : primitive.oldValue;
    const auto at = attributes.begin() + std::ptrdiff_t(primitive.index);
    if (!to) {
        attributes.erase(at);
    } else if (!from) {
        attributes.insert(at, {primitive.name, *to});
    } else {
        at->value = *to;
    }
}

void Gateway::applyText(Primitive& primitive, bool forwards) {
    Node& node = *primitive.node;
    const std::string& from = forwards ? primitive.removed : primitive.inserted;
    const std::string& to = forwards ? primitive.inserted : primitive.removed;
    if (node.sourced_) {
        if (!node.own_) node.own_ = std::make_unique<std::string>(node.start_);
        const std::string& out = forwards ? primitive.removedSource : primitive.insertedSource;
        const std::string& in = forwards ? primitive.insertedSource : primitive.removedSource;
        node.own_->replace(primitive.sourceOffset, out.size(), in);
    }
    node.data_.replace(primitive.offset, from.size(), to);
    keepSelectionAfterText(document_.selection_, node, primitive.offset, from.size(), to.size());
}

void Gateway::applyPieces(Primitive& primitive, bool forwards) {
    for (const PieceChange& change : primitive.pieces) {
        Node& node = *change.node;
        pieceOf(node, change.piece) = forwards ? change.after : change.before;
        for (Node* at = &node; at; at = at->parent_)
            at->changes_ += forwards ? 1 : -1;
    }
}

/** Raises (or lowers) the number of changes of everything around. */
void Gateway::count(Node& node, int by, bool structure) {
    for (Node* at = &node; at; at = at->parent_) {
        at->changes_ += by;
        if (at->island_ < 0) continue;
        Island& island = document_.impl_->islands[std::size_t(at->island_)];
        (structure ? island.structure : island.text) += by;
    }
}

void Gateway::countStructure(const Primitive& primitive, int by) {
    count(*primitive.parent, by, true);
    const Node& node = *primitive.node;
    const Node* before = primitive.before;
    const Node* last = primitive.parent->last_;
    const Node* previous = before ? before->previous_ : last;
    if (previous == &node) previous = node.previous_;
    std::vector<Island>& islands = document_.impl_->islands;
    if (node.island_ >= 0 && islands[std::size_t(node.island_)].parent == primitive.parent) {
        islands[std::size_t(node.island_)].structure += by;
    } else if (before && previous && before->island_ >= 0 && before->island_ == previous->island_) {
        islands[std::size_t(before->island_)].structure += by;
    }
}

void Gateway::link(Node& parent, Node& node, Node* before) {
    assert(document_.impl_->gate > 0);
    keepSelectionBeforeInsert(document_.selection_, parent, before);
    node.parent_ = &parent;
    node.next_ = before;
    node.previous_ = before ? before->previous_ : parent.last_;
    (node.previous_ ? node.previous_->next_ : parent.first_) = &node;
    (before ? before->previous_ : parent.last_) = &node;
    if (parent.connected_) setConnected(node, true);
    if (!node.isText()) document_.impl_->allValid = false;
}

void Gateway::unlink(Node& node) {
    assert(document_.impl_->gate > 0);
    keepSelectionBeforeRemove(document_.selection_, node);
    (node.previous_ ? node.previous_->next_ : node.parent_->first_) = node.next_;
    (node.next_ ? node.next_->previous_ : node.parent_->last_) = node.previous_;
    node.parent_ = node.previous_ = node.next_ = nullptr;
    if (node.connected_) setConnected(node, false);
    if (!node.isText()) document_.impl_->allValid = false;
}

void Gateway::setConnected(Node& node, bool connected) {
    for (Node* at = &node; at; at = at->following(&node)) {
        at->connected_ = connected;
        if (connected) at->tracked_ = true;
    }
}

void Gateway::notify(const Change& change) {
    for (DocumentObserver* observer : std::vector(document_.impl_->observers)) {
        observer->documentChanged(change);
    }
}

}  // namespace pw::dom
