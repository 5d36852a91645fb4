// Simulated paths against the recurrences of reference/make_timeseries.py, their refusals, and what they are in the long run.
#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <cstdio>

#include "classic/stream.h"
#include "support/exported_vectors.h"
#include "timeseries/autoregressive.h"
#include "timeseries/brownian_motion.h"
#include "timeseries/economic.h"
#include "timeseries/population.h"

namespace {

using namespace pral::test;

#define SERIES(X) \
    { #X, filling(PralTime##X##_Core, PralTime##X##VB_Core) }
const Functions kSeries = {SERIES(GBM),
                           SERIES(GBMJD),
                           SERIES(GBMMR),
                           SERIES(GBMJDMR),
                           SERIES(SeasonalGBM),
                           SERIES(AR1),
                           SERIES(AR2),
                           SERIES(MA1),
                           SERIES(MA2),
                           SERIES(ARMA),
                           SERIES(ARCH),
                           SERIES(GARCH),
                           SERIES(EGARCH),
                           SERIES(APARCH),
                           SERIES(Yule),
                           SERIES(Death),
                           SERIES(PriceInflation),
                           SERIES(WageInflation),
                           SERIES(WageInflationA),
                           SERIES(Dividends),
                           SERIES(DividendsA),
                           SERIES(ShareYields),
                           SERIES(ShareYieldsA),
                           SERIES(LongTermInterestRate),
                           SERIES(LongTermInterestRateA),
                           SERIES(ShortTermInterestRate),
                           SERIES(ShortTermInterestRateA)};
#undef SERIES

bool simulate(const std::string& name, unsigned seed, const Arguments& arguments, Values& path) {
    return simulate(kSeries, name, seed, arguments, path);
}

TEST(Paths, FollowTheirRecurrences) {
    // Relative to the elements, and for elements near 0 to a hundredth of the largest: four times the worst, which is a draw
    // near a zero of its cosine.
    const double allowed = 1.3e-13;
    std::map<std::string, double> worst;
    for (const auto& row : table("reference/timeseries_paths.tsv")) {
        ASSERT_EQ(row.size(), 6u);
        const std::string& name = row[0];
        const Written written(row[3]);
        const Values expected = numbers(row[4]);
        Values path(std::stoi(row[2]));
        ASSERT_TRUE(simulate(name, std::stoi(row[1]), written.arguments, path)) << name << PralCoreError();
        EXPECT_EQ(pral::random_stream().uniform(), std::stod(row[5])) << name << ": number of draws";
        ASSERT_EQ(expected.size(), path.size());
        double largest = 0, &worst_error = worst[name];
        for (const double value : expected) largest = std::fmax(largest, std::fabs(value));
        for (std::size_t t = 0; t < path.size(); ++t) {
            if (path[t] == expected[t]) continue;
            const double scale = std::fmax(std::fabs(expected[t]), largest / 100);
            const double error = std::fabs(path[t] - expected[t]) / scale;
            EXPECT_LE(error, allowed) << name << " " << row[3] << " step " << t << ": " << path[t];
            worst_error = std::fmax(worst_error, error);
        }
    }
    for (const auto& [name, error] : worst) std::printf("%-24s worst %.1e\n", name.c_str(), error);
    EXPECT_EQ(worst.size(), kSeries.size());
}

TEST(Paths, RefuseInOrder) {
    for (const auto& row : table("reference/timeseries_refusals.tsv")) {
        ASSERT_EQ(row.size(), 4u);
        const std::string call = row[0] + " " + row[2];
        const bool accepted = row[3] == "accepted";
        Values path(std::stoi(row[1]));
        EXPECT_EQ(simulate(row[0], 1, Written(row[2]).arguments, path), accepted) << call;
        if (accepted) continue;
        EXPECT_EQ(PralCoreError(), row[3]) << call;
        EXPECT_EQ(path, Values(path.size())) << call;
    }
}

TEST(Paths, RefuseArraysThatTheyCannotFill) {
    expect_refused_arrays(kSeries);
    for (const auto& [name, function] : kSeries) {
        const Arguments zeros(function.kinds.size());
        EXPECT_FALSE(function.plain(nullptr, 5, zeros)) << name;
        EXPECT_STREQ(PralCoreError(), "Error: out must not be null") << name;
        double untouched = 7;
        function.plain(&untouched, -5, zeros);
        function.plain(&untouched, INT_MIN, zeros);
        EXPECT_EQ(untouched, 7) << name;
    }
}

TEST(Paths, SurviveHostileArguments) { expect_survival(kSeries, 2000); }

TEST(Paths, StayFinite) {
    Values path(4);
    ASSERT_TRUE(simulate("AR1", 1, Written("800 0 1 800 0 1e300").arguments, path));
    EXPECT_EQ(path, Values(4, DBL_MAX));
    ASSERT_TRUE(simulate("AR1", 1, Written("-1 0 0 0 0 inf").arguments, path));  // a fall leads back
    EXPECT_EQ(path[0], DBL_MAX);
    EXPECT_DOUBLE_EQ(path[1], DBL_MAX * std::exp(-1));
    ASSERT_TRUE(simulate("Yule", 1, Written("1 600 1 0").arguments, path));  // 1e260 fold a step
    EXPECT_EQ(path[1], DBL_MAX);
    EXPECT_EQ(path[3], DBL_MAX);
    ASSERT_TRUE(simulate("ShareYields", 1, Written("0 0 0 0 0 0 1").arguments, path));  // ln 0
    EXPECT_EQ(path, (Values{0, -DBL_MAX, -DBL_MAX, -DBL_MAX}));
    ASSERT_TRUE(simulate("GARCH", 1, Written("0 0.1 1 10 -0.5 1 0").arguments, path));  // variance -2.65
    EXPECT_TRUE(std::isnan(path[0]));
}

TEST(Paths, HaveTheirProcessesMoments) {
    // 400 blocks of 1000 steps: their own scatter gives the standard error of each estimate.
    constexpr std::size_t kBlocks = 400, kBlock = 1000, kSettled = 1000;
    for (const auto& row : table("reference/timeseries_moments.tsv")) {
        const Values expected = numbers(row[2]);
        Values path(kSettled + kBlocks * kBlock + 2);
        ASSERT_TRUE(simulate(row[0], 11, Written(row[1]).arguments, path)) << row[0];
        const auto estimate = [&](std::size_t which, std::size_t t) {
            const double from_mean = path[t] - expected[0];
            return which == 0 ? path[t] : from_mean * (path[t + which - 1] - expected[0]);
        };
        for (std::size_t which = 0; which < 4; ++which) {
            double sum = 0, squares = 0;
            for (std::size_t block = 0; block < kBlocks; ++block) {
                double mean = 0;
                for (std::size_t i = 0; i < kBlock; ++i)
                    mean += estimate(which, kSettled + block * kBlock + i) / kBlock;
                sum += mean;
                squares += mean * mean;
            }
            const double mean = sum / kBlocks;
            const double error = std::sqrt((squares / kBlocks - mean * mean) / (kBlocks - 1));
            EXPECT_NEAR(mean, expected[which], 4.5 * error) << row[0] << " moment " << which;
            EXPECT_LT(error, 0.02 * (1 + expected[1])) << row[0];
        }
    }
}

/// The models as other parts of the library use them: their draws come from the stream given, and a refusal is returned.
TEST(Paths, InsideDrawsFromTheStreamGiven) {
    using namespace pral::timeseries;
    using Path = pral::Message (*)(std::span<double>, pral::RandomStream&);
    constexpr Path kPaths[] = {
        [](std::span<double> out, pral::RandomStream& s) {
            return price_path(out, MA1{0.01, 0.1, 0.5}, {0, 100}, s);
        },
        [](std::span<double> out, pral::RandomStream& s) {
            return population_path(out, Yule{5, 1, 0.5}, 0, s);
        },
        [](std::span<double> out, pral::RandomStream& s) {
            return economic_path(out, SimulatedInflation(0.03, 0.02, 0.5), ShareYields{4, 1, 0.5, 1}, s);
        },
        [](std::span<double> out, pral::RandomStream& s) {
            std::fill(out.begin(), out.end(), 5.0);
            return short_term_path(out, out, {0.2, 0.1, 0.5}, s);
        }};
    pral::random_stream().seed(3);
    const double first = pral::random_stream().uniform();
    pral::random_stream().seed(3);
    for (const Path path : kPaths) {
        pral::RandomStream a, b;
        a.seed(11);
        b.seed(11);
        std::vector<double> x(12), y(12);
        EXPECT_EQ(path(x, a), nullptr);
        EXPECT_EQ(path(y, b), nullptr);
        EXPECT_EQ(x, y);
        EXPECT_NE(x[10], x[11]);
    }
    EXPECT_EQ(pral::random_stream().uniform(), first);

    pral::RandomStream stream;
    std::vector<double> out(3);
    const double backwards[] = {-1, 0, 1};
    PralSetCoreError("untouched");
    EXPECT_STREQ(price_path(out, GBM{0, 1, {backwards, 0}}, {1, 0}, stream), "Error: sigma must be >= 0");
    EXPECT_STREQ(PralCoreError(), "untouched");
}

}  // namespace
