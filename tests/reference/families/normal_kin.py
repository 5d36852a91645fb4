"""Families made of the normal distribution, and other symmetric ones."""
import mpmath as m

from reference import INF, Family, phi


def lognormal_e(mu, sigma):
    z = lambda x: (m.log(x) - mu) / sigma
    return Family((m.mpf(0), INF), lambda x: phi(z(x)), lambda x: phi(-z(x)),
                  lambda x: -z(x) ** 2 / 2 - m.log(x * sigma * m.sqrt(2 * m.pi)))


def lognormal(mu, sigma):
    s2 = m.log(1 + (sigma / mu) ** 2)
    return lognormal_e(m.log(mu) - s2 / 2, m.sqrt(s2))


def cauchy(a, b):
    z = lambda x: (x - a) / b
    lower = lambda t: m.atan2(1, -t) / m.pi
    return Family((-INF, INF), lambda x: lower(z(x)), lambda x: lower(-z(x)),
                  lambda x: -m.log(m.pi * b * (1 + z(x) ** 2)))


FAMILIES = {
    "Lognormal": (lognormal, [(10, 3), (1, 20)], [(1e-100, 1e-101), (1e50, 1e60), (1, 1e-6)]),
    "LognormalE": (lognormal_e, [(0, 1), (2, 0.25)], [(-200, 0.01), (0, 30)]),
    "Cauchy": (cauchy, [(0, 1), (-3, 0.5)], [(0, 1e-100), (1e6, 1)]),
}

TRUNCATED = [
    ("Lognormal", (10, 3), 0, 200, 1e300, 250),
    ("Cauchy", (0, 1), 0, 1e20, 3e20, 2e20),
]
