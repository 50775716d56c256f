// What the mouse and the arrow keys do to objects in the view.
#include <QWheelEvent>

#include "EditorFixture.h"
#include "platform/editor/LayerCommands.h"

namespace pw {
namespace {

using test::EditorFixture;
using test::kPage;

class EditorViewMouseTest : public EditorFixture {
  protected:
    EditorViewMouseTest() {
        view.events.placed = [this](dom::Node& object, const Placement& placement) {
            PlaceObject(*document, object, placement);
        };
    }

    void click(const QPoint& place) {
        bool released = false;
        view.events.mouseUp = [&] { released = true; };
        QTest::mouseClick(keyboard(), Qt::LeftButton, {}, place);
        EXPECT_TRUE(QTest::qWaitFor([&] { return released; }));
        view.events.mouseUp = nullptr;
        view.Flush();
    }

    /** Drags in small steps, as a hand does, and waits for the page to change, if it is to. */
    void drag(const QPoint& from, const QPoint& way, bool changes = true) {
        const std::uint64_t before = document->revision();
        QTest::mousePress(keyboard(), Qt::LeftButton, {}, from);
        for (int i = 1; i <= 4; ++i)
            QTest::mouseMove(keyboard(), from + way * i / 4);
        QTest::qWait(50);
        QTest::mouseRelease(keyboard(), Qt::LeftButton, {}, from + way);
        if (changes) {
            EXPECT_TRUE(QTest::qWaitFor([&] { return document->revision() != before; }));
        } else {
            QTest::qWait(100);
        }
        view.Flush();
    }

    dom::Node* selected() { return document->selection().control; }
    std::string style(const char* id) { return document->elementById(id)->getAttribute("style"); }
};

TEST_F(EditorViewMouseTest, APressSelectsObjectsAndReportsTheHit) {
    struct Row {
        const char* selector;
        const char* tag;
        dom::SelectionType type;
        double across = 0.5;
    };
    const Row rows[] = {
        {"img", "img", dom::SelectionType::Control},
        {"input", "input", dom::SelectionType::Control},
        {"h1", "h1", dom::SelectionType::Text},
        {"b", "b", dom::SelectionType::Text},
        {"table", "table", dom::SelectionType::Control, 0.002},
        {"td", "td", dom::SelectionType::Text},
    };
    open(kPage);
    dom::Node* hit = nullptr;
    int released = 0;
    view.events.mouseDown = [&](dom::Node* node) { hit = node; };
    view.events.mouseUp = [&] { ++released; };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.selector);
        hit = nullptr;
        released = 0;
        QTest::mouseClick(keyboard(), Qt::LeftButton, {}, at(row.selector, row.across));
        ASSERT_TRUE(QTest::qWaitFor([&] { return released > 0; }));
        view.Flush();
        ASSERT_TRUE(hit);
        EXPECT_EQ(hit->localName(), row.tag);
        EXPECT_EQ(document->selection().type, row.type);
        if (row.type == dom::SelectionType::Control) {
            EXPECT_EQ(document->selection().control, hit);
        }
    }
}

TEST_F(EditorViewMouseTest, AHandleResizesInOneStep) {
    open(kPage);
    click(at("img"));
    drag(at("img", 1, 1), {40, 0});
    const dom::Node* image = document->images().front();
    EXPECT_EQ(image->getAttribute("width"), "120");
    EXPECT_EQ(image->getAttribute("height"), "90");
    EXPECT_EQ(selected(), image);
    EXPECT_EQ(viewTree(), documentTree());
    document->undo();
    view.Flush();
    EXPECT_EQ(document->bytes(), loaded);
    EXPECT_FALSE(document->canUndo());
}

constexpr char kLayers[] =
    "<!DOCTYPE html><html><body style='margin:0; min-height:600px'><p>Text of the page</p>"
    "<img id=i width=60 height=40 style='position:absolute; left:100px; top:80px; opacity:.5'>"
    "<div id=d style='position:absolute; left:200px; top:200px; width:100px; height:60px; "
    "padding:10px; background:#eee'>A layer</div>"
    "<div id=b style='position:absolute; left:400px; top:300px; width:90px; height:50px; "
    "z-index:-1'></div>"
    "<div id=k data-locked=true style='position:absolute; left:500px; top:80px; width:80px; "
    "height:40px'></div></body></html>";

TEST_F(EditorViewMouseTest, LayersAreDragged) {
    open(kLayers);
    // A picture by its middle, from the press that selects it on.
    drag(at("#i"), {30, 20});
    EXPECT_EQ(selected(), document->elementById("i"));
    EXPECT_EQ(style("i"), "position:absolute; left:130px; top:100px; opacity:.5");
    EXPECT_EQ(boxOf("#i"), QRectF(130, 100, 60, 40));
    document->undo();
    view.Flush();
    EXPECT_EQ(document->bytes(), loaded);
    EXPECT_FALSE(document->canUndo());
    // A layer of text by its edge; in its middle a press means the text.
    drag(at("#d", 0.5, 0.01), {-50, 25});
    EXPECT_EQ(selected(), document->elementById("d"));
    EXPECT_EQ(boxOf("#d").topLeft(), QPointF(150, 225));
    drag(at("#d"), {20, 0}, false);
    EXPECT_EQ(selected(), nullptr);
    // One behind the text, where there is no text; not off the page.
    click(at("#b"));
    EXPECT_EQ(selected(), document->elementById("b"));
    drag(at("#b"), {-600, 30});
    EXPECT_EQ(boxOf("#b").topLeft(), QPointF(0, 330));
    EXPECT_EQ(viewTree(), documentTree());
}

TEST_F(EditorViewMouseTest, AHandleOfALayerMovesItsOwnSide) {
    open(kLayers);
    click(at("#d", 0.5, 0.01));
    drag(boxOf("#d").topLeft().toPoint(), {-20, -10});
    EXPECT_EQ(boxOf("#d"), QRectF(180, 190, 140, 90));
    EXPECT_EQ(style("d").find("position:absolute; left:180px; top:190px; width:120px; height:70px"),
              0u);
    EXPECT_EQ(selected(), document->elementById("d"));
}

TEST_F(EditorViewMouseTest, LockedLayersStay) {
    open(kLayers);
    click(at("#k", 0.5, 0.02));
    ASSERT_EQ(selected(), document->elementById("k"));
    drag(at("#k", 0.5, 0.02), {40, 40}, false);
    drag(boxOf("#k").bottomRight().toPoint(), {40, 40}, false);
    click(at("#k", 0.5, 0.02));
    press(Qt::Key_Left);
    EXPECT_EQ(document->bytes(), loaded);
    EXPECT_EQ(selected(), document->elementById("k"));
}

TEST_F(EditorViewMouseTest, TheGridCatchesLayers) {
    open(kLayers);
    view.SetGrid(50, 20);
    view.SetSnapToGrid(true);
    drag(at("#i"), {30, 5});
    EXPECT_EQ(boxOf("#i").topLeft(), QPointF(150, 80));
    press(Qt::Key_Right);
    press(Qt::Key_Up);
    EXPECT_EQ(boxOf("#i").topLeft(), QPointF(200, 60));
    view.SetSnapToGrid(false);
    view.Flush();
    press(Qt::Key_Left);
    EXPECT_EQ(boxOf("#i").topLeft(), QPointF(199, 60));
    for (int steps = 4; steps > 0; --steps)
        EXPECT_TRUE(document->undo()) << steps;
    EXPECT_EQ(document->bytes(), loaded);
}

TEST_F(EditorViewMouseTest, ArrowKeysThatFollowEachOtherAddUp) {
    open(kLayers);
    click(at("#i"));
    for (int i = 0; i < 5; ++i) {
        QTest::keyClick(keyboard(), Qt::Key_Down);
        QTest::keyClick(keyboard(), Qt::Key_Right);
    }
    view.Flush();
    ASSERT_TRUE(QTest::qWaitFor([&] {
        return style("i").find("left:105px; top:85px") != style("i").npos;
    })) << style("i");
    EXPECT_EQ(selected(), document->elementById("i"));
    view.Flush();
    EXPECT_EQ(viewTree(), documentTree());
}

TEST_F(EditorViewMouseTest, NothingJumpsWhenItLeavesTheText) {
    const char* const objects[] = {
        "<img id=o width=60 height=40 hspace=7 vspace=9>",
        "<p>before</p><hr id=o width=50%>",
        "<table id=o border=1 align=center width=40%><tr><td>cell<td>cell</table>",
        "<p>a <input id=o value=text> b</p>",
        "<div id=o style='padding:10px; border:3px solid; margin:11px'>A text that is there</div>",
        "<div style='position:relative; margin:30px; border:4px solid; overflow:scroll; "
        "height:90px'>"
        "<p>x</p><div id=o style='width:50%'>inner</div></div>",
        "<center><marquee id=o width=100 height=30>m</marquee></center>",
    };
    for (const char* markup : objects) {
        SCOPED_TRACE(markup);
        open("<!DOCTYPE html><html><body>" + std::string(markup) + "<p>behind</p></body></html>");
        dom::Node* object = document->elementById("o");
        document->setSelection({dom::SelectionType::Control, {}, {}, object});
        view.Flush();
        const QRectF before = boxOf("#o");
        ASSERT_TRUE(RunLayerCommand(*document, LayerCommand::MakeAbsolute,
                                    [&](const dom::Node& node) { return view.FreePlaceOf(node); }));
        view.Flush();
        const QRectF behind = boxOf("#o");
        EXPECT_NEAR(behind.left(), before.left(), 0.6);
        EXPECT_NEAR(behind.top(), before.top(), 0.6);
        EXPECT_NEAR(behind.width(), before.width(), 1.1);
        EXPECT_NEAR(behind.height(), before.height(), 1.1);
        EXPECT_EQ(evaluate("getComputedStyle(document.querySelector('#o')).position").toString(),
                  "absolute");
        EXPECT_EQ(selected(), object);
        EXPECT_EQ(viewTree(), documentTree());
        document->undo();
        EXPECT_EQ(document->bytes(), loaded);
        view.Clear();
    }
}

TEST_F(EditorViewMouseTest, ZoomIsOfTheViewAlone) {
    open(kPage);
    const QPoint middle = at("h1");
    const auto turn = [&](int delta, Qt::KeyboardModifiers modifiers) {
        QWheelEvent wheel(middle, keyboard()->mapToGlobal(middle), {}, {0, delta}, Qt::NoButton,
                          modifiers, Qt::NoScrollPhase, false);
        QApplication::sendEvent(keyboard(), &wheel);
    };
    turn(120, Qt::ControlModifier);
    turn(60, Qt::ControlModifier);
    EXPECT_DOUBLE_EQ(view.view()->zoomFactor(), 1.1);
    turn(60, Qt::ControlModifier);
    EXPECT_DOUBLE_EQ(view.view()->zoomFactor(), 1.25);
    turn(-120, Qt::NoModifier);
    EXPECT_DOUBLE_EQ(view.view()->zoomFactor(), 1.25);
    // Objects are still caught where they are seen, and sizes are those of the page.
    click(at("img") * 1.25);
    EXPECT_EQ(selected(), document->images().front());
    drag(at("img", 1, 1) * 1.25, {50, 0});
    EXPECT_EQ(document->images().front()->getAttribute("width"), "120");
    document->undo();
    view.Refresh();
    view.Flush();
    EXPECT_DOUBLE_EQ(view.view()->zoomFactor(), 1.25);
    press(Qt::Key_Minus, Qt::ControlModifier);
    EXPECT_DOUBLE_EQ(view.view()->zoomFactor(), 1.1);
    press(Qt::Key_0, Qt::ControlModifier);
    EXPECT_DOUBLE_EQ(view.view()->zoomFactor(), 1);
    for (int i = 0; i < 30; ++i)
        press(Qt::Key_Plus, Qt::ControlModifier);
    EXPECT_DOUBLE_EQ(view.view()->zoomFactor(), 5);
    EXPECT_EQ(document->bytes(), loaded);
}

}  // namespace
}  // namespace pw
