#pragma once
// A border that the user drags. While it is dragged only a bar moves, and no further than the
// bounds let it; when it is let go, the splitting object takes its new size. All lengths are pixels
// in the client area of the window.
#include <string>

#include "platform/controls/Control.h"

namespace pw {

class CSplitter : public Control {
  public:
    enum class Direction { Vertical, Horizontal };  ///< of the bar: a vertical one moves sideways
    enum class Side { Before, After };              ///< where the splitting object is

    CSplitter(ControlOwner* owner, std::string name, Direction direction, Side side,
              Control* object)
        : Control(owner, std::move(name), ControlKind::Splitter),
          Orientation(direction),
          SplittingObject(object),
          side_(side) {}

    const Direction Orientation;
    // The places of the bar's own left or upper edge; the skin knows what the panes need.
    int BottomBound = 0;
    int TopBound = 0;
    int LeftBound = 0;
    int RightBound = 0;
    bool Drawing = false;  ///< the bar is being dragged
    Control* const SplittingObject;
    int Border = 0;  ///< width of the bar
    int Length = 0;  ///< of the client area, across the bar

    // What the pointer does, on the border and then anywhere in the window.
    void SplitterMouseDown(int x, int y);
    void SplitterFormMouseMove(int x, int y);
    void SplitterFormMouseUp(int x, int y);

    /** Where the bar is to be drawn, or the border stands: within the bounds. */
    int BarPosition() const;
    /** Of the splitting object, as the user last wanted it, even where there is no room for it now;
     *  0 leaves it to the form. */
    int Size() const { return size_; }
    void SetSize(int size);
    /** The border stands there now, by nobody's wish. */
    void NoteBar(int position) { size_ = PositionOf(position); }

  private:
    int Along(int x, int y) const { return Orientation == Direction::Vertical ? x : y; }
    int Clamp(int position) const;
    /** The bar's position for a size of the object; the size for a position as well. */
    int PositionOf(int size) const;

    const Side side_;
    int size_ = 0;
    int grip_ = 0;  ///< from the bar's edge to the pointer
    int bar_ = 0;
};

}  // namespace pw
