#include "platform/TextSearch.h"

#include <gtest/gtest.h>

#include "platform/Text.h"

namespace pw {
namespace {

TEST(TextSearch, FindsForwardsAndBackwards) {
    struct Row {
        const char* name;
        const char* text;
        const char* what;
        int alike;
        std::vector<TextSearch::Match> matches;
    };
    for (const Row& row : {
             Row{"the same", "one One one", "one", TextSearch::Same, {{0, 3}, {8, 3}}},
             Row{"in any case", "one ONE", "oNe", TextSearch::AnyCase, {{0, 3}, {4, 3}}},
             Row{"side by side", "aaaa", "aa", TextSearch::Same, {{0, 2}, {2, 2}}},
             Row{"umlauts",
                 "x\xC3\x84y\xC3\xA4",
                 "\xC3\xA4",
                 TextSearch::AnyCase,
                 {{1, 2}, {4, 2}}},
             // The sign of Kelvin is a k of three bytes, the long s an s of two.
             Row{"of other lengths",
                 "\xE2\x84\xAA-k-Ma\xC5\xBFs",
                 "K",
                 TextSearch::AnyCase,
                 {{0, 3}, {4, 1}}},
             Row{"behind others",
                 "\xE2\x84\xAA \xC5\xBF MASS ma\xC5\xBFs",
                 "mass",
                 TextSearch::AnyCase,
                 {{7, 4}, {12, 5}}},
             Row{"greek",
                 "\xCE\xA3\xCE\xAF\xCF\x83\xCF\x85\xCF\x86\xCE\xBF\xCF\x82",
                 "\xCF\x83",
                 TextSearch::AnyCase,
                 {{0, 2}, {4, 2}, {12, 2}}},
             Row{"blanks",
                 "a\xC2\xA0"
                 "b a b",
                 "a b",
                 TextSearch::AnyBlank,
                 {{0, 4}, {5, 3}}},
             Row{"blanks are blanks",
                 "a\xC2\xA0"
                 "b",
                 "a b",
                 TextSearch::AnyCase,
                 {}},
             Row{"broken text", "\xFFone\xC3", "ONE", TextSearch::AnyCase, {{1, 3}}},
             Row{"nothing", "one", "", TextSearch::Same, {}},
             Row{"longer than the text", "one", "one two", TextSearch::AnyCase, {}},
         }) {
        SCOPED_TRACE(row.name);
        const std::string_view text = row.text;
        const TextSearch search(text, row.what, row.alike);
        std::vector<TextSearch::Match> found;
        for (auto match = search.Next(0); match; match = search.Next(match->end()))
            found.push_back(*match);
        EXPECT_EQ(found, row.matches);
        found.clear();
        for (auto match = search.Last(text.size()); match; match = search.Last(match->start))
            found.insert(found.begin(), *match);
        EXPECT_EQ(found, row.matches);
    }
}

TEST(TextSearch, KnowsWholeWords) {
    const std::string_view text =
        "one, \xE2\x80\x9C"
        "two\xE2\x80\x9D \xC3\xA4three four\xC2\xA0_five six7";
    for (const auto& [word, whole] : {std::pair{"one", true},
                                      {"two", true},
                                      {"three", false},
                                      {"four", true},
                                      {"five", false},
                                      {"six", false},
                                      {"n", false}}) {
        EXPECT_EQ(IsWholeWord(text, text.find(word), std::string_view(word).size()), whole) << word;
    }
}

}  // namespace
}  // namespace pw
