// The noncentral beta against sums in 60-digit arithmetic (reference/noncentral_beta.tsv).
#include "numerics/noncentral_beta.h"

#include <gtest/gtest.h>

#include <chrono>
#include <limits>

#include "numerics/constants.h"
#include "support/accuracy.h"
#include "support/table.h"

namespace {

using namespace pral;
using namespace pral::numerics;
using test::relative_error;

TEST(NoncentralBeta, KeepsItsDigitsInBothTails) {
    test::Accuracy accuracy;
    for (const auto& fields : test::table("reference/noncentral_beta.tsv")) {
        std::vector<double> v;
        for (const auto& field : fields) v.push_back(std::strtod(field.c_str(), nullptr));
        const double x = v[3], y = 1 - x;
        const std::string place = fields[0] + ' ' + fields[1] + ' ' + fields[2] + ' ' + fields[3];
        const NoncentralBeta beta(v[0], v[1], v[2]);
        accuracy.record("lower", relative_error(beta.lower(x, y), v[4]), place);
        accuracy.record("upper", relative_error(beta.upper(x, y), v[5]), place);
        if (v[4] > 0 && v[4] < 0.999) {
            accuracy.record("log lower", relative_error(beta.log_lower(x, y), std::log(v[4])), place);
        }
        const double size = std::fmax(1, std::fabs(v[6]));
        accuracy.record("log density", std::fabs(beta.log_density(x, y) - v[6]) / size, place);
    }
    accuracy.expect_within(
        {{"lower", 2e-13}, {"upper", 6e-14}, {"log lower", 1e-13}, {"log density", 3e-14}});
}

/// No table reaches so far; for a = b = 1 the mixture is elementary: P(X <= x) = x exp(-lambda y/2).
TEST(NoncentralBeta, HugeNoncentralityInBoundedTime) {
    for (const double lambda : {1e6, 1e8, 1e10, 1e13}) {
        const auto start = std::chrono::steady_clock::now();
        for (const double scaled : {0.25, 1.0, 4.0}) {
            const double y = 2 * scaled / lambda;
            EXPECT_NEAR(NoncentralBeta(1, 1, lambda).lower(1 - y, y) / (1 - y) / std::exp(-0.5 * lambda * y),
                        1, 2e-13)
                << lambda;
        }
        const std::chrono::duration<double> spent = std::chrono::steady_clock::now() - start;
        EXPECT_LT(spent.count(), 0.1);
    }
}

TEST(NoncentralBeta, EndsAndHostileArguments) {
    const NoncentralBeta beta(1, 2, 3);
    EXPECT_EQ(beta.lower(0, 1), 0);
    EXPECT_EQ(beta.upper(0, 1), 1);
    EXPECT_EQ(beta.lower(1, 0), 1);
    EXPECT_EQ(beta.log_upper(1, 0), -kInfinity);
    EXPECT_DOUBLE_EQ(beta.log_density(0, 1), std::log(2) - 1.5);
    EXPECT_DOUBLE_EQ(NoncentralBeta(2, 3, 0).lower(0.25, 0.75), beta_lower(2, 3, 0.25, 0.75));
    const double kHostile[] = {kNaN, -1,  0,    5e-324, 1e-300,    0.5,
                               3,    1e5, 1e17, 1e300,  kInfinity, std::numeric_limits<double>::infinity()};
    for (const double a : kHostile) {
        for (const double b : kHostile) {
            for (const double lambda : kHostile) {
                for (const double x : {0.0, 5e-324, 1e-300, 1e-5, 0.5, 1 - 0x1p-53, 1.0, 2.0}) {
                    const NoncentralBeta hostile(a, b, lambda);
                    const double p = hostile.lower(x, 1 - x), q = hostile.upper(x, 1 - x);
                    EXPECT_TRUE(std::isnan(p) || (p >= 0 && p <= 1))
                        << a << ' ' << b << ' ' << lambda << ' ' << x;
                    EXPECT_TRUE(std::isnan(q) || (q >= 0 && q <= 1))
                        << a << ' ' << b << ' ' << lambda << ' ' << x;
                    hostile.log_density(x, 1 - x);
                }
            }
        }
    }
}

}  // namespace
