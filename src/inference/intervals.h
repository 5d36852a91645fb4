// How far the parameters of a fit, or quantiles of its distribution, may lie from their estimates.
#pragma once

#include "inference/fit.h"

namespace pral::inference {

/// What an interval is of.
struct Target {
    enum class Kind { parameter, quantile } kind;
    std::size_t index = 0;  ///< of the parameter
    double p = 0;           ///< of the quantile
};

struct Range {
    double lower, upper;
};

/// The estimate minus and plus a multiple of its standard error; NaN where that is unknown.
Range wald_interval(const Fit& fit, const Target& target, double level);

/// The values for which a likelihood ratio does not object: twice the log-likelihood falls by less than the quantile of
/// chi-square with one degree of freedom. NaN at an end where it never falls so far.
Range profile_interval(const Fit& fit, const Target& target, double level);

/// Quantiles of the replicates' estimates; `failed` tells how many had none.
Range bootstrap_interval(const Fit& fit, const Target& target, double level, const Replication& how,
                         std::size_t& failed);

/// The target's estimate.
double value_of(const Fit& fit, const Target& target);

}  // namespace pral::inference
