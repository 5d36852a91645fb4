// Distributions whose cumulative is given at knots and has a simple shape between them.
#pragma once

#include <algorithm>
#include <cmath>
#include <span>
#include <vector>

#include "distributions/data/tables.h"
#include "distributions/family.h"
#include "numerics/double_double.h"

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

/// Where segments lie: between neighbouring knots.
class BetweenKnots {
  public:
    BetweenKnots() = default;
    explicit BetweenKnots(std::vector<double> x) : x_(std::move(x)) {
        if (!(x_.back() - x_.front() <= numerics::kInfinity)) scale_ = 0.5;
    }

    double front() const { return x_.front(); }
    double back() const { return x_.back(); }
    /// The segment of positive width that holds an x of the support, and begins there if any does.
    std::size_t segment_at(double x) const {
        const auto above =
            x < x_.back() ? std::ranges::upper_bound(x_, x) : std::ranges::lower_bound(x_, x_.back());
        return static_cast<std::size_t>(std::max<std::ptrdiff_t>(above - x_.begin(), 1)) - 1;
    }
    /// The width of a segment is width(i)/scale(), and x stands at these parts of it, from below and from above.
    double scale() const { return scale_; }
    double width(std::size_t i) const { return x_[i + 1] * scale_ - x_[i] * scale_; }
    double position(std::size_t i, double x) const { return (x * scale_ - x_[i] * scale_) / width(i); }
    double position_above(std::size_t i, double x) const {
        return (x_[i + 1] * scale_ - x * scale_) / width(i);
    }
    double at(std::size_t i, double position) const {
        return std::min((x_[i] * scale_ + width(i) * position) / scale_, x_[i + 1]);
    }
    double at_above(std::size_t i, double position) const {
        return std::max((x_[i + 1] * scale_ - width(i) * position) / scale_, x_[i]);
    }

  private:
    std::vector<double> x_;
    double scale_ = 1;  // 1/2 where the width of the support is not in the range of a double
};

/// Segments of equal width. Their edges need not be doubles: far from 0 a rounded edge would change the widths on both
/// sides of it.
class EvenSegments {
  public:
    EvenSegments() = default;
    EvenSegments(double min, double max, std::size_t count)
        : min_(min),
          max_(max),
          count_(static_cast<double>(count)),
          scale_(max - min > 0x1p960    ? 0x1p-64
                 : max - min < 0x1p-900 ? 0x1p200
                                        : 1),
          support_width_(numerics::two_sum(max * scale_, -min * scale_)),
          width_(support_width_.hi / count_) {}

    double front() const { return min_; }
    double back() const { return max_; }
    std::size_t segment_at(double x) const {
        return static_cast<std::size_t>(std::clamp(segments_to(x).hi, 0.0, count_ - 1));
    }
    double scale() const { return scale_; }
    double width(std::size_t) const { return width_; }
    double position(std::size_t i, double x) const {
        const numerics::DoubleDouble to = segments_to(x);
        return std::clamp((to.hi - static_cast<double>(i)) + to.lo, 0.0, 1.0);
    }
    double position_above(std::size_t i, double x) const {
        const numerics::DoubleDouble to = segments_to(x);
        return std::clamp((static_cast<double>(i + 1) - to.hi) - to.lo, 0.0, 1.0);
    }
    double at(std::size_t i, double position) const {
        return std::min(moved(min_, static_cast<double>(i), position, 1), max_);
    }
    double at_above(std::size_t i, double position) const {
        return std::max(moved(max_, count_ - 1 - static_cast<double>(i), position, -1), min_);
    }

  private:
    /// How many segments lie between the lower end and x.
    numerics::DoubleDouble segments_to(double x) const {
        const numerics::DoubleDouble from_min = numerics::two_sum(x * scale_, -min_ * scale_);
        return numerics::exact_quotient(numerics::multiply(from_min, {count_, 0}), support_width_);
    }
    /// The point that lies segments + part of them from an end; with all digits where the sum would cancel.
    double moved(double end, double segments, double part, double direction) const {
        const double x = (end * scale_ + direction * width_ * (segments + part)) / scale_;
        if (std::fabs(x) >= std::fabs(end) / 16) return x;
        const numerics::DoubleDouble share =
            numerics::divide(numerics::two_sum(segments, part), {direction * count_, 0});
        return numerics::add({end * scale_, 0}, numerics::multiply(support_width_, share)).hi / scale_;
    }

    double min_ = 0, max_ = 0, count_ = 0;
    double scale_ = 1;  // another one where products of the width would leave the range of a double
    numerics::DoubleDouble support_width_ = {};
    double width_ = 0;
};

/// The functions of a family with knots. Where segments meet, the density is that of the segment above; at the upper end
/// of the support, that of the last one.
template <class Shape, class Places = BetweenKnots>
class Segments {
  public:
    static constexpr bool kKnots = true;

    Segments() = default;
    Segments(Knots knots, Shape shape)
        : places_(std::move(knots.x)), knots_(std::move(knots)), shape_(std::move(shape)) {}
    /// `knots` without their x.
    Segments(Places places, Knots knots, Shape shape)
        : places_(std::move(places)), knots_(std::move(knots)), shape_(std::move(shape)) {}

    bool empty() const { return knots_.rise.empty(); }
    Support support() const { return empty() ? kReals : Support{places_.front(), places_.back()}; }
    std::optional<double> point_mass() const { return std::nullopt; }

    double cumulative(double x) const {
        if (std::isnan(x)) return x;
        const std::size_t i = places_.segment_at(x);
        return std::min(knots_.lower[i] + knots_.rise[i] * shape_.part(i, places_.position(i, x)), 1.0);
    }
    double survival(double x) const {
        if (std::isnan(x)) return x;
        const std::size_t i = places_.segment_at(x);
        const double part = shape_.part_above(i, places_.position_above(i, x));
        return std::min(knots_.upper[i + 1] + knots_.rise[i] * part, 1.0);
    }
    double log_density(double x) const {
        if (std::isnan(x)) return x;
        const std::size_t i = places_.segment_at(x);
        const double width = places_.width(i), scale = places_.scale();
        const double probability = knots_.rise[i] * shape_.height(i, places_.position(i, x));
        const double density = probability / width * scale;
        const bool in_range = density >= DBL_MIN && density <= numerics::kInfinity;
        return in_range ? std::log(density) : std::log(probability) - std::log(width) + std::log(scale);
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

    /// By Gauss' rule with three points in each segment, exact for the fourth power of the variable.
    Moments moments() const {
        constexpr double kOuter = 0.387298334620741688518,
                         kRule[][2] = {{0.5 - kOuter, 5.0 / 18}, {0.5, 8.0 / 18}, {0.5 + kOuter, 5.0 / 18}};
        return point_moments([&](auto visit) {
            for (std::size_t i = 0; i < knots_.rise.size(); ++i) {
                if (!(knots_.rise[i] > 0)) continue;
                for (const auto& [s, weight] : kRule)
                    visit(knots_.rise[i] * weight * shape_.height(i, s), places_.at(i, s));
            }
        });
    }
    double mode() const {
        double best = places_.front(), highest = 0;
        for (std::size_t i = 0; i < knots_.rise.size(); ++i) {
            if (!(knots_.rise[i] > 0)) continue;
            if (places_.width(i) == 0) return places_.at(i, 0);
            for (const double end : {0.0, 1.0}) {
                const double height = knots_.rise[i] / places_.width(i) * shape_.height(i, end);
                if (height > highest) highest = height, best = places_.at(i, end);
            }
        }
        return best;
    }

  private:
    double from_below(std::size_t i, double p) const {
        const double part = std::min((p - knots_.lower[i]) / knots_.rise[i], 1.0);
        return places_.at(i, shape_.position(i, part));
    }
    double from_above(std::size_t i, double q) const {
        const double part = std::clamp((q - knots_.upper[i + 1]) / knots_.rise[i], 0.0, 1.0);
        return places_.at_above(i, shape_.position_above(i, part));
    }

    Places places_;
    Knots knots_;
    Shape shape_;
};

/// The same with what there is to object to the table; without segments where there is something.
template <class Shape, class Places = BetweenKnots>
struct CheckedSegments : Segments<Shape, Places> {
    Message objection = nullptr;
    Message check() const { return objection; }
};

}  // namespace pral::data
