// The lognormal distribution under its parameterisations.
#pragma once

#include "distributions/continuous/normal.h"
#include "distributions/continuous/two_percentiles.h"

namespace pral {

/// exp(Normal(mu, sigma)), sigma >= 0; sigma = 0 is a point mass at exp(mu).
struct LognormalE : LogLocationScale<StandardNormal> {
    LognormalE(double mu, double sigma) : LogLocationScale(mu, sigma) {}
    Message check() const {
        if (!(spread >= 0)) return "Error: sigma must be >= 0";
        return nullptr;
    }
};

/// Mean mu > 0 and standard deviation sigma >= 0 of the variable itself; sigma = 0 is a point mass at mu. With
/// s^2 = ln(1 + (sigma/mu)^2), ln(X/mu)/s is Normal(-s/2, 1).
struct Lognormal : LogLocationScale<Normal> {
    double mu, sigma;

    Lognormal(double mu_, double sigma_) : Lognormal(mu_, sigma_, log_deviation(sigma_ / mu_)) {}
    Message check() const {
        if (!(mu > 0)) return "Error: mu must be > 0";
        if (!(sigma >= 0)) return "Error: sigma must be >= 0";
        return nullptr;
    }

  private:
    Lognormal(double mu_, double sigma_, double s)
        : LogLocationScale(mu_, std::log(mu_), s, {-0.5 * s, 1}), mu(mu_), sigma(sigma_) {}

    static double log_deviation(double ratio) {
        return std::sqrt(ratio < numerics::kSquareLimit ? numerics::log1p_fn(ratio * ratio)
                                                        : 2 * std::log(ratio));
    }
};

/// base^Normal(mu, sigma), sigma >= 0, base > 1; sigma = 0 is a point mass at base^mu; support [0, inf).
struct LognormalB : LogLocationScale<StandardNormal> {
    double mu, sigma, base;

    LognormalB(double mu, double sigma, double base);
    Message check() const {
        if (!(sigma >= 0)) return "Error: sigma must be >=0";
        if (!(base > 1)) return "Error: base must be >1";
        return nullptr;
    }
};

/// The lognormal distribution above `minimum` through two points of its cumulative.
struct LognormalAlt : ThroughTwoPercentiles<StandardNormal> {
    LognormalAlt(double value1, double probability1, double value2, double probability2, double minimum)
        : ThroughTwoPercentiles({value1, probability1, value2, probability2, minimum}) {}
    Message check() const {
        if (const Message objection = ThroughTwoPercentiles::check()) return objection;
        // Probabilities so close that their normal quantiles coincide, or values whose ratio is 1 or out of range.
        if (!(base.spread > 0 && base.spread < numerics::kInfinity)) return "Error: cannot be calculated";
        return nullptr;
    }
};

}  // namespace pral
