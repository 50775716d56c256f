#pragma once
#include <unistd.h>

#include <cerrno>
#include <utility>

namespace pw {

/** Makes a call of the system again for as long as a signal breaks into it. */
template <class Call>
auto Repeat(Call call) {
    auto result = call();
    while (result < 0 && errno == EINTR)
        result = call();
    return result;
}

/** Owns a file descriptor. */
class Descriptor {
  public:
    Descriptor() = default;
    explicit Descriptor(int fd) : fd_(fd) {}
    Descriptor(Descriptor&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        if (this != &other) {
            Close();
            fd_ = std::exchange(other.fd_, -1);
        }
        return *this;
    }
    ~Descriptor() { Close(); }

    int Get() const { return fd_; }
    explicit operator bool() const { return fd_ >= 0; }
    int Release() { return std::exchange(fd_, -1); }
    /** False when the system reports that what was written did not reach the disk. */
    bool Close() {
        const int fd = std::exchange(fd_, -1);
        // A signal does not keep it from being closed.
        return fd < 0 || ::close(fd) == 0 || errno == EINTR;
    }

  private:
    int fd_ = -1;
};

}  // namespace pw
