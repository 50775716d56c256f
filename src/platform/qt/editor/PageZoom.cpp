#include "platform/qt/editor/PageZoom.h"

#include <QKeyEvent>
#include <QWebEngineView>
#include <QWheelEvent>
#include <algorithm>
#include <iterator>

namespace pw {

namespace {

constexpr double kFactors[] = {0.25, 0.33, 0.5,  0.67, 0.75, 0.8, 0.9, 1, 1.1,
                               1.25, 1.5,  1.75, 2,    2.5,  3,   4,   5};
constexpr int kNoKey = 2;

/** Steps that a key stands for, 0 for the true size. */
int stepsOf(const QKeyEvent& key) {
    if ((key.modifiers() & ~(Qt::ShiftModifier | Qt::KeypadModifier)) != Qt::ControlModifier)
        return kNoKey;
    switch (key.key()) {
        case Qt::Key_Plus:
        case Qt::Key_Equal:  // where plus needs Shift
            return 1;
        case Qt::Key_Minus:
        case Qt::Key_Underscore:
            return -1;
        case Qt::Key_0:
            return 0;
        default:
            return kNoKey;
    }
}

}  // namespace

bool PageZoom::concerns(const QEvent& event) {
    return event.type() == QEvent::Wheel || event.type() == QEvent::KeyPress ||
           event.type() == QEvent::ShortcutOverride;
}

bool PageZoom::takes(QEvent& event) {
    if (event.type() == QEvent::Wheel) {
        const auto& wheel = static_cast<const QWheelEvent&>(event);
        if (wheel.modifiers() != Qt::ControlModifier) return false;
        turned_ += wheel.angleDelta().y();
        step(turned_ / QWheelEvent::DefaultDeltasPerStep);
        turned_ %= QWheelEvent::DefaultDeltasPerStep;
        event.accept();
        return true;
    }
    const int steps = stepsOf(static_cast<const QKeyEvent&>(event));
    if (steps == kNoKey) return false;
    event.accept();
    if (event.type() == QEvent::ShortcutOverride) return true;
    if (steps == 0) factor_ = 1;
    step(steps);
    return true;
}

void PageZoom::step(int steps) {
    const double* at = std::lower_bound(std::begin(kFactors), std::end(kFactors), factor_ - 0.001);
    const auto place = std::clamp<std::ptrdiff_t>(at - std::begin(kFactors) + steps, 0,
                                                  std::ptrdiff_t(std::size(kFactors)) - 1);
    factor_ = kFactors[place];
    view_.setZoomFactor(factor_);
}

void PageZoom::restore() {
    if (view_.zoomFactor() != factor_) view_.setZoomFactor(factor_);
}

}  // namespace pw
