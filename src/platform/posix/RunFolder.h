#pragma once
// The folder of one running program below the temporary folder. A lock says that the program runs;
// a folder without a held lock was left by one that crashed. Paths are written with backslashes.
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "platform/FileSystem.h"
#include "platform/posix/FileLock.h"

namespace pw {

/** What a crashed program has left. */
struct AbandonedRun {
    std::string folder;
    std::int64_t started = 0;  ///< nanoseconds since 1970
};

class RunFolder {
  public:
    /** A new one named "run-…", mode 0700. Null when it cannot be made. */
    static std::unique_ptr<RunFolder> Create(FileSystem& files, const std::string& temporaryFolder);
    /** Newest first. */
    static std::vector<AbandonedRun> FindAbandoned(const FileSystem& files,
                                                   const std::string& temporaryFolder);
    /** Removes what is left of folders whose removal was cut short. */
    static void SweepLeaving(FileSystem& files, const std::string& temporaryFolder);
    /** Makes an abandoned folder this program's own. Null when another program was quicker. */
    static std::unique_ptr<RunFolder> TakeOver(FileSystem& files, const std::string& folder);
    /** Removes an abandoned folder; NoPermission when a program runs in it. */
    [[nodiscard]] static FileError Discard(FileSystem& files, const std::string& folder);

    /** Unlocks it. A folder that was not removed counts as abandoned from then on. */
    ~RunFolder() = default;

    const std::string& Path() const { return path_; }
    /** At a regular end: removes it with all below it and unlocks. It goes as one: where it can not
     *  be put out of the way first, all of it stays. */
    [[nodiscard]] FileError Remove();

  private:
    RunFolder(FileSystem& files, std::string path, std::unique_ptr<FileLock> lock)
        : files_(files), path_(std::move(path)), lock_(std::move(lock)) {}

    FileSystem& files_;
    std::string path_;
    std::unique_ptr<FileLock> lock_;
};

}  // namespace pw
