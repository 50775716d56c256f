#include "project/PageNames.h"

#include "frame/Context.h"
#include "frame/FunctionLibrary.h"
#include "platform/Text.h"
#include "project/Links.h"
#include "project/Pages.h"
#include "project/Workspace.h"

namespace pw {

void SetPageTitle(ProjectContext& context, Page& page, const std::string& title) {
    if (OpenPage* open = context.workspace.FindOpenPage(page.Key())) {
        page.Name = page.Title = title;
        open->SetToNormalEditMode();
        open->TakeOverEdits();
        open->Document().setTitle(title);
        open->RefreshCaption();
    } else {
        FileSystem& files = context.frame.files;
        std::string bytes;
        const FileError read = files.Read(page.Filename, bytes);
        if (read != FileError::None)
            throw Failure("The page can not be read: " + Describe(read) + ".");
        const auto document = dom::Document::parse(bytes);
        if (!document) throw Failure("The page can not be read.");
        document->setTitle(title);
        const FileError written = files.Write(page.Filename, document->bytes());
        if (written != FileError::None)
            throw Failure("The page can not be written: " + Describe(written) + ".");
        page.Name = page.Title = title;
    }
    page.IsDirty = true;
}

std::string PageNameProblem(std::string_view name) {
    if (name.starts_with('.'))
        return "A file name can not begin with a point. Please enter a different name.";
    return DiskNameProblem("file", name);
}

bool IsPageNameTaken(const ProjectContext& context, const Page& page, std::string_view name) {
    return !NameInFolder(context.frame.files, GetParentFolder(page.Filename), name,
                         GetFileName(page.Filename))
                .empty();
}

std::string NameInFolder(const FileSystem& files, const std::string& folder, std::string_view name,
                         std::string_view except) {
    std::vector<FolderEntry> entries;
    if (files.List(folder, entries) != FileError::None) return {};
    for (const FolderEntry& entry : entries)
        if (entry.name != except && EqualsNoCase(entry.name, name)) return entry.name;
    return {};
}

Page* FindNeighbour(const ProjectContext& context, const Page& page, std::string_view name) {
    const Container container = GetContainer(context, page.Key());
    if (!container) return nullptr;
    for (Page& other : container.PageList()) {
        if (&other != &page && EqualsNoCase(GetFileName(other.Filename), name)) return &other;
    }
    return nullptr;
}

bool MovePageAside(ProjectContext& context, Page& page, std::string* reason) {
    const int number =
        GetUniqueFilename(context.frame.files, "page_", "htm", GetParentFolder(page.Filename));
    const std::string name = std::to_string(number);
    if (!RenamePage(context, page, "page_" + name + ".htm", reason)) return false;
    // The file has made way: a title that could not be written does not stop anything.
    Trap(context.frame.errorLog, "ProjectFunctions.", "SetPageTitle",
         [&] { SetPageTitle(context, page, "Page " + name); });
    return true;
}

}  // namespace pw
