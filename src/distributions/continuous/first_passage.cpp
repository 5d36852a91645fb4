#include "distributions/continuous/first_passage.h"

#include "distributions/quantile_search.h"
#include "numerics/gauss_legendre.h"
#include "numerics/sums.h"

namespace pral {

namespace {

using namespace numerics;

/// M(a) - M(a + gap) = the integral of exp(-u^2/2 - a u) (1 - exp(-gap u)) over all u > 0, for a gap so small that the
/// difference would cancel.
double mills_difference(double a, double gap) {
    const double reach = 80 / (a + std::sqrt(a * a + 80));
    return integrate(reach, 2, [=](double u) { return std::exp(-u * (0.5 * u + a)) * -expm1_fn(-gap * u); });
}

}  // namespace

double Fatigue::log_likelihood(std::span<const double> values) const {
    const double per_beta = 1 / map.beta, per_gamma = 1 / map.gamma;
    double squares = 0;
    const double slopes = sum_of_logs(values, [&, this](double x) {
        const double above = x - map.alpha, z = above * per_beta;
        const double beyond = (above - map.beta) * per_beta * per_gamma;
        squares += beyond * beyond / z;
        return (1 + z) * (1 + z) / (z * z * z);
    });
    const double total =
        0.5 * (slopes - squares) -
        static_cast<double>(values.size()) * (kLn2 + kLnSqrt2Pi + std::log(map.gamma) + std::log(map.beta));
    return std::isfinite(total) ? total : sum_of_log_densities(*this, values);
}

/// Where b is hardly beyond a the upper tail is a difference of nearly equal Mills ratios.
double InvGauss::upper_ratio(double a, double gap) const {
    const double ratio = normal_mills_ratio(a), difference = ratio - normal_mills_ratio(a + gap);
    return difference > 0.05 * ratio ? difference : mills_difference(a, gap);
}

double InvGauss::cumulative(double x) const {
    const double a = score_.inverse(x), b = reflected_score(x);
    const double density = normal_density(a), reflected = density > 0 ? density * normal_mills_ratio(b) : 0;
    return normal_cumulative(a) + reflected;
}

double InvGauss::survival(double x) const {
    const double a = score_.inverse(x);
    if (a < -3) return 1 - cumulative(x);
    const double density = normal_density(a);
    return density > 0 ? density * upper_ratio(a, gap(x)) : density;
}

double InvGauss::log_cumulative(double x) const {
    const double a = score_.inverse(x);
    if (a > 0) return log1p_fn(-survival(x));
    if (a < -1e8) return -0.5 * a * a;  // beyond all else
    const double ratios = normal_mills_ratio(-a) + normal_mills_ratio(reflected_score(x));
    return -0.5 * a * a - kLnSqrt2Pi + std::log(ratios);
}

double InvGauss::log_survival(double x) const {
    const double a = score_.inverse(x);
    if (a < -3) return log1p_fn(-cumulative(x));
    if (a > 1e8) return -0.5 * a * a;  // beyond all else
    return -0.5 * a * a - kLnSqrt2Pi + std::log(upper_ratio(a, gap(x)));
}

double InvGauss::quantile(double p) const {
    if (p > 0.5) return quantile_upper(1 - p);
    return search_quantile(*this, Side::lower, p, score_.forward(normal_quantile(p)));
}

double InvGauss::quantile_upper(double q) const {
    if (q > 0.5) return quantile(1 - q);
    return search_quantile(*this, Side::upper, q, score_.forward(normal_quantile_upper(q)));
}

}  // namespace pral
