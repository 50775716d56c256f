#include "platform/editor/PlainCopy.h"

#include <algorithm>
#include <iterator>

#include "platform/Text.h"
#include "platform/editor/MarkupSafety.h"

namespace pw {

namespace {

constexpr std::string_view kKeptAttributes[] = {
    "abbr",        "action",  "align",    "alt",         "bgcolor", "border",      "cellpadding",
    "cellspacing", "checked", "cite",     "clear",       "cols",    "colspan",     "controls",
    "coords",      "data",    "datetime", "disabled",    "for",     "frameborder", "height",
    "href",        "hspace",  "ismap",    "label",       "loop",    "maxlength",   "method",
    "multiple",    "name",    "noshade",  "placeholder", "poster",  "rel",         "rows",
    "rowspan",     "scope",   "selected", "shape",       "size",    "span",        "src",
    "start",       "target",  "title",    "type",        "usemap",  "valign",      "value",
    "vspace",      "width"};

bool IsKept(const std::string& name, const std::string& value,
            const std::unordered_set<std::string>& targets) {
    if (name == "id") return targets.contains(value);
    if (name == "dir") return EqualsNoCase(value, "rtl");
    return std::find(std::begin(kKeptAttributes), std::end(kKeptAttributes), name) !=
           std::end(kKeptAttributes);
}

}  // namespace

Piece PlainCopy(const dom::Node& node, const std::unordered_set<std::string>& targets) {
    Piece piece = Piece::Element(node.localName());
    for (const dom::Attribute& attribute : node.attributes()) {
        if (IsUnsafe(attribute)) continue;
        const std::string name = ToLower(attribute.name);
        if (node.isForeign()) {
            piece.attributes.push_back(attribute);
        } else if (IsKept(name, attribute.value, targets)) {
            piece.attributes.push_back({name, attribute.value});
        }
    }
    return piece;
}

}  // namespace pw
