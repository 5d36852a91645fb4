// The exponential function and the logarithm, written down: the same operations in the same order on every platform, without
// branches, so that loops over them become vector code. Each is right to 0.7 units in the last place.
#pragma once

#include <bit>
#include <cfloat>
#include <cmath>
#include <cstdint>
#include <limits>

namespace pral::numerics::written {

/// ln 2 in two parts; the first has so few digits that its products with exponents are exact.
inline constexpr double kLn2High = 0x1.62e42feep-1, kLn2Low = 0x1.a39ef35793c76p-33;

/// Added to a number below 2^51 it leaves the nearest integer in the last bits.
inline constexpr double kToInteger = 0x1.8p52;

/// 2^n for the n in the last bits.
inline double power_of_two(double n_to_integer) {
    return std::bit_cast<double>((std::bit_cast<std::uint64_t>(n_to_integer) + 1023) << 52);
}

/// e^r - 1 for |r| <= ln(2)/2, by Taylor's polynomial.
inline double expm1_reduced(double r) {
    const double rr = r * r, r4 = rr * rr;
    const double series =
        ((1.0 / 2 + r * (1.0 / 6)) + rr * (1.0 / 24 + r * (1.0 / 120))) +
        r4 *
            (((1.0 / 720 + r * (1.0 / 5040)) + rr * (1.0 / 40320 + r * (1.0 / 362880))) +
             r4 * ((1.0 / 3628800 + r * (1.0 / 39916800)) + rr * (1.0 / 479001600 + r * (1.0 / 6227020800))));
    return r + rr * series;
}

/// e^x = 2^n (1 + rest), 2^n as two factors: it may be denormal.
struct Exponential {
    double half, other_half, rest;
};

/// e^(x + low) of any x, and a `low` below its last digits.
inline Exponential exponential(double x, double low = 0) {
    constexpr double kLeast = -746, kMost = 710, kPerLn2 = 0x1.71547652b82fep0;
    x = kLeast > x ? kLeast : x;
    x = kMost < x ? kMost : x;
    const double n = (x * kPerLn2 + kToInteger) - kToInteger;
    const double r = (x - n * kLn2High) - (n * kLn2Low - low);
    const double half = 0.5 * n + kToInteger, rest = n - (half - kToInteger) + kToInteger;
    return {power_of_two(half), power_of_two(rest), expm1_reduced(r)};
}

inline double exp(double x) {
    const Exponential e = exponential(x);
    return (1 + e.rest) * e.half * e.other_half;
}

/// e^x - 1, right to 1.2 units in the last place.
inline double expm1(double x) {
    const Exponential e = exponential(x);
    return (e.half * e.rest + (e.half - 1 / e.other_half)) * e.other_half;
}

/// Positive, finite and normal, as log_ordinary asks of its argument.
inline bool ordinary(double x) {
    constexpr std::uint64_t kSmallest = std::bit_cast<std::uint64_t>(DBL_MIN);
    constexpr std::uint64_t kRange = std::bit_cast<std::uint64_t>(HUGE_VAL) - kSmallest;
    return std::bit_cast<std::uint64_t>(x) - kSmallest < kRange;
}

/// x = 2^k (1 + f), |ln(1 + f)| <= ln(2)/2. With s = f/(2 + f), ln(1 + f) = 2 atanh(s) = f - f^2/2 + s (f^2/2 + R), where
/// R = 2 (s^2/3 + s^4/5 + ...): only a small part of the result suffers from the rounding of s.
inline double log_ordinary(double x) {
    constexpr std::uint64_t kHalfRoot = std::bit_cast<std::uint64_t>(0x1.6a09e667f3bcdp-1);  // sqrt(1/2)
    constexpr std::uint64_t kOne = std::uint64_t{1023} << 52;
    const auto bits = std::bit_cast<std::uint64_t>(x);
    const std::uint64_t exponent = (bits - kHalfRoot + kOne) >> 52;  // k + 1023
    const double k = std::bit_cast<double>(exponent | std::bit_cast<std::uint64_t>(0x1p52)) - (0x1p52 + 1023);
    const double f = std::bit_cast<double>(bits - (exponent << 52) + kOne) - 1;
    const double s = f / (2 + f), y = s * s, yy = y * y, y4 = yy * yy, half_square = 0.5 * f * f;
    const double series = ((2.0 / 3 + y * (2.0 / 5)) + yy * (2.0 / 7 + y * (2.0 / 9))) +
                          y4 * (((2.0 / 11 + y * (2.0 / 13)) + yy * (2.0 / 15 + y * (2.0 / 17))) +
                                y4 * (2.0 / 19 + y * (2.0 / 21)));
    return k * kLn2High - ((half_square - (s * (half_square + y * series) + k * kLn2Low)) - f);
}

/// ln(1 + x) for an ordinary 1 + x, of which rounding takes something off; right to 1.3 units in the last place.
inline double log1p_ordinary(double x) {
    const double sum = 1 + x, larger = x > 1 ? x : 1, smaller = x > 1 ? 1 : x;
    return log_ordinary(sum) + (smaller - (sum - larger)) / sum;
}

/// ln(x/y) for an ordinary x/y; ln(1 + (x - y)/y) where these are close.
inline double log_ratio_ordinary(double x, double y) {
    const double excess = (x - y) / y, ratio = x / y, sum = 1 + excess;
    const bool close = std::fabs(excess) < 0.5;
    const double rest = (excess - (sum - 1)) / sum;
    return log_ordinary(close ? sum : ratio) + (close ? rest : 0);
}

/// ln(1 - e^-x) for an ordinary x.
inline double log1m_exp_ordinary(double x) {
    const Exponential e = exponential(-x);
    const double power = (1 + e.rest) * e.half * e.other_half;
    const double left = -(e.half * e.rest + (e.half - 1 / e.other_half)) * e.other_half;
    return log_ordinary(left) + (left > 0.5 ? ((1 - left) - power) / left : 0);
}

/// ln x of any x.
inline double log(double x) {
    if (ordinary(x)) return log_ordinary(x);
    if (x == 0) return -HUGE_VAL;
    if (x < 0) return std::numeric_limits<double>::quiet_NaN();
    return x < DBL_MIN ? log_ordinary(x * 0x1p54) - 54 * (kLn2High + kLn2Low)
                       : x;  // itself: infinity and NaN
}

}  // namespace pral::numerics::written
