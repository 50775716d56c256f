#include "frame/Colors.h"

#include <gtest/gtest.h>

namespace pw {
namespace {

TEST(Colors, AreReadAsPagesWriteThem) {
    struct Row {
        const char* text;
        std::optional<Color> color;
    };
    const Row rows[] = {
        {"#ff8000", 0x0080FF}, {"#FF8000", 0x0080FF},     {"ff8000", 0x0080FF},
        {"#f80", 0x0088FF},    {" Navy ", 0x800000},      {"aliceblue", 0xFFF8F0},
        {"red", 0x0000FF},     {"YellowGreen", 0x32CD9A}, {"lightgrey", 0xD3D3D3},
        {"", std::nullopt},    {"#12345", std::nullopt},  {"#gg0000", std::nullopt},
        {"rgb", std::nullopt}, {"navy2", std::nullopt},
    };
    for (const Row& row : rows)
        EXPECT_EQ(ParseHtmlColor(row.text), row.color) << "'" << row.text << "'";
    EXPECT_EQ(HtmlColor(0x0080FF), "#ff8000");
    EXPECT_EQ(ParseHtmlColor(HtmlColor(0x123456)), Color{0x123456});
}

}  // namespace
}  // namespace pw
