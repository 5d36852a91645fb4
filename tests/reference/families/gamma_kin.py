"""The gamma distribution and its kin."""
import mpmath as m

from reference import INF, Family


def gamma_tails(a, x):
    """P(a, x) and Q(a, x) by the series below the mean (DLMF 8.7.1) and Legendre's continued fraction (DLMF 8.9.2) above."""
    if x <= 0:
        return m.mpf(0), m.mpf(1)
    factor = m.exp(a * m.log(x) - x - m.loggamma(a))
    if x < a + 1:
        term = total = 1 / a
        k = a
        while term > m.eps * total:
            k += 1
            term *= x / k
            total += term
        return factor * total, 1 - factor * total
    if factor == 0 or x > 10**7 * (a + 1):
        return 1 - factor / x, factor / x
    b, c, k = x + 1 - a, m.inf, 0  # modified Lentz
    d = 1 / b
    h = d
    while True:
        k += 1
        an, b = -k * (k - a), b + 2
        d = 1 / (an * d + b)
        c = b + an / c
        h *= c * d
        if abs(c * d - 1) < m.eps:
            return 1 - factor * h, factor * h


def gamma(alpha, beta):
    return Family((m.mpf(0), INF), lambda x: gamma_tails(alpha, x / beta)[0], lambda x: gamma_tails(alpha, x / beta)[1],
                  lambda x: (alpha - 1) * m.log(x / beta) - x / beta - m.loggamma(alpha) - m.log(beta))


FAMILIES = {
    "Gamma": (gamma, [(0.3, 2), (2.5, 1), (50, 0.01)], [(0.01, 1), (1e4, 1e100), (1e6, 1e-100)]),
    "Erlang": (gamma, [(1, 3), (7, 0.5)], [(1000, 1e100)]),
}

TRUNCATED = [
    ("Gamma", (2.5, 1), 2, 1 - 1e-12, 1e300, 40),
    ("Gamma", (2.5, 1), 0, 700, 702, 701),
    ("Gamma", (50, 1), 0, 1e-3, 2e-3, 1.75e-3),
]
