#pragma once
#include <string>
#include <string_view>

namespace pw {

struct Version {
    int major = 0;
    int minor = 0;
    int revision = 0;
};

/** Of this program. */
Version ProgramVersion();
/** "2.0.0", of this program. */
std::string GetVersionString();

/**
 * -1, 0 or 1 as `a` is older, the same or newer; -2 when the two do not have the same number of
 * parts or are no versions of two or more parts. Parts behind the third do not count.
 */
int CompareVersions(std::string_view a, std::string_view b);

/** A new random identifier in capitals: "8-4-4-4-12" digits with format 0, else without "-". */
std::string MakeGUID(int format);

}  // namespace pw
