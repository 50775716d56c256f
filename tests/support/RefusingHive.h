#pragma once
// A settings hive that refuses on demand, as one on a full or read-only disk does.
#include <memory>
#include <set>
#include <string>
#include <utility>

#include "platform/SettingsHive.h"

namespace pw::test {

class RefusingHive : public SettingsHive {
  public:
    std::set<std::string> refused;  ///< names of values
    bool refusesCommit = false;     ///< and so nothing of a batch is kept

    HiveValue Get(std::uint32_t root, std::string_view key, std::string_view name) const override {
        return hive_->Get(root, key, name);
    }
    bool Set(std::uint32_t root, std::string_view key, std::string_view name,
             const HiveValue& value) override {
        return refused.count(std::string(name)) == 0 && hive_->Set(root, key, name, value);
    }
    bool CreateKey(std::uint32_t root, std::string_view key) override {
        return hive_->CreateKey(root, key);
    }
    bool DeleteKey(std::uint32_t root, std::string_view key) override {
        return hive_->DeleteKey(root, key);
    }
    bool DeleteValue(std::uint32_t root, std::string_view key, std::string_view name) override {
        return hive_->DeleteValue(root, key, name);
    }
    bool KeyExists(std::uint32_t root, std::string_view key) const override {
        return hive_->KeyExists(root, key);
    }
    std::string EnumKey(std::uint32_t root, std::string_view key, int index) const override {
        return hive_->EnumKey(root, key, index);
    }
    void Begin() override { hive_->Begin(); }
    bool Commit() override { return hive_->Commit() && !refusesCommit; }

  private:
    std::unique_ptr<SettingsHive> hive_ = MakeMemoryHive();
};

}  // namespace pw::test
