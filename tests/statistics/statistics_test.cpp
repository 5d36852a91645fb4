// Moments, ranks, rank correlations and comparisons against references (reference/statistics.tsv), and what is the
// library's own: silent failures, ties, NaN, definitions of dominance.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <map>
#include <string>
#include <vector>

#include "classic/automation.h"
#include "classic/core_api.h"
#include "classic/stream.h"
#include "statistics/ranks.h"
#include "statistics/resampling.h"
#include "support/table.h"

namespace {

using Values = std::vector<double>;
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

using Moment = bool (*)(double*, const double*, uint64_t);
const std::map<std::string, Moment> kMoments = {{"mean", PralMean_Core},
                                                {"variance", PralVariance_Core},
                                                {"standard_deviation", PralStDev_Core},
                                                {"skewness", PralSkewness_Core},
                                                {"kurtosis", PralKurtosis_Core}};

/// What a function of the table gives for the row's data.
Values evaluate(const std::string& function, const Values& x, const Values& y) {
    const int n = static_cast<int>(x.size());
    Values out(1);
    if (kMoments.contains(function)) {
        EXPECT_TRUE(kMoments.at(function)(out.data(), x.data(), x.size()));
    } else if (function == "certified") {
        out.resize(2);
        EXPECT_TRUE(PralMean_Core(&out[0], x.data(), x.size()) &&
                    PralStDev_Core(&out[1], x.data(), x.size()));
    } else if (function == "population") {
        out.resize(4);
        EXPECT_TRUE(PralMomentsFromValues(x.data(), n, &out[0], &out[1], &out[2], &out[3]));
    } else if (function.starts_with("rank")) {
        out.resize(x.size());
        EXPECT_TRUE(PralRank_Core(out.data(), n, x.data(), function == "rank_descending"));
    } else if (function == "spearman") {
        EXPECT_TRUE(PralSpearman_Core(out.data(), x.data(), y.data(), n));
    } else if (function == "kendall_s") {
        out[0] = static_cast<double>(pral::statistics::kendall_s(x, y));
        double tau = 0;
        EXPECT_TRUE(PralKendallsTau_Core(&tau, x.data(), y.data(), n));
        EXPECT_EQ(tau, out[0] / (0.5 * n * (n - 1)));
    } else {
        Values copy = x;
        out[0] = pral::statistics::percentile(copy, y.at(0));
    }
    return out;
}

/// Allowed error relative to the result: the measured worst times four. The certified data lie up to 1e8 spreads from
/// 0, so that the deviation of the doubles themselves is off by 6e-9; the skewness meets data 1000 spreads away.
double tolerance(const std::string& function) {
    const std::map<std::string, double> allowed = {
        {"rank", 0}, {"rank_descending", 0}, {"kendall_s", 0}, {"certified", 3e-8}, {"skewness", 7e-12}};
    return allowed.contains(function) ? allowed.at(function) : 3e-13;
}

TEST(Statistics, AgreeWithReferences) {
    int rows = 0;
    for (const auto& row : pral::test::table("reference/statistics.tsv")) {
        const Values expected = pral::test::numbers(row[3]);
        const Values found = evaluate(row[0], pral::test::numbers(row[1]), pral::test::numbers(row[2]));
        ASSERT_EQ(found.size(), expected.size());
        for (std::size_t i = 0; i < found.size(); ++i, ++rows) {
            const double allowed = tolerance(row[0]) * std::max(std::fabs(expected[i]), 1e-3);
            EXPECT_NEAR(found[i], expected[i], allowed) << row[0] << " of " << row[1].substr(0, 60);
        }
    }
    EXPECT_GT(rows, 1000);
}

TEST(Statistics, TooFewValuesFailInSilence) {
    const double x[] = {1, 2, 3, 4};
    const struct {
        const char* name;
        uint64_t needed;
    } rows[] = {{"mean", 1}, {"variance", 2}, {"standard_deviation", 0}, {"skewness", 3}, {"kurtosis", 3}};
    for (const auto& row : rows) {
        const Moment moment = kMoments.at(row.name);
        PralSetCoreError("before");
        for (uint64_t n = 0; n <= 4; ++n) {
            double out = -7;
            EXPECT_EQ(moment(&out, x, n), n >= row.needed) << row.name;
            EXPECT_EQ(out == -7, n < row.needed) << row.name;
        }
        double out = -7;
        EXPECT_FALSE(moment(&out, x, static_cast<uint64_t>(-1)));  // a negative count
        EXPECT_STREQ(PralCoreError(), "before");
        EXPECT_FALSE(moment(nullptr, x, 4));
        EXPECT_STREQ(PralCoreError(), "Error: out must not be null");
    }
    double out = 0;
    EXPECT_TRUE(PralStDev_Core(&out, x, 1));
    EXPECT_TRUE(std::isnan(out));
    EXPECT_TRUE(PralKurtosis_Core(&out, x, 3));
    EXPECT_FALSE(std::isfinite(out));
}

TEST(Statistics, TableMomentsEndAtAZeroBeyondTheMiddle) {
    const double away = 0x1p30;
    const struct {
        Values x, p;
        double mean, variance, skewness, kurtosis;
    } rows[] = {
        // Far from 0, by probabilities that sum to 1 in rounded arithmetic, and that leave a tenth for 0.
        {{away, away + 1}, {0.1, 0.9}, away + 0.9, 0.09, -8 / 3.0, 73 / 9.0},
        {{1000, 1002}, {0.45, 0.45}, 900.9, 90180.99, -2.666616767164265, 8.11095586860208},
        {{0, 1}, {0.5, 0.5}, 0.5, 0.25, 0, 1},
        {{0, 9, 1, 5, 100}, {0.5, 0, 0.5, 0, 1}, 0.5, 0.25, 0, 1},  // ends at index 3 > 5/2
        {{9, 9, 9, 0, 1}, {0, 0, 0, 0.5, 0.5}, 0.5, 0.25, 0, 1},    // index 2 is not above 5/2
        {{0, 1}, {0.5, 0.25}, 0.25, 0.1875, 2 / std::sqrt(3.0), 7.0 / 3},
    };
    for (const auto& row : rows) {
        double out[4];
        ASSERT_TRUE(PralRawMoments_Core(row.x.data(), row.p.data(), static_cast<int>(row.x.size()), &out[0],
                                        &out[1], &out[2], &out[3]));
        EXPECT_DOUBLE_EQ(out[0], row.mean);
        EXPECT_DOUBLE_EQ(out[1], row.variance);
        EXPECT_NEAR(out[2], row.skewness, 1e-15);
        EXPECT_NEAR(out[3], row.kurtosis, 1e-14);
    }
}

TEST(Statistics, RanksAndCorrelationsOfNanAndConstants) {
    const Values x = {2, kNaN, 1, kNaN, 2}, constant(5, 3), y = {1, 2, 3, 4, 2.5};
    Values ranks(5);
    ASSERT_TRUE(PralRank_Core(ranks.data(), 5, x.data(), 0));
    EXPECT_EQ(ranks, (Values{2.5, 4, 1, 5, 2.5}));
    double out = 0;
    EXPECT_TRUE(PralSpearman_Core(&out, x.data(), y.data(), 5));
    EXPECT_TRUE(std::isnan(out));
    EXPECT_TRUE(PralSpearman_Core(&out, constant.data(), y.data(), 5));
    EXPECT_EQ(out, 0);
    EXPECT_EQ(pral::statistics::kendall_s(x, y), -2);  // (2, 1) and (1, 3), (1, 3) and (2, 2.5)
    EXPECT_TRUE(PralKendallsTau_Core(&out, y.data(), y.data(), 1));
    EXPECT_TRUE(std::isnan(out));
    EXPECT_FALSE(PralSpearman_Core(&out, x.data(), y.data(), 0));
    EXPECT_STREQ(PralCoreError(), "Error: length of the array must be >0");
}

TEST(Statistics, KendallCountsBeyondThirtyTwoBits) {
    const int n = 100000;
    Values x(n), y(n);
    for (int i = 0; i < n; ++i) {
        x[i] = i / 2;
        y[i] = -i;
    }
    EXPECT_EQ(pral::statistics::kendall_s(x, y), -(static_cast<std::int64_t>(n) * (n - 1) / 2 - n / 2));
    double tau = 0;
    ASSERT_TRUE(PralKendallsTau_Core(&tau, y.data(), y.data(), n));
    EXPECT_EQ(tau, 1);  // in whatever number
}

TEST(Statistics, CorrelationMatrixOfARange) {
    const Values columns = {1, 5, 2, 2, 4, 2, 3, 3, 9, 4, 2, kNaN};  // 4 observations of 3 variables
    Values rows(12), a(9), b(9);
    for (int i = 0; i < 12; ++i) rows[i % 3 * 4 + i / 3] = columns[i];
    ASSERT_TRUE(PralCorrMatrix_Core(a.data(), columns.data(), 4, 3, 0));
    ASSERT_TRUE(PralCorrMatrix_Core(b.data(), rows.data(), 3, 4, 1));
    const Values expected = {1, -1, kNaN, -1, 1, kNaN, kNaN, kNaN, 1};
    for (int i = 0; i < 9; ++i) {
        EXPECT_TRUE(std::isnan(expected[i]) ? std::isnan(a[i]) : std::fabs(a[i] - expected[i]) < 1e-15) << i;
        EXPECT_TRUE(a[i] == b[i] || std::isnan(a[i])) << i;
    }

    // A replicate keeps the observations whole: two variables in step stay so, whatever is drawn.
    const Values pairs = {1, 10, 2, 20, 3, 30, 4, 40, 5, 50, 6, 60};
    double u = 0, copy = 0;
    PralSetRandomSeed(9);
    ASSERT_TRUE(PralCorrMatrixU_Core(a.data(), pairs.data(), 6, 2, 0));
    EXPECT_NEAR(a[1], 1, 1e-15);
    const Values first = {1, 2, 3, 4, 5, 6}, second = {3, 1, 4, 1, 5, 9};
    Values both(12);
    for (int i = 0; i < 6; ++i) {
        both[2 * i] = first[i];
        both[2 * i + 1] = second[i];
    }
    PralSetRandomSeed(4);
    ASSERT_TRUE(PralSpearmanU_Core(&u, first.data(), second.data(), 6));
    PralSetRandomSeed(4);
    ASSERT_TRUE(PralCorrMatrixU_Core(a.data(), both.data(), 6, 2, 0));
    ASSERT_TRUE(PralSpearman_Core(&copy, first.data(), second.data(), 6));
    EXPECT_NEAR(a[1], u, 1e-15);
    EXPECT_NE(u, copy);

    SAFEARRAY* small = SafeArrayCreateVector(VT_R8, 0, 3);
    EXPECT_FALSE(PralCorrMatrixVB_Core(&small, both.data(), 6, 2, 0));
    EXPECT_STREQ(PralCoreError(), "Error: Output array is not valid");
    EXPECT_FALSE(PralCorrMatrixUVB_Core(&small, both.data(), 1, 12, 0));
    EXPECT_STREQ(PralCoreError(), "Error: DataRange values must be in a two-dimentional array");
    SafeArrayDestroy(small);
}

TEST(Statistics, InequalityAndDominance) {
    const Values x = {3, 4}, y = {0, 0};
    double out = 7;
    EXPECT_TRUE(PralThielU_Core(&out, x.data(), 2, y.data(), 2));
    EXPECT_EQ(out, 1);
    EXPECT_TRUE(PralThielU_Core(&out, y.data(), 2, y.data(), 2));
    EXPECT_TRUE(std::isnan(out));
    EXPECT_FALSE(PralThielU_Core(&out, x.data(), 2, y.data(), 1));
    EXPECT_STREQ(PralCoreError(), "Error: the number of elements in {x} and {y} must be equal");

    const struct {
        Values x, y;
        double code;
    } rows[] = {
        {{1, 2, 3}, {1, 2, 3}, 0},
        {{1, 2, 3}, {3, 1, 1, 2, 3, 2}, 0},  // the same distribution
        {{2, 3}, {1, 3}, 1},
        {{2, 2}, {1, 3}, 2},     // the same mean, less spread
        {{0.2}, {0.1, 0.3}, 2},  // likewise, to rounding
        {{1.9, 2}, {1, 3}, 0},   // less spread, but a smaller mean
        {{2, 2.5}, {1, 3}, 2},
        {{1}, {0.5, 4}, 0},  // higher floor, smaller mean
        {{-1e308, 1e308}, {0, 1e308}, -1},
        {{2 - 0.9e-12, 2 - 0.9e-12}, {1, 3}, 2},  // a mean smaller by less than 1e-12 of the area between
        {{2 - 1.1e-12, 2 - 1.1e-12}, {1, 3}, 0},
    };
    for (const auto& row : rows) {
        const int nx = static_cast<int>(row.x.size()), ny = static_cast<int>(row.y.size());
        ASSERT_TRUE(PralDominance_Core(&out, row.x.data(), nx, row.y.data(), ny));
        EXPECT_EQ(out, row.code) << row.x[0];
        ASSERT_TRUE(PralDominance_Core(&out, row.y.data(), ny, row.x.data(), nx));
        EXPECT_EQ(out, -row.code) << row.x[0];
    }
    EXPECT_FALSE(PralDominance_Core(&out, &kInf, 1, y.data(), 2));
    EXPECT_FALSE(PralDominance_Core(&out, x.data(), 0, y.data(), 2));
    EXPECT_STREQ(PralCoreError(), "Error: length of the array must be >0");
}

TEST(Statistics, Interpolation) {
    const char* const kOutside = "Error: Value must lie within {independent} range";
    const struct {
        double x;
        Values xs, ys;
        int sort;
        double expected;      // when there is no message
        const char* message;  // null: success
    } rows[] = {
        {2, {1, 3}, {10, 20}, 0, 15, nullptr},
        {3, {1, 3}, {10, 20}, 0, 20, nullptr},
        {5, {5}, {7}, 1, 7, nullptr},
        {2, {3, 1, 2.5}, {20, 10, 17.5}, 1, 15, nullptr},
        {2, {3, 1, 2.5}, {20, 10, 17.5}, 0, 15, nullptr},  // the first stretch upwards that holds 2
        {2, {1, 3, 2}, {10, 20, 99}, 0, 15, nullptr},      // not the point 2 itself, which comes later
        {2, {1, 1, 3}, {1, 2, 3}, 0, 0, "Error: {independent} must contain unique values"},
        {2, {1, 3, 1}, {1, 2, 3}, 1, 0, "Error: {independent} must contain unique values"},
        {0.9, {1, 1}, {1, 2}, 0, 0, kOutside},
        {6, {5}, {7}, 1, 0, kOutside},
        {kNaN, {1, 2}, {1, 2}, 0, 0, kOutside},
        {1, {}, {}, 1, 0, kOutside},
    };
    for (const auto& row : rows) {
        Values xs = row.xs, ys = row.ys;
        double out = -7;
        const bool success =
            PralInterpolate_Core(&out, row.x, xs.data(), ys.data(), static_cast<int>(xs.size()), row.sort);
        EXPECT_EQ(success, row.message == nullptr) << row.x;
        EXPECT_EQ(out, row.expected) << row.x;
        if (row.message != nullptr) {
            EXPECT_STREQ(PralCoreError(), row.message);
        }
    }
    Values xs = {3, 1, 2},
           ys = {30, 10, 20};  // sorted in the caller's arrays, even though x is out of nothing
    double out = 0;
    ASSERT_TRUE(PralInterpolate_Core(&out, 1.5, xs.data(), ys.data(), 3, 1));
    EXPECT_EQ(xs, (Values{1, 2, 3}));
    EXPECT_EQ(ys, (Values{10, 20, 30}));
}

}  // namespace
