// The generator of PralSample_Core: it has its own, of 15 bits, which nothing reseeds.
#pragma once

#include <cstdint>

namespace pral::classic {

/// The linear congruential generator that C runtimes for Windows offer as rand(), on every platform:
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

}  // namespace pral::classic
