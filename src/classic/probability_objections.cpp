#include "classic/forms.h"
#include "distributions/data/discrete_table.h"
#include "distributions/discrete/hypergeometric.h"
#include "distributions/discrete/logarithmic.h"
#include "distributions/discrete/poisson.h"

namespace pral::classic {

Message probability_objection(const Poisson& d) {
    return d.lambda >= 0 ? nullptr : "Error: lambda must be >= 0";
}

Message probability_objection(const Hypergeo& d) {
    if (!(d.n >= 0)) return "Error: n must be >= 0";
    if (!(d.D >= 0)) return "Error: D must be >= 0";
    if (!(d.M >= 0)) return "Error: M must be >= 0";
    if (!(d.D <= d.M)) return "Error: D must be <= M";
    if (!(d.n <= d.M)) return "Error: n must be <= M";
    if (!is_count(d.M)) return "Error: M must be an integer";
    if (!is_count(d.D)) return "Error: D must be an integer";
    if (!is_count(d.n)) return "Error: n must be an integer";
    return nullptr;
}

Message probability_objection(const InvHypergeo& d) {
    if (!(d.D >= 0)) return "Error: D must be >= 0";
    if (!(d.M >= 0)) return "Error: M must be >= 0";
    if (!(d.D <= d.M)) return "Error: D must be <= M";
    if (!(d.s >= 0 && d.s <= d.D)) return "Error: s must be between [0,D]";
    if (!is_count(d.M)) return "Error: M must be an integer";
    if (!is_count(d.D)) return "Error: d must be an integer";
    if (!is_count(d.s)) return "Error: s must be an integer";
    return nullptr;
}

Message probability_objection(const Logarithmic& d) {
    return d.theta > 0 && d.theta < 1 ? nullptr : "Error: Theta must be between (0,1)";
}

/// Lengths come before weights that are all 0.
Message probability_objection(const Discrete& d) {
    return d.has_no_weight() && d.has_unequal_lengths() ? Discrete::kUnequalLengths : d.check();
}

}  // namespace pral::classic
