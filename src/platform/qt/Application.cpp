#include "platform/qt/Application.h"

#include <cstdio>
#include <exception>

namespace pw {

bool Application::notify(QObject* receiver, QEvent* event) {
    try {
        return QApplication::notify(receiver, event);
    } catch (...) {
        report();
    }
    return false;
}

void Application::report() {
    constexpr int kQuiet = 3000;  // milliseconds
    if (!onFault) {
        std::fputs("An event could not be handled.\n", stderr);
        return;
    }
    const bool isAgain = sinceTold_.isValid() && sinceTold_.elapsed() < kQuiet;
    onFault(isAgain ? Fault::Again : Fault::Told);
    // Counted from the end of the message.
    sinceTold_.start();
}

}  // namespace pw
