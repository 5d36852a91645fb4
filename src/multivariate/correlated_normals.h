// Normal vectors with a given covariance matrix: what the multivariate normal and the elliptical copulas stand on.
#pragma once

#include <vector>

#include "base/message.h"
#include "base/random_stream.h"

namespace pral::multivariate {

/// Completes an n x n covariance matrix that is zero above its diagonal, in place, and writes the whole matrix, of which
/// `cov` may be the upper triangle alone, to `whole`. Objects to one that is not symmetric or has a negative eigenvalue.
/// Returns the message of the failing check, or null.
Message complete_covariance(double* cov, int n, std::vector<double>& whole);

/// A factor F of a covariance matrix C = F F', made once for many vectors: if z are independent standard normals, F z
/// has covariance C. The lower Cholesky factor; where that ends early, the matrix being singular, S sqrt(Lambda) of
/// the eigen-decomposition.
class CovarianceFactor {
  public:
    /// Completes an n x n matrix that is zero above its diagonal, in place, and factorises it; objects as
    /// complete_covariance().
    Message prepare(double* cov, int n);

    /// Factorises a symmetric matrix without negative eigenvalues, both triangles given.
    Message factorise(const double* cov, int n);

    /// Divides each row of F by its length: the vectors then have the correlations of the matrix and variances 1.
    /// Objects to a variance that is not positive.
    Message standardise();

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
