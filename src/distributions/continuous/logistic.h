// The logistic distribution, its generalisation and its logarithmic forms, and the hyperbolic secant distribution.
#pragma once

#include "distributions/continuous/two_percentiles.h"
#include "numerics/gamma.h"
#include "numerics/polygamma.h"

namespace pral {

/// ln(1 + e^z).
inline double softplus(double z) { return std::max(z, 0.0) + numerics::log1p_fn(std::exp(-std::fabs(z))); }

/// The sum of ln(1 + e^-|z|).
inline double sum_of_softplus_below(std::span<const double> z) {
    return numerics::sum_by_blocks(
        z, [](double v) { return -std::fabs(v); },
        [](std::span<double> block) {
            numerics::exp_each(block);
            return numerics::sum_of_logs(block, [](double e) { return 1 + e; });
        });
}

/// F = 1/(1 + e^-z).
struct StandardLogistic {
    Support support() const { return kReals; }
    double cumulative(double z) const { return 1 / (1 + std::exp(-z)); }
    double survival(double z) const { return cumulative(-z); }
    double log_cumulative(double z) const { return -softplus(-z); }
    double log_survival(double z) const { return -softplus(z); }
    double log_density(double z) const {
        const double size = std::fabs(z);
        return -size - 2 * numerics::log1p_fn(std::exp(-size));
    }
    double log_likelihood(std::span<const double> z) const {
        const double sizes = numerics::interleaved_sum(z, [](double v) { return std::fabs(v); });
        return -sizes - 2 * sum_of_softplus_below(z);
    }
    double quantile(double p) const {
        return std::fabs(p - 0.5) < 0.1 ? numerics::log1p_fn((2 * p - 1) / (1 - p)) : std::log(p / (1 - p));
    }
    double quantile_upper(double q) const { return -quantile(q); }
    double lower_rate() const { return 1; }
    double upper_rate() const { return 1; }
    Moments moments() const { return {0, numerics::kPi * numerics::kPi / 3, 0, 1.2}; }
    double log_mgf(double t) const {
        return t < 1 ? numerics::lgamma_1p(t) + numerics::lgamma_1p(-t) : HUGE_VAL;
    }
    double mode() const { return 0; }
    double tilted_mode(double t) const {
        return t < 1 ? numerics::log1p_fn(-t) - numerics::log1p_fn(t) : -HUGE_VAL;
    }
};

/// Location alpha, scale beta >= 0, 0 being a point mass at alpha; support all reals. F = 1/(1 + exp(-z)),
/// z = (x - alpha)/beta.
struct Logistic : LocationScale<StandardLogistic> {
    Logistic(double alpha, double beta) : LocationScale(alpha, beta) {}
    Message check() const {
        if (!(scale >= 0)) return "Error: beta must be >= 0";
        return nullptr;
    }
};

/// F = (1 + e^-z)^-gamma.
struct StandardGeneralisedLogistic {
    double gamma, log_gamma;

    explicit StandardGeneralisedLogistic(double gamma_) : gamma(gamma_), log_gamma(std::log(gamma_)) {}
    Support support() const { return kReals; }
    double cumulative(double z) const { return std::exp(log_cumulative(z)); }
    double survival(double z) const { return -numerics::expm1_fn(log_cumulative(z)); }
    double log_cumulative(double z) const { return -gamma * softplus(-z); }
    double log_survival(double z) const {
        const double power = gamma * softplus(-z);
        if (power > numerics::kLeastWithDigits) return numerics::log1m_exp(power);
        return log_gamma + (z > 40 ? -z : std::log(softplus(-z)));
    }
    double log_density(double z) const { return log_gamma - gamma * softplus(-z) - softplus(z); }
    double log_likelihood(std::span<const double> z) const {
        constexpr double kLargest = 1000;  // larger shapes would multiply the rounding of 1 + e^-|z|
        if (gamma > kLargest) return sum_of_log_densities(*this, z);
        const double above = numerics::interleaved_sum(z, [](double v) { return v > 0 ? v : 0; }),
                     below = numerics::interleaved_sum(z, [](double v) { return v < 0 ? v : 0; });
        return static_cast<double>(z.size()) * log_gamma + gamma * below - above -
               (gamma + 1) * sum_of_softplus_below(z);
    }
    double lower_rate() const { return gamma; }
    double upper_rate() const { return 1; }
    Moments moments() const {
        using numerics::polygamma;
        return from_cumulants(polygamma(0, gamma) + numerics::kEuler, polygamma(1, gamma) + polygamma(1, 1),
                              polygamma(2, gamma) - polygamma(2, 1), polygamma(3, gamma) + polygamma(3, 1));
    }
    /// ln (Gamma(gamma + t) Gamma(1 - t)/Gamma(gamma))
    double log_mgf(double t) const {
        if (!(t < 1)) return HUGE_VAL;
        return numerics::lgamma_1p(-t) + numerics::log_gamma(t) - numerics::log_beta(gamma, t);
    }
    double mode() const { return log_gamma; }
    double tilted_mode(double t) const { return t < gamma ? std::log((gamma - t) / (1 + t)) : -HUGE_VAL; }
    double quantile(double p) const { return from_power(-std::log(p) / gamma); }
    double quantile_upper(double q) const { return from_power(-numerics::log1p_fn(-q) / gamma); }

  private:
    /// The z with 1 + e^-z = e^w.
    static double from_power(double w) {
        return w < 30 ? -std::log(numerics::expm1_fn(w)) : -w - numerics::log1p_fn(-std::exp(-w));
    }
};

/// Location alpha, scale beta >= 0, 0 being a point mass at alpha, shape gamma > 0; support all reals.
/// F = (1 + exp(-z))^-gamma, z = (x - alpha)/beta (the type I generalised logistic distribution).
struct GLogistic : LocationScale<StandardGeneralisedLogistic> {
    GLogistic(double alpha, double beta, double gamma)
        : LocationScale(alpha, beta, StandardGeneralisedLogistic(gamma)) {}
    Message check() const {
        if (!(scale >= 0)) return "Error: beta must be >= 0";
        if (!(standard.gamma > 0)) return "Error: gamma must be > 0";
        return nullptr;
    }
};

/// Shape alpha > 0, scale beta >= 0, 0 being a point mass at 0; support [0, inf). F = 1/(1 + (x/beta)^-alpha):
/// alpha ln(x/beta) is logistic.
struct LogLogistic : ShapeAndScale<StandardLogistic> {
    using ShapeAndScale::ShapeAndScale;
};

/// The log-logistic distribution above `minimum` through two points of its cumulative.
struct LogLogisticAlt : ThroughTwoPercentiles<StandardLogistic> {
    LogLogisticAlt(double value1, double probability1, double value2, double probability2, double minimum)
        : ThroughTwoPercentiles({value1, probability1, value2, probability2, minimum}) {}
};

/// F = (2/pi) atan(e^(pi z/2)).
struct StandardHyperbolicSecant {
    Support support() const { return kReals; }
    double cumulative(double z) const { return std::atan(std::exp(kHalfPi * z)) / kHalfPi; }
    double survival(double z) const { return cumulative(-z); }
    double log_density(double z) const {
        const double size = kHalfPi * std::fabs(z);
        return -size - numerics::log1p_fn(std::exp(-2 * size));
    }
    double log_likelihood(std::span<const double> z) const {
        const double sizes = numerics::interleaved_sum(z, [](double v) { return kHalfPi * std::fabs(v); });
        return -sizes - numerics::sum_by_blocks(
                            z, [](double v) { return 2 * kHalfPi * v; }, sum_of_softplus_below);
    }
    double quantile(double p) const {
        if (p > 0.5) return -quantile(1 - p);
        if (p < 0.25) return std::log(std::tan(kHalfPi * p)) / kHalfPi;
        const double t = std::tan(kHalfPi * (p - 0.5));  // ln tan(a + pi/4) = ln((1 + tan a)/(1 - tan a))
        return numerics::log1p_fn(2 * t / (1 - t)) / kHalfPi;
    }
    double quantile_upper(double q) const { return -quantile(q); }
    double log_cumulative(double z) const {
        // Far out the arc tangent is its argument.
        if (z < -30) return kHalfPi * z - std::log(kHalfPi);
        return z < 0 ? std::log(cumulative(z)) : numerics::log1p_fn(-survival(z));
    }
    double log_survival(double z) const { return log_cumulative(-z); }
    Moments moments() const { return {0, 1, 0, 2}; }
    double mode() const { return 0; }

  private:
    static constexpr double kHalfPi = numerics::kPi / 2;
};

/// Mean mu, standard deviation sigma >= 0, 0 being a point mass at mu; support all reals.
/// F = (2/pi) atan(exp(pi (x - mu)/(2 sigma))).
struct HS : LocationScale<StandardHyperbolicSecant> {
    HS(double mu, double sigma) : LocationScale(mu, sigma) {}
    Message check() const {
        if (!(scale >= 0)) return "Error: sigma must be >= 0";
        return nullptr;
    }
};

}  // namespace pral
