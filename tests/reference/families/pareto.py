"""The Pareto distributions and their kin."""
import sys

import mpmath as m

from reference import INF, Family


def pareto(theta, a):
    return Family((a, INF), lambda x: -m.expm1(theta * m.log(a / x)), lambda x: (a / x) ** theta,
                  lambda x: m.log(theta / x) + theta * m.log(a / x))


def pareto2(b, q):
    return Family((m.mpf(0), INF), lambda x: -m.expm1(-q * m.log1p(x / b)), lambda x: (1 + x / b) ** -q,
                  lambda x: m.log(q / b) - (q + 1) * m.log1p(x / b))


FAMILIES = {
    "Pareto": (pareto, [(2, 1), (0.5, 3)], [(0.01, 1e-100), (1e6, 1), (1e4, 1e100), (30, 1e-300)]),
    "Pareto2": (pareto2, [(1, 2), (3, 0.5)], [(1e-100, 0.01), (1e100, 1e6), (1, 1e6)]),
}

TRUNCATED = [
    ("Pareto", (2, 1), 0, 1e100, 2e100, 1.25e100),
    ("Pareto", (2, 1), 1, 0, 1e-10, 1.00000000004),
    ("Pareto2", (1, 2), 2, 1 - 2**-50, sys.float_info.max, 5e7),
    ("Pareto2", (1, 2), 0, 1e-200, 3e-200, 2e-200),
]
