#include "project/Recovery.h"

#include <ctime>

#include "frame/Context.h"
#include "frame/FunctionLibrary.h"
#include "platform/Outcome.h"
#include "platform/Text.h"
#include "project/Attachments.h"
#include "project/Journal.h"
#include "project/Lifecycle.h"
#include "project/PageCleaning.h"
#include "project/Pages.h"
#include "project/ProjectLocking.h"
#include "project/RemovedFiles.h"
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

enum class Found { Nothing, Journal, Unreadable };

/** A record that the disk fails to read is not taken for none: what it stands for would be swept.
 */
Found ReadRecordOf(const FileSystem& files, const std::string& runFolder, JournalRecord& record) {
    std::string text;
    const FileError error = files.Read(JournalRecordPath(runFolder), text);
    if (error == FileError::NotFound || error == FileError::NotFolder) return Found::Nothing;
    if (error != FileError::None) return Found::Unreadable;
    return ReadRecord(text, record) && FileExists(files, JournalTreePath(runFolder))
               ? Found::Journal
               : Found::Nothing;
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

template <class Visit>
void VisitAttachments(Project& project, Visit visit) {
    for (const PageIndexEntry& entry : project.PageIndex())
        for (const Attachment& attachment : entry.Item->Attachments())
            visit(attachment.Filename());
    if (Page* page = project.DefaultTemplate()) {
        visit(page->Filename);
        for (const Attachment& attachment : page->Attachments())
            visit(attachment.Filename());
    }
    for (const Attachment& attachment : project.Attachments())
        visit(attachment.Filename());
}

/** A program that was killed while it removed a page has moved the page's files aside already: the
 *  page is still there. */
std::string MovedAside(const FileSystem& files, const Project& project, const std::string& file) {
    const std::string& root = project.WorkingFolder;
    if (!file.starts_with(root + "\\")) return {};
    return FindMovedAside(files, GetParentFolder(root), file.substr(root.size() + 1));
}

/** The pages of which something is there to be recovered. */
int CountPagesThere(const FileSystem& files, const Project& project) {
    int count = 0;
    for (const PageIndexEntry& entry : project.PageIndex()) {
        const std::string& file = entry.Item->Filename;
        if (FileExists(files, file) || !MovedAside(files, project, file).empty()) ++count;
    }
    return count;
}

/**
 * Fills what the journal names and the run folder lacks from the saved project, and leaves out the
 * pages that it does not have either. What came of it is told by their names.
 */
class Completion {
  public:
    Completion(ProjectContext& context, const std::string& savedFile)
        : context_(context),
          files_(context.frame.files),
          savedFile_(savedFile),
          savedFolder_(BuildPath(context.frame.runFolder, "~pwsaved")),
          saved_(files_) {}
    ~Completion() {
        if (loaded_) DeleteFolder(files_, savedFolder_);
    }
    Completion(const Completion&) = delete;
    Completion& operator=(const Completion&) = delete;

    void Run() {
        std::vector<std::string> lostPages;
        for (const PageIndexEntry& entry : context_.project.PageIndex()) {
            const Page& page = *entry.Item;
            if (IsThere(page.Filename)) continue;
            // By its key: it may have got another name since.
            const Page* former = Saved().FindPage(entry.Key());
            const bool filled = former && Take(former->Filename, page.Filename);
            Note(filled, page.Name + " (" + GetFileName(page.Filename) + ")");
            if (!filled) lostPages.push_back(entry.Key());
        }
        for (const std::string& key : lostPages)
            RemoveProjectItem(context_, key);
        VisitAttachments(context_.project, [&](const std::string& file) {
            if (file.empty() || IsThere(file)) return;
            const std::string& root = context_.project.WorkingFolder;
            const bool below = file.starts_with(root + "\\");
            const std::string name = below ? file.substr(root.size() + 1) : file;
            Note(below && Take(BuildPath(savedFolder_, name), file), ReplaceAll(name, "\\", "/"));
        });
    }

    /** "" when nothing was missing. */
    std::string Story() const {
        std::string text;
        if (!filled_.empty())
            text +=
                "These were gone and were taken from the saved project, as they were at its "
                "last save:\n" +
                filled_;
        if (!filled_.empty() && !lost_.empty()) text += "\n";
        if (!lost_.empty()) text += "These are gone and could not be recovered:\n" + lost_;
        return text;
    }

  private:
    bool IsThere(const std::string& file) {
        if (FileExists(files_, file)) return true;
        const std::string aside = MovedAside(files_, context_.project, file);
        return !aside.empty() && MakeFolder(files_, GetParentFolder(file)) &&
               files_.Rename(aside, file) == FileError::None;
    }
    /** Unpacked when it is needed first; empty when there is none that can be read. */
    Project& Saved() {
        if (loaded_) return saved_;
        loaded_ = true;
        saved_.WorkingFolder = savedFolder_;
        saved_.LoadMode = LoadMode::Everything;
        if (savedFile_.empty() || !MakeFolder(files_, savedFolder_)) return saved_;
        if (saved_.Load(savedFile_) != ProjectResult::Success)
            context_.frame.errorLog.LogError(saved_.LastMessage(), Failure(saved_.LastMessage()),
                                             kModule, "RecoverProject");
        // Another project that has taken the file's place says nothing about this one.
        if (saved_.ProjectId != context_.project.ProjectId) saved_.Clear();
        return saved_;
    }
    bool Take(const std::string& from, const std::string& to) {
        return !Saved().ProjectId.empty() && FileExists(files_, from) &&
               MakeFolder(files_, GetParentFolder(to)) && files_.Copy(from, to) == FileError::None;
    }
    void Note(bool filled, const std::string& name) { (filled ? filled_ : lost_) += "\n" + name; }

    ProjectContext& context_;
    FileSystem& files_;
    std::string savedFile_;
    std::string savedFolder_;
    Project saved_;
    bool loaded_ = false;
    std::string filled_;
    std::string lost_;
};

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

struct Abandoned {
    std::unique_ptr<RunFolder> run;
    JournalRecord record;
    bool hasPages = false;  ///< of those that its journal names, or it names none
};

/** Everything that can go wrong is tried before anything is given up. */
Outcome<Abandoned> Prepare(ProjectContext& context, const RecoverableProject& which) {
    FileSystem& files = context.frame.files;
    Abandoned found;
    found.run = RunFolder::TakeOver(files, which.folder);
    if (!found.run) return Problem{"Another program is recovering it just now."};
    if (ReadRecordOf(files, which.folder, found.record) != Found::Journal)
        return Problem{"Its journal can not be read."};
    Project probe(files);
    probe.WorkingFolder = BuildPath(which.folder, "~pw\\preview");
    if (probe.LoadTree(JournalTreePath(which.folder)) != ProjectResult::Success)
        return Problem{probe.LastMessage()};
    found.hasPages = probe.PageIndex().Count() == 0 || CountPagesThere(files, probe) > 0;
    return found;
}

void TellRefused(ProjectContext& context, const RecoverableProject& which,
                 const std::string& reason) {
    Tell(context, Icon::Stop,
         "Project " + QuoteSingle(which.projectName) + " can not be recovered now.\n\n" + reason);
}

/** Not one page is left: the project as it was saved is all that there is. */
bool OpenSavedInstead(ProjectContext& context, const RecoverableProject& which) {
    const std::string start =
        "None of the pages of project " + QuoteSingle(which.projectName) + " is left";
    if (which.projectFile.empty()) {
        Tell(context, Icon::Stop, start + ", and it was never saved. It can not be recovered.");
        return false;
    }
    Tell(context, Icon::Information,
         start + ". The project is opened as it was saved last in " +
             QuoteSingle(which.projectFile) + ".");
    if (!OpenProject(context, which.projectFile, Silent::No)) return false;
    DiscardRecoverable(context.frame, which);
    return true;
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
        if (ReadRecordOf(frame.files, run.folder, record) != Found::Journal) continue;
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
        std::string holder;
        ProjectFileLock lock;
        if (!which.projectFile.empty()) lock = LockProjectFile(context, which.projectFile, holder);
        if (!holder.empty()) {
            TellRefused(context, which, holder);
            return false;
        }
        Outcome<Abandoned> found = Prepare(context, which);
        if (!found) {
            TellRefused(context, which, found.problem());
            return false;
        }
        if (!found->hasPages) {
            found->run.reset();
            lock = {};
            return OpenSavedInstead(context, which);
        }
        const JournalRecord& record = found->record;

        // 1. This program moves into the crashed one's folder.
        context.workspace.CloseAllPages(true);
        context.workspace.ResetForNewProject();
        TakeOverProjectLock(context, lock);
        ReleaseProjectLock(context);
        JournalClear(context);
        context.copiedPage = {};
        context.moves.clear();
        project.Clear();
        project.IsLoaded = false;
        if (run && run->Remove() != FileError::None) {
            const std::string text = run->Path() + " can not be removed.";
            frame.errorLog.LogError(text, Failure(text), kModule, "RecoverProject");
        }
        run = std::move(found->run);
        frame.runFolder = run->Path();
        CreateWorkingFolders(frame);

        // 2. The tree, and what in it is older than the files.
        project.WorkingFolder = frame.settings.PreviewFolder;
        if (project.LoadTree(JournalTreePath(frame.runFolder)) != ProjectResult::Success)
            throw Failure(project.LastMessage());
        std::string story;
        {
            Completion completion(context, record.projectFile);
            completion.Run();
            story = completion.Story();
        }
        RescanEditedPages(context, record);

        // 3. Where it is to be saved.
        const bool ours = IsStillOurs(frame.files, record);
        frame.settings.ProjectFilename = ours ? record.projectFile : "";
        if (ours) KeepProjectLock(context, std::move(lock));
        JournalOpened(context);
        context.journal.fileStamp = record.fileStamp;
        context.journal.editedPages.insert(record.editedPages.begin(), record.editedPages.end());
        ShowRecovered(context);
        if (!story.empty()) {
            frame.errorLog.LogError(story, Failure(story), kModule, "RecoverProject");
            Tell(context, Icon::Information,
                 "Project " + QuoteSingle(which.projectName) + " was recovered.\n\n" + story);
        }
        if (!ours && !record.projectFile.empty())
            Tell(context, Icon::Information,
                 "The file " + QuoteSingle(ToNativePath(record.projectFile)) +
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
        RunFolder::SweepLeaving(frame.files, frame.places.temporaryFolder);
        for (const AbandonedRun& run :
             RunFolder::FindAbandoned(frame.files, frame.places.temporaryFolder)) {
            JournalRecord record;
            if (ReadRecordOf(frame.files, run.folder, record) != Found::Nothing) continue;
            const FileError error = RunFolder::Discard(frame.files, run.folder);
            if (error == FileError::None) continue;
            const std::string text = run.folder + ": " + Describe(error);
            frame.errorLog.LogError(text, Failure(text), kModule, "SweepAbandonedRuns");
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
