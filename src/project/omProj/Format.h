#pragma once
// Facts about the project file that several routines share; docs/project-file.md tells the layout.
#include <cstdint>

namespace pw {

constexpr std::uint16_t kFormatVersion = 2;          ///< in `user_version`
constexpr std::int32_t kApplicationId = 0x50577031;  ///< "PWp1", in `application_id`
constexpr std::int64_t kPartSize = 4 << 20;          ///< bytes of a file in one row
constexpr std::int64_t kPartsPerFile = 1024;
constexpr std::int64_t kMaximumFileSize = kPartSize * kPartsPerFile;

}  // namespace pw
