#pragma once
#include <QDialog>

#include <functional>
#include <memory>

#include "platform/controls/Dialog.h"
#include "platform/qt/FormBinder.h"

namespace pw {

/** The window of one dialog while it is shown: its form, tied to its controls. */
class ModalForm {
  public:
    ModalForm(Dialog& dialog, QWidget* owner, std::function<void(int topic)> help);
    ~ModalForm();
    ModalForm(const ModalForm&) = delete;
    ModalForm& operator=(const ModalForm&) = delete;

    /** From Form_Load to Form_Unload. */
    void run();
    QDialog& window();
    const BindingReport& report() const { return binder_->report(); }

  private:
    class Window;
    void chooseDefaultButton();
    Dialog& dialog_;
    std::unique_ptr<Window> window_;
    std::unique_ptr<FormBinder> binder_;
};

}  // namespace pw
