#include "platform/qt/PreviewView.h"

#include <QChildEvent>
#include <QJsonArray>
#include <QJsonDocument>
#include <QPointer>
#include <QVBoxLayout>
#include <QWebEnginePage>
#include <QWebEngineSettings>
#include <QWebEngineView>

#include "platform/dom/Document.h"
#include "platform/qt/QtText.h"

namespace pw {

namespace {

/** What the browser's own way of showing a text takes at most, once it is encoded. */
constexpr qsizetype largestDirect = 600'000;

/** The program's base is a folder with backslashes, or an address. */
QUrl baseAddress(const std::string& base) {
    if (!base.starts_with('\\')) return QUrl(toQt(base));
    return QUrl::fromLocalFile(toNativeQt(base));
}

}  // namespace

class PreviewView::Page : public QWebEnginePage {
  public:
    explicit Page(PreviewView& owner) : QWebEnginePage(&owner), owner_(owner) {}

    bool mayFollow(const QUrl& url) const {
        // A script in the place of an address is run by the browser, which asks nobody. So neither
        // the element that was pressed nor the one round it has such an address here.
        return !owner_.events.clicked || owner_.events.clicked(fromQt(url.toString()), {});
    }

  protected:
    bool acceptNavigationRequest(const QUrl& url, NavigationType type, bool mainFrame) override {
        if (type == NavigationTypeLinkClicked) return mayFollow(url);
        return QWebEnginePage::acceptNavigationRequest(url, type, mainFrame);
    }
    QWebEnginePage* createWindow(WebWindowType) override;

  private:
    PreviewView& owner_;
};

/** There are no windows but this one: what is to open in another opens here. The browser must be
 *  given a page of its own for that, which lives until it knows the address. */
class PreviewView::PassingPage : public QWebEnginePage {
  public:
    explicit PassingPage(Page& target) : QWebEnginePage(&target), target_(target) {}

  protected:
    bool acceptNavigationRequest(const QUrl& url, NavigationType, bool) override {
        const QPointer<Page> target(&target_);
        if (target_.mayFollow(url) && target) target->setUrl(url);
        deleteLater();
        return false;
    }

  private:
    Page& target_;
};

QWebEnginePage* PreviewView::Page::createWindow(WebWindowType) {
    return new PassingPage(*this);
}

PreviewView::PreviewView(QWidget* parent) : QWidget(parent) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
}

QWebEngineView& PreviewView::view() {
    if (view_) return *view_;
    view_ = new QWebEngineView(this);
    zoom_.emplace(*view_);
    auto* page = new Page(*this);
    view_->setPage(page);
    page->settings()->setAttribute(QWebEngineSettings::LocalContentCanAccessFileUrls, true);
    view_->setContextMenuPolicy(Qt::NoContextMenu);
    view_->installEventFilter(this);
    layout()->addWidget(view_);
    setFocusProxy(view_);
    connect(page, &QWebEnginePage::loadStarted, this, [this] { loading_ = true; });
    connect(page, &QWebEnginePage::loadFinished, this, [this] {
        loading_ = false;
        zoom_->restore();
        if (events.loaded) events.loaded();
    });
    return *view_;
}

void PreviewView::showHtml(const std::string& html, const std::string& baseUrl) {
    const QString text = toQt(html);
    const QUrl base = baseAddress(baseUrl);
    loading_ = true;
    if (text.size() <= largestDirect) {
        view().setHtml(text, base);
        return;
    }
    // A large page is written into an empty one.
    QWebEnginePage* page = view().page();
    connect(
        page, &QWebEnginePage::loadFinished, this,
        [page, text] {
            const QByteArray argument =
                QJsonDocument(QJsonArray{text}).toJson(QJsonDocument::Compact);
            page->runJavaScript(QStringLiteral("document.open();document.write(%1[0]);"
                                               "document.close()")
                                    .arg(QString::fromUtf8(argument)));
        },
        Qt::SingleShotConnection);
    view().setHtml(QStringLiteral("<!doctype html><title></title>"), base);
}

void PreviewView::Show(dom::Document& document, const std::string& baseUrl) {
    showHtml(document.html(), baseUrl);
}

CommandState PreviewView::QueryState(const std::string& command) const {
    const bool can = command == "copy" || command == "selectAll";
    return can ? CommandState::Enabled : CommandState::NotSupported;
}

bool PreviewView::Execute(const std::string& command, const std::string&) {
    if (QueryState(command) != CommandState::Enabled) return false;
    view().triggerPageAction(command == "copy" ? QWebEnginePage::Copy : QWebEnginePage::SelectAll);
    return true;
}

void PreviewView::SetFocus() {
    view().setFocus();
}

void PreviewView::Refresh() {
    if (view_) view_->reload();
}

bool PreviewView::Capture(const std::string& path) {
    return view_ && view_->grab().save(toNativeQt(path), "JPEG", 85);
}

bool PreviewView::eventFilter(QObject* watched, QEvent* event) {
    if (PageZoom::concerns(*event) && zoom_->takes(*event)) return true;
    // The browser takes its events in a child of its own, made anew with each page.
    if (event->type() == QEvent::ChildAdded) {
        static_cast<QChildEvent*>(event)->child()->installEventFilter(this);
    } else if (event->type() == QEvent::MouseButtonPress && events.mouseDown) {
        events.mouseDown(nullptr);
    } else if (event->type() == QEvent::FocusIn && watched != view_ && events.focused) {
        events.focused();
    }
    return false;
}

}  // namespace pw
