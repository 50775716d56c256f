#include "platform/qt/PagePicture.h"

#include <QEventLoop>
#include <QFileInfo>
#include <QTimer>
#include <QWebEngineView>

namespace pw {

namespace {

constexpr QSize kPictureSize(1000, 750);
constexpr int kSettleMilliseconds = 400;  // layout and paint follow the end of loading
constexpr int kGiveUpMilliseconds = 30000;

}  // namespace

bool takePagePicture(const QString& page, const QString& picture) {
    QWebEngineView view;
    view.setAttribute(Qt::WA_DontShowOnScreen);
    view.resize(kPictureSize);
    view.show();
    QEventLoop loop;
    bool loaded = false;
    QObject::connect(view.page(), &QWebEnginePage::loadFinished, &loop, [&](bool ok) {
        loaded = ok;
        QTimer::singleShot(ok ? kSettleMilliseconds : 0, &loop, &QEventLoop::quit);
    });
    QTimer::singleShot(kGiveUpMilliseconds, &loop, &QEventLoop::quit);
    view.load(QUrl::fromLocalFile(QFileInfo(page).absoluteFilePath()));
    loop.exec();
    return loaded && view.grab().save(picture);
}

}  // namespace pw
