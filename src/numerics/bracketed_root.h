// The root of a function of one variable without derivatives.
#pragma once

#include <cmath>

namespace pral::numerics {

/// Where f, which is negative at `low` and positive at `high`, 0 <= low < high, is 0, to its rounding: regula falsi with the
/// weights of Illinois (Dowell and Jarratt 1971), each fourth step a halving, at most so many steps. `high` where f has no sign
/// to tell.
template <class Function>
double bracketed_root(Function&& f, double low, double high, int steps) {
    double at_low = f(low), at_high = f(high), x = high;
    enum class Moved { neither, lower, upper } last = Moved::neither;
    for (int step = 0; step < steps && high - low > 2e-16 * high && at_high != at_low; ++step) {
        double next = step % 4 == 3 ? 0.5 * (low + high) : low + (high - low) * (at_low / (at_low - at_high));
        if (!(next > low && next < high)) next = 0.5 * (low + high);
        const double at = f(next), moved = std::fabs(next - x);
        x = next;
        if (at == 0 || moved <= 1e-16 * x) break;
        if (at < 0) {
            low = x, at_low = at;
            if (last == Moved::lower) at_high *= 0.5;
            last = Moved::lower;
        } else {
            high = x, at_high = at;
            if (last == Moved::upper) at_low *= 0.5;
            last = Moved::upper;
        }
    }
    return x;
}

}  // namespace pral::numerics
