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


def of_gamma(shape, z, log_slope, support=(m.mpf(0), INF), falls=False):
    """X whose increasing (or falling) function z(X) is a standard gamma variable; log_slope is ln |dz/dx|."""
    lower = lambda x: gamma_tails(shape, z(x))[0]
    upper = lambda x: gamma_tails(shape, z(x))[1]
    return Family(support, upper if falls else lower, lower if falls else upper,
                  lambda x: (shape - 1) * m.log(z(x)) - z(x) - m.loggamma(shape) + log_slope(x))


def maxwell(scale, nu=3):
    return of_gamma(m.mpf(nu) / 2, lambda x: (x / scale) ** 2 / 2, lambda x: m.log(x / scale**2))


def log_gamma(alpha, beta, origin):
    return of_gamma(alpha, lambda x: m.log1p(x - origin) / beta, lambda x: -m.log((1 + x - origin) * beta), (origin, INF))


FAMILIES = {
    "Gamma": (gamma, [(0.3, 2), (2.5, 1), (50, 0.01)], [(0.01, 1), (0.01, 1e100), (1e4, 1e100), (1e6, 1e-100)]),
    "Erlang": (gamma, [(1, 3), (7, 0.5)], [(1000, 1e100)]),
    "ChiSq": (lambda nu: gamma(nu / 2, 2), [(1,), (2,), (7,)], [(1e6,)]),
    "Chi": (lambda nu: maxwell(1, nu), [(1,), (2,), (7,)], [(1e6,)]),
    "Maxwell": (maxwell, [(1,), (2.5,)], [(1e-100,), (1e100,)]),
    "Pearson5": (lambda alpha, beta: of_gamma(alpha, lambda x: beta / x, lambda x: m.log(beta / x**2), falls=True),
                 [(0.5, 2), (3, 1), (20, 7)], [(0.01, 1e-100), (1e6, 1e100), (1e4, 1e-100)]),
    "LogGamma": (log_gamma, [(2, 0.5, 0), (0.5, 0.25, 1), (5, 0.1, -2)],
                 [(0.01, 1, 0), (1e6, 1e-6, 0), (1e6, 1e-100, 0), (3, 100, 0), (1e4, 1e-5, -1e6)]),
}

TRUNCATED = [
    ("Gamma", (2.5, 1), 2, 1 - 1e-12, 1e300, 40),
    ("Gamma", (2.5, 1), 0, 700, 702, 701),
    ("Gamma", (50, 1), 0, 1e-3, 2e-3, 1.75e-3),
    ("ChiSq", (7,), 0, 1e-50, 2e-50, 1.5e-50),
    ("Chi", (1,), 0, 30, 31, 30.03125),
    ("Maxwell", (2.5,), 2, 1 - 2**-50, 1e300, 25),
    ("Pearson5", (3, 1), 0, 0.002, 0.003, 0.0029),
    ("Pearson5", (3, 1), 0, 1e100, 1e101, 2e100),
    ("LogGamma", (2, 0.5, 0), 0, 1e100, 2e100, 1.25e100),
]
