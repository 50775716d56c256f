#pragma once
// Markup on its way from another program into a page: a plain tree that is built, rearranged and
// written, and knows nothing of bytes, history or views.
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/dom/Node.h"

namespace pw {

/** A paragraph that a word processor shows as an item of a list. */
struct ListMark {
    std::string list;  ///< which one; paragraphs of one list agree
    int level = 1;
    std::string mark;  ///< what stands in front of the item, such as "1." or a bullet
};

struct Piece {
    std::string tag;   ///< "" for text
    std::string text;  ///< of text alone
    std::vector<dom::Attribute> attributes;
    std::vector<Piece> children;
    std::optional<ListMark> item;

    static Piece Text(std::string text);
    static Piece Element(std::string_view tag);

    bool IsText() const { return tag.empty(); }
    bool Is(std::string_view name) const { return tag == name; }
    const std::string* Attribute(std::string_view name) const;
    /** "" removes it. */
    void Set(std::string_view name, std::string value);
};
using Pieces = std::vector<Piece>;

/** A paragraph, a list, a part of a table: what begins on a line of its own. */
bool IsBlock(const Piece& piece);
bool HasBlocks(const Pieces& pieces);
/** Shows nothing: blanks, breaks, and formatting of such. */
bool IsBlank(const Piece& piece);
bool AreBlank(const Pieces& pieces);
/** Drops blanks at both ends, and the break that ends a paragraph without showing. */
void TrimEnds(Pieces& pieces);
/** Adds at the end; text joins text, and like formatting joins like. */
void Append(Pieces& pieces, Piece piece);
void Append(Pieces& pieces, Pieces more);
/** Puts an element round each stretch of text and the like, within the paragraphs too. */
Pieces WrapInline(Pieces pieces, const Piece& element);

std::string MarkupOf(const Pieces& pieces);

}  // namespace pw
