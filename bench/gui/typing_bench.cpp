// From a key press to the change in the program's document, on a page of 1 MB, beside the same key
// in a bare browser view to its `input` event; and the time until a page stands in the view, beside
// a bare view that loads it. Prints rows of the table of benches.
#include <QElapsedTimer>
#include <QKeyEvent>
#include <QTimer>
#include <QWebEnginePage>
#include <QWebEngineView>

#include <chrono>
#include <string>
#include <vector>

#include "BenchBasics.h"
#include "platform/qt/editor/EditorView.h"

namespace {

using namespace pw::bench;

double now() {
    return std::chrono::duration<double, std::milli>(
               std::chrono::system_clock::now().time_since_epoch())
        .count();
}

template <typename Condition>
bool waitFor(Condition condition, int milliseconds) {
    QElapsedTimer timer;
    timer.start();
    QTimer tick;  // so that the wait below ends even when nothing happens
    tick.start(20);
    while (!condition()) {
        if (timer.elapsed() > milliseconds) return false;
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    return true;
}

void rest(int milliseconds) {
    waitFor([] { return false; }, milliseconds);
}

void send(QWidget& target, QEvent::Type type) {
    QKeyEvent event(type, Qt::Key_A, Qt::NoModifier, QStringLiteral("a"));
    QCoreApplication::sendEvent(&target, &event);
}
void press(QWidget& target) {
    send(target, QEvent::KeyPress);
}
void release(QWidget& target) {
    send(target, QEvent::KeyRelease);
}

class Ours : public pw::dom::DocumentObserver {
  public:
    explicit Ours(const std::string& html) : document(pw::dom::Document::parse(html)) {
        view.resize(1000, 700);
        view.show();
        view.Show(*document, "file:///tmp/");
        view.Flush();
        document->addObserver(this);
    }
    ~Ours() override {
        view.Clear();
        document->removeObserver(this);
    }
    void documentChanged(const pw::dom::Change&) override { changed = now(); }

    void focus() {
        view.activateWindow();
        view.view()->focusProxy()->setFocus();
        for (pw::dom::Node* node = document->body(); node; node = node->following())
            if (node->isText() && node->data().find("what happens") != std::string::npos) {
                document->collapse({node, 20});
                break;
            }
        view.Flush();
    }
    double key() {
        changed = 0;
        const double start = now();
        press(*view.view()->focusProxy());
        if (!waitFor([&] { return changed > 0; }, 10000)) return 0;
        release(*view.view()->focusProxy());
        return changed - start;
    }

    std::unique_ptr<pw::dom::Document> document;
    pw::EditorView view;
    double changed = 0;
};

class BarePage : public QWebEnginePage {
  public:
    using QWebEnginePage::QWebEnginePage;
    double input = 0;

  protected:
    void javaScriptConsoleMessage(JavaScriptConsoleMessageLevel, const QString& message, int,
                                  const QString&) override {
        input = message.toDouble();
    }
};

class Rival {
  public:
    explicit Rival(const QString& file) {
        view.setPage(bare);
        view.resize(1000, 700);
        view.show();
        bool loaded = false;
        QObject::connect(bare, &QWebEnginePage::loadFinished, [&] { loaded = true; });
        view.load(QUrl::fromLocalFile(file));
        if (!waitFor([&] { return loaded; }, 60000)) std::abort();
        run("document.designMode = 'on';"
            "addEventListener('input', () => console.log(performance.timeOrigin + "
            "performance.now()));");
    }
    void focus() {
        view.activateWindow();
        view.focusProxy()->setFocus();
        run("getSelection().collapse(document.querySelector('p').firstChild, 20)");
    }
    double key() {
        bare->input = 0;
        const double start = now();
        press(*view.focusProxy());
        if (!waitFor([&] { return bare->input > 0; }, 10000)) return 0;
        release(*view.focusProxy());
        return bare->input - start;
    }
    void run(const char* script) {
        bool done = false;
        bare->runJavaScript(QLatin1String(script), [&](const QVariant&) { done = true; });
        if (!waitFor([&] { return done; }, 30000)) std::abort();
    }

    QWebEngineView view;
    BarePage* bare = new BarePage(&view);
};

void measureTyping(const std::string& html, const QString& file) {
    Ours ours(html);
    Rival rival(file);
    std::vector<double> a;
    std::vector<double> b;
    // In turns, so that whatever else the machine does falls on both.
    for (int round = 0; round < 4; ++round) {
        rival.view.hide();
        ours.view.show();
        rest(500);
        ours.focus();
        for (int i = 0; i < 12; ++i) {
            const double time = ours.key();
            if (i > 1) a.push_back(time);
            rest(120);
        }
        ours.view.hide();
        rival.view.show();
        rest(500);
        rival.focus();
        for (int i = 0; i < 12; ++i) {
            const double time = rival.key();
            if (i > 1) b.push_back(time);
            rest(120);
        }
    }
    printRow("key press to change in the document, page of 1 MB", a, b, "1.5");
}

// A view of our own against a bare one in the same process: what building the page by script costs.
void measureShowing(const std::string& html, const QString& file) {
    std::vector<double> a;
    std::vector<double> b;
    for (int round = 0; round < 6; ++round) {
        QElapsedTimer timer;
        timer.start();
        {
            Ours ours(html);
            if (round) a.push_back(double(timer.nsecsElapsed()) / 1e6);
        }
        timer.restart();
        {
            Rival rival(file);
            if (round) b.push_back(double(timer.nsecsElapsed()) / 1e6);
        }
    }
    printRow(html.size() > 500'000 ? "page of 1 MB shown in the editing view"
                                   : "page of 40 KB shown in the editing view",
             a, b, "1.5");
}

}  // namespace

int main(int argc, char** argv) {
    const Application application(argc, argv);
    for (const std::size_t size : {40'000, 1'000'000}) {
        const std::string html = manualPage(size);
        const QString file = QString::fromStdString(application.put("page.htm", html));
        measureShowing(html, file);
        if (size > 500'000) measureTyping(html, file);
    }
    return 0;
}
