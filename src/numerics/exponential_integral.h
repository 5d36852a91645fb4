// The exponential integral E1.
#pragma once

namespace pral::numerics {

/// E1(x), the integral of e^-t/t from x to infinity, for x > 0 with a relative error of a few units in the last place
/// (some twenty of them around x = 1.5); infinite at 0, NaN below (DLMF 6.2.1).
double exponential_integral(double x);

/// An x with E1(x) = t to within a few percent of x, for t > 0.
double exponential_integral_inverse_estimate(double t);

}  // namespace pral::numerics
