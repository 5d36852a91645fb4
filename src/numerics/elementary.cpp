#include "numerics/elementary.h"

#include <array>
#include <bit>
#include <cmath>
#include <cstdint>

#include "numerics/coefficients.h"
#include "numerics/constants.h"
#include "numerics/polynomial.h"

namespace pral::numerics {

namespace {

using namespace coefficients::nmath;

constexpr double kEpsilon = 0x1p-52;

DoubleDouble multiply(DoubleDouble a, DoubleDouble b) {
    const DoubleDouble product = two_product(a.hi, b.hi);
    return fast_two_sum(product.hi, product.lo + (a.hi * b.lo + a.lo * b.hi));
}

constexpr DoubleDouble add(DoubleDouble a, DoubleDouble b) {
    const DoubleDouble sum = two_sum(a.hi, b.hi);
    return fast_two_sum(sum.hi, sum.lo + a.lo + b.lo);
}

// The argument is written 2^k m, sqrt(1/2) < m < sqrt(2) or thereabouts, and m lies within 1/128 of one of
// the nodes j/64.
constexpr int kFirstNode = 45;
constexpr int kNodes = 47;

/// ln(j/64) = 2 artanh((j - 64)/(j + 64)), summed from the smallest term.
constexpr DoubleDouble log_of_node(int j) {
    const DoubleDouble s = divide({j - 64.0, 0}, {j + 64.0, 0});
    const DoubleDouble square = two_product(s.hi, s.hi);
    const DoubleDouble y = {square.hi, square.lo + 2 * s.hi * s.lo};
    DoubleDouble sum = {0, 0};
    for (int k = 31; k >= 0; --k) {
        const DoubleDouble product = two_product(sum.hi, y.hi);
        sum = add({product.hi, product.lo + sum.hi * y.lo + sum.lo * y.hi}, divide({2, 0}, {2.0 * k + 1, 0}));
    }
    const DoubleDouble product = two_product(sum.hi, s.hi);
    return fast_two_sum(product.hi, product.lo + sum.hi * s.lo + sum.lo * s.hi);
}

constexpr std::array<DoubleDouble, kNodes> node_logarithms() {
    std::array<DoubleDouble, kNodes> table{};
    for (int i = 0; i < kNodes; ++i) table[i] = log_of_node(kFirstNode + i);
    return table;
}

constexpr std::array<DoubleDouble, kNodes> kNodeLogarithms = node_logarithms();
constexpr DoubleDouble kLn2DoubleDouble = {0.693147180559945286226764, 2.319046813846299558417771e-17};

struct Scaled {
    double mantissa;
    int exponent;
};

/// x = mantissa 2^exponent, mantissa between 0.704 and 1.408.
Scaled split_exponent(double x) {
    int exponent = 0;
    if (x < 0x1p-1022) {
        x *= 0x1p54;
        exponent = -54;
    }
    const auto bits = std::bit_cast<std::uint64_t>(x);
    // 0x3fe6872b... is 0.704: the subtraction carries into the exponent field where the mantissa lies above
    // it.
    const std::uint64_t above = bits - 0x3fe6872b00000000u;
    const auto shift = static_cast<int>(static_cast<std::int64_t>(above) >> 52);
    return {std::bit_cast<double>(bits - (static_cast<std::uint64_t>(shift) << 52)), exponent + shift};
}

/// The deviance for |x - a| < a/10, by the series in s = (x - a)/(x + a): d - ln(1+d) = s (d - 2 s^2 (1/3 +
/// s^2/5 + ...)).
DoubleDouble deviance_near(double x, double a) {
    constexpr DoubleDouble kThird = {0.33333333333333331483, 1.8503717077085942e-17};
    const DoubleDouble difference = two_sum(x, -a);
    const DoubleDouble d = divide(difference, {a, 0});
    const DoubleDouble s = divide(difference, two_sum(x, a));
    const DoubleDouble y = multiply(s, s);
    double tail = 1.0 / 19;
    for (int k = 17; k >= 5; k -= 2) tail = tail * y.hi + 1.0 / k;
    const DoubleDouble bracket = multiply({2 * y.hi, 2 * y.lo}, add(kThird, {y.hi * tail, 0}));
    return multiply(s, add(d, {-bracket.hi, -bracket.lo}));
}

}  // namespace

double log1p_fn(double x) {
    if (x == -1) return -kInfinity;
    if (std::fabs(x) > 0.375 || std::isnan(x)) return std::log(1 + x);
    if (std::fabs(x) < 0.5 * kEpsilon) return x;
    if (-1e-9 < x && x < 1e-8) return x * (1 - 0.5 * x);
    return x * (1 - x * chebyshev(log1p_cheb, x / 0.375));
}

double expm1_fn(double x) {
    const double size = std::fabs(x);
    if (size < kEpsilon) return x;
    if (size > 0.697) return std::exp(x) - 1;
    const double y = size > 1e-8 ? std::exp(x) - 1 : (0.5 * x + 1) * x;
    return y - (1 + y) * (log1p_fn(y) - x);
}

double log_continued_fraction(double x, double i, double d, double eps) {
    constexpr double kScale = 0x1p256;
    constexpr int kMaxSteps = 20000;  // 1e-14 is reached below 10 for |x| < 0.5, within 4000 for x = 0.99999
    double odd = 2 * d, even = i + d, next = even + d;
    double numerator1 = even, denominator1 = i * (even - i * x);
    double numerator2 = next * even - d * d * x, denominator2 = next * denominator1 - i * d * d * x;
    for (int step = 0; step < kMaxSteps; ++step) {
        if (!(std::fabs(numerator2 * denominator1 - numerator1 * denominator2) >
              std::fabs(eps * denominator1 * denominator2)))
            break;
        double factor = even * even * x;
        even += d;
        next += d;
        numerator1 = next * numerator2 - factor * numerator1;
        denominator1 = next * denominator2 - factor * denominator1;
        factor = odd * odd * x;
        odd += d;
        next += d;
        numerator2 = next * numerator1 - factor * numerator2;
        denominator2 = next * denominator1 - factor * denominator2;
        const double size = std::fabs(denominator2);
        const double rescale = size > kScale ? 1 / kScale : size < 1 / kScale ? kScale : 1;
        numerator1 *= rescale;
        denominator1 *= rescale;
        numerator2 *= rescale;
        denominator2 *= rescale;
    }
    return numerator2 / denominator2;
}

double log_ratio(double x, double y) {
    const double near = (x - y) / y;
    if (std::fabs(near) < 0.5) return log1p_fn(near);
    const double ratio = x / y;
    return ratio > DBL_MIN && ratio < DBL_MAX ? std::log(ratio) : std::log(x) - std::log(y);
}

double log1m_exp(double t) { return t < kLn2 ? std::log(-expm1_fn(-t)) : log1p_fn(-std::exp(-t)); }

double log1p_minus_x(double x) {
    if (!(-0.79149064 <= x && x <= 1)) return log1p_fn(x) - x;
    const double r = x / (2 + x);
    const double y = r * r;
    if (std::fabs(x) < 0.01) return r * (horner(log1p_minus_x_short, y) * y - x);
    return r * (2 * y * log_continued_fraction(y, 3, 2, 1e-14) - x);
}

DoubleDouble log_double_double(double x) {
    const Scaled scaled = split_exponent(x);
    const int j = static_cast<int>(scaled.mantissa * 64 + 0.5);
    const double node = j / 64.0;
    const DoubleDouble s = divide({scaled.mantissa - node, 0}, two_sum(scaled.mantissa, node));
    const double y = s.hi * s.hi;
    const double rest = 2 * s.hi * y * (1.0 / 3 + y * (0.2 + y * (1.0 / 7 + y * (1.0 / 9))));
    const DoubleDouble fraction =
        add(kNodeLogarithms[j - kFirstNode], fast_two_sum(2 * s.hi, 2 * s.lo + rest));
    const double k = scaled.exponent;
    const DoubleDouble whole = two_product(k, kLn2DoubleDouble.hi);
    return add({whole.hi, whole.lo + k * kLn2DoubleDouble.lo}, fraction);
}

DoubleDouble deviance_double_double(double x, double a) {
    if (x < 1e-100 * a || a < 1e-100 * x) {  // the ratio may be out of range for exact arithmetic
        const DoubleDouble lx = log_double_double(x), la = log_double_double(a);
        return add({x / a, 0}, add({-1, 0}, add(la, {-lx.hi, -lx.lo})));
    }
    if (x > 0x1p900 || a > 0x1p900) {  // the exact products need room above
        x *= 0x1p-128;
        a *= 0x1p-128;
    }
    if (std::fabs(x - a) < 0.1 * a) return deviance_near(x, a);
    const DoubleDouble ratio = divide({x, 0}, {a, 0});
    const DoubleDouble logarithm = log_double_double(ratio.hi);
    return add(add(ratio, {-1, 0}), {-logarithm.hi, -logarithm.lo - ratio.lo / ratio.hi});
}

double scaled_exp(double factor, DoubleDouble exponent) {
    if (exponent.hi < -1500) return 0;
    factor += factor * exponent.lo;
    if (exponent.hi > -700) return factor * std::exp(exponent.hi);
    const double root =
        std::exp(0.5 * exponent.hi);  // the power itself may be denormal where the product is not
    return factor * root * root;
}

}  // namespace pral::numerics
