#pragma once
// A store of keys and values: roots are numbers, keys are paths with backslashes, values are text
// or 32-bit numbers. Key and value names are compared without regard to case.
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <variant>

namespace pw {

constexpr std::uint32_t kUserRoot = 0x80000001;     ///< the user's own, kept on disk
constexpr std::uint32_t kMachineRoot = 0x80000002;  ///< a read-only table

/** Empty when missing. */
using HiveValue = std::variant<std::monostate, std::string, std::uint32_t>;

class SettingsHive {
  public:
    virtual ~SettingsHive() = default;
    virtual HiveValue Get(std::uint32_t root, std::string_view key,
                          std::string_view name) const = 0;
    [[nodiscard]] virtual bool Set(std::uint32_t root, std::string_view key, std::string_view name,
                                   const HiveValue& value) = 0;
    [[nodiscard]] virtual bool CreateKey(std::uint32_t root, std::string_view key) = 0;
    [[nodiscard]] virtual bool DeleteKey(std::uint32_t root, std::string_view key) = 0;
    [[nodiscard]] virtual bool DeleteValue(std::uint32_t root, std::string_view key,
                                           std::string_view name) = 0;
    virtual bool KeyExists(std::uint32_t root, std::string_view key) const = 0;
    /** Name of the sub-key at an index from 0, "" behind the last. */
    virtual std::string EnumKey(std::uint32_t root, std::string_view key, int index) const = 0;
    /** Groups the writes up to the Commit into one; they may lie within each other. */
    virtual void Begin() {}
    /** False when the outermost could not be kept: then nothing since its Begin is. */
    virtual bool Commit() { return true; }
};

/** What the machine's root knows. */
struct MachineTable {
    std::string engineVersion = "5.0";  ///< of the page engine; "" when there is none
    std::string browserPath;            ///< the desktop's browser; "" asks the system
};

/** In memory only. Answers the machine root from the same table as the one on disk. */
std::unique_ptr<SettingsHive> MakeMemoryHive(const MachineTable& machine = {});
/**
 * In the file at a native path, mode 0600. A damaged file is moved aside; a file that cannot be
 * used at all is replaced by a hive in memory. Both are told in `message`, which may be null.
 */
std::unique_ptr<SettingsHive> MakeFileHive(const std::string& nativePath, std::string* message,
                                           const MachineTable& machine = {});

}  // namespace pw
