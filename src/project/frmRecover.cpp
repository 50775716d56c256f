#include "project/frmRecover.h"

#include "frame/Context.h"
#include "frame/FunctionLibrary.h"

namespace pw {

frmRecover::frmRecover(ProjectContext& context, std::unique_ptr<RunFolder>& run)
    : Dialog("frmRecover", "Recover Project"), context_(context), run_(run) {
    cmdRecover.Click = [this] { cmdRecover_Click(); };
    cmdLater.Click = [this] { Close(); };
    cmdDiscard.Click = [this] { cmdDiscard_Click(); };
    lvwRecover.DblClick = [this] { cmdRecover_Click(); };
}

void frmRecover::Form_Load() {
    lblText.SetCaption(
        "The program ended unexpectedly while these projects had unsaved changes. You can recover "
        "a project now, decide later, or discard its changes for good.");
    lvwRecover.SetColumns({{"Project", 140}, {"File", 225}, {"Last change", 165}});
    Fill();
}

void frmRecover::Fill() {
    projects_ = FindRecoverable(context_.frame);
    lvwRecover.Clear();
    for (const RecoverableProject& project : projects_) {
        const std::string file =
            project.projectFile.empty() ? "(never saved)" : ToNativePath(project.projectFile);
        lvwRecover.Add({project.folder,
                        {project.projectName, file,
                         FormatDate(project.changed, DateStyle::ShortDateShortTime)}});
    }
    if (!projects_.empty()) lvwRecover.SetSelected(0);
    cmdRecover.SetEnabled(!projects_.empty());
    cmdDiscard.SetEnabled(!projects_.empty());
}

const RecoverableProject* frmRecover::Chosen() const {
    const int row = lvwRecover.Selected();
    if (row < 0) return nullptr;
    const std::string key = lvwRecover.Row(row).key;
    const auto chosen =
        std::find_if(projects_.begin(), projects_.end(),
                     [&](const RecoverableProject& project) { return project.folder == key; });
    return chosen == projects_.end() ? nullptr : &*chosen;
}

void frmRecover::cmdRecover_Click() {
    const RecoverableProject* project = Chosen();
    if (!project) return;
    recovered_ = RecoverProject(context_, run_, *project);
    if (recovered_)
        Close();
    else
        Fill();
}

void frmRecover::cmdDiscard_Click() {
    const RecoverableProject* project = Chosen();
    if (!project) return;
    const Answer answer = context_.frame.dialogs.MsgBox(
        {"The unsaved changes to project " + QuoteSingle(project->projectName) +
             " will be lost for good.\n\nDo you want to continue?",
         Title(), Icon::Question, Buttons::YesNo, Answer::No});
    if (answer != Answer::Yes) return;
    if (!DiscardRecoverable(context_.frame, *project))
        context_.frame.dialogs.MsgBox({"What the program has left in " +
                                           QuoteSingle(ToNativePath(project->folder)) +
                                           " can not be removed. The error log tells more.",
                                       Title(), Icon::Stop});
    Fill();
    if (projects_.empty()) Close();
}

}  // namespace pw
