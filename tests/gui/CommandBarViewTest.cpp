#include "platform/qt/CommandBarView.h"

#include <gtest/gtest.h>

#include <QMenuBar>
#include <QTest>
#include <QToolButton>

namespace pw {
namespace {

BandItem item(int number, const char* caption) {
    return {BandItem::Kind::Tool, number, caption, ""};
}
BandItem subBand(const char* band, const char* caption) {
    return {BandItem::Kind::SubBand, 0, caption, band};
}
const BandItem line{BandItem::Kind::Separator, 0, "", ""};

struct CommandBarViewTest : testing::Test {
    CommandBar bar;
    QMainWindow window;
    std::unique_ptr<CommandBarView> view;
    std::vector<int> clicks;

    void SetUp() override {
        Tool bold;
        bold.number = 404;
        bold.icon = "format-text-bold";
        bold.shortcut = "Ctrl+B";
        bold.checkable = true;
        bar.AddTool(bold);
        Tool open;
        open.number = 6;
        open.shortcut = "Ctrl+O";
        bar.AddTool(open);
        Tool font;
        font.number = 402;
        font.kind = ToolKind::Combo;
        font.items = {"Arial", "Courier"};
        bar.AddTool(font);
        bar.AddBand({"mnuMain",
                     "",
                     BandKind::Menu,
                     {subBand("mnuFile", "&File"), subBand("mnuFormat", "F&ormat")}});
        bar.AddBand({"mnuFile",
                     "&File",
                     BandKind::Menu,
                     {item(6, "&Open Project..."), line, subBand("mnuMore", "&More")}});
        bar.AddBand({"mnuMore", "&More", BandKind::Menu, {item(404, "Fett")}});
        bar.AddBand({"mnuFormat", "F&ormat", BandKind::Menu, {item(404, "&Bold")}});
        bar.AddBand({"Format",
                     "Format",
                     BandKind::Toolbar,
                     {item(402, "Font Name"), item(404, "Bold"), line, item(6, "Open")}});
        bar.AddBand({"mnuContext", "", BandKind::Popup, {item(404, "Bold text")}});
        bar.ToolClick = [this](int number) { clicks.push_back(number); };
        view = std::make_unique<CommandBarView>(bar, window);
        view->build("mnuMain");
        window.resize(600, 300);
        window.show();
    }
    QToolButton* button(int number) {
        return qobject_cast<QToolButton*>(
            view->toolBar("Format")->widgetForAction(view->action(number)));
    }
};

TEST_F(CommandBarViewTest, MenuBarHoldsTheSubBands) {
    const QList<QAction*> top = window.menuBar()->actions();
    ASSERT_EQ(top.size(), 2);
    EXPECT_EQ(top[0]->text(), "&File");
    EXPECT_EQ(top[1]->text(), "F&ormat");
    const QList<QAction*> file = view->menu("mnuFile")->actions();
    ASSERT_EQ(file.size(), 3);
    EXPECT_TRUE(file[1]->isSeparator());
    EXPECT_EQ(file[2]->menu(), view->menu("mnuMore"));
}

TEST_F(CommandBarViewTest, OneActionForEachToolNamedByItsBand) {
    QAction* bold = view->action(404);
    EXPECT_EQ(view->menu("mnuFormat")->actions()[0], bold);
    EXPECT_EQ(view->menu("mnuContext")->actions()[0], bold);
    emit view->menu("mnuFormat")->aboutToShow();
    EXPECT_EQ(bold->text(), "&Bold");
    emit view->menu("mnuContext")->aboutToShow();
    EXPECT_EQ(bold->text(), "Bold text");
    EXPECT_EQ(bold->toolTip(), "Bold (Ctrl+B)");
    EXPECT_EQ(button(404)->accessibleName(), "Bold");
    EXPECT_EQ(button(404)->toolButtonStyle(), Qt::ToolButtonIconOnly);
}

TEST_F(CommandBarViewTest, StateComesFromTheModelAlone) {
    QTest::mouseClick(button(404), Qt::LeftButton);
    EXPECT_EQ(clicks, std::vector<int>{404});
    EXPECT_FALSE(view->action(404)->isChecked()) << "nobody checked it";
    bar.SetChecked(404, true);
    EXPECT_TRUE(view->action(404)->isChecked());
    bar.SetEnabled(404, false);
    QTest::mouseClick(button(404), Qt::LeftButton);
    EXPECT_EQ(clicks.size(), 1U);
    bar.SetToolVisible(6, false);
    EXPECT_FALSE(view->action(6)->isVisible());
    bar.SetCaption(6, "&Other...");
    EXPECT_EQ(view->action(6)->text(), "&Other...");
    EXPECT_EQ(view->action(6)->toolTip(), "Other (Ctrl+O)");
}

TEST_F(CommandBarViewTest, DisabledBandDisablesItsToolsThere) {
    bar.SetBandEnabled("Format", false);
    EXPECT_FALSE(view->toolBar("Format")->isEnabled());
    EXPECT_TRUE(view->action(404)->isEnabled()) << "its menu is not";
    EXPECT_FALSE(view->comboBox(402)->isEnabled());
    bar.SetBandEnabled("Format", true);
    EXPECT_TRUE(view->comboBox(402)->isEnabled());
}

TEST_F(CommandBarViewTest, ShortcutsWorkFromTheWindow) {
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    QTest::keyClick(&window, Qt::Key_O, Qt::ControlModifier);
    EXPECT_EQ(clicks, std::vector<int>{6});
}

TEST_F(CommandBarViewTest, CombosChooseAndShow) {
    int changed = 0;
    bar.ComboChange = [&](int number) { changed = number; };
    QComboBox* combo = view->comboBox(402);
    bar.SetComboText(402, "courier");
    EXPECT_EQ(combo->currentText(), "Courier");
    EXPECT_EQ(changed, 0);
    emit combo->textActivated("Arial");
    EXPECT_EQ(changed, 402);
    EXPECT_EQ(bar.FindTool(402)->text, "Arial");
    bar.SetComboItems(402, {"x"});
    EXPECT_EQ(combo->count(), 1);
}

TEST_F(CommandBarViewTest, MenusMayChangeAsTheyOpen) {
    bar.BandOpen = [this](const std::string& band) {
        if (band == "mnuFile") bar.SetBandItems(band, {item(6, "&First"), item(404, "&Second")});
    };
    view->popUpAt("mnuFile", QPoint(10, 10));
    const QList<QAction*> shown = view->menu("mnuFile")->actions();
    ASSERT_EQ(shown.size(), 2);
    EXPECT_EQ(shown[0]->text(), "&First");
    view->menu("mnuFile")->close();
}

TEST_F(CommandBarViewTest, PointerTellsItsTool) {
    std::vector<int> told;
    bar.MouseEnter = [&](int number) { told.push_back(number); };
    bar.MouseExit = [&] { told.push_back(0); };
    window.setFocus();
    emit view->menu("mnuFormat")->hovered(view->action(404));
    emit view->menu("mnuFormat")->aboutToHide();
    QEvent leave(QEvent::Leave);
    QEnterEvent enter({}, {}, {});
    QCoreApplication::sendEvent(button(6), &enter);
    QCoreApplication::sendEvent(button(6), &leave);
    EXPECT_EQ(told, (std::vector<int>{404, 0, 6, 0}));
}

TEST_F(CommandBarViewTest, ToolbarsCloseFromTheirMenu) {
    std::string closed;
    bar.ToolbarClosed = [&](const std::string& band) { closed = band; };
    const std::unique_ptr<QMenu> menu(view->makeToolBarMenu(view->toolBar("Format"), "mnuMore"));
    ASSERT_GE(menu->actions().size(), 3);
    menu->actions()[0]->trigger();
    EXPECT_EQ(closed, "Format");
    EXPECT_FALSE(view->toolBar("Format")->isVisible());
    bar.SetBandVisible("Format", true);
    EXPECT_TRUE(view->toolBar("Format")->isVisible());
}

}  // namespace
}  // namespace pw
