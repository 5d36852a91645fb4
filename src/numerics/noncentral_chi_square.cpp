#include "numerics/noncentral_chi_square.h"

#include <algorithm>
#include <cmath>

#include "numerics/constants.h"
#include "numerics/elementary.h"
#include "numerics/gamma_ratio.h"
#include "numerics/normal.h"

namespace pral::numerics {

namespace {

/// Half the degrees of freedom, the noncentrality and the point: the j-th chi-square of the mixture has the tail
/// Q(shape + j, point) and the Poisson weight of mean `mean`.
struct Halves {
    double shape, mean, point;
};

enum class Wanted { lower, upper, density };

/// Beyond this width (in terms) of the mixture its sum takes longer than the integral.
constexpr double kWidestMixture = 40;
constexpr double kNegligible = 0x1p-62;

/// A noncentrality below it changes nothing, and its reciprocal must not overflow.
constexpr double kSmallestNoncentrality = 1e-290;
constexpr double kLargestArgument = 1e280;

DoubleDouble add(DoubleDouble a, DoubleDouble b) {
    const DoubleDouble sum = two_sum(a.hi, b.hi);
    return fast_two_sum(sum.hi, sum.lo + a.lo + b.lo);
}

DoubleDouble multiply(DoubleDouble a, DoubleDouble b) {
    const DoubleDouble product = two_product(a.hi, b.hi);
    return fast_two_sum(product.hi, product.lo + (a.hi * b.lo + a.lo * b.hi));
}

/// The ratio of two powers, both near each other.
double ratio(const Power& a, const Power& b) {
    return scaled_exp(a.factor / b.factor, add(a.exponent, {-b.exponent.hi, -b.exponent.lo}));
}

/// Where the product of Poisson weight and chi-square density is largest: j (shape + j) = mean point.
double central_index(const Halves& h) {
    const double g = std::sqrt(h.mean) * std::sqrt(h.point);
    return 2 * g * (g / (h.shape + std::hypot(h.shape, 2 * g)));
}

/// One term of the mixture: its index, Poisson weight and chi-square prefix point^a e^-point / Gamma(1 + a), both
/// relative to those of the centre.
struct Term {
    double j, weight, prefix;

    double shape(const Halves& h) const { return h.shape + j; }
    void up(const Halves& h) {
        j += 1;
        weight *= h.mean / j;
        prefix *= h.point / shape(h);
    }
    void down(const Halves& h) {
        weight *= j / h.mean;
        prefix *= shape(h) / h.point;
        j -= 1;
    }
};

/// The first index from which on the terms of the lower tail do not matter: they fall at least as fast as the bound.
Term beyond_upper_end(const Halves& h, Term term) {
    for (double bound = 1; bound > kNegligible; term.up(h))
        bound *= h.mean / (term.j + 1) * std::min(1.0, h.point / (term.shape(h) + 1));
    return term;
}

Term beyond_lower_end(const Halves& h, Term term) {
    for (double bound = 1; bound > kNegligible && term.j > 0; term.down(h))
        bound *= term.j / h.mean * std::min(1.0, std::max(0.0, term.shape(h) - 1) / h.point);
    return term;
}

double tail_ratio(const Halves& h, const Term& term, bool upper, const Power& unit) {
    const double shape = term.shape(h);
    if (shape == 0) return upper ? 0 : ratio({1, {0, 0}}, unit);
    return ratio(gamma_tail_power(shape, h.point, upper), unit);
}

/// The sum of the terms' tails. P(a) = P(a + 1) + prefix(a): the lower tail is summed downwards, the upper tail upwards,
/// so that nothing is ever subtracted.
double lower_sum(const Halves& h, Term centre, const Power& unit) {
    Term term = beyond_upper_end(h, centre);
    double tail = tail_ratio(h, term, false, unit);
    double sum = term.weight * tail;
    while (term.j > 0) {
        term.down(h);
        tail += term.prefix;
        const double next = term.weight * tail;
        sum += next;
        if (term.j < centre.j && next < kNegligible * sum) break;
    }
    return sum;
}

double upper_sum(const Halves& h, Term centre, const Power& unit) {
    Term term = beyond_lower_end(h, centre);
    double tail = tail_ratio(h, term, true, unit);
    double sum = term.weight * tail;
    for (;;) {
        tail += term.prefix;
        term.up(h);
        const double next = term.weight * tail;
        sum += next;
        if (term.j > centre.j && !(next > kNegligible * sum)) break;
    }
    return sum;
}

double density_sum(const Halves& h, Term centre) {
    double sum = 0;
    const auto add_term = [&](const Term& term) {
        const double next = term.weight * term.prefix * (term.shape(h) / (2 * h.point));
        sum += next;
        return next > kNegligible * sum;
    };
    Term term = centre;
    while (add_term(term) || term.j <= centre.j) term.up(h);
    term = centre;
    while (term.j > 0) {
        term.down(h);
        if (!add_term(term)) break;
    }
    return sum;
}

Power mixture(const Halves& h, double centre, Wanted wanted) {
    const double j = std::floor(centre);
    const Power weight = gamma_prefix(j, h.mean), prefix = gamma_prefix(h.shape + j, h.point);
    const Term term = {j, 1, 1};
    const double sum = wanted == Wanted::density ? density_sum(h, term)
                       : wanted == Wanted::upper ? upper_sum(h, term, prefix)
                                                 : lower_sum(h, term, prefix);
    return {weight.factor * prefix.factor * sum, add(weight.exponent, prefix.exponent)};
}

// The inversion integral. With W = 1 - 2t the moment generating function times e^(-t x) is e^E(W),
//   E(W) = mean/W + point W - mean - point - shape ln W,
// and the upper tail is the integral of e^E/(1 - W) dW/(2 pi i) along Re W = w < 1, the lower tail the same with W - 1
// and w > 1. On W = w (1 + i v) the real part of E falls like a normal density of variance 1/(2 mean/w + shape), so that
// the trapezoidal rule converges exponentially (Trefethen and Weideman 2014); w at the saddle of the whole integrand, pole
// included, keeps it clear of the pole.

/// 1/2 ln(1 + v^2) and v - atan v for |v| < 0.2, v2 = v^2.
double half_log1p_square(double v2) {
    double sum = 0;
    for (int n = 12; n >= 1; --n) sum = (1.0 / (2 * n)) - v2 * sum;
    return v2 * sum;
}

double minus_atan(double v, double v2) {
    double sum = 0;
    for (int n = 12; n >= 1; --n) sum = (1.0 / (2 * n + 1)) - v2 * sum;
    return v * v2 * sum;
}

struct Contour {
    double w, distance;   // Re W, and |w - 1|
    DoubleDouble offset;  // w - 1
    double variance;      // of the normal density that |e^E| resembles along the contour, inverted
};

Contour contour_through(const Halves& h, double centre, Wanted wanted) {
    // The saddle of e^E; mean/w is the central index of the mixture.
    const double w0 = h.mean / centre;
    const double curvature = (2 * centre + h.shape) / (w0 * w0);
    double w = w0;
    if (wanted != Wanted::density) {
        const double side = wanted == Wanted::upper ? -1 : 1;
        const double from_pole = side * (w0 - 1);
        w = 1 + side * 0.5 * (from_pole + std::sqrt(from_pole * from_pole + 4 / curvature));
        if (!(w > 0.1 * w0)) w = 0.1 * w0;
    }
    const DoubleDouble offset = two_sum(w, -1);
    return {w, std::fabs(offset.hi), offset, 2 * h.mean / w + h.shape};
}

/// The normal distribution of the same mean and variance: its skewness is below 1e-14 where it is used.
Power normal_limit(const Halves& h, Wanted wanted) {
    const double deviation = 2 * std::sqrt(0.5 * h.shape + h.mean);
    const double z = 2 * ((h.point - h.mean) - h.shape) / deviation;
    if (wanted == Wanted::density) return {kInvSqrt2Pi / deviation, {-0.5 * z * z, 0}};
    return {normal_survival(wanted == Wanted::upper ? z : -z), {0, 0}};
}

Power inversion_integral(const Halves& h, double centre, Wanted wanted) {
    const Contour c = contour_through(h, centre, wanted);
    if (c.distance < 2e-15 && c.variance > 1e26) return normal_limit(h, wanted);  // w - 1 has no digits left
    const DoubleDouble excess = add(two_sum(h.point, -h.mean), {-h.shape, 0});
    const DoubleDouble mean_over_w = divide({h.mean, 0}, {c.w, 0});
    const DoubleDouble lean = multiply(c.offset, mean_over_w);
    // E(w) = d (point - mean - shape) + mean d^2/w + shape (d - ln(1 + d)), d = w - 1: free of cancellation.
    const DoubleDouble exponent =
        add(multiply(c.offset, add(excess, lean)), multiply({h.shape, 0}, deviance_double_double(c.w, 1)));
    // The phase's slope, w E'(w).
    const DoubleDouble slope = add(add(excess, lean), multiply(c.offset, {h.point, 0}));

    const double deviation = 1 / std::sqrt(c.variance);
    const double pole = c.distance / (c.w * deviation);
    const double step = std::min(0.6, wanted == Wanted::density ? 0.6 : 0.155 * pole) * deviation;
    const double side = wanted == Wanted::upper ? 1 : -1;
    const double index = mean_over_w.hi;
    const auto integrand = [&](double v) {
        const double v2 = v * v;
        const double size = std::exp(-index * v2 / (1 + v2) - h.shape * half_log1p_square(v2));
        const double phase = v * slope.hi + index * v * v2 / (1 + v2) + h.shape * minus_atan(v, v2);
        if (wanted == Wanted::density) return 0.5 * size * std::cos(phase);
        const double b = c.w * v;
        return size * (c.distance * std::cos(phase) - side * b * std::sin(phase)) /
               (c.distance * c.distance + b * b);
    };
    constexpr int kMaxPoints = 2000;
    double sum = 0.5 * integrand(0);
    for (int k = 1; k <= kMaxPoints; ++k) {
        const double v = k * step;
        if (v > 9.5 * deviation) break;  // e^(-45)
        sum += integrand(v);
    }
    return {c.w * step * sum / kPi, exponent};
}

bool is_inside(double nu, double lambda, double x) {
    return nu >= 0 && lambda > kSmallestNoncentrality && x > 0 &&
           std::max({nu, lambda, x}) < kLargestArgument;
}

/// A tail is the smaller one or near it.
Power compute(double nu, double lambda, double x, Wanted wanted) {
    const Halves h = {0.5 * nu, 0.5 * lambda, 0.5 * x};
    const double centre = central_index(h);
    const double width = std::sqrt(centre * ((h.shape + centre) / (h.shape + 2 * centre)));
    if (width > kWidestMixture) return inversion_integral(h, centre, wanted);
    return mixture(h, centre, wanted);
}

/// A tail where the arguments are at an end of their ranges, or so large that the distribution is a step.
double tail_at_ends(double nu, double lambda, double x, bool upper) {
    if (!(nu >= 0 && lambda >= 0) || std::isnan(x)) return kNaN;
    if (x < 0) return upper;
    if (x >= kInfinity) return !upper;
    if (lambda <= kSmallestNoncentrality && nu > 0)
        return upper ? gamma_upper(0.5 * nu, 0.5 * x) : gamma_lower(0.5 * nu, 0.5 * x);
    if (nu == 0 && lambda <= kSmallestNoncentrality) return !upper;
    if (x == 0) {
        if (nu > 0) return upper;
        return upper ? -expm1_fn(-0.5 * lambda) : std::exp(-0.5 * lambda);
    }
    const double apart = 0.25 * x - 0.25 * nu - 0.25 * lambda;
    if (apart == 0) return 0.5;
    return (apart > 0) != upper;
}

double tail(double nu, double lambda, double x, bool upper) {
    if (!is_inside(nu, lambda, x)) return tail_at_ends(nu, lambda, x, upper);
    const bool smaller_is_upper = x > nu + lambda;
    const double probability =
        compute(nu, lambda, x, smaller_is_upper ? Wanted::upper : Wanted::lower).value();
    return smaller_is_upper == upper ? probability : 1 - probability;
}

}  // namespace

double noncentral_chi_square_lower(double nu, double lambda, double x) { return tail(nu, lambda, x, false); }
double noncentral_chi_square_upper(double nu, double lambda, double x) { return tail(nu, lambda, x, true); }

double noncentral_chi_square_log_density(double nu, double lambda, double x) {
    if (!(nu >= 0 && lambda >= 0) || std::isnan(x)) return kNaN;
    if (lambda <= kSmallestNoncentrality)
        return x < 0 || nu == 0 ? -kInfinity : finite_or_limit(log_gamma_density(0.5 * nu, 0.5 * x) - kLn2);
    if (x == 0 && nu <= 2) return nu == 0 ? -kInfinity : nu < 2 ? kInfinity : -0.5 * lambda - kLn2;
    if (!is_inside(nu, lambda, x)) return -kInfinity;
    return compute(nu, lambda, x, Wanted::density).log();
}

}  // namespace pral::numerics
