// Fits of the second door through the owners for C++: published numbers, closed forms, what is kept and what is thrown.
#include <gtest/gtest.h>
#include <pral_core/objects.hpp>

#include <cmath>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using pral::Fit;
using pral::Ranking;

const std::vector<double> kSteel = {225, 171, 198, 189, 189, 135, 162, 135, 117, 162};
const std::vector<double> kHours = {23, 261, 87, 7, 120, 14, 62, 47, 225, 71, 246, 21, 42, 20, 5,
                                    12, 120, 11, 3, 14,  71, 11, 14, 11,  16, 90,  1,  16, 52, 95};

pral_status code_of(const std::function<void()>& call) {
    try {
        call();
    } catch (const pral::Error& error) {
        return error.code();
    }
    return PRAL_OK;
}

TEST(Fits, AreThePublishedOnes) {
    // Lockhart and Stephens 1994, sample A: shape, scale, location.
    const Fit weibull("Weibull3", {kSteel});
    const double parameters[] = {2.37546894, 78.2400481, 99.0109128}, errors[] = {1.81152, 46.2561, 39.8924};
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_NEAR(weibull.parameters()[i] / parameters[i], 1, 1e-5);
        EXPECT_NEAR(weibull.standard_errors()[i] / errors[i], 1, 1e-4);
        EXPECT_NEAR(std::sqrt(weibull.covariance()[4 * i]) / errors[i], 1, 1e-4);
    }
    EXPECT_NEAR(weibull.values().log_likelihood, -48.4513883, 1e-6);
    EXPECT_EQ(weibull.values().kind, PRAL_FIT_REGULAR);
    EXPECT_STREQ(weibull.values().family, "Weibull3");
    EXPECT_NEAR(weibull.distribution().sf(99.0109128 + 78.2400481), std::exp(-1.0), 1e-4);
}

TEST(Fits, TakeEveryColumnAndOption) {
    const std::vector<double> values = {2, 4}, ends = {HUGE_VAL, 4}, weights = {3, 1}, from = {1, 3};
    const auto scale = [](const Fit& fit) { return fit.parameters()[0]; };
    EXPECT_NEAR(scale(Fit("Expon", {values})), 3, 1e-9);
    EXPECT_NEAR(scale(Fit("Expon", {values}, {.method = PRAL_MAXIMUM_SPACINGS})), 3.915, 1e-3);
    EXPECT_NEAR(scale(Fit("Expon", {.left = values, .right = ends})), 6, 1e-6);  // (2 + 4)/1 event
    EXPECT_NEAR(scale(Fit("Expon", {.left = values, .weights = weights})), 2.5, 1e-9);
    EXPECT_NEAR(scale(Fit("Expon", {.left = values, .lower = from})), 1,
                1e-6);  // (1 + 1)/2 beyond the bounds
    EXPECT_NEAR(scale(Fit("Expon", {values}, {.lower = 1})), 2, 1e-6);
    const Fit held("Weibull", {kSteel}, {.held = {2, NAN}});
    double squares = 0;
    for (const double x : kSteel) squares += x * x / static_cast<double>(kSteel.size());
    EXPECT_EQ(held.parameters()[0], 2);
    EXPECT_NEAR(held.parameters()[1] / std::sqrt(squares), 1, 1e-8);
    EXPECT_EQ(held.standard_errors()[0], 0);
    EXPECT_EQ(held.values().free, 1);
    EXPECT_EQ(Fit("Expon", {kHours}, {.shift = true}).parameters().size(), 2u);

    EXPECT_EQ(code_of([&] { Fit("Expon", {.left = kHours, .weights = weights}); }), PRAL_ERROR_ARGUMENT);
    EXPECT_EQ(code_of([&] { Fit("Expon", {std::span<const double>()}); }), PRAL_ERROR_DATA);
    EXPECT_EQ(code_of([&] { Fit("Exponn", {kHours}); }), PRAL_ERROR_FAMILY);
}

TEST(Fits, TestAndBoundTheirParameters) {
    const Fit fit("Expon", {kHours});
    const pral::Stream stream(1);
    // Proschan's aeroplane 7912; p by 20,000 replicates is .0723.
    std::size_t calls = 0;
    const auto test =
        fit.test(PRAL_ANDERSON_DARLING,
                 {.stream = stream, .count = 1999, .progress = [&](std::size_t) { return ++calls > 0; }});
    EXPECT_NEAR(test.statistic, 1.1631222, 1e-6);
    EXPECT_NEAR(test.p, 0.0723, 4 * test.p_error + 0.002);
    EXPECT_EQ(test.replicates, calls);
    // The scale's errors are scale/sqrt(n); the likelihood ratio of the rate is a gamma's.
    const double scale = fit.parameters()[0], error = scale / std::sqrt(30.0);
    const auto wald = fit.parameter_interval(0, 0.9, PRAL_WALD);
    EXPECT_NEAR(wald.lower, scale - 1.6448536269514722 * error, 1e-5 * scale);
    const auto profile = fit.parameter_interval(0, 0.9);
    for (const double end : {profile.lower, profile.upper})
        EXPECT_NEAR(60 * (scale / end - 1 - std::log(scale / end)), 2.7055434540954146, 1e-4);
    const auto quantile = fit.quantile_interval(0.9, 0.9);
    EXPECT_NEAR(quantile.lower / profile.lower, std::log(10.0), 1e-4);
    const pral::Replication how = {.stream = stream, .count = 500, .source = PRAL_REPLICATE_DATA};
    const auto bootstrap = fit.parameter_interval(0, 0.9, how);
    EXPECT_LT(bootstrap.lower, scale);
    EXPECT_GT(bootstrap.upper, scale);
    EXPECT_EQ(fit.bootstrap(how).parameters.size(), 500u);
}

TEST(Fits, AreRankedAndCounted) {
    const std::vector<std::string> families = {"Normal", "Lognormal", "LognormalE", "Kumaraswamy"};
    std::size_t steps = 0;
    const Ranking ranking({kHours}, {}, families,
                          [&](std::size_t, std::size_t of) { return (steps = of) > 0; });
    ASSERT_EQ(ranking.size(), 2u);
    EXPECT_EQ(steps, families.size());
    EXPECT_STREQ(ranking[0].fit.values().family, "Lognormal");
    EXPECT_EQ(ranking[0].equal_to, "LognormalE");
    EXPECT_NEAR(ranking[0].weight + ranking[1].weight, 1, 1e-12);
    EXPECT_NEAR(ranking[1].difference, ranking[1].fit.values().aicc - ranking[0].fit.values().aicc, 1e-9);
    ASSERT_EQ(ranking.left_out().size(), 1u);
    EXPECT_EQ(ranking.left_out()[0].family, "Kumaraswamy");
    EXPECT_FALSE(ranking.left_out()[0].why.empty());
    EXPECT_EQ(code_of([&] { ranking[2]; }), PRAL_ERROR_ARGUMENT);
}

TEST(Fits, EndWhereTheirWatcherSaysSo) {
    const std::vector<std::string> families = {"Normal", "Gamma"};
    EXPECT_EQ(
        code_of([&] { Ranking({kHours}, {}, families, [](std::size_t, std::size_t) { return false; }); }),
        PRAL_ERROR_STOPPED);
    EXPECT_THROW(Ranking({kHours}, {}, families,
                         [](std::size_t, std::size_t) -> bool { throw std::domain_error("enough"); }),
                 std::domain_error);
    const Fit fit("Expon", {kHours});
    const pral::Stream stream(1);
    EXPECT_THROW(fit.bootstrap({.stream = stream, .progress = [](std::size_t) -> bool { throw 1; }}), int);
}

}  // namespace
