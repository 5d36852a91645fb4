// A 32-bit Mersenne Twister (Matsumoto and Nishimura 1998, MT19937) and its open-interval doubles.
#pragma once

#include <cstdint>
#include <span>

namespace pral {

/// MT19937, seeded with 5489 on first use. It produces its words in blocks of 624; single draws and filled
/// arrays read the same block, so they may be mixed freely.
class RandomStream {
  public:
    /// Restarts the stream: word 0 of the sequence of this seed comes next.
    void seed(std::uint32_t seed);

    std::uint32_t word() {
        if (next_ >= kWords) refill();
        return tempered_[next_++];
    }

    /// (word + 1/2) 2^-32, in [2^-33, 1 - 2^-33].
    double uniform() { return to_double(word()); }

    /// As many successive uniforms as `out` has elements.
    void fill(std::span<double> out);

  private:
    static constexpr int kWords = 624;
    static constexpr int kNeverSeeded = kWords + 1;

    static double to_double(std::uint32_t word) { return (word + 0.5) * 0x1p-32; }
    void refill();

    std::uint32_t state_[kWords] = {};
    std::uint32_t tempered_[kWords] = {};
    int next_ = kNeverSeeded;
};

}  // namespace pral
