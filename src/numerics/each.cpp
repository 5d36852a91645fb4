#include "numerics/each.h"

#include <algorithm>

#include "numerics/constants.h"
#include "numerics/each_loop.h"
#include "numerics/elementary.h"
#include "numerics/exp_log.h"
#include "numerics/polynomial.h"

namespace pral::numerics {

namespace {

/// atan(v) = v + v^3 P(v^2) on [0, 1], and tan(v) likewise on [0, pi/4]: Chebyshev's series in v^2 to where they end below
/// 1e-18, rearranged in its powers.
constexpr double kAtan[] = {
    -0x1.5555555555555p-2,  0x1.9999999999995p-3,  -0x1.249249249215ep-3, 0x1.c71c71c6ffcd4p-4,
    -0x1.745d17418f648p-4,  0x1.3b13b0d74abd4p-4,  -0x1.11110aecc5460p-4, 0x1.e1e157f084c9ep-5,
    -0x1.af23ed96012bdp-5,  0x1.85fbb70ad1a4bp-5,  -0x1.639d5b9a62fabp-5, 0x1.45746aef2b114p-5,
    -0x1.28408327dd38ep-5,  0x1.07aaa879f5326p-5,  -0x1.beb6219dac899p-6, 0x1.5bdbd78dee872p-6,
    -0x1.defb7a3a46922p-7,  0x1.17ea60ff9d4bcp-7,  -0x1.09e4213443fb2p-8, 0x1.85f49bc93fd79p-10,
    -0x1.9b17d6a7a8005p-12, 0x1.13c7ca4c17c1bp-14, -0x1.606d4ec8c0948p-18};
constexpr double kTan[] = {
    0x1.5555555555555p-2,   0x1.111111111111cp-3,  0x1.ba1ba1ba1a3cdp-5,   0x1.664f488357485p-6,
    0x1.226e353d46811p-7,   0x1.d6d3d9b4fd6f4p-9,  0x1.7da29f5d71f73p-10,  0x1.3563f6b7037b6p-11,
    0x1.f47b55f1571a6p-13,  0x1.9e75007664ef0p-14, 0x1.1bacc3863335bp-15,  0x1.ca1eeb1d3125ap-16,
    -0x1.5e491f16dff5ap-17, 0x1.4b10a518623a1p-16, -0x1.4a2a3980e9a20p-17, 0x1.0a6d14068b907p-18};

/// As written::ordinary, by comparisons that vectors have.
inline bool is_ordinary(double x) { return x >= DBL_MIN && x <= DBL_MAX; }

template <std::size_t N>
inline double odd_series(const double (&c)[N], double v) {
    const double vv = v * v;
    return v + v * (vv * polynomial(c, vv));
}

}  // namespace

PRAL_WIDEST_VECTORS void exp_each(std::span<double> values) {
    for (double& x : values) x = written::exp(x);
}

PRAL_WIDEST_VECTORS void log_each(std::span<double> values) {
    each_or_special(values, is_ordinary, written::log_ordinary, written::log);
}

PRAL_WIDEST_VECTORS void expm1_each(std::span<double> values) {
    for (double& x : values) x = written::expm1(x);
}

PRAL_WIDEST_VECTORS void log1p_each(std::span<double> values) {
    each_or_special(
        values, [](double x) { return is_ordinary(1 + x); }, written::log1p_ordinary, log1p_fn);
}

PRAL_WIDEST_VECTORS void softplus_each(std::span<double> values) {
    for (double& x : values) {
        const double size = std::fabs(x), positive = x > 0 ? x : 0;
        x = positive + written::log1p_ordinary(written::exp(-size));
    }
}

PRAL_WIDEST_VECTORS void log1m_exp_each(std::span<double> values) {
    each_or_special(values, is_ordinary, written::log1m_exp_ordinary, log1m_exp);
}

PRAL_WIDEST_VECTORS void log_ratio_each(std::span<double> values, double y) {
    each_or_special(
        values, [=](double x) { return is_ordinary(x / y); },
        [=](double x) { return written::log_ratio_ordinary(x, y); },
        [=](double x) { return log_ratio(x, y); });
}

/// The tail with a sign that tells what is asked for: t itself, or -t for 1 - t.
PRAL_WIDEST_VECTORS void log_tail_each(std::span<double> t, std::span<const double> complement) {
    for (std::size_t i = 0; i < t.size(); ++i) t[i] = complement[i] > 0 ? -std::fabs(t[i]) : t[i];
    each_or_special(
        t, [](double tail) { return is_ordinary(tail) || (tail < 0 && is_ordinary(1 + tail)); },
        [](double tail) {
            const double added = tail < 0 ? 1 : 0, sum = added + tail;
            return written::log_ordinary(sum) + (tail - (sum - added)) / sum;
        },
        [](double tail) { return std::signbit(tail) ? log1p_fn(tail) : written::log(tail); });
}

PRAL_WIDEST_VECTORS void acot_each(std::span<double> values) {
    for (double& x : values) {
        const double size = std::fabs(x), reciprocal = 1 / size;
        const double angle = odd_series(kAtan, size > 1 ? reciprocal : size);
        const double acute = size > 1 ? angle : 0.5 * kPi - angle;
        x = x < 0 ? kPi - acute : acute;
    }
}

PRAL_WIDEST_VECTORS void cot_pi_each(std::span<double> values) {
    for (double& x : values) {
        const double upper = 1 - x, smaller = x < upper ? x : upper;
        const bool steep = smaller < 0.25;
        const double tangent = odd_series(kTan, kPi * (steep ? smaller : 0.5 - smaller));
        const double size = steep ? 1 / tangent : tangent;
        x = x > 0.5 ? -size : size;
    }
}

}  // namespace pral::numerics
