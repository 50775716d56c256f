// The program with its real window: what comes back at the next start, the explorers beside a real
// page, and the main job done with nothing but the keyboard.
#include <gtest/gtest.h>

#include <QApplication>
#include <QFileDialog>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QSplitter>
#include <QSplitterHandle>
#include <QTest>
#include <QTimer>
#include <QToolBar>
#include <QTreeView>
#include <QWebEnginePage>
#include <QWebEngineScript>

#include "gui/PageScript.h"
#include "gui/ShownProgram.h"
#include "mainwindow/Explorers.h"
#include "platform/qt/CommandBarView.h"
#include "platform/qt/QtDialogHost.h"
#include "platform/qt/QtText.h"
#include "platform/qt/StatusPanel.h"
#include "project/Pages.h"

namespace pw {
namespace {

using test::ShownProgram;
using test::TestContext;

// --- What comes back ----------------------------------------------------------------------------

void Drag(QSplitter& splitter, const QPoint& by) {
    QSplitterHandle& handle = *splitter.handle(1);
    const QPoint from = handle.rect().center();
    QTest::mousePress(&handle, Qt::LeftButton, {}, from);
    QTest::mouseMove(&handle, from + by);
    QTest::mouseRelease(&handle, Qt::LeftButton, {}, from + by);
    QTest::qWait(50);
}

TEST(ProgramWindow, ComesBackAsItWasLeft) {
    TestContext outer;
    QRect place;
    std::map<std::string, QList<int>> sizes;
    const char* splitters[] = {"splitterExplorer", "splitterTrees", "splitterTask"};
    const auto splitter = [](ShownProgram& shown, const char* name) -> QSplitter& {
        return *shown.window.findChild<QSplitter*>(QLatin1String(name));
    };
    {
        ShownProgram first(outer, "", 0);
        EXPECT_TRUE(first.window.isMaximized()) << "nothing was stored yet";
        first.window.showNormal();
        first.window.setGeometry(40, 50, 700, 600);
        QTest::qWait(100);
        first.Main().barMain.Click(211);  // tasks
        first.Main().barMain.Click(219);  // a toolbar that beginners do not have
        first.Main().barMain.Click(215);  // and one that they have
        QTest::qWait(100);
        const int before = splitter(first, "splitterExplorer").sizes().first();
        Drag(splitter(first, "splitterExplorer"), QPoint(37, 0));
        EXPECT_EQ(splitter(first, "splitterExplorer").sizes().first(), before + 37);
        Drag(splitter(first, "splitterExplorer"), QPoint(-2000, 0));
        EXPECT_GE(splitter(first, "splitterExplorer").sizes().first(), 20) << "stops at its bound";
        Drag(splitter(first, "splitterExplorer"), QPoint(120, 0));
        Drag(splitter(first, "splitterTrees"), QPoint(0, -23));
        Drag(splitter(first, "splitterTask"), QPoint(0, 31));
        place = first.window.geometry();
        for (const char* name : splitters)
            EXPECT_EQ(splitter(first, name).count(), 2) << name;
        for (const char* name : splitters)
            sizes[name] = splitter(first, name).sizes();
        first.window.Close();
    }
    ShownProgram second(outer, "", 0);
    QTest::qWait(100);
    EXPECT_EQ(second.window.geometry(), place);
    for (const char* name : splitters)
        EXPECT_EQ(splitter(second, name).sizes(), sizes[name]) << name;
    for (const int tool : {209, 210, 211})
        EXPECT_TRUE(second.Main().IsExplorerShown(tool)) << tool;
    for (const char* name : {"picProjectExplorer", "picPageExplorer", "picTaskExplorer"})
        EXPECT_TRUE(second.window.findChild<QWidget*>(QLatin1String(name))->isVisible()) << name;
    EXPECT_TRUE(second.window.bars()->toolBar("Table")->isVisible());
    EXPECT_FALSE(second.window.bars()->toolBar("Insert")->isVisible());
    EXPECT_TRUE(second.window.bars()->toolBar("Standard")->isVisible());
}

TEST(ProgramWindow, AToolbarsMenuHidesAndShowsThem) {
    TestContext outer;
    ShownProgram shown(outer, "", 0);
    CommandBarView& bars = *shown.window.bars();
    const std::unique_ptr<QMenu> menu(
        bars.makeToolBarMenu(bars.toolBar("Format"), "mnuViewToolbars"));
    ASSERT_GE(menu->actions().size(), 8);
    menu->actions().first()->trigger();
    EXPECT_FALSE(bars.toolBar("Format")->isVisible());
    EXPECT_FALSE(shown.Main().barMain.FindTool(213)->checked);
    for (QAction* action : menu->actions()) {
        if (action == bars.action(213)) action->trigger();
    }
    EXPECT_TRUE(bars.toolBar("Format")->isVisible());
}

// --- The explorers ------------------------------------------------------------------------------

TEST(ProgramWindow, PageExplorerSelectsBothWays) {
    TestContext outer;
    const std::string file =
        outer.folder.Put("page.html",
                         "<html><head><title>t</title></head><body><p>first words</p>"
                         "<div>in a division</div><div>in another</div></body></html>");
    ShownProgram shown(outer, FromNativePath(file));
    auto* tree = shown.window.findChild<QTreeView*>(QStringLiteral("tvwPageExplorer"));
    const auto view = [&] { return shown.window.findChild<EditorView*>()->view(); };
    const auto evaluate = [&](const QString& script) {
        return test::RunInPage(*view()->page(), script, QWebEngineScript::ApplicationWorld);
    };
    const QModelIndex body = tree->model()->index(0, 0);
    ASSERT_EQ(tree->model()->rowCount(body), 2);
    const auto press = [&](int row) {
        const QPoint at = tree->visualRect(tree->model()->index(row, 0, body)).center();
        QTest::mouseClick(tree->viewport(), Qt::LeftButton, {}, at);
        shown.Settle();
    };
    press(0);
    EXPECT_EQ(evaluate(QStringLiteral("String(getSelection())")).toString(), "in a division");
    EXPECT_TRUE(shown.Main().Context().CurrentElement()->is("div"));
    press(1);
    EXPECT_EQ(evaluate(QStringLiteral("String(getSelection())")).toString(), "in another");

    // A click on the page shows in the tree.
    const QVariantList at =
        evaluate(QStringLiteral("(r => [r.left + 20, r.top + r.height / "
                                "2])(document.querySelector('div').getBoundingClientRect())"))
            .toList();
    ASSERT_EQ(at.size(), 2);
    QTest::mouseClick(view()->focusProxy(), Qt::LeftButton, {},
                      QPoint(at[0].toInt(), at[1].toInt()));
    EXPECT_TRUE(QTest::qWaitFor(
        [&] { return tree->currentIndex() == tree->model()->index(0, 0, body); }, 5000));
}

// --- The page -----------------------------------------------------------------------------------

TEST(ProgramWindow, UndoAndRedoShowWhatTheyChange) {
    TestContext outer;
    std::string html = "<html><head><title>t</title></head><body>";
    for (int i = 0; i < 200; ++i)
        html += "<p>Paragraph " + std::to_string(i) + "</p>";
    outer.folder.Put("page.html", html + "</body></html>");
    ShownProgram shown(outer, outer.folder.Path("page.html"));
    const auto scrolled = [&](const char* script) {
        return test::RunInPage(*shown.View().view()->page(), QString::fromUtf8(script),
                               QWebEngineScript::ApplicationWorld)
            .toInt();
    };
    dom::Node* last = shown.Document().body()->lastChild()->firstChild();
    shown.Document().collapse({last, last->data().size()});
    shown.Page().WaitUntilReady();
    QTest::keyClicks(shown.Keyboard(), "x");
    shown.Settle();
    ASSERT_EQ(last->data(), "Paragraph 199x");
    for (const auto& [tool, text] : {std::pair{101, "Paragraph 199"}, {102, "Paragraph 199x"}}) {
        EXPECT_EQ(scrolled("scrollTo(0, 0); scrollY"), 0);
        shown.Press(tool);
        EXPECT_EQ(last->data(), text);
        EXPECT_GT(scrolled("scrollY"), 1000) << text;
    }
}

TEST(ProgramWindow, TheFontFollowsALateStyleSheet) {
    TestContext outer;
    outer.folder.Put("serif.css", "p { font-family: 'DejaVu Serif' }");
    ShownProgram shown(
        outer, outer.folder.Put("page.html",
                                "<html><head><title>t</title><link rel=stylesheet href=serif.css>"
                                "</head><body><p>text</p></body></html>"));
    const auto shows = [&](const char* font) {
        return QTest::qWaitFor([&] { return shown.Main().barMain.FindTool(402)->text == font; },
                               5000);
    };
    QTest::mouseClick(shown.Keyboard(), Qt::LeftButton, {}, QPoint(20, 25));
    shown.Settle();
    EXPECT_TRUE(shows("DejaVu Serif"));
    // The caret stays where it is; only the page looks other.
    const std::string page = GetPage(shown.Main().ProjectState(), "W0001P0001")->Filename;
    ASSERT_EQ(outer.frame.files.Write(GetParentFolder(page) + "\\mono.css",
                                      "p { font-family: 'DejaVu Sans Mono' }"),
              FileError::None);
    dom::Document& document = shown.Document();
    document.setOuterHTML(*document.tags("link").front(), "<link rel=stylesheet href=mono.css>");
    EXPECT_TRUE(shows("DejaVu Sans Mono"));
}

// --- The status bar -----------------------------------------------------------------------------

TEST(ProgramWindow, StatusPanelsAreNotCut) {
    TestContext outer;
    ShownProgram shown(outer, ShownProgram::DataFolder() + "\\example\\index.html");
    frmMDIMain& main = shown.Main();
    main.sbrMain[0].SetCaption(std::string(300, 'w'));
    shown.window.showNormal();
    for (const int width : {700, 780}) {
        shown.window.resize(width, 500);
        for (const char* text : {"<1 second over 14.4K Modem (0 byte(s))",
                                 "12345 seconds over 56K Single ISDN (123,456KB)"}) {
            main.sbrMain[2].SetCaption(text);
            QTest::qWait(50);
            for (const char* name : {"sbrMain_1", "sbrMain_2"}) {
                auto* panel = shown.window.findChild<StatusPanel*>(QLatin1String(name));
                EXPECT_EQ(panel->findChildren<QLabel*>().last()->text(), panel->text())
                    << shown.window.width();
            }
        }
    }
}

// --- With nothing but the keyboard --------------------------------------------------------------

struct KeyboardOnly : testing::Test {
    KeyboardOnly() {
        dialogs.setParent(&shown.window);
        shown.window.activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&shown.window));
    }

    /** To whatever has the keyboard. */
    void Key(int key, Qt::KeyboardModifiers with = {}) {
        // Where there is no window manager nobody else does it when a dialog has gone.
        if (!QApplication::activeWindow() && !QApplication::activePopupWidget()) {
            shown.window.activateWindow();
            EXPECT_TRUE(QTest::qWaitForWindowActive(&shown.window));
        }
        QWidget* target = QApplication::activePopupWidget();
        if (!target && QApplication::activeModalWidget()) {
            target = QApplication::activeModalWidget()->focusWidget();
            if (!target) target = QApplication::activeModalWidget();
        }
        if (!target) target = QApplication::focusWidget();
        if (!target) target = QApplication::activeWindow();
        ASSERT_TRUE(target);
        QTest::keyClick(target, Qt::Key(key), with);
        QTest::qWait(30);
    }
    static void Type(const QString& text) {
        ASSERT_TRUE(QApplication::focusWidget());
        QTest::keyClicks(QApplication::focusWidget(), text);
    }
    /** As soon as a dialog of that kind is up, which the key that follows will bring. */
    template <typename Kind, typename Act>
    void InDialog(Act act) {
        QTimer::singleShot(50, qApp, [this, act] {
            auto* dialog = qobject_cast<Kind*>(QApplication::activeModalWidget());
            if (!dialog) return InDialog<Kind>(act);
            ++seen;
            act(*dialog);
        });
    }
    /** Into the box for the name of a file or folder, which has the keyboard. */
    static void Name(QFileDialog& dialog, const std::string& name) {
        auto* box = dialog.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
        ASSERT_TRUE(box);
        EXPECT_TRUE(QTest::qWaitFor([&] { return box->hasFocus(); }));
        box->selectAll();
        Type(QString::fromStdString(name));
    }
    /** Along a path of the menus, by their access keys. */
    void Menu(std::initializer_list<int> keys) {
        for (const int* key = keys.begin(); key != keys.end(); ++key) {
            const QWidget* before = QApplication::activePopupWidget();
            Key(*key, key == keys.begin() ? Qt::AltModifier : Qt::NoModifier);
            if (key + 1 == keys.end()) break;
            EXPECT_TRUE(QTest::qWaitFor([&] {
                const QWidget* now = QApplication::activePopupWidget();
                return now && now != before;
            }));
        }
    }
    bool PageHolds(const std::string& text) {
        return QTest::qWaitFor(
            [&] { return shown.Document().html().find(text) != std::string::npos; }, 10000);
    }

    TestContext outer;
    QtDialogHost dialogs;
    ShownProgram shown{outer, "", 2, &dialogs};
    int seen = 0;
};

TEST_F(KeyboardOnly, TheMainJob) {
    Menu({Qt::Key_F, Qt::Key_N, Qt::Key_Return});  // the first of New is a project
    shown.Settle();
    ASSERT_EQ(shown.Main().Context().OpenDocuments.Count(), 1);
    Key(Qt::Key_N, Qt::ControlModifier);
    shown.Settle();
    ASSERT_EQ(shown.Main().Context().OpenDocuments.Count(), 2);

    Type(QStringLiteral("good bread"));
    ASSERT_TRUE(PageHolds("good bread"));
    Key(Qt::Key_Home, Qt::ShiftModifier);
    QTest::qWait(200);
    Key(Qt::Key_B, Qt::ControlModifier);
    EXPECT_TRUE(PageHolds("<strong>good bread</strong>") || PageHolds("<b>good bread</b>"))
        << shown.Document().html();

    const std::string project = outer.folder.Native("Bakery.pwp");
    InDialog<QFileDialog>([&](QFileDialog& dialog) {
        Name(dialog, project);
        Key(Qt::Key_Return);
    });
    Key(Qt::Key_S, Qt::ControlModifier);
    shown.Settle();
    EXPECT_TRUE(FileExists(*outer.files, FromNativePath(project)));
    EXPECT_FALSE(shown.program->TheProject().IsDirty);

    const std::string target = outer.folder.Native("out");
    ASSERT_TRUE(MakeFolder(*outer.files, FromNativePath(target)));
    InDialog<QFileDialog>([&](QFileDialog& dialog) {
        Name(dialog, target);
        InDialog<QMessageBox>([&](QMessageBox&) { Key(Qt::Key_Return); });
        Key(Qt::Key_Return);
    });
    Menu({Qt::Key_F, Qt::Key_U, Qt::Key_H});
    shown.Settle();
    EXPECT_EQ(seen, 3);
    bool found = false;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(target)) {
        if (!entry.is_regular_file()) continue;
        found |=
            ReadTextFile(*outer.files, FromNativePath(entry.path().string())).find("good bread") !=
            std::string::npos;
    }
    EXPECT_TRUE(found) << "the page was not published";
}

TEST_F(KeyboardOnly, EveryPaneIsReachedAndLeft) {
    Key(Qt::Key_N, Qt::ControlModifier | Qt::ShiftModifier);
    shown.Settle();
    shown.Main().barMain.Click(211);
    QTest::qWait(100);
    for (const char* name : {"tvwProjectExplorer", "tvwPageExplorer", "lvwTasks"}) {
        auto* pane = shown.window.findChild<QTreeView*>(QLatin1String(name));
        EXPECT_EQ(pane->focusPolicy() & Qt::TabFocus, Qt::TabFocus) << name;
        pane->setFocus();
        EXPECT_TRUE(pane->hasFocus()) << name;
        Key(Qt::Key_Tab);
        EXPECT_FALSE(pane->hasFocus()) << name << " keeps the keyboard";
    }
}

}  // namespace
}  // namespace pw
