#include "distributions/moments.h"

namespace pral {

using namespace numerics;

Moments with_divergences(Moments all, double lower_limit, double upper_limit) {
    double* const members[] = {&all.mean, &all.variance, &all.skewness, &all.kurtosis};
    for (int order = 4; order >= 1; --order) {
        const bool lower = !(lower_limit > order), upper = !(upper_limit > order), odd = order % 2 == 1;
        if (!lower && !upper) break;
        *members[order - 1] = odd && lower && upper ? kNaN : odd && lower ? -HUGE_VAL : HUGE_VAL;
        if (order == 2) all.skewness = all.kurtosis = kNaN;
        if (order == 1 && std::isnan(all.mean)) all.variance = kNaN;
    }
    return all;
}

Moments mixed(std::span<const Moments> of, std::span<const double> weights) {
    double mean = 0, second = 0, third = 0, fourth = 0;
    for (std::size_t i = 0; i < of.size(); ++i)
        if (weights[i] > 0) mean += weights[i] * of[i].mean;
    for (std::size_t i = 0; i < of.size(); ++i) {
        if (!(weights[i] > 0)) continue;
        const double d = of[i].mean - mean, v = of[i].variance, w = weights[i];
        const double m3 = v > 0 ? of[i].skewness * v * std::sqrt(v) : 0;
        const double m4 = v > 0 ? (of[i].kurtosis + 3) * v * v : 0;
        second += w * (v + d * d);
        third += w * (m3 + 3 * d * v + d * d * d);
        fourth += w * (m4 + 4 * d * m3 + 6 * d * d * v + d * d * d * d);
    }
    return {mean, second, third / (second * std::sqrt(second)), fourth / (second * second) - 3};
}

/// With X = E X (1 + x) and Y likewise, the central moments of (1 + x)(1 + y) = 1 + x (1 + y) + y.
Moments of_product(const Moments& x, const Moments& y) {
    const double a2 = x.variance / x.mean / x.mean, b2 = y.variance / y.mean / y.mean;
    const double a3 = x.skewness * a2 * std::sqrt(a2), b3 = y.skewness * b2 * std::sqrt(b2);
    const double a4 = (x.kurtosis + 3) * a2 * a2, b4 = (y.kurtosis + 3) * b2 * b2;
    const double second = a2 + b2 + a2 * b2;
    const double third = a3 * (1 + 3 * b2 + b3) + 3 * a2 * (2 * b2 + b3) + b3;
    const double fourth =
        a4 * (1 + 6 * b2 + 4 * b3 + b4) + 4 * a3 * (3 * b2 + 3 * b3 + b4) + 6 * a2 * (b2 + 2 * b3 + b4) + b4;
    const double mean = x.mean * y.mean, deviation = mean * std::sqrt(second);
    return {mean, deviation * deviation, third / (second * std::sqrt(second)),
            fourth / (second * second) - 3};
}

Moments poisson_mixture(const Moments& rate) {
    const double variance = rate.mean + rate.variance, part = rate.variance / variance;
    const double counts = rate.mean / variance, root = std::sqrt(variance), cube = part * std::sqrt(part);
    return {rate.mean, variance, (counts + 3 * part) / root + rate.skewness * cube,
            (counts + 7 * part) / variance + 6 * rate.skewness * cube / root + rate.kurtosis * part * part};
}

Moments gamma_moments(double shape, double scale) {
    const double deviation = scale * std::sqrt(shape);
    return {shape * scale, deviation * deviation, 2 / std::sqrt(shape), 6 / shape};
}

Moments beta_moments(double a, double b) {
    const double n = a + b, p = a / n, q = b / n, root = std::sqrt(p * q);
    return {p, p * q / (n + 1), 2 * ((q - p) / root) * (std::sqrt(n + 1) / (n + 2)),
            6 / (n + 3) * ((q - p) / root * ((q - p) / root) * ((n + 1) / (n + 2)) - 1)};
}

Moments beta_odds_moments(double a, double b) {
    const double mean = a / (b - 1), deviation = mean * std::sqrt((a + b - 1) / a / (b - 2));
    return {mean, deviation * deviation,
            2 * ((2 * a + b - 1) / (b - 3)) * std::sqrt((b - 2) / a / (a + b - 1)),
            6 * ((5 * b - 11) / (b - 3) / (b - 4) +
                 (b - 1) / (b - 3) * ((b - 2) / (b - 4)) * ((b - 1) / a / (a + b - 1)))};
}

Moments beta_binomial_moments(double n, double a, double b) {
    const double c = a + b, p = a / c, q = b / c, pq = p * q;
    const double variance = n * pq * ((c + n) / (c + 1));
    const double fourth = c * (c - 1 + 6 * n) + 3 * pq * c * c * (n - 2) + 6 * n * n -
                          3 * pq * c * n * (6 - n) - 18 * pq * n * n;
    return {n * p, variance, (q - p) * ((c + 2 * n) / (c + 2)) / std::sqrt(variance),
            (1 + c) / (c + 2) / (c + 3) / (c + n) * (fourth / (n * pq)) - 3};
}

Moments pareto_moments(double q) {
    const double mean = 1 / (q - 1), deviation = mean * std::sqrt(q / (q - 2));
    return {mean, deviation * deviation, 2 * ((1 + q) / (q - 3)) * std::sqrt((q - 2) / q),
            6 * ((1 + (1 - (6 + 2 / q) / q) / q) / ((1 - 3 / q) * (1 - 4 / q)))};
}

Moments lognormal_moments(double square) {
    const double excess = expm1_fn(square), w = 1 + excess;
    return {1, excess, (w + 2) * std::sqrt(excess), excess * (6 + w * (6 + w * (3 + w)))};
}

std::optional<Moments> exponential_moments(const std::array<double, 4>& K) {
    constexpr double kSmall = 0.01, kLarge = 1;
    const double second = K[1] - 2 * K[0], third = K[2] - 3 * K[0], fourth = K[3] - 4 * K[0];
    if (second < kSmall) return std::nullopt;
    const double variance = expm1_fn(second);
    if (second < kLarge) {
        const double a = expm1_fn(third), b = expm1_fn(fourth);
        return Moments{1, variance, (a - 3 * variance) / (variance * std::sqrt(variance)),
                       (b - 4 * a + 6 * variance) / (variance * variance) - 3};
    }
    // The powers of E e^(2Y) taken out, which may overflow
    const double rest = -expm1_fn(-second);
    const double skewness = std::exp(third - 1.5 * second) *
                            (1 - 3 * std::exp(second - third) + 2 * std::exp(-third)) /
                            (rest * std::sqrt(rest));
    const double kurtosis =
        std::exp(fourth - 2 * second) *
            (1 - 4 * std::exp(third - fourth) + 6 * std::exp(second - fourth) - 3 * std::exp(-fourth)) /
            (rest * rest) -
        3;
    return Moments{1, variance, skewness, kurtosis};
}

}  // namespace pral
