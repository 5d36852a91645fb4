#include "fitting/coordinates.h"

namespace pral::fitting {

namespace {

using Kind = Range::Kind;

/// The inverse hyperbolic sine of a shape; where the shape is limited, as a share of its largest value on the logistic scale,
/// which levels off towards the limits.
double from_shape(double shape, double most) {
    const double t = std::asinh(shape);
    return std::isinf(most) ? t : 2 * std::atanh(t / std::asinh(most));
}
double to_shape(double t, double most) {
    return std::sinh(std::isinf(most) ? t : std::asinh(most) * std::tanh(0.5 * t));
}

/// Ends that the data set become numbers.
Range resolved(Range range, const Extent& x) {
    if (range.kind == Kind::below_min) return between(range.lower, x.min);
    if (range.kind == Kind::above_max) return between(x.max, HUGE_VAL);
    return range;
}

}  // namespace

Coordinates::Coordinates(std::span<const Range> ranges, const Parameters& origin, const Extent& x)
    : origin_(origin), spread_(x.spread) {
    for (const Range& range : ranges) ranges_.push_back(resolved(range, x));
}

int Coordinates::first_outside(const Parameters& parameters) const {
    for (std::size_t i = 0; i < ranges_.size(); ++i) {
        const auto& [kind, lower, upper, power, closed] = ranges_[i];
        const bool below = closed ? parameters[i] < lower : parameters[i] <= lower;
        if (kind == Kind::between && (below || !(parameters[i] < upper))) return static_cast<int>(i);
    }
    return -1;
}

Point Coordinates::point(const Parameters& parameters) const {
    Point point;
    for (std::size_t i = 0; i < ranges_.size(); ++i) {
        const auto& [kind, lower, upper, power, closed] = ranges_[i];
        const double p = parameters[i];
        if (kind == Kind::location) point.push_back((p - origin_[i]) / std::pow(spread_, power));
        if (kind == Kind::real) point.push_back(p);
        if (kind == Kind::shape) point.push_back(from_shape(p, upper));
        if (kind != Kind::between) continue;
        // An end that the data set is measured by their spread, another by itself.
        if (std::isinf(lower))
            point.push_back(std::log((upper - p) / spread_));
        else if (std::isinf(upper))
            point.push_back(std::log(p - lower));
        else
            point.push_back(std::log((p - lower) / (upper - p)));
    }
    return point;
}

Parameters Coordinates::parameters(std::span<const double> point) const {
    Parameters parameters = origin_;
    auto next = point.begin();
    for (std::size_t i = 0; i < ranges_.size(); ++i) {
        const auto& [kind, lower, upper, power, closed] = ranges_[i];
        if (kind == Kind::held) continue;
        const double t = *next++;
        if (kind == Kind::location)
            parameters[i] = origin_[i] + std::pow(spread_, power) * t;
        else if (kind == Kind::real)
            parameters[i] = t;
        else if (kind == Kind::shape)
            parameters[i] = to_shape(t, upper);
        else if (std::isinf(lower))
            parameters[i] = upper - spread_ * std::exp(t);
        else if (std::isinf(upper))
            parameters[i] = lower + std::exp(t);
        else
            parameters[i] = lower + (upper - lower) / (1 + std::exp(-t));
    }
    return parameters;
}

}  // namespace pral::fitting
