#pragma once
#include <QWidget>

#include <memory>

#include "mainwindow/Program.h"
#include "mainwindow/frmAbout.h"

namespace pw {

/** The picture that stands while the program starts: frmAbout without what can be pressed, in the
 *  middle of the screen. It is drawn from the dialog's texts and not from its form, which takes
 *  longer to load than the start should lose. */
class Splash : public SplashSurface {
  public:
    explicit Splash(FrameContext& context);
    void Show() override;
    void SetTopmost(bool topmost) override;
    void Close() override;

  private:
    class Picture;
    frmAbout about_;
    std::unique_ptr<QWidget> picture_;
};

}  // namespace pw
