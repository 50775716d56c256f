#include "platform/qt/StatusPanel.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QMouseEvent>

#include "platform/qt/ImageList.h"

namespace pw {

namespace {
constexpr int margin = 6;
constexpr int iconSize = 16;
constexpr int smallest = 60;
}  // namespace

StatusPanel::StatusPanel(QWidget* parent)
    : QFrame(parent), icon_(new QLabel(this)), label_(new QLabel(this)) {
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(margin, 0, margin, 0);
    layout->setSpacing(margin);
    layout->addWidget(icon_);
    layout->addWidget(label_, 1);
    label_->setTextFormat(Qt::PlainText);
    label_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    icon_->hide();
}

void StatusPanel::setText(const QString& text) {
    text_ = text;
    setAccessibleName(text);
    updateGeometry();
    showText();
}

void StatusPanel::setImage(int image) {
    if (image_ == image) return;
    image_ = image;
    showImage();
}

void StatusPanel::showImage() {
    const QIcon icon = imageIcon(image_);
    icon_->setVisible(!icon.isNull());
    updateGeometry();
    icon_->setPixmap(icon.pixmap(QSize(iconSize, iconSize), devicePixelRatioF()));
}

void StatusPanel::setYielding() {
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
}

QSize StatusPanel::sizeHint() const {
    const int icon = icon_->isHidden() ? 0 : iconSize + margin;
    // One pixel more: widths of texts are rounded.
    const int text = label_->fontMetrics().horizontalAdvance(text_) + 1;
    return QSize(icon + text + 2 * (margin + frameWidth()), QFrame::sizeHint().height());
}

QSize StatusPanel::minimumSizeHint() const {
    return QSize(smallest, QFrame::minimumSizeHint().height());
}

void StatusPanel::showText() {
    label_->setText(label_->fontMetrics().elidedText(text_, Qt::ElideRight, label_->width()));
}

void StatusPanel::mousePressEvent(QMouseEvent* event) {
    emit pressed(event->globalPosition().toPoint());
}

void StatusPanel::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Space || event->key() == Qt::Key_Return) {
        emit pressed(mapToGlobal(QPoint(0, 0)));
    } else {
        QFrame::keyPressEvent(event);
    }
}

void StatusPanel::resizeEvent(QResizeEvent* event) {
    QFrame::resizeEvent(event);
    showText();
}

void StatusPanel::changeEvent(QEvent* event) {
    QFrame::changeEvent(event);
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::StyleChange) showImage();
}

}  // namespace pw
