#!/usr/bin/python3
"""Reference values of the univariate families: writes families.tsv and truncated.tsv beside this script.

Each family is told once more here, independently of the library, by its cumulative, its survival and its log density in
50-digit arithmetic (mpmath). Points are found by bisection on these, so that both tails down to 1e-300 are covered, and
then rounded to doubles. Run from the top of the tree: tests/reference/make_families.py [FAMILY ...] (no name: all).
"""
import os
import sys

import mpmath as m

m.mp.dps = 50
HERE = os.path.dirname(os.path.abspath(__file__))
INF = m.inf


class Family:
    """cdf, sf and logpdf take an mpf inside the support; `support` its ends."""

    def __init__(self, support, cdf, sf, logpdf):
        self.support, self.cdf, self.sf, self.logpdf = support, cdf, sf, logpdf


def phi(z):
    if abs(z) > 10**6:  # beyond every double, and beyond mpmath's erfc
        return m.mpf(z > 0)
    return m.erfc(-z / m.sqrt(2)) / 2


def normal(mu, sigma):
    z = lambda x: (x - mu) / sigma
    return Family((-INF, INF), lambda x: phi(z(x)), lambda x: phi(-z(x)),
                  lambda x: -z(x) ** 2 / 2 - m.log(sigma * m.sqrt(2 * m.pi)))


def uniform(a, b):
    return Family((a, b), lambda x: (x - a) / (b - a), lambda x: (b - x) / (b - a), lambda x: -m.log(b - a))


def expon(beta):
    return Family((m.mpf(0), INF), lambda x: -m.expm1(-x / beta), lambda x: m.exp(-x / beta),
                  lambda x: -x / beta - m.log(beta))


# family: (definition, ordinary parameter sets, extreme parameter sets)
FAMILIES = {
    "Normal": (normal, [(0, 1), (3, 2)], [(-1e6, 0.125), (1e-100, 1e-100), (0, 1e100), (1e8, 1e-3)]),
    "Uniform": (uniform, [(0, 1), (-3, 5)], [(1e-100, 2e-100), (-1e100, 1e100)]),
    "Expon": (expon, [(1,), (0.25,), (1e6,)], [(1e-100,), (1e100,)]),
}

TAILS = [m.mpf(10) ** -k for k in (300, 100, 20, 6, 2)] + [m.mpf(1) / 4, m.mpf(1) / 2]


def search(below, support):
    """The x at which below(x) turns from true to false, by bisection on a scale that reaches every double."""
    encode = lambda x: m.asinh(x * m.mpf(10) ** 300)
    decode = lambda t: m.sinh(t) / m.mpf(10) ** 300
    limit = m.mpf(10) ** 305
    lower, upper = (encode(max(min(end, limit), -limit)) for end in support)
    for _ in range(130):
        middle = (lower + upper) / 2
        if below(decode(middle)):
            lower = middle
        else:
            upper = middle
    return float(decode(lower))


def points(family):
    found = [search(lambda x: family.cdf(x) < p, family.support) for p in TAILS]
    found += [search(lambda x: family.sf(x) > q, family.support) for q in TAILS]
    lower, upper = family.support
    return sorted({x for x in found if lower < x < upper and family.cdf(m.mpf(x)) > 0 and family.sf(m.mpf(x)) > 0})


def text(value):
    return m.nstr(value, 25, min_fixed=0, max_fixed=0)


def families(names):
    rows = []
    for name in names:
        make, ordinary, extreme = FAMILIES[name]
        for kind, sets in (("ordinary", ordinary), ("extreme", extreme)):
            for parameters in sets:
                family = make(*(m.mpf(float(p)) for p in parameters))
                for x in points(family):
                    exact = m.mpf(x)
                    values = (family.cdf(exact), family.sf(exact), family.logpdf(exact))
                    rows.append([name, kind, " ".join(repr(float(p)) for p in parameters), repr(x)]
                                + [text(v) for v in values])
    return rows


# Truncation far in a tail: family, parameters, mode, min, max, and x inside.
TRUNCATED = [
    ("Normal", (0, 1), 0, 8, 9, 8.1),
    ("Normal", (0, 1), 0, -9, -8, -8.1),
    ("Normal", (0, 1), 0, -37, -36.5, -36.75),
    ("Normal", (0, 1), 0, 3, sys.float_info.max, 3.5),
    ("Normal", (0, 1), 0, -sys.float_info.max, -30, -31),
    ("Normal", (0, 1), 2, 1 - 2**-50, sys.float_info.max, 9),
    ("Normal", (0, 1), 1, -40, 1e-300, -37.5),
    ("Normal", (0, 1), 0, -0.5, 8.2, 8),
    ("Normal", (3, 2), 3, 0.125, 0.875, 4),
    ("Expon", (1,), 0, 700, 701, 700.25),
    ("Expon", (4,), 0, 1e-200, 3e-200, 2e-200),
    ("Expon", (1,), 2, 1 - 2**-40, sys.float_info.max, 40),
    ("Uniform", (0, 1), 3, 0.25, 0.5, 0.3),
    ("Uniform", (0, 1), 0, 0.25, 5, 0.3),
]


def truncated(names):
    """cumulative and log density at x of what is kept, exactly."""
    rows = []
    for name, parameters, mode, low, high, x in TRUNCATED:
        if name not in names:
            continue
        family = FAMILIES[name][0](*(m.mpf(float(p)) for p in parameters))
        clip = lambda v: max(family.support[0], min(family.support[1], v))
        bounded = lambda f, v, at_inf, at_minus: at_inf if v == INF else at_minus if v == -INF else f(v)
        end = lambda v: INF if v == sys.float_info.max else -INF if v == -sys.float_info.max else m.mpf(v)
        low_p = m.mpf(low) if mode & 2 else bounded(family.cdf, clip(end(low)), 1, 0)
        low_q = 1 - low_p if mode & 2 else bounded(family.sf, clip(end(low)), 0, 1)
        high_p = m.mpf(high) if mode & 1 else bounded(family.cdf, clip(end(high)), 1, 0)
        high_q = 1 - high_p if mode & 1 else bounded(family.sf, clip(end(high)), 0, 1)
        lower_side = low_p < 0.5
        mass = high_p - low_p if lower_side else low_q - high_q
        at = m.mpf(float(x))
        inside = family.cdf(at) - low_p if lower_side else low_q - family.sf(at)
        rows.append([name, " ".join(repr(float(p)) for p in parameters), str(mode), repr(float(low)),
                     repr(float(high)), repr(float(x)), text(inside / mass), text(family.logpdf(at) - m.log(mass))])
    return rows


def write(file, head, rows, names):
    """Replaces the rows of the named families and keeps the others."""
    path = os.path.join(HERE, file)
    kept = []
    if os.path.exists(path):
        lines = [line.rstrip("\n").split("\t") for line in open(path) if line[0] != "#"]
        kept = [line for line in lines if line[0] not in names and line[0] in FAMILIES]
    order = list(FAMILIES)
    everything = sorted(kept + rows, key=lambda row: order.index(row[0]))
    with open(path, "w") as out:
        out.write("# Generated by tests/reference/make_families.py; do not edit.\n# " + "\t".join(head) + "\n")
        out.writelines("\t".join(row) + "\n" for row in everything)


def main():
    names = sys.argv[1:] or list(FAMILIES)
    write("families.tsv", ["family", "kind", "parameters", "x", "cumulative", "survival", "log density"],
          families(names), names)
    write("truncated.tsv", ["family", "parameters", "boundsMode", "min", "max", "x", "cumulative", "log density"],
          truncated(names), names)


if __name__ == "__main__":
    main()
