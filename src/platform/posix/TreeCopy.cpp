#include "platform/posix/TreeCopy.h"

#include <dirent.h>
#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstring>

#include "platform/posix/Descriptor.h"

namespace pw {

namespace {

constexpr std::size_t kBufferSize = 128 * 1024;

bool IsCancelled(const CopyMeans& means) {
    return means.isCancelled && means.isCancelled();
}

/** Files that the system makes up as they are read can be without end: `size` is the limit. */
FileError CopyByBuffer(int from, int to, std::uint64_t size, const CopyMeans& means) {
    thread_local std::vector<char> buffer(kBufferSize);
    while (size > 0) {
        if (IsCancelled(means)) return FileError::Cancelled;
        const auto wanted = std::size_t(std::min<std::uint64_t>(size, buffer.size()));
        const ssize_t got = ::read(from, buffer.data(), wanted);
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) return ErrorOf(errno);
        if (got == 0) return FileError::None;
        for (ssize_t done = 0; done < got;) {
            const ssize_t put = ::write(to, buffer.data() + done, std::size_t(got - done));
            if (put < 0 && errno == EINTR) continue;
            if (put < 0) return ErrorOf(errno);
            done += put;
        }
        size -= std::uint64_t(got);
    }
    return FileError::None;
}

class DirectoryStream {
  public:
    explicit DirectoryStream(Descriptor folder) {
        stream_ = ::fdopendir(folder.Get());
        if (stream_) folder.Release();
    }
    DirectoryStream(const DirectoryStream&) = delete;
    DirectoryStream& operator=(const DirectoryStream&) = delete;
    ~DirectoryStream() {
        if (stream_) ::closedir(stream_);
    }
    explicit operator bool() const { return stream_ != nullptr; }
    int Fd() const { return ::dirfd(stream_); }
    /** Null at the end; `failed` then tells an error from the end. */
    const dirent* Next(bool& failed) {
        for (;;) {
            errno = 0;
            const dirent* entry = ::readdir(stream_);
            failed = !entry && errno != 0;
            if (!entry) return nullptr;
            if (std::strcmp(entry->d_name, ".") != 0 && std::strcmp(entry->d_name, "..") != 0)
                return entry;
        }
    }

  private:
    DIR* stream_ = nullptr;
};

/** One run over a tree. Works relative to open folders, so no path is walked per file. */
class TreeCopier {
  public:
    explicit TreeCopier(const std::function<bool()>& isCancelled) {
        means_.isCancelled = isCancelled;
    }
    FileError Run(const std::string& from, const std::string& to) {
        Descriptor source(::open(from.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        if (!source) return ErrorOf(errno);
        Descriptor target(::open(to.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        if (!target) return ErrorOf(errno);
        if (::fstat(target.Get(), &targetRoot_) != 0) return ErrorOf(errno);
        sourceRoot_ = PathOf(source.Get());
        CopyFolder(std::move(source), target.Get());
        return first_;
    }

  private:
    void Note(FileError error) {
        if (first_ == FileError::None) first_ = error;
    }

    void CopyFolder(Descriptor source, int target) {
        DirectoryStream stream(std::move(source));
        if (!stream) return Note(ErrorOf(errno));
        bool failed = false;
        while (const dirent* entry = stream.Next(failed)) {
            if (IsCancelled(means_)) return Note(FileError::Cancelled);
            CopyEntry(stream.Fd(), target, *entry);
        }
        if (failed) Note(ErrorOf(errno));
    }

    void CopyEntry(int source, int target, const dirent& entry) {
        const char* name = entry.d_name;
        if (std::strchr(name, '\\')) return Note(FileError::BadName);
        unsigned char type = entry.d_type;
        if (type == DT_UNKNOWN) type = TypeOf(source, name, AT_SYMLINK_NOFOLLOW);
        const bool isLink = type == DT_LNK;
        if (isLink) type = TypeOf(source, name, 0) == DT_REG ? DT_REG : DT_LNK;
        switch (type) {
            case DT_REG:
                return Note(CopyFile(source, target, name, isLink));
            case DT_DIR:
                return CopySubfolder(source, target, name);
            case DT_LNK:
                return Note(FileError::IsFolder);
            default:
                return Note(FileError::IO);  // a device, a pipe: nothing to be copied
        }
    }

    /** Of an open file or folder, without links; "" where the system does not tell. */
    static std::string PathOf(int file) {
        char path[PATH_MAX];
        const std::string link = "/proc/self/fd/" + std::to_string(file);
        const ssize_t length = ::readlink(link.c_str(), path, sizeof path);
        return length > 0 ? std::string(path, std::size_t(length)) : std::string();
    }

    static unsigned char TypeOf(int folder, const char* name, int flags) {
        struct stat status;
        if (::fstatat(folder, name, &status, flags) != 0) return DT_UNKNOWN;
        return IFTODT(status.st_mode);
    }

    void CopySubfolder(int source, int target, const char* name) {
        Descriptor from(::openat(source, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
        struct stat status;
        if (!from || ::fstat(from.Get(), &status) != 0) return Note(ErrorOf(errno));
        // A target inside the source would be copied into itself without end.
        if (status.st_dev == targetRoot_.st_dev && status.st_ino == targetRoot_.st_ino)
            return Note(FileError::BadName);
        if (::mkdirat(target, name, 0777) != 0 && errno != EEXIST) return Note(ErrorOf(errno));
        Descriptor to(::openat(target, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
        if (!to) return Note(ErrorOf(errno));
        CopyFolder(std::move(from), to.Get());
    }

    FileError CopyFile(int source, int target, const char* name, bool isLink) {
        const int follow = isLink ? 0 : O_NOFOLLOW;
        Descriptor from(::openat(source, name, O_RDONLY | O_CLOEXEC | O_NONBLOCK | follow));
        struct stat status;
        if (!from || ::fstat(from.Get(), &status) != 0) return ErrorOf(errno);
        if (!S_ISREG(status.st_mode)) return FileError::IO;  // swapped since it was looked at
        if (isLink && !PathOf(from.Get()).starts_with(sourceRoot_ + "/"))
            return FileError::NoPermission;
        const mode_t mode = status.st_mode & 0777;
        constexpr int create = O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC;
        Descriptor to(::openat(target, name, create, mode));
        if (!to && errno == EEXIST) {
            // What stands there may be read-only, a link, or another name of the source: it is
            // replaced, never written into.
            struct stat there;
            if (::fstatat(target, name, &there, AT_SYMLINK_NOFOLLOW) == 0 &&
                there.st_dev == status.st_dev && there.st_ino == status.st_ino)
                return FileError::None;
            if (::unlinkat(target, name, 0) != 0) return ErrorOf(errno);
            to = Descriptor(::openat(target, name, create, mode));
        }
        if (!to) return ErrorOf(errno);
        const auto error = CopyContent(from.Get(), to.Get(), std::uint64_t(status.st_size), means_);
        if (!to.Close() && error == FileError::None) return ErrorOf(errno);
        if (error != FileError::None) ::unlinkat(target, name, 0);
        return error;
    }

    std::string sourceRoot_;
    struct stat targetRoot_ {};
    CopyMeans means_;
    FileError first_ = FileError::None;
};

/** Opens a folder below `parent` for removal, giving its owner the right to read it if need be. */
Descriptor OpenForRemoval(int parent, const char* name) {
    constexpr int flags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;
    Descriptor folder(::openat(parent, name, flags));
    if (!folder && errno == EACCES && ::fchmodat(parent, name, 0700, 0) == 0)
        folder = Descriptor(::openat(parent, name, flags));
    return folder;
}

FileError RemoveBelow(Descriptor folder) {
    DirectoryStream stream(std::move(folder));
    if (!stream) return ErrorOf(errno);
    // Names first: removing while reading may skip entries.
    std::vector<std::pair<std::string, unsigned char>> entries;
    bool failed = false;
    while (const dirent* entry = stream.Next(failed))
        entries.emplace_back(entry->d_name, entry->d_type);
    auto first = failed ? ErrorOf(errno) : FileError::None;
    bool unlocked = false;
    for (const auto& [name, type] : entries) {
        const auto remove = [&](int flags) {
            if (::unlinkat(stream.Fd(), name.c_str(), flags) == 0) return 0;
            if (errno == EACCES && !unlocked) {
                unlocked = true;
                if (::fchmod(stream.Fd(), 0700) == 0 &&
                    ::unlinkat(stream.Fd(), name.c_str(), flags) == 0)
                    return 0;
            }
            return errno;
        };
        int error = type == DT_DIR ? EISDIR : remove(0);
        if (error == EISDIR) {
            Descriptor below = OpenForRemoval(stream.Fd(), name.c_str());
            if (below) {
                const auto inner = RemoveBelow(std::move(below));
                if (first == FileError::None) first = inner;
                error = remove(AT_REMOVEDIR);
            } else {
                error = errno;
            }
        }
        if (error != 0 && error != ENOENT && first == FileError::None) first = ErrorOf(error);
    }
    return first;
}

}  // namespace

FileError ErrorOf(int number) {
    switch (number) {
        case 0:
            return FileError::None;
        case ENOENT:
            return FileError::NotFound;
        case EEXIST:
            return FileError::Exists;
        case EACCES:
        case EPERM:
            return FileError::NoPermission;
        case ENOSPC:
        case EDQUOT:
        case EFBIG:
            return FileError::NoSpace;
        case EROFS:
            return FileError::ReadOnlyDisk;
        case EISDIR:
            return FileError::IsFolder;
        case ENOTDIR:
            return FileError::NotFolder;
        case ENOTEMPTY:
            return FileError::NotEmpty;
        case ENAMETOOLONG:
        case EILSEQ:
        case ELOOP:
        case EINVAL:
            return FileError::BadName;
        default:
            return FileError::IO;
    }
}

FileError CopyContent(int from, int to, std::uint64_t size, CopyMeans& means) {
    if (means.clone && size > 0) {
        if (::ioctl(to, FICLONE, from) == 0) {
            struct stat status;  // the source may have grown since it was opened
            const bool fits = ::fstat(to, &status) == 0 && std::uint64_t(status.st_size) <= size;
            return fits || ::ftruncate(to, off_t(size)) == 0 ? FileError::None : ErrorOf(errno);
        }
        means.clone = false;
    }
    // Below this a read and a write are quicker than the set-up inside the kernel.
    constexpr std::uint64_t worthIt = 256 * 1024;
    // So much at a time that a copy can be cancelled soon.
    constexpr std::uint64_t piece = 16 * 1024 * 1024;
    std::uint64_t done = 0;
    if (means.copyRange && size >= worthIt) {
        while (done < size) {
            if (IsCancelled(means)) return FileError::Cancelled;
            const ssize_t put = ::copy_file_range(from, nullptr, to, nullptr,
                                                  std::size_t(std::min(size - done, piece)), 0);
            if (put < 0 && errno == EINTR) continue;
            if (put < 0 && (errno == ENOSPC || errno == EDQUOT || errno == EIO))
                return ErrorOf(errno);
            if (put < 0) means.copyRange = false;
            if (put <= 0) break;
            done += std::uint64_t(put);
        }
        if (done >= size) return FileError::None;
        // What is left goes through the buffer: both files stand where the last copy ended.
    }
    return CopyByBuffer(from, to, size - done, means);
}

FileError CopyFolderTree(const std::string& from, const std::string& to,
                         const std::function<bool()>& isCancelled) {
    return TreeCopier(isCancelled).Run(from, to);
}

FileError RemoveFolderTree(const std::string& folder) {
    struct stat status;
    if (::lstat(folder.c_str(), &status) != 0) return ErrorOf(errno);
    if (S_ISLNK(status.st_mode)) return ErrorOf(::unlink(folder.c_str()) == 0 ? 0 : errno);
    if (!S_ISDIR(status.st_mode)) return FileError::NotFolder;
    Descriptor root = OpenForRemoval(AT_FDCWD, folder.c_str());
    if (!root) return ErrorOf(errno);
    const auto error = RemoveBelow(std::move(root));
    if (error != FileError::None) return error;
    return ErrorOf(::rmdir(folder.c_str()) == 0 ? 0 : errno);
}

}  // namespace pw
