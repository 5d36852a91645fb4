// The quantile of the gamma distribution by AS 91 and AS 239. Distributions use the inverses of gamma_ratio.h.
#pragma once

namespace pral::numerics {

/// A start value for the chi-square quantile (Best and Roberts 1975, AS 91): p in the given tail (or its logarithm),
/// nu > 0 degrees of freedom, log_gamma_half = ln Gamma(nu/2); `tolerance` ends the iteration used for nu <= 0.32.
double chisq_quantile_start(double p, double nu, double log_gamma_half, bool lower_tail, bool log_p,
                            double tolerance);

/// The x with `gamma_cdf`(x/scale, alpha) = p: AS 91 start, seven-term Taylor steps (AS 239), Newton steps on the
/// logarithm. 0 when alpha or scale is 0; kInfinity for negative ones and p outside its range.
double gamma_quantile(double p, double alpha, double scale, bool lower_tail, bool log_p);

}  // namespace pral::numerics
