// The noncentral chi-square distribution for real degrees of freedom: both tails and the density. The Skellam
// distribution and the modified Bessel function are special cases of it.
#pragma once

namespace pral::numerics {

/// P(X <= x) for nu > 0 degrees of freedom and noncentrality lambda >= 0 (the sum of the squared means): the Poisson
/// mixture of chi-squares, or, where that takes thousands of terms, the inversion integral of the moment generating
/// function through its saddle point. nu = 0 is allowed for lambda >= 0 (a mass e^(-lambda/2) at 0). Relative error below
/// 1e-13 in both tails, at most some 2000 terms for any argument.
double noncentral_chi_square_lower(double nu, double lambda, double x);

/// P(X > x), with its digits in the upper tail.
double noncentral_chi_square_upper(double nu, double lambda, double x);

/// ln of the density at x > 0; -kInfinity where it is 0.
double noncentral_chi_square_log_density(double nu, double lambda, double x);

}  // namespace pral::numerics
