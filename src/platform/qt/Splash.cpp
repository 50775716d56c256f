#include "platform/qt/Splash.h"

#include <QPainter>
#include <QScreen>

#include "platform/qt/FormBinder.h"
#include "platform/qt/QtText.h"

namespace pw {

class Splash::Picture : public QWidget {
  public:
    explicit Picture(const frmAbout& about)
        : QWidget(nullptr, Qt::SplashScreen | Qt::FramelessWindowHint),
          icon_(programIcon()),
          title_(toQt(about.lblTitle.Caption())),
          lines_(toQt(about.lblVersion.Caption()) + QLatin1Char('\n') +
                 toQt(about.lblCopyright.Caption())) {
        setWindowTitle(toQt(about.Title()));
        large_.setPointSizeF(font().pointSizeF() * 1.8);
        // As wide as the longest line; a distributor's name can make a long title.
        const int title = QFontMetrics(large_).horizontalAdvance(title_);
        const int lines = fontMetrics().boundingRect(QRect(), 0, lines_).width();
        resize(3 * kMargin + kIcon + qMax(title, lines) + kMargin, 130);
        move(screen()->availableGeometry().center() - rect().center());
    }

  protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setPen(palette().color(QPalette::Mid));
        painter.drawRect(rect().adjusted(0, 0, -1, -1));
        painter.drawPixmap(kMargin, kMargin, icon_.pixmap(kIcon, kIcon));
        painter.setPen(palette().color(QPalette::WindowText));
        QRect text = rect().adjusted(kMargin + kIcon + kMargin, kMargin, -kMargin, -kMargin);
        painter.setFont(large_);
        painter.drawText(text, title_);
        text.setTop(text.top() + QFontMetrics(large_).lineSpacing() + kMargin / 4);
        painter.setFont(font());
        painter.drawText(text, 0, lines_);
    }

  private:
    static constexpr int kMargin = 24;
    static constexpr int kIcon = 72;
    QFont large_ = font();
    QIcon icon_;
    QString title_;
    QString lines_;
};

Splash::Splash(FrameContext& context) : about_(context) {}

void Splash::Show() {
    picture_ = std::make_unique<Picture>(about_);
    picture_->show();
    // Nothing lets events through before the main window is up: what is to be seen is drawn now.
    picture_->repaint();
}

void Splash::SetTopmost(bool topmost) {
    if (picture_ && topmost) picture_->raise();
}

void Splash::Close() {
    picture_.reset();
}

}  // namespace pw
