// Distributions given by points of their cumulative: CumulA, CumulD, and the Ogives of a sample.
#pragma once

#include <span>
#include <vector>

#include "base/random_stream.h"
#include "distributions/data/segments.h"

namespace pral {

namespace data {

using Polygon = Segments<Level>;

/// The polygon through (min, 0), the points (values[i], ordinates[i]) and (max, 1). `descending`: the ordinates are
/// probabilities of exceeding the values.
Polygon polygon(double min, double max, std::span<const double> values, std::span<const double> ordinates,
                bool descending);
using CheckedPolygon = CheckedSegments<Level>;

}  // namespace data

/// min < max; values strictly ascending within [min, max]; their cumulative probabilities strictly ascending within
/// (0, 1). The cumulative is the polygon through (min, 0), the points and (max, 1).
struct CumulA : data::CheckedPolygon {
    CumulA(double min, double max, const double* values, int n, const double* probabilities, int m);
};

/// CumulA given by the probabilities of exceeding each value, strictly descending.
struct CumulD : data::CheckedPolygon {
    CumulD(double min, double max, const double* values, int n, const double* probabilities, int m);
};

/// min < max; data of at least 2 values within [min, max], in any order. The cumulative is the polygon through (min, 0),
/// (x_(i), i/(n + 1)) for the sorted data, and (max, 1).
struct Ogive : data::CheckedPolygon {
    Ogive(double min, double max, const double* sample, int n);
};

/// Ogive with n sorted uniform draws in place of the ordinates i/(n + 1): as uncertain as the percentiles of the order
/// statistics are. They are drawn when the object is made, once its data are found to be in order.
struct OgiveU : data::CheckedPolygon {
    OgiveU(double min, double max, const double* sample, int n, RandomStream& stream);
};

}  // namespace pral
