// Normal vectors with a given covariance matrix: what the multivariate normal and the elliptical copulas stand on.
#pragma once

#include <vector>

#include "boundary/error_text.h"
#include "boundary/random.h"

namespace pral::multivariate {

/// Completes an n x n covariance matrix that is zero above its diagonal, in place, and objects to one that has a
/// negative eigenvalue. Returns the message of the failing check, or null.
Message complete_covariance(double* cov, int n);

/// A factor F of a covariance matrix C = F F', made once for many vectors: if z are independent standard normals, F z
/// has covariance C. The lower Cholesky factor; where that ends early, the matrix being singular, S sqrt(Lambda) of
/// the eigen-decomposition.
class CovarianceFactor {
  public:
    /// Completes an n x n matrix that is zero above its diagonal, in place, and factorises it; objects to one that
    /// has a negative eigenvalue or is not symmetric. The matrix of the call before is found again.
    Message prepare(double* cov, int n);

    /// Factorises a matrix without negative eigenvalues; objects to one that is not symmetric.
    Message factorise(const double* cov, int n);

    int size() const { return n_; }

    /// F z into `out`; the two must not overlap.
    void correlate(const double* z, double* out) const;

    /// F z of n bare draws of the standard normal distribution (Box and Muller, two uniforms each); `z` is room for
    /// them.
    void draw(RandomStream& stream, double* z, double* out) const;

  private:
    int n_ = 0;
    bool triangular_ = true;
    std::vector<double> elements_;
};

}  // namespace pral::multivariate
