#pragma once
#include <QDialog>
#include <QPointer>

#include <functional>
#include <memory>

#include "platform/controls/Dialog.h"
#include "platform/qt/FormBinder.h"

namespace pw {

/** The window of one dialog while it is shown: its form, tied to its controls. */
class DialogForm {
  public:
    DialogForm(Dialog& dialog, QWidget* owner, std::function<void(int topic)> help);
    ~DialogForm();
    DialogForm(const DialogForm&) = delete;
    DialogForm& operator=(const DialogForm&) = delete;

    /** From Form_Load to Form_Unload; returns when the dialog is closed. */
    void run();
    /** Returns at once. When the dialog is closed `closed` is called, behind Form_Unload; it may
     *  delete the form. */
    void show(std::function<void()> closed);
    void bringToFront();
    const Dialog& dialog() const { return dialog_; }
    QDialog& window();
    bool isShownIn(const QWidget* window) const { return window && window_ == window; }
    const BindingReport& report() const { return binder_->report(); }

  private:
    class Window;
    void chooseDefaultButton();
    /** Lets typing begin in the first field. */
    void chooseFocus();
    Dialog& dialog_;
    QPointer<QDialog> window_;  ///< goes with its owner, if that is first
    bool besideOthers_ = false;
    std::unique_ptr<FormBinder> binder_;
};

}  // namespace pw
