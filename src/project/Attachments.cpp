#include "project/Attachments.h"

#include "frame/Context.h"
#include "frame/FunctionLibrary.h"
#include "platform/Text.h"
#include "project/Media.h"
#include "project/Pages.h"
#include "project/Paths.h"
#include "project/RemovedFiles.h"

namespace pw {

namespace {

constexpr std::string_view kModule = "ProjectFunctions.";

/** In letters as on disk: who writes a project file takes only what lies below its folder. */
bool IsInProject(const ProjectContext& context, std::string_view path) {
    const std::string& root = context.frame.settings.PreviewFolder;
    return path.size() > root.size() && path.starts_with(root) && path[root.size()] == '\\';
}

/** Java classes are named in ways that no scan finds. */
bool IsClassFile(const Attachment& attachment) {
    return EqualsNoCase(GetExtension(attachment.Filename()), "class");
}

Attachment* AddInUse(ProjectContext& context, const std::string& path, Page& page, int origin) {
    const bool isNew = !page.Attachments().Find(path);
    Attachment* attachment = page.Attachments().Add(path);
    if (!attachment) return nullptr;
    if (isNew || origin == AttachmentOrigin::Chosen) attachment->Origin = origin;
    attachment->Size = context.frame.files.Stat(path).size;
    attachment->Kind = AttachmentKind::PageMedia;
    attachment->State = AttachmentState::InUse;
    return attachment;
}

void DropStale(Page& page) {
    Attachments& attachments = page.Attachments();
    for (int i = attachments.Count(); i >= 1; --i) {
        Attachment& attachment = *attachments.Item(i);
        if (attachment.Origin == AttachmentOrigin::Placed) {
            // A redo may ask for it. Whether it is in use is seen when the project is saved.
        } else if (attachment.State == AttachmentState::Stale && !IsClassFile(attachment)) {
            attachments.Remove(i);
        } else {
            attachment.State = AttachmentState::InUse;
        }
    }
}

}  // namespace

Attachment* AddSystemAttachment(ProjectContext& context, std::string_view path, Page& page,
                                int origin) {
    const auto body = [&]() -> Attachment* {
        if (!FileExists(context.frame.files, path)) return nullptr;
        if (IsInProject(context, path))
            return AdmissionOfProject(context).Admits(path, FileUse::Linked)
                       ? AddInUse(context, std::string(path), page, origin)
                       : nullptr;
        const auto pulled = MediaPuller(context).PullChosenFile(std::string(path),
                                                                GetPageFolder(context, page.Key()));
        for (auto file = pulled.rbegin(); file != pulled.rend(); ++file) {
            Attachment* attachment = AddInUse(context, *file, page, origin);
            if (file + 1 == pulled.rend()) return attachment;
        }
        return nullptr;
    };
    return Trap(context.frame.errorLog, kModule, "AddSystemAttachment",
                static_cast<Attachment*>(nullptr), body);
}

void SaveAttachments(ProjectContext& context, const dom::Document& document,
                     std::string_view baseURL, Page& page) {
    Trap(context.frame.errorLog, kModule, "SaveAttachments", [&] {
        DropStale(page);
        if (!document.frames().empty()) return;

        // Whoever made the page, nothing from outside of the project comes in by opening or saving.
        FileAdmission admission = AdmissionOfProject(context);
        const auto add = [&](const std::string& reference) {
            const auto file = admission.Find({std::string(baseURL)}, reference, FileUse::Picture);
            if (file) AddInUse(context, file->named, page, AttachmentOrigin::Placed);
        };
        if (const dom::Node* body = document.body()) add(body->getAttribute("background"));
        for (const dom::Node* image : document.images()) {
            const std::string source = image->getAttribute("src");
            add(source.empty() ? image->getAttribute("dynsrc") : source);
        }
        for (const dom::Node* table : document.tags("TABLE"))
            if (table->firstChild()) add(table->getAttribute("background"));
        for (const dom::Node* cell : document.tags("TD"))
            add(cell->getAttribute("background"));
    });
}

bool RemoveAttachment(ProjectContext& context, Page& page, std::string_view key) {
    return Trap(context.frame.errorLog, kModule, "RemoveAttachment", false, [&] {
        const Attachment* attachment = page.Attachments().Item(key);
        if (!attachment) return false;
        const std::string file = attachment->Filename();
        page.Attachments().Remove(key);
        if (ListedFiles(context).contains(file) || FilesInUse(context).contains(file)) return true;
        const auto aside = MoveAside(context, {file});
        if (!aside) throw Failure(aside.problem());
        return true;
    });
}

bool CopyAttachmentsTo(ProjectContext& context, const Page& page, std::string_view folder) {
    return Trap(context.frame.errorLog, kModule, "CopyAttachmentsTo", false, [&] {
        FileSystem& files = context.frame.files;
        const std::string target = BuildPath(folder, "media");
        bool isWhole = true;
        for (const Attachment& attachment : page.Attachments()) {
            const std::string& file = attachment.Filename();
            if (!attachment.IsWanted() || !FileExists(files, file)) continue;
            isWhole = MakeFolder(files, target) && CopyFileToFolder(files, file, target) && isWhole;
        }
        return isWhole;
    });
}

void RemoveProjectAttachmentsOfType(ProjectContext& context, int state) {
    Attachments& attachments = context.project.Attachments();
    for (int i = attachments.Count(); i >= 1; --i)
        if (attachments.Item(i)->State == state) attachments.Remove(i);
}

}  // namespace pw
