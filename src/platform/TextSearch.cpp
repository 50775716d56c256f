#include "platform/TextSearch.h"

#include <utf8proc.h>

#include <algorithm>

#include "platform/Text.h"

namespace pw {

namespace {

char32_t Folded(char32_t character, int alike) {
    if (alike & TextSearch::AnyBlank &&
        utf8proc_category(utf8proc_int32_t(character)) == UTF8PROC_CATEGORY_ZS) {
        return ' ';
    }
    return alike & TextSearch::AnyCase ? FoldCase(character) : character;
}

}  // namespace

TextSearch::TextSearch(std::string_view text, std::string_view what, int alike) : text_(text) {
    if (alike == Same) {
        what_ = what;
        return;
    }
    Fold(text, alike, folded_, &shifts_);
    Fold(what, alike, what_, nullptr);
    text_ = folded_;
}

void TextSearch::Fold(std::string_view text, int alike, std::string& folded,
                      std::vector<Shift>* shifts) {
    folded.reserve(text.size());
    const auto* bytes = reinterpret_cast<const utf8proc_uint8_t*>(text.data());
    std::size_t at = 0;
    while (at < text.size()) {
        const char c = text[at];
        if (static_cast<unsigned char>(c) < 0x80) {
            folded += alike & AnyCase && c >= 'A' && c <= 'Z' ? char(c + ('a' - 'A')) : c;
            ++at;
            continue;
        }
        utf8proc_int32_t codepoint = -1;
        const auto used =
            utf8proc_iterate(bytes + at, utf8proc_ssize_t(text.size() - at), &codepoint);
        if (used <= 0) {
            folded += c;
            ++at;
            continue;
        }
        utf8proc_uint8_t buffer[4];
        const auto length =
            utf8proc_encode_char(utf8proc_int32_t(Folded(char32_t(codepoint), alike)), buffer);
        folded.append(reinterpret_cast<char*>(buffer), std::size_t(length));
        at += std::size_t(used);
        if (shifts && length != used) shifts->push_back({folded.size(), at});
    }
}

std::size_t TextSearch::ToFolded(std::size_t original) const {
    const auto behind = std::upper_bound(
        shifts_.begin(), shifts_.end(), original,
        [](std::size_t place, const Shift& shift) { return place < shift.original; });
    if (behind == shifts_.begin()) return original;
    const Shift& shift = *std::prev(behind);
    return shift.folded + (original - shift.original);
}

std::size_t TextSearch::ToOriginal(std::size_t folded) const {
    const auto behind = std::upper_bound(
        shifts_.begin(), shifts_.end(), folded,
        [](std::size_t place, const Shift& shift) { return place < shift.folded; });
    if (behind == shifts_.begin()) return folded;
    const Shift& shift = *std::prev(behind);
    return shift.original + (folded - shift.folded);
}

TextSearch::Match TextSearch::MatchAt(std::size_t folded) const {
    const std::size_t start = ToOriginal(folded);
    return {start, ToOriginal(folded + what_.size()) - start};
}

std::optional<TextSearch::Match> TextSearch::Next(std::size_t from) const {
    if (what_.empty()) return std::nullopt;
    const std::size_t found = text_.find(what_, ToFolded(from));
    if (found == text_.npos) return std::nullopt;
    return MatchAt(found);
}

std::optional<TextSearch::Match> TextSearch::Last(std::size_t before) const {
    const std::size_t end = std::min(ToFolded(before), text_.size());
    if (what_.empty() || end < what_.size()) return std::nullopt;
    const std::size_t found = text_.rfind(what_, end - what_.size());
    if (found == text_.npos) return std::nullopt;
    return MatchAt(found);
}

}  // namespace pw
