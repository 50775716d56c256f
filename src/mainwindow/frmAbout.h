#pragma once
// What the program is: name, version, licence. The same form without its button and details is the
// splash of the start.
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
