#include "platform/Text.h"

namespace pw {
namespace {

TEST(Text, FindsWithoutRegardToCase) {
    struct Row {
        const char* name;
        const char* text;
        const char* what;
        std::size_t first;
        std::size_t last;
    };
    constexpr auto npos = std::string::npos;
    for (const Row& row :
         {Row{"ascii", "a<TITLE>b<title>", "<Title>", 1, 9}, Row{"none", "abc", "x", npos, npos},
          Row{"longer than the text", "ab", "abc", npos, npos},
          Row{"umlaut", "x\xC3\x84y", "\xC3\xA4", 1, 1}}) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(FindNoCase(row.text, row.what), row.first);
        EXPECT_EQ(FindLastNoCase(row.text, row.what), row.last);
    }
}

TEST(Text, ReadsNumbersAsFieldsAreTyped) {
    EXPECT_EQ(Val(" 12px"), 12);
    EXPECT_EQ(Val("-3.5.7"), -3.5);
    EXPECT_EQ(Val("garbage"), 0);
    EXPECT_EQ(Val("0x10"), 0) << "hexadecimal is no number of a text field";
    EXPECT_EQ(Val("1e5"), 1);
}

TEST(Text, CountsAsABrowserDoes) {
    const std::string text = "a\xC3\xA4\xF0\x9F\x98\x80z";  // a, a umlaut, a face, z
    EXPECT_EQ(Utf16Length(text), 5u);
    EXPECT_EQ(ByteOffsetOfUtf16(text, 2), 3u);
    EXPECT_EQ(ByteOffsetOfUtf16(text, 3), 7u) << "never between the halves of a character";
    EXPECT_EQ(ByteOffsetOfUtf16(text, 99), text.size());
}

TEST(Text, MendsBrokenUtf8) {
    EXPECT_FALSE(IsValidUtf8("a\xFFz"));
    EXPECT_EQ(MakeValidUtf8("a\xFFz"), "a\xEF\xBF\xBDz");
    EXPECT_EQ(MakeValidUtf8("\xC3\xA4"), "\xC3\xA4");
}

}  // namespace
}  // namespace pw
