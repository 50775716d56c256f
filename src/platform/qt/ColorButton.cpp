#include "platform/qt/ColorButton.h"

#include <QPainter>
#include <QStyleOptionToolButton>
#include <QStylePainter>

namespace pw {

QColor toQColor(Color color) {
    return QColor(int(color & 0xFF), int(color >> 8 & 0xFF), int(color >> 16 & 0xFF));
}

Color fromQColor(const QColor& color) {
    return Color(color.red()) | Color(color.green()) << 8 | Color(color.blue()) << 16;
}

ColorButton::ColorButton(QWidget* parent) : QToolButton(parent) {
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Minimum, QSizePolicy::Fixed);
    setColor(0);
}

void ColorButton::setColor(Color color) {
    color_ = color;
    setToolTip(toQColor(color).name().toUpper());
    update();
}

QSize ColorButton::sizeHint() const {
    return QSize(fontMetrics().horizontalAdvance(QStringLiteral("#DDDDDD")) + 48,
                 fontMetrics().height() + 12);
}

void ColorButton::paintEvent(QPaintEvent*) {
    QStylePainter painter(this);
    QStyleOptionToolButton option;
    initStyleOption(&option);
    option.text.clear();
    option.icon = QIcon();
    option.toolButtonStyle = Qt::ToolButtonIconOnly;
    painter.drawComplexControl(QStyle::CC_ToolButton, option);

    // The swatch, and beside it the value for those who tell colours badly.
    const int side = height() - 12;
    const QRect swatch(8, 6, side + 8, side);
    QColor fill = toQColor(color_);
    if (!isEnabled()) fill.setAlphaF(0.3F);
    painter.setPen(palette().color(QPalette::Mid));
    painter.setBrush(fill);
    painter.drawRect(swatch.adjusted(0, 0, -1, -1));
    painter.setPen(
        palette().color(isEnabled() ? QPalette::Active : QPalette::Disabled, QPalette::ButtonText));
    painter.drawText(rect().adjusted(swatch.right() + 8, 0, -4, 0),
                     Qt::AlignVCenter | Qt::AlignLeft, toQColor(color_).name().toUpper());
}

}  // namespace pw
