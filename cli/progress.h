// A progress bar on the standard error.
#pragma once

#include <chrono>
#include <cstddef>
#include <string>

namespace cli {

/// Drawn only where someone watches: when the standard error is a terminal. Wiped out at the end.
class Progress {
  public:
    /// `what` is counted: "families".
    explicit Progress(std::string what);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// Tells how far the work has come, and when it may end.
    void at(std::size_t done, std::size_t of);

  private:
    using Clock = std::chrono::steady_clock;
    void draw(const std::string& line);

    const std::string what_;
    const bool watched_;
    const Clock::time_point begun_ = Clock::now();
    Clock::time_point drawn_ = {};
    std::size_t width_ = 0;
};

}  // namespace cli
