// Saving and loading: the project's operations on its file.
#include "project/omProj/Database.h"
#include "project/omProj/Format.h"
#include "project/omProj/ProjectContents.h"
#include "project/omProj/ProjectReader.h"
#include "project/omProj/ProjectSaver.h"

namespace pw {

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
    FileMark mark = target == file_ ? contents_->mark : FileMark();
    const ProjectFailure failure =
        Guard([&] { mark = ProjectSaver(*this, files_, target).SaveProject(mark); });
    if (failure.result != ProjectResult::Success) {
        IsDirty = true;
        return Finish(failure.result, failure.message);
    }
    contents_->mark = mark;
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
    const ProjectFailure failure = Guard([&] {
        ProjectSaver(*this, files_, Resolved(files_, path)).SaveJournal({file_, contents_->mark});
    });
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
        loaded.contents_->mark = header.mark;
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
                throw ProjectFailure(ResultOfErrno(error),
                                     "The folder '" + name + "' can not be made. " +
                                         Describe(ResultOfErrno(error), error));
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
        loaded.contents_->mark = reader.BaseMark();
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
