// Error-free sums and products (Dekker 1971, Knuth TAOCP 4.2.2), for the few places where the last bits of an
// argument decide the result. No fused multiply-add: it is emulated, slowly, on processors that the library
// must run on.
#pragma once

#include <cstddef>

namespace pral::numerics {

/// An unevaluated sum; |lo| is at most half an ulp of hi.
struct DoubleDouble {
    double hi, lo;
};

/// a + b exactly, |a| >= |b| (or a = 0).
inline constexpr DoubleDouble fast_two_sum(double a, double b) {
    const double sum = a + b;
    return {sum, b - (sum - a)};
}

/// a + b exactly.
inline constexpr DoubleDouble two_sum(double a, double b) {
    const double sum = a + b;
    const double b_rounded = sum - a;
    return {sum, (a - (sum - b_rounded)) + (b - b_rounded)};
}

/// The upper 26 and the lower 26 bits of a (|a| < 2^996).
inline constexpr DoubleDouble split(double a) {
    const double c = 134217729.0 * a;  // 2^27 + 1
    const double hi = c - (c - a);
    return {hi, a - hi};
}

/// a b exactly, with the halves of b given (|a b| above 2^-968 and without overflow).
inline constexpr DoubleDouble two_product(double a, double b, DoubleDouble b_halves) {
    const double product = a * b;
    const DoubleDouble h = split(a);
    return {product,
            ((h.hi * b_halves.hi - product) + h.hi * b_halves.lo + h.lo * b_halves.hi) + h.lo * b_halves.lo};
}

inline constexpr DoubleDouble two_product(double a, double b) { return two_product(a, b, split(b)); }

inline constexpr DoubleDouble negated(DoubleDouble v) { return {-v.hi, -v.lo}; }

/// a + b to about 100 bits.
inline constexpr DoubleDouble add(DoubleDouble a, DoubleDouble b) {
    const DoubleDouble s = two_sum(a.hi, b.hi), t = two_sum(a.lo, b.lo);
    const DoubleDouble u = fast_two_sum(s.hi, s.lo + t.hi);
    return fast_two_sum(u.hi, u.lo + t.lo);
}

/// a b to about 100 bits, |a|, |b| < 2^996.
inline constexpr DoubleDouble multiply(DoubleDouble a, DoubleDouble b) {
    const DoubleDouble p = two_product(a.hi, b.hi);
    return fast_two_sum(p.hi, p.lo + (a.hi * b.lo + a.lo * b.hi));
}

/// a / b to about 100 bits.
inline constexpr DoubleDouble divide(DoubleDouble a, DoubleDouble b) {
    const double quotient = a.hi / b.hi;
    const DoubleDouble back = two_product(quotient, b.hi);
    return fast_two_sum(quotient, ((a.hi - back.hi) - back.lo + a.lo - quotient * b.lo) / b.hi);
}

/// a / b likewise; where the quotient or the errors leave the range of a double, the rounded quotient alone.
inline constexpr DoubleDouble exact_quotient(DoubleDouble a, DoubleDouble b) {
    const DoubleDouble exact = divide(a, b);
    return exact.lo - exact.lo == 0 ? exact : DoubleDouble{a.hi / b.hi, 0};
}
inline constexpr DoubleDouble exact_quotient(double a, double b) {
    return exact_quotient(DoubleDouble{a, 0}, {b, 0});
}

/// c[0] x^(N-1) + ... + c[N-1] with the rounding errors of Horner's rule carried along (Graillat, Langlois,
/// Louvet 2005): as good as evaluated in twice the precision and rounded. `low` holds what rounding to double
/// took off the coefficients.
template <std::size_t N>
inline constexpr DoubleDouble compensated_horner(const double (&c)[N], const double (&low)[N],
                                                 DoubleDouble x) {
    const DoubleDouble halves = split(x.hi);
    double sum = c[0], error = low[0];
    for (std::size_t i = 1; i < N; ++i) {
        const DoubleDouble product = two_product(sum, x.hi, halves);
        const DoubleDouble next = two_sum(product.hi, c[i]);
        error = error * x.hi + (product.lo + next.lo + sum * x.lo + low[i]);
        sum = next.hi;
    }
    return fast_two_sum(sum, error);
}

}  // namespace pral::numerics
