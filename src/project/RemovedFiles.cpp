#include "project/RemovedFiles.h"

#include <utility>

#include "frame/Context.h"
#include "frame/FunctionLibrary.h"
#include "project/Scratch.h"

namespace pw {

namespace {

/** The next removal's own folder, which is not there yet. */
std::string NextFolder(const ProjectContext& context) {
    const std::string all = BuildPath(context.frame.settings.WorkingFolder, "removed");
    // Past removals are numbered without gaps, so the first free number is found by halving.
    int taken = 0;
    int step = 1;
    const auto isTaken = [&](int number) {
        return context.frame.files.Stat(BuildPath(all, std::to_string(number))).exists;
    };
    while (isTaken(taken + step)) {
        taken += step;
        step *= 2;
    }
    for (; step > 0; step /= 2)
        if (isTaken(taken + step)) taken += step;
    return BuildPath(all, std::to_string(taken + 1));
}

}  // namespace

Outcome<std::string> MoveAside(ProjectContext& context, const std::vector<std::string>& paths) {
    FileSystem& files = context.frame.files;
    const std::string& root = context.frame.settings.PreviewFolder;
    const std::string aside = NextFolder(context);
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

}  // namespace pw
