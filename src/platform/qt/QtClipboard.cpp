#include "platform/qt/QtClipboard.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>

#include "platform/qt/QtText.h"

namespace pw {

std::string QtClipboard::Text() const {
    return fromQt(QGuiApplication::clipboard()->text());
}

std::string QtClipboard::Html() const {
    const QMimeData* data = QGuiApplication::clipboard()->mimeData();
    return data && data->hasHtml() ? fromQt(data->html()) : std::string();
}

std::vector<std::string> QtClipboard::Files() const {
    std::vector<std::string> files;
    const QMimeData* data = QGuiApplication::clipboard()->mimeData();
    if (!data) return files;
    for (const QUrl& url : data->urls())
        if (url.isLocalFile()) files.push_back(fromNativeQt(url.toLocalFile()));
    return files;
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

}  // namespace pw
