#pragma once
// Whether what a routine or an add-in has put into a page is still there, as what it is, when the
// page is read again.
#include <string_view>

#include "platform/dom/Document.h"

namespace pw {

/** False for a page without a body: a frameset, whose markup holds frames alone. */
bool CanHoldInsertions(const dom::Document& document);

/** True when the page's own text, parsed, has this node at the same place with the same content. */
bool ReadsBack(const dom::Document& document, const dom::Node& node);

/** Puts markup at the end of the body. False, with the page to be rolled back, when some of its
 * tags have no meaning there or it would not read back. */
bool AppendToBody(dom::Document& document, std::string_view html);

}  // namespace pw
