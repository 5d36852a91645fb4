// What each parameter of each family is, and its range.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace pral::objects {

/// The texts of a family's parameters in order, as "standard deviation, >= 0"; none for a name that is no family's. What
/// follows the last comma is the range:
///
///   any number
///   [whole] > 0, >= min and <= max, in (0,1]    bounds are numbers, names of other parameters or sums of both
///   an array                                    a table; its rules stand in the family's text
std::vector<std::string> parameter_texts(std::string_view family);

}  // namespace pral::objects
