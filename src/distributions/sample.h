// Data summarised once, for likelihoods that are asked for hundreds of times.
#pragma once

#include <functional>
#include <optional>
#include <span>
#include <vector>

#include "distributions/family.h"

namespace pral {

class Pauses;

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
    /// For sums over the distinct integers.
    Pauses pauses() const;

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

/// Pauses after every so many masses: one takes microseconds where it is itself a sum.
class Pauses {
  public:
    explicit Pauses(const Sample::Pause* pause) : pause_(pause) {}
    void step() {
        if (pause_ == nullptr || ++steps_ % kBetween != 0) return;
        (*pause_)();
    }

  private:
    static constexpr std::size_t kBetween = 32;
    const Sample::Pause* pause_;
    std::size_t steps_ = 0;
};
inline Pauses Sample::pauses() const { return Pauses(pause_); }

/// factor * mean, 0 for a factor of 0 whatever the mean.
inline double times(double factor, double mean) { return factor == 0 ? 0 : factor * mean; }

/// Integers beyond it have no neighbours among the doubles: nothing leads from one to the next.
inline constexpr double kNeighbourless = 0x1p53;

/// The sum of the log masses of counts in ascending order: one mass after the other by their ratio. A mass is taken anew
/// after some steps, where the product of the ratios leaves the range of doubles, and where it would only take back what
/// the logarithm of the first mass has.
template <Distribution D>
double sum_by_ratios(const D& d, std::span<const Sample::Count> counts, Pauses pauses) {
    constexpr double kSteps = 64, kLeast = 1e-200, kShare = 0.1;
    const auto in_range = [](double product) { return product > kLeast && product < 1 / kLeast; };
    double sum = 0, first = -HUGE_VAL, k = 0, log_first = 0, product = 0;
    for (const auto& [value, times] : counts) {
        pauses.step();
        if (value - first <= kSteps && std::fabs(value) < kNeighbourless) {
            for (; k < value && in_range(product); k += 1) product *= d.mass_ratio(k);
        }
        double log_mass = 0;  // 0: not known
        if (k == value && in_range(product)) log_mass = log_first + std::log(product);
        if (!(std::fabs(log_mass) > kShare * std::max(std::fabs(log_first), 1.0))) {
            first = k = value;
            log_first = log_mass = d.log_density(value);
            product = 1;
        }
        sum += times * log_mass;
    }
    return sum;
}

/// The sum of the log masses of counts in ascending order, of a family that has masses by a recurrence: those of integers
/// next to each other together, others one by one.
template <Distribution D>
double sum_by_masses(const D& d, std::span<const Sample::Count> counts, Pauses pauses) {
    constexpr double kGap = 64, kFew = 4096;
    constexpr std::size_t kWorthWhile = 4;
    double sum = 0;
    std::vector<double> masses;
    while (!counts.empty()) {
        const double first = counts.front().value;
        std::size_t size = 1;
        while (size < counts.size() && counts[size].value - counts[size - 1].value <= kGap &&
               counts[size].value - first < kFew)
            ++size;
        const double range = counts[size - 1].value - first;
        masses.clear();
        if (size >= kWorthWhile && std::fabs(first) + range < kNeighbourless) {
            masses.resize(static_cast<std::size_t>(range) + 1);
            d.masses(first, masses);
        }
        for (const auto& [value, times] : counts.first(size)) {
            pauses.step();
            const double mass = masses.empty() ? 0 : masses[static_cast<std::size_t>(value - first)];
            sum += times * (mass > DBL_MIN ? std::log(mass) : d.log_density(value));
        }
        counts = counts.subspan(size);
    }
    return sum;
}

/// The sum of the log masses of counts in ascending order.
template <Distribution D>
double sum_over_counts(const D& d, std::span<const Sample::Count> counts, Pauses pauses) {
    if constexpr (requires(std::span<double> out) { d.masses(0.0, out); }) {
        return sum_by_masses(d, counts, pauses);
    } else if constexpr (requires { d.mass_ratio(0.0); }) {
        return sum_by_ratios(d, counts, pauses);
    } else {
        double sum = 0;
        for (const auto& [value, times] : counts) {
            pauses.step();
            sum += times * d.log_density(value);
        }
        return sum;
    }
}

/// The same, one mass for each distinct integer; -inf when not all values are integers.
template <Distribution D>
double sum_over_counts(const D& d, const Sample& x) {
    return x.whole() ? sum_over_counts(d, x.counts(), x.pauses()) : -HUGE_VAL;
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
