// What is special to the counts: cut-offs, zero inflation and truncation, members for fits, uncertainty about parameters.
#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <vector>

#include "classic/core_api.h"

namespace {

TEST(Counts, PercentilesThatAreSpecial) {
    double out, u = 0.99999995;
    ASSERT_TRUE(PralNegBin_Core(&out, 3, 0.5, &u, nullptr, nullptr, nullptr, nullptr));
    EXPECT_EQ(out, DBL_MAX);
    ASSERT_TRUE(PralGeometric_Core(&out, 0.5, &u, nullptr, nullptr, nullptr, nullptr));
    EXPECT_EQ(out, DBL_MAX);
    for (const double percentile : {0.0, 0.5, 1.0}) {  // 0 when p <= 1 - u
        for (const double p : {0.0, 0.5, 1.0}) {
            ASSERT_TRUE(PralBernoulli_Core(&out, p, &percentile, nullptr, nullptr, nullptr, nullptr));
            EXPECT_EQ(out, p <= 1 - percentile ? 0 : 1) << p << ' ' << percentile;
        }
    }
    const struct {
        double pi, u, value;
    } rows[] = {{0.3, 0.5, 0}, {0.3, 0.85, 3}, {0.5, 0.5, 0}, {0.5, 0, 0}, {0.5, 1, DBL_MAX}};
    for (const auto& [pi, percentile, value] : rows) {
        ASSERT_TRUE(PralZIPoisson_Core(&out, 3.5, pi, &percentile, nullptr, nullptr, nullptr, nullptr));
        EXPECT_EQ(out, value) << pi << ' ' << percentile;
    }
    for (const double percentile : {0.0, 0.5, 1.0}) {  // without weight all percentiles are up to 1 - 0
        ASSERT_TRUE(PralZISkellam_Core(&out, 3, 2, 0, &percentile, nullptr, nullptr, nullptr, nullptr));
        EXPECT_EQ(out, 0) << percentile;
    }
    for (const double lowest : {0.0, 1e-300, 0.01}) {
        ASSERT_TRUE(PralZTPoisson_Core(&out, 3.5, &lowest, nullptr, nullptr, nullptr, nullptr));
        EXPECT_EQ(out, 1);
    }
}

TEST(Counts, BoundsOfAnInflatedFamilyRescaleThePercentileAboveItsZeros) {
    constexpr double kRate = 350, kWeight = 0.3, kValues[] = {330, 352}, kPercentiles[] = {0.75, 0.9};
    const int cumulative = 1;
    for (const int mode : {0, 1, 2, 3}) {
        const double low = (mode & 2) != 0 ? kPercentiles[0] : kValues[0];
        const double high = (mode & 1) != 0 ? kPercentiles[1] : kValues[1];
        double at[2], array[400], out;
        for (const int side : {0, 1}) {
            double x = kValues[side];
            ASSERT_TRUE(PralZIPoissonProb_Core(&at[side], &x, 1, kRate, kWeight, &cumulative, nullptr,
                                               nullptr, nullptr, nullptr));
            if ((mode & (2 >> side)) != 0) at[side] = kPercentiles[side];
        }
        for (const double u : {0.0, 0.5, 0.7, 0.85, 0.99}) {
            const double rescaled = at[0] + (u - 0.7) / 0.3 * (at[1] - at[0]);
            double expected = 0;
            if (u > 0.7) {
                ASSERT_TRUE(
                    PralPoisson_Core(&expected, kRate, &rescaled, nullptr, nullptr, nullptr, nullptr));
            }
            ASSERT_TRUE(PralZIPoisson_Core(&out, kRate, kWeight, &u, &mode, &low, &high, nullptr));
            EXPECT_EQ(out, expected) << "mode " << mode << ", percentile " << u;
        }
        PralSetRandomSeed(5);
        ASSERT_TRUE(
            PralZIPoissonArray_Core(array, 400, kRate, kWeight, nullptr, &mode, &low, &high, nullptr));
        PralSetRandomSeed(5);
        for (const double value : array) {
            ASSERT_TRUE(PralZIPoisson_Core(&out, kRate, kWeight, nullptr, &mode, &low, &high, nullptr));
            EXPECT_EQ(value, out);
        }
    }
}

/// Three uniforms a bare call: its own, the Bernoulli's and the base family's, whatever the Bernoulli gave.
TEST(Counts, BareCallOfAnInflatedFamilyDrawsTwice) {
    const double shift = 10;
    double stream[30], out, count;
    PralSetRandomSeed(3);
    ASSERT_TRUE(PralUniformArray_Core(stream, 30, 0, 1, nullptr, nullptr, nullptr, nullptr, nullptr));
    PralSetRandomSeed(3);
    for (int i = 0; i < 30; i += 3) {
        ASSERT_TRUE(PralZIPoisson_Core(&out, 35, 0.6, nullptr, nullptr, nullptr, nullptr, &shift));
        ASSERT_TRUE(PralPoisson_Core(&count, 35, &stream[i + 2], nullptr, nullptr, nullptr, nullptr));
        EXPECT_EQ(out, shift + (0.6 > 1 - stream[i + 1] ? count : 0));
    }
}

TEST(Counts, MembersForFitsTakeRealCounts) {
    double out, x = 3, plain;
    EXPECT_TRUE(PralZIBinomialProb10_Core_for_fit(&out, &x, 1, 10.5, 0.25, 0.5, nullptr, nullptr, nullptr,
                                                  nullptr, nullptr));
    // log10(0.5 C(10.5, 3) 0.25^3 0.75^7.5), mpmath
    EXPECT_NEAR(out, -0.89406991452068307, 1e-14);
    EXPECT_FALSE(
        PralZIBinomialProb10_Core(&out, &x, 1, 10.5, 0.25, 0.5, nullptr, nullptr, nullptr, nullptr, nullptr));
    EXPECT_STREQ(PralCoreError(), "Error: n must be an integer");
    EXPECT_TRUE(
        PralZTNegBinProb_Core_for_fit(&out, &x, 1, 3, 0.25, nullptr, nullptr, nullptr, nullptr, nullptr));
    EXPECT_TRUE(PralZTNegBinProb_Core(&plain, &x, 1, 3, 0.25, nullptr, nullptr, nullptr, nullptr, nullptr));
    EXPECT_EQ(out, plain);
    const double u = 0.9999;
    EXPECT_TRUE(PralZTBinomial_Core_for_fit(&out, 10.5, 0.9, &u, nullptr, nullptr, nullptr, nullptr));
    EXPECT_EQ(out, 10);
}

#define SAME_LIKELIHOOD(X, ...)                                                                            \
    {                                                                                                      \
        double plain, real, x[] = {1, 3, 2, 3}, y[] = {1, 3, 2, 3};                                        \
        EXPECT_TRUE(Pral##X##Prob10_Core(&plain, x, 4, __VA_ARGS__, nullptr, &mode, &low, &high, &shift)); \
        EXPECT_TRUE(                                                                                       \
            Pral##X##Prob10_Core_for_fit(&real, y, 4, __VA_ARGS__, nullptr, &mode, &low, &high, &shift));  \
        EXPECT_EQ(real, plain) << #X;                                                                      \
    }
#define SAME_MEMBERS(X, ...)                                                                           \
    {                                                                                                  \
        double plain, real, x[] = {1, 3}, y[] = {1, 3};                                                \
        const double u = 0.7;                                                                          \
        EXPECT_TRUE(Pral##X##_Core(&plain, __VA_ARGS__, &u, &mode, &low, &high, &shift));              \
        EXPECT_TRUE(Pral##X##_Core_for_fit(&real, __VA_ARGS__, &u, &mode, &low, &high, &shift));       \
        EXPECT_EQ(real, plain) << #X;                                                                  \
        EXPECT_TRUE(Pral##X##Prob_Core(&plain, x, 2, __VA_ARGS__, &mode, &mode, &low, &high, &shift)); \
        EXPECT_TRUE(                                                                                   \
            Pral##X##Prob_Core_for_fit(&real, y, 2, __VA_ARGS__, &mode, &mode, &low, &high, &shift));  \
        EXPECT_EQ(real, plain) << #X;                                                                  \
    }                                                                                                  \
    SAME_LIKELIHOOD(X, __VA_ARGS__)

/// With integers all members for fits are the plain ones, between bounds and shifted, too.
TEST(Counts, MembersForFitsAgreeWithThePlainOnes) {
    const int mode = 1;
    const double low = 0.5, high = 0.999, shift = -1;
    SAME_LIKELIHOOD(Binomial, 9, 0.4)
    SAME_LIKELIHOOD(NegBin, 4, 0.3)
    SAME_LIKELIHOOD(BetaBinomial, 9, 2, 3)
    SAME_LIKELIHOOD(Erlang, 3, 2)
    SAME_LIKELIHOOD(ChiSq, 5)
    SAME_LIKELIHOOD(Chi, 7)
    SAME_LIKELIHOOD(Student, 3)
    SAME_LIKELIHOOD(Student3, 1, 2, 4)
    SAME_LIKELIHOOD(NCF, 3, 8, 1.5)
    SAME_MEMBERS(ZIBinomial, 9, 0.4, 0.8)
    SAME_MEMBERS(ZTBinomial, 9, 0.4)
    SAME_MEMBERS(ZINegBin, 4, 0.3, 0.8)
    SAME_MEMBERS(ZTNegBin, 4, 0.3)
    SAME_MEMBERS(ZIBetaBinomial, 9, 2, 3, 0.8)
    SAME_MEMBERS(ZTBetaBinomial, 9, 2, 3)
}

/// A percentile is no draw, its absence is one; whether the process exists is decided by one more.
TEST(Counts, UncertaintyCountsItsDraws) {
    const double u = 0.25;
    for (const double* percentile : {static_cast<const double*>(nullptr), &u}) {
        for (const int exists : {0, 1}) {
            for (const auto call : {PralBinomialP_Core, PralPoissonLambda_Core}) {
                double stream[3], out, next;
                PralSetRandomSeed(11);
                ASSERT_TRUE(
                    PralUniformArray_Core(stream, 3, 0, 1, nullptr, nullptr, nullptr, nullptr, nullptr));
                PralSetRandomSeed(11);
                ASSERT_TRUE(call(&out, 0, 9, exists, percentile));
                ASSERT_TRUE(PralUniform_Core(&next, 0, 1, nullptr, nullptr, nullptr, nullptr, nullptr));
                EXPECT_EQ(next, stream[(percentile == nullptr ? 1 : 0) + (exists != 0 ? 0 : 1)]);
            }
        }
    }
}

/// Both sides of each switch from the exact quantile to a normal or gamma variable. Values of exact sums and of the told
/// approximations, mpmath; the last percentile of NegBin is 0.9999999.
TEST(Counts, ShortCutsBeginWhereTheManualSays) {
    constexpr auto kGiven = [](auto function, auto... parameters) {
        return [=](double u) {
            double out = -1;
            EXPECT_TRUE(function(&out, parameters..., &u, nullptr, nullptr, nullptr, nullptr));
            return out;
        };
    };
    const double last = 0.9999999, beyond = std::nextafter(last, 1);
    EXPECT_EQ(kGiven(PralPoisson_Core, 5000.0)(1e-12), 4511);
    EXPECT_EQ(kGiven(PralPoisson_Core, 5000.5)(1e-12), 4515);             // 4511 exactly
    EXPECT_EQ(kGiven(PralBinomial_Core, 1111111.0, 0.1)(0.999), 112089);  // variance 99,999.99
    EXPECT_EQ(kGiven(PralBinomial_Core, 1111112.0, 0.1)(0.999), 112088);  // 112090 exactly
    EXPECT_EQ(kGiven(PralNegBin_Core, 3.0, 0.01)(0.001), 17);
    EXPECT_EQ(kGiven(PralNegBin_Core, 3.0, 0.0099)(0.001), 19);      // 18 exactly
    EXPECT_EQ(kGiven(PralNegBin_Core, 8333.0, 0.25)(0.001), 24032);  // variance 99,996
    EXPECT_EQ(kGiven(PralNegBin_Core, 8334.0, 0.25)(0.001), 24025);  // 24035 exactly
    EXPECT_EQ(kGiven(PralNegBin_Core, 3.0, 0.5)(last), 30);
    EXPECT_EQ(kGiven(PralNegBin_Core, 3.0, 0.5)(beyond), DBL_MAX);
    EXPECT_EQ(kGiven(PralGeometric_Core, 0.5)(last), 23);
    EXPECT_EQ(kGiven(PralGeometric_Core, 0.5)(beyond), DBL_MAX);
}

TEST(Counts, UncertaintyAboutParameters) {
    const double u = 0.25, bad = 1.5;
    double out;
    ASSERT_TRUE(PralBinomialP_Core(&out, 0, 9, 1, &u));
    EXPECT_NEAR(out, 1 - std::pow(0.75, 0.1), 1e-15);
    ASSERT_TRUE(PralPoissonLambda_Core(&out, 0, 4, 1, &u));
    EXPECT_NEAR(out, -std::log(0.75) / 4, 1e-15);
    int zeros = 0;
    for (int i = 0; i < 1000; ++i) {
        ASSERT_TRUE(PralBinomialP_Core(&out, 0, 9, 0, &u));
        zeros += out == 0;
    }
    EXPECT_NEAR(zeros, 500, 60);
    const struct {
        double successes, trials;
        int exists;
        double u;
        const char* message;
    } refused[] = {{-1, 0, 1, u, "Error: if process_exists=TRUE then Successes must be >=0"},
                   {1, 0, 0, u, "Error: Trials must be > 0"},
                   {1, 2, 0, u, "Error: if process_exists=False then Successes must be 0"},
                   {3, 2, 1, bad, "Error: Trials must be >= successes"},
                   {1, 2, 1, bad, "Error: U must be between [0,1]"}};
    for (const auto& row : refused) {
        EXPECT_FALSE(PralBinomialP_Core(&out, row.successes, row.trials, row.exists, &row.u));
        EXPECT_STREQ(PralCoreError(), row.message);
    }
    const struct {
        double alpha, T;
        int exists;
        double u;
        const char* message;
    } refused_rates[] = {{-1, 0, 0, u, "Error: alpha must be >= 0"},
                         {1, 0, 0, u, "Error: if alpha > 0 then process_exists must be True"},
                         {1, 0, 1, bad, "Error: T must be > 0"},
                         {1, 1, 1, bad, "Error: U must be between [0,1]"}};
    for (const auto& row : refused_rates) {
        EXPECT_FALSE(PralPoissonLambda_Core(&out, row.alpha, row.T, row.exists, &row.u));
        EXPECT_STREQ(PralCoreError(), row.message);
    }
}

}  // namespace
