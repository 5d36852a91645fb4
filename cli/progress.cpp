// A progress bar on the standard error.
#include "progress.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "terminal.h"

namespace cli {

namespace {

/// Nothing while too little is done to tell.
std::string time_left(double seconds, std::size_t done, std::size_t of) {
    constexpr double kEnough = 1, kMinute = 60, kHour = 3600;
    if (seconds < kEnough || done == 0) return "";
    const double left = std::ceil(seconds / static_cast<double>(done) * static_cast<double>(of - done));
    if (left < 2 * kMinute) return fmt::format(", {:.0f} s left", left);
    if (left < 2 * kHour) return fmt::format(", {:.0f} min left", left / kMinute);
    return fmt::format(", {:.0f} h left", left / kHour);
}

}  // namespace

Progress::Progress(std::string what) : what_(std::move(what)), watched_(is_terminal(stderr)) {}

Progress::~Progress() {
    draw("");
    draw("");  // the first has wiped the line, this one leads back to its beginning
}

void Progress::at(std::size_t done, std::size_t of) {
    constexpr std::size_t kBar = 30;
    constexpr auto kPause = std::chrono::milliseconds(100);
    const auto now = Clock::now();
    if (!watched_ || of == 0 || now - drawn_ < kPause) return;
    drawn_ = now;
    done = std::min(done, of);
    const std::size_t full = kBar * done / of;
    const double seconds = std::chrono::duration<double>(now - begun_).count();
    draw(fmt::format("[{:#<{}}{:.<{}}] {}/{} {}{}", "", full, "", kBar - full, done, of, what_,
                     time_left(seconds, done, of)));
}

/// Over the line before, whose rest is blanked.
void Progress::draw(const std::string& line) {
    if (!watched_) return;
    std::fprintf(stderr, "\r%-*s", static_cast<int>(width_), line.c_str());
    std::fflush(stderr);
    width_ = line.size();
}

}  // namespace cli
