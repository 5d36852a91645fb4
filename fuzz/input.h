// The bytes of a fuzz input as arguments.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

/// What a fuzzer, or driver.cpp, calls with one input after another.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace pral::fuzz {

class Input {
  public:
    Input(const std::uint8_t* data, std::size_t size) : data_(data), size_(size) {}

    /// The next byte, 0 when there are no more.
    unsigned byte() { return position_ < size_ ? data_[position_++] : 0; }

    /// Mostly one of the numbers on which code breaks, else any bits at all.
    double number() {
        constexpr double kHostile[] = {
            0.0,    -0.0,   1.0,     -1.0,  0.5,      2.0,   3.0,      1e-300,      5e-324,
            1e300,  -1e300, 0x1p-52, 1e-10, 1 - 1e-9, 1e5,   5001,     1e10,        1e17,
            0x1p53, 1e-5,   0.25,    10.0,  33.0,     171.7, -170.5,   -34.5,       709.8,
            1e154,  1e-154, 100.0,   1e8,   2.5,      1e-2,  0.999999, __DBL_MAX__, -__DBL_MAX__};
        constexpr unsigned kCount = sizeof kHostile / sizeof *kHostile;
        const unsigned choice = byte() % (kCount + 12);
        if (choice < kCount) return kHostile[choice];
        if (choice == kCount) return __builtin_nan("");
        if (choice == kCount + 1) return __builtin_inf();
        if (choice == kCount + 2) return -__builtin_inf();
        if (choice < kCount + 8) return byte() / 16.0;  // ordinary
        std::uint64_t bits = 0;
        for (int i = 0; i < 8; ++i) bits = bits << 8 | byte();
        double value;
        std::memcpy(&value, &bits, sizeof value);
        return value;
    }

  private:
    const std::uint8_t* data_;
    std::size_t size_, position_ = 0;
};

}  // namespace pral::fuzz
