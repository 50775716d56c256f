#include "platform/qt/SourceView.h"

#include <QFontDatabase>
#include <QMimeData>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QTextBlock>
#include <QWheelEvent>

#include "platform/Text.h"
#include "platform/qt/ColorButton.h"
#include "platform/qt/QtText.h"
#include "platform/qt/SourceHighlighter.h"

namespace pw {

namespace {

constexpr std::size_t lineEndBytes = 2;  // CR LF outside, one place in the view

class LineNumbers : public QWidget {
  public:
    explicit LineNumbers(SourceView* view) : QWidget(view), view_(view) {}
    QSize sizeHint() const override { return QSize(view_->lineNumberWidth(), 0); }

  protected:
    void paintEvent(QPaintEvent* event) override { view_->paintLineNumbers(event); }

  private:
    SourceView* view_;
};

std::size_t utf8Length(QStringView text) {
    std::size_t bytes = 0;
    for (const QChar c : text) {
        // Each half of a surrogate pair stands for two of its four bytes.
        const char16_t unit = c.unicode();
        bytes += unit < 0x80 ? 1U : unit < 0x800 || c.isSurrogate() ? 2U : 3U;
    }
    return bytes;
}

}  // namespace

SourceView::SourceView(QWidget* parent)
    : QPlainTextEdit(parent),
      highlighter_(new SourceHighlighter(*document())),
      lineNumbers_(new LineNumbers(this)) {
    QFont fixed(QStringLiteral("Courier New"));
    fixed.setStyleHint(QFont::Monospace);
    if (!QFontInfo(fixed).fixedPitch()) {
        fixed = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    }
    fixed.setPointSizeF(qMax(10.0, font().pointSizeF()));
    setFont(fixed);
    setFrameShape(QFrame::NoFrame);
    setAccessibleName(tr("HTML source"));
    connect(this, &QPlainTextEdit::cursorPositionChanged, this, &SourceView::markCurrentLine);
    connect(this, &QPlainTextEdit::blockCountChanged, this, &SourceView::placeLineNumbers);
    connect(this, &QPlainTextEdit::updateRequest, this, [this](const QRect& rect, int dy) {
        if (dy != 0) {
            lineNumbers_->scroll(0, dy);
        } else {
            lineNumbers_->update(0, rect.y(), lineNumbers_->width(), rect.height());
        }
    });
    connect(document(), &QTextDocument::contentsChange, this, [this] {
        if (!setting_ && events.typed) events.typed();
    });
    showColors({});
    placeLineNumbers();
}

// --- Text and selection -------------------------------------------------------------------------

std::string SourceView::Text() const {
    // Not toPlainText, which makes blanks of non-breaking ones.
    std::string text;
    for (QTextBlock block = document()->begin(); block.isValid(); block = block.next()) {
        if (block != document()->begin()) text += "\r\n";
        const QByteArray line = block.text().toUtf8();
        text.append(line.constData(), std::size_t(line.size()));
    }
    return text;
}

void SourceView::SetText(const std::string& text, const SourceColors& colors) {
    setting_ = true;
    setPlainText(toQt(ReplaceAll(text, "\r\n", "\n")));
    setting_ = false;
    moveCursor(QTextCursor::Start);
    verticalScrollBar()->setValue(0);
    showColors(colors);
}

void SourceView::Recolor(const SourceColors& colors) {
    showColors(colors);
}

std::unique_ptr<QTextDocument> SourceView::forPaper() const {
    auto paper = std::make_unique<QTextDocument>();
    paper->setDocumentLayout(new QPlainTextDocumentLayout(paper.get()));  // the quick one
    paper->setDefaultFont(font());
    paper->setPlainText(
        document()->toRawText().replace(QChar::ParagraphSeparator, QLatin1Char('\n')));
    SourceHighlighter coloring(*paper);
    // What is bright enough for a dark background can not be read on white: plain text can.
    const bool dark = SourceHighlighter::textColor(colors_) != QColor(Qt::black);
    coloring.reset(dark ? SourceColors{} : colors_);
    coloring.color(0, paper->blockCount() - 1);
    return paper;
}

void SourceView::showColors(const SourceColors& colors) {
    colors_ = colors;
    QPalette chosen = palette();
    chosen.setColor(QPalette::Base, toQColor(colors.background));
    chosen.setColor(QPalette::Text, SourceHighlighter::textColor(colors));
    setPalette(chosen);
    highlighter_->reset(colors);
    markCurrentLine();
    viewport()->update();
    lineNumbers_->update();
}

std::size_t SourceView::byteOffset(int position) const {
    std::size_t offset = 0;
    for (QTextBlock block = document()->begin(); block.isValid(); block = block.next()) {
        const QString text = block.text();
        const int inside = position - block.position();
        if (inside <= text.size()) return offset + utf8Length(QStringView(text).left(inside));
        offset += utf8Length(text) + lineEndBytes;
    }
    return offset;
}

int SourceView::positionOf(std::size_t byteOffset) const {
    std::size_t left = byteOffset;
    for (QTextBlock block = document()->begin(); block.isValid(); block = block.next()) {
        const QString text = block.text();
        const std::size_t length = utf8Length(text);
        if (left <= length) {
            int inside = 0;
            while (left > 0 && inside < text.size()) {
                const bool pair = text[inside].isHighSurrogate() && inside + 1 < text.size();
                const int units = pair ? 2 : 1;
                const std::size_t bytes = utf8Length(QStringView(text).mid(inside, units));
                if (bytes > left) break;
                left -= bytes;
                inside += units;
            }
            return block.position() + inside;
        }
        left -= length;
        // Between CR and LF is the end of the line.
        if (left < lineEndBytes) return block.position() + int(text.size());
        left -= lineEndBytes;
    }
    return document()->characterCount() - 1;
}

std::size_t SourceView::SelStart() const {
    return byteOffset(textCursor().selectionStart());
}

std::size_t SourceView::SelLength() const {
    const QTextCursor cursor = textCursor();
    if (!cursor.hasSelection()) return 0;
    return byteOffset(cursor.selectionEnd()) - byteOffset(cursor.selectionStart());
}

void SourceView::Select(std::size_t start, std::size_t length) {
    QTextCursor cursor = textCursor();
    cursor.setPosition(positionOf(start));
    cursor.setPosition(positionOf(start + length), QTextCursor::KeepAnchor);
    setTextCursor(cursor);
    ensureCursorVisible();
}

void SourceView::ReplaceSelection(const std::string& text) {
    textCursor().insertText(toQt(ReplaceAll(text, "\r\n", "\n")));
}

// --- What the user does -------------------------------------------------------------------------

void SourceView::mousePressEvent(QMouseEvent* event) {
    QPlainTextEdit::mousePressEvent(event);
    if (events.mouseDown) events.mouseDown();
}

void SourceView::keyPressEvent(QKeyEvent* event) {
    // A line break inside a block would come back as a line end that was never there.
    if (event->key() == Qt::Key_Return && event->modifiers() == Qt::ShiftModifier) {
        QKeyEvent plain(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier, event->text());
        QPlainTextEdit::keyPressEvent(&plain);
    } else {
        QPlainTextEdit::keyPressEvent(event);
    }
}

void SourceView::wheelEvent(QWheelEvent* event) {
    if (!(event->modifiers() & Qt::ControlModifier)) return QPlainTextEdit::wheelEvent(event);
    constexpr int notch = 120;
    turned_ += event->angleDelta().y();
    zoomBy(turned_ / notch);
    turned_ %= notch;
    event->accept();
}

void SourceView::zoomBy(int points) {
    QFont sized = font();
    sized.setPointSizeF(qBound(6.0, sized.pointSizeF() + points, 48.0));
    setFont(sized);
}

void SourceView::changeEvent(QEvent* event) {
    QPlainTextEdit::changeEvent(event);
    if (event->type() != QEvent::FontChange || !lineNumbers_) return;
    setTabStopDistance(4 * fontMetrics().horizontalAdvance(QLatin1Char(' ')));
    placeLineNumbers();
    lineNumbers_->update();
}

void SourceView::insertFromMimeData(const QMimeData* source) {
    // As text, whatever else the clipboard holds.
    if (source->hasText()) textCursor().insertText(source->text());
    ensureCursorVisible();
}

// --- Painting -----------------------------------------------------------------------------------

int SourceView::lastVisibleBlock() const {
    QTextBlock block = firstVisibleBlock();
    qreal top = blockBoundingGeometry(block).translated(contentOffset()).top();
    int last = block.blockNumber();
    while (block.isValid() && top <= viewport()->height()) {
        last = block.blockNumber();
        top += blockBoundingRect(block).height();
        block = block.next();
    }
    return last;
}

void SourceView::paintEvent(QPaintEvent* event) {
    highlighter_->color(firstVisibleBlock().blockNumber(), lastVisibleBlock());
    QPlainTextEdit::paintEvent(event);
}

int SourceView::lineNumberWidth() const {
    int digits = 3;
    for (int count = blockCount(); count >= 1000; count /= 10)
        ++digits;
    return 16 + fontMetrics().horizontalAdvance(QLatin1Char('9')) * digits;
}

void SourceView::placeLineNumbers() {
    const int width = lineNumberWidth();
    setViewportMargins(width, 0, 0, 0);
    const QRect inside = contentsRect();
    lineNumbers_->setGeometry(inside.left(), inside.top(), width, inside.height());
}

void SourceView::resizeEvent(QResizeEvent* event) {
    QPlainTextEdit::resizeEvent(event);
    placeLineNumbers();
}

QColor SourceView::shade(int share) const {
    const QColor base = palette().color(QPalette::Base);
    const QColor text = palette().color(QPalette::Text);
    const auto mixed = [share](int from, int to) {
        return (from * (100 - share) + to * share) / 100;
    };
    return QColor(mixed(base.red(), text.red()), mixed(base.green(), text.green()),
                  mixed(base.blue(), text.blue()));
}

void SourceView::markCurrentLine() {
    QTextEdit::ExtraSelection line;
    line.format.setBackground(shade(6));
    line.format.setProperty(QTextFormat::FullWidthSelection, true);
    line.cursor = textCursor();
    line.cursor.clearSelection();
    setExtraSelections({line});
}

void SourceView::paintLineNumbers(QPaintEvent* event) {
    QPainter painter(lineNumbers_);
    painter.fillRect(event->rect(), shade(5));
    painter.setFont(font());
    const int current = textCursor().blockNumber();
    QTextBlock block = firstVisibleBlock();
    qreal top = blockBoundingGeometry(block).translated(contentOffset()).top();
    while (block.isValid() && top <= event->rect().bottom()) {
        const qreal height = blockBoundingRect(block).height();
        if (block.isVisible() && top + height >= event->rect().top()) {
            painter.setPen(shade(block.blockNumber() == current ? 80 : 45));
            painter.drawText(QRectF(0, top, lineNumbers_->width() - 8, fontMetrics().height()),
                             Qt::AlignRight, QString::number(block.blockNumber() + 1));
        }
        top += height;
        block = block.next();
    }
}

}  // namespace pw
