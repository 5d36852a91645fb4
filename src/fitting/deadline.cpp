#include "fitting/deadline.h"

#include <algorithm>
#include <cmath>
#include <ctime>

#ifdef _WIN32
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>
#endif

namespace pral::fitting {

namespace {

/// The processor time that this thread has used, in seconds.
double processor_time() {
#ifdef _WIN32
    FILETIME creation, exit, kernel, user;
    if (!GetThreadTimes(GetCurrentThread(), &creation, &exit, &kernel, &user)) return 0;
    const auto seconds = [](const FILETIME& time) {
        constexpr double kUnit = 1e-7;
        return kUnit * (0x1p32 * static_cast<double>(time.dwHighDateTime) + time.dwLowDateTime);
    };
    return seconds(kernel) + seconds(user);
#else
    timespec time = {};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
#endif
}

}  // namespace

Deadline Deadline::in(double seconds) { return Deadline(processor_time() + std::fmax(seconds, 0)); }

bool Deadline::passed() const {
    const Clock::time_point now = Clock::now();
    if (now < next_look_) return false;
    constexpr double kLongestWait = 60;
    const double left = end_ - processor_time();
    if (!(left > 0)) return true;
    const std::chrono::duration<double> wait(std::min(left, kLongestWait));
    next_look_ = now + std::chrono::duration_cast<Clock::duration>(wait);
    return false;
}

}  // namespace pral::fitting
