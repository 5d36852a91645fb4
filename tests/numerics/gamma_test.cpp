// Gamma functions, their elementary parts and the Poisson density against 60-digit arithmetic
// (reference/gamma_functions.tsv), what they report, and their ends.
#include "numerics/gamma.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <set>
#include <string>
#include <vector>

#include "numerics/classical/error_report.h"
#include "numerics/classical/poisson.h"
#include "numerics/classical/reporting.h"
#include "numerics/constants.h"
#include "numerics/elementary.h"
#include "numerics/golden_section.h"
#include "support/accuracy.h"
#include "support/table.h"

namespace pral::numerics {  // not by a using directive: the C library has a gamma of its own
namespace {

using namespace pral::test;

constexpr double kInf = std::numeric_limits<double>::infinity();

struct Function {
    const char* name;
    const char* rows;  ///< the rows of the table that it is measured on
    double (*evaluate)(const double* arguments);
    double (*error)(double actual, double expected);
    double bound;
    double low = -kInf, high = kInf;  ///< the range of the first argument, where it is limited
};

// The bounds are some four times the errors measured.
const Function kFunctions[] = {
    {"gamma", "gamma", [](const double* x) { return gamma(x[0]); }, relative_error, 4e-15},
    {"stirling_gamma", "gamma", [](const double* x) { return stirling_gamma(x[0]); }, relative_error, 4e-15,
     33.001},
    {"gamma_fn near", "gamma", [](const double* x) { return gamma_fn(x[0]); }, relative_error, 4e-15, -10,
     10},
    // Beyond 10 it is e to a logarithm of up to 700.
    {"gamma_fn", "gamma", [](const double* x) { return gamma_fn(x[0]); }, relative_error, 1e-12, -168, kInf},
    {"lgam", "log_gamma", [](const double* x) { return classical::lgam(x[0]); }, scaled_error, 5e-15},
    {"lgam_quiet", "log_gamma", [](const double* x) { return lgam_quiet(x[0]); }, scaled_error, 5e-15},
    {"log_gamma_fn", "log_gamma", [](const double* x) { return log_gamma_fn(x[0]); }, scaled_error, 5e-15},
    {"log_gamma", "log_gamma", [](const double* x) { return log_gamma(x[0]); }, relative_error, 2e-15, 0},
    {"lgamma_1p", "lgamma_1p", [](const double* x) { return lgamma_1p(x[0]); }, relative_error, 2e-15},
    {"lgamma_correction", "lgamma_correction", [](const double* x) { return lgamma_correction(x[0]); },
     relative_error, 2e-14, 10},
    {"log1p_fn", "log1p", [](const double* x) { return log1p_fn(x[0]); }, relative_error, 1e-15},
    {"expm1_fn", "expm1", [](const double* x) { return expm1_fn(x[0]); }, relative_error, 1e-15},
    {"log1p_minus_x", "log1p_minus_x", [](const double* x) { return log1p_minus_x(x[0]); }, relative_error,
     5e-15},
    {"log_continued_fraction", "log_continued_fraction",
     // The tolerance given is absolute, the value near 1/42.
     [](const double* x) { return log_continued_fraction(x[0], x[1], x[2], 1e-14); }, relative_error, 4e-13},
    {"log_beta", "log_beta", [](const double* x) { return log_beta(x[0], x[1]); }, scaled_error, 4e-15},
    // A small difference of logarithms below 15.
    {"stirling_error", "stirling_error", [](const double* x) { return stirling_error(x[0]); }, scaled_error,
     3e-14},
    {"binomial_deviance", "binomial_deviance", [](const double* x) { return binomial_deviance(x[0], x[1]); },
     relative_error, 1e-14},
    {"poisson_density_raw", "log_poisson",
     [](const double* x) { return poisson_density_raw(x[0], x[1], true); }, scaled_error, 1e-14},
    {"poisson_density_shifted", "log_poisson",
     [](const double* x) { return poisson_density_shifted(x[0] + 1, x[1], true); }, scaled_error, 1e-14, 0.1},
};

TEST(Gamma, FunctionsAgainstTheirTables) {
    Accuracy worst;
    for (const auto& row : table("reference/gamma_functions.tsv")) {
        const double arguments[] = {number(row, 1), number(row, 2), number(row, 3)};
        for (const Function& function : kFunctions) {
            if (row[0] != function.rows || !(arguments[0] >= function.low && arguments[0] <= function.high))
                continue;
            testing::internal::CaptureStdout();
            const double error = function.error(function.evaluate(arguments), number(row, 4));
            testing::internal::GetCapturedStdout();
            worst.record(function.name, error, function.bound, place(row, 1, 4));
        }
    }
    worst.report();
}

TEST(Gamma, ReportsAndReturnsAsDocumentedAtPolesAndOverflow) {
    const struct {
        double (*function)(double);
        double x, result;
        const char* report;
        MathError code;
    } rows[] = {
        {classical::gamma, 0, kInfinity, "\ngamma singularity error\n", MathError::singularity},
        {classical::gamma, -5, kInfinity, "\ngamma singularity error\n", MathError::singularity},
        {classical::gamma, -40, kInfinity, "\ngamma overflow error\n", MathError::overflow},
        {classical::lgam, 0, kInfinity, "\nlgam overflow error\n", MathError::overflow},
        {classical::lgam, -34, kInfinity, "\nlgam overflow error\n", MathError::overflow},
        {classical::lgam, -35, kInfinity, "\nlgam overflow error\n", MathError::overflow},
        {classical::lgam, 2.6e305, kInfinity, "\nlgam overflow error\n", MathError::overflow},
    };
    for (const auto& row : rows) {
        testing::internal::CaptureStdout();
        const double result = row.function(row.x);
        EXPECT_EQ(testing::internal::GetCapturedStdout(), row.report) << row.x;
        EXPECT_EQ(result, row.result) << row.x;
        EXPECT_EQ(last_math_error(), static_cast<int>(row.code));
    }
    testing::internal::CaptureStdout();
    EXPECT_EQ(lgam_quiet(-40), kInf);
    EXPECT_EQ(gamma(200), kInfinity);
    EXPECT_EQ(gamma_fn(-3), kInfinity);
    EXPECT_EQ(gamma_fn(172), kInfinity);
    EXPECT_EQ(gamma_fn(-180.5), 0);
    EXPECT_EQ(log_gamma_fn(2.6e305), kInfinity);
    EXPECT_EQ(lgamma_correction(9.99), kInfinity);
    EXPECT_EQ(lgamma_correction(4e306), kInfinity);
    EXPECT_EQ(log_gamma(0), kInfinity);
    EXPECT_EQ(log_beta(0, 3), kInfinity);
    EXPECT_EQ(log1p_fn(-1), -kInfinity);
    EXPECT_EQ(binomial_deviance(3, 0), kInfinity);
    EXPECT_EQ(poisson_density_raw(0, 2, false), std::exp(-2.0));
    EXPECT_EQ(poisson_density_raw(0, 0, true), 0);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

TEST(Gamma, SignFollowsTheLastCall) {
    const struct {
        double x;
        int sign;
    } rows[] = {{-0.5, -1}, {-1.5, 1}, {2.5, 1}, {-33.5, 1}, {-34.5, -1}, {-35.5, 1}};
    for (const auto& row : rows) {
        classical::lgam(row.x);
        EXPECT_EQ(classical::gamma_sign(), row.sign) << row.x;
        classical::gamma(row.x < -33 ? row.x : 1);
        EXPECT_EQ(classical::gamma_sign(), row.x < -33 ? row.sign : 1) << row.x;
    }
}

TEST(Gamma, AnyArgumentComesBackAtOnce) {
    const double hostile[] = {kNaN,   kInf,    -kInf, kInfinity, -kInfinity, 1e300, -1e300,
                              5e-324, -5e-324, 0,     -0.0,      -1e17,      1e17};
    std::set<std::string> not_nan;
    testing::internal::CaptureStdout();
    for (const double x : hostile) {
        for (const double y : hostile) {
            for (const double z : hostile) {
                const double arguments[] = {x, y, z};
                for (const Function& function : kFunctions) {
                    if (!std::isnan(function.evaluate(arguments)) && std::isnan(x))
                        not_nan.insert(function.name);
                }
            }
        }
    }
    testing::internal::GetCapturedStdout();
    EXPECT_EQ(not_nan, std::set<std::string>{});
}

TEST(Gamma, GoldenSectionFindsMinima) {
    int calls = 0;
    const auto minimum = [&](auto f, double a, double b, double tol) {
        calls = 0;
        return golden_section_minimise([&](double x) { return ++calls, f(x); }, a, b, tol);
    };
    const auto cosine = [](double x) { return std::cos(x); };
    EXPECT_NEAR(minimum([](double x) { return (x - 1.0 / 3) * (x - 1.0 / 3); }, 0, 1, 1e-10), 1.0 / 3, 1e-8);
    EXPECT_LT(calls, 15);
    EXPECT_NEAR(minimum(cosine, 0, 6, 1e-10), kPi, 1e-7);
    EXPECT_NEAR(minimum([](double x) { return std::fabs(x + 2); }, -10, 5, 1e-6), -2, 1e-6);
    EXPECT_NEAR(minimum([](double x) { return x; }, 0, 1, 1e-6), 0, 1e-6);  // at an end
    for (const double end : {kNaN, kInf, 1e300}) minimum(cosine, end, 1, 0), minimum(cosine, -1, end, 0);
    minimum([](double) { return kNaN; }, 0, 1, 0);
    EXPECT_LE(calls, 1001);
}

}  // namespace
}  // namespace pral::numerics
