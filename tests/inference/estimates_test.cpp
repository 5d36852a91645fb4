// Fits against published numbers and maxima found with many digits, and what kind of maximum they are.
#include <gtest/gtest.h>
#include <pral_core/objects.hpp>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "samples.h"

namespace {

using pral::Fit;
using pral::FitOptions;
using pral::Observations;

constexpr double kInf = HUGE_VAL, kFree = NAN;

void expect_close(double value, double expected, double tolerance, const std::string& what) {
    EXPECT_NEAR(value, expected, tolerance * std::max(1.0, std::fabs(expected))) << what;
}

void check(const std::string& family, const std::vector<double>& left, const std::vector<double>& right,
           const std::vector<double>& weights, const FitOptions& options,
           const std::vector<double>& parameters, double log_likelihood, double tolerance) {
    const Fit fit(family, {left, right, weights}, options);
    const std::vector<double> found = fit.parameters();
    ASSERT_EQ(found.size(), parameters.size()) << family;
    for (std::size_t i = 0; i < found.size(); ++i)
        expect_close(found[i], parameters[i], tolerance, family + std::to_string(i));
    if (!std::isnan(log_likelihood))
        expect_close(fit.values().log_likelihood, log_likelihood, std::min(tolerance, 1e-7), family);
}

TEST(Estimates, AreThePublishedOnesAndThoseOfManyDigits) {
    using namespace samples;
    const double none = -kInf;

    check("Weibull3", kLockhartA, {}, {}, {}, {2.37546894, 78.2400481, 99.0109128}, -48.4513883, 2e-8);
    check("Weibull3", kFloods, {}, {}, {}, {1.2456495876, .1728316999, .2611170934}, 17.06748976, 2e-8);
    check("Gamma", kTen, {}, {}, {}, {2.63416427039610, 1.71971051726353}, -23.0641332701406, 1e-9);
    check("Weibull", kTen, {}, {}, {}, {1.82890119523952, 5.10125256238038}, -22.9137123327949, 1e-9);
    check("Weibull", kTen, {}, {}, {.held = {2, kFree}}, {2, std::sqrt(27.117)}, kFree, 1e-9);
    check("Polya", kToxocara, {}, kToxocaraTimes, {}, {.397146, 8.680252 / .397146}, -159.344088, 2e-3);
    check("Binomial", {3, 5, 4, 6, 2, 5, 4, 7}, {}, {}, {}, {9, .5}, -14.5327978979113, 1e-9);
    // Censored: five failures and three survivors; intervals without a left end, without a right one, and exact values.
    check("Weibull", {.8, 1.9, 2.4, 3.3, 5.2, 4, 6, 6.5}, {.8, 1.9, 2.4, 3.3, 5.2, kInf, kInf, kInf}, {}, {},
          {1.40042402111320, 5.54143018789473}, -13.6490650699327, 1e-8);
    check("Normal", {none, 1, 2, 2, 3, 2.5, 1.5}, {1, 2, 3, 4, kInf, 2.5, 1.5}, {}, {},
          {2.11573380369655, .982855370496580}, -8.61601939964289, 1e-8);
    // Truncated, both ends included.
    check("Normal", kTen, {}, {}, {.lower = 0, .upper = 10}, {3.89762973866167, 3.95449165152876},
          -22.6444428045062, 1e-8);
    check("Poisson", {1, 1, 2, 3, 4, 2, 2}, {}, {}, {.lower = 1, .upper = 4}, {2.06486377786162},
          -9.19080886218511, 1e-8);
    check("Expon", {12, 15, 18}, {}, {}, {.lower = 10}, {5}, 3 * (-std::log(5.0) - 1), 1e-8);
    // Maximum spacings: published, and by hand.
    check("Weibull3", kLockhartA, {}, {}, {.method = PRAL_MAXIMUM_SPACINGS}, {2.8335, 113.88, 67.493}, kFree,
          1e-4);
    check("Weibull3", kLockhartB, {}, {}, {.method = PRAL_MAXIMUM_SPACINGS}, {.63541, 95.394, 10.3255}, kFree,
          1e-5);
    check("Expon", {2, 4}, {}, {}, {.method = PRAL_MAXIMUM_SPACINGS}, {3.915}, kFree, 1e-3);
    check("Uniform", {2, 3, 5, 8}, {}, {}, {.method = PRAL_MAXIMUM_SPACINGS}, {0, 10}, kFree, 1e-6);
    // A shift: the same as the location of the family that has one.
    check("Weibull", kLockhartA, {}, {}, {.shift = true}, {2.37546894, 78.2400481, 99.0109128}, -48.4513883,
          2e-8);
}

TEST(Estimates, TruncationOfSingleObservations) {
    // What exponential values exceed their own thresholds by is exponential.
    const std::vector<double> x = {3, 5, 9, 4}, from = {1, 4, 4, 2}, to(4, kInf);
    EXPECT_NEAR(Fit("Expon", {x, {}, {}, from, to}).parameters()[0], 10.0 / 4, 1e-8);
    // Equal thresholds are those of all.
    const std::vector<double> same(4, 1.0);
    EXPECT_NEAR(Fit("Gamma", {x, {}, {}, same, to}).values().log_likelihood,
                Fit("Gamma", {x}, {.lower = 1}).values().log_likelihood, 1e-9);
}

TEST(Estimates, WeightsCountAsRepeatedObservations) {
    const std::vector<double> x = {1, 2, 3}, twice = {1, 2, 2, 3, 3, 3}, times = {1, 2, 3};
    for (const char* family : {"Gamma", "Normal", "Lognormal", "Poisson"}) {
        const Fit weighted(family, {x, {}, times}), repeated(family, {twice});
        EXPECT_NEAR(weighted.values().log_likelihood, repeated.values().log_likelihood, 1e-9) << family;
        EXPECT_EQ(weighted.values().n, 6) << family;
        EXPECT_NEAR(weighted.standard_errors()[0], repeated.standard_errors()[0], 1e-6) << family;
    }
}

TEST(Estimates, ErrorsComeFromTheObservedInformation) {
    using samples::kTen;
    const Fit gamma("Gamma", {kTen}), weibull("Weibull", {kTen}), normal("Normal", {kTen});
    const std::vector<double> covariance = gamma.covariance();
    EXPECT_NEAR(gamma.standard_errors()[0], 1.11154483455310, 1e-6);
    EXPECT_NEAR(gamma.standard_errors()[1], .799292662625661, 1e-6);
    EXPECT_NEAR(covariance[1], -.806615312408300, 1e-6);
    EXPECT_EQ(covariance[1], covariance[2]);
    EXPECT_NEAR(weibull.standard_errors()[0], .460372475705913, 1e-6);
    EXPECT_NEAR(weibull.standard_errors()[1], .928692355058629, 1e-6);
    const double sigma = normal.parameters()[1];
    EXPECT_NEAR(normal.standard_errors()[0], sigma / std::sqrt(10.0), 1e-8);
    EXPECT_NEAR(normal.standard_errors()[1], sigma / std::sqrt(20.0), 1e-8);
    const Fit weibull3("Weibull3", {samples::kLockhartA});
    const double published[] = {1.81152, 46.2561, 39.8924};
    for (int i = 0; i < 3; ++i) EXPECT_NEAR(weibull3.standard_errors()[i] / published[i], 1, 2e-5);
    const Fit held("Weibull", {kTen}, {.held = {2, kFree}});
    EXPECT_EQ(held.standard_errors()[0], 0);
    EXPECT_NEAR(held.standard_errors()[1], held.parameters()[1] / std::sqrt(40.0), 1e-7);
    EXPECT_EQ(held.values().free, 1);
    EXPECT_TRUE(std::isnan(Fit("Uniform", {kTen}).standard_errors()[0]));
}

TEST(Estimates, CriteriaCountWhatWasFitted) {
    const pral::FitValues v = Fit("Gamma", {samples::kTen}).values();
    EXPECT_NEAR(v.aic, 4 + 2 * 23.0641332701406, 1e-9);
    EXPECT_NEAR(v.aicc, v.aic + 12.0 / 7, 1e-12);
    EXPECT_NEAR(v.bic, 2 * std::log(10.0) + 2 * 23.0641332701406, 1e-9);
    // Ends of a support at data count twice.
    EXPECT_EQ(Fit("Uniform", {samples::kTen}).values().free, 4);
}

TEST(Estimates, TellWhatKindOfMaximumTheyAre) {
    const std::vector<double> even = {1, 2, 3, 2, 2}, counts = {0, 1, 2, 1, 0, 3, 1, 1, 2};
    const struct {
        const char* family;
        std::vector<double> x;
        std::int32_t kind;
        const char* limit;
    } cases[] = {
        {"Weibull3", samples::kLockhartA, PRAL_FIT_REGULAR, ""},
        {"Weibull3", samples::kLockhartB, PRAL_FIT_CELLS, ""},
        {"Polya", even, PRAL_FIT_EDGE, "Poisson"},
        {"ZIPoisson", counts, PRAL_FIT_EDGE, "Poisson"},
        {"BetaGeometric", {0, 1, 2, 1, 5, 0, 0, 3, 2, 0, 1}, PRAL_FIT_EDGE, "Geometric"},
        {"Student3", samples::kTen, PRAL_FIT_EDGE, "Normal"},
        {"Cauchy", {1, 1, 1, 1, 1, 2, 3, 7}, PRAL_FIT_CELLS, ""},
        {"Laplace", {1, 2, 3, 5, 9}, PRAL_FIT_REGULAR, ""},
    };
    for (const auto& [family, x, kind, limit] : cases) {
        const Fit fit(family, {x});
        EXPECT_EQ(fit.values().kind, kind) << family;
        EXPECT_STREQ(fit.values().limit, limit) << family;
        EXPECT_EQ(fit.values().cell > 0, kind == PRAL_FIT_CELLS) << family;
    }
    // Recorded in whole units, the likelihood by cells is the largest where the end lies in the first cell.
    const Fit cells("Weibull3", {samples::kLockhartB});
    EXPECT_EQ(cells.values().cell, 1);
    EXPECT_NEAR(cells.values().log_likelihood, -83.4409759,
                1e-6);  // of the probabilities, maximised with mpmath
    EXPECT_NEAR(cells.parameters()[2], 11.5, 1e-3);
    EXPECT_NEAR(cells.parameters()[0], .68785, 1e-4);
    EXPECT_NEAR(cells.parameters()[1], 84.831, 1e-2);
}

TEST(Estimates, OfAnExponentialSampleNoEndIsOnADatum) {
    std::vector<double> x;
    pral::Stream stream(5);
    pral::Distribution("Expon", {3}).sample(stream, 50).swap(x);
    const double least = *std::ranges::min_element(x);
    for (const char* family : {"Weibull3", "Burr", "Beta4", "Kumaraswamy4", "JohnsonB"}) {
        const Fit fit(family, {x});
        const bool unbounded = fit.values().kind == PRAL_FIT_CELLS;
        const double end = fit.distribution().support().lower;
        EXPECT_TRUE(unbounded || end < least - 1e-4) << family << ' ' << end - least;
    }
}

TEST(Estimates, MoveWithTheData) {
    std::vector<double> x, moved, scaled;
    for (const double v : samples::kFloods) {
        x.push_back(v);
        moved.push_back(v + 64);
        scaled.push_back(v * 1024);
    }
    const double n = static_cast<double>(x.size());
    for (const char* family :
         {"Normal", "Logistic", "ExtValueMax", "GEV", "Laplace", "Cauchy", "Burr", "Fatigue"})
        EXPECT_NEAR(Fit(family, {x}).values().log_likelihood, Fit(family, {moved}).values().log_likelihood,
                    2e-6)
            << family;
    for (const char* family :
         {"Gamma", "Lognormal", "Weibull", "Weibull3", "LogLogistic", "Dagum", "GEV", "InvGauss"})
        EXPECT_NEAR(Fit(family, {x}).values().log_likelihood,
                    Fit(family, {scaled}).values().log_likelihood + n * std::log(1024), 2e-6)
            << family;
}

TEST(Estimates, RefuseWhatCannotBeFitted) {
    const std::vector<double> x = {1, 2, 3}, wrong = {1, NAN, 3}, right = {1, 1, 3}, negative = {1, -1, 1},
                              none;
    const auto refused = [](const char* family, const Observations& data, const FitOptions& options,
                            pral_status code, std::int64_t index) {
        try {
            const Fit fit(family, data, options);
            ADD_FAILURE() << family;
        } catch (const pral::Error& error) {
            EXPECT_EQ(error.code(), code) << error.what();
            EXPECT_EQ(error.index(), index) << error.what();
            EXPECT_EQ(std::string(error.what()).rfind("Error", 0), std::string::npos) << error.what();
        }
    };
    refused("Nobody", {x}, {}, PRAL_ERROR_FAMILY, -1);
    refused("Histogram", {x}, {}, PRAL_ERROR_FAMILY, -1);
    refused("Normal", {none}, {}, PRAL_ERROR_DATA, -1);
    refused("Normal", {wrong}, {}, PRAL_ERROR_DATA, 1);
    refused("Normal", {x, right}, {}, PRAL_ERROR_DATA, 1);
    refused("Normal", {x, {}, negative}, {}, PRAL_ERROR_DATA, 1);
    refused("Normal", {x}, {.lower = 2}, PRAL_ERROR_DATA, 0);
    refused("Normal", {x}, {.shift = true}, PRAL_ERROR_DATA, -1);
    refused("Gamma", {x}, {.held = {1}}, PRAL_ERROR_DATA, -1);
    refused("Gamma", {negative}, {}, PRAL_ERROR_DATA, -1);
    refused("Poisson", {samples::kTen}, {}, PRAL_ERROR_DATA, -1);
    refused("Poisson", {x}, {.method = PRAL_MAXIMUM_SPACINGS}, PRAL_ERROR_DATA, -1);
    refused("Normal", {x}, {.lower = 5, .upper = 1}, PRAL_ERROR_ARGUMENT, -1);
    refused("Normal", {x}, {.seconds = 0}, PRAL_ERROR_ARGUMENT, -1);
}

}  // namespace
