#include "platform/Text.h"

#include <utf8proc.h>

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstring>

namespace pw {

namespace {

char LowerAscii(char c) {
    return c >= 'A' && c <= 'Z' ? char(c + 32) : c;
}

template <typename MapCodepoint>
std::string MapText(std::string_view text, MapCodepoint map) {
    std::string out;
    out.reserve(text.size());
    const auto* bytes = reinterpret_cast<const utf8proc_uint8_t*>(text.data());
    std::size_t at = 0;
    while (at < text.size()) {
        utf8proc_int32_t codepoint = -1;
        const auto used =
            utf8proc_iterate(bytes + at, utf8proc_ssize_t(text.size() - at), &codepoint);
        if (used <= 0) {
            out.push_back(text[at++]);
            continue;
        }
        utf8proc_uint8_t buffer[4];
        const auto length = utf8proc_encode_char(map(codepoint), buffer);
        out.append(reinterpret_cast<char*>(buffer), std::size_t(length));
        at += std::size_t(used);
    }
    return out;
}

/** Length of the valid UTF-8 sequence at the start, 0 when there is none. */
std::size_t SequenceLength(std::string_view text) {
    utf8proc_int32_t codepoint = -1;
    const auto used = utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(text.data()),
                                       utf8proc_ssize_t(text.size()), &codepoint);
    return used > 0 ? std::size_t(used) : 0;
}

/** Of the character at the start of the text. */
bool IsOfWord(std::string_view text) {
    utf8proc_int32_t codepoint = -1;
    if (utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(text.data()),
                         utf8proc_ssize_t(text.size()), &codepoint) <= 0) {
        return false;
    }
    const utf8proc_category_t category = utf8proc_category(codepoint);
    return (category >= UTF8PROC_CATEGORY_LU && category <= UTF8PROC_CATEGORY_NO) ||
           category == UTF8PROC_CATEGORY_PC;
}

int HexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

}  // namespace

std::size_t AsciiEnd(std::string_view text, std::size_t from) {
    // Eight at a time: pages are long, and mostly ASCII.
    constexpr std::uint64_t kHighBits = 0x8080808080808080;
    std::size_t at = from;
    for (std::uint64_t chunk; at + sizeof chunk <= text.size(); at += sizeof chunk) {
        std::memcpy(&chunk, text.data() + at, sizeof chunk);
        if (chunk & kHighBits) break;
    }
    while (at < text.size() && static_cast<unsigned char>(text[at]) < 0x80)
        ++at;
    return at;
}

bool IsAscii(std::string_view text) {
    return AsciiEnd(text) == text.size();
}

std::string ToLower(std::string_view text) {
    if (IsAscii(text)) {
        std::string out(text);
        for (char& c : out)
            c = LowerAscii(c);
        return out;
    }
    return MapText(text, [](utf8proc_int32_t c) { return utf8proc_tolower(c); });
}

std::string ToUpper(std::string_view text) {
    return MapText(text, [](utf8proc_int32_t c) { return utf8proc_toupper(c); });
}

std::string FoldCase(std::string_view text) {
    // Upper case first, so that letters with two lower-case forms come out alike.
    if (IsAscii(text)) return ToLower(text);
    return MapText(text, [](utf8proc_int32_t c) { return utf8proc_tolower(utf8proc_toupper(c)); });
}

char32_t FoldCase(char32_t character) {
    return char32_t(utf8proc_tolower(utf8proc_toupper(utf8proc_int32_t(character))));
}

bool EqualsNoCase(std::string_view a, std::string_view b) {
    if (IsAscii(a) && IsAscii(b)) {
        if (a.size() != b.size()) return false;
        for (std::size_t i = 0; i < a.size(); ++i) {
            if (LowerAscii(a[i]) != LowerAscii(b[i])) return false;
        }
        return true;
    }
    return FoldCase(a) == FoldCase(b);
}

bool StartsWithNoCase(std::string_view text, std::string_view start) {
    return text.size() >= start.size() && EqualsNoCase(text.substr(0, start.size()), start);
}

bool EndsWithNoCase(std::string_view text, std::string_view end) {
    return text.size() >= end.size() && EqualsNoCase(text.substr(text.size() - end.size()), end);
}

std::size_t FindNoCase(std::string_view text, std::string_view what, std::size_t from) {
    if (what.empty()) return from <= text.size() ? from : std::string_view::npos;
    for (std::size_t at = from; at + what.size() <= text.size(); ++at) {
        if (LowerAscii(text[at]) == LowerAscii(what[0]) || (text[at] & 0x80)) {
            if (EqualsNoCase(text.substr(at, what.size()), what)) return at;
        }
    }
    return std::string_view::npos;
}

std::size_t FindLastNoCase(std::string_view text, std::string_view what) {
    if (what.size() > text.size()) return std::string_view::npos;
    for (std::size_t at = text.size() - what.size() + 1; at-- > 0;) {
        if (EqualsNoCase(text.substr(at, what.size()), what)) return at;
    }
    return std::string_view::npos;
}

bool IsWholeWord(std::string_view text, std::size_t start, std::size_t length) {
    std::size_t before = start;
    while (before > 0 && (text[--before] & 0xC0) == 0x80) {
    }
    const bool touched = start > 0 && IsOfWord(text.substr(before));
    return !touched && (start + length >= text.size() || !IsOfWord(text.substr(start + length)));
}

std::string Trim(std::string_view text) {
    constexpr std::string_view kBlanks = " \t\r\n";
    const auto begin = text.find_first_not_of(kBlanks);
    if (begin == std::string_view::npos) return {};
    return std::string(text.substr(begin, text.find_last_not_of(kBlanks) - begin + 1));
}

std::string ReplaceAll(std::string_view text, std::string_view what, std::string_view with) {
    if (what.empty()) return std::string(text);
    std::string out;
    std::size_t at = 0;
    for (auto hit = text.find(what); hit != std::string_view::npos; hit = text.find(what, at)) {
        out.append(text, at, hit - at).append(with);
        at = hit + what.size();
    }
    return out.append(text.substr(at));
}

std::string ReplaceAllNoCase(std::string_view text, std::string_view what, std::string_view with) {
    if (what.empty()) return std::string(text);
    std::string out;
    std::size_t at = 0;
    for (auto hit = FindNoCase(text, what); hit != std::string_view::npos;
         hit = FindNoCase(text, what, at)) {
        out.append(text, at, hit - at).append(with);
        at = hit + what.size();
    }
    return out.append(text.substr(at));
}

std::vector<std::string> Split(std::string_view text, char separator) {
    std::vector<std::string> parts;
    std::size_t at = 0;
    for (;;) {
        const auto end = text.find(separator, at);
        parts.emplace_back(text.substr(at, end - at));
        if (end == std::string_view::npos) return parts;
        at = end + 1;
    }
}

double Val(std::string_view text) {
    std::string trimmed = Trim(text);
    if (trimmed.starts_with('+')) trimmed.erase(0, 1);
    std::size_t length = trimmed.starts_with('-') ? 1 : 0;
    bool point = false;
    for (; length < trimmed.size(); ++length) {
        const char c = trimmed[length];
        if (c == '.' && !point) {
            point = true;
        } else if (c < '0' || c > '9') {
            break;
        }
    }
    // The C library's own functions expect a comma on many a desktop.
    double value = 0;
    std::from_chars(trimmed.data(), trimmed.data() + length, value);
    return value;
}

bool IsValidUtf8(std::string_view text) {
    for (std::size_t at = AsciiEnd(text); at < text.size(); at = AsciiEnd(text, at)) {
        const auto length = SequenceLength(text.substr(at));
        if (length == 0) return false;
        at += length;
    }
    return true;
}

std::string MakeValidUtf8(std::string_view text) {
    std::string out;
    std::size_t at = 0;
    while (at < text.size()) {
        const auto length = SequenceLength(text.substr(at));
        if (length == 0) {
            out += "\xEF\xBF\xBD";
            ++at;
        } else {
            out.append(text, at, length);
            at += length;
        }
    }
    return out;
}

std::string PercentDecode(std::string_view text) {
    std::string out;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] == '%' && at + 2 < text.size() && HexDigit(text[at + 1]) >= 0 &&
            HexDigit(text[at + 2]) >= 0) {
            out.push_back(char(HexDigit(text[at + 1]) * 16 + HexDigit(text[at + 2])));
            at += 2;
        } else {
            out.push_back(text[at]);
        }
    }
    return out;
}

std::size_t Utf16Length(std::string_view utf8) {
    std::size_t units = 0;
    for (unsigned char c : utf8) {
        if ((c & 0xC0) != 0x80) units += c >= 0xF0 ? 2 : 1;
    }
    return units;
}

std::size_t ByteOffsetOfUtf16(std::string_view utf8, std::size_t utf16) {
    std::size_t at = 0;
    std::size_t units = 0;
    while (at < utf8.size() && units < utf16) {
        const auto c = static_cast<unsigned char>(utf8[at]);
        const std::size_t length = c >= 0xF0 ? 4 : c >= 0xE0 ? 3 : c >= 0xC0 ? 2 : 1;
        units += c >= 0xF0 ? 2 : 1;
        at = std::min(at + length, utf8.size());
    }
    return at;
}

}  // namespace pw
