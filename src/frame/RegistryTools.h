#pragma once
// The registry operations, and typed reads for values with a default. A missing or wrongly typed
// value reads as empty.
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include "platform/SettingsHive.h"

namespace pw {

/** Writes of one scope become one commit. */
class HiveBatch {
  public:
    explicit HiveBatch(SettingsHive& hive) : hive_(hive) { hive_.Begin(); }
    ~HiveBatch() {
        if (isOpen_) hive_.Commit();
    }
    HiveBatch(const HiveBatch&) = delete;
    HiveBatch& operator=(const HiveBatch&) = delete;

    /** Ends it; false when nothing of it could be kept. */
    [[nodiscard]] bool Commit() { return !std::exchange(isOpen_, false) || hive_.Commit(); }

  private:
    SettingsHive& hive_;
    bool isOpen_ = true;
};

enum class RegType { String = 1, Number = 4 };

HiveValue RegGetValue(const SettingsHive& hive, std::uint32_t root, std::string_view key,
                      std::string_view name);
/** A number is read from the value's text. */
bool RegSetValue(SettingsHive& hive, std::uint32_t root, std::string_view key,
                 std::string_view name, std::string_view value, RegType type);
bool RegCreateKey(SettingsHive& hive, std::uint32_t root, std::string_view key);
bool RegDeleteValue(SettingsHive& hive, std::uint32_t root, std::string_view key,
                    std::string_view name);
bool RegKeyExists(const SettingsHive& hive, std::uint32_t root, std::string_view key);
/** Name of the sub-key at an index from 0, "" behind the last. */
std::string RegEnumKey(const SettingsHive& hive, std::uint32_t root, std::string_view key,
                       int index);

/** Below the program's own key of the user's root; `section` may be "". */
std::string RegText(const SettingsHive& hive, std::string_view section, std::string_view name);
std::int32_t RegNumber(const SettingsHive& hive, std::string_view section, std::string_view name);
bool SetRegText(SettingsHive& hive, std::string_view section, std::string_view name,
                std::string_view value);
bool SetRegNumber(SettingsHive& hive, std::string_view section, std::string_view name,
                  std::int32_t value);

}  // namespace pw
