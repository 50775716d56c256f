#pragma once
// The tip of the day: one line of support\tips.txt after the other, from one showing to the next.
//   Edits    `Settings.ShowTips`, at once, and the number of the next tip in the settings.
//   Without  the file there is nothing to turn to, and the box says so.
#include <string>
#include <vector>

#include "platform/controls/Dialog.h"

namespace pw {

struct FrameContext;

class frmTip : public Dialog {
  public:
    explicit frmTip(FrameContext& context);
    void Form_Load() override;

    /** The form's own picture, or the distributor's. */
    PictureBox imgTip{this, "imgTip"};
    Label lblTip{this, "lblTip"};
    CheckBox chkShowTips{this, "chkShowTips"};
    Button cmdNext{this, "cmdNext"};
    Button cmdClose{this, "cmdClose"};

  private:
    void ShowNextTip();

    FrameContext& context_;
    std::vector<std::string> tips_;
};

}  // namespace pw
