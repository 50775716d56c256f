#pragma once
// Deleting and inserting at places in a page, with the paragraphs around them kept whole.
#include <string>
#include <vector>

#include "platform/dom/Document.h"

namespace pw::dom {

/** Below 0 when `a` stands in front of `b`, 0 when they are one place. */
int comparePositions(const Position& a, const Position& b);

/** The place itself, or the end of the body that it lies beyond: what stands around the body is
 * none of the text of a page. */
Position withinBody(const Document& document, Position place);

/** Deletes what stands between two places, whichever comes first; the paragraphs at the ends become
 *  one, the cells of a table stay. Returns where the caret then belongs. */
Position deleteRange(Document& document, Position a, Position b);

/** True for a range that is all that an object holds, with no text of the page in it: what makes up
 * a list box, a script, the rows of a table. */
bool isNoContent(const Position& begin, const Position& end);

/** Where content can stand that is meant for this place: behind an element that has no content or
 *  none of the page's, in an item of a list or a cell of a table unless the nodes are such items
 *  themselves, and in the body. */
Position placeForContent(Document& document, Position place, const std::vector<Node*>& nodes = {});

/** Takes out a text without a character, and the formatting around it that holds nothing else.
 *  Returns the place where they stood. */
Position removeEmptied(Document& document, Node& text);

/** Splits the elements around a place up to `limit`, which stays whole. Returns the child of
 * `limit` in front of which the place then is; none: at its end. */
Node* splitElements(Document& document, Position place, Node& limit);

/** Inserts nodes that are not in the tree, at the place for them. Text goes into the paragraph,
 * blocks split it. Returns the place behind them. */
Position insertNodesAt(Document& document, Position place, const std::vector<Node*>& nodes);

/** The markup of what stands between two places, cut elements included. */
std::string markupBetween(const Document& document, Position a, Position b);

/** A text node's part from `offset` on becomes a node of its own, with its bytes; none when nothing
 *  would be left on one side. */
Node* splitText(Document& document, Node& text, std::size_t offset);

}  // namespace pw::dom
