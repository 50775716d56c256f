#pragma once
// The window of one open page: the editor, the source and the preview on top of each other, and
// the strip of tabs that leads from one to the other.
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QPointer>
#include <QStackedWidget>
#include <QTabBar>

#include "mainwindow/Surfaces.h"
#include "platform/qt/EditorFactory.h"
#include "platform/qt/PreviewView.h"
#include "platform/qt/Printing.h"
#include "platform/qt/SourceView.h"

namespace pw {

/** The frame of a page window; asks before it closes. */
class DocumentFrame : public QMdiSubWindow {
    Q_OBJECT
  public:
    explicit DocumentFrame(DocumentSurface& page) : page_(&page) {}
    /** The page is gone; the frame goes when the event it is in is over. */
    void forgetPage() { page_ = nullptr; }
    void tellActivated();

  protected:
    void closeEvent(QCloseEvent* event) override;

  private:
    DocumentSurface* page_;
};

class DocumentWindow : public QObject, public DocumentSurface {
    Q_OBJECT
  public:
    DocumentWindow(QMdiArea& area, const EditorFactory& editors);
    ~DocumentWindow() override;

    EditorSurface* Editor() override { return editor_.surface; }
    EditorSurface* Browser() override { return preview_; }
    SourceBox& Source() override { return *source_; }
    void SetCaption(const std::string& caption) override;
    void SetIcon(int image) override;
    void ShowView(View view) override;
    void SetViewTabs(int count, View selected) override;
    void ShowPreview(const std::string& html, const std::string& baseUrl) override;
    bool Print(const std::string& title) override;
    void BringToFront() override;
    bool IsVisible() const override;

    /** What Print does when the user has chosen. */
    bool printTo(std::unique_ptr<QPrinter> printer);

    QMdiSubWindow* frame() const { return frame_; }
    QTabBar& tabs() { return *tabs_; }
    QStackedWidget& views() { return *views_; }

  private:
    void makeTabs();
    void tabPressed(int index);
    View viewOf(int index) const;
    int indexOf(View view) const;

    QMdiArea& area_;
    QPointer<DocumentFrame> frame_;
    QStackedWidget* views_;
    EditorParts editor_;
    SourceView* source_;
    PreviewView* preview_;
    QTabBar* tabs_;
    View selected_ = View::Normal;
};

}  // namespace pw
