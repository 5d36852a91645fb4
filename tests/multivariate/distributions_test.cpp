// Multivariate distributions: probabilities against exact arithmetic, samples by their moments and identities, messages.
#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "boundary/automation.h"
#include "boundary/core_api.h"
#include "multivariate/sample_statistics.h"
#include "support/accuracy.h"
#include "support/table.h"

namespace {

using pral::test::Values;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

int size_of(const Values& values) { return static_cast<int>(values.size()); }

/// A joint probability, or its base-10 logarithm.
bool probability(const std::string& function, const Values& a, const Values& b, Values cov, bool log,
                 double* out) {
    const int n = size_of(a), m = size_of(b);
    if (function == "normal") {
        const auto f = log ? PralMultiNormalProb10_Core : PralMultiNormalProb_Core;
        return f(out, a.data(), n, b.data(), m, cov.data(), size_of(cov));
    }
    auto f = log ? PralMultinomialProb10_Core : PralMultinomialProb_Core;
    if (function == "dirichlet") f = log ? PralDirichletProb10_Core : PralDirichletProb_Core;
    if (function == "hypergeometric") f = log ? PralMultiHypergeoProb10_Core : PralMultiHypergeoProb_Core;
    return f(out, a.data(), n, b.data(), m);
}

TEST(Distributions, ProbabilitiesAgreeWithExactArithmetic) {
    pral::test::Accuracy accuracy;
    for (const auto& row : pral::test::table("reference/multivariate.tsv")) {
        if (row[0] == "frank_tau") continue;
        const std::size_t bar = row[2].find('|');
        const Values first = pral::test::numbers(row[1]), second = pral::test::numbers(row[2].substr(0, bar));
        const Values cov = bar == std::string::npos ? Values{} : pral::test::numbers(row[2].substr(bar + 1));
        double plain = -7, log = -7;
        ASSERT_TRUE(probability(row[0], first, second, cov, false, &plain)) << PralCoreError();
        ASSERT_TRUE(probability(row[0], first, second, cov, true, &log));
        const std::string place = row[0] + " " + row[1] + " " + row[2];
        accuracy.record(row[0], pral::test::relative_error(plain, pral::test::number(row, 3)), place);
        accuracy.record(row[0] + " log10", pral::test::scaled_error(log, pral::test::number(row, 4)), place);
    }
    accuracy.report(1e-12);
}

/// Draws `count` vectors of k elements.
Values draw(const std::function<bool(double*)>& sampler, int k, int count) {
    Values samples(k * count);
    PralSetRandomSeed(11);
    for (int i = 0; i < count; ++i) EXPECT_TRUE(sampler(&samples[i * k])) << PralCoreError();
    return samples;
}

/// Means and covariances of samples against the distribution's, each within five standard errors.
TEST(Distributions, SamplesHaveTheirMoments) {
    const int count = 20000;
    Values cov = {4, 0, 0, 1, 2, 0, -1, 0.5, 1}, singular = {1, 1, 0.5, 1, 1, 0.5, 0.5, 0.5, 1};
    const Values mu = {1, -2, 3}, p = {0.5, 0.2, 0.3}, alpha = {0, 1.5, 4}, D = {30, 0, 50, 20};
    const struct {
        const char* name;
        std::function<bool(double*)> sampler;
        Values mean, covariance;
    } rows[] = {
        {"normal",
         [&](double* o) { return PralMultiNormal_Core(o, 3, mu.data(), 3, cov.data(), 9); },
         mu,
         {4, 1, -1, 1, 2, 0.5, -1, 0.5, 1}},
        {"singular normal",
         [&](double* o) { return PralMultiNormal_Core(o, 3, mu.data(), 3, singular.data(), 9); }, mu,
         singular},
        {"multinomial",
         [&](double* o) { return PralMultinomial_Core(o, 3, 40, p.data(), 3); },
         {20, 8, 12},
         {10, -4, -6, -4, 6.4, -2.4, -6, -2.4, 8.4}},
        // Shapes 1, 2.5 and 5, whose sum is 8.5.
        {"dirichlet",
         [&](double* o) { return PralDirichlet_Core(o, 3, alpha.data(), 3); },
         {1 / 8.5, 2.5 / 8.5, 5 / 8.5},
         {7.5 / 686.375, -2.5 / 686.375, -5 / 686.375, -2.5 / 686.375, 15 / 686.375, -12.5 / 686.375,
          -5 / 686.375, -12.5 / 686.375, 17.5 / 686.375}},
        {"hypergeometric",
         [&](double* o) { return PralMultiHypergeo_Core(o, 0, 25, D.data(), 4); },
         {7.5, 0, 12.5, 5},
         // n D_i/M (1 - D_i/M) (M - n)/(M - 1)
         {25 * 0.21 * 75 / 99, 0, -25 * 0.15 * 75 / 99, -25 * 0.06 * 75 / 99, 0, 0, 0, 0,
          -25 * 0.15 * 75 / 99, 0, 25 * 0.25 * 75 / 99, -25 * 0.1 * 75 / 99, -25 * 0.06 * 75 / 99, 0,
          -25 * 0.1 * 75 / 99, 25 * 0.16 * 75 / 99}},
    };
    for (const auto& row : rows) {
        const int k = size_of(row.mean);
        const Values samples = draw(row.sampler, k, count);
        for (int i = 0; i < k; ++i) {
            const Values x = pral::test::coordinate(samples, k, i);
            const double variance = row.covariance[i * k + i];
            EXPECT_NEAR(pral::test::mean(x), row.mean[i], 5 * std::sqrt(variance / count) + 1e-12)
                << row.name << i;
            for (int j = 0; j <= i; ++j) {
                const double both = row.covariance[i * k + j], other = row.covariance[j * k + j];
                const double error = std::sqrt((variance * other * 1.5 + both * both) / count);
                EXPECT_NEAR(pral::test::covariance(x, pral::test::coordinate(samples, k, j)), both,
                            5 * error + 1e-12)
                    << row.name << i << j;
            }
        }
    }
}

/// Waiting until every quota is met: the totals against the exact expectation, which is that of the maximum of waiting times.
TEST(Distributions, WaitingTimesEndWithTheLastQuota) {
    const int count = 20000;
    const Values s = {1, 1, 1}, p = {0.5, 0.25, 0.25}, D = {4, 2, 3}, quota = {2, 0, 1};
    double total = 0;
    const auto trials = [&](double* o) { return PralNegMultinomial_Core(o, s.data(), 3, p.data(), 3); };
    const auto urn = [&](double* o) { return PralInvMultiHypergeo_Core(o, quota.data(), 3, D.data(), 3); };
    // Collecting all three kinds: inclusion and exclusion over 1/p, the sums of pairs and 1. Its variance is below 30.
    EXPECT_NEAR(pral::test::mean(draw(trials, 1, count)), 2 + 4 + 4 - 1 / 0.75 - 1 / 0.75 - 2 + 1,
                5 * std::sqrt(30.0 / count));
    // E T = sum over t of P(not met after t draws) = sum of P(X_0 < 2 or X_2 < 1), by counting.
    const auto choose = [](int n, int k) {
        double ways = k < 0 || k > n ? 0 : 1;
        for (int i = 0; i < k && ways > 0; ++i) ways *= static_cast<double>(n - i) / (i + 1);
        return ways;
    };
    double expected = 0;
    for (int t = 0; t <= 9; ++t) {
        double met = 0;
        for (int a = 2; a <= 4; ++a)
            for (int c = 1; c <= 3; ++c) met += choose(4, a) * choose(3, c) * choose(2, t - a - c);
        expected += 1 - met / choose(9, t);
    }
    EXPECT_NEAR(pral::test::mean(draw(urn, 1, count)), expected, 5 * std::sqrt(4.0 / count));

    // The vector forms make the same draws and tell what exceeds the quotas.
    double excess[3];
    for (unsigned seed = 1; seed < 200; ++seed) {
        for (const bool of_urn : {true, false}) {
            PralSetRandomSeed(seed);
            ASSERT_TRUE(of_urn ? urn(&total) : trials(&total));
            PralSetRandomSeed(seed);
            ASSERT_TRUE(of_urn ? PralInvMultiHypergeo2_Core(excess, 3, quota.data(), 3, D.data(), 3)
                               : PralNegMultinomial2_Core(excess, 3, s.data(), 3, p.data(), 3));
            EXPECT_EQ(excess[0] + excess[1] + excess[2], total - 3);
            for (int i = 0; i < 3; ++i)
                ASSERT_TRUE(excess[i] >= 0 && (!of_urn || excess[i] + quota[i] <= D[i]));
            EXPECT_TRUE(excess[0] * excess[1] * excess[2] == 0 ||
                        (of_urn && excess[1] > 0));  // somebody was last
        }
    }
}

TEST(Distributions, SpecialVectors) {
    Values zero(4), mu = {3, -1}, out(4, -7), lower = {1, 0, 0.5, 1}, bad = {1, 0, 2, 1};
    double next = 0;
    PralSetRandomSeed(5489);
    ASSERT_TRUE(PralMultiNormal_Core(out.data(), 4, mu.data(), 2, zero.data(), 4));
    EXPECT_EQ(out, (Values{3, -1, -7, -7}));
    ASSERT_TRUE(PralMultiNormal_Core(out.data(), 2, mu.data(), 2, nullptr, 0));
    ASSERT_TRUE(PralUniform_Core(&next, 0, 1, nullptr, nullptr, nullptr, nullptr, nullptr));
    EXPECT_EQ(next, (3499211612.0 + 0.5) * 0x1p-32);  // nothing had been drawn
    ASSERT_TRUE(PralMultiNormal_Core(out.data(), 2, mu.data(), 2, lower.data(), 4));
    EXPECT_EQ(lower, (Values{1, 0.5, 0.5, 1}));
    EXPECT_FALSE(PralMultiNormal_Core(out.data(), 2, mu.data(), 2, bad.data(), 4));
    EXPECT_EQ(bad, (Values{1, 2, 2, 1}));  // also when the call fails

    const Values half = {0.5, 0.5 + 1e-16}, D = {5, 0, 7}, unequal = {1, 0, 0};
    ASSERT_TRUE(PralMultinomial_Core(out.data(), 4, 0, half.data(), 2));
    EXPECT_EQ(Values(out.begin(), out.begin() + 2), Values(2, 0));
    ASSERT_TRUE(PralMultinomial_Core(out.data(), 4, 1e15, half.data(), 2));
    EXPECT_EQ(out[0] + out[1], 1e15);
    ASSERT_TRUE(PralMultinomial_Core(out.data(), 4, 9, unequal.data(), 3));
    EXPECT_EQ(Values(out.begin(), out.begin() + 3), (Values{9, 0, 0}));
    ASSERT_TRUE(PralMultiHypergeo_Core(out.data(), 0, 12, D.data(), 3));
    EXPECT_EQ(Values(out.begin(), out.begin() + 3), D);
    const Values huge = {1e308, 1e308, 1e308};
    ASSERT_TRUE(PralDirichlet_Core(out.data(), 3, huge.data(), 3));
    for (int i = 0; i < 3; ++i) EXPECT_NEAR(out[i], 1 / 3.0, 1e-3);
}

/// A call of a row of refusals.tsv: two vectors, a number (the size of the output, or n) and, of the normal, a covariance
/// matrix.
bool call(const std::string& function, const Values& a, const Values& b, double number, Values cov) {
    Values out(8);
    double one = 0;
    const int n = size_of(a), m = size_of(b), size = static_cast<int>(number);
    if (function == "MultiNormal")
        return PralMultiNormal_Core(out.data(), size, a.data(), n, cov.data(), size_of(cov));
    if (function == "Multinomial") return PralMultinomial_Core(out.data(), size, b[0], a.data(), n);
    if (function == "Dirichlet") return PralDirichlet_Core(out.data(), size, a.data(), n);
    if (function == "MultiHypergeo") return PralMultiHypergeo_Core(out.data(), 0, number, a.data(), n);
    if (function == "InvMultiHypergeo") return PralInvMultiHypergeo_Core(&one, a.data(), n, b.data(), m);
    if (function == "InvMultiHypergeo2")
        return PralInvMultiHypergeo2_Core(out.data(), size, a.data(), n, b.data(), m);
    if (function == "NegMultinomial2")
        return PralNegMultinomial2_Core(out.data(), size, a.data(), n, b.data(), m);
    return probability(function, a, b, cov, false, &one);
}

TEST(Distributions, FailuresTellWhyInTheirOrder) {
    for (const auto& row : pral::test::table("reference/multivariate_refusals.tsv")) {
        const auto numbers = [&](std::size_t column) { return pral::test::numbers(row[column]); };
        EXPECT_FALSE(call(row[0], numbers(1), numbers(2), pral::test::number(row, 3), numbers(4))) << row[5];
        EXPECT_EQ(PralCoreError(), row[5].substr(0, row[5].find('|')));
    }
    Values out(3, -7), p = {0.5, 0.6};
    EXPECT_FALSE(PralMultinomial_Core(out.data(), 3, 1, p.data(), 2));
    EXPECT_EQ(out, Values(3, 0));
    EXPECT_FALSE(PralMultinomial_Core(out.data(), 3, 1, nullptr, 2));
    EXPECT_STREQ(PralCoreError(), "Error: p must not be null");
}

TEST(Distributions, AutomationArraysGetTheSameVectors) {
    Values mu = {1, 2}, cov = {1, 0.5, 0.5, 1}, p = {0.25, 0.75}, D = {5, 6}, s = {2, 1};
    const std::pair<std::function<bool(double*)>, std::function<bool(SAFEARRAY**)>> rows[] = {
        {[&](double* o) { return PralMultiNormal_Core(o, 2, mu.data(), 2, cov.data(), 4); },
         [&](SAFEARRAY** o) { return PralMultiNormalVB_Core(o, mu.data(), 2, cov.data(), 4); }},
        {[&](double* o) { return PralMultinomial_Core(o, 2, 9, p.data(), 2); },
         [&](SAFEARRAY** o) { return PralMultinomialVB_Core(o, 9, p.data(), 2); }},
        {[&](double* o) { return PralDirichlet_Core(o, 2, mu.data(), 2); },
         [&](SAFEARRAY** o) { return PralDirichletVB_Core(o, mu.data(), 2); }},
        {[&](double* o) { return PralMultiHypergeo_Core(o, 2, 4, D.data(), 2); },
         [&](SAFEARRAY** o) { return PralMultiHypergeoVB_Core(o, 4, D.data(), 2); }},
        {[&](double* o) { return PralInvMultiHypergeo2_Core(o, 2, s.data(), 2, D.data(), 2); },
         [&](SAFEARRAY** o) { return PralInvMultiHypergeo2VB_Core(o, s.data(), 2, D.data(), 2); }},
        {[&](double* o) { return PralNegMultinomial2_Core(o, 2, s.data(), 2, p.data(), 2); },
         [&](SAFEARRAY** o) { return PralNegMultinomial2VB_Core(o, s.data(), 2, p.data(), 2); }},
    };
    SAFEARRAY *array = SafeArrayCreateVector(VT_R8, 0, 2), *small = SafeArrayCreateVector(VT_R8, 0, 1);
    for (const auto& [plain, automation] : rows) {
        double out[2] = {};
        PralSetRandomSeed(6);
        ASSERT_TRUE(plain(out));
        PralSetRandomSeed(6);
        ASSERT_TRUE(automation(&array));
        EXPECT_EQ(static_cast<const double*>(array->pvData)[0], out[0]);
        EXPECT_EQ(static_cast<const double*>(array->pvData)[1], out[1]);
        EXPECT_FALSE(automation(&small));  // without writing beyond it
    }
    SafeArrayDestroy(array);
    SafeArrayDestroy(small);
}

TEST(Distributions, HostileArgumentsComeToAnEnd) {
    const double specials[] = {0, 1, -1, 0.5, 1e300, -1e300, 5e-324, DBL_MAX, kNaN, kInf, 0x1p53, 1e15, 7};
    for (const double a : specials) {
        for (const double b : specials) {
            Values out(3), first = {a, b, 1}, second = {b, 2, a}, cov = {a, b, 0, b, 1, a, 0, a, b};
            const Values p = {0.5, 0.25, 0.25};
            double one = 0;
            PralMultiNormal_Core(out.data(), 3, first.data(), 3, cov.data(), 9);
            PralMultinomial_Core(out.data(), 3, a, p.data(), 3);
            PralMultinomial_Core(out.data(), 3, a, Values{1, b, 0}.data(), 3);
            PralDirichlet_Core(out.data(), 3, first.data(), 3);
            PralMultiHypergeo_Core(out.data(), 3, a, second.data(), 3);
            PralInvMultiHypergeo2_Core(out.data(), 3, first.data(), 3, second.data(), 3);
            PralNegMultinomial2_Core(out.data(), 3, first.data(), 3, p.data(), 3);
            PralNegMultinomial_Core(&one, first.data(), 3, Values{1, 0, 0}.data(), 3);
            for (const char* function : {"normal", "multinomial", "dirichlet", "hypergeometric"}) {
                probability(function, first, function[0] == 'm' ? p : second, cov, true, &one);
                probability(function, p, second, cov, false, &one);
            }
        }
    }
    EXPECT_TRUE(PralDirichlet_Core(nullptr, 0, nullptr, 0));
    EXPECT_TRUE(PralMultiHypergeo_Core(nullptr, 0, 0, nullptr, -1));
}

}  // namespace
