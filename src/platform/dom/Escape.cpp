#include "platform/dom/Escape.h"

#include <gumbo.h>

#include <cstdint>
#include <cstring>

namespace pw::dom {

namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";
constexpr std::string_view kNoBreakSpace = "\xC2\xA0";

bool isLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}
bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

/** "&" with the letters, digits and the semicolon that may make it a reference. */
std::size_t runLength(std::string_view source) {
    std::size_t at = 1;
    if (at < source.size() && source[at] == '#') ++at;
    while (at < source.size() && (isLetter(source[at]) || isDigit(source[at])))
        ++at;
    if (at > 1 && at < source.size() && source[at] == ';') ++at;
    return at;
}

/** The references that pages are full of, without asking the parser; "" for others. */
std::string decodeCommonReference(std::string_view run) {
    struct Row {
        std::string_view run;
        const char* text;
    };
    static constexpr Row kRows[] = {{"&amp;", "&"},         {"&lt;", "<"},
                                    {"&gt;", ">"},          {"&quot;", "\""},
                                    {"&nbsp;", "\xC2\xA0"}, {"&copy;", "\xC2\xA9"}};
    for (const Row& row : kRows) {
        if (row.run == run) return row.text;
    }
    if (run.size() < 4 || run.size() > 8 || run[1] != '#' || run.back() != ';') return {};
    std::uint32_t code = 0;
    for (const char c : run.substr(2, run.size() - 3)) {
        if (!isDigit(c)) return {};
        code = code * 10 + std::uint32_t(c - '0');
    }
    // Control characters are a matter of their own.
    if (code < 0x20 || code >= 0xD800 || (code >= 0x7F && code < 0xA0)) return {};
    if (code < 0x80) return std::string(1, char(code));
    if (code < 0x800) return {char(0xC0 | (code >> 6)), char(0x80 | (code & 0x3F))};
    return {char(0xE0 | (code >> 12)), char(0x80 | ((code >> 6) & 0x3F)),
            char(0x80 | (code & 0x3F))};
}

std::size_t characterBytes(std::string_view text) {
    const auto lead = std::uint8_t(text.front());
    const std::size_t length = lead < 0xC0 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    return std::min(length, text.size());
}

}  // namespace

std::string withLineFeeds(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\r') {
            out += text[i];
        } else if (i + 1 >= text.size() || text[i + 1] != '\n') {
            out += '\n';
        }
    }
    return out;
}

std::string escapeText(std::string_view text, TextContext context, std::string_view lineEnd) {
    std::string out;
    out.reserve(text.size());
    const bool raw = context == TextContext::Raw;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (c == '\n') {
            out += lineEnd;
        } else if (raw) {
            out += c;
        } else if (c == '&') {
            out += "&amp;";
        } else if (c == '<') {
            out += "&lt;";
        } else if (c == '>') {
            out += "&gt;";
        } else if (text.substr(i, 2) == kNoBreakSpace) {
            out += "&nbsp;";
            ++i;
        } else {
            out += c;
        }
    }
    return out;
}

std::string escapeAttribute(std::string_view value, char quote, std::string_view lineEnd) {
    std::string out;
    out.reserve(value.size());
    for (std::size_t i = 0; i < value.size(); ++i) {
        const char c = value[i];
        if (c == '\n') {
            out += lineEnd;
        } else if (c == '&') {
            out += "&amp;";
        } else if (c == quote) {
            out += quote == '"' ? "&quot;" : "&#39;";
        } else if (value.substr(i, 2) == kNoBreakSpace) {
            out += "&nbsp;";
            ++i;
        } else {
            out += c;
        }
    }
    return out;
}

std::string decodeReference(std::string_view run) {
    if (std::string text = decodeCommonReference(run); !text.empty()) return text;
    // The parser's own table is the only one that is sure to agree with the parser.
    GumboOptions options = kGumboDefaultOptions;
    options.fragment_context = GUMBO_TAG_TITLE;
    options.max_errors = 0;
    GumboOutput* output = gumbo_parse_with_options(&options, run.data(), run.size());
    std::string text;
    const GumboVector& children = output->root->v.element.children;
    for (unsigned i = 0; i < children.length; ++i) {
        const auto* child = static_cast<const GumboNode*>(children.data[i]);
        if (child->type == GUMBO_NODE_TEXT || child->type == GUMBO_NODE_WHITESPACE) {
            text += child->v.text.text;
        }
    }
    gumbo_destroy_output(&options, output);
    return text;
}

std::string decodeAttribute(std::string_view source) {
    std::string value;
    value.reserve(source.size());
    std::size_t at = 0;
    while (at < source.size()) {
        const std::size_t next = std::min(source.find('&', at), source.size());
        value.append(source, at, next - at);
        at = next;
        if (at == source.size()) break;
        const std::string_view run = source.substr(at, runLength(source.substr(at)));
        at += run.size();
        std::string text(run);
        // Unlike in text, a name that goes on, or in front of an equals sign, is none: queries are
        // full of those.
        const bool isEnded = run.back() == ';';
        const bool isNumber = run.starts_with("&#");
        const bool isOpen = !isEnded && at < source.size() && source[at] == '=';
        if (run.size() > 1 && (isNumber || !isOpen)) {
            const std::string decoded = decodeReference(run);
            const char last = decoded.empty() ? 0 : decoded.back();
            const bool isWhole =
                isEnded ? last != ';' || decoded == ";" : !isLetter(last) && !isDigit(last);
            if (isNumber || isWhole) text = decoded;
        }
        value += text;
    }
    return value.find('\r') == value.npos ? value : withLineFeeds(value);
}

Unit nextUnit(std::string_view source, std::string_view text, TextContext context) {
    if (source.empty()) return {};
    if (source.front() == '\r' && text.starts_with('\n')) {
        return {source.starts_with("\r\n") ? std::size_t(2) : std::size_t(1), 1};
    }
    if (source.front() == '&' && context != TextContext::Raw) {
        const std::size_t length = runLength(source);
        if (length > 1) {
            const std::string_view run = source.substr(0, length);
            const std::string decoded = decodeReference(run);
            if (!text.starts_with(decoded)) return {};
            // A run that is no reference goes letter by letter.
            if (decoded != run) return {length, decoded.size()};
        }
    }
    if (text.empty()) return source.front() == '\0' ? Unit{1, 0} : Unit{};
    const std::size_t length = characterBytes(source);
    if (text.starts_with(source.substr(0, length))) return {length, length};
    // The parser drops NUL or replaces it, and replaces what is no character.
    if (text.starts_with(kReplacement)) return {length, kReplacement.size()};
    return source.front() == '\0' ? Unit{1, 0} : Unit{};
}

std::size_t alignedLength(std::string_view source, std::string_view text, TextContext context) {
    std::size_t at = 0;
    std::size_t done = 0;
    while (done < text.size()) {
        // Plain stretches are most of every text.
        const char c = at < source.size() ? source[at] : '\r';
        if (c == text[done] && c != '&' && c != '\r' && (c & 0x80) == 0) {
            ++at;
            ++done;
            continue;
        }
        const Unit unit = nextUnit(source.substr(at), text.substr(done), context);
        if (unit.source == 0) return std::string_view::npos;
        at += unit.source;
        done += unit.text;
    }
    return at;
}

bool beginsMarkup(std::string_view source) {
    if (source.size() < 2 || source[0] != '<') return false;
    if (isLetter(source[1]) || source[1] == '!' || source[1] == '?') return true;
    return source[1] == '/' && source.size() > 2;
}

}  // namespace pw::dom
