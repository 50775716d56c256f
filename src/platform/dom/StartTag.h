#pragma once
// A start tag as it is written in a page: finding and changing one attribute in it while all its
// other bytes stay.
#include <optional>
#include <string>
#include <string_view>

#include "platform/dom/Node.h"

namespace pw::dom {

/** The start tag with this attribute set, or without it when there is no value. Line ends of the
 *  value are written as `lineEnd`. */
std::string patchStartTag(std::string_view tag, std::string_view name,
                          const std::optional<std::string>& value, std::string_view lineEnd);

/** The start tag of a node that has none in the page. */
std::string canonicalStartTag(const Node& element, std::string_view lineEnd);

}  // namespace pw::dom
