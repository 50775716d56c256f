#include "project/frmTask.h"

#include "frame/Context.h"
#include "frame/FunctionLibrary.h"
#include "platform/Text.h"
#include "project/Tasks.h"
#include "project/Workspace.h"

namespace pw {

namespace {

/** Chooses a value that counts the items; one that no item stands for gets one of its own. */
void Choose(ComboBox& box, int value) {
    const bool isKnown = value >= 0 && value < int(box.Items().size());
    if (!isKnown) box.AddItem(std::to_string(value));
    box.SetListIndex(isKnown ? value : int(box.Items().size()) - 1);
}

/** What is chosen, of `known` items; `former` for the item of its own and for none. */
int Chosen(const ComboBox& box, std::size_t known, int former) {
    return box.ListIndex() >= 0 && box.ListIndex() < int(known) ? box.ListIndex() : former;
}

}  // namespace

frmTask::frmTask(ProjectContext& context, const std::string& key)
    : Dialog("frmTask", key.empty() ? "New Task" : "Task Properties"),
      context_(context),
      key_(key) {
    cboAssociatedWith.SetItems({kTaskSubjects.begin(), kTaskSubjects.end()});
    cboPriority.SetItems({kTaskPriorities.begin(), kTaskPriorities.end()});
    cboStatus.SetItems({kTaskStatuses.begin(), kTaskStatuses.end()});
    PopulateAssignedTo();
    lblAssignedBy.SetCaption(context_.frame.system.UserName());

    txtName.Change = [this] { txtName_Change(); };
    cmdOK.Click = [this] { cmdOK_Click(); };
    cmdCancel.Click = [this] { Close(); };

    cboPriority.SetListIndex(1);
    cboStatus.SetListIndex(int(TaskStatus::NotStarted));
    FillFromTask();
    txtName_Change();
}

void frmTask::PopulateAssignedTo() {
    std::vector<std::string> names{context_.frame.system.UserName()};
    for (const Task& task : context_.project.Tasks()) {
        const bool listed = std::any_of(names.begin(), names.end(), [&](const std::string& name) {
            return EqualsNoCase(name, task.AssignedTo);
        });
        if (!listed && !task.AssignedTo.empty()) names.push_back(task.AssignedTo);
    }
    cboAssignedTo.SetItems(std::move(names));
}

void frmTask::FillFromTask() {
    const Task* task = context_.project.Tasks().Item(key_);
    if (!task) return;
    txtName.SetText(task->Name);
    txtDesc.SetText(task->Description);
    cboAssociatedWith.SetText(task->AssociatedWith);
    Choose(cboPriority, task->Priority);
    Choose(cboStatus, task->Status);
    cboAssignedTo.SetText(task->AssignedTo);
    dtpCompleteBy.SetValue(task->CompleteBy);
    chkPublish.SetChecked(task->PublishingDependent);
    lblCreated.SetCaption(task->CreatedBy + " " + FormatDate(task->Created, DateStyle::ShortDate));
}

void frmTask::txtName_Change() {
    cmdOK.SetEnabled(!Trim(txtName.Text()).empty());
}

void frmTask::cmdOK_Click() {
    const DateTime now = context_.frame.clock.Now();
    const std::string user = context_.frame.system.UserName();
    Task* task = key_.empty() ? nullptr : context_.project.Tasks().Item(key_);
    if (!task) {
        task = context_.project.Tasks().Add(MakeGUID(0));
        if (!task) {
            context_.frame.dialogs.MsgBox(
                {Describe(ProjectResult::CollectionFull), Title(), Icon::Exclamation});
            return;
        }
        key_ = task->Key;
        task->CreatedBy = user;
        task->Created = now;
    }
    task->Name = txtName.Text();
    task->AssociatedWith = cboAssociatedWith.Text();
    task->Priority = Chosen(cboPriority, kTaskPriorities.size(), task->Priority);
    SetStatus(*task, Chosen(cboStatus, kTaskStatuses.size(), task->Status));
    task->CompleteBy = dtpCompleteBy.Value();
    task->AssignedTo = cboAssignedTo.Text();
    task->Description = txtDesc.Text();
    task->PublishingDependent = chkPublish.Checked();
    task->ModifiedBy = user;
    task->Modified = now;
    context_.project.IsDirty = true;
    context_.workspace.RefreshTasks();
    Close();
}

void ShowTaskDialog(ProjectContext& context, const std::string& key) {
    if (key.empty()) return;
    frmTask dialog(context, key);
    context.frame.dialogs.ShowModal(dialog);
}

std::string ShowNewTaskDialog(ProjectContext& context) {
    frmTask dialog(context, "");
    context.frame.dialogs.ShowModal(dialog);
    return dialog.TaskKey();
}

}  // namespace pw
