#pragma once
#include <QDBusVariant>
#include <QObject>

class QApplication;

namespace pw {

enum class ColorScheme { AsDesktop, Light, Dark };

/** Style, colours and icons as the desktop has them; where it gives none, Fusion and the Breeze
 *  icons, light or dark by the palette. Follows when the desktop changes its mind. */
class Theme : public QObject {
    Q_OBJECT
  public:
    explicit Theme(QApplication& application, ColorScheme scheme = ColorScheme::AsDesktop);
    void setScheme(ColorScheme scheme);
    static bool isDark();

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private slots:
    void desktopChanged(const QString& group, const QString& name, const QDBusVariant& value);

  private:
    void askDesktop();
    void desktopAnswered(QVariant value);
    void chooseIcons();
    QApplication& application_;
    bool ownIcons_ = false;  ///< the desktop named no icon theme, or one that is not there
};

}  // namespace pw
