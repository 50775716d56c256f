#include "platform/editor/MarkupSafety.h"

#include <algorithm>
#include <string>

#include "platform/Text.h"

namespace pw {

namespace {

constexpr std::string_view kDroppedElements[] = {
    "script", "noscript", "style", "link", "meta", "base", "title", "template",
    // They can set the address of a link behind its back.
    "set", "animate", "animatemotion", "animatetransform"};
constexpr std::string_view kAddresses[] = {
    "href",       "src",  "action",   "formaction", "data",     "lowsrc", "dynsrc",  "background",
    "xlink:href", "cite", "codebase", "poster",     "longdesc", "usemap", "manifest"};
constexpr std::string_view kRunningSchemes[] = {
    "javascript:", "vbscript:", "livescript:", "data:text/html", "data:image/svg"};

template <std::size_t Size>
bool IsOneOf(std::string_view name, const std::string_view (&list)[Size]) {
    return std::any_of(std::begin(list), std::end(list),
                       [&](std::string_view item) { return EqualsNoCase(item, name); });
}

}  // namespace

// Browsers skip blanks and control characters in front of a scheme and line ends within it.
bool RunsScript(std::string_view address) {
    constexpr std::size_t kLongest = 16;  // of the schemes
    std::string bare;
    for (std::size_t i = 0; i < address.size() && bare.size() < kLongest; ++i)
        if (static_cast<unsigned char>(address[i]) > ' ') bare += address[i];
    return std::any_of(std::begin(kRunningSchemes), std::end(kRunningSchemes),
                       [&](std::string_view scheme) { return StartsWithNoCase(bare, scheme); });
}

bool IsUnsafe(const dom::Node& node) {
    return node.isComment() || (node.isElement() && IsOneOf(node.localName(), kDroppedElements));
}

bool IsUnsafe(const dom::Attribute& attribute) {
    return StartsWithNoCase(attribute.name, "on") || EqualsNoCase(attribute.name, "srcdoc") ||
           (IsOneOf(attribute.name, kAddresses) && RunsScript(attribute.value));
}

}  // namespace pw
