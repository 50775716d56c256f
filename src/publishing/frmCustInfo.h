#pragma once
// Asks for the user's own name, once, before the first project.
//   Edits    first name, last name and e-mail address.
//   Refuses  to be done while one of the three is empty.
//   Writes   on Done, to `Settings` and the stored settings; stays while it can't.
#include "platform/controls/Dialog.h"

namespace pw {

struct FrameContext;

class frmCustInfo : public Dialog {
  public:
    explicit frmCustInfo(FrameContext& context);
    void Form_Load() override;

    TextBox txtFName{this, "txtFName"};
    TextBox txtLName{this, "txtLName"};
    TextBox txtEmail{this, "txtEmail"};
    Button cmdDone{this, "cmdDone"};

  private:
    void SetCmdDone();
    void cmdDone_Click();

    FrameContext& context_;
};

}  // namespace pw
