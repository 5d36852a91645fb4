#!/usr/bin/python3
"""Writes multivariate.tsv: joint probabilities and densities from exact arithmetic and mpmath, and the parameters and Kendall's
tau of Archimedean copulas. Columns: function, first vector, second vector, value, its base-10 logarithm (matrices follow
the second vector after a |); for the copulas: function, parameter, tau."""
from fractions import Fraction
from math import comb, factorial, prod
import pathlib

from mpmath import mp, mpf, matrix, quad, expm1, gamma, log10, exp, pi, sqrt, det, lu_solve, nstr

mp.dps = 50


def text(values):
    return " ".join(repr(float(v)) for v in values)


def rational(p):
    return mpf(p.numerator) / p.denominator


def multinomial(s, p):
    n = int(sum(s))
    ways = factorial(n) // prod(factorial(int(v)) for v in s)
    return rational(ways * prod((Fraction(q) ** int(v) for v, q in zip(s, p)), start=Fraction(1)))


def hypergeometric(s, D):
    return rational(Fraction(prod(comb(int(d), int(v)) for v, d in zip(s, D)), comb(int(sum(D)), int(sum(s)))))


def dirichlet(x, alpha):
    value = gamma(sum(map(mpf, alpha)))
    for v, a in zip(x, alpha):
        value *= mpf(v) ** (mpf(a) - 1) / gamma(mpf(a))
    return value


def normal(x, mu, cov):
    k = len(x)
    C = matrix(k, k)
    for i in range(k * k):
        C[i // k, i % k] = mpf(cov[i])
    d = matrix([mpf(a) - mpf(b) for a, b in zip(x, mu)])
    q = (d.T * lu_solve(C, d))[0]
    return exp(-q / 2) / sqrt(2 * pi * det(C))


def frank_tau(theta):
    debye = quad(lambda t: t / expm1(t) if t else mpf(1), [0, theta / 4, theta]) / theta
    return 1 - 4 / theta * (1 - debye)


quarters = [0.25, 0.5, 0.125, 0.125]
rows = []
for s, p in [([1, 0], [0, 1]), ([3, 2], [0.5, 0.5]), ([0, 4, 1, 2], quarters), ([100, 230, 40, 50], quarters),
             ([250000, 500000, 125000, 125000], quarters), ([1000, 0, 0, 0], quarters), ([7], [1]),
             ([0, 5, 0], [0, 0.75, 0.25]), ([40, 2], [2.0**-30, 1 - 2.0**-30])]:
    rows.append(("multinomial", s, p, None, multinomial(s, p)))
for s, D in [([1, 2], [3, 4]), ([0, 0, 5], [10, 20, 30]), ([3, 4], [3, 4]), ([2, 0, 1], [2, 0, 9]),
             ([500, 700, 900], [2000, 3000, 4000]), ([0, 1], [1000000, 1]), ([300000, 100], [1000000, 1000]),
             ([0, 600], [100, 1000])]:
    rows.append(("hypergeometric", s, D, None, hypergeometric(s, D)))
for x, alpha in [([0.25, 0.75], [1, 1]), ([0.25, 0.25, 0.5], [2, 3.5, 0.25]), ([0.5, 0.5], [1e5, 1e5]),
                 ([2.0**-40, 1 - 2.0**-40], [0.5, 3]), ([0.125, 0.125, 0.25, 0.5], [1e4, 1e4, 2e4, 4e4]),
                 ([0.5, 0.5], [2.0**-40, 2.0**-40]), ([0.25, 0.25, 0.5], [30, 1, 100])]:
    rows.append(("dirichlet", x, alpha, None, dirichlet(x, alpha)))
for x, mu, cov in [([0, 0], [0, 0], [1, 0, 0, 1]), ([1], [0.5], [4]), ([1, 2], [0, 0], [2, 0.5, 0.5, 1]),
                   ([1, -1, 2], [0.5, 0, 1], [4, 1, 0.5, 1, 3, -1, 0.5, -1, 2]), ([30, -30], [0, 0], [1, 0.875, 0.875, 1]),
                   ([1, 2], [1, 2], [2.0**-30, 0, 0, 2.0**-30]), ([3, 4], [0, 0], [2, 1, 0, 2])]:
    full = cov if len(cov) != 4 or cov[1] else [cov[0], cov[2], cov[2], cov[3]]
    rows.append(("normal", x, mu, cov, normal(x, mu, full)))

lines = ["# " + __doc__.replace("\n", "\n# "), "# Made by make_multivariate.py."]
for function, first, second, third, value in rows:
    second = text(second) + ("|" + text(third) if third else "")
    log = nstr(log10(value), 20) if value else "-1.7976931348623157e308"
    lines.append("\t".join([function, text(first), second, nstr(value, 20), log]))
for theta in [0.36, 1.08, 5.04, 18, 34.92]:
    lines.append("\t".join(["frank_tau", repr(theta), nstr(frank_tau(mpf(theta)), 20)]))
pathlib.Path(__file__).with_name("multivariate.tsv").write_text("\n".join(lines) + "\n")
