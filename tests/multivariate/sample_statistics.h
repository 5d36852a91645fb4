// What is known of the vector functions (reference/multivariate.tsv), and what samples show: margins, rank correlation,
// closeness in a corner, moments.
#pragma once

#include <algorithm>

#include "multivariate/exports.h"

namespace pral::test {

/// The rows of a kind.
inline std::vector<std::vector<std::string>> known(const std::string& kind) {
    auto rows = table("reference/multivariate.tsv");
    std::erase_if(rows, [&](const auto& row) { return row[0] != kind; });
    EXPECT_FALSE(rows.empty()) << kind;
    return rows;
}

/// `count` vectors of k elements, one call each.
inline Values sampled(const std::string& name, const std::string& arguments, std::size_t k, std::size_t count,
                      unsigned seed) {
    const Written written(arguments);
    Values samples(k * count);
    PralSetRandomSeed(seed);
    for (std::size_t i = 0; i < count; ++i) {
        EXPECT_TRUE(kVectorFunctions.at(name).plain(&samples[i * k], static_cast<int>(k), written.arguments))
            << name << PralCoreError();
    }
    return samples;
}

/// Coordinate j of samples of d coordinates.
inline Values coordinate(const Values& samples, std::size_t d, std::size_t j) {
    Values values;
    for (std::size_t i = j; i < samples.size(); i += d) values.push_back(samples[i]);
    return values;
}

/// Kolmogorov's distance from the uniform distribution, against the bound of Dvoretzky, Kiefer, Wolfowitz and Massart
/// at a level of 1e-6.
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

/// The share of samples with the second coordinate beyond `q` among those with the first, below it or above it,
/// against the probability p: within five standard deviations and three samples.
inline void expect_closeness(const Values& x, const Values& y, double q, bool below, double p,
                             const std::string& what) {
    double first = 0, both = 0;
    for (std::size_t i = 0; i < x.size(); ++i) {
        const auto beyond = [=](double value) { return below ? value < q : value > q; };
        first += beyond(x[i]);
        both += beyond(x[i]) && beyond(y[i]);
    }
    EXPECT_NEAR(both / first, p, 5 * std::sqrt(std::fabs(p * (1 - p)) / first) + 3 / first) << what << below;
}

inline double mean_of(const Values& x) {
    double sum = 0;
    for (const double value : x) sum += value;
    return sum / static_cast<double>(x.size());
}

inline double covariance_of(const Values& x, const Values& y) {
    const double mx = mean_of(x), my = mean_of(y);
    double sum = 0;
    for (std::size_t i = 0; i < x.size(); ++i) sum += (x[i] - mx) * (y[i] - my);
    return sum / static_cast<double>(x.size());
}

}  // namespace pral::test
