#pragma once
// Sites, folders and pages. Every item has a node key: a block (a capital letter and four digits)
// for each level, W for a site, F for a folder, P for a page. A key never changes, and a removed
// item's key is never given out again.
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/SystemInfo.h"
#include "project/omProj/Collections.h"
#include "project/omProj/Items.h"

namespace pw {

class Page;
class Pages;
class Project;
class Sections;

namespace PageType {
constexpr int Ordinary = 0;
constexpr int Frames = 1;  ///< its file holds a frameset
}  // namespace PageType

/** One page in the flat index. */
struct PageIndexEntry {
    const std::string& Key() const;
    Page* Item = nullptr;
};

/** Every page of the project in the order of their making; kept as the tree changes. */
class PageIndex {
  public:
    int Count() const { return static_cast<int>(entries_.size()); }
    const PageIndexEntry* Item(int index) const {
        return index >= 1 && index <= Count() ? &entries_[index - 1] : nullptr;
    }
    auto begin() const { return entries_.begin(); }
    auto end() const { return entries_.end(); }

  private:
    friend class Page;
    friend class Pages;
    friend class ProjectReader;
    friend class Sections;
    friend class WebSites;
    void Enter(Page& page);
    void Leave(const Page& page);

    std::vector<PageIndexEntry> entries_;
    std::uint64_t serial_ = 0;
};

/** What all items of one tree share. */
struct TreeContext {
    Project* project = nullptr;
    PageIndex index;
};

class Page {
  public:
    Page(std::string key, int id);
    Page(const Page&) = delete;
    Page& operator=(const Page&) = delete;

    const std::string& Key() const { return key_; }  ///< "" for the default template
    int Id() const { return id_; }                   ///< the number in the key's last block
    /** Key of the folder or site that the page lies in. */
    std::string ParentFolderKey() const;
    pw::Attachments& Attachments() { return attachments_; }
    const pw::Attachments& Attachments() const { return attachments_; }
    pw::Forms& Forms() { return forms_; }
    const pw::Forms& Forms() const { return forms_; }
    pw::MetaTags& MetaTags() { return metaTags_; }
    const pw::MetaTags& MetaTags() const { return metaTags_; }
    /** Whether the page had a window (`IsOpen`) when the project was saved. */
    bool IsOpenAtSave() const { return isOpenAtSave_; }

    std::string Filename;  ///< absolute path below the project's working folder
    std::string Path;      ///< relative to the working folder
    std::string Name;      ///< the title that the explorers show
    std::string Title;
    std::string Description;
    std::string Keywords;
    std::string FramesHTML;  ///< the pending frame block with its marker comments
    std::string ThemeName;
    std::string ThemeFile;
    DateTime Created = 0;
    std::string CreatedBy;
    DateTime Modified = 0;
    std::string ModifiedBy;
    int Number = 0;  ///< the project's `NextPageNumber` when the page was made
    int PageType = pw::PageType::Ordinary;
    int TextLength = 0;
    int WordCount = 0;
    int Embeds = 0;
    int FormsCount = 0;
    int Images = 0;
    int Applets = 0;
    int Plugins = 0;
    int Scripts = 0;
    std::int64_t TotalSize = 0;  ///< bytes, with attachments
    bool ReadOnlyFlag = false;
    bool IsDefault = false;
    bool IsDirty = false;  ///< not kept in the file
    /** True while the page has a window. False after `Load`, which reports in `IsOpenAtSave`. */
    bool IsOpen = false;

  private:
    friend class PageIndex;
    friend class ProjectReader;
    friend class ProjectWriter;
    std::string key_;
    int id_;
    std::uint64_t serial_ = 0;
    bool isOpenAtSave_ = false;
    pw::Attachments attachments_;
    pw::Forms forms_;
    pw::MetaTags metaTags_;
};

class Pages : public NumberedItems<Page, 'P'> {
  public:
    Pages(TreeContext& tree, std::string parentKey);
    Pages(const Pages&) = delete;
    Pages& operator=(const Pages&) = delete;

    Page* Add();
    /** The removed page lives on with the caller; it is out of the page index. */
    std::unique_ptr<Page> Remove(int index);
    std::unique_ptr<Page> Remove(std::string_view key) { return Remove(IndexOf(key)); }

  private:
    friend class ProjectReader;
    friend class Sections;
    friend class WebSites;
    Page* AddNumbered(int number);
    void LeaveIndex() const;

    TreeContext& tree_;
    std::string parentKey_;
};

class Folder;

class Sections : public NumberedItems<Folder, 'F'> {
  public:
    Sections(TreeContext& tree, std::string parentKey);
    ~Sections();
    Sections(const Sections&) = delete;
    Sections& operator=(const Sections&) = delete;

    /** Null also when folders would be nested too deep. */
    Folder* Add();
    /** With all below it. */
    std::unique_ptr<Folder> Remove(int index);
    std::unique_ptr<Folder> Remove(std::string_view key);

  private:
    friend class ProjectReader;
    friend class WebSites;
    Folder* AddNumbered(int number);
    void LeaveIndex() const;

    TreeContext& tree_;
    std::string parentKey_;
};

namespace ContainerKind {
constexpr int Plain = 1;
constexpr int ContainsProject = 2;
}  // namespace ContainerKind

class Folder {
  public:
    Folder(TreeContext& tree, std::string key, int id);
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    const std::string& Key() const { return key_; }
    /** A folder's key is given by its collection: telling it its own key is accepted, any other
     *  key is refused. */
    bool SetKey(std::string_view key) const { return key == key_; }
    int Id() const { return id_; }  ///< the number in the key's last block
    pw::Sections& Sections() { return sections_; }
    const pw::Sections& Sections() const { return sections_; }
    pw::Pages& Pages() { return pages_; }
    const pw::Pages& Pages() const { return pages_; }

    std::string Name;
    std::string Description;
    std::string FolderName;     ///< of the folder on disk, without a path
    std::string WorkingFolder;  ///< path on disk relative to the project's `WorkingFolder`
    int ContainerKind = pw::ContainerKind::Plain;
    bool Expanded = false;

  private:
    std::string key_;
    int id_;
    pw::Sections sections_;
    pw::Pages pages_;
};

class WebSite {
  public:
    WebSite(TreeContext& tree, std::string key, int id);
    WebSite(const WebSite&) = delete;
    WebSite& operator=(const WebSite&) = delete;

    const std::string& Key() const { return key_; }
    int Id() const { return id_; }
    pw::Sections& Sections() { return sections_; }
    const pw::Sections& Sections() const { return sections_; }
    pw::Pages& Pages() { return pages_; }
    const pw::Pages& Pages() const { return pages_; }

    std::string Name;
    bool Expanded = false;

  private:
    std::string key_;
    int id_;
    pw::Sections sections_;
    pw::Pages pages_;
};

class WebSites : public NumberedItems<WebSite, 'W'> {
  public:
    explicit WebSites(TreeContext& tree) : tree_(tree) {}
    WebSites(const WebSites&) = delete;
    WebSites& operator=(const WebSites&) = delete;

    WebSite* Add();
    std::unique_ptr<WebSite> Remove(int index);
    std::unique_ptr<WebSite> Remove(std::string_view key) { return Remove(IndexOf(key)); }

  private:
    friend class ProjectReader;
    WebSite* AddNumbered(int number);

    TreeContext& tree_;
};

}  // namespace pw
