#pragma once
#include <string>
#include <string_view>
#include <vector>

namespace pw {

/** Replaces every character that is not welcome in the name of a file of a site. */
std::string ReplaceIllegalChars(std::string_view text, std::string_view replacement);
/** Of a key's character code: letters, digits, "-", "_", backspace and Enter. */
bool IsAlphanumericKey(int code);
/** False for the characters that no file name may hold. */
bool IsFilenameKey(int code);
/** Makes 0 of every key's code but those of digits and of backspace: for boxes of whole numbers. */
void DigitsOnly(int& code);
/** What is wrong with a name for a file or folder on disk, as a sentence for the user; "" when
 *  nothing is. `kind` is "file" or "folder". */
std::string DiskNameProblem(std::string_view kind, std::string_view name);
/** For messages: "'a', 'b', 'c' and 5 others". */
std::string ListOfNames(const std::vector<std::string>& names);
int CountChars(char character, std::string_view text);
/** Drops ".", "&" and ":", which captions of commands carry. */
std::string RemoveMenuMarks(std::string_view text);
int CountWords(std::string_view text);
/** What stands behind the first "//", or the whole text. */
std::string StripDoubleSlashes(std::string_view url);

}  // namespace pw
