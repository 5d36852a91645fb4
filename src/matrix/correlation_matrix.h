// What correlated sampling asks of matrices: Cholesky factor, eigenvalues and eigenvectors, repair of a correlation
// matrix, and conversion between correlations and covariances. All take and give n x n row-major arrays, and
// return the message of the first failing check, or null; a matrix may be given by one triangle (matrix.h).
#pragma once

#include "base/message.h"

namespace pral::matrix {

/// The lower triangular L with a = L L'. A constant matrix c >= 0 has sqrt(c) in its first column and zeros
/// elsewhere. A singular matrix is no failure: its factorisation stops at the first pivot that is not positive,
/// and the columns of L not reached hold the columns of the matrix below the diagonal. `complete`, if given,
/// tells whether L L' is the matrix.
Message cholesky(const double* a, int n, double* out, bool* complete = nullptr);

/// Eigenvalues, those within 1e-15 of 0 as 0: ascending for a symmetric matrix; for others the real parts, in the
/// order of the solver.
Message eigen_values(const double* a, int n, double* out);

/// Eigenvectors as columns, in the order of eigen_values.
Message eigen_vectors(const double* a, int n, double* out);

/// The matrix itself when it is positive semi-definite, otherwise the nearest one by spectral decomposition:
/// negative eigenvalues set to 0 and rows scaled to a unit diagonal (Rebonato and Jaeckel 1999). A lower triangle
/// is completed in `a` itself.
Message valid_corrmat(double* a, int n, double* out);

/// cov(i, j) / sqrt(cov(i, i) cov(j, j)), of the elements as given.
Message cov_to_corr(const double* cov, int n, double* out);

/// corr(i, j) sd(i) sd(j). A matrix that valid_corrmat would change is refused.
Message corr_to_cov(const double* corr, const double* sd, int n, double* out);

}  // namespace pral::matrix
