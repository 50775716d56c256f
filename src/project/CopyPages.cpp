#include "project/CopyPages.h"

#include "frame/Context.h"
#include "frame/FunctionLibrary.h"
#include "project/Attachments.h"
#include "project/InsertPage.h"
#include "project/LinkAttributes.h"
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

/** A link of the original, as the copy in another folder needs it. */
std::optional<std::string> LinkFromElsewhere(const ProjectContext& context,
                                             const PageBeingInserted& copy,
                                             const std::string& value) {
    const auto found = copy.admission.Find({copy.sourceFolder}, value, FileUse::Linked);
    if (!found || !IsInFolder(found->named, context.frame.settings.PreviewFolder))
        return std::nullopt;
    return RelativeLink(copy.targetFolder, found->named) + found->suffix;
}

}  // namespace

bool CopyPage(ProjectContext& context, std::string_view key, std::string* reason) {
    return Trap(context.frame.errorLog, kModule, "CopyPage", false, [&] {
        Page* page = GetPage(context, key);
        if (!page) return false;
        if (context.workspace.FindOpenPage(page->Key()) && !SavePageFile(context, *page, reason))
            return false;
        FileSystem& files = context.frame.files;
        const std::string folder = ClipboardFolder(context);
        if (!DeleteFolder(files, folder) || !MakeFolder(files, folder)) return false;
        const std::string copy = BuildPath(folder, GetFileName(page->Filename));
        if (!CopyFile(files, page->Filename, copy)) return false;
        if (!CopyAttachmentsTo(context, *page, folder)) return false;
        context.copiedPage = {copy, page->Name, GetParentFolder(page->Filename)};
        return true;
    });
}

bool CutPage(ProjectContext& context, std::string_view key, std::string* reason) {
    if (!CopyPage(context, key, reason)) return false;
    // A page that is moved is no copy of itself.
    context.copiedPage.title.clear();
    return RemoveProjectItem(context, key);
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
        if (copy.sourceFolder == copy.targetFolder) return;
        RewriteLinkAttributes(copy.document, [&](const std::string& value) {
            return LinkFromElsewhere(context, copy, value);
        });
    };
    return InsertPage(context, request, reason);
}

}  // namespace pw
