// The memory of the last covariance matrix: spreadsheets ask for one vector at a time, and factorise once so.
#pragma once

#include "multivariate/correlated_normals.h"

namespace pral::classic {

/// factor.prepare(cov, n); the factor of the same matrix, bit for bit, is found again when it was that of the call before.
Message prepare_remembered(multivariate::CovarianceFactor& factor, double* cov, int n);

}  // namespace pral::classic
