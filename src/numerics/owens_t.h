// Owen's T function and the skew-normal distribution function that stands on it.
#pragma once

namespace pral::numerics {

/// T(h, a) = 1/(2 pi) times the integral over x in [0, a] of exp(-h^2 (1 + x^2)/2)/(1 + x^2) (Owen 1956), any
/// real h and a, with its relative accuracy also where it is tiny.
double owens_t(double h, double a);

/// The integral from a to infinity instead, a >= 0: P(X > |h|)/2 - T(h, a) without the cancellation.
double owens_t_complement(double h, double a);

/// P(Z <= z) for the density 2 phi(z) Phi(alpha z); each tail with its digits down to underflow.
double skew_normal_cumulative(double z, double alpha);
double skew_normal_survival(double z, double alpha);

}  // namespace pral::numerics
