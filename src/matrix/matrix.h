// Matrices as flat row-major arrays, element (i, j) of an n x n matrix at i n + j: comparison to fifteen digits,
// matrices given by one triangle, definiteness, products.
#pragma once

#include <cstddef>
#include <vector>

namespace pral::matrix {

/// The number of elements of an n x n matrix; none for negative n.
inline std::size_t element_count(int n) { return n > 0 ? static_cast<std::size_t>(n) * n : 0; }

/// A copy of the caller's n x n matrix.
inline std::vector<double> copy_of(const double* a, int n) { return {a, a + element_count(n)}; }

/// Whether a symmetric matrix with these eigenvalues (at least one) is positive semi-definite but for the rounding of
/// its elements and of the eigenvalues themselves, which is about n units in the last place of the largest one.
bool positive_semidefinite(const std::vector<double>& eigenvalues);

/// Equal to fifteen significant digits, as printed; or with equal decimal exponents of the print and mantissas
/// within 1e-14, where a value that prints without an exponent is its own mantissa. Two NaNs are equal.
bool NearlyEqual(double x, double y);

/// Mirrors the lower triangle into the upper where every element above the diagonal is 0.
void complete_upper_triangle(double* a, int n);

/// Completes a matrix of which only one triangle is given (the other is all 0), in place, and tells whether it
/// is symmetric: both elements of a pair are equal to fifteen digits, or differ by at most 1e-14 sqrt(|a_ii a_jj|), as
/// covariances computed one by one do.
bool IsSymmetricMatrix(double* a, int n);

/// The product of the m x k matrix A and the k x n matrix B.
void MatMul(int m, int k, int n, const double* A, const double* B, double* out);
std::vector<double> MatMul(int m, int k, int n, const double* A, const double* B);

}  // namespace pral::matrix
