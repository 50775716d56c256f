#include "platform/qt/Theme.h"

#include <QApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QEvent>
#include <QIcon>
#include <QPainter>
#include <QPalette>
#include <QProxyStyle>
#include <QStandardPaths>
#include <algorithm>
#include <iterator>
#include <utility>

namespace pw {

namespace {

// Where a desktop tells whether it is dark, when no plug-in of Qt's knows that desktop.
const QString portalService = QStringLiteral("org.freedesktop.portal.Desktop");
const QString portalPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString settingsInterface = QStringLiteral("org.freedesktop.portal.Settings");
const QString appearance = QStringLiteral("org.freedesktop.appearance");
const QString colorScheme = QStringLiteral("color-scheme");

QPalette darkPalette() {
    QPalette palette;
    const QColor window(0x2B, 0x2E, 0x33);
    const QColor base(0x1F, 0x21, 0x25);
    const QColor text(0xEE, 0xEF, 0xF1);
    const QColor faint(0x8A, 0x8F, 0x97);
    palette.setColor(QPalette::Window, window);
    palette.setColor(QPalette::WindowText, text);
    palette.setColor(QPalette::Base, base);
    palette.setColor(QPalette::AlternateBase, window);
    palette.setColor(QPalette::Text, text);
    palette.setColor(QPalette::PlaceholderText, faint);
    palette.setColor(QPalette::Button, window);
    palette.setColor(QPalette::ButtonText, text);
    palette.setColor(QPalette::BrightText, Qt::white);
    palette.setColor(QPalette::ToolTipBase, base);
    palette.setColor(QPalette::ToolTipText, text);
    palette.setColor(QPalette::Light, QColor(0x40, 0x44, 0x4B));
    palette.setColor(QPalette::Midlight, QColor(0x36, 0x3A, 0x40));
    palette.setColor(QPalette::Mid, QColor(0x55, 0x5A, 0x62));
    palette.setColor(QPalette::Dark, QColor(0x1A, 0x1C, 0x1F));
    palette.setColor(QPalette::Shadow, QColor(0x10, 0x11, 0x13));
    palette.setColor(QPalette::Highlight, QColor(0x2F, 0x7F, 0xC1));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Link, QColor(0x5A, 0xB0, 0xF0));
    palette.setColor(QPalette::LinkVisited, QColor(0xB3, 0x93, 0xE6));
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        palette.setColor(QPalette::Disabled, role, faint);
    }
    return palette;
}

/** The desktop's style, but for two things. */
class QuickStyle : public QProxyStyle {
  public:
    using QProxyStyle::QProxyStyle;

    // Every toolbar asks for the picture of its "more" button when it is made, and every window of
    // a page for those of its menu. The usual ones are bitmaps, for which Qt would load the readers
    // of all picture formats before the first page is up.
    QIcon standardIcon(StandardPixmap which, const QStyleOption* option,
                       const QWidget* widget) const override {
        static constexpr std::pair<StandardPixmap, const char*> kNames[] = {
            {SP_ToolBarHorizontalExtensionButton, "arrow-right-double"},
            {SP_ToolBarVerticalExtensionButton, "arrow-down-double"},
            {SP_TitleBarMenuButton, "view-pages-single"},
            {SP_TitleBarMinButton, "window-minimize"},
            {SP_TitleBarMaxButton, "window-maximize"},
            {SP_TitleBarNormalButton, "window-restore"},
            {SP_TitleBarCloseButton, "window-close"},
        };
        const auto* const found =
            std::ranges::find(kNames, which, &std::pair<StandardPixmap, const char*>::first);
        const QIcon icon =
            found == std::end(kNames) ? QIcon() : QIcon::fromTheme(QLatin1String(found->second));
        return icon.isNull() ? QProxyStyle::standardIcon(which, option, widget) : icon;
    }

    // White pictures on a dark ground come out as bright as ever by the usual way.
    QPixmap generatedIconPixmap(QIcon::Mode mode, const QPixmap& picture,
                                const QStyleOption* option) const override {
        if (mode != QIcon::Disabled) return QProxyStyle::generatedIconPixmap(mode, picture, option);
        constexpr qreal kFaint = 0.4;
        QPixmap faint(picture.size());
        faint.setDevicePixelRatio(picture.devicePixelRatio());
        faint.fill(Qt::transparent);
        QPainter painter(&faint);
        painter.setOpacity(kFaint);
        painter.drawPixmap(0, 0, picture);
        return faint;
    }
};

/** Without a desktop Qt looks for icons in its own resources alone. */
void searchSystemIcons() {
    QStringList folders = QIcon::themeSearchPaths();
    for (const QString& data :
         QStandardPaths::standardLocations(QStandardPaths::GenericDataLocation)) {
        const QString icons = data + QStringLiteral("/icons");
        if (!folders.contains(icons)) folders << icons;
    }
    QIcon::setThemeSearchPaths(folders);
}

/** True when the desktop's theme has what our commands need, beyond what every theme has: a window
 *  with the pictures of two themes looks like neither. */
bool desktopIconsSuffice() {
    for (const char* name : {"document-new", "view-sidetree", "format-text-code",
                             "edit-table-insert-row-below", "object-order-raise"}) {
        if (!QIcon::hasThemeIcon(QString::fromLatin1(name))) return false;
    }
    return true;
}

}  // namespace

Theme::Theme(QApplication& application, ColorScheme scheme)
    : QObject(&application), application_(application) {
    searchSystemIcons();
    ownIcons_ = !desktopIconsSuffice();
    application.installEventFilter(this);
    application.setStyle(new QuickStyle);
    setScheme(scheme);
    if (scheme == ColorScheme::AsDesktop && !isDark()) askDesktop();
}

void Theme::askDesktop() {
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) return;
    // Not waited for: the desktop may have to start the service first.
    QDBusMessage question =
        QDBusMessage::createMethodCall(portalService, portalPath, settingsInterface, "Read");
    question << appearance << colorScheme;
    auto* watcher = new QDBusPendingCallWatcher(bus.asyncCall(question), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
        const QDBusPendingReply<QDBusVariant> reply = *watcher;
        if (!reply.isError()) desktopAnswered(reply.value().variant());
        watcher->deleteLater();
    });
    bus.connect(portalService, portalPath, settingsInterface, "SettingChanged", this,
                SLOT(desktopChanged(QString, QString, QDBusVariant)));
}

void Theme::desktopChanged(const QString& group, const QString& name, const QDBusVariant& value) {
    if (group == appearance && name == colorScheme) desktopAnswered(value.variant());
}

void Theme::desktopAnswered(QVariant value) {
    // "Read" wraps its answer twice.
    while (value.userType() == qMetaTypeId<QDBusVariant>()) {
        value = value.value<QDBusVariant>().variant();
    }
    constexpr uint prefersDark = 1;
    const bool dark = value.toUInt() == prefersDark;
    if (dark != isDark()) setScheme(dark ? ColorScheme::Dark : ColorScheme::Light);
}

bool Theme::isDark() {
    const QPalette palette = QApplication::palette();
    return palette.color(QPalette::Window).lightness() <
           palette.color(QPalette::WindowText).lightness();
}

void Theme::setScheme(ColorScheme scheme) {
    if (scheme != ColorScheme::AsDesktop) {
        application_.setStyle(new QuickStyle(QStringLiteral("Fusion")));
        application_.setPalette(
            scheme == ColorScheme::Dark ? darkPalette() : application_.style()->standardPalette());
    }
    chooseIcons();
}

bool Theme::eventFilter(QObject* watched, QEvent* event) {
    if (watched == &application_ && event->type() == QEvent::ApplicationPaletteChange) {
        chooseIcons();
    }
    return false;
}

void Theme::chooseIcons() {
    const QString ours = isDark() ? QStringLiteral("breeze-dark") : QStringLiteral("breeze");
    QIcon::setFallbackThemeName(ours);
    const bool change = ownIcons_ || QIcon::themeName().startsWith(QLatin1String("breeze"));
    if (change && QIcon::themeName() != ours) QIcon::setThemeName(ours);
}

}  // namespace pw
