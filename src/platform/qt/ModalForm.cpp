#include "platform/qt/ModalForm.h"

#include <QKeyEvent>
#include <QPushButton>
#include <QVBoxLayout>

#include <stdexcept>

#include "platform/qt/QtText.h"

namespace pw {

/** Leaves it to the dialog whether it may be closed. */
class ModalForm::Window : public QDialog {
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

ModalForm::ModalForm(Dialog& dialog, QWidget* owner, std::function<void(int topic)> help)
    : dialog_(dialog), window_(std::make_unique<Window>(dialog, owner, std::move(help))) {
    std::unique_ptr<QWidget> form = loadForm(toQt(dialog.FormName()));
    if (!form) throw std::runtime_error("There is no form for the dialog " + dialog.FormName());
    window_->setWindowTitle(toQt(dialog.Title()));
    window_->resize(form->size());
    auto* layout = new QVBoxLayout(window_.get());
    layout->setContentsMargins(0, 0, 0, 0);
    QWidget* content = form.release();
    content->setParent(window_.get(), Qt::Widget);
    layout->addWidget(content);
    binder_ = std::make_unique<FormBinder>(dialog, *window_);
    chooseDefaultButton();
    dialog_.onClose = [this] { window_->done(QDialog::Accepted); };
    dialog_.onTitleChanged = [this] { window_->setWindowTitle(toQt(dialog_.Title())); };
}

ModalForm::~ModalForm() {
    dialog_.onClose = nullptr;
    dialog_.onTitleChanged = nullptr;
}

QDialog& ModalForm::window() {
    return *window_;
}

void ModalForm::chooseDefaultButton() {
    auto* ok = window_->findChild<QPushButton*>(QStringLiteral("cmdOK"));
    if (ok) ok->setDefault(true);
}

void ModalForm::run() {
    dialog_.SetOpen(true);
    dialog_.Form_Load();
    // Form_Load may have changed its mind about being shown.
    if (dialog_.IsOpen()) window_->exec();
    dialog_.SetOpen(false);
    dialog_.Form_Unload();
}

}  // namespace pw
