#pragma once
// The files of what was taken out of the project. What the project doesn't list is not there: their
// names are free at once, and no save and no publishing comes across them. They lie in the run
// folder for as long as the project is open, outside of the preview folder: `~pw\removed\<n>`, one
// such folder for each removal, below which each file has the place that it had in the project.
#include <string>
#include <vector>

#include "platform/Outcome.h"
#include "project/ProjectContext.h"

namespace pw {

/** Moves files and folders of the preview folder aside, all of them or none; what is not there is
 *  passed over. Returns the folder that holds them, "" when there was nothing to move. */
Outcome<std::string> MoveAside(ProjectContext& context, const std::vector<std::string>& paths);

/** Where the file lies that was moved aside last from that place below the preview folder; "" when
 *  there is none. `workingFolder` is the scratch root. For a program that was killed before it had
 *  noted a removal. */
std::string FindMovedAside(const FileSystem& files, const std::string& workingFolder,
                           const std::string& relativePath);

}  // namespace pw
