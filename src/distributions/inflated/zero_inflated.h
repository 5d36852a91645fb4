// Zero inflation: a count with more zeros than its distribution has.
#pragma once

#include <algorithm>
#include <cmath>
#include <optional>
#include <span>
#include <vector>

#include "distributions/discrete/negative_binomial.h"
#include "distributions/sample.h"
#include "distributions/truncated.h"
#include "numerics/double_double.h"

namespace pral {

/// The checks of a variant where they are those of its base family's sampling members, in all members alike.
struct BaseChecks {
    template <class Base>
    static Message check(const Base& base) {
        return base.check();
    }
    static Message check_weight(double pi) {
        return pi > 0 && pi < 1 ? nullptr : "Error: pi should be on (0,1)";
    }
};

/// The checks of a variant's probability members: the sampling checks unless Checks provides its own.
template <class Checks, class Base>
Message variant_check_probability(const Base& base) {
    if constexpr (requires { Checks::check_probability(base); })
        return Checks::check_probability(base);
    else
        return Checks::check(base);
}

/// With probability pi a value of the base family, else 0: F(x) = 1 - pi + pi F_base(x), as percentiles are inverted. Where
/// the base family has negative values (Skellam), that counts the extra zeros below them as well. The base family's
/// parameters come first, pi last. `Checks` holds the variant's own checks; what they let pass, the base family may
/// still refuse.
///
/// A bare call draws a Bernoulli(pi) and then a bare call of the base family, whatever the Bernoulli gave. A percentile
/// u <= 1 - pi is 0, and any other that of the base family at (u - 1 + pi)/pi. Bounds rescale this second percentile by
/// this family's own percentiles there: the extra zeros keep their weight between any bounds, and since the base family
/// has more above a bound than this one, values may lie beyond the upper one.
template <class Base, class Checks = BaseChecks>
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
        if (const Message objection = Checks::check(base)) return objection;
        return weight_or(base.check());
    }
    Message check_probability() const {
        if (const Message objection = variant_check_probability<Checks>(base)) return objection;
        return weight_or(pral::check_probability(base));
    }
    Support support() const {
        const auto point = base.point_mass();
        const auto [lower, upper] = point ? Support{*point, *point} : base.support();
        if (pi == 0) return {0, 0};
        return {std::min(lower, 0.0), std::max(upper, 0.0)};
    }
    std::optional<double> point_mass() const { return std::nullopt; }

    double cumulative(double x) const { return pi * tails(base, x).lower + (1 - pi); }
    double survival(double x) const { return pi * tails(base, x).upper; }
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

    double quantile(double u) const { return quantile_within(u, Window{}); }
    double quantile_upper(double q) const { return q >= pi ? 0 : base_quantile(1 - q / pi, q / pi); }
    /// The quantile in a window of this family.
    double quantile_within(double u, const Window& window) const {
        const double excess = above_zeros(u);
        if (!(excess > 0)) return 0;
        const double p = window.percentile(excess / pi);
        if (window.mass == 1) return base_quantile(p, (1 - u) / pi);
        if (window.above_median())
            return base_quantile(p, window.upper_tail((1 - u) / pi), window.beyond_percentiles());
        return base_quantile(p, 1 - p);
    }
    void quantiles(std::span<double> u) const { quantiles_within(u, Window{}); }
    void quantiles_within(std::span<double> u, const Window& window) const {
        const bool by_upper = window.above_median();
        std::vector<double> of_base;
        for (double& value : u) {
            const double excess = above_zeros(value);
            if (excess > 0)
                of_base.push_back(by_upper ? window.upper_tail((1 - value) / pi)
                                           : window.percentile(excess / pi));
            value = excess > 0 ? 1 : 0;
        }
        if (const auto point = base.point_mass())
            std::ranges::fill(of_base, *point);
        else if (by_upper)
            pral::quantiles_upper(base, of_base, window.beyond_percentiles());
        else
            base.quantiles(of_base);
        auto next = of_base.begin();
        for (double& value : u) {
            if (value == 1) value = *next++;
        }
    }

    double random(double, RandomStream& stream) const {
        const bool counted = Bernoulli(pi).quantile(stream.uniform()) == 1;
        const double value = draw(base, stream);
        return counted ? value : 0;
    }

  private:
    Message weight_or(Message of_base) const {
        const Message objection = Checks::check_weight(pi);
        return objection != nullptr ? objection : of_base;
    }
    /// u - (1 - pi), rounded once.
    double above_zeros(double u) const {
        const numerics::DoubleDouble sum = numerics::two_sum(u, -1);
        return (sum.hi + pi) + sum.lo;
    }
    double base_quantile(double p, double q, bool exactly = false) const {
        if (const auto point = base.point_mass()) return *point;
        return p <= 0.5 ? pral::quantile(base, p) : pral::quantile_upper(base, q, exactly);
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
