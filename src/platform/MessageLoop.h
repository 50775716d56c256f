#pragma once
// Waiting. There is one thread; a wait lets events through, so handlers must be re-entrant.
#include <functional>

namespace pw {

class MessageLoop {
  public:
    virtual ~MessageLoop() = default;
    /** Lets events through until `condition` holds; sleeps while nothing happens. */
    virtual void WaitUntil(const std::function<bool()>& condition) = 0;
    /** Lets pending events run once. */
    virtual void ProcessEvents() = 0;
    /** Runs `task` when the current event is done. */
    virtual void Post(std::function<void()> task) = 0;
};

}  // namespace pw
