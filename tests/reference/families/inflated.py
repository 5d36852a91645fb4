"""Zero-inflated and zero-truncated counts, from their base families."""
import mpmath as m

from beta_mixtures import FAMILIES as BETA
from delaporte import FAMILIES as DELAPORTE
from logarithmic import FAMILIES as LOGARITHMIC
from negative_binomial import FAMILIES as NEGATIVE_BINOMIAL
from poisson_kin import FAMILIES as POISSON
from poisson_mixtures import FAMILIES as POISSON_MIXTURES
from reference import INF, Family
from urns import FAMILIES as URNS

KINS = (POISSON, NEGATIVE_BINOMIAL, BETA, LOGARITHMIC, POISSON_MIXTURES, URNS, DELAPORTE)
BASES = {name: told[0] for kin in KINS for name, told in kin.items()}


class Variant(Family):
    """Of the base family's points those inside the variant's support."""

    def __init__(self, base, lower, *told):
        super().__init__((lower, base.support[1]), *told)
        self.base = base

    def points(self):
        lowest = {float(self.support[0])} if self.support[0] > -INF else {0.0}
        return sorted(lowest | {x for x in self.base.points() if x >= self.support[0]})


def inflated(name):
    def told(*parameters):
        base, pi = BASES[name](*parameters[:-1]), parameters[-1]
        inside = lambda x: x >= base.support[0]
        mass = lambda x: (pi * base.mass(x) if inside(x) else 0) + (1 - pi if x == 0 else 0)
        return Variant(base, min(0, base.support[0]),
                       lambda x: 1 - pi + (pi * base.cdf(x) if inside(x) else 0),
                       lambda x: pi * (base.sf(x) if inside(x) else 1),
                       lambda x: m.log(mass(x)))
    return told


def truncated(name):
    def told(*parameters):
        base = BASES[name](*parameters)
        first = max(1, int(base.support[0]))
        rest = base.sf(m.mpf(0)) if base.support[0] == 0 else m.mpf(1)
        lower = lambda x: m.fsum(base.mass(m.mpf(k)) for k in range(first, int(x) + 1)) if x < 50 else rest - base.sf(x)
        return Variant(base, first, lambda x: lower(x) / rest, lambda x: base.sf(x) / rest,
                       lambda x: m.log(base.mass(x) / rest))
    return told


ORDINARY = {
    "BetaBinomial": (10, 2, 3), "BetaGeometric": (3, 4), "BetaNegBin": (2, 6, 2), "Binomial": (10, 0.25),
    "Geometric": (0.25,), "Hypergeo": (5, 6, 20), "InvHypergeo": (2, 5, 20), "Skellam": (3.5, 2), "Delaporte": (2.5, 3, 4),
    "Logarithmic": (0.5,), "NegBin": (3, 0.25), "Poisson": (3.5,), "Polya": (2.5, 3),
}
EXTREME = {"Poisson": (1e-9,), "Polya": (1e-9, 5), "Binomial": (1000, 0.01), "Hypergeo": (60, 90, 100)}

FAMILIES = {
    f"ZI{name}": (inflated(name), [(*p, 0.3)], [(*EXTREME[name], 1 - 2.0**-40)] if name in EXTREME else [])
    for name, p in ORDINARY.items()
} | {
    f"ZT{name}": (truncated(name), [p], [EXTREME[name]] if name in EXTREME else [])
    for name, p in ORDINARY.items() if name not in ("Logarithmic", "Skellam")
}

TRUNCATED = [("ZTPoisson", (3.5,), 0, 2, 6, 4), ("ZTPoisson", (3.5,), 0, 400, 500, 402), ("ZTPoisson", (3.5,), 0, 30, 40, 33),
             ("ZTNegBin", (3, 0.25), 2, 0.25, 9, 5),
             ("ZTPolya", (1e-9, 5), 3, 0.25, 0.75, 2), ("ZTBetaBinomial", (10, 2, 3), 1, 2, 0.875, 4),
             ("ZTBinomial", (1000, 0.01), 0, 1, 3, 2), ("ZTBetaGeometric", (3, 4), 2, 0.5, 1e9, 12)]
