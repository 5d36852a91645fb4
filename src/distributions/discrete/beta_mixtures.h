// Binomial and negative binomial counts whose probability is itself a Beta(a, b): beta-binomial, beta-geometric,
// beta-negative-binomial.
#pragma once

#include "distributions/discrete/mass_sum.h"
#include "numerics/beta_quantile.h"
#include "numerics/beta_ratio.h"
#include "numerics/gamma.h"
#include "numerics/gamma_ratio.h"
#include "numerics/toms708.h"

namespace pral {

/// A shape of a beta variable as it is reckoned with: products of denormal ones would be nothing, sums of huge ones
/// infinite.
inline double beta_shape(double given) { return given > 0 ? std::clamp(given, 1e-305, 1e290) : given; }

/// ln of the beta-binomial mass where n failures are so many beside j successes that powers of n are all that counts,
/// Gamma(n + u)/Gamma(n + v) = n^(u - v) (1 + (u - v)(u + v - 1)/2n).
inline double log_beta_binomial_far(double j, double n, double a, double b) {
    const double correction = (j * (j + 1) - (j + a) * (j + a + 2 * b - 1)) / (2 * n);
    const double of_successes = j < 8 ? numerics::log_gamma(j + a) - numerics::log_gamma(j + 1)
                                      : -numerics::toms708::algdiv(a, j) - std::log(j);
    return of_successes - numerics::log_beta(a, b) - a * std::log(n) + correction;
}

/// ln of the beta-binomial mass where both the n failures and their shape b are so large beside j successes and theirs, a,
/// that the successes are negative binomial.
inline double log_scarce(double j, double n, double a, double b) {
    const double p = 1 / (1 + n / b), q = 1 / (1 + b / n);
    return numerics::log_beta_density(a, j + 1, p, q) + std::log(p) - std::log(a + j);
}

/// ln of the beta-binomial mass of k successes and m failures, C(k + m, k) B(k + a, m + b)/B(a, b), for real arguments:
/// three beta densities at one point, where the powers of the point cancel. No difference of large log-gammas.
inline double log_beta_binomial(double k, double m, double a, double b) {
    const double of_successes = k + a + b + 1, of_failures = m + a + b + 1;
    const double of_succeeded = k + a + 1, of_failed = m + b + 1;
    if (m > 1e8 * of_successes * of_successes) return log_beta_binomial_far(k, m, a, b);
    if (k > 1e8 * of_failures * of_failures) return log_beta_binomial_far(m, k, b, a);
    if (std::min(k, a) > 1e16 * of_failed * of_failed) return log_scarce(m, k, b, a);
    if (std::min(m, b) > 1e16 * of_succeeded * of_succeeded) return log_scarce(k, m, a, b);
    if (std::min(a, b) > 1e16 * (k + m + 1) * (k + m + 1))  // the probability is all but certain
        return numerics::log_beta_density(k + 1, m + 1, a / (a + b), b / (a + b)) - numerics::log1p_fn(k + m);
    const double total = (k + a) + (m + b), x = (k + a) / total, y = (m + b) / total;
    return numerics::log_beta_density(k + 1, m + 1, x, y) - numerics::log1p_fn(k + m) +
           numerics::log_beta_density(a, b, x, y) - numerics::log_beta_density(k + a, m + b, x, y);
}

/// n >= 0 trials, an integer, with a probability that is Beta(alpha, beta), both > 0. n = 0 is a point mass at 0.
struct BetaBinomial : SummedTails<BetaBinomial> {
    double n, alpha, beta;

    BetaBinomial(double n_, double alpha_, double beta_)
        : n(n_), alpha(beta_shape(alpha_)), beta(beta_shape(beta_)) {}
    Message check() const {
        if (const Message objection = check_range()) return objection;
        return n == std::floor(n) ? nullptr : "Error: n must be an integer";
    }
    Message check_range() const {
        if (!(n >= 0)) return "Error: n must be >= 0";
        if (!(alpha > 0)) return "Error: alpha must be > 0";
        if (!(beta > 0)) return "Error: beta must be > 0";
        return nullptr;
    }
    Support support() const { return {0, std::floor(n)}; }
    std::optional<double> point_mass() const { return n == 0 ? std::optional(0.0) : std::nullopt; }

    double log_density(double k) const { return log_beta_binomial(k, n - k, alpha, beta); }
    double mass_ratio(double k) const { return (n - k) / (k + 1) * ((k + alpha) / (n - k - 1 + beta)); }
    double up_to(double k) const {
        const auto tails = limiting(k);
        return tails ? tails->lower : SummedTails::up_to(k);
    }
    double above(double k) const {
        const auto tails = limiting(k);
        return tails ? tails->upper : SummedTails::above(k);
    }
    double pivot() const { return std::floor(n * (alpha / (alpha + beta))); }
    double start(double u) const { return std::floor(n * numerics::beta_lower_inverse(alpha, beta, u).x); }

  private:
    /// The tails where a limit of the distribution is as good as the distribution.
    std::optional<Tails> limiting(double k) const {
        const double all = 1e16 * (alpha + beta + 1), p = alpha / (alpha + beta), q = beta / (alpha + beta);
        if (std::min(k, n - k) > all) {  // k/n is as good as continuous, the beta variable itself
            const double x = k / n, y = (n - k) / n;
            return Tails{numerics::beta_lower(alpha, beta, x, y), numerics::beta_upper(alpha, beta, x, y)};
        }
        if (std::min(alpha, beta) > 1e16 * (n + 1) * (n + 1))  // the probability is all but certain
            return Tails{numerics::beta_upper(k + 1, n - k, p, q), numerics::beta_lower(k + 1, n - k, p, q)};
        if (scarce(k, alpha, beta)) return scarce_tails(k, alpha, beta);
        if (scarce(n - k, beta, alpha)) {
            const auto [lower, upper] = scarce_tails(n - k - 1, beta, alpha);
            return Tails{upper, lower};
        }
        return std::nullopt;
    }
    /// Successes of shape a so few beside failures of shape b that they are negative binomial, up to j and as far beyond
    /// as their tail counts.
    bool scarce(double j, double a, double b) const {
        const double reach = j + (a + 1) * (1 + 50 * (n / b));
        return std::min(n, b) > 1e16 * reach * reach;
    }
    Tails scarce_tails(double j, double a, double b) const {
        const double p = 1 / (1 + n / b), q = 1 / (1 + b / n);
        return {numerics::beta_lower(a, j + 1, p, q), numerics::beta_upper(a, j + 1, p, q)};
    }
};

/// Failures before the s-th success, s > 0 an integer, with a success probability that is Beta(a, b), a, b > 0. The s-th
/// success comes at trial k + s or later exactly when k + s trials have fewer than s + 1 of them: the upper tail of a whole
/// s is a beta-binomial sum of s terms. The tail falls as k^(-a - 1).
struct BetaNegBin : SummedTails<BetaNegBin> {
    static constexpr Tie kTie = Tie::stay;
    double s, a, b;

    BetaNegBin(double s_, double a_, double b_) : s(s_), a(beta_shape(a_)), b(beta_shape(b_)) {}
    Message check() const {
        if (const Message objection = check_range()) return objection;
        return s == std::floor(s) ? nullptr : "Error: \"s\" must be a positive integer";
    }
    Message check_range() const {
        if (!(s > 0)) return "Error: s must be >0";
        if (!(a > 0)) return "Error: a must be >0";
        if (!(b > 0)) return "Error: b must be > 0";
        return nullptr;
    }
    Support support() const { return kPositiveReals; }
    std::optional<double> point_mass() const { return std::nullopt; }

    double log_density(double k) const { return log_beta_binomial(k, s, b, a) - numerics::log1p_fn(k / s); }
    double mass_ratio(double k) const { return (s + k) / (k + 1) * ((b + k) / (a + s + b + k)); }
    double tail_exponent() const { return a; }
    double tail_scale() const { return (s + 1) * (b + 1) + (a + s + b) * (a + s + b); }
    /// The upper sum of an s that is not whole is the last resort.
    double pivot() const { return whole() ? std::floor(s * b / (a + 1)) : numerics::kInfinity; }
    bool whole() const { return s == std::floor(s); }

    double up_to(double k) const {
        const auto tails = limiting(k);
        return tails ? tails->lower : SummedTails::up_to(k);
    }
    double above(double k) const {
        if (const auto tails = limiting(k)) return tails->upper;
        return whole() ? BetaBinomial(k + s, a, b).up_to(s - 1) : SummedTails::above(k);
    }
    double start(double u) const {
        const auto [x, y] = numerics::beta_upper_inverse(a, b, u);
        return std::floor(s * (y / x));
    }

  private:
    /// The tails where a limit of the distribution is as good as the distribution. With a huge b, k/b is as good as continuous, the quotient of a gamma variable of shape s by one of shape a; with a
    /// huge s, k/s is the odds against success.
    std::optional<Tails> limiting(double k) const {
        constexpr double kHuge = 1e9;                     // for a relative error of 1/kHuge^2
        if (std::min(s, b) / (a + 1) > 1e32 * (a + 1)) {  // both: k is s b over a gamma variable
            const double x = s / std::max(k, 1.0) * b;
            return Tails{numerics::gamma_upper(a, x), numerics::gamma_lower(a, x)};
        }
        if (std::min(a, b) > 1e16 * (s + k + 1) * (s + k + 1)) {  // the probability is all but certain
            const double p = a / (a + b), q = b / (a + b);
            return Tails{numerics::beta_lower(s, k + 1, p, q), numerics::beta_upper(s, k + 1, p, q)};
        }
        const auto huge_beside = [&](double value, double root) {
            return std::min(value, k) / root > kHuge * kHuge * root;
        };
        if (huge_beside(b, s + a + 1)) {
            const double x = 1 / (1 + b / k), y = 1 / (1 + k / b);
            return Tails{numerics::beta_lower(s, a, x, y), numerics::beta_upper(s, a, x, y)};
        }
        if (huge_beside(s, a + b + 1)) {
            const double x = 1 / (1 + k / s), y = 1 / (1 + s / k);
            return Tails{numerics::beta_upper(a, b, x, y), numerics::beta_lower(a, b, x, y)};
        }
        return std::nullopt;
    }
};

/// Failures before the first success, with a success probability that is Beta(alpha, beta), both > 0.
/// 1 - F(k) = B(alpha, beta + k + 1)/B(alpha, beta).
struct BetaGeometric : SummedTails<BetaGeometric> {
    static constexpr Tie kTie = Tie::stay;
    double alpha, beta;

    BetaGeometric(double alpha_, double beta_) : alpha(beta_shape(alpha_)), beta(beta_shape(beta_)) {}
    Message check() const {
        if (!(alpha > 0)) return "Error: alpha must be >0";
        if (!(beta > 0)) return "Error: beta must be > 0";
        return nullptr;
    }
    Support support() const { return kPositiveReals; }
    std::optional<double> point_mass() const { return std::nullopt; }

    double log_survival(double k) const {
        if (beta / (alpha + 1) > 1e18 * (alpha + 1)) return -alpha * numerics::log1p_fn((k + 1) / beta);
        if (alpha < 1 && k + 1 >= 0.5 * beta) return log_gamma_ratio(beta + k + 1) - log_gamma_ratio(beta);
        return log_beta_binomial(0, k + 1, alpha, beta);
    }
    double survival(double k) const { return std::exp(log_survival(k)); }
    double cumulative(double k) const {
        const double log_upper = log_survival(k);
        return log_upper < -0.01 || (alpha < 1 && k + 1 >= 0.5 * beta) ||
                       beta / (alpha + 1) > 1e18 * (alpha + 1)
                   ? -numerics::expm1_fn(log_upper)
                   : up_to(k);
    }
    double log_density(double k) const { return log_survival(k - 1) + std::log(alpha / (alpha + beta + k)); }
    double mass_ratio(double k) const { return (beta + k) / (alpha + beta + k + 1); }
    double tail_exponent() const { return alpha; }

    /// 1 - F(k) is about (c/(c + k + 1))^alpha with this c; a Pareto tail.
    double start(double u) const {
        const double c = std::max(beta + 0.5 * (alpha - 1), 0.5 * beta);
        return std::floor(c * numerics::expm1_fn(-numerics::log1p_fn(-u) / alpha));
    }

  private:
    /// ln(Gamma(x)/Gamma(x + alpha)), relative to a small alpha.
    double log_gamma_ratio(double x) const {
        double sum = 0;
        for (; x < 8; x += 1) sum += numerics::log1p_fn(alpha / x);
        return sum + numerics::toms708::algdiv(alpha, x);
    }
};

}  // namespace pral
