#include "frame/Paths.h"

#include "platform/Text.h"

namespace pw {

namespace {

constexpr std::string_view kSeparators = "\\/";

bool IsSeparator(char c) {
    return c == '\\' || c == '/';
}
bool IsDriveLetter(char c) {
    return (c | 32) >= 'a' && (c | 32) <= 'z';
}
bool StartsWithDrive(std::string_view path) {
    return path.size() >= 2 && path[1] == ':' && IsDriveLetter(path[0]);
}

std::string_view WithoutLastSeparators(std::string_view path) {
    while (path.size() > 1 && IsSeparator(path.back()))
        path.remove_suffix(1);
    return path;
}

}  // namespace

std::string BuildPath(std::string_view folder, std::string_view name) {
    if (folder.empty()) return std::string(name);
    while (!name.empty() && IsSeparator(name.front()))
        name.remove_prefix(1);
    while (!folder.empty() && IsSeparator(folder.back()))
        folder.remove_suffix(1);
    return std::string(folder) + "\\" + std::string(name);
}

std::string GetFileName(std::string_view path) {
    path = WithoutLastSeparators(path);
    const auto at = path.find_last_of(kSeparators);
    return std::string(at == path.npos ? path : path.substr(at + 1));
}

std::string GetBaseName(std::string_view path) {
    const std::string name = GetFileName(path);
    return name.substr(0, name.rfind('.'));
}

std::string GetExtension(std::string_view path) {
    const std::string name = GetFileName(path);
    const auto dot = name.rfind('.');
    return dot == name.npos ? "" : name.substr(dot + 1);
}

std::string GetParentFolder(std::string_view path) {
    path = WithoutLastSeparators(path);
    const auto at = path.find_last_of(kSeparators);
    if (at == path.npos || at + 1 == path.size()) return "";
    const std::string_view parent = WithoutLastSeparators(path.substr(0, at + 1));
    const bool drive = parent.size() == 2 && StartsWithDrive(parent);
    return drive ? std::string(parent) + "\\" : std::string(parent);
}

std::string GetDriveRoot(std::string_view path) {
    if (StartsWithDrive(path)) return std::string(path.substr(0, 2)) + "\\";
    return path.empty() ? "" : "\\";
}

bool IsInFolder(std::string_view path, std::string_view folder) {
    folder = WithoutLastSeparators(folder);
    if (folder.empty()) return false;
    if (EqualsNoCase(path, folder)) return true;
    const bool root = folder.size() == 1 && IsSeparator(folder.front());
    return StartsWithNoCase(path, std::string(folder) + (root ? "" : "\\"));
}

std::string URLToPath(std::string_view url) {
    constexpr std::string_view scheme = "file://";
    if (StartsWithNoCase(url, scheme)) url.remove_prefix(scheme.size());
    if (url.starts_with('/') && StartsWithDrive(url.substr(1))) url.remove_prefix(1);
    return ReplaceAll(url, "/", "\\");
}

std::string ResolveRelativePath(std::string_view folder, std::string_view relative) {
    std::string joined = ReplaceAll(BuildPath(folder, relative), "\\", "/");
    for (const char* scheme : {"http:", "file:"}) {
        // COMPAT: of the scheme only its colon stays. Full forms are compared with each other and
        // never shown.
        const auto at = FindNoCase(joined, scheme);
        if (at != joined.npos) joined.erase(0, at + 4);
    }
    auto segments = Split(joined, '/');
    for (auto& segment : segments)
        segment = Trim(segment);
    // From the end, so that the ".." of "a/b/../../c" take "b" and "a" in turn.
    std::vector<std::string_view> kept;
    int toDrop = 0;
    for (std::size_t i = segments.size(); i-- > 0;) {
        const bool root = i == 0 && segments[i].empty();
        if (segments[i] == ".") continue;
        if (segments[i] == "..")
            ++toDrop;
        else if (toDrop > 0 && !root)
            --toDrop;
        else
            kept.push_back(segments[i]);
    }
    std::string path;
    for (auto segment = kept.rbegin(); segment != kept.rend(); ++segment) {
        if (segment != kept.rbegin()) path += '/';
        path += *segment;
    }
    return path;
}

}  // namespace pw
