#include "project/omProj/Tree.h"

#include "project/omProj/Project.h"

namespace pw {

// The flat index
// -----------------------------------------------------------------------------------

const std::string& PageIndexEntry::Key() const {
    return Item->Key();
}

void PageIndex::Enter(Page& page) {
    page.serial_ = ++serial_;
    entries_.push_back({&page});
}

void PageIndex::Leave(const Page& page) {
    // Serial numbers rise along the index, since pages are only ever put at its end.
    const auto at = std::lower_bound(entries_.begin(), entries_.end(), page.serial_,
                                     [](const PageIndexEntry& entry, std::uint64_t serial) {
                                         return entry.Item->serial_ < serial;
                                     });
    if (at != entries_.end() && at->Item == &page) entries_.erase(at);
}

// Pages
// --------------------------------------------------------------------------------------------

Page::Page(std::string key, int id) : key_(std::move(key)), id_(id), attachments_(key_) {}

std::string Page::ParentFolderKey() const {
    return key_.size() < kBlockWidth ? "" : key_.substr(0, key_.size() - kBlockWidth);
}

Pages::Pages(TreeContext& tree, std::string parentKey)
    : tree_(tree), parentKey_(std::move(parentKey)) {}

Page* Pages::Add() {
    if (IsFull()) {
        tree_.project->Refuse(ProjectResult::CollectionFull);
        return nullptr;
    }
    Page* added = AddNumbered(NextNumber());
    added->Number = tree_.project->NextPageNumber;
    return added;
}

Page* Pages::AddNumbered(int number) {
    Page* added =
        Append(std::make_unique<Page>(parentKey_ + KeyBlock('P', number), number), number);
    tree_.index.Enter(*added);
    return added;
}

std::unique_ptr<Page> Pages::Remove(int index) {
    std::unique_ptr<Page> removed = TakeOut(index);
    if (removed) tree_.index.Leave(*removed);
    return removed;
}

void Pages::LeaveIndex() const {
    for (const Page& page : *this)
        tree_.index.Leave(page);
}

// Folders
// ------------------------------------------------------------------------------------------

Folder::Folder(TreeContext& tree, std::string key, int id)
    : key_(std::move(key)), id_(id), sections_(tree, key_), pages_(tree, key_) {}

Sections::Sections(TreeContext& tree, std::string parentKey)
    : tree_(tree), parentKey_(std::move(parentKey)) {}

Sections::~Sections() = default;

Folder* Sections::Add() {
    const bool tooDeep = parentKey_.size() > kMaximumDepth * kBlockWidth;
    if (tooDeep || IsFull()) {
        tree_.project->Refuse(tooDeep ? ProjectResult::TooDeep : ProjectResult::CollectionFull);
        return nullptr;
    }
    return AddNumbered(NextNumber());
}

Folder* Sections::AddNumbered(int number) {
    return Append(std::make_unique<Folder>(tree_, parentKey_ + KeyBlock('F', number), number),
                  number);
}

std::unique_ptr<Folder> Sections::Remove(int index) {
    std::unique_ptr<Folder> removed = TakeOut(index);
    if (removed) {
        removed->Pages().LeaveIndex();
        removed->Sections().LeaveIndex();
    }
    return removed;
}

std::unique_ptr<Folder> Sections::Remove(std::string_view key) {
    return Remove(IndexOf(key));
}

void Sections::LeaveIndex() const {
    for (const Folder& folder : *this) {
        folder.Pages().LeaveIndex();
        folder.Sections().LeaveIndex();
    }
}

// Sites
// --------------------------------------------------------------------------------------------

WebSite::WebSite(TreeContext& tree, std::string key, int id)
    : key_(std::move(key)), id_(id), sections_(tree, key_), pages_(tree, key_) {}

WebSite* WebSites::Add() {
    if (IsFull()) {
        tree_.project->Refuse(ProjectResult::CollectionFull);
        return nullptr;
    }
    return AddNumbered(NextNumber());
}

WebSite* WebSites::AddNumbered(int number) {
    return Append(std::make_unique<WebSite>(tree_, KeyBlock('W', number), number), number);
}

std::unique_ptr<WebSite> WebSites::Remove(int index) {
    std::unique_ptr<WebSite> removed = TakeOut(index);
    if (removed) {
        removed->Pages().LeaveIndex();
        removed->Sections().LeaveIndex();
    }
    return removed;
}

}  // namespace pw
