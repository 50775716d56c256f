#include "project/Lifecycle.h"

#include "frame/Context.h"
#include "frame/FunctionLibrary.h"
#include "platform/Text.h"
#include "project/AddFiles.h"
#include "project/Journal.h"
#include "project/OfferLeftOut.h"
#include "project/Pages.h"
#include "project/ProjectLocking.h"
#include "project/Scratch.h"
#include "project/Workspace.h"
#include "project/omProj/Project.h"

namespace pw {
namespace {

constexpr const char* kModule = "ProjectFunctions.";

/** What the library reports goes to the progress bar and the error log. */
void ListenTo(ProjectContext& context) {
    context.project.ProjectProgressChanged = [&context](int value) {
        context.workspace.SetProgress(std::clamp(value, 0, 100));
    };
    // A program without a window has said already where it wants them.
    if (context.project.LogMessage) return;
    context.project.LogMessage = [&context](const std::string& tag, const std::string& message) {
        context.frame.errorLog.LogError(message, Failure(message), "omProj.", tag);
    };
}

/** Nothing is open any more: no file name, no lock, no page, no journal. False when the journal
 *  stands all the same: then the files that it names have to stay as well. */
bool ForgetProject(ProjectContext& context) {
    context.frame.settings.ProjectFilename.clear();
    context.copiedPage = {};
    context.moves.clear();
    ReleaseProjectLock(context);
    return JournalClear(context);
}

void Tell(ProjectContext& context, Silent silent, const std::string& text) {
    if (silent == Silent::No) context.frame.dialogs.MsgBox({text, "Open Project", Icon::Stop});
}

/**
 * COMPAT: only the first page of the first site's top level comes back, and only if it was open
 * when the project was saved. Blocks are a letter and a number of four digits.
 */
bool IsReopened(const Page& page) {
    const std::string& key = page.Key();
    return key.size() == 2 * kBlockWidth && page.IsOpenAtSave() &&
           NumberOfKey(key.substr(0, kBlockWidth), 'W') == 1 && NumberOfKey(key, 'P') == 1;
}

void ReopenPage(ProjectContext& context) {
    Workspace& workspace = context.workspace;
    for (const PageIndexEntry& entry : context.project.PageIndex()) {
        Page& page = *entry.Item;
        if (!IsReopened(page)) continue;
        workspace.ShowPage(page.Key(), page.Name, page.Filename, page.PageType);
        break;
    }
    const std::string current = workspace.CurrentPageKey();
    if (!workspace.OpenPages().empty() && !current.empty()) {
        workspace.SelectProjectNode(current);
        workspace.UpdatePageExplorer(current);
    }
}

/** Empties the scratch area and fills it and the project from the file; "" on success. */
std::string LoadProject(ProjectContext& context, const std::string& file) {
    FrameContext& frame = context.frame;
    Project& project = context.project;
    context.workspace.CloseAllPages(true);
    context.workspace.ResetForNewProject();
    const bool forgotten = ForgetProject(context);
    project.IsLoaded = false;
    const auto fail = [&](const std::string& reason) {
        project.Clear();
        context.workspace.RefillProjectExplorer();
        context.workspace.RefreshCaption();
        context.workspace.ResetUI();
        return reason;
    };
    if (!forgotten || !ClearWorkingFolders(frame, ScratchFolders::Keep) ||
        !CreateWorkingFolders(frame))
        return fail("The program's temporary folder " + ToNativePath(frame.runFolder) +
                    " can not be used.");

    project.Clear();
    project.WorkingFolder = frame.settings.PreviewFolder;
    project.LoadMode = LoadMode::Everything;
    project.RaiseProgress = true;
    ListenTo(context);
    context.workspace.ShowProgress(true);
    const ProjectResult result = project.Load(file);
    context.workspace.ShowProgress(false);
    if (result == ProjectResult::Success) return "";
    const std::string message = project.LastMessage();
    return fail(message.empty() ? Describe(result) : message);
}

/** Reads the header with an object of its own, so that the open project is not touched. */
std::string CheckHeader(ProjectContext& context, const std::string& file) {
    Project header(context.frame.files);
    header.LoadMode = LoadMode::Header;
    const ProjectResult result = header.Load(file);
    if (result == ProjectResult::Success) return "";
    return header.LastMessage().empty() ? Describe(result) : header.LastMessage();
}

void ShowLoadedProject(ProjectContext& context) {
    context.project.IsLoaded = true;
    JournalOpened(context);
    context.workspace.RefillProjectExplorer();
    context.workspace.RefreshTasks();
    ReopenPage(context);
    context.workspace.RefreshCaption();
    context.workspace.ResetUI();
}

bool IsWhole(ProjectContext& context, const std::string& file) {
    if (!FileExists(context.frame.files, file)) return false;
    Project probe(context.frame.files);
    return probe.Check(file) == ProjectResult::Success;
}

/** A save that did not end may have left a whole copy beside the file. */
bool OfferBackup(ProjectContext& context, const std::string& file, const std::string& text) {
    const std::string backup = BackupPath(file);
    const Answer answer = context.frame.dialogs.MsgBox(
        {text + "\n\nA copy of the project from its last save, " +
             QuoteSingle(GetFileName(backup)) +
             ", is whole. Do you want to open the copy? You will be asked for a new name when you "
             "save it; both files stay as they are.",
         "Open Project", Icon::Stop, Buttons::YesNo, Answer::Yes});
    if (answer != Answer::Yes) return false;
    const std::string reason = LoadProject(context, backup);
    if (!reason.empty()) {
        Tell(context, Silent::No, reason);
        return false;
    }
    context.project.IsDirty = true;
    ShowLoadedProject(context);
    return true;
}

bool OpenExisting(ProjectContext& context, const std::string& path, Silent silent) {
    std::string holder;
    auto lock = LockProjectFile(context, path, holder);
    std::string reason = lock.granted ? CheckHeader(context, path) : holder;
    if (reason.empty()) {
        TakeOverProjectLock(context, lock);
        reason = LoadProject(context, path);
    }
    if (!reason.empty()) {
        const std::string text = "Project " + QuoteSingle(GetFileName(path)) +
                                 " can not be opened.\n\nPlease try again.\n\n" + reason;
        context.frame.errorLog.LogError(reason, Failure(reason), kModule, "OpenProject");
        if (lock.granted && silent == Silent::No && IsWhole(context, BackupPath(path)))
            return OfferBackup(context, path, text);
        Tell(context, silent, text);
        return false;
    }
    context.frame.settings.ProjectFilename = path;
    KeepProjectLock(context, std::move(lock));
    context.project.IsDirty = false;
    ShowLoadedProject(context);
    return true;
}

}  // namespace

void InitNewProject(ProjectContext& context) {
    Trap(context.frame.errorLog, kModule, "InitNewProject", [&] {
        Project& project = context.project;
        project.IsLoaded = false;
        context.workspace.CloseAllPages(true);
        context.workspace.ResetForNewProject();
        // The journal goes before the files: what is given up is not to be recovered in part.
        static_cast<void>(ForgetProject(context));
        DeleteProjectFiles(context.frame, project);
        project.Clear();
        ListenTo(context);
        InitProjectProperties(context);
        if (WebSite* site = project.WebSites().Add()) {
            site->Name = "Web Site";
            site->Expanded = true;
        }
        ClearWorkingFolders(context.frame, ScratchFolders::Keep);
        CreateWorkingFolders(context.frame);
        project.WorkingFolder = context.frame.settings.PreviewFolder;
        project.IsDirty = false;
        JournalOpened(context);
    });
}

void InitProjectProperties(ProjectContext& context) {
    const Settings& settings = context.frame.settings;
    Project& project = context.project;
    const std::string userName = settings.UserName();
    project.ProjectId = MakeGUID(0);
    project.Name = kNewProjectName;
    project.WorkingFolder = settings.PreviewFolder;
    project.ClientVersion = GetVersionString();
    project.CompanyName = settings.UserCompany;
    project.AuthorName = userName.empty() ? GetUserName(context.frame.system) : userName;
    project.AuthorEmail = settings.UserEmail;
    project.VersionMajor = 1;
    project.VersionMinor = 0;
    project.VersionBuild = 0;
    project.AutoVersion = true;
    project.EmailPublishStatus = !settings.UserEmail.empty();
    project.CreatedBy = CurrentAuthor(context);
    project.Created = context.frame.clock.Now();
    project.ModifiedBy = project.CreatedBy;
    project.Modified = project.Created;
    project.PublishCount = 0;
    context.frame.settings.ProjectFilename.clear();
}

bool OpenProject(ProjectContext& context, const std::string& path, Silent silent) {
    const bool opened = Trap(context.frame.errorLog, kModule, "OpenProject", false, [&] {
        if (context.project.Busy()) return false;
        if (FileExists(context.frame.files, path)) return OpenExisting(context, path, silent);
        Tell(context, silent,
             "Project file " + QuoteSingle(ToNativePath(path)) +
                 " does not exist.\n\nPlease choose another project and try again.");
        return false;
    });
    context.workspace.ResetStatus();
    return opened;
}

bool OpenHTMLAsProject(ProjectContext& context, const std::string& path) {
    return Trap(context.frame.errorLog, kModule, "OpenHTMLAsProject", false, [&] {
        if (context.project.Busy()) return false;
        InitNewProject(context);
        context.workspace.ResetUI();
        AddFilesRequest request;
        request.paths = {path};
        const AddFilesResult added = AddFiles(context, request);
        if (added.pageKeys.empty()) {
            const std::string reason = added.problems.empty() ? "" : added.problems.front().reason;
            Tell(context, Silent::No,
                 "Page " + QuoteSingle(GetFileName(path)) + " can not be opened. " + reason);
            context.workspace.ResetUI();
            return false;
        }
        OfferLeftOut(context.frame, added.leftOut, [&](const std::vector<std::string>& files) {
            for (const AddFilesProblem& problem : added.takeLeftOut(files))
                Tell(context, Silent::No, problem.reason);
        });
        context.project.Name = GetBaseName(path);
        context.project.IsLoaded = true;
        context.project.IsDirty = true;
        context.workspace.RefillProjectExplorer();
        if (const Page* page = GetPage(context, added.pageKeys.front())) {
            context.workspace.SelectProjectNode(page->Key());
            context.workspace.ShowPage(page->Key(), page->Name, page->Filename, page->PageType);
        }
        context.workspace.RefreshCaption();
        context.workspace.ResetUI();
        return true;
    });
}

std::string MainWindowCaption(const ProjectContext& context) {
    const CBrand& brand = context.frame.brand;
    const std::string caption =
        brand.IsValid() ? brand.FormCaption() : context.frame.applicationTitle;
    const std::string name = Trim(context.project.Name);
    return context.project.IsLoaded && !name.empty() ? caption + " - " + name : caption;
}

}  // namespace pw
