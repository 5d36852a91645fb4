// Inverses of the incomplete beta ratio and Student's t against reference/beta_quantile.tsv and student.tsv.
#include "numerics/beta_quantile.h"

#include <gtest/gtest.h>

#include <chrono>
#include <limits>

#include "numerics/classical/beta_quantile_as109.h"
#include "numerics/classical/incomplete_beta.h"
#include "numerics/constants.h"
#include "support/accuracy.h"
#include "support/table.h"

namespace {

using namespace pral;
using namespace pral::numerics;
using test::relative_error;

std::vector<double> values(const std::vector<std::string>& fields, std::size_t from = 0) {
    std::vector<double> v;
    for (std::size_t i = from; i < fields.size(); ++i) v.push_back(std::strtod(fields[i].c_str(), nullptr));
    return v;
}

/// The error of a point: relative in the smaller coordinate, or what it makes of the tail where that is flatter.
double point_error(UnitPoint at, double x, double y, double hazard) {
    const double error = x < y ? relative_error(at.x, x) : relative_error(at.y, y);
    return error * std::fmin(1, hazard / (x < y ? y : x));
}

TEST(BetaQuantile, InversesKeepTheirDigits) {
    test::Accuracy accuracy;
    for (const auto& fields : test::table("reference/beta_quantile.tsv")) {
        const auto v = values(fields);
        const double a = v[0], b = v[1], p = v[2], x = v[3], y = v[4], hazard = v[5];
        const std::string place = fields[0] + ' ' + fields[1] + ' ' + fields[2];
        accuracy.record("lower", point_error(beta_lower_inverse(a, b, p), x, y, hazard), place);
        accuracy.record("upper", point_error(beta_upper_inverse(b, a, p), y, x, hazard), place);
        if (p > 1e-12) {  // 1 - p still says something of the tail
            const double blur = 0x1p-54 / p;
            const UnitPoint at = beta_upper_inverse(a, b, 1 - p);
            accuracy.record("complement", std::fmax(0, point_error(at, x, y, hazard) - blur), place);
        }
        // The classical inverses, by what their x makes of the percentile, absolute: incbi stops at a relative
        // change of the larger tail, the exponent of AS 63 is formed in double precision.
        const auto in_percentile = [&](double found) { return p * relative_error(found, x) * hazard / y; };
        if (x > 1e-5 && y > 1e-5) accuracy.record("incbi", in_percentile(incbi(a, b, p)), place);
        if (x > 1e-3 && y > 1e-3 && p > 1e-4 && std::fmin(a, b) > 0.4 && std::fmax(a, b) < 1e4) {
            accuracy.record("AS 109", in_percentile(beta_quantile_as109(p, a, b)), place);
        }
    }
    accuracy.expect_within(
        {{"lower", 8e-15}, {"upper", 8e-15}, {"complement", 8e-15}, {"incbi", 1e-13}, {"AS 109", 2e-12}});
}

TEST(BetaQuantile, StudentKeepsItsDigits) {
    test::Accuracy accuracy;
    for (const auto& fields : test::table("reference/student.tsv")) {
        const auto v = values(fields, 1);
        const std::string place = fields[1] + ' ' + fields[2];
        if (fields[0] == "cumulative") {
            accuracy.record("cumulative", relative_error(student_lower(v[0], v[1]), v[2]), place);
            accuracy.record("other side", relative_error(student_lower(v[0], -v[1]), 1 - v[2]), place);
        } else {
            // P falls as t^-nu: for a small nu the error counts by what it makes of the percentile.
            const double error = relative_error(student_quantile(v[0], v[1]), v[2]);
            accuracy.record("quantile", error * std::fmin(1, v[0]), place);
        }
    }
    accuracy.expect_within({{"cumulative", 4e-13}, {"other side", 2e-15}, {"quantile", 8e-15}});
    EXPECT_EQ(student_quantile(3, 0.5), 0);
    EXPECT_EQ(student_quantile(3, 0), -kInfinity);
    EXPECT_EQ(student_quantile(3, 1), kInfinity);
    EXPECT_EQ(student_lower(3, kInfinity), 1);
}

TEST(BetaQuantile, EndsAndHostileArguments) {
    for (const double a : {0.5, 2.0}) {
        EXPECT_EQ(incbi(a, 3, 0), 0);
        EXPECT_EQ(incbi(a, 3, 1), 1);
        EXPECT_EQ(beta_quantile_as109(0, a, 3), 0);
        EXPECT_EQ(beta_quantile_as109(1, a, 3), 1);
        EXPECT_EQ(beta_lower_inverse(a, 3, 0).x, 0);
        EXPECT_EQ(beta_upper_inverse(a, 3, 0).y, 0);
    }
    EXPECT_EQ(beta_quantile_as109(0.5, 0, 1), kInfinity);
    const double kHostile[] = {kNaN,  -1,    0,         5e-324,    1e-300,
                               1e-17, 0.25,  1 - 1e-16, 7,         1e5,
                               1e17,  1e150, 1e300,     kInfinity, std::numeric_limits<double>::infinity()};
    testing::internal::CaptureStdout();
    for (const double a : kHostile) {
        for (const double b : kHostile) {
            for (const double p : kHostile) {
                const auto start = std::chrono::steady_clock::now();
                const UnitPoint at = beta_lower_inverse(a, b, p);
                EXPECT_TRUE(std::isnan(at.x) || (at.x >= 0 && at.x <= 1)) << a << ' ' << b << ' ' << p;
                const double x = incbi(a, b, p);
                EXPECT_TRUE(std::isnan(x) || (x >= 0 && x <= 1)) << a << ' ' << b << ' ' << p;
                beta_quantile_as109(p, a, b);
                student_quantile(a, p);
                const std::chrono::duration<double> spent = std::chrono::steady_clock::now() - start;
                EXPECT_LT(spent.count(), 5) << a << ' ' << b << ' ' << p;
            }
        }
    }
    testing::internal::GetCapturedStdout();
}

TEST(BetaQuantile, IncbiReports) {
    testing::internal::CaptureStdout();
    EXPECT_EQ(incbi(1e-3, 20, 0.25), 0);  // about 1e-602
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "\nincbi underflow error\n");
    testing::internal::CaptureStdout();
    EXPECT_NEAR(incbi(2, 5, 0.25), 0.16116, 1e-5);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

}  // namespace
