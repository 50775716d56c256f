#pragma once
// What the HTML language says of element names: which have no end tag, which hold raw text, which
// end others by beginning. Names are lower case.
#include <string_view>

namespace pw::dom {

class Node;

/** Has neither children nor an end tag. */
bool isVoidTag(std::string_view name);
/** Holds text in which neither tags nor references are read: script, style and the like. */
bool isRawTextTag(std::string_view name);
/** Title and textarea: references are read, tags are not. */
bool isEscapableRawTextTag(std::string_view name);
/** Bold, font and the others that the parser opens again when they are left open. */
bool isFormattingTag(std::string_view name);
/** Begins on a line of its own. */
bool isBlockTag(std::string_view name);
/** May be left without an end tag when the right thing follows. */
bool hasOptionalEnd(std::string_view name);
/** The start tag `next` ends an open element `open`, which stands in front of it. */
bool startEnds(std::string_view open, std::string_view next);

bool isVoid(const Node& node);
/** The parser drops a line end that comes first in it. */
bool dropsFirstLineEnd(const Node& node);
/** Its text is written without escaping. */
bool holdsRawText(const Node& node);

}  // namespace pw::dom
