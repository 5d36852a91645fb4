"""Lifetimes told by their hazard rate."""
import mpmath as m

from reference import INF, Family, exp, expm1

POSITIVE = (m.mpf(0), INF)


def by_rate(rate, hazard):
    return Family(POSITIVE, lambda t: -expm1(-hazard(t)), lambda t: exp(-hazard(t)), lambda t: m.log(rate(t)) - hazard(t))


def polynomial(a, b, c=0):
    return by_rate(lambda t: a + b * t + c * t**2, lambda t: a * t + b * t**2 / 2 + c * t**3 / 3)


FAMILIES = {
    "Lifetime2": (polynomial, [(1, 2), (0, 0.5), (3, 0)], [(1e-100, 1e100), (1e100, 1e-100), (1e-6, 1e-3)]),
    "Lifetime3": (polynomial, [(1, 2, 3), (1, -1, 1), (0.5, 0, 0.01)],
                  [(1, -1.999999, 1), (1e-100, 1e-50, 1e100), (1e6, -1e-3, 1e-9), (1, 1e-51, 1e-100), (1e100, -1, 1)]),
    "LifetimeExp": (lambda a, b: by_rate(lambda t: exp(a + b * t), lambda t: exp(a) * expm1(b * t) / b),
                    [(0, 1), (-5, 0.1), (2, 3)], [(-700, 1), (-230, 1e-100), (300, 1e6), (0, 1e-100), (-690, 1e100)]),
}

TRUNCATED = [
    ("Lifetime2", (1, 2), 0, 25, 26, 25.0078125),
    ("Lifetime3", (1, -1, 1), 0, 12, 13, 12.00390625),
    ("Lifetime3", (1, 2, 3), 1, 0, 1e-200, 5e-201),
    ("LifetimeExp", (0, 1), 0, 6.5, 7, 6.501953125),
    ("LifetimeExp", (-5, 0.1), 0, 1e-100, 3e-100, 2e-100),
]
