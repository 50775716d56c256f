#pragma once
#include <ctime>

namespace pw::test {

/** The time that this thread has worked since the timer was made. What else the machine does
 * meanwhile does not count, so that a limit on it says something about the code. */
class CpuTimer {
  public:
    double Seconds() const { return Now() - start_; }
    double Milliseconds() const { return Seconds() * 1000; }

  private:
    static double Now() {
        timespec now = {};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
        return double(now.tv_sec) + double(now.tv_nsec) / 1e9;
    }
    double start_ = Now();
};

}  // namespace pw::test
