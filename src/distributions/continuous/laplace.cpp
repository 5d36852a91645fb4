#include "distributions/continuous/laplace.h"

#include "numerics/each.h"
#include "numerics/extended_log.h"
#include "numerics/gamma.h"
#include "numerics/gamma_ratio.h"

namespace pral {

namespace {

using namespace numerics;

constexpr DoubleDouble kLn3 = {1.0986122886681098, -9.07129723500153e-17};

/// Below it w, the gamma variable, has P(a, w) = w^a/Gamma(1 + a) to double precision.
constexpr double kTiny = 1e-17, kLogTiny = -40;

DoubleDouble times(DoubleDouble a, double b) { return multiply(a, {b, 0}); }

/// nu ln c = nu/2 ln(Gamma(1/nu)/Gamma(3/nu)). The gamma functions' logarithms grow as their arguments or fall as -ln of
/// them, and what is large in them is taken in twice the precision.
DoubleDouble scaled_log_of_c(double nu) {
    const double a = 1 / nu;
    if (nu >= 2) return add(times(kLn3, 0.5 * nu), {0.5 * nu * (lgamma_1p(a) - lgamma_1p(3 * a)), 0});
    if (nu > 0.1) return {0.5 * nu * (log_gamma(a) - log_gamma(3 * a)), 0};
    // Stirling's formula in both
    const double correction = 0.5 * nu * (lgamma_correction(a) - lgamma_correction(3 * a));
    return add(add(extended_log({nu, 0}), {1, 0}), add(times(kLn3, 0.25 * nu - 1.5), {correction, 0}));
}

}  // namespace

Error::Error(double mu_, double sigma_, double nu_)
    : mu(mu_), sigma(sigma_), nu(nu_), shape_(1 / nu_), log_gamma_shape_(kNaN), log_peak_(kNaN) {
    if (!(nu > 0)) return;
    log_gamma_shape_ = shape_ < 0.5 ? lgamma_1p(shape_) : numerics::log_gamma(1 + shape_);
    nu_log_c_ = scaled_log_of_c(nu);
    log_peak_ = -kLn2 - log_gamma_shape_ - nu_log_c_.hi / nu;
}

/// The power multiplies the relative errors of its base by nu, so the base is carried in twice the precision.
DoubleDouble Error::log_power(double x) const {
    const DoubleDouble difference = two_sum(x, -mu);
    const DoubleDouble z = divide(difference.hi < 0 ? negated(difference) : difference, {sigma, 0});
    if (z.hi >= DBL_MIN && z.hi <= DBL_MAX && std::isfinite(z.lo)) {
        const DoubleDouble log = add(times(extended_log(z), nu), negated(nu_log_c_));
        if (std::isfinite(log.hi) && std::isfinite(log.lo)) return log;
    }
    return {nu * std::log(std::fabs(x - mu) / sigma) - nu_log_c_.hi, 0};
}

double Error::inside(double x) const {
    const DoubleDouble log = log_power(x);
    if (log.hi < kLogTiny) return std::exp(log.hi / nu - log_gamma_shape_);
    return gamma_lower(shape_, finite_or_limit(scaled_exp(1, log)));
}

double Error::outside(double x) const {
    const DoubleDouble log = log_power(x);
    if (log.hi < kLogTiny) return 1 - std::exp(log.hi / nu - log_gamma_shape_);
    return gamma_upper(shape_, finite_or_limit(scaled_exp(1, log)));
}

double Error::log_cumulative(double x) const { return x < mu ? log_outside(x) : log1p_fn(-survival(x)); }

double Error::log_survival(double x) const { return x > mu ? log_outside(x) : log1p_fn(-cumulative(x)); }

/// ln of half the probability of a value further from mu than x.
double Error::log_outside(double x) const {
    const DoubleDouble log = log_power(x);
    if (log.hi < kLogTiny) return std::log(0.5 * outside(x));
    return log_gamma_upper(shape_, finite_or_limit(scaled_exp(1, log))) - kLn2;
}

double Error::log_density(double x) const {
    return log_peak_ - scaled_exp(1, log_power(x)) - std::log(sigma);
}

double Error::log_likelihood(std::span<const double> values) const {
    const double inverse = 1 / (sigma * std::exp(nu_log_c_.hi / nu));
    // Small powers do no harm to the digits of a sum. The quotients must be in the range of normal numbers.
    const bool plain = nu < 8 && inverse > DBL_MIN && inverse < DBL_MAX;
    const auto quotient = [=, this](double x) {
        const double distance = std::fabs(x - mu), z = distance * inverse;
        return (z >= DBL_MIN && z <= DBL_MAX) || distance == 0 ? z : kNaN;
    };
    double powers =
        plain ? sum_by_blocks(values, quotient,
                              [this](std::span<double> block) {
                                  log_each(block);
                                  return sum_of_exps(block, [this](double log) { return nu * log; });
                              })
              : kNaN;
    if (!std::isfinite(powers))
        powers = interleaved_sum(values, [this](double x) { return scaled_exp(1, log_power(x)); });
    return static_cast<double>(values.size()) * (log_peak_ - std::log(sigma)) - powers;
}

/// For nu next to 0 all but a vanishing part of the probability is nearer to mu than any double.
double Error::distance(double q) const {
    if (!(nu > 1e-300)) return 0;
    const double w = q < 0.5 ? gamma_upper_inverse(shape_, q) : gamma_lower_inverse(shape_, 1 - q);
    const double log = w > kTiny ? std::log(w) / nu : std::log(1 - q) + log_gamma_shape_;
    return std::exp(log + nu_log_c_.hi / nu);
}

}  // namespace pral
