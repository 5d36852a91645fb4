// A progress bar on the standard error.
#include "progress.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdio>

#ifdef _WIN32
#include <io.h>
#else
#include <unistd.h>
#endif

namespace cli {

namespace {

bool standard_error_is_terminal() {
#ifdef _WIN32
    return _isatty(_fileno(stderr)) != 0;
#else
    return isatty(STDERR_FILENO) != 0;
#endif
}

}  // namespace

Progress::Progress(std::size_t steps) : steps_(steps), watched_(standard_error_is_terminal()) {}

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
