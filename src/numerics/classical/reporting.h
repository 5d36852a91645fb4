// gamma, lgam and erfc as the Cephes library has them: with a report of poles, overflow and underflow.
#pragma once

namespace pral::numerics::classical {

/// Gamma(x). Sets the gamma sign. Poles report "gamma" (overflow below -33, else singularity) and return kInfinity.
double gamma(double x);

/// ln |Gamma(x)|. Sets the gamma sign. Poles and x > 2.556348e305 report "lgam", overflow, and return kInfinity.
double lgam(double x);

/// The sign of Gamma at the argument of the last call of `gamma` or `lgam`: 1 or -1.
int gamma_sign();

/// erfc(x). Reports "erfc", underflow, where it, or 2 less it, is 0.
double erfc(double x);

}  // namespace pral::numerics::classical
