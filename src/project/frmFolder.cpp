#include "project/frmFolder.h"

#include "frame/Context.h"
#include "frame/FunctionLibrary.h"
#include "platform/Text.h"

namespace pw {

frmFolder::frmFolder(ProjectContext& context, std::string parentKey)
    : Dialog("frmFolder", "New Folder"), context_(context), parentKey_(std::move(parentKey)) {
    fraContainer.SetVisible(false);
    chkContainer.SetCaption("This folder&contains a Pagewick project");
    txtName.Change = [this] { txtName_Change(); };
    cmdBrowse.Click = [this] { cmdBrowse_Click(); };
    cmdOK.Click = [this] { cmdOK_Click(); };
    cmdCancel.Click = [this] { Close(); };
    txtName_Change();
}

frmFolder::frmFolder(ProjectContext& context, std::string parentKey, const Folder& folder)
    : frmFolder(context, std::move(parentKey)) {
    SetTitle("Folder");
    oldName_ = folder.Name;
    txtName.SetText(folder.Name);
    txtDesc.SetText(folder.Description);
    chkContainer.SetChecked(folder.ContainerKind == pw::ContainerKind::ContainsProject);
}

std::string frmFolder::Name() const {
    return Trim(txtName.Text());
}

int frmFolder::ContainerKind() const {
    return chkContainer.Checked() ? pw::ContainerKind::ContainsProject : pw::ContainerKind::Plain;
}

void frmFolder::txtName_Change() {
    cmdOK.SetEnabled(!Name().empty());
}

void frmFolder::cmdBrowse_Click() {
    const std::string file = context_.frame.dialogs.OpenFile(
        {"Add Project", "Projects (*.pwp)|*.pwp", context_.frame.settings.ProjectsFolder, "pwp"});
    if (!file.empty()) txtFilename.SetText(file);
}

void frmFolder::cmdOK_Click() {
    const std::string name = Name();
    if (name != oldName_) {
        const std::string problem = FolderNameProblem(name);
        if (!problem.empty()) return Refuse(problem);
        // Another spelling of its own name is free.
        if (!EqualsNoCase(name, oldName_) && !IsOKToAddFolder(context_, name, parentKey_))
            return Refuse("This folder name already exist. Please enter a different name.");
    }
    if (apply && !apply()) return txtName.SetFocus();
    context_.project.IsDirty = true;
    accepted_ = true;
    Close();
}

void frmFolder::Refuse(const std::string& message) {
    context_.frame.dialogs.MsgBox({message, Title(), Icon::Exclamation, Buttons::Ok});
    txtName.SelectAll();
    txtName.SetFocus();
}

}  // namespace pw
