// The noncentral beta distribution: a Poisson(lambda/2) mixture of beta distributions with a raised by the count.
// The noncentral F with nu1, nu2 degrees of freedom and f > 0 is a = nu1/2, b = nu2/2, x = nu1 f/(nu1 f + nu2).
#pragma once

#include "numerics/beta_ratio.h"

namespace pral::numerics {

/// a, b > 0, lambda >= 0; otherwise every result is NaN. The functions take x and y = 1 - x, the smaller one as exact. Relative accuracy of
/// about 1e-13 in both tails down to 1e-300 for lambda up to 1e12; the work is bounded for any lambda.
class NoncentralBeta {
  public:
    NoncentralBeta(double a, double b, double lambda);

    double lower(double x, double y) const;
    double upper(double x, double y) const;
    double log_lower(double x, double y) const;  // -kInfinity for 0
    double log_upper(double x, double y) const;
    double log_density(double x, double y) const;  // at the ends the limit, +-kInfinity where infinite

  private:
    enum class Kind { lower, upper, density };

    double a_, b_, mean_;  // mean of the Poisson count, lambda/2

    double peak(Kind kind, double x, double y) const;
    BetaRatio::Scaled term(Kind kind, double j, double x, double y) const;
    BetaRatio::Scaled mixture(Kind kind, double x, double y) const;
    double last_of_lower(double centre, double above, double x) const;
    BetaRatio::Scaled sweep(Kind kind, double from, double to, double x, double y) const;
    BetaRatio::Scaled sampled(Kind kind, double centre, double reach, double x, double y) const;
};

}  // namespace pral::numerics
