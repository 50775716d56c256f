#include "frame/Versions.h"

#include <uuid/uuid.h>

#include <cstdint>

#include "platform/Text.h"

namespace pw {

namespace {

/** Two decimal digits for the first parts and four for the third, all read as hexadecimal. */
std::uint64_t VersionNumber(const std::vector<std::string>& parts) {
    std::uint64_t number = 0;
    constexpr int digits[] = {2, 2, 4};
    for (std::size_t i = 0; i < 3; ++i) {
        auto value = std::uint64_t(i < parts.size() ? std::max(0.0, Val(parts[i])) : 0);
        std::uint64_t asRead = 0;
        for (int place = 0; place < digits[i]; ++place, value /= 10)
            asRead |= (value % 10) << (4 * place);
        // A part with more digits than its place counts as the newest.
        if (value > 0) asRead = (std::uint64_t(1) << (4 * digits[i])) - 1;
        number = (number << (4 * digits[i])) | asRead;
    }
    return number;
}

}  // namespace

Version ProgramVersion() {
    return {PAGEWICK_VERSION_MAJOR, PAGEWICK_VERSION_MINOR, PAGEWICK_VERSION_REVISION};
}

std::string GetVersionString() {
    const Version version = ProgramVersion();
    return std::to_string(version.major) + "." + std::to_string(version.minor) + "." +
           std::to_string(version.revision);
}

int CompareVersions(std::string_view a, std::string_view b) {
    const auto first = Split(a, '.');
    const auto second = Split(b, '.');
    if (first.size() != second.size() || first.size() < 2) return -2;
    const auto x = VersionNumber(first);
    const auto y = VersionNumber(second);
    return x < y ? -1 : x > y ? 1 : 0;
}

std::string MakeGUID(int format) {
    uuid_t id;
    uuid_generate_random(id);
    char text[37];
    uuid_unparse_upper(id, text);
    return format == 0 ? std::string(text) : ReplaceAll(text, "-", "");
}

}  // namespace pw
