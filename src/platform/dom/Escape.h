#pragma once
// Character references: writing text so that it reads back the same, and finding which bytes of a
// page stand for which stretch of its text.
#include <cstddef>
#include <string>
#include <string_view>

namespace pw::dom {

enum class TextContext {
    Normal,     ///< references are read and tags end it
    Escapable,  ///< title and textarea: references alone
    Raw         ///< script, style and the like: nothing is read
};

/** With CR LF and lone CR as LF. */
std::string withLineFeeds(std::string_view text);

/** Text content; line feeds are written as `lineEnd`. */
std::string escapeText(std::string_view text, TextContext context, std::string_view lineEnd);
/** The value of an attribute, to stand between these quotes. */
std::string escapeAttribute(std::string_view value, char quote, std::string_view lineEnd);

/** What a run "&name;" or "&name" stands for with all that follows in the run; the run itself when
 *  it is no reference. */
std::string decodeReference(std::string_view run);

/** The value that these bytes between the quotes of an attribute stand for; line ends are LF. */
std::string decodeAttribute(std::string_view source);

/** The smallest stretch of bytes at `source`'s beginning that stands for a stretch of text at
 *  `text`'s beginning. `source` 0: the bytes do not stand for this text. */
struct Unit {
    std::size_t source = 0;
    std::size_t text = 0;
};
Unit nextUnit(std::string_view source, std::string_view text, TextContext context);

/** Bytes of `source` that stand for the whole of `text`; npos when they do not. */
std::size_t alignedLength(std::string_view source, std::string_view text, TextContext context);

/** True when a tag, a comment or the like begins here ("<" is the first byte). */
bool beginsMarkup(std::string_view source);

}  // namespace pw::dom
