// The normal distribution.
#pragma once

#include "distributions/family.h"
#include "numerics/normal.h"

namespace pral {

/// The standard normal distribution, for families that are made of it.
struct StandardNormal {
    Support support() const { return kReals; }
    double cumulative(double z) const { return numerics::normal_cumulative(z); }
    double survival(double z) const { return numerics::normal_survival(z); }
    double log_cumulative(double z) const { return numerics::normal_log_cumulative(z); }
    double log_density(double z) const { return -0.5 * z * z - numerics::kLnSqrt2Pi; }
    double quantile(double p) const { return numerics::normal_quantile(p); }
    double quantile_upper(double q) const { return numerics::normal_quantile_upper(q); }
};

/// Mean mu (any value), standard deviation sigma >= 0; sigma = 0 is a point mass at mu.
struct Normal {
    double mu, sigma;

    Message check() const {
        if (!(sigma >= 0)) return "Error: sigma must be >= 0";
        return nullptr;
    }
    Support support() const { return kReals; }
    std::optional<double> point_mass() const { return sigma == 0 ? std::optional(mu) : std::nullopt; }

    double cumulative(double x) const { return numerics::normal_cumulative((x - mu) / sigma); }
    double survival(double x) const { return numerics::normal_survival((x - mu) / sigma); }
    double log_cumulative(double x) const { return numerics::normal_log_cumulative((x - mu) / sigma); }
    double log_density(double x) const { return log_likelihood({&x, 1}); }
    double log_likelihood(std::span<const double> values) const;

    double quantile(double p) const { return mu + sigma * numerics::normal_quantile(p); }
    double quantile_upper(double q) const { return mu + sigma * numerics::normal_quantile_upper(q); }
    void quantiles(std::span<double> p) const;
    /// The cosine branch of Box and Muller (1958); its sine partner is not kept.
    double random(double u, RandomStream& stream) const;
};

}  // namespace pral
