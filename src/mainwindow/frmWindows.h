#pragma once
// All open pages, for when they are too many for the Window menu: one of them can be brought to the
// front or closed.
#include <string>

#include "mainwindow/Context.h"
#include "platform/controls/Dialog.h"

namespace pw {

class frmWindows : public Dialog {
  public:
    explicit frmWindows(MainContext& context);

    ListView lvwWindows{this, "lvwWindows"};
    Button cmdOK{this, "cmdOK"};  ///< activates
    Button cmdCloseWindow{this, "cmdCloseWindow"};
    Button cmdCancel{this, "cmdCancel"};

  private:
    void Fill();
    std::string SelectedKey() const;
    void EnableButtons();
    void cmdOK_Click();
    void cmdCloseWindow_Click();

    MainContext& context_;
};

}  // namespace pw
