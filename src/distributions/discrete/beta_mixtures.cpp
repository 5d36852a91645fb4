#include "distributions/discrete/beta_mixtures.h"

#include "distributions/discrete/hypergeometric.h"
#include "numerics/double_double.h"
#include "numerics/gamma.h"
#include "numerics/normal.h"

namespace pral {

namespace {

/// From here on a shape, or a count, may be so large that a limit is as good.
constexpr double kLarge = 1e16;

/// Whether u/v, gamma variables of large shapes, is as good as constant to Beta(a, b): its standard deviation, relative to
/// itself, times the slope of ln F or ln(1 - F) in the logit of x = u/(u + v).
bool as_good_as_constant(double u, double v, double a, double b, double x, double y) {
    const double rising = a * y, falling = b * x;
    const double slope = std::fabs(rising - falling) + std::sqrt(rising * x + falling * y) + 1;
    return slope * std::sqrt(1 / u + 1 / v) < 3e-9;
}

/// u/(u + v) and v/(u + v).
struct Shares {
    double x, y;
    Shares(double u, double v) : x(1 / (1 + v / u)), y(1 / (1 + u / v)) {}
};

/// P(Beta(a, b) <= u/(u + v)) and its complement, if G_u and G_v are as good as constant.
std::optional<Tails> beside_constants(double u, double v, double a, double b) {
    const auto [x, y] = Shares(u, v);
    if (!as_good_as_constant(u, v, a, b, x, y)) return std::nullopt;
    const numerics::BetaRatio beta(a, b);
    return Tails{beta.lower(x, y), beta.upper(x, y)};
}

/// ln(G_b G_c/(G_a G_d)) for large shapes, by its mean, variance and skewness: the cumulants of ln G_s are ln s - 1/(2 s),
/// 1/s and -1/s^2. P(it is >= 0) is that of a standard normal variable up to z.
struct NearlyNormal {
    double deviation, z;

    NearlyNormal(double a, double b, double c, double d) {
        const numerics::DoubleDouble from = numerics::exact_quotient(a, b),
                                     to = numerics::exact_quotient(c, d);
        const double apart = numerics::add(to, numerics::negated(from)).hi / from.hi;
        const double bias = (1 / a - 1 / b) + (1 / d - 1 / c);
        const double third = (1 / a / a - 1 / b / b) + (1 / d / d - 1 / c / c);
        deviation = std::sqrt(1 / a + 1 / b + 1 / c + 1 / d);
        z = (numerics::log1p_fn(apart) + 0.5 * bias) / deviation;
        const double skewness = third / deviation / deviation / deviation;
        if (std::fabs(z) < 40) z += skewness * ((z * z - 1) / 6);
    }
};

/// ln of the beta-binomial mass where the m failures are so many beside k successes that powers of m are all that counts,
/// Gamma(m + u)/Gamma(m + v) = m^(u - v) (1 + (u - v)(u + v - 1)/2m).
double log_mass_of_few(double k, double m, double a, double b) {
    const double correction = (k * (k + 1) - (k + a) * (k + a + 2 * b - 1)) / (2 * m);
    const double of_successes = k < 8 ? numerics::log_gamma(k + a) - numerics::log_gamma(k + 1)
                                      : -numerics::toms708::algdiv(a, k) - std::log(k);
    return of_successes - numerics::log_beta(a, b) - a * std::log(m) + correction;
}

/// The same where both counts are large beside small shapes:
/// Gamma(k + a)/Gamma(k + 1) Gamma(m + b)/Gamma(m + 1) Gamma(n + 1)/Gamma(n + a + b) / B(a, b), n = k + m.
double log_mass_of_small_shapes(double k, double m, double a, double b) {
    // What shapes below 1e-30 add is lost in the sum, and denormal numbers are slow.
    const auto algdiv = [](double shape, double count) {
        return shape < 1e-30 ? 0 : numerics::toms708::algdiv(shape, count);
    };
    const double fewer = std::min(k, m), more = std::max(k, m), all = std::min(k + m, DBL_MAX);
    return algdiv(a + b, all) - algdiv(a, k) - algdiv(b, m) - numerics::log_beta(a, b) +
           numerics::log1p_fn(fewer / more) - std::log(fewer);
}

/// The same where both m and b are as good as constant: the successes are negative binomial.
double log_mass_of_scarce(double k, double m, double a, double b) {
    const auto [p, q] = Shares(b, m);
    return numerics::log_beta_density(a, k + 1, p, q) + std::log(p) - std::log(a + k);
}

/// ln of the beta-binomial mass where one of the limits of compared_betas holds.
std::optional<double> limiting_log_mass(double k, double m, double a, double b) {
    const double c = k + 1, d = m + 1;
    const auto constant = [](double u, double v, double first, double second) {
        const auto [x, y] = Shares(u, v);
        return as_good_as_constant(u, v, first, second, x, y);
    };
    if (constant(c, d, a, b)) {
        const auto [x, y] = Shares(c, d);
        return numerics::log_beta_density(a, b, x, y) - numerics::kLn2 - std::log(0.5 * c + 0.5 * d);
    }
    if (constant(b, d, a, c)) return log_mass_of_scarce(k, m, a, b);
    if (constant(a, c, b, d)) return log_mass_of_scarce(m, k, b, a);
    if (constant(a, b, c, d)) {
        const auto [x, y] = Shares(a, b);
        return numerics::log_beta_density(c, d, x, y) - numerics::log1p_fn(k + m);
    }
    if (std::min({a, b, c, d}) < kLarge) return std::nullopt;
    const NearlyNormal logarithm(a, b, c, d);
    return -0.5 * logarithm.z * logarithm.z +
           std::log((1 / c + 1 / d) / logarithm.deviation * numerics::kInvSqrt2Pi);
}

}  // namespace

double log_beta_binomial(double k, double m, double a, double b) {
    if (std::min(k, m) >= 8 && a + b <= 4) return log_mass_of_small_shapes(k, m, a, b);
    if (std::max({k, m, a, b}) >= kLarge) {
        if (const auto limit = limiting_log_mass(k, m, a, b)) return *limit;
    }
    const double of_successes = k + a + b + 1, of_failures = m + a + b + 1;
    if (m > 1e8 * of_successes * of_successes) return log_mass_of_few(k, m, a, b);
    if (k > 1e8 * of_failures * of_failures) return log_mass_of_few(m, k, b, a);
    // Three beta densities at one point, where the powers of the point cancel: no difference of large log-gammas.
    const auto [x, y] = Shares(0.5 * k + 0.5 * a, 0.5 * m + 0.5 * b);
    const double of_draws = numerics::log_beta_density(k + 1, m + 1, x, y) - numerics::log1p_fn(k + m),
                 before = numerics::log_beta_density(a, b, x, y),
                 after = numerics::log_beta_density(k + a, m + b, x, y);
    const double log_mass = of_draws + before - after;
    constexpr double kWithoutDigits =
        -1e13;  // a difference of such logarithms tells no more than that there is no mass
    return log_mass > 0 && of_draws < kWithoutDigits ? -HUGE_VAL : log_mass;
}

std::optional<Tails> compared_betas(double a, double b, double c, double d) {
    if (std::max({a, b, c, d}) < kLarge) return std::nullopt;
    if (const auto tails = beside_constants(c, d, a, b)) return tails;
    if (const auto tails = beside_constants(b, d, a, c)) return tails;
    if (const auto tails = beside_constants(c, a, d, b)) return tails;
    if (const auto tails = beside_constants(a, b, c, d)) return Tails{tails->upper, tails->lower};
    if (std::min({a, b, c, d}) < kLarge) return std::nullopt;
    const NearlyNormal logarithm(a, b, c, d);
    return Tails{numerics::normal_survival(-logarithm.z), numerics::normal_survival(logarithm.z)};
}

std::optional<Tails> counted_beta_binomial(double n, double k, double a, double b) {
    if (a == b && 2 * k + 1 == n) return Tails{0.5, 0.5};
    const double marked = a + b - 1, all = n + marked;
    const bool whole = n == std::floor(n) && a == std::floor(a) && b == std::floor(b);
    if (!(whole && all < 0x1p53 && k < n)) return std::nullopt;
    const Hypergeometric urn(k + a, marked, all);
    if (!urn.counts_exactly()) return std::nullopt;
    return Tails{urn.upper(a - 1), urn.lower(a - 1)};
}

}  // namespace pral
