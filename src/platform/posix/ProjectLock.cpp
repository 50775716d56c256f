#include "platform/posix/ProjectLock.h"

#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <cstdint>
#include <filesystem>

#include "platform/FileSystem.h"

namespace pw {

namespace {

namespace fs = std::filesystem;

/** The path with links resolved as far as it exists. */
std::string RealPath(const std::string& native) {
    std::error_code error;
    const fs::path real = fs::weakly_canonical(native, error);
    return error ? native : real.string();
}

/** FNV-1a. Two paths of one hash would merely not be open at the same time. */
std::string HashName(const std::string& text) {
    std::uint64_t hash = 0xcbf29ce484222325u;
    for (const unsigned char c : text)
        hash = (hash ^ c) * 0x100000001b3u;
    return "path-" + std::to_string(hash) + ".lock";
}

/** Killed programs leave their lock files behind. Those of the last day are left alone. */
void Sweep(const std::string& folder) {
    std::error_code error;
    for (const auto& entry : fs::directory_iterator(folder, error)) {
        struct stat status;
        const std::string file = entry.path().string();
        if (!file.ends_with(".lock") || ::lstat(file.c_str(), &status) != 0) continue;
        if (::time(nullptr) - status.st_mtime < 24 * 60 * 60 || !FileLock::IsFree(file)) continue;
        std::unique_ptr<FileLock> stale;
        FileLock::Acquire(file, LockFile::RemoveAtEnd, stale);
    }
}

}  // namespace

std::string ProjectLock::NameByFile() const {
    struct stat status;
    if (::stat(native_.c_str(), &status) != 0) return "";
    return "file-" + std::to_string(status.st_dev) + "-" + std::to_string(status.st_ino) + ".lock";
}

LockOutcome ProjectLock::Acquire(const std::string& path, const std::string& lockFolder,
                                 std::unique_ptr<ProjectLock>& lock, LockHolder* holder,
                                 const ProjectLock* mine) {
    std::error_code ignored;
    const std::string folder = ToNativePath(lockFolder);
    fs::create_directories(fs::path(folder).parent_path(), ignored);
    ::mkdir(folder.c_str(), 0700);
    Sweep(folder);

    std::unique_ptr<ProjectLock> made(new ProjectLock(RealPath(ToNativePath(path)), folder));
    const LockOutcome outcome = FileLock::Acquire(folder + "/" + HashName(made->native_),
                                                  LockFile::RemoveAtEnd, made->byPath_, holder);
    if (outcome != LockOutcome::Locked) return outcome;
    made->fileName_ = made->NameByFile();
    const bool isMine = mine && mine->byFile_ && mine->fileName_ == made->fileName_;
    if (!made->fileName_.empty() && !isMine) {
        const LockOutcome byFile = FileLock::Acquire(folder + "/" + made->fileName_,
                                                     LockFile::RemoveAtEnd, made->byFile_, holder);
        if (byFile != LockOutcome::Locked) return byFile;
    }
    lock = std::move(made);
    return LockOutcome::Locked;
}

void ProjectLock::TakeOver(ProjectLock& mine) {
    if (byFile_ || mine.fileName_ != fileName_) return;
    byFile_ = std::move(mine.byFile_);
    mine.fileName_.clear();
}

bool ProjectLock::FollowFile() {
    const std::string name = NameByFile();
    if (name.empty() || (byFile_ && name == fileName_)) return true;
    std::unique_ptr<FileLock> next;
    if (FileLock::Acquire(folder_ + "/" + name, LockFile::RemoveAtEnd, next) == LockOutcome::Held)
        return false;
    byFile_ = std::move(next);
    fileName_ = name;
    return true;
}

}  // namespace pw
