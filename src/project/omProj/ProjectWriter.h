#pragma once
// Writes a project into an open database: into an empty one everything, into one that holds an
// earlier state what has changed. Throws `ProjectFailure`; the caller rolls back.
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "project/omProj/Database.h"
#include "project/omProj/FileStreams.h"
#include "project/omProj/Project.h"

namespace pw {

/** A file that the project file is to hold. */
struct WantedFile {
    std::string name;
    std::string page;       ///< name of the page whose file it is
    bool required = false;  ///< a page's own file; media may be missing
};

/** What a journal of a run belongs to. */
struct JournalBase {
    std::string file;  ///< the project file; "" for a project never saved
    FileMark mark;     ///< as the tree in the journal knows it
};

class ProjectWriter {
  public:
    enum class Content { WithFiles, TreeOnly };

    /** Takes down which files are wanted, and throws when a name can't be kept. Nothing is read
     *  from the disk yet. */
    ProjectWriter(Project& project, Content content);

    /** The tables of the tree. `base` is for journals. */
    void WriteTree(ProjectDatabase& database, const JournalBase& base = {});
    /** The files, those that changed. May raise progress. */
    void WriteFiles(ProjectDatabase& database);
    /** Bytes that the files will take, as far as they are there. */
    std::int64_t SizeOnDisk();

  private:
    struct StoredFile {
        std::int64_t id = 0;
        std::int64_t size = 0;
        std::int64_t modified = 0;
        std::int64_t digest = 0;
        bool wanted = false;
    };

    // What files the tree names.
    void CollectFolders(const Sections& sections);
    void CollectPages(const Pages& pages);
    void CollectPage(const Page& page);
    void CollectAttachments(const Attachments& attachments);
    bool Keeps(const Attachment& attachment) const;
    std::string AttachmentName(const Attachment& attachment) const;
    void Want(const std::string& path, const std::string& page, bool required);

    // The tables.
    void WriteHeader(ProjectDatabase& database, const JournalBase& base);
    void WriteSitesAndFolders(ProjectDatabase& database);
    void WritePages(ProjectDatabase& database);
    void WriteLists(ProjectDatabase& database);
    template <class Write>
    void WriteWhenChanged(ProjectDatabase& database, const char* table, std::uint64_t digest,
                          Write write);
    std::string NameOrNothing(const std::string& path) const;

    // The files.
    std::unordered_map<std::string, StoredFile> ReadStoredFiles(ProjectDatabase& database);
    void StoreContents(ProjectDatabase& database, const std::vector<std::size_t>& indexes,
                       std::unordered_map<std::string, StoredFile>& stored);
    [[noreturn]] void ThrowUnreadable(const WantedFile& file, int error) const;

    Project& project_;
    Content content_;
    std::vector<WantedFile> wanted_;
    std::unordered_map<std::string, std::size_t> wantedByName_;
    std::unordered_map<std::string, std::int64_t> storedDigests_;  // of the header's digest rows
    std::vector<DiskState> states_;                                // of the wanted files
};

}  // namespace pw
