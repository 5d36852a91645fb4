"""The Laplace distribution, its logarithmic form and the exponential power distribution."""
import sys

import mpmath as m

from gamma_kin import gamma_tails
from reference import INF, Family


def laplace(mu, sigma):
    tail = lambda d: m.exp(-m.sqrt(2) * d / sigma) / 2
    return Family((-INF, INF), lambda x: tail(mu - x) if x < mu else 1 - tail(x - mu),
                  lambda x: tail(x - mu) if x > mu else 1 - tail(mu - x),
                  lambda x: -m.sqrt(2) * abs(x - mu) / sigma - m.log(m.sqrt(2) * sigma))


def log_laplace(alpha, beta, delta):
    below = lambda x: alpha / (alpha + beta) * (x / delta) ** beta
    above = lambda x: beta / (alpha + beta) * (delta / x) ** alpha
    c = alpha * beta / (delta * (alpha + beta))
    return Family((m.mpf(0), INF), lambda x: below(x) if x < delta else 1 - above(x),
                  lambda x: above(x) if x > delta else 1 - below(x),
                  lambda x: m.log(c * ((x / delta) ** (beta - 1) if x < delta else (delta / x) ** (alpha + 1))))


def tails(a, w):
    """P(a, w) and Q(a, w), w > 0."""
    if w < 1:
        return gamma_tails(a, w)
    if w > 10**5:  # beyond every double, and beyond mpmath
        return m.mpf(1), m.mpf(0)
    return m.gammainc(a, 0, w, regularized=True), m.gammainc(a, w, regularized=True)


def exponential_power(mu, sigma, nu):
    c = m.sqrt(m.gamma(1 / nu) / m.gamma(3 / nu)) * sigma
    w = lambda x: (abs(x - mu) / c) ** nu
    inner = lambda x: tails(1 / nu, w(x))[0]
    outer = lambda x: tails(1 / nu, w(x))[1]
    return Family((-INF, INF), lambda x: outer(x) / 2 if x < mu else (1 + inner(x)) / 2,
                  lambda x: outer(x) / 2 if x > mu else (1 + inner(x)) / 2,
                  lambda x: m.log(nu / (2 * c * m.gamma(1 / nu))) - w(x))


FAMILIES = {
    "Laplace": (laplace, [(0, 1), (-3, 0.5)], [(1e-100, 1e-100), (0, 1e100)]),
    "LogLaplace": (log_laplace, [(2, 3, 1), (1, 0.5, 10), (0.5, 1, 0.1)],
                   [(0.01, 1e6, 1), (1e6, 0.01, 1), (1e6, 1e6, 1e-100), (5, 7, 1e100)]),
    "Error": (exponential_power, [(0, 1, 1), (3, 2, 2), (-1, 0.5, 5), (0, 1, 0.5)],
              [(0, 1e-100, 0.01), (0, 1e100, 0.15), (0, 1, 30), (0, 3, 1e6), (1, 1e-3, 1e4), (0, 1, 0.0084)]),
}

TRUNCATED = [
    ("Laplace", (0, 1), 0, 400, 401, 400.25),
    ("Laplace", (0, 1), 0, -401, -400, -400.25),
    ("LogLaplace", (2, 3, 1), 0, 1e100, 3e100, 2e100),
    ("LogLaplace", (2, 3, 1), 1, 0, 1e-200, 1e-67),
    ("Error", (0, 1, 5), 0, 3.5, 4, 3.625),
    ("Error", (0, 1, 0.5), 2, 1 - 2**-40, sys.float_info.max, 400),
]
