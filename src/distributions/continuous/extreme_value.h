// The extreme value distributions: Gumbel's for maxima and minima, and the generalised one.
#pragma once

#include "distributions/adapters.h"

namespace pral {

/// F = exp(-e^-z).
struct StandardGumbel {
    Support support() const { return kReals; }
    double cumulative(double z) const { return std::exp(-std::exp(-z)); }
    double survival(double z) const { return -numerics::expm1_fn(-std::exp(-z)); }
    double log_cumulative(double z) const { return -std::exp(-z); }
    double log_survival(double z) const { return z > 40 ? -z : numerics::log1m_exp(std::exp(-z)); }
    double log_density(double z) const { return z == -HUGE_VAL ? z : -z - std::exp(-z); }
    double quantile(double p) const { return -std::log(-std::log(p)); }
    double quantile_upper(double q) const { return -std::log(-numerics::log1p_fn(-q)); }
};

/// F = 1 - exp(-e^z), the logarithm of a standard exponential variable.
struct StandardGumbelMin : Transformed<StandardGumbel, Negation> {
    double lower_rate() const { return 1; }
};

/// Location a, scale b >= 0, 0 being a point mass at a; support all reals. F = exp(-exp(-(x - a)/b)).
struct ExtValueMax : LocationScale<StandardGumbel> {
    ExtValueMax(double a, double b) : LocationScale(a, b) {}
    Message check() const {
        if (!(scale >= 0)) return "Error: b must be >=0";
        return nullptr;
    }
};

/// Location a, scale b >= 0, 0 being a point mass at a; support all reals. F = 1 - exp(-exp((x - a)/b)).
struct ExtValueMin : LocationScale<StandardGumbelMin> {
    ExtValueMin(double a, double b) : LocationScale(a, b) {}
    Message check() const {
        if (!(scale >= 0)) return "Error: b must be >=0";
        return nullptr;
    }
};

}  // namespace pral
