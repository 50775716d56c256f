#include "platform/qt/editor/EditorView.h"

#include <QApplication>
#include <QBuffer>
#include <QClipboard>
#include <QElapsedTimer>
#include <QImage>
#include <QJsonDocument>
#include <QJsonObject>
#include <QPixmap>
#include <QPointer>
#include <QTimer>
#include <QVBoxLayout>
#include <algorithm>
#include <csignal>

#include "platform/FileSystem.h"
#include "platform/qt/QtMessageLoop.h"
#include "platform/qt/editor/EditorBridge.h"

namespace pw {

namespace {

constexpr int kWorld = EditorPage::world;
constexpr int kDeathsInARow = 3;
/** A key on its way to the renderer is waited for this long, in milliseconds. */
constexpr int kKeyGrace = 150;
/** A skeleton that does not report itself is asked so often, and loaded again after so many times.
 */
constexpr int kLoadTick = 400;
constexpr int kLoadTicks = 25;
/** The states of the commands are asked for when nothing has changed for so long. */
constexpr int kStateRest = 60;

/** A value as the literal of a script. */
QString literal(const QString& text) {
    QString result = QStringLiteral("\"");
    for (const QChar c : text) {
        const ushort code = c.unicode();
        if (code == '"' || code == '\\')
            result += QLatin1Char('\\') + c;
        else if (code < 0x20 || code == 0x2028 || code == 0x2029)
            result += QStringLiteral("\\u%1").arg(code, 4, 16, QLatin1Char('0'));
        else
            result += c;
    }
    return result + QLatin1Char('"');
}

/** True for what the user does to the page. */
bool isInput(const QEvent& event) {
    return event.isInputEvent() || event.type() == QEvent::InputMethod ||
           event.type() == QEvent::Drop;
}

QUrl urlOf(const QString& base) {
    return base.isEmpty() ? QUrl(QStringLiteral("about:blank")) : QUrl(base);
}

}  // namespace

// --- Making and showing -------------------------------------------------------------------------

EditorView::EditorView(QWidget* parent)
    : QWidget(parent),
      view_(new EditorWebView(this)),
      zoom_(*view_),
      bridge_(new EditorBridge(this)),
      relay_(*bridge_, events, [this](qint64 node) {
          return projection_ ? projection_->nodeOfView(node) : nullptr;
      }) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(view_);
    auto* page = new EditorPage(view_);
    channel_.registerObject(QStringLiteral("editor"), bridge_);
    page->setWebChannel(&channel_, kWorld);
    view_->setPage(page);
    setFocusProxy(view_);
    stateTimer_.setSingleShot(true);
    stateTimer_.setInterval(kStateRest);
    connect(&stateTimer_, &QTimer::timeout, this, [this] {
        if (life_ == Life::Alive) run(QStringLiteral("pw.reportState()"));
    });
    loadTimer_.setInterval(kLoadTick);
    connect(&loadTimer_, &QTimer::timeout, this, [this] { askAgain(); });
    connectBridge();
    connect(page, &QWebEnginePage::renderProcessTerminated, this, [this] { rendererDied(); });
    connect(view_, &EditorWebView::filesDropped, this,
            [this](const QPoint& at, const QStringList& paths) {
                run(QStringLiteral("pw.caretAt(%1,%2)")
                        .arg(at.x() / view_->zoomFactor())
                        .arg(at.y() / view_->zoomFactor()));
                std::vector<std::string> files;
                for (const QString& path : paths)
                    files.push_back(FromNativePath(path.toStdString()));
                relay_.post([this, files] {
                    Flush();
                    if (events.filesDropped) events.filesDropped(files);
                });
            });
    qApp->installEventFilter(this);
}

EditorView::~EditorView() {
    qApp->removeEventFilter(this);
    // The page must go before the profile and the channel do.
    projection_.reset();
    delete view_;
}

void EditorView::connectBridge() {
    connect(bridge_, &EditorBridge::isReady, this, &EditorView::viewReady);
    connect(bridge_, &EditorBridge::hasBatch, this, &EditorView::takeBatch);
    connect(bridge_, &EditorBridge::hasState, this, &EditorView::takeState);
    connect(bridge_, &EditorBridge::hasApplied, this, [this](int message) {
        if (!projection_) return;
        stateTimer_.start();
        projection_->acknowledge(static_cast<std::uint32_t>(message));
        if (life_ == Life::Loading && prepared_.empty()) {
            life_ = Life::Alive;
            deaths_ = 0;
            relay_.tell(&Events::loaded);
        }
    });
    connect(bridge_, &EditorBridge::isLost, this, [this](int message) {
        if (projection_) projection_->viewIsLost(static_cast<std::uint32_t>(message));
    });
    connect(bridge_, &EditorBridge::hasSynced, this, [this](int token, int keys) {
        syncedToken_ = token;
        keysSeen_ = keys;
    });
    connect(bridge_, &EditorBridge::hasExecuted, this, [this](int token, bool done) {
        executedToken_ = token;
        executedDone_ = done;
    });
    connect(bridge_, &EditorBridge::hasFreePlace, this, [this](int token, const QString& json) {
        placeToken_ = token;
        freePlace_ = json;
    });
}

void EditorView::Show(dom::Document& document, const std::string& baseUrl) {
    document_ = &document;
    projection_ = std::make_unique<dom::Projection>(document);
    projection_->onOutgoing = [this] { sendSoon(); };
    baseUrl_ = QString::fromStdString(baseUrl);
    deaths_ = 0;
    loadSkeleton();
}

void EditorView::Clear() {
    projection_.reset();
    document_ = nullptr;
    life_ = Life::Empty;
    ++generation_;
}

// The doctype and the base address can only be had by a load; everything else is built by script.
void EditorView::loadSkeleton() {
    life_ = Life::Loading;
    ++generation_;
    keysSent_ = keysSeen_ = 0;
    states_.clear();
    values_.clear();
    doctype_ = document_->doctype();
    const QString html = QStringLiteral("%1<html id=\"pw-%2\"><head></head><body></body></html>")
                             .arg(QString::fromStdString(doctype_))
                             .arg(generation_);
    auto* page = static_cast<EditorPage*>(view_->page());
    page->allowed = true;
    page->setHtml(html, urlOf(baseUrl_));
    // While the renderer starts there is time to write the page out.
    prepared_ = projection_->snapshot();
    preparedRevision_ = document_->revision();
    loadTicks_ = 0;
    skeletonAnswers_ = false;
    loadTimer_.start();
}

// In a renderer that has just replaced a dead one, the channel may come up after the scripts, and
// on a busy machine the scripts themselves are sometimes not run at all.
void EditorView::askAgain() {
    if (life_ != Life::Loading || prepared_.empty()) {
        loadTimer_.stop();
    } else if (++loadTicks_ < kLoadTicks) {
        askSkeleton();
    } else if (!skeletonAnswers_ && view_->page()->renderProcessPid() != 0) {
        // One that has not answered anything will not take another page either.
        loadTicks_ = 0;
        endRenderer();
    } else if (++deaths_ <= kDeathsInARow) {
        loadSkeleton();
    } else {
        loadTimer_.stop();
        life_ = Life::Dead;
        giveUp();
    }
}

void EditorView::askSkeleton() {
    // A script for a renderer that is still on its way can take the ear of the renderer with it.
    if (view_->page()->renderProcessPid() == 0) return;
    const auto answer = [self = QPointer<EditorView>(this),
                         generation = generation_](const QVariant& missing) {
        if (!self || generation != self->generation_ || !missing.isValid()) return;
        self->skeletonAnswers_ = true;
        if (missing.toBool()) self->run(EditorPage::scriptText());
    };
    view_->page()->runJavaScript(QStringLiteral("typeof pw === 'object' ? (pw.begin(), false)"
                                                " : document.readyState !== 'loading' &&"
                                                " document.documentElement.id === 'pw-%1'")
                                     .arg(generation_),
                                 kWorld, answer);
}

void EditorView::viewReady(int token) {
    if (token != generation_ || life_ != Life::Loading || !projection_ || prepared_.empty()) return;
    loadTimer_.stop();
    static_cast<EditorPage*>(view_->page())->allowed = false;
    if (document_->revision() != preparedRevision_) prepared_ = projection_->snapshot();
    configure();
    zoom_.restore();
    // As a text, which is read faster than the same thing as a part of the script.
    run(QStringLiteral("pw.load(JSON.parse(%1))").arg(literal(QString::fromStdString(prepared_))));
    untouched_ = true;
    prepared_.clear();
}

void EditorView::Refresh() {
    if (!document_) return;
    if (life_ == Life::Alive) Flush();
    deaths_ = 0;
    loadSkeleton();
}

void EditorView::rendererDied() {
    if (!document_) {
        life_ = Life::Empty;
        return;
    }
    life_ = Life::Dead;
    if (++deaths_ > kDeathsInARow) {
        giveUp();
        return;
    }
    const int generation = generation_;
    QTimer::singleShot(0, this, [this, generation] {
        if (life_ == Life::Dead && generation == generation_) loadSkeleton();
    });
}

// A page that kills every renderer can still be edited as source.
void EditorView::giveUp() {
    qWarning("The browser engine fails on this page again and again; it is not shown");
    relay_.tell(&Events::loaded);
}

// --- The wire -----------------------------------------------------------------------------------

void EditorView::run(const QString& script) {
    untouched_ = false;
    view_->page()->runJavaScript(script, kWorld);
}

void EditorView::sendSoon() {
    if (sendPosted_) return;
    sendPosted_ = true;
    relay_.post([this] {
        sendPosted_ = false;
        sendOutgoing();
    });
}

void EditorView::sendOutgoing() {
    if (life_ != Life::Alive || !projection_ || !projection_->hasOutgoing()) return;
    if (document_->doctype() != doctype_) {
        loadSkeleton();
        return;
    }
    const std::string message = projection_->takeOutgoing();
    if (message.empty()) return;
    run(QStringLiteral("pw.apply(%1)").arg(QString::fromStdString(message)));
}

void EditorView::takeBatch(const QString& json) {
    if (!projection_) return;
    const QByteArray bytes = json.toUtf8();
    const auto result = projection_->applyBatch({bytes.constData(), std::size_t(bytes.size())});
    if (result != dom::Projection::Result::Applied) {
        run(QStringLiteral("pw.sendAll()"));
        return;
    }
    stateTimer_.start();
    relay_.changed();
}

void EditorView::takeState(const QString& json) {
    const QJsonObject message = QJsonDocument::fromJson(json.toUtf8()).object();
    states_.clear();
    values_.clear();
    const QJsonObject states = message[QLatin1String("states")].toObject();
    for (auto it = states.begin(); it != states.end(); ++it)
        states_[it.key()] = it.value().toInt();
    const QJsonObject values = message[QLatin1String("values")].toObject();
    for (auto it = values.begin(); it != values.end(); ++it)
        values_[it.key()] = it.value().toString();
    relay_.changed();
}

// --- Waiting ------------------------------------------------------------------------------------

bool EditorView::Busy() const {
    return life_ == Life::Loading || (life_ == Life::Dead && deaths_ <= kDeathsInARow) ||
           (life_ == Life::Alive && !projection_->settled());
}

void EditorView::endRenderer() {
    const qint64 process = view_->page()->renderProcessPid();
    qWarning("The browser engine does not answer; the page is shown anew");
    if (process > 0) kill(static_cast<pid_t>(process), SIGKILL);
}

bool EditorView::waitFor(const std::function<bool()>& condition) {
    const QPointer<EditorView> self(this);
    const int generation = generation_;
    const auto over = [&] {
        return !self || life_ == Life::Dead || life_ == Life::Empty || generation != generation_;
    };
    QElapsedTimer waited;
    waited.start();
    QTimer tick;  // so that the wait below ends even when nothing happens
    tick.start(std::max(1, patience_ / 10));
    while (!condition()) {
        if (over()) return false;
        if (waited.elapsed() > patience_) {
            endRenderer();
            waited.restart();
        }
        sleepForEvents([&] { return over() || condition(); }, QEventLoop::ExcludeUserInputEvents);
        if (!self) return false;
    }
    return true;
}

void EditorView::Flush() {
    // A renderer may die while it is waited for; then it is the next one that has to agree.
    for (int tries = 0; tries <= kDeathsInARow; ++tries) {
        if (flushOnce()) return;
    }
}

bool EditorView::flushOnce() {
    if (!document_ || life_ == Life::Empty) return true;
    const QPointer<EditorView> self(this);
    const auto shown = [&] {
        return !self ||
               (life_ != Life::Loading && (life_ != Life::Dead || deaths_ > kDeathsInARow));
    };
    while (!shown())
        sleepForEvents(shown, QEventLoop::ExcludeUserInputEvents);
    if (!self) return true;
    // What it has just been given is all it has.
    if (untouched_ && life_ == Life::Alive && projection_->settled()) return true;
    QElapsedTimer grace;
    grace.start();
    while (life_ == Life::Alive) {
        sendOutgoing();
        if (life_ == Life::Loading) return false;
        const int token = ++lastToken_;
        run(QStringLiteral("pw.sync(%1,true)").arg(token));
        if (!waitFor([&] { return syncedToken_ >= token; }) ||
            !waitFor([&] { return projection_->settled() || projection_->hasOutgoing(); }))
            return !self;
        if (keysSeen_ < keysSent_) {
            // A key press takes another way to the page than this question does.
            if (grace.elapsed() < kKeyGrace) {
                QElapsedTimer pause;
                pause.start();
                while (pause.elapsed() < 4 && self)
                    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents, 4);
                if (!self) return true;
                continue;
            }
            keysSent_ = keysSeen_;  // it was taken by somebody else
        }
        if (projection_->settled()) return true;
    }
    return life_ == Life::Empty;
}

bool EditorView::eventFilter(QObject* watched, QEvent* event) {
    const auto inView = [&] {
        auto* widget = qobject_cast<QWidget*>(watched);
        return widget && (widget == view_ || widget == view_->focusProxy());
    };
    if (untouched_ && isInput(*event) && inView()) untouched_ = false;
    if (PageZoom::concerns(*event) && inView() && zoom_.takes(*event)) return true;
    if (event->type() == QEvent::ShortcutOverride && inView()) {
        // The browser claims the keys of its own commands. They are commands of the program here.
        const auto* key = static_cast<QKeyEvent*>(event);
        if (key->modifiers() & (Qt::ControlModifier | Qt::AltModifier)) {
            event->ignore();
            return true;
        }
    } else if (event->type() == QEvent::KeyPress && watched == view_->focusProxy()) {
        ++keysSent_;
    }
    return QWidget::eventFilter(watched, event);
}

// --- Commands -----------------------------------------------------------------------------------

CommandState EditorView::QueryState(const std::string& command) const {
    if (life_ != Life::Alive) return CommandState::Disabled;
    const auto found = states_.find(QString::fromStdString(command));
    if (found == states_.end()) return CommandState::NotSupported;
    return static_cast<CommandState>(*found);
}

std::string EditorView::QueryValue(const std::string& command) const {
    return values_.value(QString::fromStdString(command)).toStdString();
}

bool EditorView::Execute(const std::string& command, const std::string& argument) {
    if (!document_) return false;
    Flush();
    if (life_ != Life::Alive) return false;
    if (command == "pasteImage") {
        const QImage image = qApp->clipboard()->image();
        if (image.isNull() || !events.imagePasted) return false;
        QBuffer png;
        if (!png.open(QIODevice::WriteOnly) || !image.save(&png, "PNG")) return false;
        events.imagePasted(png.data().toStdString());
        return true;
    }
    document_->sealStep();
    const int token = ++lastToken_;
    // Over thousands of blocks the engine takes seconds.
    QTimer hourglass;
    hourglass.setSingleShot(true);
    bool waiting = false;
    connect(&hourglass, &QTimer::timeout, this, [&waiting] {
        waiting = true;
        QApplication::setOverrideCursor(Qt::WaitCursor);
    });
    hourglass.start(200);
    run(QStringLiteral("pw.execute(%1,%2,%3)")
            .arg(token)
            .arg(literal(QString::fromStdString(command)),
                 literal(QString::fromStdString(argument))));
    const bool answered = waitFor([&] { return executedToken_ >= token; });
    if (waiting) QApplication::restoreOverrideCursor();
    document_->sealStep();
    return answered && executedDone_;
}

// --- Objects and cells --------------------------------------------------------------------------

std::optional<Placement> EditorView::FreePlaceOf(const dom::Node& element) {
    Flush();
    if (life_ != Life::Alive) return std::nullopt;
    const int token = ++lastToken_;
    run(QStringLiteral("pw.freePlace(%1,%2)").arg(token).arg(projection_->viewId(&element)));
    if (!waitFor([&] { return placeToken_ >= token; })) return std::nullopt;
    const Placement place = EventRelay::placementOf(freePlace_);
    return place.left && place.top ? std::optional(place) : std::nullopt;
}

void EditorView::MarkCells(const std::vector<dom::Node*>& cells) {
    if (life_ != Life::Alive) return;
    QStringList numbers;
    for (const dom::Node* cell : cells)
        numbers << QString::number(projection_->viewId(cell));
    sendOutgoing();
    run(QStringLiteral("pw.markCells([%1])").arg(numbers.join(QLatin1Char(','))));
}

// --- Settings and pictures ----------------------------------------------------------------------

void EditorView::configure() {
    const auto flag = [](bool on) { return on ? QStringLiteral("true") : QStringLiteral("false"); };
    run(QStringLiteral("pw.configure({gridX:%1,gridY:%2,snap:%3,borders:%4,tags:%5})")
            .arg(gridX_)
            .arg(gridY_)
            .arg(flag(snap_), flag(borders_), flag(tags_)));
}

void EditorView::SetFocus() {
    view_->setFocus();
    if (life_ == Life::Alive) run(QStringLiteral("pw.ensureCaret()"));
}

void EditorView::ScrollIntoView(const dom::Node& element) {
    if (life_ != Life::Alive) return;
    sendOutgoing();
    run(QStringLiteral("pw.scrollTo(%1)").arg(projection_->viewId(&element)));
}

void EditorView::ScrollToSelection() {
    if (life_ != Life::Alive) return;
    sendOutgoing();
    run(QStringLiteral("pw.scrollToSelection()"));
}

void EditorView::SetGrid(int x, int y) {
    gridX_ = x;
    gridY_ = y;
    if (life_ == Life::Alive) configure();
}

void EditorView::SetShowBorders(bool show) {
    borders_ = show;
    if (life_ == Life::Alive) configure();
}

void EditorView::SetShowTags(bool show) {
    tags_ = show;
    if (life_ == Life::Alive) configure();
}

void EditorView::SetSnapToGrid(bool snap) {
    snap_ = snap;
    if (life_ == Life::Alive) configure();
}

bool EditorView::Capture(const std::string& path) {
    if (life_ == Life::Alive) Flush();
    const QPixmap picture = view_->grab();
    return !picture.isNull() && picture.save(QString::fromStdString(ToNativePath(path)), "JPG", 90);
}

EditorParts makeEditor(QWidget* parent) {
    auto* view = new EditorView(parent);
    return {view, view};
}

}  // namespace pw
