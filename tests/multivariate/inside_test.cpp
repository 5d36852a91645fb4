// Samplers and densities as other parts of the library use them: their draws come from the stream that they are given and
// from no other, and their mathematics is that of textbooks where the exports' is not.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <functional>
#include <numeric>
#include <vector>

#include "classic/stream.h"
#include "distributions/discrete/binomial.h"
#include "distributions/discrete/negative_binomial.h"
#include "multivariate/copula_fits.h"
#include "multivariate/count_samplers.h"
#include "multivariate/densities.h"
#include "multivariate/dirichlet.h"

namespace {

using namespace pral::multivariate;
using pral::RandomStream;
using Values = std::vector<double>;

TEST(Inside, DrawsComeFromTheStreamGiven) {
    CovarianceFactor factor;
    std::array<double, 4> correlation = {1, 0.5, 0.5, 1};
    ASSERT_EQ(factor.prepare(correlation.data(), 2), nullptr);
    const Values p = {0.2, 0.3, 0.5}, sizes = {20, 30, 50}, quota = {2, 3, 1}, shapes = {0.5, 1, 2.5};
    using Sampler = std::function<pral::Message(Values&, RandomStream&)>;
    const Sampler samplers[] = {
        [&](Values& out, RandomStream& s) { return StudentCopula(5, factor).sample_pair(out.data(), s); },
        [&](Values& out, RandomStream& s) { return StudentCopula(5, factor).sample(1, out.data(), s); },
        [&](Values& out, RandomStream& s) { return share_by_probability(9, p, kNoGroup, out.data(), s); },
        [&](Values& out, RandomStream& s) { return share_by_size(9, sizes, kNoGroup, out.data(), s); },
        [&](Values& out, RandomStream& s) { return wait_for_trials(quota, p, out, s); },
        [&](Values& out, RandomStream& s) { return wait_for_urn(quota, sizes, out, s); },
        [&](Values& out, RandomStream& s) { return sample_dirichlet(shapes, out.data(), s); },
        [&](Values&, RandomStream& s) {
            EllipticalFit fit = {5, {1, 0.5, 0.5, 1}};
            return refit_elliptical(fit, 2, 20, s);
        }};
    pral::random_stream().seed(3);
    const double first = pral::random_stream().uniform();
    pral::random_stream().seed(3);
    for (std::size_t i = 0; i < std::size(samplers); ++i) {
        RandomStream a, b;
        a.seed(11);
        b.seed(11);
        Values x(3), y(3);
        ASSERT_EQ(samplers[i](x, a), nullptr) << i;
        ASSERT_EQ(samplers[i](y, b), nullptr) << i;
        EXPECT_EQ(x, y) << i;
        EXPECT_EQ(a.uniform(), b.uniform()) << i;
    }
    EXPECT_EQ(pral::random_stream().uniform(), first);
}

/// Large counts are the least ones that reach the percentile, where classic calls approximate them.
TEST(Inside, LargeCountsAreExact) {
    const Values p = {0.1, 0.9}, quota = {8334, 0}, rare = {0.25, 0.75};
    const auto expect_least = [](const auto& d, double k, double u) {
        EXPECT_GE(d.cumulative(k), u);
        EXPECT_LT(d.cumulative(k - 1), u);
    };
    RandomStream stream, same;
    stream.seed(5);
    same.seed(5);
    for (int i = 0; i < 100; ++i) {
        Values out(2);
        ASSERT_EQ(share_by_probability(1111112, p, kNoGroup, out.data(), stream), nullptr);
        expect_least(pral::Binomial(1111112, 0.1), out[0], same.uniform());
        same.uniform();  // what is left goes to the last group
        ASSERT_EQ(wait_for_trials(quota, rare, out, stream), nullptr);
        expect_least(pral::NegBin(8334, 0.25), out[1], same.uniform());
        same.uniform();
    }
}

/// Refused draws name the family's objection; nothing else tells of them.
TEST(Inside, ObjectionsAreReturned) {
    RandomStream stream;
    Values out(2);
    EXPECT_STREQ(sample_dirichlet(Values{1, -1}, out.data(), stream), "Error: alpha must be >= 0");
    EXPECT_EQ(sample_dirichlet(Values{1e-300, 1e-300}, out.data(), stream), kNoProportions);
}

/// Logarithms of densities by SciPy.
TEST(Inside, NormalDensitiesHaveTheConstantOfTheirDimension) {
    const Values two = {4, 1, 1, 2}, three = {4, 1, 0, 1, 2, 0.5, 0, 0.5, 1};
    const auto at_two = quadratic_form(Values{1, -1}, Values{0, 0}, two.data());
    const auto at_three = quadratic_form(Values{1, -1, 0.5}, Values{0, 0, 0}, three.data());
    EXPECT_NEAR(log_normal(*at_two, 2), -3.3822607123655732, 1e-14);
    EXPECT_NEAR(log_normal(*at_three, 3), -4.6526953342280475, 1e-14);
}

/// Means and variances of the proportions, within five standard deviations.
TEST(Inside, DirichletSamplesHaveTheirMoments) {
    const Values shapes = {0.5, 1, 2.5};
    constexpr int kCount = 20000;
    RandomStream stream;
    stream.seed(5);
    Values sums(3), squares(3), x(3);
    for (int i = 0; i < kCount; ++i) {
        ASSERT_EQ(sample_dirichlet(shapes, x.data(), stream), nullptr);
        for (std::size_t j = 0; j < 3; ++j) sums[j] += x[j], squares[j] += x[j] * x[j];
    }
    for (std::size_t j = 0; j < 3; ++j) {
        const double mean = shapes[j] / 4, variance = mean * (1 - mean) / 5, found = sums[j] / kCount;
        EXPECT_NEAR(found, mean, 5 * std::sqrt(variance / kCount)) << j;
        EXPECT_NEAR(squares[j] / kCount - found * found, variance, 0.05 * variance) << j;
    }
}

/// Refitted, a replicate gives the parameter of its copula: within five standard deviations of tau, 2/3 sqrt(1/n) at most.
TEST(Inside, ReplicatesAreOfTheCopulaThatIsFitted) {
    constexpr int kCount = 4000;
    RandomStream stream;
    stream.seed(8);
    const double tau = 5 * 2 / 3.0 / std::sqrt(kCount);
    EXPECT_NEAR(Frank::tau(fit_all<Frank>(replicate<Frank>(8, 2, kCount, stream))), Frank::tau(8), tau);
    EXPECT_NEAR(replicate<Clayton>(2, 2, kCount, stream).mean_tau(), 0.5, tau);
    EXPECT_NEAR(replicate<Gumbel>(2, 2, kCount, stream).mean_tau(), 0.5, tau);
    EXPECT_NEAR(replicate<Clayton>(PairFit{2, 3}, kCount, stream).tau(0, 1), -0.5, tau);
}

}  // namespace
