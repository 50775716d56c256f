#pragma once
// The undo and redo of one page. A step holds the primitives that were applied, and the selection
// before and after; it is undone whole.
#include <cstdint>
#include <deque>
#include <functional>

#include "platform/dom/Gateway.h"

namespace pw::dom {

class History {
  public:
    explicit History(Document& document);

    void beginStep(StepKind kind);
    void endStep();
    bool inStep() const { return depth_ > 0; }
    /** Of a primitive that was applied; it belongs to the open step, or is one of its own. */
    void record(Primitive primitive);

    bool canUndo() const { return depth_ == 0 && !undo_.empty(); }
    bool canRedo() const { return depth_ == 0 && !redo_.empty(); }
    bool undo();
    bool redo();
    void seal();
    void clear();
    bool isDirty() const;
    void markClean();
    void setClock(std::function<double()> clock) { clock_ = std::move(clock); }

  private:
    struct Step {
        StepKind kind = StepKind::Command;
        std::vector<Primitive> primitives;
        Selection before;
        Selection after;
        double time = 0;
        std::uint64_t id = 0;
        bool sealed = false;
    };
    bool mergesIntoLast(const Step& step) const;
    void finish(Step step);
    void notify();
    void replay(Step& step, Direction direction);
    std::uint64_t lastId() const { return undo_.empty() ? baseId_ : undo_.back().id; }

    Document& document_;
    std::function<double()> clock_;
    std::deque<Step> undo_;
    std::vector<Step> redo_;
    Step open_;
    int depth_ = 0;
    std::uint64_t nextId_ = 1;
    std::uint64_t cleanId_ = 0;
    std::uint64_t baseId_ = 0;  ///< of the state below the oldest step
};

}  // namespace pw::dom
