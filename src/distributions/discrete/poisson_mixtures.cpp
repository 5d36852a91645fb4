#include "distributions/discrete/poisson_mixtures.h"

#include <array>
#include <iterator>

#include "distributions/continuous/exponential.h"
#include "distributions/continuous/uniform.h"
#include "numerics/gauss_legendre.h"
#include "numerics/normal.h"

namespace pral {

namespace {

constexpr double kNegligible = 1e-17;

// ---------------------------------------------------------------------------------------------- PoissonUniform

/// What a gamma tail of the given shape adds between two rates, away from its larger values, to its mean over the range of
/// rates: the integral in units of the range. Panels on which the tail falls by e^-4 or which are two standard deviations long
/// are resolved by the rule of 20 points.
template <class Tail>
double tail_part(double shape, double from, double to, double range, Tail tail) {
    constexpr int kMostPanels = 100;
    const double widest = 2 * std::sqrt(shape) + 1, direction = to < from ? -1 : 1;
    double sum = 0;
    for (int i = 0; i < kMostPanels && from != to; ++i) {
        const double rate = numerics::gamma_density(shape, from) / tail(from);
        const double width = std::min(widest, 4 / rate);
        const double end = width < std::fabs(to - from) ? from + direction * width : to;
        const double part = std::fabs(end - from) / range;
        const double next =
            numerics::integrate(part, 1, [&](double t) { return tail(from + direction * range * t); });
        sum += next;
        if (!(next > kNegligible * sum)) break;
        from = end;
    }
    return sum;
}

/// Beyond this many standard deviations (and a margin for the exponential tail) the other gamma tail does not count.
double reach(double shape) { return 9.5 * std::sqrt(shape) + 45; }

}  // namespace

double PoissonUniform::survival(double k) const {
    const double shape = k + 1, certain = std::clamp(shape + reach(shape), Min, Max);
    const auto lower = [&](double rate) { return numerics::gamma_lower(shape, rate); };
    const double range = Max - Min;
    return (Max - certain) / range + tail_part(shape, certain, Min, range, lower);
}

double PoissonUniform::cumulative(double k) const {
    const double shape = k + 1, certain = std::clamp(shape - reach(shape), Min, Max);
    const auto upper = [&](double rate) { return numerics::gamma_upper(shape, rate); };
    const double range = Max - Min;
    return (certain - Min) / range + tail_part(shape, certain, Max, range, upper);
}

/// The difference of two gamma tails, of those on the side where they are smaller; where they are so close that digits
/// would be lost, the density between them is nearly a polynomial.
double PoissonUniform::log_density(double k) const {
    using namespace numerics;
    const double shape = k + 1, log_width = std::log(Max - Min);
    const bool above = Min > shape;
    const double larger = above ? log_gamma_upper(shape, Min) : log_gamma_lower(shape, Max);
    const double smaller = above ? log_gamma_upper(shape, Max) : log_gamma_lower(shape, Min);
    if (smaller - larger < -0.3) return larger + log1p_fn(-std::exp(smaller - larger)) - log_width;
    const double unit = log_gamma_density(shape, 0.5 * Min + 0.5 * Max), width = Max - Min;
    const auto density = [&](double t) { return std::exp(log_gamma_density(shape, Min + width * t) - unit); };
    return unit + std::log(integrate(1, 1, density));
}

void PoissonUniform::masses(double first, std::span<double> out) const {
    for (double& mass : out) mass = std::exp(log_density(first++));
}

double PoissonUniform::start(double p) const {
    const double rate = Min + (Max - Min) * p;
    const double sharpness =
        std::sqrt(rate) / (std::sqrt(rate) + (Max - Min));  // 1 when only the Poisson part counts
    return std::floor(rate + sharpness * std::sqrt(rate) * numerics::normal_quantile(p));
}

// ------------------------------------------------------------------------------------------ BurntFingerPoisson

namespace {

/// The integral over t in [0, 1] of (1 - t)^(k-1) e^(-d t) = M(1, k + 1, -d)/k for k >= 1, d >= 0, by the continued fraction
/// that corresponds to it at 0 and at infinity, DLMF 13.17: 1e-17 after 60 steps at worst, near d = 20.
double decay_integral(double k, double d) {
    constexpr int kSteps = 60;
    double t = k + kSteps + d;
    for (int n = kSteps; n >= 1; --n) t = k + (n - 1) + d - n * (d / t);
    return 1 / t;
}

}  // namespace

double BurntFingerPoisson::log_density(double k) const {
    if (k == 0) return -Lambda1;
    return std::log(Lambda1) + numerics::log_gamma_density(k, Lambda2) +
           std::log(decay_integral(k, Lambda1 - Lambda2));
}

double BurntFingerPoisson::mass_ratio(double k) const {
    if (k == 0) return std::exp(log_density(1) + Lambda1);
    const double d = Lambda1 - Lambda2;
    return Lambda2 / k * (decay_integral(k + 1, d) / decay_integral(k, d));
}

double BurntFingerPoisson::cumulative(double k) const {
    if (k == 0) return std::exp(-Lambda1);
    return numerics::gamma_upper(k, Lambda2) + Lambda2 / Lambda1 * std::exp(log_density(k));
}

double BurntFingerPoisson::survival(double k) const {
    if (k == 0) return -numerics::expm1_fn(-Lambda1);
    const double at_least = numerics::gamma_lower(k, Lambda2);
    const double upper = at_least - Lambda2 / Lambda1 * std::exp(log_density(k));
    if (upper > 0.25 * at_least) return upper;
    // The difference loses digits only where the masses fall fast.
    constexpr int kMostTerms = 1000;
    double term = std::exp(log_density(k + 1)), sum = term;
    for (int i = 1; i < kMostTerms && term > kNegligible * sum; ++i) {
        term *= mass_ratio(k + i);
        sum += term;
    }
    return sum;
}

/// 0 or, from the time 1 - s/Lambda1 that is left after the first event, s exponential, 1 and a Poisson count.
Moments BurntFingerPoisson::moments() const {
    constexpr double kFarthest = 60;
    constexpr int kPanels = 6;
    const double reach = std::min(Lambda1, kFarthest), happens = -numerics::expm1_fn(-Lambda1);
    const Moments time = point_moments([&](auto visit) {
        numerics::integrate(reach, kPanels, [&, half = 0.5 * reach / kPanels, i = 0](double s) mutable {
            const double weight = numerics::kLegendre[i++ / 2 % std::size(numerics::kLegendre)][1];
            visit(half * weight * std::exp(-s) / -numerics::expm1_fn(-reach), 1 - s / Lambda1);
            return 0.0;
        });
    });
    const Moments counts = linear(poisson_mixture(linear(time, Lambda2, 0)), 1, 1);
    return mixed(std::array{counts, Moments{0, 0, 0, 0}}, std::array{happens, 1 - happens});
}

}  // namespace pral
