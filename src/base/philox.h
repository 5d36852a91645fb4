// Counter-based random numbers: Philox 4x64-10 (Salmon, Moraes, Dror and Shaw 2011), the generator of streams that
// callers make.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "base/seed_sequence.h"

namespace pral {

/// Four words at a time are a function of a key and a counter, so a stream's numbers depend on its name alone. NumPy's
/// Philox(SeedSequence) gives the same words.
class PhiloxStream {
  public:
    explicit PhiloxStream(SeedSequence name);

    const SeedSequence& name() const { return name_; }

    std::uint64_t word() {
        if (next_ == kBlock) refill();
        return block_[next_++];
    }
    /// In the middle of one of 2^52 equal cells of (0,1): never 0, never 1.
    double uniform() { return to_double(word()); }
    /// As many successive uniforms as `out` has elements.
    void fill(std::span<double> out);

    /// Where the stream stands: the counter of the last block made, and the place in it.
    struct Position {
        std::array<std::uint64_t, 4> counter;
        std::uint64_t next;
    };
    Position position() const { return {counter_, next_}; }
    void move_to(const Position& position);

  private:
    static constexpr std::size_t kBlock = 4;
    static double to_double(std::uint64_t word) { return (static_cast<double>(word >> 12) + 0.5) * 0x1p-52; }
    void advance();
    void refill();

    SeedSequence name_;
    std::array<std::uint64_t, 2> key_;
    std::array<std::uint64_t, 4> counter_ = {};
    std::array<std::uint64_t, kBlock> block_ = {};
    std::size_t next_ = kBlock;
};

/// The four words of a counter under a key.
std::array<std::uint64_t, 4> philox(std::array<std::uint64_t, 4> counter, std::array<std::uint64_t, 2> key);

}  // namespace pral
