// Distributions whose cumulative is given at knots and has a simple shape between them.
#pragma once

#include <algorithm>
#include <cmath>
#include <span>
#include <vector>

#include "distributions/data/tables.h"
#include "distributions/family.h"

namespace pral::data {

/// The knots of a cumulative function: `x` never descends; `lower` and `upper` are F and 1 - F there, each with its own
/// digits, from 0 to 1 and from 1 to 0; rise[i] is the probability between knots i and i + 1. Two knots at one x are a
/// jump, a point that has a probability of its own.
struct Knots {
    std::vector<double> x, lower, upper, rise;
};

/// The knots at `x` of a distribution that gives each segment a probability proportional to its mass; the sum of the
/// masses is in the range of a double, and not 0.
Knots knots_of_masses(std::vector<double> x, std::vector<double> masses);

/// The density is constant within a segment.
struct Level {
    double position(std::size_t, double part) const { return part; }
    double position_above(std::size_t, double part) const { return part; }
    double part(std::size_t, double position) const { return position; }
    double part_above(std::size_t, double position) const { return position; }
    double height(std::size_t, double) const { return 1; }
};

/// The density is linear within a segment. With a and b its heights at the two ends and s the position in [0,1], the
/// part of the segment's probability below s is phi = s (a (2 - s) + b s)/(a + b), and s solves that as
/// s = phi (a + b)/(a + sqrt(a^2 (1 - phi) + b^2 phi)): sums of terms >= 0 throughout, no cancellation for level, rising
/// or falling segments, nor where a or b is 0.
struct Sloped {
    /// The heights, relative to the larger of the two; {1, 1} where both are 0.
    struct Ends {
        double left, right;
    };
    std::vector<Ends> ends;

    static double solve(double from, double to, double part) {
        return part * (from + to) / (from + std::sqrt(from * from * (1 - part) + to * to * part));
    }
    double position(std::size_t i, double part) const { return solve(ends[i].left, ends[i].right, part); }
    double position_above(std::size_t i, double part) const {
        return solve(ends[i].right, ends[i].left, part);
    }
    static double share(double from, double to, double position) {
        return position * (from * (2 - position) + to * position) / (from + to);
    }
    double part(std::size_t i, double position) const { return share(ends[i].left, ends[i].right, position); }
    double part_above(std::size_t i, double position) const {
        return share(ends[i].right, ends[i].left, position);
    }
    /// Relative to the mean height of the segment.
    double height(std::size_t i, double position) const {
        const auto [a, b] = ends[i];
        return 2 * (a * (1 - position) + b * position) / (a + b);
    }
};

/// The functions of a family with knots. Where segments meet, the density is that of the segment above; at the upper end
/// of the support, that of the last one.
template <class Shape>
class Segments {
  public:
    Segments() = default;
    Segments(Knots knots, Shape shape) : knots_(std::move(knots)), shape_(std::move(shape)) {
        if (!(knots_.x.back() - knots_.x.front() <= numerics::kInfinity)) scale_ = 0.5;
    }

    bool empty() const { return knots_.x.empty(); }
    Support support() const { return empty() ? kReals : Support{knots_.x.front(), knots_.x.back()}; }
    std::optional<double> point_mass() const { return std::nullopt; }

    double cumulative(double x) const {
        if (std::isnan(x)) return x;
        const std::size_t i = segment_at(x);
        const double part = shape_.part(i, position_in(i, x));
        return std::min(knots_.lower[i] + knots_.rise[i] * part, 1.0);
    }
    double survival(double x) const {
        if (std::isnan(x)) return x;
        const std::size_t i = segment_at(x);
        const double part = shape_.part_above(i, (knots_.x[i + 1] * scale_ - x * scale_) / width(i));
        return std::min(knots_.upper[i + 1] + knots_.rise[i] * part, 1.0);
    }
    double log_density(double x) const {
        if (std::isnan(x)) return x;
        const std::size_t i = segment_at(x);
        const double position = position_in(i, x);
        const double probability = knots_.rise[i] * shape_.height(i, position);
        const double density = probability / width(i) * scale_;
        const bool in_range = density >= DBL_MIN && density <= numerics::kInfinity;
        return in_range ? std::log(density) : std::log(probability) - std::log(width(i)) + std::log(scale_);
    }

    /// From the smaller tail: 1 - p is exact for p > 1/2. The first x where the cumulative reaches p, so that a percentile on
    /// a gap between segments gives the gap's lower end, from either tail.
    double quantile(double p) const {
        if (p > 0.5) return quantile_upper(1 - p);
        const auto reached = std::lower_bound(knots_.lower.begin() + 1, knots_.lower.end() - 1, p);
        return from_below(static_cast<std::size_t>(reached - knots_.lower.begin()) - 1, p);
    }
    double quantile_upper(double q) const {
        const auto& upper = knots_.upper;
        const auto passed = std::lower_bound(upper.begin() + 1, upper.end() - 1, q, std::greater<>());
        return from_above(static_cast<std::size_t>(passed - upper.begin()) - 1, q);
    }
    void quantiles(std::span<double> p) const {
        const auto& upper = knots_.upper;
        invert_all(p, std::span(knots_.lower).subspan(1), [&](std::size_t i, double u) {
            if (u <= 0.5) return from_below(i, u);
            // Where rounding made the two tails disagree, the upper one decides, as for a single value.
            const double q = 1 - u;
            while (upper[i] <= q) --i;
            while (i + 2 < upper.size() && upper[i + 1] > q) ++i;
            return from_above(i, q);
        });
    }

  private:
    double width(std::size_t i) const { return knots_.x[i + 1] * scale_ - knots_.x[i] * scale_; }
    double position_in(std::size_t i, double x) const {
        return (x * scale_ - knots_.x[i] * scale_) / width(i);
    }

    /// The segment of positive width that holds an x of the support, and begins there if any does.
    std::size_t segment_at(double x) const {
        const auto& knots = knots_.x;
        const auto above = x < knots.back() ? std::ranges::upper_bound(knots, x)
                                            : std::ranges::lower_bound(knots, knots.back());
        return static_cast<std::size_t>(std::max<std::ptrdiff_t>(above - knots.begin(), 1)) - 1;
    }

    double from_below(std::size_t i, double p) const {
        const double part = std::min((p - knots_.lower[i]) / knots_.rise[i], 1.0);
        const double x = (knots_.x[i] * scale_ + width(i) * shape_.position(i, part)) / scale_;
        return std::min(x, knots_.x[i + 1]);
    }
    double from_above(std::size_t i, double q) const {
        const double part = std::clamp((q - knots_.upper[i + 1]) / knots_.rise[i], 0.0, 1.0);
        const double x = (knots_.x[i + 1] * scale_ - width(i) * shape_.position_above(i, part)) / scale_;
        return std::max(x, knots_.x[i]);
    }

    Knots knots_;
    Shape shape_;
    double scale_ = 1;  // 1/2 where the width of the support is not in the range of a double
};

/// The same with what there is to object to the table; without segments where there is something.
template <class Shape>
struct CheckedSegments : Segments<Shape> {
    Message objection = nullptr;
    Message check() const { return objection; }
};

}  // namespace pral::data
