#include "project/PublishHTML.h"

#include <set>

#include "frame/Context.h"
#include "frame/FunctionLibrary.h"
#include "platform/Text.h"
#include "project/Lifecycle.h"
#include "project/LinkList.h"
#include "project/Pages.h"
#include "project/References.h"
#include "project/Workspace.h"
#include "project/omProj/Project.h"

namespace pw {
namespace {

constexpr const char* kModule = "ProjectFunctions.";
constexpr const char* kTitle = "Publish as HTML";

bool IsSameOrBelow(const std::string& path, const std::string& folder) {
    return !folder.empty() &&
           (path == folder || path.compare(0, folder.size() + 1, folder + "\\") == 0);
}

/** Absolute and with links resolved as far as the path exists already. */
std::string Resolve(const FileSystem& files, const std::string& path) {
    const std::string known = files.Canonical(path);
    if (!known.empty()) return known;
    const std::string parent = GetParentFolder(path);
    return parent.empty() || parent == path ? path
                                            : BuildPath(Resolve(files, parent), GetFileName(path));
}

/** The project's name as the name of a folder; "" when nothing of it can be one. */
std::string FolderNameOf(const std::string& projectName) {
    std::string name;
    for (const char c : Trim(projectName)) {
        const auto code = static_cast<unsigned char>(c);
        name += code < 0x20 || !IsFilenameKey(code) ? '_' : c;
    }
    return name == "." || name == ".." ? "" : name;
}

/** What a site consists of. What else lies in the preview folder is none of its visitors'
 *  business. */
class SiteCopy {
  public:
    explicit SiteCopy(ProjectContext& context) : context_(context) {
        Project& project = context.project;
        const auto addWanted = [&](const Attachments& attachments) {
            for (const Attachment& file : attachments)
                if (file.IsWanted()) media_.insert(file.Filename());
        };
        for (const PageIndexEntry& entry : project.PageIndex()) {
            pages_.insert(entry.Item->Filename);
            addWanted(entry.Item->Attachments());
        }
        addWanted(project.Attachments());
        for (const std::string& file : FilesInUseBySite(context))
            media_.insert(file);
        for (const WebSite& site : project.WebSites())
            AddFolders(site.Sections());
    }

    FileError Copy(const std::string& to) {
        MakeFolder(to);
        for (const std::string& folder : folders_)
            MakeFolder(BuildPath(to, folder));
        for (const std::string& file : pages_)
            CopyOne(file, to);
        for (const std::string& file : media_)
            if (!pages_.contains(file) && FileExists(context_.frame.files, file)) CopyOne(file, to);
        return first_;
    }

  private:
    void AddFolders(const Sections& sections) {
        for (const Folder& folder : sections) {
            if (!folder.WorkingFolder.empty()) folders_.insert(folder.WorkingFolder);
            AddFolders(folder.Sections());
        }
    }
    void MakeFolder(const std::string& path) {
        if (made_.insert(path).second) Note(context_.frame.files.MakeFolder(path));
    }
    void CopyOne(const std::string& file, const std::string& to) {
        const std::string& root = context_.frame.settings.PreviewFolder;
        if (!IsInFolder(file, root) || file.size() <= root.size() + 1) return;
        const std::string target = BuildPath(to, file.substr(root.size() + 1));
        MakeFolder(GetParentFolder(target));
        Note(context_.frame.files.Copy(file, target));
    }
    void Note(FileError error) {
        if (first_ == FileError::None) first_ = error;
    }

    ProjectContext& context_;
    std::set<std::string> pages_;
    std::set<std::string> media_;
    std::set<std::string> folders_;  ///< of the tree, also those without a page
    std::set<std::string> made_;
    FileError first_ = FileError::None;
};

/** Why the site must not be written there; "" when it may. */
std::string ProblemWith(ProjectContext& context, const std::string& target) {
    const FrameContext& frame = context.frame;
    const std::string place = Resolve(frame.files, target);
    const std::string scratch = frame.files.Canonical(frame.places.temporaryFolder);
    const std::string run = frame.files.Canonical(frame.runFolder);
    if (IsSameOrBelow(place, scratch) || IsSameOrBelow(place, run) || IsSameOrBelow(run, place))
        return "The program works in that folder and empties it. Please choose another one.";
    const auto usesFileIn = [&](const Attachments& attachments) {
        for (const Attachment& file : attachments) {
            if (IsSameOrBelow(file.Filename(), place) || IsSameOrBelow(file.Filename(), target))
                return true;
        }
        return false;
    };
    bool own = usesFileIn(context.project.Attachments());
    for (const PageIndexEntry& entry : context.project.PageIndex())
        own = own || usesFileIn(entry.Item->Attachments());
    if (own) return "The project uses files in that folder. Please choose another one.";
    const FileInfo info = frame.files.Stat(target);
    if (info.exists && !FolderExists(frame.files, target))
        return ToNativePath(target) +
               " is a file. Please choose another folder, or rename the project.";
    return "";
}

std::vector<std::string> DeadLinks(ProjectContext& context) {
    std::vector<std::string> dead;
    for (const LinkRecord& link : ListLinks(context))
        if (link.state == LinkState::Missing)
            dead.push_back(link.target + " (" + link.page->Name + ")");
    return dead;
}

/** The file of the page that a visitor comes to first, below `target`. */
std::string FirstPage(ProjectContext& context, const std::string& target) {
    const std::string& root = context.frame.settings.PreviewFolder;
    const WebSite* site = context.project.WebSites().Item(1);
    const Page* page = site ? GetDefaultPage(context, site->Key()) : nullptr;
    if (!page && site) page = site->Pages().Item(1);
    return page && IsInFolder(page->Filename, root)
               ? BuildPath(target, page->Filename.substr(root.size() + 1))
               : std::string();
}

std::string Publish(ProjectContext& context, const std::string& folder, PublishResult& result) {
    if (context.project.Busy()) return "The project is being saved or loaded just now.";
    const std::string name = FolderNameOf(context.project.Name);
    if (folder.empty() || name.empty())
        return "The project needs a name that a folder can have. Please change it in the project's "
               "properties.";
    const std::string target = result.folder = BuildPath(folder, name);
    const std::string problem = ProblemWith(context, target);
    if (!problem.empty()) return problem;
    const auto behind = RefreshVariables(context);
    if (!behind.empty())
        result.warnings.push_back("The merge variables could not be brought up to date on " +
                                  ListOfNames(behind) + ".");
    std::string unwritten;
    if (!UpdateOpenPageProperties(context, &unwritten)) return unwritten;
    NoteUnusedAttachments(context);
    const FileError error = SiteCopy(context).Copy(target);
    if (error != FileError::None) return "The reason: " + Describe(error) + ".";
    result.deadLinks = DeadLinks(context);
    result.firstPage = FirstPage(context, target);
    return "";
}

/** Shows the site in the user's browser, or else the folder that it lies in. */
void Open(ProjectContext& context, const PublishResult& result) {
    const auto open = [&](const std::string& path) {
        return !path.empty() &&
               context.frame.launcher.OpenUrl("file://" + EncodeLink(ToNativePath(path)));
    };
    if (open(result.firstPage) || open(result.folder)) return;
    context.frame.dialogs.MsgBox(
        {"The published site can not be opened from here.\n\nPlease open "
         "it in a web browser:\n\n" +
             ToNativePath(result.folder),
         kTitle, Icon::Exclamation});
}

}  // namespace

PublishResult PublishAsHTML(ProjectContext& context, const std::string& folder) {
    const BusyPointer busy(context.workspace);
    PublishResult result;
    result.reason = Trap(context.frame.errorLog, kModule, "PublishAsHTML",
                         std::string("Something unforeseen happened. The error log tells more."),
                         [&] { return Publish(context, folder, result); });
    result.published = result.reason.empty();
    return result;
}

void AskAndPublishAsHTML(ProjectContext& context) {
    FrameContext& frame = context.frame;
    const std::string folder = frame.dialogs.BrowseFolder(
        "Select the folder to publish the HTML to...", frame.places.documentsFolder);
    if (folder.empty()) return;
    const PublishResult result = PublishAsHTML(context, folder);
    if (result.published) {
        std::string text = "The project has been successfully published as HTML to folder:\n\n" +
                           ToNativePath(result.folder);
        for (const std::string& warning : result.warnings)
            text += "\n\n" + warning;
        if (!result.deadLinks.empty())
            text += "\n\nThese links lead nowhere: " + ListOfNames(result.deadLinks) + ".";
        Message message{text, kTitle,
                        result.deadLinks.empty() && result.warnings.empty() ? Icon::Information
                                                                            : Icon::Exclamation};
        message.action = "&Open";
        if (frame.dialogs.MsgBox(message) == Answer::Action) Open(context, result);
        return;
    }
    frame.dialogs.MsgBox(
        {"The project could not be published as HTML.\n\nPlease try again.\n\n" + result.reason,
         kTitle, Icon::Stop});
}

}  // namespace pw
