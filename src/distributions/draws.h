// Values of families for the models that are built on them.
#pragma once

#include <algorithm>
#include <span>

#include "distributions/truncated.h"

namespace pral {

/// One value of the stream, as a bare call of the family draws it: the percentile before the parameters are looked at,
/// then the family's own generator or the inverse. Returns the family's objection to its parameters, or null.
template <Family D>
Message draw(double& out, const D& d, RandomStream& stream) {
    const double u = stream.uniform();
    if (const Message objection = d.check()) return objection;
    const auto value = [&] {
        if (const auto point = d.point_mass()) return *point;
        if constexpr (requires { d.random(u, stream); })
            return d.random(u, stream);
        else
            return Truncated<D>(d).limited(d.quantile(u));
    };
    out = numerics::finite_or_limit(value() + 0.0);  // no -0.0
    return nullptr;
}

/// The value at percentile 0 <= u <= 1 of what is kept.
template <Family D>
[[gnu::noinline]] double value_at_percentile(const Truncated<D>& kept, double u) {
    const auto value = [&] {
        if (const auto point = kept.base().point_mass()) return *point;
        if (u == 0) return kept.lower();
        return u == 1 ? kept.upper() : kept.limited(kept.quantile(u));
    };
    return numerics::finite_or_limit(value() + 0.0);  // no -0.0
}

/// Draws of what is kept, a Truncated<D> or a class derived from it, each by inversion of a number of the stream; a point mass
/// needs none.
template <class Kept>
[[gnu::noinline]] void draw_each(std::span<double> out, const Kept& kept, RandomStream& stream) {
    if (const auto point = kept.base().point_mass()) {
        std::ranges::fill(out, numerics::finite_or_limit(*point + 0.0));
        return;
    }
    stream.fill(out);
    kept.quantiles(out);
    for (double& value : out) value = numerics::finite_or_limit(kept.limited(value) + 0.0);
}

}  // namespace pral
