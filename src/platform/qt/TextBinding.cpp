#include <QEvent>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTextBlock>

#include "platform/Text.h"
#include "platform/qt/Binding.h"
#include "platform/qt/QtText.h"

namespace pw {

namespace {

/** A text box over a QLineEdit or a QPlainTextEdit. Positions in the model are bytes of a text
 *  whose lines end with CR LF; those of the widget are UTF-16 units of one with LF. */
class TextBinding : public Binding {
  public:
    TextBinding(Control& control, QWidget& widget)
        : Binding(control, widget),
          model_(static_cast<TextBox&>(control)),
          line_(qobject_cast<QLineEdit*>(&widget)),
          box_(qobject_cast<QPlainTextEdit*>(&widget)) {
        widget.installEventFilter(this);
        if (line_) {
            if (model_.Style() == TextStyle::Password) line_->setEchoMode(QLineEdit::Password);
            connect(line_, &QLineEdit::textEdited, this, &TextBinding::takeOver);
            connect(line_, &QLineEdit::selectionChanged, this, &TextBinding::takeSelection);
            connect(line_, &QLineEdit::cursorPositionChanged, this, &TextBinding::takeSelection);
        } else {
            box_->setTabChangesFocus(true);
            connect(box_, &QPlainTextEdit::textChanged, this, &TextBinding::takeOver);
            connect(box_, &QPlainTextEdit::selectionChanged, this, &TextBinding::takeSelection);
            connect(box_, &QPlainTextEdit::cursorPositionChanged, this,
                    &TextBinding::takeSelection);
        }
    }
    static bool fits(const QWidget& widget) {
        return qobject_cast<const QLineEdit*>(&widget) ||
               qobject_cast<const QPlainTextEdit*>(&widget);
    }

    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::FocusOut && !showing()) {
            // A path is shown in the system's form again, once it is complete.
            if (model_.Style() == TextStyle::Path) showAll();
            model_.LostFocus();
        }
        return false;
    }

  protected:
    void show(Aspect aspect) override {
        if (line_) {
            line_->setReadOnly(model_.readOnly);
            // Setting it moves the caret, even to the same length.
            const int length = model_.maxLength > 0 ? model_.maxLength : 32767;
            if (line_->maxLength() != length) line_->setMaxLength(length);
        } else {
            box_->setReadOnly(model_.readOnly);
        }
        if (aspect == Aspect::Text) showText();
        if (aspect == Aspect::TextSelection) showSelection();
    }

  private:
    QString toWidget(const std::string& text) const {
        if (model_.Style() == TextStyle::Path) return toNativeQt(text);
        return box_ ? toQt(ReplaceAll(text, "\r\n", "\n")) : toQt(text);
    }
    std::string toModel(const QString& text) const {
        if (model_.Style() == TextStyle::Path) return fromNativeQt(text);
        return box_ ? ReplaceAll(fromQt(text), "\n", "\r\n") : fromQt(text);
    }
    QString widgetText() const { return line_ ? line_->text() : box_->toPlainText(); }

    void takeOver() {
        if (showing()) return;
        typing_ = true;
        model_.UserSetText(toModel(widgetText()));
        typing_ = false;
    }

    void takeSelection() {
        if (showing()) return;
        const QString text = widgetText();
        qsizetype start = 0;
        qsizetype end = 0;
        if (line_) {
            start = line_->hasSelectedText() ? line_->selectionStart() : line_->cursorPosition();
            end = start + line_->selectedText().size();
        } else {
            start = box_->textCursor().selectionStart();
            end = box_->textCursor().selectionEnd();
        }
        const std::size_t from = toModel(text.left(start)).size();
        model_.UserSelected(from, toModel(text.mid(start, end - start)).size());
    }

    void showText() {
        const QString wanted = toWidget(model_.Text());
        const QString shown = widgetText();
        if (shown == wanted) return;
        // Characters that were refused stood in front of the caret.
        const qsizetype refused = qMax<qsizetype>(0, shown.size() - wanted.size());
        if (line_) {
            const qsizetype caret = line_->cursorPosition() - refused;
            line_->setText(wanted);
            if (typing_) line_->setCursorPosition(int(qMax<qsizetype>(0, caret)));
        } else {
            const qsizetype caret = box_->textCursor().position() - refused;
            box_->setPlainText(wanted);
            if (typing_) {
                QTextCursor cursor = box_->textCursor();
                cursor.setPosition(int(qBound<qsizetype>(0, caret, wanted.size())));
                box_->setTextCursor(cursor);
            }
        }
    }

    void showSelection() {
        const qsizetype start = toWidget(model_.Text().substr(0, model_.SelStart())).size();
        const qsizetype length =
            toWidget(model_.Text().substr(model_.SelStart(), model_.SelLength())).size();
        if (line_) {
            line_->setCursorPosition(int(start));
            if (length > 0) line_->setSelection(int(start), int(length));
        } else {
            QTextCursor cursor = box_->textCursor();
            cursor.setPosition(int(start));
            cursor.setPosition(int(start + length), QTextCursor::KeepAnchor);
            box_->setTextCursor(cursor);
        }
    }

    TextBox& model_;
    QLineEdit* line_;
    QPlainTextEdit* box_;
    bool typing_ = false;
};

}  // namespace

std::unique_ptr<Binding> makeTextBinding(Control& control, QWidget& widget) {
    if (!TextBinding::fits(widget)) return nullptr;
    return std::make_unique<TextBinding>(control, widget);
}

}  // namespace pw
