#include "project/CopyPages.h"

#include <utility>

#include "frame/Context.h"
#include "frame/FunctionLibrary.h"
#include "platform/Text.h"
#include "project/Attachments.h"
#include "project/InsertPage.h"
#include "project/LinkAttributes.h"
#include "project/Links.h"
#include "project/Media.h"
#include "project/References.h"
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

}  // namespace

bool CopyPage(ProjectContext& context, std::string_view key) {
    return Trap(context.frame.errorLog, kModule, "CopyPage", false, [&] {
        Page* page = GetPage(context, key);
        if (!page) return false;
        if (context.workspace.FindOpenPage(page->Key()) && !SavePageFile(context, *page))
            return false;
        FileSystem& files = context.frame.files;
        const std::string folder = ClipboardFolder(context);
        if (!DeleteFolder(files, folder) || !MakeFolder(files, folder)) return false;
        const std::string copy = BuildPath(folder, GetFileName(page->Filename));
        if (!CopyFile(files, page->Filename, copy)) return false;
        if (!CopyAttachmentsTo(context, *page, folder)) return false;
        context.copiedPage = {copy, page->Name, GetParentFolder(page->Filename), {}};
        return true;
    });
}

bool CutPage(ProjectContext& context, std::string_view key) {
    if (!CopyPage(context, key)) return false;
    const std::string file = GetPage(context, key)->Filename;
    if (!RemoveProjectItem(context, key)) return false;
    // A page that is moved is no copy of itself.
    context.copiedPage.title.clear();
    context.copiedPage.cutFrom = file;
    return true;
}

Page* PastePage(ProjectContext& context, std::string_view targetKey, std::string* reason) {
    if (context.copiedPage.empty()) return nullptr;
    InsertPageRequest request;
    request.sourceFile = context.copiedPage.file;
    request.baseFolder = context.copiedPage.folder;
    request.folder = GetContainer(context, targetKey);
    request.copyOfName = context.copiedPage.title;
    request.show = ShowInsertedPage::Yes;
    FileAdmission admission = AdmissionOfProject(context);
    admission.AllowFolder(GetParentFolder(request.sourceFile), FileAdmission::Taking::Everything);
    request.admission = &admission;
    request.rewriteLinks = [&](const PageBeingInserted& copy) {
        if (copy.sourceFolder != copy.targetFolder) RewriteLinksFromElsewhere(context, copy);
    };
    Page* page = InsertPage(context, request, reason);
    // What is pasted once more is a copy of what was moved.
    const std::string from = page ? std::exchange(context.copiedPage.cutFrom, {}) : std::string();
    if (!from.empty()) LetLinksFollow(context, from, *page, reason);
    return page;
}

}  // namespace pw
