#include "project/Links.h"

#include <algorithm>
#include <optional>
#include <set>

#include "frame/Context.h"
#include "frame/FunctionLibrary.h"
#include "platform/Text.h"
#include "platform/dom/Document.h"
#include "project/EditPage.h"
#include "project/Journal.h"
#include "project/PageNames.h"
#include "project/Pages.h"
#include "project/Paths.h"
#include "project/StyleText.h"
#include "project/Workspace.h"

namespace pw {

namespace {

constexpr std::string_view kModule = "ProjectFunctions.";

bool IsLinkOrFrame(ReferenceKind kind) {
    return kind == ReferenceKind::Link || kind == ReferenceKind::Frame;
}

FramesetMasked MaskOf(const Page& page) {
    return page.PageType == PageType::Frames ? FramesetMasked::Yes : FramesetMasked::No;
}

/** One move and the walk through all pages that follows it. */
class LinkRewriter {
  public:
    LinkRewriter(ProjectContext& context, const Move& move, Follow what)
        : context_(context),
          move_(move),
          what_(what),
          oldName_(Trim(GetFileName(move.from))),
          isSameParent_(GetParentFolder(move.from) == GetParentFolder(move.to)) {}

    LinkUpdate Run() {
        for (OpenPage* open : context_.workspace.OpenPages())
            open->SetToNormalEditMode();
        for (WebSite& site : context_.project.WebSites())
            UpdateLinksInFolder(Container(site));
        if (what_ == Follow::AllReferences) UpdateStyleSheets();
        return std::move(update_);
    }

  private:
    /** How the pages of one folder see the two paths. */
    struct Sight {
        PlaceInSite before;
        PlaceInSite after;
        std::string oldFull;
        std::string newValue;
    };

    void UpdateLinksInFolder(const Container& folder) {
        const std::string place = GetPageFolder(context_, folder.Key());
        folders_.push_back(place);
        See(folder.Key(), place);
        for (Page& page : folder.PageList()) {
            ShowPage(page);
            // A page that can't be processed is logged, and the walk goes on.
            bool isDone = false;
            Trap(context_.frame.errorLog, kModule, "UpdateLinksInPage", [&] {
                UpdateLinksInPage(page);
                isDone = true;
            });
            if (!isDone) update_.notUpdated.push_back(page.Name);
        }
        for (Folder& below : folder.FolderList())
            UpdateLinksInFolder(Container(below));
    }

    void ShowPage(const Page& page) {
        Workspace& workspace = context_.workspace;
        workspace.ShowStatus("Updating links on page " + QuoteSingle(page.Name));
        workspace.SetProgress(++counter_ * 100 / std::max(context_.project.PageCount(), 1));
    }

    void UpdateLinksInPage(Page& page) {
        if (OpenPage* open = context_.workspace.FindOpenPage(page.Key()))
            open->SetToNormalEditMode();
        UpdatedPage updated{page.Key(), page.Filename, {}};
        lost_ = 0;
        if (IsToldRule()) SeeFrom(page.Key());
        const auto edit = [&](dom::Document& document) {
            updated.changes = RewriteReferences(
                document, MaskOf(page), [this](ReferenceKind kind, const std::string& value) {
                    return Rewrite(kind, value);
                });
        };
        const auto changed = EditPage(context_, page, PageStep::OfTheProject, edit,
                                      [&](std::string_view bytes) { return MayConcern(bytes); });
        if (!changed) throw Failure(changed.problem());
        if (!*changed) return;
        ++update_.changed;
        update_.lostBookmarks += lost_;
        update_.pages.push_back(std::move(updated));
    }

    bool MayConcern(std::string_view bytes) {
        // Out of a folder that lies elsewhere all ways are others.
        if (!isSameParent_ && sight_.before.folder != sight_.after.folder) return true;
        const auto what = what_ == Follow::Links ? LookFor::Links : LookFor::AllReferences;
        return MayHoldReference(bytes, oldName_, what,
                                [&](ReferenceKind, const std::string& value) {
                                    // The frameset is not masked here.
                                    return (IsToldRule() && Refers(value)) || Exact(value);
                                });
    }

    bool IsToldRule() const { return !move_.keepsSuffix; }

    std::optional<std::string> Rewrite(ReferenceKind kind, const std::string& value) {
        if (!IsToldRule() || !IsLinkOrFrame(kind)) {
            const bool isConcerned = what_ == Follow::AllReferences || kind != ReferenceKind::File;
            return isConcerned ? Exact(value) : std::nullopt;
        }
        if (!Refers(value)) return std::nullopt;
        if (!BookmarkOf(value).empty()) ++lost_;
        return sight_.newValue;
    }

    std::optional<std::string> Exact(const std::string& value) const {
        return FollowMove(move_, sight_.before, sight_.after, value);
    }

    void See(const std::string& key, const std::string& folder) {
        const std::string& root = context_.frame.settings.PreviewFolder;
        sight_ = {{root, FolderBefore(move_, folder)}, {root, folder}, {}, {}};
        isSeenFrom_.clear();
        folderKey_ = key;
    }
    /** The paths as a page is told to see them, which asks the disk. */
    void SeeFrom(const std::string& pageKey) {
        // All pages of a folder see the same.
        if (isSeenFrom_ == folderKey_) return;
        isSeenFrom_ = folderKey_;
        sight_.oldFull =
            ResolveRelativePath(sight_.after.folder, GetVirtualPath(context_, move_.from, pageKey));
        sight_.newValue = EncodeLink(GetVirtualPath(context_, move_.to, pageKey));
        pageKey_ = pageKey;
    }

    std::string FullForm(const std::string& value) const {
        // From the root means the root of the site.
        if (value.starts_with('/')) return ResolveRelativePath(sight_.after.root, value.substr(1));
        return ResolveRelativePath(sight_.after.folder, GetVirtualPath(context_, value, pageKey_));
    }
    bool OccursIn(const std::string& value) const {
        return FindNoCase(FullForm(value), sight_.oldFull) != std::string::npos;
    }
    /** The told test: the old path occurs in the full form of what the value points to. A query
     * that looks like a path is none. */
    bool Refers(const std::string& value) const {
        if (!IsLocalReference(value)) return false;
        for (const std::string& text : {Trim(value), PercentDecode(Trim(value))}) {
            const SplitReference parts = SplitSuffix(text);
            if (!parts.path.empty() && OccursIn(parts.path)) return true;
            // The sign can belong to the file's name.
            if (!parts.suffix.empty() && parts.suffix.find_first_of("/\\") == std::string::npos &&
                OccursIn(text))
                return true;
        }
        return false;
    }

    /** Those beside the pages and the attached ones; those that a page takes in lie there. */
    void UpdateStyleSheets() {
        std::set<std::string> sheets;
        const auto note = [&](const std::string& path) {
            if (EqualsNoCase(GetExtension(path), "css") &&
                IsInFolder(path, context_.frame.settings.PreviewFolder))
                sheets.insert(path);
        };
        const auto noteAll = [&](const std::string& folder) {
            std::vector<FolderEntry> entries;
            if (context_.frame.files.List(folder, entries) != FileError::None) return;
            for (const FolderEntry& entry : entries)
                if (!entry.isFolder) note(BuildPath(folder, entry.name));
        };
        for (const std::string& folder : folders_) {
            noteAll(folder);
            noteAll(BuildPath(folder, "media"));
        }
        for (const Attachment& attachment : context_.project.Attachments())
            note(attachment.Filename());
        for (const PageIndexEntry& entry : context_.project.PageIndex())
            for (const Attachment& attachment : entry.Item->Attachments())
                note(attachment.Filename());
        for (const std::string& sheet : sheets)
            UpdateStyleSheet(sheet);
    }

    void UpdateStyleSheet(const std::string& path) {
        FileSystem& files = context_.frame.files;
        std::string css;
        FileError error = files.Read(path, css);
        if (error == FileError::NotFound) return;
        See("", GetParentFolder(path));
        const std::string updated =
            RewriteStyleReferences(css, [this](const std::string& value) { return Exact(value); });
        if (error == FileError::None && updated != css) {
            error = files.Write(path, updated);
            if (error == FileError::None) {
                update_.pages.push_back({"", path, {{-1, "", css}}});
                context_.project.IsDirty = true;
            }
        }
        if (error == FileError::None) return;
        update_.notUpdated.push_back(GetFileName(path));
        const std::string text = path + ": " + Describe(error);
        context_.frame.errorLog.LogError(text, Failure(text), kModule, "UpdateLinksInPage");
    }

    ProjectContext& context_;
    const Move& move_;
    Follow what_;
    std::string oldName_;
    bool isSameParent_;
    int counter_ = 0;
    LinkUpdate update_;
    std::vector<std::string> folders_;  // that have been walked through
    // Of the folder that is being walked through.
    Sight sight_;
    std::string folderKey_;
    std::string isSeenFrom_;
    std::string pageKey_;
    int lost_ = 0;  // in the page that is being looked at
};

LinkUpdate RunUpdate(ProjectContext& context, const Move& move, Follow what) {
    Workspace& workspace = context.workspace;
    workspace.ShowProgress(true);
    workspace.SetProgress(0);
    LinkUpdate update = Trap(context.frame.errorLog, kModule, "UpdateLinksInProject", LinkUpdate(),
                             [&] { return LinkRewriter(context, move, what).Run(); });
    workspace.ShowProgress(false);
    workspace.ResetStatus();
    if (update.lostBookmarks > 0) workspace.ShowStatus(update.LossText());
    return update;
}

Move PageMove(const ProjectContext& context, const std::string& from, const std::string& to) {
    return {from, to, context.frame.settings.KeepBookmarks};
}

/** Whether a reference leads to a file or folder that is there. */
bool Stands(const ProjectContext& context, const PlaceInSite& place, const std::string& value) {
    const auto candidates = ReferenceCandidates(place, value);
    return std::any_of(candidates.begin(), candidates.end(), [&](const auto& candidate) {
        return FileExists(context.frame.files, candidate.path) ||
               FolderExists(context.frame.files, candidate.path);
    });
}

}  // namespace

std::string LinkUpdate::LossText() const {
    if (lostBookmarks == 0) return {};
    return lostBookmarks == 1 ? "1 link lost its bookmark."
                              : std::to_string(lostBookmarks) + " links lost their bookmark.";
}

std::string LinkUpdate::ProblemText(std::string_view what) const {
    if (notUpdated.empty()) return {};
    return "Links to the " + std::string(what) + " could not be brought up to date on " +
           ListOfNames(notUpdated) + ".\n\nPlease correct the links on these pages.";
}

std::string GetPageHTML(ProjectContext& context, const Page& page) {
    if (OpenPage* open = context.workspace.FindOpenPage(page.Key())) {
        std::string html = open->Document().html();
        if (!html.empty()) return html;
    }
    std::string bytes;
    if (context.frame.files.Read(page.Filename, bytes) != FileError::None) return {};
    return dom::decode(bytes).text;
}

std::string_view GetFramesetText(std::string_view html) {
    constexpr std::string_view kEnd = "</frameset>";
    if (FindNoCase(html, "<frameset") == std::string_view::npos) return html;
    const auto last = FindLastNoCase(html, kEnd);
    return last == std::string_view::npos ? html : html.substr(0, last + kEnd.size());
}

LinkUpdate UpdateLinksInProject(ProjectContext& context, const std::string& oldPath,
                                const std::string& newPath) {
    return RunUpdate(context, PageMove(context, oldPath, newPath), Follow::Links);
}

LinkUpdate UpdateFollowing(ProjectContext& context, const Move& move, Follow what) {
    return RunUpdate(context, move, what);
}

void FollowMoves(ProjectContext& context, const std::string& pageKey, dom::Document& document) {
    const Page* page = context.moves.empty() ? nullptr : GetPage(context, pageKey);
    if (!page) return;
    const PlaceInSite place{context.frame.settings.PreviewFolder, GetParentFolder(page->Filename)};
    RewriteReferences(
        document, MaskOf(*page),
        [&](ReferenceKind kind, const std::string& value) -> std::optional<std::string> {
            std::string present = value;
            for (const Move& move : context.moves) {
                const auto moved = FollowMove(move, place, place, present);
                if (!moved || Stands(context, place, present)) continue;
                const bool isPlain = !move.keepsSuffix && IsLinkOrFrame(kind);
                present = isPlain ? SplitSuffix(*moved).path : *moved;
            }
            return present == value ? std::nullopt : std::optional(present);
        });
}

bool RenamePage(ProjectContext& context, Page& page, const std::string& newName,
                std::string* reason, LinkUpdate* update) {
    const auto tell = [reason](const std::string& sentence) {
        if (reason) *reason = sentence;
    };
    return Trap(context.frame.errorLog, kModule, "RenamePage", false, [&] {
        const std::string oldPath = page.Filename;
        const std::string problem = newName == GetFileName(oldPath)
                                        ? "The page already has this file name."
                                        : PageNameProblem(newName);
        if (!problem.empty()) {
            tell(problem);
            return false;
        }
        const std::string newPath = BuildPath(GetParentFolder(oldPath), newName);
        const FileError renamed = context.frame.files.Rename(oldPath, newPath);
        if (renamed == FileError::Exists) {
            tell("A page already exists with the filename " + newName +
                 ".\n\nPlease select another name and try again.");
            return false;
        }
        if (renamed != FileError::None) {
            tell("The file " + QuoteSingle(GetFileName(oldPath)) + " can not be renamed to " +
                 QuoteSingle(newName) + ": " + Describe(renamed) + ".");
            return false;
        }
        // From here on the page can refer to itself under either name.
        page.Filename = newPath;
        page.IsDirty = true;
        context.project.IsDirty = true;
        JournalFilesMoved(context);
        const Move move = PageMove(context, oldPath, newPath);
        context.moves.push_back(move);
        LinkUpdate links = RunUpdate(context, move, Follow::Links);
        if (OpenPage* open = context.workspace.FindOpenPage(page.Key())) open->RefreshCaption();
        tell(links.ProblemText("page"));
        if (update) *update = std::move(links);
        return true;
    });
}

}  // namespace pw
