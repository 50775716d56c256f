#include "platform/dom/Encoding.h"

#include <iconv.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <optional>

#include "platform/Text.h"
#include "platform/dom/OriginalBytes.h"

namespace pw::dom {

namespace {

constexpr char32_t kStrayBase = 0x10FE00;
constexpr std::size_t kSniffed = 1024;
constexpr std::size_t kMostListed = 1000;

/** A conversion descriptor of the C library. */
class Converter {
  public:
    Converter(const std::string& to, const std::string& from)
        : handle_(iconv_open(to.c_str(), from.c_str())) {}
    ~Converter() {
        if (valid()) iconv_close(handle_);
    }
    Converter(const Converter&) = delete;
    Converter& operator=(const Converter&) = delete;

    bool valid() const { return handle_ != iconv_t(-1); }

    /** Converts as much as it can; returns the bytes used. Less than all: the next is an error. */
    std::size_t convert(std::string_view in, std::string& out) {
        char* from = const_cast<char*>(in.data());
        std::size_t left = in.size();
        char buffer[16384];
        while (left > 0) {
            char* to = buffer;
            std::size_t room = sizeof buffer;
            const std::size_t result = iconv(handle_, &from, &left, &to, &room);
            out.append(buffer, sizeof buffer - room);
            if (result == std::size_t(-1) && errno != E2BIG) break;
        }
        return in.size() - left;
    }

    /** Ends a stateful encoding's shifts. */
    void finish(std::string& out) {
        char buffer[64];
        char* to = buffer;
        std::size_t room = sizeof buffer;
        iconv(handle_, nullptr, nullptr, &to, &room);
        out.append(buffer, sizeof buffer - room);
    }

  private:
    iconv_t handle_;
};

void appendUtf8(std::string& out, char32_t c) {
    if (c < 0x80) {
        out += char(c);
    } else if (c < 0x800) {
        out += char(0xC0 | (c >> 6));
        out += char(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        out += char(0xE0 | (c >> 12));
        out += char(0x80 | ((c >> 6) & 0x3F));
        out += char(0x80 | (c & 0x3F));
    } else {
        out += char(0xF0 | (c >> 18));
        out += char(0x80 | ((c >> 12) & 0x3F));
        out += char(0x80 | ((c >> 6) & 0x3F));
        out += char(0x80 | (c & 0x3F));
    }
}

/** Length of the valid UTF-8 character at `at`, or 0. */
std::size_t characterLength(std::string_view text, std::size_t at) {
    const auto byte = [&](std::size_t i) { return std::uint8_t(text[i]); };
    const std::uint8_t lead = byte(at);
    if (lead < 0x80) return 1;
    std::size_t length = 0;
    std::uint8_t low = 0x80;
    std::uint8_t high = 0xBF;
    if (lead >= 0xC2 && lead <= 0xDF) {
        length = 2;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        length = 3;
        if (lead == 0xE0) low = 0xA0;
        if (lead == 0xED) high = 0x9F;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        length = 4;
        if (lead == 0xF0) low = 0x90;
        if (lead == 0xF4) high = 0x8F;
    }
    if (length == 0 || at + length > text.size()) return 0;
    if (byte(at + 1) < low || byte(at + 1) > high) return 0;
    for (std::size_t i = 2; i < length; ++i) {
        if ((byte(at + i) & 0xC0) != 0x80) return 0;
    }
    return length;
}

/** The byte that the stray character at `at` stands for, or -1. */
int strayAt(std::string_view text, std::size_t at) {
    if (at + 4 > text.size() || std::uint8_t(text[at]) != 0xF4) return -1;
    if (std::uint8_t(text[at + 1]) != 0x8F) return -1;
    const int third = std::uint8_t(text[at + 2]) - 0xB8;
    if (third < 0 || third > 3) return -1;
    return third * 64 + (std::uint8_t(text[at + 3]) & 0x3F);
}

void appendStray(Decoded& decoded, std::string_view bytes) {
    for (const char byte : bytes) {
        if (decoded.undecodable.size() < kMostListed) {
            decoded.undecodable.push_back({decoded.text.size(), std::string(1, byte)});
        }
        appendUtf8(decoded.text, kStrayBase + std::uint8_t(byte));
    }
}

void decodeUtf8(std::string_view bytes, Decoded& decoded) {
    decoded.text.reserve(bytes.size());
    std::size_t copied = 0;
    for (std::size_t at = AsciiEnd(bytes); at < bytes.size(); at = AsciiEnd(bytes, at)) {
        const std::size_t length = characterLength(bytes, at);
        // A page's own character of the private range would be written as a byte: keep its bytes
        // as strays, which come out as they went in.
        if (length > 0 && strayAt(bytes, at) < 0) {
            at += length;
            continue;
        }
        decoded.text.append(bytes, copied, at - copied);
        const std::size_t stray = std::max<std::size_t>(length, 1);
        appendStray(decoded, bytes.substr(at, stray));
        at += stray;
        copied = at;
    }
    decoded.text.append(bytes, copied);
}

bool decodeWith(const std::string& name, std::string_view bytes, Decoded& decoded) {
    Converter converter("UTF-8", name);
    if (!converter.valid()) return false;
    const std::size_t unit = name.starts_with("utf-16") ? 2 : 1;
    decoded.text.reserve(bytes.size() + bytes.size() / 2);
    while (!bytes.empty()) {
        bytes.remove_prefix(converter.convert(bytes, decoded.text));
        if (bytes.empty()) break;
        const std::size_t stray = std::min(unit, bytes.size());
        appendStray(decoded, bytes.substr(0, stray));
        bytes.remove_prefix(stray);
    }
    return true;
}

/** Labels that pages use, and the encoding that browsers take them for. */
std::string encodingOfLabel(std::string_view label) {
    struct Row {
        const char* label;
        const char* name;
    };
    static constexpr Row kRows[] = {
        {"utf8", "utf-8"},
        {"unicode-1-1-utf-8", "utf-8"},
        {"utf-16", "utf-8"},
        {"utf-16le", "utf-8"},
        {"utf-16be", "utf-8"},
        {"unicode", "utf-8"},
        {"ucs-2", "utf-8"},
        {"utf-7", "windows-1252"},
        {"ascii", "windows-1252"},
        {"us-ascii", "windows-1252"},
        {"latin1", "windows-1252"},
        {"iso-8859-1", "windows-1252"},
        {"iso8859-1", "windows-1252"},
        {"iso_8859-1", "windows-1252"},
        {"l1", "windows-1252"},
        {"cp1252", "windows-1252"},
        {"x-cp1252", "windows-1252"},
        {"iso-8859-9", "windows-1254"},
        {"latin5", "windows-1254"},
        {"iso-8859-11", "windows-874"},
        {"tis-620", "windows-874"},
        {"shift_jis", "cp932"},
        {"shift-jis", "cp932"},
        {"sjis", "cp932"},
        {"x-sjis", "cp932"},
        {"windows-31j", "cp932"},
        {"ms_kanji", "cp932"},
        {"x-euc-jp", "euc-jp"},
        {"gb2312", "gbk"},
        {"gb_2312-80", "gbk"},
        {"x-gbk", "gbk"},
        {"ks_c_5601-1987", "cp949"},
        {"euc-kr", "cp949"},
        {"korean", "cp949"},
        {"windows-949", "cp949"},
        {"x-x-big5", "big5"},
        {"macintosh", "macintosh"},
        {"x-mac-roman", "macintosh"},
        {"iso-8859-8-i", "iso-8859-8"},
        {"logical", "iso-8859-8"},
        {"x-cp1250", "windows-1250"},
        {"x-cp1251", "windows-1251"},
        {"koi8", "koi8-r"},
        {"koi", "koi8-r"},
    };
    const std::string wanted = ToLower(Trim(label));
    for (const Row& row : kRows) {
        if (wanted == row.label) return row.name;
    }
    for (const char c : wanted) {
        const bool plain = (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '-' ||
                           c == '_' || c == '.' || c == ':';
        if (!plain) return {};
    }
    if (wanted.empty() || wanted == "utf-8") return wanted;
    // Only encodings in which markup is readable as ASCII can have been declared in markup.
    Converter converter("UTF-8", wanted);
    if (!converter.valid()) return {};
    std::string ascii;
    static constexpr std::string_view kProbe = "<meta charset>";
    return converter.convert(kProbe, ascii) == kProbe.size() && ascii == kProbe ? wanted : "";
}

/** The value behind "charset" and an equals sign, in a tag or in a content attribute. */
std::string_view charsetValue(std::string_view tag) {
    const std::size_t found = FindNoCase(tag, "charset");
    if (found == std::string_view::npos) return {};
    std::size_t at = found + 7;
    const auto skipBlanks = [&] {
        while (at < tag.size() && std::string_view(" \t\r\n\f").find(tag[at]) != tag.npos)
            ++at;
    };
    skipBlanks();
    if (at >= tag.size() || tag[at] != '=') return {};
    ++at;
    skipBlanks();
    if (at < tag.size() && (tag[at] == '"' || tag[at] == '\'')) ++at;
    const std::size_t end = tag.find_first_of("\"' \t\r\n\f;>/", at);
    return tag.substr(at, end == tag.npos ? end : end - at);
}

std::string declaredEncoding(std::string_view bytes) {
    const std::string_view head = bytes.substr(0, kSniffed);
    std::size_t at = 0;
    while ((at = head.find('<', at)) != head.npos) {
        if (head.substr(at, 4) == "<!--") {
            const std::size_t end = head.find("-->", at + 2);
            if (end == head.npos) break;
            at = end + 3;
            continue;
        }
        if (EqualsNoCase(head.substr(at, 5), "<meta")) {
            const std::size_t end = head.find('>', at);
            const std::string name = encodingOfLabel(charsetValue(head.substr(at, end - at)));
            if (!name.empty()) return name;
        }
        ++at;
    }
    if (head.starts_with("<?xml")) {
        const std::string_view declaration = head.substr(0, head.find('>'));
        const std::size_t found = declaration.find("encoding=");
        if (found != declaration.npos && found + 10 < declaration.size()) {
            const char quote = declaration[found + 9];
            const std::size_t end = declaration.find(quote, found + 10);
            if (end != declaration.npos) {
                return encodingOfLabel(declaration.substr(found + 10, end - found - 10));
            }
        }
    }
    return {};
}

std::string reference(char32_t c) {
    return "&#" + std::to_string(std::uint32_t(c)) + ";";
}

char32_t codePoint(std::string_view character) {
    const auto byte = [&](std::size_t i) { return char32_t(std::uint8_t(character[i]) & 0x3F); };
    switch (character.size()) {
        case 2:
            return char32_t(character[0] & 0x1F) << 6 | byte(1);
        case 3:
            return char32_t(character[0] & 0x0F) << 12 | byte(1) << 6 | byte(2);
        case 4:
            return char32_t(character[0] & 0x07) << 18 | byte(1) << 12 | byte(2) << 6 | byte(3);
        default:
            return char32_t(std::uint8_t(character[0]));
    }
}

}  // namespace

Decoded decode(std::string_view bytes) {
    Decoded decoded;
    struct Mark {
        std::string_view bytes;
        const char* name;
    };
    static constexpr Mark kMarks[] = {
        {"\xEF\xBB\xBF", "utf-8"}, {"\xFF\xFE", "utf-16le"}, {"\xFE\xFF", "utf-16be"}};
    for (const Mark& mark : kMarks) {
        if (!bytes.starts_with(mark.bytes)) continue;
        decoded.encoding = {mark.name, true};
        bytes.remove_prefix(mark.bytes.size());
        if (decoded.encoding.name == "utf-8") {
            decodeUtf8(bytes, decoded);
        } else {
            decodeWith(decoded.encoding.name, bytes, decoded);
        }
        return decoded;
    }
    std::string name = declaredEncoding(bytes);
    if (name.empty()) name = IsValidUtf8(bytes) ? "utf-8" : "windows-1252";
    decoded.encoding = {name, false};
    if (name == "utf-8") {
        decodeUtf8(bytes, decoded);
    } else if (!decodeWith(name, bytes, decoded)) {
        decoded.encoding.name = "windows-1252";
        decodeWith(decoded.encoding.name, bytes, decoded);
    }
    return decoded;
}

std::string encode(std::string_view text, const Encoding& encoding) {
    if (encoding.original) return encoding.original->encode(text);
    std::string out;
    const std::string name = ToLower(encoding.name);
    const bool utf8 = name == "utf-8" || name.empty();
    if (encoding.byteOrderMark) {
        out = utf8 ? "\xEF\xBB\xBF" : name == "utf-16be" ? "\xFE\xFF" : "\xFF\xFE";
    }
    out.reserve(out.size() + text.size());
    std::optional<Converter> converter;
    if (!utf8) converter.emplace(name, "UTF-8");
    // An unknown name can only come from the program itself: write what every reader understands.
    const bool converting = converter && converter->valid();
    while (!text.empty()) {
        std::size_t end = text.find("\xF4\x8F");
        while (end != text.npos && strayAt(text, end) < 0)
            end = text.find("\xF4\x8F", end + 1);
        std::string_view plain = text.substr(0, end);
        while (converting && !plain.empty()) {
            plain.remove_prefix(converter->convert(plain, out));
            if (plain.empty()) break;
            const std::size_t length = std::max<std::size_t>(characterLength(plain, 0), 1);
            converter->convert(reference(codePoint(plain.substr(0, length))), out);
            plain.remove_prefix(length);
        }
        out += plain;
        if (end == text.npos) break;
        if (converting) converter->finish(out);
        out += char(strayAt(text, end));
        text.remove_prefix(end + 4);
    }
    if (converting) converter->finish(out);
    return out;
}

}  // namespace pw::dom
