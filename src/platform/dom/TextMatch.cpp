#include "platform/dom/TextMatch.h"

#include <algorithm>
#include <unordered_map>

namespace pw::dom {

namespace {

/** Tags, and the lines of what stands between them. */
std::vector<std::string_view> tokensOf(std::string_view text) {
    std::vector<std::string_view> tokens;
    std::size_t begin = 0;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const bool starts = text[at] == '<';
        const std::size_t end = starts ? at : at + 1;
        if ((starts || text[at] == '>' || text[at] == '\n') && end > begin) {
            tokens.push_back(text.substr(begin, end - begin));
            begin = end;
        }
    }
    if (begin < text.size()) tokens.push_back(text.substr(begin));
    return tokens;
}

bool isInsideCharacter(std::string_view text, std::size_t at) {
    return at < text.size() && (text[at] & 0xC0) == 0x80;
}

class Matcher {
  public:
    Matcher(std::string_view before, std::string_view after) : before_(before), after_(after) {}

    std::vector<TextMatch> run() {
        const auto old = tokensOf(before_);
        const auto now = tokensOf(after_);
        std::size_t oldDone = 0;
        std::size_t nowDone = 0;
        for (const auto& [i, j] : anchors(old, now)) {
            // What stands between two anchors is little: a walk in order is enough.
            gap({old.data() + oldDone, i - oldDone}, {now.data() + nowDone, j - nowDone});
            equal(old[i].size());
            oldDone = i + 1;
            nowDone = j + 1;
        }
        gap({old.data() + oldDone, old.size() - oldDone},
            {now.data() + nowDone, now.size() - nowDone});
        return std::move(matches_);
    }

  private:
    struct Tokens {
        const std::string_view* first;
        std::size_t count;
    };
    using Pair = std::pair<std::size_t, std::size_t>;

    /** Tokens that stand once in each text, those of them that are in one order. */
    static std::vector<Pair> anchors(const std::vector<std::string_view>& old,
                                     const std::vector<std::string_view>& now) {
        struct Seen {
            std::size_t old = 0, now = 0, at = 0;
        };
        std::unordered_map<std::string_view, Seen> seen;
        for (std::size_t i = 0; i < old.size(); ++i) {
            Seen& token = seen[old[i]];
            ++token.old;
            token.at = i;
        }
        for (const auto token : now)
            if (const auto found = seen.find(token); found != seen.end()) ++found->second.now;
        std::vector<Pair> pairs;
        for (std::size_t j = 0; j < now.size(); ++j) {
            const auto found = seen.find(now[j]);
            if (found != seen.end() && found->second.old == 1 && found->second.now == 1)
                pairs.emplace_back(found->second.at, j);
        }
        return ascending(pairs);
    }

    /** The longest part of the pairs in which the first numbers ascend as the second do. */
    static std::vector<Pair> ascending(const std::vector<Pair>& pairs) {
        std::vector<std::size_t> ends;  // of the best part of each length
        std::vector<std::size_t> previous(pairs.size());
        for (std::size_t k = 0; k < pairs.size(); ++k) {
            const auto place = std::ranges::lower_bound(
                ends, pairs[k].first, {}, [&](std::size_t at) { return pairs[at].first; });
            previous[k] = place == ends.begin() ? k : *(place - 1);
            if (place == ends.end()) {
                ends.push_back(k);
            } else {
                *place = k;
            }
        }
        std::vector<Pair> part;
        for (std::size_t k = ends.empty() ? 0 : ends.back(); part.size() < ends.size();
             k = previous[k])
            part.push_back(pairs[k]);
        std::ranges::reverse(part);
        return part;
    }

    void gap(Tokens old, Tokens now) {
        std::size_t at = 0;
        std::size_t differing = 0;  // tokens of `now` that have no equal yet
        const auto size = [](Tokens tokens, std::size_t from, std::size_t to) {
            std::size_t bytes = 0;
            for (; from < to; ++from)
                bytes += tokens.first[from].size();
            return bytes;
        };
        for (std::size_t j = 0; j < now.count; ++j) {
            std::size_t i = at;
            const std::size_t farthest = std::min(old.count, at + kFarthest);
            while (i < farthest && old.first[i] != now.first[j])
                ++i;
            if (i == farthest) continue;
            differ(size(old, at, i), size(now, differing, j));
            equal(now.first[j].size());
            at = i + 1;
            differing = j + 1;
        }
        differ(size(old, at, old.count), size(now, differing, now.count));
    }

    void equal(std::size_t length) { add(length, length, length); }

    /** Both ends of what differs can be equal all the same. */
    void differ(std::size_t oldLength, std::size_t nowLength) {
        const auto a = before_.substr(from_, oldLength);
        const auto b = after_.substr(to_, nowLength);
        const std::size_t most = std::min(a.size(), b.size());
        std::size_t front = 0;
        while (front < most && a[front] == b[front])
            ++front;
        while (front > 0 && (isInsideCharacter(a, front) || isInsideCharacter(b, front)))
            --front;
        std::size_t back = 0;
        while (back < most - front && a[a.size() - 1 - back] == b[b.size() - 1 - back])
            ++back;
        while (back > 0 && (isInsideCharacter(a, a.size() - back)))
            --back;
        add(front, a.size() - back, b.size() - back);
        add(back, back, back);
    }

    /** An equal stretch; then both go on by so much. */
    void add(std::size_t length, std::size_t oldLength, std::size_t nowLength) {
        if (length > 0) {
            TextMatch* last = matches_.empty() ? nullptr : &matches_.back();
            if (last && last->from + last->length == from_ && last->to + last->length == to_) {
                last->length += length;
            } else {
                matches_.push_back({from_, to_, length});
            }
        }
        from_ += oldLength;
        to_ += nowLength;
    }

    static constexpr std::size_t kFarthest = 200;

    std::string_view before_;
    std::string_view after_;
    std::size_t from_ = 0;
    std::size_t to_ = 0;
    std::vector<TextMatch> matches_;
};

}  // namespace

std::vector<TextMatch> matchTexts(std::string_view before, std::string_view after) {
    return Matcher(before, after).run();
}

}  // namespace pw::dom
