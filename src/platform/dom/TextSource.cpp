#include "platform/dom/TextSource.h"

#include "platform/dom/Escape.h"
#include "platform/dom/Tags.h"

namespace pw::dom {

namespace {

bool isNamePart(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '#';
}

SourceSplice whole(std::string_view source, std::string inserted) {
    return {0, std::string(source), std::move(inserted)};
}

SourceSplice spliceComment(std::string_view source, const std::string& data, std::size_t offset,
                           std::size_t removed, std::string_view inserted,
                           std::string_view lineEnd) {
    std::string changed = data;
    changed.replace(offset, removed, inserted);
    const std::string written = escapeText(changed, TextContext::Raw, lineEnd);
    // A processing instruction ("<?php … ?>") reads as a comment too, and must stay one.
    if (source.starts_with("<?") && changed.starts_with('?') &&
        changed.find('>') == std::string::npos) {
        return whole(source, "<" + written + ">");
    }
    const bool plain = source.size() == data.size() + 7 && source.starts_with("<!--") &&
                       source.substr(4, data.size()) == data;
    if (!plain) return whole(source, "<!--" + written + "-->");
    return {4 + offset, data.substr(offset, removed),
            escapeText(inserted, TextContext::Raw, lineEnd)};
}

/** Source offsets of a stretch of text. */
struct Stretch {
    std::size_t begin = 0;
    std::size_t end = 0;
    std::size_t textBegin = 0;  ///< the stretch grown to whole units
    std::size_t textEnd = 0;
    bool found = false;
};

Stretch locate(std::string_view source, std::string_view text, std::size_t begin, std::size_t end,
               TextContext context) {
    Stretch stretch;
    std::size_t at = 0;
    std::size_t done = 0;
    bool began = false;
    for (;;) {
        if (!began && done == begin) {
            stretch.begin = at;
            stretch.textBegin = done;
            began = true;
        }
        if (began && done >= end) {
            stretch.end = at;
            stretch.textEnd = done;
            stretch.found = true;
            return stretch;
        }
        const Unit unit = nextUnit(source.substr(at), text.substr(done), context);
        if (unit.source == 0) return stretch;
        if (!began && done + unit.text > begin) {
            stretch.begin = at;
            stretch.textBegin = done;
            began = true;
        }
        at += unit.source;
        done += unit.text;
    }
}

/** Between the marks. What the page's end closes, or what the text would close, is written anew. */
SourceSplice spliceCData(std::string_view source, const std::string& data, std::size_t offset,
                         std::size_t removed, std::string_view inserted, std::string_view lineEnd) {
    std::string changed = data;
    changed.replace(offset, removed, inserted);
    if (source.ends_with(kCDataEnd) && changed.find(kCDataEnd) == changed.npos) {
        const std::string_view inside = source.substr(
            kCDataBegin.size(), source.size() - kCDataBegin.size() - kCDataEnd.size());
        const Stretch stretch = locate(inside, data, offset, offset + removed, TextContext::Raw);
        if (stretch.found && stretch.textBegin == offset && stretch.textEnd == offset + removed)
            return {kCDataBegin.size() + stretch.begin,
                    std::string(inside.substr(stretch.begin, stretch.end - stretch.begin)),
                    escapeText(inserted, TextContext::Raw, lineEnd)};
    }
    return whole(source, escapeText(changed, TextContext::Normal, lineEnd));
}

/** Where "&" or "<" stands that the change at `at` could turn into markup; `at` when nowhere. */
std::size_t fragileBegin(std::string_view source, std::size_t at) {
    std::size_t begin = at;
    while (begin > 0 && isNamePart(source[begin - 1]))
        --begin;
    if (begin > 0 && source[begin - 1] == '&') return begin - 1;
    if (at > 0 && source[at - 1] == '<') return at - 1;
    if (at > 1 && source.substr(at - 2, 2) == "</") return at - 2;
    return at;
}

}  // namespace

SourceSplice spliceSource(std::string_view source, const Node& node, std::size_t offset,
                          std::size_t removed, std::string_view inserted,
                          std::string_view lineEnd) {
    const std::string& data = node.data();
    if (node.isComment()) {
        return spliceComment(source, data, offset, removed, inserted, lineEnd);
    }
    const bool raw = node.parent() && holdsRawText(*node.parent());
    if (!raw && source.starts_with(kCDataBegin))
        return spliceCData(source, data, offset, removed, inserted, lineEnd);
    const TextContext context = raw ? TextContext::Raw : TextContext::Normal;
    Stretch stretch{offset, offset + removed, offset, offset + removed, true};
    if (source != data) {
        stretch = locate(source, data, offset, offset + removed, context);
        if (!stretch.found) {
            std::string changed = data;
            changed.replace(offset, removed, inserted);
            return whole(source, escapeText(changed, context, lineEnd));
        }
    }
    if (!raw) {
        const std::size_t fragile = fragileBegin(source, stretch.begin);
        if (fragile < stretch.begin) {
            const std::string_view kept = source.substr(fragile, stretch.begin - fragile);
            // Grow over the unit that begins at the mark, so that it is written escaped.
            std::size_t text = stretch.textBegin;
            for (std::size_t back = 1; back <= kept.size() && back <= text; ++back) {
                const std::string_view candidate = std::string_view(data).substr(text - back, back);
                if (alignedLength(kept, candidate, context) == kept.size()) {
                    stretch.begin = fragile;
                    stretch.textBegin = text - back;
                    break;
                }
            }
        }
    }
    // What the grown stretch holds in front of and behind the change stays in the text.
    std::string text = data.substr(stretch.textBegin, offset - stretch.textBegin);
    text += inserted;
    const std::size_t behind = offset + removed;
    text += std::string_view(data).substr(behind, stretch.textEnd - behind);
    return {stretch.begin, std::string(source.substr(stretch.begin, stretch.end - stretch.begin)),
            escapeText(text, context, lineEnd)};
}

std::string replaceInText(std::string_view text, const std::vector<TextStretch>& stretches,
                          std::string_view inserted) {
    std::string out;
    std::size_t copied = 0;
    for (const TextStretch& stretch : stretches) {
        out.append(text, copied, stretch.offset - copied).append(inserted);
        copied = stretch.offset + stretch.length;
    }
    return out.append(text.substr(copied));
}

std::optional<std::string> replaceInSource(std::string_view source, const Node& node,
                                           const std::vector<TextStretch>& stretches,
                                           std::string_view inserted, std::string_view lineEnd) {
    const std::string_view data = node.data();
    const bool raw = node.parent() && holdsRawText(*node.parent());
    if (!raw && source.starts_with(kCDataBegin)) return std::nullopt;
    const TextContext context = raw ? TextContext::Raw : TextContext::Normal;
    const std::string written = escapeText(inserted, context, lineEnd);
    std::size_t at = 0;
    std::size_t done = 0;
    const auto walkTo = [&](std::size_t text) {
        while (done < text) {
            const Unit unit = nextUnit(source.substr(at), data.substr(done), context);
            if (unit.source == 0) return false;
            at += unit.source;
            done += unit.text;
        }
        return done == text;
    };
    std::string out;
    std::size_t copied = 0;
    for (const TextStretch& stretch : stretches) {
        if (!walkTo(stretch.offset)) return std::nullopt;
        out.append(source, copied, at - copied).append(written);
        if (!walkTo(stretch.offset + stretch.length)) return std::nullopt;
        copied = at;
    }
    out.append(source.substr(copied));
    const std::string changed = replaceInText(data, stretches, inserted);
    if (alignedLength(out, changed, context) != out.size()) return std::nullopt;
    return out;
}

}  // namespace pw::dom
