#pragma once
// The main window on the screen: menus and toolbars, the explorers beside the page windows, the
// status bar. It decides nothing; what the user does goes to its events and to the controls.
#include <QMainWindow>
#include <QMdiArea>
#include <QPointer>
#include <QTimer>

#include <map>
#include <memory>

#include "mainwindow/Surfaces.h"
#include "platform/controls/CommandBar.h"
#include "platform/qt/EditorFactory.h"

class QSplitter;
class QStackedWidget;

namespace pw {

class CommandBarView;
class ExplorerPane;
class FormBinder;
class StatusPanel;
class WelcomePage;

/** What the user does to the frame of the window, apart from commands and controls. */
struct MainWindowActions {
    std::function<void(int tool)> explorerClosed;  ///< 209, 210 or 211
    std::function<void(int pane)> paneFocused;     ///< 0 page, 1 project, 2 page explorer, 3 tasks
    std::function<void(int panel)> panelPressed;   ///< of the status bar
    std::function<void(int topic)> help;
};

class MainWindow : public QMainWindow, public MainWindowSurface {
    Q_OBJECT
  public:
    explicit MainWindow(EditorFactory editors = {});
    ~MainWindow() override;

    /** Shows these from now on. Both must outlive the window, or a call of `unbind`. `menuBar` and
     *  `toolBars` are the bands of the menu bar and of the list of toolbars. */
    void bind(ControlOwner& controls, CommandBar& bar, MainWindowActions actions,
              const std::string& menuBar = "mnuMain",
              const std::string& toolBars = "mnuViewToolbars");
    void unbind();
    CommandBarView* bars() const { return bars_.get(); }
    QMdiArea& pages() { return *pages_; }

    std::unique_ptr<DocumentSurface> CreateDocument() override;
    void SetCaption(const std::string& caption) override;
    void Arrange(Arrangement how) override;
    bool IsForeground() const override;
    bool IsMinimised() const override;
    bool IsMaximised() const override;
    WindowGeometry Geometry() const override;
    void SetGeometry(const WindowGeometry& geometry) override;
    void Maximise() override;
    WindowGeometry Screen() const override;
    void Show() override;
    void Hide() override;
    void Close() override;
    void SetBusyPointer(bool busy) override;
    void ShowWelcome(bool show, const std::vector<std::string>& recentProjects) override;
    std::vector<std::string> FontNames() const override;
    void SetAutoSaveTimer(int milliseconds, std::function<void()> tick) override;

    QMenu* createPopupMenu() override;
    QSize sizeHint() const override;

  protected:
    void closeEvent(QCloseEvent* event) override;
    void changeEvent(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void makePanes();
    void makeWelcome();
    void makeStatusBar();
    void arrangeToolBars();
    void tile(Qt::Orientation direction);
    void cascade();
    void addExplorer(ExplorerPane* pane, int number, int tool);
    void focusMoved(const QWidget* now);
    void showColors();

    EditorFactory editors_;
    MainWindowActions actions_;
    CommandBar* bar_ = nullptr;
    std::string toolBarList_;
    std::string menuBar_;

    QStackedWidget* centre_ = nullptr;
    WelcomePage* welcome_ = nullptr;
    QMdiArea* pages_ = nullptr;
    std::map<int, QWidget*> panes_;  ///< by the number that the Edit commands know them by
    QPointer<QWidget> activePage_;
    std::unique_ptr<FormBinder> binder_;
    std::unique_ptr<CommandBarView> bars_;
    QTimer autoSave_;
    std::function<void()> autoSaveTick_;
    QTimer idle_;
    bool busy_ = false;
};

}  // namespace pw
