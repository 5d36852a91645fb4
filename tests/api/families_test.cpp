// The questions that every family answers the same way, put to all of them through their exports. Parameters come from
// reference/families/values, refusals from reference/families/refusals.
#include <gtest/gtest.h>

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <limits>
#include <set>
#include <sstream>

#include "support/exported_families.h"
#include "support/table.h"

namespace {

using namespace pral::test;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr int kByValue = 0, kMaxByPercentile = 1, kMinByPercentile = 2, kByPercentile = 3;
constexpr int kCumulative = 1;

const std::vector<ExportedFamily>& families() {
    static const auto list = exported_families();
    return list;
}

const ExportedFamily& family(const std::string& name) {
    return *std::ranges::find(families(), name, &ExportedFamily::name);
}

/// A family with ordinary parameters.
struct Instance {
    const ExportedFamily* family;
    Parameters parameters;

    double quantile(double u, Given given = {}) const {
        double out = kNaN;
        given.U = &u;
        EXPECT_TRUE(family->value(&out, parameters, given)) << PralCoreError();
        return out;
    }
    double probability(std::vector<double> x, bool cumulative, bool log10, const Given& given = {}) const {
        double out = kNaN;
        EXPECT_TRUE(family->prob[log10](&out, x, parameters, cumulative ? &kCumulative : nullptr, given))
            << PralCoreError();
        return out;
    }
    std::string label() const {
        std::ostringstream text;
        text << family->name;
        for (const double p : parameters) text << ' ' << p;
        return text.str();
    }
};

/// Each family with each of its parameter sets in the tables, of one class or of any.
std::vector<Instance> instances_of(const char* parameter_class) {
    std::vector<Instance> all;
    std::set<std::string> seen;
    for (const auto& row : tables("reference/families/values")) {
        if (parameter_class != nullptr && row.at(1) != parameter_class) continue;
        if (seen.insert(row.at(0) + row.at(2)).second)
            all.push_back({&family(row.at(0)), numbers(row.at(2))});
    }
    return all;
}
const std::vector<Instance>& instances() {
    static const auto list = instances_of("ordinary");
    return list;
}

void expect_near(double actual, double expected, double relative, const std::string& what) {
    EXPECT_LE(std::fabs(actual - expected), relative * std::max(std::fabs(expected), DBL_MIN))
        << what << ": " << actual << " instead of " << expected;
}

TEST(Families, EachHasReferenceValues) {
    std::set<std::string> covered;
    for (const Instance& instance : instances()) covered.insert(instance.family->name);
    for (const auto& f : families()) EXPECT_TRUE(covered.count(f.name)) << f.name;
}

TEST(Families, RefuseParametersInTheirOwnWords) {
    for (const auto& row : tables("reference/families/refusals")) {
        const ExportedFamily& f = family(row.at(0));
        const Parameters parameters = numbers(row.at(1));
        const std::string& sampling = row.at(2);
        const std::string& probability = row.size() > 3 ? row[3] : sampling;
        double out = 7, x = 1;
        EXPECT_FALSE(f.value(&out, parameters, {})) << row[0] << ' ' << row[1];
        EXPECT_EQ(PralCoreError(), sampling) << row[0] << ' ' << row[1];
        EXPECT_EQ(out, 0);
        EXPECT_FALSE(f.array({&out, 1}, parameters, {}));
        EXPECT_EQ(PralCoreError(), sampling);
        for (const auto& prob : f.prob) {
            EXPECT_FALSE(prob(&out, {&x, 1}, parameters, nullptr, {}));
            EXPECT_EQ(PralCoreError(), probability) << row[0] << ' ' << row[1];
        }
    }
}

TEST(Families, CheckBoundsThenPercentileThenParameters) {
    const double two = 2, one = 1, bad_u = 1.5, below = -0.25;
    for (const auto& row : tables("reference/families/refusals")) {
        const ExportedFamily& f = family(row.at(0));
        const Parameters parameters = numbers(row.at(1));
        double out = 7;
        EXPECT_FALSE(f.value(&out, parameters, {&bad_u, &kByValue, &two, &one}));
        EXPECT_STREQ(PralCoreError(), "PralXBounds error: MinX(2) must be <= MaxX(1)");
        EXPECT_FALSE(f.array({&out, 1}, parameters, {&bad_u}));
        EXPECT_STREQ(PralCoreError(), "Error: U must be between [0,1]");
    }
    for (const Instance& i : instances()) {
        double out = 7;
        for (const double u : {-0.5, 1.0000001, kNaN}) {
            EXPECT_FALSE(i.family->value(&out, i.parameters, {&u})) << i.label();
            EXPECT_STREQ(PralCoreError(), "Error: U must be between [0,1]");
        }
        const double low = 0.1, high = 0.9;
        EXPECT_FALSE(i.family->value(&out, i.parameters, {nullptr, &kByPercentile, &high, &low}));
        EXPECT_STREQ(PralCoreError(), "PralPBounds error: MinP(0.9) must be <= MaxP(0.1)");
        EXPECT_FALSE(i.family->value(&out, i.parameters, {nullptr, &kByPercentile, &below, &low}));
        EXPECT_STREQ(PralCoreError(), "Error: U must be between [0,1]");
        EXPECT_FALSE(i.family->value(&out, i.parameters, {nullptr, &kByValue, &kNaN, &high}));
        EXPECT_STREQ(PralCoreError(), "PralXBounds error: MinX(nan) must be <= MaxX(0.9)");
    }
}

TEST(Families, EndsOfTheSupport) {
    for (const Instance& i : instances()) {
        const double shift = 10;
        for (const double u : {0.0, 1.0}) {
            const double end = i.quantile(u);
            const double moved = i.quantile(u, {.shift = &shift});
            EXPECT_EQ(moved, std::fabs(end) == DBL_MAX ? end : end + shift) << i.label();
        }
        const double lower = i.quantile(0);
        for (const bool cumulative : {false, true}) {
            if (lower > -DBL_MAX && i.family->name != "ZISkellam") {  // whose percentile 0 is not its lowest
                const bool discrete = i.family->kind == "discrete";
                const double below = discrete ? lower - 1 : std::nextafter(lower, -DBL_MAX);
                EXPECT_EQ(i.probability({below}, cumulative, false), 0) << i.label();
                EXPECT_EQ(i.probability({lower - 1, lower}, cumulative, true), -DBL_MAX) << i.label();
            }
            if (i.family->kind == "continuous" && cumulative) {
                EXPECT_EQ(i.probability({lower}, true, true), -DBL_MAX) << i.label();
            }
            EXPECT_EQ(i.probability({-DBL_MAX}, cumulative, false), 0) << i.label();
            EXPECT_EQ(i.probability({DBL_MAX}, cumulative, false), cumulative ? 1 : 0) << i.label();
        }
    }
}

/// Rounding leads neither a value out of the support nor a probability out of [0,1], and large x have probabilities.
TEST(Families, StayWithinTheSupportAndTheUnitInterval) {
    std::vector<Instance> all = instances();
    for (const auto& [name, parameters] :
         std::initializer_list<std::pair<const char*, Parameters>>{{"LogUniform", {0.5, 5}},
                                                                   {"Reciprocal", {1, 100}},
                                                                   {"GEV", {0, 3, 10}},
                                                                   {"LogLaplace", {100, 0.5, 1}},
                                                                   {"SkewNormal", {2, 1e-9, 0}},
                                                                   {"LifetimeExp", {1e6, 1e9}}})
        all.push_back({&family(name), parameters});
    for (const Instance& i : all) {
        const double lower = i.quantile(0), upper = i.quantile(1);
        if (i.family->name != "ZISkellam") {  // whose percentile 0 is not its lowest
            for (const double u : {5e-324, 1e-300, 0x1p-53, 0.5, 1 - 0x1p-53}) {
                EXPECT_TRUE(i.quantile(u) >= lower && i.quantile(u) <= upper) << i.label() << ' ' << u;
            }
        }
        for (const double x : {-1e300, -1e16, 1e16, 1e100, 1e300}) {
            const double p = i.probability({x}, true, false);
            EXPECT_TRUE(p >= 0 && p <= 1) << i.label() << ' ' << x;
            EXPECT_LE(i.probability({x}, true, true), 0) << i.label() << ' ' << x;
            EXPECT_GE(i.probability({x}, false, false), 0) << i.label() << ' ' << x;
            EXPECT_LT(i.probability({x}, false, true), 300) << i.label() << ' ' << x;
        }
    }
}

/// What underflows even as a logarithm has probability 0 in the logarithmic form, too; what does not keeps its logarithm.
TEST(Families, LogarithmsThatUnderflowTellProbabilityZero) {
    double out = kNaN, x = -1e300;
    ASSERT_TRUE(PralNormalProb10_Core(&out, &x, 1, 3, 2, &kCumulative, nullptr, nullptr, nullptr, nullptr));
    EXPECT_EQ(out, -DBL_MAX);
    ASSERT_TRUE(PralSkellamProb10_Core(&out, &x, 1, 3, 2, nullptr, nullptr, nullptr, nullptr, nullptr));
    // By Stirling's formula: -k (lg k - lg e - lg 2) with k = 1e300.
    EXPECT_NEAR(out / -2.9926467552e302, 1, 1e-8);
}

TEST(Families, ArraysEqualSingleCalls) {
    constexpr int kCount = 1000;
    const double shift = 3, low = 0.2, high = 0.9999999, not_given = -1, quarter = 0.25;
    std::vector<Instance> all = instances();
    for (const char* name : {"Gamma", "Pearson5", "Beta", "Pearson6", "F", "LogGamma", "Weibull", "Burr"}) {
        // Small shapes: most values are nearly 0, and none is negative.
        const ExportedFamily& f = family(name);
        for (const double shape : {0.02, 0.003, 1e-4}) {
            all.push_back({&f, Parameters(f.parameters, 1.0)});
            all.back().parameters[f.name == "Burr" ? 2 : 0] = shape;
        }
    }
    for (const Instance& i : all) {
        for (const Given& given :
             {Given{}, Given{.shift = &shift}, Given{nullptr, &kByPercentile, &low, &high}}) {
            std::vector<double> array(kCount);
            PralSetRandomSeed(11);
            ASSERT_TRUE(i.family->array(array, i.parameters, given)) << i.label() << PralCoreError();
            PralSetRandomSeed(11);
            for (const double value : array) {
                Given one = given;
                one.U =
                    &not_given;  // a percentile "not given" by value is inverted, never drawn by another method
                double single = kNaN;
                ASSERT_TRUE(i.family->value(&single, i.parameters, one));
                // Rounding relative to what was added: the shift may leave a small difference.
                const double size = std::fabs(single) + (given.shift != nullptr ? *given.shift : 0);
                EXPECT_LE(std::fabs(value - single), i.family->kind == "discrete" ? 0 : 1e-13 * size)
                    << i.label() << ": " << value << " instead of " << single;
            }
        }
        std::vector<double> same(3);
        ASSERT_TRUE(i.family->array(same, i.parameters, {&quarter}));
        EXPECT_EQ(same, std::vector<double>(3, i.quantile(quarter))) << i.label();
    }
}

TEST(Families, JointProbabilitiesAreProducts) {
    const double shift = -2;
    for (const Instance& i : instances()) {
        std::vector<double> x = {i.quantile(0.3), i.quantile(0.5), i.quantile(0.9)};
        for (const bool cumulative : {false, true}) {
            double product = 1;
            for (const double value : x) product *= i.probability({value}, cumulative, false);
            expect_near(i.probability(x, cumulative, false), product, 1e-13, i.label());
            expect_near(std::pow(10, i.probability(x, cumulative, true)), product, 1e-12, i.label());
            std::vector<double> moved = x;
            for (double& value : moved) value += shift;
            double out = kNaN;
            const std::vector<double> before = moved;
            ASSERT_TRUE(i.family->prob[0](&out, moved, i.parameters, cumulative ? &kCumulative : nullptr,
                                          {.shift = &shift}));
            for (std::size_t k = 0; k < x.size(); ++k) EXPECT_EQ(moved[k], before[k] - shift);
            EXPECT_EQ(out, i.probability(moved, cumulative, false)) << i.label();
        }
    }
}

/// Many values have ways of their own to their likelihood: block by block, or from statistics and counts.
/// No flag, 0 and -1 ask for the density, any other for the cumulative probability.
TEST(Families, MinusOneAsksForNoCumulative) {
    for (const Instance& i : instances()) {
        for (const auto& prob : i.family->prob) {
            const auto asked = [&](const int* flag) {
                double out = kNaN, x = i.quantile(0.5) + 1;
                EXPECT_TRUE(prob(&out, {&x, 1}, i.parameters, flag, {})) << PralCoreError();
                return out;
            };
            const double density = asked(nullptr), cumulative = asked(&kCumulative);
            EXPECT_NE(density, cumulative) << i.label();
            for (const int flag : {0, -1}) EXPECT_EQ(asked(&flag), density) << i.label() << ' ' << flag;
            for (const int flag : {-2, 7}) EXPECT_EQ(asked(&flag), cumulative) << i.label() << ' ' << flag;
        }
    }
}

TEST(Families, LogarithmsOfManyValuesAreSums) {
    constexpr int kCount = 300;
    for (const Instance& i : instances_of(nullptr)) {
        std::vector<double> x = {i.quantile(1e-9)};
        for (int k = 0; k < kCount; ++k) x.push_back(i.quantile((k + 0.5) / kCount));
        x.push_back(i.quantile(1 - 1e-9));
        double sum = 0, size = 0;
        for (const double value : x) {
            const double term = i.probability({value}, false, true);
            sum += term;
            size += std::fabs(term);
        }
        if (!(size < DBL_MAX)) continue;  // poles, and densities that underflow
        EXPECT_LE(std::fabs(i.probability(x, false, true) - sum), 1e-12 * size) << i.label();
    }
}

TEST(Families, TruncationRescales) {
    for (const Instance& i : instances()) {
        if (i.family->kind != "continuous") continue;
        const double low = 0.25, high = 0.75, u = 0.375;
        const double min = i.quantile(low), max = i.quantile(high);
        const double inside = i.quantile(low + u * (high - low));
        const Given forms[] = {{nullptr, &kByValue, &min, &max},
                               {nullptr, &kMaxByPercentile, &min, &high},
                               {nullptr, &kMinByPercentile, &low, &max},
                               {nullptr, &kByPercentile, &low, &high}};
        for (const Given& given : forms) {
            const std::string what = i.label() + " mode " + std::to_string(*given.mode);
            expect_near(i.quantile(u, given), inside, 1e-12, what);
            EXPECT_EQ(i.quantile(0, given), min) << what;
            EXPECT_EQ(i.quantile(1, given), max) << what;
            expect_near(i.probability({inside}, true, false, given), u, 1e-12, what);
            const double density = i.probability({inside}, false, false);
            expect_near(i.probability({inside}, false, false, given), density / (high - low), 1e-12, what);
            expect_near(i.probability({inside, inside}, false, true, given),
                        2 * (std::log10(density) - std::log10(high - low)), 1e-11, what);
            EXPECT_EQ(i.probability({std::nextafter(min, -DBL_MAX)}, true, true, given), -DBL_MAX) << what;
            EXPECT_EQ(i.probability({std::nextafter(max, DBL_MAX)}, false, false, given), 0) << what;
            EXPECT_EQ(i.probability({max}, true, false, given), 1) << what;
        }
        // One point is left: probability 1 there.
        const Given point = {nullptr, &kByValue, &min, &min};
        EXPECT_EQ(i.probability({min, min}, false, false, point), 1) << i.label();
        EXPECT_EQ(i.probability({min, max}, false, true, point), -DBL_MAX) << i.label();
        EXPECT_EQ(i.probability({min, max}, true, true, point), 0) << i.label();
        // A negative mode: no bounds.
        const int none = -1;
        EXPECT_EQ(i.quantile(u, {nullptr, &none, &max, &min}), i.quantile(u)) << i.label();
    }
}

/// A quantile beyond the largest double is that double as a bound, too; and a hazard rate beyond it is one.
TEST(Families, WhatOverflowsIsTheLargestDouble) {
    const double low = 0.4, infinity = DBL_MAX, u = 0.5;
    const Instance wide = {&family("LogGamma"), {7, 230, 0}};
    for (const int mode : {kMinByPercentile, kByPercentile}) {
        const double high = mode == kByPercentile ? 1 : infinity;
        EXPECT_EQ(wide.quantile(u, {nullptr, &mode, &low, &high}), DBL_MAX);
        EXPECT_EQ(wide.probability({5}, true, false, {nullptr, &mode, &low, &high}), 0);
    }
    for (const double rate : {709.0, 718.0, 1e4, 1e300}) {
        const Instance hazard = {&family("LifetimeExp"), {rate, 0.07}};
        EXPECT_EQ(hazard.probability({0}, true, false), 0) << rate;
        EXPECT_EQ(hazard.probability({1e-3}, true, false), 1) << rate;
        EXPECT_EQ(hazard.probability({0}, false, true), std::min(rate / std::log(10), DBL_MAX)) << rate;
    }
    expect_near(Instance{&family("LifetimeExp"), {718, 0.07}}.quantile(0.9), 3.45762334793679e-312, 1e-9,
                "far out");
}

/// Wider than the largest double: all that a distribution on [-1, 1.5] gives, 2^1023 times as large, to the last bit.
TEST(Families, WideRangesAreNarrowOnesScaled) {
    const struct {
        const char* name;
        Parameters narrow;
        std::size_t first, last;  // of the parameters that are places
    } rows[] = {
        {"Uniform", {-1, 1.5}, 0, 1},
        {"Triangle", {-1, 0.5, 1.5}, 0, 2},
        {"TriangleAlt", {-0.5, 0.25, 0.75, 0.2, 0.8}, 0, 2},
        {"SplitTriangle", {-0.5, 0.25, 0.75, 0.2, 0.5, 0.8}, 0, 2},
        {"GTU", {-1, -0.5, 0.5, 1.5, 2, 3}, 0, 3},
        {"Bradford", {3, -1, 1.5}, 1, 2},
        {"Kumaraswamy4", {2, 3, -1, 1.5}, 2, 3},
        {"Kumaraswamy4", {0.01, 0.1, -1, 1.5}, 2, 3},
        {"Beta4", {2, 3, -1, 1.5}, 2, 3},
        {"Beta4", {0.5, 0.01, -1, 1.5}, 2, 3},
        {"Beta4", {300, 2e4, -1, 1.5}, 2, 3},
        {"BetaSubj", {-1, 0.2, 0.3, 1.5}, 0, 3},
        {"PERT", {-1, -1, 1.5}, 0, 2},
        {"ModPERT", {-1, 0.5, 1.5, 7}, 0, 2},
        {"PERTAlt", {-0.5, 0.25, 0.75, 0.2, 0.8}, 0, 2},
        {"JohnsonB", {1, 2, -1, 1.5}, 2, 3},
        {"JohnsonB", {20, 30, -1, 1.5}, 2, 3},
    };
    constexpr double kScale = 0x1p1023;
    const double low = -0.75, high = 1.25, wide_low = low * kScale, wide_high = high * kScale;
    const Given inside{.min = &low, .max = &high}, wide_inside{.min = &wide_low, .max = &wide_high};
    for (const auto& [name, parameters, first, last] : rows) {
        Instance narrow{&family(name), parameters}, wide = narrow;
        for (std::size_t i = first; i <= last; ++i) wide.parameters[i] *= kScale;
        for (const double u : {0.0, 1e-300, 1e-12, 0.01, 0.3, 0.5, 0.55, 0.99, 1 - 1e-12, 1.0}) {
            EXPECT_EQ(wide.quantile(u), narrow.quantile(u) * kScale) << wide.label() << " at " << u;
            EXPECT_EQ(wide.quantile(u, wide_inside), narrow.quantile(u, inside) * kScale) << wide.label();
        }
        std::vector<double> places, wide_places;
        for (int i = 0; i < 40; ++i) {
            places.push_back(-0.9 + 0.05 * i);
            wide_places.push_back(places.back() * kScale);
            const double x = places.back(), wide_x = wide_places.back();
            for (const bool log10 : {false, true})
                EXPECT_EQ(wide.probability({wide_x}, true, log10), narrow.probability({x}, true, log10))
                    << wide.label() << " at " << x;
            EXPECT_EQ(wide.probability({wide_high}, true, true, {.min = &wide_low}),
                      narrow.probability({high}, true, true, {.min = &low}));
        }
        const double densities = narrow.probability(places, false, true) - 40 * 1023 * std::log10(2.0);
        expect_near(wide.probability(wide_places, false, true), densities, 1e-14, wide.label());
        std::vector<double> values(400), wide_values(400);
        PralSetRandomSeed(5);
        EXPECT_TRUE(narrow.family->array(values, narrow.parameters, {}));
        PralSetRandomSeed(5);
        EXPECT_TRUE(wide.family->array(wide_values, wide.parameters, {}));
        for (std::size_t i = 0; i < values.size(); ++i)
            expect_near(wide_values[i] / kScale, values[i], 1e-12, wide.label());
    }
}

/// Counts between bounds of all four forms: the percentile is rescaled to those of the bounds. Between two values (the lower
/// one not included) the masses sum to 1, and up to each value to its cumulative probability.
TEST(Families, TruncatedCountsFollowThePercentilesOfTheirBounds) {
    const double low = 0.2, high = 0.9;
    for (const Instance& i : instances()) {
        const double min = i.quantile(low), max = i.quantile(high);
        if (i.family->kind != "discrete" || min == max || max > 1e6) continue;
        for (const int mode : {kByValue, kMaxByPercentile, kMinByPercentile, kByPercentile}) {
            const bool low_given = (mode & kMinByPercentile) != 0,
                       high_given = (mode & kMaxByPercentile) != 0;
            const Given given = {nullptr, &mode, low_given ? &low : &min, high_given ? &high : &max};
            const double from = low_given ? low : i.probability({min}, true, false);
            const double mass = (high_given ? high : i.probability({max}, true, false)) - from;
            const std::string what = i.label() + " mode " + std::to_string(mode);
            if (!(mass > 0)) continue;
            const bool inflated = i.family->name.starts_with("ZI");  // rescales what is above its zeros
            if (!inflated) {
                for (const double u : {1e-9, 0.1, 0.5, 0.9})
                    EXPECT_EQ(i.quantile(u, given), i.quantile(from + u * mass)) << what << ' ' << u;
                EXPECT_EQ(i.quantile(0, given), min) << what;
            }
            EXPECT_EQ(i.quantile(1, given), max) << what;
            double sum = 0;
            for (double x = min; mode == kByValue && x <= max && x < min + 1000; ++x) {
                const double density = i.probability({x}, false, false, given);
                if (x > min) sum += density;
                EXPECT_NEAR(i.probability({x}, true, false, given), sum, 1e-12) << what << ' ' << x;
                if (density > 0) {
                    EXPECT_NEAR(i.probability({x}, false, true, given), std::log10(density), 1e-12) << what;
                }
            }
            if (mode == kByValue && max < min + 1000) {
                EXPECT_NEAR(sum, 1, 1e-12) << what;
            }
            if (mode == kByPercentile)
                expect_near(i.probability({max}, false, false, given),
                            i.probability({max}, false, false) / 0.7, 1e-12, what);
            EXPECT_EQ(i.probability({max}, true, false, given), 1) << what;
            EXPECT_EQ(i.probability({max + 1}, false, false, given), 0) << what;
            EXPECT_EQ(i.probability({min - 1}, true, true, given), -DBL_MAX) << what;
        }
    }
}

/// The logarithm of a cumulative probability does not end with the range of doubles. Expected values by mpmath.
TEST(Families, CumulativesBelowTheRangeOfDoublesKeepTheirLogarithms) {
    const struct {
        const char* family;
        Parameters parameters;
        double x, expected;
    } cases[] = {
        {"Poisson", {2000}, 5, -854.161908523635},
        {"Poisson", {1e12}, 1e12 - 5e7, -544.9753730235959},
        {"Binomial", {10000, 0.5}, 3, -2999.07810786848},
        {"BetaBinomial", {1e5, 2000, 2000}, 3, -3079.1156349491},
        {"BetaNegBin", {2000, 2000, 2000}, 3, -446.853425676162},
        {"Hypergeo", {2000, 5000, 10000}, 3, -701.942284832217},
        {"InvHypergeo", {2000, 5000, 10000}, 3, -703.217207041394},
        {"HypergeoD", {2000, 4000, 10000}, 2100, -808.740013755733},
        {"Skellam", {5000, 1000}, 100, -631.038997325825},
        {"Skellam", {500, 1000}, -3100, -762.01538345274},
        {"Delaporte", {2000, 1, 100}, 100, -498.40186657164},
        {"PoissonUniform", {2000, 2100}, 100, -698.411451142317},
        {"BurntFingerPoisson", {2500, 2000}, 100, -697.11453103143},
        {"ZTPoisson", {750}, 1, -322.845800164047},
        {"NCChiSq", {100, 1}, 1e-9, -529.751721896833},
        {"Lifetime2", {0, 1}, 1e-165, -330.301029995664},
        {"Lifetime2", {0, 1}, 1e-161, -322.301029995664},
    };
    for (const auto& c : cases) {
        const Instance i = {&family(c.family), c.parameters};
        expect_near(i.probability({c.x}, true, true), c.expected, 2e-12, i.label());
        EXPECT_EQ(i.probability({c.x}, true, false), std::pow(10, c.expected))
            << i.label();  // 0, or denormal
    }
    const double below = -1, above = 3000;
    const Instance poisson = {&family("Poisson"), {2000}};
    expect_near(poisson.probability({5}, true, true, {nullptr, &kByValue, &below, &above}), -854.161908523635,
                1e-12, "bounded");
}

/// Where no double tells the tails at two bounds apart, values are the bound nearer to the mass, and densities are still
/// those of what is kept.
TEST(Families, BoundsBeyondTheRangeOfTails) {
    const struct {
        const char* family;
        Parameters parameters;
        double min, max, nearer;
    } cases[] = {
        {"Expon", {1}, 800, DBL_MAX, 800},       {"Expon", {1}, 800, 900, 800},
        {"Expon", {1}, 745.13, DBL_MAX, 745.13}, {"Normal", {0, 1}, 40, DBL_MAX, 40},
        {"Normal", {0, 1}, -50, -40, -40},       {"Poisson", {4}, 400, 500, 400},
        {"ZTPoisson", {4}, 400, DBL_MAX, 400},   {"Skellam", {3, 2}, -500, -400, -400},
        {"Rayleigh", {1}, 40, 41, 40},           {"Gamma", {2, 1}, 900, 901, 900},
        {"Weibull", {2, 1}, 30, 40, 30},         {"Student", {1e6}, 1e4, 2e4, 1e4},
    };
    for (const auto& c : cases) {
        const Instance i = {&family(c.family), c.parameters};
        const Given given = {nullptr, &kByValue, &c.min, &c.max};
        for (const double u : {1e-9, 0.3, 0.5, 0.999}) EXPECT_EQ(i.quantile(u, given), c.nearer) << i.label();
        std::vector<double> many(400, kNaN);
        ASSERT_TRUE(i.family->array(many, i.parameters, given));
        for (const double x : many) EXPECT_EQ(x, c.nearer) << i.label();
        EXPECT_GT(i.probability({c.nearer}, false, true, given), -2) << i.label();
    }
    const double below = 34, above = DBL_MAX;
    const Instance inflated = {&family("ZIPoisson"), {4, 0.625}};
    const Given tail = {nullptr, &kByValue, &below, &above};
    EXPECT_EQ(inflated.quantile(0.2, tail), 0);
    EXPECT_EQ(inflated.quantile(0.9, tail), 36);
}

/// Bounds wholly outside the support give its nearer end for every percentile.
TEST(Families, BoundsOutsideTheSupportGiveItsNearerEnd) {
    for (const Instance& i : instances()) {
        if (i.family->name == "ZISkellam") continue;  // its percentile 0 is not its lowest
        const double bottom = i.quantile(0), top = i.quantile(1);
        for (const bool above : {false, true}) {
            const double end = above ? top : bottom;
            if (std::fabs(end) > 1e9) continue;
            const double min = above ? end + 2 : end - 5, max = above ? end + 5 : end - 2;
            const bool inflated = i.family->name.starts_with("ZI");  // percentiles of the zeros stay 0
            for (const double u : {0.0, 0.5, 1.0}) {
                if (inflated && u < 1) continue;
                EXPECT_EQ(i.quantile(u, {nullptr, &kByValue, &min, &max}), end) << i.label() << ' ' << u;
            }
        }
    }
}

/// Counts whose percentiles are taken from a nearly normal variable keep to their own tails where those percentiles have no
/// digits. Expected values by mpmath: the least k with P(X > k) <= (1 - u) P(X > min), masses summed downwards in 50 digits;
/// P(X > min), for the percentile of a lower bound is that of the bound itself. The inflated family has the Poisson's 2 u - 1.
TEST(Families, LargeCountsFarInTheUpperTail) {
    const double max = DBL_MAX, half = 0.5;
    const struct {
        const char* family;
        Parameters parameters;
        double min, u, expected;
    } cases[] = {
        {"Poisson", {5001}, 5601, 0.5, 5607},
        {"ZTPoisson", {5001}, 5601, 0.5, 5607},
        {"BurntFingerPoisson", {5001, 5001}, 5601, 0.5, 5607},
        {"Binomial", {1e8, 0.01}, 1008300, 0.5, 1008382},
        {"ZIPoisson", {5001, 0.5}, 5601, 0.75, 5613},
    };
    for (const auto& c : cases) {
        const Instance i = {&family(c.family), c.parameters};
        EXPECT_EQ(i.quantile(c.u, {nullptr, &kByValue, &c.min, &max}), c.expected) << i.label();
        if (c.u != half || c.min > 1e6) continue;
        EXPECT_EQ(i.quantile(c.u, {nullptr, &kByValue, &c.min, &max, &half}),
                  c.expected + (i.family->name == "ZTPoisson" ? 0.5 : 0))
            << i.label();
    }
}

/// -0.0 is 0.0 as a value, a bound and a parameter.
TEST(Families, MinusZeroIsZero) {
    const auto minus = [](double x) { return x == 0 ? -0.0 : x; };
    const double zero = 0, minus_zero = -0.0, one = 1;
    for (const Instance& i : instances_of(nullptr)) {
        Instance other = i;
        for (double& p : other.parameters) p = minus(p);
        for (const bool cumulative : {false, true}) {
            for (const bool log10 : {false, true}) {
                const double expected = i.probability({0.0}, cumulative, log10);
                EXPECT_EQ(i.probability({-0.0}, cumulative, log10), expected) << i.label();
                EXPECT_EQ(other.probability({0.0}, cumulative, log10), expected) << i.label();
            }
        }
        for (const double u : {0.0, 0.25, 0.5, 1.0}) {
            const double value = i.quantile(u), of_other = other.quantile(u);
            EXPECT_EQ(of_other, value) << i.label();
            EXPECT_FALSE(of_other == 0 && std::signbit(of_other)) << i.label();
            const Given from_zero = {nullptr, &kByValue, &zero, &one},
                        from_minus_zero = {nullptr, &kByValue, &minus_zero, &one};
            const double bounded = i.quantile(u, from_minus_zero);
            EXPECT_EQ(bounded, i.quantile(u, from_zero)) << i.label();
            EXPECT_FALSE(bounded == 0 && std::signbit(bounded)) << i.label();
        }
    }
}

/// A zero-truncated family is its base family kept above 1/2: values, masses and cumulative probabilities.
TEST(Families, ZeroTruncationIsABoundBetweenZeroAndOne) {
    const double half = 0.5, infinity = DBL_MAX;
    const Given bounds = {nullptr, &kByValue, &half, &infinity};
    int compared = 0;
    for (const Instance& i : instances()) {
        if (!i.family->name.starts_with("ZT")) continue;
        const Instance base = {&family(i.family->name.substr(2)), i.parameters};
        if (base.probability({0}, false, false) > 0.9) continue;  // percentiles that differ by few digits
        ++compared;
        for (const double u : {1e-9, 0.01, 0.3, 0.7, 0.999})
            EXPECT_EQ(i.quantile(u), base.quantile(u, bounds)) << i.label() << ' ' << u;
        for (double x = 0; x < 30; ++x) {
            for (const bool cumulative : {false, true})
                EXPECT_NEAR(i.probability({x}, cumulative, false),
                            base.probability({x}, cumulative, false, bounds), 1e-13)
                    << i.label() << ' ' << x;
        }
    }
    EXPECT_GE(compared, 11);
}

/// A bound between integers has the percentile of the integer that the probability members take it for, the next towards 0.
TEST(Families, BoundsBetweenIntegersAreThoseOfTheIntegers) {
    for (const Instance& i : instances()) {
        if (i.family->kind != "discrete") continue;
        const auto between = [](double k, double part) { return k + std::copysign(part, k); };
        const double low = i.quantile(0.3), high = i.quantile(0.9);
        if (low == high || high > 1e6) continue;
        const double min = between(low, 0.25), max = between(high, high < 0 ? 0.0 : 0.75),
                     beside = low + 1e-9, nearest = high - 1e-9;
        const Given whole = {nullptr, &kByValue, &low, &high}, part = {nullptr, &kByValue, &min, &max},
                    nearly = {nullptr, &kByValue, &beside, &nearest};
        for (const double u : {1e-9, 0.2, 0.5, 0.999}) {
            EXPECT_EQ(i.quantile(u, part), i.quantile(u, whole)) << i.label() << ' ' << u;
            EXPECT_EQ(i.quantile(u, nearly), i.quantile(u, whole)) << i.label() << ' ' << u;
        }
        for (const bool cumulative : {false, true}) {
            for (const double x : {low + 1, high}) {
                const double expected = i.probability({x}, cumulative, false, whole);
                if (x < high || cumulative) {
                    EXPECT_EQ(i.probability({x}, cumulative, false, nearly), expected)
                        << i.label() << ' ' << x;
                }
                expect_near(i.probability({x}, cumulative, false, part), expected, 1e-15, i.label());
            }
        }
    }
}

TEST(Families, SurviveHostileArguments) {
    constexpr double kHostile[] = {kNaN,   HUGE_VAL, -HUGE_VAL, DBL_MAX, -DBL_MAX, 1e300,
                                   -1e300, 1e-300,   5e-324,    0.0,     -1.0};
    constexpr double kHostileBounds[] = {kNaN, HUGE_VAL, -DBL_MAX, 1e300, 5e-324, 0.5};
    for (const Instance& i : instances()) {
        for (std::size_t k = 0; k < i.parameters.size(); ++k) {
            for (const double hostile : kHostile) {
                Parameters parameters = i.parameters;
                parameters[k] = hostile;
                for (const double& u : {0.0, 1e-300, 0.5, 1 - 0x1p-53}) {
                    double out = kNaN;
                    if (i.family->value(&out, parameters, {&u})) {
                        EXPECT_FALSE(std::isinf(out)) << i.label();
                    }
                    const double low = 0.4, high = 0.6;
                    i.family->value(&out, parameters, {&u, &kByPercentile, &low, &high});
                    i.family->value(&out, parameters, {&u, &kByValue, &low, &high});
                }
                for (const bool log10 : {false, true}) {
                    double out = kNaN, x[] = {0.5, 3};
                    i.family->prob[log10](&out, x, parameters, nullptr, {});
                    i.family->prob[log10](&out, x, parameters, &kCumulative, {});
                    EXPECT_FALSE(std::isinf(out)) << i.label();
                }
            }
        }
        for (const double min : kHostileBounds) {
            for (const double max : kHostileBounds) {
                for (const int mode : {kByValue, kMaxByPercentile, kMinByPercentile, kByPercentile}) {
                    const double u = 0.5;
                    double out = kNaN, p = kNaN, x[] = {1, 2};
                    const Given given = {&u, &mode, &min, &max, &max};
                    if (i.family->value(&out, i.parameters, given)) {
                        EXPECT_FALSE(std::isinf(out)) << i.label();
                    }
                    if (i.family->prob[0](&p, x, i.parameters, &kCumulative, given)) {
                        EXPECT_FALSE(p < 0 || p > 1) << i.label() << ' ' << min << ' ' << max;
                    }
                    i.family->prob[1](&p, x, i.parameters, nullptr, given);
                }
            }
        }
        for (const double hostile : kHostile) {
            for (const bool log10 : {false, true}) {
                const double density = i.probability({hostile}, false, log10);
                const double cumulative = i.probability({hostile}, true, log10);
                EXPECT_EQ(std::isnan(density) && std::isnan(cumulative), std::isnan(hostile)) << i.label();
            }
        }
    }
}

}  // namespace
