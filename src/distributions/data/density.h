// Distributions given by their density: Histogram (level pieces), Relative (linear pieces).
#pragma once

#include "distributions/data/segments.h"

namespace pral {

/// n bars of equal width on [min, max], min < max, with heights proportional to f (each >= 0, not all 0).
struct Histogram : data::CheckedSegments<data::Level, data::EvenSegments> {
    Histogram(double min, double max, const double* f, int n);
};

/// min < max; weights >= 0, not all 0, at values within [min, max] that do not descend. The density is proportional to
/// the polygon through (min, 0), the points (values[i], weights[i]) and (max, 0); two points at one value are a step.
struct Relative : data::CheckedSegments<data::Sloped> {
    Relative(double min, double max, const double* values, int n, const double* weights, int m);
};

}  // namespace pral
