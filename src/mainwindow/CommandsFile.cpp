// The File menu and its sub-menus.
#include "frame/Context.h"
#include "frame/FunctionLibrary.h"
#include "mainwindow/Commands.h"
#include "mainwindow/Explorers.h"
#include "mainwindow/RecentProjects.h"
#include "mainwindow/UIState.h"
#include "mainwindow/frmMDIMain.h"
#include "platform/Text.h"
#include "project/Folders.h"
#include "project/InsertPage.h"
#include "project/Lifecycle.h"
#include "project/MergeVariables.h"
#include "project/PublishHTML.h"
#include "project/SavePage.h"
#include "project/Templates.h"
#include "project/frmProject.h"
#include "project/frmTask.h"
#include "wizards/frmKindlerun.h"
#include "wizards/frmProjectOpen.h"

namespace pw {

namespace {

void NewProject(MainContext& context) {
    if (!MayGiveUpProject(context.project, GivingUp::ForNewProject, context.barMain.Caption(3)))
        return;
    RunKindlerun(context.project);
}

void OpenProjectCommand(MainContext& context) {
    if (!MayGiveUpProject(context.project, GivingUp::ForOpening, context.barMain.Caption(6)))
        return;
    const std::string path = ChooseProject(context.frame);
    if (path.empty()) return;
    if (OpenProject(context.project, path, Silent::No))
        AddRecentProject(context.frame, context.frame.settings.ProjectFilename);
}

void NoteSaved(MainContext& context, bool saved) {
    if (saved) AddRecentProject(context.frame, context.frame.settings.ProjectFilename);
}

}  // namespace

void EditProjectProperties(MainContext& context) {
    frmProject dialog(context.project);
    context.frame.dialogs.ShowModal(dialog);
    if (!dialog.Confirmed()) return;
    UpdateProjectMergeVariables(context.project);
    UpdateMergeVariablesInOpenPages(context.project);
    static_cast<void>(
        UpdateMergeVariablesInClosedPages(context.project, PagesToUpdate::ClosedOnly));
    RefillProjectExplorer(context);
    context.window.RefreshCaption();
}

void OpenChosenProject(MainContext& context, const std::string& path) {
    Trap(context.frame.errorLog, "MDIMain.", "OpenChosenProject", [&] {
        if (context.model.Busy()) return;
        const std::string title = context.barMain.Caption(6);
        if (!MayGiveUpProject(context.project, GivingUp::ForOpening, title)) return;
        if (OpenProject(context.project, path, Silent::No)) AddRecentProject(context.frame, path);
        ResetUI(context);
    });
}

void InsertNewPage(MainContext& context) {
    const std::string selected = context.window.SelectedProjectNode();
    InsertPageRequest request;
    request.sourceFile = context.frame.settings.HTMLTemplateFilename;
    request.folder =
        GetContainer(context.project, selected.empty() ? context.CurrentPageKey : selected);
    request.show = ShowInsertedPage::Yes;
    request.font =
        context.frame.settings.DefaultFont.empty() ? ApplyDefaultFont::No : ApplyDefaultFont::Yes;
    std::string reason;
    if (!InsertPage(context.project, request, &reason)) {
        context.frame.dialogs.MsgBox({"The page can not be created. " + reason,
                                      context.frame.brand.FormCaption(), Icon::Exclamation,
                                      Buttons::Ok});
        return;
    }
    context.model.IsDirty = true;
}

void MenuFile(MainContext& context, int tool) {
    switch (tool) {
        case 2:
            InsertNewPage(context);
            break;
        case 3:
            NewProject(context);
            break;
        case 4:
            InsertFolder(context.project);
            break;
        case 5:
            ShowNewTaskDialog(context.project);
            break;
        case 6:
            OpenProjectCommand(context);
            break;
        case 7:
            NoteSaved(context, SaveProject(context.project, Proceed::Save, Silent::No));
            break;
        case 8:
            NoteSaved(context, SaveProjectAs(context.project));
            break;
        case 9:
            static_cast<void>(SavePageAs(context.project));
            break;
        case 10:
            EditProjectProperties(context);
            break;
        case 11:
            static_cast<void>(CreateThumbnail(context.project));
            break;
        case 12:
            static_cast<void>(SetDefaultTemplate(context.project));
            break;
        case 17:
            MenuFilePublish(context, tool);
            break;
        case 19:
            context.window.Surface().Close();
            break;
        default:
            break;
    }
}

void MenuFilePublish(MainContext& context, int tool) {
    if (tool == 17) AskAndPublishAsHTML(context.project);
}

}  // namespace pw
