// Saving and loading: which way a save goes, what stands beside the file meanwhile, and what is
// left when something fails.
#include <sys/stat.h>
#include <unistd.h>

#include "project/omProj/Database.h"
#include "project/omProj/Format.h"
#include "project/omProj/ProjectContents.h"
#include "project/omProj/ProjectReader.h"
#include "project/omProj/ProjectWriter.h"

namespace pw {
namespace {

/** Up to this many bytes a safety copy is made even where the disk can't share blocks. */
constexpr std::int64_t kCheapCopy = 16 << 20;
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

std::string SafetyCopyOf(const std::string& path) {
    const std::size_t dot = path.rfind('.');
    const bool extension = dot != std::string::npos && dot > path.rfind('\\') + 1;
    return (extension ? path.substr(0, dot) : path) + ".~pw";
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

/** Runs a routine and turns whatever it throws into a result. */
template <class Body>
ProjectFailure Guard(Body body) {
    try {
        body();
        return ProjectFailure(ProjectResult::Success);
    } catch (const ProjectFailure& failure) {
        return failure;
    } catch (const std::exception& error) {
        return ProjectFailure(ProjectResult::Failed,
                              Describe(ProjectResult::Failed) + " (" + error.what() + ")");
    }
}

/** Plays back what a crash left in the journal beside a file, and removes the journal. */
void SettleJournal(FileSystem& files, const std::string& target) {
    const std::string journal = JournalOf(target);
    if (!files.Stat(journal).exists) return;
    const auto remove = [&] {
        if (files.Stat(journal).exists) Require(files.RemoveFile(journal), journal);
    };
    const ProjectFailure settled = Guard([&] {
        if (!files.Stat(target).exists) return remove();
        ProjectDatabase database(ToNativePath(target), ProjectDatabase::Mode::Update);
        // Nobody else can be in the middle of a save while this is held.
        database.Execute("BEGIN IMMEDIATE");
        remove();
        database.Rollback();
    });
    if (settled.result == ProjectResult::Damaged) return remove();  // it stood beside no project
    if (settled.result != ProjectResult::Success) throw settled;
}

}  // namespace

/** One save: the steps share its paths. */
class ProjectSaver {
  public:
    ProjectSaver(Project& project, FileSystem& files, std::string target)
        : project_(project), files_(files), target_(std::move(target)) {}

    void SaveProject(bool intoOwnFile) {
        ProjectWriter writer(project_, ProjectWriter::Content::WithFiles);
        if (!intoOwnFile || !UpdateInPlace(writer)) WriteNew(writer, kProjectId, "");
    }

    void SaveJournal(const std::string& baseFile) {
        ProjectWriter writer(project_, ProjectWriter::Content::TreeOnly);
        WriteNew(writer, kJournalId, baseFile);
    }

  private:
    enum class CopyKind { None, Ours, Foreign };

    /** False when the file is not one to go on with, so that a new one has to take its place. */
    bool UpdateInPlace(ProjectWriter& writer);
    bool IsWorthUpdating(ProjectDatabase& database, const ProjectFileHeader& header,
                         std::int64_t bytes) const;
    void WriteNew(ProjectWriter& writer, std::uint32_t applicationId, const std::string& baseFile);
    CopyKind MakeSafetyCopy(std::int64_t size);
    void RemoveSafetyCopy(CopyKind kind);

    Project& project_;
    FileSystem& files_;
    std::string target_;
};

bool ProjectSaver::UpdateInPlace(ProjectWriter& writer) {
    // 1. What a crash left is put back before the file is copied or opened.
    SettleJournal(files_, target_);
    ProjectFileHeader header;
    const ProjectFailure opened =
        Guard([&] { header = CheckHeader(ToNativePath(target_), kProjectId); });
    if (opened.result == ProjectResult::NoPermission) throw opened;
    if (opened.result != ProjectResult::Success) return false;

    // 2. The copy comes before the database is open: closing a file ends the locks on it.
    const CopyKind copy = MakeSafetyCopy(header.fileSize);

    // 3. One transaction.
    bool worthwhile = true;
    const ProjectFailure failure = Guard([&] {
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

    // 4. A transaction that could not be undone leaves its journal; then the copy stays as well.
    if (!files_.Stat(JournalOf(target_)).exists) RemoveSafetyCopy(copy);
    if (failure.result == ProjectResult::Damaged) {
        project_.Log("Project.Save",
                     "The project file " + Quoted(target_) + " is damaged and is written anew.");
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

void ProjectSaver::WriteNew(ProjectWriter& writer, std::uint32_t applicationId,
                            const std::string& baseFile) {
    // 1. The new file grows beside the old one, under a name of its own.
    const std::string temporary = FolderOf(target_) + "\\." + LeafOf(target_) + ".new";
    const std::string native = ToNativePath(temporary);
    const auto sweep = [&] {
        unlink(native.c_str());
        unlink(ToNativePath(JournalOf(temporary)).c_str());
    };
    sweep();
    const ProjectFailure failure = Guard([&] {
        {
            ProjectDatabase database(native, ProjectDatabase::Mode::Create,
                                     PageSizeFor(writer.SizeOnDisk()));
            database.CreateSchema(applicationId);
            database.Execute("BEGIN");
            writer.WriteTree(database, baseFile);
            if (applicationId == kProjectId) writer.WriteFiles(database);
            database.Execute("COMMIT");
        }
        struct stat old = {};
        if (stat(ToNativePath(target_).c_str(), &old) == 0)
            chmod(native.c_str(), old.st_mode & 0777);
        Require(files_.Sync(temporary), target_);
        // 2. A journal left of the old file would be played into the new one.
        SettleJournal(files_, target_);
        Require(files_.Replace(temporary, target_), target_);
    });
    if (failure.result != ProjectResult::Success) {
        sweep();
        throw failure;
    }
    Require(files_.Sync(FolderOf(target_)), target_);
}

ProjectSaver::CopyKind ProjectSaver::MakeSafetyCopy(std::int64_t size) {
    const std::string copy = SafetyCopyOf(target_);
    if (copy == target_) return CopyKind::None;
    if (files_.Stat(copy).exists) {
        project_.Log("Project.Save",
                     "The file " + Quoted(copy) + " of an earlier save is left as it is.");
        return CopyKind::Foreign;
    }
    if (CloneFile(ToNativePath(target_), ToNativePath(copy))) return CopyKind::Ours;
    if (size > kCheapCopy) return CopyKind::None;
    const FileError error = files_.Copy(target_, copy);
    if (error == FileError::None) return CopyKind::Ours;
    // The transaction alone keeps the old state too; a save is not refused for want of a copy.
    project_.Log("Project.Save",
                 "No copy was made at " + Quoted(copy) + ": " + Describe(error) + ".");
    unlink(ToNativePath(copy).c_str());
    return CopyKind::None;
}

void ProjectSaver::RemoveSafetyCopy(CopyKind kind) {
    if (kind != CopyKind::Ours) return;
    const std::string copy = SafetyCopyOf(target_);
    const FileError error = files_.RemoveFile(copy);
    if (error != FileError::None)
        project_.Log("Project.Save",
                     "The file " + Quoted(copy) + " can not be removed: " + Describe(error) + ".");
}

// The project's operations
// -------------------------------------------------------------------------

namespace {

/** True for as long as it lives. */
class BusyMark {
  public:
    explicit BusyMark(bool& busy) : busy_(busy) { busy_ = true; }
    ~BusyMark() { busy_ = false; }
    BusyMark(const BusyMark&) = delete;
    BusyMark& operator=(const BusyMark&) = delete;

  private:
    bool& busy_;
};

/** Where links lead, so that a save replaces the file and not the link to it. */
std::string Resolved(const FileSystem& files, std::string_view path) {
    const std::string canonical = files.Canonical(path);
    return canonical.empty() ? std::string(path) : canonical;
}

}  // namespace

ProjectResult Project::Save(std::string_view path) {
    if (busy_) return Finish(ProjectResult::InUse);
    const BusyMark busy(busy_);
    const std::string target = Resolved(files_, path);
    // What a handler of the progress changes makes the project dirty again.
    IsDirty = false;
    Progress(0);
    const ProjectFailure failure =
        Guard([&] { ProjectSaver(*this, files_, target).SaveProject(target == file_); });
    if (failure.result != ProjectResult::Success) {
        IsDirty = true;
        return Finish(failure.result, failure.message);
    }
    file_ = Resolved(files_, target);
    size_ = static_cast<std::int64_t>(files_.Stat(file_).size);
    headerPageCount_ = -1;
    formatVersion_ = kFormatVersion;
    Progress(100);
    return Finish(ProjectResult::Success);
}

ProjectResult Project::SaveTree(std::string_view path) {
    if (busy_) return Finish(ProjectResult::InUse);
    const BusyMark busy(busy_);
    const ProjectFailure failure =
        Guard([&] { ProjectSaver(*this, files_, Resolved(files_, path)).SaveJournal(file_); });
    return Finish(failure.result, failure.message);
}

ProjectResult Project::Load(std::string_view path) {
    if (busy_) return Finish(ProjectResult::InUse);
    const BusyMark busy(busy_);
    const std::string source = Resolved(files_, path);
    const std::string native = ToNativePath(source);
    const bool whole = LoadMode == LoadMode::Everything;
    const ProjectFailure failure = Guard([&] {
        // 1. Everything is read and checked in an object of its own.
        if (whole) static_cast<void>(Guard([&] { SettleJournal(files_, source); }));
        const ProjectFileHeader header = CheckHeader(native, kProjectId);
        ProjectDatabase database(native, ProjectDatabase::Mode::Read);
        database.CheckSchema();
        Project loaded(files_);
        loaded.WorkingFolder = WorkingFolder;
        ProjectReader reader(loaded, database, header);
        reader.ReadHeader();
        if (LoadMode == LoadMode::HeaderPreview) reader.ReadThumbnail();
        if (whole) {
            static_cast<void>(WorkingFiles(WorkingFolder));
            reader.ReadTree();
            reader.ReadFileList();
            // 2. The files are written out.
            const ProjectFailure unpacked = Guard([&] { Unpack(reader); });
            if (unpacked.result != ProjectResult::Success) {
                Clear();
                throw unpacked;
            }
        }
        // 3. Nothing can fail any more.
        Adopt(loaded);
        file_ = whole ? source : "";
    });
    return Finish(failure.result, failure.message);
}

void Project::Unpack(ProjectReader& reader) {
    {
        WorkingFiles folder(WorkingFolder);
        for (const std::string& name : reader.FolderNames())
            if (const int error = folder.MakeFolder(name))
                throw ProjectFailure(
                    ResultOfErrno(error),
                    "The folder '" + name + "' can not be made. " + Describe(ResultOfErrno(error)));
    }
    FileSink sink(WorkingFolder, reader.Files(), FileSink::Purpose::Write);
    reader.ReadContents(sink, [&](int percent) { Progress(percent); });
}

/** Takes over what was loaded; what is of the moment stays. */
void Project::Adopt(Project& loaded) {
    const bool raiseProgress = RaiseProgress;
    const bool buildMode = BuildMode;
    const int loadMode = LoadMode;
    static_cast<ProjectProperties&>(*this) = loaded;
    RaiseProgress = raiseProgress;
    BuildMode = buildMode;
    LoadMode = loadMode;
    contents_ = std::move(loaded.contents_);
    contents_->tree.project = this;
    loaded.contents_ = std::make_unique<Contents>(loaded);
    size_ = loaded.size_;
    headerPageCount_ = loaded.headerPageCount_;
    formatVersion_ = loaded.formatVersion_;
    thumbnailImage_ = std::move(loaded.thumbnailImage_);
}

ProjectResult Project::LoadTree(std::string_view path) {
    if (busy_) return Finish(ProjectResult::InUse);
    const BusyMark busy(busy_);
    const std::string native = ToNativePath(path);
    const ProjectFailure failure = Guard([&] {
        const ProjectFileHeader header = CheckHeader(native, kJournalId);
        ProjectDatabase database(native, ProjectDatabase::Mode::Read);
        database.CheckSchema();
        Project loaded(files_);
        loaded.WorkingFolder = WorkingFolder;
        ProjectReader reader(loaded, database, header);
        reader.ReadHeader();
        reader.ReadTree();
        Adopt(loaded);
        file_ = reader.BaseFile();
        size_ = static_cast<std::int64_t>(files_.Stat(file_).size);
    });
    return Finish(failure.result, failure.message);
}

ProjectResult Project::Check(std::string_view path) {
    if (busy_) return Finish(ProjectResult::InUse);
    const BusyMark busy(busy_);
    const std::string native = ToNativePath(Resolved(files_, path));
    const ProjectFailure failure = Guard([&] {
        const ProjectFileHeader header = CheckHeader(native, kProjectId);
        ProjectDatabase database(native, ProjectDatabase::Mode::Read);
        database.CheckSchema();
        Project loaded(files_);
        loaded.WorkingFolder = "\\";
        ProjectReader reader(loaded, database, header);
        reader.ReadHeader();
        reader.ReadTree();
        reader.ReadFileList();
        FileSink sink("", reader.Files(), FileSink::Purpose::CheckOnly);
        reader.ReadContents(sink, [](int) {});
    });
    return Finish(failure.result, failure.message);
}

}  // namespace pw
