// In which unit data have been written down.
#pragma once

#include <span>

namespace pral::inference {

/// The largest number of which all values are multiples, among those with few decimal digits; where they have too many
/// digits, the smallest distance of two of them. The values ascend.
double recording_unit(std::span<const double> sorted);

}  // namespace pral::inference
