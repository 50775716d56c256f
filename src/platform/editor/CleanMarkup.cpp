#include "platform/editor/CleanMarkup.h"

#include <algorithm>
#include <vector>

#include "platform/Text.h"
#include "platform/dom/Document.h"
#include "platform/dom/Escape.h"
#include "platform/editor/ForeignMarkup.h"
#include "platform/editor/MarkupSafety.h"

namespace pw {

namespace {

constexpr std::string_view kOwnMark = "<meta name=\"generator\" content=\"Pagewick\">";
constexpr std::string_view kBaseStart = "<base href=\"";
constexpr std::string_view kFragmentStart = "<!--StartFragment-->";
constexpr std::string_view kFragmentEnd = "<!--EndFragment-->";

/** What a clipboard holds, taken apart. */
struct Clipping {
    std::string_view fragment;
    bool isOwn = false;
    std::string base;  ///< of the page that it was copied from, if that is known
};

Clipping TakeApart(std::string_view html) {
    Clipping clipping{html, false, ""};
    const std::size_t start = FindNoCase(html, kFragmentStart);
    if (start == std::string_view::npos) return clipping;
    const std::string_view head = html.substr(0, start);
    clipping.isOwn = head.find(kOwnMark) != std::string_view::npos;
    if (const std::size_t at = head.find(kBaseStart); at != std::string_view::npos) {
        const std::string_view address = head.substr(at + kBaseStart.size());
        clipping.base = ReplaceAll(address.substr(0, address.find('"')), "&amp;", "&");
    }
    const std::size_t begin = start + kFragmentStart.size();
    const std::size_t end = FindLastNoCase(html, kFragmentEnd);
    clipping.fragment = end == std::string_view::npos || end < begin
                            ? html.substr(begin)
                            : html.substr(begin, end - begin);
    return clipping;
}

bool IsRelative(std::string_view value) {
    return !value.empty() && value[0] != '#' && value[0] != '/' && value[0] != '?' &&
           value.substr(0, value.find_first_of("/?#")).find(':') == std::string_view::npos;
}

/** References of a fragment that comes from another folder of the project. */
void Rebase(dom::Document& page, dom::Node& element, const std::string& base,
            const AddressAdopter& adopter) {
    for (const char* name : {"src", "lowsrc", "dynsrc", "background", "href"}) {
        const std::string* value = element.attribute(name);
        if (!value || !IsRelative(*value)) continue;
        const auto& adopt = std::string_view(name) == "href" ? adopter.link : adopter.picture;
        if (!adopt) continue;
        if (const auto adopted = adopt(base + *value)) page.setAttribute(element, name, adopted);
    }
}

std::string CleanOwn(const Clipping& clipping, const AddressAdopter& adopter,
                     std::string_view base) {
    const auto page = dom::Document::parseText(MakeValidUtf8(clipping.fragment));
    if (!page || !page->body()) return {};
    const bool hasMoved = StartsWithNoCase(clipping.base, "file:") && clipping.base != base;
    std::vector<dom::Node*> dropped;
    const std::vector<dom::Node*> nodes = page->all();
    for (dom::Node* node : nodes) {
        if (IsUnsafe(*node)) {
            dropped.push_back(node);
            continue;
        }
        const std::vector<dom::Attribute> attributes = node->attributes();
        for (const dom::Attribute& attribute : attributes)
            if (IsUnsafe(attribute)) page->setAttribute(*node, attribute.name, std::nullopt);
        if (hasMoved && node->isElement()) Rebase(*page, *node, clipping.base, adopter);
    }
    for (dom::Node* node : dropped)
        if (node->parent()) page->removeNode(*node);
    return page->innerHTML(*page->body());
}

/** A spreadsheet marks the rows within its table as the copied part. */
std::string Whole(std::string_view fragment) {
    constexpr std::string_view kLineEnds = "\r\n";
    const std::size_t from = std::min(fragment.find_first_not_of(kLineEnds), fragment.size());
    fragment.remove_prefix(from);
    fragment = fragment.substr(0, fragment.find_last_not_of(kLineEnds) + 1);
    const std::string start = Trim(fragment.substr(0, 200));
    struct Part {
        std::string_view begins;
        const char* within;
    };
    constexpr Part kParts[] = {{"<col", "table"}, {"<tr", "table"},    {"<td", "table"},
                               {"<th", "table"},  {"<tbody", "table"}, {"<thead", "table"},
                               {"<li", "ul"}};
    for (const Part& part : kParts) {
        const std::size_t end = part.begins.size();
        if (!StartsWithNoCase(start, part.begins) || start.size() <= end) continue;
        // "<link" begins as "<li" does.
        const char next = start[end];
        if (next != ' ' && next != '>' && next != '\n' && next != '\r' && next != 'g') continue;
        const std::string tag = part.within;
        return "<" + tag + ">" + std::string(fragment) + "</" + tag + ">";
    }
    return std::string(fragment);
}

}  // namespace

std::string MarkupForClipboard(std::string_view html, std::string_view base) {
    std::string page = "<html><head>" + std::string(kOwnMark);
    if (!base.empty())
        page += std::string(kBaseStart) + dom::escapeAttribute(base, '"', " ") + "\">";
    page += "</head><body>" + std::string(kFragmentStart);
    page += html;
    return page + std::string(kFragmentEnd) + "</body></html>";
}

std::string CleanMarkup(std::string_view html, const AddressAdopter& adopter,
                        std::string_view base) {
    const Clipping clipping = TakeApart(html);
    return clipping.isOwn ? CleanOwn(clipping, adopter, base)
                          : ForeignMarkup(Whole(clipping.fragment), adopter);
}

bool IsLonePicture(std::string_view html) {
    constexpr std::size_t kLongest =
        10'000;  // of a tag; a page full of text is not parsed for this
    const std::string_view fragment = TakeApart(html).fragment;
    if (fragment.size() > kLongest) return false;
    const auto page = dom::Document::parseText(MakeValidUtf8(fragment));
    return page && page->body() && page->images().size() == 1 &&
           Trim(page->innerText(*page->body())).empty();
}

std::string MarkupOfText(std::string_view text) {
    const std::string lines = dom::withLineFeeds(text);
    std::vector<std::string> paragraphs(1);
    for (const std::string& line : Split(lines, '\n')) {
        if (Trim(line).empty()) {
            if (!paragraphs.back().empty()) paragraphs.emplace_back();
            continue;
        }
        if (!paragraphs.back().empty()) paragraphs.back() += "<br>";
        paragraphs.back() += dom::escapeText(line, dom::TextContext::Normal, "\n");
    }
    if (paragraphs.back().empty()) paragraphs.pop_back();
    if (paragraphs.size() == 1) return paragraphs.front();
    std::string result;
    for (const std::string& paragraph : paragraphs)
        result += "<p>" + paragraph + "</p>";
    return result;
}

}  // namespace pw
