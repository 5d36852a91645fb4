// Tests of a fit against its data, valid although the parameters have been estimated from them.
#pragma once

#include "inference/fit.h"

namespace pral::inference {

enum class Statistic {
    kolmogorov_smirnov,
    cramer_von_mises,
    anderson_darling,
    chi_square,  ///< over cells of at least 5 expected values
};

struct TestResult {
    double statistic;
    /// (1 + the number of replicates with a statistic as large)/(1 + their number), and its error by simulation.
    double p, p_error;
    std::size_t replicates, failed;
};

/// The distance between values and a distribution, truncated as they are.
double statistic_of(Statistic statistic, const Univariate& distribution, bool integers,
                    std::span<const double> sorted);

/// Each replicate is drawn from the fit and fitted again: the estimator is part of the test. Throws BadData where data are
/// censored, weighted or truncated one by one.
TestResult test(const Fit& fit, Statistic statistic, const Replication& how);

}  // namespace pral::inference
