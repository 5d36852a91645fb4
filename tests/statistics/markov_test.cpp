// Markov chains against powers in 40-digit arithmetic, the checks and their order, and the moved populations.
#include <gtest/gtest.h>

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <limits>
#include <vector>

#include "classic/automation.h"
#include "classic/core_api.h"
#include "support/table.h"

namespace {

using Values = std::vector<double>;
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

int side(const Values& matrix) { return static_cast<int>(std::lround(std::sqrt(matrix.size()))); }

bool power(Values P, double t, Values& out) {
    out.assign(P.size(), -7);
    return PralMarkovMatrix_Core(out.data(), P.data(), side(P), side(P), t);
}

TEST(Markov, AgreesWithReferences) {
    int rows = 0;
    for (const auto& row : pral::test::table("reference/matrices.tsv")) {
        if (row[0] != "markov") continue;
        const double t = row[2] == "inf" ? DBL_MAX : std::stod(row[2]);
        const Values expected = pral::test::numbers(row[3]);
        Values out;
        ASSERT_TRUE(power(pral::test::numbers(row[1]), t, out)) << PralCoreError() << row[1];
        for (std::size_t i = 0; i < out.size(); ++i) EXPECT_NEAR(out[i], expected[i], 1e-13) << row[1] << t;
        ++rows;
    }
    EXPECT_GT(rows, 30);
}

TEST(Markov, SpecialCasesAndRefusals) {
    const char* const kRows = "Error: Matrix elements across rows must sum to 1";
    const char* const kNegative = "Error: Matrix must be positive semi-definite";
    const Values flip = {0, 1, 1, 0};
    const double e = 1e-12;
    const struct {
        Values P;
        double t;
        Values expected;      // of a success
        const char* message;  // null: success
    } rows[] = {
        {{0.9, 0.9, 3, 4}, 1, {0.9, 0.9, 3, 4}, nullptr},
        {flip, 0, {1, 0, 0, 1}, nullptr},
        {flip, 2, {1, 0, 0, 1}, nullptr},
        {flip, 1e300, {1, 0, 0, 1}, nullptr},
        {flip, 0.5, {}, kNegative},
        {flip, DBL_MAX, {}, kNegative},
        {{0.5, 0.5, 0.5, 0.5}, DBL_MAX, {0.5, 0.5, 0.5, 0.5}, nullptr},
        {{0.5, 0.50001, 0.5, 0.5}, 0, {1, 0, 0, 1}, nullptr},
        {{0.5, 0.500011, 0.5, 0.5}, 0, {}, kRows},
        {{0.9, 0.1, 0.9, 0.1}, 0.5, {0.9, 0.1, 0.9, 0.1}, nullptr},  // 0 to rounding, whatever its sign
        {{0.5 - e, 0.5 + e, 0.5 + e, 0.5 - e}, 0.5, {}, kNegative},  // an eigenvalue -2e-12
        {{1 - 1e-8, 1e-8, 1e-8, 1 - 1e-8}, DBL_MAX, {0.5, 0.5, 0.5, 0.5}, nullptr},
        {{1 - 1e-10, 1e-10, 1e-10, 1 - 1e-10}, DBL_MAX, {1, 0, 0, 1}, nullptr},  // counts as one that stays
        {{0.5, kNaN, 0.5, 0.5}, 2, {}, kRows},
        {{0.5, 0, 0.5, 0.5}, 1, {0.5, 0.5, 0.5, 0.5}, nullptr},  // completed by its lower triangle
        {{1, -1e-9, 0, 1}, 1, {}, "Error: matrix elements must be >=0"},
        {{-1, 2, 0, 3}, -1, {}, "Error: T must be >=0"},
        {flip, kNaN, {}, "Error: T must be >=0"},
        {{}, 2, {}, "Error: MarkovMatrix calculation failed!"},
    };
    for (const auto& row : rows) {
        Values out;
        EXPECT_EQ(power(row.P, row.t, out), row.message == nullptr) << row.t << PralCoreError();
        if (row.message != nullptr) {
            EXPECT_STREQ(PralCoreError(), row.message);
            EXPECT_EQ(out, Values(out.size(), -7));
            continue;
        }
        for (std::size_t i = 0; i < out.size(); ++i) EXPECT_NEAR(out[i], row.expected[i], 1e-15) << row.t;
    }
    Values P = {0.5, 0, -0.5, 1.5}, out(4);
    EXPECT_FALSE(PralMarkovMatrix_Core(out.data(), P.data(), 2, 1, 2.0));
    EXPECT_STREQ(PralCoreError(), "Error: Input Matrix must be square");
    EXPECT_FALSE(PralMarkovMatrix_Core(out.data(), P.data(), 2, 2, 2.0));
    EXPECT_EQ(P[1], -0.5);  // completed although refused
    EXPECT_FALSE(PralMarkovMatrix_Core(out.data(), nullptr, 2, 2, 2.0));
    EXPECT_STREQ(PralCoreError(), "Error: P must not be null");
    SAFEARRAY* small = SafeArrayCreateVector(VT_R8, 0, 3);
    EXPECT_FALSE(PralMarkovMatrixVB_Core(&small, out.data(), 2, 2, 2.0));
    EXPECT_STREQ(PralCoreError(), "Error: Output array is not valid");
    SafeArrayDestroy(small);
}

TEST(Markov, PowersOfALargeChainAreChains) {
    const int n = 200;
    Values P(n * n), out;
    for (int i = 0; i < n; ++i) {
        double sum = 0;
        for (int j = 0; j < n; ++j) sum += P[i * n + j] = i == j ? 30 : std::fabs(std::sin(i * j + 1 + j));
        for (int j = 0; j < n; ++j) P[i * n + j] /= sum;
    }
    for (const double t : {0.5, 7.0, 1e17, DBL_MAX}) {
        if (!power(P, t, out)) continue;
        for (int i = 0; i < n; ++i) {
            double sum = 0;
            for (int j = 0; j < n; ++j) sum += out[i * n + j];
            EXPECT_NEAR(sum, 1, 1e-12) << t;
        }
    }
}

TEST(Markov, PopulationsMoveByTheRows) {
    const Values P = {0.5, 0.3, 0.2, 0, 0.25, 0.75, 1, 0, 0}, population = {1000, 2000, 500};
    Values mean(3), square(3), out(3), matrix = P;
    const int trials = 4000;
    PralSetRandomSeed(21);
    for (int trial = 0; trial < trials; ++trial) {
        ASSERT_TRUE(PralMarkovSample_Core(out.data(), 3, population.data(), matrix.data(), 3, 3, 1));
        ASSERT_EQ(out[0] + out[1] + out[2], 3500);
        for (int j = 0; j < 3; ++j) {
            mean[j] += out[j] / trials;
            square[j] += out[j] * out[j] / trials;
        }
    }
    for (int j = 0; j < 3; ++j) {
        double expected = 0, variance = 0;
        for (int i = 0; i < 3; ++i) {
            expected += population[i] * P[3 * i + j];
            variance += population[i] * P[3 * i + j] * (1 - P[3 * i + j]);
        }
        EXPECT_NEAR(mean[j], expected, 5 * std::sqrt(variance / trials)) << j;
        EXPECT_NEAR((square[j] - mean[j] * mean[j]) / variance, 1, 5 * std::sqrt(2.0 / trials)) << j;
    }
    const Values many = {0x1p52, 3, 0};
    ASSERT_TRUE(PralMarkovSample_Core(out.data(), 3, many.data(), matrix.data(), 3, 3, 12));
    EXPECT_EQ(out[0] + out[1] + out[2], 0x1p52 + 3);

    const char* const kWhole = "Error: the numbers of individuals must be whole and >=0";
    const struct {
        Values population;
        int states, rows, cols;
        const char* message;
    } rows[] = {
        {population, 3, 3, 2, "Error: The width of the Matrix must be equal to its height"},
        {population, 2, 3, 3, "Error: the number of states must be equal to the size of the Matrix"},
        {{1, 2.5, 3}, 3, 3, 3, kWhole},
        {{1, -1, 3}, 3, 3, 3, kWhole},
        {{1, kNaN, 3}, 3, 3, 3, kWhole},
        {{1, 0x1p53, 3}, 3, 3, 3, "Error: there must be at most 2^53 individuals"},
    };
    for (const auto& row : rows) {
        EXPECT_FALSE(PralMarkovSample_Core(out.data(), row.states, row.population.data(), matrix.data(),
                                           row.rows, row.cols, 1));
        EXPECT_STREQ(PralCoreError(), row.message);
    }
    // One step, too, looks at the sums of the rows, as PralMarkovMatrix_Core does not.
    for (const double sum : {1.00001, 1.000011}) {
        Values one_off = P;
        one_off[0] += sum - 1;
        EXPECT_EQ(PralMarkovSample_Core(out.data(), 3, population.data(), one_off.data(), 3, 3, 1),
                  sum < 1.000011);
        if (sum > 1.00001) {
            EXPECT_STREQ(PralCoreError(), "Error: Matrix elements across rows must sum to 1");
        }
    }
}

}  // namespace
