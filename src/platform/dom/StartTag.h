#pragma once
// A start tag as it is written in a page: finding its attributes, and changing one while all its
// other bytes stay. A tag begins with its "<"; what stands behind its ">" is not looked at.
#include <optional>
#include <string>
#include <string_view>

#include "platform/dom/Node.h"

namespace pw::dom {

std::size_t endOfTagName(std::string_view tag);

/** Where an attribute stands in its tag. */
struct AttributePlace {
    std::size_t name;
    std::size_t nameEnd;
    std::size_t value;     ///< behind the opening quote
    std::size_t valueEnd;  ///< equals value when there is none
    std::size_t end;       ///< behind the closing quote
    char quote;            ///< 0 when there is none
    bool hasValue;
};
/** The next attribute from `at` on, and `at` moved behind it; at the tag's end none, and `at`
 * stands on its ">" or at the end of the text. */
std::optional<AttributePlace> nextAttribute(std::string_view tag, std::size_t& at);

/** The start tag with this attribute set, or without it when there is no value. Line ends of the
 *  value are written as `lineEnd`. */
std::string patchStartTag(std::string_view tag, std::string_view name,
                          const std::optional<std::string>& value, std::string_view lineEnd);

/** The start tag of a node that has none in the page. */
std::string canonicalStartTag(const Node& element, std::string_view lineEnd);

}  // namespace pw::dom
