#include "project/PageInsertions.h"

#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include "platform/Text.h"
#include "platform/dom/TagScan.h"

namespace pw {

namespace {

/** The way down from the root, by places among siblings. Texts side by side are one when read. */
std::vector<std::size_t> PathTo(const dom::Node& node) {
    std::vector<std::size_t> path;
    for (const dom::Node* at = &node; at->parent(); at = at->parent()) {
        std::size_t place = 0;
        for (const dom::Node* each = at->previous(); each; each = each->previous())
            if (!each->isText()) ++place;
        path.insert(path.begin(), place);
    }
    return path;
}

const dom::Node* Follow(const dom::Node* node, const std::vector<std::size_t>& path) {
    for (std::size_t place : path) {
        node = node->firstChild();
        while (node && (node->isText() || place > 0)) {
            if (!node->isText()) --place;
            node = node->next();
        }
        if (!node) return nullptr;
    }
    return node;
}

bool AreAlike(const dom::Node& a, const dom::Node& b) {
    if (a.type() != b.type() || a.localName() != b.localName() || a.data() != b.data())
        return false;
    const auto sameAttribute = [](const dom::Attribute& x, const dom::Attribute& y) {
        return EqualsNoCase(x.name, y.name) && x.value == y.value;
    };
    if (!std::equal(a.attributes().begin(), a.attributes().end(), b.attributes().begin(),
                    b.attributes().end(), sameAttribute))
        return false;
    const auto first = a.children();
    const auto second = b.children();
    return std::equal(first.begin(), first.end(), second.begin(), second.end(),
                      [](const dom::Node* x, const dom::Node* y) { return AreAlike(*x, *y); });
}

bool AllReadBack(const dom::Document& document, const std::vector<const dom::Node*>& nodes) {
    const auto again = dom::Document::parseText(document.html(), document.encoding());
    return again && std::all_of(nodes.begin(), nodes.end(), [&](const dom::Node* node) {
               const dom::Node* read = Follow(again->root(), PathTo(*node));
               return read && AreAlike(*node, *read);
           });
}

/** How many elements of each tag. */
using Tags = std::map<std::string, int>;

Tags TagsIn(std::string_view markup) {
    Tags tags;
    dom::TagScan scan(markup, dom::TagsFrom::Markup);
    while (const auto tag = scan.next())
        ++tags[ToLower(tag->name())];
    return tags;
}

}  // namespace

bool CanHoldInsertions(const dom::Document& document) {
    return document.body() && document.body()->is("body") && document.head();
}

bool ReadsBack(const dom::Document& document, const dom::Node& node) {
    return AllReadBack(document, {&node});
}

bool AppendToBody(dom::Document& document, std::string_view html) {
    if (!CanHoldInsertions(document)) return false;
    dom::Node& body = *document.body();
    const dom::Node* last = body.lastChild();
    document.insertAdjacentHTML(body, "beforeEnd", html);
    std::vector<const dom::Node*> added;
    Tags missing = TagsIn(html);
    for (const dom::Node* node = last ? last->next() : body.firstChild(); node;
         node = node->next()) {
        if (!node->isText()) added.push_back(node);
        for (const dom::Node* each = node; each; each = each->following(node))
            if (each->isElement()) --missing[ToLower(each->localName())];
    }
    const bool hasAll = std::all_of(missing.begin(), missing.end(),
                                    [](const auto& tag) { return tag.second <= 0; });
    return hasAll && body.lastChild() != last && AllReadBack(document, added);
}

}  // namespace pw
