#pragma once
// How large a browser view shows its page: Ctrl with the wheel, with plus and minus, and with 0 for
// the size that it is. It belongs to the view and never gets into the page.

class QEvent;
class QWebEngineView;

namespace pw {

class PageZoom {
  public:
    /** The view must outlive it. */
    explicit PageZoom(QWebEngineView& view) : view_(view) {}

    /** A quick look at an event of whatever widget: can it be one for `takes`? */
    static bool concerns(const QEvent& event);
    /** True when an event of the view was a zooming one, which goes no further. */
    bool takes(QEvent& event);
    /** After a load, which may forget it. */
    void restore();

  private:
    void step(int steps);

    QWebEngineView& view_;
    double factor_ = 1;
    int turned_ = 0;  ///< of the wheel, in eighths of a degree, towards the next step
};

}  // namespace pw
