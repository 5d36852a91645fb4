// The binomial distribution.
#pragma once

#include "distributions/discrete/discrete.h"
#include "distributions/discrete/exact_binomial.h"
#include "numerics/beta_quantile.h"
#include "numerics/beta_ratio.h"

namespace pral {

/// Trials n >= 0, an integer, probability 0 <= p <= 1. F(k) = 1 - I_p(k + 1, n - k), DLMF 8.17.5. n = 0, p = 0 and p = 1
/// are point masses at n p.
struct Binomial : OnIntegers<Binomial> {
    static constexpr bool kWholeTrials = true;
    double n, p;

    Binomial(double n_, double p_) : n(n_), p(p_) {}
    Message check() const {
        if (const Message objection = check_range()) return objection;
        return n == std::floor(n) ? nullptr : "Error: n must be an integer";
    }
    Message check_range() const {
        if (!(n >= 0)) return "Error: n must be >= 0";
        if (!(p >= 0 && p <= 1)) return "Error: p must be between [0,1]";
        return nullptr;
    }
    Support support() const { return {0, std::floor(n)}; }
    std::optional<double> point_mass() const {
        return n == 0 || p == 0 || p == 1 ? std::optional(n * p) : std::nullopt;
    }

    /// Tails that doubles hold are exact, so that a percentile that equals one is known to.
    double cumulative(double k) const {
        if (const auto exact = DyadicTrials(p).at_most(n, k)) return *exact;
        return numerics::beta_upper(k + 1, n - k, p, 1 - p);
    }
    double survival(double k) const {
        if (const auto exact = DyadicTrials(p).more_than(n, k)) return *exact;
        return numerics::beta_lower(k + 1, n - k, p, 1 - p);
    }
    double log_survival(double k) const { return numerics::log_beta_lower(k + 1, n - k, p, 1 - p); }
    /// The beta density with both shapes raised by one, divided by n + 1: no difference of large log-gammas.
    double log_density(double k) const {
        return numerics::log_beta_density(k + 1, n - k + 1, p, 1 - p) - numerics::log1p_fn(n);
    }
    std::optional<Moments> moments() const {
        if (n != std::floor(n)) return std::nullopt;
        const double variance = n * p * (1 - p);
        return Moments{n * p, variance, (1 - 2 * p) / std::sqrt(variance), (1 - 6 * p * (1 - p)) / variance};
    }
    double mode() const { return mode_before((n + 1) * p, 0, support().upper); }
    double mass_ratio(double k) const { return (n - k) / (k + 1) * (p / (1 - p)); }

    double start(double u) const {
        return std::floor(n * numerics::beta_lower_inverse(n * p, (n + 2) * (1 - p), u).x);
    }
};

}  // namespace pral
