#pragma once
// Every dialog of the program, one after the other, over a new project with one page.
#include "editing/frmPage.h"
#include "editing/frmSource.h"
#include "editing/frmVariables.h"
#include "mainwindow/Finding.h"
#include "mainwindow/frmAbout.h"
#include "mainwindow/frmOptions.h"
#include "mainwindow/frmTip.h"
#include "mainwindow/frmWindows.h"
#include "project/frmFolder.h"
#include "project/frmNameValue.h"
#include "project/frmProject.h"
#include "project/frmRecover.h"
#include "project/frmTask.h"
#include "publishing/frmCustInfo.h"
#include "support/TestProgram.h"

namespace pw::test {

template <typename Visit>
void VisitEveryDialog(TestProgram& program, Visit visit) {
    MainContext& context = program.context();
    ProjectContext& project = program.window().ProjectState();
    const auto show = [&visit](Dialog&& dialog) { visit(dialog); };
    show(frmAbout(program.frame()));
    show(frmOptions(context));
    show(frmTip(program.frame()));
    show(frmWindows(context));
    show(frmCustInfo(program.frame()));
    show(frmFolder(project, "W0001"));
    show(frmProject(project));
    program.Press(3);
    Page& page = *GetPage(project, context.CurrentPageKey);
    show(frmPage(project, page, *program.window().FindOpenPage(page.Key())));
    for (int mode = 0; mode <= int(SourceMode::Sound); ++mode) {
        frmSource dialog(project, page.Key());
        dialog.SetupDialog(SourceMode(mode));
        visit(dialog);
    }
    show(frmTask(project, ""));
    show(frmVariables(project));
    show(frmNameValue(program.dialogs(), {}));
    std::unique_ptr<RunFolder> run;
    show(frmRecover(project, run));
    PageFinder finder(context);
    finder.Open(frmFindReplace::kReplace);
    finder.Form()->Close();
    visit(*finder.Form());
}

}  // namespace pw::test
