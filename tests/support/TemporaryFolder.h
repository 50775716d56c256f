#pragma once
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "platform/FileSystem.h"

namespace pw::test {

/** A real folder of its own, removed at the end of its scope with all below it. */
class TemporaryFolder {
  public:
    TemporaryFolder() {
        std::string name = (std::filesystem::temp_directory_path() / "pw-test-XXXXXX").string();
        if (!::mkdtemp(name.data())) std::abort();
        native_ = std::filesystem::canonical(name).string();
    }
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(native_, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::string& Native() const { return native_; }
    std::string Native(const std::string& name) const { return native_ + "/" + name; }
    /** With backslashes. `name` may lead below it: "site\\media\\a.gif". */
    std::string Path(const std::string& name = "") const {
        return FromNativePath(native_) + (name.empty() ? "" : "\\" + name);
    }

    /** Writes a file, and its folders if need be; returns its path. `name` as for Path. */
    std::string Put(const std::string& name, const std::string& bytes) const {
        const std::filesystem::path file = ToNativePath(Path(name));
        std::filesystem::create_directories(file.parent_path());
        std::ofstream(file, std::ios::binary) << bytes;
        return Path(name);
    }
    /** "(missing)" when there is no such file. */
    std::string Get(const std::string& name) const {
        std::ifstream in(ToNativePath(Path(name)), std::ios::binary);
        if (!in) return "(missing)";
        return {std::istreambuf_iterator<char>(in), {}};
    }
    bool Has(const std::string& name) const {
        return std::filesystem::exists(std::filesystem::symlink_status(ToNativePath(Path(name))));
    }

  private:
    std::string native_;
};

}  // namespace pw::test
