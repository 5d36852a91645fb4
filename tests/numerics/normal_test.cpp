// Error function, Phi and the normal quantile against 50-digit arithmetic (reference/normal.tsv).
#include "numerics/normal.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <map>
#include <string>

#include "numerics/classical/error_report.h"
#include "numerics/classical/reporting.h"
#include "numerics/constants.h"
#include "numerics/each.h"
#include "support/accuracy.h"
#include "support/table.h"

namespace {

using namespace pral;

struct Function {
    double (*evaluate)(double);
    /// Where the result counts as a body value, which has its bound in ulps; elsewhere the relative error counts.
    bool (*body)(double x);
};

const std::map<std::string, Function> kFunctions = {
    {"erf", {numerics::erf, [](double) { return true; }}},
    {"erfc", {numerics::erfc, [](double x) { return x < 2; }}},
    {"cumulative", {numerics::normal_cumulative, [](double x) { return x > -3; }}},
    {"log cumulative", {numerics::normal_log_cumulative, [](double) { return false; }}},
    {"density", {numerics::normal_density, [](double) { return false; }}},
    {"quantile", {numerics::normal_quantile, [](double x) { return std::fabs(x - 0.5) <= 0.425; }}},
};

TEST(Normal, FunctionsKeepTwoUlpsInTheBodyAnd1e15InTheTails) {
    test::Accuracy accuracy;
    for (const auto& row : test::table("reference/normal.tsv")) {
        const double x = test::number(row, 1), expected = test::number(row, 2);
        const Function& function = kFunctions.at(row[0]);
        const double actual = function.evaluate(x);
        if (std::fabs(expected) < 1e-300)
            EXPECT_NEAR(actual, expected, 1e-300 * 1e-12) << row[0] << ' ' << x;
        else if (function.body(x))
            accuracy.record(row[0] + " body, ulps", test::ulps(actual, expected), 2, row[1]);
        else
            accuracy.record(row[0] + " tail", test::relative_error(actual, expected), 1e-15, row[1]);
    }
    accuracy.report();
}

TEST(Normal, EndsAndNaN) {
    using namespace numerics;
    constexpr double inf = std::numeric_limits<double>::infinity();
    EXPECT_EQ(normal_cumulative(-inf), 0);
    EXPECT_EQ(normal_cumulative(inf), 1);
    EXPECT_EQ(normal_cumulative(-1e300), 0);
    EXPECT_EQ(normal_density(inf), 0);
    EXPECT_EQ(normal_log_cumulative(-inf), -kInfinity);
    EXPECT_EQ(normal_log_cumulative(inf), 0);
    EXPECT_EQ(normal_quantile(0), -kInfinity);
    EXPECT_EQ(normal_quantile(1), kInfinity);
    EXPECT_EQ(normal_quantile(0.5), 0);
    EXPECT_EQ(normal_quantile_upper(0), kInfinity);
    for (const auto& [name, function] : kFunctions) EXPECT_TRUE(std::isnan(function.evaluate(kNaN))) << name;
}

TEST(Normal, ErfcReportsItsUnderflow) {
    testing::internal::CaptureStdout();
    EXPECT_EQ(numerics::classical::erfc(27), 0);
    EXPECT_EQ(numerics::classical::erfc(-27), 2);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "\nerfc underflow error\n\nerfc underflow error\n");
    EXPECT_EQ(numerics::last_math_error(), 4);
    testing::internal::CaptureStdout();
    EXPECT_EQ(numerics::normal_cumulative(-50), 0);  // silently
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

TEST(Normal, BlockOfCumulativesKeepsDoublePrecision) {
    test::Accuracy accuracy;
    for (const auto& row : test::table("reference/normal.tsv")) {
        if (row[0] != "cumulative") continue;
        const double x = test::number(row, 1);
        double block[] = {x};
        numerics::normal_cumulatives(block);
        const double bound = 1e-15 + 1.2e-16 * x * x;  // the square in the exponent is rounded
        accuracy.record("block of cumulatives, of their bound",
                        test::relative_error(block[0], test::number(row, 2)) / bound, 1, row[1]);
    }
    accuracy.report();
    double ends[] = {-HUGE_VAL, -1e300, HUGE_VAL, 1e300, numerics::kNaN};
    numerics::normal_cumulatives(ends);
    EXPECT_EQ(ends[0] + ends[1], 0);
    EXPECT_EQ(ends[2] + ends[3], 2);
    EXPECT_TRUE(std::isnan(ends[4]));
}

TEST(Normal, BlocksKeepTwoUlpsInTheBodyAnd1e15InTheTails) {
    const std::map<std::string, void (*)(std::span<double>)> blocks = {
        {"cumulative", numerics::normal_cumulative_each},
        {"log cumulative", numerics::normal_log_cumulative_each},
        {"quantile", numerics::normal_quantile_each}};
    test::Accuracy accuracy;
    for (const auto& row : test::table("reference/normal.tsv")) {
        const auto block = blocks.find(row[0]);
        if (block == blocks.end()) continue;
        const double x = test::number(row, 1), expected = test::number(row, 2);
        double values[] = {x, 0.5, x, 0.01, x};
        block->second(std::span<double>(values));
        EXPECT_EQ(values[2], values[0]) << row[0] << ' ' << x;
        EXPECT_EQ(values[4], values[0]) << row[0] << ' ' << x;
        if (std::fabs(expected) < 1e-300)
            EXPECT_NEAR(values[0], expected, 1e-300 * 1e-12) << row[0] << ' ' << x;
        else if (kFunctions.at(row[0]).body(x))
            accuracy.record(row[0] + " in blocks, body, ulps", test::ulps(values[0], expected), 2, row[1]);
        else
            accuracy.record(row[0] + " in blocks, tail", test::relative_error(values[0], expected), 1e-15,
                            row[1]);
    }
    accuracy.report();
    double ends[] = {-HUGE_VAL, -1e300, HUGE_VAL, 1e300, 0, numerics::kNaN};
    numerics::normal_cumulative_each(ends);
    EXPECT_EQ(ends[0] + ends[1], 0);
    EXPECT_EQ(ends[2] + ends[3], 2);
    EXPECT_EQ(ends[4], 0.5);
    EXPECT_TRUE(std::isnan(ends[5]));
}

TEST(Normal, BlockOfQuantilesEqualsSingleOnes) {
    std::vector<double> p, single;
    for (int i = 0; i <= 2000; ++i) p.push_back(i / 2000.0);
    for (const double value : p) single.push_back(numerics::normal_quantile(value));
    numerics::normal_quantiles(p);
    EXPECT_EQ(p, single);
}

}  // namespace
