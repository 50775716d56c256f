#include "platform/qt/SourceView.h"

#include <gtest/gtest.h>

#include <QScrollBar>
#include <QTest>
#include <QTextBlock>
#include <QTextLayout>

#include "platform/qt/SourceHighlighter.h"
#include "support/CpuTimer.h"

namespace pw {
namespace {

const SourceColors colors{0x0000FF, 0x00FF00, 0xFF0000, 0xFFFFFF};

struct SourceViewTest : testing::Test {
    SourceView view;
    void SetUp() override {
        view.resize(600, 300);
        view.show();
    }
    QColor colorAt(int block, int position) {
        for (const auto& range : view.document()->findBlockByNumber(block).layout()->formats()) {
            if (position >= range.start && position < range.start + range.length) {
                return range.format.foreground().color();
            }
        }
        return {};
    }
};

TEST_F(SourceViewTest, TextComesBackAsItWentIn) {
    const std::string texts[] = {"", "a\r\n", "<p>\xC2\xA0\xE2\x82\xAC</p>\r\n\r\n\tx",
                                 "\xF0\x9F\x98\x80\r\nend"};
    int typed = 0;
    view.events.typed = [&] { ++typed; };
    for (const std::string& text : texts) {
        view.SetText(text, colors);
        EXPECT_EQ(view.Text(), text);
        EXPECT_EQ(view.SelStart(), 0U);
        EXPECT_FALSE(view.CanUndo());
    }
    EXPECT_EQ(typed, 0);
}

TEST_F(SourceViewTest, OffsetsAreBytesWithLongLineEnds) {
    struct Row {
        const char* name;
        std::size_t start;
        std::size_t length;
        const char* selected;
    };
    const std::string text =
        "\xC3\xA4"
        "b\r\n\xF0\x9F\x98\x80"
        "c\r\nd";
    view.SetText(text, colors);
    for (const Row& row :
         {Row{"first line", 2, 1, "b"}, Row{"second line", 5, 4, "\xF0\x9F\x98\x80"},
          Row{"over the end", 9, 4, "c\r\nd"}, Row{"all", 0, 13, text.c_str()}}) {
        view.Select(row.start, row.length);
        EXPECT_EQ(view.SelStart(), row.start) << row.name;
        EXPECT_EQ(view.SelLength(), row.length) << row.name;
        EXPECT_EQ(text.substr(view.SelStart(), view.SelLength()), row.selected) << row.name;
    }
    view.Select(2, 1);
    view.ReplaceSelection("x\r\ny");
    EXPECT_EQ(view.Text(),
              "\xC3\xA4x\r\ny\r\n\xF0\x9F\x98\x80"
              "c\r\nd");
    view.Undo();
    EXPECT_EQ(view.Text(), text);
    EXPECT_TRUE(view.CanRedo());
    view.Select(500, 5);
    EXPECT_EQ(view.SelStart(), text.size());
}

TEST_F(SourceViewTest, TypingIsTold) {
    view.SetText("<p>", colors);
    int typed = 0;
    view.events.typed = [&] { ++typed; };
    QTest::keyClicks(&view, "x");
    QTest::keyClick(&view, Qt::Key_Return, Qt::ShiftModifier);
    EXPECT_EQ(view.Text(), "x\r\n<p>");
    EXPECT_EQ(typed, 2);
}

TEST_F(SourceViewTest, ColorsTagsPropertiesAndValues) {
    view.SetText("<a href=\"x\">t</a>\r\n<!-- c\r\n<b>-->", colors);
    view.grab();
    EXPECT_EQ(colorAt(0, 0), QColor(255, 0, 0));
    EXPECT_EQ(colorAt(0, 4), QColor(0, 255, 0));
    EXPECT_EQ(colorAt(0, 9), QColor(0, 0, 255));
    EXPECT_FALSE(colorAt(0, 12).isValid());
    EXPECT_EQ(colorAt(2, 1), colorAt(1, 1)) << "a comment goes on over lines";
    SourceColors others = colors;
    others.tag = 0x123456;
    view.Recolor(others);
    view.grab();
    EXPECT_EQ(colorAt(0, 0), QColor(0x56, 0x34, 0x12));
}

TEST_F(SourceViewTest, AnEditColorsTheLinesBehindIt) {
    view.SetText("x\r\n<b>\r\n<i>", colors);
    view.grab();
    const QColor tag = colorAt(2, 1);
    view.ReplaceSelection("<!--");
    view.grab();
    EXPECT_NE(colorAt(2, 1), tag);
    view.Undo();
    view.grab();
    EXPECT_EQ(colorAt(2, 1), tag);
}

TEST_F(SourceViewTest, TextStaysReadableOnAnyBackground) {
    SourceColors dark = colors;
    dark.background = 0x202020;
    view.SetText("x", dark);
    EXPECT_GT(view.palette().color(QPalette::Text).lightness(), 128);
    EXPECT_EQ(view.palette().color(QPalette::Base), QColor(0x20, 0x20, 0x20));
}

TEST_F(SourceViewTest, AMegabyteOpensWithoutAPause) {
    std::string text;
    while (text.size() < 1'000'000)
        text += "<p class=\"a\">some text <b>bold</b> &amp; more</p>\r\n";
    const test::CpuTimer timer;
    view.SetText(text, colors);
    view.grab();
    const double shown = timer.Milliseconds();
    EXPECT_LT(shown, 1500);
    RecordProperty("milliseconds", int(shown));
    EXPECT_FALSE(view.highlighter().isColored(view.document()->lastBlock()));
    view.verticalScrollBar()->setValue(view.verticalScrollBar()->maximum());
    view.grab();
    EXPECT_TRUE(view.highlighter().isColored(view.document()->lastBlock().previous()));
    EXPECT_EQ(view.Text().size(), text.size());
}

TEST_F(SourceViewTest, ALineOfAMegabyteIsSurvived) {
    std::string text;
    while (text.size() < 1'000'000)
        text += "<p class=\"a\">some text <b>bold</b> more</p>";
    const test::CpuTimer timer;
    view.SetText(text, colors);
    view.grab();
    EXPECT_LT(timer.Seconds(), 10);
    RecordProperty("milliseconds", int(timer.Milliseconds()));
}

}  // namespace
}  // namespace pw
