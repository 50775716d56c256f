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
    Trap(context_.errorLog, "CustInfo.", "cmdDone_Click", [&] {
        Settings& settings = context_.settings;
        settings.Firstname = Trim(txtFName.Text());
        settings.Lastname = Trim(txtLName.Text());
        settings.UserEmail = Trim(txtEmail.Text());
        const HiveBatch batch(context_.hive);
        const bool kept = SetRegText(context_.hive, "General", "First Name", settings.Firstname) &&
                          SetRegText(context_.hive, "General", "Last Name", settings.Lastname) &&
                          SetRegText(context_.hive, "General", "User E-mail", settings.UserEmail);
        if (!kept) throw Failure("The user's name could not be stored.");
    });
    Close();
}

}  // namespace pw
