#include "platform/dom/ViewBatch.h"

#include <rapidjson/document.h>
#include <algorithm>
#include <unordered_map>
#include <unordered_set>

#include "platform/Text.h"

namespace pw::dom {

namespace {

using Value = rapidjson::Value;

constexpr int kElement = 1;
constexpr int kText = 3;

std::string text(const Value& value) {
    return {value.GetString(), value.GetStringLength()};
}

bool isNumber(const Value& value) {
    return value.IsInt64();
}

// [id, 1, tag, [name, value, ...], [children], foreign] or [id, 3 or 8, data]
bool isRecord(const Value& value) {
    if (!value.IsArray() || value.Size() < 3 || !isNumber(value[0]) || !value[1].IsInt() ||
        !value[2].IsString())
        return false;
    if (value[1].GetInt() != kElement) return true;
    return value.Size() >= 5 && value[3].IsArray() && value[3].Size() % 2 == 0 &&
           value[4].IsArray() && std::ranges::all_of(value[3].GetArray(), [](const Value& item) {
               return item.IsString();
           });
}

bool isEntry(const Value& value) {
    if (isNumber(value)) return true;
    if (!isRecord(value)) return false;
    return value[1].GetInt() != kElement ||
           std::ranges::all_of(value[4].GetArray(),
                               [](const Value& item) { return isEntry(item); });
}

bool isEntryList(const Value& value) {
    return value.IsArray() && std::ranges::all_of(value.GetArray(), isEntry);
}

bool isListChange(const Value& value) {
    return value.IsArray() && value.Size() == 2 && isNumber(value[0]) && isEntryList(value[1]);
}

bool isAttributeChange(const Value& value) {
    return value.IsArray() && value.Size() == 3 && isNumber(value[0]) && value[1].IsString() &&
           (value[2].IsString() || value[2].IsNull());
}

bool isTextChange(const Value& value) {
    return value.IsArray() && value.Size() == 5 && isNumber(value[0]) && value[1].IsUint() &&
           value[2].IsUint() && value[3].IsUint() && value[4].IsString();
}

bool isSelection(const Value& value) {
    if (!value.IsArray() || value.Empty() || !value[0].IsInt()) return false;
    const rapidjson::SizeType sizes[] = {1, 5, 2};
    const int type = value[0].GetInt();
    return type >= 0 && type <= 2 && value.Size() == sizes[type] &&
           std::ranges::all_of(value.GetArray(), isNumber);
}

}  // namespace

std::size_t viewOffset(const Position& position) {
    if (!position.node->isText() && !position.node->isComment()) return position.offset;
    return Utf16Length(std::string_view(position.node->data()).substr(0, position.offset));
}

bool viewHoldsAttribute(std::string_view name) {
    const auto starts = [](unsigned char c) {
        return std::isalpha(c) || c == '_' || c == ':' || c >= 0x80;
    };
    const auto continues = [&](unsigned char c) {
        return starts(c) || std::isdigit(c) || c == '-' || c == '.';
    };
    return !name.empty() && starts(static_cast<unsigned char>(name[0])) &&
           std::ranges::all_of(name, continues) && !EqualsNoCase(name, "autofocus");
}

struct ViewBatch::Impl {
    rapidjson::Document json;

    // Checks a child, and that no node stands in two places.
    static bool knows(const Value& entry, const Lookup& lookup,
                      std::unordered_set<std::int64_t>& placed) {
        const bool record = entry.IsArray();
        const std::int64_t id = record ? entry[0].GetInt64() : entry.GetInt64();
        if (id == 0 || !placed.insert(id).second) return false;
        if (!lookup.find(id) && (!record || id > 0)) return false;
        if (!record || entry[1].GetInt() != kElement) return true;
        return std::ranges::all_of(
            entry[4].GetArray(), [&](const Value& child) { return knows(child, lookup, placed); });
    }
};

ViewBatch::ViewBatch(Document& document) : document_(document), impl_(std::make_unique<Impl>()) {}
ViewBatch::~ViewBatch() = default;

bool ViewBatch::read(std::string_view bytes) {
    auto& json = impl_->json;
    json.Parse<rapidjson::kParseIterativeFlag>(bytes.data(), bytes.size());
    if (json.HasParseError() || !json.IsObject()) return false;
    const auto every = [&](const char* key, auto&& check) {
        const auto found = json.FindMember(key);
        return found == json.MemberEnd() ||
               (found->value.IsArray() && std::ranges::all_of(found->value.GetArray(), check));
    };
    if (!every("k", isListChange) || !every("a", isAttributeChange) || !every("t", isTextChange) ||
        !every("full", isEntry))
        return false;
    if (json.HasMember("sel") && !isSelection(json["sel"])) return false;
    if (!json.HasMember("n")) return true;
    if (!json["n"].IsUint() || json["n"].GetUint() == 0 || !json.HasMember("seen") ||
        !json["seen"].IsUint() || !json.HasMember("kind") || !json["kind"].IsString())
        return false;
    number_ = json["n"].GetUint();
    seen_ = json["seen"].GetUint();
    full_ = json.HasMember("full");
    const std::string kind = text(json["kind"]);
    startsStep_ = kind == "p";
    kind_ = kind == "t" || kind == "p" ? StepKind::Typing
            : kind == "d"              ? StepKind::Deleting
                                       : StepKind::Command;
    return true;
}

bool ViewBatch::knowsAll(const Lookup& lookup) const {
    const auto& json = impl_->json;
    std::unordered_set<std::int64_t> placed;
    std::unordered_set<std::int64_t> parents;
    const auto every = [&](const char* key, auto&& check) {
        const auto found = json.FindMember(key);
        return found == json.MemberEnd() || std::ranges::all_of(found->value.GetArray(), check);
    };
    return every("k",
                 [&](const Value& list) {
                     const Node* parent = lookup.find(list[0].GetInt64());
                     return parent && !parent->isText() && !parent->isComment() &&
                            parents.insert(list[0].GetInt64()).second &&
                            std::ranges::all_of(list[1].GetArray(), [&](const Value& entry) {
                                return Impl::knows(entry, lookup, placed);
                            });
                 }) &&
           every("a",
                 [&](const Value& change) {
                     const Node* node = lookup.find(change[0].GetInt64());
                     return node && node->isElement();
                 }) &&
           every("t", [&](const Value& change) {
               const Node* node = lookup.find(change[0].GetInt64());
               return node && (node->isText() || node->isComment());
           });
}

// --- Working out --------------------------------------------------------------------------------

namespace {

/** Turns records into nodes, and what they hold into changes of the batch. */
class Planner {
  public:
    Planner(ViewBatch& batch, Document& document, const ViewBatch::Lookup& lookup)
        : batch_(batch), document_(document), lookup_(lookup) {}

    void list(Node& parent, const Value& entries) {
        const std::size_t at = batch_.lists.size();
        batch_.lists.push_back({&parent, {}});
        std::vector<Node*> children;
        for (const Value& entry : entries.GetArray())
            if (Node* child = node(entry)) children.push_back(child);
        batch_.lists[at].children = std::move(children);
    }

  private:
    Node* node(const Value& entry) {
        if (!entry.IsArray()) return lookup_.find(entry.GetInt64());
        const std::int64_t id = entry[0].GetInt64();
        Node* known = lookup_.find(id);
        if (entry[1].GetInt() == kElement) {
            Node* element = known && known->isElement() ? known : nullptr;
            if (!element) {
                element = document_.createElement(text(entry[2]));
                lookup_.give(id, *element);
            }
            attributes(*element, entry[3]);
            list(*element, entry[4]);
            return element;
        }
        const std::string data = text(entry[2]);
        if (known && !known->isElement()) {
            if (known->data() != data)
                batch_.texts.push_back({known, 0, Utf16Length(known->data()), 0, data});
            return known;
        }
        Node* made =
            entry[1].GetInt() == kText ? document_.createText(data) : document_.createComment(data);
        lookup_.give(id, *made);
        return made;
    }

    void attributes(Node& element, const Value& pairs) {
        std::vector<std::string> names;
        for (rapidjson::SizeType i = 0; i + 1 < pairs.Size(); i += 2) {
            names.push_back(ToLower(text(pairs[i])));
            const std::string value = text(pairs[i + 1]);
            if (const std::string* had = element.attribute(names.back()); had && *had == value)
                continue;
            batch_.attributes.push_back({&element, text(pairs[i]), value});
        }
        for (const Attribute& attribute : element.attributes())
            if (viewHoldsAttribute(attribute.name) &&
                !std::ranges::count(names, ToLower(attribute.name)))
                batch_.attributes.push_back({&element, attribute.name, std::nullopt});
    }

    ViewBatch& batch_;
    Document& document_;
    const ViewBatch::Lookup& lookup_;
};

}  // namespace

void ViewBatch::plan(const Lookup& lookup) {
    const auto& json = impl_->json;
    Planner planner(*this, document_, lookup);
    if (full_) planner.list(*document_.root(), json["full"]);
    if (json.HasMember("k"))
        for (const Value& list : json["k"].GetArray())
            planner.list(*lookup.find(list[0].GetInt64()), list[1]);
    if (json.HasMember("a"))
        for (const Value& change : json["a"].GetArray())
            attributes.push_back(
                {lookup.find(change[0].GetInt64()), text(change[1]),
                 change[2].IsNull() ? std::nullopt : std::optional(text(change[2]))});
    if (json.HasMember("t"))
        for (const Value& change : json["t"].GetArray())
            texts.push_back({lookup.find(change[0].GetInt64()), change[1].GetUint(),
                             change[2].GetUint(), change[3].GetUint(), text(change[4])});
}

// --- Applying -----------------------------------------------------------------------------------

bool ViewBatch::inPage(const Node* node) const {
    return node == document_.root() || document_.isConnected(node);
}

// Everything that moves or goes is taken out while it is still in the page, the innermost first:
// so history can put it back in the opposite order, and no node ever comes below itself.
void ViewBatch::takeOut() {
    std::unordered_map<const Node*, const Node*> target;
    for (const List& list : lists)
        for (const Node* child : list.children)
            target[child] = list.parent;
    std::vector<std::pair<int, Node*>> leaving;
    const auto depth = [](const Node* node) {
        int levels = 0;
        for (; node; node = node->parent())
            ++levels;
        return levels;
    };
    for (const auto& [child, parent] : target)
        if (child->parent() && child->parent() != parent)
            leaving.emplace_back(depth(child), const_cast<Node*>(child));
    for (const List& list : lists)
        for (Node* child = list.parent->firstChild(); child; child = child->next())
            if (!target.contains(child)) leaving.emplace_back(depth(child), child);
    std::sort(leaving.begin(), leaving.end(), [](const auto& a, const auto& b) {
        return std::pair(-a.first, a.second->id()) < std::pair(-b.first, b.second->id());
    });
    for (const auto& [level, node] : leaving)
        document_.removeNode(*node);
}

void ViewBatch::putIn() {
    for (const List& list : lists) {
        // A parent that the program has removed meanwhile takes what was put into it with it.
        if (!inPage(list.parent)) continue;
        Node* place = list.parent->firstChild();
        for (Node* child : list.children) {
            if (child == place) {
                place = place->next();
                continue;
            }
            if (child->contains(*list.parent)) continue;
            if (child->parent()) document_.removeNode(*child);
            document_.insertNode(*list.parent, *child, place);
            placed.push_back(child);
        }
    }
}

void ViewBatch::apply() {
    takeOut();
    putIn();
    for (const AttributeChange& change : attributes)
        document_.setAttribute(*change.element, change.name, change.value);
    for (const TextChange& change : texts) {
        const std::string& data = change.node->data();
        const std::size_t begin = ByteOffsetOfUtf16(data, change.offset);
        const std::size_t length =
            ByteOffsetOfUtf16(std::string_view(data).substr(begin), change.removed);
        document_.replaceText(*change.node, begin, length, change.inserted);
    }
}

void ViewBatch::applySelection(const Lookup& lookup) {
    const auto& json = impl_->json;
    if (!json.HasMember("sel")) return;
    const Value& wanted = json["sel"];
    Selection selection;
    const auto position = [&](rapidjson::SizeType at) {
        Position place{lookup.find(wanted[at].GetInt64()), 0};
        if (!place.node || !inPage(place.node)) return Position{};
        const std::size_t offset = static_cast<std::size_t>(wanted[at + 1].GetInt64());
        place.offset = place.node->isText() || place.node->isComment()
                           ? ByteOffsetOfUtf16(place.node->data(), offset)
                           : std::min(offset, place.node->children().size());
        return place;
    };
    if (wanted[0].GetInt() == 1) {
        selection.anchor = position(1);
        selection.focus = position(3);
        if (!selection.anchor.node || !selection.focus.node)
            selection = {};
        else
            selection.type = SelectionType::Text;
    } else if (wanted[0].GetInt() == 2) {
        Node* object = lookup.find(wanted[1].GetInt64());
        if (object && inPage(object) && object->parent()) {
            selection.type = SelectionType::Control;
            selection.control = object;
            selection.anchor = {object->parent(), object->index()};
            selection.focus = {object->parent(), object->index() + 1};
        }
    }
    if (selection != document_.selection()) document_.setSelection(selection, Origin::View);
}

}  // namespace pw::dom
