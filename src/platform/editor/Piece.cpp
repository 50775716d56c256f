#include "platform/editor/Piece.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "platform/Text.h"
#include "platform/dom/Escape.h"
#include "platform/dom/Tags.h"

namespace pw {

namespace {

constexpr std::string_view kFormatting[] = {"b", "strong", "i",   "em",   "u",
                                            "s", "sub",    "sup", "font", "span"};

bool IsFormatting(const Piece& piece) {
    return std::find(std::begin(kFormatting), std::end(kFormatting), piece.tag) !=
           std::end(kFormatting);
}

bool SameAttributes(const Piece& a, const Piece& b) {
    return std::equal(a.attributes.begin(), a.attributes.end(), b.attributes.begin(),
                      b.attributes.end(), [](const auto& first, const auto& second) {
                          return first.name == second.name && first.value == second.value;
                      });
}

bool IsBlankText(std::string_view text) {
    constexpr std::string_view kNoBreakSpace = "\xC2\xA0";
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text.substr(i, 2) == kNoBreakSpace) {
            ++i;
        } else if (text[i] != ' ' && text[i] != '\n' && text[i] != '\t') {
            return false;
        }
    }
    return true;
}

void Write(const Piece& piece, std::string& out) {
    if (piece.IsText()) {
        out += dom::escapeText(piece.text, dom::TextContext::Normal, "\n");
        return;
    }
    out += '<' + piece.tag;
    for (const dom::Attribute& attribute : piece.attributes)
        out +=
            ' ' + attribute.name + "=\"" + dom::escapeAttribute(attribute.value, '"', "\n") + '"';
    out += '>';
    if (dom::isVoidTag(piece.tag)) return;
    for (const Piece& child : piece.children)
        Write(child, out);
    out += "</" + piece.tag + '>';
}

}  // namespace

Piece Piece::Text(std::string text) {
    Piece piece;
    piece.text = std::move(text);
    return piece;
}

Piece Piece::Element(std::string_view tag) {
    Piece piece;
    piece.tag = tag;
    return piece;
}

const std::string* Piece::Attribute(std::string_view name) const {
    for (const dom::Attribute& attribute : attributes)
        if (attribute.name == name) return &attribute.value;
    return nullptr;
}

void Piece::Set(std::string_view name, std::string value) {
    const auto at = std::find_if(attributes.begin(), attributes.end(),
                                 [&](const auto& attribute) { return attribute.name == name; });
    if (value.empty()) {
        if (at != attributes.end()) attributes.erase(at);
    } else if (at != attributes.end()) {
        at->value = std::move(value);
    } else {
        attributes.push_back({std::string(name), std::move(value)});
    }
}

bool IsBlock(const Piece& piece) {
    return dom::isBlockTag(piece.tag) || piece.Is("colgroup") || piece.Is("col");
}

bool HasBlocks(const Pieces& pieces) {
    return std::any_of(pieces.begin(), pieces.end(), IsBlock);
}

bool IsBlank(const Piece& piece) {
    if (piece.IsText()) return IsBlankText(piece.text);
    return piece.Is("br") || (IsFormatting(piece) && AreBlank(piece.children));
}

bool AreBlank(const Pieces& pieces) {
    return std::all_of(pieces.begin(), pieces.end(), IsBlank);
}

void TrimEnds(Pieces& pieces) {
    while (!pieces.empty() && pieces.front().IsText()) {
        std::string& text = pieces.front().text;
        text.erase(0, text.find_first_not_of(" \n\t"));
        if (!text.empty()) break;
        pieces.erase(pieces.begin());
    }
    bool mayDropBreak = true;
    while (!pieces.empty()) {
        Piece& last = pieces.back();
        if (last.IsText()) {
            last.text.erase(last.text.find_last_not_of(" \n\t") + 1);
            if (!last.text.empty()) break;
        } else if (last.Is("br") && mayDropBreak) {
            mayDropBreak = false;
        } else {
            break;
        }
        pieces.pop_back();
    }
}

void Append(Pieces& pieces, Piece piece) {
    if (!pieces.empty()) {
        Piece& last = pieces.back();
        if (piece.IsText() && last.IsText()) {
            last.text += piece.text;
            return;
        }
        if (IsFormatting(piece) && last.tag == piece.tag && SameAttributes(last, piece)) {
            Append(last.children, std::move(piece.children));
            return;
        }
    }
    pieces.push_back(std::move(piece));
}

void Append(Pieces& pieces, Pieces more) {
    for (Piece& piece : more)
        Append(pieces, std::move(piece));
}

Pieces WrapInline(Pieces pieces, const Piece& element) {
    // A bookmark may stand round nothing; everything else needs something to show.
    const bool isBookmark = element.Is("a") && !HasBlocks(pieces);
    Pieces result;
    Pieces run;
    const auto close = [&] {
        if (AreBlank(run) && !isBookmark) {
            Append(result, std::move(run));
        } else if (!run.empty()) {
            Piece wrapper = element;
            wrapper.children = std::move(run);
            Append(result, std::move(wrapper));
        }
        run.clear();
    };
    for (Piece& piece : pieces) {
        if (!IsBlock(piece)) {
            run.push_back(std::move(piece));
            continue;
        }
        close();
        piece.children = WrapInline(std::move(piece.children), element);
        result.push_back(std::move(piece));
    }
    close();
    return result;
}

std::string MarkupOf(const Pieces& pieces) {
    std::string out;
    for (const Piece& piece : pieces)
        Write(piece, out);
    return out;
}

}  // namespace pw
