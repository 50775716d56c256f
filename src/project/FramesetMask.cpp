#include "project/FramesetMask.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "platform/Text.h"
#include "platform/dom/PageOutline.h"

namespace pw {

namespace {

using dom::PageOutline;
using Stretch = PageOutline::Stretch;
using Place = PageOutline::Place;

constexpr std::string_view kOpen = "<!-- ";
constexpr std::string_view kClose = " -->";
constexpr std::string_view kEnd = "end ";
constexpr std::string_view kOwn = "own ";
/** Behind a body that the page does not close by itself. */
constexpr std::string_view kBodyEnd = "</body><!-- body -->";
constexpr std::size_t kTagOfBodyEnd = kBodyEnd.find('>') + 1;
constexpr std::string_view kBodyMark = " body ";
/** In front of what is hidden but begins with no tag of a frameset. */
constexpr std::string_view kMasked = "masked ";
constexpr std::string_view kBlanks = " \t\r\n\f";
constexpr auto npos = std::string_view::npos;

bool IsBlank(std::string_view text) {
    return text.find_first_not_of(kBlanks) == npos;
}

/** `text` begins with this tag ("<frameset", "</noframes"), in any case. */
bool BeginsWithTag(std::string_view text, std::string_view tag) {
    if (!StartsWithNoCase(text, tag) || text.size() == tag.size()) return false;
    return std::string_view(" \t\r\n\f/>").find(text[tag.size()]) != npos;
}

bool BeginsLikeFrames(std::string_view text) {
    return BeginsWithTag(text, "<frameset") || BeginsWithTag(text, "<noframes") ||
           BeginsWithTag(text, "</noframes");
}

/** Behind the tag that `text` begins with; npos when it goes on. */
std::size_t TagEnd(std::string_view text) {
    char quote = 0;
    for (std::size_t i = 1; i < text.size(); ++i) {
        if (quote) {
            if (text[i] == quote) quote = 0;
        } else if (text[i] == '"' || text[i] == '\'') {
            quote = text[i];
        } else if (text[i] == '>') {
            return i + 1;
        }
    }
    return npos;
}

/** Where the start tag of a noframes begins that ends the text; npos when none does. */
std::size_t LastNoframes(std::string_view text) {
    const auto at = FindLastNoCase(text, "<noframes");
    const bool isLast = at != npos && BeginsWithTag(text.substr(at), "<noframes") &&
                        TagEnd(text.substr(at)) == text.size() - at;
    return isLast ? at : npos;
}

// --- Comments within a comment ------------------------------------------------------------------

/** Length of what ends a comment at this place ("-->" or "--!>", or a spelling of it as "--&gt;" or
 *  "--&amp;gt;"), without its dashes and "!"; 0 for none. */
struct Ending {
    std::size_t prefix = 0;  ///< "--" or "--!"
    std::size_t amps = 0;    ///< how often "amp;" stands in it
    bool isPlain = false;
    bool isFound = false;
};

Ending EndingAt(std::string_view text) {
    Ending ending;
    if (!text.starts_with("--")) return ending;
    ending.prefix = text.starts_with("--!") ? 3 : 2;
    text.remove_prefix(ending.prefix);
    if (text.starts_with('>')) {
        ending.isPlain = ending.isFound = true;
        return ending;
    }
    if (!text.starts_with('&')) return ending;
    text.remove_prefix(1);
    for (; text.starts_with("amp;"); text.remove_prefix(4))
        ++ending.amps;
    ending.isFound = text.starts_with("gt;");
    return ending;
}

std::string SpellEndings(std::string_view text) {
    std::string out;
    std::size_t copied = 0;
    for (auto at = text.find("--"); at != npos; at = text.find("--", at + 1)) {
        const Ending ending = EndingAt(text.substr(at));
        if (!ending.isFound) continue;
        const std::size_t behind = at + ending.prefix;
        out.append(text, copied, behind - copied).append(ending.isPlain ? "&gt;" : "&amp;");
        copied = behind + 1;
    }
    return out.append(text.substr(copied));
}

std::string UnspellEndings(std::string_view text) {
    std::string out;
    std::size_t copied = 0;
    for (auto at = text.find("--"); at != npos; at = text.find("--", at + 1)) {
        const Ending ending = EndingAt(text.substr(at));
        if (!ending.isFound || ending.isPlain) continue;
        const std::size_t behind = at + ending.prefix;
        out.append(text, copied, behind - copied).append(ending.amps > 0 ? "&" : ">");
        copied = behind + (ending.amps > 0 ? std::string_view("&amp;") : "&gt;").size();
    }
    return out.append(text.substr(copied));
}

// --- One comment --------------------------------------------------------------------------------

std::string_view DataOf(std::string_view comment) {
    comment.remove_prefix(4);
    if (comment.ends_with("-->")) comment.remove_suffix(3);
    return comment;
}

bool IsEndMask(std::string_view data) {
    return data.starts_with(" ") && data.substr(1).starts_with(kEnd) &&
           BeginsWithTag(data.substr(1 + kEnd.size()), "</frameset");
}

/** Comments that this file makes, and those of the page itself that read like them. */
bool IsMask(std::string_view data) {
    return FramesetOfMask(data) || IsEndMask(data) || data == kBodyMark;
}

/** A mask with "own " in front of what makes it one, however often. */
bool IsOwn(std::string_view data) {
    if (!data.starts_with(' ')) return false;
    std::string_view rest = data.substr(1);
    while (rest.starts_with(kOwn))
        rest.remove_prefix(kOwn.size());
    return rest.size() + 1 < data.size() && IsMask(std::string(" ") + std::string(rest));
}

struct Splice {
    Stretch place;
    std::string text;
};

/** The places do not overlap. */
std::string Spliced(std::string_view text, std::vector<Splice> splices) {
    std::ranges::stable_sort(splices, {}, [](const Splice& s) { return s.place.begin; });
    std::string out;
    std::size_t copied = 0;
    for (const Splice& splice : splices) {
        out.append(text, copied, splice.place.begin - copied).append(splice.text);
        copied = splice.place.end;
    }
    return out.append(text.substr(copied));
}

// --- Masking ------------------------------------------------------------------------------------

/** What goes into comments, and what of it is shown. */
struct Plan {
    Stretch hidden;
    std::optional<Stretch> shown;
    bool closesBody = false;
};

std::string CommentOf(std::string_view markup) {
    return "<!--" + MaskOfFrameset(markup) + "-->";
}

/** What follows the noframes that is shown: its end tag, then the end of the frameset. Both have a
 *  comment of their own where nothing but blanks stands between them. */
std::string MaskBehind(std::string_view markup) {
    if (markup.empty()) return {};
    const std::size_t end = TagEnd(markup);
    const std::string_view rest = end == npos ? "" : markup.substr(end);
    const auto tag = rest.find_first_not_of(kBlanks);
    if (tag == npos || !BeginsWithTag(rest.substr(tag), "</frameset") ||
        TagEnd(rest.substr(tag)) != rest.size() - tag)
        return CommentOf(markup);
    return CommentOf(markup.substr(0, end)) + std::string(rest.substr(0, tag)) +
           std::string(kOpen) + std::string(kEnd) + std::string(rest.substr(tag)) +
           std::string(kClose);
}

struct Masked {
    std::string text;
    Stretch front;   ///< the comment in front of the body
    Stretch behind;  ///< those behind the body, and the end that was added to it; or nothing
    std::size_t firstBehind = 0;  ///< of these comments
};

Masked MaskBy(std::string_view html, const Plan& plan) {
    Masked masked;
    masked.text = html.substr(0, plan.hidden.begin);
    masked.front.begin = masked.text.size();
    const std::size_t firstEnd = plan.shown ? plan.shown->begin : plan.hidden.end;
    masked.text += CommentOf(html.substr(plan.hidden.begin, firstEnd - plan.hidden.begin));
    masked.front.end = masked.text.size();
    if (plan.shown)
        masked.text += html.substr(plan.shown->begin, plan.shown->end - plan.shown->begin);
    masked.behind.begin = masked.text.size();
    masked.firstBehind = masked.behind.begin + (plan.closesBody ? kTagOfBodyEnd : 0);
    if (plan.closesBody) masked.text += kBodyEnd;
    if (plan.shown)
        masked.text += MaskBehind(html.substr(plan.shown->end, plan.hidden.end - plan.shown->end));
    masked.behind.end = masked.text.size();
    masked.text += html.substr(plan.hidden.end);
    return masked;
}

std::size_t EndOfHead(const PageOutline& outline) {
    std::size_t end = 0;
    for (const Stretch& part : outline.head)
        end = std::max(end, part.end);
    return end;
}

/** A parser finds the masks where no edit of the body reaches them, and the rest as it is shown. */
bool Holds(const Masked& masked, const PageOutline& outline) {
    if (outline.frameset) return false;
    const Stretch behind = masked.behind;
    bool isFrontFound = false;
    bool isBehindFound = behind.begin == behind.end;
    for (const auto& comment : outline.comments) {
        isFrontFound |= comment.whole.begin == masked.front.begin &&
                        comment.whole.end == masked.front.end && comment.place == Place::BeforeBody;
        isBehindFound |=
            comment.whole.begin == masked.firstBehind && comment.place == Place::BehindBody;
    }
    const bool isHeadInFront = EndOfHead(outline) <= masked.front.begin;
    const bool isBodyInFront = behind.begin == behind.end || outline.bodyEnd <= masked.firstBehind;
    return isFrontFound && isBehindFound && isHeadInFront && isBodyInFront;
}

/** Of several the first with a body is shown, or the first that holds something. */
const PageOutline::Noframes* ShownOf(std::string_view html, const PageOutline& outline) {
    const auto content = [&](const PageOutline::Noframes& noframes) {
        return html.substr(noframes.content.begin, noframes.content.end - noframes.content.begin);
    };
    const PageOutline::Noframes* best = nullptr;
    int worth = 0;
    for (const auto& noframes : outline.noframes) {
        if (noframes.isInHead) continue;
        const auto text = content(noframes);
        const int value = FindNoCase(text, "<body") != npos ? 3 : IsBlank(text) ? 1 : 2;
        if (value > worth) {
            best = &noframes;
            worth = value;
        }
    }
    return best;
}

/** From the most that can be shown to nothing. */
std::vector<Plan> PlansFor(std::string_view html, const PageOutline& outline) {
    const PageOutline::Frameset& frameset = *outline.frameset;
    const std::size_t limit =
        outline.htmlEnd && *outline.htmlEnd > frameset.begin ? *outline.htmlEnd : html.size();
    Stretch natural{frameset.begin, frameset.end.value_or(limit)};
    std::vector<Plan> plans;
    if (const auto* noframes = ShownOf(html, outline)) {
        const Stretch content = noframes->content;
        Stretch hidden{std::min(natural.begin, noframes->whole.begin),
                       std::max(natural.end, noframes->whole.end)};
        for (const bool closesBody : {false, true})
            for (const std::size_t end : {hidden.end, std::max(hidden.end, limit)})
                plans.push_back({{hidden.begin, end}, content, closesBody});
        natural = hidden;
    }
    plans.push_back({natural, {}, false});
    const std::size_t behindHead =
        std::min(std::max(EndOfHead(outline), outline.htmlStartEnd), natural.begin);
    plans.push_back({{natural.begin, std::max(natural.end, limit)}, {}, false});
    plans.push_back({{behindHead, html.size()}, {}, false});
    return plans;
}

/** Comments of the page that read like masks say that they are none. */
std::string MarkOwn(std::string text, const PageOutline& outline, const Masked* masked) {
    std::vector<Splice> splices;
    for (const auto& comment : outline.comments) {
        const Stretch whole = comment.whole;
        if (comment.place == Place::InBody) continue;
        const bool isOurs =
            masked && (whole.begin == masked->front.begin ||
                       (whole.begin >= masked->behind.begin && whole.end <= masked->behind.end));
        if (isOurs) continue;
        const auto data =
            DataOf(std::string_view(text).substr(whole.begin, whole.end - whole.begin));
        if (IsMask(data) || IsOwn(data))
            splices.push_back(
                {{whole.begin + kOpen.size(), whole.begin + kOpen.size()}, std::string(kOwn)});
    }
    return splices.empty() ? text : Spliced(text, std::move(splices));
}

/** What the head holds behind that place, which is left out of the page. */
std::string TakeHeadBehind(std::string_view html, const PageOutline& outline, std::size_t place,
                           std::vector<Splice>& splices) {
    std::string taken;
    for (const Stretch& part : outline.head) {
        if (part.begin < place) continue;
        taken += html.substr(part.begin, part.end - part.begin);
        splices.push_back({part, {}});
    }
    return taken;
}

}  // namespace

std::string CommentFrameset(std::string_view html) {
    const std::string whole(html);
    if (FindNoCase(html, "frameset") == npos) return whole;
    const auto outline = dom::outlineOf(html);
    if (!outline) return whole;
    if (!outline->frameset) return MarkOwn(whole, *outline, nullptr);
    for (const Plan& plan : PlansFor(html, *outline)) {
        const Masked masked = MaskBy(html, plan);
        const auto after = dom::outlineOf(masked.text);
        if (after && Holds(masked, *after)) return MarkOwn(masked.text, *after, &masked);
    }
    return MarkOwn(whole, *outline, nullptr);
}

std::string UncommentFrameset(std::string_view html) {
    if (FindNoCase(html, "frameset") == npos) return std::string(html);
    const auto outline = dom::outlineOf(html);
    if (!outline) return std::string(html);
    std::vector<Splice> splices;
    bool isFrontFound = false;
    for (const auto& comment : outline->comments) {
        const Stretch whole = comment.whole;
        const auto data = DataOf(html.substr(whole.begin, whole.end - whole.begin));
        if (comment.place == Place::InBody) continue;
        if (IsOwn(data)) {
            splices.push_back(
                {{whole.begin + kOpen.size(), whole.begin + kOpen.size() + kOwn.size()}, {}});
        } else if (data == kBodyMark && comment.place == Place::BehindBody) {
            const auto tag = kBodyEnd.substr(0, kTagOfBodyEnd);
            const bool isClosed = html.substr(0, whole.begin).ends_with(tag);
            splices.push_back({{whole.begin - (isClosed ? tag.size() : 0), whole.end}, {}});
        } else if (IsEndMask(data)) {
            splices.push_back({whole, std::string(Trim(data.substr(1 + kEnd.size())))});
        } else if (auto markup = FramesetOfMask(data)) {
            // A head that an edit has made belongs to the page, not into the noframes.
            if (!isFrontFound)
                markup->insert(0, TakeHeadBehind(html, *outline, whole.end, splices));
            isFrontFound = true;
            splices.push_back({whole, std::move(*markup)});
        }
    }
    return Spliced(html, std::move(splices));
}

std::optional<std::string> FramesetOfMask(std::string_view commentData) {
    if (!commentData.starts_with(' ')) return std::nullopt;
    commentData.remove_prefix(1);
    if (commentData.starts_with(kMasked)) {
        commentData.remove_prefix(kMasked.size());
    } else if (!BeginsLikeFrames(commentData)) {
        return std::nullopt;
    }
    if (commentData.ends_with(' ')) commentData.remove_suffix(1);
    std::string markup = UnspellEndings(commentData);
    const auto noframes = LastNoframes(markup);
    if (noframes != npos && std::string_view(markup).substr(0, noframes).ends_with(kOpen))
        markup.erase(noframes - kOpen.size(), kOpen.size());
    return markup;
}

std::string MaskOfFrameset(std::string_view frameset) {
    std::string markup(frameset);
    const auto noframes = LastNoframes(markup);
    if (noframes != npos && noframes > 0) markup.insert(noframes, kOpen);
    if (!BeginsLikeFrames(markup)) markup.insert(0, kMasked);
    return " " + SpellEndings(markup) + " ";
}

std::string ExtractFrameBlock(std::string_view html) {
    const std::string page = UncommentFrameset(html);
    const auto outline = dom::outlineOf(page);
    if (!outline || !outline->frameset || !outline->frameset->end) return {};
    const auto begin = outline->frameset->begin;
    return page.substr(begin, *outline->frameset->end - begin);
}

}  // namespace pw
