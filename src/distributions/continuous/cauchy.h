// The Cauchy distribution.
#pragma once

#include "distributions/adapters.h"

namespace pral {

/// F = 1/2 + atan(z)/pi; each tail as atan(1/|z|)/pi.
struct StandardCauchy {
    Support support() const { return kReals; }
    double cumulative(double z) const { return std::atan2(1.0, -z) / numerics::kPi; }
    double survival(double z) const { return cumulative(-z); }
    double log_density(double z) const {
        const double magnitude = std::fabs(z);
        const double log =
            magnitude < numerics::kSquareLimit ? numerics::log1p_fn(z * z) : 2 * std::log(magnitude);
        return -log - std::log(numerics::kPi);
    }
    double quantile(double p) const {
        if (p > 0.5) return -quantile(1 - p);
        return p < 0.25 ? -1 / std::tan(numerics::kPi * p) : std::tan(numerics::kPi * (p - 0.5));
    }
    double quantile_upper(double q) const { return -quantile(q); }
    Moments moments() const { return kNoMoments; }
    double moment_limit(Side) const { return 1; }
    double mode() const { return 0; }
};

/// Location a, scale b >= 0; b = 0 is a point mass at a.
struct Cauchy : LocationScale<StandardCauchy> {
    Cauchy(double a, double b) : LocationScale(a, b) {}
    Message check() const {
        if (!(scale >= 0)) return "Error: b must be >= 0";
        return nullptr;
    }
};

}  // namespace pral
