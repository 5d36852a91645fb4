// The Poisson probability by C. Loader's saddle-point form (2000), at real arguments, and its parts.
#pragma once

namespace pral::numerics {

/// ln Gamma(n + 1) - ln(sqrt(2 pi n) (n/e)^n), n >= 0: a table at the half-integers up to 15, log_gamma_fn between
/// them (absolute error 1e-14), a series above (relative error 1.5e-13 just above 500).
double stirling_error(double n);

/// x ln(x/np) + np - x, accurate when x is near np. kInfinity when np is 0 or an argument infinite.
double binomial_deviance(double x, double np);

/// e^-lambda lambda^x / Gamma(x + 1) for real x >= 0, or its logarithm.
double poisson_density_raw(double x, double lambda, bool log_result);

/// poisson_density_raw at x = x_plus_1 - 1, which may lie between -1 and 0.
double poisson_density_shifted(double x_plus_1, double lambda, bool log_result);

}  // namespace pral::numerics
