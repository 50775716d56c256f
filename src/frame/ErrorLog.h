#pragma once
// The error log and the one way of catching failures.
#include <exception>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

#include "platform/HandlerLevel.h"

namespace pw {

struct FrameContext;

/** An error with a number, thrown inside a routine and caught at its edge by Trap. */
class Failure : public std::runtime_error {
  public:
    Failure(int number, const std::string& description)
        : std::runtime_error(description), number_(number) {}
    explicit Failure(const std::string& description) : Failure(kGeneral, description) {}
    int Number() const { return number_; }

    static constexpr int kGeneral = 5;  ///< also of exceptions that bear no number
    static constexpr int kOutOfMemory = 7;
    static constexpr int kUnknown = 1;  ///< something was thrown that is no exception

  private:
    int number_;
};

/** Number and description of whatever is being handled; call inside a catch block only. */
Failure CurrentFailure();

/** Appends records to error.log in the projects folder or, while that does not exist, in the folder
 *  of the user's data. Never throws, never shows anything. */
class ErrorLog {
  public:
    explicit ErrorLog(FrameContext& context) : context_(context) {}

    void LogError(std::string_view customText, const Failure& failure, std::string_view moduleDot,
                  std::string_view procedure);
    void LogError(std::string_view customText, int errorNumber, std::string_view moduleDot,
                  std::string_view procedure);

    /** Where the next record goes. */
    std::string Path() const;

    /** The open project's author for the record; empty while there is no project object. */
    std::function<std::optional<std::string>()> projectAuthor;

    /** Number of errors logged in this run, written or not, and the tag of the last one. */
    int Count() const { return count_; }
    const std::string& LastTag() const { return lastTag_; }

  private:
    std::string Record(std::string_view customText, const Failure& failure) const;

    FrameContext& context_;
    int count_ = 0;
    std::string lastTag_;
};

/** Where the failures of handlers go: into the error log, and in a sentence to the user. */
class FaultReport : public FaultSink {
  public:
    explicit FaultReport(FrameContext& context) : context_(context) {}

    void HandlerFailed(const std::string& moduleDot, const std::string& procedure) override;
    /** As HandlerFailed, but silent: for what fails again and again. */
    void Log(const std::string& moduleDot, const std::string& procedure);

  private:
    void Tell(const Failure& failure);

    FrameContext& context_;
    bool telling_ = false;  ///< what fails behind the message is only logged
};

/**
 * Runs `body` and returns its result. Whatever it throws is logged under "Module.Procedure", and
 * `failure` is returned in its place; in an open editing step it goes on, and the step is taken
 * back.
 */
template <typename R, typename F>
R Trap(ErrorLog& log, std::string_view moduleDot, std::string_view procedure, R failure, F&& body) {
    try {
        return std::forward<F>(body)();
    } catch (...) {
        if (StepScope::IsAnyOpen()) throw;
        log.LogError("", CurrentFailure(), moduleDot, procedure);
    }
    return failure;
}

/** For routines without a result. */
template <typename F>
void Trap(ErrorLog& log, std::string_view moduleDot, std::string_view procedure, F&& body) {
    static_assert(std::is_void_v<std::invoke_result_t<F>>, "name the failure value of a result");
    try {
        std::forward<F>(body)();
    } catch (...) {
        if (StepScope::IsAnyOpen()) throw;
        log.LogError("", CurrentFailure(), moduleDot, procedure);
    }
}

/** As Trap, and tells the user: for what he has asked for by other ways than the events of
 *  controls, and for whoever has work to do behind a failure. */
template <typename R, typename F>
R TrapAndTell(FaultReport& faults, const std::string& moduleDot, const std::string& procedure,
              R failure, F&& body) {
    try {
        return std::forward<F>(body)();
    } catch (...) {
        if (StepScope::IsAnyOpen()) throw;
        faults.HandlerFailed(moduleDot, procedure);
    }
    return failure;
}

/** For routines without a result. */
template <typename F>
void TrapAndTell(FaultReport& faults, const std::string& moduleDot, const std::string& procedure,
                 F&& body) {
    static_assert(std::is_void_v<std::invoke_result_t<F>>, "name the failure value of a result");
    try {
        std::forward<F>(body)();
    } catch (...) {
        if (StepScope::IsAnyOpen()) throw;
        faults.HandlerFailed(moduleDot, procedure);
    }
}

}  // namespace pw
