// The gamma distribution and its kin: functions of a standard gamma variable.
#pragma once

#include <cmath>

#include "distributions/family.h"
#include "distributions/quantile_table.h"
#include "distributions/sample.h"
#include "numerics/extended_log.h"
#include "numerics/gamma.h"
#include "numerics/gamma_ratio.h"

namespace pral {

/// The gamma distribution of scale 1.
struct StandardGamma {
    double shape;

    double quantile(double p) const { return numerics::gamma_lower_inverse(shape, p); }
    double quantile_upper(double q) const { return numerics::gamma_upper_inverse(shape, q); }
    double log_density(double z) const { return numerics::log_gamma_density(shape, z); }
    LogDensitySlope log_density_slope() const { return {{shape - 1, -1, 0}, {0, 1, 0}}; }
};

/// A mean of a sample and the mean of ln(mean/x).
struct MeanAndLogs {
    double mean, log_below;
};

/// X = g(G), G a standard gamma variable of the given shape: F(x) = P(shape, z) or, where g falls, Q(shape, z) with
/// g(z) = x. `Map` holds what g depends on:
///
///   inverse(x)       z, and what its rounding took off
///   forward(z)       g(z)
///   log_slope(x)     ln |dz/dx|
///   end, power, log_factor   for small z, ln z = log_factor + power ln(x - end); z itself may be beyond the range of a
///                    double where its power by a small shape is not
template <class Map>
struct OfGamma {
    double shape;
    Map map;

    Support support() const { return {map.end, numerics::kInfinity}; }
    std::optional<double> point_mass() const { return std::nullopt; }

    double cumulative(double x) const { return tail(x, !kFalls); }
    double survival(double x) const { return tail(x, kFalls); }
    double log_cumulative(double x) const { return log_tail(x, !kFalls); }
    double log_survival(double x) const { return log_tail(x, kFalls); }
    double log_density(double x) const {
        const double z = map.inverse(x).hi;
        if (is_small(z)) {
            const double power = map.power * shape - 1;
            const double log_limit =
                shape * map.log_factor + std::log(shape * std::fabs(map.power)) - numerics::lgamma_1p(shape);
            return power == 0 ? log_limit : power * std::log(x - map.end) + log_limit;
        }
        const double log = numerics::log_gamma_density(shape, z);
        return log == -numerics::kInfinity ? -HUGE_VAL : log + map.log_slope(x);
    }
    /// ln f(x) is linear in ln x and in the map's own power of x: their means are enough.
    double log_likelihood(const Sample& x) const requires requires(const Map& m) { m.mean_of(x); }
    {
        const auto [mean, log_below] = map.mean_of(x);
        return x.count() * (log_density(mean) - times(map.power * shape - 1, log_below));
    }
    double quantile(double p) const {
        return from_gamma(
            kFalls ? numerics::gamma_upper_inverse(shape, p) : numerics::gamma_lower_inverse(shape, p), p,
            !kFalls);
    }
    double quantile_upper(double q) const {
        return from_gamma(
            kFalls ? numerics::gamma_lower_inverse(shape, q) : numerics::gamma_upper_inverse(shape, q), q,
            kFalls);
    }

    auto quantile_table() const {
        const auto place = [map = map](double z) { return map.forward(z); };
        return QuantileTable(StandardGamma{shape}, place, std::fabs(map.end) / 256, kFalls);
    }

  private:
    static constexpr bool kFalls = Map::power < 0;

    bool is_small(double z) const { return z < numerics::kLeastWithDigits && shape < 1e3; }
    /// The logarithm of P(shape, z) = z^shape/Gamma(1 + shape), all that is left for small z.
    double log_small(double x) const {
        return shape * (map.log_factor + map.power * std::log(x - map.end)) - numerics::lgamma_1p(shape);
    }
    /// With large shapes the rounding of z would cost sqrt(shape) ulps, far out many times that.
    bool rounding_counts(const numerics::DoubleDouble& z) const {
        return shape > numerics::kRoundingCounts && z.lo != 0;
    }

    double tail(double x, bool lower) const {
        const numerics::DoubleDouble z = map.inverse(x);
        if (is_small(z.hi)) return lower ? std::exp(log_small(x)) : -numerics::expm1_fn(log_small(x));
        const double rounded =
            lower ? numerics::gamma_lower(shape, z.hi) : numerics::gamma_upper(shape, z.hi);
        if (!rounding_counts(z)) return rounded;
        const double change = z.lo * numerics::gamma_density(shape, z.hi);
        return lower ? rounded + change : rounded - change;
    }
    double log_tail(double x, bool lower) const {
        const numerics::DoubleDouble z = map.inverse(x);
        if (is_small(z.hi)) return lower ? log_small(x) : numerics::log1m_exp(-log_small(x));
        const double rounded =
            lower ? numerics::log_gamma_lower(shape, z.hi) : numerics::log_gamma_upper(shape, z.hi);
        if (!rounding_counts(z) || !(rounded > -numerics::kInfinity)) return rounded;
        const double change = z.lo * std::exp(numerics::log_gamma_density(shape, z.hi) - rounded);
        return lower ? rounded + change : rounded - change;
    }
    /// g(z) for the z whose lower (upper) tail is `probability`.
    double from_gamma(double z, double probability, bool lower) const {
        if (!is_small(z)) return map.forward(z);
        const double log_p = lower ? std::log(probability) : numerics::log1p_fn(-probability);
        const double log_z = (log_p + numerics::lgamma_1p(shape)) / shape;
        return map.end + std::exp((log_z - map.log_factor) / map.power);
    }
};

/// z = x/scale.
struct GammaScale {
    static constexpr double power = 1, end = 0;
    double scale, log_factor;

    explicit GammaScale(double scale_) : scale(scale_), log_factor(-std::log(scale_)) {}
    numerics::DoubleDouble inverse(double x) const { return numerics::exact_quotient(x, scale); }
    double forward(double z) const { return scale * z; }
    double log_slope(double) const { return log_factor; }
    MeanAndLogs mean_of(const Sample& x) const { return {x.mean(), x.log_below_mean()}; }
};

/// Shape alpha >= 0, scale beta >= 0; a zero is a point mass at 0. F = P(alpha, x/beta).
struct Gamma : OfGamma<GammaScale> {
    double alpha, beta;

    Gamma(double alpha_, double beta_)
        : OfGamma{alpha_, GammaScale(beta_)},
          alpha(alpha_),
          beta(beta_),
          log_gamma_(numerics::log_gamma(alpha_)) {}
    Message check() const {
        if (!(alpha >= 0)) return "Error: alpha must be >= 0";
        if (!(beta >= 0)) return "Error: beta must be >= 0";
        return nullptr;
    }
    std::optional<double> point_mass() const {
        return alpha == 0 || beta == 0 ? std::optional(0.0) : std::nullopt;
    }
    double log_likelihood(std::span<const double> values) const;
    using OfGamma::log_likelihood;
    Moments moments() const { return gamma_moments(alpha, beta); }
    double mode() const { return std::max(alpha - 1, 0.0) * beta; }

  private:
    double log_gamma_;
};

/// Shape m, a non-negative integer, scale beta >= 0: Gamma(m, beta).
struct Erlang : Gamma {
    Erlang(double m, double scale) : Gamma(m, scale) {}
    Message check() const {
        if (const Message objection = check_range()) return objection;
        return alpha == std::floor(alpha) ? nullptr : "Error: m must be an integer";
    }
    Message check_range() const {
        if (!(alpha >= 0)) return "Error: m must be >= 0";
        if (!(beta >= 0)) return "Error: beta must be >= 0";
        return nullptr;
    }
};

/// Degrees of freedom nu, a positive integer: Gamma(nu/2, 2).
struct ChiSq : Gamma {
    double nu;

    explicit ChiSq(double nu_) : Gamma(0.5 * nu_, 2), nu(nu_) {}
    Message check() const {
        if (const Message objection = check_range()) return objection;
        return nu == std::floor(nu) ? nullptr : "Error: nu must be a integer";
    }
    Message check_range() const { return nu > 0 ? nullptr : "Error: nu must be a positive integer"; }
};

/// z = (x/scale)^2/2.
struct HalfSquare {
    static constexpr double power = 2, end = 0;
    double scale, log_factor;

    explicit HalfSquare(double scale_) : scale(scale_), log_factor(-2 * std::log(scale_) - numerics::kLn2) {}
    numerics::DoubleDouble inverse(double x) const {
        const numerics::DoubleDouble ratio = numerics::exact_quotient(x, scale);
        const numerics::DoubleDouble square = numerics::multiply(ratio, {0.5 * ratio.hi, 0.5 * ratio.lo});
        return std::isfinite(square.lo) ? square : numerics::DoubleDouble{0.5 * ratio.hi * ratio.hi, 0};
    }
    double forward(double z) const { return scale * (std::sqrt(2.0) * std::sqrt(z)); }
    double log_slope(double x) const { return std::log(x) + (log_factor + numerics::kLn2); }
    MeanAndLogs mean_of(const Sample& x) const {
        return {x.root_mean_square(), x.log_below_root_mean_square()};
    }
};

/// The root of a gamma variable. With m the mean of the square root of 2 G, its variance is 2 shape - m^2, which loses
/// the digits of large shapes.
struct RootOfGamma : OfGamma<HalfSquare> {
    std::optional<Moments> moments() const {
        constexpr double kLargest = 5;
        if (shape > kLargest) return std::nullopt;
        const double m =
            std::sqrt(2.0) * std::exp(numerics::log_gamma(shape + 0.5) - numerics::log_gamma(shape));
        const double variance = 2 * shape - m * m, deviation = std::sqrt(variance);
        const double skewness = m * (1 - 2 * variance) / (variance * deviation);
        const double kurtosis = 2 * (1 - m * deviation * skewness - variance) / variance;
        return linear({m, variance, skewness, kurtosis}, map.scale, 0);
    }
    double mode() const { return map.scale * std::sqrt(std::max(2 * shape - 1, 0.0)); }
};

/// Degrees of freedom nu >= 1, an integer: the square root of ChiSq(nu).
struct Chi : RootOfGamma {
    double nu;

    explicit Chi(double nu_) : RootOfGamma{{0.5 * nu_, HalfSquare(1)}}, nu(nu_) {}
    Message check() const {
        if (const Message objection = check_range()) return objection;
        return nu == std::floor(nu) ? nullptr : "Error: nu must be an integer";
    }
    Message check_range() const { return nu >= 1 ? nullptr : "Error: nu must be >= 1"; }
};

/// Scale A > 0: A times Chi(3), the speed of a gas molecule.
struct Maxwell : RootOfGamma {
    explicit Maxwell(double A) : RootOfGamma{{1.5, HalfSquare(A)}} {}
    Message check() const {
        if (!(map.scale > 0)) return "Error: A must be > 0";
        return nullptr;
    }
};

/// z = scale/x.
struct GammaReciprocal {
    static constexpr double power = -1, end = 0;
    double scale, log_factor;

    explicit GammaReciprocal(double scale_) : scale(scale_), log_factor(std::log(scale_)) {}
    numerics::DoubleDouble inverse(double x) const { return numerics::exact_quotient(scale, x); }
    double forward(double z) const { return scale / z; }
    double log_slope(double x) const { return log_factor - 2 * std::log(x); }
    MeanAndLogs mean_of(const Sample& x) const { return {x.harmonic_mean(), x.log_below_harmonic_mean()}; }
};

/// Shape alpha > 0, scale beta > 0; support [0, inf): 1/X is Gamma(alpha, 1/beta).
struct Pearson5 : OfGamma<GammaReciprocal> {
    Pearson5(double alpha, double beta) : OfGamma{alpha, GammaReciprocal(beta)} {}
    Message check() const {
        if (!(shape > 0)) return "Error: alpha must be > 0";
        if (!(map.scale > 0)) return "Error: beta must be > 0";
        return nullptr;
    }
    Moments moments() const {
        const double mean = 1 / (shape - 1);
        return linear({mean, mean * mean / (shape - 2), 4 * std::sqrt(shape - 2) / (shape - 3),
                       6 * ((5 * shape - 11) / (shape - 3) / (shape - 4))},
                      map.scale, 0);
    }
    double moment_limit(Side side) const { return side == Side::upper ? shape : HUGE_VAL; }
    double mode() const { return map.scale / (shape + 1); }
};

/// z = ln(1 + x - end)/scale.
struct GammaLogarithm {
    static constexpr double power = 1;
    double end, scale, log_factor;

    GammaLogarithm(double end_, double scale_) : end(end_), scale(scale_), log_factor(-std::log(scale_)) {}
    numerics::DoubleDouble inverse(double x) const {
        const numerics::DoubleDouble distance = numerics::two_sum(x, -end);
        const numerics::DoubleDouble log = std::isfinite(distance.lo)
                                               ? numerics::extended_log(numerics::add({1, 0}, distance))
                                               : numerics::DoubleDouble{std::log(distance.hi), 0};
        return numerics::exact_quotient(log, {scale, 0});
    }
    double forward(double z) const { return end + numerics::expm1_fn(scale * z); }
    double log_slope(double x) const { return log_factor - numerics::log1p_fn(x - end); }
};

/// Shape alpha > 0, scale beta >= 0, 0 being a point mass at the origin gamma; support [gamma, inf): ln(X - gamma + 1) is
/// Gamma(alpha, beta).
struct LogGamma : OfGamma<GammaLogarithm> {
    LogGamma(double alpha, double beta, double gamma) : OfGamma{alpha, GammaLogarithm(gamma, beta)} {}
    Message check() const {
        if (!(shape > 0)) return "Error: alpha must be >0";
        if (!(map.scale >= 0)) return "Error: beta must be >= 0";
        return nullptr;
    }
    std::optional<double> point_mass() const {
        return map.scale == 0 ? std::optional(map.end) : std::nullopt;
    }
    double log_likelihood(std::span<const double> values) const;
    std::optional<Moments> moments() const {
        const auto log_mgf = [this](double k) {
            return k * map.scale < 1 ? -shape * numerics::log1p_fn(-k * map.scale) : HUGE_VAL;
        };
        if (!(map.scale < 1)) return kNoMoments;
        const auto relative = exponential_moments(log_mgf);
        if (!relative) return std::nullopt;
        Moments all = linear(*relative, std::exp(log_mgf(1)), 0);
        all.mean = map.end + numerics::expm1_fn(log_mgf(1));
        return all;
    }
    double moment_limit(Side side) const { return side == Side::upper ? 1 / map.scale : HUGE_VAL; }
    double mode() const { return map.forward(std::max(shape - 1, 0.0) / (1 + map.scale)); }
};

}  // namespace pral
