// The families given by tables, asked the same questions through their exports. Expected values come from rational
// arithmetic (reference/make_data.py), refusals from reference/data_refusals.tsv.
#include <gtest/gtest.h>

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <functional>
#include <limits>
#include <set>
#include <span>
#include <string>
#include <type_traits>
#include <vector>

#include "classic/automation.h"
#include "classic/core_api.h"
#include "classic/stream.h"
#include "distributions/families.h"
#include "support/exported_families.h"
#include "support/table.h"

namespace {

using namespace pral::test;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr int kByValue = 0, kByPercentile = 3, kCumulative = 1;

/// The numbers of a call, then its tables; a count may be told that differs from the table's.
struct Arguments {
    std::vector<double> numbers;
    std::vector<std::vector<double>> tables;
    bool null = false;
    int count = 0;  // when not 0

    const double* table(std::size_t i) const { return null ? nullptr : tables.at(i).data(); }
    int size(std::size_t i) const { return count != 0 ? count : static_cast<int>(tables.at(i).size()); }
};

struct DataFamily {
    std::string name;
    std::size_t numbers;
    std::function<bool(double*, const Arguments&, const Given&)> value;
    std::function<bool(std::span<double>, const Arguments&, const Given&)> array;
    std::function<bool(SAFEARRAY**, const Arguments&)> automation;
    std::function<bool(double*, std::span<double>, const Arguments&, const int*, const Given&)> prob[2];
    std::function<pral::Tails(const Arguments&, double)> tails;
};

#define PROBABILITY(FUNCTION, ...)                                                                         \
    [](double* out, std::span<double> x, const Arguments& a, const int* cumulative, const Given& g) {      \
        return FUNCTION(out, x.data(), static_cast<int>(x.size()), __VA_ARGS__, cumulative, g.mode, g.min, \
                        g.max, g.shift);                                                                   \
    }

/// The family; one that draws its ordinates does so from the process's stream.
template <class D, class... A>
D made(A... arguments) {
    if constexpr (std::is_constructible_v<D, A...>)
        return D(arguments...);
    else
        return D(arguments..., pral::random_stream());
}

#define FAMILY(X, NUMBERS, ...)                                                                          \
    {                                                                                                    \
#X,                                                                                                    \
     NUMBERS,                                                                                               \
     [](double* out, const Arguments& a, const Given& g) {                                                  \
         return Pral##X##_Core(out, __VA_ARGS__, g.U, g.mode, g.min, g.max, g.shift);                       \
     },                                                                                                     \
     [](std::span<double> out, const Arguments& a, const Given& g) {                                        \
         return Pral##X##Array_Core(out.data(), static_cast<int>(out.size()), __VA_ARGS__, g.U, g.mode,     \
                                    g.min, g.max, g.shift);                                                 \
     },                                                                                                     \
     [](SAFEARRAY** out, const Arguments& a) {                                                              \
         return Pral##X##ArrayVB_Core(out, __VA_ARGS__, nullptr, nullptr, nullptr, nullptr, nullptr);       \
     },                                                                                                     \
     {PROBABILITY(Pral##X##Prob_Core, __VA_ARGS__), PROBABILITY(Pral##X##Prob10_Core, __VA_ARGS__)},        \
     [](const Arguments& a, double x) { return pral::tails(made<pral::X>(__VA_ARGS__), x); } \
    }
#define TABLE(I) a.table(I), a.size(I)

const std::vector<DataFamily>& families() {
    static const std::vector<DataFamily> list = {
        FAMILY(Discrete, 0, TABLE(0), TABLE(1)),
        FAMILY(DUniform, 0, TABLE(0)),
        FAMILY(CumulA, 2, a.numbers.at(0), a.numbers.at(1), TABLE(0), TABLE(1)),
        FAMILY(CumulD, 2, a.numbers.at(0), a.numbers.at(1), TABLE(0), TABLE(1)),
        FAMILY(Histogram, 2, a.numbers.at(0), a.numbers.at(1), TABLE(0)),
        FAMILY(Relative, 2, a.numbers.at(0), a.numbers.at(1), TABLE(0), TABLE(1)),
        FAMILY(StepUniform, 3, a.numbers.at(0), a.numbers.at(1), a.numbers.at(2)),
        FAMILY(Ogive, 2, a.numbers.at(0), a.numbers.at(1), TABLE(0)),
        FAMILY(OgiveU, 2, a.numbers.at(0), a.numbers.at(1), TABLE(0)),
    };
    return list;
}

/// A family with the arguments of a row.
struct Instance {
    const DataFamily* family;
    Arguments arguments;
    std::string label;

    explicit Instance(const std::vector<std::string>& row)
        : label(row.at(0) + ' ' + row.at(1).substr(0, 80)) {
        family = &*std::ranges::find(families(), row[0], &DataFamily::name);
        std::istringstream groups(row[1]);
        std::string group;
        if (family->numbers > 0 && std::getline(groups, group, ';')) arguments.numbers = numbers(group);
        while (std::getline(groups, group, ';')) arguments.tables.push_back(numbers(group));
        arguments.tables.resize(2);
    }
    double value(const Given& given) const {
        double out = kNaN;
        EXPECT_TRUE(family->value(&out, arguments, given)) << label << ' ' << PralCoreError();
        return out;
    }
    double probability(std::vector<double> x, bool cumulative, bool log10, const Given& given = {}) const {
        double out = kNaN;
        const int flag = cumulative ? 7 : -1;  // -1 asks for no cumulative
        EXPECT_TRUE(family->prob[log10](&out, x, arguments, &flag, given)) << label << ' ' << PralCoreError();
        return out;
    }
};

/// Each family with each of its tables of the reference, OgiveU with those of Ogive.
const std::vector<Instance>& instances() {
    static const auto list = [] {
        std::vector<Instance> all;
        std::set<std::string> seen;
        for (auto row : table("reference/data_values.tsv")) {
            if (!seen.insert(row.at(0) + row.at(1)).second) continue;
            all.emplace_back(row);
            if (row[0] == "Ogive") all.emplace_back(std::vector<std::string>{"OgiveU", row[1]});
        }
        return all;
    }();
    return list;
}

void expect_near(double actual, double expected, double relative, const std::string& what) {
    EXPECT_LE(std::fabs(actual - expected), relative * std::max(std::fabs(expected), DBL_MIN))
        << what << ": " << actual << " instead of " << expected;
}

/// The bounds of a row: boundsMode, min, max from field 2 on.
struct Bounds {
    int mode;
    double min, max;
    explicit Bounds(const std::vector<std::string>& row)
        : mode(std::stoi(row.at(2))), min(numbers(row.at(3)).at(0)), max(numbers(row.at(4)).at(0)) {}
    Given given(const double* u = nullptr) const { return {u, &mode, &min, &max}; }
};

TEST(Data, ProbabilitiesAreExact) {
    for (const auto& row : table("reference/data_values.tsv")) {
        const Instance i(row);
        const Bounds bounds(row);
        const double x = numbers(row.at(5)).at(0), density = numbers(row.at(6)).at(0);
        const double lower = numbers(row.at(7)).at(0), upper = numbers(row.at(8)).at(0);
        const std::string what = i.label + " mode " + row[2] + " x = " + row[5];
        // The density is told through its logarithm, which has an absolute error of 1e-16 times its size.
        const double scale = std::max(1.0, std::fabs(std::log(std::max(density, DBL_MIN))));
        expect_near(i.probability({x}, false, false, bounds.given()), density, 2e-15 * scale, what);
        const bool truncated = bounds.mode >= 0;  // differences of percentiles, given with 1e-16
        expect_near(i.probability({x}, true, false, bounds.given()), lower, truncated ? 1e-13 : 1e-15, what);
        const double log = upper < 0.5 ? std::log1p(-upper) / std::log(10.0) : std::log10(lower);
        expect_near(i.probability({x}, true, true, bounds.given()), std::max(log, -DBL_MAX),
                    truncated ? 1e-12 : 1e-14, what);
        if (!truncated) expect_near(i.family->tails(i.arguments, x).upper, upper, 1e-15, what + " survival");
    }
}

TEST(Data, QuantilesAreExact) {
    for (const auto& row : table("reference/data_quantiles.tsv")) {
        const Instance i(row);
        const Bounds bounds(row);
        const double u = numbers(row.at(5)).at(0), x = numbers(row.at(6)).at(0);
        // Ends of a support may lie far from 0 where the quantile is near it.
        EXPECT_NEAR(i.value(bounds.given(&u)), x, 1e-14 * std::max(std::fabs(x), 0.1))
            << i.label << " mode " << row[2] << " u = " << row[5];
    }
}

TEST(Data, RefusalsInTheirOrderAndWords) {
    const double bad_u = 1.5, two = 2, one = 1;
    for (const auto& row : table("reference/data_refusals.tsv")) {
        const Instance i(row);
        const std::string& sampling = row.at(2);
        const std::string& probability = row.size() > 3 ? row[3] : sampling;
        double out = 7, x = 1;
        EXPECT_FALSE(i.family->value(&out, i.arguments, {})) << i.label;
        EXPECT_EQ(PralCoreError(), sampling) << i.label;
        EXPECT_EQ(out, 0);
        EXPECT_FALSE(i.family->array({&out, 1}, i.arguments, {}));
        EXPECT_EQ(PralCoreError(), sampling) << i.label;
        for (const auto& prob : i.family->prob) {
            EXPECT_FALSE(prob(&out, {&x, 1}, i.arguments, nullptr, {}));
            EXPECT_EQ(PralCoreError(), probability) << i.label;
        }
        EXPECT_FALSE(i.family->value(&out, i.arguments, {&bad_u}));
        EXPECT_STREQ(PralCoreError(), "Error: U must be between [0,1]") << i.label;
        EXPECT_FALSE(i.family->value(&out, i.arguments, {&bad_u, &kByValue, &two, &one}));
        EXPECT_STREQ(PralCoreError(), "PralXBounds error: MinX(2) must be <= MaxX(1)") << i.label;
    }
    for (const Instance& i : instances()) {
        if (i.family->name == "StepUniform") continue;
        Arguments arguments = i.arguments;
        double out = 7;
        arguments.null = true;
        EXPECT_FALSE(i.family->value(&out, arguments, {})) << i.label;
        EXPECT_TRUE(std::string(PralCoreError()).ends_with(" must not be null")) << PralCoreError();
        arguments.count = -3;  // as none, whether or not there is a table
        EXPECT_FALSE(i.family->value(&out, arguments, {})) << i.label;
        const std::string of_none = PralCoreError();
        arguments.null = false;
        EXPECT_FALSE(i.family->value(&out, arguments, {})) << i.label;
        EXPECT_EQ(PralCoreError(), of_none) << i.label;
    }
}

TEST(Data, ArraysAreSingleCallsAndTablesAreKept) {
    const double shift = 3, low = 0.2, high = 0.9999999, quarter = 0.25;
    for (const Instance& i : instances()) {
        const Arguments before = i.arguments;
        for (const Given& given :
             {Given{}, Given{.shift = &shift}, Given{nullptr, &kByPercentile, &low, &high}}) {
            for (const std::size_t count : {3u, 5000u}) {  // searched, and through a guide table
                std::vector<double> array(count), draws(count);
                PralSetRandomSeed(11);
                ASSERT_TRUE(i.family->array(array, i.arguments, given)) << i.label << PralCoreError();
                for (std::size_t k = 0; k < count; k += count / 3) {
                    PralSetRandomSeed(11);
                    // OgiveU's ordinates come first, then the uniforms.
                    draws.resize(i.family->name == "OgiveU" ? i.arguments.tables[0].size() + k + 1 : k + 1);
                    PralUniformArray_Core(draws.data(), static_cast<int>(draws.size()), 0, 1, nullptr,
                                          nullptr, nullptr, nullptr, nullptr);
                    Given one = given;
                    one.U = &draws.back();
                    PralSetRandomSeed(11);
                    EXPECT_EQ(array[k], i.value(one)) << i.label << " draw " << k;
                }
            }
        }
        std::vector<double> same(3);
        PralSetRandomSeed(5);
        ASSERT_TRUE(i.family->array(same, i.arguments, {&quarter}));
        PralSetRandomSeed(5);
        EXPECT_EQ(same, std::vector<double>(3, i.value({&quarter}))) << i.label;
        PralSetRandomSeed(5);
        std::vector<double> plain(100);
        ASSERT_TRUE(i.family->array(plain, i.arguments, {}));
        SAFEARRAY* automation = SafeArrayCreateVector(VT_R8, 0, 100);
        PralSetRandomSeed(5);
        ASSERT_TRUE(i.family->automation(&automation, i.arguments)) << i.label;
        EXPECT_TRUE(std::ranges::equal(plain, std::span(static_cast<double*>(automation->pvData), 100)));
        SafeArrayDestroy(automation);
        EXPECT_EQ(i.arguments.numbers, before.numbers);
        EXPECT_EQ(i.arguments.tables, before.tables) << i.label;
    }
}

TEST(Data, EndsShiftsAndJointProbabilities) {
    const double zero = 0, one = 1, half = 0.5, shift = 10;
    for (const Instance& i : instances()) {
        if (i.family->name == "OgiveU") continue;
        const double lower = i.value({&zero}), upper = i.value({&one});
        EXPECT_EQ(i.value({.U = &one, .shift = &shift}), upper + shift) << i.label;
        EXPECT_EQ(i.value({.U = &half, .shift = &shift}), i.value({&half}) + shift) << i.label;
        for (const bool cumulative : {false, true}) {
            EXPECT_EQ(i.probability({std::nextafter(lower, -DBL_MAX)}, cumulative, false), 0) << i.label;
            EXPECT_EQ(i.probability({lower - 1, upper}, cumulative, true), -DBL_MAX) << i.label;
            EXPECT_EQ(i.probability({upper + 1}, cumulative, false), cumulative ? 1 : 0) << i.label;
            EXPECT_TRUE(std::isnan(i.probability({kNaN}, cumulative, false))) << i.label;
            const double third = 0.3, most = 0.9;
            const std::vector<double> x = {i.value({&third}), i.value({&half}), i.value({&most})};
            double product = 1;
            for (const double each : x) product *= i.probability({each}, cumulative, false);
            expect_near(i.probability(x, cumulative, false), product, 1e-13, i.label);
            expect_near(std::pow(10, i.probability(x, cumulative, true)), product, 1e-12, i.label);
            std::vector<double> moved = x;
            for (double& each : moved) each += shift;
            double out = kNaN;
            ASSERT_TRUE(i.family->prob[0](&out, moved, i.arguments, cumulative ? &kCumulative : nullptr,
                                          {.shift = &shift}));
            for (std::size_t k = 0; k < x.size(); ++k) EXPECT_EQ(moved[k], x[k] + shift - shift);
        }
    }
}

TEST(Data, HostileTables) {
    constexpr double kHostile[] = {kNaN,   HUGE_VAL, -HUGE_VAL, DBL_MAX, -DBL_MAX, 1e300,
                                   -1e300, 1e-300,   5e-324,    0.0,     -1.0};
    const auto ask = [](const Instance& i, const Arguments& arguments) {
        double out = kNaN;
        const double low = 0.4, high = 0.6;
        for (const double& u : {0.0, 1e-300, 0.5, 1 - 0x1p-53}) {
            i.family->value(&out, arguments, {&u});
            EXPECT_FALSE(std::isinf(out)) << i.label;
            i.family->value(&out, arguments, {&u, &kByPercentile, &low, &high});
            i.family->value(&out, arguments, {&u, &kByValue, &low, &high});
        }
        std::vector<double> many(100);
        i.family->array(many, arguments, {});
        for (const bool log10 : {false, true}) {
            double x[] = {0.5, 3};
            i.family->prob[log10](&out, x, arguments, nullptr, {});
            EXPECT_FALSE(std::isinf(out)) << i.label;
            i.family->prob[log10](&out, x, arguments, &kCumulative, {});
            EXPECT_FALSE(std::isinf(out)) << i.label;
        }
    };
    for (const Instance& i : instances()) {
        for (const double hostile : kHostile) {
            for (std::size_t k = 0; k < i.arguments.numbers.size(); ++k) {
                Arguments arguments = i.arguments;
                arguments.numbers[k] = hostile;
                ask(i, arguments);
            }
            for (std::size_t t = 0; t < 2; ++t) {
                for (std::size_t k = 0; k < std::min<std::size_t>(i.arguments.tables[t].size(), 3); ++k) {
                    Arguments arguments = i.arguments;
                    arguments.tables[t][k] = hostile;
                    ask(i, arguments);
                    std::ranges::fill(arguments.tables[t], hostile);
                    ask(i, arguments);
                }
            }
        }
    }
}

/// One row: a family with a table at the ends of what doubles can tell, a percentile, its value.
TEST(Data, WidestSupports) {
    struct Row {
        const char *family, *arguments;
        double u, x;
    };
    const Row rows[] = {
        {"Histogram", "-1.5e308 1.5e308 ; 1 1 1 1", 0.25, -0.75e308},
        {"CumulA", "-1.5e308 1.5e308 ; 0.5e308 ; 0.5", 0.75, 1e308},
        {"CumulA", "-inf inf ; 0 ; 0.5", 0.75, DBL_MAX / 2},
        {"Relative", "-1.6e308 1.6e308 ; 0 ; 1e-300", 0.125, -0.8e308},
        {"Relative", "0 4e-300 ; 2e-300 ; 5e-324", 0.125, 1e-300},
        {"Discrete", "1 2 3 ; inf inf inf", 0.5, 2},
        {"Discrete", "1 2 ; 5e-324 5e-324", 0.5, 1},
        {"Discrete", "inf 1 ; 1 1", 0.75, DBL_MAX},
        {"Discrete", "7 7 7 ; 0 1 1", 0.3, 7},
        {"DUniform", "5", 0.3, 5},
        {"StepUniform", "2 2 5", 0.3, 2},
        {"StepUniform", "0 9007199254740992 1", 0.5, 4503599627370496},
    };
    for (const Row& row : rows) {
        const Instance i({row.family, row.arguments});
        expect_near(i.value({&row.u}), row.x, 1e-15, i.label);
    }
}

TEST(Data, PointMassesAndTies) {
    const double low = 5, high = 6, shift = 1;
    for (const double& u : {0.0, 0.25, 1.0}) {
        // A table of one value gives it for every percentile, bounds or not.
        const Instance single({"Discrete", "3 ; 0.5"});
        EXPECT_EQ(single.value({&u, &kByValue, &low, &high, &shift}), 4);
        // Ends are the table's, whatever the weights.
        const Instance weightless({"Discrete", "1 2 3 ; 0 1 0"});
        EXPECT_EQ(weightless.value({&u}), u == 0 ? 1 : u == 1 ? 3 : 2);
    }
    // A percentile on a gap gives its lower end, in either half.
    for (const auto& [u, x] : {std::pair(0.75, 1.0), std::pair(0.25, 1.0), std::pair(0.5, 2.0)}) {
        const char* const bars = u == 0.75 ? "0 3 ; 3 0 1" : u == 0.25 ? "0 3 ; 1 0 3" : "0 5 ; 1 1 0 0 2";
        const Instance gap({"Histogram", bars});
        EXPECT_EQ(gap.value({&u}), x) << bars;
    }
    // The quantile takes back every cumulative, although sums of tenths are no tenths.
    const Instance tenths({"DUniform", "1 2 3 4 5 6 7 8 9 10"});
    const Instance weights({"Discrete", "1 2 3 4 5 6 7 8 9 10 ; 1 1 1 1 1 1 1 1 1 1"});
    for (int k = 1; k <= 10; ++k) {
        const double u = k / 10.0;
        EXPECT_EQ(tenths.value({&u}), k);
        EXPECT_EQ(weights.value({&u}), k);
    }
    // A point of a grid is met by its decimal, too.
    const Instance grid({"StepUniform", "0 1 0.1"});
    EXPECT_NEAR(grid.probability({0.3}, false, false), 1.0 / 11, 1e-15);
    EXPECT_NEAR(grid.probability({0.3}, true, false), 4.0 / 11, 1e-15);
    EXPECT_EQ(grid.probability({0.35}, false, false), 0);
    // NaN among the values is an outcome above all others.
    const Instance nan({"DUniform", "nan 1 2 3"});
    EXPECT_EQ(nan.probability({3}, true, false), 0.75);
}

TEST(Data, OgiveUDrawsItsOrdinates) {
    const Instance ogive({"OgiveU", "0 10 ; 7 2 5"});
    const double low = 0.25, u = 0.5, max = 8;
    const int mixed = 2;
    for (const unsigned seed : {1u, 2u}) {
        double ordinates[3];
        PralSetRandomSeed(seed);
        PralUniformArray_Core(ordinates, 3, 0, 1, nullptr, nullptr, nullptr, nullptr, nullptr);
        std::ranges::sort(ordinates);
        Instance polygon({"CumulA", "0 10 ; 2 5 7 ; 0 0 0"});
        polygon.arguments.tables[1].assign(ordinates, ordinates + 3);
        for (const Given& given : {Given{&u}, Given{nullptr, &mixed, &low, &max}}) {
            PralSetRandomSeed(seed);
            const double value = ogive.value(given);
            PralSetRandomSeed(seed);
            double skipped[3];
            PralUniformArray_Core(skipped, 3, 0, 1, nullptr, nullptr, nullptr, nullptr, nullptr);
            EXPECT_EQ(value, polygon.value(given));
        }
        PralSetRandomSeed(seed);
        EXPECT_EQ(ogive.probability({4}, true, true), polygon.probability({4}, true, true));
    }
}

}  // namespace
