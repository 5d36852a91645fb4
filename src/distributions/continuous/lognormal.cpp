#include "distributions/continuous/lognormal.h"

#include "numerics/extended_log.h"

namespace pral {

namespace {

using namespace numerics;

/// ln(base^mu).
DoubleDouble log_power(double base, double mu) {
    const double plain = mu * std::log(base);
    if (!(base > 0 && base < kInfinity && std::fabs(plain) < 1e3)) return {plain, 0};
    return multiply(extended_log({base, 0}), {mu, 0});
}

}  // namespace

LognormalB::LognormalB(double mu_, double sigma_, double base_)
    : LogLocationScale(log_power(base_, mu_), sigma_ * std::log(base_), {}),
      mu(mu_),
      sigma(sigma_),
      base(base_) {}

}  // namespace pral
