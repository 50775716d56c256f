#pragma once
#include <QToolButton>

#include "platform/DialogHost.h"

namespace pw {

QColor toQColor(Color color);
Color fromQColor(const QColor& color);

/** A button that shows a colour and its value. */
class ColorButton : public QToolButton {
    Q_OBJECT
  public:
    explicit ColorButton(QWidget* parent = nullptr);
    void setColor(Color color);
    Color color() const { return color_; }
    QSize sizeHint() const override;

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    Color color_ = 0;
};

}  // namespace pw
