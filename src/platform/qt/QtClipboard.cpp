#include "platform/qt/QtClipboard.h"

#include <QClipboard>
#include <QDesktopServices>
#include <QGuiApplication>
#include <QMimeData>
#include <QProcess>
#include <QUrl>

#include "platform/qt/QtText.h"

namespace pw {

std::string QtClipboard::Text() const {
    return fromQt(QGuiApplication::clipboard()->text());
}

std::string QtClipboard::Html() const {
    const QMimeData* data = QGuiApplication::clipboard()->mimeData();
    return data && data->hasHtml() ? fromQt(data->html()) : std::string();
}

void QtClipboard::Set(const std::string& text, const std::string& html) {
    auto* data = new QMimeData;
    data->setText(toQt(text));
    if (!html.empty()) data->setHtml(toQt(html));
    QGuiApplication::clipboard()->setMimeData(data);
}

void QtClipboard::Clear() {
    QGuiApplication::clipboard()->clear();
}

bool QtLauncher::Start(const std::string& program, const std::string& argument) {
    QStringList arguments;
    if (!argument.empty()) arguments << toQt(argument);
    return QProcess::startDetached(toNativeQt(program), arguments);
}

bool QtLauncher::OpenUrl(const std::string& url) {
    return QDesktopServices::openUrl(QUrl(toQt(url)));
}

}  // namespace pw
