#pragma once
// The visible text of a stretch of a page, as a reader sees it: blanks collapsed, blocks on lines
// of their own, lines ended by CR LF; and which node each piece of it comes from.
#include <string>
#include <vector>

#include "platform/dom/Document.h"

namespace pw::dom {

/** A boundary: in front of `node`, or in a text in front of this byte. None: behind everything. */
struct Boundary {
    const Node* node = nullptr;
    std::size_t offset = 0;
};
Boundary boundaryOf(const Position& position);

struct FlatText {
    /** `length` bytes of text at `flat` come from `node`'s data at `offset`, byte for byte. */
    struct Run {
        std::size_t flat;
        Node* node;
        std::size_t offset;
        std::size_t length;
    };
    std::string text;
    std::vector<Run> runs;

    /** Where the byte at this place of the text stands in the page. */
    Position positionAt(std::size_t flat) const;
    /** As positionAt, for the end of a stretch: behind the byte in front. */
    Position endAt(std::size_t flat) const;
};

/** Of everything below `top`. */
FlatText flatten(const Node& top);
/** Of what lies below `top` between two boundaries. */
FlatText flatten(const Node& top, const Boundary& from, const Boundary& to);

}  // namespace pw::dom
