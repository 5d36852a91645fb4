// A progress bar on the standard error.
#pragma once

#include <cstddef>
#include <string>

namespace cli {

/// Drawn only where someone watches: when the standard error is a terminal. Wiped out at the end.
class Progress {
  public:
    explicit Progress(std::size_t steps);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// Tells what comes next.
    void step(const std::string& name);

  private:
    void draw(const std::string& line);

    const std::size_t steps_;
    std::size_t done_ = 0, width_ = 0;
    const bool watched_;
};

}  // namespace cli
