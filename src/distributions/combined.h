// Distributions made of others: kept between bounds, moved and scaled, mixed.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "distributions/univariate.h"

namespace pral {

/// One end of what is kept: a value, which itself is kept, or a percentile of the whole.
struct End {
    double number;
    bool is_percentile;
};

/// `base` given that it lies between two ends. Values that have a probability of their own are kept with it when they are
/// an end. Null when no probability lies between them: the text says so.
Shared truncated(Shared base, End lower, End upper, std::string& objection);

/// factor X + shift, factor not 0; both finite.
Shared affine(Shared base, double factor, double shift, std::string& objection);

/// With probability weights[i]/(their sum) a value of components[i]. Weights are finite, >= 0 and not all 0.
Shared mixture(std::vector<Shared> components, std::vector<double> weights, std::string& objection);

}  // namespace pral
