// A progress bar on the standard error.
#include "progress.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdio>

#include "terminal.h"

namespace cli {

Progress::Progress(std::size_t steps) : steps_(steps), watched_(is_terminal(stderr)) {}

Progress::~Progress() {
    draw("");
    draw("");  // the first has wiped the line, this one leads back to its beginning
}

void Progress::step(const std::string& name) {
    constexpr std::size_t kBar = 30;
    const std::size_t full = kBar * done_ / steps_;
    ++done_;
    draw(fmt::format("[{:#<{}}{:.<{}}] {}/{} {}", "", full, "", kBar - full, done_, steps_, name));
}

/// Over the line before, whose rest is blanked.
void Progress::draw(const std::string& line) {
    if (!watched_) return;
    std::fprintf(stderr, "\r%-*s", static_cast<int>(width_), line.c_str());
    std::fflush(stderr);
    width_ = line.size();
}

}  // namespace cli
