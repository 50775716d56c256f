#include "frame/RecentList.h"

#include <algorithm>

#include "frame/RegistryTools.h"

namespace pw {

namespace {

std::string ValueName(std::string_view name, int number) {
    return std::string(name) + " " + std::to_string(number);
}

void Store(SettingsHive& hive, std::string_view section, std::string_view name, int length,
           const std::vector<std::string>& list) {
    const HiveBatch batch(hive);
    for (int i = 0; i < length; ++i) {
        // A list that can not be kept is no reason to bother anybody.
        static_cast<void>(SetRegText(hive, section, ValueName(name, i + 1),
                                     i < int(list.size()) ? list[std::size_t(i)] : ""));
    }
}

}  // namespace

std::vector<std::string> RecentList(const SettingsHive& hive, std::string_view section,
                                    std::string_view name, int length) {
    std::vector<std::string> list;
    for (int number = 1; number <= length; ++number) {
        std::string entry = RegText(hive, section, ValueName(name, number));
        if (!entry.empty()) list.push_back(std::move(entry));
    }
    return list;
}

void AddToRecentList(SettingsHive& hive, std::string_view section, std::string_view name,
                     int length, const std::string& entry) {
    if (entry.empty()) return;
    std::vector<std::string> list = RecentList(hive, section, name, length);
    if (!list.empty() && list.front() == entry) return;
    std::erase(list, entry);
    list.insert(list.begin(), entry);
    Store(hive, section, name, length, list);
}

void RemoveFromRecentList(SettingsHive& hive, std::string_view section, std::string_view name,
                          int length, const std::string& entry) {
    std::vector<std::string> list = RecentList(hive, section, name, length);
    std::erase(list, entry);
    Store(hive, section, name, length, list);
}

}  // namespace pw
