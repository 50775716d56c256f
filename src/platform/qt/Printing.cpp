#include "platform/qt/Printing.h"

#include <QApplication>
#include <QPageRanges>
#include <QPointer>
#include <QPrintDialog>
#include <QTimer>
#include <QWebEnginePage>
#include <QWebEngineView>
#include <optional>

#include "platform/HandlerLevel.h"
#include "platform/qt/QtMessageLoop.h"

namespace pw {

namespace {

/** The browser engine hands pictures of whole sheets to a printer; finer ones take the memory of
 *  the machine and look no better. */
constexpr int kDotsPerInch = 300;
/** A page whose scripts never rest is not waited for any longer. */
constexpr int kGiveUpMilliseconds = 120'000;

class WaitPointer {
  public:
    WaitPointer() { QApplication::setOverrideCursor(Qt::WaitCursor); }
    ~WaitPointer() { QApplication::restoreOverrideCursor(); }
    WaitPointer(const WaitPointer&) = delete;
    WaitPointer& operator=(const WaitPointer&) = delete;
};

void startPrinting(QWebEngineView& view, QPrinter& printer) {
    if (printer.outputFormat() == QPrinter::PdfFormat) {
        // Straight into the file: its text stays text.
        view.page()->printToPdf(printer.outputFileName(), printer.pageLayout(),
                                printer.pageRanges());
    } else {
        view.print(&printer);
    }
}

}  // namespace

std::unique_ptr<QPrinter> askForPrinter(const QString& title, QWidget* parent) {
    auto printer = std::make_unique<QPrinter>(QPrinter::HighResolution);
    printer->setResolution(kDotsPerInch);
    // The name of a PDF file is made from it.
    printer->setDocName(QString(title).replace(QLatin1Char('/'), QLatin1Char('-')));
    QPrintDialog dialog(printer.get(), parent);
    const EventRound round;
    return dialog.exec() == QDialog::Accepted ? std::move(printer) : nullptr;
}

bool printPage(QWebEngineView& view, std::unique_ptr<QPrinter> printer) {
    const WaitPointer pointer;
    const QPointer<QWebEngineView> alive(&view);
    std::optional<bool> printed;  // as the engine says
    bool lost = false;            // it will not say any more
    QObject receiver;             // hears nothing once this has returned
    QObject::connect(&view, &QWebEngineView::printFinished, &receiver,
                     [&](bool success) { printed = success; });
    QObject::connect(&view, &QWebEngineView::pdfPrintingFinished, &receiver,
                     [&](const QString&, bool success) { printed = success; });
    QObject::connect(view.page(), &QWebEnginePage::renderProcessTerminated, &receiver,
                     [&] { lost = true; });
    QTimer giveUp;
    QObject::connect(&giveUp, &QTimer::timeout, &receiver, [&] { lost = true; });
    giveUp.start(kGiveUpMilliseconds);
    const auto waitFor = [&](const std::function<bool()>& condition) {
        const auto over = [&] { return !alive || lost || printed || condition(); };
        while (!over())
            sleepForEvents(over, QEventLoop::ExcludeUserInputEvents);
    };
    waitFor([&] { return !alive->page()->isLoading(); });
    if (!alive || lost) return false;
    startPrinting(view, *printer);
    waitFor([] { return false; });
    if (printed) return *printed;
    // For all that is known here, the engine may still draw on it.
    static_cast<void>(printer.release());
    return false;
}

bool printText(const QTextDocument& text, QPrinter& printer) {
    const WaitPointer pointer;
    text.print(&printer);
    return printer.printerState() != QPrinter::Error;
}

}  // namespace pw
