#include "platform/qt/Splash.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QImage>
#include <QSet>

#include "support/TestContext.h"

namespace pw {
namespace {

QWidget* shownSplash() {
    for (QWidget* window : QApplication::topLevelWidgets()) {
        if (window->isVisible() && window->windowFlags().testFlag(Qt::FramelessWindowHint))
            return window;
    }
    return nullptr;
}

TEST(Splash, IsDrawnAtOnceAndGoesWhenItIsClosed) {
    test::TestContext context;
    Splash splash(context.frame);
    splash.Show();
    QWidget* window = shownSplash();
    ASSERT_TRUE(window);
    EXPECT_FALSE(window->windowTitle().isEmpty());
    const QImage picture = window->grab().toImage();
    QSet<QRgb> colors;
    for (int x = 0; x < picture.width(); ++x)
        for (int y = 0; y < picture.height(); ++y)
            colors.insert(picture.pixel(x, y));
    EXPECT_GT(colors.size(), 20) << "icon and text";
    splash.SetTopmost(true);
    splash.SetTopmost(false);
    splash.Close();
    EXPECT_FALSE(shownSplash());
}

}  // namespace
}  // namespace pw
