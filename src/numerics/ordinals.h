// The doubles in their order as integers, so that any bracket is halved in 64 steps.
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
/// A double between the two: as many lie below it as above.
inline double middle_double(double low, double high) {
    const std::int64_t a = ordinal(low), b = ordinal(high);
    return of_ordinal(a / 2 + b / 2 + (a % 2 + b % 2) / 2);
}

}  // namespace pral::numerics
