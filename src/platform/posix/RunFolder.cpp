#include "platform/posix/RunFolder.h"

#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/FileSystem.h"

namespace pw {

namespace {

constexpr const char* kPrefix = "run-";
constexpr const char* kUnfinishedPrefix = "new-";
constexpr const char* kLeavingPrefix = "old-";
constexpr const char* kLockName = "lock";

std::string LockPath(const std::string& folder) {
    return ToNativePath(folder) + "/" + kLockName;
}

}  // namespace

std::unique_ptr<RunFolder> RunFolder::Create(FileSystem& files,
                                             const std::string& temporaryFolder) {
    if (files.MakeFolder(temporaryFolder) != FileError::None) return nullptr;
    // Under the name that others look for it appears with its lock held, so that no other program
    // can take it for an abandoned one.
    const std::string parent = ToNativePath(temporaryFolder) + "/";
    std::string unfinished = parent + kUnfinishedPrefix + "XXXXXX";
    if (!::mkdtemp(unfinished.data())) return nullptr;
    std::unique_ptr<FileLock> lock;
    const std::string native = parent + kPrefix + std::to_string(::getpid()) + "-" +
                               unfinished.substr(unfinished.size() - 6);
    const bool locked = FileLock::Acquire(unfinished + "/" + kLockName, LockFile::Keep, lock) ==
                        LockOutcome::Locked;
    if (!locked || ::rename(unfinished.c_str(), native.c_str()) != 0) {
        static_cast<void>(files.RemoveFolder(FromNativePath(unfinished)));
        return nullptr;
    }
    lock->SetPath(native + "/" + kLockName);
    return std::unique_ptr<RunFolder>(
        new RunFolder(files, FromNativePath(native), std::move(lock)));
}

void RunFolder::SweepLeaving(FileSystem& files, const std::string& temporaryFolder) {
    std::vector<FolderEntry> entries;
    if (files.List(temporaryFolder, entries) != FileError::None) return;
    for (const FolderEntry& entry : entries) {
        const std::string folder = temporaryFolder + "\\" + entry.name;
        if (entry.isFolder && entry.name.starts_with(kLeavingPrefix) &&
            FileLock::IsFree(LockPath(folder)))
            static_cast<void>(files.RemoveFolder(folder));
    }
}

std::vector<AbandonedRun> RunFolder::FindAbandoned(const FileSystem& files,
                                                   const std::string& temporaryFolder) {
    std::vector<FolderEntry> entries;
    std::vector<AbandonedRun> runs;
    if (files.List(temporaryFolder, entries) != FileError::None) return runs;
    for (const FolderEntry& entry : entries) {
        const std::string folder = temporaryFolder + "\\" + entry.name;
        if (!entry.isFolder || !entry.name.starts_with(kPrefix)) continue;
        if (!FileLock::IsFree(LockPath(folder))) continue;
        const FileInfo lock = files.Stat(folder + "\\" + kLockName);
        runs.push_back({folder, lock.exists ? lock.modified : files.Stat(folder).modified});
    }
    std::sort(runs.begin(), runs.end(),
              [](const AbandonedRun& a, const AbandonedRun& b) { return a.started > b.started; });
    return runs;
}

std::unique_ptr<RunFolder> RunFolder::TakeOver(FileSystem& files, const std::string& folder) {
    if (!files.Stat(folder).isFolder) return nullptr;
    std::unique_ptr<FileLock> lock;
    if (FileLock::Acquire(LockPath(folder), LockFile::Keep, lock) != LockOutcome::Locked)
        return nullptr;
    return std::unique_ptr<RunFolder>(new RunFolder(files, folder, std::move(lock)));
}

FileError RunFolder::Discard(FileSystem& files, const std::string& folder) {
    if (!files.Stat(folder).exists) return FileError::None;
    const auto run = TakeOver(files, folder);
    return run ? run->Remove() : FileError::NoPermission;
}

FileError RunFolder::Remove() {
    // From one moment to the next it is no run folder any more: a program that is killed while the
    // files go leaves nothing that looks like a project to be recovered in part.
    const std::size_t name = path_.rfind('\\') + 1;
    const std::string leaving = path_.substr(0, name) + kLeavingPrefix + path_.substr(name);
    FileError error = files_.Replace(path_, leaving);
    if (error == FileError::None) {
        lock_->SetPath(LockPath(leaving));
        error = files_.RemoveFolder(leaving);
        // Another program that starts may have swept it.
        if (error == FileError::NotFound) error = FileError::None;
    }
    lock_.reset();
    return error;
}

}  // namespace pw
