#include "platform/dom/Projection.h"

#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>
#include <algorithm>
#include <set>
#include <unordered_map>
#include <unordered_set>

#include "platform/Text.h"
#include "platform/dom/Nesting.h"
#include "platform/dom/Units.h"
#include "platform/dom/ViewBatch.h"

namespace pw::dom {

namespace {

using Json = rapidjson::Writer<rapidjson::StringBuffer>;

constexpr int kElement = 1;
constexpr int kText = 3;
constexpr int kComment = 8;

void writeText(Json& json, std::string_view text) {
    json.String(text.data(), static_cast<rapidjson::SizeType>(text.size()));
}

int depth(const Node* node) {
    int levels = 0;
    for (; node->parent(); node = node->parent())
        ++levels;
    return levels;
}

}  // namespace

struct Projection::Impl {
    explicit Impl(Projection& self, Document& page) : owner(self), document(page) {}

    /** Bytes at both ends of a text that the program has not touched since the view saw it. */
    struct Unchanged {
        std::size_t head;
        std::size_t tail;
    };

    /** What the view has not been told, or has not confirmed. Each entry keeps what the view has,
     *  so that a batch made without knowledge of it can still be merged. */
    struct Due {
        std::unordered_map<NodeId, std::vector<NodeId>> lists;
        std::set<std::pair<NodeId, std::string>> attributes;
        std::unordered_map<NodeId, Unchanged> texts;
        bool selection = false;
        bool everything = false;

        bool empty() const {
            return lists.empty() && attributes.empty() && texts.empty() && !selection &&
                   !everything;
        }
        void narrow(NodeId id, Unchanged ends) {
            const auto [entry, added] = texts.emplace(id, ends);
            if (added) return;
            entry->second.head = std::min(entry->second.head, ends.head);
            entry->second.tail = std::min(entry->second.tail, ends.tail);
        }
        /** Takes in what came after it. */
        void append(Due later) {
            lists.merge(later.lists);
            attributes.merge(later.attributes);
            for (const auto& [id, ends] : later.texts)
                narrow(id, ends);
            selection |= later.selection;
            everything |= later.everything;
        }
    };

    std::int64_t viewId(NodeId id) const {
        const auto found = aliasOf.find(id);
        return found == aliasOf.end() ? static_cast<std::int64_t>(id) : found->second;
    }

    Node* find(std::int64_t id) const {
        if (id < 0) {
            const auto found = byAlias.find(id);
            return found == byAlias.end() ? nullptr : found->second;
        }
        return id == 0 ? nullptr : document.node(static_cast<NodeId>(id));
    }

    void announce() {
        if (announced || due.empty() || inFlight) return;
        announced = true;
        if (owner.onOutgoing) owner.onOutgoing();
    }

    void noteList(const Change& change);
    void noteText(const Change& change);
    void writeRecord(Json& json, const Node& node);
    void writeSelection(Json& json);
    void writeEverything(Json& json);
    void writeChanges(Json& json);
    std::string compose();
    void mergeUnseen(ViewBatch& batch);
    void mergeLists(ViewBatch& batch);
    void mergeTexts(ViewBatch& batch);
    void keepAroundBody(ViewBatch& batch);

    Projection& owner;
    Document& document;
    std::unordered_map<std::int64_t, Node*> byAlias;
    std::unordered_map<NodeId, std::int64_t> aliasOf;
    Due due;
    Due sent;
    std::uint32_t lastBatch = 0;
    std::uint32_t lastMessage = 0;
    bool inFlight = false;
    bool announced = false;
    bool awaitsEverything = false;
    std::unordered_set<const Node*> written;
};

Projection::Projection(Document& document) : impl_(std::make_unique<Impl>(*this, document)) {
    document.addObserver(this);
}

Projection::~Projection() {
    impl_->document.removeObserver(this);
}

// --- What the program changes -------------------------------------------------------------------

// The list of children that the view has is the present one with the change undone.
void Projection::Impl::noteList(const Change& change) {
    const NodeId parent = change.parent->id();
    if (due.lists.contains(parent)) return;
    std::vector<NodeId> ids;
    for (const Node* child = change.parent->firstChild(); child; child = child->next()) {
        if (change.kind == Change::Kind::RemoveNode && child == change.before)
            ids.push_back(change.node->id());
        if (change.kind != Change::Kind::InsertNode || child != change.node)
            ids.push_back(child->id());
    }
    if (change.kind == Change::Kind::RemoveNode && !change.before) ids.push_back(change.node->id());
    due.lists.emplace(parent, std::move(ids));
}

void Projection::Impl::noteText(const Change& change) {
    Unchanged ends{0, 0};
    if (change.kind == Change::Kind::ReplaceText) {
        ends.head = change.offset;
        ends.tail = change.node->data().size() - change.offset - change.inserted.size();
    }
    due.narrow(change.node->id(), ends);
}

void Projection::documentChanged(const Change& change) {
    if (change.origin == Origin::View || impl_->due.everything) return;
    Impl& impl = *impl_;
    switch (change.kind) {
        case Change::Kind::InsertNode:
        case Change::Kind::RemoveNode:
            if (!impl.document.isConnected(change.parent) && change.parent != impl.document.root())
                return;
            impl.noteList(change);
            break;
        case Change::Kind::SetAttribute:
            if (!impl.document.isConnected(change.node)) return;
            impl.due.attributes.emplace(change.node->id(), change.name);
            break;
        case Change::Kind::SetText:
        case Change::Kind::ReplaceText:
            if (!impl.document.isConnected(change.node)) return;
            impl.noteText(change);
            break;
        case Change::Kind::ReplaceSource:
            return;
    }
    impl.due.selection = true;
    impl.announce();
}

void Projection::documentReloaded() {
    impl_->due = {};
    impl_->due.everything = true;
    impl_->due.selection = true;
    impl_->announce();
}

void Projection::selectionChanged(Origin origin) {
    if (origin == Origin::View) return;
    impl_->due.selection = true;
    impl_->announce();
}

// --- Writing ------------------------------------------------------------------------------------

// NOTE: recursion is bounded by the parser, which bounds the depth of every tree.
void Projection::Impl::writeRecord(Json& json, const Node& node) {
    written.insert(&node);
    json.StartArray();
    json.Int64(viewId(node.id()));
    if (node.isElement()) {
        json.Int(kElement);
        writeText(json, node.localName());
        json.StartArray();
        for (const Attribute& attribute : node.attributes()) {
            writeText(json, attribute.name);
            writeText(json, attribute.value);
        }
        json.EndArray();
        json.StartArray();
        for (const Node* child = node.firstChild(); child; child = child->next())
            writeRecord(json, *child);
        json.EndArray();
        json.Int(node.isForeign() ? 1 : 0);
    } else {
        json.Int(node.isText() ? kText : kComment);
        writeText(json, node.data());
    }
    json.EndArray();
}

void Projection::Impl::writeSelection(Json& json) {
    const Selection& selection = document.selection();
    json.Key("sel");
    json.StartArray();
    const auto position = [&](const Position& place) {
        json.Int64(viewId(place.node->id()));
        json.Uint64(viewOffset(place));
    };
    if (selection.type == SelectionType::Control && document.isConnected(selection.control)) {
        json.Int(2);
        json.Int64(viewId(selection.control->id()));
    } else if (document.isConnected(selection.anchor.node) &&
               document.isConnected(selection.focus.node)) {
        json.Int(1);
        position(selection.anchor);
        position(selection.focus);
    } else {
        json.Int(0);
    }
    json.EndArray();
}

void Projection::Impl::writeEverything(Json& json) {
    json.Key("root");
    json.Int64(viewId(document.root()->id()));
    json.Key("full");
    json.StartArray();
    for (const Node* child = document.root()->firstChild(); child; child = child->next())
        writeRecord(json, *child);
    json.EndArray();
}

void Projection::Impl::writeChanges(Json& json) {
    std::vector<std::pair<int, Node*>> parents;
    for (const auto& [id, base] : sent.lists)
        if (Node* parent = document.node(id);
            document.isConnected(parent) || parent == document.root())
            parents.emplace_back(depth(parent), parent);
    // From the top down: a parent further down may stand in a record already.
    std::sort(parents.begin(), parents.end(), [](const auto& a, const auto& b) {
        return std::pair(a.first, a.second->id()) < std::pair(b.first, b.second->id());
    });
    json.Key("k");
    json.StartArray();
    for (const auto& [level, parent] : parents) {
        if (written.contains(parent)) continue;
        const std::vector<NodeId>& base = sent.lists.at(parent->id());
        const std::unordered_set<NodeId> had(base.begin(), base.end());
        json.StartArray();
        json.Int64(viewId(parent->id()));
        json.StartArray();
        for (const Node* child = parent->firstChild(); child; child = child->next()) {
            if (had.contains(child->id()))
                json.Int64(viewId(child->id()));
            else
                writeRecord(json, *child);
        }
        json.EndArray();
        json.EndArray();
    }
    json.EndArray();
    const auto reported = [&](const Node* node) {
        return document.isConnected(node) && !written.contains(node);
    };
    json.Key("a");
    json.StartArray();
    for (const auto& [id, name] : sent.attributes) {
        const Node* element = document.node(id);
        if (!reported(element)) continue;
        json.StartArray();
        json.Int64(viewId(id));
        writeText(json, name);
        if (const std::string* value = element->attribute(name))
            writeText(json, *value);
        else
            json.Null();
        json.EndArray();
    }
    json.EndArray();
    json.Key("t");
    json.StartArray();
    for (const auto& [id, base] : sent.texts) {
        const Node* node = document.node(id);
        if (!reported(node)) continue;
        json.StartArray();
        json.Int64(viewId(id));
        writeText(json, node->data());
        json.EndArray();
    }
    json.EndArray();
}

std::string Projection::Impl::compose() {
    sent = std::move(due);
    due = {};
    announced = false;
    inFlight = true;
    written.clear();
    rapidjson::StringBuffer buffer;
    Json json(buffer);
    json.StartObject();
    json.Key("m");
    json.Uint(++lastMessage);
    json.Key("n");
    json.Uint(lastBatch);
    if (sent.everything)
        writeEverything(json);
    else
        writeChanges(json);
    if (sent.selection) writeSelection(json);
    json.EndObject();
    written.clear();
    return {buffer.GetString(), buffer.GetSize()};
}

std::string Projection::snapshot() {
    Impl& impl = *impl_;
    impl.byAlias.clear();
    impl.aliasOf.clear();
    impl.lastBatch = 0;
    impl.awaitsEverything = false;
    impl.due = {};
    impl.due.everything = true;
    impl.due.selection = true;
    return impl.compose();
}

std::string Projection::takeOutgoing() {
    if (impl_->inFlight || impl_->due.empty()) return {};
    return impl_->compose();
}

bool Projection::hasOutgoing() const {
    return !impl_->due.empty();
}

bool Projection::settled() const {
    return impl_->due.empty() && !impl_->inFlight && !impl_->awaitsEverything;
}

void Projection::acknowledge(std::uint32_t message) {
    Impl& impl = *impl_;
    if (!impl.inFlight || message != impl.lastMessage) return;
    impl.inFlight = false;
    impl.sent = {};
    impl.announce();
}

void Projection::viewIsLost(std::uint32_t message) {
    Impl& impl = *impl_;
    if (!impl.inFlight || message != impl.lastMessage) return;
    impl.inFlight = false;
    impl.sent = {};
    documentReloaded();
}

std::int64_t Projection::viewId(const Node* node) const {
    return node ? impl_->viewId(node->id()) : 0;
}

Node* Projection::nodeOfView(std::int64_t id) const {
    Node* node = impl_->find(id);
    return impl_->document.isConnected(node) ? node : nullptr;
}

// --- What the view changes ----------------------------------------------------------------------

// The view made this batch before it saw what the program changed. The program's changes stand;
// what the view added or took away is brought into them.
void Projection::Impl::mergeUnseen(ViewBatch& batch) {
    mergeLists(batch);
    mergeTexts(batch);
    std::erase_if(batch.attributes, [&](const ViewBatch::AttributeChange& change) {
        return due.attributes.contains({change.element->id(), change.name});
    });
}

// An edit at an end of the text that the program has left alone keeps its place, counted from that
// end. In what the program has rewritten there is no such place: what was typed goes behind it.
void Projection::Impl::mergeTexts(ViewBatch& batch) {
    for (ViewBatch::TextChange& change : batch.texts) {
        const auto unseen = due.texts.find(change.node->id());
        if (unseen == due.texts.end()) continue;
        Unchanged& ends = unseen->second;
        const std::string_view data = change.node->data();
        const std::size_t units = Utf16Length(data);
        const std::size_t head = Utf16Length(data.substr(0, ends.head));
        const std::size_t tail = Utf16Length(data.substr(data.size() - ends.tail));
        const std::size_t size = change.inserted.size();
        if (change.offset + change.removed <= head) {
            const std::size_t begin = ByteOffsetOfUtf16(data, change.offset);
            const std::size_t end = ByteOffsetOfUtf16(data, change.offset + change.removed);
            ends.head += size - (end - begin);
        } else if (change.tail + change.removed <= tail) {
            change.offset = units - change.tail - change.removed;
            const std::size_t begin = ByteOffsetOfUtf16(data, change.offset);
            const std::size_t end = ByteOffsetOfUtf16(data, change.offset + change.removed);
            ends.tail += size - (end - begin);
        } else {
            change.offset = units - tail;
            change.removed = 0;
        }
    }
}

void Projection::Impl::mergeLists(ViewBatch& batch) {
    std::unordered_set<const Node*> movedByProgram;
    for (const auto& [id, base] : due.lists) {
        const Node* parent = document.node(id);
        for (const NodeId child : base)
            if (const Node* node = document.node(child); node->parent() != parent)
                movedByProgram.insert(node);
    }
    std::unordered_map<NodeId, std::vector<NodeId>> viewHas;
    for (ViewBatch::List& list : batch.lists) {
        const auto unseen = due.lists.find(list.parent->id());
        std::vector<NodeId> view;
        for (const Node* child : list.children)
            view.push_back(child->id());
        std::erase_if(list.children,
                      [&](const Node* child) { return movedByProgram.contains(child); });
        if (unseen == due.lists.end()) {
            // The view must be told that the program has put a node elsewhere meanwhile.
            if (view.size() != list.children.size()) viewHas[list.parent->id()] = view;
            continue;
        }
        // What the program has put into this parent goes behind the sibling that it stands behind.
        const std::unordered_set<NodeId> base(unseen->second.begin(), unseen->second.end());
        for (Node* child = list.parent->firstChild(); child; child = child->next()) {
            if (base.contains(child->id()) || std::ranges::count(list.children, child)) continue;
            auto place = list.children.begin();
            if (child->previous())
                if (auto found = std::ranges::find(list.children, child->previous());
                    found != list.children.end())
                    place = found + 1;
            list.children.insert(place, child);
        }
        viewHas[list.parent->id()] = std::move(view);
    }
    for (auto& [id, ids] : viewHas)
        due.lists[id] = std::move(ids);
}

// What lies around the body is none of the user's text: a frameset in comments, scripts, the head.
// Whatever the engine did to it stays undone, and what it moved there goes to the body's end.
void Projection::Impl::keepAroundBody(ViewBatch& batch) {
    Node* body = document.body();
    if (!body || body->is("frameset")) return;
    std::vector<Node*> strays;
    for (ViewBatch::List& list : batch.lists) {
        Node* const parent = list.parent;
        const bool isAround = parent == document.root() || parent == document.documentElement();
        if (!isAround || list.children == parent->children()) continue;
        std::vector<NodeId> view;
        for (Node* child : list.children) {
            view.push_back(child->id());
            if (child->parent() != parent) strays.push_back(child);
        }
        list.children = parent->children();
        due.lists.emplace(parent->id(), std::move(view));
    }
    if (strays.empty()) return;
    const auto isBody = [&](const ViewBatch::List& list) { return list.parent == body; };
    auto ofBody = std::ranges::find_if(batch.lists, isBody);
    if (ofBody == batch.lists.end())
        ofBody = batch.lists.insert(batch.lists.begin(), {body, body->children()});
    for (Node* stray : strays) {
        if (stray->contains(*body)) continue;
        if (!std::ranges::count(ofBody->children, stray)) ofBody->children.push_back(stray);
    }
    // The view has these elsewhere.
    std::vector<NodeId> view;
    for (const Node* child : ofBody->children)
        if (!std::ranges::count(strays, child)) view.push_back(child->id());
    due.lists.emplace(body->id(), std::move(view));
}

Projection::Result Projection::applyBatch(std::string_view json) {
    Impl& impl = *impl_;
    ViewBatch batch(impl.document);
    const ViewBatch::Lookup lookup{[&](std::int64_t id) { return impl.find(id); },
                                   [&](std::int64_t id, Node& node) {
                                       if (id >= 0) return;
                                       impl.byAlias[id] = &node;
                                       impl.aliasOf[node.id()] = id;
                                   }};
    if (!batch.read(json)) return Result::Malformed;
    if (batch.number() == 0) {
        // The selection alone.
        if (!impl.awaitsEverything && !impl.due.selection && !impl.sent.selection)
            batch.applySelection(lookup);
        return Result::Applied;
    }
    if (!batch.full()) {
        if (impl.awaitsEverything) return Result::NeedsSnapshot;
        if (batch.number() != impl.lastBatch + 1 || !batch.knowsAll(lookup)) {
            impl.awaitsEverything = true;
            return Result::NeedsSnapshot;
        }
    }
    impl.awaitsEverything = false;
    impl.lastBatch = batch.number();
    if (impl.inFlight && batch.seen() < impl.lastMessage) {
        // The view has refused the message in flight: it is due again.
        impl.sent.append(std::move(impl.due));
        impl.due = std::move(impl.sent);
        impl.sent = {};
        impl.inFlight = false;
    }
    {
        Document::OriginScope scope(impl.document, Origin::View);
        if (batch.startsStep()) impl.document.sealStep();
        Document::Step step(impl.document, batch.kind());
        batch.plan(lookup);
        if (!impl.due.empty()) impl.mergeUnseen(batch);
        impl.keepAroundBody(batch);
        UnitGuard units(impl.document, batch);
        batch.apply();
        if (!impl.due.selection) batch.applySelection(lookup);
        units.mend();
        // The view is told of what is mended as of any other change.
        Document::OriginScope ours(impl.document, Origin::Program);
        mendNesting(impl.document, batch.placed);
    }
    impl.announced = false;
    impl.announce();
    return Result::Applied;
}

}  // namespace pw::dom
