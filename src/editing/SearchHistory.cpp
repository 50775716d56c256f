#include "editing/SearchHistory.h"

#include "frame/RecentList.h"

namespace pw {

namespace {

constexpr const char* kSection = "Search";
constexpr const char* kFind = "Find";
constexpr const char* kReplace = "Replace";
constexpr int kLength = 20;

}  // namespace

std::vector<std::string> SearchHistory::Find() const {
    return RecentList(hive_, kSection, kFind, kLength);
}

std::vector<std::string> SearchHistory::Replace() const {
    return RecentList(hive_, kSection, kReplace, kLength);
}

void SearchHistory::Remember(const std::string& find, const std::string& replace) {
    AddToRecentList(hive_, kSection, kFind, kLength, find);
    AddToRecentList(hive_, kSection, kReplace, kLength, replace);
}

}  // namespace pw
