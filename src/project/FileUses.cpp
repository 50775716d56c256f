#include "project/FileUses.h"

#include <algorithm>
#include <chrono>
#include <functional>
#include <optional>

#include "frame/Context.h"
#include "frame/FunctionLibrary.h"
#include "platform/Text.h"
#include "platform/dom/Encoding.h"
#include "platform/dom/Escape.h"
#include "platform/dom/StartTag.h"
#include "platform/dom/TagScan.h"
#include "project/FramesetMask.h"
#include "project/Links.h"
#include "project/Paths.h"
#include "project/ProjectContext.h"
#include "project/References.h"
#include "project/StyleText.h"
#include "project/Workspace.h"

namespace pw {

namespace {

constexpr std::size_t kLongestReference = 2048;
/** A file that was changed less than this before it was read may change again within the same tick
 *  of the disk's clock. */
constexpr std::int64_t kTrustedAge = 50'000'000;  // nanoseconds

using Visit = std::function<void(const std::string&)>;

void VisitStyles(std::string_view css, const Visit& visit) {
    RewriteStyleReferences(css, [&](const std::string& reference) -> std::optional<std::string> {
        visit(reference);
        return std::nullopt;
    });
}

/** The parts of a list of addresses or of a script that may name a file. */
void VisitParts(std::string_view text, const Visit& visit) {
    constexpr std::string_view kBetween = " \t\r\n\f\"'`(),;=<>\\|{}[]";
    while (!text.empty()) {
        const std::string_view part = text.substr(0, text.find_first_of(kBetween));
        if (part.find('.') != part.npos) visit(std::string(part));
        text.remove_prefix(std::min(text.size(), part.size() + 1));
    }
}

bool HoldsStyle(std::string_view name) {
    return EqualsNoCase(name, "style");
}

/** Reads the references of a page from its text, with too many rather than too few. */
class PageReferences {
  public:
    explicit PageReferences(const Visit& visit) : visit_(visit) {}

    void Read(std::string_view html, int depth = 0) {
        dom::TagScan scan(html, dom::TagsFrom::Markup);
        while (const auto tag = scan.next()) {
            ReadAttributes(*tag, depth);
            const bool isStyle = tag->is("style");
            if (!isStyle && !tag->is("script")) continue;
            const std::size_t begin = tag->end();
            const std::size_t end = dom::endOfRawText(html, begin, isStyle ? "style" : "script");
            const std::string_view text = html.substr(begin, end - begin);
            if (isStyle) {
                VisitStyles(text, visit_);
            } else {
                VisitParts(text, visit_);
            }
        }
    }

  private:
    void ReadAttributes(const dom::TagInText& tag, int depth) {
        constexpr int kPagesWithinPages = 4;
        const std::string_view text = tag.text();
        std::size_t at = tag.name().size() + 1;
        while (const auto place = dom::nextAttribute(text, at)) {
            if (!place->hasValue || place->valueEnd == place->value) continue;
            const std::string_view name = text.substr(place->name, place->nameEnd - place->name);
            const std::string value =
                dom::decodeAttribute(text.substr(place->value, place->valueEnd - place->value));
            if (HoldsStyle(name)) {
                VisitStyles(value, visit_);
            } else if (EqualsNoCase(name, "srcdoc")) {
                if (depth < kPagesWithinPages) Read(value, depth + 1);
            } else {
                if (value.find_first_of("./") != value.npos) visit_(value);
                // Lists of pictures, refreshes, handlers of events and the like.
                if (value.find_first_of(" ,;=(") != value.npos) VisitParts(value, visit_);
            }
        }
    }

    const Visit& visit_;
};

/** Where a BASE element takes relative references to; none without one that stays on the disk. */
std::optional<std::string> BaseFolder(std::string_view html, const std::string& folder) {
    dom::TagScan scan(html, dom::TagsFrom::Markup);
    while (const auto tag = scan.next()) {
        if (tag->is("body")) break;
        if (!tag->is("base")) continue;
        const std::string path = SplitSuffix(tag->attribute("href").value_or("")).path;
        if (!IsLocalReference(path)) return std::nullopt;
        return JoinReference(folder, PercentDecode(path.substr(0, path.find_last_of("/\\") + 1)));
    }
    return std::nullopt;
}

class PathCollector {
  public:
    PathCollector(const ProjectContext& context, std::vector<std::string> folders)
        : root_(context.frame.settings.PreviewFolder), folders_(std::move(folders)) {}

    void Add(const std::string& reference) {
        if (reference.size() > kLongestReference || !seen_.insert(reference).second) return;
        if (reference.starts_with('/')) AddFrom(root_, reference.substr(1));
        for (const std::string& folder : folders_)
            AddFrom(folder, reference);
    }
    FileUses::Paths Take() {
        std::sort(paths_.begin(), paths_.end());
        paths_.erase(std::unique(paths_.begin(), paths_.end()), paths_.end());
        paths_.shrink_to_fit();
        return std::move(paths_);
    }

  private:
    void AddFrom(const std::string& folder, const std::string& reference) {
        for (auto& candidate : ReferenceCandidates(folder, reference))
            if (IsInFolder(candidate.path, root_) && !IsPageFilename(candidate.path))
                paths_.push_back(std::move(candidate.path));
    }

    const std::string& root_;
    std::vector<std::string> folders_;
    std::unordered_set<std::string> seen_;
    FileUses::Paths paths_;
};

bool IsStyleSheet(std::string_view file) {
    return EqualsNoCase(GetExtension(file), "css");
}

/** Adds a file and, of a style sheet, all that it needs. */
void AddWithNeeds(ProjectContext& context, const std::string& path,
                  std::unordered_set<std::string>& used) {
    std::vector<std::string> due{path};
    while (!due.empty()) {
        const std::string file = std::move(due.back());
        due.pop_back();
        if (!used.insert(file).second || !IsStyleSheet(file)) continue;
        const auto& needs = context.uses.OfStyleSheet(context, file);
        due.insert(due.end(), needs.begin(), needs.end());
    }
}

void AddUses(ProjectContext& context, const Page& page, std::unordered_set<std::string>& used) {
    for (const std::string& path : context.uses.OfPage(context, page))
        AddWithNeeds(context, path, used);
    // What the user added is part of the site, and so is what it needs.
    for (const Attachment& file : page.Attachments())
        if (file.Origin != AttachmentOrigin::Placed && IsStyleSheet(file.Filename()))
            AddWithNeeds(context, file.Filename(), used);
}

void AddUsesOfPages(ProjectContext& context, std::string_view exceptBelow,
                    std::unordered_set<std::string>& used) {
    for (const PageIndexEntry& entry : context.project.PageIndex())
        if (exceptBelow.empty() || !entry.Key().starts_with(exceptBelow))
            AddUses(context, *entry.Item, used);
    for (const Attachment& file : context.project.Attachments())
        AddWithNeeds(context, file.Filename(), used);
}

std::unordered_set<std::string> FilesInUseBy(ProjectContext& context, const Page& page) {
    std::unordered_set<std::string> used;
    for (const std::string& path : context.uses.OfPage(context, page))
        AddWithNeeds(context, path, used);
    return used;
}

std::int64_t NowOnDisk() {
    return std::chrono::duration_cast<std::chrono::nanoseconds>(
               std::chrono::system_clock::now().time_since_epoch())
        .count();
}

}  // namespace

template <class Read>
const FileUses::Paths& FileUses::Of(ProjectContext& context, const std::string& file, Read read) {
    Known& known = files_[file];
    const FileInfo info = context.frame.files.Stat(file);
    const std::int64_t now = NowOnDisk();
    if (known.modified != 0 && known.modified == info.modified && known.size == info.size)
        return known.paths;
    known.size = info.size;
    known.modified = now - info.modified > kTrustedAge ? info.modified : 0;
    known.paths = read();
    return known.paths;
}

const FileUses::Paths& FileUses::OfPage(ProjectContext& context, const Page& page) {
    const std::string folder = GetParentFolder(page.Filename);
    const auto read = [&] {
        std::string html = GetPageHTML(context, page);
        if (page.PageType == PageType::Frames) html = UncommentFrameset(html);
        std::vector<std::string> folders{folder};
        if (auto base = BaseFolder(html, folder)) folders.push_back(std::move(*base));
        PathCollector paths(context, std::move(folders));
        const Visit visit = [&](const std::string& reference) { paths.Add(reference); };
        PageReferences(visit).Read(html);
        return paths.Take();
    };
    if (!context.workspace.FindOpenPage(page.Key())) return Of(context, page.Filename, read);
    // The window may be ahead of the file.
    Known& known = files_[page.Filename];
    known = {0, 0, read()};
    return known.paths;
}

const FileUses::Paths& FileUses::OfStyleSheet(ProjectContext& context, const std::string& file) {
    return Of(context, file, [&] {
        std::string css;
        if (context.frame.files.Read(file, css) != FileError::None) return Paths();
        PathCollector paths(context, {GetParentFolder(file)});
        VisitStyles(css, [&](const std::string& reference) { paths.Add(reference); });
        return paths.Take();
    });
}

std::unordered_set<std::string> FilesInUse(ProjectContext& context, std::string_view exceptBelow) {
    std::unordered_set<std::string> used;
    AddUsesOfPages(context, exceptBelow, used);
    if (const Page* page = context.project.DefaultTemplate()) AddUses(context, *page, used);
    return used;
}

std::unordered_set<std::string> FilesInUseBySite(ProjectContext& context) {
    std::unordered_set<std::string> used;
    AddUsesOfPages(context, {}, used);
    return used;
}

void NoteUnusedAttachments(ProjectContext& context) {
    Trap(context.frame.errorLog, "ProjectFunctions.", "NoteUnusedAttachments", [&] {
        // 1. Most are used by the very page that lists them.
        std::vector<Attachment*> others;
        for (const PageIndexEntry& entry : context.project.PageIndex()) {
            std::optional<std::unordered_set<std::string>> used;
            for (Attachment& file : entry.Item->Attachments()) {
                if (file.Origin != AttachmentOrigin::Placed) continue;
                if (!used) used = FilesInUseBy(context, *entry.Item);
                file.State = AttachmentState::InUse;
                if (!used->contains(file.Filename()) && !IsPageFilename(file.Filename()))
                    others.push_back(&file);
            }
        }
        if (others.empty()) return;
        // 2. The others can be used by any page.
        const auto used = FilesInUse(context);
        for (Attachment* file : others)
            if (!used.contains(file->Filename())) file->State = AttachmentState::Stale;
    });
}

}  // namespace pw
