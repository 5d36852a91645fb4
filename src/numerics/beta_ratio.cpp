#include "numerics/beta_ratio.h"

#include <algorithm>
#include <cmath>

#include "numerics/constants.h"
#include "numerics/elementary.h"
#include "numerics/extended_log.h"
#include "numerics/gamma.h"
#include "numerics/polynomial.h"
#include "numerics/toms708.h"

namespace pral::numerics {

namespace {

/// Above it the Stirling correction series has full accuracy.
constexpr double kStirlingFrom = 8;
/// Largest B x for which the power series is used: beyond it the terms cancel.
constexpr double kSeriesLimit = 0.5;
constexpr double kTolerance = 0x1p-55;
/// Products of larger shapes overflow. Two shapes above the second number are as good as any others of their ratio, and so
/// are two below the third.
constexpr double kLargestShape = 0x1p500, kStepShape = 0x1p200, kSmallestShape = 0x1p-800;
constexpr double kDenormalNear = 0x1p-1000;

/// The coefficients B_2k/(2k (2k - 1)) of the Stirling series (DLMF 5.11.1), highest first.
constexpr double kStirlingSeries[] = {-3617.0 / 122400, 1.0 / 156,  -691.0 / 360360, 1.0 / 1188,
                                      -1.0 / 1680,      1.0 / 1260, -1.0 / 360,      1.0 / 12};

/// ln Gamma(z) - ((z - 1/2) ln z - z + ln sqrt(2 pi)), z >= 8.
double stirling_remainder(double z) { return horner(kStirlingSeries, 1 / (z * z)) / z; }

/// I_x(a, b) B(a, b)/(x^a y^b), lambda = a - (a + b) x >= 0, by the continued fraction of TOMS 708. Steed's
/// forward evaluation: with b < 1 the recurrences for numerator and denominator lose n^2 units in n steps.
double continued_fraction(double a, double b, double x, double y, double lambda) {
    constexpr int kMaxTerms = 10000;
    double d = (1 + 1 / a) / (1 + lambda), change = d, sum = d;
    double inverse = 1 / (a + 1);
    for (int n = 1; n < kMaxTerms; ++n) {
        const double w = n * (b - n) * x * inverse;
        const double alpha = w * x * inverse * (a + n - 1) * (a + b + n - 1);
        inverse = 1 / (a + 2 * n + 1);
        const double beta = n + w + (a + n) * inverse * (1 + lambda + n * (1 + y));
        d = 1 / (beta + alpha * d);
        change *= beta * d - 1;
        sum += change;
        if (!(std::fabs(change) > kTolerance * sum)) break;
    }
    return sum;
}

/// Gamma(1 + z), 0 < z < 2 kStirlingFrom.
double gamma_1p(double z) { return z < 1 ? gamma(1 + z) : z * gamma(z); }

/// ln(1 - z) in doubled precision relative to itself, where a z next to 0 would leave few digits of 1 - z.
DoubleDouble log_complement(DoubleDouble z) {
    constexpr double kFewDigits = 0x1p-35;
    if (z.hi > kFewDigits) return extended_log(add({1, 0}, negated(z)));
    const double rest = z.hi * z.hi * (0.5 + z.hi * (1.0 / 3));
    return negated(add(z, {rest, 0}));
}

double power_of_two_near(double v) { return std::ldexp(1, std::ilogb(v)); }

/// ln(part/sum), sum = part + other.
DoubleDouble log_share(double part, double other, DoubleDouble sum, DoubleDouble log_sum) {
    return part > other ? log_complement(divide({other, 0}, sum))
                        : add(extended_log({part, 0}), negated(log_sum));
}

double scaled_exponential(double factor, DoubleDouble exponent) {
    const double e = std::min(exponent.hi, 709.0);
    // In two halves, so that a factor above 1 can bring a result back from the denormals.
    const double half = std::exp(0.5 * e);
    return factor * (1 + exponent.lo) * half * std::exp(e - 0.5 * e);
}

}  // namespace

struct BetaRatio::Arguments {
    double x, y, lambda;
    DoubleDouble log_x, log_y;

    Arguments(double a, double b, double given_x, double given_y) : x(given_x), y(given_y) {
        const double smaller = std::min(x, y);
        const DoubleDouble larger = two_sum(1, -smaller);
        const DoubleDouble log_smaller = extended_log({smaller, 0}),
                           log_larger = log_complement({smaller, 0});
        const DoubleDouble ax = two_product(a, smaller), bx = two_product(b, smaller), total = add(ax, bx);
        if (x <= y) {
            y = larger.hi;
            log_x = log_smaller, log_y = log_larger;
            lambda = add({a, 0}, negated(total)).hi;
        } else {
            x = larger.hi;
            log_x = log_larger, log_y = log_smaller;
            lambda = add(total, {-b, 0}).hi;
        }
    }
};

/// Beside a shape b above all others, b x is a gamma variable and nothing else of x matters: b can be smaller by a factor
/// and x larger.
void BetaRatio::limit_shapes() {
    const double smaller = std::min(a_, b_), larger = std::max(a_, b_);
    if (!(smaller > 0)) return;
    if (larger < kSmallestShape) {
        given_a_ = a_ *= 0x1p600;  // only their ratio is left in the tails
        given_b_ = b_ *= 0x1p600;
        log_enlargement_ = 600 * kLn2;
    }
    a_ = std::max(a_, kDenormalNear);
    b_ = std::max(b_, kDenormalNear);
    if (!(larger > kLargestShape)) return;
    if (smaller > kStepShape) {
        common_ = power_of_two_near(std::min(smaller, 0x1p1022)) / kStepShape;
        given_a_ = a_ /= common_;
        given_b_ = b_ /= common_;
    }
    const auto reduce = [](double& shape, double& stretch) {
        if (!(shape > kLargestShape)) return;
        stretch = power_of_two_near(std::min(shape, 0x1p1022)) / kLargestShape;
        shape /= stretch;
    };
    reduce(a_, stretch_y_);
    reduce(b_, stretch_x_);
}

BetaRatio::BetaRatio(double a, double b)
    : given_a_(std::min(a, kInfinity)), given_b_(std::min(b, kInfinity)), a_(given_a_), b_(given_b_) {
    limit_shapes();
    const bool a_large = a_ >= kStirlingFrom, b_large = b_ >= kStirlingFrom;
    const DoubleDouble sum = two_sum(a_, b_);
    if (!(a_ > 0 && b_ > 0)) {
        density_factor_ = 0;
        return;
    }
    if (!a_large && !b_large) {
        density_factor_ =
            a_ / sum.hi * b_ * gamma_1p(sum.hi) / (gamma_1p(a_) * gamma_1p(b_)) * (1 - sum.lo / sum.hi);
        return;
    }
    const DoubleDouble log_sum = extended_log(sum);
    const double of_sum = stirling_remainder(sum.hi);
    if (a_large && b_large) {
        asymptotic_factor_ = std::exp(of_sum - (stirling_remainder(a_) + stirling_remainder(b_)));
        density_factor_ = asymptotic_factor_ * kInvSqrt2Pi * std::sqrt(std::min(a_, b_)) *
                          std::sqrt(std::max(a_, b_) / sum.hi);
        shift_a_ = log_share(a_, b_, sum, log_sum);
        shift_b_ = log_share(b_, a_, sum, log_sum);
        return;
    }
    // Gamma(small) as it stands; Stirling for the large one and the sum.
    const double large = std::max(a_, b_), small = std::min(a_, b_);
    density_factor_ =
        std::exp(of_sum - stirling_remainder(large)) * std::sqrt(large / sum.hi) * small / gamma_1p(small);
    const DoubleDouble of_small = add({1, 0}, negated(log_sum));
    const DoubleDouble of_large = log_share(large, small, sum, log_sum);
    shift_a_ = a_large ? of_large : of_small;
    shift_b_ = a_large ? of_small : of_large;
}

BetaRatio::Arguments BetaRatio::arguments(double x, double y) const {
    if (stretch_x_ > 1) x = std::min(x * stretch_x_, 0.5), y = 1 - x;
    if (stretch_y_ > 1) y = std::min(y * stretch_y_, 0.5), x = 1 - y;
    return {a_, b_, x, y};
}

DoubleDouble BetaRatio::density_exponent(const Arguments& at) const {
    const double smaller = std::min(a_, b_), r = at.lambda / smaller;
    if (smaller >= kStirlingFrom && std::fabs(r) < 0.1) {
        // Next to the centre the two parts below cancel; these add up. The others keep more digits where it is large.
        const double f = a_ * toms708::rlog1(-at.lambda / a_) + b_ * toms708::rlog1(at.lambda / b_);
        if (f < std::max(1.0, 1e-15 * smaller)) return {-f, 0};
    }
    return add(multiply({a_, 0}, add(at.log_x, negated(shift_a_))),
               multiply({b_, 0}, add(at.log_y, negated(shift_b_))));
}

/// 1 - x^a/(a B(a, b)) (1 + sum), for a small a: everything in it is of the order of a.
double BetaRatio::series_complement(double a, double b, double log_x, double sum) const {
    // ln(Gamma(a + b)/Gamma(b)) by its recurrence: no term loses digits relative to a.
    double log_ratio = 0;
    while (b < kStirlingFrom) {
        log_ratio -= log1p_fn(a / b);
        b += 1;
    }
    log_ratio -= toms708::algdiv(a, b);
    const double g = a * log_x + (log_ratio - lgamma_1p(a));
    return -(expm1_fn(g) * (1 + sum) + sum);
}

BetaRatio::Tail BetaRatio::series(bool lower, const Arguments& at) const {
    const double a = lower ? a_ : b_, b = lower ? b_ : a_, x = lower ? at.x : at.y;
    const DoubleDouble& log_x = lower ? at.log_x : at.log_y;
    const DoubleDouble& shift_a = lower ? shift_a_ : shift_b_;
    const DoubleDouble& shift_b = lower ? shift_b_ : shift_a_;
    const double sum = toms708::power_series_sum(a, b, x, kTolerance * std::min(a, 1.0));
    Tail result;
    result.is_lower = lower;
    result.factor = density_factor_ / a * (1 + sum);
    result.exponent = add(multiply({a, 0}, add(log_x, negated(shift_a))), multiply({-b, 0}, shift_b));
    result.complement = -1;
    if (a < 0.7 && result.factor * std::exp(result.exponent.hi) > 0.7) {
        result.complement = series_complement(a, b, log_x.hi, sum);
    }
    return result;
}

BetaRatio::Tail BetaRatio::tail(const Arguments& at) const {
    const bool lower = at.lambda >= 0;
    const double a = lower ? a_ : b_, b = lower ? b_ : a_;
    const double x = lower ? at.x : at.y, y = lower ? at.y : at.x, lambda = std::fabs(at.lambda);
    if (x <= 0.7 && b * x <= kSeriesLimit) return series(lower, at);
    if (y <= 0.7 && a * y <= kSeriesLimit) return series(!lower, at);
    Tail result;
    result.is_lower = lower;
    result.exponent = density_exponent(at);
    result.complement = -1;
    const double smaller = std::min(a, b);
    if (smaller > 100 && lambda <= 0.03 * smaller) {
        const double f = std::max(-result.exponent.hi, 0.0);
        result.factor = asymptotic_factor_ * toms708::large_sum(a, b, f, kTolerance);
    } else {
        result.factor = density_factor_ * continued_fraction(a, b, x, y, lambda);
    }
    return result;
}

BetaRatio::Scaled BetaRatio::scaled_tail(bool of_lower, double x, double y) const {
    const Tail t = tail(arguments(x, y));
    if (t.complement >= 0) {
        return {t.is_lower == of_lower ? 1 - t.complement : t.complement, {0, 0}};
    }
    if (t.is_lower == of_lower) return {t.factor, t.exponent};
    return {1 - std::min(scaled_exponential(t.factor, t.exponent), 1.0), {0, 0}};
}

BetaRatio::Scaled BetaRatio::scaled_density(double x, double y) const {
    return {density_factor_, density_exponent(arguments(x, y))};
}

BetaRatio::Step BetaRatio::step(bool of_lower, double x, double y, double target) const {
    const Arguments at = arguments(x, y);
    const Tail t = tail(at);
    const DoubleDouble e = density_exponent(at);
    const double value = std::min(scaled_exponential(t.factor, t.exponent), 1.0);
    if (t.is_lower == of_lower && !(t.complement >= 0)) {
        const double hazard = density_factor_ / t.factor * std::exp(add(e, negated(t.exponent)).hi);
        if (value > 1e-305 && target > 1e-305) return {std::log(value / target), hazard};
        return {t.exponent.hi - std::log(target) + (t.exponent.lo + std::log(t.factor)), hazard};
    }
    const double tail_value = t.is_lower == of_lower ? value : t.complement >= 0 ? t.complement : 1 - value;
    return {std::log(tail_value / target), scaled_exponential(density_factor_, e) / tail_value};
}

DoubleDouble BetaRatio::log_leading(bool of_lower, DoubleDouble p) const {
    const double a = of_lower ? a_ : b_, b = of_lower ? b_ : a_;
    const DoubleDouble& shift_a = of_lower ? shift_a_ : shift_b_;
    const DoubleDouble& shift_b = of_lower ? shift_b_ : shift_a_;
    const DoubleDouble constant =
        add(extended_log(p), negated(extended_log(divide({density_factor_, 0}, {a, 0}))));
    // Of a shape next to 0 the quotient is too large for exact products, and then needs no more digits.
    const DoubleDouble log_stretched =
        add(shift_a, exact_quotient(add(constant, multiply({b, 0}, shift_b)), {a, 0}));
    const bool stretched = (of_lower ? stretch_x_ : stretch_y_) > 1;
    return stretched ? add(log_stretched, negated(log_stretch())) : log_stretched;
}

DoubleDouble BetaRatio::log_stretch() const {
    const double stretch = std::max(stretch_x_, stretch_y_);
    return stretch > 1 ? extended_log({stretch, 0}) : DoubleDouble{0, 0};
}

namespace {

/// Calls `inside` for x in (0, 1); otherwise the value at the end, or NaN.
template <typename F>
double with_ends(double a, double b, double x, double y, double at_zero, double at_one, F inside) {
    if (std::isnan(a + b + x + y)) return kNaN;
    if (a <= 0 || y <= 0) return at_one;
    if (b <= 0 || x <= 0) return at_zero;
    return inside();
}

}  // namespace

double BetaRatio::lower(double x, double y) const {
    return with_ends(a_, b_, x, y, 0, 1, [&] {
        const Tail t = tail(arguments(x, y));
        if (!t.is_lower && t.complement >= 0) return t.complement;
        const double value = std::min(scaled_exponential(t.factor, t.exponent), 1.0);
        return t.is_lower ? value : 1 - value;
    });
}

double BetaRatio::upper(double x, double y) const {
    return with_ends(a_, b_, x, y, 1, 0, [&] {
        const Tail t = tail(arguments(x, y));
        if (t.is_lower && t.complement >= 0) return t.complement;
        const double value = std::min(scaled_exponential(t.factor, t.exponent), 1.0);
        return t.is_lower ? 1 - value : value;
    });
}

/// A smaller coordinate times a stretched shape as large as this leaves nothing but that shape's power of the other one.
std::optional<double> BetaRatio::log_power_beyond(double x, double y) const {
    constexpr double kBeyond = 0x1p-100;
    const auto log_of = [](double part, double other) {
        return part < 0.5 ? std::log(part) : log1p_fn(-other);
    };
    if (stretch_x_ > 1 && x * stretch_x_ > kBeyond) return given_b_ * common_ * log_of(y, x);
    if (stretch_y_ > 1 && y * stretch_y_ > kBeyond) return given_a_ * common_ * log_of(x, y);
    return std::nullopt;
}

double BetaRatio::log_tail(bool of_lower, const Arguments& at) const {
    if (common_ > 1) {  // the exponent grows with the shapes, beside it nothing else counts
        const double exponent = density_exponent(at).hi;
        if (exponent < -1) return (at.lambda > 0) == of_lower ? common_ * exponent : 0;
    }
    const Tail t = tail(at);
    const double value = std::min(scaled_exponential(t.factor, t.exponent), 1.0);
    if (t.is_lower != of_lower) return t.complement >= 0 ? std::log(t.complement) : log1p_fn(-value);
    if (t.complement >= 0) return log1p_fn(-t.complement);
    return value > 1e-300 ? std::log(value) : t.exponent.hi + (t.exponent.lo + std::log(t.factor));
}

double BetaRatio::log_lower(double x, double y) const {
    return with_ends(a_, b_, x, y, -kInfinity, 0, [&] {
        if (const auto log = log_power_beyond(x, y)) return stretch_y_ > 1 ? *log : 0;
        return log_tail(true, arguments(x, y));
    });
}

double BetaRatio::log_upper(double x, double y) const {
    return with_ends(a_, b_, x, y, 0, -kInfinity, [&] {
        if (const auto log = log_power_beyond(x, y)) return stretch_x_ > 1 ? *log : 0;
        return log_tail(false, arguments(x, y));
    });
}

double BetaRatio::log_density(double x, double y) const {
    if (std::isnan(a_ + b_ + x + y) || a_ <= 0 || b_ <= 0) return kNaN;
    if (x <= 0 || y <= 0) {
        const double own = x <= 0 ? a_ : b_, other = x <= 0 ? b_ : a_;
        if (x < 0 || y < 0 || own > 1) return -kInfinity;
        return own < 1 ? kInfinity : std::log(other);
    }
    if (const auto log = log_power_beyond(x, y)) return *log;
    const Arguments at = arguments(x, y);
    const DoubleDouble logs = add(add(at.log_x, at.log_y), negated(log_stretch()));
    // The factor's own logarithm can be as large as the exponent, and of the other sign.
    const double log_density =
        add(add(density_exponent(at), negated(logs)), extended_log({density_factor_, 0})).hi -
        log_enlargement_;
    // Beside a common factor of both shapes only the normal density next to the centre is left.
    return common_ > 1 ? log_density + 0.5 * std::log(common_) + (common_ - 1) * density_exponent(at).hi
                       : log_density;
}

double beta_lower(double a, double b, double x, double y) { return BetaRatio(a, b).lower(x, y); }
double beta_upper(double a, double b, double x, double y) { return BetaRatio(a, b).upper(x, y); }
double log_beta_lower(double a, double b, double x, double y) { return BetaRatio(a, b).log_lower(x, y); }
double log_beta_upper(double a, double b, double x, double y) { return BetaRatio(a, b).log_upper(x, y); }
double log_beta_density(double a, double b, double x, double y) { return BetaRatio(a, b).log_density(x, y); }

}  // namespace pral::numerics
