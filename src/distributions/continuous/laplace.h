// The Laplace distribution, its logarithmic form, and the exponential power distribution that generalises it.
#pragma once

#include <numbers>

#include "distributions/adapters.h"
#include "numerics/double_double.h"
#include "numerics/gamma.h"

namespace pral {

/// Density proportional to e^(lower z) below 0 and to e^(-upper z) above; both rates > 0.
class AsymmetricLaplace {
  public:
    AsymmetricLaplace(double lower, double upper)
        : below_{lower, 1 / (1 + lower / upper)},
          above_{upper, 1 / (1 + upper / lower)},
          log_below_(-numerics::log1p_fn(lower / upper)),
          log_peak_(std::log(lower) + log_below_) {}

    Support support() const { return kReals; }
    /// Of the branch below 0 and of the one above.
    double lower_weight() const { return below_.probability; }
    double upper_weight() const { return above_.probability; }

    double cumulative(double z) const { return tail(below_, above_, z); }
    double survival(double z) const { return tail(above_, below_, -z); }
    double log_cumulative(double z) const {
        if (z < 0) return log_below_ + below_.rate * z;
        const double upper = survival(z);
        return upper < 0.5 ? numerics::log1p_fn(-upper) : std::log(cumulative(z));
    }
    double log_survival(double z) const {
        if (z >= 0) return -numerics::log1p_fn(above_.rate / below_.rate) - above_.rate * z;
        const double lower = cumulative(z);
        return lower < 0.5 ? numerics::log1p_fn(-lower) : std::log(survival(z));
    }
    double log_density(double z) const { return log_peak_ + (z < 0 ? below_.rate : -above_.rate) * z; }
    double quantile(double p) const { return inverse(below_, above_, p); }
    double quantile_upper(double q) const { return -inverse(above_, below_, q); }
    double lower_rate() const { return below_.rate; }
    double width() const { return 1 / std::max(below_.rate, above_.rate); }
    double upper_rate() const { return above_.rate; }
    /// The difference of two exponential variables.
    Moments moments() const {
        const double u = 1 / above_.rate, v = 1 / below_.rate;
        return from_cumulants(u - v, u * u + v * v, 2 * (u * u * u - v * v * v),
                              6 * (u * u * u * u + v * v * v * v));
    }
    double log_mgf(double t) const {
        if (!(t < above_.rate)) return HUGE_VAL;
        return -numerics::log1p_fn(-t / above_.rate) - numerics::log1p_fn(t / below_.rate);
    }
    double mode() const { return 0; }
    double tilted_mode(double t) const { return t < below_.rate ? 0 : -HUGE_VAL; }

  private:
    struct Branch {
        double rate, probability;
    };
    /// The probability below z, and its inverse, by the branch below 0 and the one above.
    static double tail(const Branch& below, const Branch& above, double z) {
        if (z < 0) return below.probability * std::exp(below.rate * z);
        return below.probability - above.probability * numerics::expm1_fn(-above.rate * z);
    }
    static double inverse(const Branch& below, const Branch& above, double p) {
        if (p < below.probability) return std::log(p / below.probability) / below.rate;
        const double part = (p - below.probability) / above.probability;
        return (part < 0.5 ? -numerics::log1p_fn(-part) : -std::log((1 - p) / above.probability)) /
               above.rate;
    }

    Branch below_, above_;
    double log_below_, log_peak_;
};

/// Mean mu, standard deviation sigma >= 0, 0 being a point mass at mu; support all reals.
/// f = exp(-sqrt(2) |x - mu|/sigma)/(sqrt(2) sigma).
struct Laplace : LocationScale<AsymmetricLaplace> {
    Laplace(double mu, double sigma) : LocationScale(mu, sigma, {std::numbers::sqrt2, std::numbers::sqrt2}) {}
    Message check() const {
        if (!(scale >= 0)) return "Error: sigma must be >= 0";
        return nullptr;
    }
};

/// Tail exponents alpha > 0 above and beta > 0 below the scale Delta >= 0, 0 being a point mass at 0; support [0, inf).
/// f = C (x/Delta)^(beta-1) below Delta, C (Delta/x)^(alpha+1) above, C = alpha beta/(Delta (alpha + beta)).
struct LogLaplace : LogLocationScale<AsymmetricLaplace> {
    double alpha, beta, Delta;

    LogLaplace(double alpha_, double beta_, double Delta_)
        : LogLocationScale(Delta_, std::log(Delta_), 1, {beta_, alpha_}),
          alpha(alpha_),
          beta(beta_),
          Delta(Delta_) {}
    Message check() const {
        if (!(alpha > 0)) return "Error: alpha must be > 0";
        if (!(beta > 0)) return "Error: beta must be > 0";
        if (!(Delta >= 0)) return "Error: Delta must be >= 0";
        return nullptr;
    }
    std::optional<double> point_mass() const { return Delta == 0 ? std::optional(0.0) : std::nullopt; }
};

/// Mean mu, standard deviation sigma >= 0, 0 being a point mass at mu, shape nu > 0; support all reals.
/// f = nu/(2 c sigma Gamma(1/nu)) exp(-(|x - mu|/(c sigma))^nu), c = sqrt(Gamma(1/nu)/Gamma(3/nu)) (the exponential power
/// or generalised error distribution): w = (|x - mu|/(c sigma))^nu has the gamma distribution of shape 1/nu.
class Error {
  public:
    double mu, sigma, nu;

    Error(double mu, double sigma, double nu);
    Message check() const {
        if (!(sigma >= 0)) return "Error: sigma must be >= 0";
        if (!(nu > 0)) return "Error: nu must be > 0";
        return nullptr;
    }
    Support support() const { return kReals; }
    std::optional<double> point_mass() const { return sigma == 0 ? std::optional(mu) : std::nullopt; }

    double cumulative(double x) const { return x < mu ? 0.5 * outside(x) : 0.5 + 0.5 * inside(x); }
    double survival(double x) const { return x < mu ? 0.5 + 0.5 * inside(x) : 0.5 * outside(x); }
    double log_cumulative(double x) const;
    double log_survival(double x) const;
    double log_density(double x) const;
    double log_likelihood(std::span<const double> values) const;
    double quantile(double p) const { return p > 0.5 ? quantile_upper(1 - p) : mu - sigma * distance(2 * p); }
    double quantile_upper(double q) const { return q > 0.5 ? quantile(1 - q) : mu + sigma * distance(2 * q); }
    Moments moments() const {
        const double a = 1 / nu;
        const double kurtosis = std::exp(numerics::log_beta(5 * a, a) - numerics::log_beta(3 * a, 3 * a));
        return {mu, sigma * sigma, 0, kurtosis - 3};
    }
    double mode() const { return mu; }
    auto quantile_table() const {
        const LinearPlace place = {mu, sigma};
        return QuantileTable(Error(0, 1, nu), place, place.cancels_below());
    }

  private:
    numerics::DoubleDouble log_power(double x) const;  // ln w
    double inside(double x) const;                     // the probability of a value nearer to mu than x
    double outside(double x) const;
    double log_outside(double x) const;
    double distance(double q) const;  // that |x - mu|/sigma exceeds with probability q

    double shape_;                          // 1/nu
    double log_gamma_shape_;                // ln Gamma(1 + 1/nu)
    numerics::DoubleDouble nu_log_c_ = {};  // nu ln c
    double log_peak_;                       // of the density for sigma = 1
};

}  // namespace pral
