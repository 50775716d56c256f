#pragma once
// Advisory locks that end with the process that holds them, however it ends.
#include <memory>
#include <string>

#include "platform/posix/Descriptor.h"

namespace pw {

/** Who holds a lock, for messages. */
struct LockHolder {
    int pid = 0;  ///< 0 when unknown
    std::string program;
    std::string computer;  ///< homes may be shared among machines
};
/** "pagewick-cli (process 4711)", with the computer's name when it is another. */
std::string Describe(const LockHolder& holder);
/** This process, under the name of its executable. */
LockHolder ThisProcess();

enum class LockOutcome {
    Locked,
    Held,   ///< by another holder, perhaps in this very process
    Failed  ///< the lock file cannot be made
};
enum class LockFile { Keep, RemoveAtEnd };

class FileLock {
  public:
    /**
     * Locks the file at a native path, which is made if missing and then holds the name of the
     * holder. `holder` is filled when another one holds it; it may be null.
     */
    static LockOutcome Acquire(const std::string& native, LockFile atEnd,
                               std::unique_ptr<FileLock>& lock, LockHolder* holder = nullptr);
    /** True when nobody holds it now; also when there is no such file. */
    static bool IsFree(const std::string& native);

    ~FileLock();
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;

    /** The file, or a folder above it, was renamed. */
    void SetPath(std::string native) { native_ = std::move(native); }

  private:
    FileLock(std::string native, LockFile atEnd, Descriptor file)
        : native_(std::move(native)), atEnd_(atEnd), file_(std::move(file)) {}

    std::string native_;
    LockFile atEnd_;
    Descriptor file_;
};

}  // namespace pw
