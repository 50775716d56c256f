#pragma once
#include <sys/types.h>

#include <functional>

#include "platform/FileSystem.h"

namespace pw {

/** The error of the interface for an errno value. */
FileError ErrorOf(int number);

/** Tells which ways of copying inside the kernel the two disks have refused. */
struct CopyMeans {
    bool clone = true;                  ///< sharing of blocks
    bool copyRange = true;              ///< copying without a buffer in this process
    std::function<bool()> isCancelled;  ///< see FileSystem
};

/** Copies the content between two open files: at most `size` bytes, however many come. `means` is
 *  learnt from file to file. */
FileError CopyContent(int from, int to, std::uint64_t size, CopyMeans& means);

/**
 * Copies all below the folder `from` into the folder `to`, both native paths; `to` is made if
 * missing. A link to a file of the tree is copied as that file; one to a file outside is left out
 * and gives NoPermission, one to a folder IsFolder, so that a copy never reaches outside the tree
 * it was told to copy. Names that hold a backslash give BadName. Goes on after an error and returns
 * the first one.
 */
FileError CopyFolderTree(const std::string& from, const std::string& to,
                         const std::function<bool()>& isCancelled = {});

/** Removes a folder with all below it, or the link that stands in its place. Native path. */
FileError RemoveFolderTree(const std::string& folder);

}  // namespace pw
