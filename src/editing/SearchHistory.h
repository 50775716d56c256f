#pragma once
// What was searched for and what was put in its place, newest first; the settings keep it.
#include <string>
#include <vector>

#include "platform/SettingsHive.h"

namespace pw {

class SearchHistory {
  public:
    explicit SearchHistory(SettingsHive& hive) : hive_(hive) {}
    std::vector<std::string> Find() const;
    std::vector<std::string> Replace() const;
    /** Empty texts are not kept. */
    void Remember(const std::string& find, const std::string& replace);

  private:
    SettingsHive& hive_;
};

}  // namespace pw
