// The gamma function and its logarithm: those of Cephes, the Fullerton set, and the library's own `log_gamma` and `log_beta`, which keep their digits where the others cancel.
#pragma once

namespace pral::numerics {

/// Gamma(x) (Cephes): rational approximation on [2, 3] with recurrence, Stirling's formula beyond |x| = 33. kInfinity at
/// the poles.
double gamma(double x);

/// ln |Gamma(x)| (Cephes); infinite at the poles. The absolute error is a few 1e-16: near x = 1 and 2, where the logarithm
/// is zero, use `log_gamma`.
double lgam_quiet(double x);

/// Gamma(x) by Stirling's formula, x > 33. +infinity where it overflows.
double stirling_gamma(double x);

/// ln |Gamma(x)| (Fullerton, SLATEC dlngam): kInfinity at the poles and above 2.5327e305.
double log_gamma_fn(double x);

/// Gamma(x) (Fullerton, SLATEC dgamma): Chebyshev series for |x| <= 10. Overflow gives kInfinity (with the
/// sign for a tiny negative x), the poles NaN's stand-in kInfinity, underflow below -170.57 gives 0.
double gamma_fn(double x);

/// ln Gamma(x) - ((x - 1/2) ln x - x + ln sqrt(2 pi)) for x >= 10; kInfinity below 10 and from 3.745e306 on.
double lgamma_correction(double x);

/// ln Gamma(1 + a), with its digits near a = 0.
double lgamma_1p(double a);

/// ln Gamma(x) for x > 0 with a relative error of a few units in the last place everywhere, 1 and 2 included.
/// kInfinity at 0; negative arguments as `lgam_quiet`.
double log_gamma(double x);

/// ln B(a, b) = ln Gamma(a) + ln Gamma(b) - ln Gamma(a + b) for a, b > 0, without cancellation for large
/// arguments. kInfinity when a or b is 0.
double log_beta(double a, double b);

}  // namespace pral::numerics
