// Samples, permutations and bootstrap replicates: which draws they make, and what they make of them.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <random>
#include <vector>

#include "classic/automation.h"
#include "classic/core_api.h"
#include "classic/runtime_random.h"

namespace {

using Values = std::vector<double>;

/// The resample that the bootstrap draws next after seeding with `seed`.
Values next_resample(const Values& data, unsigned seed) {
    std::mt19937 words(seed);
    Values drawn(data.size());
    for (double& value : drawn) {
        value = data[static_cast<std::size_t>(data.size() * ((words() + 0.5) * 2.3283064365386963e-10))];
    }
    return drawn;
}

TEST(Resampling, RuntimeGeneratorIsThatOfWindows) {
    pral::classic::RuntimeRandom random;
    for (const int expected : {41, 18467, 6334, 26500, 19169, 15724, 11478, 29358, 26962, 24464}) {
        EXPECT_EQ(random.next(), expected);
    }
    Values counts(5), data = {0, 1, 2, 3, 4}, drawn(200000);
    ASSERT_TRUE(PralSample_Core(drawn.data(), static_cast<int>(drawn.size()), data.data(), 5));
    for (const double value : drawn) ++counts.at(static_cast<std::size_t>(value));
    for (int i = 0; i < 5; ++i) {  // five standard deviations
        EXPECT_NEAR(counts[i], drawn.size() * (i % 4 == 0 ? 0.125 : 0.25), 5 * std::sqrt(200000 * 0.19)) << i;
    }
    ASSERT_TRUE(PralSample_Core(drawn.data(), 100, data.data() + 3, 1));
    EXPECT_TRUE(std::all_of(drawn.begin(), drawn.begin() + 100, [](double value) { return value == 3; }));
    EXPECT_TRUE(PralSample_Core(drawn.data(), -1, data.data(), 0));
    EXPECT_FALSE(PralSample_Core(drawn.data(), 1, data.data(), 0));
    EXPECT_STREQ(PralCoreError(), "Error: the {data} array is empty");
}

TEST(Resampling, ShuffleOrdersTheDraws) {
    const int n = 1000;
    Values out(n);
    std::mt19937 words(77);
    std::vector<std::mt19937::result_type> draws(n);
    for (auto& draw : draws) draw = words();
    PralSetRandomSeed(77);
    ASSERT_TRUE(PralShuffle_Core(out.data(), n));
    for (int k = 1; k < n; ++k) ASSERT_LE(draws.at(std::lround(out[k - 1])), draws.at(std::lround(out[k])));
    std::sort(out.begin(), out.end());
    for (int k = 0; k < n; ++k) ASSERT_EQ(out[k], k);
}

/// A replicate takes a word for each of its observations, whatever they have; a permutation one for each place; a step of a
/// chain one for each state that individuals who are left may move to, but the last.
TEST(Resampling, CallsTakeAsManyWordsAsTheManualSays) {
    const Values x = {1.5, -2, 8, 3.25, 0.5, 11}, y = {3, 1, 4, 1, 5, 9};
    const Values table = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
    const Values population = {1000, 0, 500}, moving = {0.5, 0.3, 0.2, 0.1, 0.2, 0.7, 0.3, 0.3, 0.4};
    Values out(40), P = moving;
    double m[4];
    const struct {
        std::function<bool()> call;
        unsigned words;
    } rows[] = {
        {[&] { return PralNBootMean_Core(out.data(), x.data(), 6); }, 6},
        {[&] { return PralNBootStdev_Core(out.data(), x.data(), 6); }, 6},
        {[&] { return PralNBootVar_Core(out.data(), x.data(), 6); }, 6},
        {[&] { return PralNBootSkew_Core(out.data(), x.data(), 6); }, 6},
        {[&] { return PralNBootKurt_Core(out.data(), x.data(), 6); }, 6},
        {[&] { return PralNBootCofV_Core(out.data(), x.data(), 6); }, 6},
        {[&] { return PralNBootPercentile_Core(out.data(), x.data(), 6, 0.3); }, 6},
        {[&] { return PralNBootMoments_Core(x.data(), 6, &m[0], &m[1], &m[2], &m[3]); }, 6},
        {[&] { return PralNBootPaired_Core(out.data(), 8, x.data(), y.data(), 6); }, 4},
        {[&] { return PralNBootSeries_Core(out.data(), 9, x.data(), 6); }, 9},
        {[&] { return PralSpearmanU_Core(out.data(), x.data(), y.data(), 6); }, 6},
        {[&] { return PralCorrMatrixU_Core(out.data(), table.data(), 4, 3, 0); }, 4},
        {[&] { return PralCorrMatrixU_Core(out.data(), table.data(), 4, 3, 1); }, 3},
        {[&] { return PralShuffle_Core(out.data(), 17); }, 17},
        {[&] { return PralMarkovSample_Core(out.data(), 3, population.data(), P.data(), 3, 3, 1); }, 4},
        {[&] { return PralSample_Core(out.data(), 5, x.data(), 6); }, 0},  // another generator
        {[&] { return PralSpearman_Core(out.data(), x.data(), y.data(), 6); }, 0},
    };
    for (const auto& row : rows) {
        double next = 0, expected = 0;
        PralSetRandomSeed(31);
        for (unsigned i = 0; i <= row.words; ++i)
            ASSERT_TRUE(PralUniform_Core(&expected, 0, 1, nullptr, nullptr, nullptr, nullptr, nullptr));
        PralSetRandomSeed(31);
        ASSERT_TRUE(row.call()) << PralCoreError();
        ASSERT_TRUE(PralUniform_Core(&next, 0, 1, nullptr, nullptr, nullptr, nullptr, nullptr));
        EXPECT_EQ(next, expected) << "row " << &row - rows;
    }
}

TEST(Resampling, BootstrapStatisticsAreThoseOfTheResample) {
    const Values data = {1.5, -2, 8, 3.25, 0.5, 11};
    const int n = static_cast<int>(data.size());
    const struct {
        bool (*boot)(double*, const double*, int);
        bool (*statistic)(double*, const double*, uint64_t);
    } rows[] = {{PralNBootMean_Core, PralMean_Core},
                {PralNBootStdev_Core, PralStDev_Core},
                {PralNBootVar_Core, PralVariance_Core},
                {PralNBootSkew_Core, PralSkewness_Core},
                {PralNBootKurt_Core, PralKurtosis_Core}};
    const Values drawn = next_resample(data, 6);
    for (const auto& row : rows) {
        double found = 0, expected = 0;
        PralSetRandomSeed(6);
        ASSERT_TRUE(row.boot(&found, data.data(), n));
        ASSERT_TRUE(row.statistic(&expected, drawn.data(), drawn.size()));
        EXPECT_EQ(found, expected);
    }
    double cofv = 0, mean = 0, stdev = 0, moments[4];
    ASSERT_TRUE(PralMean_Core(&mean, drawn.data(), drawn.size()));
    ASSERT_TRUE(PralStDev_Core(&stdev, drawn.data(), drawn.size()));
    PralSetRandomSeed(6);
    ASSERT_TRUE(PralNBootCofV_Core(&cofv, data.data(), n));
    EXPECT_EQ(cofv, stdev / mean);
    PralSetRandomSeed(6);
    ASSERT_TRUE(PralNBootMoments_Core(data.data(), n, &moments[0], &moments[1], &moments[2], &moments[3]));
    EXPECT_EQ(moments[0], mean);
    EXPECT_EQ(std::sqrt(moments[1]), stdev);

    Values sorted = drawn;
    std::sort(sorted.begin(), sorted.end());
    for (const double p : {0.0, 0.2, 0.5, 0.83, 1.0, -0.1, 1.5, std::nan("")}) {
        double found = -7;
        PralSetRandomSeed(6);
        ASSERT_TRUE(PralNBootPercentile_Core(&found, data.data(), n, p));
        if (!(p >= 0 && p <= 1)) {
            EXPECT_EQ(found, 0);
        } else {
            const double place = 5 * p, f = std::floor(place);
            const double next = sorted[static_cast<int>(std::ceil(place))], at = sorted[static_cast<int>(f)];
            EXPECT_NEAR(found, at + (place - f) * (next - at), 1e-14) << p;
        }
    }
}

TEST(Resampling, BootstrapOfTooFewValuesSucceedsAndLeavesTheOutput) {
    const double one = 4;
    const struct {
        std::function<bool(double*, int)> boot;
        double of_none, of_one;  // -7: left as it was
    } rows[] = {
        {[&](double* out, int n) { return PralNBootMean_Core(out, &one, n); }, -7, 4},
        {[&](double* out, int n) { return PralNBootPercentile_Core(out, &one, n, 0.3); }, -7, 4},
        {[&](double* out, int n) { return PralNBootVar_Core(out, &one, n); }, -7, -7},
        {[&](double* out, int n) { return PralNBootSkew_Core(out, &one, n); }, -7, -7},
        {[&](double* out, int n) { return PralNBootKurt_Core(out, &one, n); }, -7, -7},
    };
    for (const auto& row : rows) {
        double out[3] = {-7, -7, -7};
        EXPECT_TRUE(row.boot(&out[0], 0) && row.boot(&out[1], 1) && row.boot(&out[2], -5));
        EXPECT_EQ(out[0], row.of_none);
        EXPECT_EQ(out[1], row.of_one);
        EXPECT_EQ(out[2], row.of_none);
    }
    double m[4] = {7, 7, 7, 7};
    EXPECT_FALSE(PralNBootMoments_Core(&one, 0, &m[0], &m[1], &m[2], &m[3]));
    EXPECT_STREQ(PralCoreError(), "Error: the {data} array is empty");
    EXPECT_EQ(Values(m, m + 4), Values(4, 0.0));
    EXPECT_TRUE(PralNBootMoments_Core(&one, 1, &m[0], &m[1], &m[2], &m[3]));
    EXPECT_EQ(Values(m, m + 4), (Values{4, 0, 0, 0}));
    EXPECT_FALSE(PralNBootMoments_Core(&one, 1, &m[0], nullptr, &m[2], &m[3]));
    EXPECT_STREQ(PralCoreError(), "Error: variance must not be null");
}

TEST(Resampling, WholeReplicatesKeepPairsTogether) {
    const Values x = {1, 2, 3, 4, 5}, y = {10, 20, 30, 40, 50};
    SAFEARRAY* array = SafeArrayCreateVector(VT_R8, 0, 10);
    const double* pairs = static_cast<double*>(array->pvData);
    Values series(5);
    PralSetRandomSeed(8);
    ASSERT_TRUE(PralNBootPairedVB_Core(&array, x.data(), y.data(), 5));
    PralSetRandomSeed(8);
    ASSERT_TRUE(PralNBootSeries_Core(series.data(), 5, x.data(), 5));
    EXPECT_EQ(series, next_resample(x, 8));
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(pairs[2 * i], series[i]);
        EXPECT_EQ(pairs[2 * i + 1], 10 * series[i]);
    }
    SafeArrayDestroy(array);
    EXPECT_FALSE(PralNBootPaired_Core(series.data(), 3, x.data(), y.data(), 5));
    EXPECT_FALSE(PralNBootSeries_Core(series.data(), 3, x.data(), 0));
    EXPECT_STREQ(PralCoreError(), "Error: the {data} array is empty");
    EXPECT_FALSE(PralNBootSeries_Core(series.data(), 3, nullptr, 5));
    EXPECT_STREQ(PralCoreError(), "Error: data must not be null");
}

}  // namespace
