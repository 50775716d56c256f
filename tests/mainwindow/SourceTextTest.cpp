#include "mainwindow/SourceText.h"

#include <gtest/gtest.h>

namespace pw {
namespace {

TEST(SourceText, LinesThatNobodyTouchedKeepTheirEnds) {
    struct Row {
        const char* name;
        const char* original;
        const char* edited;  ///< of what was shown
        const char* taken;
    };
    const Row rows[] = {
        {"nothing edited", "a\nb\r\nc", "a\r\nb\r\nc", "a\nb\r\nc"},
        {"LF page, line changed", "a\nb\nc\n", "a\r\nX\r\nc\r\n", "a\nX\nc\n"},
        {"CRLF page, line added", "a\r\nb\r\n", "a\r\nX\r\nb\r\n", "a\r\nX\r\nb\r\n"},
        {"mixed page keeps the rest", "a\r\nb\nc\nd\ne\r\n", "a\r\nb\r\nX\r\nd\r\ne\r\n",
         "a\r\nb\nX\nd\ne\r\n"},
        {"line removed", "a\nb\nc\n", "a\r\nc\r\n", "a\nc\n"},
        {"repeated lines", "a\na\na\n", "a\r\na\r\n", "a\na\n"},
        {"last line without an end", "a\nb", "a\r\nbX", "a\nbX"},
        {"everything replaced", "a\nb\n", "X", "X"},
        {"emptied", "a\nb\n", "", ""},
        {"one line becomes two", "ab", "a\r\nb", "a\r\nb"},
        {"box gives LF alone", "a\nb\n", "a\nX\n", "a\nX\n"},
        {"from nothing", "", "a\r\n", "a\r\n"},
    };
    for (const Row& row : rows)
        EXPECT_EQ(SourceText(row.original).TakeBack(row.edited), row.taken) << row.name;
}

TEST(SourceText, ShowsEveryLineEndAsCrLf) {
    EXPECT_EQ(SourceText("a\nb\r\nc\rd").Shown(), "a\r\nb\r\ncd");
}

}  // namespace
}  // namespace pw
