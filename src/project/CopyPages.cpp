#include "project/CopyPages.h"

#include <algorithm>

#include "frame/Context.h"
#include "frame/FunctionLibrary.h"
#include "platform/Text.h"
#include "project/Attachments.h"
#include "project/InsertPage.h"
#include "project/LinkAttributes.h"
#include "project/Links.h"
#include "project/Media.h"
#include "project/PageNames.h"
#include "project/Paths.h"
#include "project/References.h"
#include "project/RemovedFiles.h"
#include "project/Scratch.h"
#include "project/Workspace.h"

namespace pw {

namespace {

constexpr std::string_view kModule = "ProjectFunctions.";

/** Lies in the scratch area, outside of what is saved and published. */
std::string ClipboardFolder(const ProjectContext& context) {
    return BuildPath(context.frame.settings.WorkingFolder, "clip");
}

/** The links of the original, as they must be written in another folder. */
void RewriteLinksFromElsewhere(const ProjectContext& context, const PageBeingInserted& copy) {
    const std::string& root = context.frame.settings.PreviewFolder;
    const PlaceInSite before{root, copy.sourceFolder};
    const PlaceInSite after{root, copy.targetFolder};
    RewriteLinkAttributes(copy.document, [&](const std::string& value) {
        // Nothing but the page has moved.
        return FollowMove({copy.sourceFolder, copy.sourceFolder}, before, after, value);
    });
}

/** Another page can have taken the place meanwhile. */
bool IsPageFile(const ProjectContext& context, const std::string& path) {
    for (const PageIndexEntry& entry : context.project.PageIndex())
        if (EqualsNoCase(entry.Item->Filename, path)) return true;
    return false;
}

/** What led to the page where it was cut out leads to where it lies now. */
void LetLinksFollow(ProjectContext& context, const std::string& from, const Page& page,
                    std::string* reason) {
    if (from == page.Filename || IsPageFile(context, from)) return;
    context.moves.push_back({from, page.Filename});
    const LinkUpdate links = UpdateFollowing(context, context.moves.back(), Follow::Links);
    if (reason) *reason = links.ProblemText("page");
}

/** The name of the cut page's file; "" when the folder has such a file. */
std::string FreeFormerName(const ProjectContext& context, const Container& target) {
    const std::string name = GetFileName(context.copiedPage.file);
    const std::string folder = GetPageFolder(context, target ? target.Key() : "");
    return NameInFolder(context.frame.files, folder, name).empty() ? name : "";
}

/** The files of a cut page stand where they lay for as long as it is pasted: its links lead there,
 *  and a page that is pasted into the same folder goes on with them. What it does not take is moved
 *  aside again. */
class FormerFiles {
  public:
    explicit FormerFiles(ProjectContext& context) : context_(context) {
        const auto& copied = context.copiedPage;
        if (!copied.isCut) return;
        FileSystem& files = context.frame.files;
        const std::string media = BuildPath(GetParentFolder(copied.file), "media");
        for (const auto& file : copied.files) {
            const std::string copy = BuildPath(media, GetFileName(file.path));
            if (FileExists(files, file.path) || !FileExists(files, copy) ||
                !IsInRunFolder(context.frame, copy))
                continue;
            if (MakeFolder(files, GetParentFolder(file.path)) && CopyFile(files, copy, file.path))
                restored_.push_back(file.path);
        }
    }
    ~FormerFiles() {
        const auto listed = ListedFiles(context_);
        std::erase_if(restored_, [&](const std::string& file) { return listed.contains(file); });
        static_cast<void>(MoveAside(context_, restored_));
    }
    FormerFiles(const FormerFiles&) = delete;
    FormerFiles& operator=(const FormerFiles&) = delete;

  private:
    ProjectContext& context_;
    std::vector<std::string> restored_;
};

/** What only the list of the former page's attachments tells: links to documents do not bring them
 *  along, and which ones the user had added can't be seen in the page. */
void TakeOverAttachments(ProjectContext& context, Page& page) {
    const auto uses = context.uses.OfPage(context, page);
    for (const auto& file : context.copiedPage.files) {
        const std::string name = GetFileName(file.path);
        Attachment* taken = nullptr;
        for (Attachment& present : page.Attachments())
            if (GetFileName(present.Filename()) == name) taken = &present;
        const bool isUsedThere = std::binary_search(uses.begin(), uses.end(), file.path);
        if (isUsedThere || (!taken && file.origin == AttachmentOrigin::Chosen))
            taken = AddSystemAttachment(context, file.path, page, file.origin);
        if (!taken) continue;
        taken->Origin = file.origin;
        taken->Description = file.description;
    }
}

void TakeOverProperties(ProjectContext& context, Page& page) {
    const auto& copied = context.copiedPage;
    page.Description = copied.description;
    page.Keywords = copied.keywords;
    TakeOverAttachments(context, page);
    if (!copied.isCut) return;
    // The first page of a site becomes its default page by itself.
    if (!copied.isDefault) {
        page.IsDefault = false;
    } else if (!GetDefaultPage(context, page.ParentFolderKey())) {
        SetDefaultPage(context, page);
    }
}

}  // namespace

bool CopyPage(ProjectContext& context, std::string_view key, std::string* reason) {
    return Trap(context.frame.errorLog, kModule, "CopyPage", false, [&] {
        Page* page = GetPage(context, key);
        if (!page) return false;
        if (OpenPage* open = context.workspace.FindOpenPage(page->Key())) {
            if (!SavePageFile(context, *page, reason)) return false;
            SaveAttachments(context, open->Document(), open->BaseURL(), *page);
        }
        FileSystem& files = context.frame.files;
        const std::string folder = ClipboardFolder(context);
        if (!DeleteFolder(files, folder) || !MakeFolder(files, folder)) return false;
        const std::string copy = BuildPath(folder, GetFileName(page->Filename));
        if (!CopyFile(files, page->Filename, copy)) return false;
        if (!CopyAttachmentsTo(context, *page, folder)) return false;
        auto& copied = context.copiedPage;
        copied = {};
        copied.file = copy;
        copied.title = page->Name;
        copied.folder = GetParentFolder(page->Filename);
        copied.isDefault = page->IsDefault;
        copied.description = page->Description;
        copied.keywords = page->Keywords;
        for (const Attachment& file : page->Attachments())
            if (file.IsWanted())
                copied.files.push_back({file.Filename(), file.Origin, file.Description});
        return true;
    });
}

bool CutPage(ProjectContext& context, std::string_view key, std::string* reason) {
    if (!CopyPage(context, key, reason)) return false;
    if (!RemoveProjectItem(context, key, nullptr, reason)) return false;
    context.copiedPage.isCut = true;
    return true;
}

Page* PastePage(ProjectContext& context, std::string_view targetKey, std::string* reason) {
    if (context.copiedPage.empty()) return nullptr;
    InsertPageRequest request;
    request.sourceFile = context.copiedPage.file;
    request.baseFolder = context.copiedPage.folder;
    request.folder = GetContainer(context, targetKey);
    // A page that is moved is no copy of itself, and keeps the name that links know.
    if (context.copiedPage.isCut) {
        request.fileName = FreeFormerName(context, request.folder);
    } else {
        request.copyOfName = context.copiedPage.title;
    }
    request.show = ShowInsertedPage::Yes;
    FileAdmission admission = AdmissionOfProject(context);
    admission.AllowFolder(GetParentFolder(request.sourceFile), FileAdmission::Taking::Everything);
    request.admission = &admission;
    request.rewriteLinks = [&](const PageBeingInserted& copy) {
        if (copy.sourceFolder != copy.targetFolder) RewriteLinksFromElsewhere(context, copy);
    };
    auto& copied = context.copiedPage;
    const FormerFiles former(context);
    Page* page = InsertPage(context, request, reason);
    if (!page) return nullptr;
    TakeOverProperties(context, *page);
    // What is pasted once more is a copy of what was moved.
    if (copied.isCut && !copied.isPasted)
        LetLinksFollow(context, BuildPath(copied.folder, GetFileName(copied.file)), *page, reason);
    copied.isPasted = true;
    return page;
}

}  // namespace pw
