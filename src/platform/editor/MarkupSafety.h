#pragma once
// What of a page from outside must not come into one of the user's: whatever runs, and what belongs
// in a head.
#include <string_view>

#include "platform/dom/Node.h"

namespace pw {

/** An address that runs a script when it is followed. */
bool RunsScript(std::string_view address);
/** Goes with all below it. */
bool IsUnsafe(const dom::Node& node);
bool IsUnsafe(const dom::Attribute& attribute);

}  // namespace pw
