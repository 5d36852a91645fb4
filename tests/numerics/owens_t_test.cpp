// Owen's T and the skew-normal cumulative against quadrature in 40 digits (reference/owens_t.tsv, skew_normal.tsv).
#include "numerics/owens_t.h"

#include <gtest/gtest.h>

#include <limits>

#include "numerics/constants.h"
#include "support/accuracy.h"
#include "support/table.h"

namespace {

using namespace pral;
using namespace pral::numerics;
using test::relative_error;

TEST(OwensT, KeepsItsDigits) {
    test::Accuracy accuracy;
    for (const auto& row : test::table("reference/owens_t.tsv")) {
        const double h = std::strtod(row[0].c_str(), nullptr), a = std::strtod(row[1].c_str(), nullptr);
        const double t = std::strtod(row[2].c_str(), nullptr), rest = std::strtod(row[3].c_str(), nullptr);
        accuracy.record("T", relative_error(owens_t(h, a), t), row[0] + ' ' + row[1]);
        accuracy.record("complement", relative_error(owens_t_complement(h, a), rest), row[0] + ' ' + row[1]);
        EXPECT_EQ(owens_t(-h, a), owens_t(h, a));
        EXPECT_EQ(owens_t(h, -a), -owens_t(h, a));
    }
    accuracy.expect_within({{"T", 2e-15}, {"complement", 3e-15}});
}

TEST(OwensT, SkewNormalKeepsItsDigitsInBothTails) {
    test::Accuracy accuracy;
    for (const auto& row : test::table("reference/skew_normal.tsv")) {
        const double z = std::strtod(row[0].c_str(), nullptr), alpha = std::strtod(row[1].c_str(), nullptr);
        const double lower = std::strtod(row[2].c_str(), nullptr),
                     upper = std::strtod(row[3].c_str(), nullptr);
        const std::string place = row[0] + ' ' + row[1];
        accuracy.record("cumulative", relative_error(skew_normal_cumulative(z, alpha), lower), place);
        accuracy.record("survival", relative_error(skew_normal_survival(z, alpha), upper), place);
        accuracy.record("mirror", relative_error(skew_normal_survival(-z, -alpha), lower), place);
    }
    accuracy.expect_within({{"cumulative", 2e-15}, {"survival", 2e-15}, {"mirror", 2e-15}});
}

TEST(OwensT, EndsAndHostileArguments) {
    constexpr double inf = std::numeric_limits<double>::infinity();
    EXPECT_EQ(owens_t(0, inf), 0.25);
    EXPECT_EQ(owens_t(0, kInfinity), 0.25);
    EXPECT_EQ(owens_t(inf, 1), 0);
    EXPECT_EQ(skew_normal_cumulative(-inf, 2), 0);
    EXPECT_EQ(skew_normal_cumulative(inf, 2), 1);
    for (const double z : {kNaN, -inf, -1e300, -5e-324, 0.0, 1e-300, 1.0, kInfinity}) {
        for (const double alpha : {kNaN, -inf, -1e300, -5e-324, 0.0, 1e-300, 1.0, kInfinity, inf}) {
            for (const double p : {skew_normal_cumulative(z, alpha), skew_normal_survival(z, alpha),
                                   4 * owens_t_complement(z, std::fabs(alpha))}) {
                EXPECT_TRUE((p >= 0 && p <= 1) || std::isnan(z + alpha)) << z << ' ' << alpha << ' ' << p;
            }
        }
    }
}

}  // namespace
