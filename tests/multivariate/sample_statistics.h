// What samples of vectors show of their distribution: margins, rank correlation, closeness in a corner.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <string>
#include <vector>

#include "boundary/core_api.h"

namespace pral::test {

using Values = std::vector<double>;

/// Coordinate j of samples of d coordinates.
inline Values coordinate(const Values& samples, int d, int j) {
    Values values;
    for (std::size_t i = j; i < samples.size(); i += d) values.push_back(samples[i]);
    return values;
}

/// Kolmogorov's distance from the uniform distribution, against the bound of Dvoretzky, Kiefer, Wolfowitz and Massart at a
/// level of 1e-6.
inline void expect_uniform(Values u, const std::string& what) {
    std::sort(u.begin(), u.end());
    const double n = static_cast<double>(u.size());
    double distance = 0;
    for (std::size_t i = 0; i < u.size(); ++i)
        distance = std::max({distance, u[i] - i / n, (i + 1) / n - u[i]});
    EXPECT_LE(distance, std::sqrt(std::log(2e6) / (2 * n))) << what;
    EXPECT_TRUE(u.front() >= 0 && u.back() <= 1) << what;
}

inline double kendall(const Values& x, const Values& y) {
    double tau = -7;
    EXPECT_TRUE(PralKendallsTau_Core(&tau, x.data(), y.data(), static_cast<int>(x.size())));
    return tau;
}

/// Five standard deviations of tau, which has the largest variance without dependence.
inline double tau_margin(std::size_t n) { return 5 * 2 / (3 * std::sqrt(n / 1.0)) * std::sqrt(2.0); }

/// The share of samples with the second coordinate beyond `q` among those with the first: both below q < 1/2, or above.
inline double closeness(const Values& x, const Values& y, double q) {
    double first = 0, both = 0;
    for (std::size_t i = 0; i < x.size(); ++i) {
        const auto beyond = [q](double value) { return q < 0.5 ? value < q : value > q; };
        first += beyond(x[i]);
        both += beyond(x[i]) && beyond(y[i]);
    }
    return both / first;
}

inline double mean(const Values& x) {
    double sum = 0;
    for (const double value : x) sum += value;
    return sum / static_cast<double>(x.size());
}

inline double covariance(const Values& x, const Values& y) {
    const double mx = mean(x), my = mean(y);
    double sum = 0;
    for (std::size_t i = 0; i < x.size(); ++i) sum += (x[i] - mx) * (y[i] - my);
    return sum / static_cast<double>(x.size());
}

}  // namespace pral::test
