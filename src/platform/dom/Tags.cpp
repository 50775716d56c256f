#include "platform/dom/Tags.h"

#include <algorithm>
#include <array>

#include "platform/dom/Node.h"

namespace pw::dom {

namespace {

template <std::size_t N>
bool among(std::string_view name, const std::array<std::string_view, N>& sorted) {
    return std::binary_search(sorted.begin(), sorted.end(), name);
}

constexpr auto kVoid = std::to_array<std::string_view>(
    {"area",  "base", "basefont", "bgsound", "br",   "col",  "command", "embed",  "frame", "hr",
     "image", "img",  "input",    "keygen",  "link", "meta", "param",   "source", "track", "wbr"});
constexpr auto kRawText = std::to_array<std::string_view>(
    {"iframe", "noembed", "noframes", "plaintext", "script", "style", "xmp"});
constexpr auto kFormatting =
    std::to_array<std::string_view>({"a", "b", "big", "code", "em", "font", "i", "nobr", "s",
                                     "small", "strike", "strong", "tt", "u"});
constexpr auto kBlock = std::to_array<std::string_view>(
    {"address",  "article", "aside",  "blockquote", "body", "caption", "center",   "dd",
     "details",  "dialog",  "dir",    "div",        "dl",   "dt",      "fieldset", "figcaption",
     "figure",   "footer",  "form",   "frameset",   "h1",   "h2",      "h3",       "h4",
     "h5",       "h6",      "header", "hgroup",     "hr",   "html",    "isindex",  "legend",
     "li",       "listing", "main",   "marquee",    "menu", "nav",     "noframes", "ol",
     "optgroup", "option",  "p",      "plaintext",  "pre",  "search",  "section",  "summary",
     "table",    "tbody",   "td",     "tfoot",      "th",   "thead",   "tr",       "ul",
     "xmp"});
/** Start tags that end an open paragraph. */
constexpr auto kEndsParagraph = std::to_array<std::string_view>(
    {"address",   "article", "aside",   "blockquote", "center",     "details", "dir",    "div",
     "dl",        "dd",      "dt",      "fieldset",   "figcaption", "figure",  "footer", "form",
     "h1",        "h2",      "h3",      "h4",         "h5",         "h6",      "header", "hgroup",
     "hr",        "li",      "listing", "main",       "menu",       "nav",     "ol",     "p",
     "plaintext", "pre",     "section", "summary",    "ul",         "xmp"});

struct Ends {
    std::string_view open;
    std::string_view next;
};
constexpr auto kEnds = std::to_array<Ends>({
    {"li", "li"},
    {"dt", "dt"},
    {"dt", "dd"},
    {"dd", "dt"},
    {"dd", "dd"},
    {"td", "td"},
    {"td", "th"},
    {"th", "td"},
    {"th", "th"},
    {"tr", "tr"},
    {"option", "option"},
    {"option", "optgroup"},
    {"optgroup", "optgroup"},
    {"thead", "tbody"},
    {"thead", "tfoot"},
    {"tbody", "tbody"},
    {"tbody", "tfoot"},
    {"tbody", "thead"},
    {"tfoot", "tbody"},
    {"tfoot", "thead"},
    {"colgroup", "colgroup"},
    {"colgroup", "thead"},
    {"colgroup", "tbody"},
    {"colgroup", "tr"},
    {"colgroup", "tfoot"},
    {"caption", "colgroup"},
    {"caption", "thead"},
    {"caption", "tbody"},
    {"caption", "tr"},
    {"caption", "tfoot"},
    {"rp", "rt"},
    {"rt", "rp"},
    {"rp", "rp"},
    {"rt", "rt"},
    {"head", "body"},
    {"head", "frameset"},
});

}  // namespace

bool isVoidTag(std::string_view name) {
    return among(name, kVoid);
}
bool isRawTextTag(std::string_view name) {
    return among(name, kRawText);
}
bool isEscapableRawTextTag(std::string_view name) {
    return name == "title" || name == "textarea";
}
bool isFormattingTag(std::string_view name) {
    return among(name, kFormatting);
}
bool isBlockTag(std::string_view name) {
    return among(name, kBlock);
}

bool hasOptionalEnd(std::string_view name) {
    return name == "p" || name == "html" || name == "body" ||
           std::any_of(kEnds.begin(), kEnds.end(),
                       [&](const Ends& row) { return row.open == name; });
}

bool startEnds(std::string_view open, std::string_view next) {
    if (open == "p") {
        return std::find(kEndsParagraph.begin(), kEndsParagraph.end(), next) !=
               kEndsParagraph.end();
    }
    return std::any_of(kEnds.begin(), kEnds.end(),
                       [&](const Ends& row) { return row.open == open && row.next == next; });
}

bool isVoid(const Node& node) {
    return node.isElement() && !node.isForeign() && isVoidTag(node.localName());
}

bool dropsFirstLineEnd(const Node& node) {
    return node.is("pre") || node.is("textarea") || node.is("listing");
}

bool holdsRawText(const Node& node) {
    return node.isElement() && !node.isForeign() && isRawTextTag(node.localName());
}

}  // namespace pw::dom
