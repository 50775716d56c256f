#include "project/omProj/ProjectSaver.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "project/omProj/Format.h"
#include "project/omProj/ProjectContents.h"
#include "project/omProj/SafetyCopy.h"

namespace pw {
namespace {

/** Projects of more bytes than this get large pages, which small ones would be mostly air in. */
constexpr std::int64_t kSmallProject = 4 << 20;
constexpr int kSmallPage = 4096;
constexpr int kLargePage = 65536;

int PageSizeFor(std::int64_t bytes) {
    return bytes < kSmallProject ? kSmallPage : kLargePage;
}

std::string FolderOf(const std::string& path) {
    const std::size_t slash = path.rfind('\\');
    return slash == std::string::npos || slash == 0 ? "\\" : path.substr(0, slash);
}

std::string LeafOf(const std::string& path) {
    return path.substr(path.rfind('\\') + 1);
}

std::string JournalOf(const std::string& path) {
    return path + "-journal";
}

ProjectResult ResultOf(FileError error) {
    switch (error) {
        case FileError::None:
            return ProjectResult::Success;
        case FileError::NoPermission:
        case FileError::ReadOnlyDisk:
            return ProjectResult::NoPermission;
        case FileError::NoSpace:
            return ProjectResult::DiskFull;
        default:
            return ProjectResult::IOError;
    }
}

void Require(FileError error, const std::string& path) {
    if (error == FileError::None) return;
    const ProjectResult result = ResultOf(error);
    throw ProjectFailure(
        result, "The file " + Quoted(path) + " can not be written: " + Describe(error) + ".");
}

/** Gives a journal that belongs to no file here another name, so that it can't be played into a new
 *  file of its former name. It may be all that mends a project which was moved away. */
std::string SetJournalAside(FileSystem& files, const std::string& target) {
    const std::string journal = JournalOf(target);
    for (int number = 1;; ++number) {
        const std::string aside = journal + ".old" + (number > 1 ? std::to_string(number) : "");
        const FileError error = files.Rename(journal, aside);
        if (error == FileError::Exists && number < 1000) continue;
        Require(error, aside);
        return aside;
    }
}

}  // namespace

bool SettleJournal(FileSystem& files, const std::string& projectFile) {
    const std::string journal = JournalOf(projectFile);
    if (!files.Stat(journal).exists) return true;
    // Beside an empty file the library itself would remove it.
    const FileInfo file = files.Stat(projectFile);
    if (!file.exists || file.size == 0) return false;
    const ProjectFailure settled = Guard([&] {
        ProjectDatabase database(ToNativePath(projectFile), ProjectDatabase::Mode::Update);
        // Nobody else can be in the middle of a save while this is held. What is a journal to be
        // played back has been; what still lies there says that nothing was open.
        database.Execute("BEGIN IMMEDIATE");
        if (files.Stat(journal).exists) Require(files.RemoveFile(journal), journal);
        database.Rollback();
    });
    if (settled.result != ProjectResult::Success && settled.result != ProjectResult::Damaged)
        throw settled;
    return !files.Stat(journal).exists;
}

FileMark ProjectSaver::SaveProject(const FileMark& known) {
    const ProjectFailure failure = Guard([&] {
        if (!known.IsKnown() || !UpdateInPlace(known)) WriteNew(kProjectId, {});
    });
    if (failure.result != ProjectResult::Success) {
        // A failure that is over has left a journal that can be played back at once.
        const std::string journal = JournalOf(target_);
        static_cast<void>(Guard([&] { static_cast<void>(SettleJournal(files_, target_)); }));
        if (!files_.Stat(journal).exists) throw failure;
        throw ProjectFailure(
            failure.result,
            failure.message + " The file " + Quoted(journal) +
                " was left beside the project. Please leave it there: with it the project is put "
                "back as it was as soon as the disk works again and the project is opened.");
    }
    SweepUnfinished();
    SafetyCopy(files_, target_, [this](const std::string& text) { Log(text); }).RemoveAbandoned();
    FileMark mark;
    static_cast<void>(Guard([&] { mark = CheckHeader(ToNativePath(target_), kProjectId).mark; }));
    return mark;
}

void ProjectSaver::SaveJournal(const JournalBase& base) {
    WriteNew(kJournalId, base);
}

void ProjectSaver::Log(const std::string& message) const {
    project_.Log("Project.Save", message);
}

bool ProjectSaver::UpdateInPlace(const FileMark& known) {
    // 1. Only a file whose content is known to the last byte is changed in part.
    ProjectFileHeader header;
    const ProjectFailure opened =
        Guard([&] { header = CheckHeader(ToNativePath(target_), kProjectId); });
    if (opened.result == ProjectResult::NoPermission) throw opened;
    if (opened.result != ProjectResult::Success || header.formatVersion != kFormatVersion)
        return false;
    if (header.mark != known || files_.Stat(JournalOf(target_)).exists) {
        Log("The project file " + Quoted(target_) + " is not as it was left and is written anew.");
        return false;
    }

    // 2. The copy comes before the database is open: closing a file ends the locks on it.
    SafetyCopy copy(files_, target_, [this](const std::string& text) { Log(text); });
    copy.Make();

    // 3. One transaction.
    bool worthwhile = true;
    const ProjectFailure failure = Guard([&] {
        ProjectWriter writer(project_, ProjectWriter::Content::WithFiles);
        ProjectDatabase database(ToNativePath(target_), ProjectDatabase::Mode::Update);
        try {
            database.CheckSchema();
            database.Execute("BEGIN IMMEDIATE");
            worthwhile = IsWorthUpdating(database, header, writer.SizeOnDisk());
            if (worthwhile) {
                writer.WriteTree(database);
                writer.WriteFiles(database);
                database.Execute("COMMIT");
            } else {
                database.Rollback();
            }
        } catch (...) {
            database.Rollback();
            throw;
        }
    });
    if (failure.result == ProjectResult::Damaged) {
        Log("The project file " + Quoted(target_) + " is damaged and is written anew.");
        return false;
    }
    if (failure.result != ProjectResult::Success) throw failure;
    return worthwhile;
}

/** A file of small pages that grew large, or one that is mostly gaps, is better written anew; so is
 *  one that meanwhile belongs to another project. */
bool ProjectSaver::IsWorthUpdating(ProjectDatabase& database, const ProjectFileHeader& header,
                                   std::int64_t bytes) const {
    ProjectStatement id(database, "SELECT value FROM header WHERE name='project_id'");
    if (!id.Next() || id.Text(0) != project_.ProjectId) return false;
    if (header.pageSize < kLargePage && bytes > 4 * kSmallProject) return false;
    const std::int64_t free = database.Number("PRAGMA freelist_count") * header.pageSize;
    return free < kSmallProject || free < header.fileSize / 2;
}

std::string ProjectSaver::UnfinishedPath() const {
    return FolderOf(target_) + "\\." + LeafOf(target_) + ".new";
}

void ProjectSaver::SweepUnfinished() const {
    for (const std::string& path : {UnfinishedPath(), JournalOf(UnfinishedPath())})
        if (unlink(ToNativePath(path).c_str()) != 0 && errno != ENOENT)
            Log("The file " + Quoted(path) + " can not be removed: " + std::strerror(errno) + ".");
}

void ProjectSaver::WriteNew(std::uint32_t applicationId, const JournalBase& base) {
    // 1. The new file grows beside the old one, under a name of its own.
    const bool whole = applicationId == kProjectId;
    ProjectWriter writer(
        project_, whole ? ProjectWriter::Content::WithFiles : ProjectWriter::Content::TreeOnly);
    const std::string unfinished = UnfinishedPath();
    const std::string native = ToNativePath(unfinished);
    SweepUnfinished();
    const ProjectFailure failure = Guard([&] {
        {
            ProjectDatabase database(native, ProjectDatabase::Mode::Create,
                                     PageSizeFor(writer.SizeOnDisk()));
            database.CreateSchema(applicationId);
            database.Execute("BEGIN");
            writer.WriteTree(database, base);
            if (whole) writer.WriteFiles(database);
            database.Execute("COMMIT");
        }
        struct stat old = {};
        if (stat(ToNativePath(target_).c_str(), &old) == 0)
            chmod(native.c_str(), old.st_mode & 0777);
        Require(files_.Sync(unfinished), target_);
        // 2. A journal left of the old file would be played into the new one.
        if (!SettleJournal(files_, target_))
            Log("The journal of a project file that stood here before is kept as " +
                Quoted(SetJournalAside(files_, target_)) + ".");
        Require(files_.Replace(unfinished, target_), target_);
    });
    if (failure.result != ProjectResult::Success) {
        SweepUnfinished();
        throw failure;
    }
    // 3. The new file has the name. Without this last step a loss of power could bring back the old
    //    one, whole as well: no reason to say that nothing was saved.
    const FileError synced = files_.Sync(FolderOf(target_));
    if (synced != FileError::None)
        Log("The disk has not confirmed the name " + Quoted(target_) + ": " + Describe(synced) +
            ".");
}

}  // namespace pw
