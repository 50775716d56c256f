#include "project/frmNameValue.h"

#include "platform/Text.h"

namespace pw {

frmNameValue::frmNameValue(DialogHost& dialogs, NameValueQuestion question)
    : Dialog("frmNameValue", question.title), dialogs_(dialogs), question_(std::move(question)) {
    helpTopic = question_.helpTopic;
    lblName.SetCaption(question_.nameLabel);
    lblValue.SetCaption(question_.valueLabel);
    const bool shown = question_.valueLine == NameValueQuestion::ValueLine::Shown;
    lblValue.SetVisible(shown);
    txtValue.SetVisible(shown);

    txtName.Change = [this] { txtName_Change(); };
    cmdOK.Click = [this] { cmdOK_Click(); };
    cmdCancel.Click = [this] { Close(); };

    txtName.SetText(question_.initial.name);
    txtValue.SetText(question_.initial.value);
    txtName_Change();
}

void frmNameValue::txtName_Change() {
    cmdOK.SetEnabled(!Trim(txtName.Text()).empty());
}

void frmNameValue::cmdOK_Click() {
    const NameValue entry{Trim(txtName.Text()), Trim(txtValue.Text())};
    const std::string reason = question_.refuse ? question_.refuse(entry) : std::string();
    if (!reason.empty()) {
        dialogs_.MsgBox({reason, Title(), Icon::Exclamation});
        txtName.SelectAll();
        txtName.SetFocus();
        return;
    }
    result_ = entry;
    Close();
}

std::optional<NameValue> AskNameValue(DialogHost& dialogs, NameValueQuestion question) {
    frmNameValue dialog(dialogs, std::move(question));
    dialogs.ShowModal(dialog);
    return dialog.Result();
}

}  // namespace pw
