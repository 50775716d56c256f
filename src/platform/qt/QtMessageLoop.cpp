#include "platform/qt/QtMessageLoop.h"

#include <QCoreApplication>
#include <QTimer>

#include "platform/HandlerLevel.h"

namespace pw {

void sleepForEvents(const std::function<bool()>& done, QEventLoop::ProcessEventsFlags flags) {
    // Events posted before the one that waits here are part of an outer round of delivery, and the
    // dispatcher goes to sleep without them: the browser engine's answers could be among them.
    QCoreApplication::sendPostedEvents();
    if (!done()) QCoreApplication::processEvents(flags | QEventLoop::WaitForMoreEvents);
}

void QtMessageLoop::WaitUntil(const std::function<bool()>& condition) {
    if (condition()) return;
    const EventRound round;
    // A condition may hang on the clock alone; a slow pulse lets it be seen.
    QTimer pulse;
    pulse.start(100);
    while (!condition() && !QCoreApplication::closingDown()) {
        sleepForEvents(condition);
    }
}

void QtMessageLoop::ProcessEvents() {
    const EventRound round;
    QCoreApplication::processEvents();
}

void QtMessageLoop::Post(std::function<void()> task) {
    QMetaObject::invokeMethod(&receiver_, std::move(task), Qt::QueuedConnection);
}

}  // namespace pw
