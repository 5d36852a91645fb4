// The doubles in their order as integers, so that 64 halvings bring any two together, however many powers of ten lie between
// them.
#pragma once

#include <bit>
#include <cstdint>
#include <limits>

namespace pral::numerics {

/// Ascends with x; 0 for 0 and -0.
inline std::int64_t ordinal(double x) {
    const auto bits = std::bit_cast<std::int64_t>(x + 0.0);
    return bits >= 0 ? bits : std::numeric_limits<std::int64_t>::min() - bits;
}
inline double of_ordinal(std::int64_t ordinal) {
    return std::bit_cast<double>(ordinal >= 0 ? ordinal : std::numeric_limits<std::int64_t>::min() - ordinal);
}
/// The double halfway between a and b in this order.
inline double middle_double(double a, double b) {
    const std::int64_t low = ordinal(a), high = ordinal(b);
    return of_ordinal((low & high) + ((low ^ high) >> 1));
}

}  // namespace pral::numerics
