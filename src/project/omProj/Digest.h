#pragma once
// A fast 64-bit checksum of bytes (xxHash64). It finds damage and changes, not forgeries.
#include <cstdint>
#include <string_view>

namespace pw {

/** The checksum of several pieces in a row is that of each with the one before as its seed. */
std::uint64_t Digest(std::string_view bytes, std::uint64_t seed = 0);

}  // namespace pw
