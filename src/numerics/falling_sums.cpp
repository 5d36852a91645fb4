#include "numerics/falling_sums.h"

#include <algorithm>
#include <cmath>

#include "numerics/elementary.h"
#include "numerics/gauss_legendre.h"

namespace pral::numerics {

double sum_less_integral(FunctionView f) {
    double v[8];
    for (int i = 0; i < 8; ++i) v[i] = f(i - 4);
    const double d1 = v[4] - v[3], d3 = v[5] - 3 * v[4] + 3 * v[3] - v[2],
                 d5 = v[6] - 5 * v[5] + 10 * v[4] - 10 * v[3] + 5 * v[2] - v[1],
                 d7 = v[7] - 7 * v[6] + 21 * v[5] - 35 * v[4] + 35 * v[3] - 21 * v[2] + 7 * v[1] - v[0];
    return d1 / 24 - d3 * (17.0 / 5760) + d5 * (367.0 / 967680) - d7 * (27859.0 / 464486400);
}

/// Panels over which f falls by e^-4 at most, and half of what is left of the room, are resolved by the rule of 20 points;
/// they end with the room, or with parts that no longer count.
double log_falling_integral(FunctionView log_f, double room, double scale) {
    constexpr double kLeastFall = 1, kMostFall = 4, kNegligible = 1e-17;
    constexpr int kMostTrials = 400, kMostPanels = 1000;
    const double unit = log_f(0.0);
    if (!std::isfinite(unit) || !(room > 0)) return -HUGE_VAL;
    double length = std::min(scale, room);
    for (int trial = 0; trial < kMostTrials; ++trial) {
        const double fall = unit - log_f(length);
        if (!(fall <= kMostFall))
            length *= std::clamp(0.5 * kMostFall / fall, 1e-3, 0.5);
        else if (fall < kLeastFall && length < room)
            length = std::min(length * (fall > 0 ? std::clamp(0.5 * kMostFall / fall, 2.0, 1e3) : 1e3), room);
        else
            break;
    }
    const double first = length;
    double sum = 0, from = 0, before = unit;
    for (int panel = 0; panel < kMostPanels && from < room && length > 0; ++panel) {
        const double left = room - from;
        // f may be 0 at the end of the room, as a power of what is left.
        const bool ends = !(length < left) && before - log_f(room) < kLeastFall;
        length = ends ? left : std::min(length, 0.5 * left);
        const double part = length / first * integrate(1, 1, [&](double t) {
                                return std::exp(log_f(from + length * t) - unit);
                            });
        sum += part;
        if (ends || !(part > kNegligible * sum)) break;
        from += length;
        const double here = log_f(from), fall = before - here;
        before = here;
        if (fall < kLeastFall) length *= 2;
        if (fall > kMostFall) length /= 2;
    }
    return unit + std::log(first) + std::log(sum);
}

double log_falling_sum(FunctionView log_f, double terms) {
    constexpr double kSlow = 0.98, kShort = 2048, kNegligible = 1e-17, kScale = 64, kWithoutDigits = -1e13;
    const double unit = log_f(0.0);
    if (!std::isfinite(unit) || !(terms >= 1)) return -HUGE_VAL;
    if (unit < kWithoutDigits) return unit;  // what the others add would not show
    const auto f = [&](double n) { return std::exp(log_f(n) - unit); };
    if (terms <= kShort || f(1) < kSlow) {
        double sum = 1, term = 1;
        for (double n = 1; n < std::min(terms, kShort) && term > kNegligible * sum; ++n) sum += term = f(n);
        return unit + std::log(sum);
    }
    const double log_integral = log_falling_integral([&](double t) { return log_f(t - 0.5); }, terms, kScale);
    return log_integral + log1p_fn(sum_less_integral(f) * std::exp(unit - log_integral));
}

}  // namespace pral::numerics
