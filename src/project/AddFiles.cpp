#include "project/AddFiles.h"

#include <algorithm>
#include <map>
#include <memory>
#include <unordered_map>
#include <unordered_set>

#include "frame/Context.h"
#include "frame/FunctionLibrary.h"
#include "platform/Text.h"
#include "project/Attachments.h"
#include "project/Folders.h"
#include "project/InsertPage.h"
#include "project/LinkAttributes.h"
#include "project/Media.h"
#include "project/References.h"

namespace pw {

namespace {

constexpr std::string_view kModule = "ProjectFunctions.";
constexpr std::string_view kReservedName = "media";

/** A path as a message shows it. */
std::string Named(const std::string& path) {
    return QuoteSingle(ToNativePath(path));
}

/** A folder on its way into the project. */
struct PlannedFolder {
    std::string source;
    std::vector<std::string> pages;  ///< paths, in the order of their insertion
    std::vector<std::unique_ptr<PlannedFolder>> folders;

    bool HasPages() const {
        return !pages.empty() || std::any_of(folders.begin(), folders.end(),
                                             [](const auto& folder) { return folder->HasPages(); });
    }
};

/** A page whose place is settled. */
struct PlannedPage {
    std::string source;
    std::string folderKey;
    std::string targetFolder;
    std::string fileName;
    bool isDefault = false;
    std::string key;         ///< once it is taken in
    bool isLacking = false;  ///< something that it names was left out
};

bool IsIndexPage(std::string_view path) {
    return EqualsNoCase(GetBaseName(path), "index");
}

/** Takes the files in. First all names are settled, then the pages are written, so that a link to a
 *  page that comes later is rewritten as well as one to a page that came before. */
class Adding {
  public:
    Adding(ProjectContext& context, const AddFilesRequest& request)
        : context_(context),
          request_(request),
          files_(context.frame.files),
          puller_(context),
          admission_(files_) {}

    AddFilesResult Run() {
        PlannedFolder top;
        for (const auto& path : request_.paths)
            Collect(path, top);
        for (const auto& folder : request_.withFilesFrom)
            admission_.AllowFolder(folder, FileAdmission::Taking::Everything);
        Plan(top, GetContainer(context_, request_.folderKey));
        for (std::size_t i = 0; i < pages_.size(); ++i) {
            Insert(pages_[i]);
            if (request_.progress) request_.progress(int(i + 1), int(pages_.size()));
        }
        return std::move(result_);
    }

    std::vector<AddFilesProblem> TakeLeftOut(const std::vector<std::string>& files) {
        for (const auto& file : files)
            admission_.AllowFile(file);
        puller_.StartAgain();
        result_ = {};
        for (PlannedPage& page : pages_)
            if (page.isLacking) Insert(page);
        return std::move(result_.problems);
    }

  private:
    void Report(const std::string& file, const std::string& reason) {
        result_.problems.push_back({file, reason});
    }

    // What is there -------------------------------------------------------------------------------

    void Collect(const std::string& path, PlannedFolder& into) {
        const std::string real = files_.Canonical(path);
        if (real.empty()) {
            Report(path, Named(path) + " does not exist.");
        } else if (FolderExists(files_, real)) {
            admission_.AllowFolder(real, FileAdmission::Taking::Everything);
            CollectFolder(real, into);
        } else if (!IsPageFilename(real)) {
            Report(path, Named(path) +
                             " is no HTML page. Pictures, style sheets and the like come "
                             "along with the pages that use them.");
        } else {
            admission_.AllowFile(real);
            into.pages.push_back(real);
        }
    }

    void CollectFolder(const std::string& path, PlannedFolder& into) {
        if (into.source.empty()) into.source = path;
        std::vector<FolderEntry> entries;
        const FileError error = files_.List(path, entries);
        if (error != FileError::None) {
            Report(path, "Folder " + Named(path) + " can not be read: " + Describe(error) + ".");
            return;
        }
        std::sort(entries.begin(), entries.end(),
                  [](const auto& a, const auto& b) { return a.name < b.name; });
        for (const auto& entry : entries) {
            if (entry.name.starts_with('.')) continue;
            const std::string child = BuildPath(path, entry.name);
            const bool isFolder = entry.isFolder || (entry.isLink && FolderExists(files_, child));
            if (isFolder && entry.isLink) {
                Report(child, Named(child) + " is a link to a folder and was not followed.");
            } else if (isFolder) {
                auto folder = std::make_unique<PlannedFolder>();
                folder->source = child;
                CollectFolder(child, *folder);
                if (folder->HasPages()) into.folders.push_back(std::move(folder));
            } else if (IsPageFilename(entry.name)) {
                CollectPage(child, into);
            }
        }
    }

    void CollectPage(const std::string& path, PlannedFolder& into) {
        switch (admission_.Judge(path, FileUse::Linked)) {
            case Verdict::Admitted:
                into.pages.push_back(path);
                break;
            case Verdict::Missing:
                Report(path, "'" + path + "' is a link to a file that is not there.");
                break;
            case Verdict::NoFile:
                Report(path, "'" + path + "' is a device or a pipe and was left out.");
                break;
            default:
                Report(path, "'" + path +
                                 "' is a link to a file outside of the folder and was not "
                                 "followed. If it is meant, please add that file by itself.");
        }
    }

    // Where it goes -------------------------------------------------------------------------------

    void Plan(PlannedFolder& folder, const Container& container) {
        if (!container) return;
        const std::string target =
            BuildPath(context_.frame.settings.PreviewFolder, container.RelativePath());
        PlanPages(
            folder, container,
            container.RelativePath().empty() ? context_.frame.settings.PreviewFolder : target);
        for (auto& below : folder.folders)
            if (Folder* made = MakeProjectFolder(*below, container)) Plan(*below, Container(*made));
    }

    void PlanPages(PlannedFolder& folder, const Container& container, const std::string& target) {
        // The index first: it is to be the default page, and to have the name of one.
        std::stable_partition(folder.pages.begin(), folder.pages.end(), IsIndexPage);
        std::unordered_set<std::string> taken;
        std::vector<FolderEntry> entries;
        if (files_.List(target, entries) != FileError::None) entries.clear();
        for (const auto& entry : entries)
            taken.insert(FoldCase(entry.name));
        bool hasDefault = GetDefaultPage(context_, container.Key()) != nullptr;
        for (const auto& source : folder.pages) {
            // Given twice, a page is taken once.
            if (targets_.count(source)) continue;
            PlannedPage page{source, container.Key(), target};
            // The first page of a site is its default page; of a folder only an index is.
            page.isDefault = !hasDefault && (container.site || IsIndexPage(source));
            hasDefault = hasDefault || page.isDefault;
            page.fileName = ChoosePageName(
                context_, source, page.isDefault,
                [&](const std::string& name) { return taken.count(FoldCase(name)); });
            taken.insert(FoldCase(page.fileName));
            targets_.emplace(source, BuildPath(target, page.fileName));
            if (IsIndexPage(source)) indexes_.try_emplace(GetParentFolder(source), source);
            pages_.push_back(std::move(page));
        }
    }

    Folder* MakeProjectFolder(const PlannedFolder& planned, const Container& parent) {
        std::string name = GetFileName(planned.source);
        if (EqualsNoCase(name, kReservedName)) name += "_pages";
        std::string existing;
        if (!IsOKToAddFolder(context_, name, parent.Key(), &existing))
            if (Folder* folder = GetFolder(context_, existing)) return folder;
        std::string safe;
        for (const char c : MakeValidUtf8(name))
            safe += IsFilenameKey(static_cast<unsigned char>(c)) &&
                            static_cast<unsigned char>(c) >= 0x20
                        ? c
                        : '_';
        std::string reason;
        Folder* folder = AddFolder(context_, parent, {safe, "", ContainerKind::Plain}, &reason);
        if (folder) {
            ++result_.folders;
        } else {
            Report(planned.source, reason);
        }
        return folder;
    }

    // Taking it in --------------------------------------------------------------------------------

    /** A page that was taken by itself brings what its own folder holds. */
    FileAdmission AdmissionOf(const PlannedPage& planned) const {
        FileAdmission admission = admission_;
        const std::string folder = GetParentFolder(planned.source);
        if (!admission.AdmitsFolder(folder))
            admission.AllowFolder(folder, FileAdmission::Taking::WhatTagsAreFor);
        return admission;
    }

    void Insert(PlannedPage& planned) {
        FileAdmission admission = AdmissionOf(planned);
        InsertPageRequest request;
        request.sourceFile = planned.source;
        request.folder = GetContainer(context_, planned.folderKey);
        request.fileName = planned.fileName;
        request.media = &puller_;
        request.admission = &admission;
        request.rewriteLinks = [this](const PageBeingInserted& page) { RewriteLinks(page); };
        request.again = planned.key.empty() ? nullptr : GetPage(context_, planned.key);
        std::string reason;
        Page* page = InsertPage(context_, request, &reason);
        planned.isLacking = !admission.leftOut.empty();
        for (auto& file : admission.leftOut)
            result_.leftOut.push_back(std::move(file));
        if (!page) {
            Report(planned.source, reason);
            return;
        }
        if (!planned.key.empty()) return;
        planned.key = page->Key();
        if (planned.isDefault) SetDefaultPage(context_, *page);
        result_.pageKeys.push_back(page->Key());
    }

    void RewriteLinks(const PageBeingInserted& page) {
        RewriteLinkAttributes(
            page.document, [&](const std::string& value) { return NewLink(page, value); },
            BringsFile);
    }

    std::optional<std::string> NewLink(const PageBeingInserted& page, const std::string& value) {
        if (IsMadeByServer(value)) return std::nullopt;
        std::string text = Trim(value);
        std::vector<std::string> folders{page.sourceFolder};
        if (text.starts_with('/')) {
            folders = page.admission.Roots(page.sourceFolder);
            text.erase(0, std::min(text.find_first_not_of('/'), text.size()));
        }
        for (const auto& folder : folders)
            for (const auto& candidate : ReferenceCandidates(folder, text))
                if (const std::string* target = TargetOf(candidate.path))
                    return RelativeLink(page.targetFolder, *target) + candidate.suffix;
        // A page that is not added now is no file that comes along.
        if (IsPageFilename(SplitSuffix(text).path)) return std::nullopt;
        const auto file = page.admission.Find({page.sourceFolder}, value, FileUse::Linked);
        return file ? PullAlong(page, *file) : std::nullopt;
    }

    /** Where a file or folder that a link leads to lies from now on; none when it stays outside. */
    const std::string* TargetOf(const std::string& path) const {
        const auto page = targets_.find(path);
        if (page != targets_.end()) return &page->second;
        const auto index = indexes_.find(path);
        return index == indexes_.end() ? nullptr : &targets_.at(index->second);
    }

    /** A document or an archive that a page offers: it lies with the media. */
    std::optional<std::string> PullAlong(const PageBeingInserted& page, const AdmittedFile& file) {
        const auto pulled = puller_.PullFile(file, page.targetFolder, page.admission);
        if (pulled.empty()) return std::nullopt;
        for (const auto& path : pulled)
            AddSystemAttachment(context_, path, page.page);
        return RelativeLink(page.targetFolder, pulled.front()) + file.suffix;
    }

    ProjectContext& context_;
    const AddFilesRequest request_;
    FileSystem& files_;
    MediaPuller puller_;
    FileAdmission admission_;  ///< what all pages may bring
    AddFilesResult result_;
    std::vector<PlannedPage> pages_;
    std::unordered_map<std::string, std::string> targets_;  ///< page to be taken in: its new path
    std::unordered_map<std::string, std::string> indexes_;  ///< folder: its index page
};

}  // namespace

AddFilesResult AddFiles(ProjectContext& context, const AddFilesRequest& request) {
    AddFilesResult failure;
    failure.problems = {{"", "Not all files could be taken in. The error log tells more."}};
    ErrorLog& log = context.frame.errorLog;
    return Trap(log, kModule, "AddFiles", failure, [&] {
        const auto adding = std::make_shared<Adding>(context, request);
        AddFilesResult result = adding->Run();
        result.takeLeftOut = [adding, &log, problems = failure.problems](const auto& files) {
            return Trap(log, kModule, "TakeLeftOut", problems,
                        [&] { return adding->TakeLeftOut(files); });
        };
        return result;
    });
}

}  // namespace pw
