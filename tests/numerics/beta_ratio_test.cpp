// The incomplete beta ratio: Algorithm 708 row by row, the classical routine, and the distributions' own, on the
// same points (reference/beta_ratio.tsv).
#include "numerics/beta_ratio.h"

#include <gtest/gtest.h>

#include <limits>

#include "numerics/classical/incomplete_beta.h"
#include "numerics/constants.h"
#include "numerics/toms708.h"
#include "support/accuracy.h"
#include "support/table.h"

namespace {

using namespace pral;
using namespace pral::numerics;
using test::relative_error;

struct Point {
    std::string row, place;
    double a, b, x, y, lower, upper, log_lower, log_upper, log_density;
};

std::vector<Point> points() {
    std::vector<Point> result;
    for (const auto& fields : test::table("reference/beta_ratio.tsv")) {
        std::vector<double> v;
        for (const auto& field : fields) v.push_back(std::strtod(field.c_str(), nullptr));
        result.push_back({fields[0], fields[1] + ' ' + fields[2] + ' ' + fields[3], v[1], v[2], v[3], v[4],
                          v[5], v[6], v[7], v[8], v[9]});
    }
    return result;
}

/// The error of the smaller tail relative, which bounds that of the larger one.
double tail_error(double lower, double upper, const Point& p) {
    return p.lower < p.upper ? relative_error(lower, p.lower) : relative_error(upper, p.upper);
}

const char* kRows[] = {"-",   "A1",  "A2", "A3", "A4", "A5", "A6", "A7", "A8", "A9",
                       "A10", "A11", "B1", "B2", "B3", "B4", "B5", "B6", "B7", "B8"};

TEST(BetaRatio, KeepsItsDigitsInBothTails) {
    test::Accuracy accuracy;
    for (const Point& p : points()) {
        const BetaRatio ratio(p.a, p.b);
        accuracy.record("lower", relative_error(ratio.lower(p.x, p.y), p.lower), p.place);
        accuracy.record("upper", relative_error(ratio.upper(p.x, p.y), p.upper), p.place);
        accuracy.record("log lower", relative_error(ratio.log_lower(p.x, p.y), p.log_lower), p.place);
        accuracy.record("log upper", relative_error(ratio.log_upper(p.x, p.y), p.log_upper), p.place);
        // A logarithm of a density passes through 0: its absolute error is the density's relative one.
        const double density = ratio.log_density(p.x, p.y), size = std::fmax(1, std::fabs(p.log_density));
        accuracy.record("log density", std::fabs(density - p.log_density) / size, p.place);
    }
    accuracy.expect_within({{"lower", 5e-15},
                            {"upper", 1e-14},
                            {"log lower", 1e-14},
                            {"log upper", 5e-15},
                            {"log density", 2e-15}});
}

TEST(BetaRatioToms708, EveryRowOfTheAlgorithm) {
    test::Accuracy accuracy;
    for (const Point& p : points()) {
        if (p.row == "-") continue;
        const auto result = toms708::beta_ratios(p.a, p.b, p.x, p.y);
        ASSERT_TRUE(result.valid) << p.place;
        EXPECT_EQ(kRows[static_cast<int>(result.row)], p.row) << p.place;
        double w = -1;
        EXPECT_TRUE(incomplete_beta_ratio(w, p.x, p.a, p.b));
        EXPECT_LT(std::fabs(w - p.lower), 5e-14) << p.place;
        // The shift by recurrence begins with a factor that can underflow; the tail is then lost.
        const double smaller = std::fmin(p.lower, p.upper);
        if (smaller > 1e-100) accuracy.record(p.row, tail_error(result.lower, result.upper, p), p.place);
    }
    std::map<std::string, double> bounds;
    for (const char* row : kRows) bounds[row] = 4e-13;
    bounds.erase("-");
    bounds["B5"] = bounds["B7"] = 2e-12;  // a - (a + b) x is formed in double precision
    accuracy.expect_within(bounds);
}

TEST(BetaRatioToms708, RefusalsAndEnds) {
    constexpr double inf = std::numeric_limits<double>::infinity();
    const struct {
        double x, a, b;
        bool valid;
        double w;
    } kCases[] = {
        {0.5, -1, 2, false, 0},   {0.5, 2, -1, false, 0},  {0.5, 0, 0, false, 0},
        {-0.1, 1, 1, false, 0},   {1.1, 1, 1, false, 0},   {kNaN, 1, 1, false, 0},
        {0.5, kNaN, 1, false, 0}, {0.5, 1, inf, false, 0}, {0, 0, 1, false, 0},
        {0, 1, 1, true, 0},       {1, 1, 0, false, 0},     {1, 1, 1, true, 1},
        {0.5, 0, 1, true, 1},     {0.5, 1, 0, true, 0},    {0.5, 1e-19, 3e-19, true, 0.75},
    };
    for (const auto& c : kCases) {
        double w = -1;
        EXPECT_EQ(incomplete_beta_ratio(w, c.x, c.a, c.b), c.valid) << c.x << ' ' << c.a << ' ' << c.b;
        EXPECT_DOUBLE_EQ(w, c.w) << c.x << ' ' << c.a << ' ' << c.b;
    }
    EXPECT_FALSE(toms708::beta_ratios(1, 1, 0.25, 0.5).valid);
}

TEST(BetaRatioDigamma, AgreesWithTheTable) {
    test::Accuracy accuracy;
    for (const auto& row : test::table("reference/digamma.tsv")) {
        const double x = std::strtod(row[0].c_str(), nullptr), value = std::strtod(row[1].c_str(), nullptr);
        // Relative, but absolute next to a zero: only the positive one is resolved.
        const double size = std::fmax(std::fabs(value), 0.1);
        accuracy.record("digamma", std::fabs(digamma_708(x) - value) / size, row[0]);
    }
    accuracy.expect_within({{"digamma", 1.2e-14}});
    for (const double pole : {0.0, -1.0, -17.0, -1e10}) EXPECT_EQ(digamma_708(pole), 0);
}

TEST(BetaRatio, EndsAndHostileArguments) {
    const BetaRatio ratio(2, 3);
    EXPECT_EQ(ratio.lower(0, 1), 0);
    EXPECT_EQ(ratio.upper(1, 0), 0);
    EXPECT_EQ(ratio.log_lower(0, 1), -kInfinity);
    EXPECT_EQ(ratio.log_density(0, 1), -kInfinity);
    EXPECT_DOUBLE_EQ(BetaRatio(1, 3).log_density(0, 1), std::log(3.0));
    EXPECT_EQ(BetaRatio(0.5, 3).log_density(0, 1), kInfinity);
    // Of tiny shapes 1/B(a, a) = a/2 is left.
    for (const double a : {1e-100, 1e-200, 1e-270, 1e-300})
        EXPECT_NEAR(BetaRatio(a, a).log_density(0.25, 0.75), std::log(a / 2 / 0.1875), 1e-12) << a;
    const double kHostile[] = {kNaN,  -1,    0,     5e-324,    1e-300,
                               1e-17, 0.5,   1,     3,         1e5,
                               1e16,  1e150, 1e300, kInfinity, std::numeric_limits<double>::infinity()};
    for (const double a : kHostile) {
        for (const double b : kHostile) {
            for (const double x : kHostile) {
                const double results[] = {beta_lower(a, b, x, 1 - x), beta_upper(a, b, x, 1 - x)};
                for (const double p : results) {
                    EXPECT_TRUE(std::isnan(p) || (p >= 0 && p <= 1)) << a << ' ' << b << ' ' << x;
                }
                EXPECT_FALSE(log_beta_lower(a, b, x, 1 - x) > 0) << a << ' ' << b << ' ' << x;
                log_beta_density(a, b, x, 1 - x);
                incomplete_beta(a, b, x);
                double w;
                incomplete_beta_ratio(w, x, a, b);
            }
        }
    }
}

}  // namespace
