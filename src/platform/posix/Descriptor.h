#pragma once
#include <unistd.h>

#include <utility>

namespace pw {

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
        return fd < 0 || ::close(fd) == 0;
    }

  private:
    int fd_ = -1;
};

}  // namespace pw
