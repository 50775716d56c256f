// Saving the project, and what has to be brought up to date before.
#include "frame/Context.h"
#include "frame/FunctionLibrary.h"
#include "frame/SaveQuestion.h"
#include "platform/Text.h"
#include "project/Attachments.h"
#include "project/Journal.h"
#include "project/Lifecycle.h"
#include "project/MergeVariables.h"
#include "project/Pages.h"
#include "project/ProjectLocking.h"
#include "project/Scratch.h"
#include "project/Templates.h"
#include "project/Workspace.h"
#include "project/omProj/Project.h"

namespace pw {
namespace {

constexpr const char* kModule = "ProjectFunctions.";

/** Pointer, status line and progress bar while a save runs; all back at its end. */
class SaveScreen {
  public:
    SaveScreen(Workspace& workspace, const std::string& file)
        : workspace_(workspace), pointer_(workspace) {
        workspace_.ShowStatus("Saving project " + QuoteSingle(GetFileName(file)) + "...");
    }
    ~SaveScreen() {
        workspace_.ShowProgress(false);
        workspace_.ResetStatus();
    }
    SaveScreen(const SaveScreen&) = delete;
    SaveScreen& operator=(const SaveScreen&) = delete;

  private:
    Workspace& workspace_;
    BusyPointer pointer_;
};

/** Keeps the current page marked as open for as long as the file is written. */
class CurrentPageMark {
  public:
    explicit CurrentPageMark(ProjectContext& context)
        : context_(context), key_(context.workspace.CurrentPageKey()) {
        Set(true);
    }
    ~CurrentPageMark() { Set(false); }
    CurrentPageMark(const CurrentPageMark&) = delete;
    CurrentPageMark& operator=(const CurrentPageMark&) = delete;

  private:
    void Set(bool open) {
        if (Page* page = context_.project.FindPage(key_)) page->IsOpen = open;
    }
    ProjectContext& context_;
    std::string key_;
};

std::string AskForName(ProjectContext& context) {
    const std::string name = ReplaceAll(Trim(context.project.Name), "\\", "_");
    const std::string& folder = context.frame.settings.ProjectsFolder;
    // It comes with the first project. When it can't be made, the user goes elsewhere.
    MakeFolder(context.frame.files, folder);
    FileQuestion question;
    question.title = "Save Project As";
    question.filter = "Projects (*.pwp)|*.pwp";
    question.initialPath = BuildPath(folder, name);
    question.defaultExtension = kProjectExtension;
    return AskSaveFile(context.frame, std::move(question));
}

void TellFailure(ProjectContext& context, const std::string& file, Silent silent,
                 const std::string& reason) {
    context.frame.errorLog.LogError(reason, Failure(reason), kModule, "SaveProject");
    if (silent == Silent::Yes) return;
    context.frame.dialogs.MsgBox({"Project " + QuoteSingle(GetFileName(file)) +
                                      " can not be saved.\n\nPlease try again." +
                                      (reason.empty() ? "" : "\n\n" + reason),
                                  "Save Project", Icon::Stop});
}

void SetSavedProperties(ProjectContext& context) {
    Project& project = context.project;
    project.ModifiedBy = CurrentAuthor(context);
    project.Modified = context.frame.clock.Now();
    project.MediaFolderName = "media";
    project.SkillLevel = context.frame.settings.SkillLevel;
    project.ClientVersion = GetVersionString();
}

/** The pages show the name of the project file: with a new one they are brought up to date. */
void RefreshFilenameVariable(ProjectContext& context) {
    const std::string name = GetFileName(context.frame.settings.ProjectFilename);
    for (const MergeVariable& variable : context.project.MergeVariables()) {
        if (!EqualsNoCase(variable.Name, "Project Filename") || variable.Value == name) continue;
        RefreshVariables(context);
        return;
    }
}

/** The save itself; "" on success, else the reason. */
std::string WriteProject(ProjectContext& context, const std::string& file) {
    FrameContext& frame = context.frame;
    Project& project = context.project;
    if (project.Busy()) return "The project is being saved or loaded just now.";
    if (IsInRunFolder(frame, file))
        return "That folder is the program's own and is emptied. Please choose another one.";
    if (!MakeFolder(frame.files, GetParentFolder(file)))
        return "The folder " + ToNativePath(GetParentFolder(file)) + " can not be made.";

    // 1. Nobody else may have the file open.
    std::string holder;
    auto lock = LockProjectFile(context, file, holder);
    if (!lock.granted) return holder;

    // 2. What the user sees goes into the files and into the tree.
    RefreshFilenameVariable(context);
    std::string unwritten;
    if (!UpdateOpenPageProperties(context, &unwritten)) return unwritten;
    NoteUnusedAttachments(context);
    if (!FileExists(frame.files, project.ThumbnailFilename)) CreateThumbnail(context);

    // 3. The project file. The library keeps the former one whole until the new one is.
    ProjectResult result = ProjectResult::Success;
    {
        const CurrentPageMark mark(context);
        context.workspace.ShowProgress(true);
        SetSavedProperties(context);
        project.RaiseProgress = true;
        JournalBeforeSave(context, file);
        result = project.Save(file);
    }
    if (result != ProjectResult::Success) {
        project.IsDirty = true;
        const std::string reason = project.LastMessage();
        return reason.empty() ? Describe(result) : reason;
    }
    for (const PageIndexEntry& entry : project.PageIndex())
        entry.Item->IsDirty = false;
    for (OpenPage* open : context.workspace.OpenPages())
        open->MarkClean();
    KeepProjectLock(context, std::move(lock));
    JournalSaved(context);
    return "";
}

/** Brings one open page up to date; false with a sentence in `reason` when its file can't be
 *  written. */
bool UpdateOpenPage(ProjectContext& context, OpenPage& open, Page& page, std::string& reason) {
    // Nothing of what it was before is passed off as the page.
    if (!open.TakeOverEdits()) {
        reason = open.SourceProblem();
        return false;
    }
    const bool edited = open.IsDirty();
    const DateTime modified = page.Modified;
    const std::string modifiedBy = page.ModifiedBy;
    ComputePageStatistics(context, &open.Document(), &page);
    if (edited) {
        open.UpdateHTML();
        context.project.IsDirty = true;
        page.IsDirty = true;
    } else {
        page.Modified = modified;
        page.ModifiedBy = modifiedBy;
    }
    bool written = true;
    if (edited || IsFileBehind(context, open) || !FileExists(context.frame.files, page.Filename)) {
        written = SavePageFile(context, page, &reason);
        if (written) JournalPageWritten(context, open);
    }
    SaveAttachments(context, open.Document(), open.BaseURL(), page);
    page.IsOpen = true;
    return written;
}

}  // namespace

std::string BackupPath(const std::string& projectFile) {
    return BuildPath(GetParentFolder(projectFile), GetBaseName(projectFile) + ".~pw");
}

bool SaveProject(ProjectContext& context, Proceed proceed, Silent silent) {
    return Trap(context.frame.errorLog, kModule, "SaveProject", false, [&] {
        std::string& file = context.frame.settings.ProjectFilename;
        const bool named = !file.empty();
        if (!named && silent == Silent::No) file = AskForName(context);
        if (proceed == Proceed::NameOnly || file.empty()) return !file.empty();

        std::string reason;
        {
            const SaveScreen screen(context.workspace, file);
            reason = Trap(context.frame.errorLog, kModule, "SaveProject",
                          std::string("Something unforeseen happened. The error log tells more."),
                          [&] { return WriteProject(context, file); });
        }
        if (reason.empty()) return true;
        const std::string failed = file;
        // A name under which nothing could be saved is none.
        if (!named) {
            file.clear();
            RefreshFilenameVariable(context);
        }
        TellFailure(context, failed, silent, reason);
        return false;
    });
}

bool SaveProjectAs(ProjectContext& context) {
    std::string& file = context.frame.settings.ProjectFilename;
    const std::string former = file;
    file.clear();
    if (SaveProject(context, Proceed::Save, Silent::No)) {
        context.workspace.RefreshCaption();
        return true;
    }
    file = former;
    RefreshFilenameVariable(context);
    return false;
}

std::vector<std::string> RefreshVariables(ProjectContext& context) {
    UpdateProjectMergeVariables(context);
    return UpdateMergeVariablesInPages(context).notUpdated;
}

bool UpdateOpenPageProperties(ProjectContext& context, std::string* unwritten) {
    const BusyPointer busy(context.workspace);
    const bool all = Trap(context.frame.errorLog, kModule, "UpdateOpenPageProperties", false, [&] {
        bool written = true;
        for (OpenPage* open : context.workspace.OpenPages()) {
            Page* page = GetPage(context, open->PageKey());
            if (!page) continue;
            std::string reason;
            if (UpdateOpenPage(context, *open, *page, reason)) continue;
            written = false;
            if (unwritten && unwritten->empty()) *unwritten = reason;
        }
        return written;
    });
    if (!all && unwritten && unwritten->empty()) *unwritten = "A page can not be written.";
    return all;
}

}  // namespace pw
