// Quantiles of the beta distribution by AS 109.
#pragma once

namespace pral::numerics {

/// The x with I_x(a, b) = p by AS 109 (Cran, Martin and Thomas 1977) on the series of AS 63 (Majumder and
/// Bhattacharjee 1973), with the tolerance 10^(-13 - 2.5/a^2 - 0.5/p^2) of its later revisions. About 13 digits
/// of I. 0 for p <= 0, 1 for p >= 1; kInfinity for a or b <= 0.
double beta_quantile_as109(double p, double a, double b);

}  // namespace pral::numerics
