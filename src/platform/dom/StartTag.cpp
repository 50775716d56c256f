#include "platform/dom/StartTag.h"

#include <algorithm>
#include <vector>

#include "platform/Text.h"
#include "platform/dom/Escape.h"

namespace pw::dom {

namespace {

bool isBlank(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f';
}

std::vector<AttributePlace> findAttributes(std::string_view tag) {
    std::vector<AttributePlace> places;
    std::size_t at = endOfTagName(tag);
    while (const auto place = nextAttribute(tag, at))
        places.push_back(*place);
    return places;
}

bool needsQuotes(std::string_view value) {
    if (value.empty() || value.back() == '/') return true;
    return value.find_first_of(" \t\r\n\f\"'=<>`") != value.npos;
}

std::string withoutAttribute(std::string tag, std::string_view name) {
    const std::vector<AttributePlace> places = findAttributes(tag);
    for (auto place = places.rbegin(); place != places.rend(); ++place) {
        const std::string_view written =
            std::string_view(tag).substr(place->name, place->nameEnd - place->name);
        if (!EqualsNoCase(written, name)) continue;
        std::size_t begin = place->name;
        while (begin > 1 && isBlank(tag[begin - 1]))
            --begin;
        const char next = place->end < tag.size() ? tag[place->end] : '>';
        const bool joined = !isBlank(next) && next != '>' && next != '/';
        tag.replace(begin, place->end - begin, joined ? " " : "");
    }
    return tag;
}

}  // namespace

std::size_t endOfTagName(std::string_view tag) {
    std::size_t at = 1;
    while (at < tag.size() && !isBlank(tag[at]) && tag[at] != '/' && tag[at] != '>')
        ++at;
    return at;
}

std::optional<AttributePlace> nextAttribute(std::string_view tag, std::size_t& at) {
    const auto skipBlanks = [&] {
        while (at < tag.size() && isBlank(tag[at]))
            ++at;
    };
    while (at < tag.size() && (isBlank(tag[at]) || tag[at] == '/'))
        ++at;
    if (at >= tag.size() || tag[at] == '>') return std::nullopt;
    AttributePlace place{at, at, at, at, at, 0, false};
    ++at;  // an equals sign in front belongs to the name
    while (at < tag.size() && !isBlank(tag[at]) && tag[at] != '/' && tag[at] != '>' &&
           tag[at] != '=') {
        ++at;
    }
    place.nameEnd = place.value = place.valueEnd = place.end = at;
    skipBlanks();
    if (at >= tag.size() || tag[at] != '=') return place;
    ++at;
    skipBlanks();
    place.hasValue = true;
    if (at < tag.size() && (tag[at] == '"' || tag[at] == '\'')) {
        place.quote = tag[at];
        place.value = ++at;
        at = std::min(tag.find(place.quote, at), tag.size());
        place.valueEnd = at;
        if (at < tag.size()) ++at;
    } else {
        place.value = at;
        while (at < tag.size() && !isBlank(tag[at]) && tag[at] != '>')
            ++at;
        place.valueEnd = at;
    }
    place.end = at;
    return place;
}

std::string patchStartTag(std::string_view tag, std::string_view name,
                          const std::optional<std::string>& value, std::string_view lineEnd) {
    std::string out(tag);
    if (!value) return withoutAttribute(std::move(out), name);
    const std::vector<AttributePlace> places = findAttributes(tag);
    for (const AttributePlace& place : places) {
        if (!EqualsNoCase(tag.substr(place.name, place.nameEnd - place.name), name)) continue;
        if (!place.hasValue) {
            const std::string text = "=\"" + escapeAttribute(*value, '"', lineEnd) + "\"";
            out.insert(place.nameEnd, text);
        } else if (place.quote) {
            out.replace(place.value, place.valueEnd - place.value,
                        escapeAttribute(*value, place.quote, lineEnd));
        } else {
            std::string text = escapeAttribute(*value, '"', lineEnd);
            if (needsQuotes(text)) text = '"' + text + '"';
            out.replace(place.value, place.valueEnd - place.value, text);
        }
        return out;
    }
    const std::size_t at = places.empty() ? endOfTagName(tag) : places.back().end;
    out.insert(at, " " + std::string(name) + "=\"" + escapeAttribute(*value, '"', lineEnd) + "\"");
    return out;
}

std::string canonicalStartTag(const Node& element, std::string_view lineEnd) {
    std::string out = "<" + element.localName();
    for (const Attribute& attribute : element.attributes()) {
        out += ' ';
        out += element.isForeign() ? attribute.name : ToLower(attribute.name);
        out += "=\"" + escapeAttribute(attribute.value, '"', lineEnd) + "\"";
    }
    out += '>';
    return out;
}

}  // namespace pw::dom
