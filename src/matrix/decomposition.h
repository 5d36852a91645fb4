// Decompositions and inverse, and the rank correlation, by ALGLIB: the one place where its types and exceptions
// are met. An empty result tells that the matrix has elements that are not finite, or that the routine failed.
#pragma once

#include <optional>
#include <vector>

namespace pral::matrix {

/// Eigenvector k is column k of `vectors` (row-major). `imaginary` has the imaginary parts of the values of a general
/// matrix, and is empty for a symmetric one.
struct EigenDecomposition {
    std::vector<double> values, vectors, imaginary;
};

/// Of a symmetric matrix, of which the upper triangle is read: values ascending, vectors orthonormal.
std::optional<EigenDecomposition> symmetric_eigen(const double* a, int n);

/// Of any real matrix, by Schur iteration: the real parts of the eigenvalues, and the right eigenvectors; those
/// of a complex pair are given by the real and imaginary parts of the one with the positive imaginary part, in two
/// neighbouring columns.
std::optional<EigenDecomposition> general_eigen(const double* a, int n);

/// The inverse by LU decomposition, and an estimate of the reciprocal condition number in the 1-norm.
struct Inverse {
    std::vector<double> elements;
    double reciprocal_condition;
};
std::optional<Inverse> inverse(const double* a, int n);

/// A square root of a symmetric matrix, S sqrt(Lambda) S^-1. False when the decomposition fails.
bool MatrixSqrt(const double* a, int n, double* out);

/// The upper triangular factor U with a = U'U in place, row by row, of which only the upper triangle is read and
/// written. Stops at the first pivot that is not positive and returns false; the rows not reached keep the
/// elements of the matrix.
bool cholesky_upper(double* a, int n);

/// Spearman's rank correlation of two arrays of finite values, and of all pairs of variables; `data` has a row per
/// observation. Ties share their average rank. Without variation the correlation is 0, on the diagonal as well.
std::optional<double> rank_correlation(const double* x, const double* y, int count);
std::optional<std::vector<double>> rank_correlations(const double* data, int observations, int variables);

}  // namespace pral::matrix
