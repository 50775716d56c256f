#pragma once
#include <QEventLoop>
#include <QObject>

#include "platform/MessageLoop.h"

namespace pw {

/** Sleeps until something happens, and lets it happen; at once when `done` holds. One turn of every
 *  loop that waits inside an event. */
void sleepForEvents(const std::function<bool()>& done,
                    QEventLoop::ProcessEventsFlags flags = QEventLoop::AllEvents);

class QtMessageLoop : public MessageLoop {
  public:
    void WaitUntil(const std::function<bool()>& condition) override;
    void ProcessEvents() override;
    void Post(std::function<void()> task) override;

  private:
    QObject receiver_;  ///< posted tasks die with the loop
};

}  // namespace pw
