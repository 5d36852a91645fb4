// Simulated paths against the recurrences of reference/make_timeseries.py, their refusals, and what they are in the long run.
#include <gtest/gtest.h>

#include <array>
#include <cfloat>
#include <climits>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <map>
#include <random>
#include <sstream>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "boundary/automation.h"
#include "boundary/core_api.h"
#include "boundary/random.h"
#include "support/table.h"

namespace {

using Values = std::vector<double>;

/// An argument after `out, n`: a number, an array, or null.
struct Argument {
    double number = 0;
    const double* array = nullptr;

    template <class T>
    T as() const {
        if constexpr (std::is_pointer_v<T>)
            return array;
        else
            return static_cast<T>(number);
    }
};
using Arguments = std::vector<Argument>;

/// A series by its two functions, and what each of its arguments is.
struct Series {
    std::function<bool(double*, int, const Arguments&)> plain;
    std::function<bool(SAFEARRAY**, const Arguments&)> automation;
    std::vector<char> kinds;  // d, i, p: double, int, pointer
};

template <class... P, std::size_t... i>
Series series(bool (*plain)(double*, int, P...), bool (*automation)(SAFEARRAY**, P...),
              std::index_sequence<i...>) {
    return {
        [=](double* out, int n, const Arguments& a) { return plain(out, n, a.at(i).template as<P>()...); },
        [=](SAFEARRAY** out, const Arguments& a) { return automation(out, a.at(i).template as<P>()...); },
        {(std::is_pointer_v<P>     ? 'p'
          : std::is_same_v<P, int> ? 'i'
                                   : 'd')...}};
}

template <class... P>
Series series(bool (*plain)(double*, int, P...), bool (*automation)(SAFEARRAY**, P...)) {
    return series(plain, automation, std::index_sequence_for<P...>());
}

#define SERIES(X) \
    { #X, series(PralTime##X##_Core, PralTime##X##VB_Core) }
const std::map<std::string, Series> kSeries = {SERIES(GBM),
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

/// Arguments written as in the tables: numbers, "null", "[1,2.5,3]".
struct Written {
    explicit Written(const std::string& text) {
        std::istringstream words(text);
        for (std::string word; words >> word;) {
            Argument argument;
            if (word[0] == '[') {
                for (char& c : word) c = c == '[' || c == ']' || c == ',' ? ' ' : c;
                arrays.push_back(pral::test::numbers(word));
                argument.array = arrays.back().data();
            } else if (word != "null") {
                argument.number = std::strtod(word.c_str(), nullptr);
            }
            arguments.push_back(argument);
        }
    }
    std::vector<Values> arrays;  // whose elements stay where they are when the outer vector grows
    Arguments arguments;
};

/// The path by both functions, from the same place of the stream, equal in every bit.
bool simulate(const std::string& name, unsigned seed, const Arguments& arguments, Values& path) {
    const Series& functions = kSeries.at(name);
    SAFEARRAY* array = SafeArrayCreateVector(VT_R8, 0, static_cast<uint32_t>(path.size()));
    std::fill_n(static_cast<double*>(array->pvData), path.size(), 7.0);
    PralSetRandomSeed(seed);
    const bool by_array = functions.automation(&array, arguments);
    const std::string message = PralCoreError();
    PralSetRandomSeed(seed);
    std::fill(path.begin(), path.end(), 7.0);
    const bool done = functions.plain(path.data(), static_cast<int>(path.size()), arguments);
    EXPECT_EQ(by_array, done) << name;
    EXPECT_TRUE(done || message == PralCoreError()) << name;
    EXPECT_TRUE(path.empty() || std::memcmp(path.data(), array->pvData, path.size() * sizeof(double)) == 0)
        << name;
    EXPECT_EQ(SafeArrayDestroy(array), S_OK) << name;  // unlocked
    return done;
}

TEST(Paths, FollowTheirRecurrences) {
    // Relative to the elements, and for elements near 0 to a hundredth of the largest: four times the worst, which is a draw
    // near a zero of its cosine.
    const double allowed = 1.3e-13;
    std::map<std::string, double> worst;
    for (const auto& row : pral::test::table("reference/timeseries_paths.tsv")) {
        ASSERT_EQ(row.size(), 6u);
        const std::string& name = row[0];
        const Written written(row[3]);
        const Values expected = pral::test::numbers(row[4]);
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
    for (const auto& row : pral::test::table("reference/timeseries_refusals.tsv")) {
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
    for (const auto& [name, functions] : kSeries) {
        const Arguments zeros(functions.kinds.size());
        EXPECT_FALSE(functions.plain(nullptr, 5, zeros)) << name;
        EXPECT_STREQ(PralCoreError(), "Error: out must not be null") << name;
        double untouched = 7;
        functions.plain(&untouched, -5, zeros);
        functions.plain(&untouched, INT_MIN, zeros);
        EXPECT_EQ(untouched, 7) << name;
        SAFEARRAYBOUND bounds[] = {{3, 0}, {2, 0}};
        SAFEARRAY* flat = SafeArrayCreate(VT_R8, 2, bounds);
        for (SAFEARRAY** out : {static_cast<SAFEARRAY**>(nullptr), &flat}) {
            PralSetCoreError("");
            EXPECT_FALSE(functions.automation(out, zeros)) << name;
            EXPECT_STREQ(PralCoreError(), "Error: Output array is not valid") << name;
        }
        SafeArrayDestroy(flat);
    }
}

TEST(Paths, SurviveHostileArguments) {
    const Values hostile = {0,      1,     -1,       0.5,       2,   -0.5, DBL_MAX, -DBL_MAX, 1e300, -1e300,
                            5e-324, -1e-9, HUGE_VAL, -HUGE_VAL, NAN, 1e9,  0.1,     3,        700};
    std::mt19937 words(3);
    const auto pick = [&](const auto& values) { return values[words() % values.size()]; };
    constexpr int kSteps = 24;
    Values ascending(kSteps), wild(kSteps), path(kSteps);
    for (int i = 0; i < kSteps; ++i) {
        ascending[i] = i * i - 5;
        wild[i] = pick(hostile);
    }
    const std::array<double, 6> counts = {INT_MIN, -1, 0, 1, 3, kSteps};
    const std::array<const double*, 3> arrays = {nullptr, ascending.data(), wild.data()};
    PralSetRandomSeed(4);
    for (const auto& [name, functions] : kSeries) {
        int done = 0;
        for (int round = 0; round < 2000; ++round) {
            Arguments arguments;
            for (const char kind : functions.kinds) {
                Argument argument;
                // Half the rounds ask for little: numbers that pass the checks.
                argument.number = kind == 'i' ? pick(counts) : round % 2 == 0 ? pick(hostile) : 1;
                if (kind == 'd' && round % 4 == 1 && words() % 3 == 0) argument.number = pick(hostile);
                argument.array = pick(arrays);
                arguments.push_back(argument);
            }
            done += functions.plain(path.data(), words() % 2 == 0 ? kSteps : 3, arguments);
            for (const double value : path) ASSERT_FALSE(std::isinf(value)) << name;
        }
        EXPECT_GT(done, 0) << name;
    }
}

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
    for (const auto& row : pral::test::table("reference/timeseries_moments.tsv")) {
        const Values expected = pral::test::numbers(row[2]);
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

}  // namespace
