#pragma once
#include <memory>

#include "platform/FileSystem.h"
#include "platform/SystemInfo.h"
#include "platform/posix/FileLock.h"

namespace pw {

/**
 * Lets one desktop program run for each profile; the command line does not ask. The lock must live
 * as long as the program. Failed does not hinder the start: it tells that the profile's folder
 * cannot be written to.
 */
inline LockOutcome BecomeSingleInstance(const Places& places, std::unique_ptr<FileLock>& lock) {
    return FileLock::Acquire(ToNativePath(places.configFolder) + "/pagewick.lock",
                             LockFile::RemoveAtEnd, lock);
}

}  // namespace pw
