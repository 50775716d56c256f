#pragma once
// Finding, removing, measuring and writing the items of the project tree.
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_set>

#include "platform/FileSystem.h"
#include "platform/Outcome.h"
#include "platform/dom/Document.h"
#include "project/ProjectContext.h"
#include "project/omProj/Project.h"

namespace pw {

/** What stands at a key: one of these, or none of them. */
struct ProjectItem {
    WebSite* site = nullptr;
    Folder* folder = nullptr;
    Page* page = nullptr;
    Attachment* attachment = nullptr;
    explicit operator bool() const { return site || folder || page || attachment; }
};
ProjectItem GetProjectItem(const ProjectContext& context, std::string_view key);
/** The folder of that key, or the one that the page of that key lies in; none at the top level. */
Folder* GetFolder(const ProjectContext& context, std::string_view key);
/** The site at the start of any key. */
WebSite* GetWebSite(const ProjectContext& context, std::string_view key);
Page* GetPage(const ProjectContext& context, std::string_view key);
/** Of the folder of that key, else of the site. */
Page* GetDefaultPage(const ProjectContext& context, std::string_view key);
/** Makes it the default page among the pages of its parent. */
void SetDefaultPage(const ProjectContext& context, Page& page);

/** Where pages and folders are put: a folder, a site, or neither for the first site. */
struct Container {
    WebSite* site = nullptr;
    Folder* folder = nullptr;
    Container() = default;
    explicit Container(WebSite& where) : site(&where) {}
    explicit Container(Folder& where) : folder(&where) {}
    explicit operator bool() const { return site || folder; }

    Pages& PageList() const { return folder ? folder->Pages() : site->Pages(); }
    Sections& FolderList() const { return folder ? folder->Sections() : site->Sections(); }
    const std::string& Key() const { return folder ? folder->Key() : site->Key(); }
    /** On disk, relative to the project's working folder; "" for a site. */
    std::string RelativePath() const { return folder ? folder->WorkingFolder : std::string(); }
};
/** The folder of the key, or the folder or site of the page of that key; the first site for a key
 *  of neither. Empty only in a project without a site. */
Container GetContainer(const ProjectContext& context, std::string_view key);

/** Keeps what RemoveProjectItem took out of the tree. */
struct RemovedItem {
    std::unique_ptr<WebSite> site;
    std::unique_ptr<Folder> folder;
    std::unique_ptr<Page> page;
    std::string aside;  ///< where its files lie from now on; "" when it had none of its own
};
/**
 * Takes an item out of the tree, a folder with all below it; windows of its pages are closed. Its
 * files are moved aside (see RemovedFiles.h), but for those that others list or refer to. False,
 * with nothing removed and a sentence in `reason`, when a window does not close or a file can't be
 * moved.
 */
bool RemoveProjectItem(ProjectContext& context, std::string_view key,
                       RemovedItem* removed = nullptr, std::string* reason = nullptr);

/** Paths of all files that the project lists: pages, attachments, the template, the thumbnail.
 *  Without those of the pages whose keys begin with `exceptBelow`, when that is not "". */
std::unordered_set<std::string> ListedFiles(const ProjectContext& context,
                                            std::string_view exceptBelow = {});

/** Reads the statistics of a page from its document; nothing happens when either is none. */
void ComputePageStatistics(ProjectContext& context, dom::Document* document, Page* page);
/** Bytes that a visitor loads for an open page: its HTML and each distinct picture once. 0 for a
 *  closed page. */
std::int64_t CalculatePageSize(ProjectContext& context, std::string_view key);
/** As CalculatePageSize, of a document whose references are relative to `folder`. */
std::int64_t DocumentSize(const ProjectContext& context, const dom::Document& document,
                          const std::string& folder);
/** The visible text of an open page; "" for any other. */
std::string GetPageText(ProjectContext& context, std::string_view key);

/**
 * Writes an open page to its file; a page without one gets a name. A masked frameset is restored.
 * On failure the file is as it was and `reason` gets a sentence for the user.
 */
[[nodiscard]] bool SavePageFile(ProjectContext& context, Page& page, std::string* reason = nullptr);

/** The lowest number from 1 so that prefix, number, dot and extension is no file of the folder. */
int GetUniqueFilename(const FileSystem& files, std::string_view prefix, std::string_view extension,
                      std::string_view folder);

/** Adds markup at the end of the body of an open or closed page, and writes the page. Refuses what
 *  would not read back as it is. */
Outcome<void> InsertHTMLAtBottom(ProjectContext& context, std::string_view key,
                                 std::string_view html);

/** Computer name, a backslash, login name: whoever changes a page or a project now. */
std::string CurrentAuthor(const ProjectContext& context);

}  // namespace pw
