"""Normal, uniform and exponential: the families with elementary or error functions only."""
import sys

import mpmath as m

from reference import INF, Family, phi


def normal(mu, sigma):
    z = lambda x: (x - mu) / sigma
    return Family((-INF, INF), lambda x: phi(z(x)), lambda x: phi(-z(x)),
                  lambda x: -z(x) ** 2 / 2 - m.log(sigma * m.sqrt(2 * m.pi)))


def uniform(a, b):
    return Family((a, b), lambda x: (x - a) / (b - a), lambda x: (b - x) / (b - a), lambda x: -m.log(b - a))


def expon(beta):
    return Family((m.mpf(0), INF), lambda x: -m.expm1(-x / beta), lambda x: m.exp(-x / beta),
                  lambda x: -x / beta - m.log(beta))


# Family: (definition, ordinary parameter sets, extreme parameter sets)
FAMILIES = {
    "Normal": (normal, [(0, 1), (3, 2)], [(-1e6, 0.125), (1e-100, 1e-100), (0, 1e100), (1e8, 1e-3)]),
    "Uniform": (uniform, [(0, 1), (-3, 5)], [(1e-100, 2e-100), (-1e100, 1e100), (-1.5e308, 1.5e308)]),
    "Expon": (expon, [(1,), (0.25,), (1e6,)], [(1e-100,), (1e100,)]),
}

# Truncation far in a tail: family, parameters, mode, min, max, and x inside.
TRUNCATED = [
    ("Normal", (0, 1), 0, 9, 10, 9.5),
    ("Normal", (0, 1), 0, 40, 1.7976931348623157e308, 40.02),
    ("Normal", (0, 1), 0, -50, -40, -40.02),
    ("Normal", (0, 1), 0, 1, 1 + 2.0**-48, 1 + 2.0**-49),
    ("Expon", (1,), 0, 800, 900, 801),
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
