#include "numerics/noncentral_beta.h"

#include <algorithm>
#include <cmath>

#include "numerics/constants.h"
#include "numerics/elementary.h"
#include "numerics/extended_log.h"
#include "numerics/gamma.h"

namespace pral::numerics {

namespace {

using Scaled = BetaRatio::Scaled;

/// Beyond it the count is its mean at any precision that the exponents keep.
constexpr double kLargestMean = 1e26;
constexpr double kLargestParameter = 1e150;
/// Longest range of counts that is summed term by term; longer ones are smooth enough to be sampled.
constexpr double kLongestSweep = 2000;
constexpr double kNegligible = 1e-19;

double value_of(const Scaled& s) {
    const double half = std::exp(0.5 * std::min(s.exponent.hi, 1400.0));
    return s.factor * (1 + s.exponent.lo) * half * half;
}

double log_of(const Scaled& s) {
    return s.factor > 0 ? s.exponent.hi + (s.exponent.lo + std::log(s.factor)) : -kInfinity;
}

Scaled product(const Scaled& a, const Scaled& b) {
    return {a.factor * b.factor, add(a.exponent, b.exponent)};
}

/// e^-m m^j/Gamma(j + 1), j >= 0 (any real).
Scaled poisson_weight(double m, DoubleDouble j) {
    const DoubleDouble log_m = extended_log({m, 0});
    if (j.hi < 10) {
        return {1 / (j.hi < 1 ? gamma(1 + j.hi) : j.hi * gamma(j.hi)), add(multiply(j, log_m), {-m, 0})};
    }
    const DoubleDouble power = multiply(j, add(log_m, negated(extended_log(j))));
    return {std::exp(-lgamma_correction(j.hi)) * kInvSqrt2Pi / std::sqrt(j.hi), add(power, add(j, {-m, 0}))};
}

/// The larger root of (j + 1)(a + j) = m (a + b + j): where the terms of the density stop growing, m = x
/// times the mean of the count.
double density_peak(double a, double b, double m) {
    const double p = a + 1 - m, q = a - m * (a + b), root = std::sqrt(std::max(p * p - 4 * q, 0.0));
    const double j = p <= 0 ? 0.5 * (root - p) : -2 * q / (p + root);
    return j > 0 ? j : 0;
}

}  // namespace

NoncentralBeta::NoncentralBeta(double a, double b, double lambda)
    : a_(a > 0 ? std::min(a, kLargestParameter) : kNaN),
      b_(b > 0 ? std::min(b, kLargestParameter) : kNaN),
      mean_(lambda >= 0 ? 0.5 * std::min(lambda, kLargestParameter) : kNaN) {
    if (mean_ > kLargestMean) {
        a_ += mean_;
        mean_ = 0;
    }
}

BetaRatio::Scaled NoncentralBeta::term(Kind kind, double j, double x, double y) const {
    const double raised = a_ + j;
    const BetaRatio ratio(raised, b_);
    const Scaled of_x =
        kind == Kind::density ? ratio.scaled_density(x, y) : ratio.scaled_tail(kind == Kind::lower, x, y);
    // The count that belongs to the rounded parameter: both move together, and nothing is lost.
    return product(poisson_weight(mean_, two_sum(raised, -a_)), of_x);
}

/// The count with the largest term, within a fifth of the terms' width. The terms are log-concave in the count.
double NoncentralBeta::peak(Kind kind, double x, double y) const {
    if (kind == Kind::density) return density_peak(a_, b_, mean_ * x);
    const bool of_lower = kind == Kind::lower;
    double low = of_lower ? 0 : std::max(mean_ - 1, 0.0);
    double high = of_lower ? mean_ : std::max(density_peak(a_, b_, mean_), low);
    for (int i = 0; i < 200 && high - low > 1 + 0.2 * std::sqrt(low); ++i) {
        const double j = 0.5 * (low + high);
        const BetaRatio ratio(a_ + j, b_);
        const Scaled t = ratio.scaled_tail(of_lower, x, y), d = ratio.scaled_density(x, y);
        // The step from I_x(a + j, b) to I_x(a + j + 1, b), relative.
        const double change =
            d.factor / (t.factor * (a_ + j)) * std::exp(add(d.exponent, negated(t.exponent)).hi);
        const bool rising = (of_lower ? 1 - change : 1 + change) * mean_ > j + 1;
        (rising ? low : high) = j;
    }
    return 0.5 * (low + high);
}

/// Sum over the counts from `from` to `to`, downwards for the lower tail and upwards otherwise: in this
/// direction the tails grow, by terms that are all positive.
BetaRatio::Scaled NoncentralBeta::sweep(Kind kind, double from, double to, double x, double y) const {
    const bool down = kind == Kind::lower;
    double j = down ? to : from;
    const double last = down ? from : to;
    const BetaRatio ratio(a_ + j, b_);
    const Scaled weight = poisson_weight(mean_, {j, 0}), density = ratio.scaled_density(x, y);
    const Scaled tail = kind == Kind::density ? density : ratio.scaled_tail(down, x, y);
    // Everything in units of e^(exponents at the start): w the weight, t the tail, g x^(a+j) y^b/B(a+j, b).
    double w = weight.factor, t = tail.factor, sum = 0;
    double g = density.factor * std::exp(add(density.exponent, negated(tail.exponent)).hi);
    // Weight and tail may each leave the range of a double; their product stays near the largest term.
    constexpr double kBalanceAbove = 0x1p60, kBalance = 0x1p-60;
    for (;;) {
        const double term = w * t, aj = a_ + j;
        sum += term;
        if (j == last) break;
        if (down) {
            w *= j / mean_;
            j -= 1;
            const double lowered = a_ + j;  // aj - 1 would be 0 once a small a has been lost in aj
            g *= lowered / ((lowered + b_) * x);
            t += g / lowered;
        } else {
            j += 1;
            w *= mean_ / j;
            if (kind == Kind::upper) t += g / aj;
            g *= (aj + b_) * x / aj;
            if (kind == Kind::density) t = g;
        }
        for (; t > kBalanceAbove && t < kInfinity; w /= kBalance) t *= kBalance, g *= kBalance;
        for (; w > kBalanceAbove && w < kInfinity; w *= kBalance) t /= kBalance, g /= kBalance;
        if (w * t < term && w * t < kNegligible * sum) break;
    }
    return {sum, add(weight.exponent, tail.exponent)};
}

/// The sum over all counts as the integral over the count by the trapezoidal rule: the terms are close to a
/// normal density of width sqrt(centre) or somewhat less, for which a step of 0.4 widths leaves 1e-20.
BetaRatio::Scaled NoncentralBeta::sampled(Kind kind, double centre, double reach, double x, double y) const {
    // Whole, so that the points are where the rule has them although the count has few bits left below 1.
    const double step = std::floor(0.4 * std::sqrt(centre));
    const Scaled middle = term(kind, centre, x, y);
    double sum = middle.factor;
    for (const double direction : {-1.0, 1.0}) {
        for (double distance = step; distance < reach; distance += step) {
            const Scaled t = term(kind, centre + direction * distance, x, y);
            const DoubleDouble relative = add(t.exponent, negated(middle.exponent));
            const double value = t.factor * std::exp(relative.hi) * (1 + relative.lo);
            sum += value;
            if (value < kNegligible * sum) break;
        }
    }
    return {sum * step, middle.exponent};
}

/// The last count that matters for the lower tail: with a small x or mean the terms fall so fast that a longer sweep would
/// leave the range of numbers.
double NoncentralBeta::last_of_lower(double centre, double above, double x) const {
    double last = centre, bound = 1;
    while (last < centre + above) {
        bound *= mean_ / (last + 1) * std::min(1.0, x * (a_ + b_ + last) / (a_ + last + 1));
        if (bound < 0.01 * kNegligible) break;
        last += 1;
    }
    return last;
}

BetaRatio::Scaled NoncentralBeta::mixture(Kind kind, double x, double y) const {
    // Around the peak the terms fall at least as fast as Poisson probabilities with that mean.
    const double centre = std::floor(peak(kind, x, y));
    const double below = 10 * std::sqrt(centre) + 2, above = 16 + std::sqrt(256 + 100 * centre);
    if (below + above > kLongestSweep) return sampled(kind, centre, above, x, y);
    const double last = kind == Kind::lower ? last_of_lower(centre, above, x) : std::floor(centre + above);
    return sweep(kind, std::max(std::floor(centre - below), 0.0), last, x, y);
}

namespace {

/// The value at an end or for NaN, or else `inside`.
template <typename F>
double with_ends(double all, double x, double y, double at_zero, double at_one, F inside) {
    if (std::isnan(all + x + y)) return kNaN;
    if (x <= 0) return at_zero;
    if (y <= 0) return at_one;
    return inside();
}

}  // namespace

double NoncentralBeta::lower(double x, double y) const {
    if (mean_ == 0) return beta_lower(a_, b_, x, y);
    return with_ends(a_ + b_ + mean_, x, y, 0, 1,
                     [&] { return std::min(value_of(mixture(Kind::lower, x, y)), 1.0); });
}

double NoncentralBeta::upper(double x, double y) const {
    if (mean_ == 0) return beta_upper(a_, b_, x, y);
    return with_ends(a_ + b_ + mean_, x, y, 1, 0,
                     [&] { return std::min(value_of(mixture(Kind::upper, x, y)), 1.0); });
}

double NoncentralBeta::log_lower(double x, double y) const {
    if (mean_ == 0) return log_beta_lower(a_, b_, x, y);
    return with_ends(a_ + b_ + mean_, x, y, -kInfinity, 0, [&] {
        const double value = lower(x, y);
        if (value > 0.5) return log1p_fn(-upper(x, y));
        return std::min(log_of(mixture(Kind::lower, x, y)), 0.0);
    });
}

double NoncentralBeta::log_upper(double x, double y) const {
    if (mean_ == 0) return log_beta_upper(a_, b_, x, y);
    return with_ends(a_ + b_ + mean_, x, y, 0, -kInfinity, [&] {
        const double value = upper(x, y);
        if (value > 0.5) return log1p_fn(-lower(x, y));
        return std::min(log_of(mixture(Kind::upper, x, y)), 0.0);
    });
}

double NoncentralBeta::log_density(double x, double y) const {
    if (mean_ == 0) return log_beta_density(a_, b_, x, y);
    // At 0 the count 0 alone counts; at 1 every count has the density's limit of b.
    if (x <= 0) return log_beta_density(a_, b_, x, y) - (a_ < 1 ? 0 : mean_);
    if (y <= 0 && b_ == 1) return std::log(a_ + mean_);
    return with_ends(a_ + b_ + mean_, x, y, 0, log_beta_density(a_, b_, x, y), [&] {
        const Scaled density = mixture(Kind::density, x, y);
        const double log_x = x <= y ? std::log(x) : log1p_fn(-y), log_y = x <= y ? log1p_fn(-x) : std::log(y);
        const DoubleDouble e = add(density.exponent, two_sum(-log_x, -log_y));
        return e.hi + (e.lo + std::log(density.factor));
    });
}

}  // namespace pral::numerics
