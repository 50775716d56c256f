#include "platform/dom/SourceOrder.h"

#include <algorithm>
#include <map>

#include "platform/Text.h"
#include "platform/dom/DocumentImpl.h"
#include "platform/dom/Tags.h"

namespace pw::dom {

namespace {

constexpr std::size_t kMostUnclosed = 200;

const char* endOf(std::string_view bytes) {
    return bytes.data() + bytes.size();
}

std::size_t depthOf(const Node* node) {
    std::size_t depth = 0;
    for (; node; node = node->parent())
        ++depth;
    return depth;
}

/** The nearest node that is around both, or one of them. */
Node* commonAncestor(Node* a, Node* b) {
    std::size_t depthA = depthOf(a);
    std::size_t depthB = depthOf(b);
    for (; depthA > depthB; --depthA)
        a = a->parent();
    for (; depthB > depthA; --depthB)
        b = b->parent();
    while (a != b) {
        a = a->parent();
        b = b->parent();
    }
    return a;
}

Node* childAbove(const Node* ancestor, Node* node) {
    while (node->parent() != ancestor)
        node = node->parent();
    return node;
}

}  // namespace

void SourceOrder::run() {
    hulls_.resize(document_.impl_->pool.size() + 1);
    findClones();
    dropMisplacedEnds();
    collect();
    sort();
    giveLeads();
    findHulls();
    if (!ordered_) findDisorder();
    makeIslands();
    setExtents();
    listUnclosedFormatting();
}

/** Clones have no bytes. What they and their origins have in common depends on both, so the
 *  stretch from the first to the last of them is one island. */
void SourceOrder::findClones() {
    std::map<const char*, std::vector<Node*>> clones;
    for (Node* node = document_.root_; node; node = node->following()) {
        if (!node->clone_) continue;
        clones[node->start_.data()].push_back(node);
        node->start_ = {};
    }
    if (clones.empty()) return;
    std::vector<std::uint32_t> place(hulls_.size(), 0);
    std::uint32_t places = 0;
    for (Node* node = document_.root_; node; node = node->following()) {
        place[node->id_] = places++;
        if (!node->isElement() || node->clone_ || node->start_.empty()) continue;
        const auto found = clones.find(node->start_.data());
        if (found == clones.end()) continue;
        node->cloned_ = true;
        found->second.push_back(node);
    }
    for (auto& [start, nodes] : clones) {
        Node* around = nodes.front();
        for (Node* node : nodes)
            around = commonAncestor(around, node);
        if (std::find(nodes.begin(), nodes.end(), around) != nodes.end()) around = around->parent();
        Run run{around, nullptr, nullptr, false};
        for (Node* node : nodes) {
            Node* member = childAbove(around, node);
            if (!run.first || place[member->id_] < place[run.first->id_]) run.first = member;
            if (!run.last || place[member->id_] > place[run.last->id_]) run.last = member;
        }
        runs_.push_back(run);
    }
}

/** What stands behind the end tag of its parent ("</body>" above all) makes that tag a stray. */
void SourceOrder::dropMisplacedEnds() {
    std::vector<const char*> furthest{nullptr};
    Node* node = document_.root_;
    for (;;) {
        furthest.back() = std::max(furthest.back(), endOf(node->start_));
        if (node->first_) {
            furthest.push_back(endOf(node->start_));
            node = node->first_;
            continue;
        }
        for (;;) {
            if (!node->first_) {
                if (!node->end_.empty() && node->end_.data() < furthest.back()) node->end_ = {};
                furthest.back() = std::max(furthest.back(), endOf(node->end_));
            }
            if (node->next_) {
                node = node->next_;
                break;
            }
            node = node->parent_;
            if (!node) return;
            const char* inside = furthest.back();
            furthest.pop_back();
            if (!node->end_.empty() && node->end_.data() < inside) node->end_ = {};
            furthest.back() = std::max({furthest.back(), inside, endOf(node->end_)});
        }
    }
}

void SourceOrder::collect() {
    Node* node = document_.root_;
    for (;;) {
        if (!node->start_.empty()) tokens_.push_back({node, false, node->start_});
        if (node->first_) {
            node = node->first_;
            continue;
        }
        for (;;) {
            if (!node->end_.empty()) tokens_.push_back({node, true, node->end_});
            if (node->next_) {
                node = node->next_;
                break;
            }
            node = node->parent_;
            if (!node) return;
        }
    }
}

void SourceOrder::sort() {
    const auto before = [](const Token& a, const Token& b) {
        return a.bytes.data() < b.bytes.data();
    };
    ordered_ = std::is_sorted(tokens_.begin(), tokens_.end(), before);
    if (!ordered_) std::stable_sort(tokens_.begin(), tokens_.end(), before);
    // Two nodes cannot have the same bytes: the later one loses them and is written canonically,
    // together with everything, for there is no telling what the markup means.
    const char* behind = source_.data();
    bool overlapping = false;
    std::erase_if(tokens_, [&](const Token& token) {
        if (token.bytes.data() >= behind) {
            behind = endOf(token.bytes);
            return false;
        }
        overlapping = true;
        if (token.end) {
            token.node->end_ = {};
        } else {
            token.node->start_ = {};
            token.node->sourced_ = false;
        }
        return true;
    });
    Node* root = document_.root_;
    if (overlapping && root->first_) runs_.push_back({root, root->first_, root->last_, true});
}

/** Every token gets the bytes between it and the one in front. */
void SourceOrder::giveLeads() {
    const char* behind = source_.data();
    for (const Token& token : tokens_) {
        const std::string_view lead(behind, std::size_t(token.bytes.data() - behind));
        (token.end ? token.node->endLead_ : token.node->lead_) = lead;
        behind = endOf(token.bytes);
    }
    document_.root_->endLead_ = {behind, std::size_t(endOf(source_) - behind)};
    // The doctype belongs in front of HTML even when that has no tag.
    Node* html = document_.documentElement();
    if (!html || !html->start_.empty() || tokens_.empty()) return;
    for (const Token& token : tokens_) {
        std::string_view& lead = token.end ? token.node->endLead_ : token.node->lead_;
        const std::size_t found = FindNoCase(lead, "<!doctype");
        if (found != lead.npos) {
            const std::size_t end = std::min(lead.find('>', found), lead.size() - 1) + 1;
            if (html->contains(*token.node)) {
                html->lead_ = lead.substr(0, end);
                lead.remove_prefix(end);
            }
            return;
        }
        if (html->contains(*token.node)) return;
    }
}

void SourceOrder::findHulls() {
    for (std::uint32_t rank = 0; rank < tokens_.size(); ++rank) {
        Hull& own = hull(*tokens_[rank].node);
        if (own.count == 0) own.first = rank;
        own.last = rank;
        ++own.count;
    }
    // From the leaves up: a node's last descendant first.
    Node* node = document_.root_;
    while (node->last_)
        node = node->last_;
    for (;;) {
        Node* parent = node->parent_;
        if (!parent) return;
        const Hull own = hull(*node);
        if (own.count > 0) {
            Hull& outer = hull(*parent);
            outer.first = outer.count == 0 ? own.first : std::min(outer.first, own.first);
            outer.last = outer.count == 0 ? own.last : std::max(outer.last, own.last);
            outer.count += own.count;
        }
        node = node->previous_ ? node->previous_ : parent;
        if (node == parent) continue;
        while (node->last_)
            node = node->last_;
    }
}

/** Neighbours whose bytes are mixed up with each other form an island. */
void SourceOrder::findDisorder() {
    std::vector<std::uint32_t> startRank(hulls_.size(), 0);
    std::vector<std::uint32_t> endRank(hulls_.size(), UINT32_MAX);
    for (std::uint32_t rank = 0; rank < tokens_.size(); ++rank) {
        (tokens_[rank].end ? endRank : startRank)[tokens_[rank].node->id()] = rank;
    }
    struct Group {
        Node* first;
        Node* last;
        std::uint32_t end;
        bool mixed;
    };
    for (Node* parent = document_.root_; parent; parent = parent->following()) {
        std::vector<Group> groups;
        const std::uint32_t ownStart = parent->start_.empty() ? 0 : startRank[parent->id()];
        const std::uint32_t ownEnd = endRank[parent->id()];
        bool outside = false;
        for (Node* child = parent->first_; child; child = child->next_) {
            const Hull& own = hull(*child);
            if (own.count == 0) continue;
            outside |= own.first < ownStart || own.last > ownEnd;
            Group group{child, child, own.last, false};
            while (!groups.empty() && groups.back().end > own.first) {
                group.first = groups.back().first;
                group.end = std::max(group.end, groups.back().end);
                group.mixed = true;
                groups.pop_back();
            }
            groups.push_back(group);
        }
        for (const Group& group : groups) {
            if (group.mixed) runs_.push_back({parent, group.first, group.last, true});
        }
        if (outside && parent->parent_) runs_.push_back({parent->parent_, parent, parent, true});
    }
}

void SourceOrder::makeIslands() {
    std::vector<Island>& islands = document_.impl_->islands;
    // Runs of one parent that touch become one.
    std::map<Node*, std::vector<Run>> byParent;
    for (const Run& run : runs_)
        byParent[run.parent].push_back(run);
    for (auto& [parent, runs] : byParent) {
        std::map<const Node*, std::size_t> index;
        std::size_t count = 0;
        for (const Node* child = parent->first_; child; child = child->next_) {
            index[child] = count++;
        }
        std::sort(runs.begin(), runs.end(),
                  [&](const Run& a, const Run& b) { return index[a.first] < index[b.first]; });
        std::vector<Run> merged;
        for (const Run& run : runs) {
            if (merged.empty() || index[merged.back().last] < index[run.first]) {
                merged.push_back(run);
                continue;
            }
            Run& last = merged.back();
            if (index[last.last] < index[run.last]) last.last = run.last;
            last.disordered |= run.disordered;
        }
        for (const Run& run : merged) {
            Hull all;
            const auto number = std::int32_t(islands.size());
            for (Node* member = run.first;; member = member->next_) {
                member->island_ = number;
                const Hull& own = hull(*member);
                if (own.count > 0) {
                    all.first = all.count == 0 ? own.first : std::min(all.first, own.first);
                    all.last = all.count == 0 ? own.last : std::max(all.last, own.last);
                    all.count += own.count;
                }
                if (member == run.last) break;
            }
            Island island;
            island.parent = parent;
            island.disordered = run.disordered;
            if (all.contiguous()) island.extent = extentOf(all);
            islands.push_back(island);
        }
    }
    if (islands.empty()) return;
    for (Node* node = document_.root_; node; node = node->following()) {
        if (!node->clone_ && !node->cloned_) continue;
        for (Node* at = node; at; at = at->parent_) {
            if (at->island_ >= 0) node->home_ = at->island_;
        }
    }
}

void SourceOrder::setExtents() {
    for (Node* node = document_.root_; node; node = node->following()) {
        const Hull& own = hull(*node);
        if (own.contiguous()) node->extent_ = extentOf(own);
    }
    document_.root_->extent_ = source_;
    Node* html = document_.documentElement();
    if (html && html->start_.empty() && !html->lead_.empty() && !html->extent_.empty()) {
        html->extent_ = {html->lead_.data(),
                         std::size_t(endOf(html->extent_) - html->lead_.data())};
    }
}

void SourceOrder::listUnclosedFormatting() {
    std::vector<Node*>& unclosed = document_.impl_->unclosed;
    Node* lastLink = nullptr;
    for (const Token& token : tokens_) {
        Node* node = token.node;
        if (token.end || !node->isElement() || node->foreign_) continue;
        // A link that is left open ends where the next begins.
        if (node->is("a")) lastLink = node;
        if (!node->end_.empty() || node->is("a") || !isFormattingTag(node->name_)) continue;
        unclosed.push_back(node);
    }
    if (lastLink && lastLink->end_.empty()) unclosed.push_back(lastLink);
    // Each insertion looks at all of them. A page with more is beyond repair.
    if (unclosed.size() > kMostUnclosed) unclosed.clear();
}

std::string_view SourceOrder::extentOf(const Hull& hull) const {
    const Token& first = tokens_[hull.first];
    const Token& last = tokens_[hull.last];
    const std::string_view lead = first.end ? first.node->endLead_ : first.node->lead_;
    const char* begin = lead.empty() ? first.bytes.data() : lead.data();
    return {begin, std::size_t(endOf(last.bytes) - begin)};
}

}  // namespace pw::dom
