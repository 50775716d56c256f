#include "project/Media.h"

#include <algorithm>
#include <cctype>
#include <set>

#include "frame/Context.h"
#include "frame/FunctionLibrary.h"
#include "platform/Text.h"
#include "project/References.h"
#include "project/StyleText.h"

namespace pw {

namespace {

constexpr std::string_view kMediaName = "media";
constexpr std::string_view kMediaPrefix = "media/";
constexpr int kMaximumImports = 32;  ///< style sheets that import each other

enum class WhenMissing { Rewrite, Keep };

/** Where in a page a media file can be named. */
struct MediaAttribute {
    std::string_view tag;
    std::string_view name;
    WhenMissing whenMissing;
};
constexpr MediaAttribute kMediaAttributes[] = {
    {"body", "background", WhenMissing::Rewrite}, {"img", "src", WhenMissing::Rewrite},
    {"img", "lowsrc", WhenMissing::Rewrite},      {"table", "background", WhenMissing::Rewrite},
    {"td", "background", WhenMissing::Rewrite},   {"th", "background", WhenMissing::Keep},
    {"tr", "background", WhenMissing::Keep},      {"img", "dynsrc", WhenMissing::Keep},
    {"link", "href", WhenMissing::Keep},          {"script", "src", WhenMissing::Keep},
    {"input", "src", WhenMissing::Keep},          {"embed", "src", WhenMissing::Keep},
    {"object", "data", WhenMissing::Keep},        {"bgsound", "src", WhenMissing::Keep},
    {"audio", "src", WhenMissing::Keep},          {"video", "src", WhenMissing::Keep},
    {"video", "poster", WhenMissing::Keep},       {"source", "src", WhenMissing::Keep},
    {"track", "src", WhenMissing::Keep},
};

/** Of the links in a head, those that bring a file into the page. */
bool IsMediaLink(const dom::Node& link) {
    for (const auto& kind : Split(ReplaceAll(ToLower(link.getAttribute("rel")), "\t", " "), ' '))
        if (kind == "stylesheet" || kind == "icon" || kind == "apple-touch-icon") return true;
    return false;
}

bool NamesMedia(const dom::Node& element, const std::string& value) {
    if (element.is("link")) return IsMediaLink(element);
    // A page shown in an object is a page, not media.
    return !(element.is("object") || element.is("embed")) ||
           !IsPageFilename(SplitSuffix(value).path);
}

std::string SafeName(std::string_view path) {
    std::string name = ReplaceIllegalChars(MakeValidUtf8(GetFileName(path)), "_");
    for (char& c : name)
        if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F || c == '*') c = '_';
    return name;
}

/** "a.gif", "a2.gif", "a3.gif" … for 1, 2, 3 … */
std::string NumberedName(const std::string& name, int number) {
    if (number == 1) return name;
    const std::string extension = GetExtension(name);
    return GetBaseName(name) + std::to_string(number) + (extension.empty() ? "" : "." + extension);
}

bool IsStyleSheet(std::string_view file) {
    return EqualsNoCase(GetExtension(file), "css");
}

bool IsBlank(char c) {
    return std::isspace(static_cast<unsigned char>(c));
}

}  // namespace

/** What one run over a text works with. */
struct MediaPuller::Task {
    MediaFolder& folder;
    const std::vector<std::string>& sourceFolders;
    dom::Document* document = nullptr;  ///< none while a file is read
};

MediaPuller::MediaFolder& MediaPuller::FolderBeside(const std::string& targetFolder) {
    const std::string path = BuildPath(targetFolder, kMediaName);
    const auto [at, isNew] = folders_.try_emplace(path);
    if (!isNew) return at->second;
    at->second.path = path;
    std::vector<FolderEntry> entries;
    // A folder that is not there yet holds nothing.
    if (context_.frame.files.List(path, entries) != FileError::None) entries.clear();
    for (const auto& entry : entries)
        at->second.names.emplace(FoldCase(entry.name), entry.name);
    return at->second;
}

bool MediaPuller::SameContent(const std::string& file, const std::string& other) const {
    const FileSystem& files = context_.frame.files;
    if (GetFileSize(files, file) != GetFileSize(files, other)) return false;
    std::string a;
    std::string b;
    return files.Read(file, a) == FileError::None && files.Read(other, b) == FileError::None &&
           a == b;
}

std::string MediaPuller::Place(MediaFolder& folder, const std::string& file, int depth) {
    const auto known = folder.pulled.find(file);
    if (known != folder.pulled.end()) return known->second;
    const auto making = folder.inTheMaking.find(file);
    if (making != folder.inTheMaking.end()) return making->second;

    std::string name;
    if (GetParentFolder(file) == folder.path) {
        name = GetFileName(file);
        folder.pulled.emplace(file, name);
        if (IsStyleSheet(file)) NoteNeedsInPlace(folder, name);
        return name;
    }
    if (!MakeFolder(context_.frame.files, folder.path)) return {};
    name = IsStyleSheet(file) ? PlaceStyleSheet(folder, file, depth) : PlaceCopy(folder, file);
    if (!name.empty()) folder.pulled.emplace(file, name);
    return name;
}

std::string MediaPuller::PlaceCopy(MediaFolder& folder, const std::string& file) {
    FileSystem& files = context_.frame.files;
    const std::string wanted = SafeName(file);
    for (int number = 1;; ++number) {
        const std::string name = NumberedName(wanted, number);
        const auto existing = folder.names.find(FoldCase(name));
        if (existing == folder.names.end()) {
            if (files.Copy(file, BuildPath(folder.path, name)) != FileError::None) return {};
            folder.names.emplace(FoldCase(name), name);
            return name;
        }
        if (SameContent(file, BuildPath(folder.path, existing->second))) return existing->second;
    }
}

std::string MediaPuller::PlaceStyleSheet(MediaFolder& folder, const std::string& file, int depth) {
    FileSystem& files = context_.frame.files;
    std::string css;
    if (files.Read(file, css) != FileError::None) return {};
    const std::vector<std::string> sourceFolders{GetParentFolder(file)};
    const std::string wanted = SafeName(file);
    std::string placed;
    std::vector<std::string> used;
    for (int number = 1; placed.empty(); ++number) {
        // Style sheets can import each other in a circle, so the name is told before it is sure.
        const std::string name = NumberedName(wanted, number);
        folder.inTheMaking[file] = name;
        used.clear();
        const std::string text =
            RewriteStyles({folder, sourceFolders, nullptr}, css, "", depth + 1, used);
        const std::string target = BuildPath(folder.path, name);
        const auto existing = folder.names.find(FoldCase(name));
        if (existing == folder.names.end()) {
            if (files.Write(target, text) != FileError::None) break;
            folder.names.emplace(FoldCase(name), name);
            placed = name;
        } else if (ReadTextFile(files, BuildPath(folder.path, existing->second)) == text) {
            placed = existing->second;
        }
    }
    folder.inTheMaking.erase(file);
    if (!placed.empty()) folder.needs[placed] = used;
    return placed;
}

void MediaPuller::NoteNeedsInPlace(MediaFolder& folder, const std::string& name) {
    const std::string css = ReadTextFile(context_.frame.files, BuildPath(folder.path, name));
    std::vector<std::string> used;
    RewriteStyleReferences(css, [&](const std::string& reference) -> std::optional<std::string> {
        const auto found = FindReferencedFile(context_.frame.files, {folder.path}, reference);
        if (found && GetParentFolder(found->path) == folder.path)
            used.push_back(Place(folder, found->path, 0));
        return std::nullopt;
    });
    folder.needs[name] = used;
}

std::string MediaPuller::RewriteStyles(const Task& task, std::string_view css,
                                       std::string_view prefix, int depth,
                                       std::vector<std::string>& used) {
    if (depth > kMaximumImports) return std::string(css);
    return RewriteStyleReferences(
        css, [&](const std::string& reference) -> std::optional<std::string> {
            const auto found =
                FindReferencedFile(context_.frame.files, task.sourceFolders, reference);
            if (!found) return std::nullopt;
            const std::string name = Place(task.folder, found->path, depth);
            if (name.empty()) return std::nullopt;
            used.push_back(name);
            return std::string(prefix) + EncodeLink(name) + found->suffix;
        });
}

std::string MediaPuller::MissingName(const MediaFolder& folder, std::string_view reference) const {
    const std::string path = PercentDecode(SplitSuffix(Trim(reference)).path);
    const std::string wanted = SafeName(ReplaceAll(path, "/", "\\"));
    if (wanted.empty()) return {};
    // A picture that happens to have the name is not the one that is missing.
    int number = 1;
    while (folder.names.count(FoldCase(NumberedName(wanted, number))))
        ++number;
    return NumberedName(wanted, number);
}

void MediaPuller::PullElement(const Task& task, dom::Node& element,
                              std::vector<std::string>& used) {
    for (const auto& media : kMediaAttributes) {
        if (media.tag != element.localName()) continue;
        const std::string* value = element.attribute(media.name);
        if (!value || !IsLocalReference(*value) || !NamesMedia(element, *value)) continue;
        const auto found = FindReferencedFile(context_.frame.files, task.sourceFolders, *value);
        std::string name;
        std::string suffix;
        if (found) {
            name = Place(task.folder, found->path, 0);
            suffix = found->suffix;
            if (!name.empty()) used.push_back(name);
        } else if (media.whenMissing == WhenMissing::Rewrite) {
            name = MissingName(task.folder, *value);
            suffix = SplitSuffix(Trim(*value)).suffix;
        }
        if (name.empty()) continue;
        const std::string reference = std::string(kMediaPrefix) + EncodeLink(name) + suffix;
        if (reference != *value) task.document->setAttribute(element, media.name, reference);
    }
}

void MediaPuller::PullCandidates(const Task& task, dom::Node& element,
                                 std::vector<std::string>& used) {
    const std::string* candidates = element.attribute("srcset");
    if (!candidates) return;
    // "a.png 1x, b.png 2x": an address ends at a blank, a description at a comma.
    std::string rewritten;
    for (std::size_t i = 0; i < candidates->size();) {
        const char c = (*candidates)[i];
        if (IsBlank(c) || c == ',') {
            rewritten += c;
            ++i;
            continue;
        }
        std::size_t end = i;
        while (end < candidates->size() && !IsBlank((*candidates)[end]))
            ++end;
        const bool isLast = (*candidates)[end - 1] == ',';
        std::string address = candidates->substr(i, end - i - (isLast ? 1 : 0));
        const auto found = FindReferencedFile(context_.frame.files, task.sourceFolders, address);
        const std::string name = found ? Place(task.folder, found->path, 0) : std::string();
        if (!name.empty()) {
            used.push_back(name);
            address = std::string(kMediaPrefix) + EncodeLink(name) + found->suffix;
        }
        const std::size_t comma =
            isLast ? end - 1 : std::min(candidates->find(',', end), candidates->size());
        rewritten += address;
        if (comma > end) rewritten += candidates->substr(end, comma - end);
        i = comma;
    }
    if (rewritten != *candidates) task.document->setAttribute(element, "srcset", rewritten);
}

std::vector<std::string> MediaPuller::WithNeeds(const MediaFolder& folder,
                                                const std::vector<std::string>& used) {
    std::vector<std::string> paths;
    std::set<std::string> seen;
    std::vector<std::string> due(used.rbegin(), used.rend());
    while (!due.empty()) {
        const std::string name = due.back();
        due.pop_back();
        if (name.empty() || !seen.insert(name).second) continue;
        paths.push_back(BuildPath(folder.path, name));
        const auto needs = folder.needs.find(name);
        if (needs != folder.needs.end())
            due.insert(due.end(), needs->second.rbegin(), needs->second.rend());
    }
    return paths;
}

std::vector<std::string> MediaPuller::Pull(dom::Document& document,
                                           const std::vector<std::string>& sourceFolders,
                                           const std::string& targetFolder) {
    MediaFolder& folder = FolderBeside(targetFolder);
    const Task task{folder, sourceFolders, &document};
    std::vector<std::string> used;
    const dom::Document::Step step(document);
    // A copy, since the document's own list is made anew when something changes.
    const std::vector<dom::Node*> nodes = document.all();
    for (dom::Node* node : nodes) {
        if (!node->isElement()) continue;
        PullElement(task, *node, used);
        PullCandidates(task, *node, used);
        if (const std::string* style = node->attribute("style")) {
            const std::string text = RewriteStyles(task, *style, kMediaPrefix, 0, used);
            if (text != *style) document.setAttribute(*node, "style", text);
        }
        if (!node->is("style")) continue;
        for (dom::Node* child : node->children()) {
            if (!child->isText()) continue;
            const std::string text = RewriteStyles(task, child->data(), kMediaPrefix, 0, used);
            if (text != child->data()) document.setText(*child, text);
        }
    }
    return WithNeeds(folder, used);
}

std::vector<std::string> MediaPuller::PullFile(const std::string& file,
                                               const std::string& targetFolder) {
    MediaFolder& folder = FolderBeside(targetFolder);
    return WithNeeds(folder, {Place(folder, file, 0)});
}

std::vector<std::string> PullMedia(ProjectContext& context, dom::Document& document,
                                   const std::string& sourceFolder,
                                   const std::string& targetFolder) {
    const auto folders = TakeOverBase(document, {sourceFolder});
    if (folders.empty()) return {};
    return MediaPuller(context).Pull(document, folders, targetFolder);
}

std::vector<std::string> TakeOverBase(dom::Document& document,
                                      const std::vector<std::string>& folders) {
    for (dom::Node* base : document.tags("BASE")) {
        const std::string* address = base->attribute("href");
        if (!address || Trim(*address).empty()) continue;
        if (!IsLocalReference(*address)) return {};
        std::vector<std::string> moved;
        // What stands behind the last slash of a base address does not count.
        const std::string path = SplitSuffix(*address).path;
        const std::string upTo = path.substr(0, path.find_last_of("/\\") + 1);
        for (const auto& folder : folders)
            moved.push_back(JoinReference(folder, PercentDecode(upTo)));
        document.setAttribute(*base, "href", std::nullopt);
        return moved;
    }
    return folders;
}

}  // namespace pw
