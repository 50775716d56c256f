#pragma once
// The dialog of a folder: its name and description.
//   Edits    the values it was opened with; writes nothing to the project but `IsDirty`.
//   Refuses  a name that is no name for a folder or that a sibling has, in any letter case.
//   Result   `Accepted()`, `Name()` and the rest; the caller acts on them in `apply`, and while
//   that
//            can't be done the dialog stays.
#include <functional>
#include <string>

#include "platform/controls/Dialog.h"
#include "project/Folders.h"
#include "project/ProjectContext.h"

namespace pw {

class frmFolder : public Dialog {
  public:
    /** For a new folder below the folder or site at `parentKey`. */
    frmFolder(ProjectContext& context, std::string parentKey);
    /** For the properties of a folder. */
    frmFolder(ProjectContext& context, std::string parentKey, const Folder& folder);

    /** Called by OK for what looks right. False when it could not be done, of which the user has
     *  been told, or when he has thought better of it. */
    std::function<bool()> apply;

    bool Accepted() const { return accepted_; }
    std::string Name() const;  ///< trimmed
    std::string Description() const { return txtDesc.Text(); }
    int ContainerKind() const;

    TextBox txtName{this, "txtName"};
    TextBox txtDesc{this, "txtDesc"};
    Frame fraContainer{this, "fraContainer"};  ///< stays invisible, with the three in it
    CheckBox chkContainer{this, "chkContainer"};
    TextBox txtFilename{this, "txtFilename", TextStyle::Path};
    Button cmdBrowse{this, "cmdBrowse"};
    Button cmdOK{this, "cmdOK"};
    Button cmdCancel{this, "cmdCancel"};

  private:
    void txtName_Change();
    void cmdBrowse_Click();
    void cmdOK_Click();
    void Refuse(const std::string& message);

    ProjectContext& context_;
    std::string parentKey_;
    std::string oldName_;
    bool accepted_ = false;
};

}  // namespace pw
