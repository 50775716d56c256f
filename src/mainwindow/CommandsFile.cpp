// The File menu and its sub-menus.
#include "frame/Context.h"
#include "frame/FunctionLibrary.h"
#include "mainwindow/CommandCatalogue.h"
#include "mainwindow/Commands.h"
#include "mainwindow/Explorers.h"
#include "mainwindow/RecentProjects.h"
#include "mainwindow/UIState.h"
#include "mainwindow/frmDocument.h"
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
    UpdateProjectMergeVariables(context.project);  // what pages show now
    frmProject dialog(context.project);
    context.frame.dialogs.ShowModal(dialog);
    if (!dialog.Confirmed()) return;
    UpdateProjectMergeVariables(context.project);
    UpdateMergeVariablesInAllPages(context.project, dialog.Title());
    RefillProjectExplorer(context);
    context.window.RefreshCaption();
}

void OpenChosenProject(MainContext& context, const std::string& path) {
    Trap(context.frame.errorLog, "MDIMain.", "OpenChosenProject", [&] {
        if (context.model.Busy()) return;
        if (!FileExists(context.frame.files, path)) {
            RemoveRecentProject(context.frame, path);
            context.frame.dialogs.MsgBox(
                {"The project '" + ToNativePath(path) +
                     "' is not there any more, and was taken off the list.\n\nIf it was moved, "
                     "please open it from its new place.",
                 context.frame.brand.FormCaption(), Icon::Exclamation, Buttons::Ok});
            return;
        }
        const std::string title = context.barMain.Caption(6);
        if (!MayGiveUpProject(context.project, GivingUp::ForOpening, title)) return;
        if (OpenProject(context.project, path, Silent::No)) AddRecentProject(context.frame, path);
        ResetUI(context);
    });
}

namespace {

void PrintPage(MainContext& context) {
    frmDocument* document = context.CurrentDocument();
    if (!document || document->Print()) return;
    context.frame.dialogs.MsgBox(
        {"The page can not be printed.\n\nPlease check that the printer is switched on and has "
         "paper or, for a PDF file, that it may be written and there is room on the disk, and "
         "print "
         "again.",
         context.frame.brand.FormCaption(), Icon::Exclamation, Buttons::Ok});
}

void OpenRecentProject(MainContext& context, int tool) {
    const std::vector<std::string> paths = ListedProjects(context.frame);
    const auto place = std::size_t(tool - kFirstRecentTool);
    if (place < paths.size()) OpenChosenProject(context, paths[place]);
}

}  // namespace

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
    if (tool >= kFirstRecentTool && tool <= kLastRecentTool)
        return OpenRecentProject(context, tool);
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
            SelectTask(context, ShowNewTaskDialog(context.project));
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
        case 18:
            PrintPage(context);
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
