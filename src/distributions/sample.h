// Data summarised once, for likelihoods that are asked for hundreds of times.
#pragma once

#include <functional>
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

    /// Called between the blocks of a long sum; it throws to end that.
    using Pause = std::function<void()>;

    /// `pause` must outlive the sample as well; null: sums are not interrupted.
    explicit Sample(std::span<const double> values, const Pause* pause = nullptr);

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

    bool interruptible() const { return pause_ != nullptr; }
    void pause() const {
        if (pause_ != nullptr) (*pause_)();
    }

  private:
    /// The mean of term(x).
    template <class Term>
    double mean_of(Term term) const;

    std::span<const double> values_;
    const Pause* pause_;
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

/// A mass takes microseconds where it is itself a sum.
inline constexpr std::size_t kCountsBetweenPauses = 32;
/// Up to here every integer is a double.
inline constexpr double kConsecutive = 0x1p53;

/// The sum of the log masses of counts in ascending order: one mass after the other by their ratio, from a new one after
/// every so many steps. Beyond 2^53, where k + 1 may be k, every mass is a new one.
template <Distribution D>
double sum_by_ratios(const D& d, const Sample& x) {
    constexpr double kSteps = 64, kLeast = 1e-200;
    double sum = 0, first = -HUGE_VAL, k = 0, log_first = 0, product = 0;
    std::size_t until_pause = kCountsBetweenPauses;
    for (const auto& [value, times] : x.counts()) {
        if (--until_pause == 0) {
            x.pause();
            until_pause = kCountsBetweenPauses;
        }
        if (value - first <= kSteps && std::fabs(value) < kConsecutive - kSteps && product > kLeast &&
            product < 1 / kLeast) {
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
    std::vector<double>
        masses;  // of families that have them by a recurrence, and no ratio that is cheaper than a mass
    constexpr bool kRecurrence = requires { d.masses(first, std::span<double>(masses)); };
    if constexpr (kRecurrence) {
        constexpr double kFew = 4096;
        if (range < kFew && x.counts().back().value < kConsecutive) {
            masses.resize(static_cast<std::size_t>(range) + 1);
            d.masses(first, masses);
        }
    }
    if constexpr (!kRecurrence && requires { d.mass_ratio(first); }) return sum_by_ratios(d, x);
    double sum = 0;
    std::size_t until_pause = kCountsBetweenPauses;
    for (const auto& [value, times] : x.counts()) {
        if (--until_pause == 0) {
            x.pause();
            until_pause = kCountsBetweenPauses;
        }
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
        if (!x.interruptible()) return log_likelihood(d, x.values());
        constexpr std::size_t kBlock = 4096;
        double sum = 0;
        for (std::span<const double> left = x.values(); !left.empty();) {
            const std::size_t size = std::min(kBlock, left.size());
            sum += log_likelihood(d, left.first(size));
            left = left.subspan(size);
            x.pause();
        }
        return sum;
    }
}

}  // namespace pral
