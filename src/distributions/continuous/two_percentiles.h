// Families on [minimum, inf) told by two points (value, probability) of their cumulative.
#pragma once

#include "distributions/adapters.h"
#include "numerics/extended_log.h"

namespace pral {

/// Two points of a cumulative and the lower end of the support: 0 < probability < 1, minimum < value, and the larger
/// probability belongs to the larger value.
struct TwoPercentiles {
    double value1, probability1, value2, probability2, minimum;

    Message check() const {
        if (!(probability1 > 0 && probability1 < 1)) return "Error: probability1 must be on (0,1)";
        if (!(probability2 > 0 && probability2 < 1)) return "Error: probability2 must be on (0,1)";
        if (probability1 == probability2) return "Error: probability1 and probability2 must be different";
        if (!(value1 < value2 || value1 > value2)) return "Error: value1 and value2 must be different";
        if (!(minimum < value1 && minimum < value2))
            return "Error: if minimum value must be less then value1 and value2";
        if (probability1 > probability2 && value1 < value2)
            return "Error: if probability1 > probability2 then value1 must be > value2";
        if (probability1 < probability2 && value1 > value2)
            return "Error: if probability1 < probability2 then value1 must be < value2";
        return nullptr;
    }
};

/// minimum + c e^(spread (Z - z)), c being a value's distance from the minimum, z the quantile of the standard
/// distribution Z at its probability, and spread = ln(c2/c1)/(z2 - z1). The point nearer to Z's center is the one
/// measured from; a natural scale may lie so far from both that its rounding would show.
template <class Standard>
struct ThroughTwoPercentiles : Shifted<LogLocationScale<LocationScale<Standard>>> {
    TwoPercentiles given;

    explicit ThroughTwoPercentiles(const TwoPercentiles& points)
        : Shifted<LogLocationScale<LocationScale<Standard>>>(points.minimum, above_minimum(points)),
          given(points) {}
    Message check() const { return given.check(); }

  private:
    static LogLocationScale<LocationScale<Standard>> above_minimum(const TwoPercentiles& points) {
        const double z1 = Standard().quantile(points.probability1);
        const double z2 = Standard().quantile(points.probability2);
        const double first = points.value1 - points.minimum, second = points.value2 - points.minimum;
        const double log_ratio = numerics::log_ratio(second, first);
        const double spread = log_ratio / (z2 - z1);
        const bool from_first = std::fabs(z1) < std::fabs(z2);
        const double center = from_first ? first : second;
        return {center,
                std::log(center),
                spread,
                {from_first ? -z1 : -z2, 1},
                numerics::divide(numerics::two_sum(z2, -z1), precise_log_ratio(second, first, log_ratio))};
    }
    /// With more digits than a double's, where they can be had.
    static numerics::DoubleDouble precise_log_ratio(double x, double y, double log) {
        return std::fabs(log) < 600 && std::max(x, y) < 1e290 && std::min(x, y) > numerics::kLeastWithDigits
                   ? numerics::extended_log(numerics::divide({x, 0}, {y, 0}))
                   : numerics::DoubleDouble{log, 0};
    }
};

}  // namespace pral
