#include "numerics/exponential_integral.h"

#include <cmath>

#include "numerics/constants.h"
#include "numerics/elementary.h"

namespace pral::numerics {

namespace {

constexpr double kEulerGamma = 0.57721566490153286061;
/// Below it the power series loses less than two digits, above it the continued fraction needs less than 60 terms.
constexpr double kSeriesBelow = 1.5;

/// DLMF 6.6.2.
double power_series(double x) {
    constexpr int kMaxTerms = 40;
    double term = 1, sum = 0;
    for (int n = 1; n < kMaxTerms; ++n) {
        term *= -x / n;
        sum += term / n;
        if (std::fabs(term) < 0x1p-56 * n * std::fabs(sum)) break;
    }
    return -(std::log(x) + kEulerGamma) - sum;
}

/// e^x E1(x) by the even part of DLMF 6.9.1, in Steed's forward evaluation.
double continued_fraction(double x) {
    constexpr int kMaxTerms = 200;
    double b = x + 1, d = 1 / b, change = d, sum = d;
    for (int n = 1; n < kMaxTerms; ++n) {
        b += 2;
        const double a = -static_cast<double>(n) * n;
        d = 1 / (a * d + b);
        change *= b * d - 1;
        sum += change;
        if (std::fabs(change) < 0x1p-55 * sum) break;
    }
    return sum;
}

}  // namespace

double exponential_integral(double x) {
    if (!(x > 0)) return x == 0 ? HUGE_VAL : kNaN;
    return x < kSeriesBelow ? power_series(x) : std::exp(-x) * continued_fraction(x);
}

double exponential_integral_inverse_estimate(double t) {
    if (t > 0.5) {  // E1(x) = -gamma - ln x + x - x^2/4 + ...
        double x = std::exp(-kEulerGamma - t);
        for (int i = 0; i < 2; ++i) x = std::exp(-kEulerGamma - t + x - 0.25 * x * x);
        return x;
    }
    double x = 1 - std::log(t);  // E1(x) is about e^-x ln(1 + 1/x), DLMF 6.8.1
    for (int i = 0; i < 3; ++i) x = std::log(log1p_fn(1 / x) / t);
    return x;
}

}  // namespace pral::numerics
