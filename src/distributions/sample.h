// Data summarised once, for likelihoods that are asked for hundreds of times.
#pragma once

#include <optional>
#include <span>
#include <vector>

#include "distributions/family.h"

namespace pral {

/// A sample and its statistics, each computed when it is first asked for. The values must outlive it.
class Sample {
  public:
    /// An integer and how often it occurs.
    struct Count {
        double value, times;
    };

    explicit Sample(std::span<const double> values);

    std::span<const double> values() const { return values_; }
    std::size_t size() const { return values_.size(); }
    bool empty() const { return values_.empty(); }
    double count() const { return static_cast<double>(values_.size()); }
    double min() const { return min_; }
    double max() const { return max_; }
    double range() const { return max_ - min_; }
    bool constant() const { return min_ == max_; }

    double mean() const;
    /// With divisor n, about the mean.
    double variance() const;
    double deviation() const { return std::sqrt(variance()); }
    /// The third standardised moment, and the fourth minus 3.
    double skewness() const;
    double excess_kurtosis() const;
    double root_mean_square() const;
    /// The mean of ln x, and the variance of ln x about it.
    double mean_log() const;
    double variance_log() const;
    double geometric_mean() const { return std::exp(mean_log()); }
    double harmonic_mean() const;
    /// The means of ln(m/x) with m the mean, the root mean square and the harmonic mean.
    double log_below_mean() const;
    double log_below_root_mean_square() const;
    double log_below_harmonic_mean() const;
    /// The mean of ln((1 - m)/(1 - x)) with m the mean, for values in (0, 1).
    double log_complement_below_mean() const;

    std::span<const double> sorted() const;
    /// The order statistic at 0 <= p <= 1, interpolated.
    double quantile(double p) const;

    /// The values are integers, to 1e-8.
    bool whole() const { return !counts().empty(); }
    /// The distinct integers in ascending order; empty when not all values are.
    std::span<const Count> counts() const;
    /// How many of the values exceed j, for j = 0, 1, ..., max - 1; empty where they are not counts, or large ones.
    std::span<const double> exceedances() const;
    /// How many of the values, which are integers, equal `integer`; and which share of them.
    double times(double integer) const;
    double share_of(double integer) const { return times(integer) / count(); }

  private:
    /// The mean of term(x).
    template <class Term>
    double mean_of(Term term) const;

    std::span<const double> values_;
    double min_, max_;
    mutable std::optional<double> mean_, variance_, root_mean_square_, mean_log_, variance_log_,
        harmonic_mean_, log_below_mean_, log_below_root_mean_square_, log_below_harmonic_mean_,
        log_complement_below_mean_;
    mutable std::vector<double> sorted_;
    mutable std::optional<std::vector<Count>> counts_;
    mutable std::optional<std::vector<double>> exceedances_;
};

/// factor * mean, 0 for a factor of 0 whatever the mean.
inline double times(double factor, double mean) { return factor == 0 ? 0 : factor * mean; }

/// The sum of the log masses of counts in ascending order: one mass after the other by their ratio, from a new one after
/// every so many steps.
template <Distribution D>
double sum_by_ratios(const D& d, std::span<const Sample::Count> counts) {
    constexpr double kSteps = 64, kLeast = 1e-200;
    double sum = 0, first = -HUGE_VAL, k = 0, log_first = 0, product = 0;
    for (const auto& [value, times] : counts) {
        if (value - first <= kSteps && product > kLeast && product < 1 / kLeast) {
            for (; k < value; k += 1) product *= d.mass_ratio(k);
        } else {
            first = k = value;
            log_first = d.log_density(value);
            product = 1;
        }
        sum += times * (log_first + std::log(product));
    }
    return sum;
}

/// The sum of the log masses, one for each distinct integer; -inf when not all values are integers.
template <Distribution D>
double sum_over_counts(const D& d, const Sample& x) {
    if (!x.whole()) return -HUGE_VAL;
    const double first = x.counts().front().value, range = x.counts().back().value - first;
    std::vector<double> masses;  // of families that have them by a recurrence
    if constexpr (requires { d.masses(first, std::span<double>(masses)); }) {
        constexpr double kFew = 4096;
        if (range < kFew) {
            masses.resize(static_cast<std::size_t>(range) + 1);
            d.masses(first, masses);
        }
    }
    if constexpr (requires { d.mass_ratio(first); }) {
        if (masses.empty()) return sum_by_ratios(d, x.counts());
    }
    double sum = 0;
    for (const auto& [value, times] : x.counts()) {
        const double mass = masses.empty() ? 0 : masses[static_cast<std::size_t>(value - first)];
        sum += times * (mass > DBL_MIN ? std::log(mass) : d.log_density(value));
    }
    return sum;
}

/// The sum of the log densities of a sample inside the support: from its statistics where the family has
/// log_likelihood(const Sample&), from the distinct values of a family on the integers.
template <Family D>
double log_likelihood(const D& d, const Sample& x) {
    if constexpr (requires { d.log_likelihood(x); }) {
        return d.log_likelihood(x);
    } else if constexpr (requires { D::kIntegers; }) {
        return sum_over_counts(d, x);
    } else {
        return log_likelihood(d, x.values());
    }
}

}  // namespace pral
