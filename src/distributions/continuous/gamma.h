// The gamma distribution and its kin.
#pragma once

#include "distributions/adapters.h"
#include "numerics/double_double.h"
#include "numerics/gamma_ratio.h"

namespace pral {

/// Shape alpha >= 0, scale beta >= 0; a zero is a point mass at 0. F = P(alpha, x/beta).
struct Gamma {
    double alpha, beta;

    Message check() const {
        if (!(alpha >= 0)) return "Error: alpha must be >= 0";
        if (!(beta >= 0)) return "Error: beta must be >= 0";
        return nullptr;
    }
    Support support() const { return kPositiveReals; }
    std::optional<double> point_mass() const {
        return alpha == 0 || beta == 0 ? std::optional(0.0) : std::nullopt;
    }

    double cumulative(double x) const { return numerics::gamma_lower(alpha, x / beta) + rounding(x); }
    double survival(double x) const { return numerics::gamma_upper(alpha, x / beta) - rounding(x); }
    double log_cumulative(double x) const { return numerics::log_gamma_lower(alpha, x / beta); }
    double log_density(double x) const {
        return numerics::log_gamma_density(alpha, x / beta) - std::log(beta);
    }
    double quantile(double p) const { return beta * numerics::gamma_lower_inverse(alpha, p); }
    double quantile_upper(double q) const { return beta * numerics::gamma_upper_inverse(alpha, q); }

  private:
    /// What the rounding of x/beta takes off P: with large shapes it would cost sqrt(alpha) ulps, far out many times that.
    double rounding(double x) const {
        if (!(alpha > 1e4)) return 0;
        const numerics::DoubleDouble z = numerics::divide({x, 0}, {beta, 0});
        return z.lo == 0 || !std::isfinite(z.lo) ? 0 : z.lo * numerics::gamma_density(alpha, z.hi);
    }
};

/// Shape m, a non-negative integer, scale beta >= 0: Gamma(m, beta).
struct Erlang : Gamma {
    Erlang(double m, double scale) : Gamma{m, scale} {}
    Message check() const {
        if (!(alpha >= 0)) return "Error: m must be >= 0";
        if (!(beta >= 0)) return "Error: beta must be >= 0";
        if (alpha != std::floor(alpha)) return "Error: m must be an integer";
        return nullptr;
    }
};

}  // namespace pral
