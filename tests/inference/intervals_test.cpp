// Intervals of parameters and quantiles.
#include <gtest/gtest.h>
#include <pral_core/objects.hpp>

#include <cmath>
#include <vector>

#include "samples.h"

namespace {

using pral::Fit;
using pral::Interval;

void expect_interval(const Interval& found, double lower, double upper, double tolerance) {
    EXPECT_NEAR(found.lower, lower, tolerance);
    EXPECT_NEAR(found.upper, upper, tolerance);
}

TEST(Intervals, ByTheProfileFollowTheLikelihood) {
    // Roots of the profile likelihood by mpmath.
    const std::vector<double> three = {1, 2, 3};
    const Fit exponential("Expon", {three}), gamma("Gamma", {samples::kTen}),
        weibull("Weibull", {samples::kTen});
    expect_interval(exponential.parameter_interval(0, .95), .7712789731, 8.0421943250, 1e-5);
    const double factor = -std::log1p(-.9);
    expect_interval(exponential.quantile_interval(.9, .95), factor * .7712789731, factor * 8.0421943250,
                    1e-5);
    expect_interval(gamma.parameter_interval(0, .95), 1.03352226232246, 5.48695163386480, 1e-4);
    expect_interval(weibull.quantile_interval(.9, .95), 5.90732333407170, 13.4288299800719, 1e-4);
    // A shape that small has an unbounded likelihood: no lower end. Nor have quantiles of counts slopes.
    const Interval shape = Fit("Weibull3", {samples::kLockhartA}).parameter_interval(0, .95);
    EXPECT_TRUE(std::isnan(shape.lower)) << shape.lower;
    EXPECT_NEAR(shape.upper, 8.893, .001);
    const std::vector<double> counts = {1, 2, 4};
    EXPECT_TRUE(std::isnan(Fit("Poisson", {counts}).quantile_interval(.9, .95, PRAL_WALD).lower));
    // Of a normal mean it is in closed form.
    const Fit normal("Normal", {samples::kTen});
    const double mean = normal.parameters()[0], sigma = normal.parameters()[1];
    const double margin = sigma * std::sqrt(std::expm1(3.841458820694124 / 10));
    expect_interval(normal.parameter_interval(0, .95), mean - margin, mean + margin, 1e-5);
}

TEST(Intervals, ByWaldAreSymmetric) {
    const Fit fit("Gamma", {samples::kTen});
    const Interval shape = fit.parameter_interval(0, .9, PRAL_WALD);
    EXPECT_NEAR(shape.upper - shape.lower, 2 * 1.6448536269514722 * 1.11154483455310, 1e-6);
    EXPECT_NEAR(shape.upper + shape.lower, 2 * 2.63416427039610, 1e-8);
    // The mean and the median of a normal distribution are one.
    const Fit normal("Normal", {samples::kTen});
    const Interval mean = normal.parameter_interval(0, .95, PRAL_WALD),
                   median = normal.quantile_interval(.5, .95, PRAL_WALD);
    EXPECT_NEAR(mean.lower, median.lower, 1e-8);
    EXPECT_NEAR(mean.upper, median.upper, 1e-8);
}

TEST(Intervals, ByTheBootstrapDoNotDependOnThreads) {
    const Fit fit("Gamma", {samples::kTen});
    const pral::Stream stream(7);
    const auto interval = [&](std::int32_t source, int threads) {
        return fit.quantile_interval(.9, .9, {stream, 199, source, threads});
    };
    for (const std::int32_t source : {PRAL_REPLICATE_FIT, PRAL_REPLICATE_DATA}) {
        const Interval one = interval(source, 1), four = interval(source, 4);
        EXPECT_EQ(one.lower, four.lower);
        EXPECT_EQ(one.upper, four.upper);
        EXPECT_LT(one.lower, 8.1);
        EXPECT_GT(one.upper, 8.1);
    }
    const auto [parameters, failed] = fit.bootstrap({stream, 50});
    EXPECT_EQ(parameters.size(), 100U);
    EXPECT_EQ(failed, 0U);
}

TEST(Intervals, OfTheBootstrapHaveTheSpreadOfTheEstimator) {
    // The mean of exponential values is a gamma variable: its quantiles .05 and .95 at shape 10 (scipy.stats.gamma).
    const std::vector<double> x(10, 1.0);
    std::vector<double> spread = x;
    spread[0] = 0.5;
    spread[1] = 1.5;
    const pral::Stream stream(11);
    const Interval found = Fit("Expon", {spread}).parameter_interval(0, .9, pral::Replication{stream, 20000});
    expect_interval(found, .5425405697091293, 1.5705216422115, .015);
}

}  // namespace
