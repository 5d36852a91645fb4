// Evaluation of polynomials and Chebyshev sums from the tables of coefficients.h.
#pragma once

#include <cstddef>

namespace pral::numerics {

/// c[0] x^(N-1) + ... + c[N-1] by Horner's rule.
template <std::size_t N>
inline constexpr double horner(const double (&c)[N], double x) {
    double sum = c[0];
    for (std::size_t i = 1; i < N; ++i) sum = sum * x + c[i];
    return sum;
}

/// c[0] + c[1] x + ... + c[N-1] x^(N-1), as four polynomials in x^4 that do not wait for one another.
template <std::size_t N>
inline constexpr double polynomial(const double (&c)[N], double x) {
    const double x2 = x * x, x4 = x2 * x2;
    double parts[4] = {};
    for (std::size_t i = (N + 3) / 4; i-- > 0;) {
        for (std::size_t j = 0; j < 4; ++j) parts[j] = parts[j] * x4 + (4 * i + j < N ? c[4 * i + j] : 0);
    }
    return (parts[0] + x * parts[1]) + x2 * (parts[2] + x * parts[3]);
}

/// Half of c[0] plus the sum of c[k] T_k(x), k = 1 .. N-1, by Clenshaw's recurrence.
template <std::size_t N>
inline constexpr double chebyshev(const double (&c)[N], double x) {
    double b0 = 0, b1 = 0, b2 = 0;
    for (std::size_t k = N; k-- > 0;) {
        b2 = b1;
        b1 = b0;
        b0 = 2 * x * b1 - b2 + c[k];
    }
    return 0.5 * (b0 - b2);
}

}  // namespace pral::numerics
