#pragma once
// A short list in the settings, newest first: its entries are the values "NAME 1", "NAME 2", …
#include <string>
#include <string_view>
#include <vector>

#include "platform/SettingsHive.h"

namespace pw {

std::vector<std::string> RecentList(const SettingsHive& hive, std::string_view section,
                                    std::string_view name, int length);

/** Puts an entry first, and takes the same one from its former place. An empty one is none. */
void AddToRecentList(SettingsHive& hive, std::string_view section, std::string_view name,
                     int length, const std::string& entry);

void RemoveFromRecentList(SettingsHive& hive, std::string_view section, std::string_view name,
                          int length, const std::string& entry);

}  // namespace pw
