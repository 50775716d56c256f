#include "platform/posix/FileLock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <filesystem>

#include "platform/Text.h"

namespace pw {

namespace {

std::string ComputerName() {
    char name[256] = {};
    return ::gethostname(name, sizeof name - 1) == 0 ? name : "";
}

/** True when the open file is still the one that stands at the path. */
bool StandsAt(int file, const std::string& native) {
    struct stat open, there;
    return ::fstat(file, &open) == 0 && ::stat(native.c_str(), &there) == 0 &&
           open.st_dev == there.st_dev && open.st_ino == there.st_ino;
}

LockHolder ReadHolder(int file) {
    char text[1024] = {};
    const ssize_t size = ::pread(file, text, sizeof text - 1, 0);
    LockHolder holder;
    const auto lines = Split(std::string_view(text, std::size_t(std::max<ssize_t>(size, 0))), '\n');
    if (lines.size() < 3) return holder;  // its holder has not written it yet
    std::from_chars(lines[0].data(), lines[0].data() + lines[0].size(), holder.pid);
    holder.program = lines[1];
    holder.computer = lines[2];
    return holder;
}

void WriteHolder(int file) {
    const LockHolder self = ThisProcess();
    const std::string text =
        std::to_string(self.pid) + "\n" + self.program + "\n" + self.computer + "\n";
    // The lock counts, not what stands in the file: without the text a message says less.
    if (::ftruncate(file, 0) == 0 && ::pwrite(file, text.data(), text.size(), 0) < 0) return;
}

}  // namespace

LockHolder ThisProcess() {
    std::error_code ignored;
    const auto executable = std::filesystem::read_symlink("/proc/self/exe", ignored);
    return {int(::getpid()), executable.filename().string(), ComputerName()};
}

std::string Describe(const LockHolder& holder) {
    if (holder.pid == 0) return "another program";
    std::string text = holder.program.empty() ? "a program" : holder.program;
    text += " (process " + std::to_string(holder.pid) + ")";
    if (!holder.computer.empty() && holder.computer != ComputerName())
        text += " on the computer " + holder.computer;
    return text;
}

LockOutcome FileLock::Acquire(const std::string& native, LockFile atEnd,
                              std::unique_ptr<FileLock>& lock, LockHolder* holder) {
    // Whoever looks whether a lock is free, or sweeps, holds it for an instant: hence the patience.
    for (int attempt = 0; attempt < 20; ++attempt) {
        Descriptor file(Repeat([&] {
            return ::open(native.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, mode_t(0600));
        }));
        if (!file) return LockOutcome::Failed;
        if (Repeat([&] { return ::flock(file.Get(), LOCK_EX | LOCK_NB); }) == 0) {
            // The last holder may have removed the file between our opening and our locking.
            if (!StandsAt(file.Get(), native)) continue;
            WriteHolder(file.Get());
            lock.reset(new FileLock(native, atEnd, std::move(file)));
            return LockOutcome::Locked;
        }
        if (errno != EWOULDBLOCK) return LockOutcome::Failed;
        if (holder) *holder = ReadHolder(file.Get());
        ::usleep(1000);
    }
    return LockOutcome::Held;
}

bool FileLock::IsFree(const std::string& native) {
    Descriptor file(
        Repeat([&] { return ::open(native.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW); }));
    return !file || Repeat([&] { return ::flock(file.Get(), LOCK_SH | LOCK_NB); }) == 0 ||
           errno != EWOULDBLOCK;
}

FileLock::~FileLock() {
    if (atEnd_ == LockFile::RemoveAtEnd && StandsAt(file_.Get(), native_))
        ::unlink(native_.c_str());
}

}  // namespace pw
