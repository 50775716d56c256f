#include "project/JournalState.h"
#include "project/omProj/Project.h"

namespace pw {
namespace {

constexpr int kPagesPerLook = 200;

/** FNV-1a over whatever it is fed. */
class Hash {
  public:
    Hash& operator<<(std::string_view text) {
        for (const char c : text)
            Mix(static_cast<unsigned char>(c));
        Mix(0xFF);  // no byte of a UTF-8 text
        return *this;
    }
    Hash& operator<<(std::int64_t number) {
        for (int i = 0; i < 8; ++i)
            Mix(static_cast<unsigned char>(number >> (8 * i)));
        return *this;
    }
    Hash& operator<<(int number) { return *this << std::int64_t(number); }
    Hash& operator<<(bool value) { return *this << std::int64_t(value); }
    Hash& operator<<(double value) {
        return *this << std::int64_t(value * (24 * 60 * 60 * 10));  // tenths of a second
    }
    std::uint64_t Value() const { return value_; }

  private:
    void Mix(unsigned char byte) { value_ = (value_ ^ byte) * 0x100000001b3u; }
    std::uint64_t value_ = 0xcbf29ce484222325u;
};

/** What only the tree knows. The statistics are counted anew from the page's text, and which pages
 *  have windows is nothing to recover. */
std::uint64_t HashOf(const Page& page) {
    Hash hash;
    hash << page.Filename << page.Path << page.Name << page.Title << page.Description
         << page.Keywords << page.FramesHTML << page.ThemeName << page.ThemeFile << page.PageType
         << page.IsDefault;
    for (const Attachment& file : page.Attachments())
        hash << file.Filename() << file.Kind << file.Description << file.Origin;
    for (const FormRecord& form : page.Forms())
        hash << form.Name << form.DatabaseName << form.CompletedMessage << form.IncompleteMessage
             << form.ActionType << form.Fields.Count();
    for (const MetaTag& tag : page.MetaTags())
        hash << tag.Name << tag.Content;
    return hash.Value();
}

void AddFolders(Hash& hash, const Sections& sections) {
    for (const Folder& folder : sections) {
        hash << folder.Key() << folder.Name << folder.Description << folder.FolderName
             << folder.WorkingFolder << folder.ContainerKind;
        AddFolders(hash, folder.Sections());
    }
}

/** Everything but the pages. */
std::uint64_t BaseOf(Project& project) {
    Hash hash;
    hash << project.Name << project.Description << project.VersionMajor << project.VersionMinor
         << project.VersionBuild << project.AutoVersion << project.AuthorName << project.AuthorEmail
         << project.AuthorLocation << project.CompanyName << project.CompanyTagLine
         << project.CompanyStreet << project.CompanyCity << project.CompanyState
         << project.CompanyPostal << project.CompanyCountry << project.CompanyWebSite
         << project.CompanyEmail << project.CompanyPhone << project.CompanyFax
         << project.ThumbnailFilename << project.NextPageNumber << project.PublishCount
         << project.PublishHistory().Count() << project.AddIns().Count();
    for (const WebSite& site : project.WebSites()) {
        hash << site.Key() << site.Name;
        AddFolders(hash, site.Sections());
    }
    for (const Attachment& file : project.Attachments())
        hash << file.Filename() << file.State;
    for (const MergeVariable& variable : project.MergeVariables())
        hash << variable.Type << variable.Name << variable.Value;
    for (const Task& task : project.Tasks())
        hash << task.Key << task.Modified << task.Status << task.Name;
    if (const Page* page = project.DefaultTemplate()) hash << std::int64_t(HashOf(*page));
    const PageIndex& pages = project.PageIndex();
    hash << pages.Count();
    if (const PageIndexEntry* last = pages.Item(pages.Count())) hash << last->Key();
    return hash.Value();
}

}  // namespace

void TreeWatch::Take(Project& project) {
    taken_ = true;
    base_ = BaseOf(project);
    pages_.clear();
    for (const PageIndexEntry& entry : project.PageIndex())
        pages_[entry.Key()] = HashOf(*entry.Item);
    next_ = 1;
}

bool TreeWatch::Changed(Project& project, const std::set<std::string>& likelyPages) {
    if (!taken_ || BaseOf(project) != base_) return true;
    const auto differs = [&](const Page& page) {
        const auto known = pages_.find(page.Key());
        return known == pages_.end() || known->second != HashOf(page);
    };
    for (const std::string& key : likelyPages) {
        const Page* page = project.FindPage(key);
        if (page && differs(*page)) return true;
    }
    const PageIndex& index = project.PageIndex();
    for (int looked = 0; looked < std::min(kPagesPerLook, index.Count()); ++looked) {
        if (next_ > index.Count()) next_ = 1;
        if (differs(*index.Item(next_++)->Item)) return true;
    }
    return false;
}

void TreeWatch::Forget() {
    taken_ = false;
    pages_.clear();
}

}  // namespace pw
