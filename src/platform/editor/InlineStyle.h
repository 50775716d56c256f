#pragma once
// The style attribute of one element, and what of it a plain page keeps.
#include <string>
#include <string_view>
#include <vector>

#include "platform/dom/Node.h"

namespace pw {

class InlineStyle {
  public:
    explicit InlineStyle(std::string_view css);
    // The values are parts of the text.
    InlineStyle(const InlineStyle&) = delete;
    InlineStyle& operator=(const InlineStyle&) = delete;
    /** The last one of that name, trimmed; "" when it is not set. */
    std::string_view Value(std::string_view name) const;
    /** Without regard to case. */
    bool Holds(std::string_view name, std::string_view part) const;
    bool IsHidden() const;
    /** "center", "right" or "justify"; "" for the usual. */
    std::string Alignment() const;
    /** Lines round the element or on some of its sides. */
    bool HasBorder() const;
    /** A colour as attributes want it; "" where none or a transparent one is set. */
    std::string Color() const;
    std::string Background() const;

  private:
    struct Declaration {
        std::string name;
        std::string_view value;
    };
    std::string css_;
    std::vector<Declaration> declarations_;
};

InlineStyle StyleOf(const dom::Node& element);

/** How a stretch of text looks. */
struct Looks {
    enum class Height { Line, Subscript, Superscript };
    bool bold = false;
    bool italic = false;
    bool underlined = false;
    bool struck = false;
    Height height = Height::Line;
    std::string color;       ///< "" for that of the page
    std::string background;  ///< "" for none
};

/** Changes `looks` by what a style says. */
void Apply(const InlineStyle& style, Looks& looks);

/** Black, white and greys: programs write them on every text, and a page has its own. */
bool IsColorless(std::string_view color);

/** A length in pixels, from "12pt", "3cm", "40px" or a bare number; 0 for others, such as "50%". */
int PixelsOf(std::string_view length);

}  // namespace pw
