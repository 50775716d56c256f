#pragma once
// Text helpers used everywhere. Text is UTF-8.
#include <string>
#include <string_view>
#include <vector>

namespace pw {

/** Folded for comparison without regard to case, all of Unicode. */
std::string FoldCase(std::string_view text);
char32_t FoldCase(char32_t character);
std::string ToLower(std::string_view text);
std::string ToUpper(std::string_view text);
bool EqualsNoCase(std::string_view a, std::string_view b);
bool StartsWithNoCase(std::string_view text, std::string_view start);
bool EndsWithNoCase(std::string_view text, std::string_view end);
/** Byte position of `what` at or behind `from`, without regard to case; npos when none. */
std::size_t FindNoCase(std::string_view text, std::string_view what, std::size_t from = 0);
/** Of the last occurrence. */
std::size_t FindLastNoCase(std::string_view text, std::string_view what);
/** True when no letter, digit or underscore touches that stretch of the text. */
bool IsWholeWord(std::string_view text, std::size_t start, std::size_t length);
/** Blanks, tabs and line ends off both sides. */
std::string Trim(std::string_view text);
std::string ReplaceAll(std::string_view text, std::string_view what, std::string_view with);
std::string ReplaceAllNoCase(std::string_view text, std::string_view what, std::string_view with);
std::vector<std::string> Split(std::string_view text, char separator);
/** A number as text fields are read: leading blanks, sign, digits, point; garbage reads as 0. */
double Val(std::string_view text);
/** Place of the first byte beyond ASCII at or behind `from`; the size when there is none. */
std::size_t AsciiEnd(std::string_view text, std::size_t from = 0);
bool IsAscii(std::string_view text);
bool IsValidUtf8(std::string_view text);
/** The text with every invalid sequence replaced by U+FFFD. */
std::string MakeValidUtf8(std::string_view text);
std::string PercentDecode(std::string_view text);
/** Number of UTF-16 code units, as a browser counts. */
std::size_t Utf16Length(std::string_view utf8);
/** Byte offset of a UTF-16 offset, clamped to the text and to a character boundary. */
std::size_t ByteOffsetOfUtf16(std::string_view utf8, std::size_t utf16);

}  // namespace pw
