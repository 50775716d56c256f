// A library to be preloaded: the calls of the C library that reach the disk, of which one fails.
// Calls go to the kernel directly, so that nothing of this library calls itself.
#include <fcntl.h>
#include <stdarg.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "tools/FaultOrder.h"

using pw::test::FaultOrder;

namespace {

constexpr int kFiles = 4096;
FaultOrder* order = nullptr;
std::atomic<bool> watched[kFiles];

__attribute__((constructor)) void FindOrder() {
    const char* path = getenv(pw::test::kFaultOrderVariable);
    if (!path) return;
    const long file = syscall(SYS_openat, AT_FDCWD, path, O_RDWR | O_CLOEXEC, 0);
    if (file < 0) return;
    void* at = mmap(nullptr, sizeof(FaultOrder), PROT_READ | PROT_WRITE, MAP_SHARED, int(file), 0);
    syscall(SYS_close, file);
    if (at != MAP_FAILED) order = static_cast<FaultOrder*>(at);
}

bool IsWatched(int file) {
    return order && file >= 0 && file < kFiles && watched[file];
}

bool IsWatched(int folder, const char* path) {
    if (!order) return false;
    if (path[0] != '/') return IsWatched(folder);
    const std::size_t length = strlen(order->under);
    return length > 0 && strncmp(path, order->under, length) == 0;
}

/** Counts a call; true when it is one that goes wrong. */
bool Strikes(unsigned call) {
    if (!(order->calls & call)) return false;
    const int number = ++order->seen;
    bool now = order->at > 0 && (number == order->at || (order->onwards && number > order->at));
    if (order->kind == FaultOrder::Kind::Interrupt) now = order->at > 0 && number % 2 == 1;
    if (now && order->struck++ == 0) order->struckCall = call;
    return now;
}

bool Fails(unsigned call) {
    if (!Strikes(call) || order->kind == FaultOrder::Kind::Short) return false;
    errno = order->kind == FaultOrder::Kind::Interrupt ? EINTR : order->error;
    return true;
}

long OpenAt(int folder, const char* path, int flags, mode_t mode) {
    const bool isWatched = IsWatched(folder, path);
    const bool writes = (flags & O_ACCMODE) != O_RDONLY || (flags & O_CREAT);
    if (isWatched && Fails(writes ? pw::test::kCreate : pw::test::kOpen)) return -1;
    const long file = syscall(SYS_openat, folder, path, flags, mode);
    if (file >= 0 && file < kFiles) watched[file] = isWatched;
    return file;
}

/** Reading and writing: fails, does half, or does all. */
template <class Call>
ssize_t Transfer(unsigned kind, int file, std::size_t size, Call call) {
    if (!IsWatched(file) || !Strikes(kind)) return call(size);
    if (order->kind == FaultOrder::Kind::Short) return call(size > 1 ? size / 2 : size);
    errno = order->kind == FaultOrder::Kind::Interrupt ? EINTR : order->error;
    return -1;
}

int Rename(int from, const char* source, int to, const char* target, unsigned flags) {
    if (IsWatched(to, target) && Fails(pw::test::kRename)) return -1;
    return int(syscall(SYS_renameat2, from, source, to, target, flags));
}

int Remove(int folder, const char* path, int flags) {
    if (IsWatched(folder, path) && Fails(pw::test::kRemove)) return -1;
    return int(syscall(SYS_unlinkat, folder, path, flags));
}

mode_t ModeOf(int flags, va_list arguments) {
    return flags & O_CREAT ? va_arg(arguments, mode_t) : 0;
}

}  // namespace

extern "C" {

int open(const char* path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = ModeOf(flags, arguments);
    va_end(arguments);
    return int(OpenAt(AT_FDCWD, path, flags, mode));
}
int openat(int folder, const char* path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = ModeOf(flags, arguments);
    va_end(arguments);
    return int(OpenAt(folder, path, flags, mode));
}
int open64(const char* path, int flags, ...) __attribute__((alias("open")));
int openat64(int folder, const char* path, int flags, ...) __attribute__((alias("openat")));

ssize_t read(int file, void* to, size_t size) {
    return Transfer(pw::test::kRead, file, size,
                    [&](size_t part) { return syscall(SYS_read, file, to, part); });
}
ssize_t pread(int file, void* to, size_t size, off_t at) {
    return Transfer(pw::test::kRead, file, size,
                    [&](size_t part) { return syscall(SYS_pread64, file, to, part, at); });
}
ssize_t pread64(int, void*, size_t, off_t) __attribute__((alias("pread")));
ssize_t write(int file, const void* from, size_t size) {
    return Transfer(pw::test::kWrite, file, size,
                    [&](size_t part) { return syscall(SYS_write, file, from, part); });
}
ssize_t pwrite(int file, const void* from, size_t size, off_t at) {
    return Transfer(pw::test::kWrite, file, size,
                    [&](size_t part) { return syscall(SYS_pwrite64, file, from, part, at); });
}
ssize_t pwrite64(int, const void*, size_t, off_t) __attribute__((alias("pwrite")));
ssize_t writev(int file, const struct iovec* parts, int count) {
    if (IsWatched(file) && Fails(pw::test::kWrite)) return -1;
    return syscall(SYS_writev, file, parts, count);
}
ssize_t copy_file_range(int from, off64_t* source, int to, off64_t* target, size_t size,
                        unsigned flags) {
    return Transfer(pw::test::kWrite, to, size, [&](size_t part) {
        return syscall(SYS_copy_file_range, from, source, to, target, part, flags);
    });
}
int fsync(int file) {
    if (IsWatched(file) && Fails(pw::test::kSync)) return -1;
    return int(syscall(SYS_fsync, file));
}
int fdatasync(int file) {
    if (IsWatched(file) && Fails(pw::test::kSync)) return -1;
    return int(syscall(SYS_fdatasync, file));
}
int ftruncate(int file, off_t size) {
    if (IsWatched(file) && Fails(pw::test::kTruncate)) return -1;
    return int(syscall(SYS_ftruncate, file, size));
}
int ftruncate64(int, off_t) __attribute__((alias("ftruncate")));
int rename(const char* from, const char* to) {
    return Rename(AT_FDCWD, from, AT_FDCWD, to, 0);
}
int renameat2(int from, const char* source, int to, const char* target, unsigned flags) {
    return Rename(from, source, to, target, flags);
}
int unlink(const char* path) {
    return Remove(AT_FDCWD, path, 0);
}
int unlinkat(int folder, const char* path, int flags) {
    return Remove(folder, path, flags);
}
/** The file is closed all the same, as it is where the call really fails. */
int close(int file) {
    const bool isWatched = IsWatched(file);
    if (file >= 0 && file < kFiles) watched[file] = false;
    const int closed = int(syscall(SYS_close, file));
    return isWatched && Fails(pw::test::kClose) ? -1 : closed;
}

}  // extern "C"
