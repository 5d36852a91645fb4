// The natural logarithm of a doubled-precision argument to about 95 bits, with the sums and products that its
// users need: exponents that are small differences of large products keep their digits.
#pragma once

#include "numerics/double_double.h"

namespace pral::numerics {

/// ln(v.hi + v.lo); for 0, negative numbers, infinity and NaN as std::log. Absolute error 1e-28, and near 1 the
/// same relative to the result. Two table reductions leave |s| < 2^-13 for the series of ln(1 + s).
DoubleDouble extended_log(DoubleDouble v);

inline constexpr DoubleDouble negated(DoubleDouble v) { return {-v.hi, -v.lo}; }

/// a + b to about 100 bits.
inline constexpr DoubleDouble add(DoubleDouble a, DoubleDouble b) {
    const DoubleDouble s = two_sum(a.hi, b.hi), t = two_sum(a.lo, b.lo);
    const DoubleDouble u = fast_two_sum(s.hi, s.lo + t.hi);
    return fast_two_sum(u.hi, u.lo + t.lo);
}

/// a b to about 100 bits, |a|, |b| < 2^996.
inline constexpr DoubleDouble multiply(DoubleDouble a, DoubleDouble b) {
    const DoubleDouble p = two_product(a.hi, b.hi);
    return fast_two_sum(p.hi, p.lo + (a.hi * b.lo + a.lo * b.hi));
}

}  // namespace pral::numerics
