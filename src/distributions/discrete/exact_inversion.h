// Quantiles without the short cuts of the classic calls: the least integer whose cumulative reaches the percentile, at any
// parameters, and of mixtures with zeros as wholes.
#pragma once

#include <algorithm>
#include <cmath>
#include <concepts>
#include <span>
#include <vector>

#include "distributions/discrete/discrete.h"
#include "distributions/inflated/zero_inflated.h"
#include "distributions/inflated/zero_truncated.h"

namespace pral {

/// A family that the walk inverts.
template <class D>
concept Walkable = requires(const D& d) {
    d.start(0.5);
    d.mass_ratio(0.0);
    D::kWalk;
};

/// The tail of the base family that belongs to a tail of its variant; none where the value is known: `value` then.
struct BaseTail {
    Tail of_base;
    bool known;
    double value;
};

template <class Base, class Checks>
BaseTail base_tail(const ZeroInflated<Base, Checks>& d, Tail t) {
    const double lower = t.side == Side::lower ? t.probability : 1 - t.probability,
                 upper = t.side == Side::lower ? 1 - t.probability : t.probability;
    const auto sided = [&](Side side, double tail) {
        return BaseTail{{side, std::min(tail / d.pi, 1 - 0x1p-53)}, false, 0};
    };
    // From below the values under 0, then all zeros, then the others.
    const double negative = d.pi * tails(d.base, -1).lower, positive = d.pi * tails(d.base, 0).upper;
    if (lower <= negative) return sided(Side::lower, lower);
    const bool beyond =
        t.side == Side::upper ? upper < positive : lower > d.pi * tails(d.base, 0).lower + (1 - d.pi);
    if (beyond) return sided(Side::upper, upper);
    return {{}, true, 0};
}

template <class Base, class Checks>
BaseTail base_tail(const ZeroTruncated<Base, Checks>& d, Tail t) {
    const auto [zero, rest] = tails(d.base, 0);
    const double lower = zero + rest * (t.side == Side::lower ? t.probability : 1 - t.probability);
    const double upper = rest * (t.side == Side::lower ? 1 - t.probability : t.probability);
    return {lower <= 0.5 ? Tail{Side::lower, lower} : Tail{Side::upper, upper}, false, 0};
}

template <class D>
concept CountVariant = requires(const D& d, Tail t) {
    d.base;
    { base_tail(d, t) } -> std::same_as<BaseTail>;
};

/// x with such a tail, 0 < tail < 1.
template <Family D>
double exact_inverse(const D& d, Tail t) {
    const auto [side, tail] = t;
    if (const auto point = d.point_mass()) return *point;
    if constexpr (CountVariant<D>) {
        const BaseTail base = base_tail(d, t);
        return base.known ? base.value : std::max(exact_inverse(d.base, base.of_base), d.support().lower);
    } else if constexpr (Walkable<D>) {
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
    if constexpr (CountVariant<D>) {
        std::vector<double> sided[2];
        std::vector<std::size_t> places[2];
        for (std::size_t i = 0; i < tails.size(); ++i) {
            const BaseTail base = base_tail(d, {side, tails[i]});
            tails[i] = base.value;
            if (base.known) continue;
            const bool upper = base.of_base.side == Side::upper;
            sided[upper].push_back(base.of_base.probability);
            places[upper].push_back(i);
        }
        const double least = d.support().lower;
        for (const bool upper : {false, true}) {
            exact_inverses(d.base, upper ? Side::upper : Side::lower, sided[upper]);
            for (std::size_t j = 0; j < places[upper].size(); ++j)
                tails[places[upper][j]] = std::max(sided[upper][j], least);
        }
        return;
    } else if constexpr (Walkable<D>) {
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
