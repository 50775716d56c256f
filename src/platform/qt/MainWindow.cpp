#include "platform/qt/MainWindow.h"

#include <QApplication>
#include <QCloseEvent>
#include <QFontDatabase>
#include <QHeaderView>
#include <QMdiSubWindow>
#include <QProgressBar>
#include <QScreen>
#include <QSplitter>
#include <QStackedWidget>
#include <QStatusBar>
#include <QStyledItemDelegate>
#include <QTreeView>
#include <QVBoxLayout>

#include "platform/qt/CommandBarView.h"
#include "platform/qt/DocumentWindow.h"
#include "platform/qt/ExplorerPane.h"
#include "platform/qt/FormBinder.h"
#include "platform/qt/QtText.h"
#include "platform/qt/StatusPanel.h"
#include "platform/qt/WelcomePage.h"

namespace pw {

namespace {

constexpr int twipsToPixel = 15;
constexpr int idleMilliseconds = 3000;
constexpr int cascadeStep = 28;

/** The panes by the numbers that the Edit commands know them by. */
enum PaneNumber { pagePane = 0, projectPane = 1, pageExplorerPane = 2, taskPane = 3 };

/** The toolbars by rows; those that are not named come last. The rows that beginners see are full
 *  without being too wide for a small screen. */
const QList<QStringList> toolBarRows = {
    {"Standard", "Insert", "Insert Advanced"}, {"Format", "Table"}, {"Forms", "Layering"}};

/** A little air between the rows. */
class RowDelegate : public QStyledItemDelegate {
  public:
    using QStyledItemDelegate::QStyledItemDelegate;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
        const QSize size = QStyledItemDelegate::sizeHint(option, index);
        return QSize(size.width(), qMax(size.height(), option.fontMetrics.height()) + 4);
    }
};

QTreeView* makeExplorer(const QString& name) {
    auto* view = new QTreeView;
    view->setObjectName(name);
    view->setFrameShape(QFrame::NoFrame);
    view->setIconSize(QSize(16, 16));
    view->setItemDelegate(new RowDelegate(view));
    return view;
}

}  // namespace

MainWindow::MainWindow(EditorFactory editors) : editors_(std::move(editors)) {
    setObjectName(QStringLiteral("frmMDIMain"));
    setWindowTitle(QStringLiteral("Pagewick"));
    QApplication::setWindowIcon(programIcon());
    setDockOptions(QMainWindow::AnimatedDocks);
    setUnifiedTitleAndToolBarOnMac(true);
    makePanes();
    makeStatusBar();
    connect(&autoSave_, &QTimer::timeout, this, [this] {
        if (autoSaveTick_) autoSaveTick_();
    });
    idle_.setSingleShot(true);
    idle_.setInterval(idleMilliseconds);
    connect(&idle_, &QTimer::timeout, this, [this] {
        if (events.idle) events.idle();
    });
    qApp->installEventFilter(this);
    connect(qApp, &QApplication::focusChanged, this,
            [this](const QWidget*, const QWidget* now) { focusMoved(now); });
    showColors();
}

MainWindow::~MainWindow() {
    SetBusyPointer(false);
    unbind();
}

void MainWindow::makePanes() {
    pages_ = new QMdiArea(this);
    pages_->setObjectName(QStringLiteral("pages"));
    pages_->setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    pages_->setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    pages_->setActivationOrder(QMdiArea::ActivationHistoryOrder);
    panes_[pagePane] = pages_;
    connect(pages_, &QMdiArea::subWindowActivated, this, [this](QMdiSubWindow* window) {
        // Told again whenever the program comes to the front; that is no change.
        if (!window || window == activePage_) return;
        activePage_ = window;
        if (auto* page = qobject_cast<DocumentFrame*>(window)) page->tellActivated();
    });
    centre_ = new QStackedWidget(this);
    centre_->addWidget(pages_);

    auto* project = new ExplorerPane(QStringLiteral("picProjectExplorer"), tr("Project Explorer"),
                                     makeExplorer(QStringLiteral("tvwProjectExplorer")), this);
    auto* page = new ExplorerPane(QStringLiteral("picPageExplorer"), tr("Page Explorer"),
                                  makeExplorer(QStringLiteral("tvwPageExplorer")), this);
    QTreeView* list = makeExplorer(QStringLiteral("lvwTasks"));
    list->setProperty("checkable", true);
    auto* tasks =
        new ExplorerPane(QStringLiteral("picTaskExplorer"), tr("Task Explorer"), list, this);
    addExplorer(project, projectPane, 209);
    addExplorer(page, pageExplorerPane, 210);
    addExplorer(tasks, taskPane, 211);

    auto* trees = new QSplitter(Qt::Vertical, this);
    trees->setObjectName(QStringLiteral("splitterTrees"));
    trees->addWidget(project);
    trees->addWidget(page);
    auto* explorers = new QWidget(this);
    explorers->setObjectName(QStringLiteral("picExplorers"));
    auto* column = new QVBoxLayout(explorers);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(trees);
    auto* beside = new QSplitter(Qt::Horizontal, this);
    beside->setObjectName(QStringLiteral("splitterExplorer"));
    beside->addWidget(explorers);
    beside->addWidget(centre_);
    beside->setStretchFactor(1, 1);
    beside->setSizes({240, 760});
    auto* above = new QSplitter(Qt::Vertical, this);
    above->setObjectName(QStringLiteral("splitterTask"));
    above->addWidget(beside);
    above->addWidget(tasks);
    above->setStretchFactor(0, 1);
    above->setSizes({600, 140});
    for (QSplitter* splitter : {trees, beside, above}) {
        splitter->setChildrenCollapsible(false);
        splitter->setHandleWidth(5);
    }
    setCentralWidget(above);
}

// Made when there is something to welcome: most starts open a project.
void MainWindow::makeWelcome() {
    welcome_ = new WelcomePage(this);
    connect(welcome_, &WelcomePage::newProject, this, [this] {
        if (events.newProject) events.newProject();
    });
    connect(welcome_, &WelcomePage::openProject, this, [this] {
        if (events.openProject) events.openProject();
    });
    connect(welcome_, &WelcomePage::openRecent, this, [this](const QString& path) {
        if (events.openRecent) events.openRecent(fromNativeQt(path));
    });
    centre_->addWidget(welcome_);
}

void MainWindow::addExplorer(ExplorerPane* pane, int number, int tool) {
    connect(pane, &ExplorerPane::closePressed, this, [this, tool] {
        if (actions_.explorerClosed) actions_.explorerClosed(tool);
    });
    panes_[number] = pane;
}

void MainWindow::focusMoved(const QWidget* now) {
    if (!now || !actions_.paneFocused) return;
    for (const auto& [number, pane] : panes_) {
        if (pane->isAncestorOf(now)) return actions_.paneFocused(number);
    }
}

void MainWindow::makeStatusBar() {
    for (int i = 0; i < 3; ++i) {
        auto* panel = new StatusPanel(this);
        panel->setObjectName(QStringLiteral("sbrMain_%1").arg(i));
        // The first one's texts come and go; the others' must not be cut.
        if (i == 0) panel->setYielding();
        connect(panel, &StatusPanel::pressed, this, [this, i] {
            if (actions_.panelPressed) actions_.panelPressed(i);
        });
        statusBar()->addPermanentWidget(panel, i == 0 ? 1 : 0);
        if (i == 0) {
            auto* progress = new QProgressBar(this);
            progress->setObjectName(QStringLiteral("prgProgress"));
            progress->setFixedWidth(180);
            progress->setMaximumHeight(16);
            progress->hide();
            statusBar()->addPermanentWidget(progress);
        }
        // The last one opens a menu.
        if (i == 2) {
            panel->setCursor(Qt::PointingHandCursor);
            panel->setFocusPolicy(Qt::TabFocus);
        }
    }
    statusBar()->setSizeGripEnabled(true);
}

void MainWindow::bind(ControlOwner& controls, CommandBar& bar, MainWindowActions actions,
                      const std::string& menuBar, const std::string& toolBars) {
    unbind();
    actions_ = std::move(actions);
    bar_ = &bar;
    menuBar_ = menuBar;
    toolBarList_ = toolBars;
    binder_ = std::make_unique<FormBinder>(controls, *this);
    bars_ = std::make_unique<CommandBarView>(bar, *this);
    bars_->build(menuBar_);
    arrangeToolBars();
}

void MainWindow::unbind() {
    binder_.reset();
    bars_.reset();
    bar_ = nullptr;
    actions_ = {};
}

void MainWindow::arrangeToolBars() {
    QList<QToolBar*> left = findChildren<QToolBar*>(Qt::FindDirectChildrenOnly);
    const auto place = [&](QToolBar* toolBar) {
        const bool hidden = toolBar->isHidden();
        addToolBar(toolBar);
        toolBar->setHidden(hidden);
        left.removeOne(toolBar);
    };
    for (const QStringList& row : toolBarRows) {
        if (row != toolBarRows.constFirst()) addToolBarBreak();
        for (const QString& name : row) {
            if (QToolBar* toolBar = bars_->toolBar(fromQt(name))) place(toolBar);
        }
    }
    for (QToolBar* toolBar : QList<QToolBar*>(left))
        place(toolBar);
}

// --- Surface ------------------------------------------------------------------------------------

std::unique_ptr<DocumentSurface> MainWindow::CreateDocument() {
    centre_->setCurrentWidget(pages_);
    return std::make_unique<DocumentWindow>(*pages_, editors_);
}

void MainWindow::SetCaption(const std::string& caption) {
    setWindowTitle(toQt(caption));
}

void MainWindow::Arrange(Arrangement how) {
    for (QMdiSubWindow* window : pages_->subWindowList()) {
        if (window->isMaximized()) window->showNormal();
    }
    switch (how) {
        case Arrangement::Cascade:
            return cascade();
        case Arrangement::TileHorizontally:
            return tile(Qt::Vertical);
        case Arrangement::TileVertically:
            return tile(Qt::Horizontal);
    }
}

void MainWindow::showColors() {
    if (pages_) pages_->setBackground(palette().color(QPalette::Window).darker(112));
}

void MainWindow::changeEvent(QEvent* event) {
    QMainWindow::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) showColors();
}

void MainWindow::cascade() {
    const QSize room = pages_->viewport()->size();
    const QSize size(room.width() * 7 / 10, room.height() * 7 / 10);
    QPoint place;
    for (QMdiSubWindow* window : pages_->subWindowList(QMdiArea::StackingOrder)) {
        if (!window->isVisible() || window->isMinimized()) continue;
        if (!QRect(QPoint(), room).contains(QRect(place, size))) place = QPoint();
        window->setGeometry(QRect(place, size));
        place += QPoint(cascadeStep, cascadeStep);
    }
}

void MainWindow::tile(Qt::Orientation direction) {
    QList<QMdiSubWindow*> tiled;
    for (QMdiSubWindow* window : pages_->subWindowList()) {
        if (window->isVisible() && !window->isMinimized()) tiled << window;
    }
    if (tiled.isEmpty()) return;
    const QSize room = pages_->viewport()->size();
    const int count = int(tiled.size());
    // Whole pixels without a gap: each edge is rounded by itself.
    for (int i = 0; i < count; ++i) {
        const bool stacked = direction == Qt::Vertical;
        const int length = stacked ? room.height() : room.width();
        const int from = length * i / count;
        const int size = length * (i + 1) / count - from;
        tiled[i]->setGeometry(stacked ? QRect(0, from, room.width(), size)
                                      : QRect(from, 0, size, room.height()));
    }
}

bool MainWindow::IsForeground() const {
    return isActiveWindow() && !isMinimized();
}

bool MainWindow::IsMinimised() const {
    return isMinimized();
}

bool MainWindow::IsMaximised() const {
    return isMaximized();
}

WindowGeometry MainWindow::Geometry() const {
    const QRect place = isMaximized() || isMinimized() ? normalGeometry() : geometry();
    return {place.x() * twipsToPixel, place.y() * twipsToPixel, place.width() * twipsToPixel,
            place.height() * twipsToPixel};
}

void MainWindow::SetGeometry(const WindowGeometry& geometry) {
    setWindowState(windowState() & ~Qt::WindowMaximized);
    setGeometry(geometry.left / twipsToPixel, geometry.top / twipsToPixel,
                geometry.width / twipsToPixel, geometry.height / twipsToPixel);
}

void MainWindow::Maximise() {
    setWindowState(windowState() | Qt::WindowMaximized);
}

WindowGeometry MainWindow::Screen() const {
    const QSize size = screen()->size();
    return {0, 0, size.width() * twipsToPixel, size.height() * twipsToPixel};
}

void MainWindow::Show() {
    show();
    raise();
    activateWindow();
}

void MainWindow::Hide() {
    hide();
}

void MainWindow::Close() {
    close();
}

void MainWindow::SetBusyPointer(bool busy) {
    if (busy_ == busy) return;
    busy_ = busy;
    if (busy) {
        QApplication::setOverrideCursor(Qt::WaitCursor);
    } else {
        QApplication::restoreOverrideCursor();
    }
}

void MainWindow::ShowWelcome(bool show, const std::vector<std::string>& recentProjects) {
    QStringList paths;
    for (const std::string& path : recentProjects)
        paths << toNativeQt(path);
    if (show && !welcome_) makeWelcome();
    if (welcome_) welcome_->setRecentProjects(paths);
    centre_->setCurrentWidget(show ? static_cast<QWidget*>(welcome_) : pages_);
    // Else a key would press whatever comes first in the window.
    if (show) welcome_->setFocus();
}

std::vector<std::string> MainWindow::FontNames() const {
    std::vector<std::string> names;
    for (const QString& family : QFontDatabase::families()) {
        if (!QFontDatabase::isPrivateFamily(family)) names.push_back(fromQt(family));
    }
    return names;
}

void MainWindow::SetAutoSaveTimer(int milliseconds, std::function<void()> tick) {
    autoSave_.stop();
    autoSaveTick_ = std::move(tick);
    if (milliseconds > 0) autoSave_.start(milliseconds);
}

// --- The window's own ---------------------------------------------------------------------------

QMenu* MainWindow::createPopupMenu() {
    if (!bars_) return nullptr;
    QToolBar* pressed = nullptr;
    for (QToolBar* toolBar : findChildren<QToolBar*>()) {
        if (toolBar->underMouse()) pressed = toolBar;
    }
    return bars_->makeToolBarMenu(pressed, toolBarList_);
}

QSize MainWindow::sizeHint() const {
    const QSize room = screen()->availableSize();
    return QSize(1240, 820).boundedTo(room * 0.9);
}

void MainWindow::closeEvent(QCloseEvent* event) {
    // Copies: the program takes its handlers away while it ends.
    const Events handlers = events;
    if (handlers.queryUnload && !handlers.queryUnload()) {
        event->ignore();
        return;
    }
    event->accept();
    if (handlers.unload) handlers.unload();
}

bool MainWindow::eventFilter(QObject*, QEvent* event) {
    switch (event->type()) {
        case QEvent::KeyPress:
        case QEvent::MouseButtonPress:
        case QEvent::Wheel:
        case QEvent::InputMethod:
            idle_.start();
            break;
        default:
            break;
    }
    return false;
}

}  // namespace pw
