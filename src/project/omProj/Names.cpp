#include "project/omProj/Names.h"

#include <algorithm>

#include "platform/Text.h"

namespace pw {
namespace {

constexpr std::size_t kLongestName = 2048;
constexpr std::size_t kLongestPart = 255;

bool IsSafePart(std::string_view part) {
    if (part.empty() || part.size() > kLongestPart) return false;
    // "..", and what some disks take for it.
    return part.find_first_not_of(". ") != std::string_view::npos;
}

bool IsDriveLetter(std::string_view name) {
    const unsigned char letter = name.empty() ? 0 : name[0] | 0x20;
    return name.size() >= 2 && letter >= 'a' && letter <= 'z' && name[1] == ':';
}

std::string Fold(std::string_view name) {
    const bool ascii =
        std::all_of(name.begin(), name.end(), [](unsigned char c) { return c < 128; });
    if (!ascii) return FoldCase(name);
    std::string folded(name);
    for (char& c : folded)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c | 0x20);
    return folded;
}

}  // namespace

bool IsSafeName(std::string_view name) {
    if (name.empty() || name.size() > kLongestName || IsDriveLetter(name)) return false;
    for (const unsigned char c : name)
        if (c < 0x20 || c == 0x7F || c == '\\') return false;
    for (std::size_t start = 0;;) {
        const std::size_t end = std::min(name.find('/', start), name.size());
        if (!IsSafePart(name.substr(start, end - start))) return false;
        if (end == name.size()) return true;
        start = end + 1;
    }
}

bool IsSafeFolderName(std::string_view name) {
    return name.empty() || IsSafeName(WithoutOuterSlashes(name));
}

std::string_view WithoutOuterSlashes(std::string_view name) {
    if (!name.empty() && name.front() == '/') name.remove_prefix(1);
    if (!name.empty() && name.back() == '/') name.remove_suffix(1);
    return name;
}

bool IsSafeLeaf(std::string_view name) {
    return name.empty() || (IsSafeName(name) && name.find('/') == std::string_view::npos);
}

bool ClimbsUp(std::string_view path) {
    std::string name = "/" + std::string(path) + "/";
    std::replace(name.begin(), name.end(), '\\', '/');
    return name.find("/../") != std::string::npos;
}

std::optional<std::string> NameBelow(std::string_view folder, std::string_view path) {
    while (!folder.empty() && folder.back() == '\\')
        folder.remove_suffix(1);
    if (path.size() <= folder.size() + 1 || !path.starts_with(folder) ||
        path[folder.size()] != '\\')
        return std::nullopt;
    std::string name(path.substr(folder.size() + 1));
    std::replace(name.begin(), name.end(), '\\', '/');
    return name;
}

std::string PathBelow(std::string_view folder, std::string_view name) {
    while (!folder.empty() && folder.back() == '\\')
        folder.remove_suffix(1);
    std::string path;
    path.reserve(folder.size() + 1 + name.size());
    path.append(folder).append(1, '\\').append(name);
    std::replace(path.begin() + static_cast<std::ptrdiff_t>(folder.size()), path.end(), '/', '\\');
    return path;
}

NameRegister::Verdict NameRegister::Enter(const std::string& name) {
    std::string folded = Fold(name);
    const auto [at, isNew] = files_.try_emplace(folded, name);
    if (!isNew) {
        other_ = at->second;
        return at->second == name ? Verdict::Known : Verdict::Collides;
    }
    if (folders_.contains(folded)) {
        other_ = name;
        return Verdict::Collides;
    }
    // No folder above it may be a file. Folders seen before have no file in their way.
    for (std::size_t slash = folded.rfind('/'); slash != std::string::npos && slash > 0;
         slash = folded.rfind('/', slash - 1)) {
        folded.resize(slash);
        if (!folders_.insert(folded).second) break;
        if (const auto file = files_.find(folded); file != files_.end()) {
            other_ = file->second;
            return Verdict::Collides;
        }
    }
    return Verdict::New;
}

}  // namespace pw
