#include "platform/editor/CleanMarkup.h"

#include <algorithm>
#include <vector>

#include "platform/Text.h"
#include "platform/dom/Document.h"

namespace pw {

namespace {

constexpr std::string_view kDroppedElements[] = {"script", "noscript", "style", "link",
                                                 "meta",   "base",     "title", "template"};
/** They can set the address of a link behind its back. */
constexpr std::string_view kAnimations[] = {"set", "animate", "animatemotion", "animatetransform"};
constexpr std::string_view kAddresses[] = {
    "href",       "src",  "action",   "formaction", "data",     "lowsrc", "dynsrc",  "background",
    "xlink:href", "cite", "codebase", "poster",     "longdesc", "usemap", "manifest"};
constexpr std::string_view kRunningSchemes[] = {
    "javascript:", "vbscript:", "livescript:", "data:text/html", "data:image/svg"};

template <std::size_t Size>
bool isOneOf(std::string_view name, const std::string_view (&list)[Size]) {
    return std::any_of(std::begin(list), std::end(list),
                       [&](std::string_view item) { return EqualsNoCase(item, name); });
}

// Browsers skip blanks and control characters in front of a scheme and line ends within it.
bool runsScript(std::string_view address) {
    std::string bare;
    for (const char c : address)
        if (static_cast<unsigned char>(c) > ' ') bare += c;
    return std::any_of(std::begin(kRunningSchemes), std::end(kRunningSchemes),
                       [&](std::string_view scheme) { return StartsWithNoCase(bare, scheme); });
}

bool isDropped(const dom::Node& node) {
    if (node.isComment()) return true;
    return node.isElement() &&
           (isOneOf(node.localName(), kDroppedElements) || isOneOf(node.localName(), kAnimations));
}

bool isDropped(const dom::Attribute& attribute) {
    return StartsWithNoCase(attribute.name, "on") || EqualsNoCase(attribute.name, "srcdoc") ||
           (isOneOf(attribute.name, kAddresses) && runsScript(attribute.value));
}

// The clipboard marks which part of its page was copied.
std::string_view copiedPart(std::string_view html) {
    constexpr std::string_view kStart = "<!--StartFragment-->";
    constexpr std::string_view kEnd = "<!--EndFragment-->";
    const std::size_t start = FindNoCase(html, kStart);
    if (start == std::string_view::npos) return html;
    const std::size_t end = FindLastNoCase(html, kEnd);
    if (end == std::string_view::npos || end < start) return html.substr(start + kStart.size());
    return html.substr(start + kStart.size(), end - start - kStart.size());
}

std::string Escaped(std::string_view text) {
    std::string result = ReplaceAll(text, "&", "&amp;");
    result = ReplaceAll(result, "<", "&lt;");
    return ReplaceAll(result, ">", "&gt;");
}

}  // namespace

std::string CleanMarkup(std::string_view html) {
    const auto page = dom::Document::parseText(MakeValidUtf8(copiedPart(html)));
    if (!page || !page->body()) return {};
    std::vector<dom::Node*> dropped;
    for (dom::Node* node : page->all()) {
        if (isDropped(*node)) {
            dropped.push_back(node);
            continue;
        }
        const std::vector<dom::Attribute> attributes = node->attributes();
        for (const dom::Attribute& attribute : attributes)
            if (isDropped(attribute)) page->setAttribute(*node, attribute.name, std::nullopt);
    }
    for (dom::Node* node : dropped)
        if (node->parent()) page->removeNode(*node);
    return page->innerHTML(*page->body());
}

std::string MarkupOfText(std::string_view text) {
    std::string lines = ReplaceAll(text, "\r\n", "\n");
    lines = ReplaceAll(lines, "\r", "\n");
    while (!lines.empty() && lines.back() == '\n')
        lines.pop_back();
    std::vector<std::string> paragraphs(1);
    for (const std::string& line : Split(lines, '\n')) {
        if (Trim(line).empty()) {
            if (!paragraphs.back().empty()) paragraphs.emplace_back();
            continue;
        }
        if (!paragraphs.back().empty()) paragraphs.back() += "<br>";
        paragraphs.back() += Escaped(line);
    }
    if (paragraphs.size() == 1) return paragraphs.front();
    std::string result;
    for (const std::string& paragraph : paragraphs)
        if (!paragraph.empty()) result += "<p>" + paragraph + "</p>";
    return result;
}

}  // namespace pw
