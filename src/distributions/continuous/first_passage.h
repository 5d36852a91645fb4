// Distributions of the time until a drifting random walk or fatigue reaches a level: Birnbaum and Saunders' fatigue life
// and the inverse Gaussian distribution.
#pragma once

#include <numbers>

#include "distributions/adapters.h"
#include "distributions/continuous/normal.h"
#include "distributions/sample.h"

namespace pral {

/// y = (sqrt(z) - 1/sqrt(z))/gamma, z = (x - alpha)/beta.
struct FatigueScore {
    double alpha, beta, gamma;

    double forward(double y) const {
        const double t = 0.5 * gamma * std::fabs(y),
                     root = t < numerics::kSquareLimit ? t + std::sqrt(1 + t * t) : 2 * t;
        return alpha + beta * (y < 0 ? 1 / root / root : root * root);
    }
    double inverse(double x) const {
        const double above = x - alpha, z = above / beta;
        if (z > 1e20) return std::sqrt(z) / gamma;
        return (above - beta) / beta / (std::sqrt(z) * gamma);  // exact near z = 1
    }
    double log_slope(double x) const {
        const double z = (x - alpha) / beta;
        return std::log(0.5 + 0.5 / z) - 0.5 * std::log(z) - std::log(gamma) - std::log(beta);
    }
};

/// Location alpha, scale beta >= 0, 0 being a point mass at alpha, shape gamma > 0; support [alpha, inf).
/// F = Phi((sqrt(z) - 1/sqrt(z))/gamma), z = (x - alpha)/beta (Birnbaum and Saunders 1969).
struct Fatigue : Transformed<StandardNormal, FatigueScore> {
    Fatigue(double alpha, double beta, double gamma) : Transformed{{}, {alpha, beta, gamma}} {}
    Message check() const {
        if (!(map.beta >= 0)) return "Error: beta must be >= 0";
        if (!(map.gamma > 0)) return "Error: gamma must be > 0";
        return nullptr;
    }
    Support support() const { return {map.alpha, numerics::kInfinity}; }
    std::optional<double> point_mass() const {
        return map.beta == 0 ? std::optional(map.alpha) : std::nullopt;
    }
    double log_likelihood(std::span<const double> values) const;
    Moments moments() const {
        const double square = map.gamma * map.gamma, weight = 5 * square + 4;
        const double deviation = map.beta * map.gamma * std::sqrt(0.25 * weight);
        const double ratio = map.gamma / std::sqrt(weight);
        return {map.alpha + map.beta * (1 + 0.5 * square), deviation * deviation,
                4 * ratio * ((11 * square + 6) / weight), 6 * ratio * ratio * ((93 * square + 40) / weight)};
    }
};

/// Mean mu > 0, shape lambda > 0; support [0, inf). f = sqrt(lambda/(2 pi x^3)) exp(-lambda (x - mu)^2/(2 mu^2 x)).
/// With a = sqrt(lambda/x) (x/mu - 1), the score of a fatigue life, b = sqrt(lambda/x) (x/mu + 1) and Mills' ratio M,
/// F = phi(a) (M(-a) + M(b)) and 1 - F = phi(a) (M(a) - M(b)) (Schroedinger 1915).
class InvGauss {
  public:
    double mu, lambda;

    InvGauss(double mu_, double lambda_)
        : mu(mu_),
          lambda(lambda_),
          score_{0, mu_, std::sqrt(mu_ / lambda_)},
          log_factor_(0.5 * std::log(lambda_) - numerics::kLnSqrt2Pi) {}
    Message check() const {
        if (!(mu > 0)) return "Error: mu must be >0";
        if (!(lambda > 0)) return "Error: lambda must be >0";
        return nullptr;
    }
    Support support() const { return kPositiveReals; }
    std::optional<double> point_mass() const { return std::nullopt; }

    double cumulative(double x) const;
    double survival(double x) const;
    double log_cumulative(double x) const;
    double log_survival(double x) const;
    double log_density(double x) const {
        if (x == 0) return -HUGE_VAL;
        const double a = score_.inverse(x);
        return log_factor_ - 1.5 * std::log(x) - 0.5 * a * a;
    }
    double log_likelihood(const Sample& x) const {
        const double mean = x.mean(), of_reciprocals = 1 / x.harmonic_mean() - 1 / mean;
        return x.count() * (log_density(mean) + 1.5 * x.log_below_mean() - 0.5 * lambda * of_reciprocals);
    }
    double quantile(double p) const;
    double quantile_upper(double q) const;
    Moments moments() const {
        const double square = mu / lambda, deviation = mu * std::sqrt(square);
        return {mu, deviation * deviation, 3 * std::sqrt(square), 15 * square};
    }
    double mode() const {
        const double r = 1.5 * mu / lambda;
        return r < numerics::kSquareLimit ? mu / (std::sqrt(1 + r * r) + r) : lambda / 3;
    }
    LogDensitySlope log_density_slope() const {
        return {{lambda / 2, -1.5, -lambda / mu / (2 * mu)}, {0, 0, 1}};
    }
    auto quantile_table() const { return QuantileTable(*this, LinearPlace{0, 1}); }

  private:
    double gap(double x) const { return 2 * std::sqrt(lambda / x); }                         // b - a
    double reflected_score(double x) const { return std::sqrt(lambda / x) * (1 + x / mu); }  // b
    double upper_ratio(double a, double gap) const;                                          // M(a) - M(b)

    FatigueScore score_;
    double log_factor_;
};

/// The absolute value of a standard normal variable.
struct StandardHalfNormal {
    Support support() const { return kPositiveReals; }
    double cumulative(double y) const {
        return y < 1 ? numerics::erf(y * std::numbers::sqrt2 / 2) : 1 - survival(y);
    }
    double survival(double y) const { return 2 * numerics::normal_survival(y); }
    double log_survival(double y) const {
        return y < 0.5 ? numerics::log1p_fn(-cumulative(y))
                       : numerics::kLn2 + numerics::normal_log_cumulative(-y);
    }
    double log_density(double y) const { return numerics::kLn2 - numerics::kLnSqrt2Pi - 0.5 * y * y; }
    double quantile(double p) const { return numerics::normal_quantile_from_median(0.5 * p); }
    double quantile_upper(double q) const { return numerics::normal_quantile_upper(0.5 * q); }
    Moments moments() const {
        constexpr double kPi = numerics::kPi;
        return {std::sqrt(2 / kPi), 1 - 2 / kPi, std::numbers::sqrt2 * (4 - kPi) / std::pow(kPi - 2, 1.5),
                8 * (kPi - 3) / ((kPi - 2) * (kPi - 2))};
    }
    double mode() const { return 0; }
};

/// Scale sigma >= 0, 0 being a point mass at 0; support [0, inf): the absolute value of Normal(0, sigma).
struct HalfNormal : LocationScale<StandardHalfNormal> {
    explicit HalfNormal(double sigma) : LocationScale(0, sigma) {}
    Message check() const {
        if (!(scale >= 0)) return "Error: sigma must be >= 0";
        return nullptr;
    }
};

/// x = a + c/y^2.
struct LevyMap {
    static constexpr bool kDecreasing = true;
    double c, a;

    double forward(double y) const { return a + c / y / y; }
    double inverse(double x) const {
        return std::sqrt(c) / std::sqrt(std::fabs(x - a));  // the quotient itself may be out of range
    }
    double log_slope(double x) const { return 0.5 * std::log(c) - 1.5 * std::log(x - a) - numerics::kLn2; }
};

/// Scale c >= 0, 0 being a point mass at a, location a; support [a, inf). F = erfc(sqrt(c/(2 (x - a)))): the first passage
/// without drift, sqrt(c/(x - a)) being half normal.
struct Levy : Transformed<StandardHalfNormal, LevyMap> {
    Levy(double c, double a) : Transformed{{}, {c, a}} {}
    Message check() const {
        if (!(map.c >= 0)) return "Error: c must be >=0";
        return nullptr;
    }
    std::optional<double> point_mass() const { return map.c == 0 ? std::optional(map.a) : std::nullopt; }
    Moments moments() const { return kNoMoments; }
    double moment_limit(Side side) const { return side == Side::upper ? 0.5 : HUGE_VAL; }
    double mode() const { return map.a + map.c / 3; }
};

}  // namespace pral
