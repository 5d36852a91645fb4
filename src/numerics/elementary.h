// Logarithm and exponential near their zeros, and exponents with more digits than a double holds.
#pragma once

#include "numerics/double_double.h"

namespace pral::numerics {

/// ln(1 + x) by W. Fullerton's Chebyshev series (SLATEC dlnrel) for |x| <= 0.375. -1 gives -kInfinity,
/// smaller arguments NaN.
double log1p_fn(double x);

/// e^x - 1: directly for |x| > 0.697, else one Newton step through log1p_fn on a first approximation.
double expm1_fn(double x);

/// ln(1 + x) - x without cancellation, for x > -1.
double log1p_minus_x(double x);

/// ln(x/y) for x >= 0, y > 0, also where x/y is so close to 1 or so far from it that the quotient loses the digits.
double log_ratio(double x, double y);

/// ln(1 - e^-t) for t >= 0, with its digits at both ends; -inf for t = 0.
double log1m_exp(double t);

/// The sum over k >= 0 of x^k / (i + k d), by its continued fraction, to the relative tolerance `eps`; x < 1,
/// i >= 0, d >= 0.
double log_continued_fraction(double x, double i, double d, double eps);

/// d - ln(1 + d) for d = (x - a)/a, a > 0, x > 0, to about 20 digits relative: the exponent of the gamma and
/// Poisson densities, a (d - ln(1 + d)) = x - a - a ln(x/a).
DoubleDouble deviance_double_double(double x, double a);

/// factor e^exponent, with the digits of both; 0 where it underflows.
double scaled_exp(double factor, DoubleDouble exponent);

}  // namespace pral::numerics
