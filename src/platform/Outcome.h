#pragma once
// What a routine that can fail gives back: a value, or a problem that is a whole sentence for the
// user. Whoever called it tells the user, each in its own way: a window in a message box, the
// command line on its error output.
#include <cassert>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace pw {

/** What is wrong and what to do, in whole sentences. */
struct Problem {
    std::string text;
};

template <typename T>
class [[nodiscard]] Outcome {
  public:
    Outcome(T value) : value_(std::move(value)) {}
    Outcome(Problem problem) : problem_(std::move(problem.text)) { assert(!problem_.empty()); }

    explicit operator bool() const { return value_.has_value(); }
    T& operator*() { return *value_; }
    const T& operator*() const { return *value_; }
    T* operator->() { return &*value_; }
    const T* operator->() const { return &*value_; }
    /** "" when there is a value. */
    const std::string& problem() const { return problem_; }

    /** What was done all the same but deserves a word: sentences, or names of what was left. */
    std::vector<std::string> warnings;

  private:
    std::optional<T> value_;
    std::string problem_;
};

/** For routines that have nothing to give back. */
template <>
class [[nodiscard]] Outcome<void> {
  public:
    Outcome() = default;
    Outcome(Problem problem) : problem_(std::move(problem.text)) { assert(!problem_.empty()); }

    explicit operator bool() const { return problem_.empty(); }
    const std::string& problem() const { return problem_; }

    std::vector<std::string> warnings;

  private:
    std::string problem_;
};

}  // namespace pw
