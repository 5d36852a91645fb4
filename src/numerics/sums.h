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

/// How many values are taken at a time.
inline constexpr std::size_t kSumBlock = 256;

/// The sum of ln term(value): mantissas are multiplied and exponents added, so that a block of values needs one logarithm.
/// term is called once for each value, in order.
template <class Term>
inline double sum_of_logs(std::span<const double> values, Term term) {
    constexpr std::size_t kBlock = kSumBlock;  // each product of 64 mantissas stays below 2^64
    constexpr std::uint64_t kOne = std::bit_cast<std::uint64_t>(1.0),
                            kMantissa = (std::uint64_t{1} << 52) - 1;
    constexpr std::uint64_t kSmallest = std::bit_cast<std::uint64_t>(DBL_MIN);
    constexpr std::uint64_t kOrdinary = std::bit_cast<std::uint64_t>(HUGE_VAL) - kSmallest;
    std::array<double, kBlock> terms;
    std::int64_t exponents = 0;
    double sum = 0;
    while (!values.empty()) {
        const std::span<const double> block = values.first(std::min(values.size(), kBlock));
        values = values.subspan(block.size());
        std::array<double, 4> products = {1, 1, 1, 1};
        std::int64_t block_exponents = 0;
        bool ordinary = true;  // positive, finite and normal
        for (std::size_t i = 0; i < block.size(); ++i) {
            terms[i] = term(block[i]);
            const auto bits = std::bit_cast<std::uint64_t>(terms[i]);
            ordinary &= bits - kSmallest < kOrdinary;
            block_exponents += static_cast<std::int64_t>(bits >> 52) - 1023;
            products[i % 4] *= std::bit_cast<double>((bits & kMantissa) | kOne);
        }
        if (ordinary) {
            exponents += block_exponents;
            sum += std::log((products[0] * products[1]) * (products[2] * products[3]));
        } else {
            for (std::size_t i = 0; i < block.size(); ++i) sum += std::log(terms[i]);
        }
    }
    return static_cast<double>(exponents) * kLn2 + sum;
}

/// The sum of block_sum(block) over the values, transformed one by one, in blocks, which block_sum may overwrite.
template <class Transform, class BlockSum>
double sum_by_blocks(std::span<const double> values, Transform transform, BlockSum block_sum) {
    std::array<double, kSumBlock> block;
    double sum = 0;
    while (!values.empty() && sum > -HUGE_VAL) {
        const std::size_t n = std::min(values.size(), block.size());
        for (std::size_t i = 0; i < n; ++i) block[i] = transform(values[i]);
        sum += block_sum(std::span<double>(block.data(), n));
        values = values.subspan(n);
    }
    return sum;
}

}  // namespace pral::numerics
