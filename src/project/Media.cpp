#include "project/Media.h"

#include <algorithm>
#include <cctype>
#include <set>
#include <utility>

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
    FileUse use;
};
constexpr MediaAttribute kMediaAttributes[] = {
    {"body", "background", WhenMissing::Rewrite, FileUse::Picture},
    {"img", "src", WhenMissing::Rewrite, FileUse::Picture},
    {"img", "lowsrc", WhenMissing::Rewrite, FileUse::Picture},
    {"table", "background", WhenMissing::Rewrite, FileUse::Picture},
    {"td", "background", WhenMissing::Rewrite, FileUse::Picture},
    {"th", "background", WhenMissing::Keep, FileUse::Picture},
    {"tr", "background", WhenMissing::Keep, FileUse::Picture},
    {"img", "dynsrc", WhenMissing::Keep, FileUse::Embedded},
    {"link", "href", WhenMissing::Keep, FileUse::StyleSheet},
    {"script", "src", WhenMissing::Keep, FileUse::Script},
    {"input", "src", WhenMissing::Keep, FileUse::Picture},
    {"embed", "src", WhenMissing::Keep, FileUse::Embedded},
    {"object", "data", WhenMissing::Keep, FileUse::Embedded},
    {"param", "value", WhenMissing::Keep, FileUse::Embedded},
    {"bgsound", "src", WhenMissing::Keep, FileUse::Embedded},
    {"audio", "src", WhenMissing::Keep, FileUse::Embedded},
    {"video", "src", WhenMissing::Keep, FileUse::Embedded},
    {"video", "poster", WhenMissing::Keep, FileUse::Picture},
    {"source", "src", WhenMissing::Keep, FileUse::Embedded},
    {"track", "src", WhenMissing::Keep, FileUse::Embedded},
    // Of drawings within the page.
    {"image", "href", WhenMissing::Keep, FileUse::Picture},
    {"image", "xlink:href", WhenMissing::Keep, FileUse::Picture},
    {"use", "href", WhenMissing::Keep, FileUse::Picture},
    {"use", "xlink:href", WhenMissing::Keep, FileUse::Picture},
    {"feimage", "href", WhenMissing::Keep, FileUse::Picture},
    {"feimage", "xlink:href", WhenMissing::Keep, FileUse::Picture},
    {"script", "href", WhenMissing::Keep, FileUse::Script},
    {"script", "xlink:href", WhenMissing::Keep, FileUse::Script},
};

/** What the links in a head that bring a file into the page use it for. */
std::optional<FileUse> UseOfLink(const dom::Node& link) {
    const auto words = [&](const char* attribute) {
        std::string text = ToLower(link.getAttribute(attribute));
        for (char& c : text)
            if (c == '\t' || c == '\n' || c == '\f') c = ' ';
        return Split(text, ' ');
    };
    for (const auto& kind : words("rel")) {
        if (kind == "stylesheet") return FileUse::StyleSheet;
        if (kind == "icon" || kind == "apple-touch-icon" || kind == "mask-icon")
            return FileUse::Picture;
        if (kind == "modulepreload") return FileUse::Script;
        if (kind != "preload" && kind != "prefetch") continue;
        const std::string as = words("as").front();
        if (as == "script" || as == "worker") return FileUse::Script;
        if (as == "style" || as == "font") return FileUse::Styled;
        if (as == "document") return std::nullopt;
        return FileUse::Embedded;
    }
    return std::nullopt;
}

/** None when the value names no media. */
std::optional<FileUse> UseOf(const MediaAttribute& media, const dom::Node& element,
                             const std::string& value) {
    if (element.is("link")) return UseOfLink(element);
    const std::string path = ReplaceAll(SplitSuffix(Trim(value)).path, "/", "\\");
    // A page shown in an object is a page, not media.
    const bool mayBePage = element.is("object") || element.is("embed") || element.is("param");
    if (mayBePage && IsPageFilename(path)) return std::nullopt;
    // Most parameters are words and numbers.
    if (element.is("param") && GetExtension(path).empty()) return std::nullopt;
    return media.use;
}

/** Whether a missing file can be meant: one beside the page, with a name that a file can have. */
bool CanBeMissing(const std::string& value, const std::string& name) {
    const std::string path = SplitSuffix(Trim(value)).path;
    const std::string last = path.substr(path.find_last_of("/\\") + 1);
    const bool isAbsolute =
        path.starts_with('/') || path.starts_with('\\') || path.find(':') != path.npos;
    const bool isGarbled =
        path.find("\uFFFD") != path.npos || std::any_of(path.begin(), path.end(), [](char c) {
            return static_cast<unsigned char>(c) < 0x20 || c == 0x7F;
        });
    constexpr std::size_t kLongest = 200;  // bytes; disks take 255
    return !isAbsolute && !isGarbled && !IsMadeByServer(value) && !IsServerScript(path) &&
           last.find_first_not_of('.') != last.npos && name.size() <= kLongest;
}

std::string SafeName(std::string_view path) {
    std::string name = ReplaceIllegalChars(MakeValidUtf8(GetFileName(path)), "_");
    for (char& c : name)
        if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F || c == '*') c = '_';
    // Servers keep files to themselves whose names begin so.
    if (name.starts_with('.')) name.front() = '_';
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
    FileAdmission& admission;
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
    return files.ReadResolved(file, a) == FileError::None &&
           files.Read(other, b) == FileError::None && a == b;
}

std::string MediaPuller::Place(const Task& task, const AdmittedFile& file, int depth) {
    MediaFolder& folder = task.folder;
    const auto known = folder.pulled.find(file.named);
    if (known != folder.pulled.end()) return known->second;
    const auto making = folder.inTheMaking.find(file.named);
    if (making != folder.inTheMaking.end()) return making->second;

    std::string name;
    if (GetParentFolder(file.named) == folder.path) {
        name = GetFileName(file.named);
        folder.pulled.emplace(file.named, name);
        if (IsStyleSheet(file.named)) NoteNeedsInPlace(task, name);
        return name;
    }
    if (!MakeFolder(context_.frame.files, folder.path)) return {};
    name = IsStyleSheet(file.named) ? PlaceStyleSheet(task, file, depth) : PlaceCopy(folder, file);
    if (!name.empty()) folder.pulled.emplace(file.named, name);
    return name;
}

std::string MediaPuller::PlaceCopy(MediaFolder& folder, const AdmittedFile& file) {
    FileSystem& files = context_.frame.files;
    const std::string wanted = SafeName(file.named);
    for (int number = 1;; ++number) {
        const std::string name = NumberedName(wanted, number);
        const auto existing = folder.names.find(FoldCase(name));
        if (existing == folder.names.end()) {
            if (files.CopyResolved(file.real, BuildPath(folder.path, name)) != FileError::None)
                return {};
            folder.names.emplace(FoldCase(name), name);
            return name;
        }
        if (SameContent(file.real, BuildPath(folder.path, existing->second)))
            return existing->second;
    }
}

std::string MediaPuller::MakeStyleSheet(const Task& task, const AdmittedFile& file,
                                        const std::string& css, const std::string& name, int depth,
                                        std::vector<std::string>& used) {
    const std::vector<std::string> sourceFolders{GetParentFolder(file.named)};
    const std::string reader = std::exchange(task.admission.page, file.named);
    // Style sheets can import each other in a circle, so the name is told before it is sure.
    task.folder.inTheMaking[file.named] = name;
    used.clear();
    std::string text = RewriteStyles({task.folder, sourceFolders, task.admission, nullptr}, css, "",
                                     depth + 1, used);
    task.folder.inTheMaking.erase(file.named);
    task.admission.page = reader;
    return text;
}

std::string MediaPuller::PlaceStyleSheet(const Task& task, const AdmittedFile& file, int depth) {
    FileSystem& files = context_.frame.files;
    MediaFolder& folder = task.folder;
    std::string css;
    if (files.ReadResolved(file.real, css) != FileError::None) return {};
    const std::string wanted = SafeName(file.named);
    std::string placed;
    std::vector<std::string> used;
    const auto former = folder.written.find(file.named);
    if (former != folder.written.end()) {
        const std::string name = former->second;
        const std::string text = MakeStyleSheet(task, file, css, name, depth, used);
        if (files.Write(BuildPath(folder.path, name), text) != FileError::None) return {};
        placed = name;
    }
    for (int number = 1; placed.empty(); ++number) {
        const std::string name = NumberedName(wanted, number);
        const std::string text = MakeStyleSheet(task, file, css, name, depth, used);
        const std::string target = BuildPath(folder.path, name);
        const auto existing = folder.names.find(FoldCase(name));
        if (existing == folder.names.end()) {
            if (files.Write(target, text) != FileError::None) return {};
            folder.names.emplace(FoldCase(name), name);
            folder.written.emplace(file.named, name);
            placed = name;
        } else if (ReadTextFile(files, BuildPath(folder.path, existing->second)) == text) {
            placed = existing->second;
        }
    }
    folder.needs[placed] = used;
    return placed;
}

void MediaPuller::NoteNeedsInPlace(const Task& task, const std::string& name) {
    const std::string css = ReadTextFile(context_.frame.files, BuildPath(task.folder.path, name));
    std::vector<std::string> used;
    RewriteStyleReferences(css, [&](const std::string& reference) -> std::optional<std::string> {
        const auto found = task.admission.Find({task.folder.path}, reference, FileUse::Styled);
        if (found && GetParentFolder(found->named) == task.folder.path)
            used.push_back(Place(task, *found, 0));
        return std::nullopt;
    });
    task.folder.needs[name] = used;
}

std::string MediaPuller::RewriteStyles(const Task& task, std::string_view css,
                                       std::string_view prefix, int depth,
                                       std::vector<std::string>& used) {
    if (depth > kMaximumImports) return std::string(css);
    return RewriteStyleReferences(
        css, [&](const std::string& reference) -> std::optional<std::string> {
            const auto found = task.admission.Find(task.sourceFolders, reference, FileUse::Styled);
            if (!found) return std::nullopt;
            const std::string name = Place(task, *found, depth);
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
    const std::string tag = ToLower(element.localName());
    for (const auto& media : kMediaAttributes) {
        if (media.tag != tag) continue;
        const std::string* value = element.attribute(media.name);
        if (!value || !IsLocalReference(*value)) continue;
        const auto use = UseOf(media, element, *value);
        if (!use) continue;
        Verdict why = Verdict::Missing;
        const auto found = task.admission.Find(task.sourceFolders, *value, *use, &why);
        std::string name;
        std::string suffix;
        if (found) {
            name = Place(task, *found, 0);
            suffix = found->suffix;
            if (!name.empty()) used.push_back(name);
        } else if (media.whenMissing == WhenMissing::Rewrite && why == Verdict::Missing) {
            name = MissingName(task.folder, *value);
            suffix = SplitSuffix(Trim(*value)).suffix;
            if (!CanBeMissing(*value, name)) continue;
        }
        if (name.empty()) continue;
        const std::string reference = std::string(kMediaPrefix) + EncodeLink(name) + suffix;
        if (reference != *value) task.document->setAttribute(element, media.name, reference);
    }
}

void MediaPuller::PullArchives(const Task& task, dom::Node& applet,
                               std::vector<std::string>& used) {
    const std::string* list = applet.attribute("archive");
    if (!list) return;
    // The names stand beside the classes, and so must those that take their place.
    const std::string codebase = Trim(applet.getAttribute("codebase"));
    if (!codebase.empty() && !IsLocalReference(codebase)) return;
    const bool isMoved = !codebase.empty() && codebase != "." && codebase != "./";
    std::vector<std::string> folders;
    for (const std::string& folder : task.sourceFolders)
        folders.push_back(isMoved ? JoinReference(folder, PercentDecode(codebase)) : folder);
    const std::string beside = GetParentFolder(task.folder.path);
    const std::string classes = isMoved ? JoinReference(beside, PercentDecode(codebase)) : beside;
    const char separator = applet.is("object") ? ' ' : ',';
    std::string rewritten;
    for (const std::string& item : Split(*list, separator)) {
        const std::string address = Trim(item);
        const auto found = task.admission.Find(folders, address, FileUse::Script);
        const std::string name = found ? Place(task, *found, 0) : std::string();
        rewritten += separator;
        if (name.empty()) {
            rewritten += item;
            continue;
        }
        used.push_back(name);
        const std::size_t at = item.find(address);
        rewritten += item.substr(0, at) + RelativeLink(classes, BuildPath(task.folder.path, name)) +
                     found->suffix + item.substr(at + address.size());
    }
    rewritten.erase(0, 1);
    if (rewritten != *list) task.document->setAttribute(applet, "archive", rewritten);
}

void MediaPuller::PullCandidates(const Task& task, dom::Node& element, std::string_view attribute,
                                 std::vector<std::string>& used) {
    const std::string* candidates = element.attribute(attribute);
    if (!candidates || HoldsServerCode(*candidates)) return;
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
        const auto found = task.admission.Find(task.sourceFolders, address, FileUse::Picture);
        const std::string name = found ? Place(task, *found, 0) : std::string();
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
    if (rewritten != *candidates) task.document->setAttribute(element, attribute, rewritten);
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
                                           const std::string& targetFolder,
                                           FileAdmission& admission) {
    MediaFolder& folder = FolderBeside(targetFolder);
    const Task task{folder, sourceFolders, admission, &document};
    std::vector<std::string> used;
    const dom::Document::Step step(document);
    // A copy, since the document's own list is made anew when something changes.
    const std::vector<dom::Node*> nodes = document.all();
    for (dom::Node* node : nodes) {
        if (!node->isElement()) continue;
        PullElement(task, *node, used);
        PullCandidates(task, *node, node->is("link") ? "imagesrcset" : "srcset", used);
        if (node->is("applet") || node->is("object")) PullArchives(task, *node, used);
        const std::string* style = node->attribute("style");
        if (style && !HoldsServerCode(*style)) {
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

std::vector<std::string> MediaPuller::PullFile(const AdmittedFile& file,
                                               const std::string& targetFolder,
                                               FileAdmission& admission) {
    MediaFolder& folder = FolderBeside(targetFolder);
    return WithNeeds(folder, {Place({folder, {}, admission, nullptr}, file, 0)});
}

std::vector<std::string> MediaPuller::PullChosenFile(const std::string& file,
                                                     const std::string& targetFolder) {
    FileAdmission admission(context_.frame.files);
    admission.AllowFile(file);
    // What a style sheet brings along lies beside it.
    admission.AllowFolder(GetParentFolder(file), FileAdmission::Taking::WhatTagsAreFor);
    std::string real;
    if (admission.Judge(file, FileUse::Linked, &real) != Verdict::Admitted) return {};
    return PullFile({file, real, ""}, targetFolder, admission);
}

void MediaPuller::StartAgain() {
    for (auto& [path, folder] : folders_)
        for (const auto& [source, name] : folder.written)
            folder.pulled.erase(source);
}

bool BringsFile(const dom::Node& element) {
    for (const auto& media : kMediaAttributes) {
        if (media.tag != element.localName()) continue;
        const std::string* value = element.attribute(media.name);
        if (value && UseOf(media, element, *value)) return true;
    }
    return false;
}

FileAdmission AdmissionOfProject(const ProjectContext& context) {
    FileAdmission admission(context.frame.files);
    admission.AllowFolder(context.frame.settings.PreviewFolder, FileAdmission::Taking::HiddenToo);
    return admission;
}

std::vector<std::string> PullMedia(ProjectContext& context, dom::Document& document,
                                   const std::string& sourceFolder,
                                   const std::string& targetFolder) {
    FileAdmission admission = AdmissionOfProject(context);
    const auto folders = TakeOverBase(document, {sourceFolder}, admission);
    if (folders.empty()) return {};
    return MediaPuller(context).Pull(document, folders, targetFolder, admission);
}

std::vector<std::string> TakeOverBase(dom::Document& document,
                                      const std::vector<std::string>& folders,
                                      FileAdmission& admission) {
    for (dom::Node* base : document.tags("BASE")) {
        const std::string* address = base->attribute("href");
        if (!address || Trim(*address).empty()) continue;
        if (!IsLocalReference(*address) || HoldsServerCode(*address)) return {};
        // What stands behind the last slash of a base address does not count.
        const std::string path = SplitSuffix(Trim(*address)).path;
        std::string upTo = PercentDecode(path.substr(0, path.find_last_of("/\\") + 1));
        const bool isFromRoot = upTo.starts_with('/') || upTo.starts_with('\\');
        if (isFromRoot) upTo.erase(0, std::min(upTo.find_first_not_of("/\\"), upTo.size()));
        std::vector<std::string> moved;
        for (const auto& folder : isFromRoot ? admission.Roots(folders.front()) : folders) {
            const std::string there = JoinReference(folder, upTo);
            if (admission.AdmitsFolder(there)) {
                moved.push_back(there);
            } else {
                admission.NoteFolder(*address, there);
            }
        }
        if (!moved.empty()) document.setAttribute(*base, "href", std::nullopt);
        return moved;
    }
    return folders;
}

}  // namespace pw
