// Johnson's systems of curves: a normal variable by a logistic or a hyperbolic sine.
#pragma once

#include "distributions/adapters.h"
#include "distributions/continuous/linear_axis.h"
#include "distributions/continuous/normal.h"
#include "numerics/double_double.h"

namespace pral {

/// What both systems share: the normal score alpha1 + alpha2 y of a y that depends on x.
struct JohnsonScore {
    double alpha1, alpha2;

    /// y in double precision will do: large parameters would multiply its rounding error, or cancel.
    bool moderate() const { return std::fabs(alpha1) < 16 && alpha2 < 16; }
    double of(double y) const { return alpha1 + alpha2 * y; }
    double of(numerics::DoubleDouble y) const;
    double inverse(double score) const { return (score - alpha1) / alpha2; }
};

/// x = min + (max - min)/(1 + e^-y).
struct JohnsonBMap {
    JohnsonScore score;
    double min, max;
    LinearAxis axis = LinearAxis::over(min, max);

    double forward(double z) const;
    double inverse(double x) const;
    double log_slope(double x) const;
};

/// Shapes alpha1 (any value) and alpha2 > 0; min < max; support [min, max]. The standard normal score is
/// alpha1 + alpha2 ln((x - min)/(max - x)) (Johnson 1949, system S_B).
struct JohnsonB : Transformed<StandardNormal, JohnsonBMap> {
    JohnsonB(double alpha1, double alpha2, double min, double max)
        : Transformed{{}, {{alpha1, alpha2}, min, max}} {}
    double log_likelihood(std::span<const double> values) const;
    Message check() const {
        if (!(map.score.alpha2 > 0)) return "Error: alpha2 must be >0";
        if (!(map.min < map.max)) return "Error: minimum must be < maximum";
        return nullptr;
    }
    std::optional<double> point_mass() const { return std::nullopt; }
};

/// x = gamma + beta sinh(y).
struct JohnsonUMap {
    JohnsonScore score;
    double beta, gamma;

    double forward(double z) const;
    double inverse(double x) const;
    double log_slope(double x) const;
};

/// Shapes alpha1 (any value) and alpha2 > 0, scale beta >= 0, 0 being a point mass at gamma, location gamma; support all
/// reals. The standard normal score is alpha1 + alpha2 asinh((x - gamma)/beta) (Johnson 1949, system S_U).
struct JohnsonU : Transformed<StandardNormal, JohnsonUMap> {
    JohnsonU(double alpha1, double alpha2, double beta, double gamma)
        : Transformed{{}, {{alpha1, alpha2}, beta, gamma}} {}
    double log_likelihood(std::span<const double> values) const;
    Message check() const {
        if (!(map.score.alpha2 > 0)) return "Error: alpha2 must be >0";
        if (!(map.beta >= 0)) return "Error: beta must be >= 0";
        return nullptr;
    }
    Support support() const { return kReals; }
    std::optional<double> point_mass() const {
        return map.beta == 0 ? std::optional(map.gamma) : std::nullopt;
    }
    Moments moments() const;
};

}  // namespace pral
