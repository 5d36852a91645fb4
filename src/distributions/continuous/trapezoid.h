// The generalised trapezoidal distribution (van Dorp and Kotz 2003): a power of the distance from the lower end, a level
// stage, a power of the distance from the upper end; on the variable itself or on its logarithm.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <type_traits>

#include "distributions/continuous/linear_axis.h"
#include "distributions/family.h"
#include "numerics/sums.h"

namespace pral {

/// Distances on its logarithm, with the digits that the difference of two logarithms loses.
struct LogAxis {
    static LogAxis with_reciprocal(double, double) { return {}; }
    static double distance(double from, double to) { return numerics::log_ratio(to, from); }
    static double move(double from, double by) {
        const double half = std::exp(by / 2);  // e^by alone may be beyond the range
        return std::fabs(by) < numerics::kExpLimit ? from * std::exp(by) : from * half * half;
    }
    static Distances distances(double min, double x, double max, double length) {
        constexpr double kNear = 0.1;  // a short distance must not be the difference of two longer ones
        const double below = std::log(x / min), above = length - below;
        return {below < kNear ? distance(min, x) : below, above < kNear ? distance(x, max) : above};
    }
    static double log_slope(double x) { return -std::log(x); }
    static double sum_of_log_slopes(std::span<const double> values) {
        return -numerics::sum_of_logs(values, [](double x) { return x; });
    }
};

/// A stage between an end of the support, where the density is 0 (or level: power 1), and a mode: the probability beyond
/// x is mass (distance from the end / width)^power. Where x is nearer to the mode, its distance from there is used.
template <class Axis>
struct PowerStage {
    double end, mode, power, mass;
    double direction;  // of the mode from the end: 1 or -1
    Axis axis;
    double width, log_peak;

    PowerStage(double end_, double mode_, double direction_, double power_, double mass_, Axis axis_ = {})
        : end(end_),
          mode(mode_),
          power(power_),
          mass(mass_),
          direction(direction_),
          axis(axis_),
          width(direction_ * axis_.distance(end_, mode_)),
          log_peak(std::log(mass_ / width * power_)),
          square_(power_ == 2),
          square_width_(width / std::sqrt(mass_)) {}

    bool contains(double x) const { return direction > 0 ? x < mode : x > mode; }
    /// The probability between the end and x.
    double outside(double x) const {
        const double part = direction * axis.distance(end, x) / width;
        return mass * (square_ ? part * part : std::exp(power * log_position(x)));
    }
    double log_outside(double x) const { return std::log(mass) + power * log_position(x); }
    /// The probability between x and the mode.
    double inside(double x) const {
        const double rest = direction * axis.distance(x, mode) / width;
        return mass * (square_ ? rest * (2 - rest) : -numerics::expm1_fn(power * log_position(x)));
    }
    double log_density(double x) const {
        return power == 1 ? log_peak : log_peak + (power - 1) * log_position(x);
    }
    /// The inverses of outside and inside.
    double at_outside(double tail) const {
        return square_ ? axis.move(end, direction * square_width_ * std::sqrt(tail))
                       : at_log_position(std::log(tail / mass) / power);
    }
    double at_inside(double tail) const {
        const double part = std::min(tail / mass, 1.0);
        return square_ ? axis.move(mode, -direction * width * part / (1 + std::sqrt(1 - part)))
                       : at_log_position(numerics::log1p_fn(-part) / power);
    }

  private:
    double log_position(double x) const {
        const double from_end = direction * axis.distance(end, x);
        const double from_mode = direction * axis.distance(x, mode);
        return from_end < from_mode ? std::log(from_end / width) : numerics::log1p_fn(-from_mode / width);
    }
    double at_log_position(double log) const {
        return log < -numerics::kLn2 ? axis.move(end, direction * width * std::exp(log))
                                     : axis.move(mode, direction * width * numerics::expm1_fn(log));
    }

    bool square_;
    double square_width_;
};

/// A stage of either kind may be missing: width and mass 0. min <= left mode <= right mode <= max; all equal are a point
/// mass.
template <class Axis>
struct Trapezoid {
    using Stage = PowerStage<Axis>;
    Stage left, right;
    Axis axis;

    Trapezoid(const Stage& left_, double level_mass, const Stage& right_)
        : left(left_),
          right(right_),
          axis(left_.axis),
          level_mass_(level_mass),
          level_height_(level_mass / axis.distance(left_.mode, right_.mode)) {}

    Support support() const { return {left.end, right.end}; }
    std::optional<double> point_mass() const {
        return left.end == right.end ? std::optional(left.end) : std::nullopt;
    }
    double cumulative(double x) const { return tail(left, right, x); }
    double survival(double x) const { return tail(right, left, x); }
    double log_cumulative(double x) const {
        if (left.contains(x)) return left.log_outside(x);
        const double upper = survival(x);
        return upper < 0.5 ? numerics::log1p_fn(-upper) : std::log(cumulative(x));
    }
    double log_density(double x) const { return log_height(x) + axis.log_slope(x); }
    double log_survival(double x) const {
        const double lower = cumulative(x);
        if (lower < 0.5) return numerics::log1p_fn(-lower);
        return right.contains(x) ? right.log_outside(x) : std::log(survival(x));
    }
    double quantile(double p) const { return at_tail(left, right, p); }
    double quantile_upper(double q) const { return at_tail(right, left, q); }
    /// Of a mixture of the stages; the distance of a stage's values from its end is a beta variable.
    Moments moments() const requires std::is_same_v<Axis, LinearAxis> {
        const auto stage = [](const Stage& s) {
            return s.axis.moments(beta_moments(s.power, 1), s.end, s.direction * s.width);
        };
        const Moments level =
            axis.moments({0.5, 1.0 / 12, 0, -1.2}, left.mode, axis.distance(left.mode, right.mode));
        return mixed(std::array{stage(left), level, stage(right)},
                     std::array{left.mass, level_mass_, right.mass});
    }
    double peak() const requires std::is_same_v<Axis, LinearAxis> {
        return left.power == 1 ? left.end : left.mode;
    }

  private:
    /// The probability between the end of `here` and x, without a difference.
    double tail(const Stage& here, const Stage& beyond, double x) const {
        if (here.contains(x)) return here.outside(x);
        if (beyond.contains(x)) return here.mass + level_mass_ + beyond.inside(x);
        if (level_mass_ == 0) return here.mass;
        return here.mass + level_height_ * (here.direction * axis.distance(here.mode, x));
    }
    /// Measured from the nearer end: 1 - tail is exact for tail > 1/2, and next to an end the distance from the other one
    /// would round it away.
    double at_tail(const Stage& here, const Stage& beyond, double tail) const {
        if (tail > 0.5) return at_tail(beyond, here, 1 - tail);
        if (tail < here.mass) return here.at_outside(tail);
        const double past = tail - here.mass;
        if (past < level_mass_) return axis.move(here.mode, here.direction * past / level_height_);
        return beyond.at_inside(past - level_mass_);
    }
    double log_height(double x) const {
        if (left.contains(x)) return left.log_density(x);
        if (right.contains(x)) return right.log_density(x);
        if (level_mass_ > 0) return std::log(level_height_);
        return right.width > 0 ? right.log_peak : left.log_peak;
    }

    double level_mass_, level_height_;
};

}  // namespace pral
