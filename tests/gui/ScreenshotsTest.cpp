// Pictures of the windows and dialogs for people to look at. Does nothing unless the variable
// PAGEWICK_SCREENSHOTS names a folder; scripts/screenshots sets it.
#include <gtest/gtest.h>

#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QMenu>
#include <QMessageBox>
#include <QTabWidget>
#include <QTest>
#include <QTimer>

#include "gui/EveryDialog.h"
#include "gui/ShownProgram.h"
#include "platform/qt/CommandBarView.h"
#include "platform/qt/DialogForm.h"
#include "platform/qt/DocumentWindow.h"
#include "platform/qt/QtDialogHost.h"
#include "platform/qt/QtText.h"
#include "platform/qt/Theme.h"

namespace pw {
namespace {

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
    test::TestContext outer;
    test::ShownProgram shown(outer, test::ShownProgram::DataFolder() + "\\example\\index.html");
    MainWindow& window = shown.window;
    window.showNormal();
    window.resize(1200, 800);
    shown.Settle();
    auto* document = shown.Main().Context().CurrentDocument();
    ASSERT_TRUE(document);
    for (const auto& [view, name] : {std::pair{View::Html, "source"}, {View::Preview, "preview"}}) {
        document->Surface().events.tabPressed(view);
        shown.Settle();
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

void keepFinding(const Album& album) {
    test::TestContext outer;
    QtDialogHost dialogs;
    test::ShownProgram shown(outer, test::ShownProgram::DataFolder() + "\\example\\index.html", 2,
                             &dialogs);
    dialogs.setParent(&shown.window);
    shown.window.showNormal();
    shown.window.resize(1200, 800);
    for (const auto& [tool, name] :
         {std::pair{frmFindReplace::kFind, "find"}, {frmFindReplace::kReplace, "replace"}}) {
        shown.window.bars()->action(tool)->trigger();
        frmFindReplace& form = *shown.Main().Context().Finder->Form();
        form.txtFind.SetText("street");
        form.txtReplace.SetText("Road");
        if (tool == frmFindReplace::kFind) form.cmdProcess[0].UserClick();
        for (QDialog* dialog : shown.window.findChildren<QDialog*>())
            if (dialog->isVisible()) album.keep(*dialog, name);
    }
    album.keep(shown.window, "found");
}

void keepDialogs(const Album& album) {
    test::TestProgram program;
    test::VisitEveryDialog(program, [&album](Dialog& dialog) {
        const QString name = toQt(dialog.FormName());
        dialog.SetOpen(true);
        {
            DialogForm form(dialog, nullptr, {});
            dialog.Form_Load();
            auto* tabs = form.window().findChild<QTabWidget*>();
            for (int page = 0; page < (tabs ? tabs->count() : 1); ++page) {
                if (tabs) tabs->setCurrentIndex(page);
                album.keep(form.window(),
                           tabs ? QStringLiteral("%1-%2").arg(name).arg(page) : name);
            }
        }
        dialog.SetOpen(false);
        dialog.Form_Unload();
    });
}

/** What each kind of user sees first. */
void keepSkillLevels(const Album& album) {
    const std::pair<int, const char*> levels[] = {
        {0, "beginner"}, {1, "intermediate"}, {2, "advanced"}};
    for (const auto& [level, name] : levels) {
        test::TestContext outer;
        test::ShownProgram shown(outer, test::ShownProgram::DataFolder() + "\\example\\index.html",
                                 level);
        shown.window.showNormal();
        shown.window.resize(1200, 800);
        shown.Settle();
        album.keep(shown.window, name);
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
        keepFinding(album);
        keepSkillLevels(album);
        keepDialogs(album);
        keepMessage(album);
    }
    theme.setScheme(ColorScheme::Light);
}

}  // namespace
}  // namespace pw
