#include "project/Links.h"

#include <cctype>
#include <set>

#include "frame/Context.h"
#include "frame/FunctionLibrary.h"
#include "platform/Text.h"
#include "platform/dom/Document.h"
#include "project/FramesetMask.h"
#include "project/Pages.h"
#include "project/Paths.h"
#include "project/Workspace.h"

namespace pw {

namespace {

constexpr std::string_view kModule = "ProjectFunctions.";
constexpr const char* kNoFrame = "0";
constexpr const char* kFrame = "1";

// Pictures of the targets tree in the main image list.
constexpr int kPageImage = 5;
constexpr int kClosedFolderImage = 7;
constexpr int kOpenFolderImage = 8;
constexpr int kFrameImage = 45;

bool IsBlank(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

/** A value in a tag from `at` on: in double quotes, or up to the next blank or the tag's end. */
struct ValueRange {
    std::size_t begin;
    std::size_t end;
};
ValueRange ValueAt(std::string_view text, std::size_t at) {
    if (at < text.size() && text[at] == '"') {
        const auto close = text.find('"', at + 1);
        return {at + 1, close == std::string_view::npos ? text.size() : close};
    }
    std::size_t end = at;
    while (end < text.size() && !IsBlank(text[end]) && text[end] != '>')
        ++end;
    return {at, end};
}

TreeNode MakeNode(std::string key, std::string text, int image, int expandedImage = 0) {
    TreeNode node;
    node.key = std::move(key);
    node.text = std::move(text);
    node.tag = kNoFrame;
    node.image = image;
    node.expandedImage = expandedImage;
    return node;
}

void BuildTargetsFromPage(TreeView& tree, ProjectContext& context, const Page& page) {
    for (const std::string& name : FrameNames(GetPageHTML(context, page))) {
        TreeNode node = MakeNode(page.Key() + name, name, kFrameImage);
        node.tag = kFrame;
        tree.Add(page.Key(), std::move(node));
    }
}

void RemoveIfChildless(TreeView& tree, const std::string& key) {
    const TreeNode* node = tree.Find(key);
    if (node && node->children.empty()) tree.Remove(key);
}

void BuildTargetsTraverse(TreeView& tree, ProjectContext& context, const Pages& pages,
                          const Sections& sections, const std::string& parentKey) {
    for (const auto& page : pages) {
        if (page.PageType != PageType::Frames) continue;
        tree.Add(parentKey, MakeNode(page.Key(), page.Name, kPageImage));
        BuildTargetsFromPage(tree, context, page);
        RemoveIfChildless(tree, page.Key());
    }
    for (const auto& folder : sections) {
        tree.Add(parentKey,
                 MakeNode(folder.Key(), folder.Name, kClosedFolderImage, kOpenFolderImage));
        BuildTargetsTraverse(tree, context, folder.Pages(), folder.Sections(), folder.Key());
        RemoveIfChildless(tree, folder.Key());
    }
}

/** One rename, as a page sees it. */
class LinkRewriter {
  public:
    LinkRewriter(ProjectContext& context, const std::string& oldPath, const std::string& newPath)
        : context_(context), oldPath_(oldPath), newPath_(newPath) {}

    /** UpdateLinksInPage: true when the page was changed. */
    bool Update(Page& page) {
        key_ = page.Key();
        folder_ = GetPageFolder(context_, key_);
        oldFull_ = FullForm(oldPath_);
        newValue_ = GetVirtualPath(context_, newPath_, key_);
        const bool frames = page.PageType == PageType::Frames;
        if (OpenPage* open = context_.workspace.FindOpenPage(key_)) {
            open->SetToNormalEditMode();
            open->TakeOverEdits();
            return frames ? UpdateOpenFrames(*open) : UpdateAnchors(open->Document());
        }
        return UpdateClosed(page, frames);
    }

  private:
    std::string FullForm(const std::string& reference) const {
        return ResolveRelativePath(folder_, GetVirtualPath(context_, reference, key_));
    }

    bool Refers(const std::string& reference) const {
        if (reference.empty() || reference[0] == '#') return false;
        return FindNoCase(FullForm(reference), oldFull_) != std::string::npos ||
               FindNoCase(FullForm(PercentDecode(reference)), oldFull_) != std::string::npos;
    }

    bool UpdateAnchors(dom::Document& document) const {
        bool changed = false;
        dom::Document::Step step(document);
        for (dom::Node* link : document.links()) {
            if (!Refers(link->getAttribute("href"))) continue;
            document.setAttribute(*link, "href", newValue_);
            changed = true;
        }
        return changed;
    }

    /** Every "src" of a frameset text. */
    std::string UpdateSources(std::string_view html) const {
        const std::size_t length = GetFramesetText(html).size();
        std::string out;
        std::size_t copied = 0;
        for (auto at = FindNoCase(html.substr(0, length), "src"); at != std::string_view::npos;
             at = FindNoCase(html.substr(0, length), "src", at)) {
            at += 3;
            if (at >= length || (!IsBlank(html[at]) && html[at] != '=')) continue;
            while (at < length && (IsBlank(html[at]) || html[at] == '='))
                ++at;
            const ValueRange value = ValueAt(html, at);
            at = value.end;
            if (!Refers(std::string(html.substr(value.begin, value.end - value.begin)))) continue;
            out.append(html, copied, value.begin - copied).append(newValue_);
            copied = value.end;
        }
        return out.append(html.substr(copied));
    }

    bool UpdateOpenFrames(OpenPage& open) const {
        const std::string html = UncommentFrameset(open.Document().html());
        const std::string updated = UpdateSources(html);
        return updated != html && open.SetHTML(CommentFrameset(updated));
    }

    bool UpdateClosed(Page& page, bool frames) const {
        std::string bytes;
        if (context_.frame.files.Read(page.Filename, bytes) != FileError::None) return false;
        // Without the old name there is no reference, whatever else the page holds. A name with
        // characters that pages write in several ways is not looked for like this.
        const std::string name = GetFileName(oldPath_);
        const bool plain = name.find_first_of(" %&'\"<>") == std::string::npos;
        bool ascii = true;
        for (unsigned char c : name)
            ascii = ascii && c < 0x80;
        if (plain && ascii && FindNoCase(bytes, name) == std::string::npos &&
            bytes.find('%') == std::string::npos) {
            return false;
        }
        dom::ParseError error;
        auto document = dom::Document::parse(bytes, &error);
        if (!document) throw Failure(error.message);
        bool changed = false;
        if (frames) {
            const std::string html = document->html();
            const std::string updated = UpdateSources(html);
            changed = updated != html && document->setHtml(updated, &error);
        } else {
            changed = UpdateAnchors(*document);
        }
        if (!changed) return false;
        const FileError written = context_.frame.files.Write(page.Filename, document->bytes());
        if (written != FileError::None) throw Failure(Describe(written));
        page.Title = document->title();
        return true;
    }

    ProjectContext& context_;
    std::string oldPath_;
    std::string newPath_;
    std::string key_;
    std::string folder_;
    std::string oldFull_;
    std::string newValue_;
};

/** Names of the bookmarks of a page. */
std::set<std::string> BookmarksOf(dom::Document& document) {
    std::set<std::string> names;
    for (const dom::Node* node : document.all()) {
        if (const std::string* id = node->attribute("id")) names.insert(*id);
        const std::string* name = node->is("A") ? node->attribute("name") : nullptr;
        if (name) names.insert(*name);
    }
    return names;
}

}  // namespace

std::vector<std::string> FrameNames(std::string_view html) {
    const auto block = FindNoCase(html, "<!-- End Of Frame block -->");
    if (block != std::string_view::npos) html = html.substr(0, block);
    std::vector<std::string> names;
    std::size_t at = FindNoCase(html, "frameset");
    while (at != std::string_view::npos) {
        at = FindNoCase(html, "frame ", at);
        if (at == std::string_view::npos) break;
        at = FindNoCase(html, "name", at);
        if (at == std::string_view::npos) break;
        while (at < html.size() && html[at] != '=' && html[at] != '>')
            ++at;
        if (at < html.size() && html[at] == '=') ++at;
        while (at < html.size() && IsBlank(html[at]) && html[at] != '>')
            ++at;
        const ValueRange value = ValueAt(html, at);
        if (value.end > value.begin) {
            names.push_back(
                ReplaceAll(html.substr(value.begin, value.end - value.begin), "\"", ""));
        }
        at = value.end;
    }
    return names;
}

std::string GetPageHTML(ProjectContext& context, const Page& page) {
    if (OpenPage* open = context.workspace.FindOpenPage(page.Key())) {
        const std::string html = open->Document().html();
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

void BuildTargetsList(TreeView& tree, ProjectContext& context) {
    Trap(context.frame.errorLog, kModule, "BuildTargetsList", [&] {
        tree.Clear();
        tree.BeginUpdate();
        for (const auto& site : context.project.WebSites()) {
            TreeNode node = MakeNode(site.Key(), site.Name, 0);
            node.expanded = true;
            tree.Add("", std::move(node));
            BuildTargetsTraverse(tree, context, site.Pages(), site.Sections(), site.Key());
        }
        tree.EndUpdate();
    });
}

int UpdateLinksInProject(ProjectContext& context, const std::string& oldPath,
                         const std::string& newPath) {
    Workspace& workspace = context.workspace;
    workspace.ShowProgress(true);
    workspace.SetProgress(0);
    LinkRewriter rewriter(context, oldPath, newPath);
    const int pages = context.project.PageCount();
    int counter = 0;
    int changed = 0;
    for (const PageIndexEntry& entry : context.project.PageIndex()) {
        Page& page = *entry.Item;
        workspace.ShowStatus("Updating links on page '" + page.Name + "'");
        workspace.SetProgress(++counter * 100 / std::max(pages, 1));
        // A page that can't be processed is logged, and the walk goes on.
        changed += Trap(context.frame.errorLog, kModule, "UpdateLinksInPage", false,
                        [&] { return rewriter.Update(page); });
    }
    workspace.ShowProgress(false);
    workspace.ResetStatus();
    return changed;
}

bool RenamePage(ProjectContext& context, Page& page, const std::string& newName,
                std::string* reason) {
    return Trap(context.frame.errorLog, kModule, "RenamePage", false, [&] {
        for (unsigned char c : newName) {
            if (IsFilenameKey(c) && c >= 0x20) continue;
            if (reason)
                *reason =
                    "The file name '" + newName + "' holds a character that no file name can have.";
            return false;
        }
        const std::string oldPath = page.Filename;
        const std::string newPath = BuildPath(GetParentFolder(oldPath), newName);
        const FileError renamed = context.frame.files.Rename(oldPath, newPath);
        if (renamed != FileError::None) {
            if (reason) {
                *reason = "The file '" + GetFileName(oldPath) + "' can't be renamed to '" +
                          newName + "': " + Describe(renamed) + ".";
            }
            return false;
        }
        UpdateLinksInProject(context, oldPath, newPath);
        page.Filename = newPath;
        page.Path = BuildPath(GetParentFolder(page.Path), newName);
        context.project.IsDirty = true;
        if (OpenPage* open = context.workspace.FindOpenPage(page.Key())) open->RefreshCaption();
        return true;
    });
}

std::vector<LinkRecord> ListLinks(ProjectContext& context) {
    std::map<std::string, std::set<std::string>> bookmarks;  // by folded path of the page's file
    struct Pending {
        std::size_t record;
        std::string file;
        std::string bookmark;
    };
    std::vector<Pending> pending;
    std::vector<LinkRecord> records;
    for (const PageIndexEntry& entry : context.project.PageIndex()) {
        const Page& page = *entry.Item;
        auto document = dom::Document::parseText(UncommentFrameset(GetPageHTML(context, page)));
        if (!document) continue;
        bookmarks[FoldCase(page.Filename)] = BookmarksOf(*document);
        for (const dom::Node* link : document->links()) {
            LinkRecord record{page.Key(), link->getAttribute("href"), LinkState::Elsewhere};
            const auto hash = record.target.find('#');
            std::string path = record.target.substr(0, std::min(hash, record.target.find('?')));
            const std::string bookmark =
                hash == std::string::npos ? "" : PercentDecode(record.target.substr(hash + 1));
            const std::string file = path.empty() ? page.Filename
                                                  : ResolvePath(context, PercentDecode(path),
                                                                GetPageFolder(context, page.Key()));
            if (!file.empty()) {
                record.state =
                    context.frame.files.Stat(file).exists ? LinkState::Stands : LinkState::Missing;
                if (record.state == LinkState::Stands && !bookmark.empty()) {
                    pending.push_back({records.size(), FoldCase(file), bookmark});
                }
            }
            records.push_back(std::move(record));
        }
    }
    // Bookmarks can be looked up only when every page has been read.
    for (const Pending& link : pending) {
        const auto page = bookmarks.find(link.file);
        if (page != bookmarks.end() && !page->second.count(link.bookmark)) {
            records[link.record].state = LinkState::Missing;
        }
    }
    return records;
}

}  // namespace pw
