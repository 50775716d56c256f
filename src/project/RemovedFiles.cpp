#include "project/RemovedFiles.h"

#include <utility>

#include "frame/Context.h"
#include "frame/FunctionLibrary.h"
#include "project/Scratch.h"

namespace pw {

namespace {

std::string FolderOfRemovals(const std::string& workingFolder) {
    return BuildPath(workingFolder, "removed");
}

/** Of removals so far. They are numbered without gaps, so the last is found by halving. */
int CountRemovals(const FileSystem& files, const std::string& all) {
    int taken = 0;
    int step = 1;
    const auto isTaken = [&](int number) {
        return files.Stat(BuildPath(all, std::to_string(number))).exists;
    };
    while (isTaken(taken + step)) {
        taken += step;
        step *= 2;
    }
    for (; step > 0; step /= 2)
        if (isTaken(taken + step)) taken += step;
    return taken;
}

}  // namespace

Outcome<std::string> MoveAside(ProjectContext& context, const std::vector<std::string>& paths) {
    FileSystem& files = context.frame.files;
    const std::string& root = context.frame.settings.PreviewFolder;
    const std::string all = FolderOfRemovals(context.frame.settings.WorkingFolder);
    const std::string aside = BuildPath(all, std::to_string(CountRemovals(files, all) + 1));
    std::vector<std::pair<std::string, std::string>> moved;
    for (const std::string& path : paths) {
        if (path.size() <= root.size() + 1 || !IsInFolder(path, root) || !files.Stat(path).exists ||
            !IsInRunFolder(context.frame, path))
            continue;
        const std::string target = BuildPath(aside, path.substr(root.size() + 1));
        FileError error = files.MakeFolder(GetParentFolder(target));
        if (error == FileError::None) error = files.Rename(path, target);
        if (error == FileError::None) {
            moved.emplace_back(path, target);
            continue;
        }
        for (auto back = moved.rbegin(); back != moved.rend(); ++back)
            static_cast<void>(files.Rename(back->second, back->first));
        DeleteFolder(files, aside);
        return Problem{"The file '" + ToNativePath(path) + "' can not be moved aside: " +
                       Describe(error) + ". Please see that the disk is not full and try again."};
    }
    return moved.empty() ? std::string() : aside;
}

std::string FindMovedAside(const FileSystem& files, const std::string& workingFolder,
                           const std::string& relativePath) {
    const std::string all = FolderOfRemovals(workingFolder);
    for (int number = CountRemovals(files, all); number > 0; --number) {
        const std::string path = BuildPath(BuildPath(all, std::to_string(number)), relativePath);
        if (FileExists(files, path)) return path;
    }
    return {};
}

}  // namespace pw
