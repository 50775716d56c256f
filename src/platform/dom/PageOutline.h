#pragma once
// Where a parser finds the tags of a frameset and the comments around the body, as places in the
// text of a page. A search of the text would also find what stands in comments, scripts and values.
#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

namespace pw::dom {

struct PageOutline {
    struct Stretch {
        std::size_t begin = 0;
        std::size_t end = 0;
    };
    /** An element that hides its content from what shows frames. Without an end tag it goes on to
     *  the text's end. */
    struct Noframes {
        Stretch whole;
        Stretch content;
        bool isInHead = false;  ///< in front of the head's end tag, or of where it would stand
    };
    struct Frameset {
        std::size_t begin = 0;
        std::optional<std::size_t> end;  ///< behind its end tag, where it has one
    };
    enum class Place { BeforeBody, InBody, BehindBody };
    struct Comment {
        Stretch whole;  ///< with "<!--" and "-->"
        Place place = Place::BeforeBody;
    };

    std::optional<Frameset> frameset;  ///< the outermost one, which a page has instead of a body
    std::vector<Noframes> noframes;    ///< in their order
    std::vector<Comment> comments;     ///< in the order of the tree; "<?" and "<!x" are none
    std::vector<Stretch> head;         ///< its tags, and what it holds but for comments
    std::size_t bodyEnd = 0;           ///< behind the last byte of what the body holds; 0: nothing
    std::size_t htmlStartEnd = 0;      ///< behind the doctype and the start tag of the html element
    std::optional<std::size_t> htmlEnd;  ///< where the end tag of the html element begins
};

/** None for what can not be parsed as a page. */
std::optional<PageOutline> outlineOf(std::string_view page);

}  // namespace pw::dom
