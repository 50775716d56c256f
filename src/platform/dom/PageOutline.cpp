#include "platform/dom/PageOutline.h"

#include <algorithm>

#include "platform/Text.h"
#include "platform/dom/HtmlTree.h"
#include "platform/dom/NestingScan.h"

namespace pw::dom {

namespace {

using Stretch = PageOutline::Stretch;

class Outliner {
  public:
    explicit Outliner(std::string_view page) : page_(page) {}

    PageOutline run(const GumboNode& document) {
        const GumboVector& children = document.v.document.children;
        for (unsigned i = 0; i < children.length; ++i) {
            const auto& child = *static_cast<const GumboNode*>(children.data[i]);
            if (child.type == GUMBO_NODE_ELEMENT) {
                html(child.v.element);
            } else {
                comment(child, bodySeen_ ? Place::BehindBody : Place::BeforeBody);
            }
        }
        std::ranges::sort(outline_.noframes, {}, [](const auto& n) { return n.whole.begin; });
        return std::move(outline_);
    }

  private:
    using Place = PageOutline::Place;

    std::optional<Stretch> stretch(const GumboStringPiece& piece) const {
        if (!piece.data || piece.length == 0 || piece.data < page_.data() ||
            piece.data + piece.length > page_.data() + page_.size())
            return std::nullopt;
        const auto begin = std::size_t(piece.data - page_.data());
        return Stretch{begin, begin + piece.length};
    }
    /** An element that was closed by something else has the tag of that. */
    std::optional<Stretch> endTag(const GumboElement& element, std::string_view name) const {
        const auto tag = stretch(element.original_end_tag);
        if (!tag || !StartsWithNoCase(page_.substr(tag->begin), "</" + std::string(name)))
            return std::nullopt;
        return tag;
    }

    void comment(const GumboNode& node, Place place) {
        if (node.type != GUMBO_NODE_COMMENT) return;
        const auto whole = stretch(node.v.text.original_text);
        if (!whole || !page_.substr(whole->begin).starts_with("<!--")) return;
        outline_.comments.push_back({*whole, place});
    }

    void html(const GumboElement& element) {
        if (const auto end = endTag(element, "html")) outline_.htmlEnd = end->begin;
        if (const auto start = stretch(element.original_tag)) {
            outline_.htmlStartEnd = start->end;
        } else if (const auto doctype = FindNoCase(page_.substr(0, 1024), "<!doctype");
                   doctype != page_.npos) {
            outline_.htmlStartEnd = std::min(page_.find('>', doctype), page_.size() - 1) + 1;
        }
        for (unsigned i = 0; i < element.children.length; ++i) {
            const auto& child = *static_cast<const GumboNode*>(element.children.data[i]);
            if (child.type != GUMBO_NODE_ELEMENT) {
                comment(child, bodySeen_ ? Place::BehindBody : Place::BeforeBody);
                continue;
            }
            const GumboElement& inner = child.v.element;
            if (inner.tag == GUMBO_TAG_HEAD) {
                head(inner);
            } else if (inner.tag == GUMBO_TAG_FRAMESET) {
                const auto start = stretch(inner.original_tag);
                const auto end = endTag(inner, "frameset");
                outline_.frameset.emplace();
                outline_.frameset->begin = start ? start->begin : 0;
                if (end) outline_.frameset->end = end->end;
                bodySeen_ = true;
                below(child, [&](const GumboNode& node) { noframes(node, false); });
            } else if (inner.tag == GUMBO_TAG_NOFRAMES) {
                noframes(child, false);
            } else {
                bodySeen_ = true;
                body(child);
            }
        }
    }

    void head(const GumboElement& element) {
        const auto add = [&](const std::optional<Stretch>& part) {
            if (part) outline_.head.push_back(*part);
        };
        add(stretch(element.original_tag));
        const auto end = endTag(element, "head");
        add(end);
        for (unsigned i = 0; i < element.children.length; ++i) {
            const auto& child = *static_cast<const GumboNode*>(element.children.data[i]);
            const auto place = stretchOf(child);
            const bool isBehind = end && place && place->begin >= end->end;
            if (child.type == GUMBO_NODE_ELEMENT && child.v.element.tag == GUMBO_TAG_NOFRAMES) {
                noframes(child, !isBehind);
                if (isBehind) continue;
            }
            comment(child, Place::BeforeBody);
            if (child.type != GUMBO_NODE_COMMENT) add(place);
        }
    }

    void body(const GumboNode& node) {
        below(node, [&](const GumboNode& child) {
            if (const auto place = stretchOf(child))
                outline_.bodyEnd = std::max(outline_.bodyEnd, place->end);
            comment(child, Place::InBody);
        });
    }

    std::optional<Stretch> stretchOf(const GumboNode& node) const {
        if (node.type != GUMBO_NODE_ELEMENT && node.type != GUMBO_NODE_TEMPLATE) {
            return node.type == GUMBO_NODE_WHITESPACE ? std::nullopt
                                                      : stretch(node.v.text.original_text);
        }
        auto whole = stretch(node.v.element.original_tag);
        const auto end = endTag(node.v.element, gumbo_normalized_tagname(node.v.element.tag));
        if (whole && end) whole->end = std::max(whole->end, end->end);
        return whole;
    }

    void noframes(const GumboNode& node, bool isInHead) {
        if (node.type != GUMBO_NODE_ELEMENT || node.v.element.tag != GUMBO_TAG_NOFRAMES) return;
        const auto start = stretch(node.v.element.original_tag);
        if (!start) return;
        const auto end = endTag(node.v.element, "noframes");
        const std::size_t behind = end ? end->end : page_.size();
        outline_.noframes.push_back(
            {{start->begin, behind}, {start->end, end ? end->begin : behind}, isInHead});
    }

    /** All nodes below, without recursion: pages nest deeply. */
    template <typename Visit>
    static void below(const GumboNode& top, Visit visit) {
        std::vector<const GumboNode*> due{&top};
        while (!due.empty()) {
            const GumboNode* node = due.back();
            due.pop_back();
            if (node != &top) visit(*node);
            if (node->type != GUMBO_NODE_ELEMENT && node->type != GUMBO_NODE_TEMPLATE) continue;
            const GumboVector& children = node->v.element.children;
            for (unsigned i = children.length; i-- > 0;)
                due.push_back(static_cast<const GumboNode*>(children.data[i]));
        }
    }

    std::string_view page_;
    PageOutline outline_;
    bool bodySeen_ = false;
};

}  // namespace

std::optional<PageOutline> outlineOf(std::string_view page) {
    if (page.empty() || !findExcess(page).empty()) return std::nullopt;
    HtmlTree tree;
    const GumboOutput* output = tree.parse(page);
    if (!output) return std::nullopt;
    return Outliner(page).run(*output->document);
}

}  // namespace pw::dom
