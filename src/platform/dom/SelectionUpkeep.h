#pragma once
// Keeps a selection at its place while the tree changes under it.
#include "platform/dom/Document.h"

namespace pw::dom {

/** Before a node is put into `parent` in front of `before`. */
void keepSelectionBeforeInsert(Selection& selection, const Node& parent, const Node* before);
/** Before `node` is taken out of its parent. */
void keepSelectionBeforeRemove(Selection& selection, const Node& node);
/** After a stretch of `node`'s text was replaced. */
void keepSelectionAfterText(Selection& selection, const Node& node, std::size_t offset,
                            std::size_t removed, std::size_t inserted);

}  // namespace pw::dom
