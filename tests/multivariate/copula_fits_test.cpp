// Fits of copulas: parameters of given data exactly, recovery from samples, directions, replicates.
#include "multivariate/archimedean.h"
#include "multivariate/exports.h"
#include "multivariate/sample_statistics.h"

namespace {

using namespace pral::test;
using pral::multivariate::Frank;

TEST(CopulaFits, TauTableIsThatOfTheFormula) {
    for (const auto& row : known("frank_tau")) {
        const double theta = number(row, 1), tau = number(row, 2);
        EXPECT_NEAR(Frank::tau(theta), tau, 1e-15) << theta;
        // A point of the table, which is held to nine decimals.
        EXPECT_NEAR(Frank::from_tau(std::round(tau * 1e9) / 1e9), theta, 1e-13) << theta;
    }
}

TEST(CopulaFits, ParametersOfGivenData) {
    for (const auto& row : known("fit")) {
        Values parameter(1);
        ASSERT_TRUE(simulate(kFits, row[1], 1, Written(row[2]).arguments, parameter)) << PralCoreError();
        EXPECT_NEAR(parameter[0], number(row, 3), 1e-13 * std::fmax(1, std::fabs(number(row, 3))))
            << row[1] << row[2];
    }
    const int count = 100003;  // perfectly concordant, in whatever number
    Values many(2 * count);
    for (std::size_t i = 0; i < many.size(); ++i) many[i] = static_cast<double>(i / 2);
    double alpha = 0;
    ASSERT_TRUE(PralCopulaMultiClaytonFitP_Core(&alpha, many.data(), count, 2, 0, 0));
    EXPECT_EQ(alpha, 36);
}

/// Data of a copula: the fit finds the parameter again, and the direction when asked for it; a replicate is near; a
/// sample of the fit is that of the sampler.
TEST(CopulaFits, SamplesTellTheirParameters) {
    const int count = 4000;
    for (const auto& [copula, parameter, directions] : {std::tuple{"BiClayton", 2.0, 4},
                                                        {"BiGumbel", 2.0, 4},
                                                        {"BiFrank", 6.0, 2},
                                                        {"MultiClayton", 1.5, 1},
                                                        {"MultiGumbel", 3.0, 1},
                                                        {"MultiFrank", 5.0, 1}}) {
        const std::string name = std::string("Copula") + copula;
        const bool pairs = copula[0] == 'B';
        const std::size_t d = pairs ? 2 : 4;
        for (int direction = 1; direction <= directions; ++direction) {
            const std::string tail = ' ' + std::to_string(pairs ? direction : count);
            Values data = sampled(name, std::to_string(parameter) + tail, pairs ? 2 : d * count,
                                  pairs ? count : 1, direction);
            for (double& u : data) u = std::exp(3 * u);  // ranks alone matter
            Arguments arguments(pairs ? 4 : 5);
            Argument& asked = arguments[0];
            arguments[pairs ? 1 : 0].array = data.data();
            arguments[pairs ? 2 : 1].integer = count;
            if (!pairs) arguments[2].integer = static_cast<int>(d);
            Values found(1), replicate(1), out(d), expected(d);
            ASSERT_TRUE(simulate(kFits, name + "FitP", 1, arguments, found)) << PralCoreError();
            EXPECT_NEAR(found[0], parameter, 0.1 * parameter) << name;
            EXPECT_TRUE(!pairs || asked.integer == direction) << name << direction;
            ASSERT_TRUE(simulate(kFits, name + "Fit", 9, arguments, out));
            const Argument by(pairs ? direction : 1);
            ASSERT_TRUE(simulate(kCopulas, name, 9, {Argument(found[0]), by}, expected));
            EXPECT_EQ(out, expected) << name;
            arguments.back().integer = 1;
            ASSERT_TRUE(simulate(kFits, name + "FitP", 1, arguments, replicate));
            if (pairs && direction < 3) {  // the other direction, whose parameter mirrors the pair back
                Argument other(3 - direction);
                arguments[0] = other;
                arguments.back().integer = 0;
                ASSERT_TRUE(simulate(kFits, name + "FitP", 1, arguments, out));
                EXPECT_DOUBLE_EQ(out[0], -found[0]) << name << direction;
            }
            // Of several variables Frank's replicate comes from Clayton with theta, here with tau = 5/7.
            const double centre = name == "CopulaMultiFrank" ? Frank::from_tau(5 / 7.0) : found[0];
            EXPECT_NE(replicate[0], found[0]) << name;
            EXPECT_NEAR(replicate[0], centre, 0.15 * centre) << name;
        }
    }
}

TEST(CopulaFits, EllipticalCopulasAreRecovered) {
    const int count = 3000, d = 3;
    const Values corr = {1, 0.7, -0.4, 0.7, 1, 0, -0.4, 0, 1};
    const std::string text = "[1,0.7,-0.4,0.7,1,0,-0.4,0,1] 3 3000";
    const Values normal = sampled("CopulaMultiNormal", text, d * count, 1, 5),
                 student = sampled("CopulaMultiT", "5 " + text, d * count, 1, 5);
    Values found(9);
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
    SAFEARRAY *array = SafeArrayCreateVector(VT_R8, 0, 9), *small = SafeArrayCreateVector(VT_R8, 0, 8);
    ASSERT_TRUE(PralCopulaMultiTFitPVB_Core(&nu, &array, normal.data(), count, d, 0, 0));
    EXPECT_TRUE(std::equal(found.begin(), found.end(), static_cast<const double*>(array->pvData)));
    EXPECT_FALSE(PralCopulaMultiNormalFitPVB_Core(&small, normal.data(), count, d, 0, 0));
    EXPECT_STREQ(PralCoreError(), "Error: Output array is not valid");
    EXPECT_FALSE(PralCopulaMultiNormalFitPVB_Core(nullptr, normal.data(), 0, d, 0, 0));
    EXPECT_STREQ(PralCoreError(), "Error: source array is not valid");
    SafeArrayDestroy(array);
    SafeArrayDestroy(small);

    const Values pairs = {1, 1, 2, 3, 3, 2, 4, 4};  // tau = 4/6
    ASSERT_TRUE(PralCopulaBiTFitP_Core(&nu, &rho, pairs.data(), 4, 0));
    EXPECT_NEAR(rho, std::sqrt(0.75), 1e-15);
    // Taus 1/3, 1/3, -1/3 of ranks may contradict one another as correlations: the matrix is repaired.
    const Values contradiction = {1, 1, 3, 2, 3, 1, 3, 2, 2};
    ASSERT_TRUE(PralCopulaMultiNormalFitP_Core(found.data(), contradiction.data(), 3, d, 0, 0));
    double values[3];
    ASSERT_TRUE(PralEigenValues_Core(values, found.data(), d, d));
    EXPECT_GE(values[0], -1e-15);
}

/// The order of the pairs does not matter, though of many a part is looked at first, here every third: pairs of quite other
/// degrees of freedom than the others stand there, or do not.
TEST(CopulaFits, DegreesOfManyPairsAreThoseOfAll) {
    const int count = 20000;
    const Values few_degrees = sampled("CopulaMultiT", "2 [1,0.5,0.5,1] 2 20000", 2 * count, 1, 11),
                 many_degrees = sampled("CopulaMultiT", "40 [1,0.5,0.5,1] 2 40000", 4 * count, 1, 12);
    Values pairs;
    for (std::size_t i = 0; i < few_degrees.size(); i += 2) {
        pairs.insert(pairs.end(), &few_degrees[i], &few_degrees[i] + 2);
        pairs.insert(pairs.end(), &many_degrees[2 * i], &many_degrees[2 * i] + 4);
    }
    Values nu(3), rho(3);
    for (std::size_t i = 0; i < 3; ++i) {
        ASSERT_TRUE(PralCopulaBiTFitP_Core(&nu[i], &rho[i], pairs.data(), 3 * count, 0));
        std::ranges::rotate(pairs, pairs.begin() + 2);
    }
    EXPECT_EQ(nu, Values(3, nu[0]));
    EXPECT_NEAR(nu[0], 5, 2);
}

}  // namespace
