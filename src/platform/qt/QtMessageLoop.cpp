#include "platform/qt/QtMessageLoop.h"

#include <QCoreApplication>
#include <QTimer>

namespace pw {

void QtMessageLoop::WaitUntil(const std::function<bool()>& condition) {
    if (condition()) return;
    // A condition may hang on the clock alone; a slow pulse lets it be seen.
    QTimer pulse;
    pulse.start(100);
    while (!condition() && !QCoreApplication::closingDown()) {
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
    }
}

void QtMessageLoop::ProcessEvents() {
    QCoreApplication::processEvents();
}

void QtMessageLoop::Post(std::function<void()> task) {
    QMetaObject::invokeMethod(&receiver_, std::move(task), Qt::QueuedConnection);
}

}  // namespace pw
