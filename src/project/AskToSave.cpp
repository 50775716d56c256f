// The questions before a project is given up, and the saving by the clock.
#include <array>
#include <cstdlib>

#include "frame/Context.h"
#include "frame/FunctionLibrary.h"
#include "platform/Text.h"
#include "project/Lifecycle.h"
#include "project/Workspace.h"
#include "project/omProj/Project.h"

namespace pw {
namespace {

constexpr const char* kModule = "ProjectFunctions.";

struct Question {
    GivingUp why;
    const char* loss;
};
constexpr std::array<Question, 3> kQuestions = {{
    {GivingUp::ForNewProject,
     "Any changes made to this project will be lost by creating a new project."},
    {GivingUp::ForOpening, "Any changes made to this project will be lost by opening a project."},
    {GivingUp::ForExit, "Any changes made to this project will be lost by exiting."},
}};

bool HasUnsavedChanges(ProjectContext& context) {
    if (context.project.IsDirty) return true;
    const auto pages = context.workspace.OpenPages();
    return std::any_of(pages.begin(), pages.end(), [](OpenPage* page) { return page->IsDirty(); });
}

}  // namespace

SaveAnswer AskToSave(ProjectContext& context, const std::string& message,
                     const std::string& title) {
    const Project& project = context.project;
    if (!project.IsLoaded || project.Name.empty() || project.PageCount() == 0 ||
        !HasUnsavedChanges(context))
        return SaveAnswer::NotAsked;
    switch (context.frame.dialogs.MsgBox(
        {message, title, Icon::Question, Buttons::YesNoCancel, Answer::Yes})) {
        case Answer::Yes:
            return SaveAnswer::Yes;
        case Answer::No:
            return SaveAnswer::No;
        default:
            return SaveAnswer::Cancel;
    }
}

bool MayGiveUpProject(ProjectContext& context, GivingUp why, const std::string& title) {
    return Trap(context.frame.errorLog, kModule, "MayGiveUpProject", false, [&] {
        if (context.project.Busy()) return false;
        const auto* question =
            std::find_if(kQuestions.begin(), kQuestions.end(),
                         [&](const Question& candidate) { return candidate.why == why; });
        const std::string message = std::string(question->loss) +
                                    "\n\nDo you want to save project " +
                                    QuoteSingle(context.project.Name) + "?";
        switch (AskToSave(context, message, RemoveMenuMarks(title))) {
            case SaveAnswer::Cancel:
                return false;
            case SaveAnswer::Yes:
                return SaveProject(context, Proceed::Save, Silent::No);
            default:
                return true;
        }
    });
}

void AutoSaveTick(ProjectContext& context, std::string& tag, bool mainWindowMinimised) {
    Trap(context.frame.errorLog, "frmMDIMain.", "tmrAutoSave_Timer", [&] {
        const Settings& settings = context.frame.settings;
        const int count = std::atoi(tag.c_str());
        if (count >= settings.AutoSaveFrequency - 1 && context.project.IsDirty &&
            !context.project.Busy() && !mainWindowMinimised &&
            !context.frame.dialogs.IsModalOpen()) {
            static_cast<void>(SaveProject(context, Proceed::Save, Silent::No));
            tag = "0";
            return;
        }
        // COMPAT: the count goes up only while the setting reads as the number 1, but a stored true
        // reads as -1. So it stands still in normal use, and only a frequency of 1 saves.
        constexpr int kTrue = -1;
        const int runOnce = settings.RunOnce ? kTrue : 0;
        if (runOnce == 1) tag = std::to_string(count + 1);
    });
}

}  // namespace pw
