#pragma once
#include <QPlainTextEdit>
#include <QTextCursor>

#include <functional>
#include <memory>

#include "mainwindow/Surfaces.h"

namespace pw {

class SourceHighlighter;

/** The source of a page: coloured, with the numbers of its lines. */
class SourceView : public QPlainTextEdit, public SourceBox {
    Q_OBJECT
  public:
    explicit SourceView(QWidget* parent = nullptr);

    std::string Text() const override;
    void SetText(const std::string& text, const SourceColors& colors) override;
    void Recolor(const SourceColors& colors) override;
    std::size_t SelStart() const override;
    std::size_t SelLength() const override;
    void Select(std::size_t start, std::size_t length) override;
    void ReplaceSelection(const std::string& text) override;
    void Undo() override { undo(); }
    void Redo() override { redo(); }
    void Cut() override { cut(); }
    void Copy() override { copy(); }
    void Paste() override { paste(); }
    bool CanUndo() const override { return document()->isUndoAvailable(); }
    bool CanRedo() const override { return document()->isRedoAvailable(); }
    void SetFocus() override { setFocus(); }

    struct Events {
        std::function<void()> typed;
        std::function<void()> mouseDown;
    };
    Events events;

    int lineNumberWidth() const;
    void paintLineNumbers(QPaintEvent* event);
    /** A copy of the text, wholly coloured, for white paper. */
    std::unique_ptr<QTextDocument> forPaper() const;
    SourceHighlighter& highlighter() { return *highlighter_; }

  protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void changeEvent(QEvent* event) override;
    void insertFromMimeData(const QMimeData* source) override;

  private:
    void showColors(const SourceColors& colors);
    void placeLineNumbers();
    void markCurrentLine();
    void zoomBy(int points);
    /** The background with a share (0 to 100) of the text's colour in it. */
    QColor shade(int share) const;
    int lastVisibleBlock() const;
    std::size_t byteOffset(int position) const;
    int positionOf(std::size_t byteOffset) const;

    SourceHighlighter* highlighter_;
    QWidget* lineNumbers_ = nullptr;
    int turned_ = 0;  ///< of the wheel, less than a notch
    SourceColors colors_;
    bool setting_ = false;
};

}  // namespace pw
