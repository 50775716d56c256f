#include "project/omProj/WorkingFiles.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "platform/FileSystem.h"
#include "platform/posix/Descriptor.h"
#include "project/omProj/Format.h"

namespace pw {
namespace {

constexpr std::size_t kOpenFolders = 128;
constexpr int kFolderFlags = O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;

DiskState StateOf(const struct stat& info) {
    DiskState state;
    state.error = S_ISREG(info.st_mode)   ? 0
                  : S_ISLNK(info.st_mode) ? ELOOP
                  : S_ISDIR(info.st_mode) ? EISDIR
                                          : EINVAL;
    state.size = info.st_size;
    state.modified = std::int64_t{info.st_mtim.tv_sec} * 1'000'000'000 + info.st_mtim.tv_nsec;
    return state;
}

}  // namespace

WorkingFiles::WorkingFiles(std::string_view folder) {
    const std::string native = ToNativePath(folder);
    root_ = native.empty()
                ? -1
                : Repeat([&] { return open(native.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC); });
    if (root_ < 0) throw ProjectFailure(ProjectResult::NoWorkingFolder);
}

WorkingFiles::~WorkingFiles() {
    ForgetFolders();
    close(root_);
}

void WorkingFiles::ForgetFolders() {
    for (const auto& [name, handle] : folders_)
        close(handle);
    folders_.clear();
    lastFolder_ = -1;
}

int WorkingFiles::FolderHandle(std::string_view name, Missing missing) {
    if (name.empty()) return root_;
    if (lastFolder_ >= 0 && name == lastName_) return lastFolder_;
    std::string key(name);
    auto found = folders_.find(key);
    if (found == folders_.end()) {
        const std::size_t slash = name.rfind('/');
        const int parent = FolderHandle(
            slash == std::string_view::npos ? std::string_view() : name.substr(0, slash), missing);
        if (parent < 0) return -1;
        const std::string leaf(slash == std::string_view::npos ? name : name.substr(slash + 1));
        const auto enter = [&] {
            return Repeat([&] { return openat(parent, leaf.c_str(), kFolderFlags); });
        };
        int handle = enter();
        if (handle < 0 && errno == ENOENT && missing == Missing::Make) {
            if (mkdirat(parent, leaf.c_str(), 0777) != 0 && errno != EEXIST) return -1;
            handle = enter();
        }
        if (handle < 0) return -1;
        if (folders_.size() >= kOpenFolders) ForgetFolders();
        found = folders_.emplace(std::move(key), handle).first;
    }
    lastName_ = name;
    lastFolder_ = found->second;
    return lastFolder_;
}

int WorkingFiles::ParentOf(std::string_view name, Missing missing, std::string& leaf) {
    const std::size_t slash = name.rfind('/');
    leaf = slash == std::string_view::npos ? name : name.substr(slash + 1);
    return FolderHandle(
        slash == std::string_view::npos ? std::string_view() : name.substr(0, slash), missing);
}

DiskState WorkingFiles::Stat(std::string_view name) {
    DiskState state;
    std::string leaf;
    struct stat info = {};
    const int folder = ParentOf(name, Missing::Fail, leaf);
    if (folder < 0 || fstatat(folder, leaf.c_str(), &info, AT_SYMLINK_NOFOLLOW) != 0)
        state.error = errno == ENOTDIR ? ENOENT : errno;
    else
        state = StateOf(info);
    return state;
}

int WorkingFiles::OpenToRead(std::string_view name, DiskState& state) {
    std::string leaf;
    const int folder = ParentOf(name, Missing::Fail, leaf);
    const int file = folder < 0 ? -1 : Repeat([&] {
        return openat(folder, leaf.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    });
    struct stat info = {};
    if (file < 0 || fstat(file, &info) != 0)
        state.error = errno == ENOTDIR ? ENOENT : errno;
    else
        state = StateOf(info);
    if (file >= 0 && state.error) {
        close(file);
        return -1;
    }
    return file;
}

int WorkingFiles::Create(std::string_view name) {
    std::string leaf;
    const int folder = ParentOf(name, Missing::Make, leaf);
    if (folder < 0) return -1;
    constexpr int flags = O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;
    const auto make = [&] {
        return Repeat([&] { return openat(folder, leaf.c_str(), flags, 0666); });
    };
    int file = make();
    if (file < 0 && errno == EEXIST && unlinkat(folder, leaf.c_str(), 0) == 0) file = make();
    return file;
}

int WorkingFiles::MakeFolder(std::string_view name) {
    return FolderHandle(name, Missing::Make) < 0 ? errno : 0;
}

void WorkingFiles::Remove(std::string_view name) {
    std::string leaf;
    const int folder = ParentOf(name, Missing::Fail, leaf);
    if (folder >= 0) unlinkat(folder, leaf.c_str(), 0);
}

}  // namespace pw
