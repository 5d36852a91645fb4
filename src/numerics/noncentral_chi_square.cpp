#include "numerics/noncentral_chi_square.h"

#include <algorithm>
#include <cmath>

#include "numerics/constants.h"
#include "numerics/elementary.h"
#include "numerics/extended_log.h"
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

/// Beyond this width (in terms) of the mixture its sum takes longer and loses more than the integral, which needs an
/// integrand as narrow as this variance makes it.
constexpr double kWidestMixture = 12;
constexpr double kSmallestVariance = 2500;
constexpr double kNegligible = 0x1p-62;

/// A noncentrality below it changes nothing, and its reciprocal must not overflow.
constexpr double kSmallestNoncentrality = 1e-290;
constexpr double kSmallestPoint = 1e-280;
constexpr double kLargestArgument = 1e280;

/// The ratio of two powers, both near each other.
double ratio(const Power& a, const Power& b) {
    return scaled_exp(a.factor / b.factor, add(a.exponent, {-b.exponent.hi, -b.exponent.lo}));
}

/// Where the product of Poisson weight and chi-square density is largest: j (shape + j) = mean point.
double central_index(const Halves& h) {
    const double g = std::sqrt(h.mean) * std::sqrt(h.point);
    return 2 * g * (g / (h.shape + std::hypot(h.shape, 2 * g)));
}

/// One index of the mixture, and the product of its Poisson weight and its prefix point^a e^-point / Gamma(1 + a), relative
/// to that of the centre. (Each alone may be out of range.)
struct Term {
    double j, product;

    double shape(const Halves& h) const { return h.shape + j; }
    void up(const Halves& h) {
        j += 1;
        product *= (h.mean / j) * (h.point / shape(h));
    }
    void down(const Halves& h) {
        product *= (j / h.mean) * (shape(h) / h.point);
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

/// Poisson weight times tail, in the unit of the products.
double weighted_tail(const Halves& h, const Term& term, bool upper) {
    const double shape = term.shape(h);
    if (shape == 0) return 0;  // only the upper tail is begun at index 0
    return term.product * ratio(gamma_tail_power(shape, h.point, upper), gamma_prefix(shape, h.point));
}

/// The sum of the weighted tails. P(a) = P(a + 1) + prefix(a): the lower tail is summed downwards, the upper tail upwards,
/// so that nothing is ever subtracted.
double lower_sum(const Halves& h, Term centre) {
    Term term = beyond_upper_end(h, centre);
    double next = weighted_tail(h, term, false), sum = next;
    while (term.j > 0) {
        const double weight_ratio = term.j / h.mean;
        term.down(h);
        next = weight_ratio * next + term.product;
        sum += next;
        if (term.j < centre.j && !(next > kNegligible * std::fabs(sum))) break;
    }
    return sum;
}

double upper_sum(const Halves& h, Term centre) {
    Term term = beyond_lower_end(h, centre);
    double next = weighted_tail(h, term, true), sum = next;
    do {
        next = (h.mean / (term.j + 1)) * (next + term.product);
        term.up(h);
        sum += next;
    } while (term.j <= centre.j || next > kNegligible * std::fabs(sum));
    return sum;
}

/// The density at `point` of the half variable, times `point`.
double density_sum(const Halves& h, Term centre) {
    double sum = 0;
    const auto add_term = [&](const Term& term) {
        const double next = term.product * term.shape(h);
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
    const Power unit = {weight.factor * prefix.factor, add(weight.exponent, prefix.exponent)};
    const Term term = {j, 1};
    if (wanted == Wanted::lower) return {unit.factor * lower_sum(h, term), unit.exponent};
    if (wanted == Wanted::upper) return {unit.factor * upper_sum(h, term), unit.exponent};
    const DoubleDouble log_point = extended_log({h.point, 0});  // the reciprocal may overflow
    return {0.5 * unit.factor * density_sum(h, term), add(unit.exponent, {-log_point.hi, -log_point.lo})};
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

struct ExponentAndSlope {
    DoubleDouble exponent;  // E(w)
    DoubleDouble slope;     // w E'(w), the phase's slope
};

ExponentAndSlope exponent_and_slope(const Halves& h, const Contour& c) {
    const DoubleDouble mean_over_w = divide({h.mean, 0}, {c.w, 0});
    if (c.distance > 0.5) {
        const DoubleDouble rest = add(two_sum(-h.mean, -h.point), mean_over_w);
        const DoubleDouble point_w = two_product(h.point, c.w), log_w = extended_log({c.w, 0});
        return {add(add(rest, point_w), multiply({-h.shape, 0}, log_w)),
                add(add(point_w, {-mean_over_w.hi, -mean_over_w.lo}), {-h.shape, 0})};
    }
    // E(w) = d (point - mean - shape) + mean d^2/w + shape (d - ln(1 + d)), d = w - 1: free of cancellation.
    const DoubleDouble excess = add(two_sum(h.point, -h.mean), {-h.shape, 0});
    const DoubleDouble leaning = add(excess, multiply(c.offset, mean_over_w));
    return {add(multiply(c.offset, leaning), multiply({h.shape, 0}, deviance_double_double(c.w, 1))),
            add(leaning, multiply(c.offset, {h.point, 0}))};
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
    const auto [exponent, slope] = exponent_and_slope(h, c);
    const double deviation = 1 / std::sqrt(c.variance);
    const double pole = c.distance / (c.w * deviation);
    if (exponent.hi < -1e13) {  // the phase has no digits left; they would not show in the logarithm either
        return {0.5 * c.w * deviation * kInvSqrt2Pi, exponent};
    }
    // The rule's error is e^-55 for the smooth part and, within its reach, e^(pole^2/2 - 2 pi pole/step) for the pole.
    const double smooth = 0.6;
    const bool clear = wanted == Wanted::density || pole > 8;
    const double step =
        (clear ? smooth : std::min(smooth, 2 * kPi * pole / (40 + 0.5 * pole * pole))) * deviation;
    const double side = wanted == Wanted::upper ? 1 : -1;
    const double index = h.mean / c.w;
    const auto integrand = [&](double v) {
        const double v2 = v * v;
        const double size = std::exp(-index * v2 / (1 + v2) - h.shape * half_log1p_square(v2));
        const double phase = v * slope.hi + index * v * v2 / (1 + v2) + h.shape * minus_atan(v, v2);
        if (wanted == Wanted::density) return 0.5 * size * std::cos(phase);
        const double b = c.w * v;
        return size * (c.distance * std::cos(phase) - side * b * std::sin(phase)) /
               (c.distance * c.distance + b * b);
    };
    constexpr int kMaxPoints = 200;
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

/// The first term of the mixture that is not zero, for x so small that the others do not count.
Power near_zero(double shape, double mean, double point, Wanted wanted) {
    const Power weight = gamma_prefix(0, mean);
    if (shape == 0 && wanted == Wanted::lower) return weight;
    if (shape == 0) return {0.5 * mean, weight.exponent};
    if (point == 0) point = 5e-324;
    if (wanted == Wanted::lower) {
        const Power tail = gamma_tail_power(shape, point, false);
        return {tail.factor, add(weight.exponent, tail.exponent)};
    }
    const Power prefix = gamma_prefix(shape, point);
    const DoubleDouble log_point = extended_log({point, 0});
    const DoubleDouble exponent = add(prefix.exponent, {-log_point.hi, -log_point.lo});
    return {0.5 * shape * prefix.factor, add(weight.exponent, exponent)};
}

/// A tail is the smaller one or near it.
Power compute(double nu, double lambda, double x, Wanted wanted) {
    const bool first_term_alone = lambda * x < 1e-200 && (wanted == Wanted::lower || nu > 1e-100);
    if ((x < kSmallestPoint || first_term_alone) && wanted != Wanted::upper)
        return near_zero(0.5 * nu, 0.5 * lambda, 0.5 * x, wanted);
    const Halves h = {0.5 * nu, 0.5 * lambda, 0.5 * x};
    const double centre = central_index(h);
    const double width = std::sqrt(centre * ((h.shape + centre) / (h.shape + 2 * centre)));
    if (width > kWidestMixture && 2 * centre + h.shape > kSmallestVariance)
        return inversion_integral(h, centre, wanted);
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
    const bool first_is_upper = x > nu + lambda;
    const auto compute_tail = [&](bool of_upper) {
        return compute(nu, lambda, x, of_upper ? Wanted::upper : Wanted::lower).value();
    };
    const double first = compute_tail(first_is_upper);
    if (first_is_upper == upper) return first;
    // The median lies far below the mean for few degrees of freedom.
    return first < 0.6 ? 1 - first : compute_tail(upper);
}

/// Beyond the range of compute(): all of the exponent is homogeneous in the three arguments, and nothing else of it shows
/// but in the centre, where the density is the normal one's.
double log_density_of_large(double nu, double lambda, double x) {
    constexpr double kScale = 0x1p-200, kLeast = 1e-200;
    if (!(std::max({nu, lambda, x}) <= DBL_MAX)) return -kInfinity;
    if (0.25 * x - 0.25 * nu - 0.25 * lambda == 0)
        return -kLnSqrt2Pi - 0.5 * (std::log(0.25 * nu + 0.5 * lambda) + 3 * kLn2);
    return noncentral_chi_square_log_density(kScale * nu, std::max(kScale * lambda, kLeast),
                                             std::max(kScale * x, kLeast)) /
           kScale;
}

}  // namespace

double noncentral_chi_square_lower(double nu, double lambda, double x) { return tail(nu, lambda, x, false); }
double noncentral_chi_square_upper(double nu, double lambda, double x) { return tail(nu, lambda, x, true); }

double noncentral_chi_square_log_density(double nu, double lambda, double x) {
    if (!(nu >= 0 && lambda >= 0) || std::isnan(x)) return kNaN;
    if (lambda <= kSmallestNoncentrality)
        return x < 0 || nu == 0 ? -kInfinity : finite_or_limit(log_gamma_density(0.5 * nu, 0.5 * x) - kLn2);
    if (x == 0 && nu <= 2) return nu == 0 ? -kInfinity : nu < 2 ? kInfinity : -0.5 * lambda - kLn2;
    if (x > 0 && !(std::max({nu, lambda, x}) < kLargestArgument)) return log_density_of_large(nu, lambda, x);
    if (!is_inside(nu, lambda, x)) return -kInfinity;
    return compute(nu, lambda, x, Wanted::density).log();
}

}  // namespace pral::numerics
