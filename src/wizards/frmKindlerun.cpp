#include "wizards/frmKindlerun.h"

#include <string>

#include "frame/Context.h"
#include "project/InsertPage.h"
#include "project/Lifecycle.h"
#include "project/MergeVariables.h"
#include "project/Workspace.h"

namespace pw {

bool RunKindlerun(ProjectContext& context) {
    InitNewProject(context);
    context.project.IsLoaded = true;
    UpdateProjectMergeVariables(context);
    InsertPageRequest request;
    request.sourceFile = context.frame.settings.HTMLTemplateFilename;
    request.show = ShowInsertedPage::Yes;
    request.font =
        context.frame.settings.DefaultFont.empty() ? ApplyDefaultFont::No : ApplyDefaultFont::Yes;
    std::string reason;
    const bool made = InsertPage(context, request, &reason) != nullptr;
    if (!made) {
        context.frame.dialogs.MsgBox({"The first page can not be created. " + reason,
                                      context.frame.brand.FormCaption(), Icon::Exclamation,
                                      Buttons::Ok});
    }
    context.workspace.RefillProjectExplorer();
    context.workspace.RefreshCaption();
    context.workspace.ResetUI();
    return made;
}

}  // namespace pw
