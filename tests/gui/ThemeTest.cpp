#include "platform/qt/Theme.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QIcon>
#include <QPalette>
#include <QProcess>
#include <QTest>

namespace pw {
namespace {

const QString group = "org.freedesktop.appearance";
const QString settings = "org.freedesktop.portal.Settings";
const QString portalPath = "/org/freedesktop/portal/desktop";

/** A desktop that says that it is dark. */
class DarkDesktop : public QDBusVirtualObject {
  public:
    QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
        if (message.member() != "Read") return false;
        const QDBusVariant inner(1U);
        const QDBusVariant outer(QVariant::fromValue(inner));
        return connection.send(message.createReply(QVariant::fromValue(outer)));
    }
};

struct ThemeTest : testing::Test {
    const QPalette before = QApplication::palette();
    void TearDown() override { QApplication::setPalette(before); }
};

TEST_F(ThemeTest, IconsFollowTheColors) {
    Theme theme(*qApp, ColorScheme::Dark);
    EXPECT_TRUE(Theme::isDark());
    EXPECT_EQ(QIcon::themeName(), "breeze-dark");
    theme.setScheme(ColorScheme::Light);
    EXPECT_FALSE(Theme::isDark());
    EXPECT_EQ(QIcon::themeName(), "breeze");
}

TEST_F(ThemeTest, ColorsFollowTheDesktop) {
    QProcess daemon;
    daemon.start("dbus-daemon", {"--session", "--nofork", "--print-address"});
    if (!daemon.waitForStarted(5000) || !daemon.waitForReadyRead(5000)) {
        GTEST_SKIP() << "there is no message bus on this machine";
    }
    qputenv("DBUS_SESSION_BUS_ADDRESS", daemon.readLine().trimmed());
    QDBusConnection bus = QDBusConnection::sessionBus();
    ASSERT_TRUE(bus.isConnected());
    DarkDesktop desktop;
    ASSERT_TRUE(bus.registerService("org.freedesktop.portal.Desktop"));
    ASSERT_TRUE(bus.registerVirtualObject(portalPath, &desktop));
    const Theme theme(*qApp);
    EXPECT_TRUE(QTest::qWaitFor([] { return Theme::isDark(); }, 5000));
    QDBusMessage change = QDBusMessage::createSignal(portalPath, settings, "SettingChanged");
    change << group << "color-scheme" << QVariant::fromValue(QDBusVariant(0U));
    ASSERT_TRUE(bus.send(change));
    EXPECT_TRUE(QTest::qWaitFor([] { return !Theme::isDark(); }, 5000));
    bus.unregisterService("org.freedesktop.portal.Desktop");
    daemon.kill();
    daemon.waitForFinished();
}

}  // namespace
}  // namespace pw
