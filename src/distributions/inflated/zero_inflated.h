// Zero inflation: a count with more zeros than its distribution has.
#pragma once

#include <algorithm>
#include <cmath>
#include <concepts>
#include <optional>
#include <span>

#include "distributions/family.h"
#include "distributions/sample.h"
#include "numerics/double_double.h"

namespace pral {

/// With probability pi a value of the base family, else 0: F(x) = pi F_base(x), and 1 - pi more from 0 on. The base family's
/// parameters come first, pi last, 0 < pi < 1.
template <class Base>
struct ZeroInflated {
    static constexpr bool kDiscrete = true;
    static constexpr bool kIntegers = true;
    Base base;
    double pi;

    ZeroInflated(double a, double pi_) requires std::constructible_from<Base, double> : base(a), pi(pi_) {}
    ZeroInflated(double a, double b, double pi_) requires std::constructible_from<Base, double, double>
        : base(a, b), pi(pi_) {}
    ZeroInflated(double a, double b, double c,
                 double pi_) requires std::constructible_from<Base, double, double, double> : base(a, b, c),
                                                                                              pi(pi_) {}

    Message check() const {
        if (const Message objection = base.check()) return objection;
        return pi > 0 && pi < 1 ? nullptr : "Error: pi must be between (0,1)";
    }
    Support support() const {
        const auto point = base.point_mass();
        const auto [lower, upper] = point ? Support{*point, *point} : base.support();
        if (pi == 0) return {0, 0};
        return {std::min(lower, 0.0), std::max(upper, 0.0)};
    }
    std::optional<double> point_mass() const { return std::nullopt; }

    double cumulative(double x) const { return pi * tails(base, x).lower + (x < 0 ? 0 : 1 - pi); }
    double survival(double x) const { return pi * tails(base, x).upper + (x < 0 ? 1 - pi : 0); }
    double log_density(double x) const {
        const double log_base = base_log_density(x);
        if (x != 0) return log_base + std::log(pi);
        if (log_base == -HUGE_VAL) return numerics::log1p_fn(-pi);
        const double at_zero = pi * std::exp(log_base) + (1 - pi);
        return at_zero < 0.5 ? std::log(at_zero) : numerics::log1p_fn(pi * numerics::expm1_fn(log_base));
    }
    /// The base family's of what is not 0, and the zeros: next to the log mass of its own zeros the rest would be lost.
    double log_likelihood(const Sample& x) const {
        if (base.point_mass() || !x.whole()) return sum_over_counts(*this, x);
        const auto counts = x.counts();
        const auto zero = std::ranges::lower_bound(counts, 0.0, {}, &Sample::Count::value);
        const double zeros = x.times(0), others = x.count() - zeros;
        const double of_zeros = zeros > 0 ? zeros * log_density(0) : 0;
        if (others == 0) return of_zeros;
        const std::span negative(counts.begin(), zero), positive(zero + (zeros > 0), counts.end());
        return of_zeros + others * std::log(pi) + base_sum(negative, x.pauses()) +
               base_sum(positive, x.pauses());
    }

    /// From below the values under 0, then all zeros, then the others.
    double quantile(double u) const {
        if (is_negative(u)) return base_quantile(u / pi, 1 - u / pi);
        const double excess = above_zeros(u);
        return excess > 0 ? std::max(0.0, base_quantile(excess / pi, (1 - u) / pi)) : 0;
    }
    double quantile_upper(double q) const {
        if (is_negative(1 - q)) return base_quantile((1 - q) / pi, 1 - (1 - q) / pi);
        return q < pi ? std::max(0.0, base_quantile(1 - q / pi, q / pi)) : 0;
    }

    /// u - (1 - pi), rounded once.
    double above_zeros(double u) const {
        const numerics::DoubleDouble sum = numerics::two_sum(u, -1);
        return (sum.hi + pi) + sum.lo;
    }

  private:
    bool is_negative(double u) const { return base.support().lower < 0 && u <= pi * tails(base, -1).lower; }
    double base_quantile(double p, double q) const {
        if (const auto point = base.point_mass()) return *point;
        return p <= 0.5 ? pral::quantile(base, p) : pral::quantile_upper(base, q);
    }
    /// The base family's log masses, none outside its support.
    double base_sum(std::span<const Sample::Count> counts, Pauses pauses) const {
        if (counts.empty()) return 0;
        const auto [lower, upper] = base.support();
        const bool inside = counts.front().value >= lower && counts.back().value <= upper;
        return inside ? sum_over_counts(base, counts, pauses) : -HUGE_VAL;
    }
    double base_log_density(double x) const {
        if (const auto point = base.point_mass()) return x == *point ? 0 : -HUGE_VAL;
        const auto [lower, upper] = base.support();
        return x >= lower && x <= upper ? base.log_density(x) : -HUGE_VAL;
    }
};

}  // namespace pral
