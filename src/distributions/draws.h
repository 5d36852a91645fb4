// Draws from families for the models that are built on them.
#pragma once

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

}  // namespace pral
