"""The Pareto distributions and their kin."""
import sys

import mpmath as m

from reference import INF, Family, exp, expm1


def pareto(theta, a):
    return Family((a, INF), lambda x: -m.expm1(theta * m.log(a / x)), lambda x: (a / x) ** theta,
                  lambda x: m.log(theta / x) + theta * m.log(a / x))


def pareto2(b, q):
    return Family((m.mpf(0), INF), lambda x: -m.expm1(-q * m.log1p(x / b)), lambda x: (1 + x / b) ** -q,
                  lambda x: m.log(q / b) - (q + 1) * m.log1p(x / b))


def burr(a, b, c, d):
    log_z = lambda x: m.log((x - a) / b)
    u = lambda x: exp(-c * log_z(x))
    log_f = lambda x: -d * (m.log1p(u(x)) if x > a else INF)
    return Family((a, INF), lambda x: exp(log_f(x)), lambda x: -expm1(log_f(x)),
                  lambda x: m.log(c * d / b) - (c + 1) * log_z(x) - (d + 1) * m.log1p(u(x)))


FAMILIES = {
    "Pareto": (pareto, [(2, 1), (0.5, 3)], [(0.01, 1e-100), (1e6, 1), (1e4, 1e100), (30, 1e-300)]),
    "Pareto2": (pareto2, [(1, 2), (3, 0.5)], [(1e-100, 0.01), (1e100, 1e6), (1, 1e6)]),
    "Dagum": (lambda a, b, p: burr(m.mpf(0), b, a, p), [(2, 3, 1.5), (1, 2, 1), (0.5, 1, 0.5)],
              [(0.01, 1e-100, 5), (1e6, 1e100, 0.01), (3, 7, 1e6)]),
    "Burr": (burr, [(1, 2, 3, 0.5), (-4, 1, 1, 2)], [(1e6, 1e-3, 2, 3), (0, 1e100, 1e6, 1e6), (-1e-100, 1e-100, 5, 0.01)]),
}

TRUNCATED = [
    ("Pareto", (2, 1), 0, 1e100, 2e100, 1.25e100),
    ("Pareto", (2, 1), 1, 0, 1e-10, 1.00000000004),
    ("Pareto2", (1, 2), 2, 1 - 2**-50, sys.float_info.max, 5e7),
    ("Dagum", (2, 3, 1.5), 2, 1 - 2**-50, sys.float_info.max, 5e8),
    ("Burr", (1, 2, 3, 0.5), 0, 1 + 2**-40, 1 + 2**-38, 1 + 2**-39),
    ("Pareto2", (1, 2), 0, 1e-200, 3e-200, 2e-200),
]
