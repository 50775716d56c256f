#include "project/LinkAttributes.h"

#include "platform/Text.h"
#include "project/References.h"

namespace pw {

namespace {

struct LinkAttribute {
    std::string_view tag;
    std::string_view name;
};
constexpr LinkAttribute kLinkAttributes[] = {
    {"a", "href"},          {"area", "href"},   {"link", "href"},    {"frame", "src"},
    {"iframe", "src"},      {"form", "action"}, {"img", "longdesc"}, {"q", "cite"},
    {"blockquote", "cite"}, {"ins", "cite"},    {"del", "cite"},     {"object", "data"},
    {"embed", "src"},
};

/** Place and length of the address in the content of a refresh, such as "5; url=next.html". */
bool FindRefreshAddress(const std::string& content, std::size_t& at, std::size_t& length) {
    const auto mark = FindNoCase(content, "url=");
    if (mark == std::string::npos) return false;
    at = content.find_first_not_of(" \t'\"", mark + 4);
    if (at == std::string::npos) return false;
    const auto end = content.find_last_not_of(" \t'\"");
    length = end < at ? 0 : end - at + 1;
    return length > 0;
}

}  // namespace

void RewriteLinkAttributes(
    dom::Document& document,
    const std::function<std::optional<std::string>(const std::string&)>& rewrite) {
    const dom::Document::Step step(document);
    for (dom::Node* node = document.root(); node; node = node->following()) {
        if (!node->isElement()) continue;
        for (const auto& link : kLinkAttributes) {
            if (link.tag != node->localName()) continue;
            const std::string* value = node->attribute(link.name);
            if (!value || !IsLocalReference(*value)) continue;
            const auto rewritten = rewrite(*value);
            if (rewritten && *rewritten != *value)
                document.setAttribute(*node, link.name, *rewritten);
        }
        if (!node->is("meta") || !EqualsNoCase(node->getAttribute("http-equiv"), "refresh"))
            continue;
        std::string content = node->getAttribute("content");
        std::size_t at = 0;
        std::size_t length = 0;
        if (!FindRefreshAddress(content, at, length)) continue;
        const std::string address = content.substr(at, length);
        const auto rewritten = IsLocalReference(address) ? rewrite(address) : std::nullopt;
        if (rewritten && *rewritten != address)
            document.setAttribute(*node, "content", content.replace(at, length, *rewritten));
    }
}

}  // namespace pw
