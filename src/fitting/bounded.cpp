// Start values of the families on an interval, given or with ends that the data tell.
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
Starts at_ends(const Sample& x, Estimate estimate) {
    Starts starts;
    for (const double below : kEndDistances) {
        for (const double above : kEndDistances)
            estimate(x.min() - below * x.range(), x.max() + above * x.range(), starts.places);
    }
    return starts;
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
Starts start_johnson_b(const StartData& data) {
    const std::vector<double> part = thinned(data.x.values(), kPart);
    const Sample x(part);
    return at_ends(x, [&](double min, double max, auto& places) {
        std::vector<double> scores = moved(x, min);
        for (double& score : scores) score = std::log(score / (max - min - score));
        const Sample z(scores);
        places.push_back(place({-z.mean() / z.deviation(), 1 / z.deviation(), min, max}));
    });
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

/// The triangle of greatest likelihood: for every pair of ends its mode is one of the values.
class TriangleLikelihood {
  public:
    /// Of values in ascending order.
    explicit TriangleLikelihood(std::span<const double> sorted)
        : x_(sorted), logs_below_(x_.size()), logs_above_(x_.size()) {}

    struct Triangle {
        double min, mode, max;
    };
    /// Coordinates of the ends: the logarithms of their distances from the data, in parts of the range.
    Triangle at(std::span<const double> point) {
        const double range = x_.back() - x_.front();
        const double min = x_.front() - range * std::exp(point[0]),
                     max = x_.back() + range * std::exp(point[1]);
        return {min, best_mode(min, max).first, max};
    }
    double operator()(std::span<const double> point) {
        const Triangle t = at(point);
        return best_mode(t.min, t.max).second;
    }

  private:
    /// The mode and the log-likelihood, a constant apart.
    std::pair<double, double> best_mode(double min, double max) {
        double left = 0, right = 0;  // the sums on either side of the mode
        for (std::size_t i = 0; i < x_.size(); ++i) {
            logs_below_[i] = std::log(x_[i] - min);
            right += logs_above_[i] = std::log(max - x_[i]);
        }
        std::pair<double, double> best = {x_.front(), -HUGE_VAL};
        const double n = static_cast<double>(x_.size()), width = n * std::log(max - min);
        for (std::size_t i = 0; i < x_.size(); ++i) {
            const double below = static_cast<double>(i + 1);
            left += logs_below_[i];
            right -= logs_above_[i];
            const double value = left + right - below * logs_below_[i] - (n - below) * logs_above_[i] - width;
            if (value > best.second) best = {x_[i], value};
        }
        return best;
    }

    std::span<const double> x_;
    std::vector<double> logs_below_, logs_above_;
};

TriangleLikelihood::Triangle best_triangle(const Sample& x, const Deadline& deadline) {
    const std::vector<double> part = thinned(x.sorted(), kPart);
    const Sample first(part);
    TriangleLikelihood of_part(first.sorted()), of_all(x.sorted());
    const auto climb = [&](TriangleLikelihood& likelihood, const Point& start) {
        return maximise([&](std::span<const double> point) { return likelihood(point); }, start, deadline);
    };
    constexpr double kNear = -3, kAtTheData = -30;  // the mode may be the end itself
    Maximum best = {{kNear, kNear}, -HUGE_VAL};
    for (const Point& start : {Point{kNear, kNear}, {kAtTheData, kNear}, {kNear, kAtTheData}}) {
        const Maximum found = climb(of_part, start);
        if (found.value > best.value) best = found;
    }
    return of_all.at(climb(of_all, best.point).point);
}
Starts start_triangle(const StartData& data) {
    if (data.x.constant()) return one({data.x.min(), data.x.min(), data.x.min()});
    const auto [min, mode, max] = best_triangle(data.x, data.deadline);
    return one({min, mode, max});
}
Starts start_log_triangle(const StartData& data) {
    if (const Message objection = positive(data.x)) return objection;
    if (data.x.constant()) return start_triangle(data);
    const std::vector<double> logs = logarithms(data.x);
    const auto [min, mode, max] = best_triangle(Sample(logs), data.deadline);
    return one({std::exp(min), std::exp(mode), std::exp(max)});
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
    fitted<Beta4, 4>("Beta4", {kPositive, kPositive, kBelowMin, kAboveMax}, start_beta4, {.names = kEnds}),
    fitted<BetaSubj, 4>("BetaSubj", {kBelowMin, kLocation, kLocation, kAboveMax}, start_beta_subj,
        {.names = {"minimum", nullptr, nullptr, "maximum"}}),
    fitted<JohnsonB, 4>("JohnsonB", {kReal, kPositive, kBelowMin, kAboveMax}, start_johnson_b,
        {.names = kJohnsonNames}),
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
