// Tests of fits.
#include <gtest/gtest.h>
#include <pral_core/objects.hpp>

#include <cmath>
#include <vector>

#include "samples.h"

namespace {

using pral::Fit;
using pral::TestValues;

TEST(Goodness, HasThePublishedStatisticsAndProbabilities) {
    // Exponential times between failures; p-values of 20,000 replicates.
    const struct {
        std::int32_t statistic;
        double value, p;
    } cases[] = {{PRAL_KOLMOGOROV_SMIRNOV, .2131677, .0212},
                 {PRAL_CRAMER_VON_MISES, .2135823, .0550},
                 {PRAL_ANDERSON_DARLING, 1.1631222, .0723}};
    const Fit fit("Expon", {samples::kAeroplane});
    const pral::Stream stream(3);
    for (const auto& [statistic, value, p] : cases) {
        const TestValues found = fit.test(statistic, {stream, 4999});
        EXPECT_NEAR(found.statistic, value, 1e-7);
        EXPECT_NEAR(found.p, p, 4 * std::sqrt(p / 5000 + p / 20000));
        EXPECT_NEAR(found.p_error, std::sqrt(found.p * (1 - found.p) / 4999), 1e-12);
        EXPECT_EQ(found.failed, 0U);
    }
}

TEST(Goodness, OfCountsComparesStepFunctions) {
    // By hand: Poisson with mean 1 of {0, 1, 2, 1}; F(0) = 1/e, F(1) = 2/e, F(2) = 2.5/e.
    const std::vector<double> x = {0, 1, 2, 1};
    const Fit fit("Poisson", {x});
    const pral::Stream stream(3);
    const double e = std::exp(1.0), z0 = .25 - 1 / e, z1 = .75 - 2 / e, z2 = 1 - 2.5 / e;
    EXPECT_NEAR(fit.test(PRAL_KOLMOGOROV_SMIRNOV, {stream, 19}).statistic, std::fabs(z0), 1e-12);
    double sum = (z0 * z0 + z1 * z1 + z2 * z2 / 2) / e, below = 2.5 / e, mass = .5 / e;
    for (int k = 3; k < 14; ++k) {
        mass /= k;
        below += mass;
        sum += (1 - below) * (1 - below) * mass;
    }
    EXPECT_NEAR(fit.test(PRAL_CRAMER_VON_MISES, {stream, 19}).statistic, 4 * sum, 1e-9);
    // Parasites in cats are no Poisson counts.
    std::vector<double> cats;
    for (std::size_t i = 0; i < samples::kToxocara.size(); ++i)
        cats.insert(cats.end(), static_cast<std::size_t>(samples::kToxocaraTimes[i]), samples::kToxocara[i]);
    EXPECT_EQ(Fit("Poisson", {cats}).test(PRAL_CHI_SQUARE, {stream, 99}).p, .01);
    EXPECT_GT(Fit("Polya", {cats}).test(PRAL_CHI_SQUARE, {stream, 99}).p, .02);
}

TEST(Goodness, ChiSquareJoinsWhatIsRare) {
    // 20 counts with mean 1: 5 are expected at 0, at 1 and above, no finer.
    std::vector<double> x(7, 0.0);
    x.insert(x.end(), 8, 1.0);
    x.insert(x.end(), {2, 2, 2, 3, 3});
    const pral::Stream stream(3);
    const double e = 20 / std::exp(1.0), rest = 20 - 2 * e;
    const double expected = (7 - e) * (7 - e) / e + (8 - e) * (8 - e) / e + (5 - rest) * (5 - rest) / rest;
    EXPECT_NEAR(Fit("Poisson", {x}).test(PRAL_CHI_SQUARE, {stream, 19}).statistic, expected, 1e-9);
    // 30 times fill six cells of equal probability with 4, 12, 0, 4, 5 and 5 values (numpy.histogram).
    EXPECT_NEAR(Fit("Expon", {samples::kAeroplane}).test(PRAL_CHI_SQUARE, {stream, 19}).statistic, 15.2,
                1e-9);
}

TEST(Goodness, HoldsItsLevel) {
    // Under the hypothesis p-values are uniform. Of 200 samples the share below .1 is within 4 standard errors; below .5 too.
    for (const char* family : {"Normal", "Gamma", "Poisson"}) {
        const pral::Distribution truth(family,
                                       std::vector<double>(std::string(family) == "Poisson" ? 1 : 2, 3.0));
        const pral::Stream stream(17);
        int tenth = 0, half = 0;
        constexpr int kSamples = 200;
        for (int i = 0; i < kSamples; ++i) {
            pral::Stream own = stream.child(static_cast<std::uint64_t>(i));
            const std::vector<double> x = truth.sample(own, 30);
            const double p = Fit(family, {x}).test(PRAL_ANDERSON_DARLING, {own, 39}).p;
            tenth += p <= .1;
            half += p <= .5;
        }
        EXPECT_NEAR(tenth, .1 * kSamples, 4 * std::sqrt(.09 * kSamples)) << family;
        EXPECT_NEAR(half, .5 * kSamples, 4 * std::sqrt(.25 * kSamples)) << family;
    }
}

TEST(Goodness, OfTruncatedDataIsThatOfWhatWasSeen) {
    // Beyond a threshold exponential values are exponential again.
    const pral::Stream stream(3);
    std::vector<double> moved;
    for (const double x : samples::kAeroplane) moved.push_back(x + 10);
    const TestValues plain = Fit("Expon", {samples::kAeroplane}).test(PRAL_ANDERSON_DARLING, {stream, 99});
    const TestValues seen = Fit("Expon", {moved}, {.lower = 10}).test(PRAL_ANDERSON_DARLING, {stream, 99});
    EXPECT_NEAR(seen.statistic, plain.statistic, 1e-6);
    EXPECT_EQ(seen.p, plain.p);  // the replicates are the same, moved
    const std::vector<double> open(moved.size(), HUGE_VAL);
    EXPECT_THROW(Fit("Expon", {moved, open}).test(PRAL_ANDERSON_DARLING, {stream, 19}), pral::Error);
}

}  // namespace
