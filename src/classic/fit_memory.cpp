#include "classic/fit_memory.h"

#include <bit>
#include <cstdint>
#include <cstring>

namespace pral::classic {

namespace {

/// Numbers are compared by their bits: NaN equals itself.
bool same(double a, double b) { return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b); }

bool same(const FitKey& a, const FitKey& b) {
    return a.code == b.code && a.uncertainty == b.uncertainty && same(a.TruncMin, b.TruncMin) &&
           same(a.TruncMax, b.TruncMax) && same(a.first_parameter, b.first_parameter) && a.key == b.key;
}

std::uint64_t hash_of(std::span<const double> data) {
    constexpr std::uint64_t kOdd = 0x9E3779B97F4A7C15u;
    std::uint64_t hash = data.size();
    for (const double x : data) hash = std::rotl((hash ^ std::bit_cast<std::uint64_t>(x)) * kOdd, 29);
    return hash;
}

}  // namespace

const Parameters* ResultCache::find(const FitKey& key, std::span<const double> data) {
    if (results_.latest() == nullptr) return nullptr;
    const Entry* const found = results_.find(hash_of(data), [&](const Entry& entry) {
        return entry.data.size() == data.size() && same(entry.key, key) &&
               std::memcmp(entry.data.data(), data.data(), data.size_bytes()) == 0;
    });
    return found != nullptr ? &found->parameters : nullptr;
}

void ResultCache::store(const FitKey& key, std::span<const double> data, const Parameters& parameters) {
    const std::size_t bytes = data.size_bytes() + key.key.size();
    if (bytes > kMostBytes) return;
    results_.add(hash_of(data), {key, {data.begin(), data.end()}, parameters}, bytes);
}

FitMemory& fit_memory() {
    static FitMemory memory;
    return memory;
}

}  // namespace pral::classic
