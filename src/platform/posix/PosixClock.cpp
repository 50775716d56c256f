#include <time.h>

#include "platform/SystemInfo.h"

namespace pw {

namespace {

/** Days from 1970-01-01 to a date of the Gregorian calendar. */
std::int64_t DaysFromCivil(int year, int month, int day) {
    year -= month <= 2;
    const std::int64_t era = (year >= 0 ? year : year - 399) / 400;
    const std::int64_t yearOfEra = year - era * 400;
    const std::int64_t dayOfYear = (153 * (month + (month > 2 ? -3 : 9)) + 2) / 5 + day - 1;
    const std::int64_t dayOfEra = yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
    return era * 146097 + dayOfEra - 719468;
}

class SystemClock : public Clock {
  public:
    DateTime Now() const override {
        struct timespec now {};
        ::clock_gettime(CLOCK_REALTIME, &now);
        struct tm local {};
        ::localtime_r(&now.tv_sec, &local);
        const auto days = DaysFromCivil(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday);
        const double seconds =
            local.tm_hour * 3600 + local.tm_min * 60 + local.tm_sec + double(now.tv_nsec) / 1e9;
        constexpr int epoch = 25569;  // 1970-01-01 counted from 1899-12-30
        return double(days + epoch) + seconds / 86400;
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
