#pragma once
#include <memory>
#include <string>

#include "platform/posix/FileLock.h"

namespace pw {

/**
 * Keeps two programs of one user from working on the same project file. The lock lies in a folder
 * of the user's own that no profile moves, never beside the project, and ends with the process. It
 * goes by the file's real path and by the file itself, so links to it and a second name of it are
 * seen through.
 */
class ProjectLock {
  public:
    /**
     * `path` is the project file, which need not exist yet, and `lockFolder` the one of Places;
     * both with backslashes. A file that
     * `mine` holds under another name is granted as well; see `TakeOver`. Held fills `holder`.
     * Failed leaves `lock` empty: no lock can be made in that folder, and the caller may go on
     * without.
     */
    static LockOutcome Acquire(const std::string& path, const std::string& lockFolder,
                               std::unique_ptr<ProjectLock>& lock, LockHolder* holder = nullptr,
                               const ProjectLock* mine = nullptr);

    /** Of `mine`, a lock of this program that is about to be given up: what it holds on the same
     *  file under another name is held by this one from now on. */
    void TakeOver(ProjectLock& mine);

    /**
     * To be called when the file has come into being, or was replaced by another of the same name:
     * takes the lock on that one too. False when another program has it open under another name.
     */
    bool FollowFile();

  private:
    ProjectLock(std::string native, std::string folder)
        : native_(std::move(native)), folder_(std::move(folder)) {}

    std::string NameByFile() const;

    std::string native_;  ///< the project's real path
    std::string folder_;  ///< native
    std::string fileName_;
    std::unique_ptr<FileLock> byPath_;
    std::unique_ptr<FileLock> byFile_;
};

}  // namespace pw
