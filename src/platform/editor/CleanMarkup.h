#pragma once
// Markup that comes from outside, from the clipboard or a drop, made fit to stand in a page.
#include <string>
#include <string_view>

namespace pw {

/** The fragment of a clipboard's markup without scripts, event handlers, addresses that run
 *  scripts, and what belongs in a head. "" when nothing is left. */
std::string CleanMarkup(std::string_view html);
/** Plain text as markup: blank lines part paragraphs, other line ends are breaks. */
std::string MarkupOfText(std::string_view text);

}  // namespace pw
