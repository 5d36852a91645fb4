// The uniform distribution.
#pragma once

#include "distributions/sample.h"

namespace pral {

/// min <= max; equal, they are a point mass.
struct Uniform {
    double min, max;
    static constexpr bool kEndsFirst = true;

    Message check() const {
        if (!(min <= max)) return "Error: min must be less than max";
        return nullptr;
    }
    Support support() const { return {min, max}; }
    std::optional<double> point_mass() const { return min == max ? std::optional(min) : std::nullopt; }

    double cumulative(double x) const { return (x - min) / (max - min); }
    double survival(double x) const { return (max - x) / (max - min); }
    double log_density(double) const { return -std::log(max - min); }
    double log_likelihood(std::span<const double> values) const {
        return -static_cast<double>(values.size()) * std::log(max - min);
    }
    double log_likelihood(const Sample& x) const { return x.count() * log_density(x.mean()); }

    double quantile(double p) const { return min + (max - min) * p; }
    double quantile_upper(double q) const { return max - (max - min) * q; }
};

}  // namespace pral
