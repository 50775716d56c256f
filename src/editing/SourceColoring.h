#pragma once
// Finds in a page's source what the source view colours: tags, the names of properties and their
// values, comments. Works line by line, so that a view need only look at the lines it shows.
#include <cstddef>
#include <string_view>
#include <vector>

namespace pw {

enum class SourcePart { Tag, Property, Value, Comment };

/** A piece of a line, in units of the text that was given. What no span covers is plain text. */
struct SourceSpan {
    std::size_t start = 0;
    std::size_t length = 0;
    SourcePart part = SourcePart::Tag;
    bool operator==(const SourceSpan&) const = default;
};

/** What a line leaves to the next one: an opaque number, 0 at the start of a text. */
using SourceLineState = int;

/** Colours one line, without its line end, and takes the state on to the next line. */
std::vector<SourceSpan> ColorSourceLine(std::string_view line, SourceLineState& state);
/** For views that count in UTF-16. */
std::vector<SourceSpan> ColorSourceLine(std::u16string_view line, SourceLineState& state);

}  // namespace pw
