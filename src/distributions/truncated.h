// Truncation of any family, each side given as a value or as a percentile.
#pragma once

#include <algorithm>
#include <cmath>
#include <span>

#include "distributions/family.h"

namespace pral {

/// How a distribution is truncated: two ends, each a value or a percentile. Ends are kept, but for the probability of a lower
/// one with `above_min`.
struct Limits {
    double min = 0, max = 0;
    bool min_is_percentile = false, max_is_percentile = false;
    bool given = false;
    bool above_min = false;

    bool both_values() const { return !min_is_percentile && !max_is_percentile; }
};

/// One side of a truncation, completed: a value and the tails of the untruncated distribution there. `chosen` where the
/// caller has given a percentile that is no end: it is exact then, as the tails at a value are not.
struct Bound {
    double x;
    Tails tails;
    bool chosen;
};

/// Whether a family on the integers takes x for this one.
inline bool counts_as(double x, double integer) { return std::fabs(x - integer) < 1e-8; }

/// x rounded to the nearest integer if within 1e-8 of it, otherwise truncated towards zero.
inline double counted(double x) {
    const double nearest = std::round(x);
    return counts_as(x, nearest) ? nearest : std::trunc(x);
}

/// The first integer of those from min on, or above it.
inline double first_integer(double min, bool above) {
    if (above) return counted(min) + 1;
    const double nearest = std::round(min);
    return counts_as(min, nearest) ? nearest : std::ceil(min);
}

/// What lies between two bounds: the tails there and the probability between them. Percentiles are rescaled in the tail
/// that has the digits.
struct Window {
    Tails min = {0, 1}, max = {1, 0};
    double mass = 1;

    /// Both ends above the median: their percentiles are close to 1 and differ by few digits, their upper tails do not.
    bool above_median() const { return min.lower > 0.5; }
    /// The percentile of the whole at percentile u < 1 of the window.
    double percentile(double u) const { return std::min(min.lower + u * mass, 1 - 0x1p-53); }
    /// The upper tail of the whole where the share `above` of the window lies higher.
    double upper_tail(double above) const { return max.upper + above * mass; }
};

/// A family kept between two bounds. Without bounds it is the family itself.
template <Family D>
class Truncated {
  public:
    /// Completes the bounds; `valid` tells that the parameters are in order. Where they are not, what would
    /// have to be computed from them counts as 0, so that contradicting bounds are still found first.
    Truncated(const D& base, bool valid, const Limits& limits)
        : base_(base), support_(base.support()), bounded_(limits.given) {
        lower_ = support_.lower;
        upper_ = support_.upper;
        if (bounded_) complete_bounds(limits, valid);
        set_limits();
    }
    /// Not truncated.
    explicit Truncated(const D& base) : Truncated(base, true, Limits{}) {}

    bool ordered() const { return !bounded_ || (min_.tails.lower <= max_.tails.lower && min_.x <= max_.x); }
    const Bound& min() const { return min_; }
    const Bound& max() const { return max_; }

    const D& base() const { return base_; }
    bool bounded() const { return bounded_; }
    double lower() const { return lower_; }
    double upper() const { return upper_; }
    /// The natural logarithm of the probability that the untruncated distribution gives to what is kept.
    double log_mass() const { return far_ ? log_mass_ : std::log(window_.mass); }
    /// The bounds leave a single point.
    bool degenerate() const { return lower_ == upper_; }
    /// The bounds differ, yet no probability lies between them.
    bool zero_width() const { return bounded_ && (far_ ? log_mass_ == -HUGE_VAL : !(window_.mass > 0)); }
    /// The percentile of the untruncated distribution at the upper bound.
    double max_percentile() const { return max_.tails.lower; }

    const Window& window() const { return window_; }
    /// No double separates the tails at the bounds: the probability is as good as all at one of them, at the lower one where
    /// the denser side is the upper tail.
    bool inseparable() const { return far_ && !(window_.mass > 0); }
    Side denser_side() const { return far_side_; }
    /// Percentile 0 < u < 1 of what is kept as a tail of the whole, where possible the smaller one.
    Tail tail_of_base(double u) const {
        if (!bounded_ && CountableFamily<D>) return {Side::lower, u};
        const double p = window_.percentile(u);
        if (p <= 0.5 || (CountableFamily<D> && !window_.above_median()))
            return {Side::lower, std::max(p, kLeastTail)};
        return {Side::upper, std::max(window_.upper_tail(1 - u), kLeastTail)};
    }

    /// The quantile of what is kept, 0 < u < 1: that of the whole at the rescaled percentile, taken from the smaller tail.
    double quantile(double u) const {
        if (!bounded_) return base_.quantile(u);
        if (inseparable()) return nearest();
        const auto [side, tail] = tail_of_base(u);
        return limited(side == Side::lower ? pral::quantile(base_, tail) : pral::quantile_upper(base_, tail));
    }

    /// quantile() of each element, in place.
    void quantiles(std::span<double> u) const {
        if (inseparable()) {
            std::ranges::fill(u, nearest());
            return;
        }
        if constexpr (HasQuantiles<D>) {
            if (!bounded_) return base_.quantiles(u);
            if (CountableFamily<D> && !window_.above_median()) {
                for (double& value : u) value = window_.percentile(value);
                base_.quantiles(u);
                for (double& value : u) value = limited(value);
                return;
            }
            if constexpr (HasUpperQuantiles<D>) {
                if (window_.above_median()) {
                    for (double& value : u) value = tail_of_base(value).probability;
                    base_.quantiles_upper(u);
                    for (double& value : u) value = limited(value);
                    return;
                }
            }
        }
        if constexpr (HasQuantileTable<D>) {
            constexpr std::size_t kTableFrom = 300;  // fewer values do not repay the bins
            if (u.size() >= kTableFrom) {
                auto table = base_.quantile_table();
                for (double& value : u) {
                    const auto [side, tail] = tail_of_base(value);
                    const double x = table(side, tail);
                    value = std::isnan(x) ? quantile_apart(value) : limited(x);
                }
                return;
            }
        }
        for (double& value : u) value = quantile(value);
    }

    /// x, moved to the nearer end of what is kept if rounding has led it outside.
    double limited(double x) const { return std::clamp(x, least_, most_); }

    /// The probability at or below an x in [lower, upper) of what is kept.
    double cumulative(double x) const {
        if (!bounded_) return std::clamp(base_.cumulative(x), 0.0, 1.0);
        if (far_) return std::exp(log_cumulative(x));
        return share_below(pral::tails(base_, x));
    }

    /// Its natural logarithm.
    double log_cumulative(double x) const {
        if (!bounded_) return std::min(pral::log_cumulative(base_, x), 0.0);
        if constexpr (HasFarTails<D>) {
            if (far_) return far_log_cumulative(x);
        }
        const Tails at = pral::tails(base_, x);
        const double below = share_below(at);
        if constexpr (HasFarTails<D>) {
            if (at.lower < kFarTail && !window_.above_median())
                return std::min(far_log_probability(x, Side::lower) - log_mass(), 0.0);
        }
        if (below < 0.5) return std::log(below);
        const double above = at.lower > 0.5 ? at.upper - window_.max.upper : window_.max.lower - at.lower;
        return numerics::log1p_fn(-std::clamp(above / window_.mass, 0.0, 1.0));
    }

  private:
    [[gnu::noinline]] double quantile_apart(double u) const { return quantile(u); }

    void complete_bounds(const Limits& limits, bool valid) {
        closed_ = CountableFamily<D> && !limits.above_min && !limits.min_is_percentile;
        min_ = complete(limits.min, limits.min_is_percentile, closed_, valid);
        max_ = complete(limits.max, limits.max_is_percentile, false, valid);
        window_ = {min_.tails, max_.tails, 0};
        window_.mass = window_.above_median() ? min_.tails.upper - max_.tails.upper
                                              : max_.tails.lower - min_.tails.lower;
        // A point mass is not moved by bounds, and what they say of it holds as they stand.
        if (!valid || base_.point_mass()) {
            lower_ = std::min(std::max(min_.x, lower_), max_.x);
            upper_ = std::min(upper_, max_.x);
            return;
        }
        lower_ = std::min(std::max(min_.x, support_.lower), support_.upper);
        upper_ = std::max(std::min(max_.x, support_.upper), support_.lower);
        if constexpr (HasFarTails<D>) measure_far_mass();
    }

    /// A mass between tails that are below the range of doubles, or that agree to most of their digits, is that of the
    /// density. Those of counts agree so far next to extra zeros, where integers are few among very many, or where none
    /// lies between the bounds.
    [[gnu::noinline]] void measure_far_mass() {
        constexpr double kAgreeing = IntegerFamily<D> ? 1e-8 : 1e-12;
        if (min_.chosen || max_.chosen || !ordered()) return;
        const double larger = window_.above_median() ? min_.tails.upper : max_.tails.lower;
        const bool below_range = larger < kFarTail;
        if (!below_range && window_.mass > kAgreeing * larger) return;
        far_side_ = window_.above_median() ? Side::upper : Side::lower;
        if (!below_range && std::max(std::fabs(lower_), std::fabs(upper_)) < numerics::kInfinity)
            far_side_ = log_density_at(lower_) < log_density_at(upper_) ? Side::lower : Side::upper;
        log_mass_ = far_log_probability(upper_, far_side_);
        far_ = log_mass_ > -HUGE_VAL || !(window_.mass > 0);
    }
    double log_density_at(double x) const {
        if constexpr (IntegerFamily<D>) return base_.log_density(counted(x));
        return base_.log_density(x);
    }

    /// ln P(lower bound < X <= x).
    double far_log_probability(double x, Side side) const {
        const double from = closed_ ? before(lower_) : lower_;
        return between(min_.x < support_.lower ? far_ends(base_).lower : from, x, side);
    }
    [[gnu::noinline]] double between(double from, double to, Side side) const {
        if constexpr (IntegerFamily<D>) return log_probability(base_, counted(from), counted(to), side);
        return log_probability(base_, from, to, side);
    }
    [[gnu::noinline]] double far_log_cumulative(double x) const {
        const double log_below = far_log_probability(x, far_side_) - log_mass_;
        if (log_below < -numerics::kLn2) return log_below;
        const double log_above = between(x, upper_, far_side_) - log_mass_;
        return numerics::log1p_fn(-std::min(std::exp(log_above), 1.0));
    }

    double share_below(const Tails& at) const {
        const double below =
            window_.above_median() ? window_.min.upper - at.upper : at.lower - window_.min.lower;
        return std::clamp(below / window_.mass, 0.0, 1.0);
    }

    double nearest() const { return limited(far_side_ == Side::upper ? lower_ : upper_); }

    [[gnu::noinline]] Bound complete(double number, bool is_percentile, bool closed, bool valid) const {
        number += 0.0;  // no -0.0
        if (!is_percentile)
            return {number, valid ? tails_at(closed ? before(number) : number) : Tails{0, 0}, false};
        const Tails tails = {number, 1 - number};
        const bool chosen = number > 0 && number < 1;
        if (!valid) return {0, tails, chosen};
        const auto point = base_.point_mass();
        return {numerics::finite_or_limit(point ? *point : pral::quantile(base_, number)), tails, chosen};
    }

    /// The last value before x that a countable family may have.
    static double before(double x) {
        if constexpr (IntegerFamily<D>) {
            const double first = first_integer(x, false);
            return std::min(first - 1, std::nextafter(first, -HUGE_VAL));
        } else {
            return std::nextafter(x, -HUGE_VAL);
        }
    }

    /// The tails that the family's probability members give to any x.
    Tails tails_at(double x) const {
        if constexpr (IntegerFamily<D>) x = counted(x);
        return tails(base_, x);
    }

    /// The range to which values are clamped: support or bounds; for integer families the integers inside. Bounds without
    /// an integer between them leave their value as it is.
    void set_limits() {
        double least = lower_, most = upper_;
        if constexpr (IntegerFamily<D>) {
            const auto inwards = [](double end, double integer) {
                return counts_as(end, std::round(end)) ? std::round(end) : integer;
            };
            least = inwards(least, std::ceil(least));
            most = inwards(most, std::floor(most));
        }
        if (!(support_.lower <= least && least <= most && most <= support_.upper)) return;
        least_ = least;
        most_ = most;
    }

    /// A tail that rounds to 0 would be that of an end of the support.
    static constexpr double kLeastTail = 0x1p-1074;

    const D& base_;
    Support support_;
    bool bounded_;
    bool closed_ = false;  ///< a value of a countable family at the lower end is kept
    bool far_ = false;
    Side far_side_ = Side::lower;
    Bound min_ = {}, max_ = {};
    double lower_, upper_;
    double least_ = -HUGE_VAL, most_ = HUGE_VAL;
    Window window_;
    double log_mass_ = 0;
};

}  // namespace pral
