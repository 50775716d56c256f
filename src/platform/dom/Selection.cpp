// The selection of a page.
#include "platform/dom/DocumentImpl.h"
#include "platform/dom/RangeEdit.h"

namespace pw::dom {

void Document::setSelection(const Selection& wanted, Origin origin) {
    Selection selection = wanted;
    if (selection.type == SelectionType::Text) {
        selection.anchor = withinBody(*this, selection.anchor);
        selection.focus = withinBody(*this, selection.focus);
    }
    if (selection_ == selection) return;
    selection_ = selection;
    if (origin == Origin::View) return;
    for (DocumentObserver* observer : std::vector(impl_->observers)) {
        observer->selectionChanged(origin);
    }
}

void Document::collapse(Position caret) {
    setSelection({caret.node ? SelectionType::Text : SelectionType::None, caret, caret, nullptr});
}

Node* Document::elementAtCaret() const {
    if (selection_.type == SelectionType::None) return nullptr;
    if (selection_.control) return selection_.control;
    Node* node = selection_.focus.node;
    if (!node || !node->connected_) return nullptr;
    return node->isElement() ? node : node->parentElement();
}

void Document::deleteSelection() {
    if (selection_.type == SelectionType::None) return;
    Step step(*this);
    if (selection_.type == SelectionType::Control && selection_.control) {
        Node& control = *selection_.control;
        if (!control.parent_) return;
        const Position caret{control.parent_, control.index()};
        removeNode(control);
        collapse(caret);
        return;
    }
    if (selection_.collapsed()) return;
    collapse(deleteRange(*this, selection_.anchor, selection_.focus));
}

}  // namespace pw::dom
