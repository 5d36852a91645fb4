// The logarithmic series distribution.
#pragma once

#include "distributions/discrete/mass_sum.h"

namespace pral {

/// 0 < theta < 1: f(k) = -theta^k/(k ln(1 - theta)), k >= 1 (Fisher, Corbet and Williams 1943).
struct Logarithmic : SummedTails<Logarithmic> {
    static constexpr Tie kTie = Tie::stay;
    double theta;

    explicit Logarithmic(double theta_)
        : theta(theta_),
          log_theta_(theta_ > 0.5 ? numerics::log1p_fn(-(1 - theta_)) : std::log(theta_)),
          log_scale_(std::log(-numerics::log1p_fn(-theta_))) {}
    Message check() const { return theta > 0 && theta < 1 ? nullptr : "Error: theta must be between (0,1)"; }
    Message check_probability() const {
        return theta > 0 && theta < 1 ? nullptr : "Error: Theta must be between (0,1)";
    }
    Support support() const { return {1, numerics::kInfinity}; }
    std::optional<double> point_mass() const { return std::nullopt; }

    double log_density(double k) const { return k * log_theta_ - std::log(k) - log_scale_; }
    double mass_ratio(double k) const { return theta * (k / (k + 1)); }
    double pivot() const { return 1; }
    /// Small theta: the first value has nearly everything. Otherwise F(k) is about ln(k + 1)/(-ln(1 - theta)).
    double start(double u) const { return std::floor(std::exp(u * std::exp(log_scale_))); }

  private:
    double log_theta_, log_scale_;
};

}  // namespace pral
