#pragma once
// What a file is by its content, whatever its name says.
#include <string_view>

namespace pw {

/** Bytes at the beginning of a file that are enough for the routines below. */
constexpr std::size_t kKindPrefix = 64 * 1024;

/** A picture that browsers show, drawings in SVG among them. */
bool IsPictureContent(std::string_view bytes);
bool IsFontContent(std::string_view bytes);
/** Sound, film, or something else that is played. */
bool IsMediaContent(std::string_view bytes);
/** A Java class or an archive of them. */
bool IsJavaContent(std::string_view bytes);

}  // namespace pw
