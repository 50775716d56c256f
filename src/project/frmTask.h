#pragma once
// The dialog of one task. Edits all of its fields, refuses an empty name, and on OK writes the
// task, a new one under a new GUID. What it can't name, such as a status that another program has
// written, it shows as it is, and leaves it so.
#include "platform/controls/Dialog.h"
#include "project/ProjectContext.h"

namespace pw {

class frmTask : public Dialog {
  public:
    /** `key` is the task's, or "" for a new one. */
    frmTask(ProjectContext& context, const std::string& key);

    TextBox txtName{this, "txtName"};
    TextBox txtDesc{this, "txtDesc"};
    ComboBox cboAssociatedWith{this, "cboAssociatedWith", true};
    ComboBox cboPriority{this, "cboPriority"};
    ComboBox cboStatus{this, "cboStatus"};
    ComboBox cboAssignedTo{this, "cboAssignedTo", true};
    DatePicker dtpCompleteBy{this, "dtpCompleteBy"};
    CheckBox chkPublish{this, "chkPublish"};  ///< has to be done before publishing
    Label lblAssignedBy{this, "lblAssignedBy"};
    Label lblCreated{this, "lblCreated"};  ///< who made it and when; empty for a new one
    Button cmdOK{this, "cmdOK"};
    Button cmdCancel{this, "cmdCancel"};

    /** Also that of a new task, once it is made. */
    const std::string& TaskKey() const { return key_; }

  private:
    void PopulateAssignedTo();
    void FillFromTask();
    void txtName_Change();
    void cmdOK_Click();

    ProjectContext& context_;
    std::string key_;
};

/** Opens the task of that key; nothing happens with an empty one. */
void ShowTaskDialog(ProjectContext& context, const std::string& key);
/** Opens the dialog for a new task. Returns its key, "" when none was made. */
std::string ShowNewTaskDialog(ProjectContext& context);

}  // namespace pw
