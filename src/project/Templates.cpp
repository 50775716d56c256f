#include "project/Templates.h"

#include "frame/Context.h"
#include "frame/FunctionLibrary.h"
#include "project/Lifecycle.h"
#include "project/Media.h"
#include "project/MergeVariables.h"
#include "project/Pages.h"
#include "project/Workspace.h"
#include "project/omProj/Project.h"

namespace pw {
namespace {

constexpr const char* kModule = "ProjectFunctions.";

std::string TemplatePath(ProjectContext& context, const std::string& extension) {
    return BuildPath(context.frame.settings.PreviewFolder,
                     "tmp" + context.project.ProjectId + "." + extension);
}

void Attach(ProjectContext& context, Page& page, const std::string& path, int kind) {
    Attachment* attachment = page.Attachments().Add(path);
    if (!attachment) throw Failure(Describe(ProjectResult::CollectionFull));
    attachment->Size = GetFileSize(context.frame.files, path);
    attachment->State = AttachmentState::InUse;
    attachment->Kind = kind;
}

/** The picture of the page that became the template. Without one the template is as good. */
void AttachPicture(ProjectContext& context, Page& page) {
    FrameContext& frame = context.frame;
    const std::string picture = TemplatePath(context, "jpg");
    if (!CreatePageImage(context, picture) && !FileExists(frame.files, picture)) return;
    if (!CopyFileToFolder(frame.files, picture, frame.settings.MediaFolder)) return;
    Attach(context, page, BuildPath(frame.settings.MediaFolder, GetFileName(picture)),
           AttachmentKind::TemplateThumbnail);
}

}  // namespace

bool CreateThumbnail(ProjectContext& context) {
    return Trap(context.frame.errorLog, kModule, "CreateThumbnail", false, [&] {
        Project& project = context.project;
        if (!FileExists(context.frame.files, project.ThumbnailFilename))
            project.ThumbnailFilename =
                BuildPath(context.frame.settings.PreviewFolder, "~pw" + project.ProjectId + ".jpg");
        return CreatePageImage(context, project.ThumbnailFilename);
    });
}

bool CreatePageImage(ProjectContext& context, const std::string& path) {
    return Trap(context.frame.errorLog, kModule, "CreatePageImage", false, [&] {
        FileSystem& files = context.frame.files;
        if (!context.workspace.IsForeground()) return false;
        OpenPage* page = context.workspace.FindOpenPage(context.workspace.CurrentPageKey());
        if (!page) return false;
        page->TakeOverEdits();
        // Beside the target, so that a picture that fails half way leaves the former one alone.
        const std::string fresh = BuildPath(GetParentFolder(path), "~pw-new-picture.jpg");
        if (page->Capture(fresh) && files.Replace(fresh, path) == FileError::None) return true;
        DeleteFile(files, fresh);
        return false;
    });
}

bool SetDefaultTemplate(ProjectContext& context) {
    return Trap(context.frame.errorLog, kModule, "SetDefaultTemplate", false, [&] {
        const std::string key = context.workspace.CurrentPageKey();
        if (!context.workspace.FindOpenPage(key)) return false;
        if (!UpdateOpenPageProperties(context)) return false;
        Page* current = GetPage(context, key);
        if (!current) return false;
        Page* page = context.project.CreateDefaultTemplate();
        if (!page) return false;
        context.project.IsDirty = true;
        AttachPicture(context, *page);
        return InsertDefaultTemplate(context, current->Filename, *page);
    });
}

bool InsertDefaultTemplate(ProjectContext& context, const std::string& sourceFile, Page& page) {
    return Trap(context.frame.errorLog, kModule, "InsertDefaultTemplate", false, [&] {
        FrameContext& frame = context.frame;
        std::string bytes;
        if (frame.files.Read(sourceFile, bytes) != FileError::None) return false;
        dom::ParseError problem;
        const auto document = dom::Document::parse(bytes, &problem);
        if (!document) throw Failure(sourceFile + ": " + problem.message);

        const std::string target = frame.settings.PreviewFolder;
        const auto media = PullMedia(context, *document, GetParentFolder(sourceFile), target);
        UpdateMergeVariablesOnThisPage(context, *document);
        const std::string path = TemplatePath(context, "htm");
        const FileError error = frame.files.Write(path, document->bytes());
        if (error != FileError::None) throw Failure(path + ": " + Describe(error));

        page.Name = document->title();
        page.PageType = document->frames().empty() ? PageType::Ordinary : PageType::Frames;
        page.Filename = path;
        page.Created = frame.clock.Now();
        page.CreatedBy = CurrentAuthor(context);
        page.Modified = page.Created;
        page.ModifiedBy = page.CreatedBy;
        for (const std::string& file : media)
            Attach(context, page, file, AttachmentKind::PageMedia);
        return true;
    });
}

}  // namespace pw
