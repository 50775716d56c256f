#pragma once
// What office programs, mail programs and web pages put on the clipboard, as a page would have it:
// paragraphs, headings, lists, tables, links and pictures, bold, italic and underlined text, and
// colours that say something. Classes, fonts, sizes and the rest of their styles stay behind, as do
// scripts, hidden text and what the programs note for themselves.
#include <string>
#include <string_view>

#include "platform/editor/CleanMarkup.h"

namespace pw {

/** A picture on this machine is left out, with its description in its place, unless `adopter` takes
 *  it over. One paragraph alone comes out as its text, which joins the paragraph at the caret. */
std::string ForeignMarkup(std::string_view fragment, const AddressAdopter& adopter);

}  // namespace pw
