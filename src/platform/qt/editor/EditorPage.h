#pragma once
// What the editing view is made of: the browser widget, and the page in it with the editor's
// scripts and without those of the page that is edited.
#include <QWebEnginePage>
#include <QWebEngineScript>
#include <QWebEngineView>

namespace pw {

/** The page of the editor goes nowhere: whatever would leave it is a link in the text. */
class EditorPage : public QWebEnginePage {
  public:
    /** The editor's scripts live apart from the page's. */
    static constexpr QWebEngineScript::ScriptWorldId world = QWebEngineScript::ApplicationWorld;

    explicit EditorPage(QObject* parent);
    /** All of the editor's scripts; they report the view when they have run. */
    static const QString& scriptText();

    bool allowed = false;  ///< while the program itself loads

  protected:
    bool acceptNavigationRequest(const QUrl& url, NavigationType type, bool mainFrame) override;
    QWebEnginePage* createWindow(WebWindowType) override { return nullptr; }
    void javaScriptConsoleMessage(JavaScriptConsoleMessageLevel level, const QString& message,
                                  int line, const QString& source) override;
};

/** The browser widget, with the drops that a page cannot handle itself. */
class EditorWebView : public QWebEngineView {
    Q_OBJECT

  public:
    using QWebEngineView::QWebEngineView;

  signals:
    /** Files of this machine were dropped; paths as the system writes them. */
    void filesDropped(const QPoint& place, const QStringList& paths);

  protected:
    void dropEvent(QDropEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
};

}  // namespace pw
