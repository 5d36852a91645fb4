#include "numerics/owens_t.h"

#include <algorithm>
#include <cmath>

#include "numerics/constants.h"
#include "numerics/double_double.h"
#include "numerics/gauss_legendre.h"
#include "numerics/normal.h"

namespace pral::numerics {

namespace {

constexpr double kInv2Pi = 0.5 / kPi, kSqrtHalf = 0.707106781186547524400844362104849039;
/// exp(-h^2/2) underflows beyond it.
constexpr double kLargestH = 39;

/// exp(-(h^2 + v^2)/2) with both squares carried exactly; v may have a low part.
double exp_half_squares(double h, DoubleDouble v) {
    const DoubleDouble h2 = two_product(h, h), v2 = two_product(v.hi, v.hi), sum = two_sum(h2.hi, v2.hi);
    return std::exp(-0.5 * sum.hi) * (1 - 0.5 * (sum.lo + h2.lo + v2.lo + 2 * v.hi * v.lo));
}

/// P(|X| <= h); erf reports where erfc underflows.
double central_mass(double h) { return h < 1 ? erf(h * kSqrtHalf) : 1 - 2 * normal_survival(h); }

/// T(h, a) for 0 <= a <= 1: the integrand has no pole nearer than i, and falls as a normal density in h x.
double integral_to(double h, double a) {
    const double reach = h * a < 9 ? a : 9 / h;
    const int panels = 1 + static_cast<int>(h * reach / 3.01);
    const double integral =
        integrate(reach, panels, [h](double x) { return std::exp(-0.5 * (h * x) * (h * x)) / (1 + x * x); });
    return kInv2Pi * exp_half_squares(h, {0, 0}) * integral;
}

/// The integral from a on for a h >= 1, in v = h x: h exp(-h^2/2) times that of exp(-v^2/2)/(h^2 + v^2) from a h.
double integral_from(double h, double a) {
    const DoubleDouble v = two_product(a, h);
    const double start = v.hi, reach = 80 / (start + std::sqrt(start * start + 80)), h2 = h * h;
    const double integral = integrate(reach, 3, [start, h2](double s) {
        const double at = start + s;
        return std::exp(-s * (start + 0.5 * s)) / (h2 + at * at);
    });
    return kInv2Pi * h * exp_half_squares(h, v) * integral;
}

}  // namespace

double owens_t(double h, double a) {
    if (std::isnan(h) || std::isnan(a)) return kNaN;
    h = std::fabs(h);
    const double size = std::min(std::fabs(a), kInfinity);
    if (h > kLargestH || a == 0) return 0;
    double value;
    if (size <= 1) {
        value = integral_to(h, size);
    } else {
        // Owen's relation between (h, a) and (a h, 1/a), in the upper tails of both.
        const double q = normal_survival(h), qa = normal_survival(size * h);
        value = 0.5 * q + (qa * (0.5 - q) - (size * h > kLargestH ? 0 : integral_to(size * h, 1 / size)));
    }
    return a < 0 ? -value : value;
}

double owens_t_complement(double h, double a) {
    if (std::isnan(h) || std::isnan(a)) return kNaN;
    h = std::fabs(h);
    a = std::min(a, kInfinity);
    if (h > kLargestH || a * h > kLargestH) return 0;
    if (a * h >= 1) return integral_from(h, a);
    if (a <= 1) return 0.5 * normal_survival(h) - integral_to(h, a);
    return integral_to(a * h, 1 / a) - 0.5 * normal_survival(a * h) * central_mass(h);
}

double skew_normal_cumulative(double z, double alpha) {
    if (std::isnan(z) || std::isnan(alpha)) return kNaN;
    const double h = std::fabs(z), a = std::fabs(alpha);
    if (z <= 0 && alpha < 0) return normal_survival(h) + 2 * owens_t(h, a);
    const double tail = 2 * owens_t_complement(h, a);
    if (z <= 0) return tail;
    return alpha < 0 ? 1 - tail : central_mass(h) + tail;
}

double skew_normal_survival(double z, double alpha) { return skew_normal_cumulative(-z, -alpha); }

}  // namespace pral::numerics
