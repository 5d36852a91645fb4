#include "distributions/continuous/triangle.h"

namespace pral {

namespace {

/// A flank in which `tail` lies beyond a point and `gap` between that point and the mode.
struct Flank {
    double distance, tail;  // of the point from the mode, and the probability beyond it

    /// k - sqrt(tail k) for k = tail + gap, the probability of the flank: proportional to k times (1 - z) if the point
    /// lies z of the way from the mode to the end.
    double reach(double gap) const {
        const double k = std::sqrt(tail + gap);
        return k * gap / (k + std::sqrt(tail));
    }
    double reach_slope(double gap) const { return 1 - 0.5 * std::sqrt(tail / (tail + gap)); }
    /// How far the tangent of reach passes below 0 at gap 0.
    double bend(double gap) const {
        const double k = std::sqrt(tail + gap), root = std::sqrt(tail), share = gap / (k + root);
        return 0.5 * root / k * share * share;
    }
    double width(double gap) const { return distance * ((tail + gap) / reach(gap)); }
};

/// The gap of `here`, at most half of `total`, where both flanks have widths proportional to their probabilities:
/// beyond.distance here.reach(gap) = here.distance beyond.reach(total - gap). The left side rises from 0, the right side falls.
/// The root of Newton's tangent is a sum of positive terms: between flanks of very different widths a difference from the last
/// gap would leave nothing of it.
double solve_gap(const Flank& here, const Flank& beyond, double total) {
    constexpr int kMaxSteps = 100;  // halvings reach 1e-30 of the total; Newton's steps need 5
    double lower = 0, upper = 0.5 * total, gap = upper;
    for (int step = 0; step < kMaxSteps; ++step) {
        const double excess = beyond.distance * here.reach(gap) - here.distance * beyond.reach(total - gap);
        (excess > 0 ? upper : lower) = gap;
        const double slope =
            beyond.distance * here.reach_slope(gap) + here.distance * beyond.reach_slope(total - gap);
        double next = (here.distance * (beyond.reach(total - gap) + gap * beyond.reach_slope(total - gap)) +
                       beyond.distance * here.bend(gap)) /
                      slope;
        if (std::fabs(next - gap) <= 4e-16 * gap) return next;
        if (!(next > lower && next < upper)) next = 0.5 * (lower + upper);
        gap = next;
    }
    return gap;
}

}  // namespace

Support TriangleAlt::ends(const ModeAndPercentiles& points) {
    const LinearAxis along = LinearAxis::with_reciprocal(points.Low, points.High);
    const Flank left = {along.distance(points.Low, points.Mode), points.LowP};
    const Flank right = {along.distance(points.Mode, points.High), 1 - points.HighP};
    const auto around_mode = [&](double below, double above) {
        return Support{along.move(points.Mode, -below), along.move(points.Mode, above)};
    };
    const double total = points.HighP - points.LowP, half = 0.5 * total;
    if (right.distance * left.reach(half) > left.distance * right.reach(half)) {
        const double gap = solve_gap(left, right, total);
        return around_mode(left.width(gap), right.width(total - gap));
    }
    const double gap = solve_gap(right, left, total);
    return around_mode(left.width(total - gap), right.width(gap));
}

}  // namespace pral
