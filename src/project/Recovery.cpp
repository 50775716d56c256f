#include "project/Recovery.h"

#include <ctime>

#include "frame/Context.h"
#include "frame/FunctionLibrary.h"
#include "platform/Text.h"
#include "project/Attachments.h"
#include "project/Journal.h"
#include "project/Lifecycle.h"
#include "project/PageCleaning.h"
#include "project/Pages.h"
#include "project/ProjectLocking.h"
#include "project/Scratch.h"
#include "project/Workspace.h"
#include "project/frmRecover.h"
#include "project/omProj/Project.h"

namespace pw {
namespace {

constexpr const char* kModule = "Recovery.";
constexpr const char* kTitle = "Recover Project";

DateTime LocalTime(std::int64_t nanoseconds) {
    const std::time_t seconds = nanoseconds / 1'000'000'000;
    std::tm local{};
    if (!::localtime_r(&seconds, &local)) return 0;
    return MakeDate(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour,
                    local.tm_min, local.tm_sec);
}

bool ReadRecordOf(const FileSystem& files, const std::string& runFolder, JournalRecord& record) {
    std::string text;
    return files.Read(JournalRecordPath(runFolder), text) == FileError::None &&
           ReadRecord(text, record) && FileExists(files, JournalTreePath(runFolder));
}

DateTime LastWritten(const FileSystem& files, const std::string& runFolder) {
    return LocalTime(std::max(files.Stat(JournalRecordPath(runFolder)).modified,
                              files.Stat(JournalTreePath(runFolder)).modified));
}

/** A project file that somebody has saved since must not be saved over. */
bool IsStillOurs(const FileSystem& files, const JournalRecord& record) {
    if (record.projectFile.empty()) return false;
    // A save that had begun may have ended without the journal hearing of it.
    return record.savingTo == record.projectFile ||
           record.fileStamp == StampOf(files, record.projectFile);
}

/** The tree may be a moment older than the files: what has no file is no page. */
void DropPagesWithoutFile(ProjectContext& context) {
    std::vector<std::string> lost;
    for (const PageIndexEntry& entry : context.project.PageIndex()) {
        if (!FileExists(context.frame.files, entry.Item->Filename)) lost.push_back(entry.Key());
    }
    for (const std::string& key : lost) {
        const std::string text = "The page " + key + " has no file and was left out.";
        context.frame.errorLog.LogError(text, Failure(text), kModule, "RecoverProject");
        RemoveProjectItem(context, key);
    }
}

/** Counts and attachments of pages whose text is newer than the tree. */
void RescanEditedPages(ProjectContext& context, const JournalRecord& record) {
    for (const std::string& key : record.editedPages) {
        Page* page = GetPage(context, key);
        std::string bytes;
        if (!page || context.frame.files.Read(page->Filename, bytes) != FileError::None) continue;
        const auto document = dom::Document::parse(bytes);
        if (!document) continue;
        UpdateHTML(context, *document, key);
        if (document->isDirty() &&
            context.frame.files.Write(page->Filename, document->bytes()) != FileError::None)
            continue;
        ComputePageStatistics(context, document.get(), page);
        SaveAttachments(context, *document, GetParentFolder(page->Filename), *page);
    }
}

void Tell(ProjectContext& context, Icon icon, const std::string& text) {
    context.frame.dialogs.MsgBox({text, kTitle, icon});
}

/** Everything that can go wrong is tried before anything is given up; "" when it may be done. */
std::string Prepare(ProjectContext& context, const RecoverableProject& which,
                    std::unique_ptr<RunFolder>& taken, JournalRecord& record) {
    FileSystem& files = context.frame.files;
    taken = RunFolder::TakeOver(files, which.folder);
    if (!taken) return "Another program is recovering it just now.";
    if (!ReadRecordOf(files, which.folder, record)) return "Its journal can not be read.";
    Project probe(files);
    probe.WorkingFolder = BuildPath(which.folder, "~pw\\preview");
    if (probe.LoadTree(JournalTreePath(which.folder)) != ProjectResult::Success)
        return probe.LastMessage();
    return "";
}

void ShowRecovered(ProjectContext& context) {
    context.project.IsLoaded = true;
    context.project.IsDirty = true;
    context.workspace.RefillProjectExplorer();
    context.workspace.RefreshTasks();
    context.workspace.RefreshCaption();
    context.workspace.ResetUI();
}

}  // namespace

std::vector<RecoverableProject> FindRecoverable(const FrameContext& frame) {
    std::vector<RecoverableProject> found;
    for (const AbandonedRun& run :
         RunFolder::FindAbandoned(frame.files, frame.places.temporaryFolder)) {
        JournalRecord record;
        if (!ReadRecordOf(frame.files, run.folder, record)) continue;
        found.push_back({run.folder, record.projectName, record.projectFile,
                         LastWritten(frame.files, run.folder)});
    }
    std::stable_sort(found.begin(), found.end(), [](const auto& one, const auto& other) {
        return one.changed > other.changed;
    });
    return found;
}

bool RecoverProject(ProjectContext& context, std::unique_ptr<RunFolder>& run,
                    const RecoverableProject& which) {
    return Trap(context.frame.errorLog, kModule, "RecoverProject", false, [&] {
        FrameContext& frame = context.frame;
        Project& project = context.project;
        std::string reason;
        ProjectFileLock lock;
        if (!which.projectFile.empty()) {
            lock = LockProjectFile(context, which.projectFile, reason);
        }
        std::unique_ptr<RunFolder> taken;
        JournalRecord record;
        if (reason.empty()) reason = Prepare(context, which, taken, record);
        if (!reason.empty()) {
            Tell(context, Icon::Stop,
                 "Project " + QuoteSingle(which.projectName) + " can not be recovered now.\n\n" +
                     reason);
            return false;
        }

        // 1. This program moves into the crashed one's folder.
        context.workspace.CloseAllPages(true);
        context.workspace.ResetForNewProject();
        ReleaseProjectLock(context);
        JournalClear(context);
        context.copiedPage = {};
        project.Clear();
        project.IsLoaded = false;
        if (run && run->Remove() != FileError::None) {
            const std::string text = run->Path() + " can not be removed.";
            frame.errorLog.LogError(text, Failure(text), kModule, "RecoverProject");
        }
        run = std::move(taken);
        frame.runFolder = run->Path();
        CreateWorkingFolders(frame);

        // 2. The tree, and what in it is older than the files.
        project.WorkingFolder = frame.settings.PreviewFolder;
        if (project.LoadTree(JournalTreePath(frame.runFolder)) != ProjectResult::Success)
            throw Failure(project.LastMessage());
        DropPagesWithoutFile(context);
        RescanEditedPages(context, record);

        // 3. Where it is to be saved.
        const bool ours = IsStillOurs(frame.files, record);
        frame.settings.ProjectFilename = ours ? record.projectFile : "";
        if (ours) KeepProjectLock(context, std::move(lock));
        JournalOpened(context);
        context.journal.fileStamp = record.fileStamp;
        context.journal.editedPages.insert(record.editedPages.begin(), record.editedPages.end());
        ShowRecovered(context);
        if (!ours && !record.projectFile.empty())
            Tell(context, Icon::Information,
                 "The file " + QuoteSingle(record.projectFile) +
                     " was changed or moved after the program had ended. Please save the recovered "
                     "project under another name.");
        return true;
    });
}

bool DiscardRecoverable(FrameContext& frame, const RecoverableProject& which) {
    return Trap(frame.errorLog, kModule, "DiscardRecoverable", false, [&] {
        const FileError error = RunFolder::Discard(frame.files, which.folder);
        if (error != FileError::None) throw Failure(which.folder + ": " + Describe(error));
        return true;
    });
}

void SweepAbandonedRuns(FrameContext& frame) {
    Trap(frame.errorLog, kModule, "SweepAbandonedRuns", [&] {
        for (const AbandonedRun& run :
             RunFolder::FindAbandoned(frame.files, frame.places.temporaryFolder)) {
            JournalRecord record;
            if (ReadRecordOf(frame.files, run.folder, record)) continue;
            const FileError error = RunFolder::Discard(frame.files, run.folder);
            if (error != FileError::None) throw Failure(run.folder + ": " + Describe(error));
        }
    });
}

bool OfferRecovery(ProjectContext& context, std::unique_ptr<RunFolder>& run) {
    return Trap(context.frame.errorLog, kModule, "OfferRecovery", false, [&] {
        bool recovered = false;
        if (!FindRecoverable(context.frame).empty()) {
            frmRecover dialog(context, run);
            context.frame.dialogs.ShowModal(dialog);
            recovered = dialog.Recovered();
        }
        SweepAbandonedRuns(context.frame);
        return recovered;
    });
}

}  // namespace pw
