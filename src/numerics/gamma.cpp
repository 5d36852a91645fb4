#include "numerics/gamma.h"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <utility>

#include "numerics/coefficients.h"
#include "numerics/constants.h"
#include "numerics/elementary.h"
#include "numerics/polynomial.h"

namespace pral::numerics {

namespace {

using namespace coefficients;

constexpr double kLnPi = 1.1447298858494002;
constexpr double kLnSqrtHalfPi = 0.22579135264472744;

bool is_odd(double integer) { return std::fmod(integer, 2) != 0; }

/// q |sin(pi q)| for q > 0 with whole part p.
double reflection_product(double q, double p) {
    double z = q - p;
    if (z > 0.5) z = (p + 1) - q;
    return q * std::sin(kPi * z);
}

/// |sin(pi y)|, exact at the integers.
double sine_of_pi_times(double y) {
    const double z = std::fmod(std::fabs(y), 1);
    return std::sin(kPi * std::min(z, 1 - z));
}

/// Gamma by Stirling's formula, infinite where it overflows.
double stirling_unlimited(double x) {
    constexpr double kOverflow = 171.624376956302725;
    constexpr double kSplitPower = 143.01608;
    if (x > kOverflow) return HUGE_VAL;
    double w = 1 / x;
    w = 1 + w * horner(cephes::stirling_STIR, w);
    const double y = std::exp(x);
    if (x <= kSplitPower) return kSqrt2Pi * (std::pow(x, x - 0.5) / y) * w;
    const double v = std::pow(x, 0.5 * x - 0.25);
    return kSqrt2Pi * (v * (v / y)) * w;
}

/// Gamma below -33, by reflection.
double gamma_far_negative(double q) {
    const double p = std::floor(q);
    if (p == q) return kInfinity;
    const double sign = is_odd(p) ? 1 : -1;
    return sign * kPi / (reflection_product(q, p) * stirling_unlimited(q));
}

/// Gamma next to a pole: z times Gamma(x), |x| < 1e-9.
double gamma_near_zero(double x, double z) {
    if (x == 0) return kInfinity;
    return z / ((1 + kEuler * x) * x);
}

/// ln |Gamma| on [-34, 13): recurrence into [2, 3].
double lgam_rational(double x) {
    double z = 1, u = x;
    while (u >= 3) {
        u -= 1;
        z *= u;
    }
    while (u < 2) {
        if (u == 0) return HUGE_VAL;
        z /= u;
        u += 1;
    }
    z = std::fabs(z);
    if (u == 2) return std::log(z);
    const double t = u - 2;
    return std::log(z) + t * horner(cephes::lgam_B, t) / horner(cephes::lgam_C, t);
}

double lgam_any(double x) {
    if (x < -34) {
        const double q = -x;
        const double w = lgam_any(q);
        const double p = std::floor(q);
        if (p == q) return HUGE_VAL;
        const double z = reflection_product(q, p);
        if (z == 0) return HUGE_VAL;
        return kLnPi - std::log(z) - w;
    }
    if (x < 13) return lgam_rational(x);
    if (std::isinf(x)) return x;
    const double q = (x - 0.5) * std::log(x) - x + kLnSqrt2Pi;
    if (x > 1e8) return q;
    const double p = 1 / (x * x);
    return q + (x >= 1000 ? horner(cephes::lgam_large, p) : horner(cephes::lgam_A, p)) / x;
}

/// ln Gamma(1 + a) + EULER a + log1p_minus_x(a) over a^2, |a| < 1/2: the zeta series.
double zeta_series(double a) {
    constexpr double kTail = 2.2737368458246524e-13;  // zeta(42) - 1
    double sum = kTail * log_continued_fraction(-0.5 * a, 42, 1, 1e-14);
    for (const double c : nmath::lgamma1p) sum = c - a * sum;
    return sum;
}

/// ln Gamma(x) above 13 with the remainder of Stirling's formula.
double log_gamma_large(double x) {
    const double w = 1 / x;
    // (x - 1/2)(ln x - 1) would overflow only where the result does.
    const double leading = (x - 0.5) * (std::log(x) - 1) + (kLnSqrt2Pi - 0.5);
    return finite_or_limit(x > 1e8 ? leading : leading + horner(cephes::lgam_A, w * w) * w);
}

/// The remainder of Stirling's formula, to its last digits, for x >= 10.
double stirling_remainder(double x) { return x < 1e15 ? lgamma_correction(x) : 1 / (12 * x); }

/// ln B for a <= b, b >= 10.
double log_beta_large(double a, double b) {
    const double sum = a + b;
    const double h = a / sum;
    const double correction = stirling_remainder(b) - stirling_remainder(sum);
    if (a < 10) return log_gamma(a) + correction + a - a * std::log(sum) + (b - 0.5) * log1p_fn(-h);
    return kLnSqrt2Pi - 0.5 * std::log(b) + (stirling_remainder(a) + correction) + (a - 0.5) * std::log(h) +
           b * log1p_fn(-h);
}

}  // namespace

double gamma(double x) {
    const double q = std::fabs(x);
    if (q > 33) return x >= 0 ? stirling_gamma(x) : gamma_far_negative(q);
    double z = 1;
    while (x >= 3) {
        x -= 1;
        z *= x;
    }
    while (x < 0) {
        if (x > -1e-9) return gamma_near_zero(x, z);
        z /= x;
        x += 1;
    }
    while (x < 2) {
        if (x < 1e-9) return gamma_near_zero(x, z);
        z /= x;
        x += 1;
    }
    if (x == 2) return z;
    x -= 2;
    return z * horner(cephes::gamma_P, x) / horner(cephes::gamma_Q, x);
}

double stirling_gamma(double x) { return finite_or_limit(stirling_unlimited(x)); }

double lgam_quiet(double x) { return std::isinf(x) ? HUGE_VAL : lgam_any(x); }

double lgamma_correction(double x) {
    struct Range {
        double series_end;
        double overflow;
    };
    static const Range range = {1 / std::sqrt(0x1p-53),
                                std::exp(std::min(std::log(DBL_MAX / 12), -std::log(12 * DBL_MIN)))};
    if (x < 10 || x >= range.overflow) return kInfinity;
    if (x >= range.series_end) return 1 / (12 * x);
    const double t = 10 / x;
    return chebyshev(nmath::lgammacor_cheb, 2 * t * t - 1) / x;
}

double gamma_fn(double x) {
    constexpr double kOverflow = 171.61447887182297;
    constexpr double kUnderflow = -170.5674972726612;
    constexpr double kTiny = 2.2474362225598545e-308;
    const double y = std::fabs(x);
    if (std::isnan(x)) return x;
    if (x <= 0 && x == std::floor(x)) return kInfinity;
    if (y < kTiny) return x > 0 ? kInfinity : -kInfinity;
    if (y <= 10) {
        const double whole = std::floor(x);
        const double fraction = x - whole;
        const int n = static_cast<int>(whole) - 1;
        double value = chebyshev(nmath::gamma_cheb, 2 * fraction - 1) + 0.9375;
        for (int i = 1; i <= n; ++i) value *= fraction + i;
        for (int i = 0; i < -n; ++i) value /= x + i;
        return value;
    }
    if (x > kOverflow) return kInfinity;
    if (x < kUnderflow) return 0;
    double value = 1;
    if (y <= 50 && y == std::floor(y)) {
        for (int i = 2; i < y; ++i) value *= i;
    } else {
        value = std::exp((y - 0.5) * std::log(y) - y + kLnSqrt2Pi + lgamma_correction(y));
    }
    if (x > 0) return value;
    const double sine = is_odd(std::floor(y)) ? -sine_of_pi_times(y) : sine_of_pi_times(y);
    return -kPi / (y * sine * value);
}

double log_gamma_fn(double x) {
    constexpr double kOverflow = 2.5327372760800758e305;
    const double y = std::fabs(x);
    if (std::isnan(x)) return x;
    if (x <= 0 && x == std::floor(x)) return kInfinity;
    if (y < 1e-306) return -std::log(y);
    if (y <= 10) return std::log(std::fabs(gamma_fn(x)));
    if (y > kOverflow) return kInfinity;
    if (x > 1e17) return x * (std::log(x) - 1);
    const double correction = lgamma_correction(y);
    if (x > 0) return kLnSqrt2Pi + (x - 0.5) * std::log(x) - x + correction;
    return kLnSqrtHalfPi + (x - 0.5) * std::log(y) - x - std::log(sine_of_pi_times(y)) - correction;
}

double lgamma_1p(double a) {
    if (!(std::fabs(a) < 0.5)) return log_gamma_fn(a + 1);
    if (std::fabs(a) < 1e-20) return -kEuler * a;  // squares might underflow, which is slow
    return (a * zeta_series(a) - kEuler) * a - log1p_minus_x(a);
}

double log_gamma(double x) {
    if (std::isinf(x) || x == 0) return kInfinity;
    if (x < 0) return finite_or_limit(lgam_quiet(x));
    if (x < 0.5) return lgamma_1p(x) - std::log(x);
    if (x < 1.5) return lgamma_1p(x - 1);
    if (x < 2) {
        // ln Gamma(2 + t) = ln(1 + t) + ln Gamma(1 + t), where the logarithms of 1 + t cancel.
        const double t = x - 2;
        return t * ((1 - kEuler) + t * zeta_series(t));
    }
    if (x < 13) return lgam_rational(x);
    return log_gamma_large(x);
}

double log_beta(double a, double b) {
    if (a > b) std::swap(a, b);
    if (!(a > 0)) return a == 0 ? kInfinity : kNaN;
    if (std::isnan(b)) return b;
    if (b >= 10) return std::isinf(a + b) ? -kInfinity : log_beta_large(a, b);
    if (a < 1e-3) {
        // Gamma(b)/Gamma(a + b) is close to 1.
        return -std::log(a) + lgamma_1p(a) + (log_gamma(b) - log_gamma(a + b));
    }
    return std::log(gamma_fn(a) * gamma_fn(b) / gamma_fn(a + b));
}

}  // namespace pral::numerics
