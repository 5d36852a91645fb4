// The beta distribution and its kin: functions of a beta variable.
#pragma once

#include <algorithm>
#include <cmath>
#include <limits>

#include "distributions/continuous/linear_axis.h"
#include "distributions/family.h"
#include "distributions/quantile_table.h"
#include "distributions/sample.h"
#include "numerics/beta_quantile.h"
#include "numerics/extended_log.h"

namespace pral {

/// A point of [0, 1] by both distances from its ends; `rest` is what rounding took off the smaller one.
struct ExactUnitPoint {
    double x, y, rest;

    static ExactUnitPoint from(numerics::DoubleDouble smaller, bool near_zero) {
        const double other = 1 - smaller.hi;
        return near_zero ? ExactUnitPoint{smaller.hi, other, smaller.lo}
                         : ExactUnitPoint{other, smaller.hi, smaller.lo};
    }
};

/// X = g(B), B a beta variable or one like it in (0, 1), g rising. `Map` holds what g depends on:
///
///   point(x)                 B where X = x
///   forward(point)           X
///   log_slope(x)             ln dB/dx
///   log_distance(near_zero, x), from_log_distance(near_zero, log)
///                            ln of the distance from 0 or from 1, which may be beyond the range of a double, and back
///
/// `Ratio` tells the tails and the density of B by both distances from the ends, as numerics::BetaRatio does.
template <class Map, class Ratio = numerics::BetaRatio>
struct OfUnitVariable {
    Ratio ratio;
    Map map;
    /// With large parameters the rounding of B would cost their square root in ulps, or more.
    bool rounding_counts;

    Support support() const { return map.support(); }
    std::optional<double> point_mass() const { return std::nullopt; }

    double cumulative(double x) const { return tail(x, true); }
    double survival(double x) const { return tail(x, false); }
    double log_cumulative(double x) const { return log_tail(x, true); }
    double log_survival(double x) const { return log_tail(x, false); }
    double log_density(double x) const {
        const ExactUnitPoint at = map.point(x);
        if (is_tiny(at)) return log_tiny_density(at, x) + map.log_slope(x);
        const double log = ratio.log_density(at.x, at.y);
        if (std::fabs(log) == numerics::kInfinity) return std::copysign(HUGE_VAL, log);
        return log + map.log_slope(x);
    }

  protected:
    /// Nearer to an end than normal numbers are. Only what has a BetaRatio can be asked there.
    static bool is_tiny(const ExactUnitPoint& at) {
        const double smaller = std::min(at.x, at.y);
        return smaller < numerics::kLeastWithDigits && smaller > 0 && requires(const Ratio& r) {
            r.log_leading(true, {1, 0});
        };
    }

  private:
    struct End {
        double power, log_mass;  // next to an end the tail is e^log_mass = (distance/e^log_unit)^power
    };
    End leading(bool near_zero, double x) const {
        if constexpr (requires { ratio.log_leading(true, {1, 0}); }) {
            const double power = near_zero ? ratio.a() : ratio.b();
            return {power,
                    power * (map.log_distance(near_zero, x) - ratio.log_leading(near_zero, {1, 0}).hi)};
        } else {
            return {0, 0};
        }
    }
    double log_tiny_density(const ExactUnitPoint& at, double x) const {
        const bool near_zero = at.x < at.y;
        const End end = leading(near_zero, x);
        return end.log_mass + std::log(end.power) - map.log_distance(near_zero, x);
    }
    double tail(double x, bool lower) const {
        const ExactUnitPoint at = map.point(x);
        const bool near_zero = at.x <= at.y;
        if (is_tiny(at)) {
            const double log = leading(near_zero, x).log_mass;
            return near_zero == lower ? std::exp(log) : -numerics::expm1_fn(log);
        }
        const double rounded = lower ? ratio.lower(at.x, at.y) : ratio.upper(at.x, at.y);
        if (!rounding_counts || at.rest == 0) return rounded;
        const double change = at.rest * std::exp(ratio.log_density(at.x, at.y));
        return near_zero == lower ? rounded + change : rounded - change;
    }
    double log_tail(double x, bool lower) const {
        const ExactUnitPoint at = map.point(x);
        const bool near_zero = at.x <= at.y;
        if (is_tiny(at)) {
            const double log = leading(near_zero, x).log_mass;
            return near_zero == lower ? log : numerics::log1m_exp(-log);
        }
        const double rounded = lower ? ratio.log_lower(at.x, at.y) : ratio.log_upper(at.x, at.y);
        if (!rounding_counts || at.rest == 0 || !(rounded > -numerics::kInfinity)) return rounded;
        const double change = at.rest * std::exp(ratio.log_density(at.x, at.y) - rounded);
        return near_zero == lower ? rounded + change : rounded - change;
    }
};

/// X = g(B), B a beta variable of shapes a and b.
template <class Map>
struct OfBeta : OfUnitVariable<Map> {
    OfBeta(double a, double b, Map map_)
        : OfUnitVariable<Map>{numerics::BetaRatio(a, b), map_, a + b > numerics::kRoundingCounts} {}

    double quantile(double p) const { return from_tail(true, p); }
    double quantile_upper(double q) const { return from_tail(false, q); }

  private:
    double from_tail(bool lower, double p) const {
        const numerics::UnitPoint at = lower ? numerics::beta_lower_inverse(this->ratio, p)
                                             : numerics::beta_upper_inverse(this->ratio, p);
        if (std::min(at.x, at.y) >= numerics::kLeastWithDigits || std::isnan(p)) return this->map.forward(at);
        const bool near_zero = at.x < at.y;
        const numerics::DoubleDouble mass =
            near_zero == lower ? numerics::DoubleDouble{p, 0} : numerics::two_sum(1, -p);
        return this->map.from_log_distance(near_zero, this->ratio.log_leading(near_zero, mass).hi);
    }
};

/// X = min + (max - min) B.
struct UnitInterval {
    double min, max;
    LinearAxis axis;
    double width, log_width;  // on the axis

    UnitInterval(double min_, double max_)
        : min(min_),
          max(max_),
          axis(LinearAxis::over(min_, max_)),
          width(std::min(axis.distance(min_, max_), DBL_MAX)),
          log_width(std::log(width)) {}

    Support support() const { return {min, max}; }
    ExactUnitPoint point(double x) const {
        const auto distance = [this](double from, double to) {
            return numerics::two_sum(to * axis.per_unit, -from * axis.per_unit);
        };
        const numerics::DoubleDouble below = distance(min, x), above = distance(x, max);
        const bool near_zero = below.hi <= above.hi;
        return ExactUnitPoint::from(numerics::exact_quotient(near_zero ? below : above, distance(min, max)),
                                    near_zero);
    }
    double forward(numerics::UnitPoint at) const {
        return at.x <= at.y ? axis.move(min, width * at.x) : axis.move(max, -(width * at.y));
    }
    double log_slope(double x) const { return axis.log_slope(x) - log_width; }
    double log_distance(bool near_zero, double x) const {
        return std::log(near_zero ? axis.distance(min, x) : axis.distance(x, max)) - log_width;
    }
    double from_log_distance(bool near_zero, double log) const {
        const double distance = std::exp(log + log_width);
        return near_zero ? axis.move(min, distance) : axis.move(max, -distance);
    }
};

/// The beta distribution on [0, 1], for tables.
struct StandardBeta : OfBeta<UnitInterval> {
    StandardBeta(double a, double b) : OfBeta(a, b, UnitInterval(0, 1)) {}
    LogDensitySlope log_density_slope() const {
        return {{ratio.a() - 1, 2 - ratio.a() - ratio.b(), 0}, {0, 1, -1}};
    }
};

/// A beta variable of shapes alpha1 and alpha2 stretched over [min, max].
struct BetaOnInterval : OfBeta<UnitInterval> {
    BetaOnInterval(double alpha1, double alpha2, double min, double max)
        : OfBeta(alpha1, alpha2, UnitInterval(min, max)) {}
    Moments moments() const {
        const double a = ratio.a(), b = ratio.b();
        Moments all = map.axis.moments(beta_moments(a, b), map.min, map.width);
        if (a > b) all.mean = map.axis.move(map.max, -(map.width * (b / (a + b))));
        return all;
    }
    double peak() const {
        const LinearAxis& axis = map.axis;
        return beta_mode(ratio.a(), ratio.b(), map.min * axis.per_unit, map.max * axis.per_unit) * axis.unit;
    }
    double log_likelihood(std::span<const double> values) const;
    /// By the distance from the end nearer to 0, which the sum keeps best.
    auto quantile_table() const {
        const bool from_max = std::fabs(map.max) < std::fabs(map.min);
        const LinearPlace place =
            from_max ? LinearPlace{map.max, -map.width} : LinearPlace{map.min, map.width};
        const StandardBeta standard =
            from_max ? StandardBeta(ratio.b(), ratio.a()) : StandardBeta(ratio.a(), ratio.b());
        // Beyond the range of a double the table leaves all to the family.
        return QuantileTable(standard, place, map.axis.is_plain() ? place.cancels_below() : HUGE_VAL,
                             from_max);
    }
};

/// Shapes alpha > 0, beta > 0; support [0, 1]. F = I_x(alpha, beta), DLMF 8.17.2.
struct Beta : BetaOnInterval {
    double alpha, beta;

    Beta(double alpha_, double beta_) : BetaOnInterval(alpha_, beta_, 0, 1), alpha(alpha_), beta(beta_) {}
    Message check() const {
        if (!(alpha > 0)) return "Error: alpha must be >0";
        if (!(beta > 0)) return "Error: beta must be >0";
        return nullptr;
    }
    using BetaOnInterval::log_likelihood;
    double log_likelihood(const Sample& x) const {
        return x.count() * (log_density(x.mean()) - times(alpha - 1, x.log_below_mean()) -
                            times(beta - 1, x.log_complement_below_mean()));
    }
};

/// Shapes alpha > 0, beta > 0, min < max; support [min, max]: min + (max - min) Beta(alpha, beta).
struct Beta4 : BetaOnInterval {
    double alpha, beta;

    Beta4(double alpha_, double beta_, double min, double max)
        : BetaOnInterval(alpha_, beta_, min, max), alpha(alpha_), beta(beta_) {}
    Message check() const {
        if (!(alpha > 0)) return "Error: alpha must be > 0";
        if (!(beta > 0)) return "Error: beta must be > 0";
        if (!(map.min < map.max)) return "Error: Min must be < Max";
        return nullptr;
    }
};

/// X = scale B/(1 - B): X/(X + scale) is the beta variable. The scale may carry its own rounding.
struct ScaledOdds {
    numerics::DoubleDouble scale;
    double log_scale;

    explicit ScaledOdds(numerics::DoubleDouble scale_)
        : scale(scale_.hi > DBL_MAX || scale_.hi < DBL_MIN
                    ? numerics::DoubleDouble{std::clamp(scale_.hi, DBL_MIN, DBL_MAX), 0}
                    : scale_),
          log_scale(std::log(scale.hi)) {}

    Support support() const { return kPositiveReals; }
    ExactUnitPoint point(double x) const {
        const bool near_zero = x <= scale.hi;
        const numerics::DoubleDouble ratio =
            near_zero ? numerics::exact_quotient({x, 0}, scale) : numerics::exact_quotient(scale, {x, 0});
        return ExactUnitPoint::from(numerics::exact_quotient(ratio, numerics::add({1, 0}, ratio)), near_zero);
    }
    double forward(numerics::UnitPoint at) const { return scale.hi * (at.x / at.y); }
    double log_slope(double x) const {
        return x <= scale.hi ? -log_scale - 2 * numerics::log1p_fn(x / scale.hi)
                             : log_scale - 2 * (std::log(x) + numerics::log1p_fn(scale.hi / x));
    }
    double log_distance(bool near_zero, double x) const {
        return near_zero ? std::log(x) - log_scale : log_scale - std::log(x);
    }
    double from_log_distance(bool near_zero, double log) const {
        return std::exp(near_zero ? log_scale + log : log_scale - log);
    }
};

/// The odds of a beta variable, for tables.
struct StandardOdds : OfBeta<ScaledOdds> {
    StandardOdds(double a, double b) : OfBeta(a, b, ScaledOdds({1, 0})) {}
    LogDensitySlope log_density_slope() const { return {{ratio.a() - 1, -ratio.b() - 1, 0}, {0, 1, 1}}; }
};

/// A multiple of the odds of a beta variable.
struct BetaOdds : OfBeta<ScaledOdds> {
    using OfBeta::OfBeta;
    Moments moments() const { return linear(beta_odds_moments(ratio.a(), ratio.b()), map.scale.hi, 0); }
    double moment_limit(Side side) const { return side == Side::upper ? ratio.b() : HUGE_VAL; }
    double mode() const { return map.scale.hi * (std::max(ratio.a() - 1, 0.0) / (ratio.b() + 1)); }
    double log_likelihood(std::span<const double> values) const;
    auto quantile_table() const {
        return QuantileTable(StandardOdds(ratio.a(), ratio.b()), LinearPlace{0, map.scale.hi});
    }
};

/// Shapes alpha1 > 0, alpha2 > 0, scale beta > 0; support [0, inf): X/(X + beta) is Beta(alpha1, alpha2).
struct Pearson6 : BetaOdds {
    double alpha1, alpha2, beta;

    Pearson6(double alpha1_, double alpha2_, double beta_)
        : BetaOdds(alpha1_, alpha2_, ScaledOdds({beta_, 0})), alpha1(alpha1_), alpha2(alpha2_), beta(beta_) {}
    Message check() const {
        if (!(alpha1 > 0)) return "Error: alpha1 must be > 0";
        if (!(alpha2 > 0)) return "Error: alpha2 must be > 0";
        if (!(beta > 0)) return "Error: beta must be > 0";
        return nullptr;
    }
};

/// The shape that belongs to degrees of freedom, which halving must not make 0.
inline double shape_of(double degrees) {
    return degrees > 0 ? std::max(0.5 * degrees, std::numeric_limits<double>::denorm_min()) : degrees;
}

/// Degrees of freedom nu1 > 0, nu2 > 0, any real numbers; support [0, inf): the ratio of two mean chi-squares,
/// Pearson6(nu1/2, nu2/2, nu2/nu1).
struct F : BetaOdds {
    double nu1, nu2;

    F(double nu1_, double nu2_)
        : BetaOdds(shape_of(nu1_), shape_of(nu2_), ScaledOdds(numerics::exact_quotient(nu2_, nu1_))),
          nu1(nu1_),
          nu2(nu2_) {}
    Message check() const {
        if (!(nu1 > 0)) return "Error: Nu1 must be > 0";
        if (!(nu2 > 0)) return "Error: Nu2 must be > 0";
        return nullptr;
    }
};

}  // namespace pral
