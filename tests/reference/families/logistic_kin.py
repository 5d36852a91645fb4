"""The logistic and hyperbolic secant distributions and what is made of them."""
import sys

import mpmath as m

from reference import INF, Family

REALS, POSITIVE = (-INF, INF), (m.mpf(0), INF)


def located(lower, upper, density):
    """location + scale Z, from Z's tails and density; further parameters go on to them."""
    def make(location, scale, *shape):
        z = lambda x: (x - location) / scale
        return Family(REALS, lambda x: lower(z(x), *shape), lambda x: upper(z(x), *shape),
                      lambda x: m.log(density(z(x), *shape)) - m.log(scale))
    return make


logistic = located(lambda z: 1 / (1 + m.exp(-z)), lambda z: 1 / (1 + m.exp(z)),
                   lambda z: m.exp(-abs(z)) / (1 + m.exp(-abs(z))) ** 2)


def generalised_upper(z, gamma):
    return -m.expm1(-gamma * m.log1p(m.exp(-z)))


generalised = located(lambda z, g: (1 + m.exp(-z)) ** -g, generalised_upper,
                      lambda z, g: g * m.exp(-z) * (1 + m.exp(-z)) ** (-g - 1))
secant = located(lambda z: 2 / m.pi * m.atan(m.exp(m.pi * z / 2)), lambda z: 2 / m.pi * m.atan(m.exp(-m.pi * z / 2)),
                 lambda z: m.sech(m.pi * z / 2) / 2)


def log_logistic(alpha, beta):
    w = lambda x: (x / beta) ** alpha
    return Family(POSITIVE, lambda x: w(x) / (1 + w(x)), lambda x: 1 / (1 + w(x)),
                  lambda x: m.log(alpha * w(x) / x / (1 + w(x)) ** 2))


def log_logistic_alt(value1, p1, value2, p2, minimum):
    logit = lambda p: m.log(p / (1 - p))
    alpha = (logit(p2) - logit(p1)) / m.log((value2 - minimum) / (value1 - minimum))
    base = log_logistic(alpha, (value1 - minimum) * m.exp(-logit(p1) / alpha))
    return Family((minimum, INF), *((lambda x, f=f: f(x - minimum)) for f in (base.cdf, base.sf, base.logpdf)))


FAMILIES = {
    "Logistic": (logistic, [(0, 1), (-3, 0.5)], [(1e-100, 1e-100), (-1e6, 1e100)]),
    "GLogistic": (generalised, [(0, 1, 1), (2, 3, 0.25), (-1, 0.5, 12)], [(0, 1e-100, 0.01), (0, 1e100, 1e6)]),
    "LogLogistic": (log_logistic, [(1, 2), (4, 0.5), (0.5, 3)], [(0.01, 1), (1e6, 1e-100), (2, 1e100)]),
    "LogLogisticAlt": (log_logistic_alt, [(1, 0.1, 5, 0.9, 0), (5, 0.75, 2, 0.25, -1)],
                       [(1e-100, 1e-6, 1e100, 0.5, 0), (1e50, 0.01, 1.0001e50, 0.99, 0), (11, 1e-100, 12, 0.5, 10)]),
    "HS": (secant, [(0, 1), (5, 0.25)], [(1e-100, 1e-100), (0, 1e100)]),
}

TRUNCATED = [
    ("Logistic", (0, 1), 0, 600, 603, 600.875),
    ("Logistic", (0, 1), 0, -603, -600, -600.875),
    ("GLogistic", (0, 1, 0.25), 2, 1 - 2**-40, sys.float_info.max, 30),
    ("LogLogistic", (4, 0.5), 0, 1e60, 2e60, 1.25e60),
    ("HS", (0, 1), 0, 400, 402, 400.75),
    ("HS", (0, 1), 0, -sys.float_info.max, -400, -400.75),
]
