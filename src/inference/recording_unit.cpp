#include "inference/recording_unit.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numeric>

namespace pral::inference {

double recording_unit(std::span<const double> sorted) {
    constexpr int kMostDecimals = 9, kMostZeros = 9;
    constexpr double kLargest = 1e15;
    // Multiples of 10^-decimals: as decimal numbers, not as binary ones.
    const auto multiples = [&](int decimals) {
        const double unit = std::pow(10.0, std::abs(decimals));
        return std::ranges::all_of(sorted, [&](double x) {
            const double m = std::round(decimals >= 0 ? x * unit : x / unit);
            return std::fabs(m) < kLargest && (decimals >= 0 ? m / unit : m * unit) == x;
        });
    };
    for (int decimals = -kMostZeros; decimals <= kMostDecimals; ++decimals) {
        if (sorted.back() - sorted.front() < std::pow(10.0, -decimals) || !multiples(decimals)) continue;
        const double unit = std::pow(10.0, std::abs(decimals));
        std::int64_t divisor = 0;
        for (const double x : sorted) {
            const double m = std::round(decimals >= 0 ? x * unit : x / unit);
            divisor = std::gcd(divisor, static_cast<std::int64_t>(m));
            if (divisor == 1) break;
        }
        const double most = std::max(static_cast<double>(divisor), 1.0);
        return decimals >= 0 ? most / unit : most * unit;
    }
    double least = HUGE_VAL;
    for (std::size_t i = 1; i < sorted.size(); ++i) {
        if (sorted[i] > sorted[i - 1]) least = std::min(least, sorted[i] - sorted[i - 1]);
    }
    return std::isfinite(least) ? least : std::max(std::fabs(sorted.front()) * 0x1p-52, 1e-300);
}

}  // namespace pral::inference
