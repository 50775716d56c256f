#include "project/LinkList.h"

#include <unordered_map>
#include <unordered_set>

#include "frame/Context.h"
#include "frame/FunctionLibrary.h"
#include "platform/Text.h"
#include "platform/dom/TagScan.h"
#include "project/FramesetMask.h"
#include "project/LinkAttributes.h"
#include "project/Links.h"
#include "project/Pages.h"
#include "project/Paths.h"
#include "project/References.h"

namespace pw {

namespace {

/** What a value means to all pages of one folder. */
struct Target {
    LinkState state = LinkState::Elsewhere;
    std::string file;      ///< that it leads to; "" for the page itself
    std::string bookmark;  ///< to be found there; "" when there is none
};

/** Tells which files stand below the site's folder. Looks at each folder of the disk once. */
class SiteFiles {
  public:
    explicit SiteFiles(const ProjectContext& context)
        : files_(context.frame.files), root_(context.frame.settings.PreviewFolder) {}

    bool Holds(const std::string& path) {
        if (!IsInFolder(path, root_)) return false;
        const auto& entries = EntriesOf(GetParentFolder(path));
        const auto entry = entries.find(GetFileName(path));
        if (entry == entries.end()) return false;
        return !entry->second || HoldsIndex(path);
    }
    const std::string& Root() const { return root_; }

  private:
    using Entries = std::unordered_map<std::string, bool>;  // name: whether it is a folder

    /** A link to a folder is one to the page that a server shows for it. */
    bool HoldsIndex(const std::string& folder) {
        const Entries& entries = EntriesOf(folder);
        return entries.count("index.htm") > 0 || entries.count("index.html") > 0;
    }

    const Entries& EntriesOf(const std::string& folder) {
        const auto known = folders_.find(folder);
        if (known != folders_.end()) return known->second;
        std::vector<FolderEntry> list;
        if (files_.List(folder, list) != FileError::None) list.clear();
        Entries& entries = folders_[folder];
        for (const FolderEntry& entry : list)
            entries.emplace(entry.name, entry.isFolder);
        return entries;
    }

    const FileSystem& files_;
    std::string root_;
    std::unordered_map<std::string, Entries> folders_;
};

Target FindTarget(SiteFiles& site, const std::string& folder, const std::string& value) {
    const std::string trimmed = Trim(value);
    Target target;
    target.bookmark = BookmarkOf(trimmed);
    if (SplitSuffix(trimmed).path.empty()) {
        target.state = LinkState::Stands;
        return target;
    }
    if (!IsLocalReference(trimmed)) return target;
    target.state = LinkState::Missing;
    for (auto& candidate : ReferenceCandidates(PlaceInSite{site.Root(), folder}, trimmed)) {
        if (!site.Holds(candidate.path)) continue;
        target.state = LinkState::Stands;
        target.file = std::move(candidate.path);
        // The sign can belong to the file's name.
        if (candidate.suffix.find('#') == std::string::npos) target.bookmark.clear();
        break;
    }
    return target;
}

bool IsTopOfPage(const std::string& bookmark) {
    return bookmark.empty() || EqualsNoCase(bookmark, "top");
}

class LinkLister {
  public:
    explicit LinkLister(ProjectContext& context) : context_(context), site_(context) {}

    std::vector<LinkRecord> Run() {
        for (WebSite& site : context_.project.WebSites())
            ListFolder(Container(site));
        CheckBookmarks();
        return std::move(records_);
    }

  private:
    using Targets = std::unordered_map<std::string, Target>;
    struct Pending {
        std::size_t record;
        const Page* page;
        std::string bookmark;
    };

    void ListFolder(const Container& container) {
        const std::string folder = GetPageFolder(context_, container.Key());
        // Pages that lie together mostly share their links.
        Targets targets;
        for (const Page& page : container.PageList()) {
            ReadPage(page);
            ForEachLink(html_, [&](const std::string& value) {
                auto known = targets.find(value);
                if (known == targets.end())
                    known = targets.emplace(value, FindTarget(site_, folder, value)).first;
                Add(page, value, known->second);
            });
        }
        for (Folder& below : container.FolderList())
            ListFolder(Container(below));
    }

    void ReadPage(const Page& page) {
        html_ = GetPageHTML(context_, page);
        if (page.PageType == PageType::Frames) html_ = UncommentFrameset(html_);
    }

    void Add(const Page& page, const std::string& value, const Target& target) {
        records_.push_back({&page, value, target.state});
        if (target.state != LinkState::Stands || IsTopOfPage(target.bookmark)) return;
        const Page* holder = target.file.empty() ? &page : PageOfFile(target.file);
        if (holder) pending_.push_back({records_.size() - 1, holder, target.bookmark});
    }

    /** None for a file that is no page of the project. */
    const Page* PageOfFile(const std::string& file) {
        if (pages_.empty())
            for (const PageIndexEntry& entry : context_.project.PageIndex())
                pages_.emplace(FoldCase(entry.Item->Filename), entry.Item);
        const auto page = pages_.find(FoldCase(file));
        return page == pages_.end() ? nullptr : page->second;
    }

    /** Reads again only the pages to whose bookmarks something leads. */
    void CheckBookmarks() {
        std::stable_sort(pending_.begin(), pending_.end(), [](const auto& one, const auto& other) {
            return std::less<>()(one.page, other.page);
        });
        const Page* read = nullptr;
        std::unordered_set<std::string> names;
        for (const Pending& link : pending_) {
            if (link.page != read) {
                read = link.page;
                names = BookmarksOf(*read);
            }
            if (!names.count(link.bookmark)) records_[link.record].state = LinkState::Missing;
        }
    }

    std::unordered_set<std::string> BookmarksOf(const Page& page) {
        ReadPage(page);
        std::unordered_set<std::string> names;
        dom::TagScan scan(html_, dom::TagsFrom::Markup);
        while (const auto tag = scan.next()) {
            if (auto id = tag->attribute("id")) names.insert(std::move(*id));
            if (!tag->is("a")) continue;
            if (auto name = tag->attribute("name")) names.insert(std::move(*name));
        }
        return names;
    }

    ProjectContext& context_;
    SiteFiles site_;
    std::vector<LinkRecord> records_;
    std::vector<Pending> pending_;
    std::unordered_map<std::string, const Page*> pages_;  // by the folded path of the file
    std::string html_;
};

}  // namespace

std::vector<LinkRecord> ListLinks(ProjectContext& context) {
    return Trap(context.frame.errorLog, "ProjectFunctions.", "ListLinks", std::vector<LinkRecord>(),
                [&] { return LinkLister(context).Run(); });
}

}  // namespace pw
