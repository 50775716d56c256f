#include "project/Links.h"

#include <algorithm>
#include <optional>

#include "frame/Context.h"
#include "frame/FunctionLibrary.h"
#include "platform/Text.h"
#include "platform/dom/Document.h"
#include "platform/dom/StartTag.h"
#include "platform/dom/TagScan.h"
#include "project/Journal.h"
#include "project/LinkAttributes.h"
#include "project/PageNames.h"
#include "project/Pages.h"
#include "project/Paths.h"
#include "project/References.h"
#include "project/Workspace.h"

namespace pw {

namespace {

constexpr std::string_view kModule = "ProjectFunctions.";
constexpr char kEscape = '\x1B';

/** One rename and the walk through all pages that follows it. */
class LinkRewriter {
  public:
    LinkRewriter(ProjectContext& context, const std::string& oldPath, const std::string& newPath)
        : context_(context),
          oldPath_(oldPath),
          newPath_(newPath),
          oldName_(Trim(GetFileName(oldPath))),
          isNameAscii_(IsAscii(oldName_)) {}

    LinkUpdate Run() {
        for (OpenPage* open : context_.workspace.OpenPages())
            open->SetToNormalEditMode();
        for (WebSite& site : context_.project.WebSites())
            UpdateLinksInFolder(Container(site));
        return std::move(update_);
    }

  private:
    /** How one page sees the two paths. */
    struct Sight {
        std::string folder;
        std::string oldFull;
        std::string newValue;
    };

    void UpdateLinksInFolder(const Container& folder) {
        for (Page& page : folder.PageList()) {
            ShowPage(page);
            // A page that can't be processed is logged, and the walk goes on.
            bool isDone = false;
            Trap(context_.frame.errorLog, kModule, "UpdateLinksInPage", [&] {
                if (UpdateLinksInPage(page)) ++update_.changed;
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

    /** True when the page was changed. */
    bool UpdateLinksInPage(Page& page) {
        page_ = &page;
        sight_.reset();
        OpenPage* open = context_.workspace.FindOpenPage(page.Key());
        const bool changed = open ? UpdateOpen(*open) : UpdateClosed();
        if (!changed) return false;
        context_.project.IsDirty = true;
        page.IsDirty = true;
        return true;
    }

    bool UpdateOpen(OpenPage& open) {
        open.SetToNormalEditMode();
        open.TakeOverEdits();
        if (open.CurrentViewState() != ViewState::Normal)
            throw Failure("the changed HTML of the page can not be used");
        if (page_->PageType != PageType::Frames) return UpdateDocument(open.Document());
        const std::string html = open.Document().html();
        const std::string updated = UpdateFrames(html);
        if (updated == html) return false;
        if (!open.SetHTML(updated)) throw Failure("the changed frames can not be used");
        return true;
    }

    bool UpdateClosed() {
        const FileError read = context_.frame.files.Read(page_->Filename, bytes_);
        if (read == FileError::NotFound) return false;
        if (read != FileError::None) throw Failure(page_->Filename + ": " + Describe(read));
        if (!HoldsReference()) return false;
        dom::ParseError error;
        const auto document = dom::Document::parse(bytes_, &error);
        if (!document) throw Failure(page_->Filename + ": " + error.message);
        if (page_->PageType != PageType::Frames) {
            if (!UpdateDocument(*document)) return false;
        } else {
            const std::string html = document->html();
            const std::string updated = UpdateFrames(html);
            if (updated == html) return false;
            if (!document->setHtml(updated, &error)) throw Failure(error.message);
        }
        const FileError written = context_.frame.files.Write(page_->Filename, document->bytes());
        if (written != FileError::None) throw Failure(page_->Filename + ": " + Describe(written));
        page_->Title = document->title();
        return true;
    }

    /** Whether the bytes can hold a reference to the old file; a look at their tags tells. */
    bool HoldsReference() {
        // As bytes the tags can be read in all encodings but those of wide units and of escapes.
        const bool isPlain =
            isNameAscii_ && bytes_.find('\0') == bytes_.npos && bytes_.find(kEscape) == bytes_.npos;
        if (!isPlain) decoded_ = dom::decode(bytes_).text;
        dom::TagScan scan(isPlain ? bytes_ : decoded_, dom::TagsFrom::Anywhere);
        while (const auto tag = scan.next())
            if (HoldsReference(*tag)) return true;
        return false;
    }

    bool HoldsReference(const dom::TagInText& tag) {
        if (page_->PageType == PageType::Frames) {
            if (MayRefer(tag.attribute("src")) || MayRefer(tag.attribute("href"))) return true;
        }
        if (tag.is("meta")) return MayRefer(tag.attribute("content"));
        const std::string_view name = LinkAttributeOf(tag.name());
        if (name.empty()) return false;
        const auto value = tag.attribute(name);
        if (!MayRefer(value)) return false;
        // Letters beyond ASCII have yet to be decoded.
        return !IsAscii(*value) || Refers(*value) || FindSuffix(*value);
    }

    bool UpdateDocument(dom::Document& document) {
        bool changed = false;
        const dom::Document::Step step(document);
        for (dom::Node* link : document.links()) {
            if (!Refers(link->getAttribute("href"))) continue;
            document.setAttribute(*link, "href", See().newValue);
            changed = true;
        }
        // What leads to the page without being a link has to mean the very file.
        const auto rewrite = [&](const std::string& value) -> std::optional<std::string> {
            const auto suffix = FindSuffix(value);
            if (!suffix) return std::nullopt;
            changed = true;
            return See().newValue + *suffix;
        };
        RewriteLinkAttributes(document, rewrite);
        return changed;
    }

    /** Every "src" of the frameset text and every link. Works on masked framesets too. */
    std::string UpdateFrames(std::string_view html) {
        const std::size_t framesEnd = GetFramesetText(html).size();
        std::string updated;
        std::size_t copied = 0;
        dom::TagScan scan(html, dom::TagsFrom::Anywhere);
        while (const auto tag = scan.next()) {
            const bool isLink = tag->is("a") || tag->is("area");
            if (tag->begin() < copied || (!isLink && tag->begin() >= framesEnd)) continue;
            const char* name = isLink ? "href" : "src";
            const auto value = tag->attribute(name);
            if (!value || !Refers(*value)) continue;
            updated.append(html, copied, tag->begin() - copied);
            updated += dom::patchStartTag(tag->text(), name, See().newValue, "\n");
            copied = tag->end();
        }
        return updated.append(html.substr(copied));
    }

    /** A quick look that is false only for values which surely are no reference. */
    bool MayRefer(const std::optional<std::string>& value) const {
        if (!value || value->empty() || value->front() == '#') return false;
        if (FindNoCase(*value, oldName_) != value->npos) return true;
        return value->find('%') != value->npos &&
               FindNoCase(PercentDecode(*value), oldName_) != std::string::npos;
    }

    const Sight& See() {
        if (!sight_) {
            Sight sight;
            sight.folder = GetPageFolder(context_, page_->Key());
            sight.oldFull =
                ResolveRelativePath(sight.folder, GetVirtualPath(context_, oldPath_, page_->Key()));
            sight.newValue = EncodeLink(GetVirtualPath(context_, newPath_, page_->Key()));
            sight_ = std::move(sight);
        }
        return *sight_;
    }

    bool OccursIn(const std::string& value) {
        const std::string full =
            ResolveRelativePath(See().folder, GetVirtualPath(context_, value, page_->Key()));
        return FindNoCase(full, See().oldFull) != std::string::npos;
    }

    bool Refers(const std::string& value) {
        return MayRefer(value) && (OccursIn(value) || OccursIn(PercentDecode(value)));
    }

    /** Query and fragment of a value that means the old file; none when it does not. */
    std::optional<std::string> FindSuffix(const std::string& value) {
        if (!MayRefer(value)) return std::nullopt;
        for (const auto& candidate : ReferenceCandidates(See().folder, value))
            if (EqualsNoCase(candidate.path, oldPath_)) return candidate.suffix;
        return std::nullopt;
    }

    ProjectContext& context_;
    std::string oldPath_;
    std::string newPath_;
    std::string oldName_;
    bool isNameAscii_;
    int counter_ = 0;
    LinkUpdate update_;
    // Of the page that is being looked at.
    Page* page_ = nullptr;
    std::optional<Sight> sight_;
    std::string bytes_;
    std::string decoded_;
};

}  // namespace

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
    Workspace& workspace = context.workspace;
    workspace.ShowProgress(true);
    workspace.SetProgress(0);
    LinkUpdate update = Trap(context.frame.errorLog, kModule, "UpdateLinksInProject", LinkUpdate(),
                             [&] { return LinkRewriter(context, oldPath, newPath).Run(); });
    workspace.ShowProgress(false);
    workspace.ResetStatus();
    return update;
}

bool RenamePage(ProjectContext& context, Page& page, const std::string& newName,
                std::string* reason) {
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
        const LinkUpdate update = UpdateLinksInProject(context, oldPath, newPath);
        if (OpenPage* open = context.workspace.FindOpenPage(page.Key())) open->RefreshCaption();
        tell(update.notUpdated.empty() ? ""
                                       : "Links to the page could not be brought up to date on " +
                                             ListOfNames(update.notUpdated) +
                                             ".\n\nPlease correct the links on these pages.");
        return true;
    });
}

}  // namespace pw
