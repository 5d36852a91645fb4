#include "multivariate/archimedean.h"

#include <gsl/gsl_errno.h>
#include <gsl/gsl_sf_debye.h>

#include <array>

#include "distributions/continuous/gamma.h"
#include "distributions/discrete/logarithmic.h"
#include "distributions/truncated.h"
#include "numerics/gsl.h"
#include "statistics/comparison.h"

namespace pral::multivariate {

namespace {

/// The quantiles of a family at many uniforms.
template <Family D>
void invert(const D& family, std::span<double> u) {
    Truncated<D>(family).quantiles(u);
}

/// Frank's tau at theta = 0, 0.36, ..., 34.92 by the formula, to nine decimals. Tables made by numerical integration are
/// off by up to 1e-6: 0.039948889 in place of 0.039948274 at 0.36, which is then found as 0.3600056.
struct TauTable {
    static constexpr int kPoints = 98;
    std::array<double, kPoints> tau, theta;

    TauTable() {
        for (int i = 0; i < kPoints; ++i) {
            theta[i] = 0.36 * i;
            tau[i] = std::round(Frank::tau(theta[i]) * 1e9) / 1e9;
        }
    }
};

}  // namespace

void Clayton::frailties(std::span<double> first, std::span<const double>) const {
    // One that has underflowed counts as the smallest.
    invert(Gamma{std::min(1 / alpha_, numerics::kInfinity), 1}, first);
    for (double& v : first) v = std::clamp(v, 0x1p-1074, numerics::kInfinity);
}

/// The generator of Chambers, Mallows and Stuck (1976) for the index 1/theta, skewness 1, location 0 and the scale
/// cos(pi/(2 theta))^theta, which takes the constant out of the Laplace transform exp(-s^(1/theta)); it is then
/// Kanter's (1975): sin(a/theta) / sin(a)^theta (sin((1 - 1/theta) a) / w)^(theta - 1), a uniform on (0, pi), w
/// standard exponential.
double Gumbel::log_frailty(double a, double u) const {
    if (theta_ == 1) return 0;
    const double towards_one = std::log(std::sin((theta_ - 1) * index_ * a) / exponential(u));
    return std::log(std::sin(a * index_)) - theta_ * std::log(std::sin(a)) + (theta_ - 1) * towards_one;
}

void Frank::frailties(std::span<double> first, std::span<const double>) const {
    invert(Logarithmic::with_rate(theta_), first);
}

double Frank::tau(double theta) {
    const numerics::GslErrorsReturn guard;
    gsl_sf_result debye;
    if (theta == 0 || gsl_sf_debye_1_e(theta, &debye) != GSL_SUCCESS) return 0;
    return 1 - 4 / theta * (1 - debye.val);
}

double Frank::from_tau(double tau) {
    static const TauTable table;
    if (tau < 0) return 0;
    if (tau > table.tau.back()) return kMost;
    double theta = 0;
    const Message problem = statistics::interpolate(tau, table.tau, table.theta, theta);
    return problem == nullptr ? theta : 0;
}

}  // namespace pral::multivariate
