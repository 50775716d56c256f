#include <time.h>

#include "platform/SystemInfo.h"

namespace pw {

namespace {

class SystemClock : public Clock {
  public:
    DateTime Now() const override {
        struct timespec now {};
        ::clock_gettime(CLOCK_REALTIME, &now);
        struct tm local {};
        ::localtime_r(&now.tv_sec, &local);
        // The local fields, counted as if they were universal time.
        const double seconds = double(::timegm(&local)) + double(now.tv_nsec) / 1e9;
        constexpr int epoch = 25569;  // 1970-01-01 counted from 1899-12-30
        return epoch + seconds / 86400;
    }

    double MonotonicSeconds() const override {
        struct timespec now {};
        ::clock_gettime(CLOCK_MONOTONIC, &now);
        return double(now.tv_sec) + double(now.tv_nsec) / 1e9;
    }
};

}  // namespace

std::unique_ptr<Clock> MakeSystemClock() {
    return std::make_unique<SystemClock>();
}

}  // namespace pw
