#include "numerics/gamma_ratio.h"

#include <algorithm>
#include <cfloat>
#include <cmath>

#include "numerics/coefficients.h"
#include "numerics/constants.h"
#include "numerics/elementary.h"
#include "numerics/extended_log.h"
#include "numerics/gamma.h"
#include "numerics/normal.h"
#include "numerics/polynomial.h"

namespace pral::numerics {

namespace {

using namespace coefficients;

/// From here on Stirling's formula (its remainder series starts at 10) and Temme's expansion (36 terms) are exact to
/// the last bit.
constexpr double kLargeShape = 12;

/// One of the two ratios, whichever the arguments give without cancellation.
struct Tail {
    bool upper;
    Power probability;
    double rate;  ///< |d ln probability / d ln x|
};

DoubleDouble times(double a, DoubleDouble b) {
    if (std::fabs(b.hi) > 0x1p900 || std::fabs(a) > 0x1p900)
        return {a * b.hi, 0};  // no room for exact products
    const DoubleDouble product = two_product(a, b.hi);
    return {product.hi, product.lo + a * b.lo};
}

/// -a (d - ln(1 + d)), d = (x - a)/a.
DoubleDouble minus_deviance(double a, DoubleDouble deviance) { return times(-a, deviance); }

/// x^a e^-x / Gamma(1 + a).
Power large_shape_prefix(double a, DoubleDouble exponent) {
    const double remainder = a < 1e15 ? lgamma_correction(a) : 0;
    return {std::exp(-remainder) * kInvSqrt2Pi / std::sqrt(a), exponent};
}

Power small_shape_prefix(double a, double x) {
    const DoubleDouble logarithm = times(a, extended_log({x, 0}));
    const DoubleDouble exponent = two_sum(logarithm.hi, -x);
    const double gamma_1a = a < 1 ? gamma_fn(1 + a) : a * gamma_fn(a);
    return {1 / gamma_1a, {exponent.hi, exponent.lo + logarithm.lo}};
}

/// The sum over n of x^n / ((a + 1) ... (a + n)), DLMF 8.11.4: within 100 terms wherever it is used.
double ascending_sum(double a, double x) {
    constexpr int kMaxTerms = 400;
    double term = 1, sum = 1;
    for (int n = 1; n <= kMaxTerms && term > 0x1p-55 * sum; ++n) {
        term *= x / (a + n);
        sum += term;
    }
    return sum;
}

/// Q over x^a e^-x / Gamma(a): the continued fraction DLMF 8.9.2 from its end, which is replaced by the beginning of its
/// asymptotic series, t_n = n + sqrt(n x) + (x - a)/2 - 3/4 + O(n^-1/2). The number of steps was found by trial for
/// x > 1: the truncation error stays below 1e-17.
double descending_fraction(double a, double x) {
    const int steps = 13 + static_cast<int>(66 / std::max(x, 0.1));
    double t = steps + std::sqrt(steps * x) + 0.5 * (x - a) - 0.75;
    for (int k = steps - 1; k >= 1; --k) t = (x - a) + (2 * k - 1) - k * (k - a) / t;
    return 1 / t;
}

Tail lower_by_series(double a, double x, Power prefix) {
    const double sum = ascending_sum(a, x);
    return {false, {prefix.factor * sum, prefix.exponent}, a / sum};
}

Tail upper_by_fraction(double a, double x, Power prefix) {
    const double fraction = descending_fraction(a, x);
    return {true, {prefix.factor * a * fraction, prefix.exponent}, 1 / fraction};
}

/// Q for a <= 1 and x <= 1, where P may be next to 1: 1 - x^a/Gamma(1+a) and the rest of the alternating series for
/// P, both of which vanish with a.
Tail upper_for_tiny_shape(double a, double x) {
    const double e = expm1_fn(a * std::log(x) - lgamma_1p(a));
    double term = 1, sum = 0;
    for (int n = 1; n <= 40; ++n) {
        term *= -x / n;
        const double next = term / (a + n);
        sum += next;
        if (std::fabs(next) <= 0x1p-56 * std::fabs(sum)) break;
    }
    const double upper = -(e + (1 + e) * a * sum);
    return {true, {upper, {0, 0}}, a * (1 + e) * std::exp(-x) / upper};
}

/// e^(z^2) erfc(z), z >= 1.
double scaled_erfc(double z) {
    using namespace cephes;
    if (z > 1e9)
        return 2 * kInvSqrt2Pi / (std::sqrt(2.0) * z);  // the powers of z would leave the range of a double
    return z < 8 ? horner(erfc_P, z) / horner(erfc_Q, z) : horner(erfc_R, z) / horner(erfc_S, z);
}

/// The sum S in Q = erfc(eta sqrt(a/2))/2 + e^(-a eta^2/2)/sqrt(2 pi a) S (Temme 1979), and Gamma(a) over its Stirling
/// formula. S' - a eta S = a (1 - f/g), f = eta/(lambda - 1), gives the recurrence for its Taylor coefficients over
/// 1/g, and g itself (Gil, Segura, Temme 2012, section 3.4).
struct TemmeSum {
    double sum, scaled_gamma;
};

template <int kTerms>
TemmeSum temme_sum(double a, double eta) {
    const double w = 1 / a;
    double even = 0, odd = 0, sum = 0;  // coefficients n + 1 and n
    for (int n = kTerms; n >= 1; --n) {
        const double next = temme::eta_over_mu[n] + (n + 1) * even * w;
        even = odd;
        odd = next;
        sum = sum * eta + next;
    }
    const double g = 1 + even * w;
    return {sum / g, g};
}

/// |eta| <= 1: terms needed for 1e-17 by the size of a.
TemmeSum temme_sum_for(double a, double eta) {
    if (a < 24) return temme_sum<36>(a, eta);
    if (std::fabs(eta) > 0.4) return temme_sum<29>(a, eta);
    return temme_sum<20>(a, eta);
}

Tail by_uniform_expansion(double a, double x, DoubleDouble deviance) {
    const bool upper = x > a;
    const double eta = std::sqrt(2 * deviance.hi);
    const TemmeSum temme = temme_sum_for(a, upper ? eta : -eta);
    const double unit = kInvSqrt2Pi / std::sqrt(a);
    const double rest = upper ? unit * temme.sum : -unit * temme.sum;
    const double density = std::sqrt(a) * kInvSqrt2Pi / temme.scaled_gamma;  // x f(x) over the exponential
    const DoubleDouble exponent = minus_deviance(a, deviance);
    const double z = std::sqrt(-exponent.hi);
    if (z < 1) {
        const double erf_z = z * horner(cephes::erf_T, -exponent.hi) / horner(cephes::erf_U, -exponent.hi);
        const double exponential = std::exp(exponent.hi);
        const double probability = 0.5 * (1 - erf_z) + exponential * rest;
        return {upper, {probability, {0, 0}}, density * exponential / probability};
    }
    const double factor = 0.5 * scaled_erfc(z) + rest;
    return {upper, {factor, exponent}, density / factor};
}

Tail tail_of_small_shape(double a, double x) {
    if (a < 1) {
        if (x > 1) return upper_by_fraction(a, x, gamma_prefix(a, x));
        if (a * std::log(x) > -0.7) return upper_for_tiny_shape(a, x);
        return lower_by_series(a, x, gamma_prefix(a, x));
    }
    // The upper tail is still above 0.13 here, and the series is cheaper than the fraction.
    if (x < a + 1 / a) return lower_by_series(a, x, gamma_prefix(a, x));
    return upper_by_fraction(a, x, gamma_prefix(a, x));
}

/// a > 0 and x > 0, both finite.
Tail gamma_tail(double a, double x) {
    if (a < kLargeShape) return tail_of_small_shape(a, x);
    const DoubleDouble deviance = deviance_double_double(x, a);
    if (deviance.hi <= 0.5) return by_uniform_expansion(a, x, deviance);
    const Power prefix = large_shape_prefix(a, minus_deviance(a, deviance));
    return x < a ? lower_by_series(a, x, prefix) : upper_by_fraction(a, x, prefix);
}

/// P or Q at the ends of the ranges; NaN inside them.
double at_ends(double a, double x, bool upper) {
    if (std::isnan(a) || std::isnan(x) || a < 0) return kNaN;
    if (x < 0) return upper;
    if (x >= kInfinity || a == 0) return !upper;
    return x == 0 || a >= kInfinity ? upper : kNaN;
}

bool is_inside(double a, double x) { return a > 0 && x > 0 && a < kInfinity && x < kInfinity; }

/// The tail asked for, at the point: its logarithm less a given one, and its derivatives with respect to u = ln x.
struct LogTailAt {
    double difference, rate, curvature, third;
};

LogTailAt log_tail_at(double a, double x, bool upper, DoubleDouble log_target) {
    const Tail tail = gamma_tail(a, x);
    double difference, rate = tail.rate;
    if (tail.upper == upper) {
        const DoubleDouble e = tail.probability.exponent;
        difference = (e.hi - log_target.hi) + (e.lo - log_target.lo + std::log(tail.probability.factor));
    } else {
        const double other = tail.probability.value();
        difference = log1p_fn(-other) - log_target.hi;
        rate *= other / (1 - other);
    }
    if (upper) rate = -rate;
    const double slope = a - x - rate;  // d ln |rate| / du
    const double curvature = rate * slope;
    return {difference, rate, curvature, curvature * slope - rate * (x + curvature)};
}

/// The root of difference = 0 by the inverse series through the third derivative, or a plain Newton step where the
/// series does not help; and what the step leaves over, in ln x.
struct Step {
    double change, error;
};

Step step_to_root(LogTailAt at) {
    const double y = -at.difference / at.rate;
    const double c2 = at.curvature / (2 * at.rate), c3 = at.third / (6 * at.rate);
    const double second = -c2 * y, third = (2 * c2 * c2 - c3) * y * y;
    if (!(std::fabs(second) < 0.25 && std::fabs(third) < 0.1)) return {y, HUGE_VAL};
    const double scale = std::max(std::fabs(second), std::sqrt(std::fabs(third)));
    return {y * (1 + second + third), 8 * std::fabs(y) * scale * scale * scale};
}

/// lambda with eta^2/2 = lambda - 1 - ln lambda, lambda - 1 of the sign of eta: a start value, to some 1e-4.
double lambda_of_eta(double eta) {
    if (std::fabs(eta) < 1) {
        double sum = 0;
        for (int k = 7; k >= 0; --k) sum = sum * eta + temme::lambda_minus_one[k];
        return 1 + eta * sum;
    }
    const double s = 1 + 0.5 * eta * eta;
    double lambda = s + std::log(s + std::log(s + std::log(s)));
    if (eta < 0) {
        const double w = std::exp(-s);
        lambda = w * (1 + w * (1 + w * (1.5 + w * (8.0 / 3))));
    }
    lambda -= (lambda - std::log(lambda) - s) * lambda / (lambda - 1);
    return lambda;
}

/// Start values for the x whose smaller tail is t. Near the centre: the normal deviate over sqrt(a), and the first terms in
/// 1/a that turn it into eta (Temme 1992; Gil, Segura, Temme 2012, section 4).
double start_by_uniform_expansion(double a, double deviate) {
    const double eta = deviate / std::sqrt(a), w = 1 / a;
    const double first =
        std::fabs(eta) < 1e-3 ? -1.0 / 3 + eta / 36 : std::log(eta / (lambda_of_eta(eta) - 1)) / eta;
    if (std::fabs(eta) > 1.3) return a * lambda_of_eta(eta + first * w);
    const double second = -7.0 / 405 + eta * (-7.0 / 2592 + eta * (533.0 / 204120));
    const double third = 449.0 / 102060 - eta * (63149.0 / 20995200);
    return a * lambda_of_eta(eta + w * (first + w * (second + w * third)));
}

/// Small x: P = x^a / Gamma(1+a) (1 - a x/(1+a) + ...), solved for x; r = (P Gamma(1+a))^(1/a).
double start_by_power(double a, double r) {
    const double c = r / (a + 1);
    return r * (1 + c * (1 + c * (3 * a + 5) / (2 * (a + 2))));
}

/// a < 1, large x: Q = x^(a-1) e^-x / Gamma(a) (1 + (a-1)/x + ...).
double start_by_exponential(double a, double log_q) {
    const double y = -(log_q + log_gamma(a));
    if (y > 2) return y - (1 - a) * std::log(y + (1 - a) * (1 - std::log(y)));
    return std::max(0.3, y);
}

double inverse_start(double a, double t, double log_t, bool upper) {
    const double deviate = a < 1 ? 0 : upper ? -normal_quantile(t) : normal_quantile(t);
    if (a >= kLargeShape || (a >= 1 && deviate * deviate < 1.5 * a))
        return start_by_uniform_expansion(a, deviate);
    const double log_lower = upper ? log1p_fn(-t) : log_t;
    const double log_r = (log_lower + (a < 0.5 ? lgamma_1p(a) : log_gamma(1 + a))) / a;
    if (log_r < std::log(0.3 * (1 + a)) || (a < 0.3 && log_lower < -0.1 && log_r < 0))
        return start_by_power(a, std::exp(log_r));
    return upper && a < 1 ? start_by_exponential(a, log_t)
                          : start_by_uniform_expansion(a, a < 1 ? normal_quantile(t) : deviate);
}

/// The x whose smaller tail is t, 0 < t <= 1/2. ln of either tail is concave in ln x: Newton's method converges
/// from wherever it starts, and one or two steps of fourth order do from where it starts here.
double inverse_of_tail(double a, double t, bool upper) {
    constexpr int kMaxSteps = 60;
    const DoubleDouble log_t = extended_log({t, 0});
    double x = inverse_start(a, t, log_t.hi, upper);
    for (int i = 0; i < kMaxSteps; ++i) {
        if (!(x > 0)) return 0;
        if (x >= kInfinity) return kInfinity;
        const Step step = step_to_root(log_tail_at(a, x, upper, log_t));
        if (std::isnan(step.change)) return x;
        const double previous = x;
        x += x * expm1_fn(std::clamp(step.change, -kExpLimit, 50.0));
        if (step.error < 0x1p-54 || x == previous) break;
    }
    return x;
}

double inverse(double a, double probability, bool upper) {
    if (!(a >= 0) || std::isnan(probability)) return kNaN;
    if (probability <= 0) return upper ? kInfinity : 0;
    if (probability >= 1) return upper ? 0 : kInfinity;
    if (a == 0) return 0;
    if (a >= kInfinity) return kInfinity;
    if (probability > 0.5) return inverse_of_tail(a, 1 - probability, !upper);  // exact
    return inverse_of_tail(a, probability, upper);
}

double ratio(double a, double x, bool upper) {
    if (!is_inside(a, x)) return at_ends(a, x, upper);
    const Tail tail = gamma_tail(a, x);
    const double probability = tail.probability.value();
    return tail.upper == upper ? probability : 1 - probability;
}

double log_ratio(double a, double x, bool upper) {
    if (!is_inside(a, x)) {
        const double probability = at_ends(a, x, upper);
        return probability == 0 ? -kInfinity : std::log(probability);
    }
    const Tail tail = gamma_tail(a, x);
    return tail.upper == upper ? tail.probability.log() : log1p_fn(-tail.probability.value());
}

}  // namespace

double Power::value() const { return scaled_exp(factor, exponent); }

double Power::log() const {
    if (!(factor > 0)) return factor == 0 ? -kInfinity : kNaN;
    if (exponent.hi < -kInfinity) return -kInfinity;
    if (factor < 2 && factor > 0.5) return exponent.hi + (exponent.lo + std::log(factor));
    const DoubleDouble logarithm = extended_log({factor, 0});  // may all but cancel the exponent
    const DoubleDouble sum = two_sum(exponent.hi, logarithm.hi);
    return finite_or_limit(sum.hi + (sum.lo + exponent.lo + logarithm.lo));
}

Power gamma_prefix(double a, double x) {
    if (a < 10) return small_shape_prefix(a, x);
    return large_shape_prefix(a, minus_deviance(a, deviance_double_double(x, a)));
}

Power gamma_tail_power(double a, double x, bool upper) {
    const Tail tail = gamma_tail(a, x);
    if (tail.upper == upper) return tail.probability;
    return {1 - tail.probability.value(), {0, 0}};
}

double gamma_lower(double a, double x) { return ratio(a, x, false); }
double gamma_upper(double a, double x) { return ratio(a, x, true); }
double log_gamma_lower(double a, double x) { return log_ratio(a, x, false); }
double log_gamma_upper(double a, double x) { return log_ratio(a, x, true); }

double gamma_density(double a, double x) {
    if (!is_inside(a, x))
        return x == 0 && a == 1 ? 1 : x == 0 && a < 1 ? kInfinity : std::isnan(a) || std::isnan(x) ? kNaN : 0;
    if (!(a / x <= kInfinity)) return std::exp(log_gamma_density(a, x));
    const Power prefix = gamma_prefix(a, x);
    return scaled_exp(prefix.factor * (a / x), prefix.exponent);
}

double log_gamma_density(double a, double x) {
    if (!is_inside(a, x)) {
        const double density = gamma_density(a, x);
        return density == 0 ? -kInfinity : density == 1 ? 0 : density;
    }
    const Power prefix = gamma_prefix(a, x);
    const double factor = prefix.factor * (a / x);
    if (factor > DBL_MIN && factor <= DBL_MAX) return Power{factor, prefix.exponent}.log();
    if (prefix.exponent.hi < -kInfinity) return -kInfinity;
    const DoubleDouble log_rate = add(extended_log({a, 0}), negated(extended_log({x, 0})));
    return Power{prefix.factor, add(prefix.exponent, log_rate)}.log();
}

double gamma_lower_inverse(double a, double p) { return inverse(a, p, false); }
double gamma_upper_inverse(double a, double q) { return inverse(a, q, true); }

}  // namespace pral::numerics
