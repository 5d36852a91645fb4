// The logarithm of the modified Bessel function of the first kind.
#pragma once

namespace pral::numerics {

/// ln I_nu(x) for real order nu >= 0 and x >= 0, of any size; -kInfinity at x = 0 unless nu = 0.
double log_bessel_i(double nu, double x);

/// ln(e^-x I_nu(x)), with its digits for large x.
double log_bessel_i_scaled(double nu, double x);

}  // namespace pral::numerics
