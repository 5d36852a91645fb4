// Fits of copulas: parameters of given data exactly, recovery from samples, directions, replicates, messages.
#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "boundary/automation.h"
#include "boundary/core_api.h"
#include "multivariate/archimedean.h"
#include "multivariate/sample_statistics.h"
#include "support/table.h"

namespace {

using pral::test::Values;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

using MultiFit = bool (*)(double*, const double*, int, int, int, int);
using PairFit = bool (*)(double*, int*, const double*, int, int);

double fitted(MultiFit fit, const Values& data, int rows, int in_rows = 0) {
    double parameter = -7;
    EXPECT_TRUE(fit(&parameter, data.data(), rows, static_cast<int>(data.size()) / rows, in_rows, 0))
        << PralCoreError();
    return parameter;
}

double fitted(PairFit fit, const Values& pairs, int direction) {
    double parameter = -7;
    EXPECT_TRUE(fit(&parameter, &direction, pairs.data(), static_cast<int>(pairs.size() / 2), 0))
        << PralCoreError();
    return parameter;
}

TEST(CopulaFits, TauTableIsThatOfTheFormula) {
    int rows = 0;
    for (const auto& row : pral::test::table("reference/multivariate.tsv")) {
        if (row[0] != "frank_tau") continue;
        const double theta = pral::test::number(row, 1), tau = pral::test::number(row, 2);
        EXPECT_NEAR(pral::multivariate::Frank::tau(theta), tau, 1e-15) << theta;
        // A point of the table, which is held to nine decimals.
        EXPECT_NEAR(pral::multivariate::Frank::from_tau(std::round(tau * 1e9) / 1e9), theta, 1e-13) << theta;
        ++rows;
    }
    EXPECT_EQ(rows, 5);
}

/// The taus of these five observations are 0.2 (first and second variable), 0.4 (first and third) and 0.6 (second and third).
const Values kFive = {1, 1, 1, 2, 4, 3, 3, 3, 5, 4, 5, 4, 5, 2, 2};

TEST(CopulaFits, ParametersOfGivenData) {
    const Values up = {1, 1, 2, 2, 3, 3, 4, 4}, down = {1, 4, 2, 3, 3, 2, 4, 1};
    double taus[3];
    for (int k = 0; k < 3; ++k) {
        taus[k] = pral::test::kendall(pral::test::coordinate(kFive, 3, k / 2),
                                      pral::test::coordinate(kFive, 3, 1 + (k + 1) / 2));
    }
    // The last variable counts less.
    const double tau = (2 * taus[0] + taus[1] + taus[2]) / 4;
    EXPECT_NE(tau, (taus[0] + taus[1] + taus[2]) / 3);
    Values transposed(15);
    for (int i = 0; i < 15; ++i) transposed[i % 3 * 5 + i / 3] = kFive[i];
    for (const bool in_rows : {false, true}) {
        const Values& data = in_rows ? transposed : kFive;
        const int rows = in_rows ? 3 : 5;
        EXPECT_NEAR(fitted(PralCopulaMultiClaytonFitP_Core, data, rows, in_rows), 2 * tau / (1 - tau), 1e-13);
        EXPECT_NEAR(fitted(PralCopulaMultiGumbelFitP_Core, data, rows, in_rows), 1 / (1 - tau), 1e-13);
        EXPECT_NEAR(fitted(PralCopulaMultiFrankFitP_Core, data, rows, in_rows),
                    pral::multivariate::Frank::from_tau(tau), 1e-12);
    }
    const struct {
        MultiFit fit;
        PairFit pair_fit;
        double up, down, pairs_up, pairs_down;
    } rows[] = {
        {PralCopulaMultiClaytonFitP_Core, PralCopulaBiClaytonFitP_Core, 36, 0, DBL_MAX, -1},
        {PralCopulaMultiGumbelFitP_Core, PralCopulaBiGumbelFitP_Core, 36, 1.0000000001, DBL_MAX,
         1.0000000001},
        {PralCopulaMultiFrankFitP_Core, PralCopulaBiFrankFitP_Core, 35, 0, 35, 0},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(fitted(row.fit, up, 4), row.up);
        EXPECT_EQ(fitted(row.fit, down, 4), row.down);
        EXPECT_EQ(fitted(row.pair_fit, up, 1), row.pairs_up);
        EXPECT_EQ(fitted(row.pair_fit, down, 1), row.pairs_down);
        EXPECT_EQ(fitted(row.pair_fit, down, 2), row.pairs_up);  // turned back
        EXPECT_EQ(fitted(row.pair_fit, down, 0), row.pairs_up);  // turned by the data
        Values many(2 * 100003);
        for (std::size_t i = 0; i < many.size(); ++i) many[i] = static_cast<double>(i / 2);
        EXPECT_EQ(fitted(row.fit, many, 100003), row.up);
    }
}

/// Pairs drawn with a parameter and a direction: the fit that is asked for the direction finds it, and the parameter.
TEST(CopulaFits, PairsTellTheirDirection) {
    const struct {
        bool (*sampler)(double*, int, double, int);
        PairFit fit, sample;
        double parameter;
        int directions;
    } rows[] = {{PralCopulaBiClayton_Core, PralCopulaBiClaytonFitP_Core, PralCopulaBiClaytonFit_Core, 2, 4},
                {PralCopulaBiGumbel_Core, PralCopulaBiGumbelFitP_Core, PralCopulaBiGumbelFit_Core, 2, 4},
                {PralCopulaBiFrank_Core, PralCopulaBiFrankFitP_Core, PralCopulaBiFrankFit_Core, 6, 2}};
    const int count = 3000;
    for (const auto& row : rows) {
        for (int direction = 1; direction <= row.directions; ++direction) {
            Values pairs(2 * count);
            PralSetRandomSeed(direction);
            for (int i = 0; i < count; ++i)
                ASSERT_TRUE(row.sampler(&pairs[2 * i], 2, row.parameter, direction));
            for (double& u : pairs) u = std::exp(3 * u);  // ranks alone matter
            double found = 0, replicate = 0, same = 0;
            int asked = 0;
            ASSERT_TRUE(row.fit(&found, &asked, pairs.data(), count, 0));
            EXPECT_EQ(asked, direction);
            EXPECT_NEAR(found, row.parameter, 0.1 * row.parameter);
            ASSERT_TRUE(row.fit(&same, nullptr, pairs.data(), count, 0));
            EXPECT_EQ(same, found);
            ASSERT_TRUE(row.fit(&replicate, &asked, pairs.data(), count, 1));
            EXPECT_EQ(asked, direction);
            EXPECT_NE(replicate, found);
            EXPECT_NEAR(replicate, found, 0.1 * found);
            // A sample of the fit is that of the sampler.
            double out[2], expected[2];
            PralSetRandomSeed(9);
            ASSERT_TRUE(row.sample(out, &asked, pairs.data(), count, 0));
            PralSetRandomSeed(9);
            ASSERT_TRUE(row.sampler(expected, 2, found, direction));
            EXPECT_EQ(out[0], expected[0]);
            EXPECT_EQ(out[1], expected[1]);
        }
    }
}

TEST(CopulaFits, MoreVariablesAreRecovered) {
    const int count = 4000, d = 4;
    const struct {
        bool (*sampler)(double*, int, double, int);
        MultiFit fit, sample;
        bool (*automation)(SAFEARRAY**, const double*, int, int, int, int);
        double parameter, replicate;
    } rows[] = {
        {PralCopulaMultiClayton_Core, PralCopulaMultiClaytonFitP_Core, PralCopulaMultiClaytonFit_Core,
         PralCopulaMultiClaytonFitVB_Core, 1.5, 1.5},
        {PralCopulaMultiGumbel_Core, PralCopulaMultiGumbelFitP_Core, PralCopulaMultiGumbelFit_Core,
         PralCopulaMultiGumbelFitVB_Core, 3, 3},
        // The replicate comes from Clayton with parameter 5: tau = 5/7, which for Frank is 12.0.
        {PralCopulaMultiFrank_Core, PralCopulaMultiFrankFitP_Core, PralCopulaMultiFrankFit_Core,
         PralCopulaMultiFrankFitVB_Core, 5, pral::multivariate::Frank::from_tau(5 / 7.0)},
    };
    for (const auto& row : rows) {
        Values samples(d * count), out(d), expected(d);
        PralSetRandomSeed(2);
        ASSERT_TRUE(row.sampler(samples.data(), d * count, row.parameter, count));
        const double found = fitted(row.fit, samples, count);
        EXPECT_NEAR(found, row.parameter, 0.07 * row.parameter);
        double replicate = 0;
        ASSERT_TRUE(row.fit(&replicate, samples.data(), count, d, 0, 1));
        EXPECT_NEAR(replicate, row.replicate, 0.15 * row.replicate);
        PralSetRandomSeed(9);
        ASSERT_TRUE(row.sampler(expected.data(), d, found, 1));
        PralSetRandomSeed(9);
        ASSERT_TRUE(row.sample(out.data(), samples.data(), count, d, 0, 0));
        EXPECT_EQ(out, expected);
        SAFEARRAY *array = SafeArrayCreateVector(VT_R8, 0, d),
                  *small = SafeArrayCreateVector(VT_R8, 0, d - 1);
        PralSetRandomSeed(9);
        ASSERT_TRUE(row.automation(&array, samples.data(), count, d, 0, 0));
        EXPECT_TRUE(std::equal(out.begin(), out.end(), static_cast<const double*>(array->pvData)));
        EXPECT_FALSE(row.automation(&small, samples.data(), count, d, 0, 0));
        EXPECT_STREQ(PralCoreError(), "Error: Output array is not valid");
        EXPECT_FALSE(row.automation(nullptr, samples.data(), 0, d, 0, 0));
        EXPECT_STREQ(PralCoreError(), "Error: source array is not valid");
        SafeArrayDestroy(array);
        SafeArrayDestroy(small);
    }
}

TEST(CopulaFits, EllipticalCopulasAreRecovered) {
    const int count = 3000, d = 3;
    Values corr = {1, 0.7, -0.4, 0.7, 1, 0, -0.4, 0, 1}, found(9), again(9), normal(d * count),
           student(d * count);
    PralSetRandomSeed(5);
    ASSERT_TRUE(PralCopulaMultiNormal_Core(normal.data(), d * count, corr.data(), d, count));
    ASSERT_TRUE(PralCopulaMultiT_Core(student.data(), d * count, 5, corr.data(), d, count));
    double nu = 0, rho = 0;
    for (const int uncertainty : {0, 1}) {
        ASSERT_TRUE(PralCopulaMultiNormalFitP_Core(found.data(), normal.data(), count, d, 0, uncertainty));
        for (int i = 0; i < 9; ++i) EXPECT_NEAR(found[i], corr[i], 0.07);
        ASSERT_TRUE(PralCopulaMultiTFitP_Core(&nu, found.data(), student.data(), count, d, 0, uncertainty));
        for (int i = 0; i < 9; ++i) EXPECT_NEAR(found[i], corr[i], 0.1);
        EXPECT_NEAR(nu, 5, 2);
    }
    ASSERT_TRUE(PralCopulaMultiTFitP_Core(&nu, found.data(), normal.data(), count, d, 0, 0));
    EXPECT_GE(nu, 20);
    SAFEARRAY* array = SafeArrayCreateVector(VT_R8, 0, 9);
    ASSERT_TRUE(PralCopulaMultiTFitPVB_Core(&nu, &array, normal.data(), count, d, 0, 0));
    EXPECT_TRUE(std::equal(found.begin(), found.end(), static_cast<const double*>(array->pvData)));
    ASSERT_TRUE(PralCopulaMultiNormalFitPVB_Core(&array, normal.data(), count, d, 0, 0));
    EXPECT_TRUE(std::equal(found.begin(), found.end(), static_cast<const double*>(array->pvData)));
    SafeArrayDestroy(array);

    const Values pairs = {1, 1, 2, 3, 3, 2, 4, 4};  // tau = 4/6
    ASSERT_TRUE(PralCopulaBiNormalFitP_Core(&rho, pairs.data(), 4, 0));
    EXPECT_NEAR(rho, std::sin(M_PI / 3), 1e-15);
    ASSERT_TRUE(PralCopulaBiTFitP_Core(&nu, &rho, pairs.data(), 4, 0));
    EXPECT_NEAR(rho, std::sin(M_PI / 3), 1e-15);
    // Taus 1/3, 1/3, -1/3 of ranks may contradict one another as correlations: the matrix is repaired.
    const Values contradiction = {1, 1, 3, 2, 3, 1, 3, 2, 2};
    ASSERT_TRUE(PralCopulaMultiNormalFitP_Core(found.data(), contradiction.data(), 3, d, 0, 0));
    double values[3];
    ASSERT_TRUE(PralEigenValues_Core(values, found.data(), d, d));
    EXPECT_GE(values[0], -1e-15);
}

TEST(CopulaFits, FailuresTellWhy) {
    const Values data = {1, 2, 3, 4};
    Values out(4, -7);
    int bad = 5, three = 3, own = 1;
    const char* const kPairs = "Error: The number of copula pairs must be > 2";
    const std::pair<std::function<bool()>, const char*> rows[] = {
        {[&] { return PralCopulaMultiClaytonFitP_Core(out.data(), data.data(), 4, 1, 0, 0); },
         "if Data_In_Rows=false, number of {data} rows must be >=2"},
        {[&] { return PralCopulaMultiGumbelFitP_Core(out.data(), data.data(), 1, 4, 1, 0); },
         "if Data_In_Rows=true number of {data} columns must be >=2"},
        {[&] { return PralCopulaMultiFrankFitP_Core(out.data(), data.data(), 1, 4, 0, 0); },
         "Error: {data} array length must be >=2"},
        {[&] { return PralCopulaMultiTFitP_Core(out.data(), &out[1], nullptr, 2, 2, 0, 0); },
         "Error: data must not be null"},
        {[&] { return PralCopulaBiClaytonFitP_Core(out.data(), &bad, data.data(), 1, 0); }, kPairs},
        {[&] { return PralCopulaBiTFitP_Core(out.data(), &out[1], data.data(), 1, 0); }, kPairs},
        {[&] { return PralCopulaBiClaytonFitP_Core(out.data(), &bad, data.data(), 2, 0); },
         "Error: Direction must be integer value in [1..4]"},
        {[&] { return PralCopulaBiFrankFitP_Core(out.data(), &three, data.data(), 2, 0); },
         "Error: Direction must be integer value in [1..2]"},
        // An infinite parameter cannot be drawn from.
        {[&] { return PralCopulaBiClaytonFitP_Core(out.data(), &own, data.data(), 2, 1); },
         "Error:  alpha must be between [-35:36] for bivariate case"},
        {[&] { return PralCopulaBiGumbelFit_Core(out.data(), &own, data.data(), 2, 0); },
         "Error:  theta must be between [-35:-1] or [1:36] for bivariate case"},
        {[&] { return PralCopulaBiNormalFitP_Core(nullptr, data.data(), 2, 0); },
         "Error: out must not be null"},
    };
    for (const auto& [call, message] : rows) {
        EXPECT_FALSE(call()) << message;
        EXPECT_STREQ(PralCoreError(), message);
    }
    const Values hostile = {kNaN, DBL_MAX, -DBL_MAX, kNaN, 5e-324, 0, 1, 1, 1, 1, 1, 1};
    for (const int uncertainty : {0, 1}) {
        double nu = 0;
        Values corr(9);
        PralCopulaMultiClaytonFitP_Core(&nu, hostile.data(), 4, 3, 0, uncertainty);
        EXPECT_TRUE(nu >= 0 && nu <= 36);
        EXPECT_TRUE(PralCopulaMultiTFitP_Core(&nu, corr.data(), hostile.data(), 4, 3, 0, uncertainty));
        EXPECT_TRUE(nu >= 1 && nu <= 256);
    }
}

}  // namespace
