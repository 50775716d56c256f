#pragma once
// Folders of the project tree. Each is a folder on disk below the preview folder, with a `media`
// folder in it.
#include <string>
#include <string_view>

#include "project/Pages.h"

namespace pw {

/** True when a folder below `parentKey` may have that name; otherwise `existingKey` is the folder
 *  that has it, or "" when the name is empty. Names are compared without regard to case. */
bool IsOKToAddFolder(const ProjectContext& context, std::string_view name,
                     std::string_view parentKey, std::string* existingKey = nullptr);

/** What is wrong with a name for a folder, as a sentence for the user; "" when nothing is. */
std::string FolderNameProblem(std::string_view name);

struct NewFolder {
    std::string name;
    std::string description;
    int containerKind = ContainerKind::Plain;
};
/** Adds a folder to the tree and makes it on disk. None on failure, with the project as it was and
 *  a sentence in `reason`. */
Folder* AddFolder(ProjectContext& context, Container parent, const NewFolder& folder,
                  std::string* reason = nullptr);

/** Asks for a name with frmFolder and adds a folder at the node selected in the explorer. */
Folder* InsertFolder(ProjectContext& context);

/**
 * Gives a folder another name, on disk, in the paths of everything below it, and in all references
 * that lead through it. Fails, with the project as it was and a sentence in `reason`, where the
 * name is taken in any letter case. True with such a sentence when references on some pages could
 * not follow.
 */
[[nodiscard]] bool RenameFolderOnDisk(ProjectContext& context, Folder& folder,
                                      const std::string& newName, std::string* reason = nullptr);

/** The folder properties of the project tree: shows frmFolder, asks, renames. */
void EditFolderProperties(ProjectContext& context, std::string_view key);

}  // namespace pw
