#pragma once
// Files and folders. Paths are absolute and written with backslashes on every system
// (\home\ann\site\a.gif); this interface alone translates them. Names are UTF-8 as far as the
// disk's are. A name that holds a backslash cannot be written so and is not listed.
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace pw {

enum class FileError {
    None,
    NotFound,
    Exists,
    NoPermission,
    NoSpace,
    ReadOnlyDisk,
    IsFolder,
    NotFolder,
    NotEmpty,
    BadName,
    Cancelled,
    IO
};
/** A short clause for messages, such as "the disk is full". */
std::string Describe(FileError error);

struct FileInfo {
    bool exists = false;
    bool isFolder = false;
    bool isLink = false;
    bool isRegular = false;  ///< a file with content of its own: no folder, link, pipe, device
    std::uint64_t size = 0;
    std::int64_t modified = 0;  ///< nanoseconds since 1970
};

struct FolderEntry {
    std::string name;
    bool isFolder = false;
    bool isLink = false;
    bool isRegular = false;
};

enum class Durability {
    Lazy,
    Synced,
    /** Straight into the file, half as dear: for scratch files that nobody needs after a crash. */
    InPlace
};

class FileSystem {
  public:
    virtual ~FileSystem() = default;

    virtual FileInfo Stat(std::string_view path) const = 0;  ///< follows no link
    [[nodiscard]] virtual FileError Read(std::string_view path, std::string& bytes) const = 0;
    /**
     * Replaces the file whole or leaves it as it was: writes beside it and renames. Where a link
     * stands, the link is replaced and what it leads to is left alone.
     */
    [[nodiscard]] virtual FileError Write(std::string_view path, std::string_view bytes,
                                          Durability durability = Durability::Lazy) = 0;
    [[nodiscard]] virtual FileError Append(std::string_view path, std::string_view bytes) = 0;
    [[nodiscard]] virtual FileError List(std::string_view folder,
                                         std::vector<FolderEntry>& entries) const = 0;
    /** Makes it and its parents. */
    [[nodiscard]] virtual FileError MakeFolder(std::string_view path) = 0;
    /** Also read-only ones. */
    [[nodiscard]] virtual FileError RemoveFile(std::string_view path) = 0;
    /** With all below it; links are removed, not followed. */
    [[nodiscard]] virtual FileError RemoveFolder(std::string_view path) = 0;
    /** Fails with Exists where the target exists, in whatever letter case. */
    [[nodiscard]] virtual FileError Rename(std::string_view from, std::string_view to) = 0;
    /** Replaces the target atomically. */
    [[nodiscard]] virtual FileError Replace(std::string_view from, std::string_view to) = 0;
    /** Overwrites. Shares the blocks or copies inside the kernel where the disk can. Never takes
     *  more bytes than the file had when it was opened. */
    [[nodiscard]] virtual FileError Copy(std::string_view from, std::string_view to) = 0;
    /**
     * Copies all below a folder into another, overwriting. Returns the first error but goes on. A
     * link to a file of the tree is copied as that file; one that leads out of it is left out and
     * gives NoPermission, one to a folder IsFolder.
     */
    [[nodiscard]] virtual FileError CopyTree(std::string_view from, std::string_view to) = 0;
    [[nodiscard]] virtual FileError Sync(std::string_view path) = 0;  ///< a file or a folder
    /** Absolute path of an existing file or folder with links and dots resolved, or "". */
    virtual std::string Canonical(std::string_view path) const = 0;

    /**
     * For files that a stranger has named: `path` is as Canonical gives it, and where meanwhile a
     * link, a pipe or a device has taken the place of any part of it, nothing is read. At most
     * `most` bytes come, and never more than the file had when it was opened.
     */
    [[nodiscard]] virtual FileError ReadResolved(std::string_view path, std::string& bytes,
                                                 std::uint64_t most = UINT64_MAX) const {
        if (!Stat(path).isRegular) return FileError::IO;
        const FileError error = Read(path, bytes);
        if (bytes.size() > most) bytes.resize(std::size_t(most));
        return error;
    }
    /** Copy, with the same care. */
    [[nodiscard]] virtual FileError CopyResolved(std::string_view from, std::string_view to) {
        return Stat(from).isRegular ? Copy(from, to) : FileError::IO;
    }

    /** Asked now and then within a long copy; true ends it with Cancelled, and the target is as it
     *  was. */
    std::function<bool()> isCancelled;
};

/** \home\ann to /home/ann, for the calls of the system and its libraries. */
std::string ToNativePath(std::string_view path);
/** /home/ann to \home\ann. */
std::string FromNativePath(std::string_view native);

/**
 * A path as the user typed it to a shell, relative to the current folder perhaps, as a path of the
 * program. "" for one that holds a backslash, which no path of the program can tell.
 */
std::string FromNativeArgument(const std::string& argument);

std::unique_ptr<FileSystem> MakePosixFileSystem();

}  // namespace pw
