// The normal distribution's functions by loops that become vector code.
//
// The upper tail is Q(a) = W(a) e^(-a^2/2), a >= 0, with W(a) = R/(1 + a) and R, which runs from 0.40 to 0.53 for all a, as a
// polynomial in t = (a - 5)/(a + 5): Chebyshev's series of R, cut below 1e-17 and rearranged (the variable is that of
// Shepherd and Laframboise 1981). Only small terms carry rounding errors: what is left over of the quotient, of the square in
// the exponent and of e^r - 1 is added last.
#include <algorithm>
#include <cmath>

#include "numerics/coefficients.h"
#include "numerics/double_double.h"
#include "numerics/each.h"
#include "numerics/each_loop.h"
#include "numerics/exp_log.h"
#include "numerics/normal.h"
#include "numerics/polynomial.h"

namespace pral::numerics {

namespace {

/// R = kLead + kLeadLow + t (kRest[0] + kRest[1] t + ...).
constexpr double kLead = 0x1.d8979b0f2b39dp-2, kLeadLow = 0x1.946fa97152792p-56;
constexpr double kRest[] = {
    -0x1.76ff86859eb1cp-4, 0x1.fc66cc64a14d7p-6,   0x1.47c1d030561b8p-7,   -0x1.b08e0007b7aa3p-6,
    0x1.92037bab2f2afp-6,  -0x1.f11aab02a0ec9p-7,  0x1.ab6d0392975aep-8,   -0x1.b75f4f9f53605p-10,
    0x1.05714fe6aa3dcp-17, 0x1.7e61e616469ecp-13,  -0x1.c1b16762e9607p-15, -0x1.4c0ed51ca3a96p-17,
    0x1.2fff4d2a5194ep-17, -0x1.2e22bc7c12e78p-24, -0x1.5ef72f0c6e0efp-20, 0x1.129dcbc121f15p-23,
    0x1.a58106b360b2cp-23, -0x1.c397f3dca99d6p-26, -0x1.09e034d7b4554p-25, 0x1.f28ad8daa3556p-29,
    0x1.2e7204d6498afp-28, -0x1.364a698813ab4p-32, -0x1.a38dadeae8ad6p-32};

/// W(a).
inline DoubleDouble scaled_tail(double a) {
    const double t = (a - 5) / (a + 5), rest = t * polynomial(kRest, t) + kLeadLow;
    const DoubleDouble numerator = fast_two_sum(kLead, rest), denominator = two_sum(1, a);
    const double reciprocal = 1 / denominator.hi, quotient = numerator.hi * reciprocal;
    const DoubleDouble back = two_product(quotient, denominator.hi);
    const double left = ((numerator.hi - back.hi) - back.lo) + (numerator.lo - quotient * denominator.lo);
    return {quotient, left * reciprocal};
}

inline double normal_cumulative_written(double z) {
    constexpr double kEnd = 39;  // beyond it the tail is below the smallest denormal
    const double size = std::fabs(z), a = kEnd < size ? kEnd : size;
    const DoubleDouble w = scaled_tail(a), square = two_product(a, a);
    const written::Exponential e = written::exponential(-0.5 * square.hi, -0.5 * square.lo);
    const double tail = (w.hi + (w.lo + w.hi * e.rest)) * e.half * e.other_half;
    return z > 0 ? 1 - tail : tail;
}

/// Below 0 the logarithm is that of W less the exponent, above that of 1 - Q.
[[gnu::always_inline]] inline double normal_log_cumulative_written(double z) {
    const double a = std::fabs(z);
    const DoubleDouble w = scaled_tail(a), square = two_product(a, a);
    const written::Exponential e = written::exponential(-0.5 * square.hi, -0.5 * square.lo);
    const double tail = (w.hi + (w.lo + w.hi * e.rest)) * e.half * e.other_half, lower = 1 - tail;
    const double below = w.hi + w.lo, log = written::log_ordinary(z > 0 ? lower : below);
    const double from_lower = log + ((1 - lower) - tail) / lower,
                 from_scaled = (log - 0.5 * square.lo) - 0.5 * square.hi;
    return z > 0 ? from_lower : from_scaled;
}

/// AS 241 outside the central region for both ends: the root of -ln of the smaller tail, up to 5.
inline double quantile_by_root(double root) {
    using namespace coefficients::as241;
    return horner(c, root - 1.6) / horner(d, root - 1.6);
}
inline double quantile_by_far_root(double root) {
    using namespace coefficients::as241;
    return horner(e, root - 5) / horner(f, root - 5);
}
inline double quantile_center(double q) {
    using namespace coefficients::as241;
    const double r = 0.180625 - q * q;
    return q * (3 + horner(a_minus_3b, r) / horner(b, r));
}

constexpr std::size_t kBlock = 256;

PRAL_WIDEST_VECTORS void center_each(const double* p, double* z, std::size_t n) {
    for (std::size_t i = 0; i < n; ++i) z[i] = quantile_center(p[i] - 0.5);
}

PRAL_WIDEST_VECTORS void tail_each(double* log_tail, std::size_t n) {
    for (std::size_t i = 0; i < n; ++i) log_tail[i] = std::sqrt(-log_tail[i]);
    for (std::size_t i = 0; i < n; ++i) {
        const double root = log_tail[i], moderate = root < 5 ? root : 5;
        const double z = quantile_by_root(moderate);
        log_tail[i] = root > 5 ? root : -z;  // those left are known by their sign
    }
}

}  // namespace

PRAL_WIDEST_VECTORS void normal_cumulative_each(std::span<double> values) {
    for (double& z : values) z = normal_cumulative_written(z);
}

PRAL_WIDEST_VECTORS void normal_log_cumulative_each(std::span<double> values) {
    each_or_special(
        values, [](double z) { return std::fabs(z) < 1e8; }, normal_log_cumulative_written,
        normal_log_cumulative);
}

/// The central branch for a whole block, the tails together.
void normal_quantile_each(std::span<double> values) {
    double center[kBlock], tail[kBlock];
    unsigned char place[kBlock];
    while (!values.empty()) {
        const auto block = values.first(std::min(kBlock, values.size()));
        center_each(block.data(), center, block.size());
        std::size_t tails = 0;
        for (std::size_t i = 0; i < block.size(); ++i) {
            const double p = block[i];
            place[tails] = static_cast<unsigned char>(i);
            tail[tails] = std::min(p, 1 - p);
            tails += !(std::fabs(p - 0.5) <= 0.425);
        }
        log_each({tail, tails});
        tail_each(tail, tails);
        for (std::size_t j = 0; j < tails; ++j) {
            const std::size_t i = place[j];
            const double p = block[i], size = tail[j] > 0 ? quantile_by_far_root(tail[j]) : -tail[j];
            center[i] = !(p > 0 && p < 1) ? normal_quantile(p) : p < 0.5 ? -size : size;
        }
        std::copy_n(center, block.size(), block.begin());
        values = values.subspan(block.size());
    }
}

}  // namespace pral::numerics
