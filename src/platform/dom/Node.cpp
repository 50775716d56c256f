#include "platform/dom/Node.h"

#include "platform/Text.h"

namespace pw::dom {

namespace {

/** What an attribute that is not written answers.. */
struct AttributeDefault {
    std::string_view tag;
    std::string_view attribute;
    std::string_view value;
};
constexpr AttributeDefault kDefaults[] = {
    {"input", "type", "text"}, {"button", "type", "submit"}, {"form", "method", "get"},
    {"td", "colspan", "1"},    {"td", "rowspan", "1"},       {"th", "colspan", "1"},
    {"th", "rowspan", "1"},    {"col", "span", "1"},         {"colgroup", "span", "1"},
};

/** Attributes that are true by being there. */
constexpr std::string_view kBooleans[] = {
    "async",      "autofocus", "checked",  "compact",  "declare",  "defer",
    "disabled",   "ismap",     "multiple", "nohref",   "noresize", "noshade",
    "novalidate", "nowrap",    "readonly", "required", "reversed", "selected",
};

bool equalsAsciiNoCase(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i) {
        const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? char(c + 32) : c; };
        if (lower(a[i]) != lower(b[i])) return false;
    }
    return true;
}

}  // namespace

std::string Node::tagName() const {
    if (isComment()) return "!";
    return ToUpper(name_);
}

bool Node::is(std::string_view tag) const {
    if (isComment()) return tag == "!";
    return isElement() && equalsAsciiNoCase(name_, tag);
}

std::vector<Node*> Node::children() const {
    std::vector<Node*> list;
    for (Node* child = first_; child; child = child->next_)
        list.push_back(child);
    return list;
}

std::size_t Node::index() const {
    std::size_t count = 0;
    for (const Node* node = previous_; node; node = node->previous_)
        ++count;
    return count;
}

bool Node::contains(const Node& other) const {
    for (const Node* node = &other; node; node = node->parent_) {
        if (node == this) return true;
    }
    return false;
}

Node* Node::following(const Node* scope) const {
    if (first_) return first_;
    return followingSkippingChildren(scope);
}

Node* Node::followingSkippingChildren(const Node* scope) const {
    for (const Node* node = this; node && node != scope; node = node->parent_) {
        if (node->next_) return node->next_;
    }
    return nullptr;
}

const std::string* Node::attribute(std::string_view name) const {
    for (const Attribute& attribute : attributes_) {
        if (equalsAsciiNoCase(attribute.name, name)) return &attribute.value;
    }
    return nullptr;
}

bool Node::hasAttribute(std::string_view name) const {
    return attribute(name) != nullptr;
}

std::string Node::getAttribute(std::string_view name) const {
    const std::string* written = attribute(name);
    for (const std::string_view boolean : kBooleans) {
        if (equalsAsciiNoCase(boolean, name)) return written ? "true" : "";
    }
    if (written) return *written;
    for (const AttributeDefault& row : kDefaults) {
        if (equalsAsciiNoCase(row.attribute, name) && is(row.tag)) return std::string(row.value);
    }
    return {};
}

}  // namespace pw::dom
