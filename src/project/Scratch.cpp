#include "project/Scratch.h"

#include <array>

#include "frame/Context.h"
#include "frame/FunctionLibrary.h"
#include "platform/Text.h"
#include "project/omProj/Project.h"

namespace pw {
namespace {

constexpr const char* kModule = "SystemFunctions.";
constexpr const char* kTemporaryPrefix = "~pw";

/** Answers for many files whether they may be deleted. Folders are resolved once each: the files of
 *  a project lie in few. */
class Guard {
  public:
    explicit Guard(const FrameContext& frame)
        : files_(frame.files),
          root_(frame.runFolder.empty() ? "" : frame.files.Canonical(frame.runFolder)) {}

    bool Allows(const std::string& path) {
        const std::string name = GetFileName(path);
        if (root_.empty() || name.empty() || name == "." || name == "..") return false;
        const std::string folder = GetParentFolder(path);
        if (folder != folder_) {
            folder_ = folder;
            allowed_ = IsBelowRoot(files_.Canonical(folder));
        }
        return allowed_;
    }

  private:
    // Compared byte by byte: on this kind of disk two names that differ in case are two folders.
    bool IsBelowRoot(const std::string& folder) const {
        return folder == root_ || folder.compare(0, root_.size() + 1, root_ + "\\") == 0;
    }

    const FileSystem& files_;
    std::string root_;
    std::string folder_;
    bool allowed_ = false;
};

/** Everything in a folder but what is to stay. */
void EmptyFolder(FileSystem& files, const std::string& folder,
                 const std::vector<std::string>& kept) {
    std::vector<FolderEntry> entries;
    if (files.Stat(folder).exists && files.List(folder, entries) != FileError::None)
        throw Failure("The folder " + folder + " can not be read.");
    std::string stuck;
    for (const FolderEntry& entry : entries) {
        const std::string path = BuildPath(folder, entry.name);
        if (std::find(kept.begin(), kept.end(), path) != kept.end()) continue;
        const FileError error =
            entry.isFolder && !entry.isLink ? files.RemoveFolder(path) : files.RemoveFile(path);
        if (error != FileError::None && stuck.empty()) stuck = path + ": " + Describe(error);
    }
    if (!stuck.empty()) throw Failure(stuck);
}

void SweepTemporaryFiles(FrameContext& frame) {
    std::vector<FolderEntry> entries;
    if (frame.files.List(frame.runFolder, entries) != FileError::None) return;
    for (const FolderEntry& entry : entries) {
        if (!entry.isFolder && StartsWithNoCase(entry.name, kTemporaryPrefix))
            DeleteFile(frame.files, BuildPath(frame.runFolder, entry.name));
    }
}

/** In the order in which they are emptied: what lies deeper comes first. */
std::array<std::string, 4> ScratchFoldersOf(const Settings& settings) {
    return {settings.MediaFolder, settings.PreviewFolder, settings.ThemePreviewFolder,
            settings.WorkingFolder};
}

}  // namespace

bool CreateWorkingFolders(FrameContext& frame) {
    return Trap(frame.errorLog, kModule, "CreateWorkingFolders", false, [&] {
        if (frame.runFolder.empty()) throw Failure("This run has no folder of its own.");
        Settings& settings = frame.settings;
        settings.WorkingFolder = BuildPath(frame.runFolder, "~pw");
        settings.PreviewFolder = BuildPath(settings.WorkingFolder, "preview");
        settings.MediaFolder = BuildPath(settings.PreviewFolder, "media");
        settings.ThemePreviewFolder = BuildPath(settings.WorkingFolder, "themes");
        for (const std::string& folder : {settings.WorkingFolder, settings.PreviewFolder,
                                          settings.MediaFolder, settings.ThemePreviewFolder}) {
            const FileError error = frame.files.MakeFolder(folder);
            if (error != FileError::None) throw Failure(folder + ": " + Describe(error));
        }
        return true;
    });
}

bool ClearWorkingFolders(FrameContext& frame, ScratchFolders folders) {
    return Trap(frame.errorLog, kModule, "ClearWorkingFolders", false, [&] {
        Guard guard(frame);
        const auto scratch = ScratchFoldersOf(frame.settings);
        const std::vector<std::string> kept(scratch.begin(), scratch.end());
        for (const std::string& folder : scratch) {
            if (!guard.Allows(folder)) continue;
            EmptyFolder(frame.files, folder, kept);
            if (folders == ScratchFolders::Remove && !DeleteFolder(frame.files, folder))
                throw Failure("The folder " + folder + " can not be removed.");
        }
        if (!frame.runFolder.empty()) SweepTemporaryFiles(frame);
        return true;
    });
}

void DeleteProjectFiles(FrameContext& frame, Project& project) {
    Trap(frame.errorLog, kModule, "DeleteProjectFiles", [&] {
        Guard guard(frame);
        const auto remove = [&](const std::string& path) {
            if (guard.Allows(path)) DeleteFile(frame.files, path);
        };
        const auto removePage = [&](Page& page) {
            for (const Attachment& attachment : page.Attachments())
                remove(attachment.Filename());
            remove(page.Filename);
        };
        for (const PageIndexEntry& entry : project.PageIndex())
            removePage(*entry.Item);
        for (const Attachment& attachment : project.Attachments())
            remove(attachment.Filename());
        if (Page* page = project.DefaultTemplate()) removePage(*page);
        remove(project.ThumbnailFilename);
        if (WebSite* site = project.WebSites().Item(1)) {
            for (const Folder& folder : site->Sections()) {
                if (folder.WorkingFolder.empty()) continue;
                const std::string path = BuildPath(project.WorkingFolder, folder.WorkingFolder);
                if (guard.Allows(path)) DeleteFolder(frame.files, path);
            }
        }
        project.Clear();
    });
}

bool IsInRunFolder(const FrameContext& frame, const std::string& path) {
    return Guard(frame).Allows(path);
}

}  // namespace pw
