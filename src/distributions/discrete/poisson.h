// The Poisson distribution.
#pragma once

#include "distributions/discrete/discrete.h"
#include "numerics/gamma_ratio.h"

namespace pral {

/// Rate lambda >= 0; 0 is a point mass at 0. F(k) = Q(k + 1, lambda), DLMF 8.4.10.
struct Poisson : OnIntegers<Poisson> {
    double lambda;

    explicit Poisson(double lambda_) : lambda(lambda_) {}
    Message check() const { return lambda >= 0 ? nullptr : "Error: lambda must be >=0"; }
    Support support() const { return kPositiveReals; }
    std::optional<double> point_mass() const { return lambda == 0 ? std::optional(0.0) : std::nullopt; }

    double cumulative(double k) const { return numerics::gamma_upper(k + 1, lambda); }
    double survival(double k) const { return numerics::gamma_lower(k + 1, lambda); }
    double log_survival(double k) const { return numerics::log_gamma_lower(k + 1, lambda); }
    double log_density(double k) const { return numerics::log_gamma_density(k + 1, lambda); }
    double mass_ratio(double k) const { return lambda / (k + 1); }
    Moments moments() const { return {lambda, lambda, 1 / std::sqrt(lambda), 1 / lambda}; }
    double mode() const { return mode_before(lambda, 0); }

    double start(double p) const { return std::floor(numerics::gamma_lower_inverse(lambda, p)); }
};

}  // namespace pral
