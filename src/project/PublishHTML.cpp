#include "project/PublishHTML.h"

#include <unordered_set>

#include "frame/Context.h"
#include "frame/FunctionLibrary.h"
#include "platform/Text.h"
#include "project/Lifecycle.h"
#include "project/Workspace.h"
#include "project/omProj/Project.h"

namespace pw {
namespace {

constexpr const char* kModule = "ProjectFunctions.";

bool IsSameOrBelow(const std::string& path, const std::string& folder) {
    return !folder.empty() &&
           (path == folder || path.compare(0, folder.size() + 1, folder + "\\") == 0);
}

/** Absolute and with links resolved as far as the path exists already. */
std::string Resolve(const FileSystem& files, const std::string& path) {
    const std::string known = files.Canonical(path);
    if (!known.empty()) return known;
    const std::string parent = GetParentFolder(path);
    return parent.empty() || parent == path ? path
                                            : BuildPath(Resolve(files, parent), GetFileName(path));
}

/** The project's name as the name of a folder; "" when nothing of it can be one. */
std::string FolderNameOf(const std::string& projectName) {
    std::string name;
    for (const char c : Trim(projectName)) {
        const auto code = static_cast<unsigned char>(c);
        name += code < 0x20 || !IsFilenameKey(code) ? '_' : c;
    }
    return name == "." || name == ".." ? "" : name;
}

/** Copies the preview folder without what is there but no part of the site: pages that were taken
 *  out of the project, the thumbnail and the template. */
class SiteCopy {
  public:
    explicit SiteCopy(ProjectContext& context) : context_(context) {
        Project& project = context.project;
        for (const PageIndexEntry& entry : project.PageIndex()) {
            site_.insert(entry.Item->Filename);
            for (const Attachment& file : entry.Item->Attachments())
                site_.insert(file.Filename());
        }
        for (const Attachment& file : project.Attachments())
            site_.insert(file.Filename());
    }

    FileError Copy(const std::string& from, const std::string& to) {
        FileSystem& files = context_.frame.files;
        std::vector<FolderEntry> entries;
        const FileError error = files.List(from, entries);
        if (error != FileError::None) return error;
        if (std::none_of(entries.begin(), entries.end(), [&](const FolderEntry& entry) {
                return (entry.isFolder && HoldsOthers(BuildPath(from, entry.name))) ||
                       IsOther(from, entry);
            }))
            return files.CopyTree(from, to);
        FileError first = files.MakeFolder(to);
        for (const FolderEntry& entry : entries) {
            if (IsOther(from, entry)) continue;
            const std::string source = BuildPath(from, entry.name);
            const std::string target = BuildPath(to, entry.name);
            const FileError failed =
                entry.isFolder ? Copy(source, target) : files.Copy(source, target);
            if (first == FileError::None) first = failed;
        }
        return first;
    }

  private:
    bool IsOther(const std::string& folder, const FolderEntry& entry) const {
        if (entry.isFolder) return false;
        const std::string path = BuildPath(folder, entry.name);
        if (site_.count(path)) return false;
        if (StartsWithNoCase(entry.name, "~pw")) return true;
        const std::string extension = GetExtension(entry.name);
        return EqualsNoCase(extension, "htm") || EqualsNoCase(extension, "html") ||
               GetBaseName(path) == "tmp" + context_.project.ProjectId;
    }
    bool HoldsOthers(const std::string& folder) const {
        std::vector<FolderEntry> entries;
        if (context_.frame.files.List(folder, entries) != FileError::None) return false;
        return std::any_of(entries.begin(), entries.end(), [&](const FolderEntry& entry) {
            return entry.isFolder ? HoldsOthers(BuildPath(folder, entry.name))
                                  : IsOther(folder, entry);
        });
    }

    ProjectContext& context_;
    std::unordered_set<std::string> site_;
};

/** Why the site must not be written there; "" when it may. */
std::string ProblemWith(ProjectContext& context, const std::string& target) {
    const FrameContext& frame = context.frame;
    const std::string place = Resolve(frame.files, target);
    const std::string scratch = frame.files.Canonical(frame.places.temporaryFolder);
    const std::string run = frame.files.Canonical(frame.runFolder);
    if (IsSameOrBelow(place, scratch) || IsSameOrBelow(place, run) || IsSameOrBelow(run, place))
        return "The program works in that folder and empties it. Please choose another one.";
    const auto usesFileIn = [&](const Attachments& attachments) {
        for (const Attachment& file : attachments) {
            if (IsSameOrBelow(file.Filename(), place) || IsSameOrBelow(file.Filename(), target))
                return true;
        }
        return false;
    };
    bool own = usesFileIn(context.project.Attachments());
    for (const PageIndexEntry& entry : context.project.PageIndex())
        own = own || usesFileIn(entry.Item->Attachments());
    if (own) return "The project uses files in that folder. Please choose another one.";
    const FileInfo info = frame.files.Stat(target);
    if (info.exists && !FolderExists(frame.files, target))
        return target + " is a file. Please choose another folder, or rename the project.";
    return "";
}

std::string Publish(ProjectContext& context, const std::string& folder, std::string& target) {
    FrameContext& frame = context.frame;
    if (context.project.Busy()) return "The project is being saved or loaded just now.";
    const std::string name = FolderNameOf(context.project.Name);
    if (folder.empty() || name.empty())
        return "The project needs a name that a folder can have. Please change it in the project's "
               "properties.";
    target = BuildPath(folder, name);
    const std::string problem = ProblemWith(context, target);
    if (!problem.empty()) return problem;
    std::string unwritten;
    if (!UpdateOpenPageProperties(context, &unwritten)) return unwritten;
    FileError error = frame.files.MakeFolder(target);
    if (error == FileError::None)
        error = SiteCopy(context).Copy(frame.settings.PreviewFolder, target);
    return error == FileError::None ? "" : "The reason: " + Describe(error) + ".";
}

}  // namespace

PublishResult PublishAsHTML(ProjectContext& context, const std::string& folder) {
    const BusyPointer busy(context.workspace);
    PublishResult result;
    result.reason = Trap(context.frame.errorLog, kModule, "PublishAsHTML",
                         std::string("Something unforeseen happened. The error log tells more."),
                         [&] { return Publish(context, folder, result.folder); });
    result.published = result.reason.empty();
    return result;
}

void AskAndPublishAsHTML(ProjectContext& context) {
    FrameContext& frame = context.frame;
    const std::string folder = frame.dialogs.BrowseFolder(
        "Select the folder to publish the HTML to...", frame.places.documentsFolder);
    if (folder.empty()) return;
    const PublishResult result = PublishAsHTML(context, folder);
    if (result.published) {
        frame.dialogs.MsgBox(
            {"The project has been successfully published as HTML to folder:\n\n" + result.folder,
             "Publish as HTML", Icon::Information});
        return;
    }
    frame.dialogs.MsgBox(
        {"The project could not be published as HTML.\n\nPlease try again.\n\n" + result.reason,
         "Publish as HTML", Icon::Stop});
}

}  // namespace pw
