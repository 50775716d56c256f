// The rival of the program's start and of its typing: a window with nothing but the browser view.
// It loads the page named, makes it editable, and prints "ready" when a key could be typed.
#include <unistd.h>
#include <QApplication>
#include <QFile>
#include <QTextStream>
#include <QUrl>
#include <QWebEngineSettings>
#include <QWebEngineView>

int main(int argc, char** argv) {
    if (geteuid() == 0) qputenv("QTWEBENGINE_DISABLE_SANDBOX", "1");
    QApplication application(argc, argv);
    QWebEngineView view;
    view.resize(1000, 700);
    QObject::connect(view.page(), &QWebEnginePage::loadFinished, [&view] {
        view.page()->runJavaScript("document.designMode='on'; document.hasFocus(); 1",
                                   [](const QVariant&) {
                                       QTextStream(stdout) << "ready" << Qt::endl;
                                       QCoreApplication::exit(0);
                                   });
    });
    view.show();
    view.setFocus();
    view.load(QUrl::fromLocalFile(QString::fromLocal8Bit(argv[argc - 1])));
    return QApplication::exec();
}
