#pragma once
#include <deque>

#include "platform/MessageLoop.h"

namespace pw {

/**
 * A loop whose only events are posted tasks. A wait that no task is left to end would never end: it
 * sleeps in short steps for conditions of the world outside, such as a file or a process.
 */
class HeadlessMessageLoop : public MessageLoop {
  public:
    void WaitUntil(const std::function<bool()>& condition) override;
    void ProcessEvents() override;
    void Post(std::function<void()> task) override { tasks_.push_back(std::move(task)); }

  private:
    bool RunOne();

    std::deque<std::function<void()>> tasks_;
};

}  // namespace pw
