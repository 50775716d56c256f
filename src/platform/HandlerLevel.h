#pragma once
// How far an exception may travel. Nothing may die of one, and nobody may swallow one whose caller
// counts on it: the outermost handler of the user's is where it ends, and in an open editing step
// it always passes, so that the step is taken back.
//
// How deep the program stands in handlers and steps is a matter of the thread's stack, and that is
// where it is counted. Whoever lets events through within a handler (a modal window, a wait) begins
// a round of its own with EventRound: a handler in it is an outermost one again, and its failure
// does not reach what waits around it.
#include <string>
#include <utility>

namespace pw {

/** Where the failure of a handler is logged, and whom it is told. */
class FaultSink {
  public:
    virtual ~FaultSink() = default;
    /** Called while the exception is being handled; throws nothing. The two make the tag of the
     *  log: "Options.", "cmdOK_Click". */
    virtual void HandlerFailed(const std::string& moduleDot, const std::string& procedure) = 0;
};

namespace handlers {

struct Depth {
    int handlers = 0;  ///< running within each other
    int steps = 0;     ///< open editing steps
};

inline thread_local Depth depth;

}  // namespace handlers

/** Around the call of a handler. */
class HandlerScope {
  public:
    HandlerScope() { ++handlers::depth.handlers; }
    ~HandlerScope() { --handlers::depth.handlers; }
    HandlerScope(const HandlerScope&) = delete;
    HandlerScope& operator=(const HandlerScope&) = delete;
    /** No other handler of this round, and no step, waits for this one. */
    bool IsOutermost() const { return handlers::depth.handlers == 1 && handlers::depth.steps == 0; }
};

/** Around an open editing step. */
class StepScope {
  public:
    StepScope() { ++handlers::depth.steps; }
    ~StepScope() { --handlers::depth.steps; }
    StepScope(const StepScope&) = delete;
    StepScope& operator=(const StepScope&) = delete;
    static bool IsAnyOpen() { return handlers::depth.steps > 0; }
};

/** Around anything that lets events through. */
class EventRound {
  public:
    EventRound() : outer_(std::exchange(handlers::depth, {})) {}
    ~EventRound() { handlers::depth = outer_; }
    EventRound(const EventRound&) = delete;
    EventRound& operator=(const EventRound&) = delete;

  private:
    handlers::Depth outer_;
};

}  // namespace pw
