"""Johnson's systems, and the distributions of first passage and fatigue."""
import sys

import mpmath as m

from reference import INF, Family, phi

POSITIVE = (m.mpf(0), INF)


def by_score(support, score, slope):
    """The standard normal distribution of score(x), whose derivative is slope(x)."""
    return Family(support, lambda x: phi(score(x)), lambda x: phi(-score(x)),
                  lambda x: -score(x) ** 2 / 2 - m.log(m.sqrt(2 * m.pi)) + m.log(slope(x)))


def johnson_b(alpha1, alpha2, low, high):
    return by_score((low, high), lambda x: alpha1 + alpha2 * m.log((x - low) / (high - x)),
                    lambda x: alpha2 * (high - low) / ((x - low) * (high - x)))


def johnson_u(alpha1, alpha2, beta, gamma):
    t = lambda x: (x - gamma) / beta
    score = lambda x: alpha1 + alpha2 * m.sign(t(x)) * m.log(abs(t(x)) + m.sqrt(1 + t(x) ** 2))
    return by_score((-INF, INF), score, lambda x: alpha2 / (beta * m.sqrt(1 + t(x) ** 2)))


def fatigue(alpha, beta, gamma):
    root = lambda x: m.sqrt((x - alpha) / beta)
    return by_score((alpha, INF), lambda x: (root(x) - 1 / root(x)) / gamma,
                    lambda x: (1 / root(x) + root(x) ** -3) / (2 * gamma * beta))


def inverse_gauss(mu, shape):
    """With twice the digits, since the upper tail is a difference."""
    r = lambda x: m.sqrt(shape / x)
    a, b = (lambda x: r(x) * (x / mu - 1)), (lambda x: r(x) * (x / mu + 1))
    reflected = lambda x: m.exp(2 * shape / mu) * phi(-b(x)) if b(x) < 10**6 else m.mpf(0)

    def upper(x):
        with m.workdps(120):
            return phi(-a(x)) - reflected(x)

    return Family(POSITIVE, lambda x: phi(a(x)) + reflected(x), upper,
                  lambda x: m.log(shape / (2 * m.pi * x**3)) / 2 - a(x) ** 2 / 2)


def levy(c, a):
    w = lambda x: m.sqrt(c / (2 * (x - a)))
    return Family((a, INF), lambda x: m.erfc(w(x)) if w(x) < 10**6 else m.mpf(0), lambda x: m.erf(w(x)),
                  lambda x: m.log(c / (2 * m.pi)) / 2 - w(x) ** 2 - m.mpf(3) / 2 * m.log(x - a))


FAMILIES = {
    "JohnsonB": (johnson_b, [(0, 1, 0, 1), (-1, 0.5, -3, 5), (2, 3, 10, 11)],
                 [(0, 0.1, 0, 1), (0, 1e6, -1, 1), (-1e6, 1e6, 0, 1), (3, 40, 1e-100, 3e-100), (300, 20, 0, 1e100)]),
    "JohnsonU": (johnson_u, [(0, 1, 1, 0), (-1, 0.5, 2, 3), (2, 3, 0.25, -1)],
                 [(0, 0.1, 1, 0), (0, 1e6, 1, 0), (-1e6, 1e6, 3, 0), (1e4, 100, 1e-100, 0), (3, 40, 1e100, 1e99)]),
    "Fatigue": (fatigue, [(0, 1, 0.5), (2, 3, 2)], [(0, 1e-100, 0.01), (0, 1e100, 1e6), (0, 3, 1e-6), (1, 1e-3, 40)]),
    "InvGauss": (inverse_gauss, [(1, 1), (3, 0.5), (0.5, 12)],
                 [(1, 1e6), (1, 0.01), (1e-100, 1e-98), (1e100, 1e92), (1, 1e-10)]),
    "Levy": (levy, [(1, 0), (0.5, 3)], [(1e-100, 0), (1e100, -1e50)]),
}

TRUNCATED = [
    ("JohnsonB", (0, 1, 0, 1), 0, 1e-10, 2e-10, 1.5e-10),
    ("JohnsonU", (0, 1, 1, 0), 0, 1e6, 2e6, 1.5e6),
    ("Fatigue", (0, 1, 0.5), 0, 50, 60, 52),
    ("InvGauss", (1, 1), 0, 700, 710, 702),
    ("InvGauss", (1, 1), 1, 0, 1e-300, 0.000726),
    ("InvGauss", (1, 0.01), 2, 1 - 2**-40, sys.float_info.max, 5e3),
    ("Levy", (1, 0), 0, 1e30, 2e30, 1.5e30),
    ("Levy", (1, 0), 0, 1e-3, 1.1e-3, 1.0625e-3),
]
