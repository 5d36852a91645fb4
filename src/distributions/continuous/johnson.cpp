#include "distributions/continuous/johnson.h"

#include "numerics/each.h"
#include "numerics/extended_log.h"

namespace pral {

using namespace numerics;

namespace {

bool usable(DoubleDouble v) { return v.hi > DBL_MIN && v.hi < DBL_MAX && std::isfinite(v.lo); }

/// asinh(|t|) to double precision.
double asinh_of(double size) {
    if (size > 1e8) return std::log(size) + kLn2;
    return log1p_fn(size + size * size / (1 + std::sqrt(1 + size * size)));
}

/// asinh(t) = ln(t + sqrt(1 + t^2)), t >= 0, to some 30 digits.
DoubleDouble extended_asinh(DoubleDouble t) {
    if (t.hi < 1e-30) return t;
    if (t.hi > 1e30) return extended_log({2 * t.hi, 2 * t.lo});
    const DoubleDouble square = add(multiply(t, t), {1, 0});
    const double root = std::sqrt(square.hi);
    const DoubleDouble back = two_product(root, root);
    const DoubleDouble whole = fast_two_sum(root, ((square.hi - back.hi) - back.lo + square.lo) / (2 * root));
    return extended_log(add(t, whole));
}

}  // namespace

double JohnsonScore::of(DoubleDouble y) const {
    const DoubleDouble sum = add(multiply(y, {alpha2, 0}), {alpha1, 0});
    return std::isfinite(sum.hi) ? sum.hi : of(y.hi);
}

double JohnsonBMap::forward(double z) const {
    const double y = score.inverse(z), width = std::min(axis.distance(min, max), kInfinity);
    if (std::fabs(y) < 0.5) {  // from the middle, which may be 0
        const double e = expm1_fn(y);
        return 0.5 * min + 0.5 * max + 0.5 * width * (e / (e + 2)) * axis.unit;
    }
    return y < 0 ? axis.move(min, width / (1 + std::exp(-y))) : axis.move(max, -(width / (1 + std::exp(y))));
}

double JohnsonBMap::inverse(double x) const {
    const double place = x * axis.per_unit;
    const DoubleDouble lower = two_sum(place, -min * axis.per_unit),
                       upper = two_sum(max * axis.per_unit, -place);
    if (!score.moderate() && lower.hi > 0 && upper.hi > 0) {
        const DoubleDouble ratio = divide(lower, upper);
        if (usable(ratio)) return score.of(extended_log(ratio));
    }
    const double ratio = lower.hi / upper.hi;
    const bool in_range = ratio > DBL_MIN && ratio < DBL_MAX;
    return score.of(in_range ? std::log(ratio) : std::log(lower.hi) - std::log(upper.hi));
}

double JohnsonBMap::log_slope(double x) const {
    const double lower = axis.distance(min, x), upper = axis.distance(x, max);
    return std::log(score.alpha2) + std::log(axis.distance(min, max) / std::max(lower, upper)) -
           std::log(std::min(lower, upper)) + axis.log_slope(x);
}

double JohnsonUMap::forward(double z) const {
    const double y = score.inverse(z), size = std::fabs(y);
    double value;
    if (size < 20) {
        const double e = expm1_fn(size);
        value = 0.5 * beta * (e + e / (1 + e));
    } else {
        const double root = std::exp(0.5 * size);
        value = 0.5 * beta * root * root;
    }
    return gamma + std::copysign(value, y);
}

double JohnsonUMap::inverse(double x) const {
    const DoubleDouble difference = two_sum(x, -gamma);
    const bool negative = difference.hi < 0;
    if (!score.moderate()) {
        const DoubleDouble t = divide(negative ? negated(difference) : difference, {beta, 0});
        if (usable(t)) {
            const DoubleDouble y = extended_asinh(t);
            return score.of(negative ? negated(y) : y);
        }
    }
    return score.of(std::copysign(asinh_of(std::fabs(difference.hi) / beta), difference.hi));
}

double JohnsonUMap::log_slope(double x) const {
    const double size = std::fabs(x - gamma) / beta;
    return std::log(score.alpha2 / beta) - (size < 1e8 ? 0.5 * log1p_fn(size * size) : std::log(size));
}

namespace {

double sum_of_squares(std::span<const double> values) {
    return interleaved_sum(values, [](double v) { return v * v; });
}

}  // namespace

double JohnsonB::log_likelihood(std::span<const double> values) const {
    if (map.score.moderate() && map.axis.is_plain()) {
        const double per_width = 1 / (map.max - map.min);
        const double squares = sum_by_blocks(
            values, [this](double x) { return (x - map.min) / (map.max - x); },
            [this](std::span<double> block) {
                log_each(block);
                for (double& y : block) y = map.score.of(y);
                return sum_of_squares(block);
            });
        const double slopes =
            sum_of_logs(values, [=, this](double x) { return (x - map.min) * per_width * (map.max - x); });
        const double total = static_cast<double>(values.size()) * (std::log(map.score.alpha2) - kLnSqrt2Pi) -
                             0.5 * squares - slopes;
        if (std::isfinite(total)) return total;
    }
    return sum_of_log_densities(*this, values);
}

double JohnsonU::log_likelihood(std::span<const double> values) const {
    if (map.score.moderate()) {
        const double per_beta = 1 / map.beta;
        const double terms = sum_by_blocks(
            values, [=, this](double x) { return (x - map.gamma) * per_beta; },
            [this](std::span<double> t) {
                std::array<double, kSumBlock> of_size;
                const std::span<double> y(of_size.data(), t.size());
                for (std::size_t i = 0; i < t.size(); ++i)
                    y[i] = std::fabs(t[i]) + std::sqrt(1 + t[i] * t[i]);
                log_each(y);
                for (std::size_t i = 0; i < t.size(); ++i) y[i] = map.score.of(std::copysign(y[i], t[i]));
                return sum_of_squares(y) + sum_of_logs(t, [](double v) { return 1 + v * v; });
            });
        const double total =
            static_cast<double>(values.size()) * (std::log(map.score.alpha2 * per_beta) - kLnSqrt2Pi) -
            0.5 * terms;
        if (std::isfinite(total)) return total;
    }
    return sum_of_log_densities(*this, values);
}

/// With w = e^(1/alpha2^2) and O = alpha1/alpha2, in powers of cosh 2 O and w that do not overflow before the result.
Moments JohnsonU::moments() const {
    const double delta = map.score.alpha2, O = map.score.alpha1 / delta, square = 1 / delta / delta;
    const double w = std::exp(square), per_w = std::exp(-square);
    const bool far = std::fabs(O) > 100;
    const double c2 = far ? HUGE_VAL : std::cosh(2 * O), root = c2 * std::sqrt(c2);
    const double cube = far ? std::copysign(std::sqrt(2.0), O) : std::sinh(3 * O) / root;
    const double line = far ? 0 : std::sinh(O) / root;
    const double share = 1 / (1 + per_w / c2), part = -expm1_fn(-square);
    const double log_mean = 0.5 * square, e = std::exp(log_mean + std::fabs(O));
    const double mean =
        far ? -map.beta * std::copysign(0.5 * e, O) : -map.beta * std::exp(log_mean) * std::sinh(O);
    const double deviation = far ? map.beta * (std::sqrt(0.25 * part) * std::exp(square + std::fabs(O)))
                                 : map.beta * std::exp(0.5 * square) * std::sqrt(0.5 * part * (w * c2 + 1));
    const double skewness = -std::sqrt(0.5 * part) * std::sqrt(w) * ((w + 2) * cube + 3 * line * per_w) *
                            share * std::sqrt(share);
    const double fourth = (w * w * (w * (w + 2) + 3) - 3) * (2 - 1 / c2 / c2) + 4 * (w + 2) / c2 +
                          3 * (2 + per_w) * per_w / c2 / c2;
    return {map.gamma + mean, deviation * deviation, skewness, 0.5 * fourth * share * share - 3};
}

}  // namespace pral
