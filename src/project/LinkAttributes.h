#pragma once
// Where references stand in a page: one table of tags and attributes, and the walks through it.
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/dom/Document.h"

namespace pw {

enum class ReferenceKind {
    Link,   ///< of A and AREA
    Frame,  ///< in a masked frameset
    Page,   ///< leads to a page or file in another way: a form, a frame in the text, a refresh …
    File    ///< is shown or used in the page itself: a picture, a script, url() in styles …
};
/** Answers what must stand in the place of the reference; none leaves it. */
using RewriteReference =
    std::function<std::optional<std::string>(ReferenceKind kind, const std::string& value)>;

/** True when elements of that tag (in any case) lead to another page or file by that attribute. */
bool IsLinkAttribute(std::string_view tag, std::string_view name);

/** Calls `visit` with every link in the text of a page, as ReferenceKind::File is none. */
void ForEachLink(std::string_view html, const std::function<void(const std::string&)>& visit);

/** Rewrites the links of a parsed page that stand in elements: `rewrite` answers the new value of a
 *  local reference, or none. Elements that `skip` names are passed over, and pages in attributes.
 */
void RewriteLinkAttributes(
    dom::Document& document,
    const std::function<std::optional<std::string>(const std::string&)>& rewrite,
    bool (*skip)(const dom::Node&) = nullptr);

/** What was changed in a page. */
struct ChangedReference {
    int element = -1;       ///< index among all elements and comments of the document
    std::string attribute;  ///< "" where it is the text of the element or comment
    std::string former;     ///< what stood there
};
enum class FramesetMasked { No, Yes };
/** Rewrites every local reference of a page: those in attributes, in styles, in the text for
 *  visitors without frames, and in the comments that mask a frameset. */
std::vector<ChangedReference> RewriteReferences(dom::Document& document, FramesetMasked frameset,
                                                const RewriteReference& rewrite);

enum class LookFor { Links, AllReferences };
/** A quick look at the text of a page, or at its bytes in whatever encoding: false only when surely
 *  none of its references holds the name of the file or folder and `concerns` the asker. */
bool MayHoldReference(std::string_view bytes, std::string_view name, LookFor what,
                      const std::function<bool(ReferenceKind, const std::string&)>& concerns);

}  // namespace pw
