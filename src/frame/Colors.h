#pragma once
// Colours as pages write them.
#include <optional>
#include <string>
#include <string_view>

#include "platform/DialogHost.h"

namespace pw {

/** "#rrggbb", in small letters. */
std::string HtmlColor(Color color);

/** The colour that a page means by "#rrggbb", "#rgb", the same without the mark, or a name such as
 *  "navy". None for a text that is none of these. */
std::optional<Color> ParseHtmlColor(std::string_view text);

}  // namespace pw
