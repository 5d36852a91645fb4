#include "distributions/data/density.h"

#include <algorithm>

namespace pral {

namespace {

using data::Knots;

Message object_to_heights(double min, double max, const double* f, int n) {
    const auto heights = data::view(f, n);
    if (data::missing(f, n)) return data::kNullHeights;
    if (!(max > min)) return data::kEmptyInterval;
    if (!data::all(heights, data::kNotNegative)) return "Error: f values must be >=0";
    if (data::all(heights, [](double height) { return height == 0; }))
        return "Error: at least one f value must be >0";
    return nullptr;
}

/// A power of two that brings numbers whose largest is given near 1 when they are so large or so small that their products
/// and sums could leave the range of a double; otherwise 1. Multiplying by it rounds nothing that matters.
double moderating_factor(double largest) {
    return largest > 0x1p200 ? 0x1p-600 : largest < 0x1p-200 ? 0x1p600 : 1;
}

Message object_to_polygon(double min, double max, const double* values, int n, const double* weights, int m) {
    const auto x = data::view(values, n), heights = data::view(weights, m);
    if (data::missing(values, n)) return data::kNullValues;
    if (data::missing(weights, m)) return data::kNullWeights;
    if (!(max > min)) return data::kEmptyInterval;
    if (x.size() != heights.size()) return "Error: {Values} and {Weights} arrays must be same size";
    if (!data::all(heights, data::kNotNegative)) return "Error: {Weights} must be >=0";
    if (data::all(heights, [](double height) { return height == 0; }))
        return "Error: at least one Weight value must be >0";
    if (!data::all_pairs(x, data::kNotDescending)) return "Error: {Values} must be in ascending order";
    if (!data::all(x, [=](double value) { return value >= min && value <= max; }))
        return "Error: {Values} must be between Min and Max";
    return nullptr;
}

data::CheckedSegments<data::Level, data::EvenSegments> histogram(double min, double max, const double* f,
                                                                 int n) {
    min = numerics::finite_or_limit(min);
    max = numerics::finite_or_limit(max);
    if (const Message objection = object_to_heights(min, max, f, n)) return {{}, objection};
    const auto heights = data::view(f, n);
    auto masses = data::scaled_copy(heights, moderating_factor(*std::ranges::max_element(heights)));
    return {{data::EvenSegments(min, max, heights.size()), data::knots_of_masses({}, std::move(masses)), {}},
            nullptr};
}

data::Sloped::Ends relative_ends(double left, double right) {
    const double larger = std::max(left, right);
    return larger > 0 ? data::Sloped::Ends{left / larger, right / larger} : data::Sloped::Ends{1, 1};
}

data::CheckedSegments<data::Sloped> relative(double min, double max, const double* values, int n,
                                             const double* weights, int m) {
    min = numerics::finite_or_limit(min);
    max = numerics::finite_or_limit(max);
    if (const Message objection = object_to_polygon(min, max, values, n, weights, m)) return {{}, objection};

    std::vector<double> x = {min};
    x.insert(x.end(), values, values + n);
    x.push_back(max);
    std::vector<double> heights = {0};
    heights.insert(heights.end(), weights, weights + m);
    heights.push_back(0);
    heights = data::scaled_copy(heights, moderating_factor(*std::ranges::max_element(heights)));

    const double unit = moderating_factor(max - min);
    std::vector<double> areas(x.size() - 1);
    data::Sloped shape{std::vector<data::Sloped::Ends>(areas.size())};
    bool any = false;
    for (std::size_t i = 0; i < areas.size(); ++i) {
        areas[i] = (heights[i] + heights[i + 1]) * (x[i + 1] * unit - x[i] * unit) * 0.5;
        shape.ends[i] = relative_ends(heights[i], heights[i + 1]);
        any |= areas[i] > 0;
    }
    if (!any) return {{}, "Error: the area under {Weights} must be >0"};
    return {{data::knots_of_masses(std::move(x), std::move(areas)), std::move(shape)}, nullptr};
}

}  // namespace

Histogram::Histogram(double min, double max, const double* f, int n)
    : CheckedSegments(histogram(min, max, f, n)) {}

Relative::Relative(double min, double max, const double* values, int n, const double* weights, int m)
    : CheckedSegments(relative(min, max, values, n, weights, m)) {}

}  // namespace pral
