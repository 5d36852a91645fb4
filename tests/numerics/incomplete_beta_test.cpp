// The classical incomplete beta: its edges, its oddities and its accuracy where it forms its factor directly.
#include "numerics/classical/incomplete_beta.h"

#include <gtest/gtest.h>

#include "numerics/constants.h"
#include "support/accuracy.h"
#include "support/table.h"

namespace {

using namespace pral;
using namespace pral::numerics;

TEST(IncompleteBeta, AgreesWithTheTable) {
    test::Accuracy accuracy;
    for (const auto& row : test::table("reference/beta_ratio.tsv")) {
        const double a = std::strtod(row[1].c_str(), nullptr), b = std::strtod(row[2].c_str(), nullptr);
        const double x = std::strtod(row[3].c_str(), nullptr), lower = std::strtod(row[5].c_str(), nullptr);
        if (a + b > 171 || std::fmin(a, b) < 1e-3 || x < 1e-30 || x > 0.9999999) continue;
        const std::string place = row[1] + ' ' + row[2] + ' ' + row[3];
        accuracy.record("incomplete_beta", std::fabs(incomplete_beta(a, b, x) - lower), place);
        if (b * x <= 1 && x <= 0.95) {
            const double series = incomplete_beta_series(a, b, x);
            accuracy.record("series", test::relative_error(series, lower), place);
        }
    }
    accuracy.expect_within({{"incomplete_beta", 1e-13}, {"series", 4e-13}});
}

TEST(IncompleteBeta, EdgesAndTheLogarithmicBranch) {
    const struct {
        double a, b, x, expected;
    } kCases[] = {
        {0, 1, 0.5, 0},
        {1, 0, 0.5, 0},
        {-1, 2, 0.5, 0},
        {2, 3, 0, 0},
        {2, 3, -1, 0},
        {2, 3, 1, 1},
        {2, 3, 1.5, 0},
        {500, 500, 0.25, 0},                   // the factor in logarithms: 0 below the mean,
        {500, 500, 0.75, 0.9999999999999999},  // the double below 1 above it
        {1, 1, 0.25, 0.25},
    };
    for (const auto& c : kCases) {
        EXPECT_DOUBLE_EQ(incomplete_beta(c.a, c.b, c.x), c.expected) << c.a << ' ' << c.b << ' ' << c.x;
    }
    EXPECT_TRUE(std::isnan(incomplete_beta(kNaN, 1, 0.5)));
    // The series takes logarithms as well, and there they count.
    EXPECT_NEAR(incomplete_beta(300, 0.5, 0.9) / 1.90181907868198e-15, 1, 1e-12);
    EXPECT_NEAR(incomplete_beta(500, 0.5, 0.5) / 1.08872024717515e-152, 1, 1e-12);
}

}  // namespace
