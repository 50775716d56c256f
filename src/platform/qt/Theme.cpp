#include "platform/qt/Theme.h"

#include <QApplication>
#include <QEvent>
#include <QIcon>
#include <QPalette>
#include <QStandardPaths>
#include <QStyleFactory>

namespace pw {

namespace {

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

/** Without a desktop Qt looks for icons in its own resources alone. */
void searchSystemIcons() {
    QStringList folders = QIcon::themeSearchPaths();
    for (const QString& data : QStandardPaths::standardLocations(
             QStandardPaths::GenericDataLocation)) {
        const QString icons = data + QStringLiteral("/icons");
        if (!folders.contains(icons)) folders << icons;
    }
    QIcon::setThemeSearchPaths(folders);
}

/** A name that every full theme has. */
const QString probe = QStringLiteral("document-new");

}  // namespace

Theme::Theme(QApplication& application, ColorScheme scheme)
    : QObject(&application), application_(application) {
    searchSystemIcons();
    ownIcons_ = QIcon::themeName().isEmpty() || QIcon::themeName() == QLatin1String("hicolor") ||
                !QIcon::hasThemeIcon(probe);
    // What another theme lacks comes from this one.
    QIcon::setFallbackThemeName(QStringLiteral("breeze"));
    application.installEventFilter(this);
    setScheme(scheme);
}

bool Theme::isDark() {
    const QPalette palette = QApplication::palette();
    return palette.color(QPalette::Window).lightness() <
           palette.color(QPalette::WindowText).lightness();
}

void Theme::setScheme(ColorScheme scheme) {
    if (scheme != ColorScheme::AsDesktop) {
        application_.setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
        application_.setPalette(scheme == ColorScheme::Dark
                                    ? darkPalette()
                                    : application_.style()->standardPalette());
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
