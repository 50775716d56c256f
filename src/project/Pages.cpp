#include "project/Pages.h"

#include <algorithm>
#include <set>
#include <utility>

#include "frame/Context.h"
#include "frame/FunctionLibrary.h"
#include "platform/Text.h"
#include "platform/dom/TextRange.h"
#include "project/EditPage.h"
#include "project/FramesetMask.h"
#include "project/Journal.h"
#include "project/PageInsertions.h"
#include "project/Paths.h"
#include "project/References.h"
#include "project/RemovedFiles.h"
#include "project/Workspace.h"

namespace pw {

namespace {

constexpr std::string_view kModule = "ProjectFunctions.";

char LetterOfBlock(std::string_view block) {
    return block.empty() ? '\0' : block.front();
}

/** The letter of the last block of a key. */
char KindOfKey(std::string_view key) {
    return key.size() >= kBlockWidth ? key[key.size() - kBlockWidth] : '\0';
}

std::string_view ParentKey(std::string_view key) {
    return key.substr(0, key.size() < kBlockWidth ? 0 : key.size() - kBlockWidth);
}

/** The item of a block below another item; none when it has no such item. */
ProjectItem Descend(const ProjectContext& context, const ProjectItem& parent, bool isTop,
                    std::string_view block) {
    ProjectItem child;
    switch (LetterOfBlock(block)) {
        case 'W':
            if (isTop) child.site = context.project.WebSites().Item(block);
            break;
        case 'F':
            if (parent.folder) child.folder = parent.folder->Sections().Item(block);
            if (parent.site) child.folder = parent.site->Sections().Item(block);
            break;
        case 'P':
            if (parent.folder) child.page = parent.folder->Pages().Item(block);
            if (parent.site) child.page = parent.site->Pages().Item(block);
            break;
        case 'A':
            if (parent.page) child.attachment = parent.page->Attachments().Item(block);
            if (isTop) child.attachment = context.project.Attachments().Item(block);
            break;
        default:
            break;
    }
    return child;
}

/** False when the window stays. */
bool CloseWindowOf(ProjectContext& context, const std::string& key) {
    OpenPage* open = context.workspace.FindOpenPage(key);
    return !open || open->CloseWindow();
}

/** False when one of them stays; those before it are closed. */
bool CloseWindowsBelow(ProjectContext& context, std::string_view key) {
    // Closing a window changes the list of them.
    std::vector<std::string> keys;
    for (OpenPage* open : context.workspace.OpenPages())
        if (open->PageKey().starts_with(key)) keys.push_back(open->PageKey());
    return std::all_of(keys.begin(), keys.end(),
                       [&](const std::string& open) { return CloseWindowOf(context, open); });
}

/** The page below a key that still has a window; none when all are closed. */
const Page* OpenPageBelow(const ProjectContext& context, std::string_view key) {
    for (OpenPage* open : context.workspace.OpenPages())
        if (open->PageKey().starts_with(key)) return GetPage(context, open->PageKey());
    return nullptr;
}

/** Every file in a folder and below it. */
void ListTree(const FileSystem& files, const std::string& folder, std::vector<std::string>& paths) {
    std::vector<FolderEntry> entries;
    if (files.List(folder, entries) != FileError::None) return;
    for (const FolderEntry& entry : entries) {
        const std::string path = BuildPath(folder, entry.name);
        if (entry.isFolder && !entry.isLink) {
            ListTree(files, path, paths);
        } else {
            paths.push_back(path);
        }
    }
}

/** Takes the files of an item out of the way, together with the item. */
class Removal {
  public:
    Removal(ProjectContext& context, const std::string& key) : context_(context), key_(key) {}

    Outcome<std::string> MoveFiles(const ProjectItem& item) {
        const auto listed = ListedFiles(context_, key_);
        std::vector<std::string> files;
        for (const PageIndexEntry& entry : context_.project.PageIndex()) {
            if (!entry.Key().starts_with(key_)) continue;
            files.push_back(entry.Item->Filename);
            for (const Attachment& attachment : entry.Item->Attachments())
                files.push_back(attachment.Filename());
        }
        if (item.folder) AddFolder(*item.folder, files);
        if (item.site)
            for (const Folder& folder : item.site->Sections())
                AddFolder(folder, files);
        std::erase_if(files, [&](const std::string& file) { return listed.contains(file); });
        HandOver(files);
        // A folder that is wholly of the item goes as one.
        for (const std::string& folder : folders_)
            if (IsFree(folder, listed)) files.insert(files.begin(), folder);
        return MoveAside(context_, files);
    }

  private:
    void AddFolder(const Folder& folder, std::vector<std::string>& files) {
        if (folder.WorkingFolder.empty()) return;
        folders_.push_back(BuildPath(context_.frame.settings.PreviewFolder, folder.WorkingFolder));
        ListTree(context_.frame.files, folders_.back(), files);
    }

    /** What a page that stays refers to stays with it, though only the removed one listed it. */
    void HandOver(std::vector<std::string>& files) {
        const auto isMedia = [](const std::string& file) { return !IsPageFilename(file); };
        if (std::none_of(files.begin(), files.end(), isMedia)) return;
        const auto used = FilesInUse(context_, key_);
        for (const std::string& file : files) {
            if (!used.contains(file)) continue;
            kept_.insert(file);
            if (Page* user = UserOf(file)) {
                Attachment* taken = user->Attachments().Add(file);
                if (!taken) continue;
                taken->Size = std::int64_t(context_.frame.files.Stat(file).size);
                taken->State = AttachmentState::InUse;
                taken->Origin = AttachmentOrigin::Placed;
            }
        }
        std::erase_if(files, [&](const std::string& file) { return kept_.contains(file); });
    }
    /** Any page that names it, or the first one when only style sheets do. */
    Page* UserOf(const std::string& file) {
        Page* first = nullptr;
        for (const PageIndexEntry& entry : context_.project.PageIndex()) {
            if (entry.Key().starts_with(key_)) continue;
            if (!first) first = entry.Item;
            const auto& uses = context_.uses.OfPage(context_, *entry.Item);
            if (std::binary_search(uses.begin(), uses.end(), file)) return entry.Item;
        }
        return first;
    }

    bool IsFree(const std::string& folder, const std::unordered_set<std::string>& listed) const {
        const auto isInside = [&](const std::string& file) { return IsInFolder(file, folder); };
        return std::none_of(listed.begin(), listed.end(), isInside) &&
               std::none_of(kept_.begin(), kept_.end(), isInside);
    }

    ProjectContext& context_;
    const std::string& key_;
    std::vector<std::string> folders_;
    std::unordered_set<std::string> kept_;
};

}  // namespace

ProjectItem GetProjectItem(const ProjectContext& context, std::string_view key) {
    ProjectItem item;
    for (bool isTop = true; !key.empty(); isTop = false) {
        item = Descend(context, item, isTop, key.substr(0, kBlockWidth));
        if (!item) break;
        key.remove_prefix(std::min<std::size_t>(kBlockWidth, key.size()));
    }
    return item;
}

Folder* GetFolder(const ProjectContext& context, std::string_view key) {
    if (KindOfKey(key) == 'A') key = ParentKey(key);
    if (KindOfKey(key) == 'P') key = ParentKey(key);
    return key.size() > kBlockWidth ? GetProjectItem(context, key).folder : nullptr;
}

WebSite* GetWebSite(const ProjectContext& context, std::string_view key) {
    return GetProjectItem(context, key.substr(0, kBlockWidth)).site;
}

Page* GetPage(const ProjectContext& context, std::string_view key) {
    return GetProjectItem(context, key).page;
}

Page* GetDefaultPage(const ProjectContext& context, std::string_view key) {
    const Folder* folder = GetFolder(context, key);
    const WebSite* site = GetWebSite(context, key);
    if (!folder && !site) return nullptr;
    for (Page& page : folder ? folder->Pages() : site->Pages())
        if (page.IsDefault) return &page;
    return nullptr;
}

void SetDefaultPage(const ProjectContext& context, Page& page) {
    const ProjectItem parent = GetProjectItem(context, page.ParentFolderKey());
    if (!parent.folder && !parent.site) return;
    for (Page& sibling : parent.folder ? parent.folder->Pages() : parent.site->Pages())
        sibling.IsDefault = false;
    page.IsDefault = true;
}

Container GetContainer(const ProjectContext& context, std::string_view key) {
    if (Folder* folder = GetFolder(context, key)) return Container(*folder);
    WebSite* site = GetWebSite(context, key);
    if (!site) site = context.project.WebSites().Item(1);
    return site ? Container(*site) : Container();
}

std::unordered_set<std::string> ListedFiles(const ProjectContext& context,
                                            std::string_view exceptBelow) {
    std::unordered_set<std::string> listed;
    const auto addAll = [&](const Attachments& attachments) {
        for (const Attachment& attachment : attachments)
            listed.insert(attachment.Filename());
    };
    const auto addPage = [&](const Page& page) {
        listed.insert(page.Filename);
        addAll(page.Attachments());
    };
    Project& project = context.project;
    for (const PageIndexEntry& entry : project.PageIndex())
        if (exceptBelow.empty() || !entry.Key().starts_with(exceptBelow)) addPage(*entry.Item);
    if (const Page* page = project.DefaultTemplate()) addPage(*page);
    addAll(project.Attachments());
    listed.insert(project.ThumbnailFilename);
    listed.erase("");
    return listed;
}

bool RemoveProjectItem(ProjectContext& context, std::string_view keyGiven, RemovedItem* removed,
                       std::string* reason) {
    // The key may be a member of what goes.
    const std::string key(keyGiven);
    return Trap(context.frame.errorLog, kModule, "RemoveProjectItem", false, [&] {
        if (ProjectItem item = GetProjectItem(context, key); !item || item.attachment) return false;
        // 1. The windows, any of which may refuse: what it holds would be lost with its page.
        if (!CloseWindowsBelow(context, key)) {
            const Page* page = OpenPageBelow(context, key);
            if (reason && page)
                *reason = "The page '" + page->Name +
                          "' is still open. Please close it first and try again.";
            return false;
        }
        // 2. The files.
        const ProjectItem item = GetProjectItem(context, key);
        const ProjectItem parent = GetProjectItem(context, ParentKey(key));
        if (!item) return false;
        const auto aside = Removal(context, key).MoveFiles(item);
        if (!aside) {
            if (reason) *reason = aside.problem();
            throw Failure(aside.problem());
        }
        // 3. The tree.
        RemovedItem out;
        out.aside = *aside;
        if (item.page) {
            out.page = (parent.folder ? parent.folder->Pages() : parent.site->Pages()).Remove(key);
        } else if (item.folder) {
            auto& siblings = parent.folder ? parent.folder->Sections() : parent.site->Sections();
            out.folder = siblings.Remove(key);
        } else {
            out.site = context.project.WebSites().Remove(key);
        }
        if (removed) *removed = std::move(out);
        context.project.IsDirty = true;
        JournalFilesMoved(context);
        return true;
    });
}

std::string CurrentAuthor(const ProjectContext& context) {
    return GetComputerName(context.frame.system) + "\\" + GetUserName(context.frame.system);
}

void ComputePageStatistics(ProjectContext& context, dom::Document* document, Page* page) {
    if (!document || !page) return;
    Trap(context.frame.errorLog, kModule, "ComputePageStatistics", [&] {
        const std::string text = dom::TextRange(*document).text();
        page->Modified = context.frame.clock.Now();
        page->ModifiedBy = CurrentAuthor(context);
        page->TotalSize = DocumentSize(context, *document, GetParentFolder(page->Filename));
        page->TextLength = int(Utf16Length(text));
        page->WordCount = CountWords(text);
        page->Embeds = int(document->embeds().size());
        page->FormsCount = int(document->forms().size());
        page->Images = int(document->images().size());
        page->Applets = int(document->applets().size());
        page->Plugins = int(document->plugins().size());
        page->Scripts = int(document->scripts().size());
        page->ReadOnlyFlag = false;
    });
}

std::int64_t DocumentSize(const ProjectContext& context, const dom::Document& document,
                          const std::string& folder) {
    const FileSystem& files = context.frame.files;
    std::int64_t size = std::int64_t(document.html().size());
    if (!document.frames().empty()) return size;
    const auto add = [&](const std::string& reference) {
        const std::string path = ResolvePath(context, reference, folder);
        if (!path.empty()) size += GetFileSize(files, path);
    };
    if (const dom::Node* body = document.body()) add(body->getAttribute("background"));
    std::set<std::string> seen;
    for (const dom::Node* image : document.images()) {
        const std::string source = image->getAttribute("src");
        if (seen.insert(FoldCase(source)).second) add(source);
    }
    return size;
}

std::int64_t CalculatePageSize(ProjectContext& context, std::string_view key) {
    return Trap(context.frame.errorLog, kModule, "CalculatePageSize", std::int64_t{0}, [&] {
        OpenPage* open = key.empty() ? nullptr : context.workspace.FindOpenPage(std::string(key));
        if (!open) return std::int64_t{0};
        open->TakeOverEdits();
        return DocumentSize(context, open->Document(), open->BaseURL());
    });
}

std::string GetPageText(ProjectContext& context, std::string_view key) {
    return Trap(context.frame.errorLog, "UIFunctions.", "GetPageText", std::string(), [&] {
        OpenPage* open = key.empty() ? nullptr : context.workspace.FindOpenPage(std::string(key));
        return open ? dom::TextRange(open->Document()).text() : std::string();
    });
}

bool SavePageFile(ProjectContext& context, Page& page, std::string* reason) {
    return Trap(context.frame.errorLog, kModule, "SavePageFile", false, [&] {
        const auto fail = [&](const std::string& why) {
            if (reason) *reason = "Page '" + page.Name + "' can not be saved: " + why + ".";
            return false;
        };
        OpenPage* open = context.workspace.FindOpenPage(page.Key());
        if (!open) return fail("it is not open");
        FileSystem& files = context.frame.files;
        if (page.Filename.empty()) {
            const std::string& folder = context.frame.settings.PreviewFolder;
            const int number = GetUniqueFilename(files, "page_", "htm", folder);
            page.Filename = BuildPath(folder, "page_" + std::to_string(number) + ".htm");
        }
        if (!open->TakeOverEdits()) {
            if (reason) *reason = open->SourceProblem();
            return false;
        }
        const dom::Document& document = open->Document();
        const std::string bytes =
            page.PageType == PageType::Frames
                ? dom::encode(UncommentFrameset(document.html()), document.encoding())
                : document.bytes();
        const FileError error = files.Write(page.Filename, bytes);
        return error == FileError::None ? true : fail(Describe(error));
    });
}

int GetUniqueFilename(const FileSystem& files, std::string_view prefix, std::string_view extension,
                      std::string_view folder) {
    // A folder that cannot be listed holds no file that could be in the way.
    std::vector<FolderEntry> entries;
    if (files.List(folder, entries) != FileError::None) entries.clear();
    std::set<std::string> names;
    for (const auto& entry : entries)
        names.insert(FoldCase(entry.name));
    int number = 1;
    while (names.count(
        FoldCase(std::string(prefix) + std::to_string(number) + "." + std::string(extension))))
        ++number;
    return number;
}

Outcome<void> InsertHTMLAtBottom(ProjectContext& context, std::string_view key,
                                 std::string_view html) {
    Page* page = GetPage(context, key);
    if (!page) return Problem{"The page for the new content does not exist."};
    const auto edited = EditPage(context, *page, PageStep::OfTheUser, [&](dom::Document& document) {
        if (!AppendToBody(document, html)) throw Failure("the new content has no place at its end");
    });
    if (!edited) return Problem{edited.problem()};
    if (!*edited) return Problem{"The file of page " + QuoteSingle(page->Name) + " is missing."};
    std::string reason;
    if (context.workspace.FindOpenPage(page->Key()) && !SavePageFile(context, *page, &reason))
        return Problem{reason};
    return {};
}

}  // namespace pw
