"""Negative binomial, geometric, Polya and Bernoulli, by sums of their masses."""
import mpmath as m

from reference import INF, Discrete


def bernoulli(p):
    return Discrete((0, 1), lambda k: p if k else 1 - p, lambda k: p / (1 - p), 0)


def negative_binomial(s, p):
    mass = lambda k: m.exp(m.loggamma(k + s) - m.loggamma(s) - m.loggamma(k + 1) + s * m.log(p) + k * m.log(1 - p))
    return Discrete((0, INF), mass, lambda k: (k + s) / (k + 1) * (1 - p), max((s - 1) * (1 - p) / p, 0))


FAMILIES = {
    "Bernoulli": (bernoulli, [(0.25,), (0.7,)], [(1e-300,), (1 - 2.0**-53,)]),
    "NegBin": (negative_binomial, [(3, 0.25), (1, 0.5), (20, 0.02)], [(1000, 0.2), (2, 0.999999), (1000000, 0.5)]),
    "Geometric": (lambda p: negative_binomial(m.mpf(1), p), [(0.25,), (0.01,)], [(1 - 1e-9,)]),
    "Polya": (lambda a, b: negative_binomial(a, 1 / (1 + b)), [(2.5, 3), (0.25, 40), (100, 0.01)],
              [(1e-9, 5), (3, 1e-9), (0.5, 1000), (1e4, 0.3)]),
}

TRUNCATED = [
    ("NegBin", (3, 0.25), 0, 2, 5, 4),
    ("NegBin", (3, 0.25), 0, 40, 60, 45),
    ("Polya", (2.5, 3), 0, 200, 250, 203),
    ("Polya", (2.5, 3), 1, 3, 0.875, 9),
    ("Geometric", (0.25,), 2, 0.25, 30, 7),
    ("NegBin", (1000, 0.2), 3, 0.5, 0.625, 4010),
    ("Bernoulli", (0.25,), 0, 0, 1, 1),
]
