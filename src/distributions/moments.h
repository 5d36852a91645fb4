// Mean, variance, skewness and excess kurtosis in closed form, and how those of one variable follow from those of another.
// Where a moment does not exist these forms give any number: with_divergences() puts in what is right.
#pragma once

#include <array>
#include <cmath>
#include <cstddef>
#include <optional>
#include <span>

#include "numerics/constants.h"
#include "numerics/elementary.h"

namespace pral {

/// Mean, variance, skewness and excess kurtosis. Infinite where the integral diverges, NaN where there is none.
struct Moments {
    double mean, variance, skewness, kurtosis;
};

inline constexpr Moments kNoMoments = {numerics::kNaN, numerics::kNaN, numerics::kNaN, numerics::kNaN};

/// The same but for what does not exist: E|X|^k is finite below on either side up to its limit, not included.
Moments with_divergences(Moments, double lower_limit, double upper_limit);

/// Of factor X + shift.
inline Moments linear(const Moments& m, double factor, double shift) {
    const double deviation = factor * std::sqrt(m.variance);
    return {factor * m.mean + shift, deviation * deviation, std::copysign(1.0, factor) * m.skewness,
            m.kurtosis};
}

inline Moments from_cumulants(double k1, double k2, double k3, double k4) {
    return {k1, k2, k3 / (k2 * std::sqrt(k2)), k4 / (k2 * k2)};
}

/// Of a mixture; the weights sum to 1.
Moments mixed(std::span<const Moments>, std::span<const double> weights);

/// Of X Y, independent and with means other than 0.
Moments of_product(const Moments& x, const Moments& y);

/// Of a Poisson count with such a random rate: sums of positive terms.
Moments poisson_mixture(const Moments& rate);

Moments gamma_moments(double shape, double scale);
Moments beta_moments(double a, double b);
Moments beta_odds_moments(double a, double b);  // of B/(1 - B)
Moments beta_binomial_moments(double n, double a, double b);
Moments pareto_moments(double shape);      // of the excess over the smallest value 1
Moments lognormal_moments(double square);  // of e^Y, Y normal with mean -square/2 and this variance

/// Of e^Y/E e^Y where Y has the cumulant generating function K(t) = ln E e^(tY), infinite where that diverges, by its
/// values at 1, 2, 3 and 4; none where their differences would lose the digits.
std::optional<Moments> exponential_moments(const std::array<double, 4>& K);
template <class Generating>
std::optional<Moments> exponential_moments(Generating K) {
    return exponential_moments(std::array{K(1), K(2), K(3), K(4)});
}

/// Of points with weights that sum to 1: `for_each(visit)` calls visit(weight, x) for each of them.
template <class ForEach>
Moments point_moments(ForEach for_each) {
    double mean = 0, correction = 0, unit = 0;
    for_each([&](double weight, double x) { mean += weight * x; });
    for_each([&](double weight, double x) {
        correction += weight * (x - mean);
        unit = std::fmax(unit, weight > 0 ? std::fabs(x - mean) : 0);
    });
    mean += correction;
    if (!(unit > 0)) return {mean, 0, numerics::kNaN, numerics::kNaN};
    double second = 0, third = 0, fourth = 0;
    for_each([&](double weight, double x) {
        const double d = (x - mean) / unit, square = d * d;
        second += weight * square;
        third += weight * square * d;
        fourth += weight * square * square;
    });
    return {mean, unit * unit * second, third / (second * std::sqrt(second)), fourth / (second * second) - 3};
}

/// The mode of a beta variable on [lower, upper] of these shapes; the lower end where both ends are as high.
inline double beta_mode(double a, double b, double lower, double upper) {
    if (a > 1 && b > 1) {
        const double below = (a - 1) / (a - 1 + (b - 1)), above = (b - 1) / (a - 1 + (b - 1));
        return below <= above ? lower + (upper - lower) * below : upper - (upper - lower) * above;
    }
    return a >= 1 && b <= 1 && !(a == 1 && b == 1) ? upper : lower;
}

/// The least integer from `least` on that is not below x - 1: the mode where f(k) > f(k - 1) for k < x.
inline double mode_before(double x, double least, double most = numerics::kInfinity) {
    return std::fmin(std::fmax(std::ceil(x) - 1, least), most);
}
inline double beta_binomial_mode(double n, double a, double b) {
    const double turn = a + b - 2;
    if (turn > 0) return mode_before(((a - 1) * n - (b - 1)) / turn + 1, 0, n);
    return a > b ? n : 0;  // it falls to a trough between two ends, or to one end
}

}  // namespace pral
