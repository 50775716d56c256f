#pragma once
// Which elements may stand within which. The view lets its commands build what no text of a page
// stands for ("<p><ul>"): read again it would be another tree. What they have built is mended here
// as an editor would do it: the paragraph is split around the list.
#include <vector>

#include "platform/dom/Document.h"

namespace pw::dom {

/** Looks at these nodes, which have just been put where they are, at what is below them and at the
 *  elements around them, and mends what a parser would read otherwise. The selection stays where it
 *  is. Nothing is looked at or changed that these have nothing to do with. */
void mendNesting(Document& document, const std::vector<Node*>& placed);

}  // namespace pw::dom
