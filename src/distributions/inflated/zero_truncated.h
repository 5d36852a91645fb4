// Zero truncation: a count that is observed only when it is not 0.
#pragma once

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <concepts>
#include <optional>
#include <span>

#include "distributions/family.h"
#include "distributions/sample.h"

namespace pral {

/// The base family given a value of 1 or more: F(x) = (F_base(x) - f_base(0))/(1 - f_base(0)). The base family's
/// parameters; where those leave it the single value 0, this one leaves 1.
template <class Base>
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

    Message check() const { return base.check(); }
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

    double quantile(double u) const { return quantile_by(base, u); }
    double quantile_upper(double q) const { return quantile_upper_by(base, q); }
    void quantiles(std::span<double> u) const { quantiles_by(base, u); }
    void quantiles_upper(std::span<double> q) const { quantiles_upper_by(base, q); }

  protected:
    /// Quantiles from those of another form of the base family.
    template <class Form>
    double quantile_by(const Form& form, double u) const {
        return at(form, zero_ + not_zero_ * u, not_zero_ * (1 - u));
    }
    template <class Form>
    double quantile_upper_by(const Form& form, double q) const {
        return at(form, zero_ + not_zero_ * (1 - q), share_of_base(q));
    }
    template <class Form>
    void quantiles_by(const Form& form, std::span<double> u) const {
        constexpr double kDistinct = 1e-3;  // the percentiles of the base family keep their digits above
        if (!(not_zero_ > kDistinct)) {
            for (double& value : u) value = quantile_by(form, value);
            return;
        }
        for (double& value : u) value = std::min(zero_ + not_zero_ * value, 1 - 0x1p-53);
        form.quantiles(u);
        for (double& value : u) value = std::max(value, 1.0);
    }
    template <class Form>
    void quantiles_upper_by(const Form& form, std::span<double> q) const {
        for (double& value : q) value = share_of_base(value);
        form.quantiles_upper(q);
        for (double& value : q) value = std::max(value, 1.0);
    }
    /// The upper tail of the base family that belongs to this one.
    double share_of_base(double q) const { return not_zero_ * q; }

  private:
    void complete() {
        if (base.check() != nullptr || base.point_mass()) return;
        const auto [lower, upper] = tails(base, 0);
        zero_ = lower;
        not_zero_ = upper;
        log_not_zero_ = not_zero_ > 0.5 ? numerics::log1p_fn(-zero_) : std::log(not_zero_);
    }
    template <class Form>
    double at(const Form& form, double p, double q) const {
        return std::max(p <= 0.5 ? pral::quantile(form, p) : pral::quantile_upper(form, q), 1.0);
    }

    double zero_ = 0, not_zero_ = 1, log_not_zero_ = 0;
};

}  // namespace pral
