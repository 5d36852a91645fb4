#include "numerics/classical/incomplete_gamma.h"

#include <algorithm>
#include <cfloat>
#include <cmath>

#include "numerics/classical/poisson.h"
#include "numerics/coefficients.h"
#include "numerics/constants.h"
#include "numerics/elementary.h"
#include "numerics/gamma.h"
#include "numerics/normal.h"

namespace pral::numerics {

namespace {

constexpr double kMachineEpsilon = 0x1p-53;  // of the classical routines
constexpr double kEpsilon = 0x1p-52;
constexpr double kMinLogFactor = -709.782712893384;

/// The series needs some 9 sqrt(a) terms at x = a: enough for shapes of 5e10.
constexpr int kMaxSeriesTerms = 2000000;
constexpr int kMaxFractionSteps = 200000;

/// ln(x^a e^-x / Gamma(a)).
double log_prefactor(double a, double x) { return a * std::log(x) - x - lgam_quiet(a); }

double classical_series(double a, double x) {
    double r = a, c = 1, sum = 1;
    for (int i = 0; i < kMaxSeriesTerms; ++i) {
        r += 1;
        c *= x / r;
        sum += c;
        if (!(c / sum > kMachineEpsilon)) break;
    }
    return sum;
}

double classical_fraction(double a, double x) {
    constexpr double kBig = 4503599627370496.0;
    constexpr double kBigInverse = 2.220446049250313e-16;
    double y = 1 - a, z = x + y + 1, c = 0;
    double pkm2 = 1, qkm2 = x, pkm1 = x + 1, qkm1 = z * x;
    double result = pkm1 / qkm1;
    for (int i = 0; i < kMaxFractionSteps; ++i) {
        c += 1;
        y += 1;
        z += 2;
        const double yc = y * c;
        const double pk = pkm1 * z - pkm2 * yc, qk = qkm1 * z - qkm2 * yc;
        double change = 1;
        if (qk != 0) {
            const double r = pk / qk;
            change = std::fabs((result - r) / r);
            result = r;
        }
        pkm2 = pkm1;
        pkm1 = pk;
        qkm2 = qkm1;
        qkm1 = qk;
        if (std::fabs(pk) > kBig) {
            pkm2 *= kBigInverse;
            pkm1 *= kBigInverse;
            qkm2 *= kBigInverse;
            qkm1 *= kBigInverse;
        }
        if (!(change > kMachineEpsilon)) break;
    }
    return result;
}

/// ln(1 - e^x), x <= 0.
double log_one_minus_exp(double x) { return x > -kLn2 ? std::log(-expm1_fn(x)) : log1p_fn(-std::exp(x)); }

/// One tail as `value` (or its logarithm); the result is that tail or its complement.
double tail_or_complement(double value, bool is_wanted, bool log_result) {
    if (is_wanted) return value;
    return log_result ? log_one_minus_exp(value) : 1 - value;
}

double product(double a, double b, bool log_result) { return log_result ? a + b : a * b; }

/// x < 1: the alternating series DLMF 8.7.1.
double cdf_small_x(double x, double alpha, bool lower_tail, bool log_result) {
    double c = alpha, sum = 0, term;
    int n = 0;
    do {
        ++n;
        c *= -x / n;
        term = c / (alpha + n);
        sum += term;
    } while (std::fabs(term) > kEpsilon * std::fabs(sum) && n < kMaxFractionSteps);
    const double log_power = alpha * std::log(x) - lgamma_1p(alpha);
    if (!lower_tail) {
        if (log_result) return log_one_minus_exp(log1p_fn(sum) + log_power);
        const double power_less_1 = expm1_fn(log_power);
        return -(sum + power_less_1 + sum * power_less_1);
    }
    const double series = log_result ? log1p_fn(sum) : 1 + sum;
    if (alpha > 1) {
        const double density = poisson_density_raw(alpha, x, log_result);
        return product(series, product(density, log_result ? x : std::exp(x), log_result), log_result);
    }
    if (log_result) return series + log_power;
    return series * (std::pow(x, alpha) / std::exp(lgamma_1p(alpha)));
}

/// The sum of x^n / (y (y + 1) ... (y + n - 1)), n >= 1, for x < y.
double ascending_sum(double x, double y) {
    double sum = 0, term = x / y;
    int n = 0;
    do {
        sum += term;
        y += 1;
        term *= x / y;
    } while (term > sum * kEpsilon && ++n < kMaxFractionSteps);
    return sum;
}

/// y/(d + (y - 1)/(d + 2 + 2 (y - 2)/(d + 4 + ...))).
double poisson_fraction(double y, double d) {
    constexpr double kScale = 1.157920892373162e77;  // 2^256
    constexpr double kScaleInverse = 8.636168555094445e-78;
    if (y == 0) return 0;
    const double first = y / d;
    if (std::fabs(y - 1) < std::fabs(d) * kEpsilon) return first;
    double a1 = 0, b1 = 1, a2 = y, b2 = d;
    double factor = y, partial = d, fraction = first, previous = -1;
    const auto rescale = [&] {
        a1 *= kScaleInverse;
        b1 *= kScaleInverse;
        a2 *= kScaleInverse;
        b2 *= kScaleInverse;
    };
    for (int k = 0; k < 4 && b2 > kScale; ++k) rescale();
    for (int i = 0; i < kMaxFractionSteps;) {
        ++i;
        factor -= 1;
        partial += 2;
        a1 = partial * a2 + i * factor * a1;
        b1 = partial * b2 + i * factor * b1;
        ++i;
        factor -= 1;
        partial += 2;
        a2 = partial * a1 + i * factor * a2;
        b2 = partial * b1 + i * factor * b2;
        if (b2 > kScale) rescale();
        if (b2 == 0) continue;
        fraction = a2 / b2;
        if (!(std::fabs(fraction - previous) >
              kEpsilon * std::max(std::min(first, 1.0), std::fabs(fraction))))
            break;
        previous = fraction;
    }
    return fraction;
}

/// The sum of y (y - 1) ... (y - n + 1) / lambda^n, n >= 1, its end by the continued fraction.
double descending_sum(double lambda, double y) {
    double term = 1, sum = 0;
    int n = 0;
    while (y >= 1 && term > sum * kEpsilon && ++n < kMaxFractionSteps) {
        term *= y / lambda;
        sum += term;
        y -= 1;
    }
    if (y != std::floor(y)) sum += term * poisson_fraction(y, lambda + 1 - y);
    return sum;
}

/// alpha - 1 < x, away from the centre: the descending sum gives the upper tail.
double cdf_descending(double x, double alpha, bool lower_tail, bool log_result) {
    const double density = poisson_density_shifted(alpha, x, log_result);
    double sum;
    if (alpha < 1) {
        sum = x * kEpsilon > 1 - alpha ? 1 : poisson_fraction(alpha, x - (alpha - 1)) * x / alpha;
        if (log_result) sum = std::log(sum);
    } else {
        sum = descending_sum(x, alpha - 1);
        sum = log_result ? log1p_fn(sum) : 1 + sum;
    }
    return tail_or_complement(product(sum, density, log_result), !lower_tail, log_result);
}

/// The normal density at x over its tail, whose logarithm is given.
double density_over_tail(double x, bool lower_tail, double log_tail) {
    if (x < 0) {
        x = -x;
        lower_tail = !lower_tail;
    }
    if (!(x > 10) || lower_tail) return normal_density(x) / std::exp(log_tail);
    const double square = x * x;
    double term = 1 / x, sum = term;
    for (int i = 1; i < 100 && std::fabs(term) > kEpsilon * sum; i += 2) {
        term *= -i / square;
        sum += term;
    }
    return 1 / sum;
}

/// The lower or upper Poisson tail at mean x for count m, both large and close: the normal distribution with seven
/// terms of its correction.
double poisson_tail_asymptotic(double m, double x, bool lower_tail, bool log_result) {
    using namespace coefficients::nmath;
    const double u = -log1p_minus_x((x - m) / m);
    double s = std::sqrt(2 * m * u);
    if (x < m) s = -s;
    double numerator = 0, g1 = std::sqrt(m), g2 = s, t1 = g1, t2 = s;
    double denominator = m, power = 1;
    for (int i = 0; i < 7; ++i) {
        numerator += g1 * ppois_asymp_coefs_a[i] + g2 * ppois_asymp_coefs_b[i];
        t1 *= u / (i + 1);
        t2 *= 2 * u / (2 * i + 3);
        g1 = g1 / m + t1;
        g2 = g2 / m + t2;
        denominator += power * ppois_asymp_coefs_b[i];
        power /= m;
    }
    const double f = numerator / (lower_tail ? denominator : -denominator);
    const double z = lower_tail ? -s : s;
    if (!log_result) return normal_cumulative(z) + f * normal_density(s);
    const double log_normal = normal_log_cumulative(z);
    return log_normal + log1p_fn(f * density_over_tail(s, !lower_tail, log_normal));
}

}  // namespace

double incomplete_gamma_lower(double a, double x) {
    if (x <= 0 || a <= 0) return 0;
    if (x >= kInfinity || a >= kInfinity) return a >= kInfinity ? 0 : 1;
    if (x > 1 && x > a) return 1 - incomplete_gamma_upper(a, x);
    const double ax = log_prefactor(a, x);
    if (ax < kMinLogFactor) return 0;
    return classical_series(a, x) * std::exp(ax) / a;
}

double incomplete_gamma_upper(double a, double x) {
    if (x <= 0 || a <= 0) return 1;
    if (x >= kInfinity || a >= kInfinity) return a >= kInfinity ? 1 : 0;
    if (x < 1 || x < a) return 1 - incomplete_gamma_lower(a, x);
    const double ax = log_prefactor(a, x);
    if (ax < kMinLogFactor) return 0;
    return classical_fraction(a, x) * std::exp(ax);
}

double log_incomplete_gamma_upper(double a, double x) {
    if (x <= 0 || a <= 0) return 1;
    if (x >= kInfinity) return -kInfinity;
    if (x < 1 || x < a) return 1 - incomplete_gamma_lower(a, x);
    return std::log(classical_fraction(a, x)) + log_prefactor(a, x);
}

double log_incomplete_gamma_lower(double a, double x) {
    if (x <= 0 || a <= 0) return 0;
    if (a >= kInfinity) return -kInfinity;
    if (x > 1 && x > a) return finite_or_limit(1 - log_incomplete_gamma_upper(a, x));
    return finite_or_limit(std::log(classical_series(a, x)) + log_prefactor(a, x) - std::log(a));
}

double gamma_cdf(double x, double alpha, bool lower_tail, bool log_result) {
    const double none = log_result ? -kInfinity : 0, all = log_result ? 0 : 1;
    if (std::isnan(x) || std::isnan(alpha)) return kNaN;
    if (alpha < 0) return kInfinity;
    if (x < 0 || (x == 0 && alpha > 0) || (alpha >= kInfinity && x < kInfinity))
        return lower_tail ? none : all;
    if (x >= kInfinity || alpha == 0) return lower_tail ? all : none;

    double result;
    if (x < 1) {
        result = cdf_small_x(x, alpha, lower_tail, log_result);
    } else if (x <= alpha - 1 && x < 0.8 * (alpha + 50)) {
        const double sum = ascending_sum(x, alpha);
        const double density = poisson_density_shifted(alpha, x, log_result);
        const double tail = product(log_result ? std::log(sum) : sum, density, log_result);
        result = tail_or_complement(tail, lower_tail, log_result);
    } else if (alpha - 1 < x && alpha < 0.8 * (x + 50)) {
        result = cdf_descending(x, alpha, lower_tail, log_result);
    } else {
        result = poisson_tail_asymptotic(alpha - 1, x, !lower_tail, log_result);
    }
    // A plain result this small has lost digits to denormal factors.
    if (!log_result && result < DBL_MIN / kEpsilon) return std::exp(gamma_cdf(x, alpha, lower_tail, true));
    return result;
}

}  // namespace pral::numerics
