// GSL and ALGLIB do on this platform what the library asks of them: the simplex minimiser and the special
// functions of the one, the eigen-decomposition, the rank correlation and the exceptions of the other.
#include <gsl/gsl_multimin.h>
#include <gsl/gsl_sf.h>
#include <gtest/gtest.h>
#include <linalg.h>
#include <statistics.h>

#include <cmath>

namespace {

double rosenbrock(const gsl_vector* at, void*) {
    const double x = gsl_vector_get(at, 0);
    const double y = gsl_vector_get(at, 1);
    return 100 * (y - x * x) * (y - x * x) + (1 - x) * (1 - x);
}

TEST(Dependencies, SimplexMinimiserFindsTheValley) {
    gsl_vector* at = gsl_vector_alloc(2);
    gsl_vector* step = gsl_vector_alloc(2);
    gsl_vector_set(at, 0, -1.2);
    gsl_vector_set(at, 1, 1);
    gsl_vector_set_all(step, 0.5);
    gsl_multimin_function function{rosenbrock, 2, nullptr};
    gsl_multimin_fminimizer* minimiser = gsl_multimin_fminimizer_alloc(gsl_multimin_fminimizer_nmsimplex, 2);
    gsl_multimin_fminimizer_set(minimiser, &function, at, step);
    for (int i = 0; i < 1000 && gsl_multimin_fminimizer_size(minimiser) > 1e-10; ++i) {
        ASSERT_EQ(gsl_multimin_fminimizer_iterate(minimiser), 0);
    }
    EXPECT_NEAR(gsl_vector_get(minimiser->x, 0), 1, 1e-8);
    EXPECT_NEAR(gsl_vector_get(minimiser->x, 1), 1, 1e-8);
    gsl_multimin_fminimizer_free(minimiser);
    gsl_vector_free(step);
    gsl_vector_free(at);
}

TEST(Dependencies, SpecialFunctions) {
    // mpmath: besseli(1.5, 2), zeta(3), 1/2 * quad(t/(e^t - 1), [0, 2])
    EXPECT_NEAR(gsl_sf_bessel_Inu(1.5, 2) / 1.0994731886331095, 1, 1e-14);
    EXPECT_NEAR(gsl_sf_zeta(3) / 1.2020569031595943, 1, 1e-14);
    EXPECT_NEAR(gsl_sf_debye_1(2) / 0.60694728460981007, 1, 1e-14);
}

TEST(Dependencies, SymmetricEigenvalues) {
    alglib::real_2d_array matrix("[[2,1],[1,2]]");
    alglib::real_2d_array vectors;
    alglib::real_1d_array values;
    ASSERT_TRUE(alglib::smatrixevd(matrix, 2, 1, true, values, vectors));
    EXPECT_NEAR(values[0], 1, 1e-15);
    EXPECT_NEAR(values[1], 3, 1e-15);
    EXPECT_NEAR(std::fabs(vectors[0][0]), std::sqrt(0.5), 1e-15);
}

TEST(Dependencies, SpearmanRankCorrelation) {
    const alglib::real_1d_array x("[1,2,3,4,5]");
    const alglib::real_1d_array y("[1,3,2,5,4]");
    EXPECT_NEAR(alglib::spearmancorr2(x, y), 0.8, 1e-15);
}

TEST(Dependencies, FailuresOfAlglibAreExceptions) {
    alglib::real_2d_array matrix("[[1,2],[3,4]]");
    alglib::ae_int_t info = 0;
    alglib::matinvreport report;
    EXPECT_THROW(alglib::rmatrixinverse(matrix, 3, info, report), alglib::ap_error);
}

}  // namespace
