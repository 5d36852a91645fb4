#include "distributions/data/cumulative.h"

#include <algorithm>

namespace pral {

namespace data {

Polygon polygon(double min, double max, std::span<const double> values, std::span<const double> ordinates,
                bool descending) {
    Knots knots{{min}, {0}, {1}, {}};
    double before = descending ? 1 : 0;
    const auto rise_to = [&](double ordinate) {
        knots.rise.push_back(descending ? before - ordinate : ordinate - before);
        before = ordinate;
    };
    for (std::size_t i = 0; i < values.size(); ++i) {
        const double ordinate = ordinates[i];
        knots.x.push_back(values[i]);
        knots.lower.push_back(descending ? 1 - ordinate : ordinate);
        knots.upper.push_back(descending ? ordinate : 1 - ordinate);
        rise_to(ordinate);
    }
    knots.x.push_back(max);
    knots.lower.push_back(1);
    knots.upper.push_back(0);
    rise_to(descending ? 0 : 1);
    return {std::move(knots), {}};
}

namespace {

bool within(std::span<const double> values, double min, double max) {
    return all(values, [=](double value) { return value >= min && value <= max; });
}

Message object_to_points(double min, double max, const double* values, int n, const double* probabilities,
                         int m, bool descending) {
    const auto x = view(values, n), p = view(probabilities, m);
    if (missing(values, n)) return kNullValues;
    if (missing(probabilities, m)) return kNullProbabilities;
    if (!(max > min)) return kEmptyInterval;
    if (x.size() != p.size()) return "Error: Values and Probabilities arrays must be same size";
    if (x.empty()) return kNoValues;
    if (descending && !all_pairs(p, kDescending)) return "Error: Probabilities must be in descending order";
    if (!descending && !all_pairs(p, kAscending)) return "Error: Probabilities must be in ascending order";
    if (!all_pairs(x, kAscending)) return "Error: Values must be in ascending order";
    if (!all(p, [](double ordinate) { return ordinate > 0 && ordinate < 1; }))
        return "Error: Probabilities must be between (0,1)";
    if (!within(x, min, max)) return "Error: Values must be between Min and Max";
    return nullptr;
}

CheckedPolygon through_points(double min, double max, const double* values, int n,
                              const double* probabilities, int m, bool descending) {
    min = numerics::finite_or_limit(min);
    max = numerics::finite_or_limit(max);
    if (const Message objection = object_to_points(min, max, values, n, probabilities, m, descending))
        return {{}, objection};
    return {polygon(min, max, view(values, n), view(probabilities, m), descending), nullptr};
}

Message object_to_sample(double min, double max, const double* values, int n) {
    if (missing(values, n)) return kNullData;
    if (n < 2) return "{data} array length must be >1 ";  // the blank at the end belongs to it
    if (!(max > min)) return kEmptyInterval;
    if (!within(view(values, n), min, max)) return "Error: Values must be between Min and Max";
    return nullptr;
}

std::vector<double> sorted(std::span<const double> values) {
    std::vector<double> copy(values.begin(), values.end());
    if (!std::ranges::is_sorted(copy)) std::ranges::sort(copy);
    return copy;
}

/// `curve` makes the polygon of min, max and the sorted data.
template <class Curve>
CheckedPolygon ogive(double min, double max, const double* values, int n, Curve curve) {
    min = numerics::finite_or_limit(min);
    max = numerics::finite_or_limit(max);
    if (const Message objection = object_to_sample(min, max, values, n)) return {{}, objection};
    return {curve(min, max, sorted(view(values, n))), nullptr};
}

Polygon evenly_spaced(double min, double max, std::vector<double> values) {
    std::vector<double> masses(values.size() + 1, 1.0);
    values.insert(values.begin(), min);
    values.push_back(max);
    return {knots_of_masses(std::move(values), std::move(masses)), {}};
}

}  // namespace

}  // namespace data

CumulA::CumulA(double min, double max, const double* values, int n, const double* probabilities, int m)
    : CheckedSegments(data::through_points(min, max, values, n, probabilities, m, false)) {}

CumulD::CumulD(double min, double max, const double* values, int n, const double* probabilities, int m)
    : CheckedSegments(data::through_points(min, max, values, n, probabilities, m, true)) {}

Ogive::Ogive(double min, double max, const double* sample, int n)
    : CheckedSegments(data::ogive(min, max, sample, n, data::evenly_spaced)) {}

OgiveU::OgiveU(double min, double max, const double* sample, int n, RandomStream& stream)
    : CheckedSegments(data::ogive(min, max, sample, n, [&](double lower, double upper, const auto& values) {
          std::vector<double> ordinates(values.size());
          stream.fill(ordinates);
          std::ranges::sort(ordinates);
          return data::polygon(lower, upper, values, ordinates, false);
      })) {}

}  // namespace pral
