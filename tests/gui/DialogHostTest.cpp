#include "platform/qt/QtDialogHost.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QColorDialog>
#include <QFile>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include "platform/controls/Dialog.h"
#include "platform/qt/Application.h"
#include "platform/qt/QtMessageLoop.h"
#include "platform/qt/QtText.h"

namespace pw {
namespace {

/** Does something with the modal window as soon as there is one. */
template <typename Window, typename Action>
void whenModal(Action action) {
    auto* timer = new QTimer(qApp);
    QObject::connect(timer, &QTimer::timeout, timer, [timer, action] {
        auto* window = qobject_cast<Window*>(QApplication::activeModalWidget());
        if (!window) return;
        timer->stop();
        timer->deleteLater();
        action(*window);
    });
    timer->start(5);
}

/** Shaped as the dialog for the user's own name. */
struct NameDialog : Dialog {
    NameDialog() : Dialog("frmNameValue", "Your Name") {
        cmdOK.Click = [this] {
            accepted = true;
            Close();
        };
        cmdCancel.Click = [this] { Close(); };
        txtName.Change = [this] { cmdOK.SetEnabled(!txtName.Text().empty()); };
        helpTopic = 7;
    }
    void Form_Load() override {
        txtName.SetText("start");
        txtName.SetFocus();
    }
    void Form_Unload() override { unloaded = true; }
    bool Form_QueryUnload() override { return mayClose; }
    Label lblName{this, "lblName"};
    Label lblValue{this, "lblValue"};
    TextBox txtName{this, "txtName"};
    TextBox txtValue{this, "txtValue"};
    Button cmdOK{this, "cmdOK"};
    Button cmdCancel{this, "cmdCancel"};
    bool accepted = false;
    bool unloaded = false;
    bool mayClose = true;
};

TEST(DialogHost, EnterTakesTheDialogAndEscapeLeavesIt) {
    struct Row {
        const char* name;
        Qt::Key key;
        bool accepted;
    };
    for (const Row& row :
         {Row{"Enter", Qt::Key_Return, true}, Row{"Escape", Qt::Key_Escape, false}}) {
        QtDialogHost host;
        NameDialog dialog;
        whenModal<QDialog>([&](QDialog& window) {
            EXPECT_TRUE(host.IsModalOpen());
            EXPECT_EQ(window.windowTitle(), "Your Name");
            auto* line = window.findChild<QLineEdit*>("txtName");
            EXPECT_EQ(line->text(), "start");
            line->selectAll();
            QTest::keyClicks(line, "Ann");
            QTest::keyClick(line, row.key);
        });
        host.ShowModal(dialog);
        EXPECT_EQ(dialog.accepted, row.accepted) << row.name;
        EXPECT_EQ(dialog.txtName.Text(), "Ann") << row.name;
        EXPECT_TRUE(dialog.unloaded) << row.name;
        EXPECT_FALSE(host.IsModalOpen()) << row.name;
    }
}

TEST(DialogHost, TheDialogSaysWhetherItMayBeClosed) {
    QtDialogHost host;
    int topic = 0;
    host.setHelp([&](int asked) { topic = asked; });
    NameDialog dialog;
    dialog.mayClose = false;
    whenModal<QDialog>([&](QDialog& window) {
        QTest::keyClick(&window, Qt::Key_F1);
        window.close();
        EXPECT_TRUE(window.isVisible());
        dialog.SetTitle("Other");
        EXPECT_EQ(window.windowTitle(), "Other");
        dialog.txtName.SetText("");
        QTest::keyClick(&window, Qt::Key_Return);
        EXPECT_TRUE(dialog.IsOpen()) << "OK is disabled";
        dialog.mayClose = true;
        window.close();
    });
    host.ShowModal(dialog);
    EXPECT_EQ(topic, 7);
    EXPECT_FALSE(dialog.accepted);
}

TEST(DialogHost, MessagesAnswer) {
    struct Row {
        const char* name;
        Message message;
        int press;  ///< 0: Escape, -1: Enter, -2: the one more button
        Answer answer;
    };
    const Row rows[] = {
        {"OK", {"<b>&\nline", "T", Icon::Stop, Buttons::Ok}, -1, Answer::Ok},
        {"Yes", {"t", "T", Icon::Question, Buttons::YesNo}, QMessageBox::Yes, Answer::Yes},
        {"DefaultNo", {"t", "T", Icon::Question, Buttons::YesNo, Answer::No}, -1, Answer::No},
        {"EscapeNo", {"t", "T", Icon::Question, Buttons::YesNo}, 0, Answer::No},
        {"EscapeCancel", {"t", "T", Icon::None, Buttons::YesNoCancel}, 0, Answer::Cancel},
        {"EnterYes", {"t", "T", Icon::None, Buttons::YesNoCancel}, -1, Answer::Yes},
        {"Cancel",
         {"t", "T", Icon::Exclamation, Buttons::OkCancel},
         QMessageBox::Cancel,
         Answer::Cancel},
        {"Action", {"t", "T", Icon::None, Buttons::Ok, Answer::Ok, "&Open"}, -2, Answer::Action},
        {"ActionEscape", {"t", "T", Icon::None, Buttons::Ok, Answer::Ok, "&Open"}, 0, Answer::Ok},
        {"ActionEnter", {"t", "T", Icon::None, Buttons::Ok, Answer::Ok, "&Open"}, -1, Answer::Ok},
    };
    for (const Row& row : rows) {
        QtDialogHost host;
        whenModal<QMessageBox>([&](QMessageBox& box) {
            EXPECT_EQ(fromQt(box.text()), row.message.text) << row.name;
            EXPECT_EQ(box.textFormat(), Qt::PlainText) << row.name;
            if (row.press == -2) {
                for (QAbstractButton* button : box.buttons())
                    if (button->text() == "&Open") button->click();
            } else if (row.press > 0) {
                box.button(QMessageBox::StandardButton(row.press))->click();
            } else {
                QTest::keyClick(&box, row.press == 0 ? Qt::Key_Escape : Qt::Key_Return);
            }
        });
        EXPECT_EQ(host.MsgBox(row.message), row.answer) << row.name;
    }
}

TEST(DialogHost, FiltersAreTurnedIntoThoseOfQt) {
    EXPECT_EQ(nameFilters("Projects (*.pwp)|*.pwp"), QStringList{"Projects (*.pwp)"});
    EXPECT_EQ(nameFilters("HTML (*.htm;*.html)|*.htm;*.html|All|*.*"),
              (QStringList{"HTML (*.htm *.html)", "All (*)"}));
    EXPECT_TRUE(nameFilters("").isEmpty());
}

/** Notes what handlers could not do. */
struct NotedFaults : FaultSink {
    void HandlerFailed(const std::string& moduleDot, const std::string& procedure) override {
        tags.push_back(moduleDot + procedure);
    }
    std::vector<std::string> tags;
};

TEST(DialogHost, AFailingHandlerLeavesTheDialogAndTheHandlerAroundIt) {
    QtDialogHost host;
    NotedFaults faults;
    host.SetFaults(&faults);
    NameDialog outer;
    bool isDone = false;
    outer.cmdOK.Click = [&] {
        NameDialog inner;
        inner.cmdOK.Click = [] { throw std::runtime_error("inner"); };
        whenModal<QDialog>([&](QDialog& window) {
            QTest::keyClick(&window, Qt::Key_Return);
            EXPECT_TRUE(inner.IsOpen());
            QTest::keyClick(&window, Qt::Key_Escape);
        });
        host.ShowModal(inner);
        isDone = true;
        outer.Close();
    };
    whenModal<QDialog>([&](QDialog& window) { QTest::keyClick(&window, Qt::Key_Return); });
    host.ShowModal(outer);
    EXPECT_TRUE(isDone);
    EXPECT_EQ(faults.tags, std::vector<std::string>{"NameValue.cmdOK_Click"});
}

TEST(ApplicationTest, AnEventThatFailsDoesNotEndTheProgram) {
    struct Failing : QObject {
        bool event(QEvent*) override { throw std::runtime_error("no handler caught this"); }
    };
    auto& application = static_cast<Application&>(*qApp);
    std::vector<Application::Fault> seen;
    const auto former = std::exchange(application.onFault, [&](Application::Fault fault) {
        EXPECT_THROW(throw, std::runtime_error);
        seen.push_back(fault);
    });
    Failing receiver;
    QEvent event(QEvent::User);
    for (int i = 0; i < 2; ++i)
        EXPECT_FALSE(QCoreApplication::sendEvent(&receiver, &event));
    EXPECT_EQ(seen, (std::vector<Application::Fault>{Application::Fault::Told,
                                                     Application::Fault::Again}));
    application.onFault = former;
}

TEST(DialogHost, SavingLeavesTheNameAndTheQuestionToTheLogic) {
    const QTemporaryDir folder;
    QFile taken(folder.filePath("example.com"));
    ASSERT_TRUE(taken.open(QIODevice::WriteOnly));
    QtDialogHost host;
    whenModal<QFileDialog>([&](QFileDialog& dialog) {
        EXPECT_EQ(dialog.directory().path(), folder.path());
        auto* name = dialog.findChild<QLineEdit*>("fileNameEdit");
        EXPECT_EQ(name->text(), "Old");
        name->setText("example.com");
        QTest::keyClick(name, Qt::Key_Return);
    });
    const std::string chosen = host.SaveFile(
        {"Save Project As", "Projects (*.pwp)|*.pwp", fromNativeQt(folder.filePath("Old")), "pwp"});
    EXPECT_EQ(chosen, fromNativeQt(folder.filePath("example.com")));
    EXPECT_EQ(chosen.find('/'), std::string::npos);
}

TEST(DialogHost, OpeningTakesExistingFilesAndMayBeCancelled) {
    const QTemporaryDir folder;
    QFile file(folder.filePath("a.pwp"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    QtDialogHost host;
    const FileQuestion question{"Open", "Projects|*.pwp", fromNativeQt(folder.path()), "pwp"};
    whenModal<QFileDialog>([&](QFileDialog& dialog) {
        auto* name = dialog.findChild<QLineEdit*>("fileNameEdit");
        name->setText("a.pwp");
        QTest::keyClick(name, Qt::Key_Return);
    });
    EXPECT_EQ(host.OpenFile(question), fromNativeQt(folder.filePath("a.pwp")));
    whenModal<QFileDialog>([](QFileDialog& dialog) { dialog.reject(); });
    EXPECT_EQ(host.OpenFile(question), "");
    const FileQuestion astray{"Open", "Projects|*.pwp", fromNativeQt(folder.filePath("gone/a.pwp")),
                              "pwp"};
    whenModal<QFileDialog>([](QFileDialog& dialog) {
        EXPECT_EQ(dialog.directory(), QDir::home());
        dialog.reject();
    });
    EXPECT_EQ(host.OpenFile(astray), "");
    whenModal<QFileDialog>(
        [](QFileDialog& dialog) { static_cast<QDialog&>(dialog).done(QDialog::Accepted); });
    EXPECT_EQ(host.BrowseFolder("Folder", fromNativeQt(folder.path())),
              fromNativeQt(folder.path()));
}

TEST(DialogHost, ColorsAreInThePlatformsOrder) {
    QtDialogHost host;
    whenModal<QColorDialog>([](QColorDialog& dialog) {
        EXPECT_EQ(dialog.currentColor(), QColor(0x33, 0x22, 0x11));
        dialog.setCurrentColor(QColor(0xFF, 0x80, 0x01));
        dialog.accept();
    });
    EXPECT_EQ(host.PickColor("Color", 0x112233), Color(0x0180FF));
    whenModal<QColorDialog>([](QColorDialog& dialog) { dialog.reject(); });
    EXPECT_EQ(host.PickColor("Color", 0), std::nullopt);
}

TEST(MessageLoopTest, WaitsForWhatEventsBring) {
    QtMessageLoop loop;
    int runs = 0;
    loop.Post([&] { ++runs; });
    EXPECT_EQ(runs, 0);
    loop.ProcessEvents();
    EXPECT_EQ(runs, 1);
    bool done = false;
    QTimer::singleShot(30, qApp, [&] { done = true; });
    loop.WaitUntil([&] { return done; });
    EXPECT_TRUE(done);
}

TEST(MessageLoopTest, AWaitInsideAnEventSeesWhatWasPostedWithIt) {
    QtMessageLoop loop;
    bool second = false;
    bool waited = false;
    loop.Post([&] {
        loop.WaitUntil([&] { return second; });
        waited = true;
    });
    loop.Post([&] { second = true; });
    loop.ProcessEvents();
    EXPECT_TRUE(waited);
}

}  // namespace
}  // namespace pw
