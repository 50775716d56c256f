// Every dialog of the program with its own form: what one has, the other must have too.
#include <gtest/gtest.h>

#include <QApplication>
#include <QIcon>

#include "editing/frmFindReplace.h"
#include "mainwindow/frmAbout.h"
#include "mainwindow/frmOptions.h"
#include "platform/qt/CommandBarView.h"
#include "platform/qt/FormBinder.h"
#include "platform/qt/ImageList.h"
#include "platform/qt/ModalForm.h"
#include "platform/qt/QtText.h"
#include "platform/qt/Theme.h"
#include "project/frmFolder.h"
#include "project/frmNameValue.h"
#include "project/frmProject.h"
#include "project/frmRecover.h"
#include "project/frmTask.h"
#include "publishing/frmCustInfo.h"
#include "support/TestProgram.h"

namespace pw {
namespace {

struct DialogFormsTest : testing::Test {
    test::TestProgram program;
    QStringList seen;

    void check(Dialog& dialog) {
        seen << toQt(dialog.FormName());
        dialog.SetOpen(true);
        {
            ModalForm form(dialog, nullptr, {});
            dialog.Form_Load();
            EXPECT_TRUE(form.report().complete())
                << dialog.FormName() << ": " << form.report().text().toStdString();
            form.window().grab();
        }
        dialog.SetOpen(false);
        dialog.Form_Unload();
    }
};

TEST_F(DialogFormsTest, DialogsAndFormsFit) {
    MainContext& context = program.context();
    ProjectContext& project = program.window().ProjectState();
    {
        frmAbout dialog(program.frame());
        check(dialog);
    }
    {
        frmOptions dialog(context);
        check(dialog);
    }
    {
        frmCustInfo dialog(program.frame());
        check(dialog);
    }
    {
        frmFolder dialog(project, "W0001");
        check(dialog);
    }
    {
        frmProject dialog(project);
        check(dialog);
    }
    {
        frmTask dialog(project, "");
        check(dialog);
    }
    {
        frmNameValue dialog(program.dialogs(), {});
        check(dialog);
    }
    {
        std::unique_ptr<RunFolder> run;
        frmRecover dialog(project, run);
        check(dialog);
    }
    {
        SearchHistory history;
        frmFindReplace dialog(program.dialogs(), "Pagewick", history, [] { return FindTarget(); });
        dialog.Setup(frmFindReplace::kReplace);
        check(dialog);
    }
    QStringList all = formNames();
    all.sort();
    seen.sort();
    EXPECT_EQ(seen.join(' ').toStdString(), all.join(' ').toStdString())
        << "a form without a dialog, or the other way round";
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
