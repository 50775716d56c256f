#pragma once
// The choice of a project to open.
#include <string>

namespace pw {

struct FrameContext;

/** Asks for a project file; "" when cancelled. */
std::string ChooseProject(FrameContext& context);

}  // namespace pw
