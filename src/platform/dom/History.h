#pragma once
// The undo and redo of one page. A step holds the primitives that were applied, and the selection
// before and after; it is undone whole.
//
// Steps of upkeep stand among those of the user and are passed over together with them: an undo
// takes back the upkeep that lies upon the user's last step, then that step, and has the page
// brought up to date anew. Upkeep that is made while something can be redone belongs to that state
// of the page alone: it is `loose`, and goes before the next undo or redo.
#include <cstdint>
#include <deque>
#include <functional>
#include <vector>

#include "platform/dom/Gateway.h"

namespace pw::dom {

class History {
  public:
    explicit History(Document& document);

    /** Returns the number of primitives that the open step holds so far. */
    std::size_t beginStep(StepKind kind);
    /** Takes back the primitives of the open step from that one on. */
    void rollBack(std::size_t begin, const Selection& selection);
    void endStep();
    bool inStep() const { return depth_ > 0; }
    /** Of a primitive that was applied; it belongs to the open step, or is one of its own. */
    void record(Primitive primitive);

    bool canUndo() const;
    bool canRedo() const { return depth_ == 0 && !redo_.empty(); }
    bool undo();
    bool redo();
    void seal();
    void clear();
    bool isDirty() const;
    void markClean();
    void setClock(std::function<double()> clock) { clock_ = std::move(clock); }
    void setUpkeep(std::function<void(Document&)> upkeep) { upkeep_ = std::move(upkeep); }

  private:
    struct Step {
        StepKind kind = StepKind::Command;
        std::vector<Primitive> primitives;
        Selection before;
        Selection after;
        double time = 0;
        std::uint64_t id = 0;
        bool sealed = false;
        bool loose = false;
        bool isUpkeep() const { return kind == StepKind::Upkeep; }
    };
    bool mergesIntoLast(const Step& step) const;
    void finish(Step step);
    void notify();
    void replay(std::vector<Primitive>& primitives, std::size_t begin, Direction direction,
                Origin origin);
    Step takeBack();
    void bringUpToDate();
    void showSelection(const Selection& selection);
    std::uint64_t lastId() const { return undo_.empty() ? baseId_ : undo_.back().id; }

    Document& document_;
    std::function<double()> clock_;
    std::function<void(Document&)> upkeep_;
    std::deque<Step> undo_;
    std::vector<Step> redo_;
    Step open_;
    int depth_ = 0;
    std::uint64_t nextId_ = 1;
    std::uint64_t cleanId_ = 0;
    std::uint64_t baseId_ = 0;  ///< of the state below the oldest step
};

}  // namespace pw::dom
