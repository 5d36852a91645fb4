// The regularised incomplete gamma functions by their classical algorithms. Distributions use gamma_ratio.h, which keeps
// its digits for large shapes and in both tails.
#pragma once

namespace pral::numerics {

/// P(a, x) by power series; for x > 1, x > a as 1 - Q. 0 when a <= 0 or x <= 0, and where the prefactor underflows.
/// Its error grows with a (3e-11 at 1e4, 2e-5 at 1e10).
double incomplete_gamma_lower(double a, double x);

/// Q(a, x) by continued fraction; for x < 1 or x < a as 1 - P. 1 when a <= 0 or x <= 0.
double incomplete_gamma_upper(double a, double x);

/// Two conventions in one function, which its callers are written for: ln P(a, x) where the series is used, but the
/// plain 1 - log_incomplete_gamma_upper(a, x) for x > 1, x > a. 0 when a <= 0 or x <= 0.
double log_incomplete_gamma_lower(double a, double x);

/// ln Q(a, x) for x >= 1, x >= a; below that the probability 1 - P(a, x) itself, not its logarithm. 1 when a <= 0 or
/// x <= 0.
double log_incomplete_gamma_upper(double a, double x);

/// P(alpha, x) or its complement, plain or as a logarithm, by M. Welinder's algorithm: series in x below 1, ascending
/// series, continued fraction, and an asymptotic normal expansion between them. kInfinity for alpha < 0.
double gamma_cdf(double x, double alpha, bool lower_tail, bool log_result);

}  // namespace pral::numerics
