// Binomial and negative binomial counts whose probability is itself a Beta(a, b): beta-binomial, beta-geometric,
// beta-negative-binomial.
#pragma once

#include "distributions/discrete/mass_sum.h"
#include "numerics/beta_quantile.h"
#include "numerics/beta_ratio.h"
#include "numerics/toms708.h"

namespace pral {

/// A shape of a beta variable as it is reckoned with: products of denormal ones would be nothing, sums of huge ones
/// infinite.
inline double beta_shape(double given) { return given > 0 ? std::clamp(given, 1e-270, 2e307) : given; }

/// ln of the beta-binomial mass of k successes and m failures, C(k + m, k) B(k + a, m + b)/B(a, b), for real arguments.
double log_beta_binomial(double k, double m, double a, double b);

/// P(Beta(a, b) <= Beta(c, d)), independent, and its complement, where a limit is as good: the probability that
/// G_a G_d <= G_b G_c for gamma variables of these shapes. One of a large shape is as good as its mean. Two such leave the
/// ratio of the others, a beta variable again; with four the logarithm of both sides' ratio is normal but for its skewness.
/// The tails of the mixtures below are such probabilities, since the k-th success among n comes at a beta variable.
std::optional<Tails> compared_betas(double a, double b, double c, double d);

/// The beta-binomial tails at 0 <= k < n of whole shapes: with a + b - 1 marked items among n unmarked ones, up to k of these
/// come before the a-th marked one unless the first k + a hold fewer than a. Ratios of exact integers, and 1/2 by
/// symmetry; none otherwise.
std::optional<Tails> counted_beta_binomial(double n, double k, double a, double b);

/// 1 - F(k) as a sum to where the limiting() tails of a distribution take over; none if they do not below `most`.
template <class D>
std::optional<double> sum_to_limit(const D& d, double k, double most) {
    for (double end = 0x1p58; end < most && end < 0x1p200; end *= 0x1p16) {
        if (!(end > k)) continue;
        if (const auto tails = d.limiting(end)) return sum_masses(d, k + 1, end) + tails->upper;
    }
    return std::nullopt;
}

/// n >= 0 trials, an integer, with a probability that is Beta(alpha, beta), both > 0. n = 0 is a point mass at 0.
struct BetaBinomial : SummedTails<BetaBinomial> {
    static constexpr bool kWholeTrials = true;
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
    double mass_ratio(double k) const { return (k + alpha) / (k + 1) * ((n - k) / (n - k - 1 + beta)); }
    std::optional<Tails> limiting(double k) const { return compared_betas(alpha, beta, k + 1, n - k); }
    std::optional<Tails> counted(double k) const { return counted_beta_binomial(n, k, alpha, beta); }
    double cumulative(double k) const {
        const auto exact = counted(k);
        return exact ? exact->lower : SummedTails::cumulative(k);
    }
    double survival(double k) const {
        const auto exact = counted(k);
        return exact ? exact->upper : SummedTails::survival(k);
    }
    double up_to(double k) const {
        if (const auto tails = limiting(k)) return tails->lower;
        return n < 0x1p53 || k <= middle() ? SummedTails::up_to(k) : mirrored().beyond(n - k - 1);
    }
    double above(double k) const {
        if (const auto tails = limiting(k)) return tails->upper;
        return n < 0x1p53 || k < middle() ? beyond(k) : mirrored().up_to(n - k - 1);
    }
    double pivot() const { return std::floor(n * (alpha / (alpha + beta))); }
    std::optional<Moments> moments() const {
        const Moments all = beta_binomial_moments(n, alpha, beta);
        return n == std::floor(n) && std::isfinite(all.kurtosis) ? std::optional(all) : std::nullopt;
    }
    double mode() const { return beta_binomial_mode(std::floor(n), alpha, beta); }
    double start(double u) const { return std::floor(n * numerics::beta_lower_inverse(alpha, beta, u).x); }

  private:
    /// Where integers are rounded successes are counted up to the middle and failures beyond it.
    double middle() const { return std::floor(0.5 * n); }
    BetaBinomial mirrored() const { return {n, beta, alpha}; }
    double beyond(double k) const {
        if (n < 0x1p53) return SummedTails::above(k);
        if (const auto sum = sum_to_limit(*this, k, middle())) return *sum;
        return sum_masses(*this, k + 1, middle()) + mirrored().up_to(n - middle() - 1);
    }
};

/// Failures before the s-th success, s > 0 an integer, with a success probability that is Beta(a, b), a, b > 0. The s-th
/// success comes at trial k + s or later exactly when k + s trials have fewer than s + 1 of them: the upper tail of a whole
/// s is a beta-binomial sum of s terms. Masses fall as k^(-a - 1); but a and k + 1 may change places in the upper tail,
/// which is P(G_s G_b > G_a G_(k+1)) for gamma variables of these shapes: where k is the larger, the sum over the masses of
/// BetaNegBin(s, k + 1, b) at a, a + 1, ... is the shorter one.
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
    double mass_ratio(double k) const { return (b + k) / (k + 1) * ((s + k) / (a + s + b + k)); }
    double tail_exponent() const { return a; }
    double tail_scale() const { return (s + 1) * (b + 1) + (a + s + b) * (a + s + b); }
    /// The upper sum of an s that is not whole is the last resort.
    double pivot() const { return whole() || s > 0x1p53 ? middle() : numerics::kInfinity; }
    double middle() const { return std::floor(s * (b / (a + 1))); }
    /// A Poisson count whose rate is a gamma variable times the odds of a beta variable.
    Moments moments() const {
        return poisson_mixture(of_product(gamma_moments(s, 1), beta_odds_moments(b, a)));
    }
    double moment_limit(Side side) const { return side == Side::upper ? a : HUGE_VAL; }
    double mode() const { return mode_before((b - 1) * ((s - 1) / (a + 1)), 0); }
    bool whole() const { return s == std::floor(s) && s <= 0x1p53; }

    std::optional<Tails> counted(double k) const {
        return whole() ? counted_beta_binomial(k + s, s - 1, a, b) : std::nullopt;
    }
    double cumulative(double k) const {
        const auto exact = counted(k);
        return exact ? exact->upper : SummedTails::cumulative(k);
    }
    double survival(double k) const {
        const auto exact = counted(k);
        return exact ? exact->lower : SummedTails::survival(k);
    }
    /// Far out, where no mass is left to begin a sum downwards with, the complement.
    double up_to(double k) const {
        constexpr double kLogNothing = -600;
        if (const auto tails = limiting(k)) return tails->lower;
        if (k > middle() && log_density(k) < kLogNothing) return 1 - above(k);
        return SummedTails::up_to(k);
    }
    double above(double k) const {
        if (const auto tails = limiting(k)) return tails->upper;
        if (whole() && (k + s) - s == k) return BetaBinomial(k + s, a, b).up_to(s - 1);
        if (k + 1 > a && std::max({s, a, b, k}) < kDual)
            return sum_masses(BetaNegBin(s, k + 1, b), a, numerics::kInfinity);
        const auto sum = sum_to_limit(*this, k, numerics::kInfinity);
        return sum ? *sum : SummedTails::above(k);
    }
    std::optional<Tails> limiting(double k) const { return compared_betas(s, k + 1, a, b); }
    static constexpr double kDual = 1e12;
    double start(double u) const {
        const auto [x, y] = numerics::beta_upper_inverse(a, b, u);
        return x > 0 ? std::floor(s * (y / x)) : numerics::kInfinity;
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
    double survival(double k) const {
        const auto exact = counted_beta_binomial(k + 1, 0, alpha, beta);
        return exact ? exact->lower : std::exp(log_survival(k));
    }
    double cumulative(double k) const {
        if (const auto exact = counted_beta_binomial(k + 1, 0, alpha, beta)) return exact->upper;
        const double log_upper = log_survival(k);
        return log_upper < -0.01 || (alpha < 1 && k + 1 >= 0.5 * beta) ||
                       beta / (alpha + 1) > 1e18 * (alpha + 1)
                   ? -numerics::expm1_fn(log_upper)
                   : up_to(k);
    }
    double log_density(double k) const { return log_survival(k - 1) + std::log(alpha / (alpha + beta + k)); }
    double mass_ratio(double k) const { return (beta + k) / (alpha + beta + k + 1); }
    double tail_exponent() const { return alpha; }
    Moments moments() const { return BetaNegBin(1, alpha, beta).moments(); }
    double moment_limit(Side side) const { return side == Side::upper ? alpha : HUGE_VAL; }
    double mode() const { return 0; }

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
