#pragma once
// The small things that a project and its pages hold: files, variables, tasks, records.
#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>

#include "platform/SystemInfo.h"
#include "project/omProj/Collections.h"

namespace pw {

// Attachments ----------------------------------------------------------------------------------

namespace AttachmentState {
constexpr int Stale = 0;  ///< goes at the next scan of the page
constexpr int InUse = 2;
}  // namespace AttachmentState

namespace AttachmentKind {
constexpr int PageMedia = 0;
constexpr int TemplateThumbnail = 1;
constexpr int PublishingPackage = 10;
}  // namespace AttachmentKind

namespace AttachmentOrigin {
/** Added by the user, or came with a page that was taken in: it stays. */
constexpr int Chosen = 0;
/** Brought along by something that was inserted, dropped or pasted: it is kept for as long as
 *  anything refers to it. */
constexpr int Placed = 1;
}  // namespace AttachmentOrigin

class Attachments;

/** A file that a page or the project needs. Made by `Attachments::Add`. */
class Attachment {
  public:
    Attachment(Attachments& owner, std::string key, int id, std::string filename);

    /** Absolute path below the project's working folder. */
    const std::string& Filename() const { return filename_; }
    /** False, with nothing changed, when the list already holds that path. */
    bool SetFilename(std::string_view filename);
    const std::string& Key() const { return key_; }
    int Id() const { return id_; }

    int State = AttachmentState::Stale;
    int Kind = AttachmentKind::PageMedia;
    std::string Description;
    std::int64_t Size = 0;  ///< bytes
    int Origin = AttachmentOrigin::Chosen;
    /** False for what the program brought along and nothing refers to any more: it is neither saved
     *  nor published, but stays in the list for a redo. */
    bool IsWanted() const {
        return Origin != AttachmentOrigin::Placed || State != AttachmentState::Stale;
    }

  private:
    friend class Attachments;
    Attachments* owner_;
    std::string key_;
    int id_;
    std::string filename_;
};

/** A set by path: adding a path that is there gives the entry that is there. */
class Attachments : public NumberedItems<Attachment, 'A'> {
  public:
    /** `ownerKey` is the page's key, or "" for the project's own list. */
    explicit Attachments(std::string ownerKey) : ownerKey_(std::move(ownerKey)) {}
    Attachments(const Attachments&) = delete;
    Attachments& operator=(const Attachments&) = delete;

    Attachment* Add(std::string_view filename);
    /** The entry of a path, exactly as written; null when there is none. */
    Attachment* Find(std::string_view filename) const;
    std::unique_ptr<Attachment> Remove(int index);
    std::unique_ptr<Attachment> Remove(std::string_view key) { return Remove(IndexOf(key)); }
    void Clear();

  private:
    friend class Attachment;
    friend class ProjectReader;
    Attachment* AddNumbered(std::string_view filename, int number);

    std::string ownerKey_;
    std::unordered_map<std::string_view, Attachment*> byPath_;  // keys live in the entries
};

// Merge variables --------------------------------------------------------------------------------

struct MergeVariable {
    std::string Type = "C";  ///< "S" standard, "C" custom
    std::string Name;
    std::string Value;
    /** What it was in this run of the program, the latest last: pages may still show these. */
    std::vector<std::string> Former;
};
class MergeVariables : public ItemList<MergeVariable> {};

// Tasks ------------------------------------------------------------------------------------------

struct Task {
    explicit Task(std::string key) : Key(std::move(key)) {}

    const std::string Key;  ///< a GUID, given to `Tasks::Add`
    std::string Name;
    std::string Description;
    std::string AssociatedWith;
    std::string AssignedTo;
    int Priority = 1;  ///< 0 low, 1 normal, 2 high
    int Status = 0;    ///< 0 unknown to 5 deferred
    /** Before it was completed, for as long as the project is open; none where nobody knows. */
    std::optional<int> FormerStatus;
    DateTime CompleteBy = 0;
    bool PublishingDependent = false;
    DateTime Created = 0;
    std::string CreatedBy;
    DateTime Modified = 0;
    std::string ModifiedBy;
};

class Tasks {
  public:
    using Owners = std::vector<std::unique_ptr<Task>>;
    using iterator = ItemIterator<Owners::const_iterator, Task>;

    /** Null when the list is full or the key is empty or taken. */
    Task* Add(const std::string& key);
    int Count() const { return static_cast<int>(items_.size()); }
    Task* Item(int index) const;
    Task* Item(const std::string& key) const;
    std::unique_ptr<Task> Remove(const std::string& key);
    void Clear();

    iterator begin() const { return iterator(items_.begin()); }
    iterator end() const { return iterator(items_.end()); }

  private:
    Owners items_;
    std::unordered_map<std::string, Task*> byKey_;
};

// Publishing history
// -------------------------------------------------------------------------------

/** One publish of the project, as the publish wizard wrote it down. */
struct PublishRecord {
    DateTime Published = 0;
    int Status = 0;
    int ClientType = 0;
    int PublishKind = 0;  ///< 0 to a provider, 1 to disk, 2 a trial
    int ContentType = 0;  ///< 0 all, 1 changed, 2 selected
    int PageCount = 0;
    std::int64_t Size = 0;  ///< bytes
    DateTime PostDate = 0;  ///< 0 when it was not post-dated
    std::string CampaignCode;
    std::string LicenseeGUID;
    std::string InstallationNumber;
    std::string ProfileGUID;
    std::string ProviderName;
    std::string ProfileVersion;  ///< "a.b.c"
    std::string CustomerGUID;
    std::string PublishServer;
    std::string Plan;
    std::string Folder;
    std::string URL;
    std::string Keywords;
    std::string Email;
    std::string ProjectName;
    std::string ProjectGUID;
    std::string ProjectFilename;
    std::string ProjectVersion;  ///< "a.b.c"
    std::string ComputerName;
    std::string ComputerUserName;
};
class PublishHistory : public ItemList<PublishRecord> {};

// Meta tags and forms of a page
// ----------------------------------------------------------------------

struct MetaTag {
    std::string Name;
    std::string Content;
    bool IsHttpEquiv = false;
};
class MetaTags : public ItemList<MetaTag> {
  public:
    /** Removes every tag of the name, without regard to case; false when there was none. */
    bool RemoveNamed(std::string_view name);
};

struct FormField {
    std::string Name;
    int FieldType = 1;  ///< 0 long text, 1 short text, 4 date
    int Size = 0;
    bool Required = false;
};

/** What publishing is to do with a form of the page; paired with it by name, ignoring case. */
struct FormRecord {
    ItemList<FormField> Fields;
    std::string Name;
    std::string DatabaseName;
    std::string CompletedMessage;
    std::string IncompleteMessage;
    bool EchoData = false;
    bool Datestamp = false;
    bool QueryRecords = false;
    bool AddRecords = false;
    bool EditRecords = false;
    bool DeleteRecords = false;
    int ActionType = 0;  ///< 0 e-mail, 1 database, 2 script
};
class Forms : public ItemList<FormRecord> {};

// Add-ins
// ------------------------------------------------------------------------------------------

/** Notes that an add-in had its hand in the project. */
struct AddInRecord {
    std::string Id;
    std::string Name;
    std::string Company;
    std::string Version;
    std::string Author;
    std::string AuthorEmail;
    int Style = 0;
    bool NotifyAuthor = false;
};
class AddInRecords : public ItemList<AddInRecord> {};

}  // namespace pw
