#include "platform/dom/TagScan.h"

#include <algorithm>
#include <unordered_set>

#include "platform/Text.h"
#include "platform/dom/Escape.h"

namespace pw::dom {

namespace {

char lower(char c) {
    return c >= 'A' && c <= 'Z' ? char(c + 32) : c;
}
bool isLetter(char c) {
    return lower(c) >= 'a' && lower(c) <= 'z';
}

bool isName(std::string_view written, std::string_view lowerName) {
    return written.size() == lowerName.size() &&
           std::equal(written.begin(), written.end(), lowerName.begin(),
                      [](char a, char b) { return lower(a) == b; });
}

/** Elements whose text holds no tags. What stands in NOFRAMES is text to a parser that knows
 *  frames, and a page to a visitor without them. */
constexpr std::string_view kTextOnly[] = {"iframe", "noembed", "plaintext", "script",
                                          "style",  "title",   "textarea",  "xmp"};

}  // namespace

std::size_t endOfDeclaration(std::string_view markup, std::size_t at) {
    const bool isComment = markup.substr(at, 4) == "<!--";
    // "<!-->" and "<!--->" are whole comments.
    const std::size_t end = isComment ? markup.find("-->", at + 2) : markup.find('>', at);
    return end == markup.npos ? markup.size() : end + (isComment ? 3 : 1);
}

std::size_t endOfRawText(std::string_view markup, std::size_t at, std::string_view name) {
    if (name == "plaintext") return markup.size();
    for (at = markup.find("</", at); at != markup.npos; at = markup.find("</", at + 2)) {
        if (!isName(markup.substr(at + 2, name.size()), name)) continue;
        const std::size_t behind = at + 2 + name.size();
        if (behind >= markup.size() ||
            std::string_view(" \t\n\r\f/>").find(markup[behind]) != std::string_view::npos)
            return at;
    }
    return markup.size();
}

TagInText::TagInText(std::string_view page, std::size_t begin)
    : rest_(page.substr(begin)), begin_(begin), nameEnd_(endOfTagName(rest_)) {}

std::size_t TagInText::end() const {
    std::size_t at = nameEnd_;
    while (nextAttribute(rest_, at)) {
    }
    return begin_ + std::min(at + 1, rest_.size());
}

bool TagInText::is(std::string_view lowerName) const {
    return isName(name(), lowerName);
}

std::optional<std::string> TagInText::attribute(std::string_view lowerName) const {
    std::size_t at = nameEnd_;
    while (const auto place = nextAttribute(rest_, at))
        if (isName(rest_.substr(place->name, place->nameEnd - place->name), lowerName))
            return decodeAttribute(rest_.substr(place->value, place->valueEnd - place->value));
    return std::nullopt;
}

std::vector<Attribute> TagInText::attributes() const {
    // Looked up by a set, since a page can give a tag as many as it likes.
    std::unordered_set<std::string> names;
    std::vector<Attribute> attributes;
    forEachWrittenAttribute([&](std::string_view name, std::string_view value) {
        if (names.insert(ToLower(name)).second)
            attributes.push_back({std::string(name), decodeAttribute(value)});
    });
    return attributes;
}

std::optional<TagInText> TagScan::next() {
    for (at_ = page_.find('<', at_); at_ < page_.size(); at_ = page_.find('<', at_)) {
        const char kind = at_ + 1 < page_.size() ? page_[at_ + 1] : '\0';
        if (isLetter(kind)) {
            const TagInText tag(page_, at_);
            at_ = where_ == TagsFrom::Anywhere ? at_ + 1 : behind(tag);
            if (where_ == TagsFrom::Anywhere && !mayOverlap(tag)) continue;
            return tag;
        }
        const bool isSkipped = where_ == TagsFrom::Markup && (kind == '!' || kind == '?');
        at_ = isSkipped ? endOfDeclaration(page_, at_) : at_ + 1;
    }
    return std::nullopt;
}

bool TagScan::mayOverlap(const TagInText& tag) {
    const auto free = std::find_if(ends_.begin(), ends_.end(),
                                   [&](std::size_t end) { return end <= tag.begin(); });
    if (free == ends_.end()) {
        isComplete_ = false;
        return false;
    }
    *free = tag.end();
    return true;
}

std::size_t TagScan::behind(const TagInText& tag) const {
    const auto at = std::find_if(std::begin(kTextOnly), std::end(kTextOnly),
                                 [&](std::string_view name) { return tag.is(name); });
    return at == std::end(kTextOnly) ? tag.end() : endOfRawText(page_, tag.end(), *at);
}

}  // namespace pw::dom
