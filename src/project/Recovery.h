#pragma once
// Getting back what a crashed program has left. Nothing of it is swept until the user has said what
// is to become of it.
#include <memory>
#include <string>
#include <vector>

#include "platform/SystemInfo.h"
#include "platform/posix/RunFolder.h"
#include "project/ProjectContext.h"

namespace pw {

/** A project with unsaved changes in the run folder of a program that ended without a word. */
struct RecoverableProject {
    std::string folder;  ///< the run folder
    std::string projectName;
    std::string projectFile;  ///< "" when it was never saved
    DateTime changed = 0;     ///< when its journal was last written
};

/** Newest first. */
std::vector<RecoverableProject> FindRecoverable(const FrameContext& frame);

/**
 * Makes it the open project, with unsaved changes, under its old file name. Of a page or file that
 * is gone the saved project's is taken, and what came of it is told by name; only when none of the
 * pages is there, the saved project itself is opened. `run` is this program's
 * run folder, which must hold nothing worth keeping: it is removed and becomes the crashed one.
 * False, with a message and everything left for another time, when its file is open in another
 * program or the journal can't be read. Where the project file was changed since the crash, or is
 * gone, the project has no file name, so that the next save asks for one.
 */
bool RecoverProject(ProjectContext& context, std::unique_ptr<RunFolder>& run,
                    const RecoverableProject& which);

/** Removes it for good. */
bool DiscardRecoverable(FrameContext& frame, const RecoverableProject& which);

/** Removes the run folders of crashed programs in which nothing is to be recovered. */
void SweepAbandonedRuns(FrameContext& frame);

/** The question at the start: shows frmRecover when there is something to recover, does what the
 *  user wants, and sweeps. True when a project was recovered and is open. */
bool OfferRecovery(ProjectContext& context, std::unique_ptr<RunFolder>& run);

}  // namespace pw
