#pragma once
#include <QFrame>
#include <QLabel>

namespace pw {

/** A panel of the status bar: a small icon and a text that gives way when there is no room. */
class StatusPanel : public QFrame {
    Q_OBJECT
  public:
    explicit StatusPanel(QWidget* parent = nullptr);
    void setText(const QString& text);
    QString text() const { return text_; }
    /** Number in the main image list; 0 for none. */
    void setImage(int image);
    /** Takes what room the others leave, whatever its text. */
    void setYielding();
    /** Room for all of the text. */
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

  signals:
    void pressed(const QPoint& globalPosition);

  protected:
    void mousePressEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

  private:
    void showText();
    void showImage();
    QLabel* icon_;
    QLabel* label_;
    QString text_;
    int image_ = 0;
};

}  // namespace pw
