#include "platform/qt/MainWindow.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QListWidget>
#include <QMdiSubWindow>
#include <QProgressBar>
#include <QPushButton>
#include <QTest>
#include <QTreeView>

#include "platform/controls/Controls.h"
#include "platform/qt/CommandBarView.h"
#include "platform/qt/DocumentWindow.h"
#include "platform/qt/ExplorerPane.h"
#include "platform/qt/StatusPanel.h"

namespace pw {
namespace {

/** The controls that the window shows, as the program has them. */
struct Controls : ControlOwner {
    Frame picExplorers{this, "picExplorers"};
    Frame picProjectExplorer{this, "picProjectExplorer"};
    TreeView tvwProjectExplorer{this, "tvwProjectExplorer"};
    Frame picPageExplorer{this, "picPageExplorer"};
    TreeView tvwPageExplorer{this, "tvwPageExplorer"};
    Frame picTaskExplorer{this, "picTaskExplorer"};
    ListView lvwTasks{this, "lvwTasks"};
    ControlArray<Label, 3> sbrMain{this, "sbrMain"};
    ProgressBar prgProgress{this, "prgProgress"};
};

struct MainWindowTest : testing::Test {
    Controls controls;
    CommandBar bar;
    MainWindow window;
    MainWindowSurface& surface = window;
    MainWindowActions actions;

    void bind() {
        window.bind(controls, bar, actions);
        window.resize(1000, 700);
        surface.Show();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    }
    QMdiSubWindow* frame(DocumentSurface& page) {
        return static_cast<DocumentWindow&>(page).frame();
    }
};

TEST_F(MainWindowTest, ShowsTheControls) {
    controls.picPageExplorer.SetVisible(false);
    controls.sbrMain[0].SetCaption("For Help, press F1");
    controls.prgProgress.SetVisible(false);
    bind();
    EXPECT_TRUE(window.findChild<QTreeView*>("tvwProjectExplorer")->isVisible());
    EXPECT_FALSE(window.findChild<QTreeView*>("tvwPageExplorer")->isVisible());
    auto* status = window.findChild<StatusPanel*>("sbrMain_0");
    EXPECT_EQ(status->text(), "For Help, press F1");
    auto* progress = window.findChild<QProgressBar*>("prgProgress");
    EXPECT_FALSE(progress->isVisible());
    controls.prgProgress.SetVisible(true);
    controls.prgProgress.SetValue(30);
    EXPECT_TRUE(progress->isVisible());
    EXPECT_EQ(progress->value(), 30);
    surface.SetCaption("Pagewick - Shop");
    EXPECT_EQ(window.windowTitle(), "Pagewick - Shop");
}

TEST_F(MainWindowTest, TellsWhatTheUserDoesToItsFrame) {
    std::vector<std::string> told;
    actions.explorerClosed = [&](int tool) { told.push_back("close " + std::to_string(tool)); };
    actions.paneFocused = [&](int pane) { told.push_back("pane " + std::to_string(pane)); };
    actions.panelPressed = [&](int panel) { told.push_back("panel " + std::to_string(panel)); };
    bind();
    told.clear();
    auto* tree = window.findChild<QTreeView*>("tvwPageExplorer");
    tree->setFocus();
    auto* pane = window.findChild<ExplorerPane*>("picTaskExplorer");
    QTest::mouseClick(pane->findChild<QToolButton*>(), Qt::LeftButton);
    QTest::mouseClick(window.findChild<StatusPanel*>("sbrMain_2"), Qt::LeftButton);
    EXPECT_EQ(told, (std::vector<std::string>{"pane 2", "close 211", "panel 2"}));
}

TEST_F(MainWindowTest, WelcomePageOffersTheFirstSteps) {
    bind();
    std::vector<std::string> told;
    surface.events.newProject = [&] { told.push_back("new"); };
    surface.events.openProject = [&] { told.push_back("open"); };
    surface.events.openRecent = [&](const std::string& path) { told.push_back(path); };
    surface.ShowWelcome(true, {"\\home\\ann\\Shop.pwp", "\\tmp\\b.pwp"});
    ASSERT_EQ(window.focusWidget(), window.findChild<QPushButton*>("cmdNewProject"));
    QTest::keyClick(window.focusWidget(), Qt::Key_Return);
    QTest::mouseClick(window.findChild<QPushButton*>("cmdOpenProject"), Qt::LeftButton);
    auto* list = window.findChild<QListWidget*>("lstRecent");
    ASSERT_EQ(list->count(), 2);
    EXPECT_TRUE(list->item(0)->text().startsWith("Shop\n"));
    list->setFocus();
    list->setCurrentRow(0);
    QTest::keyClick(list, Qt::Key_Return);
    EXPECT_EQ(told, (std::vector<std::string>{"new", "open", "\\home\\ann\\Shop.pwp"}));
    const auto page = surface.CreateDocument();
    EXPECT_FALSE(list->isVisible()) << "a page takes the place of the welcome";
}

TEST_F(MainWindowTest, FirstPageFillsTheRoomAndLaterOnesFollow) {
    bind();
    surface.ShowWelcome(false, {});
    const auto first = surface.CreateDocument();
    first->SetCaption("Home [index.htm]");
    EXPECT_TRUE(frame(*first)->isMaximized());
    EXPECT_EQ(frame(*first)->windowTitle(), "Home [index.htm]");
    frame(*first)->showNormal();
    EXPECT_TRUE(window.pages().viewport()->rect().contains(frame(*first)->geometry()));
    surface.Arrange(Arrangement::Cascade);
    EXPECT_FALSE(frame(*first)->isMaximized());
    const auto second = surface.CreateDocument();
    EXPECT_FALSE(frame(*second)->isMaximized());
}

TEST_F(MainWindowTest, TilesWithoutGaps) {
    bind();
    surface.ShowWelcome(false, {});
    const std::unique_ptr<DocumentSurface> pages[] = {
        surface.CreateDocument(), surface.CreateDocument(), surface.CreateDocument()};
    const QSize room = window.pages().viewport()->size();
    struct Row {
        const char* name;
        Arrangement how;
        bool stacked;
    };
    for (const Row& row : {Row{"horizontally", Arrangement::TileHorizontally, true},
                           Row{"vertically", Arrangement::TileVertically, false}}) {
        surface.Arrange(row.how);
        int covered = 0;
        for (const auto& page : pages) {
            const QRect place = frame(*page)->geometry();
            EXPECT_EQ(row.stacked ? place.width() : place.height(),
                      row.stacked ? room.width() : room.height())
                << row.name;
            covered += row.stacked ? place.height() : place.width();
        }
        EXPECT_EQ(covered, row.stacked ? room.height() : room.width()) << row.name;
    }
}

TEST_F(MainWindowTest, PagesTellActivationAndAskBeforeTheyClose) {
    bind();
    auto first = surface.CreateDocument();
    const auto second = surface.CreateDocument();
    int activated = 0;
    first->events.activated = [&] { ++activated; };
    first->BringToFront();
    EXPECT_EQ(activated, 1);
    bool mayClose = false;
    first->events.closing = [&] {
        if (mayClose) first.reset();  // the logic lets go of it in the middle of the event
        return mayClose;
    };
    EXPECT_FALSE(frame(*first)->close());
    EXPECT_TRUE(first->IsVisible());
    mayClose = true;
    frame(*first)->close();
    QTest::qWait(1);
    EXPECT_FALSE(first);
    EXPECT_EQ(window.pages().subWindowList().size(), 1);
}

TEST_F(MainWindowTest, ViewTabsTellPressesAndObeyTheLogic) {
    bind();
    const auto page = surface.CreateDocument();
    auto& document = static_cast<DocumentWindow&>(*page);
    std::vector<int> pressed;
    page->events.tabPressed = [&](View view) { pressed.push_back(int(view)); };
    const auto press = [&](int index) {
        QTest::mouseClick(&document.tabs(), Qt::LeftButton, {},
                          document.tabs().tabRect(index).center());
    };
    press(1);
    EXPECT_EQ(document.tabs().currentIndex(), 0) << "the logic refused";
    page->events.tabPressed = [&](View view) {
        pressed.push_back(int(view));
        page->SetViewTabs(3, view);
        page->ShowView(view);
    };
    press(1);
    press(1);
    EXPECT_EQ(document.tabs().currentIndex(), 1);
    EXPECT_EQ(document.views().currentIndex(), 1);
    EXPECT_EQ(pressed, (std::vector<int>{2, 2, 2}));
    page->SetViewTabs(2, View::Preview);
    EXPECT_FALSE(document.tabs().isTabVisible(1));
    EXPECT_EQ(document.tabs().currentIndex(), 2);
    press(0);
    EXPECT_EQ(pressed.back(), 1);
}

TEST_F(MainWindowTest, ClosingMayBeRefused) {
    bind();
    bool may = false;
    int unloaded = 0;
    surface.events.queryUnload = [&] { return may; };
    surface.events.unload = [&] { ++unloaded; };
    surface.Close();
    EXPECT_TRUE(window.isVisible());
    EXPECT_EQ(unloaded, 0);
    may = true;
    surface.Close();
    EXPECT_FALSE(window.isVisible());
    EXPECT_EQ(unloaded, 1);
}

TEST_F(MainWindowTest, GeometryIsInTwips) {
    bind();
    surface.SetGeometry({1500, 750, 12000, 9000});
    EXPECT_EQ(window.geometry(), QRect(100, 50, 800, 600));
    EXPECT_EQ(surface.Geometry().width, 12000);
    EXPECT_FALSE(surface.IsMaximised());
    surface.Maximise();
    EXPECT_TRUE(surface.IsMaximised());
    EXPECT_EQ(surface.Screen().width % 15, 0);
}

TEST_F(MainWindowTest, TimersTick) {
    bind();
    int ticks = 0;
    surface.SetAutoSaveTimer(5, [&] { ++ticks; });
    EXPECT_TRUE(QTest::qWaitFor([&] { return ticks >= 2; }, 2000));
    surface.SetAutoSaveTimer(0, {});
    bool idle = false;
    surface.events.idle = [&] { idle = true; };
    QTest::keyClick(&window, Qt::Key_Shift);
    EXPECT_TRUE(QTest::qWaitFor([&] { return idle; }, 6000));
}

TEST_F(MainWindowTest, BusyPointerIsNotStacked) {
    surface.SetBusyPointer(true);
    surface.SetBusyPointer(true);
    ASSERT_NE(QApplication::overrideCursor(), nullptr);
    surface.SetBusyPointer(false);
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
}

}  // namespace
}  // namespace pw
