#include "editing/SourceColoring.h"

#include <gtest/gtest.h>

#include <string>

#include "platform/Text.h"

namespace pw {
namespace {

/** One letter for each character: t tag, p property, v value, c comment, "." plain; lines are
 *  parted by "|". */
std::string Painted(const std::string& source) {
    std::string painted;
    SourceLineState state = 0;
    for (const std::string& line : Split(source, '\n')) {
        std::string letters(line.size(), '.');
        for (const SourceSpan& span : ColorSourceLine(std::string_view(line), state)) {
            letters.replace(span.start, span.length, span.length, "tpvc"[int(span.part)]);
        }
        painted += (painted.empty() ? "" : "|") + letters;
    }
    return painted;
}

struct Row {
    const char* name;
    const char* source;
    const char* painted;
};

class SourceColoringTest : public testing::TestWithParam<Row> {};

TEST_P(SourceColoringTest, PaintsLine) {
    EXPECT_EQ(Painted(GetParam().source), GetParam().painted) << GetParam().source;
}

// clang-format off
const Row rows[] = {
    {"Element",            "<b>hi</b>",                "ttt..tttt"},
    {"Properties",         "<a href=\"x\" id=y>",      "tt.pppp.vvv.pp.vt"},
    {"NoValue",            "<input checked/>",         "tttttt.ppppppptt"},
    {"SlashInValue",       "<a href=a/b>t",            "tt.pppp.vvvt."},
    {"GreaterInQuotes",    "<a t=\"a>b\">c",           "tt.p.vvvvvt."},
    {"SingleQuotes",       "<a t='\"'>",               "tt.p.vvvt"},
    {"BareLess",           "1 < 2 <3 <",               "..........",},
    {"EmptyValue",         "<a t=>x",                  "tt.p.t."},
    {"Comment",            "a<!--<b>-->c",             ".cccccccccc."},
    {"CommentOverLines",   "<!-- a\nb>\n--><i>",       "cccccc|cc|cccttt"},
    {"Doctype",            "<!DOCTYPE html\nSYSTEM>x", "tttttttttttttt|ttttttt."},
    {"TagOverLines",       "<a\nhref\n=\n'x\ny'>z",    "tt|pppp|.|vv|vvt."},
    {"ScriptIsPlain",      "<script>if(a<b)'</i>'</script><b>", "tttttttt.............tttttttttttt"},
    {"StyleOverLines",     "<style type=x>\n<b>\n</STYLE>\n<b>", "tttttt.pppp.vt|...|tttttttt|ttt"},
    {"ClosingTagIsNotRaw", "</script><b>",             "tttttttttttt"},
    {"LongerNameIsNotRaw", "<titles><b>",              "ttttttttttt"},
    {"Unfinished",         "<",                        "."},
};
// clang-format on

INSTANTIATE_TEST_SUITE_P(Sources, SourceColoringTest, testing::ValuesIn(rows),
                         [](const auto& info) { return info.param.name; });

TEST(SourceColoring, CountsInUtf16WhenGivenUtf16) {
    SourceLineState state = 0;
    const auto spans = ColorSourceLine(std::u16string_view(u"\u00e9<b>"), state);
    ASSERT_EQ(spans.size(), 1U);
    EXPECT_EQ(spans[0], (SourceSpan{1, 3, SourcePart::Tag}));
}

}  // namespace
}  // namespace pw
