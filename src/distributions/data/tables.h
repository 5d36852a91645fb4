// What the families that are defined by tables share: reading a table argument, asking for its order, finding
// the place of a percentile among running sums.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "base/message.h"
#include "numerics/constants.h"

namespace pral::data {

inline constexpr Message kNullValues = "Error: values must not be null";
inline constexpr Message kNullProbabilities = "Error: probabilities must not be null";
inline constexpr Message kNullWeights = "Error: weights must not be null";
inline constexpr Message kNullHeights = "Error: f must not be null";
inline constexpr Message kNullData = "Error: data must not be null";
inline constexpr Message kNoValues = "Error: Values must not be empty";
inline constexpr Message kEmptyInterval = "Error: Max must be > Min";

/// A table argument: a pointer and a count, which is none when negative. A null pointer is an empty view.
inline std::span<const double> view(const double* table, int count) {
    return {table, table == nullptr ? 0 : static_cast<std::size_t>(std::max(count, 0))};
}

inline bool missing(const double* table, int count) { return table == nullptr && count > 0; }

/// Whether every entry meets `condition`. No early exit: the loop becomes vector code.
template <class Condition>
bool all(std::span<const double> table, Condition condition) {
    bool met = true;
    for (const double entry : table) met &= condition(entry);
    return met;
}

/// Whether every entry and its successor meet `condition`.
template <class Condition>
bool all_pairs(std::span<const double> table, Condition condition) {
    bool met = true;
    for (std::size_t i = 1; i < table.size(); ++i) met &= condition(table[i - 1], table[i]);
    return met;
}

// Conditions that NaN fails.
inline constexpr auto kNotNegative = [](double entry) { return entry >= 0; };
inline constexpr auto kAscending = [](double a, double b) { return a < b; };
inline constexpr auto kDescending = [](double a, double b) { return a > b; };
inline constexpr auto kNotDescending = [](double a, double b) { return a <= b; };

/// A strict order of all doubles: NaN comes last.
inline bool nan_last(double a, double b) { return a < b || (a == a && b != b); }

/// The running sums of `terms` (each >= 0), never descending. Blocks are summed on their own and then moved up by what
/// precedes them: rounding errors do not add up along the whole table, and the additions of several blocks overlap.
void running_sums(std::span<const double> terms, std::span<double> sums);

/// The running sums from the upper end: sums[i] = terms[i] + ... + the last term.
std::vector<double> running_sums_from_above(std::span<const double> terms);

/// A private copy: every entry limited to the finite range, times `factor`.
std::vector<double> scaled_copy(std::span<const double> weights, double factor);

/// Turns percentiles (0 < p < 1) into values, in place: with k the first place where ascending[k] >= p, value(k, p). The
/// last of `ascending` must be 1. Many percentiles are looked up through a guide table (Chen and Asau 1974), which gives
/// the first candidate of each of 2^j equal intervals of p, some four intervals for each place: on average fewer than two
/// comparisons, whatever the table.
template <class Value>
void invert_all(std::span<double> p, std::span<const double> ascending, Value value) {
    if (p.size() < ascending.size() / 2) {
        for (double& each : p) {
            const auto place = std::ranges::lower_bound(ascending, each);
            each = value(static_cast<std::size_t>(place - ascending.begin()), each);
        }
        return;
    }
    std::size_t cells = 4;
    while (cells < 4 * ascending.size() && cells < 4 * p.size()) cells *= 2;
    std::vector<std::uint32_t> first(cells);
    std::uint32_t k = 0;
    for (std::size_t cell = 0; cell < cells; ++cell) {
        while (ascending[k] < static_cast<double>(cell) / static_cast<double>(cells)) ++k;
        first[cell] = k;
    }
    const double scale = static_cast<double>(cells);
    for (double& each : p) {
        std::size_t place = first[static_cast<std::size_t>(each * scale)];
        while (ascending[place] < each) ++place;
        each = value(place, each);
    }
}

}  // namespace pral::data
