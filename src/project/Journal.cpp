#include "project/Journal.h"

#include "frame/Context.h"
#include "frame/FunctionLibrary.h"
#include "platform/Text.h"
#include "project/Pages.h"
#include "project/Workspace.h"
#include "project/omProj/Project.h"

namespace pw {
namespace {

constexpr const char* kModule = "Journal.";
constexpr const char* kFirstLine = "Pagewick journal 1";
constexpr const char* kLastLine = "end";
constexpr double kQuietSeconds = 2;
constexpr double kPatienceSeconds = 10;
constexpr double kPauseSeconds = 30;  // a full disk is not to fill the error log

std::string JournalFolder(const std::string& runFolder) {
    return BuildPath(runFolder, "journal");
}

/** Names of files and projects may hold line ends. */
std::string Escape(const std::string& text) {
    return ReplaceAll(ReplaceAll(ReplaceAll(text, "%", "%25"), "\n", "%0A"), "\r", "%0D");
}

void Put(FrameContext& frame, const std::string& path, const std::string& text) {
    FileError error = frame.files.MakeFolder(GetParentFolder(path));
    if (error == FileError::None) error = frame.files.Write(path, text);
    if (error != FileError::None) throw Failure(path + ": " + Describe(error));
}

void PutRecord(ProjectContext& context, const std::string& savingTo = {}) {
    JournalState& journal = context.journal;
    JournalRecord record;
    record.projectFile = context.frame.settings.ProjectFilename;
    record.projectName = context.project.Name;
    record.fileStamp = journal.fileStamp;
    record.savingTo = savingTo;
    record.editedPages.assign(journal.editedPages.begin(), journal.editedPages.end());
    const std::string text = WriteRecord(record);
    if (text == journal.record) return;
    Put(context.frame, JournalRecordPath(context.frame.runFolder), text);
    journal.record = text;
}

void PutTree(ProjectContext& context) {
    const std::string path = JournalTreePath(context.frame.runFolder);
    if (!MakeFolder(context.frame.files, GetParentFolder(path)))
        throw Failure(path + " can not be made.");
    if (context.project.SaveTree(path) != ProjectResult::Success)
        throw Failure(context.project.LastMessage());
    context.journal.tree.Take(context.project);
}

/** True when the page's text is due to go into its file. */
bool IsDue(JournalState::OpenPageMark& mark, std::uint64_t revision, double now) {
    if (revision != mark.seen) {
        mark.seen = revision;
        mark.quietSince = now;
    }
    if (revision == mark.written) {
        mark.waitingSince = 0;
        return false;
    }
    if (mark.waitingSince == 0) mark.waitingSince = now;
    return now - mark.quietSince >= kQuietSeconds || now - mark.waitingSince >= kPatienceSeconds;
}

void WriteEditedPages(ProjectContext& context) {
    JournalState& journal = context.journal;
    const double now = context.frame.clock.MonotonicSeconds();
    std::map<std::string, JournalState::OpenPageMark> marks;
    for (OpenPage* open : context.workspace.OpenPages()) {
        const std::string key = open->PageKey();
        const auto known = journal.openPages.find(key);
        JournalState::OpenPageMark mark;
        if (known != journal.openPages.end()) {
            mark = known->second;
        } else if (!open->IsDirty()) {
            mark.seen = mark.written = open->Document().revision();
        }
        // What is typed as source is not in the document yet. Reading it back takes a while in a
        // large page, and may need a word with the user.
        if (open->CurrentViewState() == ViewState::Html &&
            now - mark.takenOverAt >= kPatienceSeconds) {
            open->TakeOverEdits();
            mark.takenOverAt = now;
        }
        const std::uint64_t revision = open->Document().revision();
        Page* page = IsDue(mark, revision, now) ? GetPage(context, key) : nullptr;
        marks[key] = mark;
        // Typed source that can't be a page stays where it was typed.
        if (!page || !open->TakeOverEdits()) continue;
        std::string reason;
        if (!SavePageFile(context, *page, &reason)) throw Failure(reason);
        JournalPageWritten(context, *open);
        marks[key] = journal.openPages[key];
        marks[key].takenOverAt = mark.takenOverAt;
    }
    journal.openPages = std::move(marks);
}

/** The texts of all open pages are in their files, and everything is in the project file. */
void MarkAllWritten(ProjectContext& context) {
    JournalState& journal = context.journal;
    journal.openPages.clear();
    for (OpenPage* open : context.workspace.OpenPages()) {
        const std::uint64_t revision = open->Document().revision();
        journal.openPages[open->PageKey()] = {revision, revision};
    }
}

std::set<std::string> PagesLikelyChanged(ProjectContext& context) {
    std::set<std::string> keys = context.journal.editedPages;
    for (OpenPage* open : context.workspace.OpenPages())
        keys.insert(open->PageKey());
    return keys;
}

}  // namespace

void JournalTick(ProjectContext& context) {
    const double now = context.frame.clock.MonotonicSeconds();
    if (!context.journal.running || !context.project.IsLoaded || context.project.Busy() ||
        context.frame.runFolder.empty() || context.frame.dialogs.IsModalOpen() ||
        now < context.journal.pausedUntil)
        return;
    const bool written = Trap(context.frame.errorLog, kModule, "JournalTick", false, [&] {
        WriteEditedPages(context);
        if (!context.project.IsDirty && context.journal.editedPages.empty()) return true;
        if (context.journal.tree.Changed(context.project, PagesLikelyChanged(context)))
            PutTree(context);
        PutRecord(context);
        return true;
    });
    context.journal.pausedUntil = written ? 0 : now + kPauseSeconds;
}

void JournalFilesMoved(ProjectContext& context) {
    if (!context.journal.tree.IsTaken()) return;
    Trap(context.frame.errorLog, kModule, "JournalFilesMoved", [&] {
        PutTree(context);
        PutRecord(context);
    });
}

void JournalOpened(ProjectContext& context) {
    context.journal = {};
    context.journal.running = true;
    context.journal.fileStamp =
        StampOf(context.frame.files, context.frame.settings.ProjectFilename);
}

void JournalBeforeSave(ProjectContext& context, const std::string& file) {
    Trap(context.frame.errorLog, kModule, "JournalBeforeSave", [&] {
        // Only where there is a journal: without one nothing was changed for longer than a moment.
        if (!context.journal.tree.IsTaken()) return;
        for (const PageIndexEntry& entry : context.project.PageIndex()) {
            if (entry.Item->IsDirty) context.journal.editedPages.insert(entry.Key());
        }
        PutRecord(context, file);
    });
}

void JournalSaved(ProjectContext& context) {
    Trap(context.frame.errorLog, kModule, "JournalSaved", [&] {
        JournalState& journal = context.journal;
        DeleteFile(context.frame.files, JournalRecordPath(context.frame.runFolder));
        journal.record.clear();
        // The tree in the journal serves on as long as it is the one that was saved.
        if (journal.tree.IsTaken() &&
            journal.tree.Changed(context.project, PagesLikelyChanged(context)))
            journal.tree.Forget();
        journal.editedPages.clear();
        journal.fileStamp = StampOf(context.frame.files, context.frame.settings.ProjectFilename);
        MarkAllWritten(context);
    });
}

bool JournalClear(ProjectContext& context) {
    context.journal = {};
    if (context.frame.runFolder.empty()) return true;
    // Without the record there is nothing to recover, whatever else remains.
    const std::string record = JournalRecordPath(context.frame.runFolder);
    const FileError error = context.frame.files.RemoveFile(record);
    const bool removed =
        error == FileError::None || error == FileError::NotFound || error == FileError::NotFolder;
    if (!removed) {
        const std::string text = record + ": " + Describe(error);
        context.frame.errorLog.LogError(text, Failure(text), kModule, "JournalClear");
    }
    DeleteFolder(context.frame.files, JournalFolder(context.frame.runFolder));
    return removed;
}

bool IsFileBehind(ProjectContext& context, OpenPage& page) {
    const auto mark = context.journal.openPages.find(page.PageKey());
    return mark != context.journal.openPages.end() &&
           mark->second.written != page.Document().revision();
}

void JournalPageWritten(ProjectContext& context, OpenPage& page) {
    const std::uint64_t revision = page.Document().revision();
    context.journal.openPages[page.PageKey()] = {revision, revision};
    context.journal.editedPages.insert(page.PageKey());
}

std::string WriteRecord(const JournalRecord& record) {
    std::string text = std::string(kFirstLine) + "\n";
    const auto line = [&](const char* name, const std::string& value) {
        text += std::string(name) + "=" + Escape(value) + "\n";
    };
    line("file", record.projectFile);
    line("name", record.projectName);
    line("stamp", record.fileStamp);
    line("saving", record.savingTo);
    for (const std::string& key : record.editedPages)
        line("edited", key);
    return text + kLastLine + "\n";
}

bool ReadRecord(const std::string& text, JournalRecord& record) {
    const std::vector<std::string> lines = Split(text, '\n');
    if (lines.size() < 3 || lines.front() != kFirstLine || lines[lines.size() - 2] != kLastLine)
        return false;
    record = {};
    const std::map<std::string, std::string*> fields = {{"file", &record.projectFile},
                                                        {"name", &record.projectName},
                                                        {"stamp", &record.fileStamp},
                                                        {"saving", &record.savingTo}};
    for (std::size_t i = 1; i + 2 < lines.size(); ++i) {
        const std::size_t equals = lines[i].find('=');
        if (equals == std::string::npos) return false;
        const std::string name = lines[i].substr(0, equals);
        const std::string value = PercentDecode(lines[i].substr(equals + 1));
        const auto field = fields.find(name);
        if (field != fields.end()) *field->second = value;
        if (name == "edited") record.editedPages.push_back(value);
    }
    return true;
}

std::string JournalRecordPath(const std::string& runFolder) {
    return BuildPath(JournalFolder(runFolder), "record");
}

std::string JournalTreePath(const std::string& runFolder) {
    return BuildPath(JournalFolder(runFolder), "tree");
}

std::string StampOf(const FileSystem& files, const std::string& file) {
    if (file.empty()) return "";
    const FileInfo info = files.Stat(file);
    return info.exists ? std::to_string(info.size) + "-" + std::to_string(info.modified) : "";
}

}  // namespace pw
