#include "numerics/classical/bessel.h"

#include <algorithm>
#include <cmath>

#include "numerics/constants.h"
#include "numerics/elementary.h"
#include "numerics/gamma_ratio.h"
#include "numerics/noncentral_chi_square.h"

namespace pral::numerics {

namespace {

/// The ascending series DLMF 10.25.2 converges within some 60 terms.
bool series_is_short(double nu, double x) { return 0.5 * x <= 20 * ((nu + 1) / x); }

/// ln I_nu(x) - x/2 - ln((x/2)^nu e^(-x/2) / Gamma(1 + nu)).
double log_series(double nu, double x) {
    const double y = 0.25 * x * x;
    double term = 1, sum = 0;
    for (int k = 1; k < 200; ++k) {
        term *= y / (k * (nu + k));
        sum += term;
        if (term < 0x1p-56 * sum) break;
    }
    return log1p_fn(sum);
}

/// The leading term of the uniform expansion DLMF 10.41.3, less x: exact for arguments this large.
double log_scaled_of_huge(double nu, double x) {
    const double root = std::hypot(nu, x);
    return nu * (nu / (root + x)) + nu * std::log(0.5 * x / (0.5 * nu + 0.5 * root)) - 0.5 * std::log(root) -
           kLnSqrt2Pi;
}

}  // namespace

double log_bessel_i(double nu, double x) {
    if (!(nu >= 0 && x >= 0)) return kNaN;
    if (x == 0) return nu == 0 ? 0 : -kInfinity;
    if (x >= kInfinity) return nu >= kInfinity ? kNaN : kInfinity;
    if (nu >= kInfinity) return -kInfinity;
    if (!series_is_short(nu, x)) return finite_or_limit(log_bessel_i_scaled(nu, x) + x);
    Power prefix = gamma_prefix(nu, std::max(0.5 * x, 5e-324));
    const DoubleDouble exponent = two_sum(prefix.exponent.hi, 0.5 * x);
    prefix.exponent = {exponent.hi, exponent.lo + prefix.exponent.lo};
    return prefix.log() + log_series(nu, x);
}

double log_bessel_i_scaled(double nu, double x) {
    if (!(nu >= 0 && x >= 0)) return kNaN;
    if (x == 0) return nu == 0 ? 0 : -kInfinity;
    if (x >= kInfinity || nu >= kInfinity) return -kInfinity;
    if (nu > 1e270 || x > 1e270) return finite_or_limit(log_scaled_of_huge(nu, x));
    // I_nu(x) is a noncentral chi-square density: e^-x I_nu(x) = 2 f(x; 2 nu + 2, x).
    return kLn2 + noncentral_chi_square_log_density(2 * nu + 2, x, x);
}

}  // namespace pral::numerics
