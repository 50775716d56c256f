// From the press on the HTML tab until the source of a page of 1 MB is painted, beside a plain text
// box (QPlainTextEdit, the quicker of Qt's two) that is given the same text. Prints a row of the
// table of benches.
#include <QPlainTextEdit>

#include <functional>

#include "OpenProgram.h"
#include "platform/qt/SourceView.h"

namespace {

using namespace pw;

double milliseconds(const std::function<void()>& work) {
    QElapsedTimer timer;
    timer.start();
    work();
    return double(timer.nsecsElapsed()) / 1e6;
}

}  // namespace

int main(int argc, char** argv) {
    const bench::Application application(argc, argv);
    const std::string html = bench::manualPage(1'000'000);
    const std::string file = application.put("page.htm", html);

    bench::OpenProgram open(application.path("profile"), file);
    frmDocument& document = open.document();
    auto& source = dynamic_cast<SourceView&>(document.Surface().Source());
    QPlainTextEdit rival;
    rival.resize(source.size());
    rival.show();
    const QByteArray bytes = QByteArray::fromStdString(html);
    std::vector<double> ours;
    std::vector<double> rivals;
    for (int round = 0; round < 9; ++round) {
        document.SetToNormalEditMode();
        source.SetText("", {});
        rival.clear();
        bench::waitFor([&] { return !document.docDHTMLEditor.Busy(); });
        QCoreApplication::processEvents();
        const double a = milliseconds([&] {
            document.PressTab(TabPress::Html);
            source.grab();
        });
        const double b = milliseconds([&] {
            rival.setPlainText(QString::fromUtf8(bytes));
            rival.grab();
        });
        if (round == 0) continue;  // the first one meets cold caches
        ours.push_back(a);
        rivals.push_back(b);
    }
    if (document.State() != View::Html || source.Text().size() < html.size()) return 1;
    bench::printRow("open the source view on 1 MB", ours, rivals, "2");
    return 0;
}
