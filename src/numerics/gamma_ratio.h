// The regularised incomplete gamma ratios P and Q = 1 - P as the distributions use them: full accuracy in both tails
// for every shape, their logarithms, the density that belongs to them, and the inverses.
#pragma once

#include "numerics/double_double.h"

namespace pral::numerics {

/// P(a, x), DLMF 8.2.4: the probability that a gamma variable of shape a >= 0 is at most x. Relative error below 3e-15
/// for every a and x, also where P is tiny. a = 0 is a point mass at 0; x = kInfinity gives 1; a < 0 or NaN gives NaN.
double gamma_lower(double a, double x);

/// Q(a, x) = 1 - P(a, x) with its digits in the upper tail.
double gamma_upper(double a, double x);

/// ln P(a, x), also where P underflows; -kInfinity where P is 0.
double log_gamma_lower(double a, double x);

/// ln Q(a, x).
double log_gamma_upper(double a, double x);

/// x^(a-1) e^-x / Gamma(a), the density that belongs to P; a > 0, x >= 0.
double gamma_density(double a, double x);

/// Its logarithm, without cancellation for large a and x.
double log_gamma_density(double a, double x);

/// The x with P(a, x) = p, a > 0. p <= 0 gives 0, p >= 1 kInfinity.
double gamma_lower_inverse(double a, double p);

/// The x with Q(a, x) = q, with its digits for tiny q. q <= 0 gives kInfinity, q >= 1 gives 0.
double gamma_upper_inverse(double a, double q);

/// factor e^exponent, factor >= 0: keeps its digits where the value itself would underflow.
struct Power {
    double factor;
    DoubleDouble exponent;

    double value() const;
    double log() const;
};

/// x^a e^-x / Gamma(1 + a), the probability of a under a Poisson distribution of mean x; a >= 0, x > 0, both finite.
Power gamma_prefix(double a, double x);

/// P or Q, for finite a > 0, x > 0.
Power gamma_tail_power(double a, double x, bool upper);

}  // namespace pral::numerics
