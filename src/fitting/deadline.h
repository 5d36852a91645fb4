// The time that a fit may take.
#pragma once

#include <chrono>
#include <exception>

namespace pral::fitting {

/// A calculation that has reached its deadline.
struct TimedOut : std::exception {
    const char* what() const noexcept override { return "calculation aborted or timeout expired"; }
};

/// When a calculation has to end: after so much processor time of the thread that makes the deadline.
class Deadline {
  public:
    /// Not a number and negative values count as 0.
    static Deadline in(double seconds);
    bool passed() const;
    void check() const {
        if (passed()) throw TimedOut();
    }

  private:
    using Clock = std::chrono::steady_clock;
    explicit Deadline(double end) : end_(end), next_look_(Clock::now()) {}

    double end_;  // on the thread's clock, in seconds
    /// A thread cannot use more time than passes. Before this moment its clock, which is slow to read, need not be.
    mutable Clock::time_point next_look_;
};

}  // namespace pral::fitting
