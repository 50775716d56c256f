#include "project/omProj/ProjectReader.h"

#include <algorithm>
#include <limits>
#include <map>
#include <variant>

#include "project/omProj/Fields.h"
#include "project/omProj/Format.h"
#include "project/omProj/Names.h"
#include "project/omProj/ProjectContents.h"

namespace pw {
namespace {

constexpr std::int64_t kLargestThumbnail = 4 << 20;  // bytes

[[noreturn]] void ThrowDamaged() {
    throw ProjectFailure(ProjectResult::Damaged);
}

[[noreturn]] void ThrowHostile() {
    throw ProjectFailure(ProjectResult::HostileContent);
}

int CheckedInt(std::int64_t number) {
    if (number < std::numeric_limits<int>::min() || number > std::numeric_limits<int>::max())
        ThrowDamaged();
    return static_cast<int>(number);
}

// Visitors of the field lists
// ----------------------------------------------------------------------

/** Takes the fields from a row, from a column on. */
struct FieldReader {
    const ProjectStatement& row;
    int column;
    void operator()(const char*, std::string& text) { text = row.Text(column++); }
    void operator()(const char*, double& number) { number = row.Real(column++); }
    void operator()(const char*, bool& flag) { flag = row.Integer(column++) != 0; }
    void operator()(const char*, int& number) { number = CheckedInt(row.Integer(column++)); }
    void operator()(const char*, std::int64_t& number) { number = row.Integer(column++); }
};

using HeaderValue = std::variant<std::int64_t, double, std::string>;
using HeaderValues = std::map<std::string, HeaderValue, std::less<>>;

/** Takes the fields from the header's rows by their names. */
struct HeaderReader {
    const HeaderValues& values;

    template <class T>
    const T& Get(std::string_view name) const {
        const auto found = values.find(name);
        if (found == values.end() || !std::holds_alternative<T>(found->second)) ThrowDamaged();
        return std::get<T>(found->second);
    }
    void operator()(std::string_view name, std::string& text) { text = Get<std::string>(name); }
    void operator()(std::string_view name, double& number) {
        const auto found = values.find(name);
        const bool whole =
            found != values.end() && std::holds_alternative<std::int64_t>(found->second);
        number =
            whole ? static_cast<double>(std::get<std::int64_t>(found->second)) : Get<double>(name);
    }
    void operator()(std::string_view name, bool& flag) { flag = Get<std::int64_t>(name) != 0; }
    void operator()(std::string_view name, int& number) {
        number = CheckedInt(Get<std::int64_t>(name));
    }
};

std::string_view ParentOf(std::string_view key) {
    return key.substr(0, key.size() - std::min<std::size_t>(key.size(), kBlockWidth));
}

}  // namespace

ProjectReader::ProjectReader(Project& project, ProjectDatabase& database,
                             const ProjectFileHeader& header)
    : project_(project), database_(database), header_(header) {}

// The header
// ---------------------------------------------------------------------------------------

void ProjectReader::ReadHeader() {
    HeaderValues values;
    ProjectStatement rows(database_, "SELECT name, value, typeof(value) FROM header");
    while (rows.Next()) {
        const std::string_view type = rows.Text(2);
        HeaderValue value;
        if (type == "integer")
            value = rows.Integer(1);
        else if (type == "real")
            value = rows.Real(1);
        else
            value = std::string(rows.Text(1));
        values.emplace(rows.Text(0), std::move(value));
    }
    HeaderReader read{values};
    ProjectProperties& properties = project_;
    VisitFields(read, properties);
    read("thumbnail", thumbnail_);
    if (!thumbnail_.empty()) project_.ThumbnailFilename = PathOf(thumbnail_);
    read("base_file", baseFile_);
    if (values.contains("base_mark"))
        baseMark_ = FileMark::FromText(read.Get<std::string>("base_mark"));
    read("page_count", project_.headerPageCount_);
    if (project_.headerPageCount_ < 0) ThrowDamaged();
    if (header_.applicationId == kProjectId) fileCount_ = read.Get<std::int64_t>("file_count");
    read("next_site", nextSite_);
    read("next_attachment", nextAttachment_);
    project_.formatVersion_ = static_cast<std::uint16_t>(header_.formatVersion);
    project_.size_ = header_.fileSize;
}

void ProjectReader::ReadThumbnail() {
    if (thumbnail_.empty()) return;
    ProjectStatement file(database_, "SELECT id, size FROM file WHERE name=?");
    file.Bind(std::string_view(thumbnail_));
    if (!file.Next() || file.Integer(1) > kLargestThumbnail) return;
    ProjectStatement content(database_, "SELECT bytes FROM content WHERE id=?");
    content.Bind(file.Integer(0) * kPartsPerFile);
    if (content.Next()) project_.thumbnailImage_ = content.Blob(0);
}

// The tree
// -----------------------------------------------------------------------------------------

std::string ProjectReader::PathOf(std::string_view storedName) {
    if (!IsSafeName(storedName)) ThrowHostile();
    return PathBelow(project_.WorkingFolder, storedName);
}

void ProjectReader::ReadTree() {
    ReadSites();
    ReadFolders();
    ReadPages();
    ReadAttachments();
    ReadMetaTags();
    ReadForms();
    ReadLists();
    RestoreCounters();
    OrderIndex();
    if (project_.PageIndex().Count() != project_.headerPageCount_) ThrowDamaged();
    project_.headerPageCount_ = -1;
}

void ProjectReader::ReadSites() {
    pw::WebSites& sites = project_.WebSites();
    ProjectStatement rows(database_, "SELECT * FROM site ORDER BY key");
    while (rows.Next()) {
        const std::string_view key = rows.Text(0);
        const int number = NumberOfKey(key, 'W');
        if (key.size() != kBlockWidth || number < sites.NextNumber()) ThrowDamaged();
        WebSite* site = sites.AddNumbered(number);
        VisitFields(FieldReader{rows, 3}, *site);
        NoteCounters(site->Pages(), site->Sections(), rows);
    }
}

void ProjectReader::ReadFolders() {
    // Parents come first in the order of keys, so a folder whose parent is unknown has none.
    ProjectStatement rows(database_, "SELECT * FROM folder ORDER BY key");
    while (rows.Next()) {
        const std::string_view key = rows.Text(0);
        const int number = NumberOfKey(key, 'F');
        if (number == 0 || key.size() > (kMaximumDepth + 1) * kBlockWidth) ThrowDamaged();
        const std::string_view parent = ParentOf(key);
        Folder* above = project_.FindFolder(parent);
        WebSite* site = above ? nullptr : project_.FindWebSite(parent);
        if (!above && !site) ThrowDamaged();
        pw::Sections& sections = above ? above->Sections() : site->Sections();
        if (number < sections.NextNumber()) ThrowDamaged();
        Folder* folder = sections.AddNumbered(number);
        VisitFields(FieldReader{rows, 4}, *folder);
        const std::string_view stored = rows.Text(3);
        if (!IsSafeFolderName(stored) || !IsSafeLeaf(folder->FolderName)) ThrowHostile();
        folder->WorkingFolder = stored;
        std::replace(folder->WorkingFolder.begin(), folder->WorkingFolder.end(), '/', '\\');
        if (!stored.empty()) folderNames_.emplace_back(WithoutOuterSlashes(stored));
        NoteCounters(folder->Pages(), folder->Sections(), rows);
    }
}

void ProjectReader::ReadPages() {
    ProjectStatement rows(database_, "SELECT * FROM page ORDER BY key");
    while (rows.Next()) {
        const std::string_view key = rows.Text(0);
        Page* page = nullptr;
        if (key == kTemplateKey) {
            page = project_.CreateDefaultTemplate();
        } else {
            const int number = NumberOfKey(key, 'P');
            Folder* folder = project_.FindFolder(ParentOf(key));
            WebSite* site = folder ? nullptr : project_.FindWebSite(ParentOf(key));
            if (number == 0 || (!folder && !site)) ThrowDamaged();
            pw::Pages& pages = folder ? folder->Pages() : site->Pages();
            if (number < pages.NextNumber()) ThrowDamaged();
            page = pages.AddNumbered(number);
        }
        const std::string_view filename = rows.Text(2);
        if (!filename.empty()) {
            page->Filename = PathOf(filename);
            pageFiles_.emplace_back(filename);
        }
        attachmentCounters_.push_back({page, CheckedInt(rows.Integer(3))});
        page->isOpenAtSave_ = rows.Integer(4) != 0;
        VisitFields(FieldReader{rows, 5}, *page);
        if (ClimbsUp(page->Path)) ThrowHostile();
    }
}

Page* ProjectReader::PageOf(std::string_view owner) {
    Page* page = owner == kTemplateKey ? project_.DefaultTemplate() : project_.FindPage(owner);
    if (!page) ThrowDamaged();
    return page;
}

void ProjectReader::ReadAttachments() {
    // In format 2 an attachment did not know where it came from; there each of them stays.
    ProjectStatement rows(database_, header_.formatVersion == 2
                                         ? "SELECT *, 0 FROM attachment ORDER BY owner, number"
                                         : "SELECT * FROM attachment ORDER BY owner, number");
    while (rows.Next()) {
        const std::string_view owner = rows.Text(0);
        pw::Attachments& attachments =
            owner == kProjectOwner ? project_.Attachments() : PageOf(owner)->Attachments();
        const int number = CheckedInt(rows.Integer(1));
        const std::string path = PathOf(rows.Text(2));
        if (number < attachments.NextNumber() || number > kMaximumItems || attachments.Find(path))
            ThrowDamaged();
        VisitFields(FieldReader{rows, 3}, *attachments.AddNumbered(path, number));
    }
}

void ProjectReader::ReadMetaTags() {
    ProjectStatement rows(database_, "SELECT * FROM meta_tag ORDER BY owner, position");
    while (rows.Next()) {
        MetaTag* tag = PageOf(rows.Text(0))->MetaTags().Add();
        if (!tag) ThrowDamaged();
        VisitFields(FieldReader{rows, 2}, *tag);
    }
}

void ProjectReader::ReadForms() {
    ProjectStatement rows(database_, "SELECT * FROM form ORDER BY owner, position");
    while (rows.Next()) {
        pw::Forms& forms = PageOf(rows.Text(0))->Forms();
        FormRecord* form = forms.Add();
        if (!form || rows.Integer(1) != forms.Count()) ThrowDamaged();
        VisitFields(FieldReader{rows, 2}, *form);
    }
    ProjectStatement fields(database_, "SELECT * FROM form_field ORDER BY owner, form, position");
    while (fields.Next()) {
        FormRecord* form = PageOf(fields.Text(0))->Forms().Item(CheckedInt(fields.Integer(1)));
        FormField* field = form ? form->Fields.Add() : nullptr;
        if (!field) ThrowDamaged();
        VisitFields(FieldReader{fields, 3}, *field);
    }
}

void ProjectReader::ReadLists() {
    const auto readList = [&](const char* sql, auto& list) {
        ProjectStatement rows(database_, sql);
        while (rows.Next()) {
            auto* item = list.Add();
            if (!item) ThrowDamaged();
            VisitFields(FieldReader{rows, 1}, *item);
        }
    };
    readList("SELECT * FROM merge_variable ORDER BY position", project_.MergeVariables());
    readList("SELECT * FROM publish_record ORDER BY position", project_.PublishHistory());
    readList("SELECT * FROM add_in ORDER BY position", project_.AddIns());
    ProjectStatement rows(database_, "SELECT * FROM task ORDER BY position");
    while (rows.Next()) {
        Task* task = project_.Tasks().Add(std::string(rows.Text(1)));
        if (!task) ThrowDamaged();
        VisitFields(FieldReader{rows, 2}, *task);
    }
}

void ProjectReader::NoteCounters(Pages& pages, Sections& sections, const ProjectStatement& row) {
    counters_.push_back(
        {&pages, &sections, CheckedInt(row.Integer(1)), CheckedInt(row.Integer(2))});
}

void ProjectReader::RestoreCounters() {
    bool good = project_.WebSites().RestoreCounter(nextSite_) &&
                project_.Attachments().RestoreCounter(nextAttachment_);
    for (const Counters& saved : counters_)
        good = good && saved.pages->RestoreCounter(saved.nextPage) &&
               saved.sections->RestoreCounter(saved.nextFolder);
    for (const AttachmentCounter& saved : attachmentCounters_)
        good = good && saved.page->Attachments().RestoreCounter(saved.next);
    if (!good) ThrowDamaged();
}

/** The rows came in the order of keys; the index stands in the order of the explorer. */
void ProjectReader::OrderIndex() {
    pw::PageIndex& index = project_.contents_->tree.index;
    index = {};
    const auto enter = [&](const pw::Pages& pages) {
        for (Page& page : pages)
            index.Enter(page);
    };
    const auto descend = [&](const auto& self, const pw::Sections& sections) -> void {
        for (const Folder& folder : sections) {
            enter(folder.Pages());
            self(self, folder.Sections());
        }
    };
    for (const WebSite& site : project_.WebSites()) {
        enter(site.Pages());
        descend(descend, site.Sections());
    }
}

// The files
// ----------------------------------------------------------------------------------------

void ProjectReader::ReadFileList() {
    // 1. The names, none of which may lead anywhere but to a place of its own.
    NameRegister names;
    std::int64_t total = 0;
    ProjectStatement rows(database_,
                          "SELECT id, name, size, modified, digest FROM file ORDER BY id");
    while (rows.Next()) {
        FileTarget file;
        file.name = rows.Text(1);
        file.size = rows.Integer(2);
        file.modified = rows.Integer(3);
        file.digest = static_cast<std::uint64_t>(rows.Integer(4));
        if (!IsSafeName(file.name)) ThrowHostile();
        if (names.Enter(file.name) != NameRegister::Verdict::New) ThrowHostile();
        // Nothing is packed, so what comes out of the file can't be more than the file itself.
        total += file.size;
        if (file.size < 0 || file.size > kMaximumFileSize || total > header_.fileSize)
            throw ProjectFailure(ProjectResult::HostileContent,
                                 "The project file tells a size for '" + file.name +
                                     "' that can not be right. It was not opened. Please use a "
                                     "copy of it.");
        fileIds_.push_back(rows.Integer(0));
        files_.push_back(std::move(file));
    }
    // 2. A folder may not stand where a file is to come.
    for (const std::string& folder : folderNames_)
        if (names.Enter(folder + "/.keep") == NameRegister::Verdict::Collides) ThrowHostile();
    // 3. Every page has its file.
    if (static_cast<std::int64_t>(files_.size()) != fileCount_) ThrowDamaged();
    std::unordered_set<std::string_view> known;
    for (const FileTarget& file : files_)
        known.insert(file.name);
    for (const std::string& name : pageFiles_)
        if (!known.contains(name)) ThrowDamaged();
}

void ProjectReader::ReadContents(FileSink& sink, const std::function<void(int)>& progress) {
    std::int64_t total = 1;
    for (const FileTarget& file : files_)
        total += file.size;
    std::int64_t done = 0;
    int shown = -1;
    ProjectStatement rows(database_, "SELECT id, bytes FROM content ORDER BY id");
    for (std::size_t index = 0; index < files_.size(); ++index) {
        const std::int64_t firstId = fileIds_[index] * kPartsPerFile;
        // A file of a whole number of parts ends in an empty one.
        const std::int64_t parts = files_[index].size / kPartSize + 1;
        for (std::int64_t part = 0; part < parts; ++part) {
            if (!rows.Next() || rows.Integer(0) != firstId + part) ThrowDamaged();
            const std::string_view bytes = rows.Blob(1);
            sink.Add(index, part, part + 1 == parts, bytes);
            done += static_cast<std::int64_t>(bytes.size());
        }
        const int percent = static_cast<int>(done * 100 / total);
        if (percent != shown) progress(shown = percent);
    }
    if (rows.Next()) ThrowDamaged();
    sink.Finish();
}

}  // namespace pw
