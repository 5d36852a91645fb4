#include "numerics/classical/poisson.h"

#include <cfloat>
#include <cmath>

#include "numerics/coefficients.h"
#include "numerics/constants.h"
#include "numerics/gamma.h"

namespace pral::numerics {

namespace {

bool is_infinite(double x) { return std::fabs(x) >= kInfinity; }

/// Probability 0 or 1 in the form asked for.
double zero(bool log_result) { return log_result ? -kInfinity : 0; }
double one(bool log_result) { return log_result ? 0 : 1; }
double from_log(double log_density, bool log_result) {
    return log_result ? finite_or_limit(log_density) : std::exp(log_density);
}

}  // namespace

double stirling_error(double n) {
    using namespace coefficients::nmath;
    constexpr double S0 = stirling_series[0], S1 = stirling_series[1], S2 = stirling_series[2],
                     S3 = stirling_series[3], S4 = stirling_series[4];
    if (n <= 15) {
        const double doubled = n + n;
        if (doubled >= 0 && doubled == std::floor(doubled))
            return stirling_half_integers[static_cast<int>(doubled)];
        return log_gamma_fn(n + 1) - (n + 0.5) * std::log(n) + n - kLnSqrt2Pi;
    }
    const double nn = n * n;
    if (n > 500) return (S0 - S1 / nn) / n;
    if (n > 80) return (S0 - (S1 - S2 / nn) / nn) / n;
    if (n > 35) return (S0 - (S1 - (S2 - S3 / nn) / nn) / nn) / n;
    return (S0 - (S1 - (S2 - (S3 - S4 / nn) / nn) / nn) / nn) / n;
}

double binomial_deviance(double x, double np) {
    if (std::isnan(x) || std::isnan(np)) return kNaN;
    if (is_infinite(x) || is_infinite(np) || np == 0) return kInfinity;
    if (x == 0) return np;
    if (std::fabs(x - np) < 0.1 * (x + np)) {
        double v = (x - np) / (x + np);
        double sum = (x - np) * v;
        if (std::fabs(sum) < DBL_MIN) return sum;
        double power = 2 * x * v;
        v *= v;
        for (int j = 1; j < 1000; ++j) {  // v <= 0.01: ten terms
            power *= v;
            const double next = sum + power / (2 * j + 1);
            if (next == sum) break;
            sum = next;
        }
        return sum;
    }
    return finite_or_limit(x * std::log(x / np) + np - x);
}

double poisson_density_raw(double x, double lambda, bool log_result) {
    if (std::isnan(x) || std::isnan(lambda)) return kNaN;
    if (lambda == 0) return x == 0 ? one(log_result) : zero(log_result);
    if (is_infinite(lambda) || x < 0) return zero(log_result);
    if (x <= lambda * DBL_MIN) return from_log(-lambda, log_result);
    if (is_infinite(x)) return zero(log_result);
    if (lambda < x * DBL_MIN)
        return from_log(-lambda + x * std::log(lambda) - log_gamma_fn(x + 1), log_result);
    const double exponent = -stirling_error(x) - binomial_deviance(x, lambda);
    const double squared_width = 2 * kPi * x;
    return log_result ? finite_or_limit(-0.5 * std::log(squared_width) + exponent)
                      : std::exp(exponent) / std::sqrt(squared_width);
}

double poisson_density_shifted(double x_plus_1, double lambda, bool log_result) {
    constexpr double kCutoff = 3196577161300663808.0;  // beyond it x ln(lambda) is lost beside lambda
    if (std::isnan(x_plus_1) || std::isnan(lambda)) return kNaN;
    if (is_infinite(lambda)) return zero(log_result);
    if (x_plus_1 > 1) return poisson_density_raw(x_plus_1 - 1, lambda, log_result);
    if (lambda > std::fabs(x_plus_1 - 1) * kCutoff)
        return from_log(-lambda - log_gamma_fn(x_plus_1), log_result);
    const double density = poisson_density_raw(x_plus_1, lambda, log_result);
    const double ratio = x_plus_1 / lambda;
    return log_result ? density + std::log(ratio) : density * ratio;
}

}  // namespace pral::numerics
