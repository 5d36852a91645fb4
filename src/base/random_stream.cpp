#include "base/random_stream.h"

#include <algorithm>
#include <cstddef>

namespace pral {

namespace {

constexpr int kMiddle = 397;

/// The recurrence: the upper bit of one word and the lower bits of the next, twisted, onto the word in the
/// middle.
std::uint32_t twist(std::uint32_t upper, std::uint32_t lower, std::uint32_t middle) {
    const std::uint32_t y = (upper & 0x80000000u) | (lower & 0x7fffffffu);
    return middle ^ (y >> 1) ^ ((0u - (y & 1u)) & 0x9908b0dfu);
}

std::uint32_t temper(std::uint32_t y) {
    y ^= y >> 11;
    y ^= (y << 7) & 0x9d2c5680u;
    y ^= (y << 15) & 0xefc60000u;
    return y ^ (y >> 18);
}

}  // namespace

void RandomStream::seed(std::uint32_t seed) {
    state_[0] = seed;
    for (std::uint32_t i = 1; i < kWords; ++i)
        state_[i] = 1812433253u * (state_[i - 1] ^ (state_[i - 1] >> 30)) + i;
    next_ = kWords;
}

/// Plain loops without a modulus, which the compiler turns into vector code.
void RandomStream::refill() {
    if (next_ == kNeverSeeded) seed(5489);
    for (int k = 0; k < kWords - kMiddle; ++k)
        state_[k] = twist(state_[k], state_[k + 1], state_[k + kMiddle]);
    for (int k = kWords - kMiddle; k < kWords - 1; ++k)
        state_[k] = twist(state_[k], state_[k + 1], state_[k + kMiddle - kWords]);
    state_[kWords - 1] = twist(state_[kWords - 1], state_[0], state_[kMiddle - 1]);
    for (int k = 0; k < kWords; ++k) tempered_[k] = temper(state_[k]);
    next_ = 0;
}

void RandomStream::fill(std::span<double> out) {
    std::size_t filled = 0;
    while (filled < out.size()) {
        if (next_ >= kWords) refill();
        const std::size_t count = std::min<std::size_t>(out.size() - filled, kWords - next_);
        for (std::size_t i = 0; i < count; ++i) out[filled + i] = to_double(tempered_[next_ + i]);
        next_ += static_cast<int>(count);
        filled += count;
    }
}

}  // namespace pral
