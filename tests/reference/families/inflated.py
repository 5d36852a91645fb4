"""Zero-inflated and zero-truncated counts, from their base families."""
import mpmath as m

from beta_mixtures import FAMILIES as BETA
from logarithmic import FAMILIES as LOGARITHMIC
from negative_binomial import FAMILIES as NEGATIVE_BINOMIAL
from poisson_kin import FAMILIES as POISSON
from reference import Family

BASES = {name: told[0] for kin in (POISSON, NEGATIVE_BINOMIAL, BETA, LOGARITHMIC) for name, told in kin.items()}


class Variant(Family):
    """Of the base family's points those inside the variant's support."""

    def __init__(self, base, lower, *told):
        super().__init__((lower, base.support[1]), *told)
        self.base = base

    def points(self):
        return sorted({float(self.support[0]), *(x for x in self.base.points() if x >= self.support[0])})


def inflated(name):
    def told(*parameters):
        base, pi = BASES[name](*parameters[:-1]), parameters[-1]
        inside = lambda x: x >= base.support[0]
        mass = lambda x: (pi * base.mass(x) if inside(x) else 0) + (1 - pi if x == 0 else 0)
        return Variant(base, 0, lambda x: 1 - pi + (pi * base.cdf(x) if inside(x) else 0),
                       lambda x: pi * (base.sf(x) if inside(x) else 1), lambda x: m.log(mass(x)))
    return told


def truncated(name):
    def told(*parameters):
        base = BASES[name](*parameters)
        rest = base.sf(m.mpf(0))
        lower = lambda x: m.fsum(base.mass(m.mpf(k)) for k in range(1, int(x) + 1)) if x < 50 else rest - base.sf(x)
        return Variant(base, 1, lambda x: lower(x) / rest, lambda x: base.sf(x) / rest,
                       lambda x: m.log(base.mass(x) / rest))
    return told


ORDINARY = {
    "BetaBinomial": (10, 2, 3), "BetaGeometric": (3, 4), "BetaNegBin": (2, 6, 2), "Binomial": (10, 0.25),
    "Geometric": (0.25,), "Logarithmic": (0.5,), "NegBin": (3, 0.25), "Poisson": (3.5,), "Polya": (2.5, 3),
}
EXTREME = {"Poisson": (1e-9,), "Polya": (1e-9, 5), "Binomial": (1000, 0.01)}

FAMILIES = {
    f"ZI{name}": (inflated(name), [(*p, 0.3)], [(*EXTREME[name], 1 - 2.0**-40)] if name in EXTREME else [])
    for name, p in ORDINARY.items()
} | {
    f"ZT{name}": (truncated(name), [p], [EXTREME[name]] if name in EXTREME else [])
    for name, p in ORDINARY.items() if name != "Logarithmic"
}

TRUNCATED = [("ZTPoisson", (3.5,), 0, 2, 6, 4), ("ZTPoisson", (3.5,), 0, 30, 40, 33), ("ZTNegBin", (3, 0.25), 2, 0.25, 9, 5),
             ("ZTPolya", (1e-9, 5), 3, 0.25, 0.75, 2), ("ZTBetaBinomial", (10, 2, 3), 1, 2, 0.875, 4),
             ("ZTBinomial", (1000, 0.01), 0, 1, 3, 2), ("ZTBetaGeometric", (3, 4), 2, 0.5, 1e9, 12)]
