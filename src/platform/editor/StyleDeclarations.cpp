#include "platform/editor/StyleDeclarations.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <system_error>

#include "platform/Text.h"

namespace pw {

namespace {

/** Where the declaration that begins at `from` ends: its semicolon, or the end of the text. Those
 * in quotes, brackets and comments part nothing. */
std::size_t EndOfDeclaration(std::string_view text, std::size_t from) {
    char quote = 0;
    int brackets = 0;
    for (std::size_t at = from; at < text.size(); ++at) {
        const char c = text[at];
        if (c == '\\') {
            ++at;
        } else if (quote) {
            if (c == quote) quote = 0;
        } else if (c == '"' || c == '\'') {
            quote = c;
        } else if (text.compare(at, 2, "/*") == 0) {
            const std::size_t end = text.find("*/", at + 2);
            if (end == std::string_view::npos) return text.size();
            at = end + 1;
        } else if (c == '(') {
            ++brackets;
        } else if (c == ')' && brackets > 0) {
            --brackets;
        } else if (c == ';' && brackets == 0) {
            return at;
        }
    }
    return text.size();
}

std::string WithoutComments(std::string text) {
    for (std::size_t begin = text.find("/*"); begin != std::string::npos; begin = text.find("/*")) {
        const std::size_t end = text.find("*/", begin + 2);
        text.erase(begin, end == std::string::npos ? end : end + 2 - begin);
    }
    return text;
}

constexpr std::string_view kImportant = "important";

/** The place of "!" where the declaration is important; npos in others. */
std::size_t ImportantMark(std::string_view text) {
    const std::size_t mark = text.rfind('!');
    if (mark == std::string_view::npos) return mark;
    return EqualsNoCase(Trim(text.substr(mark + 1)), kImportant) ? mark : std::string_view::npos;
}

}  // namespace

StyleDeclarations::StyleDeclarations(std::string_view text) {
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = EndOfDeclaration(text, at);
        Piece piece;
        piece.text = text.substr(at, end - at);
        closed_ = end < text.size();
        at = end + 1;
        const std::string plain = WithoutComments(piece.text);
        const std::size_t colon = plain.find(':');
        if (colon != std::string::npos) {
            piece.property = ToLower(Trim(std::string_view(plain).substr(0, colon)));
            piece.important = ImportantMark(plain) != std::string::npos;
        }
        if (!closed_ && Trim(piece.text).empty()) {
            tail_ = piece.text;
            closed_ = true;
        } else {
            pieces_.push_back(std::move(piece));
        }
    }
}

std::optional<std::size_t> StyleDeclarations::Find(std::string_view property) const {
    std::optional<std::size_t> found;
    for (std::size_t i = 0; i < pieces_.size(); ++i) {
        if (pieces_[i].property != property) continue;
        if (!found || pieces_[i].important || !pieces_[*found].important) found = i;
    }
    return found;
}

std::optional<std::string> StyleDeclarations::Value(std::string_view property) const {
    const auto found = Find(property);
    if (!found) return std::nullopt;
    const std::string plain = WithoutComments(pieces_[*found].text);
    const std::string_view value = std::string_view(plain).substr(plain.find(':') + 1);
    return Trim(value.substr(0, ImportantMark(value)));
}

std::optional<int> StyleDeclarations::Pixels(std::string_view property) const {
    const auto value = Value(property);
    if (!value) return std::nullopt;
    double number = 0;
    const char* end = value->data() + value->size();
    const auto [unit, error] = std::from_chars(value->data(), end, number);
    if (error != std::errc() || std::abs(number) > 1e6) return std::nullopt;
    const bool pixels = EqualsNoCase(std::string_view(unit, std::size_t(end - unit)), "px");
    if (!pixels && !(unit == end && number == 0)) return std::nullopt;
    return int(std::lround(number));
}

void StyleDeclarations::Rewrite(Piece& piece, std::string_view value) {
    if (piece.text.find("/*") != std::string::npos) piece.text = WithoutComments(piece.text);
    const std::size_t colon = piece.text.find(':');
    const std::size_t mark = std::min(ImportantMark(piece.text), piece.text.size());
    const std::string old = Trim(std::string_view(piece.text).substr(colon + 1, mark - colon - 1));
    const std::size_t place = old.empty() ? mark : piece.text.find(old, colon + 1);
    piece.text.replace(place, old.size(), value);
}

void StyleDeclarations::Set(std::string_view property, std::string_view value) {
    const auto found = Find(property);
    if (!found) {
        Append(property, value);
    } else if (Value(property) != value) {
        Rewrite(pieces_[*found], value);
    }
}

void StyleDeclarations::Append(std::string_view property, std::string_view value) {
    Piece piece;
    piece.property = property;
    piece.text = (pieces_.empty() ? "" : " ") + std::string(property) + ": " + std::string(value);
    pieces_.push_back(std::move(piece));
}

void StyleDeclarations::Remove(std::string_view property) {
    Remove(property, 0);
}

void StyleDeclarations::Remove(std::string_view property, std::size_t first) {
    for (std::size_t i = pieces_.size(); i > first; --i) {
        if (pieces_[i - 1].property != property) continue;
        pieces_.erase(pieces_.begin() + std::ptrdiff_t(i - 1));
        if (i == 1 && !pieces_.empty())
            pieces_[0].text.erase(0, pieces_[0].text.find_first_not_of(" \t\r\n\f"));
    }
}

std::string StyleDeclarations::Text() const {
    std::string text;
    for (std::size_t i = 0; i < pieces_.size(); ++i) {
        text += pieces_[i].text;
        if (i + 1 < pieces_.size() || closed_) text += ';';
    }
    return text + tail_;
}

}  // namespace pw
