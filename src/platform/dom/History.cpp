#include "platform/dom/History.h"

#include <algorithm>
#include <chrono>
#include <exception>
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

std::size_t History::beginStep(StepKind kind) {
    if (depth_++ > 0) return open_.primitives.size();
    open_ = {};
    open_.kind = kind;
    open_.before = document_.selection_;
    open_.time = clock_();
    return 0;
}

void History::rollBack(std::size_t begin, const Selection& selection) {
    if (open_.primitives.size() == begin && document_.selection_ == selection) return;
    replay(open_.primitives, begin, Direction::Backwards, Origin::Program);
    open_.primitives.resize(begin);
    document_.impl_->carried.clear();
    document_.selection_ = selection;
    for (DocumentObserver* observer : std::vector(document_.impl_->observers))
        observer->selectionChanged(Origin::Program);
}

void History::record(Primitive primitive) {
    open_.primitives.push_back(std::move(primitive));
}

void History::endStep() {
    if (--depth_ > 0) return;
    document_.impl_->carried.clear();
    if (open_.primitives.empty()) {
        // What was rolled back may have replaced the root for a while.
        if (document_.impl_->reloadDue) notify();
        return;
    }
    open_.after = document_.selection_;
    finish(std::move(open_));
    open_ = {};
    notify();
}

bool History::mergesIntoLast(const Step& step) const {
    if (undo_.empty() || !redo_.empty() || step.kind == StepKind::Command || step.isUpkeep())
        return false;
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
    if (step.isUpkeep()) {
        step.loose = !redo_.empty();
    } else {
        redo_.clear();
        for (auto last = undo_.rbegin(); last != undo_.rend() && last->loose; ++last)
            last->loose = false;
    }
    undo_.push_back(std::move(step));
    if (undo_.size() > kMostSteps) {
        baseId_ = undo_.front().id;
        undo_.pop_front();
    }
}

bool History::canUndo() const {
    return depth_ == 0 &&
           std::any_of(undo_.rbegin(), undo_.rend(), [](const Step& s) { return !s.isUpkeep(); });
}

History::Step History::takeBack() {
    Step step = std::move(undo_.back());
    undo_.pop_back();
    replay(step.primitives, 0, Direction::Backwards, Origin::History);
    return step;
}

bool History::undo() {
    if (!canUndo()) return false;
    while (undo_.back().isUpkeep()) {
        Step upkeep = takeBack();
        if (!upkeep.loose) redo_.push_back(std::move(upkeep));
    }
    redo_.push_back(takeBack());
    showSelection(redo_.back().before);
    return true;
}

bool History::redo() {
    if (!canRedo()) return false;
    while (!undo_.empty() && undo_.back().loose)
        takeBack();
    const Selection after = redo_.back().after;
    do {
        Step step = std::move(redo_.back());
        redo_.pop_back();
        replay(step.primitives, 0, Direction::Forwards, Origin::History);
        if (!step.isUpkeep()) document_.selection_ = after;
        undo_.push_back(std::move(step));
    } while (!redo_.empty() && redo_.back().isUpkeep());
    showSelection(document_.selection_);
    return true;
}

void History::replay(std::vector<Primitive>& primitives, std::size_t begin, Direction direction,
                     Origin origin) {
    ++depth_;
    Gateway gateway(document_);
    if (direction == Direction::Forwards) {
        for (std::size_t i = begin; i < primitives.size(); ++i)
            gateway.apply(primitives[i], direction, origin);
    } else {
        for (std::size_t i = primitives.size(); i > begin; --i)
            gateway.apply(primitives[i - 1], direction, origin);
    }
    --depth_;
}

void History::bringUpToDate() {
    if (!upkeep_) return;
    const Document::Step step(document_, StepKind::Upkeep);
    upkeep_(document_);
}

/** The end of an undo or redo. The page stands as it should when the upkeep fails, too. */
void History::showSelection(const Selection& selection) {
    document_.selection_ = selection;
    seal();
    std::exception_ptr failure;
    try {
        bringUpToDate();
    } catch (...) {
        failure = std::current_exception();
    }
    for (DocumentObserver* observer : std::vector(document_.impl_->observers)) {
        observer->selectionChanged(Origin::History);
    }
    notify();
    if (failure) std::rethrow_exception(failure);
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
