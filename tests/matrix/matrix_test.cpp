// The matrix functions against 40-digit references, in the cases that are the library's own, and with hostile input.
#include <gtest/gtest.h>

#include <algorithm>
#include <cfloat>
#include <climits>
#include <cmath>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "classic/core_api.h"
#include "matrix/matrix.h"
#include "support/table.h"

namespace {

using Values = std::vector<double>;
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

int side(const Values& matrix) { return static_cast<int>(std::lround(std::sqrt(matrix.size()))); }

/// Calls a function of n x n elements; its results are compared to the largest element's size.
bool call(const std::string& function, Values& a, Values& out) {
    const int n = side(a);
    out.assign(function == "eigenvalues" ? n : a.size(), -7);
    if (function == "eigenvalues") return PralEigenValues_Core(out.data(), a.data(), n, n);
    if (function == "eigenvectors") return PralEigenVectors_Core(out.data(), a.data(), n, n);
    if (function == "cholesky") return PralCholesky_Core(out.data(), a.data(), n, n);
    if (function == "valid_corrmat") return PralValidCorrmat_Core(out.data(), a.data(), n, n);
    if (function == "cov_to_corr") return PralCovToCorr_Core(out.data(), 0, a.data(), n);
    const Values sd(n, 2);
    return PralCorrToCov_Core(out.data(), 0, a.data(), sd.data(), n);
}

void expect_near(const Values& found, const Values& expected, double tolerance, const std::string& what) {
    ASSERT_EQ(found.size(), expected.size()) << what;
    double size = 0;
    for (const double value : expected) size = std::max(size, std::fabs(value));
    for (std::size_t i = 0; i < found.size(); ++i) {
        EXPECT_NEAR(found[i], expected[i], tolerance * size) << what << " element " << i;
    }
}

TEST(Matrix, AgreesWithReferences) {
    int rows = 0;
    for (const auto& row : pral::test::table("reference/matrices.tsv")) {
        if (row[0] == "markov") continue;
        Values a = pral::test::numbers(row[1]), out;
        ASSERT_TRUE(call(row[0], a, out)) << PralCoreError();
        // The general solver has an order of its own.
        if (row[0] == "eigenvalues") std::sort(out.begin(), out.end());
        expect_near(out, pral::test::numbers(row[3]), 2e-14, row[0] + " of " + row[1]);
        ++rows;
    }
    EXPECT_GT(rows, 20);
}

TEST(Matrix, EigenvectorsSolveTheirEquation) {
    for (const auto& row : pral::test::table("reference/matrices.tsv")) {
        if (row[0] != "eigenvalues") continue;
        Values a = pral::test::numbers(row[1]), vectors, values;
        const int n = side(a);
        ASSERT_TRUE(call("eigenvectors", a, vectors) && call("eigenvalues", a, values));
        const Values product = pral::matrix::MatMul(n, n, n, a.data(), vectors.data());
        const bool complex_pairs = std::adjacent_find(values.begin(), values.end()) != values.end();
        for (int k = 0; k < n && !complex_pairs; ++k) {
            for (int i = 0; i < n; ++i) {
                EXPECT_NEAR(product[i * n + k], values[k] * vectors[i * n + k], 1e-13) << row[1];
            }
        }
    }
}

TEST(Matrix, SpecialMatrices) {
    const double r = std::sqrt(2.0);
    const struct {
        const char* function;
        Values matrix, expected;
    } rows[] = {
        {"cholesky", {4}, {2}},
        {"cholesky", {0}, {0}},
        {"cholesky", {2, 2, 2, 2, 2, 2, 2, 2, 2}, {r, 0, 0, r, 0, 0, r, 0, 0}},
        {"cholesky", {4, 0, 2, 5}, {2, 0, 1, 2}},                                // lower triangle
        {"cholesky", {4, 2, 0, 5}, {2, 0, 1, 2}},                                // upper triangle
        {"cholesky", {1, 1, 0, 1, 1, 0, 0, 0, 1}, {1, 0, 0, 1, 1, 0, 0, 0, 1}},  // singular: stops
        {"cholesky",
         {1, 0.3, 0.30000000000000004, 0.09},
         {1, 0, 0.3, 0.09}},  // singular, symmetric to 15 digits
        {"eigenvalues", {1, 1e-17, 1e-17, 0}, {0, 1}},
        {"eigenvalues", {2, 0, 1, 2}, {1, 3}},   // completed by its lower triangle
        {"eigenvalues", {0, 1, -1, 0}, {0, 0}},  // a complex pair: real parts
        {"eigenvalues", {3, 0, 0, 0, 1, 0, 0, 0, 2}, {1, 2, 3}},
        {"valid_corrmat", {2, 0.5, 0.5, 3}, {2, 0.5, 0.5, 3}},  // the diagonal is not looked at
        {"cov_to_corr", {4, 0, 1, 9}, {1, 0, 1.0 / 6, 1}},      // elements as given
        {"corr_to_cov", {1, 0, 0.5, 1}, {4, 2, 2, 4}},
    };
    for (const auto& row : rows) {
        Values a = row.matrix, out;
        ASSERT_TRUE(call(row.function, a, out)) << row.function << PralCoreError();
        expect_near(out, row.expected, 1e-15, row.function);
    }
}

TEST(Matrix, EigenvaluesWithinTheirRoundingAreZero) {
    for (const double least : {0.9e-15, -0.9e-15, 1.1e-15, -1.1e-15}) {
        Values a = {1, 0, 0, least}, out;
        ASSERT_TRUE(call("eigenvalues", a, out));
        EXPECT_EQ(out, (Values{std::fabs(least) < 1e-15 ? 0 : least, 1}));
    }
}

TEST(Matrix, RepairCompletesItsInputAndYieldsACorrelationMatrix) {
    Values a = {1, 0, 0, 0.9, 1, 0, -0.9, 0.9, 1}, out, eigenvalues;
    ASSERT_TRUE(call("valid_corrmat", a, out));
    EXPECT_EQ(a, (Values{1, 0.9, -0.9, 0.9, 1, 0.9, -0.9, 0.9, 1}));
    for (int i = 0; i < 3; ++i) EXPECT_EQ(out[4 * i], 1);
    ASSERT_TRUE(call("eigenvalues", out, eigenvalues));
    EXPECT_GE(eigenvalues[0], -1e-15);
}

/// Covariances of `variables` series of 30 values, each computed as R sd_i sd_j in its own order: pairs differ in their
/// last bits, and with more variables than values the smallest eigenvalues are rounding.
Values sample_covariance(int variables, double scale, std::mt19937& words) {
    const int count = 30;
    std::normal_distribution<double> normal(0, scale);
    std::vector<Values> x(variables, Values(count));
    Values sd(variables), covariance(variables * variables);
    for (int i = 0; i < variables; ++i) {
        for (int k = 0; k < count; ++k) x[i][k] = normal(words) + (i > 0 ? x[0][k] : 0);
        for (const double value : x[i]) sd[i] += value * value / count;
        sd[i] = std::sqrt(sd[i]);
    }
    for (int i = 0; i < variables; ++i) {
        for (int j = 0; j < variables; ++j) {
            double correlation = 0;
            for (int k = 0; k < count; ++k) correlation += (x[i][k] / sd[i]) * (x[j][k] / sd[j]) / count;
            covariance[i * variables + j] = correlation * sd[i] * sd[j];
        }
    }
    return covariance;
}

/// Ordinary matrices are not refused for the rounding of their elements, whatever their scale and size.
TEST(Matrix, RoundingIsNoAsymmetryAndNoNegativeEigenvalue) {
    std::mt19937 words(1);
    for (const int n : {2, 3, 8, 40}) {
        for (const double scale : {1e-9, 0.01, 1.0, 1e12}) {
            for (int trial = 0; trial < 20; ++trial) {
                Values a = sample_covariance(n, scale, words), out;
                for (const char* function : {"cholesky", "cov_to_corr", "valid_corrmat", "eigenvalues"})
                    ASSERT_TRUE(call(function, a, out)) << function << n << PralCoreError();
                ASSERT_TRUE(std::is_sorted(out.begin(), out.end())) << n;  // by the symmetric solver
            }
        }
    }
    const Values singular = {4, 1, 5, 1, 9, 10, 5, 10, 15};
    for (const double scale : {1e-8, 1e-4, 1.0, 1e8}) {
        Values a = singular, out;
        for (double& element : a) element *= scale;
        EXPECT_TRUE(call("cholesky", a, out) && call("cov_to_corr", a, out)) << scale << PralCoreError();
        if (scale < 1) continue;
        a[8] -= 1e-13 * scale;  // an eigenvalue some -4e-14 of the scale, of which 15e-15 are rounding
        EXPECT_FALSE(call("cholesky", a, out) || call("cov_to_corr", a, out)) << scale;
    }
    for (const double least : {-0.9e-15, -1.1e-15}) {  // below 1 the bound is 1e-15 itself
        Values a = {1e-3, 0, 0, least}, out;
        EXPECT_EQ(call("cholesky", a, out), least > -1e-15) << least;
    }
    for (const double off : {0.9e-14, 1.1e-14}) {  // of the product of the standard deviations, 3 and 5
        Values a = {9, 1e-6, 1e-6 + 15 * off, 25}, out;
        EXPECT_EQ(call("cholesky", a, out), off < 1e-14) << off;
    }
}

/// A repaired matrix passes every test that it was repaired for.
TEST(Matrix, WhatIsRepairedIsAccepted) {
    std::mt19937 words(2);
    std::uniform_real_distribution<double> uniform(-1, 1);
    for (const int n : {3, 4, 10, 20, 40, 100, 200}) {
        for (int trial = 0; trial < (n > 40 ? 2 : 20); ++trial) {
            Values a(n * n, 1.0), repaired, out;
            for (int i = 0; i < n; ++i) {
                for (int j = 0; j < i; ++j) a[i * n + j] = a[j * n + i] = uniform(words);
            }
            ASSERT_TRUE(call("valid_corrmat", a, repaired));
            for (const char* function : {"cholesky", "cov_to_corr", "corr_to_cov"})
                ASSERT_TRUE(call(function, repaired, out)) << function << n << PralCoreError();
            ASSERT_TRUE(call("valid_corrmat", repaired, out));
            ASSERT_EQ(out, repaired) << n;
        }
    }
}

TEST(Matrix, FailuresTellWhyAndWriteNothing) {
    const char* const kRefused = "Error: CorrMatrix not valid. Try applying PralValidCorrMat first.";
    const Values indefinite = {1, 0.9, -0.9, 0.9, 1, 0.9, -0.9, 0.9, 1}, skew = {1, 0.3, 0.3000001, 1};
    const struct {
        const char* function;
        Values matrix;
        const char* message;
    } rows[] = {
        {"cholesky", skew, "Error: matrix is not symmetric"},
        {"cholesky", {-1}, "Error: Matrix must be positive semi-definite"},
        {"cholesky", indefinite, "Error: Matrix must be positive semi-definite"},
        {"cholesky", {1, kNaN, kNaN, 1}, "EigenValues calculation failed!"},
        {"cholesky", {}, "Error: Matrix cannot be empty"},
        {"eigenvalues", {kInf, 1, 1, 0}, "EigenValues calculation failed!"},
        {"eigenvalues", {}, "EigenValues calculation failed!"},
        {"eigenvectors", {1, 2, kNaN, 3}, "EigenVectors calculation failed!"},
        {"valid_corrmat", skew, "Error: matrix is not symmetric"},
        {"valid_corrmat", {1, kInf, kInf, 1}, "Error: Vectors FAIL!"},
        {"cov_to_corr", skew, "Error: matrix not symmetric"},
        {"cov_to_corr", {kInf}, "Error: matrix is not valid"},
        {"cov_to_corr", indefinite, "Error: matrix not positive semidefinite"},
        {"cov_to_corr", {0, 0, 0, 1}, "Error: diagonal elements must be >0"},
        {"corr_to_cov", indefinite, kRefused},
        {"corr_to_cov",
         {1, 0.5, 0, 1},
         kRefused},  // the upper triangle alone differs from what it is completed to
    };
    for (const auto& row : rows) {
        Values a = row.matrix, out;
        EXPECT_FALSE(call(row.function, a, out)) << row.function;
        EXPECT_STREQ(PralCoreError(), row.message);
        EXPECT_EQ(out, Values(out.size(), -7));
    }

    Values a(4, 1), sd = {1, 0}, out(4, -7);
    const auto refuses = [&](bool success, const char* message) {
        EXPECT_FALSE(success);
        EXPECT_STREQ(PralCoreError(), message);
        EXPECT_EQ(out, Values(4, -7));
    };
    refuses(PralCholesky_Core(out.data(), a.data(), 0, 2), "Error: Matrix a must be square");
    refuses(PralEigenValues_Core(out.data(), a.data(), 2, 1), "Error: Input Matrix must be square");
    refuses(PralEigenVectors_Core(out.data(), a.data(), 1, 2), "Error: Input Matrix must be square");
    refuses(PralValidCorrmat_Core(out.data(), a.data(), -1, 2), "Error: Input Matrix must be square");
    refuses(PralIdentity_Core(out.data(), 1, 2), "Error: Output matrix must be square");
    refuses(PralCorrToCov_Core(out.data(), 0, a.data(), sd.data(), 2), "Error: VarArray not valid");
    refuses(PralCholesky_Core(nullptr, a.data(), 2, 2), "Error: out must not be null");
    refuses(PralCholesky_Core(out.data(), nullptr, 2, 2), "Error: a must not be null");
    for (const int none : {0, -1, INT_MIN}) {
        refuses(PralCholesky_Core(out.data(), a.data(), none, none), "Error: Matrix cannot be empty");
        refuses(PralEigenValues_Core(out.data(), a.data(), none, none), "EigenValues calculation failed!");
        refuses(PralEigenVectors_Core(out.data(), a.data(), none, none), "EigenVectors calculation failed!");
        refuses(PralValidCorrmat_Core(out.data(), a.data(), none, none), "Error: Vectors FAIL!");
        refuses(PralCovToCorr_Core(out.data(), 0, a.data(), none), "Error: matrix is not valid");
        refuses(PralCorrToCov_Core(out.data(), 0, a.data(), sd.data(), none),
                "Error: CorrMatrix not valid. Try applying PralValidCorrMat first.");
    }
    EXPECT_TRUE(PralIdentity_Core(nullptr, -3, -3));
    EXPECT_TRUE(PralIdentity_Core(out.data(), 2, 2));
    EXPECT_EQ(out, (Values{1, 0, 0, 1}));
}

TEST(Matrix, FifteenDigitEquality) {
    const struct {
        double x, y;
        bool equal;
    } rows[] = {
        {0.3, 0.30000000000000004, true},
        {0.3, 0.3000001, false},
        {kNaN, -kNaN, true},
        {kNaN, 0, false},
        {kInf, DBL_MAX, false},
        {1e-3, 1e-3 + 9e-15, true},  // prints without exponent: absolute
        {1e-3, 1e-3 + 2e-14, false},
        {1.23456789012345e20, 1.23456789012346e20, true},  // mantissas within 1e-14
        {1.23456789012345e20, 1.23456789012347e20, false},
        {1.5e-5, 1.5e-6, false},
        {123456789.12345678, 123456789.1234568, true},  // one print
        {123456789.123456, 123456789.123457, false},
        {-0.0, 0.0, true},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(pral::matrix::NearlyEqual(row.x, row.y), row.equal) << row.x << ' ' << row.y;
        EXPECT_EQ(pral::matrix::NearlyEqual(row.y, row.x), row.equal) << row.y << ' ' << row.x;
    }
}

TEST(Matrix, HostileMatricesComeToAnEnd) {
    const double specials[] = {0, 1e300, -1e300, 5e-324, DBL_MAX, kNaN, kInf, 1, -1};
    for (const int n : {1, 2, 7, 200}) {
        for (int pattern = 0; pattern < 9; ++pattern) {
            Values a(n * n), out;
            for (int i = 0; i < n * n; ++i) {
                const int from = pattern < 5 ? i * (pattern + 1) / 3 % 9 : (i % (n + 1) == 0 ? pattern : 0);
                a[i] = pattern == 8 ? std::sin(i) : specials[from];
            }
            for (const char* function :
                 {"cholesky", "eigenvalues", "eigenvectors", "valid_corrmat", "cov_to_corr", "corr_to_cov"}) {
                Values input = a;
                call(function, input, out);
            }
        }
    }
    // A covariance of rank 20 among 200 variables is symmetric, and semi-definite but for rounding.
    const int n = 200, rank = 20;
    Values factor(n * rank), transposed(rank * n), out;
    for (int i = 0; i < n * rank; ++i)
        factor[i] = transposed[i % rank * n + i / rank] = std::sin(i * i % 1009);
    Values covariance = pral::matrix::MatMul(n, rank, n, factor.data(), transposed.data());
    ASSERT_TRUE(call("eigenvalues", covariance, out));
    EXPECT_EQ(std::count_if(out.begin(), out.end(), [](double value) { return std::fabs(value) > 1e-10; }),
              rank);
}

}  // namespace
