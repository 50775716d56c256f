#include "platform/dom/SelectionUpkeep.h"

namespace pw::dom {

namespace {

template <typename Move>
void forBothEnds(Selection& selection, Move move) {
    if (selection.type == SelectionType::None) return;
    move(selection.anchor);
    move(selection.focus);
}

}  // namespace

void keepSelectionBeforeInsert(Selection& selection, const Node& parent, const Node* before) {
    forBothEnds(selection, [&](Position& position) {
        if (position.node != &parent || !before || position.offset == 0) return;
        if (position.offset > before->index()) ++position.offset;
    });
}

void keepSelectionBeforeRemove(Selection& selection, const Node& node) {
    if (selection.control && node.contains(*selection.control)) {
        selection.control = nullptr;
        selection.type = SelectionType::Text;
        if (!selection.anchor.node) selection.anchor = {node.parent(), node.index()};
        selection.focus = selection.anchor;
    }
    forBothEnds(selection, [&](Position& position) {
        if (!position.node) return;
        if (node.contains(*position.node)) {
            position = {node.parent(), node.index()};
        } else if (position.node == node.parent() && position.offset > 0 &&
                   position.offset > node.index()) {
            --position.offset;
        }
    });
}

void keepSelectionAfterText(Selection& selection, const Node& node, std::size_t offset,
                            std::size_t removed, std::size_t inserted) {
    forBothEnds(selection, [&](Position& position) {
        if (position.node != &node || position.offset <= offset) return;
        if (position.offset >= offset + removed) {
            position.offset += inserted - removed;
        } else {
            position.offset = offset;
        }
    });
}

}  // namespace pw::dom
