// Rankings of families.
#include <gtest/gtest.h>
#include <pral_core/objects.hpp>

#include <cmath>
#include <set>
#include <string>
#include <vector>

#include "samples.h"

namespace {

using pral::Ranking;

std::vector<double> drawn(const char* family, std::vector<double> parameters, std::uint64_t seed,
                          std::size_t n) {
    pral::Stream stream(seed);
    return pral::Distribution(family, std::span<const double>(parameters)).sample(stream, n);
}

TEST(Rankings, FindTheFamilyAndBeginWithARegularFit) {
    const struct {
        const char* family;
        std::vector<double> parameters;
        std::set<std::string> holds;
    } cases[] = {
        {"Expon", {50}, {"Expon", "Gamma", "Weibull"}},
        {"Lognormal", {5, 4}, {"Lognormal", "LognormalE"}},
        {"Weibull", {1.7, 10}, {"Weibull", "Weibull3"}},
        {"Normal", {10, 3}, {"Normal"}},
        {"Poisson", {4}, {"Poisson", "NegBin", "Binomial"}},
    };
    for (const auto& [family, parameters, holds] : cases) {
        const std::vector<double> x = drawn(family, parameters, 2, 100);
        const Ranking ranking(pral::Observations{x});
        ASSERT_GT(ranking.size(), 3U) << family;
        bool found = false;
        double weights = 0;
        for (std::size_t i = 0; i < ranking.size(); ++i) {
            const pral::Ranked row = ranking[i];
            found = found || (i < 3 && holds.contains(row.fit.values().family));
            weights += row.weight;
            EXPECT_GE(row.fit.values().kind, ranking[i > 0 ? i - 1 : 0].fit.values().kind) << family;
        }
        EXPECT_TRUE(found) << family;
        EXPECT_NEAR(weights, 1, 1e-9);
        EXPECT_EQ(ranking[0].fit.values().kind, PRAL_FIT_REGULAR) << family;
    }
}

TEST(Rankings, MergeEqualDistributionsAndWeighByAkaike) {
    const std::vector<double> x = drawn("Lognormal", {5, 4}, 3, 60);
    const std::vector<std::string> names = {"LognormalE", "Lognormal", "Gamma", "Weibull"};
    const Ranking ranking({x}, {}, names);
    ASSERT_EQ(ranking.size(), 3U);
    EXPECT_STREQ(ranking[0].fit.values().family, "LognormalE");
    EXPECT_EQ(ranking[0].equal_to, "Lognormal");
    // Weights are the relative likelihoods exp(-difference/2).
    for (std::size_t i = 0; i < 3; ++i)
        EXPECT_NEAR(ranking[i].weight / ranking[0].weight, std::exp(-ranking[i].difference / 2), 1e-12);
    EXPECT_NEAR(ranking[1].difference, ranking[1].fit.values().aicc - ranking[0].fit.values().aicc, 1e-9);
}

TEST(Rankings, PutUsualFamiliesBeforeSpecialOnesThatAreLittleBetter) {
    const std::vector<std::string> names = {"Gamma", "Rayleigh", "Cauchy"};
    const Ranking ranking({samples::kTen}, {}, names);
    ASSERT_EQ(ranking.size(), 3U);
    EXPECT_STREQ(ranking[0].fit.values().family, "Gamma");
    EXPECT_STREQ(ranking[1].fit.values().family, "Rayleigh");
    EXPECT_EQ(ranking[1].difference, 0);
    EXPECT_GT(ranking[0].difference, 2);
    // By more than 4 it does go before.
    const std::vector<double> far = {-40, -3, -2, -1, -.5, 0, .2, .7, 1, 1.5, 2, 3, 60};
    const std::vector<std::string> two = {"Normal", "Cauchy"};
    EXPECT_STREQ(Ranking({far}, {}, two)[0].fit.values().family, "Cauchy");
}

TEST(Rankings, TellWhatTheyLeaveOut) {
    const std::vector<std::string> names = {"Normal", "Beta", "Poisson"};
    const Ranking ranking({samples::kTen}, {}, names);
    EXPECT_EQ(ranking.size(), 1U);
    ASSERT_EQ(ranking.left_out().size(), 2U);
    EXPECT_EQ(ranking.left_out()[0].family, "Beta");
    EXPECT_EQ(ranking.left_out()[1].family, "Poisson");
    EXPECT_NE(ranking.left_out()[1].why, "");
    // Amounts in whole units: counts and continuous families.
    std::set<std::string> families;
    const Ranking both(pral::Observations{samples::kAeroplane});
    for (std::size_t i = 0; i < both.size(); ++i) families.insert(both[i].fit.values().family);
    EXPECT_TRUE(families.contains("Expon") && families.contains("NegBin"));
}

}  // namespace
