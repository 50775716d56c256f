// Pictures of the windows and dialogs for people to look at. Does nothing unless the variable
// PAGEWICK_SCREENSHOTS names a folder; scripts/screenshots sets it.
#include <gtest/gtest.h>

#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QMenu>
#include <QMessageBox>
#include <QTest>
#include <QTimer>
#include <QVBoxLayout>

#include "mainwindow/Program.h"
#include "mainwindow/frmDocument.h"
#include "platform/qt/CommandBarView.h"
#include "platform/qt/DocumentWindow.h"
#include "platform/qt/FormBinder.h"
#include "platform/qt/MainWindow.h"
#include "platform/qt/QtDialogHost.h"
#include "platform/qt/QtMessageLoop.h"
#include "platform/qt/Theme.h"
#include "platform/qt/editor/EditorView.h"
#include "support/TestContext.h"
#include "support/TestPlaces.h"

namespace pw {
namespace {

/** The program itself in a profile of its own, with real windows. */
struct ShownProgram {
    explicit ShownProgram(const std::string& file) {
        EXPECT_TRUE(SetRegText(*outer.hive, "General", "First Name", "Ann"));
        EXPECT_TRUE(SetRegText(*outer.hive, "General", "User E-mail", "ann@example.org"));
        EXPECT_TRUE(SetRegNumber(*outer.hive, "Other", "Skill Level", 2));
        Places places = outer.frame.places;
        places.programFolder =
            GetParentFolder(GetParentFolder(FromNativePath(test::kTestData))) + "\\data";
        ProgramParts parts;
        parts.makeWindow = [this]() -> MainWindowSurface& { return window; };
        parts.bindWindow = [this](frmMDIMain& controls) {
            window.bind(controls, controls.barMain, {});
        };
        const FrameContext& frame = outer.frame;
        program =
            std::make_unique<Program>(World{frame.files, frame.hive, frame.clock, frame.system,
                                            loop, frame.dialogs, frame.clipboard, frame.launcher},
                                      places, std::move(parts));
        EXPECT_EQ(program->Start(file), StartupResult::Running);
        window.showNormal();
        window.resize(1200, 800);
        settle();
    }
    ~ShownProgram() {
        program->Shutdown();
        window.unbind();
        program.reset();
    }
    /** Until the page in front can be looked at. */
    void settle() {
        const auto idle = [this] {
            const frmDocument* page = program->Window().Context().CurrentDocument();
            return !page || !page->docDHTMLEditor.Busy();
        };
        EXPECT_TRUE(QTest::qWaitFor(idle, 20000));
        QTest::qWait(400);
    }

    test::TestContext outer;
    QtMessageLoop loop;
    MainWindow window{[](QWidget* parent) {
        auto* view = new EditorView(parent);
        return EditorParts{view, view};
    }};
    std::unique_ptr<Program> program;
};

class Album {
  public:
    Album(QString folder, QString scheme)
        : folder_(std::move(folder)), scheme_(std::move(scheme)) {}
    void keep(QWidget& window, const QString& name) const {
        window.show();
        QTest::qWait(150);
        const QString file = QStringLiteral("%1/%2-%3.png").arg(folder_, name, scheme_);
        EXPECT_TRUE(window.grab().save(file)) << file.toStdString();
    }

  private:
    QString folder_;
    QString scheme_;
};

void keepMainWindow(const Album& album) {
    const std::string data =
        GetParentFolder(GetParentFolder(FromNativePath(test::kTestData))) + "\\data";
    ShownProgram shown(data + "\\example\\index.html");
    MainWindow& window = shown.window;
    album.keep(window, "normal");
    auto* document = shown.program->Window().Context().CurrentDocument();
    ASSERT_TRUE(document);
    for (const auto& [view, name] : {std::pair{View::Html, "source"}, {View::Preview, "preview"}}) {
        document->Surface().events.tabPressed(view);
        shown.settle();
        QTest::qWait(1000);
        album.keep(window, name);
    }
    document->Surface().events.tabPressed(View::Normal);
    window.ShowWelcome(true, {"\\home\\ann\\Documents\\Shop.pwp", "\\srv\\Club.pwp"});
    album.keep(window, "welcome");
    const auto second = window.CreateDocument();
    second->SetCaption("About us [about.htm]");
    window.Arrange(Arrangement::TileHorizontally);
    album.keep(window, "tiled");
    window.Arrange(Arrangement::Cascade);
    album.keep(window, "cascade");
    for (const char* name : {"mnuFile", "mnuView", "mnuFormat"}) {
        QMenu* menu = window.bars()->menu(name);
        menu->popup(window.mapToGlobal(QPoint(4, 30)));
        album.keep(*menu, name);
        menu->close();
    }
}

void keepForms(const Album& album) {
    for (const QString& name : formNames()) {
        QDialog dialog;
        auto* layout = new QVBoxLayout(&dialog);
        layout->setContentsMargins(0, 0, 0, 0);
        QWidget* form = loadForm(name).release();
        const QSize size = form->size();
        layout->addWidget(form);
        dialog.resize(size);
        auto* tabs = form->findChild<QTabWidget*>();
        for (int page = 0; page < (tabs ? tabs->count() : 1); ++page) {
            if (tabs) tabs->setCurrentIndex(page);
            album.keep(dialog, tabs ? QStringLiteral("%1-%2").arg(name).arg(page) : name);
        }
    }
}

void keepMessage(const Album& album) {
    QtDialogHost host;
    QTimer::singleShot(200, qApp, [&] {
        QWidget* box = QApplication::activeModalWidget();
        album.keep(*box, "message");
        static_cast<QDialog*>(box)->reject();
    });
    EXPECT_EQ(host.MsgBox({"Any changes made to this project will be lost by exiting.\n\nDo you "
                           "want to save project 'Shop'?",
                           "Exit", Icon::Question, Buttons::YesNoCancel}),
              Answer::Cancel);
}

TEST(Screenshots, AreKept) {
    const QString folder = qEnvironmentVariable("PAGEWICK_SCREENSHOTS");
    if (folder.isEmpty()) GTEST_SKIP() << "no folder for them is named";
    ASSERT_TRUE(QDir().mkpath(folder));
    Theme theme(*qApp, ColorScheme::Light);
    for (const ColorScheme scheme : {ColorScheme::Light, ColorScheme::Dark}) {
        theme.setScheme(scheme);
        const Album album(folder, scheme == ColorScheme::Dark ? "dark" : "light");
        keepMainWindow(album);
        keepForms(album);
        keepMessage(album);
    }
    theme.setScheme(ColorScheme::Light);
}

}  // namespace
}  // namespace pw
