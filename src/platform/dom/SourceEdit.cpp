#include "platform/dom/SourceEdit.h"

#include <algorithm>

#include "platform/Text.h"
#include "platform/dom/DocumentImpl.h"
#include "platform/dom/Escape.h"
#include "platform/dom/StartTag.h"
#include "platform/dom/Tags.h"
#include "platform/dom/Writer.h"

namespace pw::dom {

namespace {

/** How many siblings are tried to find one that can be made another. */
constexpr std::size_t kFurthestMatch = 40;

std::uint64_t mix(std::uint64_t hash, std::uint64_t value) {
    hash ^= value + 0x9E3779B97F4A7C15u + (hash << 6) + (hash >> 2);
    hash *= 0xFF51AFD7ED558CCDu;
    return hash ^ (hash >> 32);
}

std::uint64_t mix(std::uint64_t hash, std::string_view bytes) {
    return mix(hash, std::hash<std::string_view>{}(bytes) ^ (bytes.size() << 1));
}

/** Of positions in pairs that ascend in the first, the longest choice that ascends in both. */
std::vector<std::pair<std::size_t, std::size_t>> longestAscending(
    const std::vector<std::pair<std::size_t, std::size_t>>& pairs) {
    std::vector<std::size_t> tails;
    std::vector<std::size_t> previous(pairs.size(), SIZE_MAX);
    for (std::size_t i = 0; i < pairs.size(); ++i) {
        const auto at = std::lower_bound(
            tails.begin(), tails.end(), pairs[i].second,
            [&](std::size_t tail, std::size_t value) { return pairs[tail].second < value; });
        if (at != tails.begin()) previous[i] = *std::prev(at);
        if (at == tails.end())
            tails.push_back(i);
        else
            *at = i;
    }
    std::vector<std::pair<std::size_t, std::size_t>> chosen;
    for (std::size_t i = tails.empty() ? SIZE_MAX : tails.back(); i != SIZE_MAX; i = previous[i]) {
        chosen.push_back(pairs[i]);
    }
    std::reverse(chosen.begin(), chosen.end());
    return chosen;
}

}  // namespace

bool SourceEdit::replacePage(std::string_view text, ParseError* error) {
    if (document_.html() == text) return true;
    const std::unique_ptr<Document> fresh =
        Document::parseText(std::string(text), document_.encoding(), error);
    if (!fresh) return false;
    other_ = fresh.get();
    unclosed_.insert(fresh->impl_->unclosed.begin(), fresh->impl_->unclosed.end());
    document_.impl_->bytes.absorb(fresh->impl_->bytes);
    if (text.find('\n') != text.npos) document_.impl_->lineEnd = fresh->impl_->lineEnd;
    reload_ = fresh->doctype() != document_.doctype() || fresh->quirks() != document_.quirks();
    Node* html = document_.documentElement();

    Document::Step step(document_);
    oldHashes_ = hashesOf(document_);
    freshHashes_ = hashesOf(*fresh);
    pending_.push_back({document_.root_, fresh->root_});
    while (!pending_.empty()) {
        const Pair pair = pending_.back();
        pending_.pop_back();
        reconcile(*pair.old, *pair.fresh);
    }
    if (document_.html() != text) replaceEverything(*fresh->root_);
    if (reload_ || document_.documentElement() != html) {
        Gateway(document_, Bytes::Given).replacePieces(*document_.root_, {}, fresh->quirks());
    }
    return true;
}

SourceEdit::Hashes SourceEdit::hashesOf(const Document& document) {
    const std::vector<Island>& islands = document.impl_->islands;
    std::vector<std::uint64_t> islandHashes;
    for (const Island& island : islands) {
        islandHashes.push_back(mix(std::uint64_t(island.disordered), island.extent));
    }
    Hashes hashes(document.impl_->pool.size() + 1, 0);
    std::vector<const Node*> order;
    for (const Node* node = document.root_; node; node = node->following()) {
        order.push_back(node);
        if (node->island_ < 0) continue;
        // Members differ by their place in the island, and match only where the whole does.
        const Island& island = islands[std::size_t(node->island_)];
        std::uint64_t& hash = islandHashes[std::size_t(node->island_)];
        hash = mix(hash, std::uint64_t(1));
        const bool whole = island.pristine() && island.parent == node->parent_;
        hashes[node->id_] = whole ? hash : mix(hash, std::uint64_t(node->id_));
    }
    for (auto at = order.rbegin(); at != order.rend(); ++at) {
        const Node& node = **at;
        std::uint64_t hash = mix(piecesHash(node, document.impl_->lineEnd), hashes[node.id_]);
        for (const Node* child = node.first_; child; child = child->next_) {
            hash = mix(hash, hashes[child->id_]);
        }
        hashes[node.id_] = hash;
    }
    return hashes;
}

std::uint64_t SourceEdit::piecesHash(const Node& node, std::string_view lineEnd) {
    const bool raw = node.sourced_ ? node.raw_ : node.isText() && holdsRawText(*node.parent_);
    std::uint64_t hash = mix(std::uint64_t(node.type_) + 1, node.name_);
    hash = mix(hash, std::uint64_t(node.foreign_) * 4 + std::uint64_t(node.clone_) * 2 + raw);
    hash = mix(hash, node.data_);
    if (node.sourced_) {
        hash = mix(hash, node.lead_);
        hash = mix(hash, node.own_ ? std::string_view(*node.own_) : node.start_);
        hash = mix(hash, node.endLead_);
        return mix(hash, node.end_);
    }
    // What has no bytes is written anew each time: the same when it was read from just that.
    std::string start;
    std::string end;
    if (node.isElement()) {
        start = canonicalStartTag(node, lineEnd);
        if (!isVoid(node)) end = "</" + node.name_ + ">";
    } else if (node.isComment()) {
        start = "<!--" + escapeText(node.data_, TextContext::Raw, lineEnd) + "-->";
    } else {
        start = escapeText(node.data_, raw ? TextContext::Raw : TextContext::Normal, lineEnd);
    }
    hash = mix(hash, std::string_view());
    hash = mix(hash, start);
    hash = mix(hash, std::string_view());
    return mix(hash, end);
}

bool SourceEdit::same(const Node& old, const Node& fresh) const {
    return oldHashes_[old.id_] == freshHashes_[fresh.id_];
}

/** Can be made the other without giving up its identity. */
bool SourceEdit::alike(const Node& old, const Node& fresh) const {
    return old.type_ == fresh.type_ && old.name_ == fresh.name_ && old.foreign_ == fresh.foreign_ &&
           old.sourced_ && fresh.sourced_ && !old.clone_ && !fresh.clone_ && !old.cloned_ &&
           !fresh.cloned_ && old.island_ < 0 && fresh.island_ < 0 && old.raw_ == fresh.raw_;
}

void SourceEdit::reconcile(Node& old, Node& fresh) {
    if (same(old, fresh)) return;
    if (old.isText() || old.isComment()) {
        const std::string_view bytes = old.own_ ? std::string_view(*old.own_) : old.start_;
        if (bytes != fresh.start_ || old.data_ != fresh.data_) {
            Gateway(document_, Bytes::Given).replaceSourcedText(old, fresh.data_, fresh.start_);
        }
        reconcilePieces(old, fresh);
        return;
    }
    reconcileAttributes(old, fresh);
    reconcilePieces(old, fresh);
    reconcileChildren(old, fresh);
}

void SourceEdit::reconcileAttributes(Node& old, const Node& fresh) {
    const auto equal = [](const Attribute& a, const Attribute& b) {
        return a.name == b.name && a.value == b.value;
    };
    if (std::equal(old.attributes_.begin(), old.attributes_.end(), fresh.attributes_.begin(),
                   fresh.attributes_.end(), equal)) {
        return;
    }
    Gateway gateway(document_, Bytes::Given);
    const auto sameName = [](const Attribute& a, const Attribute& b) { return a.name == b.name; };
    const bool sameNames = std::equal(old.attributes_.begin(), old.attributes_.end(),
                                      fresh.attributes_.begin(), fresh.attributes_.end(), sameName);
    // New ones come last, so another order means to set them all again.
    while (!sameNames && !old.attributes_.empty()) {
        gateway.setAttribute(old, old.attributes_.back().name, std::nullopt);
    }
    for (const Attribute& attribute : fresh.attributes_) {
        gateway.setAttribute(old, attribute.name, attribute.value);
    }
}

void SourceEdit::reconcilePieces(Node& old, const Node& fresh) {
    std::vector<PieceChange> changes;
    const auto compare = [&](Piece piece, std::string_view from, std::string_view to) {
        if (from != to) changes.push_back({&old, piece, from, to});
    };
    compare(Piece::Lead, old.lead_, fresh.lead_);
    if (!old.isText() && !old.isComment()) compare(Piece::Start, old.start_, fresh.start_);
    compare(Piece::EndLead, old.endLead_, fresh.endLead_);
    compare(Piece::End, old.end_, fresh.end_);
    if (changes.empty()) return;
    Gateway(document_, Bytes::Given).replacePieces(old, std::move(changes));
}

void SourceEdit::reconcileChildren(Node& old, Node& fresh) {
    const std::vector<Node*> before = old.children();
    const std::vector<Node*> after = fresh.children();
    std::unordered_map<const Node*, Node*> kept;
    for (const Pair& pair : matchChildren(before, after)) {
        kept[pair.fresh] = pair.old;
        kept[pair.old] = pair.fresh;
        if (!same(*pair.old, *pair.fresh)) pending_.push_back(pair);
    }
    Gateway gateway(document_, Bytes::Given);
    for (Node* child : before) {
        if (!kept.contains(child)) gateway.remove(*child);
    }
    Node* next = nullptr;
    for (auto child = after.rbegin(); child != after.rend(); ++child) {
        const auto found = kept.find(*child);
        if (found != kept.end()) {
            next = found->second;
            continue;
        }
        Node* copy = adopt(**child);
        if ((*child)->island_ >= 0) {
            copy->island_ = adoptIsland(**child, old);
            // Its insertion counts as a change: the stretch is whole when all of it stands.
            --document_.impl_->islands[std::size_t(copy->island_)].structure;
        }
        gateway.insert(old, *copy, next);
        next = copy;
    }
}

std::vector<SourceEdit::Pair> SourceEdit::matchChildren(const std::vector<Node*>& old,
                                                        const std::vector<Node*>& fresh) {
    std::vector<Pair> pairs;
    struct Gap {
        std::size_t oldBegin, oldEnd, freshBegin, freshEnd;
    };
    // 1. What is the same at both ends.
    Gap all{0, old.size(), 0, fresh.size()};
    const auto trim = [&](Gap& gap) {
        while (gap.oldBegin < gap.oldEnd && gap.freshBegin < gap.freshEnd &&
               same(*old[gap.oldBegin], *fresh[gap.freshBegin])) {
            pairs.push_back({old[gap.oldBegin++], fresh[gap.freshBegin++]});
        }
        while (gap.oldBegin < gap.oldEnd && gap.freshBegin < gap.freshEnd &&
               same(*old[gap.oldEnd - 1], *fresh[gap.freshEnd - 1])) {
            pairs.push_back({old[--gap.oldEnd], fresh[--gap.freshEnd]});
        }
    };
    trim(all);

    // 2. In between, what stands once in each, in the order that keeps most.
    struct Seen {
        std::size_t oldCount = 0, freshCount = 0, oldIndex = 0, freshIndex = 0;
    };
    std::unordered_map<std::uint64_t, Seen> seen;
    for (std::size_t i = all.oldBegin; i < all.oldEnd; ++i) {
        Seen& entry = seen[oldHashes_[old[i]->id_]];
        ++entry.oldCount;
        entry.oldIndex = i;
    }
    for (std::size_t i = all.freshBegin; i < all.freshEnd; ++i) {
        Seen& entry = seen[freshHashes_[fresh[i]->id_]];
        ++entry.freshCount;
        entry.freshIndex = i;
    }
    std::vector<std::pair<std::size_t, std::size_t>> unique;
    for (const auto& [hash, entry] : seen) {
        if (entry.oldCount == 1 && entry.freshCount == 1) {
            unique.emplace_back(entry.oldIndex, entry.freshIndex);
        }
    }
    std::sort(unique.begin(), unique.end());
    std::vector<Gap> gaps;
    std::size_t oldAt = all.oldBegin;
    std::size_t freshAt = all.freshBegin;
    for (const auto& [i, j] : longestAscending(unique)) {
        pairs.push_back({old[i], fresh[j]});
        gaps.push_back({oldAt, i, freshAt, j});
        oldAt = i + 1;
        freshAt = j + 1;
    }
    gaps.push_back({oldAt, all.oldEnd, freshAt, all.freshEnd});

    // 3. In each gap, again the ends, and then what can be made the other.
    for (Gap gap : gaps) {
        trim(gap);
        std::size_t i = gap.oldBegin;
        for (std::size_t j = gap.freshBegin; j < gap.freshEnd && i < gap.oldEnd; ++j) {
            std::size_t candidate = i;
            const std::size_t furthest = std::min(gap.oldEnd, i + kFurthestMatch);
            while (candidate < furthest && !alike(*old[candidate], *fresh[j]))
                ++candidate;
            if (candidate == furthest) continue;
            pairs.push_back({old[candidate], fresh[j]});
            i = candidate + 1;
        }
    }
    return pairs;
}

Node* SourceEdit::adopt(const Node& fresh) {
    Node* top = document_.newNode(fresh.type_);
    std::vector<std::pair<Node*, const Node*>> open{{top, &fresh}};
    while (!open.empty()) {
        const auto [copy, from] = open.back();
        open.pop_back();
        adoptInto(*copy, *from);
        for (const Node* child = from->first_; child; child = child->next_) {
            Node* childCopy = document_.newNode(child->type_);
            Gateway::append(*copy, *childCopy);
            if (child->island_ >= 0) childCopy->island_ = adoptIsland(*child, *copy);
            open.emplace_back(childCopy, child);
        }
    }
    return top;
}

void SourceEdit::adoptInto(Node& copy, const Node& fresh) {
    copy.foreign_ = fresh.foreign_;
    copy.sourced_ = fresh.sourced_;
    copy.raw_ = fresh.raw_;
    copy.clone_ = fresh.clone_;
    copy.cloned_ = fresh.cloned_;
    copy.lead_ = fresh.lead_;
    copy.start_ = fresh.start_;
    copy.endLead_ = fresh.endLead_;
    copy.end_ = fresh.end_;
    copy.extent_ = fresh.extent_;
    copy.name_ = fresh.name_;
    copy.data_ = fresh.data_;
    copy.attributes_ = fresh.attributes_;
    if (fresh.home_ >= 0) {
        const auto [entry, added] =
            islands_.try_emplace(fresh.home_, int(document_.impl_->islands.size()));
        if (added) {
            document_.impl_->islands.push_back(other_->impl_->islands[std::size_t(fresh.home_)]);
            document_.impl_->islands.back().parent = nullptr;
        }
        copy.home_ = entry->second;
    }
    if (unclosed_.contains(&fresh)) document_.impl_->unclosed.push_back(&copy);
}

int SourceEdit::adoptIsland(const Node& fresh, Node& parent) {
    std::vector<Island>& islands = document_.impl_->islands;
    const auto [entry, added] = islands_.try_emplace(fresh.island_, int(islands.size()));
    if (added) islands.push_back(other_->impl_->islands[std::size_t(fresh.island_)]);
    islands[std::size_t(entry->second)].parent = &parent;
    return entry->second;
}

void SourceEdit::replaceEverything(Node& fresh) {
    islands_.clear();
    pending_.clear();
    reload_ = true;
    Gateway gateway(document_, Bytes::Given);
    Node& root = *document_.root_;
    while (root.first_)
        gateway.remove(*root.first_);
    for (Node* child = fresh.first_; child; child = child->next_) {
        Node* copy = adopt(*child);
        if (child->island_ >= 0) {
            copy->island_ = adoptIsland(*child, root);
            --document_.impl_->islands[std::size_t(copy->island_)].structure;
        }
        gateway.insert(root, *copy, nullptr);
    }
    reconcilePieces(root, fresh);
}

}  // namespace pw::dom
