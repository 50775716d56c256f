#pragma once
// What the program is: name, version, licence. The splash of the start shows the same texts.
#include "platform/controls/Dialog.h"

namespace pw {

struct FrameContext;

class frmAbout : public Dialog {
  public:
    explicit frmAbout(FrameContext& context);

    Label lblTitle{this, "lblTitle"};
    Label lblVersion{this, "lblVersion"};
    Label lblCopyright{this, "lblCopyright"};
    Frame fraDetails{this, "fraDetails"};
    Label lblDetails{this, "lblDetails"};
    Button cmdOK{this, "cmdOK"};
};

}  // namespace pw
