#include "frame/Formatting.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cmath>

#include "frame/TextTools.h"
#include "frame/Urls.h"
#include "frame/Versions.h"

namespace pw {
namespace {

TEST(Formatting, WritesDatesInEnglish) {
    const DateTime date = MakeDate(2026, 3, 7, 21, 4, 9);
    const char* expected[] = {"3/7/2026 9:04:09 PM",
                              "Saturday, March 7, 2026",
                              "07-Mar-26",
                              "3/7/2026",
                              "260307",
                              "20260307",
                              "2603",
                              "202603",
                              "9:04:09 PM",
                              "09:04 PM",
                              "21:04",
                              "21:04:09",
                              "Saturday, March 7, 2026 9:04:09 PM",
                              "07-Mar-26 09:04 PM",
                              "3/7/2026 21:04"};
    for (int style = 0; style < int(std::size(expected)); ++style)
        EXPECT_EQ(FormatDate(date, DateStyle(style)), expected[style]) << style;
    EXPECT_EQ(FormatDate(std::trunc(date), DateStyle::GeneralDate), "3/7/2026");
    EXPECT_EQ(FormatDate(0.5, DateStyle::GeneralDate), "12:00:00 PM");
    EXPECT_EQ(FormatDate(0, DateStyle::MediumTime), "12:00 AM");
}

TEST(Formatting, CountsDaysAsTheProjectFileDoes) {
    struct Row {
        int year, month, day, hour;
        double count;
    };
    for (const Row& row : {Row{1899, 12, 30, 0, 0}, Row{1900, 1, 1, 0, 2},
                           Row{1970, 1, 1, 0, 25569}, Row{2000, 2, 29, 6, 36585.25},
                           Row{1899, 12, 29, 6, -1.25}, Row{9999, 12, 31, 0, 2958465}}) {
        SCOPED_TRACE(row.count);
        EXPECT_EQ(MakeDate(row.year, row.month, row.day, row.hour), row.count);
        const DateParts parts = SplitDate(row.count);
        EXPECT_EQ(parts.year, row.year);
        EXPECT_EQ(parts.month, row.month);
        EXPECT_EQ(parts.day, row.day);
        EXPECT_EQ(parts.hour, row.hour);
    }
    EXPECT_EQ(SplitDate(1.9999999).day, 1) << "rounding to a second may reach the next day";
    EXPECT_EQ(SplitDate(NAN).year, 1899);
    EXPECT_EQ(SplitDate(1e300).year, 1899);
}

TEST(Formatting, WritesNumbersInEnglish) {
    struct Row {
        double value;
        NumberStyle style;
        const char* text;
    };
    for (const Row& row :
         {Row{1234567.5, NumberStyle::GeneralNumber, "1234567.5"},
          Row{-1234.5, NumberStyle::Currency, "($1,234.50)"},
          Row{1234.125, NumberStyle::Fixed, "1234.12"}, Row{-0.001, NumberStyle::Fixed, "0.00"},
          Row{1234567.5, NumberStyle::Standard, "1,234,567.50"},
          Row{999, NumberStyle::Standard, "999.00"}, Row{0.125, NumberStyle::Percent, "12.50%"},
          Row{12345, NumberStyle::Scientific, "1.23E+04"}, Row{-1, NumberStyle::YesNo, "Yes"},
          Row{0, NumberStyle::TrueFalse, "False"}, Row{2, NumberStyle::OnOff, "On"},
          Row{NAN, NumberStyle::Fixed, "0.00"}}) {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(FormatNumber(row.value, row.style), row.text);
    }
    for (const auto& [bytes, text] :
         std::vector<std::pair<std::int64_t, std::string>>{{0, "0 byte(s)"},
                                                           {1023, "1023 byte(s)"},
                                                           {1024, "1KB"},
                                                           {1048575, "1,024KB"},
                                                           {1048576, "1.00MB"},
                                                           {5'000'000'000, "4,768.37MB"}})
        EXPECT_EQ(FormatSize(bytes), text);
    EXPECT_EQ(ToHex(0xABC, 6), "000ABC");
    EXPECT_EQ(ToHex(0xABCDEF, 4), "CDEF") << "only the low digits";
    EXPECT_EQ(QuoteSingle("a") + QuoteDouble("b"), "'a'\"b\"");
}

TEST(Formatting, IgnoresTheDesktopsLanguage) {
    const std::string before = std::setlocale(LC_ALL, nullptr);
    for (const char* locale : {"de_DE.UTF-8", "fr_FR.UTF-8", ""})
        std::setlocale(LC_ALL, locale);
    EXPECT_EQ(FormatNumber(1234.5, NumberStyle::Standard), "1,234.50");
    std::setlocale(LC_ALL, before.c_str());
}

TEST(Versions, AreComparedPartByPart) {
    struct Row {
        const char* a;
        const char* b;
        int result;
    };
    for (const Row& row :
         {Row{"2.0", "2.0.0", -2}, Row{"2.0", "2.0", 0}, Row{"1.9", "2.0", -1},
          Row{"2.10.0", "2.9.0", 1}, Row{"2.0.10", "2.0.9", 1}, Row{"2.0.1.7", "2.0.1.3", 0},
          Row{"99.0", "100.0", -1}, Row{"2", "3", -2}, Row{"", "", -2}, Row{"a.b", "0.0", 0}}) {
        SCOPED_TRACE(std::string(row.a) + " and " + row.b);
        EXPECT_EQ(CompareVersions(row.a, row.b), row.result);
        if (row.result != -2) {
            EXPECT_EQ(CompareVersions(row.b, row.a), -row.result);
        }
    }
    const std::string id = MakeGUID(0);
    EXPECT_EQ(id.size(), 36u);
    EXPECT_EQ(CountChars('-', id), 4);
    EXPECT_NE(id, MakeGUID(0));
    EXPECT_EQ(MakeGUID(1).size(), 32u);
}

TEST(TextTools, CleansAndCounts) {
    EXPECT_EQ(ReplaceIllegalChars("my page & 'you'?.htm", "_"), "my_page____you__.htm");
    EXPECT_EQ(ReplaceIllegalChars("\xC3\xA4 b", ""),
              "\xC3\xA4"
              "b");
    EXPECT_TRUE(IsAlphanumericKey('_') && IsAlphanumericKey(8) && !IsAlphanumericKey(' '));
    EXPECT_TRUE(IsFilenameKey('a') && IsFilenameKey(0xE4) && !IsFilenameKey('\\'));
    EXPECT_EQ(RemoveMenuMarks("E&xit...:"), "Exit");
    EXPECT_EQ(CountWords("  one two\tthree\rfour "), 4);
    EXPECT_EQ(CountWords("a  b"), 3) << "each separator counts";
    EXPECT_EQ(CountWords(" \t "), 0);
    EXPECT_EQ(StripDoubleSlashes("http://a//b"), "a//b");
    EXPECT_EQ(StripDoubleSlashes("a/b"), "a/b");
}

TEST(Urls, AreCracked) {
    struct Row {
        const char* url;
        const char* parts;  // scheme|host|port|user|password|path|extra
    };
    for (const Row& row : {Row{"www.example.com", "http|www.example.com|80||||"},
                           Row{"HTTPS://h/a/b.html?x=1#y", "https|h|443|||/a/b.html|?x=1#y"},
                           Row{"ftp://ann:p%40ss@h:2121/up/", "ftp|h|2121|ann|p@ss|/up/|"},
                           Row{"http://a@b:c@h?q", "http|h|80|a@b|c||?q"},
                           Row{"http://[::1]:81/x", "http|[::1]|81|||/x|"},
                           Row{"file:///home/a", "file||0|||/home/a|"}, Row{"h:", "http|h|80||||"},
                           Row{"http://h:99999/", "(bad)"}, Row{"http://h:8x/", "(bad)"},
                           Row{"http:///a", "(bad)"}, Row{"", "(bad)"}}) {
        SCOPED_TRACE(row.url);
        UrlParts p;
        const bool good = CrackURL(row.url, p);
        EXPECT_EQ(good ? p.Scheme + "|" + p.Host + "|" + std::to_string(p.Port) + "|" + p.User +
                             "|" + p.Password + "|" + p.Path + "|" + p.Extra
                       : "(bad)",
                  row.parts);
    }
}

}  // namespace
}  // namespace pw
