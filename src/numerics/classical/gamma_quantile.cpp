#include "numerics/classical/gamma_quantile.h"

#include <cfloat>
#include <cmath>

#include "numerics/classical/incomplete_gamma.h"
#include "numerics/classical/poisson.h"
#include "numerics/coefficients.h"
#include "numerics/constants.h"
#include "numerics/elementary.h"
#include "numerics/gamma.h"
#include "numerics/normal.h"
#include "numerics/polynomial.h"

namespace pral::numerics {

namespace {

constexpr double kTaylorTolerance = 5e-7;
constexpr double kNewtonTolerance = 1e-15;
constexpr double kStartTolerance = 1e-2;
constexpr double kSmallestTaylorP = 1e-100, kLargestTaylorP = 1 - 1e-14;
constexpr int kMaxTaylorSteps = 1000;

double log_one_minus_exp(double x) { return x > -kLn2 ? std::log(-expm1_fn(x)) : log1p_fn(-std::exp(x)); }

/// A percentile in all the forms that the algorithm asks for.
struct Percentile {
    double lower, log_lower, log_upper;

    Percentile(double p, bool lower_tail, bool log_p) {
        const double log_same = log_p ? p : std::log(p);
        const double log_other = log_p ? log_one_minus_exp(p) : log1p_fn(-p);
        log_lower = lower_tail ? log_same : log_other;
        log_upper = lower_tail ? log_other : log_same;
        lower = log_p ? std::exp(log_lower) : lower_tail ? p : 0.5 - p + 0.5;
    }

    /// The normal deviate, from the smaller tail.
    double deviate() const {
        return log_lower < log_upper ? lower_deviate(log_lower) : -lower_deviate(log_upper);
    }

  private:
    static double lower_deviate(double log_tail) {
        if (log_tail > -700) return normal_quantile(std::exp(log_tail));
        double square =
            -2 * log_tail;  // beyond the range of exp: ln Phi(z) = -z^2/2 - ln(-z sqrt(2 pi)) + ...
        for (int i = 0; i < 4; ++i) square = -2 * log_tail - 2 * kLnSqrt2Pi - std::log(square);
        return -std::sqrt(square);
    }
};

double start_from(const Percentile& p, double nu, double g, double tolerance) {
    const double alpha = 0.5 * nu, c = alpha - 1;
    if (nu < -1.24 * p.log_lower) {
        const double log_gamma_1a = alpha < 0.5 ? lgamma_1p(alpha) : std::log(alpha) + g;
        return std::exp((log_gamma_1a + p.log_lower) / alpha + kLn2);
    }
    if (nu > 0.32) {  // Wilson and Hilferty
        const double v = 2 / (9 * nu);
        const double ch = nu * std::pow(p.deviate() * std::sqrt(v) + 1 - v, 3);
        return ch > 2.2 * nu + 6 ? -2 * (p.log_upper - c * std::log(0.5 * ch) + g) : ch;
    }
    constexpr double C7 = 4.67, C8 = 6.66, C9 = 6.73, C10 = 13.32;
    constexpr int kMaxSteps = 1000;
    const double k = p.log_upper + g + c * kLn2;
    double ch = 0.4;
    for (int i = 0; i < kMaxSteps; ++i) {
        const double previous = ch;
        const double q1 = 1 / (1 + ch * (C7 + ch)), q2 = ch * (C9 + ch * (C8 + ch));
        const double slope = -0.5 + (C7 + 2 * ch) * q1 - (C9 + ch * (C10 + 3 * ch)) / q2;
        ch -= (1 - std::exp(k + 0.5 * ch) * q1 * q2) / slope;
        if (!(std::fabs(previous - ch) > tolerance * std::fabs(ch))) break;
    }
    return ch;
}

/// The change of ch in one seven-term Taylor step from the residual t = (p - P) / density.
double taylor_change(double t, double ch, double c) {
    using namespace coefficients::as91;
    const double b = t / ch, a = 0.5 * t - b * c;
    const double k1 = horner(s1, a) / 420;
    const double k2 = horner(s2, a) / 2520;
    const double k3 = horner(s3, a) / 2520;
    const double k4 = (horner(s4, a) + c * horner(s4_times_c, a)) / 5040;
    const double k5 = (horner(s5, a) + c * horner(s5_times_c, a)) / 2520;
    const double k6 = horner(s6, c) / 5040;
    return t * (1 + 0.5 * t * k1 - b * c * (k1 - b * (k2 - b * (k3 - b * (k4 - b * (k5 - b * k6))))));
}

struct TaylorResult {
    double ch;
    int newton_steps;
};

/// The Taylor phase; how many Newton steps may follow depends on how it ended.
TaylorResult refine_by_taylor(double start, double p, double alpha, double g) {
    const double c = alpha - 1;
    double ch = start;
    for (int i = 0; i < kMaxTaylorSteps; ++i) {
        const double previous = ch;
        const double residual = p - gamma_cdf(0.5 * ch, alpha, true, false);
        if (!std::isfinite(residual) || ch <= 0) return {start, 27};
        ch += taylor_change(residual * std::exp(alpha * kLn2 + g + 0.5 * ch - c * std::log(ch)), ch, c);
        if (!(std::fabs(previous - ch) >= kTaylorTolerance * ch)) break;
        if (std::fabs(previous - ch) > 0.1 * ch) ch = ch < previous ? 0.9 * previous : 1.1 * previous;
    }
    return {ch, alpha < 1e-10 ? 7 : 1};
}

/// ln of the gamma density at x.
double log_density(double x, double alpha, double scale) {
    if (alpha < 1) return poisson_density_raw(alpha, x / scale, true) + std::log(alpha) - std::log(x);
    return poisson_density_raw(alpha - 1, x / scale, true) - std::log(scale);
}

double refine_by_newton(double x, double log_p, double alpha, double scale, bool lower_tail, int steps) {
    const auto log_tail = [&](double at) { return gamma_cdf(at / scale, alpha, lower_tail, true); };
    double reached;
    if (x == 0) {
        x = DBL_MIN;
        reached = log_tail(x);
        if (lower_tail ? reached > log_p * (1 + 1e-7) : reached < log_p * (1 - 1e-7)) return 0;
    } else {
        reached = log_tail(x);
    }
    if (reached <= -kInfinity) return 0;
    for (int i = 1; i <= steps; ++i) {
        const double residual = reached - log_p;
        if (!(std::fabs(residual) >= std::fabs(kNewtonTolerance * log_p))) break;
        const double density = log_density(x, alpha, scale);
        if (density <= -kInfinity) break;
        const double step = residual * std::exp(reached - density);
        const double next = lower_tail ? x - step : x + step;
        reached = log_tail(next);
        const double size = std::fabs(reached - log_p);
        if (!(size <= std::fabs(residual)) || (i > 1 && size == std::fabs(residual))) break;
        x = next;
    }
    return x;
}

/// Whether p is outside [0, 1] (its logarithm above 0), or at one of its ends; the lower tail at that end.
bool is_outside(double p, bool log_p) { return log_p ? p > 0 : p < 0 || p > 1; }
bool is_none(double p, bool log_p) { return log_p ? p <= -kInfinity : p == 0; }
bool is_all(double p, bool log_p) { return log_p ? p == 0 : p == 1; }

}  // namespace

double chisq_quantile_start(double p, double nu, double log_gamma_half, bool lower_tail, bool log_p,
                            double tolerance) {
    if (std::isnan(p) || std::isnan(nu)) return kNaN;
    if (is_outside(p, log_p) || nu <= 0) return kInfinity;
    return start_from(Percentile(p, lower_tail, log_p), nu, log_gamma_half, tolerance);
}

double gamma_quantile(double p, double alpha, double scale, bool lower_tail, bool log_p) {
    if (std::isnan(p) || std::isnan(alpha) || std::isnan(scale)) return kNaN;
    if (is_outside(p, log_p) || alpha < 0 || scale < 0) return kInfinity;
    if (lower_tail ? is_none(p, log_p) : is_all(p, log_p)) return 0;
    if (lower_tail ? is_all(p, log_p) : is_none(p, log_p)) return kInfinity;
    if (alpha == 0 || scale == 0) return 0;
    if (alpha >= kInfinity || scale >= kInfinity) return kInfinity;

    const double g = log_gamma_fn(alpha);
    const Percentile percentile(p, lower_tail, log_p);
    const double start = start_from(percentile, 2 * alpha, g, kStartTolerance);
    if (!std::isfinite(start)) return finite_or_limit(0.5 * scale * start);
    TaylorResult refined = {start, 20};
    if (start >= kTaylorTolerance && percentile.lower <= kLargestTaylorP &&
        percentile.lower >= kSmallestTaylorP)
        refined = refine_by_taylor(start, percentile.lower, alpha, g);
    const double log_target = lower_tail ? percentile.log_lower : percentile.log_upper;
    const double x = 0.5 * scale * refined.ch;
    return finite_or_limit(refine_by_newton(x, log_target, alpha, scale, lower_tail, refined.newton_steps));
}

}  // namespace pral::numerics
