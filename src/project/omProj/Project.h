#pragma once
// The project: everything that a user makes, in memory, and the project file that keeps it.
//
// One object serves one project after the other: `Clear` empties it, `Load` fills it. The pages and
// media are files below `WorkingFolder`; `Load` writes them out of the project file and `Save`
// gathers those that the tree names. References got from `WebSites()`, `Attachments()` and the like
// are good until the next `Clear` or successful `Load`.
//
// One thread. `Save` and `Load` raise `ProjectProgressChanged` between files, whose handler may let
// events through; `Busy` is true meanwhile and a second `Save` or `Load` answers `InUse`. The tree
// is taken down before the first progress is raised, so what a handler changes goes into the next
// save.
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "platform/FileSystem.h"
#include "project/omProj/ExplorerNodes.h"
#include "project/omProj/Items.h"
#include "project/omProj/Results.h"
#include "project/omProj/Tree.h"

namespace pw {

namespace LoadMode {
constexpr int Everything = 0;
constexpr int Header = 1;         ///< the plain properties only
constexpr int HeaderPreview = 2;  ///< and the bytes of the thumbnail (`ThumbnailImage`)
}  // namespace LoadMode

/** The plain data of a project. All of it but the last group is kept in the project file. */
struct ProjectProperties {
    std::string ProjectId;  ///< a GUID
    std::string Name;
    std::string Description;
    int VersionMajor = 0;
    int VersionMinor = 0;
    int VersionBuild = 0;
    bool AutoVersion = false;  ///< version raised at each publishing
    DateTime Created = 0;
    std::string CreatedBy;  ///< computer name, a backslash, user name
    DateTime Modified = 0;
    std::string ModifiedBy;
    std::string AuthorName;
    std::string AuthorEmail;
    std::string AuthorLocation;
    std::string CompanyName;
    std::string CompanyTagLine;
    std::string CompanyStreet;
    std::string CompanyCity;
    std::string CompanyState;
    std::string CompanyPostal;
    std::string CompanyCountry;
    std::string CompanyWebSite;
    std::string CompanyEmail;
    std::string CompanyPhone;
    std::string CompanyFax;
    std::string ThumbnailFilename;  ///< absolute path
    std::string MediaFolderName;
    std::string ClientVersion;  ///< "major.minor.revision" of the program that worked on it
    int ProjectType = 0;        ///< 1 for a project made by the wizard
    int NextPageNumber = 1;     ///< raised by 1 by the client at each new page
    int PublishCount = 0;
    int SkillLevel = 0;
    bool EmailPublishStatus = false;
    bool PublishStateChanged = false;
    int ClientNumber = 0;    ///< a number that the client keeps here; 0 at start-up
    std::string ClientText;  ///< a text that the client keeps here; emptied for a template

    // Of the moment.
    bool BuildMode = false;  ///< while the wizard generates a site
    bool IsLoaded = false;   ///< set by the client alone
    bool IsDirty = false;    ///< set by the client at every edit, cleared by `Save` and `Load`
    bool RaiseProgress = false;
    int LoadMode = pw::LoadMode::Everything;
};

class ProjectReader;

class Project : public ProjectProperties {
  public:
    /** `files` must outlive the project. */
    explicit Project(FileSystem& files);
    ~Project();
    Project(const Project&) = delete;
    Project& operator=(const Project&) = delete;

    /** 0 when the program has the access code and is of the version that this library was built
     *  for; 1 and more when not. */
    int Initialize(std::string_view accessCode, int major, int minor);

    /** The folder below which the tree's files lie. A place of the program, not of the project:
     *  `Clear` and `Load` leave it as it is. */
    std::string WorkingFolder;

    pw::WebSites& WebSites();
    pw::Attachments& Attachments();
    pw::MergeVariables& MergeVariables();
    pw::Tasks& Tasks();
    pw::PublishHistory& PublishHistory();
    pw::AddInRecords& AddIns();
    const pw::PageIndex& PageIndex() const;

    /** The page outside the tree that new pages can start from; null when there is none. */
    Page* DefaultTemplate() const;
    /** Makes an empty one in place of any former and returns it. */
    Page* CreateDefaultTemplate();

    /** By a whole key; null when there is none. */
    WebSite* FindWebSite(std::string_view key) const;
    Folder* FindFolder(std::string_view key) const;
    Page* FindPage(std::string_view key) const;

    /** Pages in the tree, or as told by the file after a header-only load. */
    int PageCount() const;
    /** Bytes of the project file at the last load or save; 0 for a project never saved. */
    std::int64_t ProjectSize() const;
    std::uint16_t FormatVersion() const;
    bool Busy() const;
    ProjectResult LastResult() const;
    /** What the last `Save`, `Load` or failed `Add` has to say, with the name of the file that it
     *  is about; "" after success. Whole sentences for the user. */
    const std::string& LastMessage() const;
    /** Bytes of the picture of the project after a load with `LoadMode::HeaderPreview`. */
    const std::string& ThumbnailImage() const;

    /** Notes that an add-in was used; an add-in already noted is brought up to date. False when the
     *  list is full. */
    bool RegisterAddIn(std::string_view id, std::string_view name, std::string_view company,
                       std::string_view version, std::string_view author,
                       std::string_view authorEmail, int style, bool notifyAuthor);

    /** Rebuilds the project tree: the project, its sites, below each its pages and then its
     *  folders. `flag` is 0. */
    void FillExplorer(ExplorerNodes& nodes, int flag = 0);

    /** Empties everything but `WorkingFolder`; the object stays. */
    void Clear();

    /**
     * Writes the project file. Into the file that the project was loaded from or last saved to it
     * is one transaction in place, under any other name a new file that takes its name when it is
     * whole; so at every moment the name has a whole project behind it, the old one or the new one.
     * Takes the files that the tree names below `WorkingFolder` and no others. On failure the file
     * is as it was, `IsDirty` is true and `LastMessage` says why.
     */
    [[nodiscard]] ProjectResult Save(std::string_view path);

    /**
     * Reads the project file and writes its files below `WorkingFolder`, never outside of it.
     * Everything is checked before anything is touched: on failure the object is as it was before
     * the call, except that a failure while the files are written out leaves it cleared. With a
     * `LoadMode` other than 0 the plain properties alone are read, and no file is written.
     */
    [[nodiscard]] ProjectResult Load(std::string_view path);

    /** The same file without the pages and media, for a journal beside a working folder that still
     *  has them. It leaves `IsDirty` alone and raises no progress. */
    [[nodiscard]] ProjectResult SaveTree(std::string_view path);
    /** Fills the project from such a file; the files below `WorkingFolder` stay as they are, and
     *  the next `Save` goes on with the project file that the journal belongs to. */
    [[nodiscard]] ProjectResult LoadTree(std::string_view path);

    /** Reads a whole project file, pages and media included, and changes nothing: `Success` means
     *  that `Load` would work. */
    [[nodiscard]] ProjectResult Check(std::string_view path);

    /** Raised with 0 to 100 during `Save` and `Load` while `RaiseProgress` is true. */
    std::function<void(int value)> ProjectProgressChanged;
    /** Takes what is worth a line in the error log though it stops nothing. */
    std::function<void(const std::string& tag, const std::string& message)> LogMessage;

  private:
    friend class Pages;
    friend class ProjectReader;
    friend class ProjectSaver;
    friend class ProjectWriter;
    friend class Sections;
    friend class WebSites;
    struct Contents;

    ProjectResult Finish(ProjectResult result, std::string message = {});
    void Refuse(ProjectResult result) { static_cast<void>(Finish(result)); }
    void Log(const std::string& tag, const std::string& message) const;
    void Progress(int value);
    void Unpack(ProjectReader& reader);
    void Adopt(Project& loaded);

    FileSystem& files_;
    std::unique_ptr<Contents> contents_;
    std::string file_;  // the project file that a save goes into in place; "" for none
    std::int64_t size_ = 0;
    int headerPageCount_ = -1;  // after a header-only load
    std::uint16_t formatVersion_;
    std::string thumbnailImage_;
    bool busy_ = false;
    ProjectResult lastResult_ = ProjectResult::Success;
    std::string lastMessage_;
};

}  // namespace pw
