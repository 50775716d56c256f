#include "mainwindow/CSplitter.h"

#include <algorithm>

namespace pw {

void CSplitter::SplitterMouseDown(int x, int y) {
    bar_ = BarPosition();
    grip_ = Along(x, y) - bar_;
    Drawing = true;
    Notify(Aspect::Value);
}

void CSplitter::SplitterFormMouseMove(int x, int y) {
    if (!Drawing) return;
    bar_ = Clamp(Along(x, y) - grip_);
    Notify(Aspect::Value);
}

void CSplitter::SplitterFormMouseUp(int x, int y) {
    if (!Drawing) return;
    SplitterFormMouseMove(x, y);
    Drawing = false;
    NoteBar(bar_);
    Notify(Aspect::Value);
}

int CSplitter::BarPosition() const {
    return Drawing ? bar_ : Clamp(PositionOf(size_));
}

void CSplitter::SetSize(int size) {
    size_ = std::max(size, 0);
    Notify(Aspect::Value);
}

int CSplitter::Clamp(int position) const {
    const bool vertical = Orientation == Direction::Vertical;
    const int low = vertical ? LeftBound : TopBound;
    const int high = vertical ? RightBound : BottomBound;
    // Where there is no room for both, the near side has it.
    return std::max(low, std::min(position, high));
}

int CSplitter::PositionOf(int size) const {
    return side_ == Side::Before ? size : Length - Border - size;
}

}  // namespace pw
