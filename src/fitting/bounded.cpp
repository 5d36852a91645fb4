// Start values of the families on an interval, given or with ends that the data tell.
#include <functional>

#include "distributions/families.h"
#include "fitting/maximise.h"
#include "fitting/starts.h"
#include "numerics/elementary.h"
#include "numerics/sums.h"

namespace pral::fitting {

namespace {

/// The objection to data of a family on (0, 1).
Message inside_unit_interval(const Sample& x) {
    if (const Message objection = positive(x)) return objection;
    return x.max() < 1 ? nullptr : kImpossible;
}

Starts start_ends(const StartData& data) { return one({data.x.min(), data.x.max()}); }
Starts start_positive_ends(const StartData& data) {
    if (const Message objection = positive(data.x)) return objection;
    return start_ends(data);
}

/// The shapes of the beta distribution on [min, max] with the sample's mean and variance.
std::array<double, 2> beta_shapes(const Sample& x, double min, double max) {
    const double m = (x.mean() - min) / (max - min), v = x.variance() / ((max - min) * (max - min));
    const double sum = std::fmax(m * (1 - m) / v - 1, 0.05);
    return {m * sum, (1 - m) * sum};
}
Starts start_beta(const StartData& data) {
    if (const Message objection = inside_unit_interval(data.x)) return objection;
    if (data.x.constant()) return one({numerics::kInfinity});
    const auto [a, b] = beta_shapes(data.x, 0, 1);
    return one({a, b});
}
/// For each concentration at the left end the other shape has a closed form.
std::vector<Parameters> kumaraswamy_places(const Sample& x) {
    std::vector<Parameters> places;
    for (const double alpha : {0.4, 1.0, 2.0, 5.0, 20.0}) {
        const double sum =
            numerics::sum_of_logs(x.values(), [=](double value) { return 1 - std::pow(value, alpha); });
        places.push_back(place({alpha, -x.count() / sum}));
    }
    return places;
}
Starts start_kumaraswamy(const StartData& data) {
    if (const Message objection = inside_unit_interval(data.x)) return objection;
    Starts starts;
    starts.places = kumaraswamy_places(data.x);
    return starts;
}

/// As many values are enough for estimates that are made over and over.
constexpr std::size_t kPart = 250;

/// Both ends outside of the data by each pair of distances.
template <class Estimate>
Starts at_ends(const Sample& x, Estimate estimate, std::span<const double> distances = end_distances()) {
    Starts starts;
    for (const double below : distances) {
        for (const double above : distances)
            estimate(x.min() - below * x.range(), x.max() + above * x.range(), starts.places);
    }
    return starts;
}
/// In place of the shapes the mean, and a width that is nearly the standard deviation.
Parameters beta4_search(const Parameters& own) {
    const double sum = own[0] + own[1], width = own[3] - own[2];
    Parameters moved = own;
    moved[0] = own[2] + own[0] / sum * width;
    moved[1] = width * std::sqrt(own[0] / sum * (own[1] / sum) / sum);
    return moved;
}
Parameters beta4_own(const Parameters& moved) {
    const double below = moved[0] - moved[2], above = moved[3] - moved[0], width = moved[3] - moved[2];
    Parameters own = moved;
    own[0] = below / moved[1] * (above / moved[1]) * (below / width);
    own[1] = below / moved[1] * (above / moved[1]) * (above / width);
    return own;
}
Starts start_beta4(const StartData& data) {
    const Sample& x = data.x;
    return at_ends(x, [&](double min, double max, auto& places) {
        const auto [a, b] = beta_shapes(x, min, max);
        places.push_back(place({a, b, min, max}));
    });
}
/// The mode that a mean and the shapes of the beta distribution on [min, max] tell.
Starts start_beta_subj(const StartData& data) {
    const Sample& x = data.x;
    return at_ends(x, [&](double min, double max, auto& places) {
        const double mean = x.mean(), middle = 0.5 * (min + max), width = max - min;
        const auto [a, b] = beta_shapes(x, min, max);
        const double twice = 2 * (mean - min);
        const double mode = (twice * middle - a * width * mean) / (twice - a * width);
        places.push_back(place({min, std::clamp(mode, min + 0.02 * width, max - 0.02 * width), mean, max}));
    });
}
/// In place of the shapes the value where the score is 0, the median, and the reciprocal slope of the score there, which the
/// ends hardly move, however far out they are.
Parameters johnson_b_search(const Parameters& own) {
    const double min = own[2], max = own[3], part = 1 / (1 + std::exp(own[0] / own[1]));
    Parameters moved = own;
    moved[0] = min + part * (max - min);
    moved[1] = (moved[0] - min) / own[1] * (1 - part);
    return moved;
}
Parameters johnson_b_own(const Parameters& moved) {
    const double below = moved[0] - moved[2], above = moved[3] - moved[0];
    Parameters own = moved;
    own[1] = below / moved[1] * (above / (moved[3] - moved[2]));
    own[0] = own[1] * std::log(above / below);
    return own;
}
/// Ends so far out that the family is a lognormal or a normal one, its limits, are tried as well.
Starts start_johnson_b(const StartData& data) {
    constexpr std::array kDistances = {0.002, 0.02, 0.2, 1.0, 10.0, 300.0, 1e5};
    const std::vector<double> part = thinned(data.x.values(), kPart);
    const Sample x(part);
    const auto estimate = [&](double min, double max, auto& places) {
        std::vector<double> scores = moved(x, min);
        for (double& score : scores) score = std::log(score / (max - min - score));
        const Sample z(scores);
        places.push_back(place({-z.mean() / z.deviation(), 1 / z.deviation(), min, max}));
    };
    return at_ends(x, estimate, kDistances);
}
Starts start_kumaraswamy4(const StartData& data) {
    const std::vector<double> part = thinned(data.x.values(), kPart);
    const Sample x(part);
    return at_ends(x, [&](double min, double max, auto& places) {
        std::vector<double> unit = moved(x, min);
        for (double& value : unit) value /= max - min;
        for (const Parameters& p : kumaraswamy_places(Sample(unit)))
            places.push_back(place({p[0], p[1], min, max}));
    });
}

/// At the data's ends, where it is largest for every theta.
Starts start_bradford(const StartData& data) {
    Starts starts;
    for (const double theta : {1.0, 0.05, 10.0, 200.0})
        starts.places.push_back(place({theta, data.x.min(), data.x.max()}));
    return starts;
}

struct Triangle3 {
    double min, mode, max;
};

/// The likelihood of triangles, for values between bounds that may truncate them. For a pair of ends the best mode is one
/// of the values, or nearly so where there are bounds.
class TriangleLikelihood {
  public:
    /// Of values in ascending order.
    TriangleLikelihood(std::span<const double> sorted, double lower, double upper)
        : x_(sorted), lower_(lower), upper_(upper), logs_below_(x_.size()), logs_above_(x_.size()) {}

    std::span<const double> values() const { return x_; }
    /// Coordinates of the ends: the logarithms of their distances from the data, in parts of the range. Nearer than
    /// `kAtTheData` they do not come.
    static constexpr double kAtTheData = -30;
    std::pair<double, double> ends(std::span<const double> point) const {
        const double range = x_.back() - x_.front();
        const auto distance = [range](double log) { return range * std::exp(std::fmax(log, kAtTheData)); };
        return {x_.front() - distance(point[0]), x_.back() + distance(point[1])};
    }
    /// A constant apart.
    double operator()(const Triangle3& t) const {
        double sum = 0;
        for (const double x : x_) {
            if (x != t.mode)
                sum += x < t.mode ? std::log((x - t.min) / (t.mode - t.min))
                                  : std::log((t.max - x) / (t.max - t.mode));
        }
        return sum - count() * (std::log(t.max - t.min) + log_mass(t));
    }
    /// The log-likelihood with the mode at each of the values.
    std::vector<double> by_mode(double min, double max) {
        double left = 0, right = 0;  // the sums on either side of the mode
        for (std::size_t i = 0; i < x_.size(); ++i) {
            logs_below_[i] = std::log(x_[i] - min);
            right += logs_above_[i] = std::log(max - x_[i]);
        }
        std::vector<double> values(x_.size());
        const double width = std::log(max - min);
        for (std::size_t i = 0; i < x_.size(); ++i) {
            const double below = static_cast<double>(i + 1);
            left += logs_below_[i];
            right -= logs_above_[i];
            values[i] = left + right - below * logs_below_[i] - (count() - below) * logs_above_[i] -
                        count() * (width + log_mass({min, x_[i], max}));
        }
        return values;
    }

  private:
    double count() const { return static_cast<double>(x_.size()); }
    /// Of the probability between the bounds.
    double log_mass(const Triangle3& t) const {
        if (lower_ <= t.min && upper_ >= t.max) return 0;
        const double to_mode = std::clamp(lower_, t.min, t.mode),
                     until_mode = std::clamp(upper_, t.min, t.mode);
        const double from_mode = std::clamp(lower_, t.mode, t.max),
                     to_max = std::clamp(upper_, t.mode, t.max);
        double mass = 0;
        if (until_mode > to_mode)
            mass += (until_mode - to_mode) / (t.mode - t.min) * (until_mode - t.min + (to_mode - t.min));
        if (to_max > from_mode)
            mass += (to_max - from_mode) / (t.max - t.mode) * (t.max - from_mode + (t.max - to_max));
        return std::log(mass / (t.max - t.min));
    }

    std::span<const double> x_;
    double lower_, upper_;
    std::vector<double> logs_below_, logs_above_;
};

/// The search for the triangle of greatest likelihood. It has many local maxima, as any of the values may be the mode, and
/// climbs from several modes; with the mode held the likelihood is smooth.
class TriangleSearch {
  public:
    TriangleSearch(TriangleLikelihood& likelihood, const Deadline& deadline)
        : likelihood_(likelihood), deadline_(deadline) {}

    struct Found {
        Point point;
        std::size_t mode;
        double value;
    };
    /// From pairs of ends on a grid, and from both ends of the data as the mode. The best first.
    std::vector<Found> from_grid() {
        constexpr std::array kDistances = {-6.0, -3.5, -2.0, -1.0, 0.0, 1.0, 3.0};
        for (const double below : kDistances) {
            for (const double above : kDistances) add({below, above}, 2);
        }
        constexpr double kAtTheData = TriangleLikelihood::kAtTheData;
        for (const double distance : {-3.0, 0.0}) {
            keep({{kAtTheData, distance}, 0, 0});
            keep({{distance, kAtTheData}, likelihood_.values().size() - 1, 0});
        }
        return climbed();
    }
    /// From ends that have been found for a part of the values.
    std::vector<Found> from(const std::vector<Found>& of_part) {
        for (const Found& found : of_part) add(found.point, 5);
        return climbed();
    }
    Triangle3 triangle(const Found& found) const {
        const auto [min, max] = likelihood_.ends(found.point);
        return {min, likelihood_.values()[found.mode], max};
    }

  private:
    /// The best modes for the ends.
    void add(const Point& ends, int modes) {
        const auto [min, max] = likelihood_.ends(ends);
        std::vector<double> values = likelihood_.by_mode(min, max);
        for (; modes > 0; --modes) {
            const auto best = std::ranges::max_element(values);
            keep({ends, static_cast<std::size_t>(best - values.begin()), *best});
            const double taken = likelihood_.values()[static_cast<std::size_t>(best - values.begin())];
            for (std::size_t i = 0; i < values.size(); ++i) {
                if (likelihood_.values()[i] == taken) values[i] = -HUGE_VAL;
            }
        }
    }
    /// One candidate for each mode.
    void keep(Found candidate) {
        const double value = likelihood_(triangle(candidate));
        candidate.value = std::isnan(value) ? -HUGE_VAL : value;
        const auto known = std::ranges::find(candidates_, candidate.mode, &Found::mode);
        if (known == candidates_.end())
            candidates_.push_back(std::move(candidate));
        else if (candidate.value > known->value)
            *known = std::move(candidate);
    }
    void climb(Found& candidate) const {
        const double mode = likelihood_.values()[candidate.mode];
        constexpr double kFarthest = 5;  // beyond, within bounds, the triangle is as good as a straight line
        const auto objective = [&](std::span<const double> point) {
            if (point[0] > kFarthest || point[1] > kFarthest) return -HUGE_VAL;
            const auto [min, max] = likelihood_.ends(point);
            return likelihood_({min, mode, max});
        };
        const Maximum found = maximise(objective, candidate.point, deadline_, 1e-6);
        if (found.value > candidate.value) candidate = {found.point, candidate.mode, found.value};
    }
    /// Where the climbs end, each of which goes on as long as another mode suits its ends better. The best first.
    std::vector<Found> climbed() {
        constexpr std::size_t kClimbs = 12;
        constexpr int kModes = 10;
        const auto best_first = [&] {
            std::ranges::stable_sort(candidates_, std::greater<>(), &Found::value);
        };
        best_first();
        if (candidates_.size() > kClimbs) candidates_.resize(kClimbs);
        for (Found& found : candidates_) {
            for (int round = 0; round < kModes; ++round) {
                climb(found);
                const auto [min, max] = likelihood_.ends(found.point);
                const std::vector<double> values = likelihood_.by_mode(min, max);
                const auto other = std::ranges::max_element(values);
                if (!(*other > found.value + 1e-9)) break;
                found = {found.point, static_cast<std::size_t>(other - values.begin()), *other};
            }
        }
        best_first();
        return std::move(candidates_);
    }

    TriangleLikelihood& likelihood_;
    const Deadline& deadline_;
    std::vector<Found> candidates_;
};

Triangle3 best_triangle(const Sample& x, double lower, double upper, const Deadline& deadline) {
    TriangleLikelihood of_all(x.sorted(), lower, upper);
    TriangleSearch search(of_all, deadline);
    if (x.size() <= kPart) return search.triangle(search.from_grid().front());
    const std::vector<double> part = thinned(x.sorted(), kPart);
    const Sample first(part);
    TriangleLikelihood of_part(first.sorted(), lower, upper);
    std::vector<TriangleSearch::Found> roughly = TriangleSearch(of_part, deadline).from_grid();
    constexpr std::size_t kPlaces = 3;
    if (roughly.size() > kPlaces) roughly.resize(kPlaces);
    return search.triangle(search.from(roughly).front());
}
Starts start_triangle(const StartData& data) {
    if (data.x.constant()) return one({data.x.min(), data.x.min(), data.x.min()});
    const auto [min, mode, max] = best_triangle(data.x, data.lower, data.upper, data.deadline);
    return one({min, mode, max});
}
Starts start_log_triangle(const StartData& data) {
    if (const Message objection = positive(data.x)) return objection;
    if (data.x.constant()) return start_triangle(data);
    const std::vector<double> logs = logarithms(data.x);
    const double lower = data.lower > 0 ? std::log(data.lower) : -HUGE_VAL;
    const auto [min, mode, max] = best_triangle(Sample(logs), lower, std::log(data.upper), data.deadline);
    // The mode is one of the values, which its logarithm need not lead back to, and no value may be left outside.
    const auto distance = [mode = std::exp(mode)](double x) { return std::fabs(x - mode); };
    const double value = *std::ranges::min_element(data.x.values(), {}, distance);
    const double low = data.x.min(), high = data.x.max(), largest = numerics::kInfinity;
    const double from = std::fmin(std::exp(min), value == low ? low : std::nextafter(low, 0)),
                 to = std::fmax(std::exp(max), value == high ? high : std::nextafter(high, largest));
    return one({from, value, std::fmin(to, std::fmax(1e304, high))});
}

constexpr ParameterNames kJohnsonNames = {"alpha1", "alpha2", "minimum", "maximum"};
constexpr ParameterNames kEnds = {nullptr, nullptr, "minimum", "maximum"};

// clang-format off
const FittedFamily kFamilies[] = {
    fitted<Uniform, 2>("Uniform", {}, start_ends, {.closed_form = true}),
    fitted<LogUniform, 2>("LogUniform", {}, start_positive_ends, {.closed_form = true}),
    fitted<Reciprocal, 2>("Reciprocal", {}, start_positive_ends, {.closed_form = true}),
    fitted<Bradford, 3>("Bradford", {kPositive, kHeld, kHeld}, start_bradford),
    fitted<Beta, 2>("Beta", {kPositive, kPositive}, start_beta),
    fitted<Kumaraswamy, 2>("Kumaraswamy", {kPositive, kPositive}, start_kumaraswamy),
    fitted<Beta4, 4>("Beta4", {kLocation, kPositive, kBelowMin, kAboveMax}, start_beta4,
        {.names = kEnds, .search = {beta4_search, beta4_own, {kPositive, kPositive, kBelowMin, kAboveMax}}}),
    fitted<BetaSubj, 4>("BetaSubj", {kBelowMin, kLocation, kLocation, kAboveMax}, start_beta_subj,
        {.names = {"minimum", nullptr, nullptr, "maximum"}}),
    fitted<JohnsonB, 4>("JohnsonB", {kLocation, kPositive, kBelowMin, kAboveMax}, start_johnson_b,
        {.names = kJohnsonNames, .climbs = 4, .search = {johnson_b_search, johnson_b_own, {shape_up_to(HUGE_VAL), kPositive, kBelowMin, kAboveMax}}}),
    fitted<Kumaraswamy4, 4>("Kumaraswamy4", {kPositive, kPositive, kBelowMin, kAboveMax}, start_kumaraswamy4,
        {.own_search = true}),
    fitted<Triangle, 3>("Triangle", {kBelowMin, kLocation, kAboveMax}, start_triangle, {.closed_form = true}),
    fitted<LogTriangle, 3>("LogTriangle", {kPositiveBelowMin, kLocation, kAboveMax}, start_log_triangle,
        {.closed_form = true}),
};
// clang-format on

}  // namespace

std::span<const FittedFamily> bounded_families() { return kFamilies; }

}  // namespace pral::fitting
