#include "numerics/normal.h"

#include <algorithm>
#include <cmath>

#include "numerics/coefficients.h"
#include "numerics/constants.h"
#include "numerics/double_double.h"
#include "numerics/elementary.h"
#include "numerics/polynomial.h"

namespace pral::numerics {

namespace {

using namespace coefficients::cephes;

constexpr double kMaxLog = 709.782712893383996732;
constexpr DoubleDouble kSqrtHalf = {0.7071067811865476, -4.833646656726457e-17};

/// Beyond it every lower tail of Phi is below the smallest denormal, half of it included.
constexpr double kTailEnd = 39;

DoubleDouble square(DoubleDouble x) {
    const DoubleDouble xx = two_product(x.hi, x.hi);
    return {xx.hi, xx.lo + 2 * x.hi * x.lo};
}

/// erf on [-1, 1].
DoubleDouble erf_body(DoubleDouble x) {
    const DoubleDouble xx = square(x);
    const DoubleDouble ratio =
        divide(compensated_horner(erf_T, erf_T_low, xx), compensated_horner(erf_U, erf_U_low, xx));
    const DoubleDouble product = two_product(x.hi, ratio.hi);
    return {product.hi, product.lo + x.hi * ratio.lo + x.lo * ratio.hi};
}

/// e^(x^2) erfc(x) for x >= 1.
DoubleDouble scaled_erfc_tail(DoubleDouble x) {
    if (x.hi < 8)
        return divide(compensated_horner(erfc_P, erfc_P_low, x), compensated_horner(erfc_Q, erfc_Q_low, x));
    return divide(compensated_horner(erfc_R, erfc_R_low, x), compensated_horner(erfc_S, erfc_S_low, x));
}

/// factor * e^-(exponent): a rounded square in the exponent would cost |exponent| ulps, hence the two parts.
double times_exp_minus(DoubleDouble factor, DoubleDouble exponent) {
    const double leading = std::exp(-exponent.hi) * factor.hi;
    return leading + leading * (factor.lo / factor.hi - exponent.lo);
}

/// 1 - erf(x) for 0 <= x < 1.
double one_minus_erf_body(DoubleDouble x) {
    const DoubleDouble e = erf_body(x);
    const DoubleDouble rest = fast_two_sum(1, -e.hi);
    return rest.hi + (rest.lo - e.lo);
}

/// z / sqrt(2).
DoubleDouble times_sqrt_half(double z) {
    const DoubleDouble product = two_product(z, kSqrtHalf.hi);
    return {product.hi, product.lo + z * kSqrtHalf.lo};
}

DoubleDouble half_square(double z) {
    const DoubleDouble zz = two_product(z, z);
    return {0.5 * zz.hi, 0.5 * zz.lo};
}

/// 1 - Phi(z) for z >= 1.
double upper_tail(double z) {
    if (z > kTailEnd) return 0;
    const DoubleDouble t = times_sqrt_half(z);
    if (t.hi < 1) return 0.5 * one_minus_erf_body(t);
    return 0.5 * times_exp_minus(scaled_erfc_tail(t), half_square(z));
}

/// AS 241 for the smaller tail: |z| from min(p, 1-p), outside the central region.
double quantile_tail(double smaller) {
    using namespace coefficients::as241;
    const double root = std::sqrt(-std::log(smaller));
    if (root <= 5) return horner(c, root - 1.6) / horner(d, root - 1.6);
    return horner(e, root - 5) / horner(f, root - 5);
}

bool is_central(double q) { return std::fabs(q) <= 0.425; }

/// The central region. a/b runs from 2.5 to 3.4 there: as 3 + (a - 3 b)/b only the small second term carries
/// the rounding errors of the polynomials.
double quantile_center(double q) {
    using namespace coefficients::as241;
    const double r = 0.180625 - q * q;
    return q * (3 + horner(a_minus_3b, r) / horner(b, r));
}

}  // namespace

double erf(double x) {
    if (std::fabs(x) <= 1) return erf_body({x, 0}).hi;
    return 1 - erfc(x);
}

double erfc(double x) {
    const double z = std::fabs(x);
    if (z < 1) return x < 0 ? 1 + erf_body({z, 0}).hi : one_minus_erf_body({z, 0});
    if (!(x * x > kMaxLog)) {
        const double y = times_exp_minus(scaled_erfc_tail({z, 0}), two_product(z, z));
        if (y != 0) return x < 0 ? 2 - y : y;
    }
    return x < 0 ? 2 : 0;
}

double normal_cumulative(double z) {
    if (std::fabs(z) < 1) {
        const DoubleDouble e = erf_body(times_sqrt_half(z));
        const DoubleDouble sum = fast_two_sum(0.5, 0.5 * e.hi);
        return sum.hi + (sum.lo + 0.5 * e.lo);
    }
    return z > 0 ? 1 - upper_tail(z) : upper_tail(-z);
}

double normal_survival(double z) { return normal_cumulative(-z); }

double normal_log_cumulative(double z) {
    if (z > 0) return log1p_fn(-normal_survival(z));
    if (z > -2) return std::log(normal_cumulative(z));
    if (z < -1e8) return finite_or_limit(-0.5 * z * z - (std::log(-z) + kLnSqrt2Pi));
    const DoubleDouble exponent = half_square(z);
    return std::log(0.5 * scaled_erfc_tail(times_sqrt_half(-z)).hi) - exponent.lo - exponent.hi;
}

double normal_density(double z) {
    if (std::fabs(z) > kTailEnd) return std::isnan(z) ? z : 0;
    return times_exp_minus({kInvSqrt2Pi, 0}, half_square(z));
}

double normal_mills_ratio(double z) {
    if (z < 2) return normal_survival(z) / normal_density(z);
    return z < 1e8 ? 0.5 * kSqrt2Pi * scaled_erfc_tail(times_sqrt_half(z)).hi : 1 / z;
}

double normal_quantile(double p) {
    const double q = p - 0.5;
    if (is_central(q)) return quantile_center(q);
    if (!(p > 0)) return p <= 0 ? -kInfinity : p;
    if (p >= 1) return kInfinity;
    return q < 0 ? -quantile_tail(p) : quantile_tail(1 - p);
}

double normal_quantile_from_median(double d) {
    return is_central(d) ? quantile_center(d) : normal_quantile(0.5 + d);
}

double normal_quantile_upper(double q) { return -normal_quantile(q); }

void normal_cumulatives(std::span<double> z) {
    for (double& value : z) {
        const double t = value * kSqrtHalf.hi, size = std::min(std::fabs(t), kTailEnd);
        if (size < 1) {
            const double square = t * t;
            value = 0.5 + 0.5 * t * (horner(erf_T, square) / horner(erf_U, square));
            continue;
        }
        const double ratio = size < 8 ? horner(erfc_P, size) / horner(erfc_Q, size)
                                      : horner(erfc_R, size) / horner(erfc_S, size);
        const double tail = 0.5 * std::exp(-0.5 * value * value) * ratio;
        value = value > 0 ? 1 - tail : tail;
    }
}

/// The central branch for a whole block, in a loop that becomes vector code, and the tails one by one.
void normal_quantiles(std::span<double> p) {
    constexpr std::size_t kBlock = 256;
    double center[kBlock];
    while (!p.empty()) {
        const auto block = p.first(std::min(kBlock, p.size()));
        for (std::size_t i = 0; i < block.size(); ++i) center[i] = quantile_center(block[i] - 0.5);
        for (std::size_t i = 0; i < block.size(); ++i)
            block[i] = is_central(block[i] - 0.5) ? center[i] : normal_quantile(block[i]);
        p = p.subspan(block.size());
    }
}

}  // namespace pral::numerics
