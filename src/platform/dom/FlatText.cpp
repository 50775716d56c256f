#include "platform/dom/FlatText.h"

#include <algorithm>

#include "platform/dom/Tags.h"

namespace pw::dom {

namespace {

bool isBlank(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f';
}

template <std::size_t N>
bool isOneOf(const Node& node, const char* const (&tags)[N]) {
    return std::any_of(std::begin(tags), std::end(tags),
                       [&](const char* tag) { return node.is(tag); });
}

bool isHidden(const Node& node) {
    static constexpr const char* kHidden[] = {
        "head",   "script", "style",  "title",    "template", "noscript", "noframes", "noembed",
        "iframe", "object", "applet", "textarea", "audio",    "video",    "datalist"};
    return isOneOf(node, kHidden);
}

bool keepsBlanks(const Node& node) {
    static constexpr const char* kKeeping[] = {"pre", "listing", "xmp", "plaintext", "textarea"};
    return isOneOf(node, kKeeping);
}

class Flattener {
  public:
    Flattener(const Node& top, Boundary from, Boundary to) : top_(top), from_(from), to_(to) {}

    FlatText run() {
        begun_ = from_.node == nullptr;
        for (const Node* at = &top_; at; at = at->parent())
            keeping_ |= keepsBlanks(*at);
        const Node* node = top_.firstChild();
        while (node && !done_) {
            const bool hidden = node->isElement() && isHidden(*node);
            enter(*node);
            if (done_) break;
            if (node->firstChild() && !hidden) {
                node = node->firstChild();
                continue;
            }
            if (hidden && contains(*node, from_)) begun_ = true;
            if (hidden && contains(*node, to_)) break;
            for (;;) {
                leave(*node);
                if (node->next()) {
                    node = node->next();
                    break;
                }
                node = node->parent();
                if (node == &top_ || !node) {
                    node = nullptr;
                    break;
                }
            }
        }
        for (; lineBreaks_ > 1; --lineBreaks_)
            flat_.text += "\r\n";
        return std::move(flat_);
    }

  private:
    static bool contains(const Node& node, const Boundary& boundary) {
        return boundary.node && node.contains(*boundary.node);
    }

    void enter(const Node& node) {
        if (!node.isText()) {
            if (to_.node == &node) done_ = true;
            if (from_.node == &node) begun_ = true;
        }
        if (done_) return;
        if (node.isText()) {
            text(node);
        } else if (node.isElement() && begun_) {
            if (node.is("br")) {
                ++lineBreaks_;
                blank_ = false;
            } else {
                block(node);
            }
        }
        if (keepsBlanks(node)) keeping_ = true;
    }

    void leave(const Node& node) {
        if (!node.isElement()) return;
        if (keepsBlanks(node)) {
            keeping_ = false;
            for (const Node* at = node.parent(); at; at = at->parent())
                keeping_ |= keepsBlanks(*at);
        }
        if (!begun_) return;
        if ((node.is("td") || node.is("th")) && node.next()) {
            tab_ = true;
            blank_ = false;
            blockBreaks_ = 0;
        } else {
            block(node);
        }
    }

    void block(const Node& node) {
        if (!isBlockTag(node.localName()) || node.is("td") || node.is("th")) return;
        blank_ = false;
        tab_ = false;
        // A line break at the very end of a block shows no line of its own.
        if (lineBreaks_ > 0 && blockBreaks_ == 0) --lineBreaks_;
        blockBreaks_ = std::max(blockBreaks_, node.is("p") ? 2 : 1);
    }

    void text(const Node& node) {
        std::size_t begin = 0;
        std::size_t end = node.data().size();
        if (from_.node == &node) {
            begin = std::min(from_.offset, end);
            begun_ = true;
        }
        if (to_.node == &node) {
            end = std::min(to_.offset, end);
            done_ = true;
        }
        if (!begun_) return;
        const std::string& data = node.data();
        for (std::size_t i = begin; i < end; ++i) {
            const char c = data[i];
            if (keeping_ && c == '\n') {
                ++lineBreaks_;
                blank_ = false;
            } else if (!keeping_ && isBlank(c)) {
                blank_ = blank_ || !atLineStart();
                if (blank_ && !blankNode_) {
                    blankNode_ = &node;
                    blankOffset_ = i;
                }
            } else {
                add(node, i, c);
            }
        }
    }

    bool atLineStart() const {
        return flat_.text.empty() || flat_.text.back() == '\n' || lineBreaks_ > 0 ||
               blockBreaks_ > 0 || tab_;
    }

    void add(const Node& node, std::size_t offset, char c) {
        if (blockBreaks_ > 0 && flat_.text.empty()) blockBreaks_ = 0;
        for (; lineBreaks_ > 0; --lineBreaks_)
            flat_.text += "\r\n";
        for (; blockBreaks_ > 0; --blockBreaks_)
            flat_.text += "\r\n";
        if (tab_) flat_.text += '\t';
        tab_ = false;
        if (blank_) {
            record(*blankNode_, blankOffset_);
            flat_.text += ' ';
        }
        blank_ = false;
        blankNode_ = nullptr;
        record(node, offset);
        flat_.text += c;
    }

    void record(const Node& node, std::size_t offset) {
        if (!flat_.runs.empty()) {
            FlatText::Run& last = flat_.runs.back();
            if (last.node == &node && last.offset + last.length == offset &&
                last.flat + last.length == flat_.text.size()) {
                ++last.length;
                return;
            }
        }
        flat_.runs.push_back({flat_.text.size(), const_cast<Node*>(&node), offset, 1});
    }

    const Node& top_;
    Boundary from_;
    Boundary to_;
    FlatText flat_;
    bool begun_ = false;
    bool done_ = false;
    bool keeping_ = false;
    bool blank_ = false;
    const Node* blankNode_ = nullptr;
    std::size_t blankOffset_ = 0;
    bool tab_ = false;
    int lineBreaks_ = 0;   ///< line breaks that no text has followed yet
    int blockBreaks_ = 0;  ///< lines that the next text must begin below
};

}  // namespace

Boundary boundaryOf(const Position& position) {
    const Node* node = position.node;
    if (!node) return {};
    if (!node->isElement() && node->type() != NodeType::Document) return {node, position.offset};
    const Node* child = node->firstChild();
    for (std::size_t i = 0; child && i < position.offset; ++i)
        child = child->next();
    return {child ? child : node->followingSkippingChildren(), 0};
}

Position FlatText::positionAt(std::size_t flat) const {
    const auto after =
        std::upper_bound(runs.begin(), runs.end(), flat,
                         [](std::size_t at, const Run& run) { return at < run.flat; });
    if (after == runs.begin()) {
        return runs.empty() ? Position{} : Position{runs.front().node, runs.front().offset};
    }
    const Run& run = *std::prev(after);
    if (flat < run.flat + run.length) return {run.node, run.offset + (flat - run.flat)};
    // Between two runs stand line ends that no node holds.
    if (after != runs.end()) return {after->node, after->offset};
    return {run.node, run.offset + run.length};
}

Position FlatText::endAt(std::size_t flat) const {
    if (flat == 0) return positionAt(0);
    Position position = positionAt(flat - 1);
    if (position.node) ++position.offset;
    return position;
}

FlatText flatten(const Node& top) {
    return Flattener(top, {}, {}).run();
}

FlatText flatten(const Node& top, const Boundary& from, const Boundary& to) {
    return Flattener(top, from, to).run();
}

}  // namespace pw::dom
