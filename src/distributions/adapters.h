// Distributions made of other distributions: by a location and a scale, or by a monotone function of the variable.
// A family derives from one of these and adds its parameters' names, its check and its point mass.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>

#include "distributions/family.h"
#include "distributions/quantile_table.h"
#include "distributions/sample.h"
#include "numerics/each.h"
#include "numerics/extended_log.h"
#include "numerics/sums.h"

namespace pral {

enum class Function;

/// X = location + scale Z, scale >= 0; 0 leaves the location. The standard distribution Z has support, cumulative,
/// survival, log_density, quantile and, where it knows better, quantile_upper and log_cumulative.
template <class Standard>
struct LocationScale {
    double location, scale;
    Standard standard;

    LocationScale(double location_, double scale_, Standard standard_ = {})
        : location(location_), scale(scale_), standard(standard_), log_scale_(std::log(scale_)) {}

    Support support() const {
        const auto end = [&](double z) {
            return std::fabs(z) == numerics::kInfinity ? z : numerics::finite_or_limit(location + scale * z);
        };
        const auto [lower, upper] = standard.support();
        return {end(lower), end(upper)};
    }
    std::optional<double> point_mass() const { return scale == 0 ? std::optional(location) : std::nullopt; }

    double cumulative(double x) const { return standard.cumulative(standardised(x)); }
    double survival(double x) const { return standard.survival(standardised(x)); }
    double log_density(double x) const { return standard.log_density(standardised(x)) - log_scale_; }
    double log_likelihood(std::span<const double> values) const requires HasLogLikelihood<Standard> {
        const double sum = numerics::sum_by_blocks(
            values, [this](double x) { return standardised(x); },
            [this](std::span<const double> z) { return standard.log_likelihood(z); });
        return std::isfinite(sum) ? sum - static_cast<double>(values.size()) * log_scale_
                                  : sum_of_log_densities(*this, values);
    }
    double quantile(double p) const { return location + scale * standard.quantile(p); }
    double quantile_upper(double q) const { return location + scale * pral::quantile_upper(standard, q); }
    double log_cumulative(double x) const { return pral::log_cumulative(standard, standardised(x)); }
    double log_survival(double x) const { return pral::log_survival(standard, standardised(x)); }
    double lower_rate() const requires HasLowerRate<Standard> { return standard.lower_rate() / scale; }
    void quantiles(std::span<double> p) const requires HasQuantiles<Standard> {
        standard.quantiles(p);
        for (double& x : p) x = location + scale * x;
    }

    auto quantile_table() const
        requires(HasDensitySlope<Standard> || requires { Standard::kCostlyQuantiles; }) {
        const LinearPlace place = {location, scale};
        return QuantileTable(standard, place, place.cancels_below());
    }

    double standardised(double x) const { return (x - location) / scale; }

    auto moments() const requires HasMoments<Standard> {
        const std::optional<Moments> of_standard = standard.moments();
        return of_standard ? std::optional(linear(*of_standard, scale, location)) : std::nullopt;
    }
    double moment_limit(Side side) const requires HasMomentLimit<Standard> {
        return standard.moment_limit(side);
    }
    double mode() const requires HasMode<Standard> { return location + scale * standard.mode(); }
    double log_mgf(double t) const requires HasLogMgf<Standard> {
        return location * t + standard.log_mgf(scale * t);
    }
    double upper_rate() const requires HasUpperRate<Standard> { return standard.upper_rate() / scale; }
    double tilted_mode(double t) const requires HasTiltedMode<Standard> {
        return location + scale * standard.tilted_mode(scale * t);
    }
    double normal_deviation() const requires HasNormalDeviation<Standard> {
        return scale * standard.normal_deviation();
    }

  private:
    template <class S>
    friend void evaluate_adapted(const LocationScale<S>&, Function, std::span<double>);  // arrays.h

    double log_scale_;
};

/// X = center e^(spread Z), spread >= 0; 0 leaves the center. ln(x/center) keeps the digits that ln x - ln center loses.
/// `log_center` may be beyond the range of e^. A standard distribution whose lower tail falls as e^(k z) has k as its
/// lower_rate(): then the density of X at 0 may be other than 0. One whose upper tail falls as e^(-k z) has k as its
/// upper_rate(). The moments come from log_mgf(t) = ln E e^(tZ), HUGE_VAL from that rate on, the mode from tilted_mode(t),
/// where f(z) e^(-t z) is highest, -inf for no place; a normal one has its normal_deviation().
template <class Standard>
struct LogLocationScale {
    double log_center, spread;
    Standard standard;

    LogLocationScale(double log_center_, double spread_, Standard standard_ = {})
        : LogLocationScale(numerics::DoubleDouble{log_center_, 0}, spread_, standard_) {}
    LogLocationScale(numerics::DoubleDouble log_center_, double spread_, Standard standard_)
        : LogLocationScale(numerics::scaled_exp(1, log_center_), log_center_.hi, spread_, standard_) {
        if (!usable_) return;
        const numerics::DoubleDouble rounded = numerics::extended_log({center_, 0});
        center_rounding_ = (log_center_.hi - rounded.hi) + (log_center_.lo - rounded.lo);
    }
    /// With a center that is exact.
    LogLocationScale(double center, double log_center_, double spread_, Standard standard_)
        : LogLocationScale(center, log_center_, spread_, standard_, numerics::divide({1, 0}, {spread_, 0})) {}
    /// `rate` is 1/spread in double-double: far in the tail the rounding of spread is magnified several hundred times.
    LogLocationScale(double center, double log_center_, double spread_, Standard standard_,
                     numerics::DoubleDouble rate)
        : log_center(log_center_),
          spread(spread_),
          standard(standard_),
          center_(center),
          usable_(center >= DBL_MIN && center <= DBL_MAX),
          log_spread_(std::log(spread_)),
          rate_(std::isfinite(rate.lo) ? rate : numerics::DoubleDouble{1 / spread_, 0}) {}

    Support support() const { return kPositiveReals; }
    std::optional<double> point_mass() const { return spread == 0 ? std::optional(center_) : std::nullopt; }

    double cumulative(double x) const { return standard.cumulative(standardised(x)); }
    double survival(double x) const { return standard.survival(standardised(x)); }
    double log_cumulative(double x) const { return pral::log_cumulative(standard, standardised(x)); }
    double log_survival(double x) const { return pral::log_survival(standard, standardised(x)); }
    double log_density(double x) const {
        if (x == 0) return log_density_at_zero();
        const double y = log_to_center(x);
        const double log_x = usable_ ? y + log_center : std::log(x);
        return standard.log_density(from_log(y)) - log_spread_ - log_x;
    }
    /// Where the density is not narrow the difference of two logarithms will do, one a value and no branch.
    double log_likelihood(std::span<const double> values) const {
        if (usable_ && spread * width_of_standard() > 0.05) {
            const double per_spread = 1 / spread;
            const double sum = numerics::sum_by_blocks(
                values, [](double x) { return x; },
                [=, this](std::span<double> block) {
                    numerics::log_each(block);
                    const double logs = numerics::interleaved_sum(block, [](double y) { return y; });
                    for (double& y : block) y = (y - log_center) * per_spread;
                    return pral::log_likelihood(standard, std::span<const double>(block)) - logs;
                });
            if (std::isfinite(sum)) return sum - static_cast<double>(values.size()) * log_spread_;
        }
        return sum_of_log_densities(*this, values);
    }
    double log_likelihood(const Sample& x) const requires requires { Standard::kUnitGaussian; }
    { return x.count() * (log_density(x.geometric_mean()) - 0.5 * (x.variance_log() / spread / spread)); }
    double quantile(double p) const { return value(standard.quantile(p)); }
    double quantile_upper(double q) const { return value(pral::quantile_upper(standard, q)); }
    void quantiles(std::span<double> p) const requires HasQuantiles<Standard> {
        standard.quantiles(p);
        if (!usable_ || std::ranges::any_of(
                            p, [this](double z) { return !(std::fabs(spread * z) < numerics::kExpLimit); })) {
            for (double& x : p) x = value(x);
            return;
        }
        for (double& x : p) x = spread * x + center_rounding_;
        numerics::exp_each(p);
        for (double& x : p) x *= center_;
    }

    double standardised(double x) const { return from_log(log_to_center(x)); }

    double moment_limit([[maybe_unused]] Side side) const {
        if constexpr (requires { standard.upper_rate(); })
            return side == Side::upper ? standard.upper_rate() / spread : HUGE_VAL;
        return HUGE_VAL;
    }
    double mode() const requires HasTiltedMode<Standard> { return value(standard.tilted_mode(spread)); }
    std::optional<Moments> moments() const requires HasLogMgf<Standard> {
        const double log_mean = standard.log_mgf(spread);
        const auto relative = [this]() -> std::optional<Moments> {
            if constexpr (requires { standard.normal_deviation(); }) {
                const double deviation = spread * standard.normal_deviation();
                return lognormal_moments(deviation * deviation);
            } else {
                return exponential_moments([this](double k) { return standard.log_mgf(k * spread); });
            }
        }();
        if (!(log_mean < HUGE_VAL)) return kNoMoments;
        return relative ? std::optional(linear(*relative, value(log_mean / spread), 0)) : std::nullopt;
    }

  private:
    template <class S>
    friend void evaluate_adapted(const LogLocationScale<S>&, Function, std::span<double>);  // arrays.h

    double value(double z) const {
        const double exponent = spread * z;
        return usable_ && std::fabs(exponent) < numerics::kExpLimit
                   ? center_ * std::exp(exponent + center_rounding_)
                   : std::exp(log_center + exponent);
    }

    /// Over which the standard density changes by a factor of about e.
    double width_of_standard() const {
        if constexpr (requires { standard.width(); })
            return standard.width();
        else
            return 1;
    }
    double from_log(double y) const { return std::isinf(y) ? y : y * rate_.hi + y * rate_.lo; }
    double log_to_center(double x) const {
        return usable_ ? numerics::log_ratio(x, center_) - center_rounding_ : std::log(x) - log_center;
    }
    double log_density_at_zero() const {
        if constexpr (requires { standard.lower_rate(); }) {
            const double power = standard.lower_rate() / spread;  // F(x) falls as x to this power
            if (power <= 1) return power < 1 ? HUGE_VAL : log_density(DBL_MIN);
        }
        return -HUGE_VAL;
    }

    double center_;
    bool usable_;
    double log_spread_;
    double center_rounding_ = 0;  // what the logarithm of center_ misses, which a small spread makes visible
    numerics::DoubleDouble rate_;
};

/// Shape alpha > 0, scale beta >= 0, 0 being a point mass at 0; support [0, inf): alpha ln(X/beta) has the standard
/// distribution.
template <class Standard>
struct ShapeAndScale : LogLocationScale<Standard> {
    double alpha, beta;

    ShapeAndScale(double alpha_, double beta_, Standard standard_ = {})
        : LogLocationScale<Standard>(beta_, std::log(beta_), numerics::finite_or_limit(1 / alpha_), standard_,
                                     {alpha_, 0}),
          alpha(alpha_),
          beta(beta_) {}
    Message check() const {
        if (!(alpha > 0)) return "Error: alpha must be > 0";
        if (!(beta >= 0)) return "Error: beta must be >= 0";
        return nullptr;
    }
    std::optional<double> point_mass() const {
        return beta == 0 ? std::optional(0.0) : LogLocationScale<Standard>::point_mass();
    }
};

/// X = g(Y) for a monotone g and a base distribution Y. `Map` holds what g depends on:
///
///   forward(y)        g(y)
///   inverse(x)        the y with g(y) = x
///   log_slope(x)      ln |dy/dx| at x
///   kDecreasing       present and true when g falls: then the tails change places
template <class Base, class Map>
struct Transformed {
    Base base;
    Map map;

    static constexpr bool decreasing() {
        return requires { Map::kDecreasing; };
    }

    Support support() const {
        const auto end = [&](double y) {
            return numerics::finite_or_limit(
                map.forward(std::fabs(y) == numerics::kInfinity ? std::copysign(HUGE_VAL, y) : y));
        };
        const auto [lower, upper] = base.support();
        return decreasing() ? Support{end(upper), end(lower)} : Support{end(lower), end(upper)};
    }
    std::optional<double> point_mass() const requires(!requires(const Base& b) { b.point_mass(); }) {
        return std::nullopt;
    }
    std::optional<double> point_mass() const requires HasPointMass<Base> {
        const auto y = base.point_mass();
        return y ? std::optional(map.forward(*y)) : std::nullopt;
    }
    double cumulative(double x) const {
        const double y = map.inverse(x);
        return decreasing() ? base.survival(y) : base.cumulative(y);
    }
    double survival(double x) const {
        const double y = map.inverse(x);
        return decreasing() ? base.cumulative(y) : base.survival(y);
    }
    void quantiles(std::span<double> p) const
        requires(!decreasing() && requires(const Base& y) { y.quantiles(p); }) {
        base.quantiles(p);
        for (double& x : p) x = map.forward(x);
    }
    double log_density(double x) const {
        const double at_base = base.log_density(map.inverse(x));
        return at_base == -HUGE_VAL ? at_base
                                    : at_base + map.log_slope(x);  // the slope may be infinite there
    }
    double quantile(double p) const {
        return map.forward(decreasing() ? pral::quantile_upper(base, p) : base.quantile(p));
    }
    double quantile_upper(double q) const {
        return map.forward(decreasing() ? base.quantile(q) : pral::quantile_upper(base, q));
    }
    double log_cumulative(double x) const {
        const double y = map.inverse(x);
        return decreasing() ? pral::log_survival(base, y) : pral::log_cumulative(base, y);
    }
    double log_survival(double x) const {
        const double y = map.inverse(x);
        return decreasing() ? pral::log_cumulative(base, y) : pral::log_survival(base, y);
    }
};

/// What is known of the base: nothing without a base that knows.
template <class Base>
std::optional<Moments> moments_of(const Base& base) {
    if constexpr (requires { base.moments(); })
        return base.moments();
    else
        return std::nullopt;
}

/// Map: X = -Y.
struct Negation {
    static constexpr bool kDecreasing = true;
    double forward(double y) const { return -y; }
    double inverse(double x) const { return -x; }
    double log_slope(double) const { return 0; }
};

/// Map: X = origin + Y.
struct Shift {
    double origin;
    double forward(double y) const { return origin + y; }
    double inverse(double x) const { return x - origin; }
    double log_slope(double) const { return 0; }
};

/// X = origin + Y.
template <class Base>
struct Shifted : Transformed<Base, Shift> {
    Shifted(double origin, Base base) : Transformed<Base, Shift>{base, {origin}} {}

    std::optional<Moments> moments() const {
        const auto of_base = moments_of(this->base);
        return of_base ? std::optional(linear(*of_base, 1, this->map.origin)) : std::nullopt;
    }
    double moment_limit(Side side) const { return this->base.moment_limit(side); }
    double mode() const requires HasMode<Base> { return this->map.origin + this->base.mode(); }

    double log_likelihood(std::span<const double> values) const requires HasLogLikelihood<Base> {
        return numerics::sum_by_blocks(
            values, [this](double x) { return x - this->map.origin; },
            [this](std::span<const double> y) { return this->base.log_likelihood(y); });
    }
};

}  // namespace pral
