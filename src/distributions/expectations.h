// Moments, means of tails and limited means of any distribution of one variable.
#pragma once

#include "distributions/univariate.h"

namespace pral {

/// The distribution's own moments where it has them, otherwise integrals over its quantiles.
Moments moments(const Univariate&);

/// The mean of the worst part: of the quantiles above percentile p (Side::upper) or below it (Side::lower), weighted so that
/// an atom at the percentile counts in part (expected shortfall, Acerbi and Tasche 2002). p = 0 (upper) and p = 1 (lower)
/// give the mean.
double tail_mean(const Univariate&, Side, double p);

/// E min(X, limit).
double limited_mean(const Univariate&, double limit);

/// A value of the highest density or probability; the least one where several are as high. NaN where the density has a pole
/// at infinity.
double mode(const Univariate&);

/// The quantile (upper quantile) of exp(log_p), where exp(log_p) is beyond the range of doubles as well; NaN for log_p > 0.
double log_quantile(const Univariate&, Side, double log_p);

}  // namespace pral
