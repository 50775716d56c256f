// Every dialog of the program with its own form: what one has, the other must have too.
#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QDialog>
#include <QGroupBox>
#include <QIcon>
#include <QLabel>
#include <QPushButton>
#include <QTabWidget>
#include <QTest>
#include <QTimer>

#include "gui/EveryDialog.h"
#include "platform/qt/CommandBarView.h"
#include "platform/qt/DialogForm.h"
#include "platform/qt/FormBinder.h"
#include "platform/qt/ImageList.h"
#include "platform/qt/QtDialogHost.h"
#include "platform/qt/QtText.h"
#include "platform/qt/Theme.h"
#include "project/Pages.h"

namespace pw {
namespace {

/** The access keys that can be pressed at one time, with the texts that they stand in. */
using AccessKeys = QMap<QString, QString>;

void addKey(const QString& text, AccessKeys& keys, QStringList& clashes) {
    const QString key = QKeySequence::mnemonic(text).toString();
    if (key.isEmpty()) return;
    if (keys.contains(key)) clashes << keys[key] + QStringLiteral(" / ") + text;
    keys.insert(key, text);
}

QString labelOf(const QWidget& widget) {
    const auto* label = qobject_cast<const QLabel*>(&widget);
    if (label) return label->buddy() ? label->text() : QString();
    if (const auto* box = qobject_cast<const QGroupBox*>(&widget)) return box->title();
    const auto* button = qobject_cast<const QAbstractButton*>(&widget);
    return button ? button->text() : QString();
}

/** Only one page of a tab widget is there at a time: its pages may share keys with each other. */
void findClashes(const QWidget& parent, AccessKeys keys, QStringList& clashes) {
    QList<const QTabWidget*> tabs;
    QList<const QWidget*> waiting{&parent};
    while (!waiting.isEmpty()) {
        for (const QObject* child : waiting.takeFirst()->children()) {
            const auto* widget = qobject_cast<const QWidget*>(child);
            if (!widget || widget->isHidden()) continue;
            addKey(labelOf(*widget), keys, clashes);
            const auto* tab = qobject_cast<const QTabWidget*>(widget);
            if (tab) tabs << tab;
            for (int i = 0; tab && i < tab->count(); ++i)
                addKey(tab->tabText(i), keys, clashes);
            if (!tab) waiting << widget;
        }
    }
    for (const QTabWidget* tab : tabs)
        for (int i = 0; i < tab->count(); ++i)
            findClashes(*tab->widget(i), keys, clashes);
}

struct DialogFormsTest : testing::Test {
    test::TestProgram program;
    QStringList seen;

    void check(Dialog& dialog) {
        seen << toQt(dialog.FormName());
        dialog.SetOpen(true);
        {
            DialogForm form(dialog, nullptr, {});
            dialog.Form_Load();
            EXPECT_TRUE(form.report().complete())
                << dialog.FormName() << ": " << form.report().text().toStdString();
            QStringList clashes;
            findClashes(form.window(), {}, clashes);
            EXPECT_TRUE(clashes.isEmpty()) << dialog.FormName() << ": one access key in "
                                           << clashes.join(QStringLiteral(", ")).toStdString();
            form.window().show();
            const auto* ok = form.window().findChild<QPushButton*>(QStringLiteral("cmdOK"));
            EXPECT_TRUE(!ok || ok->isDefault()) << dialog.FormName() << ": Enter presses no OK";
        }
        dialog.SetOpen(false);
        dialog.Form_Unload();
    }
};

TEST_F(DialogFormsTest, DialogsAndFormsFit) {
    test::VisitEveryDialog(program, [this](Dialog& dialog) { check(dialog); });
    QStringList all = formNames();
    all.sort();
    seen.removeDuplicates();
    seen.sort();
    EXPECT_EQ(seen.join(' ').toStdString(), all.join(' ').toStdString())
        << "a form without a dialog, or the other way round";
}

TEST_F(DialogFormsTest, TypingBeginsInTheFirstFieldOfTheFirstTab) {
    program.Press(3);
    ProjectContext& project = program.window().ProjectState();
    Page& page = *GetPage(project, program.context().CurrentPageKey);
    frmPage dialog(project, page, *program.window().FindOpenPage(page.Key()));
    QtDialogHost host;
    QTimer::singleShot(50, qApp, [] {
        auto* window = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        ASSERT_TRUE(window && window->focusWidget());
        EXPECT_EQ(window->focusWidget()->objectName(), QStringLiteral("txtTitle"));
        QTest::keyClicks(window->focusWidget(), QStringLiteral("x"));
        window->reject();
    });
    host.ShowModal(dialog);
    EXPECT_EQ(dialog.txtTitle.Text(), "x") << "in place of the title that was there";
}

TEST_F(DialogFormsTest, EveryIconIsInTheTheme) {
    const Theme theme(*qApp);
    for (const ListedImage& image : mainImageList()) {
        EXPECT_TRUE(QIcon::hasThemeIcon(image.iconName)) << image.iconName;
    }
    for (const std::string& name : program.bar().BandNames()) {
        for (const BandItem& item : program.bar().FindBand(name)->items) {
            const Tool* tool = program.bar().FindTool(item.number);
            if (!tool || tool->kind == ToolKind::Combo) continue;
            EXPECT_TRUE(QIcon::hasThemeIcon(toQt(tool->icon))) << tool->number << " " << tool->icon;
        }
    }
}

TEST_F(DialogFormsTest, NoTwoToolsHaveTheSameKeys) {
    std::map<std::string, int> keys;
    for (const std::string& name : program.bar().BandNames()) {
        for (const BandItem& item : program.bar().FindBand(name)->items) {
            const Tool* tool = program.bar().FindTool(item.number);
            if (!tool || tool->shortcut.empty()) continue;
            const auto [known, added] = keys.emplace(tool->shortcut, tool->number);
            EXPECT_EQ(known->second, tool->number) << tool->shortcut;
        }
    }
}

}  // namespace
}  // namespace pw
