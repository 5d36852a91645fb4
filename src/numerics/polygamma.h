// The digamma function and its first derivatives.
#pragma once

#include <cmath>

namespace pral::numerics {

/// The derivative of order `order`, 0 to 3, of the digamma function at x > 0: upwards by the recurrence to where the
/// asymptotic series has the digits (DLMF 5.15.5, 5.15.8).
inline double polygamma(int order, double x) {
    constexpr double kFar = 20;
    constexpr double kBernoulli[] = {1.0 / 6,  -1.0 / 30,     1.0 / 42, -1.0 / 30,
                                     5.0 / 66, -691.0 / 2730, 7.0 / 6};
    double factorial = 1;  // of the order
    for (int i = 2; i <= order; ++i) factorial *= i;
    // Without the sign (-1)^(order + 1), which the terms of all but the digamma function share.
    double sum = 0;
    for (; x < kFar; x += 1) sum += factorial / std::pow(x, order + 1);
    double tail = (order == 0 ? -std::log(x) : factorial / order / std::pow(x, order)) +
                  0.5 * factorial / std::pow(x, order + 1);
    double ratio = order == 0 ? 0.5 : 0.5 * factorial * (order + 1);  // (2k + order - 1)!/(2k)!
    for (int k = 1; k <= 7; ++k) {
        tail += kBernoulli[k - 1] * ratio / std::pow(x, 2 * k + order);
        ratio *= static_cast<double>(2 * k + order) * (2 * k + order + 1) /
                 (static_cast<double>(2 * k + 1) * (2 * k + 2));
    }
    return order % 2 == 0 ? -(sum + tail) : sum + tail;
}

}  // namespace pral::numerics
