// What families become at the edges of their parameters.
#pragma once

#include <span>
#include <string_view>
#include <vector>

#include "inference/fit.h"

namespace pral::inference {

/// The families with fewer parameters that a family holds at edges of its parameters, or inside.
std::vector<std::string_view> contained_in(std::string_view family);

/// The family that a fit at an edge has become: the smallest of those that it holds which fits as well. Empty where there
/// is none among `models`.
std::string_view limit_of(const Fit& fit, std::span<const Model> models);

}  // namespace pral::inference
