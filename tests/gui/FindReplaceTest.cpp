// Find and Replace with real windows: the keyboard in the dialog, the match in the page.
#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QTimer>
#include <QWebEngineScript>
#include <QWebEngineView>

#include "gui/PageScript.h"
#include "gui/ShownProgram.h"
#include "mainwindow/Finding.h"
#include "platform/Text.h"
#include "platform/qt/CommandBarView.h"
#include "platform/qt/DocumentWindow.h"
#include "platform/qt/QtDialogHost.h"

namespace pw {
namespace {

struct FindReplaceTest : testing::Test {
    void open(const std::string& body) {
        const std::string html =
            "<html><head><title>Page</title></head><body>" + body + "</body></html>";
        shown = std::make_unique<test::ShownProgram>(outer, outer.folder.Put("page.html", html), 2,
                                                     &dialogs);
        dialogs.setParent(&shown->window);
        ASSERT_TRUE(shown->program->Window().Context().CurrentDocument());
    }
    MainContext& context() { return shown->program->Window().Context(); }
    frmDocument& page() { return *context().CurrentDocument(); }
    DocumentWindow& window() { return static_cast<DocumentWindow&>(page().Surface()); }
    SourceView& source() { return static_cast<SourceView&>(page().Surface().Source()); }
    void press(int tool) {
        shown->window.bars()->action(tool)->trigger();
        QTest::qWait(50);
    }
    QDialog& dialog() {
        for (QDialog* each : shown->window.findChildren<QDialog*>())
            if (each->isVisible() && each->findChild<QWidget*>("txtFind")) return *each;
        throw std::runtime_error("the dialog is not up");
    }
    void type(const char* field, const char* text) {
        QLineEdit* line = dialog().findChild<QComboBox*>(field)->lineEdit();
        line->selectAll();
        QTest::keyClicks(line, text);
    }
    void click(int button) {
        const QString name = QStringLiteral("cmdProcess_%1").arg(button);
        QTest::mouseClick(dialog().findChild<QAbstractButton*>(name), Qt::LeftButton);
        page().WaitUntilReady();
    }
    QVariant inPage(const char* script) {
        auto& view = dynamic_cast<EditorView&>(*page().Surface().Editor());
        return test::RunInPage(*view.view()->page(), QString::fromUtf8(script),
                               QWebEngineScript::ApplicationWorld);
    }
    /** Closes the next message box, and keeps its text. */
    void expectMessage() {
        message.clear();
        auto* timer = new QTimer(qApp);
        QObject::connect(timer, &QTimer::timeout, timer, [this, timer] {
            auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            if (!box) return;
            message = box->text();
            timer->deleteLater();
            box->accept();
        });
        timer->start(5);
    }

    test::TestContext outer;
    QtDialogHost dialogs;
    std::unique_ptr<test::ShownProgram> shown;
    QString message;
};

TEST_F(FindReplaceTest, StepsThroughThePageAndReplacesInIt) {
    std::string body;
    for (int i = 0; i < 200; ++i)
        body += "<p>Paragraph of some length, number " + std::to_string(i) + "</p>";
    open("<p>A wo<b>rd</b> here</p>" + body + "<p>the last word</p>");
    const std::string before = page().Document().html();
    press(109);
    EXPECT_FALSE(dialogs.IsModalOpen());
    EXPECT_FALSE(dialog().isModal());
    EXPECT_EQ(dialog().windowTitle(), "Replace");
    QLineEdit* line = dialog().findChild<QComboBox*>("txtFind")->lineEdit();
    EXPECT_EQ(QApplication::focusWidget(), line->parentWidget());
    type("txtFind", "WORD");
    type("txtReplace", "text");
    EXPECT_EQ(inPage("scrollY").toInt(), 0);

    // Enter presses Find Next, and the keyboard stays where it is.
    QTest::keyClick(line, Qt::Key_Return);
    page().WaitUntilReady();
    EXPECT_EQ(inPage("getSelection().toString()").toString(), "word");
    QTest::keyClick(line, Qt::Key_Return);
    page().WaitUntilReady();
    EXPECT_TRUE(dialog().isVisible());
    EXPECT_GT(inPage("scrollY").toInt(), 1000);
    EXPECT_EQ(inPage("getSelection().anchorNode.data").toString(), "the last word");
    EXPECT_TRUE(inPage("(r => r.top >= 0 && r.bottom <= innerHeight)"
                       "(getSelection().getRangeAt(0).getBoundingClientRect())")
                    .toBool());
    expectMessage();
    QTest::keyClick(line, Qt::Key_Return);
    EXPECT_EQ(message, "Finished searching the page.");

    click(2);
    EXPECT_EQ(inPage("document.body.firstElementChild.innerHTML").toString(), "A text here");
    EXPECT_EQ(inPage("document.body.lastElementChild.innerText").toString(), "the last text");
    dialog().close();
    EXPECT_FALSE(context().Finder->Form()->IsOpen());
    press(101);
    page().WaitUntilReady();
    EXPECT_EQ(page().Document().html(), before);
    EXPECT_EQ(inPage("document.body.firstElementChild.innerHTML").toString(), "A wo<b>rd</b> here");
}

TEST_F(FindReplaceTest, WorksOnTheSource) {
    open("<p class=\"one\">One and one</p>");
    page().PressTab(TabPress::Html);
    shown->Settle();
    const std::string before = source().Text();
    source().setFocus();
    QTest::keyClicks(&source(), "ab");
    EXPECT_EQ(source().Text(), "ab" + before);
    EXPECT_TRUE(page().HasPendingSource());
    QTest::keyClick(&source(), Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(source().Text(), before) << "undo of the view's own";

    press(109);
    type("txtFind", "one");
    type("txtReplace", "two one");
    click(0);
    EXPECT_EQ(source().textCursor().selectedText(), "one");
    EXPECT_EQ(source().SelStart(), before.find("\"one\"") + 1);
    expectMessage();
    click(2);
    EXPECT_EQ(message, "Finished searching the page.");
    EXPECT_EQ(source().Text(), ReplaceAll(before, "<p class=\"one\">One and one",
                                          "<p class=\"two one\">two one and two one"));
    source().undo();
    EXPECT_EQ(source().Text(), before) << "one step";
    source().redo();
    page().PressTab(TabPress::Normal);
    shown->Settle();
    EXPECT_EQ(inPage("document.querySelector('p').outerHTML").toString(),
              "<p class=\"two one\">two one and two one</p>");
    // Over pages that close, and over the end of the program, the dialog does no harm.
    press(904);
    QTest::mouseClick(dialog().findChild<QAbstractButton*>("cmdProcess_0"), Qt::LeftButton);
    EXPECT_TRUE(dialog().isVisible());
    shown.reset();
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
}

TEST_F(FindReplaceTest, GoesOnByKeysAlone) {
    open("<p>one</p><p>one</p><p>one</p>");
    press(108);
    EXPECT_EQ(dialog().windowTitle(), "Find");
    type("txtFind", "one");
    QTest::keyClick(&dialog(), Qt::Key_Return);
    QTest::keyClick(&dialog(), Qt::Key_Escape);
    EXPECT_FALSE(context().Finder->Form()->IsOpen());
    const auto paragraph = [this] {
        page().WaitUntilReady();
        return page().Document().selection().focus.node->parent()->index();
    };
    EXPECT_EQ(paragraph(), 0u);
    shown->window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&shown->window));
    QTest::keyClick(&shown->window, Qt::Key_F3);
    EXPECT_EQ(paragraph(), 1u);
    QTest::keyClick(&shown->window, Qt::Key_F3);
    EXPECT_EQ(paragraph(), 2u);
    QTest::keyClick(&shown->window, Qt::Key_F3, Qt::ShiftModifier);
    EXPECT_EQ(paragraph(), 1u);
}

}  // namespace
}  // namespace pw
