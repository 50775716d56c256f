#pragma once
#include <optional>
#include <string>
#include <string_view>

namespace pw {

/** The bytes of a Base64 text, of either alphabet, with or without its padding; blanks and line
 * ends are passed over. None for anything else. */
std::optional<std::string> DecodeBase64(std::string_view text);

}  // namespace pw
