// Sums over data.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <span>

#include "numerics/constants.h"

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

/// The sum of ln term(value): mantissas are multiplied and exponents added, so that a block of values needs one logarithm.
template <class Term>
inline double sum_of_logs(std::span<const double> values, Term term) {
    constexpr std::size_t kBlock = 256;  // each product of 64 mantissas stays below 2^64
    constexpr std::uint64_t kOne = std::bit_cast<std::uint64_t>(1.0),
                            kMantissa = (std::uint64_t{1} << 52) - 1;
    constexpr std::uint64_t kSmallest = std::bit_cast<std::uint64_t>(DBL_MIN);
    constexpr std::uint64_t kOrdinary = std::bit_cast<std::uint64_t>(HUGE_VAL) - kSmallest;
    std::int64_t exponents = 0;
    double sum = 0;
    while (!values.empty()) {
        const std::span<const double> block = values.first(std::min(values.size(), kBlock));
        values = values.subspan(block.size());
        std::array<double, 4> products = {1, 1, 1, 1};
        std::int64_t block_exponents = 0;
        bool ordinary = true;  // positive, finite and normal
        for (std::size_t i = 0; i < block.size(); ++i) {
            const auto bits = std::bit_cast<std::uint64_t>(term(block[i]));
            ordinary &= bits - kSmallest < kOrdinary;
            block_exponents += static_cast<std::int64_t>(bits >> 52) - 1023;
            products[i % 4] *= std::bit_cast<double>((bits & kMantissa) | kOne);
        }
        if (ordinary) {
            exponents += block_exponents;
            sum += std::log((products[0] * products[1]) * (products[2] * products[3]));
        } else {
            for (const double value : block) sum += std::log(term(value));
        }
    }
    return static_cast<double>(exponents) * kLn2 + sum;
}

}  // namespace pral::numerics
