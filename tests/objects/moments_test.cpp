// Moments, modes, means of tails, limited means and logarithms of far tails of every family, as programs ask for them.
#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <memory>
#include <set>
#include <string>

#include "objects/objects.h"
#include "support/table.h"

namespace {

using Handle = std::unique_ptr<pral_distribution, decltype(&pral_distribution_free)>;

Handle parsed(const std::string& text) {
    pral_distribution* made = nullptr;
    pral_error error = {};
    error.size = sizeof error;
    EXPECT_EQ(pral_distribution_parse(text.c_str(), &made, &error), PRAL_OK) << text << ": " << error.text;
    return {made, pral_distribution_free};
}

pral_moment_values moments_of(const Handle& distribution) {
    pral_moment_values all = {};
    all.size = sizeof all;
    EXPECT_EQ(pral_moments(distribution.get(), &all, nullptr), PRAL_OK);
    return all;
}

using Call = pral_status (*)(const pral_distribution*, const double*, double*, size_t, pral_error*);

double value(const Handle& distribution, const std::string& function, double x) {
    static const std::map<std::string, Call> kCalls = {{"logsf", pral_logsf},
                                                       {"logcdf", pral_logcdf},
                                                       {"upper_tail_mean", pral_upper_tail_mean},
                                                       {"lower_tail_mean", pral_lower_tail_mean},
                                                       {"limited_mean", pral_limited_mean}};
    double result = 0;
    if (const auto call = kCalls.find(function); call != kCalls.end()) {
        EXPECT_EQ(call->second(distribution.get(), &x, &result, 1, nullptr), PRAL_OK);
        return result;
    }
    if (function.ends_with("mode")) {
        EXPECT_EQ(pral_mode(distribution.get(), &result, nullptr), PRAL_OK);
        return result;
    }
    const pral_moment_values all = moments_of(distribution);
    return function == "mean"       ? all.mean
           : function == "variance" ? all.variance
           : function == "skewness" ? all.skewness
                                    : all.excess_kurtosis;
}

/// Skewness and kurtosis are differences about 1; a mean cannot be nearer to 0 than rounding of the deviation.
double scale_of(const Handle& distribution, const std::string& function, double expected) {
    if (function == "skewness" || function == "kurtosis") return std::fmax(1, std::fabs(expected));
    if (function != "mean") return std::fabs(expected);
    const double variance = moments_of(distribution).variance;
    return std::fmax(std::fabs(expected), std::isfinite(variance) ? std::sqrt(variance) : 0);
}

/// A searched mode is where the density no longer differs; a tail mean below a far percentile is x less what lies below.
double bound(const std::string& function) {
    if (function == "searched_mode") return 1e-7;
    return function == "lower_tail_mean" ? 5e-12 : 1e-12;
}

TEST(MomentsOfFamilies, AreThoseOfTheTable) {
    std::map<std::string, std::pair<double, std::string>> worst;
    for (const auto& row : pral::test::table("reference/objects/moments.tsv")) {
        const std::string& function = row.at(1);
        const Handle distribution = parsed(row.at(0));
        ASSERT_NE(distribution, nullptr);
        const double expected = pral::test::number(row, 3);
        const double actual = value(distribution, function, pral::test::number(row, 2));
        const std::string where = row.at(0) + " " + function + " " + row.at(2);
        if (!std::isfinite(expected)) {
            EXPECT_TRUE(std::isnan(expected) ? std::isnan(actual) : actual == expected)
                << where << ": " << actual << ", not " << expected;
            continue;
        }
        const double difference = std::fabs(actual - expected);
        const double error = difference == 0 ? 0 : difference / scale_of(distribution, function, expected);
        EXPECT_LE(error, bound(function)) << where << ": " << actual << ", not " << expected;
        if (error > worst[function].first) worst[function] = {error, where};
    }
    for (const auto& [function, error] : worst)
        std::printf("%-16s %.1e at %s\n", function.c_str(), error.first, error.second.c_str());
}

/// Every family has rows, so that a new one cannot be forgotten.
TEST(MomentsOfFamilies, AreTestedForEachOne) {
    // Given by percentiles, drawn at random, or a family with other names for its parameters.
    std::set<std::string> missing = {"NormalAlt",   "LognormalAlt", "LogLogisticAlt", "WeibullAlt",
                                     "TriangleAlt", "PERTAlt",      "SplitTriangle",  "OgiveU",
                                     "ChiSq",       "Erlang"};
    std::set<std::string> tested = missing;
    for (const auto& row : pral::test::table("reference/objects/moments.tsv"))
        tested.insert(row.at(0).substr(0, row.at(0).find('(')));
    for (size_t i = 0; i < pral_family_count(); ++i)
        EXPECT_TRUE(tested.contains(pral_family_name(i))) << pral_family_name(i);
}

/// What is given by percentiles or by other parameters has the moments of the family that it is.
TEST(MomentsOfFamilies, AgreeBetweenParameterisations) {
    const char* const kPairs[][2] = {
        {"ChiSq(7)", "Gamma(3.5, 2)"},
        {"Erlang(3, 2)", "Gamma(3, 2)"},
        {"NormalAlt(1, 0.5, 2, 0.8413447460685429)", "Normal(1, 1)"},
        {"LognormalAlt(1, 0.5, 1.6487212707001282, 0.8413447460685429, 0)", "LognormalE(0, 0.5)"},
        {"LogLogisticAlt(2, 0.5, 3.4641016151377544, 0.9, 0)", "LogLogistic(4, 2)"},
        {"WeibullAlt(2, 0.63212055882855767, 1.6651092223153954, 0.5, 0)", "Weibull(2, 2)"},
        {"TriangleAlt(1, 2, 3, 0.1, 0.8)", "TriangleAlt(1, 2, 3, 0.1, 0.8) within [-100, 100]"},
        {"SplitTriangle(2, 5, 9, 0.1, 0.4, 0.8)", "SplitTriangle(2, 5, 9, 0.1, 0.4, 0.8) within [-100, 100]"},
        {"PERTAlt(1, 2, 3, 0.1, 0.8)", "PERTAlt(1, 2, 3, 0.1, 0.8) within [-100, 100]"},
    };
    for (const auto& [left, right] : kPairs) {
        const auto a = moments_of(parsed(left)), b = moments_of(parsed(right));
        EXPECT_NEAR(a.mean, b.mean, 1e-12 * std::fabs(b.mean)) << left;
        EXPECT_NEAR(a.variance, b.variance, 1e-11 * b.variance) << left;
        EXPECT_NEAR(a.skewness, b.skewness, 1e-10 * std::fmax(1, std::fabs(b.skewness))) << left;
        EXPECT_NEAR(a.excess_kurtosis, b.excess_kurtosis, 1e-10 * std::fmax(1, std::fabs(b.excess_kurtosis)))
            << left;
    }
}

/// Far percentiles from their logarithms, in both tails alike.
TEST(MomentsOfFamilies, LogarithmsOfTailsInvert) {
    for (const char* text : {"Normal(0, 1)", "Logistic(0, 1)", "Laplace(0, 1)", "Student(50)", "HS(0, 1)",
                             "Error(0, 1, 3)", "NormalMix(0, 1, 1.5)"}) {
        const Handle distribution = parsed(text);
        for (const double log_p : {-1000.0, -1e5}) {
            double lower = 0, upper = 0;
            EXPECT_EQ(pral_log_quantile(distribution.get(), &log_p, &lower, 1, nullptr), PRAL_OK);
            EXPECT_EQ(pral_log_upper_quantile(distribution.get(), &log_p, &upper, 1, nullptr), PRAL_OK);
            if (std::isinf(upper)) {  // beyond the largest double
                EXPECT_EQ(lower, -HUGE_VAL) << text;
                EXPECT_GT(value(distribution, "logsf", 1.7e308), log_p) << text;
                continue;
            }
            EXPECT_NEAR(upper, -lower, 1e-13 * upper) << text;
            EXPECT_NEAR(value(distribution, "logsf", upper), log_p, 1e-11 * -log_p) << text;
        }
    }
}

}  // namespace
