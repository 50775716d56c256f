#include "project/LinkAttributes.h"

#include "platform/Text.h"
#include "platform/dom/TagScan.h"
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

std::string_view LinkAttributeOf(std::string_view tag) {
    for (const auto& link : kLinkAttributes)
        if (link.tag.size() == tag.size() && EqualsNoCase(link.tag, tag)) return link.name;
    return {};
}

void ForEachLink(std::string_view html, const std::function<void(const std::string&)>& visit) {
    dom::TagScan scan(html, dom::TagsFrom::Markup);
    while (const auto tag = scan.next()) {
        if (const auto name = LinkAttributeOf(tag->name()); !name.empty()) {
            if (const auto value = tag->attribute(name)) visit(*value);
        } else if (tag->is("meta") &&
                   EqualsNoCase(tag->attribute("http-equiv").value_or(""), "refresh")) {
            const std::string content = tag->attribute("content").value_or("");
            std::size_t at = 0;
            std::size_t length = 0;
            if (FindRefreshAddress(content, at, length)) visit(content.substr(at, length));
        }
    }
}

void RewriteLinkAttributes(
    dom::Document& document,
    const std::function<std::optional<std::string>(const std::string&)>& rewrite,
    bool (*skip)(const dom::Node&)) {
    const dom::Document::Step step(document);
    for (dom::Node* node = document.root(); node; node = node->following()) {
        if (!node->isElement() || (skip && skip(*node))) continue;
        const std::string_view name = LinkAttributeOf(node->localName());
        const std::string* value = name.empty() ? nullptr : node->attribute(name);
        if (value && IsLocalReference(*value)) {
            const auto rewritten = rewrite(*value);
            if (rewritten && *rewritten != *value) document.setAttribute(*node, name, *rewritten);
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
