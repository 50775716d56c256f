#pragma once
// Paths between the pages of the project and the files that they use. A link or a media reference
// in a page is a virtual path: relative, with forward slashes.
#include <string>
#include <string_view>

namespace pw {

struct ProjectContext;

/**
 * How the page of that key reaches a file: "../media/a.gif". Changes only paths on disk and "file:"
 * addresses; links, addresses of the web and empty texts come back as they are.
 */
std::string GetVirtualPath(const ProjectContext& context, std::string_view file,
                           std::string_view pageKey);

/** The folder on disk of a folder or site, or of the folder that a page lies in. Of a key that
 *  names nothing: the top level. */
std::string GetPageFolder(const ProjectContext& context, std::string_view key);

/** The `media` folder in `GetPageFolder(key)`. */
std::string GetMediaFolder(const ProjectContext& context, std::string_view key);

/**
 * The path on disk of a reference in a page whose folder is `baseURL` (a path or a "file:"
 * address). The file need not exist; "" for what lies elsewhere, such as an address of the web.
 */
std::string ResolvePath(const ProjectContext& context, std::string_view value,
                        std::string_view baseURL);

}  // namespace pw
