// Draws from data: permutations, bootstrap resamples, and the percentile that the bootstrap takes of them.
#pragma once

#include <cstddef>
#include <vector>

#include "base/random_stream.h"
#include "statistics/moments.h"

namespace pral::statistics {

/// A random permutation of 0 .. count - 1: the places of `count` draws of the stream in ascending order.
void shuffle(int count, double* out, RandomStream& stream);

/// An index below n, drawn for the bootstrap: each with the same probability.
inline std::size_t draw_index(std::size_t n, RandomStream& stream) {
    return static_cast<std::size_t>(static_cast<double>(n) * stream.uniform());
}

/// A bootstrap replicate of the data: as many elements drawn with replacement.
std::vector<double> resample(Data data, RandomStream& stream);

/// The p-th percentile of the values (at least one), by linear interpolation between order statistics at position
/// (n - 1) p + 1; 0 when p is not in [0, 1]. Reorders the values.
double percentile(std::vector<double>& values, double p);

}  // namespace pral::statistics
