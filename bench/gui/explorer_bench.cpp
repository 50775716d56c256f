// What the page explorer costs while the user types: a key on a page of 5,000 elements, from the
// press until the program has followed it and the window is drawn again, with the explorer shown
// and hidden. The caret goes to another paragraph before each key, as it is then that the explorer
// has something to do. Prints rows of the table of benches.
#include <QKeyEvent>
#include <QTest>

#include "OpenProgram.h"

namespace {

using namespace pw;

constexpr int kElements = 5000;
constexpr int kPageExplorerTool = 210;

std::string page() {
    std::string html = "<html><head><title>Many</title></head><body>\n";
    for (int i = 0; i < kElements / 5; ++i) {
        const std::string n = std::to_string(i);
        html += "<div><a href=\"p" + n + ".htm\">part " + n +
                "</a> and <span>more</span></div>\n<p>A paragraph of text.</p>\n<hr>\n";
    }
    return html + "</body></html>\n";
}

struct Shown : bench::OpenProgram {
    Shown(const std::string& profile, const std::string& file) : OpenProgram(profile, file) {
        QTest::qWait(500);
        paragraphs = document().Document().tags("p");
        auto followed = document().docDHTMLEditor.DisplayChanged;
        document().docDHTMLEditor.DisplayChanged = [this, followed] {
            followed();
            displayed = true;
        };
    }

    void showExplorer(bool show) {
        frmMDIMain& main = program->Window();
        if (main.IsExplorerShown(kPageExplorerTool) != show) main.barMain.Click(kPageExplorerTool);
        QTest::qWait(300);
    }

    double key() {
        dom::Document& dom = document().Document();
        dom::Node* paragraph = paragraphs[std::size_t(next += 7) % paragraphs.size()];
        dom.collapse({paragraph->firstChild(), 3});
        document().m_docEvents_onmousedown(paragraph);
        document().FocusView();
        document().WaitUntilReady();
        QTest::qWait(80);
        QWidget* target = window.findChild<EditorView*>()->view()->focusProxy();
        const auto revision = dom.revision();
        displayed = false;
        // The press on the paragraph is news to the explorer together with the key.
        document().m_docEvents_onmousedown(paragraph == paragraphs[0] ? paragraphs[1]
                                                                      : paragraphs[0]);
        QElapsedTimer timer;
        timer.start();
        QKeyEvent press(QEvent::KeyPress, Qt::Key_A, Qt::NoModifier, QStringLiteral("a"));
        QCoreApplication::sendEvent(target, &press);
        while (dom.revision() == revision || !displayed) {
            if (timer.elapsed() > 10000) return 0;
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        }
        QCoreApplication::processEvents();
        const double took = double(timer.nsecsElapsed()) / 1e6;
        QKeyEvent release(QEvent::KeyRelease, Qt::Key_A, Qt::NoModifier, QStringLiteral("a"));
        QCoreApplication::sendEvent(target, &release);
        QTest::qWait(40);
        return took;
    }

    std::vector<dom::Node*> paragraphs;
    int next = 0;
    bool displayed = false;
};

}  // namespace

int main(int argc, char** argv) {
    const bench::Application application(argc, argv);
    const std::string file = application.put("many.html", page());
    std::vector<double> shown;
    std::vector<double> hidden;
    {
        Shown program(application.path("profile"), file);
        // In turns, so that whatever else the machine does falls on both.
        for (int round = 0; round < 6; ++round) {
            for (const bool with : {true, false}) {
                program.showExplorer(with);
                program.key();
                for (int i = 0; i < 8; ++i)
                    (with ? shown : hidden).push_back(program.key());
            }
        }
    }
    bench::printRow("page explorer follows a key, page of 5,000 elements", shown, hidden, "1.2");
    return 0;
}
