#pragma once
// The view's half of the editing protocol without a browser: the same algorithm as editor.js, on a
// tree of its own. Its texts are ASCII, so that units and bytes are the same.
#include <rapidjson/document.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <algorithm>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "platform/dom/Document.h"

namespace pw::test {

class ViewStandIn {
  public:
    struct Item {
        std::int64_t id = 0;
        int type = 1;  ///< 1 element, 3 text, 8 comment, 9 the document
        std::string name;
        std::string data;
        std::map<std::string, std::string> attributes;
        std::vector<Item*> children;
        Item* parent = nullptr;
        bool live = false;
    };
    using Value = rapidjson::Value;
    using Json = rapidjson::Writer<rapidjson::StringBuffer>;

    // --- What the program sends -----------------------------------------------------------------

    /** Answers what the view would: "applied", "lost", or "" when it has left the message alone. */
    std::string take(const std::string& text, std::vector<std::string>& batches) {
        if (const std::string pending = flush(); !pending.empty()) batches.push_back(pending);
        rapidjson::Document message;
        message.Parse(text.c_str());
        if (message["n"].GetUint() != sequence_) return {};
        seen_ = message["m"].GetUint();
        if (message.HasMember("full")) {
            load(message);
            return "applied";
        }
        return apply(message) ? "applied" : "lost";
    }
    void start(const std::string& text) {
        rapidjson::Document message;
        message.Parse(text.c_str());
        sequence_ = message["n"].GetUint();
        seen_ = message["m"].GetUint();
        load(message);
    }
    std::uint32_t seen() const { return seen_; }
    void loseABatch() { ++sequence_; }

    // --- What the user does
    // -----------------------------------------------------------------------

    Item* root() { return root_; }
    std::vector<Item*> below(Item* from) {
        std::vector<Item*> all;
        for (Item* child : from->children) {
            all.push_back(child);
            for (Item* item : below(child))
                all.push_back(item);
        }
        return all;
    }
    Item* find(std::string_view name) {
        for (Item* item : below(root_))
            if (item->name == name) return item;
        return nullptr;
    }
    Item* text(std::string_view holds) {
        for (Item* item : below(root_))
            if (item->type == 3 && item->data.find(holds) != std::string::npos) return item;
        return nullptr;
    }
    Item* make(int type, std::string nameOrData) {
        Item* item = add();
        item->type = type;
        (type == 1 ? item->name : item->data) = std::move(nameOrData);
        return item;
    }
    void insert(Item* parent, Item* item, std::size_t at) {
        remove(item);
        item->parent = parent;
        at = std::min(at, parent->children.size());
        parent->children.insert(parent->children.begin() + std::ptrdiff_t(at), item);
        changedParents_.insert(parent);
    }
    void remove(Item* item) {
        if (!item->parent) return;
        changedParents_.insert(item->parent);
        removed_.insert(item);
        std::erase(item->parent->children, item);
        item->parent = nullptr;
    }
    void set(Item* item, const std::string& name, std::optional<std::string> value) {
        if (value)
            item->attributes[name] = *value;
        else
            item->attributes.erase(name);
        changedAttributes_.insert({item, name});
    }
    void write(Item* item, const std::string& data) {
        changedTexts_.emplace(item, item->data);
        item->data = data;
    }
    static std::size_t indexOf(const Item* item) {
        const auto& siblings = item->parent->children;
        return std::size_t(std::find(siblings.begin(), siblings.end(), item) - siblings.begin());
    }
    static bool contains(const Item* outer, const Item* inner) {
        for (; inner; inner = inner->parent)
            if (inner == outer) return true;
        return false;
    }

    /** The batch of what was done; "" when nothing was. */
    std::string flush(const std::string& kind = "c") {
        if (changedParents_.empty() && changedAttributes_.empty() && changedTexts_.empty())
            return {};
        for (Item* item : removed_)
            if (!connected(item)) forget(item);
        rapidjson::StringBuffer buffer;
        Json json(buffer);
        json.StartObject();
        json.Key("n");
        json.Uint(sequence_ + 1);
        json.Key("seen");
        json.Uint(seen_);
        json.Key("kind");
        json.String(kind.c_str());
        const int changes = writeLists(json) + writeAttributes(json) + writeTexts(json);
        json.EndObject();
        changedParents_.clear();
        removed_.clear();
        changedAttributes_.clear();
        changedTexts_.clear();
        written_.clear();
        if (!changes) return {};
        ++sequence_;
        return buffer.GetString();
    }
    std::string everything() {
        flush();
        rapidjson::StringBuffer buffer;
        Json json(buffer);
        json.StartObject();
        json.Key("n");
        json.Uint(++sequence_);
        json.Key("seen");
        json.Uint(seen_);
        json.Key("kind");
        json.String("c");
        json.Key("full");
        json.StartArray();
        for (Item* child : root_->children)
            record(json, child, true);
        json.EndArray();
        json.EndObject();
        written_.clear();
        return buffer.GetString();
    }

    // --- Both trees as text
    // -----------------------------------------------------------------------

    std::string tree() const { return tree(root_); }
    static std::string tree(const Item* item) {
        if (item->type == 3) return '"' + item->data + '"';
        if (item->type == 8) return "<!" + item->data + ">";
        std::string text = item->type == 1 ? "<" + item->name : "";
        for (const auto& [name, value] : item->attributes)
            text += " " + name + "=" + value;
        if (item->type == 1) text += ">";
        for (const Item* child : item->children)
            text += tree(child);
        return item->type == 1 ? text + "</>" : text;
    }
    static std::string tree(const dom::Node& node) {
        if (node.isText()) return '"' + node.data() + '"';
        if (node.isComment()) return "<!" + node.data() + ">";
        std::string text = node.isElement() ? "<" + node.localName() : "";
        std::map<std::string, std::string> sorted;
        for (const dom::Attribute& attribute : node.attributes())
            sorted[attribute.name] = attribute.value;
        for (const auto& [name, value] : sorted)
            text += " " + name + "=" + value;
        if (node.isElement()) text += ">";
        for (const dom::Node* child = node.firstChild(); child; child = child->next())
            text += tree(*child);
        return node.isElement() ? text + "</>" : text;
    }

  private:
    Item* add() {
        items_.push_back(std::make_unique<Item>());
        return items_.back().get();
    }
    bool connected(const Item* item) const {
        while (item->parent)
            item = item->parent;
        return item == root_;
    }
    void forget(Item* item) {
        item->live = false;
        known_.erase(item->id);
        for (Item* child : item->children)
            forget(child);
    }
    void give(Item* item, std::int64_t id) {
        item->id = id;
        item->live = true;
        known_[id] = item;
    }

    void load(const Value& message) {
        known_.clear();
        root_ = add();
        root_->type = 9;
        for (const Value& rec : message["full"].GetArray())
            attach(root_, build(rec));
        give(root_, message["root"].GetInt64());
        changedParents_.clear();
        removed_.clear();
        changedAttributes_.clear();
        changedTexts_.clear();
    }
    static void attach(Item* parent, Item* child) {
        if (child->parent) std::erase(child->parent->children, child);
        child->parent = parent;
        parent->children.push_back(child);
    }
    Item* build(const Value& rec) {
        const std::int64_t id = rec[0].GetInt64();
        const auto found = known_.find(id);
        Item* item = found == known_.end() ? add() : found->second;
        item->type = rec[1].GetInt();
        if (item->type != 1) {
            item->data = rec[2].GetString();
        } else {
            item->name = rec[2].GetString();
            item->attributes.clear();
            for (rapidjson::SizeType i = 0; i + 1 < rec[3].Size(); i += 2)
                item->attributes[rec[3][i].GetString()] = rec[3][i + 1].GetString();
            arrange(item, rec[4]);
        }
        give(item, id);
        return item;
    }
    bool arrange(Item* parent, const Value& entries) {
        std::vector<Item*> wanted;
        for (const Value& entry : entries.GetArray()) {
            if (entry.IsArray()) {
                wanted.push_back(build(entry));
            } else if (known_.contains(entry.GetInt64())) {
                wanted.push_back(known_[entry.GetInt64()]);
            } else {
                return false;
            }
        }
        for (Item* child : parent->children)
            if (!std::count(wanted.begin(), wanted.end(), child)) child->parent = nullptr;
        parent->children.clear();
        for (Item* child : wanted)
            attach(parent, child);
        return true;
    }
    bool apply(const Value& message) {
        std::vector<std::pair<Item*, const Value*>> lists;
        for (const Value& list : message["k"].GetArray()) {
            if (!known_.contains(list[0].GetInt64())) return false;
            lists.emplace_back(known_[list[0].GetInt64()], &list[1]);
        }
        for (const auto& [parent, entries] : lists) {
            std::set<std::int64_t> keep;
            for (const Value& entry : entries->GetArray())
                keep.insert(entry.IsArray() ? entry[0].GetInt64() : entry.GetInt64());
            std::erase_if(parent->children, [&](Item* child) {
                if (keep.contains(child->id)) return false;
                child->parent = nullptr;
                return true;
            });
        }
        for (const auto& [parent, entries] : lists)
            if (!arrange(parent, *entries)) return false;
        for (const Value& change : message["a"].GetArray()) {
            if (!known_.contains(change[0].GetInt64())) return false;
            Item* item = known_[change[0].GetInt64()];
            if (change[2].IsNull())
                item->attributes.erase(change[1].GetString());
            else
                item->attributes[change[1].GetString()] = change[2].GetString();
        }
        for (const Value& change : message["t"].GetArray()) {
            if (!known_.contains(change[0].GetInt64())) return false;
            known_[change[0].GetInt64()]->data = change[1].GetString();
        }
        return true;
    }

    void record(Json& json, Item* item, bool all) {
        if (!item->id) give(item, --lastId_);
        item->live = true;
        known_[item->id] = item;
        written_.insert(item);
        json.StartArray();
        json.Int64(item->id);
        json.Int(item->type);
        json.String((item->type == 1 ? item->name : item->data).c_str());
        if (item->type == 1) {
            json.StartArray();
            for (const auto& [name, value] : item->attributes) {
                json.String(name.c_str());
                json.String(value.c_str());
            }
            json.EndArray();
            json.StartArray();
            for (Item* child : item->children)
                entry(json, child, all);
            json.EndArray();
            json.Int(0);
        }
        json.EndArray();
    }
    void entry(Json& json, Item* item, bool all) {
        if (!all && item->live)
            json.Int64(item->id);
        else
            record(json, item, all);
    }
    int writeLists(Json& json) {
        std::vector<std::pair<int, Item*>> parents;
        for (Item* parent : changedParents_) {
            int depth = 0;
            for (Item* up = parent->parent; up; up = up->parent)
                ++depth;
            if (connected(parent) && parent->live) parents.emplace_back(depth, parent);
        }
        std::sort(parents.begin(), parents.end());
        json.Key("k");
        json.StartArray();
        int count = 0;
        for (const auto& [depth, parent] : parents) {
            if (written_.contains(parent)) continue;
            ++count;
            json.StartArray();
            json.Int64(parent->id);
            json.StartArray();
            for (Item* child : parent->children)
                entry(json, child, false);
            json.EndArray();
            json.EndArray();
        }
        json.EndArray();
        return count;
    }
    bool reported(const Item* item) const {
        return connected(item) && item->live && !written_.contains(item);
    }
    int writeAttributes(Json& json) {
        json.Key("a");
        json.StartArray();
        int count = 0;
        for (const auto& [item, name] : changedAttributes_) {
            if (!reported(item)) continue;
            ++count;
            json.StartArray();
            json.Int64(item->id);
            json.String(name.c_str());
            if (const auto found = item->attributes.find(name); found != item->attributes.end())
                json.String(found->second.c_str());
            else
                json.Null();
            json.EndArray();
        }
        json.EndArray();
        return count;
    }
    int writeTexts(Json& json) {
        json.Key("t");
        json.StartArray();
        int count = 0;
        for (const auto& [item, before] : changedTexts_) {
            if (!reported(item) || item->data == before) continue;
            ++count;
            const std::size_t most = std::min(before.size(), item->data.size());
            std::size_t start = 0;
            std::size_t end = 0;
            while (start < most && before[start] == item->data[start])
                ++start;
            while (end < most - start &&
                   before[before.size() - 1 - end] == item->data[item->data.size() - 1 - end])
                ++end;
            json.StartArray();
            json.Int64(item->id);
            json.Uint64(start);
            json.Uint64(before.size() - start - end);
            json.Uint64(end);
            json.String(item->data.substr(start, item->data.size() - start - end).c_str());
            json.EndArray();
        }
        json.EndArray();
        return count;
    }

    std::vector<std::unique_ptr<Item>> items_;
    std::map<std::int64_t, Item*> known_;
    Item* root_ = nullptr;
    std::int64_t lastId_ = 0;
    std::uint32_t sequence_ = 0;
    std::uint32_t seen_ = 0;
    std::set<Item*> changedParents_;
    std::set<Item*> removed_;
    std::set<std::pair<Item*, std::string>> changedAttributes_;
    std::map<Item*, std::string> changedTexts_;
    std::set<const Item*> written_;
};

}  // namespace pw::test
