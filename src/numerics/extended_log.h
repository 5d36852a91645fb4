// The natural logarithm of a doubled-precision argument to about 95 bits: exponents that are small differences of large
// products keep their digits.
#pragma once

#include "numerics/double_double.h"

namespace pral::numerics {

/// ln(v.hi + v.lo); for 0, negative numbers, infinity and NaN as std::log. Absolute error 1e-28, and near 1 the
/// same relative to the result. Two table reductions leave |s| < 2^-13 for the series of ln(1 + s).
DoubleDouble extended_log(DoubleDouble v);

}  // namespace pral::numerics
