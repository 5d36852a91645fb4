// The Weibull distribution under its parameterisations, and its special case of Rayleigh.
#pragma once

#include <numbers>

#include "distributions/continuous/extreme_value.h"
#include "distributions/continuous/two_percentiles.h"

namespace pral {

/// Shape alpha > 0, scale beta >= 0, 0 being a point mass at 0; support [0, inf). F = 1 - exp(-(x/beta)^alpha):
/// alpha ln(x/beta) has Gumbel's distribution for minima.
struct Weibull : ShapeAndScale<StandardGumbelMin> {
    using ShapeAndScale::ShapeAndScale;
};

/// Theta + Weibull(Alpha, Beta), Alpha > 0, Beta >= 0, 0 being a point mass at Theta, Theta >= 0; support [Theta, inf).
struct Weibull3 : Shifted<Weibull> {
    Weibull3(double Alpha, double Beta, double Theta) : Shifted(Theta, {Alpha, Beta}) {}
    Message check() const {
        if (!(base.alpha > 0)) return "Error: Alpha must be > 0";
        if (!(base.beta >= 0)) return "Error: Beta must be >= 0";
        if (!(map.origin >= 0)) return "Error: Theta must be >= 0";
        return nullptr;
    }
};

/// The Weibull distribution above `minimum` through two points of its cumulative.
struct WeibullAlt : ThroughTwoPercentiles<StandardGumbelMin> {
    WeibullAlt(double value1, double probability1, double value2, double probability2, double minimum)
        : ThroughTwoPercentiles({value1, probability1, value2, probability2, minimum}) {}
};

/// Scale b >= 0, 0 being a point mass at 0; support [0, inf). F = 1 - exp(-x^2/(2 b^2)).
struct Rayleigh : Weibull {
    double b;

    explicit Rayleigh(double b_) : Weibull(2, std::numbers::sqrt2 * b_), b(b_) {}
    Message check() const {
        if (!(b >= 0)) return "Error: b must be >= 0";
        return nullptr;
    }
    using Weibull::log_likelihood;
    double log_likelihood(const Sample& x) const {
        return x.count() * (log_density(x.root_mean_square()) - x.log_below_root_mean_square());
    }
};

}  // namespace pral
