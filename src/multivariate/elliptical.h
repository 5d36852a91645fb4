// The normal and Student's t copulas: the percentiles of correlated normals, and of normals divided by a common chi.
#pragma once

#include <vector>

#include "base/random_stream.h"
#include "multivariate/correlated_normals.h"

namespace pral::multivariate {

/// `count` samples of the copula, one after another: n bare draws of the standard normal each.
void sample_normal_copula(const CovarianceFactor& factor, int count, double* out, RandomStream& stream);

/// The t copula. The functions return the message of ChiSq when it refuses nu, or null.
class StudentCopula {
  public:
    StudentCopula(double nu, const CovarianceFactor& factor) : nu_(nu), factor_(factor) {}

    /// Each sample takes a uniform for chi-square and one for each normal, all by inversion.
    Message sample(int count, double* out, RandomStream& stream) const;

    /// One pair, whose normals are bare draws.
    Message sample_pair(double* out, RandomStream& stream) const;

  private:
    double nu_;
    const CovarianceFactor& factor_;
};

}  // namespace pral::multivariate
