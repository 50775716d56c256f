#include "mainwindow/CSplitter.h"

#include <gtest/gtest.h>

namespace pw {
namespace {

struct Splitter : testing::Test {
    Splitter() {
        for (CSplitter* splitter : {&left, &below}) {
            splitter->LeftBound = splitter->TopBound = 100;
            splitter->RightBound = splitter->BottomBound = 700;
            splitter->Length = 805;
            splitter->Border = 5;
        }
    }
    ControlOwner owner;
    CSplitter left{&owner, "left", CSplitter::Direction::Vertical, CSplitter::Side::Before,
                   nullptr};
    CSplitter below{&owner, "below", CSplitter::Direction::Horizontal, CSplitter::Side::After,
                    nullptr};
};

TEST_F(Splitter, MovesTheObjectWhenTheBarIsLetGo) {
    left.SetSize(240);
    left.SplitterMouseDown(242, 9);
    EXPECT_TRUE(left.Drawing);
    left.SplitterFormMouseMove(302, 500);
    EXPECT_EQ(left.BarPosition(), 300);
    EXPECT_EQ(left.Size(), 240) << "only the bar moves";
    left.SplitterFormMouseUp(322, 500);
    EXPECT_FALSE(left.Drawing);
    EXPECT_EQ(left.Size(), 320);

    below.SetSize(200);
    EXPECT_EQ(below.BarPosition(), 600);
    below.SplitterMouseDown(9, 601);
    below.SplitterFormMouseUp(9, 501);
    EXPECT_EQ(below.Size(), 300);
}

TEST_F(Splitter, StopsAtTheBounds) {
    left.SetSize(240);
    left.SplitterMouseDown(240, 0);
    left.SplitterFormMouseMove(-50, 0);
    EXPECT_EQ(left.BarPosition(), 100);
    left.SplitterFormMouseUp(9999, 0);
    EXPECT_EQ(left.Size(), 700);
    left.RightBound = 50;
    EXPECT_EQ(left.BarPosition(), 100) << "no room for both";
    EXPECT_EQ(left.Size(), 700) << "the wish is kept for a larger window";
}

TEST_F(Splitter, IgnoresThePointerWhileNothingIsDragged) {
    left.SetSize(240);
    left.SplitterFormMouseMove(500, 0);
    left.SplitterFormMouseUp(500, 0);
    EXPECT_EQ(left.Size(), 240);
}

}  // namespace
}  // namespace pw
