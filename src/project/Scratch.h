#pragma once
// The scratch area: the tree of folders below this run's own folder in which the pages and media of
// the open project lie while it is open. Nothing here deletes a file outside the run folder,
// whatever a project says about the places of its files.
#include <string>

namespace pw {

struct FrameContext;
class Project;

/** Sets the four scratch paths of the settings and makes the folders; false, logged, when one
 *  cannot be made. */
bool CreateWorkingFolders(FrameContext& frame);

enum class ScratchFolders { Keep, Remove };
/** Empties the scratch folders, with all below them, and sweeps the temporary files of this run.
 *  False, logged, when something would not go. */
bool ClearWorkingFolders(FrameContext& frame, ScratchFolders folders);

/** Deletes the files that the project names (pages, attachments, template, thumbnail, the folders
 *  of its first site) as far as they lie in the run folder, then clears the project. */
void DeleteProjectFiles(FrameContext& frame, Project& project);

/** True when the path lies below this run's folder, with all links on the way resolved. */
bool IsInRunFolder(const FrameContext& frame, const std::string& path);

}  // namespace pw
