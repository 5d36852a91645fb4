// Sums over data.
#pragma once

#include <array>
#include <cstddef>
#include <span>

namespace pral::numerics {

/// The sum of term(value) in four interleaved parts: the additions do not wait for one another, and their
/// order is the same on every platform.
template <class Term>
inline double interleaved_sum(std::span<const double> values, Term term) {
    constexpr std::size_t kParts = 4;
    std::array<double, kParts> parts = {};
    const std::size_t whole = values.size() / kParts * kParts;
    for (std::size_t i = 0; i < whole; i += kParts) {
        for (std::size_t k = 0; k < kParts; ++k) parts[k] += term(values[i + k]);
    }
    for (std::size_t i = whole; i < values.size(); ++i) parts[i - whole] += term(values[i]);
    return (parts[0] + parts[1]) + (parts[2] + parts[3]);
}

}  // namespace pral::numerics
