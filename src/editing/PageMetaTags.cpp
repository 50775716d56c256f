#include "editing/PageMetaTags.h"

#include <algorithm>

#include "platform/Text.h"

namespace pw {

namespace {

const char* NameAttribute(MetaKind kind) {
    return kind == MetaKind::Header ? "http-equiv" : "name";
}

/** Where a new one goes: behind the others, or into a head that has none. */
dom::Node* Home(const dom::Document& document) {
    const auto others = document.tags("meta");
    return others.empty() ? document.head() : others.front()->parent();
}

}  // namespace

PageMetaTags::PageMetaTags(const dom::Document& document) {
    for (const dom::Node* element : document.tags("meta")) {
        PageMetaTag tag;
        tag.kind = element->hasAttribute("http-equiv") ? MetaKind::Header : MetaKind::Named;
        tag.name = Trim(element->getAttribute(NameAttribute(tag.kind)));
        // Which program made the page is not the user's to say, and tags of other kinds, such as
        // the one for the encoding, have no name to show.
        if (tag.name.empty() || EqualsNoCase(tag.name, "generator")) continue;
        tag.content = element->getAttribute("content");
        tag.element = element->id();
        tags_.push_back(std::move(tag));
    }
}

int PageMetaTags::Add(MetaKind kind, const std::string& name, const std::string& content) {
    PageMetaTag tag;
    tag.kind = kind;
    tag.name = name;
    tag.content = content;
    tags_.push_back(std::move(tag));
    return Count() - 1;
}

bool PageMetaTags::CanWrite(const dom::Document& document) const {
    const bool any = std::any_of(tags_.begin(), tags_.end(), [](const PageMetaTag& tag) {
        return tag.element == 0 && !tag.removed;
    });
    return !any || Home(document) != nullptr;
}

void PageMetaTags::Write(dom::Document& document) const {
    const dom::Document::Step step(document);
    dom::Node* home = Home(document);
    for (const PageMetaTag& tag : tags_) {
        dom::Node* element = tag.element ? document.node(tag.element) : nullptr;
        if (tag.removed || (tag.element && !element)) {
            if (element) document.removeNode(*element);
            continue;
        }
        const bool isNew = !element;
        if (isNew) element = document.createElement("meta");
        // What means the same keeps its spelling.
        const char* name = NameAttribute(tag.kind);
        if (Trim(element->getAttribute(name)) != tag.name)
            document.setAttribute(*element, name, tag.name);
        if (isNew || element->getAttribute("content") != tag.content)
            document.setAttribute(*element, "content", tag.content);
        if (isNew) document.insertNode(*home, *element, nullptr);
    }
}

}  // namespace pw
