// The quantile of a continuous family that has no closed form: a safeguarded Newton search on its cumulative.
#pragma once

#include <cmath>

#include "distributions/family.h"
#include "numerics/ordinals.h"

namespace pral {

/// The x whose lower (upper) tail is `tail`, 0 < tail < 1, best called with the smaller of the two. Newton steps on the
/// logarithm of the tail, which is nearly straight far out where the tail itself is flat; from `start`, kept inside a
/// bracket that begins as the support. A step that leaves the bracket, or a tail that does not shrink the way it should,
/// is replaced by the bracket's middle, unless rounding alone is left: then halving could only follow the noise.
template <class D>
double search_quantile(const D& d, Side side, double tail, double start) {
    constexpr int kMaxSteps = 200;      // 64 halvings suffice; a Newton step between two of them does no harm
    constexpr double kLastStep = 1e-9;  // the next one would be of the order of its square
    constexpr double kRounding = 2e-13;  // what the tails may be wrong by, relative
    constexpr double kUlp = 2.3e-16;
    auto [lower, upper] = d.support();
    const double log_tail = std::log(tail);
    double x = start > lower && start < upper ? start : numerics::middle_double(lower, upper);
    double previous = HUGE_VAL;
    for (int step = 0; step < kMaxSteps; ++step) {
        const double at = side == Side::lower ? d.cumulative(x) : d.survival(x);
        // Grows with x for the lower tail, falls for the upper. The difference of logarithms has fewer digits.
        const double ratio = at / tail;
        const double excess = ratio > 0.5 && ratio < 2 ? std::log(ratio) : std::log(at) - log_tail;
        if (excess == 0 || std::isnan(excess)) return x;
        const bool too_high = side == Side::lower ? excess > 0 : excess < 0;
        (too_high ? upper : lower) = x;
        const double slope =
            std::exp(d.log_density(x) - (log_tail + excess));  // far out the density underflows
        const double newton = x - (side == Side::lower ? excess : -excess) / slope;
        const double size = std::fabs(excess), moved = std::fabs(newton - x);
        if (size < 0.1 && moved <= kUlp * std::fabs(x)) return newton;
        const bool accepted = newton > lower && newton < upper && size < 0.5 * previous;
        if (!accepted && size < kRounding) return x;
        const double next = accepted ? newton : numerics::middle_double(lower, upper);
        previous = size;
        if (next == lower || next == upper || (accepted && size < kLastStep)) return next;
        x = next;
    }
    return x;
}

}  // namespace pral
