#include "distributions/continuous/pert.h"

namespace pral {

/// With the mode s of the way from min to max the shapes are 1 + 4 s and 5 - 4 s, and with them the points where the
/// cumulative is LowP and HighP are told. In units of the width they lie s - low(s) below and high(s) - s above the mode;
/// the first over the second grows with s and must be (Mode - Low)/(High - Mode).
Support PERTAlt::ends(const ModeAndPercentiles& points) {
    if (points.check() != nullptr) return {numerics::kNaN, numerics::kNaN};
    const LinearAxis along = LinearAxis::with_reciprocal(points.Low, points.High);
    const double total = along.distance(points.Low, points.High);
    const double below = along.distance(points.Low, points.Mode) / total;
    const double above = along.distance(points.Mode, points.High) / total;
    struct Standard {
        double from_low, from_high, width;  // of the mode from the two points, and between these
    };
    const auto standard = [&](double s, double rest) {
        const numerics::BetaRatio ratio(1 + 4 * s, 1 + 4 * rest);
        const numerics::UnitPoint low = numerics::beta_lower_inverse(ratio, points.LowP);
        const numerics::UnitPoint high = numerics::beta_upper_inverse(ratio, 1 - points.HighP);
        return Standard{s < rest ? s - low.x : low.y - rest, s < rest ? high.x - s : rest - high.y,
                        s < rest ? high.x - low.x : low.y - high.y};
    };
    // The root in s or, where that is above 1/2, in 1 - s: regula falsi with the weights of Illinois.
    const auto excess = [&](double s, double rest) {
        const Standard at = standard(s, rest);
        return at.from_low * above - at.from_high * below;
    };
    const bool left = excess(0.5, 0.5) >= 0;
    const auto f = [&](double t) { return left ? excess(t, 1 - t) : -excess(1 - t, t); };
    double low = 0, high = 0.5, at_low = f(low), at_high = f(high), t = high;
    constexpr int kMaxSteps = 200;
    for (int step = 0, last = 0; step < kMaxSteps && high - low > 2e-16 * high && at_high != at_low; ++step) {
        double next = step % 4 == 3 ? 0.5 * (low + high) : low + (high - low) * (at_low / (at_low - at_high));
        if (!(next > low && next < high)) next = 0.5 * (low + high);
        const double at = f(next);
        const double moved = std::fabs(next - t);
        t = next;
        if (at == 0 || moved <= 1e-16 * t) break;
        if (at < 0) {
            low = t, at_low = at;
            if (last == -1) at_high *= 0.5;
            last = -1;
        } else {
            high = t, at_high = at;
            if (last == 1) at_low *= 0.5;
            last = 1;
        }
    }
    const double s = left ? t : 1 - t, rest = left ? 1 - t : t;
    const double width = total / standard(s, rest).width;
    return {along.move(points.Mode, -(s * width)), along.move(points.Mode, rest * width)};
}

}  // namespace pral
