// Quantiles as the least integer whose cumulative reaches the percentile, whatever a family makes of exact hits.
#pragma once

#include <algorithm>
#include <cmath>
#include <concepts>
#include <span>
#include <vector>

#include "distributions/discrete/discrete.h"

namespace pral {

/// A family that the walk inverts.
template <class D>
concept Walkable = requires(const D& d) {
    d.start(0.5);
    d.mass_ratio(0.0);
    D::kWalk;
};

/// x with such a tail, 0 < tail < 1.
template <Family D>
double exact_inverse(const D& d, Tail t) {
    const auto [side, tail] = t;
    if (const auto point = d.point_mass()) return *point;
    if constexpr (Walkable<D>) {
        return side == Side::lower ? InversionWalk<D>(d, tail, true)()
                                   : InversionWalk<D>(d, 1 - tail, tail, false, true)();
    } else {
        return side == Side::lower ? d.quantile(tail) : quantile_upper(d, tail);
    }
}

/// The same for many tails on one side, in place.
template <Family D>
void exact_inverses(const D& d, Side side, std::span<double> tails) {
    constexpr std::size_t kWorthATable = 300;
    if (const auto point = d.point_mass()) {
        std::ranges::fill(tails, *point);
        return;
    }
    if constexpr (Walkable<D>) {
        if (tails.size() >= kWorthATable) {
            const auto [least, most] = std::ranges::minmax(tails);
            const bool lower = side == Side::lower;
            const double begin = lower ? least : most, end = lower ? most : least;
            if (const auto table = InversionTable<D>::make(d, side, begin, end, tails.size(), true)) {
                for (double& t : tails) t = (*table)(t);
                return;
            }
        }
    }
    for (double& t : tails) t = exact_inverse(d, {side, t});
}

}  // namespace pral
