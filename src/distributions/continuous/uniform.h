// The uniform distribution.
#pragma once

#include "distributions/sample.h"

namespace pral {

/// min <= max; equal, they are a point mass. Where the width is beyond the range of a double, distances are halved.
struct Uniform {
    double min, max;

    Message check() const {
        if (!(min <= max)) return "Error: min must be less than max";
        return nullptr;
    }
    Support support() const { return {min, max}; }
    std::optional<double> point_mass() const { return min == max ? std::optional(min) : std::nullopt; }

    double cumulative(double x) const { return distance(min, x) / distance(min, max); }
    double survival(double x) const { return distance(x, max) / distance(min, max); }
    double log_density(double) const {
        return -std::log(distance(min, max)) - (is_wide() ? numerics::kLn2 : 0);
    }
    double log_likelihood(std::span<const double> values) const {
        return static_cast<double>(values.size()) * log_density(min);
    }
    double log_likelihood(const Sample& x) const { return x.count() * log_density(x.mean()); }

    double quantile(double p) const { return moved(min, distance(min, max) * p); }
    double quantile_upper(double q) const { return moved(max, -(distance(min, max) * q)); }
    Moments moments() const { return {0.5 * min + 0.5 * max, (max - min) * ((max - min) / 12), 0, -1.2}; }
    double mode() const { return min; }

  private:
    bool is_wide() const { return max - min > DBL_MAX; }
    double distance(double from, double to) const { return is_wide() ? 0.5 * to - 0.5 * from : to - from; }
    double moved(double from, double by) const { return is_wide() ? 2 * (0.5 * from + by) : from + by; }
};

}  // namespace pral
