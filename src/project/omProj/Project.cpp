#include "project/omProj/Project.h"

#include "project/omProj/Format.h"
#include "project/omProj/ProjectContents.h"

namespace pw {
namespace {

constexpr std::string_view kAccessCode = "BQMAZXLKVD";

enum Compatibility { kCompatible = 0, kWrongAccessCode = 1, kWrongVersion = 2 };

}  // namespace

Project::Project(FileSystem& files)
    : files_(files), contents_(std::make_unique<Contents>(*this)), formatVersion_(kFormatVersion) {}

Project::~Project() = default;

int Project::Initialize(std::string_view accessCode, int major, int minor) {
    if (accessCode != kAccessCode) return kWrongAccessCode;
    const bool sameVersion = major == PAGEWICK_VERSION_MAJOR && minor == PAGEWICK_VERSION_MINOR;
    return sameVersion ? kCompatible : kWrongVersion;
}

pw::WebSites& Project::WebSites() {
    return contents_->webSites;
}
pw::Attachments& Project::Attachments() {
    return contents_->attachments;
}
pw::MergeVariables& Project::MergeVariables() {
    return contents_->mergeVariables;
}
pw::Tasks& Project::Tasks() {
    return contents_->tasks;
}
pw::PublishHistory& Project::PublishHistory() {
    return contents_->publishHistory;
}
pw::AddInRecords& Project::AddIns() {
    return contents_->addIns;
}
const pw::PageIndex& Project::PageIndex() const {
    return contents_->tree.index;
}

Page* Project::DefaultTemplate() const {
    return contents_->defaultTemplate.get();
}

Page* Project::CreateDefaultTemplate() {
    contents_->defaultTemplate = std::make_unique<Page>("", 0);
    return contents_->defaultTemplate.get();
}

WebSite* Project::FindWebSite(std::string_view key) const {
    return key.size() == kBlockWidth ? contents_->webSites.Item(key) : nullptr;
}

Folder* Project::FindFolder(std::string_view key) const {
    if (key.size() < 2 * kBlockWidth || NumberOfKey(key, 'F') == 0) return nullptr;
    const WebSite* site = FindWebSite(key.substr(0, kBlockWidth));
    if (!site) return nullptr;
    Folder* folder = nullptr;
    for (std::size_t end = 2 * kBlockWidth; end <= key.size(); end += kBlockWidth) {
        folder = (folder ? folder->Sections() : site->Sections()).Item(key.substr(0, end));
        if (!folder) return nullptr;
    }
    return folder;
}

Page* Project::FindPage(std::string_view key) const {
    if (key.size() < 2 * kBlockWidth) return nullptr;
    const std::string_view parent = key.substr(0, key.size() - kBlockWidth);
    if (const WebSite* site = FindWebSite(parent)) return site->Pages().Item(key);
    const Folder* folder = FindFolder(parent);
    return folder ? folder->Pages().Item(key) : nullptr;
}

int Project::PageCount() const {
    return headerPageCount_ >= 0 ? headerPageCount_ : PageIndex().Count();
}
std::int64_t Project::ProjectSize() const {
    return size_;
}
std::uint16_t Project::FormatVersion() const {
    return formatVersion_;
}
bool Project::Busy() const {
    return busy_;
}
ProjectResult Project::LastResult() const {
    return lastResult_;
}
const std::string& Project::LastMessage() const {
    return lastMessage_;
}
const std::string& Project::ThumbnailImage() const {
    return thumbnailImage_;
}

bool Project::RegisterAddIn(std::string_view id, std::string_view name, std::string_view company,
                            std::string_view version, std::string_view author,
                            std::string_view authorEmail, int style, bool notifyAuthor) {
    AddInRecord* record = nullptr;
    for (AddInRecord& present : AddIns())
        if (present.Id == id) record = &present;
    if (!record) record = AddIns().Add();
    if (!record) {
        Refuse(ProjectResult::CollectionFull);
        return false;
    }
    *record = {std::string(id),
               std::string(name),
               std::string(company),
               std::string(version),
               std::string(author),
               std::string(authorEmail),
               style,
               notifyAuthor};
    return true;
}

// The explorer
// -------------------------------------------------------------------------------------

namespace {

ExplorerImage ImageOf(const Page& page) {
    if (page.PageType == PageType::Frames) return ExplorerImage::FramesPage;
    return page.IsDefault ? ExplorerImage::DefaultPage : ExplorerImage::Page;
}

template <class Parent>
void FillBelow(ExplorerNodes& nodes, const Parent& parent) {
    for (const Page& page : parent.Pages())
        nodes.Add(parent.Key(), page.Key(), page.Name, page.Filename, ImageOf(page), false);
    for (const Folder& folder : parent.Sections()) {
        nodes.Add(parent.Key(), folder.Key(), folder.Name, "", ExplorerImage::Folder,
                  folder.Expanded);
        FillBelow(nodes, folder);
    }
}

}  // namespace

void Project::FillExplorer(ExplorerNodes& nodes, int) {
    const std::string root = "R";
    nodes.Clear();
    nodes.Add("", root, Name, "", ExplorerImage::Project, true);
    for (const WebSite& site : WebSites()) {
        nodes.Add(root, site.Key(), site.Name, "", ExplorerImage::WebSite, site.Expanded);
        FillBelow(nodes, site);
    }
}

// Life
// ---------------------------------------------------------------------------------------------

void Project::Clear() {
    static_cast<ProjectProperties&>(*this) = {};
    contents_ = std::make_unique<Contents>(*this);
    file_.clear();
    size_ = 0;
    headerPageCount_ = -1;
    formatVersion_ = kFormatVersion;
    thumbnailImage_.clear();
    lastResult_ = ProjectResult::Success;
    lastMessage_.clear();
}

ProjectResult Project::Finish(ProjectResult result, std::string message) {
    lastResult_ = result;
    lastMessage_ = message.empty() ? Describe(result) : std::move(message);
    return result;
}

void Project::Log(const std::string& tag, const std::string& message) const {
    if (LogMessage) LogMessage(tag, message);
}

void Project::Progress(int value) {
    if (RaiseProgress && ProjectProgressChanged) ProjectProgressChanged(value);
}

}  // namespace pw
