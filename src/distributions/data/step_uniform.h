// The uniform distribution on an equally spaced grid.
#pragma once

#include <algorithm>
#include <cmath>

#include "distributions/family.h"

namespace pral {

/// Equally likely points min, min + step, ..., max. min <= max, and (max - min)/step is a whole number exactly: 0.3/0.1 is
/// not. The quantile at p is the point number floor((k + 1) p), k being the number of steps. An x counts as a point when
/// it differs from it by no more than a few roundings.
struct StepUniform {
    static constexpr bool kDiscrete = true;
    static constexpr bool kCountsNeighbours = true;
    double min, max, step;
    double steps = (max - min) / step;

    Message check() const {
        if (!(min <= max)) return "Error: Min must be <= Max";
        // A quotient that underflows or overflows counts no steps.
        const bool counts = steps >= (min < max ? 1 : 0) && steps <= numerics::kInfinity;
        if (!counts || steps != std::floor(steps))
            return "Error: There must be an integer number of steps between Min and Max";
        return nullptr;
    }
    Support support() const { return {min, max}; }
    std::optional<double> point_mass() const { return min == max ? std::optional(min) : std::nullopt; }

    double cumulative(double x) const {
        return std::isnan(x) ? x : std::min((index(x) + 1) / (steps + 1), 1.0);
    }
    double survival(double x) const {
        return std::isnan(x) ? x : std::max((steps - index(x)) / (steps + 1), 0.0);
    }
    double log_density(double x) const {
        if (std::isnan(x)) return x;
        return is_point(x, nearest(x)) ? -std::log(steps + 1) : -HUGE_VAL;
    }
    double quantile(double p) const { return point(std::min(std::floor((steps + 1) * p), steps)); }

    Moments moments() const {
        const double points = steps + 1, square = points * points;
        return {0.5 * min + 0.5 * max, (max - min) * ((max - min) / 12) * ((points + 1) / steps), 0,
                -1.2 * (1 + 2 / (square - 1))};
    }
    double mode() const { return min; }

  private:
    double point(double number) const { return number == steps ? max : min + number * step; }
    double nearest(double x) const { return std::floor((x - min) / step + 0.5); }
    bool is_point(double x, double number) const {
        const double rounding = 4 * DBL_EPSILON * std::max(std::fabs(min), std::fabs(max));
        return std::fabs(x - point(number)) <= rounding;
    }
    /// The number of the last point at or below x.
    double index(double x) const {
        const double number = nearest(x);
        return is_point(x, number) ? number : std::floor((x - min) / step);
    }
};

}  // namespace pral
