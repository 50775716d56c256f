#include "platform/qt/FormBinder.h"

#include <gtest/gtest.h>

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalSpy>
#include <QSpinBox>
#include <QTabBar>
#include <QTabWidget>
#include <QTest>
#include <QTreeView>
#include <QVBoxLayout>

#include "platform/controls/Dialog.h"
#include "platform/qt/ColorButton.h"
#include "support/CpuTimer.h"

namespace pw {
namespace {

/** A window made of widgets with the names of controls. */
class Form : public QWidget {
  public:
    Form() { setLayout(new QVBoxLayout); }
    template <typename W>
    W* add(const char* name) {
        auto* widget = new W;
        widget->setObjectName(QString::fromLatin1(name));
        layout()->addWidget(widget);
        return widget;
    }
};

struct FormBinderTest : testing::Test {
    Form form;
    ControlOwner owner;
    /** To be kept for a shorter time than the controls. */
    std::unique_ptr<FormBinder> bind() {
        auto binder = std::make_unique<FormBinder>(owner, form);
        form.show();
        return binder;
    }
};

TEST(Forms, AllLoadAndNameTheirWidgetsOnce) {
    ASSERT_GE(formNames().size(), 5);
    for (const QString& name : formNames()) {
        const auto form = loadForm(name);
        ASSERT_TRUE(form) << name.toStdString();
        QStringList names;
        for (const QWidget* widget : form->findChildren<QWidget*>()) {
            // A tab bar's own arrows.
            if (qobject_cast<const QTabBar*>(widget->parent())) continue;
            const QString child = widget->objectName();
            if (child.isEmpty() || child.startsWith(u"qt_")) continue;
            EXPECT_FALSE(names.contains(child))
                << name.toStdString() << ": " << child.toStdString();
            names << child;
        }
        for (const QLabel* label : form->findChildren<QLabel*>()) {
            EXPECT_EQ(label->text().contains(u'&'), label->buddy() != nullptr)
                << name.toStdString() << ": " << label->text().toStdString();
        }
    }
    EXPECT_FALSE(loadForm(QStringLiteral("frmNothing")));
}

TEST_F(FormBinderTest, TellsWhatDoesNotFit) {
    form.add<QLabel>("lblAny");
    form.add<QLineEdit>("txtName");
    form.add<QLineEdit>("txtStray");
    form.add<QSpinBox>("cboKind");
    form.add<QTabWidget>("tabAny");
    TextBox name(&owner, "txtName");
    TextBox missing(&owner, "txtMissing");
    ComboBox kind(&owner, "cboKind");
    const auto binder = bind();
    EXPECT_EQ(binder->report().controlsWithoutWidget, QStringList{"txtMissing"});
    EXPECT_EQ(binder->report().widgetsWithoutControl, QStringList{"txtStray"})
        << binder->report().text().toStdString();
    EXPECT_EQ(binder->report().wrongKind, QStringList{"cboKind"});
    EXPECT_FALSE(binder->report().complete());
    EXPECT_TRUE(binder->report().text().contains("txtMissing"));
}

TEST_F(FormBinderTest, ShowsWhatEveryControlShares) {
    auto* frame = form.add<QGroupBox>("fraBox");
    auto* button = form.add<QPushButton>("cmdGo");
    button->setText("&Old");
    Frame box(&owner, "fraBox");
    Button go(&owner, "cmdGo");
    go.SetVisible(false);
    go.toolTip = "Goes";
    const auto binder = bind();
    EXPECT_FALSE(button->isVisible());
    EXPECT_EQ(button->text(), "&Old") << "an empty caption leaves the form's own";
    EXPECT_EQ(button->toolTip(), "Goes");
    go.SetVisible(true);
    go.SetCaption("&New");
    box.SetCaption("Box");
    box.SetEnabled(false);
    EXPECT_TRUE(button->isVisible());
    EXPECT_EQ(button->text(), "&New");
    EXPECT_EQ(frame->title(), "Box");
    EXPECT_FALSE(frame->isEnabled());
    int clicks = 0;
    go.Click = [&] { ++clicks; };
    QTest::mouseClick(button, Qt::LeftButton);
    go.SetEnabled(false);
    QTest::mouseClick(button, Qt::LeftButton);
    EXPECT_EQ(clicks, 1);
}

TEST_F(FormBinderTest, LabelShowsMarksOnlyForABuddy) {
    auto* plain = form.add<QLabel>("lblPlain");
    auto* buddy = form.add<QLabel>("lblBuddy");
    buddy->setBuddy(form.add<QLineEdit>("txtName"));
    Label plainModel(&owner, "lblPlain");
    Label buddyModel(&owner, "lblBuddy");
    plainModel.SetCaption("&Size of A & B");
    buddyModel.SetCaption("&Size:");
    const auto binder = bind();
    EXPECT_EQ(plain->text(), "Size of A & B");
    EXPECT_EQ(buddy->text(), "&Size:");
    plainModel.SetCaption("");
    EXPECT_EQ(plain->text(), "");
}

TEST_F(FormBinderTest, TextGoesBothWays) {
    auto* line = form.add<QLineEdit>("txtLine");
    auto* box = form.add<QPlainTextEdit>("txtBox");
    auto* path = form.add<QLineEdit>("txtPath");
    TextBox lineModel(&owner, "txtLine");
    TextBox boxModel(&owner, "txtBox");
    TextBox pathModel(&owner, "txtPath", TextStyle::Path);
    int changes = 0;
    lineModel.Change = [&] { ++changes; };
    boxModel.SetText("a\r\nb");
    pathModel.SetText("\\home\\ann");
    const auto binder = bind();
    EXPECT_EQ(changes, 0);
    EXPECT_EQ(box->toPlainText(), "a\nb");
    EXPECT_EQ(path->text(), "/home/ann");
    QTest::keyClicks(line, "houses");
    EXPECT_EQ(lineModel.Text(), "houses");
    EXPECT_EQ(changes, 6);
    lineModel.SetText("x");
    EXPECT_EQ(line->text(), "x");
    box->moveCursor(QTextCursor::End);
    QTest::keyClick(box, Qt::Key_Return);
    QTest::keyClicks(box, "c");
    EXPECT_EQ(boxModel.Text(), "a\r\nb\r\nc");
    path->clear();
    QTest::keyClicks(path, "/tmp/x");
    EXPECT_EQ(pathModel.Text(), "\\tmp\\x");
}

TEST_F(FormBinderTest, RefusedKeysLeaveNoTrace) {
    auto* line = form.add<QLineEdit>("txtDigits");
    TextBox digits(&owner, "txtDigits");
    digits.maxLength = 4;
    digits.KeyPress = [](int& code) {
        if (code < '0' || code > '9') code = 0;
    };
    const auto binder = bind();
    QTest::keyClicks(line, "1a2");
    EXPECT_EQ(line->text(), "12");
    EXPECT_EQ(digits.Text(), "12");
    line->setCursorPosition(1);
    QTest::keyClicks(line, "x");
    QTest::keyClicks(line, "9");
    EXPECT_EQ(line->text(), "192") << "the caret stays where it was";
    QTest::keyClicks(line, "8888");
    EXPECT_EQ(digits.Text(), "1982");
}

TEST_F(FormBinderTest, SelectionCountsBytesOfLongLineEnds) {
    auto* box = form.add<QPlainTextEdit>("txtBox");
    TextBox model(&owner, "txtBox");
    model.SetText("ä\r\nbc");
    const auto binder = bind();
    model.Select(4, 2);
    EXPECT_EQ(box->textCursor().selectedText(), "bc");
    QTextCursor cursor = box->textCursor();
    cursor.setPosition(0);
    cursor.setPosition(3, QTextCursor::KeepAnchor);
    box->setTextCursor(cursor);
    EXPECT_EQ(model.SelStart(), 0U);
    EXPECT_EQ(model.SelLength(), 5U);
}

TEST_F(FormBinderTest, ChecksAndOptions) {
    auto* check = form.add<QCheckBox>("chkAny");
    auto* first = form.add<QRadioButton>("optKind_0");
    auto* second = form.add<QRadioButton>("optKind_1");
    CheckBox checkModel(&owner, "chkAny");
    ControlArray<OptionButton, 2> kind(&owner, "optKind");
    checkModel.SetChecked(true);
    kind[1].SetChecked(true);
    int clicks = 0;
    kind[0].Click = [&] { ++clicks; };
    const auto binder = bind();
    EXPECT_TRUE(check->isChecked());
    EXPECT_TRUE(second->isChecked());
    QTest::mouseClick(check, Qt::LeftButton, {}, QPoint(8, check->height() / 2));
    EXPECT_FALSE(checkModel.Checked());
    QTest::mouseClick(first, Qt::LeftButton, {}, QPoint(8, first->height() / 2));
    EXPECT_TRUE(kind[0].Checked());
    EXPECT_FALSE(kind[1].Checked());
    EXPECT_EQ(clicks, 1);
    kind[1].SetChecked(true);
    EXPECT_TRUE(second->isChecked());
    EXPECT_FALSE(first->isChecked());
    EXPECT_EQ(clicks, 1);
}

TEST_F(FormBinderTest, ComboBoxes) {
    auto* list = form.add<QComboBox>("cboList");
    auto* typed = form.add<QComboBox>("cboTyped");
    ComboBox listModel(&owner, "cboList");
    ComboBox typedModel(&owner, "cboTyped", true);
    listModel.SetItems({"one", "two"});
    typedModel.SetItems({"Arial", "Courier"});
    typedModel.SetText("Fancy");
    const auto binder = bind();
    EXPECT_EQ(list->currentIndex(), -1);
    EXPECT_EQ(typed->currentText(), "Fancy");
    QTest::keyClick(list, Qt::Key_Down);
    EXPECT_EQ(listModel.Text(), "one");
    listModel.SetListIndex(1);
    EXPECT_EQ(list->currentText(), "two");
    listModel.AddItem("three");
    EXPECT_EQ(list->count(), 3);
    EXPECT_EQ(list->currentText(), "two");
    typed->lineEdit()->selectAll();
    QTest::keyClicks(typed->lineEdit(), "arial");
    EXPECT_EQ(typedModel.Text(), "arial") << "what is typed stays as it is";
    EXPECT_EQ(typed->currentText(), "arial");
}

TEST_F(FormBinderTest, NumbersColorsAndTabs) {
    auto* number = form.add<QSpinBox>("updCount");
    auto* bar = form.add<QProgressBar>("prgAny");
    auto* swatch = form.add<ColorButton>("optColor_0");
    auto* tabs = form.add<QTabWidget>("tabAny");
    tabs->addTab(new QWidget, "a");
    tabs->addTab(new QWidget, "b");
    UpDown count(&owner, "updCount");
    count.maximum = 500;
    count.SetValue(200);
    ProgressBar progress(&owner, "prgAny");
    ColorBox color(&owner, "optColor_0");
    TabStrip strip(&owner, "tabAny");
    int clicks = 0;
    color.Click = [&] { ++clicks; };
    strip.Click = [&] { ++clicks; };
    const auto binder = bind();
    EXPECT_TRUE(binder->report().complete()) << binder->report().text().toStdString();
    EXPECT_EQ(number->value(), 200);
    number->setValue(201);
    EXPECT_EQ(count.Value(), 201);
    progress.SetValue(40);
    EXPECT_EQ(bar->value(), 40);
    color.SetValue(0x0000FF);
    EXPECT_EQ(toQColor(swatch->color()), QColor(255, 0, 0));
    QTest::mouseClick(swatch, Qt::LeftButton);
    tabs->setCurrentIndex(1);
    EXPECT_EQ(strip.Selected(), 1);
    EXPECT_EQ(clicks, 2);
    strip.SetSelected(0);
    EXPECT_EQ(tabs->currentIndex(), 0);
    EXPECT_EQ(clicks, 2);
}

TEST_F(FormBinderTest, DatesAreDayCounts) {
    auto* date = form.add<QDateEdit>("dtpDue");
    DatePicker due(&owner, "dtpDue");
    due.SetValue(45000.25);
    const auto binder = bind();
    EXPECT_EQ(date->date(), QDate(2023, 3, 15));
    EXPECT_EQ(due.Value(), 45000.25) << "showing it takes no part of the day off";
    date->setDate(QDate(2023, 3, 16));
    EXPECT_EQ(due.Value(), 45001);
    due.SetValue(0);
    EXPECT_EQ(date->text(), " ");
    date->stepUp();
    EXPECT_EQ(date->date(), QDate::currentDate()) << "the first step from no day at all";
    // What another program has written is shown as far as it can be, and kept as it is.
    for (const auto& [value, day] :
         {std::pair(-20000.25, QDate(1845, 3, 28)), std::pair(0.5, QDate(1899, 12, 30)),
          std::pair(1e300, QDate(9999, 12, 31))}) {
        due.SetValue(value);
        EXPECT_EQ(date->date(), day) << value;
        EXPECT_TRUE(date->text().contains(QString::number(day.year()))) << qPrintable(date->text());
        EXPECT_EQ(due.Value(), value);
    }
}

TEST_F(FormBinderTest, LongListsMakeOnlyTheRowsThatAreSeen) {
    auto* view = form.add<QTreeView>("lvwAny");
    ListView list(&owner, "lvwAny");
    list.SetColumns({{"Name", 120}, {"Size", 60, true}});
    int made = 0;
    list.SetSource(100000, [&](int row) {
        ++made;
        ListRow shown;
        shown.key = std::to_string(row);
        shown.cells = {"row " + shown.key, shown.key};
        return shown;
    });
    form.resize(400, 300);
    const auto binder = bind();
    QTest::qWait(50);
    EXPECT_EQ(view->model()->rowCount(), 100000);
    EXPECT_LT(made, 5000);
    int clicked = -1;
    list.ItemClick = [&](int row) { clicked = row; };
    const QModelIndex third = view->model()->index(2, 0);
    EXPECT_EQ(third.data().toString(), "row 2");
    QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, view->visualRect(third).center());
    EXPECT_EQ(clicked, 2);
    clicked = -1;
    list.SetSelected(99999);
    EXPECT_EQ(view->currentIndex().row(), 99999);
    EXPECT_EQ(clicked, -1) << "a choice by program is no click";
}

TEST_F(FormBinderTest, ListSortsByItsHeaders) {
    auto* view = form.add<QTreeView>("lvwAny");
    ListView list(&owner, "lvwAny");
    list.SetColumns({{"Name", 100}, {"Size", 100, true}});
    for (const char* size : {"9", "100", "20"}) {
        ListRow row;
        row.key = size;
        row.cells = {std::string("n") + size, size};
        list.Add(row);
    }
    const auto binder = bind();
    QTest::qWait(1);
    const auto top = [&] { return view->model()->index(0, 1).data().toString(); };
    const auto press = [&](int column) {
        const QPoint at(view->header()->sectionViewportPosition(column) + 20, 8);
        QTest::mouseClick(view->header()->viewport(), Qt::LeftButton, {}, at);
        QTest::qWait(1);
    };
    press(1);
    EXPECT_EQ(top(), "9");
    press(1);
    EXPECT_EQ(top(), "100");
    int asked = -1;
    list.ColumnClick = [&](int column) { asked = column; };
    press(0);
    EXPECT_EQ(asked, 0);
    EXPECT_EQ(top(), "100") << "the logic sorts, if it wants to";
}

struct TreeTest : FormBinderTest {
    QTreeView* view = form.add<QTreeView>("tvwAny");
    TreeView tree{&owner, "tvwAny"};
    void add(const std::string& parent, const std::string& key, bool expanded = false) {
        TreeNode node;
        node.key = node.text = key;
        node.expanded = expanded;
        tree.Add(parent, node);
    }
    QModelIndex at(const char* text) {
        const auto found = view->model()->match(view->model()->index(0, 0), Qt::DisplayRole, text,
                                                1, Qt::MatchExactly | Qt::MatchRecursive);
        return found.isEmpty() ? QModelIndex() : found.first();
    }
};

TEST_F(TreeTest, FollowsNodeByNode) {
    add("", "site", true);
    const auto binder = bind();
    QSignalSpy resets(view->model(), &QAbstractItemModel::modelReset);
    add("site", "folder", true);
    add("folder", "page 1");
    add("folder", "page 2");
    EXPECT_TRUE(view->isExpanded(at("folder")));
    tree.SetNodeText(*tree.Find("page 1"), "first");
    EXPECT_TRUE(at("first").isValid());
    std::vector<std::string> clicked;
    tree.NodeClick = [&](TreeNode& node) { clicked.push_back(node.key); };
    tree.SetSelected("page 1");
    EXPECT_EQ(view->currentIndex(), at("first"));
    tree.Remove("page 1");
    EXPECT_FALSE(at("first").isValid());
    EXPECT_FALSE(view->selectionModel()->hasSelection()) << "no neighbour takes its place";
    EXPECT_EQ(resets.count(), 0);
    EXPECT_TRUE(clicked.empty());
    const QPoint page = view->visualRect(at("page 2")).center();
    QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, page);
    QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, page);
    EXPECT_EQ(clicked, (std::vector<std::string>{"page 2", "page 2"}));
    QTest::keyClick(view, Qt::Key_Up);
    EXPECT_EQ(tree.SelectedKey(), "folder");
    EXPECT_EQ(clicked.size(), 3U);
}

TEST_F(TreeTest, ExpandingIsTheUsers) {
    add("", "site");
    add("site", "page");
    const auto binder = bind();
    int told = 0;
    tree.ExpandedChanged = [&](TreeNode&) { ++told; };
    view->expand(at("site"));
    EXPECT_TRUE(tree.Find("site")->expanded);
    EXPECT_EQ(told, 1);
    tree.SetExpanded(*tree.Find("site"), false);
    EXPECT_FALSE(view->isExpanded(at("site")));
    EXPECT_EQ(told, 1);
}

TEST_F(TreeTest, RightButtonTellsPressAndRelease) {
    add("", "site");
    const auto binder = bind();
    std::string told;
    tree.MouseDown = [&](bool right) { told += right ? "D" : "d"; };
    tree.MouseUp = [&](bool right) { told += right ? "U" : "u"; };
    tree.NodeClick = [&](TreeNode&) { told += "c"; };
    QTest::mouseClick(view->viewport(), Qt::RightButton, {}, view->visualRect(at("site")).center());
    QTest::qWait(1);
    EXPECT_EQ(told, "DcU");
    QTest::keyClick(view, Qt::Key_Menu);
    EXPECT_EQ(told, "DcUDU");
}

TEST_F(TreeTest, NothingIsReadWhileItIsFilledAnew) {
    add("", "site", true);
    for (int i = 0; i < 20; ++i)
        add("site", "old" + std::to_string(i));
    const auto binder = bind();
    QTest::qWait(1);
    tree.BeginUpdate();
    tree.Clear();
    form.repaint();  // events may come in the middle
    view->viewport()->repaint();
    add("", "site", true);
    add("site", "new");
    tree.SetSelected("new");
    tree.EndUpdate();
    EXPECT_TRUE(view->isExpanded(at("site")));
    EXPECT_EQ(view->currentIndex(), at("new"));
    EXPECT_EQ(view->model()->rowCount(at("site")), 1);
}

TEST_F(TreeTest, TenThousandNodesStayQuick) {
    add("", "site", true);
    const auto binder = bind();
    const test::CpuTimer timer;
    tree.BeginUpdate();
    for (int i = 0; i < 10000; ++i)
        add("site", "page" + std::to_string(i));
    tree.EndUpdate();
    QTest::qWait(1);
    for (int i = 0; i < 200; ++i) {
        add("site", "more" + std::to_string(i));
        tree.SetSelected("more" + std::to_string(i));
        tree.SetNodeText(*tree.Find("page" + std::to_string(i)), "changed");
        tree.Remove("page" + std::to_string(9999 - i));
    }
    QTest::qWait(1);
    EXPECT_LT(timer.Seconds(), 3);
    EXPECT_EQ(view->model()->rowCount(at("site")), 10000);
}

}  // namespace
}  // namespace pw
