#include "frame/RegistryTools.h"

#include "frame/Settings.h"
#include "platform/Text.h"

namespace pw {

namespace {

std::string SectionKey(std::string_view section) {
    return section.empty() ? std::string(kSettingsKey)
                           : std::string(kSettingsKey) + "\\" + std::string(section);
}

}  // namespace

HiveValue RegGetValue(const SettingsHive& hive, std::uint32_t root, std::string_view key,
                      std::string_view name) {
    return hive.Get(root, key, name);
}

bool RegSetValue(SettingsHive& hive, std::uint32_t root, std::string_view key,
                 std::string_view name, std::string_view value, RegType type) {
    if (type == RegType::String) return hive.Set(root, key, name, std::string(value));
    // Through 64 bits: -1 is a truth value, and colours use the upper half.
    const double number = Val(value);
    if (!(number >= -2147483648.0 && number <= 4294967295.0)) return false;
    return hive.Set(root, key, name, std::uint32_t(std::int64_t(number)));
}

bool RegCreateKey(SettingsHive& hive, std::uint32_t root, std::string_view key) {
    return hive.CreateKey(root, key);
}

bool RegDeleteValue(SettingsHive& hive, std::uint32_t root, std::string_view key,
                    std::string_view name) {
    return hive.DeleteValue(root, key, name);
}

bool RegKeyExists(const SettingsHive& hive, std::uint32_t root, std::string_view key) {
    return hive.KeyExists(root, key);
}

std::string RegEnumKey(const SettingsHive& hive, std::uint32_t root, std::string_view key,
                       int index) {
    return hive.EnumKey(root, key, index);
}

std::string RegText(const SettingsHive& hive, std::string_view section, std::string_view name) {
    const HiveValue value = hive.Get(kUserRoot, SectionKey(section), name);
    const auto* text = std::get_if<std::string>(&value);
    return text ? *text : "";
}

std::int32_t RegNumber(const SettingsHive& hive, std::string_view section, std::string_view name) {
    const HiveValue value = hive.Get(kUserRoot, SectionKey(section), name);
    const auto* number = std::get_if<std::uint32_t>(&value);
    return number ? std::int32_t(*number) : 0;
}

bool SetRegText(SettingsHive& hive, std::string_view section, std::string_view name,
                std::string_view value) {
    return hive.Set(kUserRoot, SectionKey(section), name, std::string(value));
}

bool SetRegNumber(SettingsHive& hive, std::string_view section, std::string_view name,
                  std::int32_t value) {
    return hive.Set(kUserRoot, SectionKey(section), name, std::uint32_t(value));
}

}  // namespace pw
