#pragma once
// Parts of paths, and the paths between pages and files. Nothing here looks at the disk. Both the
// backslash of a path on disk and the slash of a link count as separators.
#include <string>
#include <string_view>

namespace pw {

/** Joins with exactly one backslash. */
std::string BuildPath(std::string_view folder, std::string_view name);
std::string GetFileName(std::string_view path);
/** The file's name without its last extension. */
std::string GetBaseName(std::string_view path);
/** Without the dot. */
std::string GetExtension(std::string_view path);
/** "" for a root or a bare name. */
std::string GetParentFolder(std::string_view path);
/** "C:\" or, where there are no drives, "\". */
std::string GetDriveRoot(std::string_view path);
/** True when `path` is `folder` or lies below it, without regard to case. */
bool IsInFolder(std::string_view path, std::string_view folder);

/**
 * A file address or a link as a path on disk: "file:///home/ann/a.gif" is \home\ann\a.gif. The
 * slash before a drive letter goes, any other is the root.
 */
std::string URLToPath(std::string_view url);

/**
 * The full form of a link for comparison with other full forms: joined to the folder, with slashes
 * and with ".." resolved.
 */
std::string ResolveRelativePath(std::string_view folder, std::string_view relative);

}  // namespace pw
