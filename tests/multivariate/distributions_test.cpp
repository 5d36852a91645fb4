// Multivariate distributions: probabilities against exact arithmetic, samples by their moments, waiting times.
#include "multivariate/exports.h"
#include "multivariate/sample_statistics.h"
#include "support/accuracy.h"

namespace {

using namespace pral::test;

TEST(Distributions, ProbabilitiesAgreeWithExactArithmetic) {
    Accuracy accuracy;
    for (const auto& row : known("probability")) {
        const Written written(row[2]);
        for (const bool log : {false, true}) {
            const std::string name = row[1] + (log ? "Prob10" : "Prob");
            double value = -7;
            ASSERT_TRUE(kDistributions.at(name).plain(&value, 1, written.arguments)) << PralCoreError();
            const double expected = number(row, log ? 4 : 3);
            accuracy.record(name, log ? scaled_error(value, expected) : relative_error(value, expected),
                            row[2]);
        }
    }
    // Four times the worst; the plain values are exponentials of sums whose terms are large.
    accuracy.report(6e-14);
}

/// Means and covariances of samples against the distribution's, each within five standard errors.
TEST(Distributions, SamplesHaveTheirMoments) {
    const int count = 20000;
    for (const auto& row : known("moments")) {
        const Values mean = numbers(row[3]), covariance = numbers(row[4]);
        const std::size_t k = mean.size();
        const Values samples = sampled(row[1], row[2], k, count, 11);
        for (std::size_t i = 0; i < k; ++i) {
            const Values x = coordinate(samples, k, i);
            const double variance = covariance[i * k + i];
            EXPECT_NEAR(mean_of(x), mean[i], 5 * std::sqrt(variance / count) + 1e-12) << row[1] << i;
            for (std::size_t j = 0; j <= i; ++j) {
                const double both = covariance[i * k + j], other = covariance[j * k + j];
                // Of a skewed variable's variance: the waiting times have up to 1.5 times that of the normal's.
                const double error = std::sqrt(3 * (variance * other + both * both) / count);
                EXPECT_NEAR(covariance_of(x, coordinate(samples, k, j)), both, 5 * error + 1e-12)
                    << row[1] << i << j;
            }
        }
    }
}

/// The scalar forms make the same draws as the vector forms: quotas and what exceeds them, of which a group has none.
TEST(Distributions, WaitingTimesEndWithTheLastQuota) {
    for (const auto& [name, text] : {std::pair{"NegMultinomial", "[1,1,1] 3 [0.5,0.25,0.25] 3"},
                                     {"InvMultiHypergeo", "[2,1,1] 3 [4,2,3] 3"}}) {
        const Written written(text);
        const Values &quota = written.arrays[0], &sizes = written.arrays[1];
        for (unsigned seed = 1; seed < 200; ++seed) {
            Values total(1), excess(3);
            ASSERT_TRUE(simulate(kDistributions, name, seed, written.arguments, total));
            ASSERT_TRUE(simulate(kDistributions, std::string(name) + "2", seed, written.arguments, excess));
            EXPECT_EQ(excess[0] + excess[1] + excess[2], total[0] - quota[0] - quota[1] - quota[2]);
            EXPECT_EQ(*std::min_element(excess.begin(), excess.end()), 0) << name << seed;
            for (int i = 0; i < 3; ++i) EXPECT_TRUE(sizes[i] < 1 || excess[i] + quota[i] <= sizes[i]);
        }
    }
}

TEST(Distributions, LargeParameters) {
    double out[3];
    const double half[] = {0.5, 0.5}, huge[] = {1e308, 1e308, 1e308};
    ASSERT_TRUE(PralMultinomial_Core(out, 2, 1e15, half, 2));
    EXPECT_EQ(out[0] + out[1], 1e15);
    ASSERT_TRUE(PralDirichlet_Core(out, 3, huge, 3));
    for (const double share : out) EXPECT_NEAR(share, 1 / 3.0, 1e-3);
}

}  // namespace
