#include "platform/qt/DialogForm.h"

#include <QKeyEvent>
#include <QPushButton>
#include <QVBoxLayout>

#include <stdexcept>

#include "platform/HandlerLevel.h"
#include "platform/qt/QtText.h"

namespace pw {

/** Leaves it to the dialog whether it may be closed. */
class DialogForm::Window : public QDialog {
  public:
    Window(Dialog& dialog, QWidget* owner, std::function<void(int)> help)
        : QDialog(owner), dialog_(dialog), help_(std::move(help)) {}

    /** Escape, or the frame's own button. */
    void reject() override {
        if (!dialog_.IsOpen()) return QDialog::reject();
        if (!dialog_.Form_QueryUnload()) return;
        Control* cancel = dialog_.Find("cmdCancel");
        if (cancel && cancel->Kind() == ControlKind::Button) {
            static_cast<Button*>(cancel)->UserClick();
        } else {
            dialog_.Close();
        }
    }

  protected:
    void closeEvent(QCloseEvent* event) override {
        if (!dialog_.IsOpen()) return QDialog::closeEvent(event);
        event->ignore();
        reject();
    }

    void keyPressEvent(QKeyEvent* event) override {
        if (event->key() == Qt::Key_F1 && help_) {
            help_(dialog_.helpTopic);
        } else {
            QDialog::keyPressEvent(event);
        }
    }

  private:
    Dialog& dialog_;
    std::function<void(int)> help_;
};

DialogForm::DialogForm(Dialog& dialog, QWidget* owner, std::function<void(int topic)> help)
    : dialog_(dialog) {
    std::unique_ptr<QWidget> form = loadForm(toQt(dialog.FormName()));
    if (!form) throw std::runtime_error("There is no form for the dialog " + dialog.FormName());
    window_ = new Window(dialog, owner, std::move(help));
    window_->setWindowTitle(toQt(dialog.Title()));
    window_->resize(form->size());
    auto* layout = new QVBoxLayout(window_);
    layout->setContentsMargins(0, 0, 0, 0);
    QWidget* content = form.release();
    content->setParent(window_, Qt::Widget);
    layout->addWidget(content);
    binder_ = std::make_unique<FormBinder>(dialog, *window_);
    chooseDefaultButton();
    dialog_.onClose = [this] { window_->done(QDialog::Accepted); };
    dialog_.onTitleChanged = [this] { window_->setWindowTitle(toQt(dialog_.Title())); };
}

DialogForm::~DialogForm() {
    dialog_.onClose = nullptr;
    dialog_.onTitleChanged = nullptr;
    binder_.reset();
    if (!besideOthers_ || !window_) {
        delete window_;
        return;
    }
    window_->hide();
    // Not at once: one of its own buttons may be what closes it.
    window_->deleteLater();
}

QDialog& DialogForm::window() {
    return *window_;
}

void DialogForm::chooseDefaultButton() {
    auto* chosen = window_->findChild<QPushButton*>(QStringLiteral("cmdOK"));
    for (QPushButton* button : window_->findChildren<QPushButton*>()) {
        if (!chosen && button->isDefault()) chosen = button;
    }
    if (!chosen) return;
    // The form has made it the default before there was a dialog to know of it.
    chosen->setDefault(false);
    chosen->setDefault(true);
}

void DialogForm::chooseFocus() {
    if (window_->focusWidget()) return;  // the dialog has chosen
    for (QWidget* widget = window_->nextInFocusChain(); widget != window_;
         widget = widget->nextInFocusChain()) {
        const bool reachable = widget->focusPolicy() & Qt::TabFocus &&
                               widget->isEnabledTo(window_) && widget->isVisibleTo(window_);
        // Tabs come before what they show, but are not what the user has come for.
        const Control* control = dialog_.Find(fromQt(widget->objectName()));
        if (!reachable || !control || control->Kind() == ControlKind::TabStrip) continue;
        widget->setFocus(Qt::TabFocusReason);
        return;
    }
}

void DialogForm::run() {
    dialog_.SetOpen(true);
    dialog_.Form_Load();
    // Form_Load may have changed its mind about being shown.
    if (dialog_.IsOpen()) {
        chooseFocus();
        const EventRound round;
        window_->exec();
    }
    dialog_.SetOpen(false);
    dialog_.Form_Unload();
}

void DialogForm::show(std::function<void()> closed) {
    dialog_.onClose = [this, closed = std::move(closed)] {
        dialog_.Form_Unload();
        closed();
    };
    besideOthers_ = true;
    dialog_.SetOpen(true);
    dialog_.Form_Load();
    if (!dialog_.IsOpen()) return;
    chooseFocus();
    bringToFront();
}

void DialogForm::bringToFront() {
    if (!window_) return;
    window_->show();
    window_->raise();
    window_->activateWindow();
}

}  // namespace pw
