#include "platform/qt/Printing.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTextBlock>
#include <QTextLayout>

#include "gui/EditorFixture.h"
#include "platform/qt/DocumentWindow.h"
#include "platform/qt/MainWindow.h"

namespace pw {
namespace {

std::unique_ptr<QPrinter> PdfPrinter(const QString& path) {
    auto printer = std::make_unique<QPrinter>();
    printer->setOutputFormat(QPrinter::PdfFormat);
    printer->setOutputFileName(path);
    return printer;
}

/** Nothing when it is no PDF file. */
QByteArray PdfAt(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) return {};
    const QByteArray content = file.readAll();
    return content.startsWith("%PDF-") ? content : QByteArray();
}

class PrintedEditor : public test::EditorFixture {
  protected:
    /** As it would be at whatever hour. */
    QString print() {
        const QString path = folder.filePath("page.pdf");
        QFile::remove(path);
        EXPECT_TRUE(printPage(*view.view(), PdfPrinter(path)));
        static const QRegularExpression dates(QStringLiteral("\\(D:[^)]*\\)"));
        return QString::fromLatin1(PdfAt(path)).remove(dates);
    }
    QTemporaryDir folder;
};

TEST_F(PrintedEditor, IsThePageWithoutWhatTheEditorDraws) {
    open(test::kPage);
    const std::string before = document->html();
    const QString plain = print();
    ASSERT_GT(plain.size(), 1000);
    view.SetShowBorders(true);
    view.SetShowTags(true);
    view.SetSnapToGrid(true);
    view.MarkCells(document->tags("td"));
    dom::Selection selection;
    selection.type = dom::SelectionType::Control;
    selection.control = document->tags("img").front();
    document->setSelection(selection);
    view.Flush();
    view.view()->setZoomFactor(1.5);
    EXPECT_TRUE(print() == plain);
    EXPECT_EQ(document->html(), before);
    EXPECT_FALSE(document->canUndo());
    // The next print shows a change that has just been made.
    document->setText(*document->tags("h1").front()->firstChild(), "Another");
    view.Flush();
    EXPECT_FALSE(print() == plain);
}

TEST(PrintedPage, IsTheViewThatIsUp) {
    QTemporaryDir folder;
    MainWindow window{{}};
    window.show();
    auto page = static_cast<MainWindowSurface&>(window).CreateDocument();
    auto& document = static_cast<DocumentWindow&>(*page);
    const auto print = [&](const QString& name) {
        return document.printTo(PdfPrinter(folder.filePath(name)));
    };
    page->Source().SetText("<p>source</p>\r\n", {});
    page->ShowView(View::Html);
    EXPECT_TRUE(print("source.pdf"));
    EXPECT_FALSE(PdfAt(folder.filePath("source.pdf")).isEmpty());
    EXPECT_FALSE(print("missing/source.pdf"));
    // Not even loaded when it is asked for.
    page->ShowPreview("<p>preview</p>", "\\tmp\\");
    page->ShowView(View::Preview);
    EXPECT_TRUE(print("preview.pdf"));
    EXPECT_FALSE(PdfAt(folder.filePath("preview.pdf")).isEmpty());
    EXPECT_FALSE(print("missing/preview.pdf"));
    page.reset();
    // The browser engine wants its pages gone before the program ends.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

TEST(PrintedSource, IsReadOnWhitePaper) {
    SourceView view;
    const auto colorOfTag = [&] {
        const std::unique_ptr<QTextDocument> paper = view.forPaper();
        EXPECT_EQ(paper->toPlainText(), view.toPlainText());
        const auto formats = paper->lastBlock().layout()->formats();
        return formats.isEmpty() ? QColor() : formats.front().format.foreground().color();
    };
    std::string text;
    for (int i = 0; i < 500; ++i)
        text += "<p>line\r\n";
    view.SetText(text + "<b>", {0x0000FF, 0, 0, 0xFFFFFF});
    EXPECT_EQ(colorOfTag(), QColor(Qt::red)) << "far from what is on the screen";
    view.Recolor({0x00FFFF, 0, 0, 0x000000});
    EXPECT_EQ(colorOfTag(), QColor(Qt::black)) << "yellow on black";
}

}  // namespace
}  // namespace pw
