// The exponential distribution.
#pragma once

#include "distributions/sample.h"
#include "numerics/elementary.h"
#include "numerics/sums.h"

namespace pral {

/// Mean 1, for families that are made of it: F = 1 - e^-z.
struct StandardExponential {
    Support support() const { return kPositiveReals; }
    double cumulative(double z) const { return -numerics::expm1_fn(-z); }
    double survival(double z) const { return std::exp(-z); }
    double log_survival(double z) const { return -z; }
    double log_density(double z) const { return -z; }
    double quantile(double p) const { return -numerics::log1p_fn(-p); }
    double quantile_upper(double q) const { return -std::log(q); }
    Moments moments() const { return {1, 1, 2, 6}; }
    double log_mgf(double t) const { return t < 1 ? -numerics::log1p_fn(-t) : HUGE_VAL; }
    double upper_rate() const { return 1; }
    double mode() const { return 0; }
    double tilted_mode(double) const { return 0; }
};

/// Mean beta >= 0; beta = 0 is a point mass at 0. F = 1 - exp(-x/beta).
struct Expon {
    double beta;

    Message check() const {
        if (!(beta >= 0)) return "Error: beta must be >= 0";
        return nullptr;
    }
    Support support() const { return kPositiveReals; }
    std::optional<double> point_mass() const { return beta == 0 ? std::optional(0.0) : std::nullopt; }

    double cumulative(double x) const { return -numerics::expm1_fn(-x / beta); }
    double survival(double x) const { return std::exp(-x / beta); }
    double log_survival(double x) const { return -x / beta; }
    double log_density(double x) const { return -x / beta - std::log(beta); }
    double log_likelihood(std::span<const double> values) const {
        const double sum = numerics::interleaved_sum(values, [](double x) { return x; });
        return -sum / beta - static_cast<double>(values.size()) * std::log(beta);
    }

    double log_likelihood(const Sample& x) const { return x.count() * log_density(x.mean()); }

    double quantile(double p) const { return -beta * numerics::log1p_fn(-p); }
    double quantile_upper(double q) const { return -beta * std::log(q); }
    Moments moments() const { return {beta, beta * beta, 2, 6}; }
    double mode() const { return 0; }
};

}  // namespace pral
