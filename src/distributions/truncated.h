// Truncation of any family, each side given as a value or as a percentile.
#pragma once

#include <algorithm>
#include <cmath>
#include <span>

#include "distributions/family.h"

namespace pral {

/// The optional inputs of a call as the caller gave them; null means not given.
struct Modifiers {
    const double* U;
    const int* bounds_mode;
    const double* min;
    const double* max;
    const double* shift;

    bool bounded() const { return bounds_mode != nullptr && *bounds_mode >= 0; }
    bool min_is_percentile() const { return (*bounds_mode & 2) != 0; }
    bool max_is_percentile() const { return (*bounds_mode & 1) != 0; }
};

/// One side of a truncation, completed: a value and the tails of the untruncated distribution there.
struct Bound {
    double x;
    Tails tails;
};

/// Whether a family on the integers takes x for this one.
inline bool counts_as(double x, double integer) { return std::fabs(x - integer) < 1e-8; }

/// The integer that such a family takes x for: the one that is next to it, otherwise the one towards zero.
inline double counted(double x) {
    const double nearest = std::round(x);
    return counts_as(x, nearest) ? nearest : std::trunc(x);
}

/// A family kept between two bounds. Without bounds it is the family itself.
template <Family D>
class Truncated {
  public:
    /// Whether the family itself tells its quantiles between bounds.
    static constexpr bool kOwnBounds = requires(const D& d, double x) { d.quantile_within(x, x, x); };

    /// Completes the bounds; `valid` tells that the parameters are in order. Where they are not, what would
    /// have to be computed from them counts as 0, so that contradicting bounds are still found first.
    Truncated(const D& base, bool valid, const Modifiers& given)
        : base_(base), support_(base.support()), bounded_(given.bounded()) {
        lower_ = support_.lower;
        upper_ = support_.upper;
        if (bounded_) complete_bounds(given, valid);
        set_limits();
    }

    bool ordered() const { return !bounded_ || (min_.tails.lower <= max_.tails.lower && min_.x <= max_.x); }
    /// Reports bounds that contradict each other or percentiles outside [0,1].
    bool check() const {
        if (!bounded_) return true;
        if (!ordered()) {
            return as_values_ ? fail_bounds(min_.x, max_.x, true)
                              : fail_bounds(min_.tails.lower, max_.tails.lower, false);
        }
        return (min_.tails.lower >= 0 && max_.tails.lower <= 1) || fail(kPercentileMessage);
    }

    const D& base() const { return base_; }
    bool bounded() const { return bounded_; }
    double lower() const { return lower_; }
    double upper() const { return upper_; }
    /// The probability that the untruncated distribution gives to what is kept.
    double mass() const { return mass_; }
    /// The bounds leave a single point.
    bool degenerate() const { return lower_ == upper_; }
    /// The bounds differ, yet no double separates their percentiles.
    bool zero_width() const { return bounded_ && (min_.tails.lower == max_.tails.lower || mass_ <= 0); }
    /// The percentile of the untruncated distribution at the upper bound.
    double max_percentile() const { return max_.tails.lower; }

    /// The percentile of the whole that stands at percentile u of what is kept.
    double percentile(double u) const { return bounded_ ? min_.tails.lower + u * mass_ : u; }

    /// The quantile of what is kept, 0 < u < 1: that of the whole at percentile(u), taken from the smaller tail.
    double quantile(double u) const {
        if (!bounded_) return base_.quantile(u);
        if constexpr (kOwnBounds) return base_.quantile_within(u, min_.tails.lower, mass_);
        const auto [side, tail] = base_tail(u);
        return limited(side == Side::lower ? pral::quantile(base_, tail) : pral::quantile_upper(base_, tail));
    }

    /// quantile() of each element, in place.
    void quantiles(std::span<double> u) const {
        if constexpr (requires { base_.quantiles(u); }) {
            if (!bounded_) return base_.quantiles(u);
            if constexpr (kOwnBounds) return base_.quantiles_within(u, min_.tails.lower, mass_);
            if (requires { D::kDiscrete; } && !above_median()) {
                for (double& value : u) value = percentile(value);
                base_.quantiles(u);
                for (double& value : u) value = limited(value);
                return;
            }
            if constexpr (requires { base_.quantiles_upper(u); }) {
                if (above_median()) {
                    for (double& value : u) value = base_tail(value).tail;
                    base_.quantiles_upper(u);
                    for (double& value : u) value = limited(value);
                    return;
                }
            }
        }
        if constexpr (requires { base_.quantile_table(); }) {
            constexpr std::size_t kTableFrom = 300;  // fewer values do not repay the bins
            if (u.size() >= kTableFrom) {
                auto table = base_.quantile_table();
                for (double& value : u) {
                    const auto [side, tail] = base_tail(value);
                    const double x = table(side, tail);
                    value = std::isnan(x) ? quantile(value) : limited(x);
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
        const Tails at = pral::tails(base_, x);
        const double below = above_median() ? min_.tails.upper - at.upper : at.lower - min_.tails.lower;
        return std::clamp(below / mass_, 0.0, 1.0);
    }

    /// Its natural logarithm.
    double log_cumulative(double x) const {
        if (!bounded_) return std::min(pral::log_cumulative(base_, x), 0.0);
        const double below = cumulative(x);
        if (below < 0.5) return std::log(below);
        const Tails at = pral::tails(base_, x);
        const double above = at.lower > 0.5 ? at.upper - max_.tails.upper : max_.tails.lower - at.lower;
        return numerics::log1p_fn(-std::clamp(above / mass_, 0.0, 1.0));
    }

  private:
    void complete_bounds(const Modifiers& given, bool valid) {
        as_values_ = (*given.bounds_mode & 3) == 0;
        min_ = complete(given.min, given.min_is_percentile(), valid);
        max_ = complete(given.max, given.max_is_percentile(), valid);
        lower_ = std::min(std::max(min_.x, lower_), max_.x);
        upper_ = std::min(upper_, max_.x);
        mass_ = above_median() ? min_.tails.upper - max_.tails.upper : max_.tails.lower - min_.tails.lower;
    }

    /// Percentile u of what is kept as a tail of the whole, where possible the smaller one.
    struct BaseTail {
        Side side;
        double tail;
    };
    BaseTail base_tail(double u) const {
        const double p = percentile(u);
        if (p <= 0.5 || (requires { D::kDiscrete; } && !above_median())) return {Side::lower, p};
        return {Side::upper, max_.tails.upper + (1 - u) * mass_};
    }

    Bound complete(const double* given, bool is_percentile, bool valid) const {
        const double number = given != nullptr ? *given : 0;
        if (!is_percentile) return {number, valid ? tails_at(number) : Tails{0, 0}};
        const Tails tails = {number, 1 - number};
        if (!valid) return {0, tails};
        const auto point = base_.point_mass();
        return {numerics::finite_or_limit(point ? *point : pral::quantile(base_, number)), tails};
    }

    /// The tails that the family's probability members give to any x.
    Tails tails_at(double x) const {
        if constexpr (requires { D::kIntegers; }) x = counted(x);
        return tails(base_, x);
    }

    /// Both ends above the median: their percentiles are close to 1 and differ by few digits, their tails do not.
    bool above_median() const { return min_.tails.lower > 0.5; }

    /// What values are limited to: the support or the bounds, of an integer family the integers between them. Bounds beyond
    /// the support, or without an integer between them, leave their value as it is.
    void set_limits() {
        if (kOwnBounds && bounded_) return;
        double least = lower_, most = upper_;
        if constexpr (requires { D::kIntegers; }) {
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

    const D& base_;
    Support support_;
    bool bounded_;
    bool as_values_ = false;
    Bound min_ = {}, max_ = {};
    double lower_, upper_;
    double least_ = -HUGE_VAL, most_ = HUGE_VAL;
    double mass_ = 1;
};

}  // namespace pral
