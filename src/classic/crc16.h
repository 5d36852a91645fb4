// The CRC-16 of polynomial 0x1021, initial value 0xFFFF, most significant bit first, no final inversion.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace pral {

namespace crc16_detail {

constexpr std::array<std::uint16_t, 256> make_table() {
    std::array<std::uint16_t, 256> table{};
    for (unsigned byte = 0; byte < 256; ++byte) {
        unsigned crc = byte << 8;
        for (int bit = 0; bit < 8; ++bit) crc = crc << 1 ^ ((crc & 0x8000u) != 0 ? 0x1021u : 0u);
        table[byte] = static_cast<std::uint16_t>(crc);
    }
    return table;
}

inline constexpr auto kTable = make_table();

}  // namespace crc16_detail

/// The CRC of `bytes`, continued from that of the bytes before them.
constexpr std::uint16_t crc16(std::span<const std::byte> bytes, std::uint16_t before = 0xFFFF) {
    unsigned crc = before;
    for (const std::byte byte : bytes)
        crc = (crc << 8 & 0xFFFFu) ^ crc16_detail::kTable[crc >> 8 ^ std::to_integer<unsigned>(byte)];
    return static_cast<std::uint16_t>(crc);
}

}  // namespace pral
