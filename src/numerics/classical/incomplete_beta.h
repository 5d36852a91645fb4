// The classical regularised incomplete beta by continued fractions and power series, and its inverse.
#pragma once

namespace pral::numerics {

/// I_x(a, b) by the two continued fractions of the classical double-precision library. 0 for a <= 0, b <= 0,
/// x <= 0 and x > 1; 1 at x = 1. Where the factor has to be taken in logarithms the result is 0, or
/// 0.9999999999999999 above the mean: incomplete_beta_ratio covers those arguments.
double incomplete_beta(double a, double b, double x);

/// I_x(a, b) by the power series in x; meant for b x <= 1 and x <= 0.95.
double incomplete_beta_series(double a, double b, double x);

/// The x with I_x(a, b) = y: 0 for y <= 0, 1 for y >= 1. Interval halving and Newton steps; reports "incbi"
/// underflow with the result 0, and partial loss of precision where the bracket closes at 1.
double incbi(double a, double b, double y);

}  // namespace pral::numerics
