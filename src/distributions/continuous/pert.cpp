#include "distributions/continuous/pert.h"

#include "numerics/bracketed_root.h"

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
    // The root in s or, where that is above 1/2, in 1 - s.
    const auto excess = [&](double s, double rest) {
        const Standard at = standard(s, rest);
        return at.from_low * above - at.from_high * below;
    };
    const bool left = excess(0.5, 0.5) >= 0;
    const auto f = [&](double t) { return left ? excess(t, 1 - t) : -excess(1 - t, t); };
    constexpr int kMostSteps = 200;
    const double t = numerics::bracketed_root(f, 0, 0.5, kMostSteps);
    const double s = left ? t : 1 - t, rest = left ? 1 - t : t;
    const double width = total / standard(s, rest).width;
    return {along.move(points.Mode, -(s * width)), along.move(points.Mode, rest * width)};
}

}  // namespace pral
