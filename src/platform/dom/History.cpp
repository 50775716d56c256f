#include "platform/dom/History.h"

#include <chrono>
#include <utility>

#include "platform/dom/DocumentImpl.h"

namespace pw::dom {

namespace {

constexpr double kTypingPause = 1.0;
constexpr std::size_t kMostSteps = 1000;

double steadySeconds() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

}  // namespace

History::History(Document& document) : document_(document), clock_(steadySeconds) {}

void History::beginStep(StepKind kind) {
    if (depth_++ > 0) return;
    open_ = {};
    open_.kind = kind;
    open_.before = document_.selection_;
    open_.time = clock_();
}

void History::record(Primitive primitive) {
    open_.primitives.push_back(std::move(primitive));
}

void History::endStep() {
    if (--depth_ > 0) return;
    document_.impl_->carried.clear();
    if (open_.primitives.empty()) return;
    open_.after = document_.selection_;
    finish(std::move(open_));
    open_ = {};
    notify();
}

bool History::mergesIntoLast(const Step& step) const {
    if (undo_.empty() || !redo_.empty() || step.kind == StepKind::Command) return false;
    const Step& last = undo_.back();
    return !last.sealed && last.kind == step.kind && last.after == step.before &&
           step.time - last.time <= kTypingPause;
}

void History::finish(Step step) {
    step.id = nextId_++;
    if (mergesIntoLast(step)) {
        Step& last = undo_.back();
        std::move(step.primitives.begin(), step.primitives.end(),
                  std::back_inserter(last.primitives));
        last.after = step.after;
        last.time = step.time;
        last.id = step.id;
        return;
    }
    redo_.clear();
    undo_.push_back(std::move(step));
    if (undo_.size() > kMostSteps) {
        baseId_ = undo_.front().id;
        undo_.pop_front();
    }
}

bool History::undo() {
    if (!canUndo()) return false;
    Step step = std::move(undo_.back());
    undo_.pop_back();
    replay(step, Direction::Backwards);
    redo_.push_back(std::move(step));
    seal();
    return true;
}

bool History::redo() {
    if (!canRedo()) return false;
    Step step = std::move(redo_.back());
    redo_.pop_back();
    replay(step, Direction::Forwards);
    undo_.push_back(std::move(step));
    seal();
    return true;
}

void History::replay(Step& step, Direction direction) {
    ++depth_;
    Gateway gateway(document_);
    if (direction == Direction::Forwards) {
        for (Primitive& primitive : step.primitives) {
            gateway.apply(primitive, direction, Origin::History);
        }
    } else {
        for (auto primitive = step.primitives.rbegin(); primitive != step.primitives.rend();
             ++primitive) {
            gateway.apply(*primitive, direction, Origin::History);
        }
    }
    --depth_;
    document_.selection_ = direction == Direction::Forwards ? step.after : step.before;
    for (DocumentObserver* observer : std::vector(document_.impl_->observers)) {
        observer->selectionChanged(Origin::History);
    }
    notify();
}

void History::notify() {
    const bool reloaded = std::exchange(document_.impl_->reloadDue, false);
    for (DocumentObserver* observer : std::vector(document_.impl_->observers)) {
        if (reloaded) observer->documentReloaded();
        observer->historyChanged();
    }
}

void History::seal() {
    if (!undo_.empty()) undo_.back().sealed = true;
}

void History::clear() {
    baseId_ = lastId();
    undo_.clear();
    redo_.clear();
    notify();
}

bool History::isDirty() const {
    return lastId() != cleanId_ || !open_.primitives.empty();
}

void History::markClean() {
    seal();
    cleanId_ = lastId();
}

}  // namespace pw::dom
