#pragma once
// A dialog: its control models and the handlers that a derived class sets on them. The form of the
// same name (forms/frmX.ui) gives the layout; DialogHost::ShowModal shows it, or DialogHost::Show
// beside the main window.
#include <functional>
#include <string>

#include "platform/controls/Controls.h"

namespace pw {

class Dialog : public ControlOwner {
  public:
    /** `name` is that of the form, such as "frmFolder". */
    Dialog(std::string name, std::string title)
        : name_(std::move(name)), title_(std::move(title)) {}

    const std::string& FormName() const { return name_; }
    /** The form's name without its "frm". */
    std::string ModuleName() const override {
        return name_.substr(name_.starts_with("frm") ? 3 : 0);
    }
    const std::string& Title() const { return title_; }
    void SetTitle(std::string title);
    int helpTopic = 0;  ///< shown by F1; 0: the contents

    /** Called by the host before the first showing. */
    virtual void Form_Load() {}
    /** The user closes it by its frame or Escape; false keeps it open. Default: as cmdCancel. */
    virtual bool Form_QueryUnload() { return true; }
    virtual void Form_Unload() {}

    /** Ends ShowModal, or takes it off the screen. */
    void Close();
    bool IsOpen() const { return open_; }

    // For the host and the skin.
    void SetOpen(bool open) { open_ = open; }
    std::function<void()> onClose;  ///< the skin closes its window
    std::function<void()> onTitleChanged;

  private:
    std::string name_;
    std::string title_;
    bool open_ = false;
};

}  // namespace pw
