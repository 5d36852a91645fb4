// Inverses of the regularised incomplete beta function, and Student's t that stands on them.
#pragma once

#include "numerics/beta_ratio.h"

namespace pral::numerics {

/// A point of (0, 1) by both distances from its ends.
struct UnitPoint {
    double x, y;  // y = 1 - x
};

/// The point with I_x(a, b) = p, p in [0, 1]: full precision in the smaller of p and 1 - p.
UnitPoint beta_lower_inverse(const BetaRatio& ratio, double p);
UnitPoint beta_lower_inverse(double a, double b, double p);

/// The point with 1 - I_x(a, b) = q.
UnitPoint beta_upper_inverse(const BetaRatio& ratio, double q);
UnitPoint beta_upper_inverse(double a, double b, double q);

/// Student's t with real nu > 0 degrees of freedom: P(T <= t), P(T > t) = student_lower(nu, -t).
double student_lower(double nu, double t);

/// The t with P(T <= t) = p; the upper quantile is -student_quantile(nu, q).
double student_quantile(double nu, double p);

}  // namespace pral::numerics
