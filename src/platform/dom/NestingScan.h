#pragma once
// A quick look at markup before it is parsed. Building the tree costs time that grows with the
// square of the depth of nesting and of the attributes of a tag, so what exceeds all reason is
// refused before.
#include <string>
#include <string_view>

namespace pw::dom {

inline constexpr std::size_t kDeepestNesting = 1000;
inline constexpr std::size_t kMostAttributes = 500;
inline constexpr std::size_t kLargestPage = 128u << 20;

/** What makes this markup impossible to open, with what to do about it; "" when nothing does.
 *  Elements that are ended by what follows (p, li, td …) do not count as nested. */
std::string findExcess(std::string_view markup);

}  // namespace pw::dom
