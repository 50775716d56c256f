// Borders between panes: the model says how far they go, the splitter only holds the panes.
#include <QMouseEvent>
#include <QRubberBand>
#include <QSplitter>

#include "mainwindow/CSplitter.h"
#include "platform/qt/Binding.h"

namespace pw {

namespace {

class SplitterBinding : public Binding {
  public:
    SplitterBinding(CSplitter& model, QSplitter& splitter)
        : Binding(model, splitter),
          model_(model),
          splitter_(splitter),
          // A splitter makes a pane of every child.
          bar_(QRubberBand::Line, splitter.window()) {
        splitter_.installEventFilter(this);
        handle().installEventFilter(this);
        for (int i = 0; i < 2; ++i)
            splitter_.widget(i)->installEventFilter(this);
    }

    bool eventFilter(QObject* watched, QEvent* event) override {
        if (watched == &handle()) return handleEvent(*event);
        const bool resized = watched == &splitter_ && event->type() == QEvent::Resize;
        const bool shown = watched != &splitter_ && event->type() == QEvent::Show;
        if (resized || shown) {
            // The splitter itself has its turn first.
            QMetaObject::invokeMethod(
                this, [this] { place(); }, Qt::QueuedConnection);
        }
        return false;
    }

  protected:
    void show(Aspect aspect) override {
        if (aspect != Aspect::Value) return;
        bar_.setVisible(model_.Drawing);
        if (!model_.Drawing) return place();
        QRect at = handle().geometry();
        if (isVertical()) {
            at.moveLeft(model_.BarPosition());
        } else {
            at.moveTop(model_.BarPosition());
        }
        bar_.setGeometry(QRect(splitter_.mapTo(splitter_.window(), at.topLeft()), at.size()));
    }

  private:
    QSplitterHandle& handle() const { return *splitter_.handle(1); }
    bool isVertical() const { return model_.Orientation == CSplitter::Direction::Vertical; }
    int along(const QSize& size) const { return isVertical() ? size.width() : size.height(); }
    int least(int index) const {
        const QWidget& pane = *splitter_.widget(index);
        return along(pane.minimumSizeHint().expandedTo(pane.minimumSize()));
    }

    bool handleEvent(QEvent& event) {
        const bool press = event.type() == QEvent::MouseButtonPress;
        const bool release = event.type() == QEvent::MouseButtonRelease;
        if (!press && !release && event.type() != QEvent::MouseMove) return false;
        const auto& mouse = static_cast<QMouseEvent&>(event);
        const QPoint at = splitter_.mapFromGlobal(mouse.globalPosition()).toPoint();
        if (press && mouse.button() == Qt::LeftButton) {
            measure();
            if (model_.Size() == 0) model_.NoteBar(splitter_.sizes().constFirst());
            model_.SplitterMouseDown(at.x(), at.y());
        } else if (release && mouse.button() == Qt::LeftButton) {
            model_.SplitterFormMouseUp(at.x(), at.y());
        } else {
            model_.SplitterFormMouseMove(at.x(), at.y());
        }
        return true;
    }

    void measure() {
        model_.Length = along(splitter_.size());
        model_.Border = splitter_.handleWidth();
        const int high = model_.Length - model_.Border - least(1);
        model_.LeftBound = model_.TopBound = least(0);
        model_.RightBound = model_.BottomBound = high;
    }

    void place() {
        const bool both = !splitter_.widget(0)->isHidden() && !splitter_.widget(1)->isHidden();
        if (!both || model_.Size() == 0 || model_.Drawing) return;
        measure();
        const int bar = model_.BarPosition();
        splitter_.setSizes({bar, model_.Length - model_.Border - bar});
    }

    CSplitter& model_;
    QSplitter& splitter_;
    QRubberBand bar_;
};

}  // namespace

std::unique_ptr<Binding> makeSplitterBinding(Control& control, QWidget& widget) {
    auto* splitter = qobject_cast<QSplitter*>(&widget);
    if (!splitter || splitter->count() != 2) return nullptr;
    return std::make_unique<SplitterBinding>(static_cast<CSplitter&>(control), *splitter);
}

}  // namespace pw
