#include "publishing/frmCustInfo.h"

#include "frame/Context.h"
#include "frame/FunctionLibrary.h"
#include "platform/Text.h"

namespace pw {

frmCustInfo::frmCustInfo(FrameContext& context)
    : Dialog("frmCustInfo", context.brand.FormCaption()), context_(context) {
    for (TextBox* text : {&txtFName, &txtLName, &txtEmail})
        text->Change = [this] { SetCmdDone(); };
    cmdDone.Click = [this] { cmdDone_Click(); };
}

void frmCustInfo::Form_Load() {
    txtFName.SetText(context_.settings.Firstname);
    txtLName.SetText(context_.settings.Lastname);
    txtEmail.SetText(context_.settings.UserEmail);
    SetCmdDone();
}

void frmCustInfo::SetCmdDone() {
    const auto filled = [](const TextBox& text) { return !Trim(text.Text()).empty(); };
    cmdDone.SetEnabled(filled(txtFName) && filled(txtLName) && filled(txtEmail));
}

void frmCustInfo::cmdDone_Click() {
    const std::string first = Trim(txtFName.Text());
    const std::string last = Trim(txtLName.Text());
    const std::string email = Trim(txtEmail.Text());
    HiveBatch batch(context_.hive);
    const bool written = SetRegText(context_.hive, "General", "First Name", first) &&
                         SetRegText(context_.hive, "General", "Last Name", last) &&
                         SetRegText(context_.hive, "General", "User E-mail", email);
    const bool stored = batch.Commit() && written;
    // In this run of the program they hold all the same.
    context_.settings.Firstname = first;
    context_.settings.Lastname = last;
    context_.settings.UserEmail = email;
    if (stored) return Close();
    const char* problem =
        "Your name and e-mail address could not be stored.\n\nPlease see that there is room on the "
        "disk and that your settings may be written, and try again. If you close this window, the "
        "program knows them until it ends, and asks again when it is started.";
    context_.errorLog.LogError("", Failure(problem), "CustInfo.", "cmdDone_Click");
    context_.dialogs.MsgBox({problem, Title(), Icon::Exclamation});
}

}  // namespace pw
