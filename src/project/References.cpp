#include "project/References.h"

#include <algorithm>
#include <cctype>

#include "frame/FunctionLibrary.h"
#include "platform/Text.h"

namespace pw {

namespace {

bool IsDriveAt(std::string_view text) {
    return text.size() >= 3 && std::isalpha(static_cast<unsigned char>(text[0])) &&
           text[1] == ':' && (text[2] == '\\' || text[2] == '/');
}

/** Length of a leading scheme such as "http", 0 when there is none. A drive letter is no scheme. */
std::size_t SchemeLength(std::string_view value) {
    if (value.empty() || !std::isalpha(static_cast<unsigned char>(value[0]))) return 0;
    std::size_t i = 1;
    while (i < value.size() && (std::isalnum(static_cast<unsigned char>(value[i])) ||
                                value[i] == '+' || value[i] == '-' || value[i] == '.'))
        ++i;
    return i > 1 && i < value.size() && value[i] == ':' ? i : 0;
}

bool IsFileAddress(std::string_view value) {
    return StartsWithNoCase(value, "file:");
}

std::vector<std::string> Segments(std::string_view path) {
    std::vector<std::string> segments;
    for (auto& segment : Split(path, '\\'))
        if (!segment.empty()) segments.push_back(std::move(segment));
    return segments;
}

/** Whether the way from the folder to the file leads through a hidden folder. A page from elsewhere
 *  must not carry keys and passwords out of the user's home. */
bool IsHiddenFrom(std::string_view folder, std::string_view file) {
    const auto from = Segments(folder);
    const auto to = Segments(file);
    std::size_t i = 0;
    while (i < from.size() && i < to.size() && from[i] == to[i])
        ++i;
    return std::any_of(to.begin() + long(i), to.end(),
                       [](const std::string& segment) { return segment.starts_with('.'); });
}

bool HoldsSeparator(std::string_view text) {
    return text.find_first_of("/\\") != text.npos;
}

/** Where the same text would be a path, it must not lead anywhere by way of the query. */
bool CanBelongToName(std::string_view suffix) {
    return !HoldsSeparator(suffix) && !HoldsSeparator(PercentDecode(suffix));
}

/** One step of a path, as it is named and as it is written in a reference. */
struct Step {
    std::string name;
    std::string written;
    bool Is(const std::string& other) const {
        return EqualsNoCase(name, other) || EqualsNoCase(PercentDecode(name), other);
    }
};
using Steps = std::vector<Step>;

Steps StepsOf(std::string_view path) {
    Steps steps;
    for (auto& segment : Segments(path)) {
        std::string written = EncodeLink(segment);
        if (written.starts_with("./")) written.erase(0, 2);
        steps.push_back({std::move(segment), std::move(written)});
    }
    return steps;
}

/** The steps from the root of the disk to what a path in a reference means. */
Steps FollowPath(const PlaceInSite& place, const std::string& path) {
    const bool isFromDisk = IsFileAddress(path) || path.starts_with('\\') || IsDriveAt(path);
    if (isFromDisk)
        return StepsOf(JoinReference("", IsFileAddress(path) ? PercentDecode(path) : path));
    Steps steps = StepsOf(path.starts_with('/') ? place.root : place.folder);
    for (auto& segment : Segments(ReplaceAll(path, "/", "\\"))) {
        if (segment == ".") continue;
        if (segment != "..") {
            steps.push_back({segment, segment});
        } else if (!steps.empty()) {
            steps.pop_back();
        }
    }
    return steps;
}

bool LeadsThrough(const Steps& steps, const std::vector<std::string>& names) {
    return steps.size() >= names.size() &&
           std::equal(names.begin(), names.end(), steps.begin(),
                      [](const std::string& name, const Step& step) { return step.Is(name); });
}

bool AreSame(const Steps& one, const Steps& other) {
    return std::equal(one.begin(), one.end(), other.begin(), other.end(),
                      [](const Step& a, const Step& b) {
                          return a.name == b.name || PercentDecode(a.name) == PercentDecode(b.name);
                      });
}

/** The path with another name for the `number`th of its steps that is called `from`, as far as
 * there is one; what is around it stays as it was written. */
std::optional<std::string> WithName(std::string_view path, int number, const std::string& from,
                                    const std::string& to) {
    for (std::size_t at = 0; at < path.size();) {
        const std::size_t end = std::min(path.find_first_of("/\\", at), path.size());
        const std::string written(path.substr(at, end - at));
        if (Step{written, written}.Is(from) && --number == 0)
            return std::string(path.substr(0, at)) + to + std::string(path.substr(end));
        at = end + 1;
    }
    return std::nullopt;
}

bool MeansFolder(std::string_view path) {
    const std::string_view last = path.substr(path.find_last_of("/\\") + 1);
    return last.empty() || last == "." || last == "..";
}

std::string WriteRelative(const std::string& folder, const Steps& steps, bool isFolder) {
    const Steps from = StepsOf(folder);
    std::size_t common = 0;
    while (common < from.size() && common + (isFolder ? 0 : 1) < steps.size() &&
           from[common].name == steps[common].name)
        ++common;
    std::string link;
    for (std::size_t i = common; i < from.size(); ++i)
        link += "../";
    for (std::size_t i = common; i < steps.size(); ++i)
        link += steps[i].written + (i + 1 < steps.size() || isFolder ? "/" : "");
    if (link.empty() || SchemeLength(link) > 0) link.insert(0, "./");
    return link;
}

}  // namespace

std::string BookmarkOf(std::string_view value) {
    const auto hash = value.find('#');
    if (hash == value.npos) return {};
    const std::string_view fragment = value.substr(hash + 1);
    return PercentDecode(fragment.substr(0, fragment.find(":~:")));
}

SplitReference SplitSuffix(std::string_view value) {
    const auto at = std::min(value.find_first_of("?#"), value.size());
    return {std::string(value.substr(0, at)), std::string(value.substr(at))};
}

bool IsLocalReference(std::string_view value) {
    const std::string trimmed = Trim(value);
    if (trimmed.empty() || trimmed[0] == '#' || trimmed[0] == '?') return false;
    if (trimmed.starts_with("//") || trimmed.starts_with("\\\\")) return false;
    return IsFileAddress(trimmed) || SchemeLength(trimmed) == 0;
}

std::string NormalizePath(std::string_view path) {
    std::vector<std::string> kept;
    for (auto& segment : Segments(path)) {
        if (segment == ".") continue;
        if (segment != "..") {
            kept.push_back(std::move(segment));
        } else if (!kept.empty()) {
            kept.pop_back();
        }
    }
    std::string normal;
    const bool hasDrive = IsDriveAt(path);
    for (const auto& segment : kept)
        normal += (hasDrive && normal.empty() ? "" : "\\") + segment;
    return normal.empty() ? "\\" : normal;
}

std::string JoinReference(std::string_view folder, std::string_view value) {
    const std::string base =
        IsFileAddress(folder) ? PercentDecode(URLToPath(folder)) : ReplaceAll(folder, "/", "\\");
    std::string trimmed = Trim(value);
    if (StartsWithNoCase(trimmed, "file:") && !StartsWithNoCase(trimmed, "file://"))
        trimmed.erase(0, 5);
    const std::string path = URLToPath(trimmed);
    const bool isAbsolute = path.starts_with('\\') || IsDriveAt(path);
    return NormalizePath(isAbsolute ? path : base + "\\" + path);
}

std::vector<ReferenceCandidate> ReferenceCandidates(std::string_view folder,
                                                    std::string_view value) {
    std::vector<ReferenceCandidate> candidates;
    if (!IsLocalReference(value)) return candidates;
    const auto add = [&](const std::string& text, const std::string& suffix) {
        if (text.empty() || text.find('\0') != text.npos) return;
        const std::string path = JoinReference(folder, text);
        const auto isSame = [&](const auto& known) { return known.path == path; };
        if (std::none_of(candidates.begin(), candidates.end(), isSame))
            candidates.push_back({path, suffix});
    };
    const std::string whole = Trim(value);
    const SplitReference parts = SplitSuffix(whole);
    const auto addBoth = [&](const std::string& text, const std::string& suffix) {
        add(text, suffix);
        add(PercentDecode(text), suffix);
    };
    if (CanBelongToName(parts.suffix)) addBoth(whole, "");
    addBoth(parts.path, parts.suffix);
    return candidates;
}

std::vector<ReferenceCandidate> ReferenceCandidates(const PlaceInSite& place,
                                                    std::string_view value) {
    const std::string trimmed = Trim(value);
    const bool isFromRoot = trimmed.starts_with('/') && IsLocalReference(trimmed);
    // The point keeps what follows from reading as another host.
    return isFromRoot ? ReferenceCandidates(place.root, "." + trimmed)
                      : ReferenceCandidates(place.folder, trimmed);
}

std::string FolderBefore(const Move& move, std::string_view folder) {
    if (!IsInFolder(folder, move.to)) return std::string(folder);
    return move.from + std::string(folder.substr(move.to.size()));
}

std::optional<std::string> FollowMove(const Move& move, const PlaceInSite& before,
                                      const PlaceInSite& after, std::string_view value) {
    const std::string whole = Trim(value);
    if (!IsLocalReference(whole)) return std::nullopt;
    const std::vector<std::string> from = Segments(move.from);
    // 1. What it means. A sign that begins a suffix can also belong to the name of what was moved.
    SplitReference parts = SplitSuffix(whole);
    Steps steps = FollowPath(before, whole);
    bool isConcerned = !parts.suffix.empty() && CanBelongToName(parts.suffix) &&
                       steps.size() == from.size() && LeadsThrough(steps, from);
    if (isConcerned) {
        parts = {whole, ""};
    } else {
        if (parts.path.empty()) return std::nullopt;
        steps = FollowPath(before, parts.path);
        isConcerned = LeadsThrough(steps, from);
    }
    // 2. Where that is now.
    if (isConcerned) {
        Steps moved = StepsOf(move.to);
        moved.insert(moved.end(), steps.begin() + long(from.size()), steps.end());
        steps = std::move(moved);
    } else if (before.folder == after.folder) {
        return std::nullopt;
    }
    if (!LeadsThrough(steps, Segments(after.root))) return std::nullopt;
    // 3. As it is written it may lead there all the same.
    if (AreSame(steps, FollowPath(after, parts.path))) return std::nullopt;
    // 4. A new name alone goes where the old one stands.
    const bool isOnlyRenamed = GetParentFolder(move.from) == GetParentFolder(move.to);
    if (isConcerned && isOnlyRenamed && !IsFileAddress(parts.path)) {
        const std::string name = StepsOf(GetFileName(move.to)).back().written;
        for (int number = 1; const auto path = WithName(parts.path, number, from.back(), name);
             ++number)
            if (AreSame(steps, FollowPath(after, *path)))
                return (SchemeLength(*path) > 0 ? "./" : "") + *path + parts.suffix;
    }
    // 5. Written anew.
    const bool isFolder = MeansFolder(parts.path);
    if (!parts.path.starts_with('/'))
        return WriteRelative(after.folder, steps, isFolder) + parts.suffix;
    std::string link;
    for (std::size_t i = Segments(after.root).size(); i < steps.size(); ++i)
        link += "/" + steps[i].written;
    return link + (isFolder ? "/" : "") + parts.suffix;
}

std::optional<ReferenceCandidate> FindReferencedFile(const FileSystem& files,
                                                     const std::vector<std::string>& folders,
                                                     std::string_view value) {
    for (const auto& folder : folders)
        for (auto& candidate : ReferenceCandidates(folder, value))
            if (FileExists(files, candidate.path) && !IsHiddenFrom(folder, candidate.path))
                return std::move(candidate);
    return std::nullopt;
}

std::string EncodeLink(std::string_view path) {
    static constexpr char digits[] = "0123456789ABCDEF";
    std::string encoded;
    for (const unsigned char c : path) {
        const bool isPlain =
            std::isalnum(c) || c >= 0x80 ||
            std::string_view("-_.~/!$&'*+;=@:").find(char(c)) != std::string_view::npos;
        if (isPlain) {
            encoded += char(c);
        } else {
            encoded += {'%', digits[c >> 4], digits[c & 15]};
        }
    }
    // A colon in the first segment would read as the end of a scheme.
    if (SchemeLength(encoded) > 0) encoded.insert(0, "./");
    return encoded;
}

std::string RelativeLink(std::string_view folder, std::string_view file) {
    const auto from = Segments(folder);
    const auto to = Segments(file);
    std::size_t common = 0;
    while (common < from.size() && common + 1 < to.size() && from[common] == to[common])
        ++common;
    std::string link;
    for (std::size_t i = common; i < from.size(); ++i)
        link += "../";
    for (std::size_t i = common; i < to.size(); ++i)
        link += to[i] + (i + 1 < to.size() ? "/" : "");
    return EncodeLink(link);
}

bool IsPageFilename(std::string_view name) {
    const std::string extension = GetExtension(name);
    static constexpr std::string_view kinds[] = {"htm", "html", "xhtml", "xht", "shtml", "shtm"};
    return std::any_of(std::begin(kinds), std::end(kinds),
                       [&](std::string_view kind) { return EqualsNoCase(extension, kind); });
}

}  // namespace pw
