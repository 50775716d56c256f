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

}  // namespace

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
    for (const auto& [text, suffix] : {SplitReference{whole, ""}, parts}) {
        add(text, suffix);
        add(PercentDecode(text), suffix);
    }
    return candidates;
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
