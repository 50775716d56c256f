#include "project/Folders.h"

#include <algorithm>
#include <vector>

#include "frame/Context.h"
#include "frame/FunctionLibrary.h"
#include "platform/Text.h"
#include "project/Journal.h"
#include "project/Links.h"
#include "project/PageNames.h"
#include "project/Paths.h"
#include "project/Workspace.h"
#include "project/frmFolder.h"

namespace pw {

namespace {

constexpr std::string_view kModule = "ProjectFunctions.";
constexpr std::string_view kMediaName = "media";

void Tell(std::string* reason, const std::string& text) {
    if (reason) *reason = text;
}

std::string RelativeFolder(const Container& parent, const std::string& name) {
    return BuildPath(parent.RelativePath(), name);
}

/** Key of the folder or site that holds the folder. */
std::string ParentKeyOf(const Folder& folder) {
    return folder.Key().substr(0, folder.Key().size() - kBlockWidth);
}

/** The path with its beginning changed when it lies in the folder `from`. */
bool Move(std::string& path, const std::string& from, const std::string& to) {
    if (path.size() <= from.size() || !path.starts_with(from) || path[from.size()] != '\\')
        return false;
    path.replace(0, from.size(), to);
    return true;
}

void MoveAttachments(Attachments& attachments, const std::string& from, const std::string& to) {
    for (Attachment& attachment : attachments) {
        std::string path = attachment.Filename();
        if (Move(path, from, to)) (void)attachment.SetFilename(path);
    }
}

void MoveFolders(Folder& folder, const std::string& from, const std::string& to) {
    for (Page& page : folder.Pages())
        Move(page.Path, from, to);
    for (Folder& below : folder.Sections()) {
        Move(below.WorkingFolder, from, to);
        MoveFolders(below, from, to);
    }
}

/** Everything that names a place on disk below the folder. Pages elsewhere can use its media. */
void MoveFiles(ProjectContext& context, const std::string& from, const std::string& to) {
    for (const PageIndexEntry& entry : context.project.PageIndex()) {
        Move(entry.Item->Filename, from, to);
        MoveAttachments(entry.Item->Attachments(), from, to);
    }
    MoveAttachments(context.project.Attachments(), from, to);
    if (Page* page = context.project.DefaultTemplate())
        MoveAttachments(page->Attachments(), from, to);
    Move(context.project.ThumbnailFilename, from, to);
}

/** Windows hold the addresses of their files: those below a folder are closed, which writes them,
 *  and shown again when they lie elsewhere. */
class ReopenedWindows {
  public:
    ReopenedWindows(ProjectContext& context, const Folder& folder) : context_(context) {
        current_ = context.workspace.CurrentPageKey();
        for (OpenPage* open : context.workspace.OpenPages())
            if (open->PageKey().starts_with(folder.Key())) keys_.push_back(open->PageKey());
        for (const auto& key : keys_)
            if (OpenPage* open = context.workspace.FindOpenPage(key))
                areClosed_ = open->CloseWindow() && areClosed_;
    }
    /** False when one of them stays; the user has been told why. */
    bool AreClosed() const { return areClosed_; }
    ~ReopenedWindows() {
        // The one that was in front comes last.
        std::stable_partition(keys_.begin(), keys_.end(),
                              [&](const auto& key) { return key != current_; });
        for (const auto& key : keys_)
            if (const Page* page = GetPage(context_, key))
                context_.workspace.ShowPage(key, page->Name, page->Filename, page->PageType);
    }
    ReopenedWindows(const ReopenedWindows&) = delete;
    ReopenedWindows& operator=(const ReopenedWindows&) = delete;

  private:
    ProjectContext& context_;
    std::vector<std::string> keys_;
    std::string current_;
    bool areClosed_ = true;
};

}  // namespace

bool IsOKToAddFolder(const ProjectContext& context, std::string_view name,
                     std::string_view parentKey, std::string* existingKey) {
    if (existingKey) existingKey->clear();
    if (name.empty()) return false;
    const Container parent = GetContainer(context, parentKey);
    if (!parent) return false;
    const std::string wanted = FoldCase(name);
    for (const Folder& folder : parent.FolderList()) {
        if (FoldCase(folder.Name) != wanted) continue;
        if (existingKey) *existingKey = folder.Key();
        return false;
    }
    return true;
}

std::string FolderNameProblem(std::string_view name) {
    if (EqualsNoCase(name, kMediaName))
        return "The name \"media\" is kept for the pictures of the pages. "
               "Please enter a different name.";
    return DiskNameProblem("folder", name);
}

Folder* AddFolder(ProjectContext& context, Container parent, const NewFolder& wanted,
                  std::string* reason) {
    const auto body = [&]() -> Folder* {
        FileSystem& files = context.frame.files;
        const std::string name = Trim(wanted.name);
        if (!parent) parent = GetContainer(context, "");
        const std::string problem = FolderNameProblem(name);
        if (!problem.empty() || !parent) {
            Tell(reason, problem);
            return nullptr;
        }
        if (!IsOKToAddFolder(context, name, parent.Key())) {
            Tell(reason, "A folder named '" + name + "' already exists here.");
            return nullptr;
        }
        const std::string path =
            BuildPath(context.frame.settings.PreviewFolder, RelativeFolder(parent, name));
        const FileError error = files.MakeFolder(BuildPath(path, kMediaName));
        if (error != FileError::None) {
            Tell(reason, "Folder '" + name + "' can not be made: " + Describe(error) + ".");
            return nullptr;
        }
        Folder* folder = parent.FolderList().Add();
        if (!folder) {
            Tell(reason, context.project.LastMessage());
            return nullptr;
        }
        if (parent.folder) parent.folder->Expanded = true;
        folder->Name = name;
        folder->Description = wanted.description;
        folder->ContainerKind = wanted.containerKind;
        folder->FolderName = name;
        folder->WorkingFolder = RelativeFolder(parent, name);
        context.project.IsDirty = true;
        return folder;
    };
    return Trap(context.frame.errorLog, kModule, "InsertFolder", static_cast<Folder*>(nullptr),
                body);
}

Folder* InsertFolder(ProjectContext& context) {
    Workspace& workspace = context.workspace;
    std::string key = workspace.SelectedProjectNode();
    if (key.empty()) key = workspace.CurrentPageKey();
    const Container parent = GetContainer(context, key);
    if (!parent) return nullptr;

    frmFolder dialog(context, parent.Key());
    Folder* folder = nullptr;
    dialog.apply = [&] {
        std::string reason;
        const NewFolder wanted{dialog.Name(), dialog.Description(), dialog.ContainerKind()};
        folder = AddFolder(context, parent, wanted, &reason);
        if (!folder)
            context.frame.dialogs.MsgBox({reason, dialog.Title(), Icon::Exclamation, Buttons::Ok});
        return folder != nullptr;
    };
    context.frame.dialogs.ShowModal(dialog);
    if (!folder) return nullptr;

    workspace.RefillProjectExplorer();
    workspace.SelectProjectNode(folder->Key());
    return folder;
}

bool RenameFolderOnDisk(ProjectContext& context, Folder& folder, const std::string& newName,
                        std::string* reason) {
    return Trap(context.frame.errorLog, kModule, "RenameFolder", false, [&] {
        FileSystem& files = context.frame.files;
        const std::string name = Trim(newName);
        const Container parent = GetContainer(context, ParentKeyOf(folder));
        const std::string oldRelative = folder.WorkingFolder;
        const std::string newRelative = RelativeFolder(parent, name);
        if (name == folder.Name && newRelative == oldRelative) return true;
        const auto fail = [&](const std::string& why) {
            Tell(reason, why);
            return false;
        };

        const std::string problem = FolderNameProblem(name);
        if (!problem.empty()) return fail(problem);
        std::string existing;
        if (!IsOKToAddFolder(context, name, parent.Key(), &existing) && existing != folder.Key())
            return fail("This folder name already exist. Please enter a different name.");
        const std::string& root = context.frame.settings.PreviewFolder;
        const std::string from = BuildPath(root, oldRelative);
        const std::string to = BuildPath(root, newRelative);
        const std::string inTheWay =
            NameInFolder(files, GetParentFolder(from), name, GetFileName(from));
        if (!inTheWay.empty())
            return fail("'" + inTheWay + "' already exists here. Please enter a different name.");

        const ReopenedWindows windows(context, folder);
        if (!windows.AreClosed())
            return fail("Folder '" + folder.Name +
                        "' can not be renamed while one of its pages can not be closed.");
        if (from != to) {
            const FileError error =
                FolderExists(files, from) ? files.Rename(from, to) : files.MakeFolder(to);
            if (error != FileError::None)
                return fail("Folder '" + folder.Name + "' can not be renamed: " + Describe(error) +
                            ".");
        }
        folder.Name = name;
        folder.FolderName = name;
        folder.WorkingFolder = newRelative;
        MoveFolders(folder, oldRelative, newRelative);
        MoveFiles(context, from, to);
        context.project.IsDirty = true;
        JournalFilesMoved(context);
        if (from != to) {
            context.moves.push_back({from, to});
            const LinkUpdate links =
                UpdateFollowing(context, context.moves.back(), Follow::AllReferences);
            Tell(reason, links.ProblemText("folder"));
        }
        return true;
    });
}

void EditFolderProperties(ProjectContext& context, std::string_view key) {
    Folder* folder = GetFolder(context, key);
    if (!folder) return;
    frmFolder dialog(context, ParentKeyOf(*folder), *folder);
    dialog.apply = [&] {
        const Message question{
            "Changing the folder name may break links in your project.\n\n"
            "Are you sure you want to continue?",
            "Folder", Icon::Question, Buttons::YesNo, Answer::No};
        if (dialog.Name() != folder->Name) {
            if (context.frame.dialogs.MsgBox(question) != Answer::Yes) return false;
            std::string reason;
            const bool renamed = RenameFolderOnDisk(context, *folder, dialog.Name(), &reason);
            // Why not, or which links could not follow.
            if (!reason.empty())
                context.frame.dialogs.MsgBox({reason, "Folder", Icon::Exclamation, Buttons::Ok});
            if (!renamed) return false;
        }
        folder->Description = dialog.Description();
        return true;
    };
    context.frame.dialogs.ShowModal(dialog);
    context.workspace.RefillProjectExplorer();
}

}  // namespace pw
