// The Pareto distributions of the first and second kind, Dagum's and Burr's.
#pragma once

#include "distributions/adapters.h"
#include "distributions/continuous/exponential.h"
#include "distributions/continuous/logistic.h"

namespace pral {

/// Shape theta > 0, smallest value a >= 0, 0 being a point mass at 0; support [a, inf). F = 1 - (a/x)^theta:
/// theta ln(x/a) is exponential.
struct Pareto : ShapeAndScale<StandardExponential> {
    Pareto(double theta, double a) : ShapeAndScale(theta, a) {}
    Message check() const {
        if (!(alpha > 0)) return "Error: theta must be > 0";
        if (!(beta >= 0)) return "Error: a must be >= 0";
        return nullptr;
    }
    Support support() const { return {beta, numerics::kInfinity}; }
    Moments moments() const { return linear(pareto_moments(alpha), beta, beta); }
    using ShapeAndScale::log_likelihood;
    double log_likelihood(const Sample& x) const {
        return x.count() * log_density(std::fmax(x.geometric_mean(), beta));
    }
};

/// Map: x = b (e^(y/q) - 1).
struct ScaledExpm1 {
    double b, q;
    double forward(double y) const {
        const double exponent = y / q;
        return exponent < numerics::kExpLimit ? b * numerics::expm1_fn(exponent)
                                              : std::exp(std::log(b) + exponent);
    }
    double inverse(double x) const { return q * log_one_plus(x); }
    /// ln(1 + x/b).
    double log_one_plus(double x) const {
        const double ratio = x / b;
        return ratio <= DBL_MAX ? numerics::log1p_fn(ratio) : numerics::log_ratio(x, b);
    }
};

/// Map: x = beta (e^(xi y) - 1)/xi, beta y for xi = 0.
struct ExcessMap {
    double beta, xi;

    double forward(double y) const {
        const double exponent = xi * y;
        if (is_straight(exponent)) return beta * y;
        if (exponent < numerics::kExpLimit) return beta * (numerics::expm1_fn(exponent) / xi);
        return std::exp(numerics::log_ratio(beta, xi) + exponent);
    }
    double inverse(double x) const {
        const double growth = xi * (x / beta);
        if (is_straight(growth)) return x / beta;
        return log_growth(x) / xi;
    }
    double log_slope(double x) const { return -std::log(beta) - log_growth(x); }

  private:
    /// So small that the curve is straight to the last digit.
    static bool is_straight(double growth) { return std::fabs(growth) < 1e-17; }
    /// ln(1 + xi x/beta); next to the upper end of a support, where that is a small difference, from its exact value.
    double log_growth(double x) const {
        const double growth = xi * (x / beta);
        if (growth > DBL_MAX) return std::log(xi) + numerics::log_ratio(x, beta);
        if (growth > -0.5) return numerics::log1p_fn(growth);
        const numerics::DoubleDouble product = numerics::two_product(xi, x);
        const double left = std::isfinite(product.lo) ? (beta + product.hi) + product.lo : beta + xi * x;
        return left > 0 ? numerics::log_ratio(left, beta) : -HUGE_VAL;
    }
};

/// Scale beta >= 0, 0 being a point mass at 0, shape xi; support [0, inf), up to -beta/xi for xi < 0. F = 1 - (1 + xi
/// x/beta)^(-1/xi), the exponential for xi = 0: the excesses over a high threshold (Pickands 1975).
struct GPD : Transformed<StandardExponential, ExcessMap> {
    GPD(double beta, double xi) : Transformed{{}, {beta, xi}} {}
    Message check() const {
        if (!(map.beta >= 0)) return "Error: beta must be >= 0";
        if (!(std::fabs(map.xi) <= DBL_MAX)) return "Error: xi must be a finite number";
        return nullptr;
    }
    Support support() const {
        return {0, map.xi < 0 ? numerics::finite_or_limit(-map.beta / map.xi) : numerics::kInfinity};
    }
    std::optional<double> point_mass() const { return map.beta == 0 ? std::optional(0.0) : std::nullopt; }
    /// f = (1 + xi x/beta)^(-1/xi - 1)/beta.
    double log_density(double x) const {
        return (map.xi == -1 ? 0 : -(1 + map.xi) * map.inverse(x)) - std::log(map.beta);
    }
    Moments moments() const {
        const double xi = map.xi, deviation = map.beta / ((1 - xi) * std::sqrt(1 - 2 * xi));
        return {map.beta / (1 - xi), deviation * deviation,
                2 * (1 + xi) * std::sqrt(1 - 2 * xi) / (1 - 3 * xi),
                6 * (1 + xi - xi * xi * (6 + 2 * xi)) / ((1 - 3 * xi) * (1 - 4 * xi))};
    }
    double moment_limit(Side side) const { return side == Side::upper && map.xi > 0 ? 1 / map.xi : HUGE_VAL; }
    double mode() const { return map.xi < -1 ? support().upper : 0; }
};

/// Scale b >= 0, 0 being a point mass at 0, shape q > 0; support [0, inf). F = 1 - (b/(x + b))^q (Lomax):
/// q ln(1 + x/b) is exponential.
struct Pareto2 : Transformed<StandardExponential, ScaledExpm1> {
    Pareto2(double b, double q) : Transformed{{}, {b, q}}, log_peak_(std::log(q) - std::log(b)) {}
    Message check() const {
        if (!(map.b >= 0)) return "Error: b must be >= 0";
        if (!(map.q > 0)) return "Error: q must be > 0";
        return nullptr;
    }
    Support support() const { return kPositiveReals; }
    std::optional<double> point_mass() const { return map.b == 0 ? std::optional(0.0) : std::nullopt; }
    Moments moments() const { return linear(pareto_moments(map.q), map.b, 0); }
    double moment_limit(Side side) const { return side == Side::upper ? map.q : HUGE_VAL; }
    double mode() const { return 0; }
    double log_density(double x) const { return log_peak_ - (map.q + 1) * map.log_one_plus(x); }
    double log_likelihood(std::span<const double> values) const {
        constexpr double kLargest = 1000;  // larger shapes would multiply the rounding of 1 + x/b
        if (map.q < kLargest) {
            const double logs = numerics::sum_of_logs(values, [this](double x) { return 1 + x / map.b; });
            if (std::isfinite(logs))
                return static_cast<double>(values.size()) * log_peak_ - (map.q + 1) * logs;
        }
        return sum_of_log_densities(*this, values);
    }

  private:
    double log_peak_;
};

/// Shapes a > 0 and p > 0, scale b >= 0, 0 being a point mass at 0; support [0, inf). F = (1 + (x/b)^-a)^-p:
/// a ln(x/b) has the generalised logistic distribution.
struct Dagum : ShapeAndScale<StandardGeneralisedLogistic> {
    Dagum(double a, double b, double p) : ShapeAndScale(a, b, StandardGeneralisedLogistic(p)) {}
    Message check() const {
        if (!(alpha > 0)) return "Error: a must be > 0";
        if (!(beta >= 0)) return "Error: b must be >= 0";
        if (!(standard.gamma > 0)) return "Error: p must be > 0";
        return nullptr;
    }
};

/// Location a, scale b >= 0, 0 being a point mass at a, shapes c > 0 and d > 0; support [a, inf).
/// F = (1 + z^-c)^-d, z = (x - a)/b: a + Dagum(c, b, d).
struct Burr : Shifted<Dagum> {
    Burr(double a, double b, double c, double d) : Shifted(a, {c, b, d}) {}
    Message check() const {
        if (!(base.beta >= 0)) return "Error: b must be >= 0";
        if (!(base.alpha > 0)) return "Error: c must be > 0";
        if (!(base.standard.gamma > 0)) return "Error: d must be > 0";
        return nullptr;
    }
};

}  // namespace pral
