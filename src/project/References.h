#pragma once
// The values of href, src and the like: which of them are local, which file they mean, and how a
// reference to a file is written.
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/FileSystem.h"

namespace pw {

/** A reference taken apart: "b.html?x=1#top" is "b.html" and "?x=1#top". */
struct SplitReference {
    std::string path;
    std::string suffix;
};
SplitReference SplitSuffix(std::string_view value);

/** The bookmark of a reference, decoded; "" without one. What stands behind ":~:" is for the
 * browser alone ("#:~:text=word") and belongs to no bookmark. */
std::string BookmarkOf(std::string_view value);

/** True for a value that means a file: not empty, no mere fragment, no address of the web, no
 *  "data:", "mailto:" or "javascript:". */
bool IsLocalReference(std::string_view value);

/** An absolute path with "." and ".." resolved and single separators, without asking the disk. */
std::string NormalizePath(std::string_view path);

/** The path that a local reference means when it stands in a page of that folder. Nothing is
 *  decoded and nothing is cut off. */
std::string JoinReference(std::string_view folder, std::string_view value);

/** The paths that a local reference can mean, most literal first: as written, percent-decoded, each
 *  with and without query and fragment. `suffix` is what has been cut off. A query that only looks
 *  like a path ("a.php?u=x/../b.htm") is always one. */
struct ReferenceCandidate {
    std::string path;
    std::string suffix;
};
std::vector<ReferenceCandidate> ReferenceCandidates(std::string_view folder,
                                                    std::string_view value);

/** Where a page of a site lies, which is what its references are relative to: paths on disk. */
struct PlaceInSite {
    std::string root;    ///< the site's folder
    std::string folder;  ///< the page's
};
/** What a reference in a page of the site can mean, in the same order. From the root ("/a.htm")
 *  means the root of the site, wherever that is going to be, and never that of the disk. */
std::vector<ReferenceCandidate> ReferenceCandidates(const PlaceInSite& place,
                                                    std::string_view value);

/** A file or a folder with all below it that has got another name or place; paths on disk. */
struct Move {
    std::string from;
    std::string to;
    bool keepsSuffix = true;  ///< whether links to it kept their query and fragment
};
/** The folder before a move of itself or of one that it lies in; else as it is. */
std::string FolderBefore(const Move& move, std::string_view folder);
/**
 * The reference as it must be written after the move, when it leads through what was moved, or when
 * its own page was: `before` is where the page lay, and `after` where it lies. None for one that
 * may stay. Matched as a whole and without regard to case; what the move does not concern is kept
 * as it was written: the other names, the query, the fragment, being from the root.
 */
std::optional<std::string> FollowMove(const Move& move, const PlaceInSite& before,
                                      const PlaceInSite& after, std::string_view value);

/** The first candidate that is a file on disk, looked for from each of the folders in turn. Files
 *  in hidden folders count only for pages that lie there too. */
std::optional<ReferenceCandidate> FindReferencedFile(const FileSystem& files,
                                                     const std::vector<std::string>& folders,
                                                     std::string_view value);

/** Escapes what must not stand raw in a link; letters beyond ASCII stay. */
std::string EncodeLink(std::string_view path);

/** Shortest link from a page in `folder` to `file`, escaped; both are paths on disk. */
std::string RelativeLink(std::string_view folder, std::string_view file);

/** True for a file whose name says that it is an HTML page. */
bool IsPageFilename(std::string_view name);

}  // namespace pw
