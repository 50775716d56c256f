#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>

#include "platform/FileSystem.h"
#include "platform/Text.h"
#include "platform/posix/Descriptor.h"
#include "platform/posix/TreeCopy.h"

namespace pw {

namespace {

FileError Outcome(int result) {
    return result == 0 ? FileError::None : ErrorOf(errno);
}

/**
 * A path of the program as the system writes it. A slash inside a name of ours would become a
 * separator, a zero byte an early end: such a path is refused.
 */
bool Translate(std::string_view path, std::string& native) {
    if (path.empty() || path.front() != '\\') return false;
    if (path.find('/') != path.npos || path.find('\0') != path.npos) return false;
    native = ToNativePath(path);
    while (native.size() > 1 && native.back() == '/')
        native.pop_back();
    return true;
}

std::string FolderOf(const std::string& native) {
    const auto slash = native.rfind('/');
    return slash == 0 ? "/" : native.substr(0, slash);
}

std::string NameOf(const std::string& native) {
    return native.substr(native.rfind('/') + 1);
}

Descriptor Open(const std::string& native, int flags) {
    return Descriptor(
        Repeat([&] { return ::open(native.c_str(), flags | O_CLOEXEC, mode_t(0666)); }));
}

int SyncOpen(const Descriptor& file) {
    return Repeat([&] { return ::fsync(file.Get()); });
}

FileError SyncPath(const std::string& native) {
    Descriptor file = Open(native, O_RDONLY | O_NONBLOCK);
    if (!file) return ErrorOf(errno);
    // Some disks know no sync of a folder; there it is not needed either.
    if (SyncOpen(file) != 0 && errno != EINVAL) return ErrorOf(errno);
    return FileError::None;
}

FileError WriteAll(int file, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t put = Repeat([&] { return ::write(file, bytes.data(), bytes.size()); });
        if (put < 0) return ErrorOf(errno);
        bytes.remove_prefix(std::size_t(put));
    }
    return FileError::None;
}

/** Opens a file for reading; none of the parts of its path may be a link. What lies there may be
 *  anything: without O_NONBLOCK a pipe would hold the program up for ever. */
Descriptor OpenWithoutLinks(const std::string& native) {
    Descriptor folder(::open("/", O_PATH | O_DIRECTORY | O_CLOEXEC));
    for (std::size_t at = 1; folder;) {
        const auto slash = native.find('/', at);
        const std::string name = native.substr(at, slash - at);
        if (slash == native.npos)
            return Descriptor(::openat(folder.Get(), name.c_str(),
                                       O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOFOLLOW | O_NOCTTY));
        folder = Descriptor(
            ::openat(folder.Get(), name.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC | O_NOFOLLOW));
        at = slash + 1;
    }
    return folder;
}

/** What `file` has when it is no regular file. */
FileError KindProblem(const Descriptor& file, struct stat& status) {
    if (!file || ::fstat(file.Get(), &status) != 0) return ErrorOf(errno);
    if (S_ISDIR(status.st_mode)) return FileError::IsFolder;
    return S_ISREG(status.st_mode) ? FileError::None : FileError::IO;
}

/** A file beside the target that takes its place when it is complete, or vanishes. */
class Replacement {
  public:
    explicit Replacement(const std::string& target) : target_(target) {
        static std::atomic<unsigned> counter = 0;
        struct stat there;
        const bool exists = ::lstat(target.c_str(), &there) == 0;
        if (exists && S_ISDIR(there.st_mode)) {
            error_ = FileError::IsFolder;
            return;
        }
        const std::string folder = FolderOf(target);
        for (int attempt = 0; attempt < 100 && !file_; ++attempt) {
            name_ = folder + (folder == "/" ? "" : "/") + ".~pw" + std::to_string(::getpid()) +
                    "-" + std::to_string(counter++);
            file_ = Open(name_, O_WRONLY | O_CREAT | O_EXCL);
            if (!file_ && errno != EEXIST) break;
        }
        if (!file_) {
            error_ = ErrorOf(errno);
            return;
        }
        if (exists && S_ISREG(there.st_mode)) Adopt(there.st_mode & 0777);
    }
    ~Replacement() {
        if (!name_.empty() && !placed_) ::unlink(name_.c_str());
    }
    Replacement(const Replacement&) = delete;
    Replacement& operator=(const Replacement&) = delete;

    FileError Error() const { return error_; }
    int Fd() const { return file_.Get(); }
    void Adopt(mode_t mode) { ::fchmod(file_.Get(), mode); }

    FileError Place(Durability durability) {
        if (durability == Durability::Synced && SyncOpen(file_) != 0) return ErrorOf(errno);
        if (!file_.Close()) return ErrorOf(errno);
        if (::rename(name_.c_str(), target_.c_str()) != 0) return ErrorOf(errno);
        placed_ = true;
        return durability == Durability::Synced ? SyncPath(FolderOf(target_)) : FileError::None;
    }

  private:
    std::string target_;
    std::string name_;
    Descriptor file_;
    FileError error_ = FileError::None;
    bool placed_ = false;
};

class PosixFileSystem : public FileSystem {
  public:
    FileInfo Stat(std::string_view path) const override {
        FileInfo info;
        std::string native;
        struct stat status;
        if (!Translate(path, native) || ::lstat(native.c_str(), &status) != 0) return info;
        info.exists = true;
        info.isFolder = S_ISDIR(status.st_mode);
        info.isLink = S_ISLNK(status.st_mode);
        info.isRegular = S_ISREG(status.st_mode);
        info.size = S_ISDIR(status.st_mode) ? 0 : std::uint64_t(status.st_size);
        info.modified =
            std::int64_t(status.st_mtim.tv_sec) * 1'000'000'000 + status.st_mtim.tv_nsec;
        return info;
    }

    FileError Read(std::string_view path, std::string& bytes) const override {
        bytes.clear();
        std::string native;
        if (!Translate(path, native)) return FileError::BadName;
        // Without O_NONBLOCK a pipe in a user's folder would hold the program up for ever.
        Descriptor file = Open(native, O_RDONLY | O_NONBLOCK);
        struct stat status;
        if (!file || ::fstat(file.Get(), &status) != 0) return ErrorOf(errno);
        if (S_ISDIR(status.st_mode)) return FileError::IsFolder;
        if (!S_ISREG(status.st_mode)) return FileError::IO;
        bytes.resize(std::size_t(status.st_size) + 1);  // the byte more finds the end in one read
        std::size_t done = 0;
        for (;;) {
            const ssize_t got = Repeat(
                [&] { return ::read(file.Get(), bytes.data() + done, bytes.size() - done); });
            if (got < 0) {
                const auto error = ErrorOf(errno);
                bytes.clear();
                return error;
            }
            done += std::size_t(got);
            if (got == 0) break;
            if (done == bytes.size()) bytes.resize(done + done / 2 + 4096);  // it grew meanwhile
        }
        bytes.resize(done);
        return FileError::None;
    }

    FileError Write(std::string_view path, std::string_view bytes, Durability durability) override {
        std::string native;
        if (!Translate(path, native)) return FileError::BadName;
        if (durability == Durability::InPlace) return WriteInPlace(native, bytes);
        Replacement file(native);
        if (file.Error() != FileError::None) return file.Error();
        const auto error = WriteAll(file.Fd(), bytes);
        return error == FileError::None ? file.Place(durability) : error;
    }

    FileError Append(std::string_view path, std::string_view bytes) override {
        std::string native;
        if (!Translate(path, native)) return FileError::BadName;
        Descriptor file = Open(native, O_WRONLY | O_CREAT | O_APPEND | O_NONBLOCK);
        if (!file) return ErrorOf(errno);
        const auto error = WriteAll(file.Get(), bytes);
        return !file.Close() && error == FileError::None ? ErrorOf(errno) : error;
    }

    FileError List(std::string_view folder, std::vector<FolderEntry>& entries) const override {
        entries.clear();
        std::string native;
        if (!Translate(folder, native)) return FileError::BadName;
        DIR* stream = ::opendir(native.c_str());
        if (!stream) return ErrorOf(errno);
        errno = 0;
        while (const dirent* item = ::readdir(stream)) {
            const std::string_view name = item->d_name;
            if (name != "." && name != ".." && name.find('\\') == name.npos)
                entries.push_back(EntryOf(::dirfd(stream), *item));
            errno = 0;
        }
        const auto error = ErrorOf(errno);
        ::closedir(stream);
        std::sort(entries.begin(), entries.end(),
                  [](const FolderEntry& a, const FolderEntry& b) { return a.name < b.name; });
        return error;
    }

    FileError MakeFolder(std::string_view path) override {
        std::string native;
        if (!Translate(path, native)) return FileError::BadName;
        return MakeNativeFolder(native);
    }

    FileError RemoveFile(std::string_view path) override {
        std::string native;
        if (!Translate(path, native)) return FileError::BadName;
        return Outcome(::unlink(native.c_str()));
    }

    FileError RemoveFolder(std::string_view path) override {
        std::string native;
        if (!Translate(path, native)) return FileError::BadName;
        return RemoveFolderTree(native);
    }

    FileError Rename(std::string_view from, std::string_view to) override {
        std::string source, target;
        if (!Translate(from, source) || !Translate(to, target)) return FileError::BadName;
        struct stat status;
        if (::lstat(source.c_str(), &status) != 0) return ErrorOf(errno);
        if (source == target) return FileError::None;
        bool ownName = false;
        if (IsTaken(target, source, ownName)) return FileError::Exists;
        if (::renameat2(AT_FDCWD, source.c_str(), AT_FDCWD, target.c_str(), RENAME_NOREPLACE) == 0)
            return FileError::None;
        // On a disk that ignores case the new spelling of a name is the old file itself; other
        // disks do not know the flag, and there the look at the folder has to do.
        if ((errno == EEXIST && ownName) || errno == EINVAL || errno == ENOSYS)
            return Outcome(::rename(source.c_str(), target.c_str()));
        return ErrorOf(errno);
    }

    FileError Replace(std::string_view from, std::string_view to) override {
        std::string source, target;
        if (!Translate(from, source) || !Translate(to, target)) return FileError::BadName;
        return Outcome(::rename(source.c_str(), target.c_str()));
    }

    FileError Copy(std::string_view from, std::string_view to) override {
        std::string source, target;
        if (!Translate(from, source) || !Translate(to, target)) return FileError::BadName;
        return CopyOpen(Descriptor(::open(source.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)),
                        target);
    }

    FileError CopyResolved(std::string_view from, std::string_view to) override {
        std::string source, target;
        if (!Translate(from, source) || !Translate(to, target)) return FileError::BadName;
        return CopyOpen(OpenWithoutLinks(source), target);
    }

    FileError ReadResolved(std::string_view path, std::string& bytes,
                           std::uint64_t most) const override {
        bytes.clear();
        std::string native;
        if (!Translate(path, native)) return FileError::BadName;
        const Descriptor file = OpenWithoutLinks(native);
        struct stat status;
        if (const auto problem = KindProblem(file, status); problem != FileError::None)
            return problem;
        bytes.resize(std::size_t(std::min(most, std::uint64_t(status.st_size))));
        std::size_t done = 0;
        while (done < bytes.size()) {
            const ssize_t got = ::read(file.Get(), bytes.data() + done, bytes.size() - done);
            if (got < 0 && errno == EINTR) continue;
            if (got < 0) {
                const auto error = ErrorOf(errno);
                bytes.clear();
                return error;
            }
            if (got == 0) break;
            done += std::size_t(got);
        }
        bytes.resize(done);
        return FileError::None;
    }

    FileError CopyTree(std::string_view from, std::string_view to) override {
        std::string source, target;
        if (!Translate(from, source) || !Translate(to, target)) return FileError::BadName;
        struct stat status;
        if (::stat(source.c_str(), &status) != 0) return ErrorOf(errno);
        if (!S_ISDIR(status.st_mode)) return FileError::NotFolder;
        const auto error = MakeNativeFolder(target);
        return error == FileError::None ? CopyFolderTree(source, target, isCancelled) : error;
    }

    FileError Sync(std::string_view path) override {
        std::string native;
        if (!Translate(path, native)) return FileError::BadName;
        return SyncPath(native);
    }

    std::string Canonical(std::string_view path) const override {
        std::string native;
        if (!Translate(path, native)) return "";
        char* real = ::realpath(native.c_str(), nullptr);
        if (!real) return "";
        const std::string result = real;
        ::free(real);
        return result.find('\\') == result.npos ? FromNativePath(result) : "";
    }

  private:
    FileError CopyOpen(const Descriptor& file, const std::string& target) const {
        struct stat status, there;
        if (const auto problem = KindProblem(file, status); problem != FileError::None)
            return problem;
        if (::stat(target.c_str(), &there) == 0 && there.st_dev == status.st_dev &&
            there.st_ino == status.st_ino)
            return FileError::None;  // already one and the same
        Replacement copy(target);
        if (copy.Error() != FileError::None) return copy.Error();
        CopyMeans means;
        means.isCancelled = isCancelled;
        const auto error = CopyContent(file.Get(), copy.Fd(), std::uint64_t(status.st_size), means);
        return error == FileError::None ? copy.Place(Durability::Lazy) : error;
    }

    static FileError WriteInPlace(const std::string& native, std::string_view bytes) {
        Descriptor file = Open(native, O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW);
        if (!file) return ErrorOf(errno);
        const auto error = WriteAll(file.Get(), bytes);
        return !file.Close() && error == FileError::None ? ErrorOf(errno) : error;
    }

    static FolderEntry EntryOf(int folder, const dirent& item) {
        unsigned char type = item.d_type;
        struct stat status;
        if (type == DT_UNKNOWN && ::fstatat(folder, item.d_name, &status, AT_SYMLINK_NOFOLLOW) == 0)
            type = IFTODT(status.st_mode);
        return {item.d_name, type == DT_DIR, type == DT_LNK, type == DT_REG};
    }

    static FileError MakeNativeFolder(const std::string& native) {
        if (::mkdir(native.c_str(), 0777) == 0) return FileError::None;
        if (errno == EEXIST || native == "/") {
            struct stat status;
            const bool usable = ::stat(native.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
            return usable ? FileError::None : FileError::NotFolder;
        }
        if (errno != ENOENT) return ErrorOf(errno);
        const auto error = MakeNativeFolder(FolderOf(native));
        if (error != FileError::None) return error;
        if (::mkdir(native.c_str(), 0777) == 0 || errno == EEXIST) return FileError::None;
        return ErrorOf(errno);
    }

    /**
     * True when another entry of the target's folder bears its name in any letter case: a site
     * with "Index.html" and "index.html" would lose one of them on many servers. `ownName` tells
     * that the entry found is the source itself, which only changes its spelling.
     */
    static bool IsTaken(const std::string& target, const std::string& source, bool& ownName) {
        const std::string folder = FolderOf(target);
        const std::string wanted = FoldCase(NameOf(target));
        struct stat sourceFolder, targetFolder;
        const bool sameFolder = ::stat(FolderOf(source).c_str(), &sourceFolder) == 0 &&
                                ::stat(folder.c_str(), &targetFolder) == 0 &&
                                sourceFolder.st_dev == targetFolder.st_dev &&
                                sourceFolder.st_ino == targetFolder.st_ino;
        DIR* stream = ::opendir(folder.c_str());
        if (!stream) return false;  // the rename itself will tell why
        bool taken = false;
        while (const dirent* item = ::readdir(stream)) {
            if (FoldCase(item->d_name) != wanted) continue;
            if (sameFolder && NameOf(source) == item->d_name)
                ownName = true;
            else
                taken = true;
        }
        ::closedir(stream);
        return taken;
    }
};

}  // namespace

std::unique_ptr<FileSystem> MakePosixFileSystem() {
    return std::make_unique<PosixFileSystem>();
}

}  // namespace pw
