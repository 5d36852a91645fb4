// The negative binomial distribution and its kin: geometric, Polya, and the Bernoulli trial they all count.
#pragma once

#include "distributions/discrete/discrete.h"
#include "distributions/discrete/exact_binomial.h"
#include "distributions/sample.h"
#include "numerics/beta_ratio.h"
#include "numerics/gamma_ratio.h"

namespace pral {

/// One trial: 1 with probability 0 <= p <= 1, else 0; a percentile u is 0 when p <= 1 - u, as doubles. p = 0 and p = 1 are point
/// masses.
struct Bernoulli : OnIntegers<Bernoulli> {
    static constexpr Tie kTie = Tie::stay;
    double p;

    explicit Bernoulli(double p_) : p(p_) {}
    Message check() const { return p >= 0 && p <= 1 ? nullptr : "Error: p must be between [0,1]"; }
    Support support() const { return {0, p > 0 ? 1.0 : 0.0}; }
    std::optional<double> point_mass() const { return p == 0 || p == 1 ? std::optional(p) : std::nullopt; }

    double cumulative(double k) const { return k < 1 ? 1 - p : 1; }
    double survival(double k) const { return k < 1 ? p : 0; }
    double log_density(double k) const { return k < 1 ? numerics::log1p_fn(-p) : std::log(p); }
    double mass_ratio(double) const { return p / (1 - p); }
    double start(double) const { return 0; }
    /// One comparison in place of the walk with its logarithms: simulations draw these by the million.
    double quantile(double u) const { return quantile_upper(1 - u); }
    double quantile_upper(double q) const { return p <= q ? 0 : 1; }
    void quantiles(std::span<double> u) const {
        for (double& value : u) value = quantile(value);
    }
    void quantiles_upper(std::span<double> q) const {
        for (double& value : q) value = quantile_upper(value);
    }
    Moments moments() const {
        const double variance = p * (1 - p);
        return {p, variance, (1 - 2 * p) / std::sqrt(variance), (1 - 6 * variance) / variance};
    }
    double mode() const { return p > 0.5 ? 1 : 0; }
};

/// What the negative binomial families share: failures before the s-th success, real s > 0, each trial succeeding with
/// probability p and failing with q = 1 - p, both given with their digits. F(k) = I_p(s, k + 1), DLMF 8.17.24.
template <class D>
struct NegativeBinomial : OnIntegers<D> {
    double s, p, q;

    NegativeBinomial(double s_, double p_, double q_) : s(s_), p(p_), q(q_) {}
    Support support() const { return kPositiveReals; }
    std::optional<double> point_mass() const { return s == 0 || q == 0 ? std::optional(0.0) : std::nullopt; }

    /// Of a whole s they are those of the failures among s + k trials, exact where doubles hold them.
    double cumulative(double k) const {
        if (const auto exact = is_whole() ? DyadicTrials(p).more_than(s + k, s - 1) : std::nullopt)
            return *exact;
        return numerics::beta_lower(s, k + 1, p, q);
    }
    double survival(double k) const {
        if (const auto exact = is_whole() ? DyadicTrials(p).at_most(s + k, s - 1) : std::nullopt)
            return *exact;
        return numerics::beta_upper(s, k + 1, p, q);
    }
    double log_cumulative(double k) const { return numerics::log_beta_lower(s, k + 1, p, q); }
    double log_survival(double k) const { return numerics::log_beta_upper(s, k + 1, p, q); }
    /// The beta density of shapes s and k + 1 times p/(s + k): no difference of large log-gammas.
    double log_density(double k) const {
        return numerics::log_beta_density(s, k + 1, p, q) + std::log(p) - std::log(s + k);
    }
    /// C(s + k - 1, k) is the product of (s + j)/(1 + j) over j < k: how many of the values exceed j is all that is needed.
    double log_likelihood(const Sample& x) const {
        constexpr double kLargest = 1000;  // the sums for larger counts cancel
        const std::span<const double> exceeding = x.exceedances();
        if (exceeding.empty() || s + x.mean() > kLargest)
            return sum_over_counts(*static_cast<const D*>(this), x);
        double sum = 0, j = 0;
        for (const double times : exceeding) {
            sum += times * std::log((s + j) / (1 + j));
            ++j;
        }
        const double log_p = q < 0.5 ? numerics::log1p_fn(-q) : std::log(p);
        return sum + x.count() * (s * log_p + x.mean() * std::log(q));
    }
    double mass_ratio(double k) const { return (s + k) / (k + 1) * q; }
    Moments moments() const {
        const double deviation = std::sqrt(s * q) / p;
        return {s * q / p, deviation * deviation, (1 + q) / std::sqrt(s * q), 6 / s + p * p / (s * q)};
    }
    double mode() const { return mode_before((s - 1) * q / p, 0); }
    /// The gamma distribution with the same mean and variance.
    double matched_gamma(double u) const { return numerics::gamma_lower_inverse(s * q, u) / p; }
    double start(double u) const { return std::floor(matched_gamma(u)); }

  private:
    /// q of a p next to 1 may have digits that 1 - p has not.
    bool is_whole() const { return s == std::floor(s) && q == 1 - p; }
};

/// Failures before the s-th success: an integer s >= 0, success probability 0 < p <= 1. s = 0 and p = 1 are point masses at
/// 0.
struct NegBin : NegativeBinomial<NegBin> {
    NegBin(double s_, double p_) : NegativeBinomial(s_, p_, 1 - p_) {}
    Message check() const {
        if (const Message objection = check_range()) return objection;
        return s == std::floor(s) ? nullptr : "Error: s must be an integer";
    }
    Message check_range() const {
        if (!(s >= 0)) return "Error: s must be >= 0";
        if (!(p > 0 && p <= 1)) return "Error: p must be between (0,1]";
        return nullptr;
    }
};

/// Failures before the first success: NegBin(1, p).
struct Geometric : NegBin {
    explicit Geometric(double p_) : NegBin(1, p_) {}
    Message check() const { return p > 0 && p <= 1 ? nullptr : "Error: p must be between (0,1]"; }
};

/// A Poisson count whose rate is Gamma(alpha, beta), alpha > 0, beta > 0: the negative binomial distribution with s = alpha
/// and p = 1/(1 + beta).
struct Polya : NegativeBinomial<Polya> {
    Polya(double alpha, double beta)
        : NegativeBinomial(alpha > 0 ? std::max(alpha, 1e-300) : alpha, 1 / (1 + beta),
                           beta < 1e300 ? beta / (1 + beta) : 1),
          beta_(beta) {}
    Message check() const {
        if (!(s > 0)) return "Error: alpha must be > 0";
        if (!(beta_ > 0)) return "Error: beta must be > 0";
        return nullptr;
    }
    std::optional<double> point_mass() const { return std::nullopt; }
    double start(double u) const { return std::floor(beta_ * numerics::gamma_lower_inverse(s, u)); }

  private:
    double beta_;
};

}  // namespace pral
