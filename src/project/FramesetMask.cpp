#include "project/FramesetMask.h"

#include <utility>

namespace pw {

namespace {

constexpr std::string_view kOpenComment = "<!-- ";
constexpr std::string_view kCloseComment = " -->";
/** Opens a comment of its own for the end of the frameset. */
constexpr std::string_view kOpenEndComment = "<!-- end ";
constexpr std::string_view kFrameset = "<frameset";
constexpr std::string_view kFramesetEnd = "</frameset>";
constexpr std::string_view kMaskedFrameset = "<!-- <frameset";
constexpr std::string_view kMaskedFramesetEnd = "</frameset> -->";
constexpr std::string_view kNoframesTags[] = {"<noframes>", "</noframes>"};

constexpr auto npos = std::string_view::npos;

char Lower(char c) {
    return c >= 'A' && c <= 'Z' ? char(c - 'A' + 'a') : c;
}

/** True when `mark`, which is in lower case, stands at that place. Markup is ASCII. */
bool StandsAt(std::string_view text, std::string_view mark, std::size_t at) {
    if (text.size() - at < mark.size()) return false;
    for (std::size_t i = 0; i < mark.size(); ++i)
        if (Lower(text[at + i]) != mark[i]) return false;
    return true;
}

std::size_t FindMark(std::string_view text, std::string_view mark, std::size_t from = 0) {
    for (auto at = text.find('<', from); at != npos; at = text.find('<', at + 1))
        if (StandsAt(text, mark, at)) return at;
    return npos;
}

std::size_t FindLastMark(std::string_view text, std::string_view mark) {
    for (auto at = text.rfind('<'); at != npos; at = at > 0 ? text.rfind('<', at - 1) : npos)
        if (StandsAt(text, mark, at)) return at;
    return npos;
}

/** Whether a place lies behind a "<!--" that is still open. */
bool IsInComment(std::string_view text, std::size_t place) {
    for (auto open = text.find("<!--"); open < place; open = text.find("<!--", open)) {
        const auto close = text.find("-->", open + 4);
        if (close == npos || close >= place) return true;
        open = close + 3;
    }
    return false;
}

bool HasOpenEndComment(std::string_view text, std::size_t place) {
    return text.substr(0, place).ends_with(kOpenEndComment);
}

std::string MaskNoframes(std::string_view html) {
    std::string masked;
    masked.reserve(html.size() + 64);
    std::size_t copied = 0;
    for (auto at = html.find('<'); at != npos; at = html.find('<', at + 1)) {
        for (const auto tag : kNoframesTags) {
            if (!StandsAt(html, tag, at)) continue;
            masked.append(html.substr(copied, at - copied));
            masked.append(kOpenComment).append(html.substr(at, tag.size())).append(kCloseComment);
            copied = at + tag.size();
        }
    }
    return masked.append(html.substr(copied));
}

std::string UnmaskNoframes(std::string_view html) {
    std::string restored;
    restored.reserve(html.size());
    std::size_t copied = 0;
    for (auto at = html.find(kOpenComment); at != npos; at = html.find(kOpenComment, at + 1)) {
        const auto tagAt = at + kOpenComment.size();
        for (const auto tag : kNoframesTags) {
            if (!StandsAt(html, tag, tagAt)) continue;
            if (!StandsAt(html, kCloseComment, tagAt + tag.size())) continue;
            restored.append(html.substr(copied, at - copied));
            restored.append(html.substr(tagAt, tag.size()));
            copied = tagAt + tag.size() + kCloseComment.size();
        }
    }
    return restored.append(html.substr(copied));
}

}  // namespace

std::string CommentFrameset(std::string_view html) {
    const auto start = FindMark(html, kFrameset);
    if (start == npos) return std::string(html);
    std::string masked(html);
    // The end first, so that the place of the start stays true. An end in front of the start moves
    // it along.
    auto end = FindLastMark(masked, kFramesetEnd);
    if (end != npos) masked.insert(end + kFramesetEnd.size(), kCloseComment);
    const bool isEndInFront = end != npos && end < start;
    masked.insert(start + (isEndInFront ? kCloseComment.size() : 0), kOpenComment);
    masked = MaskNoframes(masked);
    // The comment that begins at the frameset ends at the first one within it. The end of the
    // frameset would be seen in the page, and be lost with the next edit, if it stood in none. A
    // page that has such a mark of its own gets a second one, so that taking one out is always
    // right.
    end = FindLastMark(masked, kMaskedFramesetEnd);
    if (end != npos && (!IsInComment(masked, end) || HasOpenEndComment(masked, end)))
        masked.insert(end, kOpenEndComment);
    return masked;
}

std::string UncommentFrameset(std::string_view html) {
    const auto start = FindMark(html, kMaskedFrameset);
    if (start == npos) return std::string(html);
    std::string restored(html);
    auto end = FindLastMark(restored, kMaskedFramesetEnd);
    if (end != npos && HasOpenEndComment(restored, end))
        restored.erase(end - kOpenEndComment.size(), kOpenEndComment.size());
    restored = UnmaskNoframes(restored);
    // What has been taken out in front of the frameset moved it.
    restored.erase(FindMark(restored, kMaskedFrameset), kOpenComment.size());
    end = FindLastMark(restored, kMaskedFramesetEnd);
    if (end != npos) restored.erase(end + kFramesetEnd.size(), kCloseComment.size());
    return restored;
}

std::string ExtractFrameBlock(std::string_view html) {
    const std::string page =
        FindMark(html, kMaskedFrameset) != npos ? UncommentFrameset(html) : std::string(html);
    const auto start = FindMark(page, kFrameset);
    const auto end = FindLastMark(page, kFramesetEnd);
    if (start == npos || end == npos || end < start) return {};
    return page.substr(start, end + kFramesetEnd.size() - start);
}

}  // namespace pw
