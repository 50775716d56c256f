#include "project/Paths.h"

#include <algorithm>

#include "frame/Context.h"
#include "frame/FunctionLibrary.h"
#include "platform/Text.h"
#include "project/Pages.h"
#include "project/References.h"

namespace pw {

namespace {

constexpr std::string_view kFileScheme = "file://";

bool IsDiskPath(std::string_view text) {
    return text.starts_with('\\') || (text.size() > 2 && text[1] == ':' && text[2] == '\\' &&
                                      std::isalpha(static_cast<unsigned char>(text[0])));
}

/** What stands behind the folder and its separator; "" for what does not lie below it. */
std::string PathBelow(std::string_view path, std::string_view folder) {
    if (folder.empty() || !IsInFolder(path, folder)) return {};
    const std::size_t length = folder.size() + (folder.ends_with('\\') ? 0 : 1);
    return path.size() > length ? std::string(path.substr(length)) : std::string();
}

}  // namespace

std::string GetVirtualPath(const ProjectContext& context, std::string_view file,
                           std::string_view pageKey) {
    const bool isAddress = StartsWithNoCase(file, kFileScheme);
    if (!isAddress && !IsDiskPath(file)) return std::string(file);
    std::string path = isAddress ? URLToPath(file) : std::string(file);

    if (const Page* page = GetPage(context, pageKey)) {
        // Addresses are escaped, paths on disk are not.
        if (isAddress && !FileExists(context.frame.files, path)) path = PercentDecode(path);
        const std::string pageFolder = GetParentFolder(page->Filename);
        if (!EqualsNoCase(GetParentFolder(path), pageFolder)) {
            const std::string below = PathBelow(path, context.frame.settings.PreviewFolder);
            if (!below.empty()) {
                path.clear();
                for (auto levels = std::count(pageKey.begin(), pageKey.end(), 'F'); levels > 0;
                     --levels)
                    path += "../";
                path += below;
            }
        } else if (!pageFolder.empty() && path.size() > pageFolder.size()) {
            path = PathBelow(path, pageFolder);
        }
    }
    return ReplaceAll(path, "\\", "/");
}

std::string GetPageFolder(const ProjectContext& context, std::string_view key) {
    const std::string& root = context.frame.settings.PreviewFolder;
    const Folder* folder = GetFolder(context, key);
    return folder && !folder->WorkingFolder.empty() ? BuildPath(root, folder->WorkingFolder) : root;
}

std::string GetMediaFolder(const ProjectContext& context, std::string_view key) {
    return BuildPath(GetPageFolder(context, key), "media");
}

std::string ResolvePath(const ProjectContext& context, std::string_view value,
                        std::string_view baseURL) {
    const auto candidates = ReferenceCandidates(baseURL, value);
    if (candidates.empty()) return {};
    for (const auto& candidate : candidates)
        if (FileExists(context.frame.files, candidate.path)) return candidate.path;
    return candidates.front().path;
}

}  // namespace pw
