#include "project/ProjectLocking.h"

#include "frame/Context.h"
#include "frame/FunctionLibrary.h"

namespace pw {
namespace {

std::string RealPath(const FileSystem& files, const std::string& path) {
    const std::string known = files.Canonical(path);
    if (!known.empty()) return known;
    const std::string folder = files.Canonical(GetParentFolder(path));
    return folder.empty() ? path : BuildPath(folder, GetFileName(path));
}

}  // namespace

ProjectFileLock LockProjectFile(ProjectContext& context, const std::string& file,
                                std::string& reason) {
    FrameContext& frame = context.frame;
    ProjectFileLock lock;
    lock.file = RealPath(frame.files, file);
    if (context.lock && context.lockedFile == lock.file) {
        lock.granted = true;
        return lock;
    }
    LockHolder holder;
    const LockOutcome outcome = ProjectLock::Acquire(file, frame.places.lockFolder, lock.fresh,
                                                     &holder, context.lock.get());
    // Where no lock can be made, a user without a writable home still gets at the projects.
    lock.granted = outcome != LockOutcome::Held;
    if (!lock.granted)
        reason = "It is open in " + Describe(holder) + ". Please close it there first.";
    return lock;
}

void TakeOverProjectLock(ProjectContext& context, ProjectFileLock& lock) {
    if (!lock.granted || !context.lock) return;
    if (lock.file == context.lockedFile)
        lock.fresh = std::move(context.lock);
    else if (lock.fresh)
        lock.fresh->TakeOver(*context.lock);
}

void KeepProjectLock(ProjectContext& context, ProjectFileLock lock) {
    if (lock.file != context.lockedFile) {
        TakeOverProjectLock(context, lock);
        context.lock = std::move(lock.fresh);
        context.lockedFile = std::move(lock.file);
    }
    if (context.lock && !context.lock->FollowFile()) {
        const std::string text = context.lockedFile + " is open elsewhere under another name.";
        context.frame.errorLog.LogError(text, Failure(text), "ProjectFunctions.",
                                        "KeepProjectLock");
    }
}

void ReleaseProjectLock(ProjectContext& context) {
    context.lock.reset();
    context.lockedFile.clear();
}

}  // namespace pw
