"""Families that only objects have, not the classic calls."""
import mpmath as m

from reference import INF, Family, exp, expm1, phi

PLACE = "../objects/families"
POSITIVE = (m.mpf(0), INF)


def half_normal(sigma):
    density = lambda z: m.log(2) - z**2 / 2 - m.log(2 * m.pi) / 2 - m.log(sigma)
    return Family(POSITIVE, lambda x: m.erf(x / sigma / m.sqrt(2)) if x < 10**6 * sigma else m.mpf(1),
                  lambda x: 2 * phi(-x / sigma), lambda x: density(x / sigma))


def gompertz(a, b):
    hazard = lambda x: a * expm1(b * x) / b
    return Family(POSITIVE, lambda x: -expm1(-hazard(x)), lambda x: exp(-hazard(x)),
                  lambda x: m.log(a) + b * x - hazard(x))


def gpd(beta, xi):
    hazard = lambda x: m.log1p(xi * x / beta) / xi if xi else x / beta
    support = (m.mpf(0), -beta / xi if xi < 0 else INF)
    return Family(support, lambda x: -expm1(-hazard(x)), lambda x: exp(-hazard(x)),
                  lambda x: -(1 + xi) * hazard(x) - m.log(beta), margin=1e-15 * support[1] if xi < 0 else 0)


FAMILIES = {
    "HalfNormal": (half_normal, [(1,), (3.5,)], [(1e-200,), (1e200,)]),
    "Gompertz": (gompertz, [(1, 1), (0.01, 0.1), (5, 0.3)],
                 [(1e-300, 1), (1e-100, 1e-100), (1e100, 1e6), (1, 1e-100), (1e-299, 1e100)]),
    "GPD": (gpd, [(2, 0.25), (1, -0.3), (3, 0), (1, 1.5), (2, -1.5), (2, -1)],
            [(1, 1e-10), (1, -1e-10), (1e-100, 0.5), (1e100, -0.5), (1, 30), (1, -20), (1, 1e-300)]),
}

TRUNCATED = [
    ("HalfNormal", (1,), 0, 30, 31, 30.0078125),
    ("Gompertz", (0.01, 0.1), 0, 90, 95, 90.0078125),
    ("GPD", (2, 0.25), 0, 1e30, 3e30, 2e30),
    ("GPD", (1, -0.5), 0, 1.9375, 1.96875, 1.953125),
]
