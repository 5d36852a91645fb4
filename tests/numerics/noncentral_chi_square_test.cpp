// The noncentral chi-square distribution and ln I_nu against 60-digit sums (reference/noncentral_chi_square.tsv,
// bessel.tsv).
#include "numerics/noncentral_chi_square.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "numerics/classical/bessel.h"
#include "numerics/constants.h"
#include "numerics/gamma_ratio.h"
#include "numerics/normal.h"
#include "support/accuracy.h"
#include "support/table.h"

namespace {

using namespace pral::numerics;
using namespace pral::test;

constexpr double kInf = std::numeric_limits<double>::infinity();

TEST(NoncentralChiSquare, BothTailsAndDensityAgainstTheTable) {
    Accuracy worst;
    for (const auto& row : table("reference/noncentral_chi_square.tsv")) {
        const double nu = number(row, 0), lambda = number(row, 1), x = number(row, 2);
        const double lower = noncentral_chi_square_lower(nu, lambda, x);
        const double upper = noncentral_chi_square_upper(nu, lambda, x);
        const std::string where = place(row, 0, 3);
        if (number(row, 3) > 1e-300)
            worst.record("lower", relative_error(lower, number(row, 3)), 6e-14, where);
        if (number(row, 4) > 1e-300)
            worst.record("upper", relative_error(upper, number(row, 4)), 6e-14, where);
        const double density = noncentral_chi_square_log_density(nu, lambda, x);
        worst.record("log density", scaled_error(density, number(row, 5)), 4e-15, where);
    }
    worst.report();
}

TEST(NoncentralChiSquare, BesselFunctionAgainstTheTable) {
    Accuracy worst;
    for (const auto& row : table("reference/bessel.tsv")) {
        const double nu = number(row, 0), x = number(row, 1);
        const std::string where = place(row, 0, 2);
        worst.record("log_bessel_i", scaled_error(log_bessel_i(nu, x), number(row, 2)), 4e-15, where);
        worst.record("log_bessel_i_scaled", scaled_error(log_bessel_i_scaled(nu, x), number(row, 3)), 8e-15,
                     where);
    }
    worst.report();
    // Far beyond the table: the leading terms of DLMF 10.40.1 and 10.41.3.
    EXPECT_NEAR(log_bessel_i_scaled(2, 1e300), -0.5 * std::log(2 * kPi * 1e300), 1e-11);
    const double slope = std::sqrt(2.0) - std::log(1 + std::sqrt(2.0));
    for (const double nu : {1e9, 1e100, 1e300}) EXPECT_NEAR(log_bessel_i(nu, nu) / nu / slope, 1, 1e-7);
}

TEST(NoncentralChiSquare, SwitchOfMethodAndLimits) {
    // Sum and integral meet where the integrand's variance is 2500, near lambda = 2440: no step may show.
    const auto log_upper = [](double lambda) {
        return std::log(noncentral_chi_square_upper(2, lambda, 1.05 * lambda));
    };
    for (double lambda = 2410; lambda < 2470; lambda += 0.5) {
        const double curvature = log_upper(lambda - 0.5) + log_upper(lambda + 0.5) - 2 * log_upper(lambda);
        EXPECT_NEAR(curvature, 0, 1e-8) << lambda;
    }
    EXPECT_EQ(noncentral_chi_square_lower(3, 0, 2), gamma_lower(1.5, 1));
    EXPECT_EQ(noncentral_chi_square_lower(3, 5e-324, 2), gamma_lower(1.5, 1));
    EXPECT_EQ(noncentral_chi_square_lower(0, 3, 0), std::exp(-1.5));
    EXPECT_EQ(noncentral_chi_square_upper(3, 2, 0), 1);
    EXPECT_EQ(noncentral_chi_square_upper(3, 2, kInfinity), 0);
    EXPECT_EQ(noncentral_chi_square_log_density(3, 2, -1), -kInfinity);
    // One degree of freedom: the square of a normal variable.
    for (const double m : {0.5, 3.0, 50.0, 1e3, 1e6}) {
        const double expected = normal_survival(2) + normal_cumulative(-2 - 2 * m);
        EXPECT_NEAR(noncentral_chi_square_upper(1, m * m, (m + 2) * (m + 2)) / expected, 1, 1e-9) << m;
    }
    EXPECT_NEAR(noncentral_chi_square_upper(1, 1e30, 1e30), 0.5, 1e-12);
}

TEST(NoncentralChiSquare, AnyArgumentComesBackAtOnce) {
    const double hostile[] = {kNaN,   kInf, -kInf, kInfinity, -1,    0,    5e-324,
                              1e-300, 0.5,  1e5,   1e17,      1e100, 1e300};
    for (const double nu : hostile) {
        for (const double lambda : hostile) {
            const double bessel = log_bessel_i(nu, lambda);
            EXPECT_EQ(std::isnan(bessel),
                      !(nu >= 0 && lambda >= 0) || (nu >= kInfinity && lambda >= kInfinity))
                << nu << ' ' << lambda;
            for (const double x : hostile) {
                const double lower = noncentral_chi_square_lower(nu, lambda, x);
                const bool valid = nu >= 0 && lambda >= 0 && !std::isnan(x);
                EXPECT_EQ(lower >= 0 && lower <= 1, valid) << nu << ' ' << lambda << ' ' << x << ' ' << lower;
                const double density = noncentral_chi_square_log_density(nu, lambda, x);
                EXPECT_EQ(std::isnan(density), !valid) << nu << ' ' << lambda << ' ' << x;
            }
        }
    }
}

}  // namespace
