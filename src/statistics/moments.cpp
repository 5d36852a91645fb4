#include "statistics/moments.h"

#include <cmath>
#include <cstddef>

#include "numerics/constants.h"

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

/// Sums of the powers of deviations from about the mean, with weights that sum to 1. Power sums about 0 would cancel: of
/// values 1000 deviations away the fourth moment has no more than four digits.
class CentralSums {
  public:
    explicit CentralSums(double centre) : centre_(centre) {}
    void add(double value, double weight) {
        const double d = value - centre_, first = weight * d, second = first * d;
        first_ += first;
        second_ += second;
        third_ += second * d;
        fourth_ += second * d * d;
    }
    /// About the mean itself, from which the centre is off by its rounding.
    Moments moments() const {
        const double d = first_, variance = second_ - d * d;
        const double third = third_ - 3 * d * second_ + 2 * d * d * d,
                     fourth = fourth_ - 4 * d * third_ + 6 * d * d * second_ - 3 * d * d * d * d;
        return {centre_ + d, variance, third / std::pow(variance, 1.5), fourth / (variance * variance)};
    }

  private:
    double centre_, first_ = 0, second_ = 0, third_ = 0, fourth_ = 0;
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
    if (x.empty()) return {numerics::kNaN, numerics::kNaN, numerics::kNaN, numerics::kNaN};
    const double share = 1 / static_cast<double>(x.size());
    CentralSums sums(mean(x));
    for (const double value : x) sums.add(value, share);
    return sums.moments();
}

Moments table_moments(Data x, Data p) {
    double mean = 0, total = 0, lost = 0;
    std::size_t end = 0;
    while (end < x.size()) {
        mean += p[end] * x[end];
        const double next = total + p[end], back = next - total;  // Knuth's exact addition
        lost += (total - (next - back)) + (p[end] - back);
        total = next;
        if (end++ > x.size() / 2 && p[end - 1] == 0) break;
    }
    CentralSums sums(mean);
    for (std::size_t i = 0; i < end; ++i) sums.add(x[i], p[i]);
    const double missing = (1 - total) - lost;
    if (!(std::fabs(missing) <= 1e-15 * static_cast<double>(end))) sums.add(0, missing);
    return sums.moments();
}

}  // namespace pral::statistics
