// The incomplete gamma ratios, classical and own, and their inverses against 40-digit arithmetic
// (reference/incomplete_gamma.tsv, gamma_inverse.tsv).
#include "numerics/classical/incomplete_gamma.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "numerics/classical/gamma_quantile.h"
#include "numerics/constants.h"
#include "numerics/gamma.h"
#include "numerics/gamma_ratio.h"
#include "support/accuracy.h"
#include "support/table.h"

namespace {

using namespace pral::numerics;
using namespace pral::test;

constexpr double kInf = std::numeric_limits<double>::infinity();

enum Column { kLower = 2, kUpper, kLogLower, kLogUpper, kLogDensity };

struct Function {
    const char* name;
    double (*evaluate)(double a, double x);
    Column expected;
    double bound;
    double largest_shape = kInf;
};

// The bounds are some four times the errors measured. Those of the classical routines are what their algorithms give:
// an exponent of the size of a ln x, rounded.
const Function kFunctions[] = {
    {"gamma_lower", gamma_lower, kLower, 4e-15},
    {"gamma_upper", gamma_upper, kUpper, 4e-15},
    {"log_gamma_lower", log_gamma_lower, kLogLower, 4e-15},
    {"log_gamma_upper", log_gamma_upper, kLogUpper, 4e-15},
    {"log_gamma_density", log_gamma_density, kLogDensity, 2e-15},
    {"gamma_cdf lower", [](double a, double x) { return gamma_cdf(x, a, true, false); }, kLower, 6e-13},
    {"gamma_cdf upper", [](double a, double x) { return gamma_cdf(x, a, false, false); }, kUpper, 5e-12},
    {"gamma_cdf log lower", [](double a, double x) { return gamma_cdf(x, a, true, true); }, kLogLower, 5e-12},
    {"gamma_cdf log upper", [](double a, double x) { return gamma_cdf(x, a, false, true); }, kLogUpper,
     6e-13},
    {"incomplete_gamma_lower", incomplete_gamma_lower, kLower, 8e-14, 100},
    {"incomplete_gamma_upper", incomplete_gamma_upper, kUpper, 8e-14, 100},
};

/// The classical routines give 1 - P for a small Q and 0 below the range of their exponential: absolute there.
double error_of(const Function& function, double actual, double expected) {
    if (function.expected == kLogDensity) return scaled_error(actual, expected);
    if (function.expected >= kLogLower) {
        return std::fabs(expected) < 1e-300 ? std::fabs(actual - expected) : relative_error(actual, expected);
    }
    if (expected < 1e-300) return std::fabs(actual - expected) <= 1e-300 * 1e-10 ? 0 : HUGE_VAL;
    const bool classical = function.largest_shape < kInf;
    return classical ? std::fabs(actual - expected) : relative_error(actual, expected);
}

TEST(IncompleteGamma, RatiosAgainstTheTable) {
    Accuracy worst;
    for (const auto& row : table("reference/incomplete_gamma.tsv")) {
        const double a = number(row, 0), x = number(row, 1);
        for (const Function& function : kFunctions) {
            if (a > function.largest_shape) continue;
            const double error = error_of(function, function.evaluate(a, x), number(row, function.expected));
            worst.record(function.name, error, function.bound, place(row, 0, 2));
        }
    }
    worst.report();
}

TEST(IncompleteGamma, InversesAgainstTheTable) {
    Accuracy worst;
    for (const auto& row : table("reference/gamma_inverse.tsv")) {
        const double a = number(row, 1), p = number(row, 2), expected = number(row, 3);
        const bool lower = row[0] == "lower";
        const double x = lower ? gamma_lower_inverse(a, p) : gamma_upper_inverse(a, p);
        const std::string where = place(row, 0, 3);
        // The root moves by the relative error of p over d ln p / d ln x.
        const double smaller = p <= 0.5 ? p : 1 - p;
        const double rate = std::exp(log_gamma_density(a, expected) - std::log(smaller)) * expected;
        worst.record("inverse, x", relative_error(x, expected) * std::fmin(1, rate), 2e-15, where);
        const double back = lower == (p <= 0.5) ? gamma_lower(a, x) : gamma_upper(a, x);
        worst.record("inverse, back-substituted", relative_error(back, smaller) / std::fmax(1, rate), 2e-15,
                     where);
        if (a > 1e6) continue;
        const double classical = gamma_quantile(p, a, 1, lower, false);
        worst.record("gamma_quantile, x", relative_error(classical, expected) * std::fmin(1, rate), 6e-14,
                     where);
    }
    worst.report();
}

TEST(IncompleteGamma, ClassicalRoutinesMixTheirConventions) {
    EXPECT_EQ(log_incomplete_gamma_upper(2, 0.5), 1 - incomplete_gamma_lower(2, 0.5));
    EXPECT_NEAR(log_incomplete_gamma_upper(2, 5), std::log(6 * std::exp(-5.0)),
                1e-14);  // Q(2, x) = (1 + x) e^-x
    EXPECT_NEAR(log_incomplete_gamma_upper(2, 2000), std::log(2001) - 2000, 1e-11);
    EXPECT_NEAR(log_incomplete_gamma_lower(2, 0.5), std::log(1 - 1.5 * std::exp(-0.5)), 1e-14);
    EXPECT_EQ(log_incomplete_gamma_lower(2, 5), 1 - log_incomplete_gamma_upper(2, 5));
    const double pairs[][2] = {{0, 1}, {1, 0}, {-1, 1}, {1, -1}};
    for (const auto& [a, x] : pairs) {
        EXPECT_EQ(incomplete_gamma_lower(a, x), 0);
        EXPECT_EQ(incomplete_gamma_upper(a, x), 1);
        EXPECT_EQ(log_incomplete_gamma_lower(a, x), 0);
        EXPECT_EQ(log_incomplete_gamma_upper(a, x), 1);
    }
    EXPECT_EQ(incomplete_gamma_lower(50, 1e-10), 0);  // below the range of its exponential
    EXPECT_EQ(incomplete_gamma_upper(2, 800), 0);
}

TEST(IncompleteGamma, EndsOfTheRanges) {
    const struct {
        double a, x, lower;
    } rows[] = {{3, 0, 0},      {3, -1, 0},          {3, kInfinity, 1}, {3, kInf, 1},     {0, 0, 1},
                {0, 5, 1},      {kInfinity, 5, 0},   {1e300, 1e10, 0},  {1e10, 1e300, 1}, {1e300, 2e300, 1},
                {5e-324, 1, 1}, {1, 5e-324, 5e-324}, {1e15, 1e14, 0},   {1e15, 1e16, 1}};
    for (const auto& row : rows) {
        EXPECT_EQ(gamma_lower(row.a, row.x), row.lower) << row.a << ' ' << row.x;
        EXPECT_EQ(gamma_upper(row.a, row.x), 1 - row.lower) << row.a << ' ' << row.x;
        EXPECT_EQ(gamma_cdf(row.x, row.a, true, false), row.lower) << row.a << ' ' << row.x;
    }
    EXPECT_NEAR(gamma_lower(1e300, 1e300), 0.5, 1e-15);
    EXPECT_EQ(log_gamma_lower(3, 0), -kInfinity);
    EXPECT_EQ(gamma_density(1, 0), 1);
    EXPECT_EQ(gamma_density(0.5, 0), kInfinity);
    EXPECT_EQ(log_gamma_density(2, 0), -kInfinity);
    EXPECT_EQ(gamma_lower_inverse(3, 0), 0);
    EXPECT_EQ(gamma_lower_inverse(3, 1), kInfinity);
    EXPECT_EQ(gamma_upper_inverse(3, 0), kInfinity);
    EXPECT_EQ(gamma_upper_inverse(3, 1), 0);
    EXPECT_EQ(gamma_lower_inverse(1e-3, 1e-300), 0);  // below the smallest double
    EXPECT_EQ(gamma_quantile(0, 3, 2, true, false), 0);
    EXPECT_EQ(gamma_quantile(0, 3, 2, false, false), kInfinity);
    EXPECT_EQ(gamma_quantile(0.3, 0, 2, true, false), 0);
    EXPECT_EQ(gamma_quantile(1.5, 3, 2, true, false), kInfinity);
    EXPECT_NEAR(gamma_quantile(std::log(0.3), 3, 2, false, true), 2 * gamma_upper_inverse(3, 0.3), 1e-13);
}

TEST(IncompleteGamma, StartsOfTheChiSquareQuantile) {
    // Within a tenth of the quantile, which is what the Taylor steps start from.
    const double rows[][2] = {{0.2, 0.97}, {0.2, 0.5},  {3, 1e-4}, {3, 0.5},
                              {3, 0.9999}, {100, 0.01}, {1e6, 0.3}};
    for (const auto& [nu, p] : rows) {
        const double start = chisq_quantile_start(p, nu, lgam_quiet(nu / 2), true, false, 1e-2);
        EXPECT_NEAR(start / (2 * gamma_lower_inverse(nu / 2, p)), 1, 0.1) << nu << ' ' << p;
    }
}

TEST(IncompleteGamma, AnyArgumentComesBackAtOnce) {
    const double hostile[] = {kNaN, kInf, -kInf, kInfinity, -kInfinity, 1e300, -1e300, 5e-324, 0,
                              -1,   1e17, 1e-17, 0.5,       1,          1e9,   1e12,   1e-300};
    for (const double a : hostile) {
        for (const double x : hostile) {
            const bool is_nan = std::isnan(a) || std::isnan(x);
            for (const Function& function : kFunctions) {
                const double value = function.evaluate(a, x);
                const bool classical = function.largest_shape < kInf;  // overflows for huge shapes
                if (classical ? a > 0 && x > 0 && a < 1e17 : a > 0 || is_nan) {
                    EXPECT_EQ(std::isnan(value), is_nan) << function.name << ' ' << a << ' ' << x;
                }
            }
            log_incomplete_gamma_lower(a, x);
            log_incomplete_gamma_upper(a, x);
            EXPECT_EQ(std::isnan(gamma_lower_inverse(a, x)), is_nan || a < 0) << a << ' ' << x;
            EXPECT_EQ(std::isnan(gamma_upper_inverse(a, x)), is_nan || a < 0) << a << ' ' << x;
            for (const bool log_p : {false, true})
                gamma_quantile(x, a, 1, true, log_p), gamma_quantile(-x, a, a, false, log_p);
        }
    }
}

}  // namespace
