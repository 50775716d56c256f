#include "project/omProj/ProjectWriter.h"

#include <cerrno>
#include <cstring>
#include <ctime>

#include "project/omProj/Digest.h"
#include "project/omProj/Fields.h"
#include "project/omProj/Format.h"
#include "project/omProj/Names.h"
#include "project/omProj/ProjectContents.h"

namespace pw {
namespace {

/** A file changed less than this before it was read may change again within the same tick of the
 *  disk's clock; its time says nothing, and the next save reads it again. */
constexpr std::int64_t kTrustedAge = 20'000'000;  // nanoseconds

std::int64_t NowOnDisk() {
    timespec now = {};
    clock_gettime(CLOCK_REALTIME, &now);
    return std::int64_t{now.tv_sec} * 1'000'000'000 + now.tv_nsec;
}

std::int64_t Signed(std::uint64_t digest) {
    return static_cast<std::int64_t>(digest);
}

// Visitors of the field lists
// ----------------------------------------------------------------------

struct FieldBinder {
    ProjectStatement& statement;
    void operator()(const char*, const std::string& text) {
        statement.Bind(std::string_view(text));
    }
    void operator()(const char*, double number) { statement.Bind(number); }
    void operator()(const char*, bool flag) { statement.Bind(std::int64_t{flag}); }
    void operator()(const char*, int number) { statement.Bind(std::int64_t{number}); }
    void operator()(const char*, std::int64_t number) { statement.Bind(number); }
};

struct FieldDigest {
    std::uint64_t sum = 0;
    void operator()(const char*, const std::string& text) { sum = Digest(text, sum + 1); }
    void operator()(const char*, double number) { AddBytes(number); }
    void operator()(const char*, bool flag) { AddBytes(std::int64_t{flag}); }
    void operator()(const char*, int number) { AddBytes(std::int64_t{number}); }
    void operator()(const char*, std::int64_t number) { AddBytes(number); }
    template <class Number>
    void AddBytes(Number number) {
        sum = Digest({reinterpret_cast<const char*>(&number), sizeof number}, sum);
    }
};

struct FieldCounter {
    int count = 0;
    template <class T>
    void operator()(const char*, const T&) {
        ++count;
    }
};

template <class Record>
std::string InsertInto(const char* table, int keys, const Record& sample) {
    FieldCounter counter;
    VisitFields(counter, sample);
    std::string sql = std::string("INSERT INTO ") + table + " VALUES(?";
    for (int column = 1; column < keys + counter.count; ++column)
        sql += ",?";
    return sql + ")";
}

template <class Record>
void RunInsert(ProjectStatement& statement, const Record& record) {
    VisitFields(FieldBinder{statement}, record);
    statement.Run();
}

std::string StoredFolderName(const Folder& folder) {
    std::string name = folder.WorkingFolder;
    for (char& c : name)
        if (c == '\\') c = '/';
    return name;
}

/** The tables that hang on a page, or on the project itself. */
class OwnedRows {
  public:
    explicit OwnedRows(ProjectDatabase& database)
        : attachment_(database, InsertInto("attachment", 3, Attachment(none_, "", 0, ""))),
          metaTag_(database, InsertInto("meta_tag", 2, MetaTag())),
          form_(database, InsertInto("form", 2, FormRecord())),
          field_(database, InsertInto("form_field", 3, FormField())),
          forget_{{database, "DELETE FROM attachment WHERE owner=?"},
                  {database, "DELETE FROM meta_tag WHERE owner=?"},
                  {database, "DELETE FROM form WHERE owner=?"},
                  {database, "DELETE FROM form_field WHERE owner=?"}} {}

    void Forget(std::string_view owner) {
        for (ProjectStatement& statement : forget_)
            statement.Bind(owner).Run();
    }

    template <class NameOf>
    void WriteAttachments(std::string_view owner, const Attachments& attachments, NameOf nameOf) {
        for (const Attachment& attachment : attachments) {
            const std::string name = nameOf(attachment);
            if (name.empty()) continue;
            attachment_.Bind(owner)
                .Bind(std::int64_t{attachment.Id()})
                .Bind(std::string_view(name));
            RunInsert(attachment_, attachment);
        }
    }

    void WriteOfPage(std::string_view owner, const Page& page) {
        std::int64_t position = 0;
        for (const MetaTag& tag : page.MetaTags())
            RunInsert(metaTag_.Bind(owner).Bind(++position), tag);
        position = 0;
        for (const FormRecord& form : page.Forms()) {
            RunInsert(form_.Bind(owner).Bind(++position), form);
            std::int64_t field = 0;
            for (const FormField& item : form.Fields)
                RunInsert(field_.Bind(owner).Bind(position).Bind(++field), item);
        }
    }

  private:
    Attachments none_{""};
    ProjectStatement attachment_;
    ProjectStatement metaTag_;
    ProjectStatement form_;
    ProjectStatement field_;
    ProjectStatement forget_[4];
};

}  // namespace

// What files the tree names
// ------------------------------------------------------------------------

ProjectWriter::ProjectWriter(Project& project, Content content)
    : project_(project), content_(content) {
    for (const WebSite& site : project_.WebSites()) {
        CollectPages(site.Pages());
        CollectFolders(site.Sections());
    }
    if (const Page* page = project_.DefaultTemplate()) CollectPage(*page);
    CollectAttachments(project_.Attachments());
    if (!NameOrNothing(project_.ThumbnailFilename).empty())
        Want(project_.ThumbnailFilename, "", false);

    NameRegister names;
    for (const WantedFile& file : wanted_)
        if (names.Enter(file.name) != NameRegister::Verdict::New)
            throw ProjectFailure(
                ProjectResult::NamesCollide,
                "The project can not keep both '" + file.name + "' and '" + names.Other() +
                    "', since many disks take these for the same name. Please rename one "
                    "of them.");
}

void ProjectWriter::CollectFolders(const Sections& sections) {
    for (const Folder& folder : sections) {
        const std::string name = StoredFolderName(folder);
        if (!IsSafeFolderName(name) || !IsSafeLeaf(folder.FolderName))
            throw ProjectFailure(
                ProjectResult::BadName,
                "The folder '" + folder.Name + "' lies at '" + name +
                    "' on disk, which a project can not keep. Please rename the folder.");
        CollectPages(folder.Pages());
        CollectFolders(folder.Sections());
    }
}

void ProjectWriter::CollectPages(const Pages& pages) {
    for (const Page& page : pages)
        CollectPage(page);
}

void ProjectWriter::CollectPage(const Page& page) {
    if (ClimbsUp(page.Path))
        throw ProjectFailure(ProjectResult::BadName, "The path of page '" + page.Name +
                                                         "' leads out of the project's folder.");
    if (!page.Filename.empty()) Want(page.Filename, page.Name, true);
    CollectAttachments(page.Attachments());
}

void ProjectWriter::CollectAttachments(const Attachments& attachments) {
    for (const Attachment& attachment : attachments)
        if (Keeps(attachment) && !NameOrNothing(attachment.Filename()).empty())
            Want(attachment.Filename(), "", false);
}

/** A journal stands beside the files and keeps what a redo may ask for. */
bool ProjectWriter::Keeps(const Attachment& attachment) const {
    return content_ == Content::TreeOnly || attachment.IsWanted();
}

/** The stored name of a file below the working folder; "" for one that lies elsewhere, which is
 *  not part of the project. */
std::string ProjectWriter::NameOrNothing(const std::string& path) const {
    return NameBelow(project_.WorkingFolder, path).value_or("");
}

std::string ProjectWriter::AttachmentName(const Attachment& attachment) const {
    if (!Keeps(attachment)) return {};
    const std::string& path = attachment.Filename();
    std::string name = NameOrNothing(path);
    if (name.empty())
        project_.Log("Project.Save", "The file " + Quoted(path) +
                                         " lies outside the project's folder and is left out.");
    return name;
}

void ProjectWriter::Want(const std::string& path, const std::string& page, bool required) {
    const std::string name = NameOrNothing(path);
    if (name.empty())
        throw ProjectFailure(ProjectResult::OutsideFolder,
                             "The file " + Quoted(path) + " of page '" + page +
                                 "' lies outside the project's folder. Nothing was saved.");
    if (!IsSafeName(name))
        throw ProjectFailure(ProjectResult::BadName,
                             "The file " + Quoted(path) +
                                 " has a name that a project can not keep. Please rename it.");
    const auto [at, isNew] = wantedByName_.try_emplace(name, wanted_.size());
    if (isNew) wanted_.push_back({name, page, required});
    WantedFile& file = wanted_[at->second];
    if (required && !file.required) {
        file.required = true;
        file.page = page;
    }
}

std::int64_t ProjectWriter::SizeOnDisk() {
    if (states_.empty() && content_ == Content::WithFiles) {
        WorkingFiles files(project_.WorkingFolder);
        states_.reserve(wanted_.size());
        for (const WantedFile& file : wanted_)
            states_.push_back(files.Stat(file.name));
    }
    std::int64_t size = 0;
    for (const DiskState& state : states_)
        if (!state.error) size += state.size;
    return size;
}

// The tables
// ---------------------------------------------------------------------------------------

void ProjectWriter::WriteTree(ProjectDatabase& database, const JournalBase& base) {
    storedDigests_.clear();
    ProjectStatement digests(database, "SELECT name, value FROM header WHERE name LIKE 'digest:%'");
    while (digests.Next())
        storedDigests_.emplace(digests.Text(0), digests.Integer(1));
    WriteSitesAndFolders(database);
    WritePages(database);
    WriteLists(database);
    WriteHeader(database, base);
}

void ProjectWriter::WriteHeader(ProjectDatabase& database, const JournalBase& base) {
    ProjectStatement put(database, "INSERT OR REPLACE INTO header VALUES(?,?)");
    struct Putter {
        ProjectStatement& put;
        void operator()(std::string_view name, const std::string& value) {
            put.Bind(name).Bind(std::string_view(value)).Run();
        }
        void operator()(std::string_view name, double value) { put.Bind(name).Bind(value).Run(); }
        void operator()(std::string_view name, bool value) {
            put.Bind(name).Bind(std::int64_t{value}).Run();
        }
        void operator()(std::string_view name, int value) {
            put.Bind(name).Bind(std::int64_t{value}).Run();
        }
    } putter{put};
    const ProjectProperties& properties = project_;
    VisitFields(putter, properties);
    putter("thumbnail", NameOrNothing(project_.ThumbnailFilename));
    putter("page_count", project_.PageIndex().Count());
    putter("next_site", project_.WebSites().NextNumber());
    putter("next_attachment", project_.Attachments().NextNumber());
    putter("base_file", base.file);
    if (content_ == Content::TreeOnly) putter("base_mark", base.mark.Text());
}

/** Rewrites a small table when what it is to hold differs from what it holds. */
template <class Write>
void ProjectWriter::WriteWhenChanged(ProjectDatabase& database, const char* table,
                                     std::uint64_t digest, Write write) {
    const std::string name = std::string("digest:") + table;
    const auto stored = storedDigests_.find(name);
    if (stored != storedDigests_.end() && stored->second == Signed(digest)) return;
    database.Execute(std::string("DELETE FROM ") + table);
    write();
    ProjectStatement put(database, "INSERT OR REPLACE INTO header VALUES(?,?)");
    put.Bind(std::string_view(name)).Bind(Signed(digest)).Run();
}

namespace {

template <class Visit>
void VisitAllFolders(const Sections& sections, Visit visit) {
    for (const Folder& folder : sections) {
        visit(folder);
        VisitAllFolders(folder.Sections(), visit);
    }
}

template <class Item>
void DigestContainer(FieldDigest& digest, const Item& item) {
    digest("", item.Key());
    digest("", item.Pages().NextNumber());
    digest("", item.Sections().NextNumber());
    VisitFields(digest, item);
}

template <class Item>
ProjectStatement& BindContainer(ProjectStatement& insert, const Item& item) {
    return insert.Bind(std::string_view(item.Key()))
        .Bind(std::int64_t{item.Pages().NextNumber()})
        .Bind(std::int64_t{item.Sections().NextNumber()});
}

}  // namespace

void ProjectWriter::WriteSitesAndFolders(ProjectDatabase& database) {
    TreeContext nowhere;
    FieldDigest sites;
    FieldDigest folders;
    for (const WebSite& site : project_.WebSites()) {
        DigestContainer(sites, site);
        VisitAllFolders(site.Sections(), [&](const Folder& folder) {
            DigestContainer(folders, folder);
            folders("", folder.WorkingFolder);
        });
    }
    WriteWhenChanged(database, "site", sites.sum, [&] {
        ProjectStatement insert(database, InsertInto("site", 3, WebSite(nowhere, "", 0)));
        for (const WebSite& site : project_.WebSites())
            RunInsert(BindContainer(insert, site), site);
    });
    WriteWhenChanged(database, "folder", folders.sum, [&] {
        ProjectStatement insert(database, InsertInto("folder", 4, Folder(nowhere, "", 0)));
        for (const WebSite& site : project_.WebSites())
            VisitAllFolders(site.Sections(), [&](const Folder& folder) {
                const std::string name = StoredFolderName(folder);
                RunInsert(BindContainer(insert, folder).Bind(std::string_view(name)), folder);
            });
    });
}

void ProjectWriter::WritePages(ProjectDatabase& database) {
    // 1. What the file holds.
    std::unordered_map<std::string, std::int64_t> stored;
    ProjectStatement rows(database, "SELECT key, digest FROM page");
    while (rows.Next())
        stored.emplace(rows.Text(0), rows.Integer(1));

    // 2. The pages that are new or differ.
    ProjectStatement insert(database, InsertInto("page", 5, Page("", 0)));
    ProjectStatement remove(database, "DELETE FROM page WHERE key=?");
    OwnedRows owned(database);
    const auto nameOf = [&](const Attachment& attachment) { return AttachmentName(attachment); };
    const auto write = [&](const Page& page, const std::string& key) {
        const std::string filename = NameOrNothing(page.Filename);
        FieldDigest digest;
        digest("", filename);
        digest("", page.Attachments().NextNumber());
        digest("", page.IsOpen);
        VisitFields(digest, page);
        for (const Attachment& attachment : page.Attachments()) {
            if (!Keeps(attachment)) continue;
            digest("", attachment.Id());
            digest("", attachment.Filename());
            VisitFields(digest, attachment);
        }
        for (const MetaTag& tag : page.MetaTags())
            VisitFields(digest, tag);
        for (const FormRecord& form : page.Forms()) {
            digest("", form.Fields.Count());
            VisitFields(digest, form);
            for (const FormField& field : form.Fields)
                VisitFields(digest, field);
        }
        const auto known = stored.find(key);
        if (known != stored.end()) {
            const bool same = known->second == Signed(digest.sum);
            stored.erase(known);
            if (same) return;
            remove.Bind(std::string_view(key)).Run();
            owned.Forget(key);
        }
        insert.Bind(std::string_view(key))
            .Bind(Signed(digest.sum))
            .Bind(std::string_view(filename))
            .Bind(std::int64_t{page.Attachments().NextNumber()})
            .Bind(std::int64_t{page.IsOpen});
        RunInsert(insert, page);
        owned.WriteAttachments(key, page.Attachments(), nameOf);
        owned.WriteOfPage(key, page);
    };
    for (const PageIndexEntry& entry : project_.PageIndex()) {
        write(*entry.Item, entry.Key());
        entry.Item->isOpenAtSave_ = entry.Item->IsOpen;
    }
    if (const Page* page = project_.DefaultTemplate()) write(*page, std::string(kTemplateKey));

    // 3. The pages that are gone.
    for (const auto& [key, digest] : stored) {
        remove.Bind(std::string_view(key)).Run();
        owned.Forget(key);
    }
}

void ProjectWriter::WriteLists(ProjectDatabase& database) {
    // The project's own files share a table with those of the pages.
    OwnedRows owned(database);
    owned.Forget(kProjectOwner);
    owned.WriteAttachments(
        kProjectOwner, project_.Attachments(),
        [&](const Attachment& attachment) { return AttachmentName(attachment); });

    const auto writeList = [&](const char* table, const auto& list, const auto& sample, int keys,
                               auto bindKeys) {
        FieldDigest digest;
        for (const auto& item : list) {
            bindKeys(item, [&](const std::string& key) { digest("", key); });
            VisitFields(digest, item);
        }
        WriteWhenChanged(database, table, digest.sum, [&] {
            ProjectStatement insert(database, InsertInto(table, keys, sample));
            std::int64_t position = 0;
            for (const auto& item : list) {
                insert.Bind(++position);
                bindKeys(item, [&](const std::string& key) { insert.Bind(std::string_view(key)); });
                RunInsert(insert, item);
            }
        });
    };
    const auto noKeys = [](const auto&, auto) {};
    writeList("merge_variable", project_.MergeVariables(), MergeVariable(), 1, noKeys);
    writeList("publish_record", project_.PublishHistory(), PublishRecord(), 1, noKeys);
    writeList("add_in", project_.AddIns(), AddInRecord(), 1, noKeys);
    writeList("task", project_.Tasks(), Task(""), 2,
              [](const Task& task, auto use) { use(task.Key); });
}

// The files
// ----------------------------------------------------------------------------------------

std::unordered_map<std::string, ProjectWriter::StoredFile> ProjectWriter::ReadStoredFiles(
    ProjectDatabase& database) {
    std::unordered_map<std::string, StoredFile> stored;
    ProjectStatement rows(database, "SELECT name, id, size, modified, digest FROM file");
    while (rows.Next())
        stored.emplace(rows.Text(0), StoredFile{rows.Integer(1), rows.Integer(2), rows.Integer(3),
                                                rows.Integer(4), false});
    return stored;
}

void ProjectWriter::WriteFiles(ProjectDatabase& database) {
    static_cast<void>(SizeOnDisk());

    // 1. Which files the project file does not hold as they are now.
    auto stored = ReadStoredFiles(database);
    std::vector<std::size_t> changed;
    for (std::size_t index = 0; index < wanted_.size(); ++index) {
        const WantedFile& file = wanted_[index];
        const DiskState& state = states_[index];
        if (state.error) {
            if (file.required || state.error != ENOENT) ThrowUnreadable(file, state.error);
            continue;
        }
        if (state.size > kMaximumFileSize)
            throw ProjectFailure(ProjectResult::TooLarge,
                                 "The file '" + file.name +
                                     "' is larger than 4 GB, which is too large for a project.");
        const auto known = stored.find(file.name);
        if (known != stored.end()) known->second.wanted = true;
        const bool same = known != stored.end() && known->second.size == state.size &&
                          known->second.modified == state.modified;
        if (!same) changed.push_back(index);
    }

    // 2. What no item names any more goes first, so that its room can be used again.
    ProjectStatement removeFile(database, "DELETE FROM file WHERE id=?");
    ProjectStatement removeContent(database, "DELETE FROM content WHERE id BETWEEN ? AND ?");
    for (const auto& [name, file] : stored) {
        if (file.wanted) continue;
        removeFile.Bind(file.id).Run();
        removeContent.Bind(file.id * kPartsPerFile)
            .Bind(file.id * kPartsPerFile + kPartsPerFile - 1)
            .Run();
    }

    // 3. The changed ones.
    if (!changed.empty()) StoreContents(database, changed, stored);
    const std::int64_t count = database.Number("SELECT count(*) FROM file");
    ProjectStatement put(database, "INSERT OR REPLACE INTO header VALUES('file_count',?)");
    put.Bind(count).Run();
}

void ProjectWriter::StoreContents(ProjectDatabase& database,
                                  const std::vector<std::size_t>& indexes,
                                  std::unordered_map<std::string, StoredFile>& stored) {
    std::vector<std::string_view> names;
    names.reserve(indexes.size());
    std::int64_t total = 1;
    for (const std::size_t index : indexes) {
        names.push_back(wanted_[index].name);
        total += states_[index].size;
    }
    ProjectStatement insertFile(database, "INSERT INTO file VALUES(?,?,?,?,?)");
    ProjectStatement updateFile(database,
                                "UPDATE file SET size=?, modified=?, digest=? WHERE id=?");
    ProjectStatement insertContent(database, "INSERT INTO content VALUES(?,?)");
    ProjectStatement removeContent(database, "DELETE FROM content WHERE id BETWEEN ? AND ?");
    std::int64_t nextId = database.Number("SELECT coalesce(max(id),0)+1 FROM file");
    std::int64_t done = 0;
    std::int64_t id = 0;

    FileSource source(project_.WorkingFolder, std::move(names));
    while (std::unique_ptr<FileBatch> batch = source.Next()) {
        for (const FilePiece& piece : batch->pieces) {
            const WantedFile& file = wanted_[indexes[piece.file]];
            if (piece.state.error) ThrowUnreadable(file, piece.state.error);
            const auto known = stored.find(file.name);
            const bool isKnown = known != stored.end();
            const bool same = isKnown && piece.part == 0 && piece.last &&
                              known->second.size == piece.state.size &&
                              known->second.digest == Signed(piece.digest);
            // 1. The content, unless only the time changed.
            if (piece.part == 0) {
                id = isKnown ? known->second.id : nextId++;
                if (isKnown && !same)
                    removeContent.Bind(id * kPartsPerFile)
                        .Bind(id * kPartsPerFile + kPartsPerFile - 1)
                        .Run();
            }
            if (piece.part >= kPartsPerFile)
                throw ProjectFailure(ProjectResult::TooLarge,
                                     "The file '" + file.name + "' is too large for a project.");
            if (!same)
                insertContent.Bind(id * kPartsPerFile + piece.part)
                    .BindBlob(batch->BytesOf(piece))
                    .Run();
            done += static_cast<std::int64_t>(piece.length);
            if (!piece.last) continue;
            // 2. Its row.
            const bool trusted = NowOnDisk() - piece.state.modified > kTrustedAge;
            const std::int64_t modified = trusted ? piece.state.modified : 0;
            if (isKnown)
                updateFile.Bind(piece.state.size)
                    .Bind(modified)
                    .Bind(Signed(piece.digest))
                    .Bind(id);
            else
                insertFile.Bind(id)
                    .Bind(std::string_view(file.name))
                    .Bind(piece.state.size)
                    .Bind(modified)
                    .Bind(Signed(piece.digest));
            (isKnown ? updateFile : insertFile).Run();
        }
        source.Recycle(std::move(batch));
        project_.Progress(static_cast<int>(std::min<std::int64_t>(done * 100 / total, 99)));
    }
}

void ProjectWriter::ThrowUnreadable(const WantedFile& file, int error) const {
    const std::string reason = error == ENOENT   ? "it does not exist"
                               : error == ELOOP  ? "it is a link"
                               : error == EISDIR ? "it is a folder"
                                                 : std::strerror(error);
    const std::string path = Quoted(PathBelow(project_.WorkingFolder, file.name));
    if (file.required)
        throw ProjectFailure(ProjectResult::MissingFile,
                             "The file " + path + " of page '" + file.page +
                                 "' can not be read: " + reason + ". Nothing was saved.");
    throw ProjectFailure(ResultOfErrno(error), "The file " + path + " can not be read: " + reason +
                                                   ". Nothing was saved.");
}

}  // namespace pw
