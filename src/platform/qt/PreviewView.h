#pragma once
#include <QStackedWidget>
#include <optional>

#include "platform/EditorSurface.h"
#include "platform/qt/editor/PageZoom.h"

class QWebEngineView;

namespace pw {

/** Shows a page as a visitor sees it, scripts running. Nothing in it can be edited. The browser
 *  view is made when it is first needed. */
class PreviewView : public QWidget, public EditorSurface {
    Q_OBJECT
  public:
    explicit PreviewView(QWidget* parent = nullptr);
    void showHtml(const std::string& html, const std::string& baseUrl);

    void Show(dom::Document& document, const std::string& baseUrl) override;
    bool Busy() const override { return loading_; }
    void Flush() override {}
    CommandState QueryState(const std::string& command) const override;
    std::string QueryValue(const std::string&) const override { return {}; }
    bool Execute(const std::string& command, const std::string& argument) override;
    void SetFocus() override;
    void ScrollIntoView(const dom::Node&) override {}
    void SetGrid(int, int) override {}
    void SetShowBorders(bool) override {}
    void SetShowTags(bool) override {}
    void SetSnapToGrid(bool) override {}
    void Refresh() override;
    bool Capture(const std::string& path) override;

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    class Page;
    class PassingPage;
    QWebEngineView& view();
    QWebEngineView* view_ = nullptr;
    std::optional<PageZoom> zoom_;  ///< of view_
    bool loading_ = false;
};

}  // namespace pw
