// Runs the tests that need real widgets and the real browser view.
#include <gtest/gtest.h>
#include <unistd.h>

#include "platform/qt/Application.h"

int main(int argc, char** argv) {
    // The browser engine refuses its sandbox to the superuser. Tests may run as such in a
    // container; the program itself never does this for anybody.
    if (geteuid() == 0) qputenv("QTWEBENGINE_DISABLE_SANDBOX", "1");
    testing::InitGoogleTest(&argc, argv);
    pw::Application application(argc, argv);
    application.onFault = [](pw::Application::Fault) { ADD_FAILURE() << "an event failed"; };
    QApplication::setQuitOnLastWindowClosed(false);
    return RUN_ALL_TESTS();
}
