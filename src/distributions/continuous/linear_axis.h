// Distances within the support of a bounded distribution, whose width may be beyond the range of a double.
#pragma once

#include <cfloat>
#include <span>

#include "base/message.h"
#include "distributions/moments.h"
#include "numerics/constants.h"

namespace pral {

/// Of a point from the ends of the support.
struct Distances {
    double below, above;
};

/// Distances on the variable itself, in a unit of 1 or, over a wide support, of 2^64. Powers of two round nothing.
struct LinearAxis {
    double unit = 1, per_unit = 1, log_unit = 0;

    /// For a width that is to be in the range of a double.
    static LinearAxis over(double min, double max) { return beyond(DBL_MAX, min, max); }
    /// For a width whose reciprocal is to be in the range of normal numbers as well.
    static LinearAxis with_reciprocal(double min, double max) { return beyond(0x1p960, min, max); }

    bool is_plain() const { return unit == 1; }
    double distance(double from, double to) const { return to * per_unit - from * per_unit; }
    double move(double from, double by) const { return (from * per_unit + by) * unit; }
    Distances distances(double min, double x, double max, double) const {
        return {distance(min, x), distance(x, max)};
    }
    /// ln of what one unit of x is on the axis.
    double log_slope(double) const { return -log_unit; }
    double sum_of_log_slopes(std::span<const double> values) const {
        return -static_cast<double>(values.size()) * log_unit;
    }
    /// Of the place that lies X times `by` from `from`.
    Moments moments(const Moments& of_x, double from, double by) const {
        Moments moved = linear(of_x, by * unit, from);
        moved.mean = move(from, by * of_x.mean);
        return moved;
    }

  private:
    static LinearAxis beyond(double limit, double min, double max) {
        return max - min > limit ? LinearAxis{0x1p64, 0x1p-64, 64 * numerics::kLn2} : LinearAxis{};
    }
};

/// What there is to say against a distribution whose ends follow from other parameters, if doubles do not reach them.
inline Message object_to_ends(double min, double max) {
    return min >= -DBL_MAX && max <= DBL_MAX
               ? nullptr
               : "Error: the ends of the distribution leave the range of numbers";
}

}  // namespace pral
