#include "statistics/moments.h"

#include <cmath>
#include <cstddef>

namespace pral::statistics {

namespace {

/// The mean and the sums of powers of the deviations from it.
struct Deviations {
    explicit Deviations(Data x) : count(static_cast<double>(x.size())), mean(statistics::mean(x)) {
        for (const double value : x) {
            const double d = value - mean, square = d * d;
            second += square;
            third += square * d;
            fourth += square * square;
        }
    }
    double variance() const { return second / (count - 1); }

    double count, mean, second = 0, third = 0, fourth = 0;
};

}  // namespace

double mean(Data x) {
    double sum = 0;
    for (const double value : x) sum += value;
    return sum / static_cast<double>(x.size());
}

double variance(Data x) {
    const double center = mean(x);
    double sum = 0;
    for (const double value : x) sum += (value - center) * (value - center);
    return sum / (static_cast<double>(x.size()) - 1);
}

double standard_deviation(Data x) { return std::sqrt(variance(x)); }

double skewness(Data x) {
    const Deviations d(x);
    const double n = d.count;
    return d.third / std::pow(d.variance(), 1.5) * n / ((n - 1) * (n - 2));
}

double kurtosis(Data x) {
    const Deviations d(x);
    const double n = d.count, s2 = d.variance();
    return (n + 1) * n / ((n - 1) * (n - 2) * (n - 3)) * d.fourth / (s2 * s2) +
           3 * (5 - 3 * n) / ((n - 3) * (n - 2));
}

Moments population_moments(Data x) {
    double s1 = 0, s2 = 0, s3 = 0, s4 = 0;
    for (const double value : x) {
        const double square = value * value;
        s1 += value;
        s2 += square;
        s3 += square * value;
        s4 += square * square;
    }
    const double n = static_cast<double>(x.size()), mean = s1 / n, variance = s2 / n - mean * mean;
    return {mean, variance, (s3 - 3 * s2 * mean + 2 * n * mean * mean * mean) / (std::pow(variance, 1.5) * n),
            (s4 - 4 * mean * s3 + 6 * mean * mean * s2 - 3 * n * mean * mean * mean * mean) /
                (n * variance * variance)};
}

Moments table_moments(Data x, Data p) {
    double m1 = 0, m2 = 0, m3 = 0, m4 = 0;
    for (std::size_t i = 0; i < x.size(); ++i) {
        const double value = x[i], square = value * value;
        m1 += p[i] * value;
        m2 += p[i] * square;
        m3 += p[i] * square * value;
        m4 += p[i] * square * square;
        if (i > x.size() / 2 && p[i] == 0) break;
    }
    const double variance = m2 - m1 * m1;
    return {m1, variance, (m3 - 3 * m2 * m1 + 2 * m1 * m1 * m1) / std::pow(variance, 1.5),
            (m4 - 4 * m1 * m3 + 6 * m1 * m1 * m2 - 3 * m1 * m1 * m1 * m1) / (variance * variance)};
}

}  // namespace pral::statistics
