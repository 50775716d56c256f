#pragma once
// One program at a time works on a project file.
#include <memory>
#include <string>

#include "project/ProjectContext.h"

namespace pw {

struct ProjectFileLock {
    bool granted = false;
    std::unique_ptr<ProjectLock> fresh;  ///< none when the context holds the lock already
    std::string file;                    ///< real path
};

/** Tries to lock a project file, which need not exist. Refused, `reason` names who holds it. */
ProjectFileLock LockProjectFile(ProjectContext& context, const std::string& file,
                                std::string& reason);
/** To be called before the open project is given up for the one that is locked: when both are the
 *  same file, by whatever name, what the context holds is not let go in between. */
void TakeOverProjectLock(ProjectContext& context, ProjectFileLock& lock);
/** Makes it the lock of the open project, in place of the former one. */
void KeepProjectLock(ProjectContext& context, ProjectFileLock lock);
void ReleaseProjectLock(ProjectContext& context);

}  // namespace pw
