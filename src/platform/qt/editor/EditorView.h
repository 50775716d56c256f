#pragma once
// The page as the user sees and edits it: a browser view that shows a dom::Document and sends back
// what is typed into it. The document is the truth; the view can die and is shown anew from it.
#include <QHash>
#include <QTimer>
#include <QWebChannel>
#include <QWebEngineView>
#include <QWidget>
#include <functional>
#include <memory>

#include "platform/EditorSurface.h"
#include "platform/dom/Projection.h"
#include "platform/qt/EditorFactory.h"
#include "platform/qt/editor/EditorPage.h"
#include "platform/qt/editor/EventRelay.h"
#include "platform/qt/editor/PageZoom.h"

namespace pw {

class EditorBridge;

class EditorView : public QWidget, public EditorSurface {
    Q_OBJECT

  public:
    explicit EditorView(QWidget* parent = nullptr);
    ~EditorView() override;

    void Show(dom::Document& document, const std::string& baseUrl) override;
    void Clear() override;
    bool Busy() const override;
    void Flush() override;
    CommandState QueryState(const std::string& command) const override;
    std::string QueryValue(const std::string& command) const override;
    bool Execute(const std::string& command, const std::string& argument) override;
    std::optional<Placement> FreePlaceOf(const dom::Node& element) override;
    void MarkCells(const std::vector<dom::Node*>& cells) override;
    void SetFocus() override;
    void ScrollIntoView(const dom::Node& element) override;
    void ScrollToSelection() override;
    void SetGrid(int x, int y) override;
    void SetShowBorders(bool show) override;
    void SetShowTags(bool show) override;
    void SetSnapToGrid(bool snap) override;
    void Refresh() override;
    bool Capture(const std::string& path) override;

    QWebEngineView* view() const { return view_; }
    /** How long a command of the browser engine may take, in milliseconds. Some never end on
     *  markup that is odd enough; the page is then shown anew, without the command. */
    void setPatience(int milliseconds) { patience_ = milliseconds; }

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void connectBridge();
    void loadSkeleton();
    void viewReady(int token);
    void askAgain();
    void askSkeleton();
    void takeBatch(const QString& json);
    void takeState(const QString& json);
    void sendOutgoing();
    void sendSoon();
    /** False when the renderer has died or the page was loaded anew meanwhile. */
    bool flushOnce();
    void rendererDied();
    void giveUp();
    void endRenderer();
    void run(const QString& script);
    void configure();
    /** Lets events through, the user's excepted, until it holds or the view is gone. */
    bool waitFor(const std::function<bool()>& condition);

    enum class Life { Empty, Loading, Alive, Dead };

    EditorWebView* view_;
    PageZoom zoom_;
    QWebChannel channel_;
    EditorBridge* bridge_;
    EventRelay relay_;
    dom::Document* document_ = nullptr;
    std::unique_ptr<dom::Projection> projection_;
    QString baseUrl_;
    std::string doctype_;  ///< of the skeleton
    Life life_ = Life::Empty;
    int generation_ = 0;    ///< counts the skeletons loaded
    std::string prepared_;  ///< snapshot made while the renderer starts, and its revision
    std::uint64_t preparedRevision_ = 0;
    int deaths_ = 0;  ///< in a row, without a page shown between them
    int lastToken_ = 0;
    int syncedToken_ = 0;
    int executedToken_ = 0;
    bool executedDone_ = false;
    int placeToken_ = 0;
    QString freePlace_;
    int keysSent_ = 0;
    int keysSeen_ = 0;
    bool untouched_ = false;  ///< since its load: neither the user nor a script was at it
    bool sendPosted_ = false;
    QTimer loadTimer_;  ///< runs until the skeleton reports itself
    int loadTicks_ = 0;
    bool skeletonAnswers_ = false;
    QTimer stateTimer_;  ///< runs until the hand rests
    QHash<QString, int> states_;
    QHash<QString, QString> values_;
    int patience_ = 60'000;
    int gridX_ = 50;
    int gridY_ = 50;
    bool borders_ = false;
    bool tags_ = false;
    bool snap_ = false;
};

/** The factory of editors (EditorFactory) with a real browser view. */
EditorParts makeEditor(QWidget* parent);

}  // namespace pw
