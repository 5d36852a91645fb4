#include "numerics/elementary.h"

#include <cmath>

#include "numerics/coefficients.h"
#include "numerics/constants.h"
#include "numerics/extended_log.h"
#include "numerics/polynomial.h"

namespace pral::numerics {

namespace {

using namespace coefficients::nmath;

constexpr double kEpsilon = 0x1p-52;

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

DoubleDouble deviance_double_double(double x, double a) {
    if (x < 1e-100 * a || a < 1e-100 * x) {  // the ratio may be out of range for exact arithmetic
        const DoubleDouble lx = extended_log({x, 0}), la = extended_log({a, 0});
        return add({x / a, 0}, add({-1, 0}, add(la, {-lx.hi, -lx.lo})));
    }
    if (x > 0x1p900 || a > 0x1p900) {  // the exact products need room above
        x *= 0x1p-128;
        a *= 0x1p-128;
    }
    if (std::fabs(x - a) < 0.1 * a) return deviance_near(x, a);
    const DoubleDouble ratio = divide({x, 0}, {a, 0});
    return add(add(ratio, {-1, 0}), negated(extended_log(ratio)));
}

double scaled_exp(double factor, DoubleDouble exponent) {
    if (exponent.hi < -1500) return 0;
    if (exponent.hi > 1500)
        return factor == 0 ? 0 : factor * HUGE_VAL;  // where exponent.lo may be large, too
    factor += factor * exponent.lo;
    if (exponent.hi > -kExpLimit) return factor * std::exp(exponent.hi);
    const double root =
        std::exp(0.5 * exponent.hi);  // the power itself may be denormal where the product is not
    return factor * root * root;
}

}  // namespace pral::numerics
