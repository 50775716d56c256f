#pragma once
// Lists that a word processor writes as paragraphs with a mark in front, and how lists are
// numbered.
#include "platform/editor/InlineStyle.h"
#include "platform/editor/Piece.h"

namespace pw {

/** The mark of a paragraph; none for one that is no item of a list. */
std::optional<ListMark> ListMarkOf(const dom::Node& paragraph, const InlineStyle& style);
/** The type of a real list whose numbering is told by styles; "" for the usual one. */
std::string NumberingOf(const dom::Node& list, const InlineStyle& style);

/** Turns the marked paragraphs among these into lists, nested as their levels say. */
void GatherLists(Pieces& pieces);

}  // namespace pw
