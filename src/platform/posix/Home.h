#pragma once
#include <string>

namespace pw {

/** $HOME, or the home of the user's account. Native; never empty. */
std::string NativeHome();
/** The home of the user's account, whatever the environment says. Native; "" when unknown. */
std::string NativeAccountHome();

}  // namespace pw
