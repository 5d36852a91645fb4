"""Poisson and binomial, by sums of their masses."""
import mpmath as m

from reference import INF, Discrete


def poisson(lam):
    return Discrete((0, INF), lambda k: m.exp(k * m.log(lam) - lam - m.loggamma(k + 1)), lambda k: lam / (k + 1), lam)


def binomial(n, p):
    mass = lambda k: m.exp(m.loggamma(n + 1) - m.loggamma(k + 1) - m.loggamma(n - k + 1) + k * m.log(p)
                           + (n - k) * m.log(1 - p))
    return Discrete((0, n), mass, lambda k: (n - k) / (k + 1) * p / (1 - p), m.floor((n + 1) * p))


FAMILIES = {
    "Poisson": (poisson, [(0.25,), (3.5,), (100,)], [(1e-100,), (4999,), (5001,)]),
    "Binomial": (binomial, [(10, 0.25), (1, 0.5), (1000, 0.01)], [(100000, 0.1), (1000000, 1e-9), (30, 1 - 1e-9)]),
}

TRUNCATED = [
    ("Poisson", (4,), 0, 400, 500, 402),
    ("Poisson", (2000,), 0, -1, 10, 5),
    ("Poisson", (3.5,), 0, 1, 6, 4),
    ("Poisson", (3.5,), 0, 40, 60, 42),
    ("Poisson", (3.5,), 1, 2, 0.75, 3),
    ("Poisson", (4999,), 3, 0.125, 0.25, 4940),
    ("Poisson", (0.25,), 0, 0, 3, 1),
    ("Binomial", (10, 0.25), 2, 0.125, 7, 3),
    ("Binomial", (1000, 0.01), 0, 80, 90, 82),
    ("Binomial", (30, 1 - 1e-9), 0, 1, 20, 19),
]
