#include "project/omProj/SafetyCopy.h"

#include <fcntl.h>
#include <linux/fs.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <cstring>

#include "platform/posix/FileLock.h"
#include "platform/posix/TreeCopy.h"
#include "project/omProj/Format.h"

namespace pw {
namespace {

/** Up to this many bytes a copy is made even where the disk can't share blocks. */
constexpr std::int64_t kCheapCopy = 16 << 20;
/** Stands behind the last byte of the project; a database is not read beyond its own pages. */
constexpr std::string_view kMark = "\nsafety copy of a save, made by pagewick\n";

/** Beside the project, until the copy is whole. */
std::string UnfinishedOf(const std::string& projectFile) {
    const std::size_t leaf = projectFile.rfind('\\') + 1;
    return projectFile.substr(0, leaf) + "." + projectFile.substr(leaf) + ".copy";
}

bool BearsMark(const std::string& native) {
    const Descriptor file(Repeat(
        [&] { return open(native.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK); }));
    struct stat state = {};
    if (!file || fstat(file.Get(), &state) != 0 || !S_ISREG(state.st_mode)) return false;
    char end[kMark.size()] = {};
    if (state.st_size < off_t{sizeof end}) return false;
    const ssize_t got = Repeat(
        [&] { return pread(file.Get(), end, sizeof end, state.st_size - off_t{sizeof end}); });
    return got == ssize_t{sizeof end} && std::string_view(end, sizeof end) == kMark;
}

/** The number of the process that made such a file as the file system writes before it renames
 *  it, ".~pw4711-3"; 0 for any other name. */
pid_t MakerOf(std::string_view name) {
    constexpr std::string_view kPrefix = ".~pw";
    if (!name.starts_with(kPrefix)) return 0;
    name.remove_prefix(kPrefix.size());
    const std::size_t dash = name.find('-');
    if (dash == name.npos) return 0;
    const auto number = [](std::string_view digits) {
        pid_t value = 0;
        const auto read = std::from_chars(digits.data(), digits.data() + digits.size(), value);
        const bool whole = read.ec == std::errc() && read.ptr == digits.data() + digits.size();
        return whole ? value : -1;
    };
    return number(name.substr(dash + 1)) < 0 ? 0 : std::max(number(name.substr(0, dash)), 0);
}

}  // namespace

std::string SafetyCopyOf(const std::string& projectFile) {
    const std::size_t dot = projectFile.rfind('.');
    const bool extension = dot != std::string::npos && dot > projectFile.rfind('\\') + 1;
    return (extension ? projectFile.substr(0, dot) : projectFile) + ".~pw";
}

SafetyCopy::SafetyCopy(FileSystem& files, std::string projectFile, Logger log)
    : files_(files),
      projectFile_(std::move(projectFile)),
      copy_(SafetyCopyOf(projectFile_)),
      log_(std::move(log)) {}

SafetyCopy::~SafetyCopy() {
    if (made_) RemoveLogged(copy_);
}

void SafetyCopy::RemoveLogged(const std::string& path) {
    const FileError error = files_.RemoveFile(path);
    if (error != FileError::None && error != FileError::NotFound)
        log_("The file " + Quoted(path) + " can not be removed: " + Describe(error) + ".");
}

void SafetyCopy::RemoveUnfinished() {
    RemoveLogged(UnfinishedOf(projectFile_));
}

void SafetyCopy::Make() {
    if (copy_ == projectFile_) return;
    if (files_.Stat(copy_).exists) {
        // One of our own stays until this save has gone well: it may be the last whole copy.
        if (!BearsMark(ToNativePath(copy_)))
            log_("The file " + Quoted(copy_) + " is not of this program and is left as it is.");
        return;
    }
    const std::string unfinished = UnfinishedOf(projectFile_);
    const std::string native = ToNativePath(unfinished);
    RemoveUnfinished();
    made_ = Descriptor(Repeat([&] {
        return open(native.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, 0600);
    }));
    std::string problem = made_ ? "" : std::strerror(errno);
    if (made_ && Fill(made_.Get(), problem)) return Place(unfinished);
    made_ = Descriptor();
    RemoveUnfinished();
    if (!problem.empty()) log_("No copy was made at " + Quoted(copy_) + ": " + problem + ".");
}

/** False without a problem when a copy would be too dear. */
bool SafetyCopy::Fill(int copy, std::string& problem) {
    const Descriptor from(
        Repeat([&] { return open(ToNativePath(projectFile_).c_str(), O_RDONLY | O_CLOEXEC); }));
    struct stat state = {};
    if (!from || fstat(from.Get(), &state) != 0) {
        problem = std::strerror(errno);
        return false;
    }
    if (ioctl(copy, FICLONE, from.Get()) != 0) {
        if (state.st_size > kCheapCopy) return false;
        CopyMeans means;
        means.clone = false;
        const FileError error = CopyContent(from.Get(), copy, std::uint64_t(state.st_size), means);
        if (error != FileError::None) {
            problem = Describe(error);
            return false;
        }
    }
    // Where locks are not to be had the copy counts as abandoned once this save is over.
    Repeat([&] { return flock(copy, LOCK_EX | LOCK_NB); });
    const ssize_t put =
        Repeat([&] { return pwrite(copy, kMark.data(), kMark.size(), state.st_size); });
    if (put != ssize_t{kMark.size()} || fchmod(copy, state.st_mode & 0777) != 0) {
        problem = put < 0 ? std::strerror(errno) : "the disk is full";
        return false;
    }
    return true;
}

void SafetyCopy::Place(const std::string& unfinished) {
    const FileError error = files_.Rename(unfinished, copy_);
    if (error == FileError::None) return;
    log_("No copy was made at " + Quoted(copy_) + ": " + Describe(error) + ".");
    made_ = Descriptor();
    RemoveUnfinished();
}

void SafetyCopy::RemoveAbandoned() {
    const std::string native = ToNativePath(copy_);
    if (!made_ && BearsMark(native) && FileLock::IsFree(native)) RemoveLogged(copy_);
    RemoveUnfinished();
    const std::string folder = projectFile_.substr(0, projectFile_.rfind('\\'));
    std::vector<FolderEntry> entries;
    if (files_.List(folder.empty() ? "\\" : folder, entries) != FileError::None) return;
    for (const FolderEntry& entry : entries) {
        const pid_t maker = entry.isFolder || entry.isLink ? 0 : MakerOf(entry.name);
        if (maker > 0 && kill(maker, 0) != 0 && errno == ESRCH)
            RemoveLogged(folder + "\\" + entry.name);
    }
}

}  // namespace pw
