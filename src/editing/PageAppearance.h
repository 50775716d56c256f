#pragma once
// The looks of a page that stand in its own tags: what its body has by way of background, colours
// and margins, and the sound in its head.
#include <array>
#include <optional>
#include <string>

#include "platform/DialogHost.h"
#include "platform/dom/Document.h"

namespace pw {

enum PageColor { kPageColor, kTextColor, kLinkColor, kVisitedColor, kActiveColor };
enum PageMargin { kLeftMargin, kTopMargin };

struct PageAppearance {
    static constexpr int kEndless = -1;

    std::string background;  ///< address of the picture as written, "" without one
    bool watermark = false;  ///< the background stays while the page scrolls
    /** By PageColor; where the page tells none, the browsers' own. */
    std::array<Color, 5> colors{0xFFFFFF, 0x000000, 0xFF0000, 0x800080, 0x0000FF};
    std::array<std::optional<int>, 2> margins;  ///< pixels, by PageMargin
    std::string sound;                          ///< address as written, "" without one
    int loop = 1;                               ///< how often it is played

    bool operator==(const PageAppearance&) const = default;
};

/** False for a page without a body, which has no such looks. */
bool HasAppearance(const dom::Document& document);
PageAppearance ReadAppearance(const dom::Document& document);
/** Writes what is to be otherwise than it is, and touches nothing else; one undo step. */
void WriteAppearance(dom::Document& document, const PageAppearance& wanted);

}  // namespace pw
