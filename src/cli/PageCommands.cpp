// Commands about what a project holds: add, list, links, cat, rename, remove.
#include <algorithm>
#include <iostream>
#include <optional>

#include "cli/Commands.h"
#include "cli/Interrupt.h"
#include "cli/Output.h"
#include "cli/Session.h"
#include "frame/FunctionLibrary.h"
#include "platform/Text.h"
#include "project/AddFiles.h"
#include "project/Folders.h"
#include "project/LinkList.h"
#include "project/Links.h"
#include "project/PageNames.h"
#include "project/Pages.h"

namespace pw::cli {

namespace {

[[noreturn]] void FailUnknownKey(const std::string& key) {
    throw CommandFailure{"There is no item '" + key + "' in the project. `list` tells the keys."};
}

/** Opens the project and answers its item; fails when there is none. */
ProjectItem OpenItem(Session& session, const Invocation& invocation, const std::string& key) {
    session.Open(ProjectFromArgument(invocation.ProjectFile()));
    const ProjectItem item = GetProjectItem(session.Context(), key);
    if (!item) FailUnknownKey(key);
    return item;
}

std::string RelativeFile(const ProjectContext& context, const std::string& path) {
    const std::string& root = context.frame.settings.PreviewFolder;
    const std::string below =
        path.size() > root.size() && path.starts_with(root) ? path.substr(root.size() + 1) : path;
    return ReplaceAll(below, "\\", "/");
}

/** One line or one JSON object for each item, in the order of the project tree. */
class Listing {
  public:
    Listing(const ProjectContext& context, bool asJson) : context_(context), asJson_(asJson) {}

    void Print() {
        if (asJson_) json_.emplace(std::cout);
        for (WebSite& site : context_.project.WebSites())
            PrintBelow(Container(site));
    }

  private:
    void PrintBelow(const Container& container) {
        for (const Page& page : container.PageList())
            PrintItem(page.Key(), "page", RelativeFile(context_, page.Filename), page.Name,
                      page.IsDefault);
        for (Folder& folder : container.FolderList()) {
            PrintItem(folder.Key(), "folder", ReplaceAll(folder.WorkingFolder, "\\", "/") + "/",
                      folder.Name, false);
            PrintBelow(Container(folder));
        }
    }

    void PrintItem(const std::string& key, const char* kind, const std::string& file,
                   const std::string& title, bool isDefault) {
        if (!asJson_) {
            std::cout << key << "\t" << OneField(file) << "\t" << OneField(title) << "\n";
            return;
        }
        JsonObject json;
        json.Add("key", key).Add("kind", kind).Add("file", file).Add("title", title);
        json.Add("default", isDefault);
        json_->Add(json);
    }

    const ProjectContext& context_;
    bool asJson_;
    std::optional<JsonArray> json_;
};

void GiveTitle(Session& session, Page& page, const std::string& title) {
    try {
        SetPageTitle(session.Context(), page, title);
    } catch (const Failure& failure) {
        throw CommandFailure{failure.what()};
    }
    session.Project().IsDirty = true;
}

/** All or nothing: the project is saved when all links could follow. */
void RequireRenamed(bool isRenamed, const std::string& reason) {
    if (isRenamed && reason.empty()) return;
    const std::string statement = reason.substr(0, reason.find("\n\n"));
    throw CommandFailure{isRenamed ? statement + " Nothing was changed." : statement};
}

std::string ExistingFolder(Session& session, const std::string& argument) {
    const std::string folder = PathFromArgument(argument);
    if (!FolderExists(session.Files(), folder))
        throw CommandFailure{"There is no folder '" + argument + "'."};
    return folder;
}

void PrintLeftOut(const std::vector<LeftOutFile>& leftOut) {
    for (const auto& file : leftOut)
        std::cerr << OneField(ReplaceAll(Describe(file), "\\", "/")) << "\n";
    const bool canHelp = std::any_of(leftOut.begin(), leftOut.end(),
                                     [](const LeftOutFile& file) { return file.mayBeOffered; });
    if (canHelp)
        std::cerr << "To take such files along, name their folder with --with-files-from.\n";
}

/** Returns how many links lost their bookmark, as a sentence. */
std::string RenamePageFile(Session& session, Page& page, const std::string& name) {
    const std::string file = GetExtension(name).empty() ? name + ".htm" : name;
    std::string reason;
    LinkUpdate links;
    RequireRenamed(RenamePage(session.Context(), page, file, &reason, &links), reason);
    return links.LossText();
}

const char* StateText(LinkState state) {
    static constexpr const char* kTexts[] = {"stands", "missing", "not tested"};
    return kTexts[int(state)];
}

}  // namespace

void RunAdd(const Invocation& invocation) {
    AddFilesRequest request;
    for (const auto& path : invocation.Rest())
        request.paths.push_back(PathFromArgument(path));
    request.folderKey = invocation.arguments.Value("--folder");
    request.progress = [](int done, int total) {
        ThrowIfInterrupted();
        ShowProgress("Page", done, total);
    };

    Session session(invocation.profile);
    for (const auto& folder : invocation.arguments.Values("--with-files-from"))
        request.withFilesFrom.push_back(ExistingFolder(session, folder));
    session.Open(ProjectFromArgument(invocation.ProjectFile()));
    const ProjectItem target = GetProjectItem(session.Context(), request.folderKey);
    if (!request.folderKey.empty() && !target.folder && !target.site)
        throw CommandFailure{"There is no folder '" + request.folderKey +
                             "' in the project. `list` tells the keys."};
    const AddFilesResult result = AddFiles(session.Context(), request);
    EndProgress();
    ThrowIfInterrupted();
    for (const auto& problem : result.problems)
        std::cerr << ReplaceAll(problem.reason, "\\", "/") << "\n";
    PrintLeftOut(result.leftOut);
    if (!result.pageKeys.empty() || result.folders > 0) session.Save();
    std::cout << result.pageKeys.size() << (result.pageKeys.size() == 1 ? " page" : " pages")
              << " added.\n";
    if (!result.problems.empty()) throw CommandFailure{};
}

void RunList(const Invocation& invocation) {
    Session session(invocation.profile);
    session.Open(ProjectFromArgument(invocation.ProjectFile()));
    Listing(session.Context(), invocation.arguments.Has("--json")).Print();
}

void RunLinks(const Invocation& invocation) {
    Session session(invocation.profile);
    session.Open(ProjectFromArgument(invocation.ProjectFile()));
    const auto links = ListLinks(session.Context());
    std::optional<JsonArray> list;
    if (invocation.arguments.Has("--json")) list.emplace(std::cout);
    for (const LinkRecord& link : links) {
        const std::string& key = link.page->Key();
        const std::string file = RelativeFile(session.Context(), link.page->Filename);
        const char* state = StateText(link.state);
        if (list) {
            JsonObject json;
            json.Add("key", key).Add("file", file).Add("target", link.target).Add("state", state);
            list->Add(json);
        } else {
            std::cout << key << "\t" << OneField(file) << "\t" << OneField(link.target) << "\t"
                      << state << "\n";
        }
    }
}

void RunCat(const Invocation& invocation) {
    Session session(invocation.profile);
    const ProjectItem item = OpenItem(session, invocation, invocation.Rest().front());
    if (!item.page) throw CommandFailure{"'" + invocation.Rest().front() + "' is no page."};
    std::string bytes;
    const FileError error = session.Files().Read(item.page->Filename, bytes);
    if (error != FileError::None)
        throw CommandFailure{"The page can not be read: " + Describe(error) + "."};
    std::cout.write(bytes.data(), std::streamsize(bytes.size()));
}

void RunRename(const Invocation& invocation) {
    const std::string name = Trim(invocation.Rest().back());
    if (name.empty()) throw UsageError{"The new name is empty."};
    Session session(invocation.profile);
    if (invocation.arguments.Has("--keep-bookmarks"))
        session.Context().frame.settings.KeepBookmarks = true;
    std::string told;
    const ProjectItem item = OpenItem(session, invocation, invocation.Rest().front());
    if (item.folder) {
        std::string reason;
        RequireRenamed(RenameFolderOnDisk(session.Context(), *item.folder, name, &reason), reason);
    } else if (item.page) {
        if (invocation.arguments.Has("--title")) {
            GiveTitle(session, *item.page, name);
        } else {
            told = RenamePageFile(session, *item.page, name);
        }
    } else {
        throw CommandFailure{"Only folders and pages can be renamed."};
    }
    session.Save();
    if (!told.empty()) std::cout << told << "\n";
}

void RunRemove(const Invocation& invocation) {
    Session session(invocation.profile);
    session.Open(ProjectFromArgument(invocation.ProjectFile()));
    // All or nothing: a key that is wrong must not leave half of the work done.
    for (const auto& key : invocation.Rest()) {
        const ProjectItem item = GetProjectItem(session.Context(), key);
        if (!item.page && !item.folder) FailUnknownKey(key);
    }
    for (const auto& key : invocation.Rest()) {
        std::string reason;
        if (GetProjectItem(session.Context(), key) &&
            !RemoveProjectItem(session.Context(), key, nullptr, &reason))
            throw CommandFailure{"'" + key + "' can not be removed; nothing was changed." +
                                 (reason.empty() ? "" : " " + reason)};
    }
    session.Save();
}

}  // namespace pw::cli
