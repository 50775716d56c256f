#include "platform/headless/HeadlessMessageLoop.h"

#include <chrono>
#include <thread>

#include "platform/HandlerLevel.h"

namespace pw {

bool HeadlessMessageLoop::RunOne() {
    if (tasks_.empty()) return false;
    const auto task = std::move(tasks_.front());
    tasks_.pop_front();
    const EventRound round;
    task();
    return true;
}

void HeadlessMessageLoop::WaitUntil(const std::function<bool()>& condition) {
    while (!condition()) {
        if (!RunOne()) std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
}

void HeadlessMessageLoop::ProcessEvents() {
    // Those that are due now: a task that posts itself again must not hold the caller for ever.
    for (auto due = tasks_.size(); due > 0 && RunOne(); --due) {
    }
}

}  // namespace pw
