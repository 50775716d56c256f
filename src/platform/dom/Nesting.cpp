#include "platform/dom/Nesting.h"

#include <algorithm>
#include <array>
#include <initializer_list>
#include <string_view>
#include <unordered_set>

#include "platform/dom/Tags.h"

namespace pw::dom {

namespace {

using Names = std::vector<std::string_view>;

bool isAmong(const Node& node, std::initializer_list<std::string_view> names) {
    return node.isElement() && !node.isForeign() &&
           std::find(names.begin(), names.end(), node.localName()) != names.end();
}
bool isAmong(const Node& node, const Names& names) {
    return node.isElement() && !node.isForeign() && std::ranges::count(names, node.localName()) > 0;
}

bool isBlankText(const Node& node) {
    return node.isText() && node.data().find_first_not_of(" \t\r\n\f") == std::string::npos;
}

bool isHeading(const Node& node) {
    return isAmong(node, {"h1", "h2", "h3", "h4", "h5", "h6"});
}

/** Nothing outside of these is ended from inside. */
bool isScope(const Node& node) {
    return node.isForeign() || isAmong(node, {"applet", "caption", "html", "table", "td", "th",
                                              "marquee", "object", "template"});
}

/** An item is looked for through these, but through no other block. */
bool endsSearchForItem(const Node& node) {
    static constexpr std::array<std::string_view, 12> kMore = {
        "applet", "button", "iframe", "img",      "input",    "object",
        "script", "select", "style",  "template", "textarea", "title"};
    if (node.isForeign()) return true;
    if (isAmong(node, {"address", "div", "p"})) return false;
    return isBlockTag(node.localName()) || std::ranges::count(kMore, node.localName()) > 0;
}

// --- The rules ----------------------------------------------------------------------------------

/** An element that a start tag of these names ends, wherever in it the tag stands. */
struct Ended {
    Names starts;  ///< none: those that end a paragraph
    Names open;
    bool (*stops)(const Node&);
};

bool stopsAtScopeOrButton(const Node& node) {
    return isScope(node) || node.is("button");
}
bool stopsAtMarker(const Node& node) {
    return isAmong(node, {"applet", "caption", "td", "th", "marquee", "object", "template"});
}

const Ended kEnded[] = {
    {{}, {"p"}, stopsAtScopeOrButton},   {{"a"}, {"a"}, stopsAtMarker},
    {{"nobr"}, {"nobr"}, isScope},       {{"button"}, {"button"}, isScope},
    {{"li"}, {"li"}, endsSearchForItem}, {{"dt", "dd"}, {"dt", "dd"}, endsSearchForItem},
};

/** An element that a start tag of these names ends only when it stands directly in it. */
bool isEndedAsParent(const Node& node, const Node& parent) {
    if (isHeading(node)) return isHeading(parent);
    if (node.is("option")) return parent.is("option");
    return node.is("optgroup") && isAmong(parent, {"option", "optgroup"});
}

bool endsParagraph(const Document& document, const Node& node) {
    return startEnds("p", node.localName()) || (node.is("table") && !document.quirks());
}

struct TablePart {
    std::string_view tag;
    Names homes;  ///< what it stands in
};
const TablePart kTableParts[] = {
    {"caption", {"table"}},
    {"colgroup", {"table"}},
    {"col", {"colgroup"}},
    {"tbody", {"table"}},
    {"thead", {"table"}},
    {"tfoot", {"table"}},
    {"tr", {"tbody", "thead", "tfoot"}},
    {"td", {"tr"}},
    {"th", {"tr"}},
};

/** None for what is no part of a table. */
const TablePart* tablePart(const Node& node) {
    if (!node.isElement() || node.isForeign()) return nullptr;
    const auto found = std::ranges::find(kTableParts, node.localName(), &TablePart::tag);
    return found == std::end(kTableParts) ? nullptr : &*found;
}

/** Holds parts of a table alone. */
bool holdsTableParts(const Node& node) {
    return isAmong(node, {"table", "tbody", "thead", "tfoot", "tr", "colgroup"});
}

bool mayStandAmongTableParts(const Node& node) {
    return node.isComment() || isBlankText(node) ||
           isAmong(node, {"script", "style", "template"}) ||
           (node.is("form") && !node.firstChild()) ||
           (node.is("input") && node.getAttribute("type") == "hidden");
}

class Mender {
  public:
    explicit Mender(Document& document) : document_(document) {}

    void mend(Node& node) {
        // Each turn takes the node out of one element at least.
        for (int turns = 0; turns < 1000 && document_.isConnected(&node); ++turns)
            if (!mendOnce(node)) return;
    }

  private:
    bool mendOnce(Node& node) {
        Node* parent = node.parentElement();
        if (!parent || node.isForeign() || parent->isForeign()) return false;
        if (holdsRawText(*parent) || isAmong(*parent, {"html", "head"})) return false;
        if (holdsTableParts(*parent)) return mendAmongTableParts(node, *parent);
        if (!node.isElement()) return false;
        if (tablePart(node)) return unwrap(node);
        if (isAmong(node, {"html", "head", "body", "frame", "frameset"})) return unwrap(node);
        if (isAmong(*parent, {"select", "option", "optgroup"}) && isInSelect(*parent)) {
            if (!isAmong(node, {"option", "optgroup", "script", "template"})) return unwrap(node);
        }
        if (node.is("form") && hasFormAround(node)) return unwrap(node);
        if (isEndedAsParent(node, *parent)) return lift(node, *parent);
        Node* ended = endedBy(node);
        return ended && lift(node, *ended);
    }

    bool mendAmongTableParts(Node& node, Node& parent) {
        if (const TablePart* part = tablePart(node)) {
            if (isAmong(parent, part->homes)) return false;
            // The parser makes what is missing in between; it stands in no text.
            if (isAmong(node, {"td", "th"})) return wrap(node, parent.is("table") ? "tbody" : "tr");
            if (node.is("tr") && parent.is("table")) return wrap(node, "tbody");
            if (node.is("col") && parent.is("table")) return wrap(node, "colgroup");
            return lift(node, parent);
        }
        if (mayStandAmongTableParts(node)) return false;
        Node* table = &parent;
        while (table->parentElement() && !table->is("table"))
            table = table->parentElement();
        if (!table->is("table") || !table->parent()) return false;
        document_.moveNode(*table->parent(), node, table);
        return true;
    }

    static bool isInSelect(const Node& node) {
        for (const Node* at = &node; at; at = at->parentElement())
            if (at->is("select")) return true;
        return false;
    }

    static bool hasFormAround(const Node& node) {
        for (const Node* at = node.parentElement(); at; at = at->parentElement())
            if (at->is("form")) return true;
        return false;
    }

    Node* endedBy(const Node& node) const {
        for (const Ended& row : kEnded) {
            const bool starts =
                row.starts.size() == 0 ? endsParagraph(document_, node) : isAmong(node, row.starts);
            if (!starts) continue;
            for (Node* at = node.parentElement(); at; at = at->parentElement()) {
                if (isAmong(*at, row.open)) return at;
                if (row.stops(*at)) break;
            }
        }
        return nullptr;
    }

    // --- Mending --------------------------------------------------------------------------------

    /** Another of its kind, without its name: that may be given once. */
    Node& copyOf(const Node& node) {
        Node* copy = document_.createElement(node.localName());
        for (const Attribute& attribute : node.attributes())
            if (attribute.name != "id" && attribute.name != "name")
                document_.setAttribute(*copy, attribute.name, attribute.value);
        return *copy;
    }

    bool wrap(Node& node, std::string_view tag) {
        Node* parent = node.parent();
        Node* around = node.previous();
        while (around && isBlankText(*around))
            around = around->previous();
        // What the one in front was put into holds this one as well.
        if (!around || !around->is(tag)) {
            around = document_.createElement(tag);
            document_.insertNode(*parent, *around, &node);
        }
        document_.moveNode(*around, node, nullptr);
        return true;
    }

    bool unwrap(Node& node) {
        while (Node* child = node.firstChild())
            document_.moveNode(*node.parent(), *child, &node);
        document_.removeNode(node);
        return true;
    }

    static bool isBlank(const Node* from, const Node* to) {
        for (; from != to; from = from->next())
            if (!isBlankText(*from)) return false;
        return true;
    }

    /** Takes the node out of `top`, which is split around it; the formatting in between stays
     * around each of the parts. */
    bool lift(Node& node, Node& top) {
        Node* part = &node;
        for (;;) {
            Node& parent = *part->parent();
            Node& above = *parent.parent();
            const bool isTop = &parent == &top;
            const bool isAlone =
                isBlank(parent.firstChild(), part) && isBlank(part->next(), nullptr);
            if (isTop && isAlone) inherit(*part, parent);
            if (!isBlank(part->next(), nullptr)) {
                Node& behind = copyOf(parent);
                document_.insertNode(above, behind, parent.next());
                while (Node* child = part->next())
                    document_.moveNode(behind, *child, nullptr);
            }
            if (isTop) {
                document_.moveNode(above, *part, parent.next());
            } else {
                Node& around = copyOf(parent);
                document_.insertNode(above, around, parent.next());
                document_.moveNode(around, *part, nullptr);
                part = &around;
            }
            if (isAlone) document_.removeNode(parent);
            if (isTop) return true;
        }
    }

    /** What a paragraph says of itself goes on for the block that takes its place. */
    void inherit(Node& node, const Node& from) {
        for (const char* name : {"id", "class", "style", "dir", "lang"}) {
            const std::string* value = from.attribute(name);
            if (value && !node.attribute(name)) document_.setAttribute(node, name, *value);
        }
        const std::string* align = from.attribute("align");
        if (align && !node.attribute("style") && !node.attribute("align"))
            document_.setAttribute(node, "style", "text-align: " + *align);
    }

    Document& document_;
};

/** What was moved took the place in it along. */
Position kept(const Document& document, const Position& before, const Position& after) {
    if (!document.isConnected(before.node) || before.node == after.node) return after;
    const bool isElement = before.node->isElement();
    const auto most = isElement ? before.node->children().size() : before.node->data().size();
    return {before.node, std::min(before.offset, most)};
}

}  // namespace

void mendNesting(Document& document, const std::vector<Node*>& placed) {
    if (placed.empty()) return;
    const std::unordered_set<const Node*> tops(placed.begin(), placed.end());
    const auto isBelowAnother = [&](const Node* node) {
        for (node = node->parent(); node; node = node->parent())
            if (tops.contains(node)) return true;
        return false;
    };
    std::vector<Node*> nodes;
    for (Node* top : placed) {
        if (!document.isConnected(top) || isBelowAnother(top)) continue;
        for (Node* node = top; node; node = node->following(top))
            nodes.push_back(node);
    }
    const Selection before = document.selection();
    const auto revision = document.revision();
    const Document::Step step(document);
    Mender mender(document);
    for (Node* node : nodes)
        mender.mend(*node);
    if (document.revision() == revision || before.type == SelectionType::None) return;
    Selection after = document.selection();
    after.type = before.type;
    after.control = document.isConnected(before.control) ? before.control : nullptr;
    after.anchor = kept(document, before.anchor, after.anchor);
    after.focus = kept(document, before.focus, after.focus);
    // Also told where it is the same: the view has lost it with the nodes that were moved.
    document.setSelection({});
    document.setSelection(after);
}

}  // namespace pw::dom
