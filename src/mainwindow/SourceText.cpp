#include "mainwindow/SourceText.h"

#include <algorithm>
#include <utility>

#include "platform/Text.h"

namespace pw {

namespace {

std::size_t CountOf(std::string_view text, std::string_view what) {
    std::size_t count = 0;
    for (std::size_t at = text.find(what); at != text.npos; at = text.find(what, at + what.size()))
        ++count;
    return count;
}

/** Length of the original up to the end of its line number `lines`. */
std::size_t EndOfLine(std::string_view text, std::size_t lines) {
    std::size_t end = 0;
    for (; lines > 0; --lines)
        end = text.find('\n', end) + 1;
    return end;
}

std::size_t CommonStart(std::string_view a, std::string_view b) {
    const std::size_t length = std::min(a.size(), b.size());
    const auto differ = std::mismatch(a.begin(), a.begin() + std::ptrdiff_t(length), b.begin());
    return std::size_t(differ.first - a.begin());
}

std::size_t CommonEnd(std::string_view a, std::string_view b, std::size_t limit) {
    std::size_t length = 0;
    while (length < limit && a[a.size() - 1 - length] == b[b.size() - 1 - length])
        ++length;
    return length;
}

}  // namespace

std::string WithCrLf(std::string_view text) {
    return ReplaceAll(ReplaceAll(text, "\r", ""), "\n", "\r\n");
}

SourceText::SourceText(std::string original)
    : original_(std::move(original)), shown_(WithCrLf(original_)) {}

std::string SourceText::TakeBack(std::string_view edited) const {
    if (edited == shown_) return original_;
    const std::size_t lineFeeds = CountOf(original_, "\n");
    const bool windows = CountOf(original_, "\r\n") * 2 > lineFeeds || lineFeeds == 0;
    const auto convert = [windows](std::string_view text) {
        const std::string shown = WithCrLf(text);
        return windows ? shown : ReplaceAll(shown, "\r", "");
    };
    // 1. Whole lines at the start that are as they were shown.
    const std::size_t same = CommonStart(shown_, edited);
    const std::size_t firstLines = CountOf(std::string_view(shown_).substr(0, same), "\n");
    const std::size_t shownStart = EndOfLine(shown_, firstLines);
    // 2. Whole lines at the end.
    const std::size_t limit = std::min(shown_.size(), edited.size()) - shownStart;
    const std::size_t tail = CommonEnd(shown_, edited, limit);
    std::size_t shownEnd = shown_.find('\n', shown_.size() - tail);
    shownEnd = shownEnd == std::string::npos ? shown_.size() : shownEnd + 1;
    const std::size_t lastLines = CountOf(std::string_view(shown_).substr(shownEnd), "\n");
    // 3. Those from the original, and what lies between as most of its lines are written.
    const std::size_t start = EndOfLine(original_, firstLines);
    const std::size_t end =
        shownEnd == shown_.size() ? original_.size() : EndOfLine(original_, lineFeeds - lastLines);
    const std::string_view middle =
        edited.substr(shownStart, edited.size() - (shown_.size() - shownEnd) - shownStart);
    return original_.substr(0, start) + convert(middle) + original_.substr(end);
}

}  // namespace pw
