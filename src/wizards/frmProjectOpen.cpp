#include "wizards/frmProjectOpen.h"

#include "frame/Context.h"

namespace pw {

std::string ChooseProject(FrameContext& context) {
    FileQuestion question;
    question.title = "Open Project";
    question.filter = "Projects (*.pwp)|*.pwp";
    question.initialPath = context.settings.ProjectsFolder;
    question.defaultExtension = "pwp";
    return context.dialogs.OpenFile(question);
}

}  // namespace pw
