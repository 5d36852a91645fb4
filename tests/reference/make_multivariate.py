#!/usr/bin/python3
"""Writes multivariate.tsv: what is known of multivariate distributions, copulas and fits, from exact arithmetic and mpmath.
probability  function, arguments, value, base-10 logarithm
moments      function, arguments, means, covariances
copula       function, arguments of a call, dimensions, Kendall's tau of the first and the last coordinate, the probability that
             the last is below 0.01 given that the first is, and the same above 0.99
fit          function, arguments, parameter
frank_tau    theta, tau"""
from bisect import bisect_right
from fractions import Fraction
from math import comb, prod
import pathlib

from mpmath import asin, det, exp, expm1, gamma, inf, log, log10, lu_solve, matrix, mp, mpf, nstr, pi, quad, sin, sqrt
from scipy import integrate, stats

mp.dps = 40


def text(values):
    return " ".join(repr(float(v)) for v in values)


def array(values):
    return "[" + ",".join(repr(float(v)) for v in values) + "]"


def rational(p):
    return mpf(p.numerator) / p.denominator


def multinomial(s, p):
    value = mp.factorial(int(sum(s)))
    for v, q in zip(s, p):
        value *= mpf(q) ** int(v) / mp.factorial(int(v))
    return value


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


def stopped(quota, chances):
    """Means and covariances of what exceeds the quotas when the last one is met; chances(counts) are those of the next item."""
    k = len(quota)
    waiting, mean, second = {(0,) * k: 1.0}, [0.0] * k, [[0.0] * k for _ in range(k)]
    while waiting:
        after = {}
        for counts, weight in waiting.items():
            for i, chance in enumerate(chances(counts)):
                if weight * chance > 1e-13:
                    now = counts[:i] + (counts[i] + 1,) + counts[i + 1:]
                    after[now] = after.get(now, 0) + weight * chance
        waiting = {}
        for counts, weight in after.items():
            excess = [n - q for n, q in zip(counts, quota)]
            if min(excess) < 0:
                waiting[counts] = weight
                continue
            for i in range(k):
                mean[i] += weight * excess[i]
                for j in range(k):
                    second[i][j] += weight * excess[i] * excess[j]
    return mean, [second[i][j] - mean[i] * mean[j] for i in range(k) for j in range(k)]


def frank_tau(theta):
    if theta == 0:
        return mpf(0)
    debye = quad(lambda t: t / expm1(t) if t else mpf(1), [0, theta / 4, theta]) / theta
    return 1 - 4 / theta * (1 - debye)


rows = []


def row(kind, *cells):
    rows.append("\t".join([kind, *(cell if isinstance(cell, str) else nstr(cell, 20) for cell in cells)]))


def probability(function, value, *vectors):
    arguments = " ".join(f"{array(v)} {len(v)}" for v in vectors)
    row("probability", function, arguments, value, log10(value) if value else "-1.7976931348623157e308")


quarters = [0.25, 0.5, 0.125, 0.125]
for s, p in [([1, 0], [0, 1]), ([3, 2], [0.5, 0.5]), ([0, 4, 1, 2], quarters), ([100, 230, 40, 50], quarters),
             ([250000, 500000, 125000, 125000], quarters), ([1000, 0, 0, 0], quarters), ([7], [1]),
             ([0, 5, 0], [0, 0.75, 0.25]), ([40, 2], [2.0**-30, 1 - 2.0**-30])]:
    probability("Multinomial", multinomial(s, p), s, p)
for s, D in [([1, 2], [3, 4]), ([0, 0, 5], [10, 20, 30]), ([3, 4], [3, 4]), ([2, 0, 1], [2, 0, 9]),
             ([500, 700, 900], [2000, 3000, 4000]), ([0, 1], [1000000, 1]), ([300000, 100], [1000000, 1000]),
             ([0, 600], [100, 1000])]:
    probability("MultiHypergeo", hypergeometric(s, D), s, D)
for x, alpha in [([0.25, 0.75], [1, 1]), ([0.25, 0.25, 0.5], [2, 3.5, 0.25]), ([0.5, 0.5], [1e5, 1e5]),
                 ([2.0**-40, 1 - 2.0**-40], [0.5, 3]), ([0.125, 0.125, 0.25, 0.5], [1e4, 1e4, 2e4, 4e4]),
                 ([0.5, 0.5], [2.0**-40, 2.0**-40]), ([0.25, 0.25, 0.5], [30, 1, 100])]:
    probability("Dirichlet", dirichlet(x, alpha), x, alpha)
for x, mu, cov in [([0, 0], [0, 0], [1, 0, 0, 1]), ([1], [0.5], [4]), ([1, 2], [0, 0], [2, 0.5, 0.5, 1]),
                   ([1, -1, 2], [0.5, 0, 1], [4, 1, 0.5, 1, 3, -1, 0.5, -1, 2]), ([30, -30], [0, 0], [1, 0.875, 0.875, 1]),
                   ([1, 2], [1, 2], [2.0**-30, 0, 0, 2.0**-30]), ([3, 4], [0, 0], [2, 0, 1, 2])]:
    full = cov if len(cov) != 4 or cov[1] else [cov[0], cov[2], cov[2], cov[3]]
    probability("MultiNormal", normal(x, mu, full), x, mu, cov)


def moments(function, arguments, mean, covariance):
    row("moments", function, arguments, text(mean), text(covariance))


def shares(p, scale):
    """scale (diag p - p p')"""
    return [scale * ((i == j) * a - a * b) for i, a in enumerate(p) for j, b in enumerate(p)]


moments("MultiNormal", "[1,-2,3] 3 [4,0,0,1,2,0,-1,0.5,1] 9", [1, -2, 3], [4, 1, -1, 1, 2, 0.5, -1, 0.5, 1])
singular = [1, 1, 0.5, 1, 1, 0.5, 0.5, 0.5, 1]
moments("MultiNormal", f"[1,-2,3] 3 {array(singular)} 9", [1, -2, 3], singular)
moments("Multinomial", "40 [0.5,0.2,0.3] 3", [20, 8, 12], shares([0.5, 0.2, 0.3], 40))
p = [1 / 8.5, 2.5 / 8.5, 5 / 8.5]  # shapes 1, 2.5 and 5
moments("Dirichlet", "[0,1.5,4] 3", p, shares(p, 1 / 9.5))
p = [0.3, 0, 0.5, 0.2]
moments("MultiHypergeo", "25 [30,0,50,20] 4", [25 * v for v in p], shares(p, 25 * 75 / 99))
s, p, quota, D = [1, 1, 2], [0.5, 0.25, 0.25], [2, 0, 1], [4, 2, 3]
for name, arguments, quotas, (mean, covariance) in [
        ("NegMultinomial", f"{array(s)} 3 {array(p)} 3", s, stopped(s, lambda n: p)),
        ("InvMultiHypergeo", f"{array(quota)} 3 {array(D)} 3", quota,
         stopped(quota, lambda n: [(size - m) / (sum(D) - sum(n)) for size, m in zip(D, n)]))]:
    moments(name, arguments, [sum(mean) + sum(quotas)], [sum(covariance)])
    moments(name + "2", arguments, mean, covariance)

Q = mpf("0.01")


def copula(function, arguments, d, tau, C):
    """C(u, v) is the joint cumulative probability."""
    row("copula", function, arguments, str(d), mpf(tau), C(Q, Q) / Q, (2 * Q - 1 + C(1 - Q, 1 - Q)) / Q)


def clayton(a):
    return lambda u, v: (u ** -mpf(a) + v ** -mpf(a) - 1) ** (-1 / mpf(a))


def gumbel(t):
    return lambda u, v: exp(-((-log(u)) ** t + (-log(v)) ** t) ** (1 / mpf(t)))


def frank(t):
    return lambda u, v: -log(1 + expm1(-t * u) * expm1(-t * v) / expm1(-t)) / t


def mirrored(C):
    return lambda u, v: u - C(u, 1 - v)


def independent(u, v):
    return u * v


def elliptical(nu, rho):
    """Of the t copula, or the normal for nu = inf: by the distribution of the second coordinate given the first."""
    margin, given = (stats.norm, stats.norm) if nu == inf else (stats.t(nu), stats.t(nu + 1))

    def C(u, v):
        t = margin.ppf(float(v))

        def joint(p):
            x = margin.ppf(p)
            spread = ((1 - rho * rho) * (1 if nu == inf else (nu + x * x) / (nu + 1))) ** 0.5
            return given.cdf((t - rho * x) / spread)
        return mpf(integrate.quad(joint, 0, float(u), epsabs=1e-12)[0])
    return C


N = 20000
both = [("Clayton", 2, 3, 0.5, clayton(2)), ("Clayton", 36, 4, mpf(36) / 38, clayton(36)), ("Clayton", "1e-12", 2, 0, independent),
        ("Clayton", -2, 2, -0.5, mirrored(clayton(2))), ("Clayton", 0, 5, 0, independent), ("Gumbel", 1, 2, 0, independent),
        ("Gumbel", "1.0000000001", 3, 0, independent), ("Gumbel", 2, 5, 0.5, gumbel(2)),
        ("Gumbel", 36, 3, mpf(35) / 36, gumbel(36)), ("Gumbel", -3, 2, -mpf(2) / 3, mirrored(gumbel(3))),
        ("Frank", "5.04", 3, frank_tau(mpf("5.04")), frank(mpf("5.04"))), ("Frank", 35, 2, frank_tau(35), frank(35)),
        ("Frank", -18, 2, -frank_tau(18), mirrored(frank(18))), ("Frank", "1e-15", 2, 0, independent)]
for name, parameter, d, tau, C in both:
    copula("CopulaMulti" + name, f"{parameter} {N}", d, tau, C)
copula("CopulaBiClayton", "2 1", 2, 0.5, clayton(2))
copula("CopulaBiClayton", "2 3", 2, -0.5, mirrored(clayton(2)))
copula("CopulaBiGumbel", "2 4", 2, 0.5, lambda u, v: u + v - 1 + gumbel(2)(1 - u, 1 - v))
copula("CopulaBiFrank", "-5.04 2", 2, frank_tau(mpf("5.04")), frank(mpf("5.04")))
three = "[1,0,0,0.5,1,0,-0.25,0.25,1] 3"
for rho, function, arguments, d, nu in [
        (-0.25, "CopulaMultiNormal", three, 3, inf), (0.7, "CopulaMultiNormal", "[0.7] 1", 2, inf),
        (0.5, "CopulaMultiNormal", f"{array(singular)} 3", 3, inf), (0.5, "CopulaBiNormal", "0.5", 2, inf),
        (-0.25, "CopulaMultiT", "4 " + three, 3, 4), (0.5, "CopulaMultiT", "1 [1,0,0.5,1] 2", 2, 1),
        (0.5, "CopulaMultiT", "200 [0.5] 1", 2, 200), (0.5, "CopulaBiT", "3 0.5", 2, 3)]:
    copula(function, arguments + (f" {N}" if "Multi" in function else ""), d, 2 * asin(rho) / pi, elliptical(nu, rho))
for function, arguments, d, sign in [
        ("CopulaMultiNormal", f"[1,-1,1,-1,1,-1,1,-1,1] 3 {N}", 3, 1), ("CopulaMultiT", f"1 [-1] 1 {N}", 2, -1),
        ("CopulaBiNormal", "-1", 2, -1), ("CopulaBiT", "3 -1", 2, -1)]:
    copula(function, arguments, d, sign, min if sign > 0 else lambda u, v: max(u + v - 1, 0))

GRID = [mpf("0.36") * i for i in range(98)]
TAUS = [mpf(nstr(frank_tau(theta), 9)) if theta else mpf(0) for theta in GRID]
LARGE = "1.7976931348623157e308"


def parameter(name, tau):
    if name == "Clayton":
        return 2 * tau / (1 - tau) if tau < 1 else LARGE
    if name == "Gumbel":
        return (max(1 / (1 - tau), mpf("1.0000000001")) if tau >= 0 else mpf("1.0000000001")) if tau < 1 else LARGE
    if tau < 0 or tau > TAUS[-1]:
        return mpf(0) if tau < 0 else mpf(35)
    i = min(bisect_right(TAUS, tau), 97)
    return GRID[i - 1] + (GRID[i] - GRID[i - 1]) * (tau - TAUS[i - 1]) / (TAUS[i] - TAUS[i - 1])


def tau_of(x, y):
    pairs = [(i, j) for j in range(len(x)) for i in range(j)]
    return mpf(sum((x[i] > x[j]) * (y[i] > y[j]) - (x[i] > x[j]) * (y[i] < y[j]) + (x[i] < x[j]) * (y[i] < y[j])
                   - (x[i] < x[j]) * (y[i] > y[j]) for i, j in pairs)) / len(pairs)


five = [(1, 2, 3, 4, 5), (1, 4, 3, 5, 2), (1, 3, 5, 4, 2)]  # taus 0.2, 0.4, 0.6; pairs with the last variable count once
five_tau = (2 * tau_of(five[0], five[1]) + tau_of(five[0], five[2]) + tau_of(five[1], five[2])) / 4
UP, DOWN, TIES = [(1, 2, 3, 4), (1, 2, 3, 4)], [(1, 2, 3, 4), (4, 3, 2, 1)], [(1, 2, 2, 4, 5), (2, 2, 5, 3, 7)]


def by_observation(variables):
    return array([v for observation in zip(*variables) for v in observation])


for name in ["Clayton", "Gumbel", "Frank"]:
    row("fit", f"CopulaMulti{name}FitP", f"{by_observation(five)} 5 3 0 0", parameter(name, five_tau))
    row("fit", f"CopulaMulti{name}FitP", f"{array(sum(five, ()))} 3 5 1 0", parameter(name, five_tau))
    most, least = {"Clayton": (36, 0), "Gumbel": (36, mpf("1.0000000001")), "Frank": (35, 0)}[name]
    row("fit", f"CopulaMulti{name}FitP", f"{by_observation(UP)} 4 2 0 0", mpf(most))
    row("fit", f"CopulaMulti{name}FitP", f"{by_observation(DOWN)} 4 2 0 0", mpf(least))
    # In a direction that contradicts the data the parameter is minus that of |tau|.
    for data, direction, tau in [(UP, 1, 1), (DOWN, 1, -1), (DOWN, 2, 1), (DOWN, 0, 1), (TIES, 1, tau_of(*TIES)),
                                 (TIES, 2, -tau_of(*TIES)), (TIES, "null", tau_of(*TIES))]:
        size = parameter(name, abs(mpf(tau)))
        expected = size if tau >= 0 else "-" + size if size is LARGE else -size
        row("fit", f"CopulaBi{name}FitP", f"{direction} {by_observation(data)} {len(data[0])} 0", expected)
row("fit", "CopulaBiNormalFitP", f"{by_observation(TIES)} 5 0", sin(pi / 2 * tau_of(*TIES)))
for theta in ["0.36", "1.08", "5.04", "18", "34.92"]:
    row("frank_tau", theta, frank_tau(mpf(theta)))

head = ["# " + __doc__.replace("\n", "\n# "), "# Made by make_multivariate.py."]
pathlib.Path(__file__).with_name("multivariate.tsv").write_text("\n".join(head + rows) + "\n")
