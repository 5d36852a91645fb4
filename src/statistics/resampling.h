// Draws from data: samples, permutations, bootstrap resamples, and the percentile that the bootstrap takes of them.
#pragma once

#include <cstdint>
#include <vector>

#include "boundary/random.h"
#include "statistics/moments.h"

namespace pral::statistics {

/// The 15-bit linear congruential generator that C runtimes for Windows offer as rand(), on every platform:
/// x = 214013 x + 2531011 modulo 2^32, of which bits 16 to 30 are given out.
class RuntimeRandom {
  public:
    static constexpr int kMaximum = 32767;
    int next() {
        state_ = state_ * 214013u + 2531011u;
        return static_cast<int>(state_ >> 16 & 0x7fff);
    }

  private:
    std::uint32_t state_ = 1;
};

/// The generator of the process; nothing reseeds it.
RuntimeRandom& runtime_random();

/// `count` elements of `data` (not empty), drawn with replacement by the runtime generator. The index is rounded,
/// so that the first and the last element come half as often as the others.
void sample(Data data, int count, double* out, RuntimeRandom& random);

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
