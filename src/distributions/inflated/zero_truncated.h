// Zero truncation: a count that is observed only when it is not 0.
#pragma once

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <optional>
#include <span>

#include "distributions/inflated/zero_inflated.h"

namespace pral {

/// The base family given a value of 1 or more: F(x) = (F_base(x) - f_base(0))/(1 - f_base(0)). The base family's
/// parameters; where those leave it the single value 0, this one leaves 1.
template <class Base, class Checks = BaseChecks>
struct ZeroTruncated {
    static constexpr bool kDiscrete = true;
    static constexpr bool kIntegers = true;
    Base base;

    explicit ZeroTruncated(double a) requires std::constructible_from<Base, double> : base(a) { complete(); }
    ZeroTruncated(double a, double b) requires std::constructible_from<Base, double, double> : base(a, b) {
        complete();
    }
    ZeroTruncated(double a, double b, double c) requires std::constructible_from<Base, double, double, double>
        : base(a, b, c) {
        complete();
    }

    Message check() const {
        const Message objection = Checks::check(base);
        return objection != nullptr ? objection : base.check();
    }
    Message check_probability() const {
        const Message objection = variant_check_probability<Checks>(base);
        return objection != nullptr ? objection : pral::check_probability(base);
    }
    Support support() const {
        const auto [lower, upper] = base.support();
        return {std::max(lower, 1.0), std::max(upper, 1.0)};
    }
    std::optional<double> point_mass() const {
        const auto point = base.point_mass();
        if (not_zero_ < DBL_MIN) return 1;  // P(X > 0) underflows; given X > 0, nearly all mass is at 1
        return point ? std::optional(std::max(*point, 1.0)) : std::nullopt;
    }

    /// Near 0 the sum of the masses, which is no difference of two percentiles close to each other.
    double cumulative(double x) const {
        constexpr int kFew = 32;
        if (zero_ == 0) return base.cumulative(x);
        if (x <= kFew) {
            double mass = std::exp(base.log_density(1)), sum = mass;
            for (double k = 1; k < x; k += 1) sum += mass *= base.mass_ratio(k);
            return std::min(sum / not_zero_, 1.0);
        }
        return std::clamp(not_zero_ < 0.5 ? 1 - survival(x) : (base.cumulative(x) - zero_) / not_zero_, 0.0,
                          1.0);
    }
    double survival(double x) const { return std::min(base.survival(x) / not_zero_, 1.0); }
    double log_density(double x) const { return base.log_density(x) - log_not_zero_; }
    double log_likelihood(const Sample& x) const {
        constexpr double kLikely = 1e-3;  // otherwise the two logarithms cancel
        if (not_zero_ < kLikely) return sum_over_counts(*this, x);
        return pral::log_likelihood(base, x) - x.count() * log_not_zero_;
    }

    double quantile(double u) const { return at(zero_ + not_zero_ * u, not_zero_ * (1 - u)); }
    double quantile_upper(double q) const { return at(zero_ + not_zero_ * (1 - q), not_zero_ * q); }
    double exact_quantile_upper(double q) const {
        return std::max(pral::quantile_upper(base, not_zero_ * q, true), 1.0);
    }
    bool approximated() const { return base.approximated(); }
    void quantiles(std::span<double> u) const {
        constexpr double kDistinct = 1e-3;  // the percentiles of the base family keep their digits above
        if (!(not_zero_ > kDistinct)) {
            for (double& value : u) value = quantile(value);
            return;
        }
        for (double& value : u) value = std::min(zero_ + not_zero_ * value, 1 - 0x1p-53);
        base.quantiles(u);
        for (double& value : u) value = std::max(value, 1.0);
    }
    void quantiles_upper(std::span<double> q) const {
        for (double& value : q) value *= not_zero_;
        base.quantiles_upper(q);
        for (double& value : q) value = std::max(value, 1.0);
    }

  private:
    void complete() {
        if (base.check() != nullptr || base.point_mass()) return;
        const auto [lower, upper] = tails(base, 0);
        zero_ = lower;
        not_zero_ = upper;
        log_not_zero_ = not_zero_ > 0.5 ? numerics::log1p_fn(-zero_) : std::log(not_zero_);
    }
    double at(double p, double q) const {
        return std::max(p <= 0.5 ? pral::quantile(base, p) : pral::quantile_upper(base, q), 1.0);
    }

    double zero_ = 0, not_zero_ = 1, log_not_zero_ = 0;
};

}  // namespace pral
