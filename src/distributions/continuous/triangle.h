// The triangular distribution under its parameterisations, its generalisation to level and power stages, and the
// logarithmic forms of triangular and uniform distribution.
#pragma once

#include "distributions/continuous/mode_percentiles.h"
#include "distributions/continuous/trapezoid.h"
#include "distributions/sample.h"

namespace pral {

/// Two straight flanks that meet at the mode; each has its part of the width as its probability.
template <class Axis>
struct TriangleOn : Trapezoid<Axis> {
    double min, mode, max;

    TriangleOn(double min_, double mode_, double max_)
        : TriangleOn(min_, mode_, max_, Axis::with_reciprocal(min_, max_)) {}

    /// The lower of the two lines is the density; a flank of width 0 has none (fmin passes over 0/0).
    double log_likelihood(std::span<const double> values) const {
        const double length = this->axis.distance(min, max);
        const double heights = numerics::sum_of_logs(values, [=, this](double x) {
            const auto [below, above] = this->axis.distances(min, x, max, length);
            return std::fmin(below / std::fabs(this->left.width), above / std::fabs(this->right.width));
        });
        return heights + static_cast<double>(values.size()) * std::log(2 / length) +
               this->axis.sum_of_log_slopes(values);
    }

  private:
    TriangleOn(double min_, double mode_, double max_, const Axis& along)
        : Trapezoid<Axis>(
              {min_, mode_, 1, 2, along.distance(min_, mode_) / along.distance(min_, max_), along}, 0,
              {max_, mode_, -1, 2, along.distance(mode_, max_) / along.distance(min_, max_), along}),
          min(min_),
          mode(mode_),
          max(max_) {}
};

/// min <= mode <= max; all equal are a point mass. Support [min, max]; the density rises and falls linearly.
struct Triangle : TriangleOn<LinearAxis> {
    using TriangleOn::TriangleOn;
    Message check() const {
        if (!(max >= min)) return "Error: max must be >= min";
        if (!(mode >= min)) return "Error: mode must be >= min";
        if (!(max >= mode)) return "Error: max must be >= mode";
        return nullptr;
    }
};

/// 0 < Min <= Mode <= Max; all equal are a point mass. Support [Min, Max]; exp(Triangle(ln Min, ln Mode, ln Max)).
struct LogTriangle : TriangleOn<LogAxis> {
    using TriangleOn::TriangleOn;
    Message check() const {
        if (!(min > 0)) return "Error: Min must be > 0";
        if (!(mode >= min)) return "Error: Mode must be >= Min";
        if (!(max >= mode)) return "Error: Max must be >= Mode";
        return nullptr;
    }
};

/// The triangular distribution with mode Mode whose cumulative is LowP at Low and HighP at High. Its ends are computed;
/// like other results they carry a rounding error, and within some 1e-4 of its width from them the tails lose digits.
struct TriangleAlt : Triangle {
    ModeAndPercentiles given;

    TriangleAlt(double Low, double Mode, double High, double LowP, double HighP)
        : TriangleAlt(ModeAndPercentiles{Low, Mode, High, LowP, HighP}) {}
    Message check() const {
        const Message objection = given.check();
        return objection != nullptr ? objection : object_to_ends(min, max);
    }

  private:
    explicit TriangleAlt(const ModeAndPercentiles& points) : TriangleAlt(points, ends(points)) {}
    TriangleAlt(const ModeAndPercentiles& points, Support ends)
        : Triangle(ends.lower, points.Mode, ends.upper), given(points) {}

    static Support ends(const ModeAndPercentiles& points);
};

/// Two triangles that meet at Medium, with cumulative MediumP there: below, F = MediumP ((x - min)/(Medium - min))^2, and
/// above, 1 - F likewise; F is LowP at Low and HighP at High. Low < Medium < High, 0 <= LowP < MediumP < HighP < 1.
struct SplitTriangle : Trapezoid<LinearAxis> {
    double Low, Medium, High, LowP, MediumP, HighP;

    SplitTriangle(double Low_, double Medium_, double High_, double LowP_, double MediumP_, double HighP_)
        : SplitTriangle(Low_, Medium_, High_, LowP_, MediumP_, HighP_,
                        ends(Low_, Medium_, High_, LowP_, MediumP_, HighP_)) {}
    Message check() const {
        if (!(Low < Medium)) return "Error: Low must be < Medium";
        if (!(Low < High)) return "Error: Low must be < High";
        if (!(Medium < High)) return "Error: Medium must be < High";
        if (!(LowP < MediumP)) return "Error: LowP must be < MediumP";
        if (!(LowP < HighP)) return "Error: LowP must be < HighP";
        if (!(MediumP < HighP)) return "Error: MediumP must be < HighP";
        if (!(HighP >= 0 && HighP < 1)) return "Error: highP must be between [0..1)";
        if (!(MediumP >= 0 && MediumP < 1)) return "Error: mediumP must be between [0..1)";
        if (!(LowP >= 0 && LowP < 1)) return "Error: lowP must be between [0..1)";
        return object_to_ends(left.end, right.end);
    }

  private:
    SplitTriangle(double Low_, double Medium_, double High_, double LowP_, double MediumP_, double HighP_,
                  Support ends)
        : SplitTriangle(Low_, Medium_, High_, LowP_, MediumP_, HighP_, ends,
                        LinearAxis::with_reciprocal(ends.lower, ends.upper)) {}
    SplitTriangle(double Low_, double Medium_, double High_, double LowP_, double MediumP_, double HighP_,
                  Support ends, const LinearAxis& along)
        : Trapezoid({ends.lower, Medium_, 1, 2, MediumP_, along}, 0,
                    {ends.upper, Medium_, -1, 2, 1 - MediumP_, along}),
          Low(Low_),
          Medium(Medium_),
          High(High_),
          LowP(LowP_),
          MediumP(MediumP_),
          HighP(HighP_) {}

    static Support ends(double Low, double Medium, double High, double LowP, double MediumP, double HighP) {
        const LinearAxis along = LinearAxis::with_reciprocal(Low, High);
        const double left = width(along.distance(Low, Medium), LowP, MediumP, MediumP - LowP);
        const double right = width(along.distance(Medium, High), 1 - HighP, 1 - MediumP, HighP - MediumP);
        return {along.move(Medium, -left), along.move(Medium, right)};
    }
    /// The width of a triangle of probability `mass` in which `tail` lies further than `distance` from the mode and
    /// `rest` nearer.
    static double width(double distance, double tail, double mass, double rest) {
        return distance * (1 + std::sqrt(tail / mass)) * (mass / rest);
    }
};

/// min <= leftmode <= rightmode <= max, powers m >= 1 and n >= 1; support [min, max]. The density rises as
/// ((x - min)/(leftmode - min))^(m-1), is level between the modes and falls as ((max - x)/(max - rightmode))^(n-1);
/// min = max is a point mass.
struct GTU : Trapezoid<LinearAxis> {
    GTU(double min, double leftmode, double rightmode, double max, double m, double n)
        : GTU(min, leftmode, rightmode, max, m, n, LinearAxis::with_reciprocal(min, max)) {}
    Message check() const {
        if (!(left.end <= left.mode)) return "Error: min must be <= leftmode";
        if (!(left.mode <= right.mode)) return "Error: leftmode must be <= rightmode";
        if (!(right.mode <= right.end)) return "Error: rightmode must be <= max";
        if (!(left.power >= 1)) return "Error: m must be >=1";
        if (!(right.power >= 1)) return "Error: n must be >=1";
        return nullptr;
    }

  private:
    GTU(double min, double leftmode, double rightmode, double max, double m, double n,
        const LinearAxis& along)
        : GTU(min, leftmode, rightmode, max, m, n, along,
              1 / (along.distance(min, leftmode) / m + along.distance(leftmode, rightmode) +
                   along.distance(rightmode, max) / n)) {}
    GTU(double min, double leftmode, double rightmode, double max, double m, double n,
        const LinearAxis& along, double height)
        : Trapezoid({min, leftmode, 1, m, along.distance(min, leftmode) / m * height, along},
                    along.distance(leftmode, rightmode) * height,
                    {max, rightmode, -1, n, along.distance(rightmode, max) / n * height, along}) {}
};

/// Level on the logarithm: F = ln(x/min)/ln(max/min).
struct LogLevel : Trapezoid<LogAxis> {
    double min, max;

    LogLevel(double min_, double max_)
        : Trapezoid({min_, min_, 1, 1, 0}, 1, {max_, max_, -1, 1, 0}), min(min_), max(max_) {}
    double log_likelihood(const Sample& x) const {
        return x.count() * log_density(std::clamp(x.geometric_mean(), min, max));
    }
    std::optional<Moments> moments() const {
        const double length = LogAxis::distance(min, max);
        const auto log_power = [length](double k) {  // ln of the mean of e^(k y) over y in [0, length]
            const double y = k * length;
            return y < numerics::kExpLimit ? std::log(numerics::expm1_fn(y) / y) : y - std::log(y);
        };
        const auto relative = exponential_moments(log_power);
        return relative ? std::optional(linear(*relative, LogAxis::move(min, log_power(1)), 0))
                        : std::nullopt;
    }
    double mode() const { return min; }
};

/// 0 < Min < Max; support [Min, Max]. F = ln(x/Min)/ln(Max/Min).
struct LogUniform : LogLevel {
    using LogLevel::LogLevel;
    Message check() const {
        if (!(min > 0)) return "Error: Min must be > 0";
        if (!(max > min)) return "Error: Max must be > Min";
        return nullptr;
    }
};

/// 0 < a <= b, equal being a point mass; support [a, b]. F = ln(x/a)/ln(b/a).
struct Reciprocal : LogLevel {
    using LogLevel::LogLevel;
    Message check() const {
        if (!(min > 0)) return "Error: a must be > 0";
        if (!(max >= min)) return "Error: b must be >= a";
        return nullptr;
    }
};

}  // namespace pral
