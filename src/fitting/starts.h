// What the estimators of start values share.
#pragma once

#include <algorithm>
#include <array>
#include <initializer_list>
#include <vector>

#include "fitting/fitted_family.h"

namespace pral::fitting {

inline constexpr Message kNegativeData = "Error: Unable to perform the fit, data have lower 0 values";
inline constexpr Message kZeroData = "Error: 0 - in input data";
inline constexpr Message kImpossible = "Error: Unable to perform the fit";
/// Fails without a message.
inline constexpr Message kSilent = "";

inline Parameters place(std::initializer_list<double> values) {
    Parameters parameters = {};
    std::copy(values.begin(), values.end(), parameters.begin());
    return parameters;
}
inline Starts one(std::initializer_list<double> values) { return {place(values)}; }

/// The objection to data of a family on the positive numbers.
inline Message positive(const Sample& x) {
    if (x.min() < 0) return kNegativeData;
    return x.min() > 0 ? nullptr : kZeroData;
}
/// The objection where zeros are welcome.
inline Message not_negative(const Sample& x) { return x.min() < 0 ? kNegativeData : nullptr; }

/// The location and scale that lead two quantiles of a standard distribution through those of the data.
struct LocationAndScale {
    double location, scale;

    template <class D>
    LocationAndScale(const D& standard, const Sample& x, double p = 0.1)
        : LocationAndScale(x.quantile(p), standard.quantile(p), x.quantile(1 - p),
                           pral::quantile_upper(standard, p)) {
        if (scale > 0) return;
        location = x.quantile(0.5);  // most values are the same
        scale = x.deviation();
    }

  private:
    LocationAndScale(double x1, double z1, double x2, double z2)
        : location(0.5 * (x1 + x2) - 0.5 * (z1 + z2) * (x2 - x1) / (z2 - z1)), scale((x2 - x1) / (z2 - z1)) {}
};

/// How far the data reach beyond their smallest value: to the upper quartile, or by their deviation where that ties.
inline double reach(const Sample& x) {
    const double to_quartile = x.quantile(0.75) - x.min();
    return to_quartile > 0 ? to_quartile : x.deviation();
}

/// Distances from the ends of the data at which unknown ends of a support are tried, in parts of the range.
std::span<const double> end_distances();

/// About so many of the values, at equal distances in their order, and both ends of the data; all where they are no more.
std::vector<double> thinned(std::span<const double> values, std::size_t count);

/// The values less an origin, or their logarithms.
std::vector<double> moved(const Sample& x, double origin);
std::vector<double> logarithms(const Sample& x);

}  // namespace pral::fitting
