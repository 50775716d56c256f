#include "platform/qt/DocumentWindow.h"

#include <QCloseEvent>
#include <QVBoxLayout>
#include <QWebEngineView>

#include "platform/qt/ImageList.h"
#include "platform/qt/QtText.h"

namespace pw {

namespace {

struct ViewTab {
    View view;
    const char* text;
    const char* icon;
};

constexpr ViewTab viewTabs[] = {
    {View::Normal, QT_TRANSLATE_NOOP("DocumentWindow", "Normal"), "document-edit"},
    {View::Html, QT_TRANSLATE_NOOP("DocumentWindow", "HTML"), "format-text-code"},
    {View::Preview, QT_TRANSLATE_NOOP("DocumentWindow", "Preview"), "view-preview"},
};

}  // namespace

// --- Frame --------------------------------------------------------------------------------------

void DocumentFrame::tellActivated() {
    if (page_ && page_->events.activated) page_->events.activated();
}

void DocumentFrame::closeEvent(QCloseEvent* event) {
    if (page_ && page_->events.closing) {
        // A copy: the handler may take the page away while it runs.
        const auto closing = page_->events.closing;
        if (!closing()) {
            event->ignore();
            return;
        }
    }
    QMdiSubWindow::closeEvent(event);
}

// --- Page window --------------------------------------------------------------------------------

DocumentWindow::DocumentWindow(QMdiArea& area, const EditorFactory& editors)
    : area_(area), frame_(new DocumentFrame(*this)) {
    auto* content = new QWidget;
    views_ = new QStackedWidget(content);
    if (editors) {
        editor_ = editors(views_);
    } else {
        editor_.widget = new QWidget(views_);
    }
    source_ = new SourceView(views_);
    preview_ = new PreviewView(views_);
    for (QWidget* view :
         {editor_.widget, static_cast<QWidget*>(source_), static_cast<QWidget*>(preview_)}) {
        views_->addWidget(view);
    }
    tabs_ = new QTabBar(content);
    makeTabs();
    auto* layout = new QVBoxLayout(content);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(views_, 1);
    layout->addWidget(tabs_);

    source_->events.typed = [this] {
        if (events.sourceTyped) events.sourceTyped();
    };
    source_->events.mouseDown = [this] {
        if (events.sourceMouseDown) events.sourceMouseDown();
    };
    preview_->events.mouseDown = [this](dom::Node*) {
        if (events.previewMouseDown) events.previewMouseDown();
    };

    frame_->setWidget(content);
    frame_->setAttribute(Qt::WA_DeleteOnClose, false);
    // What it has when it no longer fills the room; it must not stick out of a small one.
    frame_->resize(QSize(720, 520)
                       .boundedTo(area_.viewport()->size() * 0.9)
                       .expandedTo(frame_->minimumSizeHint()));
    // A new page fills the room, unless the user has put the windows side by side.
    const QMdiSubWindow* front = area_.activeSubWindow();
    const bool maximised = !front || front->isMaximized();
    area_.addSubWindow(frame_);
    SetIcon(3);
    SetViewTabs(3, View::Normal);
    if (maximised) {
        frame_->showMaximized();
    } else {
        frame_->show();
    }
}

DocumentWindow::~DocumentWindow() {
    if (!frame_) return;
    // The frame outlives the page: what still comes from its views has nobody to go to.
    if (editor_.surface) editor_.surface->events = {};
    source_->events = {};
    preview_->EditorSurface::events = {};
    frame_->forgetPage();
    frame_->hide();
    area_.removeSubWindow(frame_);
    // Not at once: one of its own events may be under way.
    frame_->deleteLater();
}

void DocumentWindow::makeTabs() {
    tabs_->setShape(QTabBar::RoundedSouth);
    tabs_->setDrawBase(true);
    tabs_->setExpanding(false);
    tabs_->setObjectName(QStringLiteral("picViewTab"));
    tabs_->setAccessibleName(tr("Views of the page"));
    tabs_->setIconSize(QSize(16, 16));
    for (const ViewTab& tab : viewTabs) {
        tabs_->addTab(QIcon::fromTheme(QString::fromLatin1(tab.icon)), tr(tab.text));
    }
    // A press counts on whichever tab, on the one that is down too.
    connect(tabs_, &QTabBar::tabBarClicked, this, [this](int index) {
        if (index >= 0 && index == tabs_->currentIndex()) tabPressed(index);
    });
    connect(tabs_, &QTabBar::currentChanged, this, &DocumentWindow::tabPressed);
}

void DocumentWindow::tabPressed(int index) {
    const QPointer<DocumentWindow> alive(this);
    if (events.tabPressed) events.tabPressed(viewOf(index));
    if (!alive) return;
    // Which tab is down is not for the press to decide.
    const QSignalBlocker quiet(tabs_);
    tabs_->setCurrentIndex(indexOf(selected_));
}

View DocumentWindow::viewOf(int index) const {
    return viewTabs[qBound(0, index, 2)].view;
}

int DocumentWindow::indexOf(View view) const {
    return int(view) - 1;
}

void DocumentWindow::SetCaption(const std::string& caption) {
    // "[*]" has a meaning to Qt.
    frame_->setWindowTitle(toQt(caption).replace(QLatin1String("[*]"), QLatin1String("[*][*]")));
}

void DocumentWindow::SetIcon(int image) {
    frame_->setWindowIcon(imageIcon(image));
}

void DocumentWindow::ShowView(View view) {
    views_->setCurrentIndex(indexOf(view));
}

void DocumentWindow::SetViewTabs(int count, View selected) {
    selected_ = selected;
    const QSignalBlocker quiet(tabs_);
    tabs_->setTabVisible(indexOf(View::Html), count > 2);
    tabs_->setCurrentIndex(indexOf(selected));
}

void DocumentWindow::ShowPreview(const std::string& html, const std::string& baseUrl) {
    preview_->showHtml(html, baseUrl);
}

bool DocumentWindow::Print(const std::string& title) {
    std::unique_ptr<QPrinter> printer = askForPrinter(toQt(title), area_.window());
    return !printer || printTo(std::move(printer));
}

bool DocumentWindow::printTo(std::unique_ptr<QPrinter> printer) {
    const QWidget* seen = views_->currentWidget();
    if (seen == source_) return printText(*source_->forPaper(), *printer);
    auto* page = seen->findChild<QWebEngineView*>();
    return page && printPage(*page, std::move(printer));
}

void DocumentWindow::BringToFront() {
    if (frame_->isMinimized()) frame_->showNormal();
    area_.setActiveSubWindow(frame_);
}

bool DocumentWindow::IsVisible() const {
    return frame_ && frame_->isVisible();
}

}  // namespace pw
