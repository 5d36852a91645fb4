// The extreme value distributions: Gumbel's for maxima and minima, and the generalised one.
#pragma once

#include "distributions/adapters.h"
#include "numerics/extended_log.h"
#include "numerics/gamma.h"

namespace pral {

/// F = exp(-e^-z).
struct StandardGumbel {
    Support support() const { return kReals; }
    double cumulative(double z) const { return std::exp(-std::exp(-z)); }
    double survival(double z) const { return -numerics::expm1_fn(-std::exp(-z)); }
    double log_cumulative(double z) const { return -std::exp(-z); }
    double log_survival(double z) const { return z > 40 ? -z : numerics::log1m_exp(std::exp(-z)); }
    double log_density(double z) const { return z == -HUGE_VAL ? z : -z - std::exp(-z); }
    double log_likelihood(std::span<const double> z) const {
        const double sum = numerics::interleaved_sum(z, [](double v) { return v; });
        return -sum - numerics::sum_of_exps(z, [](double v) { return -v; });
    }
    double quantile(double p) const { return -std::log(-std::log(p)); }
    double quantile_upper(double q) const { return -std::log(-numerics::log1p_fn(-q)); }
    Moments moments() const {
        constexpr double kApery = 1.202056903159594285400, kPi = numerics::kPi;
        return {numerics::kEuler, kPi * kPi / 6, 12 * std::sqrt(6.0) * kApery / (kPi * kPi * kPi), 2.4};
    }
    double mode() const { return 0; }
};

/// F = 1 - exp(-e^z), the logarithm of a standard exponential variable.
struct StandardGumbelMin : Transformed<StandardGumbel, Negation> {
    double log_likelihood(std::span<const double> z) const {
        const double sum = numerics::interleaved_sum(z, [](double v) { return v; });
        return sum - numerics::sum_of_exps(z, [](double v) { return v; });
    }
    double lower_rate() const { return 1; }
    Moments moments() const { return linear(base.moments(), -1, 0); }
    double log_mgf(double t) const { return numerics::lgamma_1p(t); }
    double mode() const { return 0; }
    double tilted_mode(double t) const { return t < 1 ? numerics::log1p_fn(-t) : -HUGE_VAL; }
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

/// Map: x = a + b (e^(c y) - 1)/c, a + b y for c = 0. 1 + c (x - a)/b is carried with more digits than a double's, since
/// it is all that the variable knows of its distance from the end of the support.
struct BoxCox {
    double a, b, c;

    /// c so small that c y is lost in 1 + c y for every y of a double's range counts as 0.
    bool straight() const { return std::fabs(c) < 1e-290; }
    double end() const { return a - b / c; }

    double forward(double y) const { return a + b * (straight() ? y : numerics::expm1_fn(c * y) / c); }
    double inverse(double x) const {
        const double z = (x - a) / b;
        if (straight()) return z;
        const numerics::DoubleDouble exact = numerics::divide(numerics::two_sum(x, -a), {b, 0});
        const numerics::DoubleDouble cz = numerics::multiply(exact, {c, 0});
        return log_one_plus(std::isfinite(cz.lo) ? cz : numerics::DoubleDouble{c * z, 0}) / c;
    }

  private:
    static double log_one_plus(numerics::DoubleDouble v) {
        if (std::fabs(v.hi) < 0.5) return numerics::log1p_fn(v.hi) + v.lo / (1 + v.hi);
        const numerics::DoubleDouble sum = numerics::add({1, 0}, v);
        return sum.hi <= 0 ? -HUGE_VAL : std::log(sum.hi) + sum.lo / sum.hi;  // NaN stays NaN
    }
};

/// The generalised extreme value distribution: location a, scale b > 0, shape -18 <= c <= 18. F = exp(-(1 + c z)^(-1/c)),
/// z = (x - a)/b; c = 0 is ExtValueMax. Support all reals for c = 0, from a - b/c on for c > 0, up to a - b/c for c < 0.
struct GEV : Transformed<StandardGumbel, BoxCox> {
    GEV(double a, double b, double c) : Transformed{{}, {a, b, c}}, log_b_(std::log(b)) {}
    Message check() const {
        if (!(map.b > 0)) return "Error: B must be > 0";
        if (!(map.c >= -18 && map.c <= 18))
            return "Error: C must be between [-18,18] for numericaly stability";
        return nullptr;
    }
    Support support() const {
        if (map.straight()) return kReals;
        const double end = numerics::finite_or_limit(map.end());
        return map.c > 0 ? Support{end, numerics::kInfinity} : Support{-numerics::kInfinity, end};
    }
    double log_density(double x) const {
        const double y = map.inverse(x);
        if (y == HUGE_VAL && map.c <= -1) return map.c < -1 ? HUGE_VAL : -log_b_;
        if (std::isinf(y)) return -HUGE_VAL;
        return base.log_density(y) - map.c * y - log_b_;
    }
    double log_likelihood(std::span<const double> values) const;

    /// E e^(cY) = Gamma(1 - c) for a Gumbel variable Y.
    std::optional<Moments> moments() const {
        const double c = map.c;
        if (map.straight()) return linear(base.moments(), map.b, map.a);
        if (!(c < 1)) return kNoMoments;
        const auto log_mgf = [c](double k) { return k * c < 1 ? numerics::lgamma_1p(-k * c) : HUGE_VAL; };
        const auto relative = exponential_moments(log_mgf);
        if (!relative) return std::nullopt;
        Moments all = linear(*relative, map.b / c * std::exp(log_mgf(1)), 0);
        all.mean = map.a + map.b * (numerics::expm1_fn(log_mgf(1)) / c);
        return all;
    }
    double moment_limit(Side side) const {
        return side == Side::upper && map.c > 0 && !map.straight() ? 1 / map.c : HUGE_VAL;
    }
    double mode() const { return map.c > -1 ? map.forward(-numerics::log1p_fn(map.c)) : support().upper; }

  private:
    double log_b_;
};

}  // namespace pral
