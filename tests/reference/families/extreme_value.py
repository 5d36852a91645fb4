"""The extreme value distributions and the Weibull kin."""
import sys

import mpmath as m

from reference import INF, Family, exp, expm1

REALS = (-INF, INF)


def by_hazard(support, hazard, log_rate):
    """A survival of exp(-hazard)."""
    return Family(support, lambda x: -expm1(-hazard(x)), lambda x: exp(-hazard(x)),
                  lambda x: log_rate(x) - hazard(x))


def ext_value_max(a, b):
    t = lambda x: exp(-(x - a) / b)
    return Family(REALS, lambda x: exp(-t(x)), lambda x: -expm1(-t(x)), lambda x: -(x - a) / b - t(x) - m.log(b))


def ext_value_min(a, b):
    return by_hazard(REALS, lambda x: exp((x - a) / b), lambda x: (x - a) / b - m.log(b))


def gev(a, b, c):
    if c == 0:
        return ext_value_max(a, b)
    w = lambda x: max(1 + c * (x - a) / b, m.mpf(10) ** -10000)
    t = lambda x: exp(-m.log(w(x)) / c)
    end = m.mpf(float(a - b / c))  # no double lies between it and the end itself
    return Family((end, INF) if c > 0 else (-INF, end), lambda x: exp(-t(x)), lambda x: -expm1(-t(x)),
                  lambda x: -(1 + 1 / c) * m.log(w(x)) - t(x) - m.log(b))


def weibull3(alpha, beta, theta):
    return by_hazard((theta, INF), lambda x: ((x - theta) / beta) ** alpha,
                     lambda x: m.log(alpha / beta) + (alpha - 1) * m.log((x - theta) / beta))


def weibull_alt(value1, p1, value2, p2, minimum):
    hazard1, hazard2 = -m.log1p(-p1), -m.log1p(-p2)
    alpha = m.log(hazard2 / hazard1) / m.log((value2 - minimum) / (value1 - minimum))
    return weibull3(alpha, (value1 - minimum) / hazard1 ** (1 / alpha), minimum)


FAMILIES = {
    "ExtValueMax": (ext_value_max, [(0, 1), (3, 2)], [(-1e6, 0.125), (1e-100, 1e-100), (0, 1e100)]),
    "ExtValueMin": (ext_value_min, [(0, 1), (3, 2)], [(-1e6, 0.125), (1e-100, 1e-100), (0, 1e100)]),
    "GEV": (gev, [(0, 1, 0), (1, 2, 0.25), (1, 2, -0.5), (0, 1, -1.5)],
            [(0, 1, 1e-12), (3, 0.1, -1e-7), (0, 1, 1e-300), (0, 1, -0.01), (0, 1, 18), (1e3, 1e3, -18), (5, 1e-100, -1),
             (0, 1e100, 1)]),
    "Weibull": (lambda alpha, beta: weibull3(alpha, beta, 0), [(1, 2), (0.5, 3), (3.5, 10)],
                [(0.01, 1e-100), (1e6, 1), (1e6, 1e100), (1e4, 1e-100), (12, 7)]),
    "Weibull3": (weibull3, [(2, 3, 1), (0.7, 2, 5)], [(1e4, 1e-100, 0), (3, 1e100, 1e90), (40, 1e6, 1e3)]),
    "WeibullAlt": (weibull_alt, [(1, 0.1, 5, 0.9, 0), (5, 0.75, 2, 0.25, -1)],
                   [(1e-100, 1e-6, 1e100, 0.5, 0), (1e50, 0.01, 1.0001e50, 0.99, 0), (11, 1e-100, 12, 0.5, 10)]),
    "Rayleigh": (lambda b: weibull3(2, m.sqrt(2) * b, 0), [(1,), (3,)], [(1e-100,), (1e100,)]),
}

LARGEST = sys.float_info.max

TRUNCATED = [
    ("ExtValueMax", (0, 1), 0, 700, LARGEST, 701),
    ("ExtValueMax", (0, 1), 0, -6.5, -6.25, -6.375),
    ("ExtValueMin", (3, 2), 0, -1400, -1300, -1301),
    ("ExtValueMin", (0, 1), 2, 1 - 2**-50, LARGEST, 3.75),
    ("GEV", (0, 1, 0.25), 0, -3.96875, -2, -2.5),
    ("GEV", (0, 1, -0.5), 0, 1.9999, 2, 1.99995),
    ("GEV", (0, 1, 0.25), 2, 1 - 2**-50, LARGEST, 1e5),
    ("Weibull", (2, 1), 0, 20, 21, 20.0078125),
    ("Weibull", (2, 1), 0, 1e-100, 1e-99, 5e-100),
    ("Weibull3", (2, 1, 4), 0, 20, 24, 20.0078125),
    ("WeibullAlt", (1, 0.1, 5, 0.9, 0), 0, 40, 60, 41),
    ("Rayleigh", (1,), 1, 1e-200, 1e-250, 1e-126),
]
