#pragma once
// Which stretches of a page's markup stand in a later state of it as well.
#include <cstddef>
#include <string_view>
#include <vector>

namespace pw::dom {

/** Equal stretches: `length` bytes at `from` in the one text and at `to` in the other. */
struct TextMatch {
    std::size_t from = 0;
    std::size_t to = 0;
    std::size_t length = 0;
};

/** In order in both texts, and apart; they begin and end between characters. Takes time in
 *  proportion to the texts, and so may miss what was moved. */
std::vector<TextMatch> matchTexts(std::string_view before, std::string_view after);

}  // namespace pw::dom
