#include "numerics/extended_log.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>

namespace pral::numerics {

namespace {

/// A factor of few bits and minus its logarithm.
struct Reducer {
    double factor;
    DoubleDouble minus_log;
};

constexpr int kCoarse = 128, kFine = 72;  // the fine steps cover |r| < 2^-6.8
constexpr double kFineStep = 0x1p-13;

/// ln v = 2 artanh((v - 1)/(v + 1)), 1/2 <= v <= 2, as a power series.
constexpr DoubleDouble log_by_series(double v) {
    const DoubleDouble t = divide({v - 1, 0}, two_sum(v, 1)), square = multiply(t, t);
    DoubleDouble power = t, sum = t;
    for (int k = 3; k < 80; k += 2) {
        power = multiply(power, square);
        sum = add(sum, divide(power, {static_cast<double>(k), 0}));
    }
    return {2 * sum.hi, 2 * sum.lo};
}

constexpr double rounded(double v, double unit) {
    return static_cast<double>(static_cast<std::int64_t>(v / unit + 0.5)) * unit;
}

struct Tables {
    DoubleDouble ln2;
    Reducer coarse[kCoarse];      // by the first seven bits of the significand
    Reducer fine[2 * kFine + 1];  // by the nearest multiple of the step

    constexpr Tables() : ln2(), coarse(), fine() {
        // ln 2 = 3 ln(5/4) + ln(128/125)
        ln2 = add(multiply(log_by_series(1.25), {3, 0}), negated(log_by_series(125.0 / 128)));
        for (int i = 0; i < kCoarse; ++i) {
            const double c = rounded(1 / (1 + (i + 0.5) / kCoarse), 0x1p-9);
            coarse[i] = {c, negated(log_by_series(c))};
        }
        // Arguments just below and above 1 keep their relative accuracy: nothing is reduced there.
        coarse[0] = {1, {0, 0}};
        coarse[kCoarse - 1] = {0.5, ln2};
        for (int j = -kFine; j <= kFine; ++j) {
            const double c = rounded(1 / (1 + j * kFineStep), 0x1p-20);
            fine[j + kFine] = {c, negated(log_by_series(c))};
        }
        fine[kFine] = {1, {0, 0}};
    }
};

constexpr Tables kTables;

}  // namespace

DoubleDouble extended_log(DoubleDouble v) {
    if (!(v.hi > 0 && v.hi <= std::numeric_limits<double>::max())) return {std::log(v.hi), 0};
    if (v.hi < 0x1p-1022) {
        return add(extended_log({v.hi * 0x1p64, v.lo * 0x1p64}), multiply(kTables.ln2, {-64, 0}));
    }
    const auto bits = std::bit_cast<std::uint64_t>(v.hi);
    const int exponent = static_cast<int>(bits >> 52) - 1023;
    // 2^-exponent in two factors, since it can leave the range of a double.
    const auto power = [](int e) {
        return std::bit_cast<double>(static_cast<std::uint64_t>(1023 + e) << 52);
    };
    const double half = power(-exponent / 2), rest = power(-exponent - -exponent / 2);
    const Reducer& coarse = kTables.coarse[(bits >> 45) & (kCoarse - 1)];
    const double scaled_factor = coarse.factor * half;
    DoubleDouble m = two_product(v.hi * half * rest, coarse.factor);
    m.lo += v.lo * scaled_factor * rest;

    const double r = m.hi - 1;
    const int j = static_cast<int>(r / kFineStep + (r < 0 ? -0.5 : 0.5));
    const Reducer& fine = kTables.fine[j + kFine];
    const DoubleDouble product = two_product(m.hi, fine.factor);
    const DoubleDouble s = fast_two_sum(product.hi - 1, product.lo + m.lo * fine.factor);

    const DoubleDouble square = two_product(s.hi, s.hi);
    const double x = s.hi;
    const double tail = square.hi * x * (1.0 / 3 - x * (0.25 - x * (0.2 - x * (1.0 / 6 - x * (1.0 / 7)))));
    DoubleDouble sum = two_sum(x, -0.5 * square.hi);
    sum.lo += s.lo - (0.5 * square.lo + x * s.lo) + tail;
    sum = fast_two_sum(sum.hi, sum.lo);
    sum = add(sum, fine.minus_log);
    DoubleDouble whole = coarse.minus_log;
    if (exponent == -1 && coarse.factor == 0.5) return sum;
    if (exponent != 0) whole = add(whole, multiply(kTables.ln2, {static_cast<double>(exponent), 0}));
    return add(whole, sum);
}

}  // namespace pral::numerics
