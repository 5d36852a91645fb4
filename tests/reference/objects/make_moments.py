#!/usr/bin/env python3
"""Writes moments.tsv: moments, modes, means of tails, limited means and logarithms of tails by mpmath.

A continuous variable is X = g(T) with T of a simple density; its moments are integrals over T, about the mean and with
30 digits. A count is a sum over its masses. Columns: distribution, function, argument, value. Run without arguments.
"""
from pathlib import Path
from mpmath import (mp, mpf, inf, nan, exp, log, sqrt, pi, gamma, beta, loggamma, quad, sinh, cosh, log1p, expm1,
                    erfc, besseli, hyp0f1, binomial, factorial, nsum, atan, asinh, npdf, gammainc, betainc, findroot)

mp.dps = 30
R = [-inf, -200, -60, -20, -8, -3, 0, 3, 8, 20, 60, 200, inf]
N = [-40, -20, -8, -4, 0, 4, 8, 20, 40]
P = [0, mpf(1) / 64, mpf(1) / 4, 1, 4, 16, 64, 256, 1024, inf]
U = [0, mpf(1) / 64, mpf(1) / 4, mpf(1) / 2, mpf(3) / 4, 1 - mpf(1) / 64, 1]
out = []


def put(text, function, argument, value):
    number = mpf(value)
    shown = "nan" if number != number else mp.nstr(number, 20) if abs(number) < inf else "inf" if number > 0 else "-inf"
    out.append(f"{text}\t{function}\t{mp.nstr(mpf(argument), 17) if argument != '' else 0}\t{shown}")


def report(text, mean, variance, third, fourth, below=inf, above=inf):
    """Puts what exists: E|X|^k is finite for k below the limits on either side."""
    values = [mean, variance, third / variance**1.5 if variance else nan, fourth / variance**2 - 3 if variance else nan]
    for order in (4, 3, 2, 1):
        low, high = below <= order, above <= order
        if low or high:
            values[order - 1] = nan if order % 2 and low and high else -inf if order % 2 and low else inf
            if order == 2:
                values[2] = values[3] = nan
            if order == 1 and values[0] != values[0]:
                values[1] = nan
    for name, value in zip(("mean", "variance", "skewness", "kurtosis"), values):
        put(text, name, "", value)


def real(text, f, points, g=lambda t: t, below=inf, above=inf):
    highest = int(min(4, mp.ceil(min(below, above)) - 1))
    if highest < 1:
        return report(text, 0, 1, 0, 0, below, above)
    mean = quad(lambda t: f(t) * g(t), points)
    central = [quad(lambda t: f(t) * (g(t) - mean)**k, points) if k <= highest else mpf(1) for k in (2, 3, 4)]
    report(text, mean, *central, below, above)


def whole(text, mass, first, last):
    total, mean = mpf(0), mpf(0)
    masses = [mass(k) for k in range(first, last + 1)]
    total = mp.fsum(masses)
    assert abs(total - 1) < 1e-22, (text, total)
    mean = mp.fsum(m * k for k, m in enumerate(masses, first))
    report(text, mean, *[mp.fsum(m * (k - mean)**n for k, m in enumerate(masses, first)) for n in (2, 3, 4)])


def from_powers(text, power, below=inf, above=inf):
    """From E X^k, with the digits that the differences take."""
    with mp.workdps(200):
        m = [power(k) if k < above and -k > -below else mpf(0) for k in range(5)]
        mean = m[1]
        report(text, mean, m[2] - mean**2, m[3] - 3 * mean * m[2] + 2 * mean**3,
               m[4] - 4 * mean * m[3] + 6 * mean**2 * m[2] - 3 * mean**4, below, above)


phi = lambda t: exp(-t * t / 2) / sqrt(2 * pi)
logistic = lambda t: 1 / (2 * cosh(t / 2))**2
gumbel = lambda t: exp(-t - exp(-t)) if t > -12 else mpf(0)
expon = lambda t: exp(-t)
Phi = lambda z: erfc(-z / sqrt(mpf(2))) / 2
G = [-12, -5, -3, 0, 3, 8, 20, 60, 200, inf]
gam = lambda a: lambda t: exp((a - 1) * log(t) - t - loggamma(a)) if t > 0 else mpf(0)
bet = lambda a, b: lambda t: t**(a - 1) * (1 - t)**(b - 1) / beta(a, b) if 0 < t < 1 else mpf(0)


poch = lambda a, k: gamma(a + k) / gamma(a)

for mu, s in ((3, 2), (-1e6, 1e-3)):
    report(f"Normal({mu}, {s})", mpf(mu), mpf(s)**2, 0, 3 * mpf(s)**4)
for h in (2, 1e-4):
    report(f"Erf({h})", 0, 1 / (2 * mpf(h)**2), 0, 3 / (2 * mpf(h)**2)**2)
for m, s, k in ((1, 2, 1.5), (0, 1, 2.99)):
    report(f"NormalMix({m}, {s}, {k})", mpf(m), mpf(s)**2, 0, (3 + mpf(k)) * mpf(s)**4)
for a in (2, -50, 0.01):
    real(f"SkewNormal(1, 2, {a})", lambda t, a=mpf(a): 2 * phi(t) * Phi(a * t), [-40, -8, -2, -mpf(1) / 20, 0, mpf(1) / 20, 2, 8, 40],
         lambda t: 1 + 2 * t)
for text in ("Slash(0, 1)", "Slash(5, 1e-3)", "Cauchy(0, 1)", "Cauchy(1e5, 7)"):
    report(text, 0, 1, 0, 0, 1, 1)
for text in ("Levy(1, 0)", "Levy(1e-5, 100)"):
    report(text, 0, 1, 0, 0, inf, 0.5)
for nu in (1, 2, 3, 4, 5, 30, 1e6):
    n = mpf(nu)
    report(f"Student({nu})", mpf(0), n / (n - 2) if nu != 2 else mpf(1), 0, 3 * n * n / ((n - 2) * (n - 4)) if nu > 4 else mpf(1), n, n)
report("Student3(10, 3, 6)", mpf(10), mpf(9) * 6 / 4, 0, 6 * (mpf(9) * 6 / 4)**2)
for m, s in ((0.5, 0.25), (1, 3), (0, 1e-4)):
    from_powers(f"LognormalE({m}, {s})", lambda k, m=mpf(m), s=mpf(s): exp(k * m + k * k * s * s / 2))
for m, s in ((100, 15), (2, 1000)):
    from_powers(f"Lognormal({m}, {s})", lambda k, m=mpf(m), v=log1p((mpf(s) / mpf(m))**2): m**k * exp(v * k * (k - 1) / 2))
from_powers("LognormalB(0.5, 0.25, 10)", lambda k: exp(log(mpf(10)) * k / 2 + k * k * (log(mpf(10)) / 4)**2 / 2))
for a, b in ((1, 2), (-1e3, 1e-3)):
    report(f"Logistic({a}, {b})", mpf(a), (mpf(b) * pi)**2 / 3, 0, (mpf(b) * pi)**4 / 9 * (3 + mpf(6) / 5))
for g in (3, 0.05, 400):
    real(f"GLogistic(1, 2, {g})", lambda t, g=mpf(g): g * exp(-t - (g + 1) * log1p(exp(-t))) if t > -4000 else mpf(0),
         [-4000, -1000, -300, -100, -30, -10, -3, 0, 3, 10, 30, 100, 300], lambda t: 1 + 2 * t)
for a, b in ((5, 2), (4, 1), (3, 1), (2.5, 1), (2, 1), (1, 1), (0.5, 1), (300, 7)):
    x = mpf(a)
    from_powers(f"LogLogistic({a}, {b})", lambda k, x=x, b=mpf(b): b**k * (pi * k / x / mp.sin(pi * k / x) if k else 1), above=x)
for m, s in ((1, 2), (0, 1e-5)):
    report(f"HS({m}, {s})", mpf(m), mpf(s)**2, 0, 5 * mpf(s)**4)
    report(f"Laplace({m}, {s})", mpf(m), mpf(s)**2, 0, 6 * mpf(s)**4)
for a, b in ((5, 2), (3.5, 0.5), (2.5, 400), (1, 1), (200, 300)):
    from_powers(f"LogLaplace({a}, {b}, 3)", lambda k, a=mpf(a), b=mpf(b): 3**mpf(k) * a * b / ((a - k) * (b + k)), above=mpf(a))
for nu in (0.4, 1.5, 2, 30):
    a = 1 / mpf(nu)
    report(f"Error(1, 2, {nu})", mpf(1), mpf(4), 0, 16 * gamma(5 * a) * gamma(a) / gamma(3 * a)**2)
for a1, a2 in ((0.5, 2), (-3, 0.8), (2, 60)):
    real(f"JohnsonU({a1}, {a2}, 2, 1)", phi, N, lambda t, a1=mpf(a1), a2=mpf(a2): 1 + 2 * sinh((t - a1) / a2))
    real(f"JohnsonB({a1}, {a2}, 1, 5)", phi, N, lambda t, a1=mpf(a1), a2=mpf(a2): 1 + 4 / (1 + exp((a1 - t) / a2)))
for g in (0.5, 20, 1e-3):
    real(f"Fatigue(1, 2, {g})", phi, N, lambda t, g=mpf(g): 1 + 2 * (g * t / 2 + sqrt(1 + (g * t / 2)**2))**2)
for m, l in ((2, 3), (1, 0.05), (1, 1e5)):
    m, l = mpf(m), mpf(l)
    report(f"InvGauss({mp.nstr(m, 17)}, {mp.nstr(l, 17)})", m, m**3 / l, 3 * m**5 / l**2, 3 * (m**3 / l)**2 * (1 + 5 * m / l))
for kind, sign in (("ExtValueMax", 1), ("ExtValueMin", -1)):
    for a, b in ((1, 2), (0, 1e-4)):
        real(f"{kind}({a}, {b})", gumbel, G, lambda t, a=mpf(a), b=mpf(b), sign=sign: a + sign * b * t)
for c in (0.1, 0.24, 0.26, 0.3, 0.4, 0.5, 1.0, 1.5, -0.3, -2, 1e-3, -1e-3):
    with mp.workdps(120):
        C = mpf(c)
        p = [gamma(1 - k * C) if k * C < 1 else mpf(0) for k in range(5)]
        m = p[1]
        report(f"GEV(1, 2, {c})", 1 + 2 * (m - 1) / C, (2 / C)**2 * (p[2] - m * m), (2 / C)**3 * (p[3] - 3 * m * p[2] + 2 * m**3),
               (2 / C)**4 * (p[4] - 4 * m * p[3] + 6 * m * m * p[2] - 3 * m**4), inf, 1 / C if c > 0 else inf)
for a, b in ((1.5, 2), (0.3, 1), (80, 5), (3.6, 1)):
    from_powers(f"Weibull({a}, {b})", lambda k, a=mpf(a), b=mpf(b): b**k * gamma(1 + k / a))
real("Weibull3(2, 3, 10)", expon, P, lambda t: 10 + 3 * sqrt(t))
from_powers("Rayleigh(3)", lambda k: (3 * sqrt(mpf(2)))**k * gamma(1 + mpf(k) / 2))
for b in (3, 1e-200):
    report(f"Expon({b})", mpf(b), mpf(b)**2, 2 * mpf(b)**3, 9 * mpf(b)**4)
for t, a in ((5, 2), (4, 1), (3, 1), (2, 3), (1, 1), (0.4, 1), (2000, 1)):
    from_powers(f"Pareto({t}, {a})", lambda k, t=mpf(t), a=mpf(a): a**k * t / (t - k), above=mpf(t))
    from_powers(f"Pareto2({a}, {t})", lambda k, t=mpf(t), a=mpf(a): a**k * t * beta(1 + k, t - k), above=mpf(t))
for a, p in ((5, 0.5), (3, 40), (1, 1), (60, 2)):
    power = lambda k, a=mpf(a), p=mpf(p): 2**mpf(k) * p * beta(p + k / a, 1 - k / a)
    from_powers(f"Dagum({a}, 2, {p})", power, above=mpf(a))
from_powers("Burr(0, 2, 5, 0.5)", lambda k: 2**mpf(k) * beta(mpf(.5) + mpf(k) / 5, 1 - mpf(k) / 5) / 2)
for a, b in ((2.5, 3), (0.01, 1), (1e6, 2)):
    a, b = mpf(a), mpf(b)
    report(f"Gamma({mp.nstr(a, 17)}, {mp.nstr(b, 17)})", a * b, a * b * b, 2 * a * b**3, (3 * a * a + 6 * a) * b**4)
for nu in (1, 7, 500, 1e6):
    from_powers(f"Chi({nu})", lambda k, nu=mpf(nu): 2**(mpf(k) / 2) * exp(loggamma((nu + k) / 2) - loggamma(nu / 2)))
from_powers("Maxwell(3)", lambda k: 3**mpf(k) * 2**(mpf(k) / 2) * gamma(mpf(3 + k) / 2) / gamma(mpf(3) / 2))
for a in (5, 4, 3.5, 3, 2, 1.5, 1, 1000):
    from_powers(f"Pearson5({a}, 2)", lambda k, a=mpf(a): 2**mpf(k) * gamma(a - k) / gamma(a), above=mpf(a))
for a, b in ((2, 0.1), (3, 0.3), (2, 0.6), (2, 1), (500, 1e-4), (0.01, 0.2)):
    with mp.workdps(120):
        e = [(1 - k * mpf(b))**-mpf(a) if k * mpf(b) < 1 else mpf(0) for k in range(5)]
        m = e[1]
        report(f"LogGamma({a}, {b}, 3)", 2 + m, e[2] - m * m, e[3] - 3 * m * e[2] + 2 * m**3,
               e[4] - 4 * m * e[3] + 6 * m * m * e[2] - 3 * m**4, inf, 1 / mpf(b))
for a, b in ((2, 5), (0.01, 0.02), (1e6, 3), (300, 1)):
    from_powers(f"Beta({a}, {b})", lambda k, a=mpf(a), b=mpf(b): poch(a, k) / poch(a + b, k))
real("Beta4(2, 3, 1, 5)", bet(2, 3), U, lambda t: 1 + 4 * t)
real("PERT(1, 2, 5)", bet(2, 4), U, lambda t: 1 + 4 * t)
real("ModPERT(1, 4, 5, 8)", bet(7, 3), U, lambda t: 1 + 4 * t)
for a, b in ((2, 5), (0.1, 4.5), (3, 4), (3, 2.5), (1, 2), (2, 0.5), (50, 4000)):
    from_powers(f"Pearson6({a}, {b}, 2)", lambda k, a=mpf(a), b=mpf(b): 2**mpf(k) * poch(a, k) * gamma(b - k) / gamma(b), above=mpf(b))
for n1, n2 in ((5, 20), (1, 8), (7, 6), (2, 3), (0.5, 2)):
    from_powers(f"F({n1}, {n2})", lambda k, a=mpf(n1) / 2, b=mpf(n2) / 2: (b / a)**k * poch(a, k) * gamma(b - k) / gamma(b), above=mpf(n2) / 2)


def noncentral(nu, l):  # E X^k
    p = [mpf(1)]
    for n in range(1, 5):
        kappa = lambda j: 2**mpf(j - 1) * factorial(j - 1) * (nu + j * l)
        p.append(sum(binomial(n - 1, j - 1) * kappa(j) * p[n - j] for j in range(1, n + 1)))
    return p


for nu, l in ((3, 2), (1, 1000)):
    from_powers(f"NCChiSq({nu}, {l})", lambda k, nu=mpf(nu), l=mpf(l): noncentral(nu, l)[k])
for n1, n2, l in ((3, 20, 2), (3, 7, 50), (2, 3, 1)):
    from_powers(f"NCF({n1}, {n2}, {l})", lambda k, n1=mpf(n1), n2=mpf(n2), l=mpf(l): noncentral(n1, l)[k] * (n2 / n1 / 2)**k * gamma(n2 / 2 - k) / gamma(n2 / 2),
                above=mpf(n2) / 2)
for a, b in ((2, 3), (0.2, 0.3), (50, 2)):
    from_powers(f"Kumaraswamy({a}, {b})", lambda k, a=mpf(a), b=mpf(b): b * beta(1 + k / a, b))
real("Kumaraswamy4(2, 3, 10, 30)", lambda t: 6 * t * (1 - t * t)**2, U, lambda t: 10 + 20 * t)
for t in (3, 1e-6, 1e6):
    real(f"Bradford({t}, 1, 5)", lambda x, t=mpf(t): t / log1p(t) / (1 + t * x), [0, 1e-6, 1e-4, 1e-2, mpf(1) / 2, 1], lambda x: 1 + 4 * x)
report("Uniform(-1, 3)", mpf(1), mpf(16) / 12, 0, mpf(256) / 80)
for a, c, b in ((1, 2, 5), (0, 0, 1), (-1, 1, 1)):
    w = mpf(b - a)
    real(f"Triangle({a}, {c}, {b})", lambda x, a=a, b=b, c=c, w=w: 2 / w * ((x - a) / (c - a) if x < c else (b - x) / (b - c) if b > c else 1), sorted({a, c, b}))
real("GTU(0, 1, 2, 4, 3, 2.5)", lambda x: (x**2 if x < 1 else 1 if x < 2 else ((4 - x) / 2)**mpf(1.5)) / (mpf(1) / 3 + 1 + 2 / mpf(2.5)), [0, 1, 2, 4])
real("LogUniform(1, 1000)", lambda t: 1 / log(mpf(1000)), [0, 2, 4, log(mpf(1000))], exp)
real("Reciprocal(1, 1.01)", lambda t: 1 / log(mpf(1.01)), [0, log(mpf(1.01))], exp)
real("LogTriangle(1, 3, 100)", lambda t: 2 / log(mpf(100)) * (t / log(mpf(3)) if t < log(mpf(3)) else (log(mpf(100)) - t) / log(mpf(100) / 3)), [0, log(mpf(3)), log(mpf(100))], exp)
real("Lifetime2(1, 2)", lambda t: (1 + 2 * t) * exp(-t - t * t), [0, 1, 3, 20])
real("Lifetime3(1, -1, 2)", lambda t: (1 - t + 2 * t * t) * exp(-t + t * t / 2 - 2 * t**3 / 3), [0, mpf(1) / 2, 1, 3, 10])
real("LifetimeExp(-2, 0.5)", lambda t: exp(-2 + t / 2 - 2 * (exp(t / 2) - 1) * exp(mpf(-2))), [0, 2, 5, 8, 12, 16])

# Tables
points = lambda pairs: (lambda m: [m] + [sum(w * (x - m)**k for x, w in pairs) for k in (2, 3, 4)])(sum(w * x for x, w in pairs))
report("Discrete({1, 5, 2}, {1, 2, 3})", *points([(mpf(1), mpf(1) / 6), (mpf(5), mpf(2) / 6), (mpf(2), mpf(3) / 6)]))
report("DUniform({1e8, 100000001, 100000001, 100000004})", *points([(mpf(x), mpf(1) / 4) for x in (10**8, 10**8 + 1, 10**8 + 1, 10**8 + 4)]))
report("StepUniform(1, 2, 0.25)", *points([(1 + mpf(i) / 4, mpf(1) / 5) for i in range(5)]))
real("Histogram(0, 3, {1, 2, 4})", lambda x: [1, 2, 4][min(int(x), 2)] / mpf(7), [0, 1, 2, 3])
real("CumulA(0, 10, {2, 5}, {0.25, 0.75})", lambda x: mpf(1) / 8 if x < 2 else mpf(1) / 6 if x < 5 else mpf(1) / 20, [0, 2, 5, 10])
real("CumulD(0, 10, {2, 5}, {0.75, 0.25})", lambda x: mpf(1) / 8 if x < 2 else mpf(1) / 6 if x < 5 else mpf(1) / 20, [0, 2, 5, 10])
real("Relative(0, 4, {1, 3}, {2, 1})", lambda x: (2 * x if x < 1 else 2 - (x - 1) / 2 if x < 3 else 4 - x) * mpf(2) / 9, [0, 1, 3, 4])
real("Ogive(0, 4, {3, 1})", lambda x: mpf(1) / 3 / (2 if 1 < x < 3 else 1), [0, 1, 3, 4])

# Counts
for l in (2.5, 1e-3, 2000):
    l = mpf(l)
    report(f"Poisson({mp.nstr(l, 17)})", l, l, l, l + 3 * l * l)
poisson = lambda l: lambda k: exp(-l + k * log(l) - loggamma(k + 1))
binom = lambda n, p: lambda k: binomial(n, k) * p**k * (1 - p)**(n - k)
negbin = lambda s, p: lambda k: exp(loggamma(s + k) - loggamma(s) - loggamma(k + 1) + s * log(p) + k * log1p(-p))
bbin = lambda n, a, b: lambda k: binomial(n, k) * beta(k + a, n - k + b) / beta(a, b)
hyper = lambda n, D, M: lambda k: binomial(D, k) * binomial(M - D, n - k) / binomial(M, n)
inverse = lambda s, D, M: lambda x: binomial(s + x - 1, x) * binomial(M - s - x, D - s) / binomial(M, D)
delaporte = lambda a, b, l: lambda k: mp.fsum(negbin(a, 1 / (1 + b))(j) * poisson(l)(k - j) for j in range(k + 1))


def bnb(s, a, b):  # E X(X-1)...(X-k+1), then powers
    def power(k):
        stirling = [[1], [0, 1], [0, 1, 1], [0, 1, 3, 1], [0, 1, 7, 6, 1]][k]
        return sum(c * poch(s, j) * poch(b, j) * gamma(a - j) / gamma(a) for j, c in enumerate(stirling))
    return power


half = mpf(1) / 2
urn = lambda M: binomial(M - 20, 7) / binomial(M, 10)
counted = [("Binomial(20, 0.3)", binom(20, mpf(0.3)), 0, 20), ("Binomial(3, 1e-9)", binom(3, mpf(1e-9)), 0, 3),
           ("Bernoulli(0.01)", binom(1, mpf(0.01)), 0, 1), ("Bernoulli(0.7)", binom(1, mpf(0.7)), 0, 1),
           ("NegBin(3, 0.4)", negbin(mpf(3), mpf(0.4)), 0, 600), ("Geometric(0.25)", negbin(mpf(1), mpf(0.25)), 0, 600),
           ("Polya(0.5, 4)", negbin(half, mpf(1) / 5), 0, 900), ("BetaBinomial(30, 2, 5)", bbin(30, 2, 5), 0, 30),
           ("BetaBinomial(7, 0.1, 0.2)", bbin(7, mpf(0.1), mpf(0.2)), 0, 7),
           ("Logarithmic(0.7)", lambda k: -mpf(0.7)**k / k / log1p(-mpf(0.7)), 1, 400),
           ("Logarithmic(0.001)", lambda k: -mpf(0.001)**k / k / log1p(-mpf(0.001)), 1, 30),
           ("Hypergeo(10, 30, 100)", hyper(10, 30, 100), 0, 10), ("Hypergeo(2, 1, 3)", hyper(2, 1, 3), 0, 1),
           ("Hypergeo(90, 95, 100)", hyper(90, 95, 100), 85, 90),
           ("InvHypergeo(4, 10, 60)", inverse(4, 10, 60), 0, 50), ("HypergeoD(2, 10, 50)", lambda D: inverse(3, 11, 51)(D - 2), 2, 42),
           ("HypergeoM(3, 10, 20, 200)", lambda M: urn(M) / mp.fsum(urn(m) for m in range(27, 201)), 27, 200),
           ("Skellam(3, 2)", lambda k: exp(mpf(-5)) * (mpf(3) / 2)**(mpf(k) / 2) * besseli(abs(k), 2 * sqrt(mpf(6))), -60, 70),
           ("PoissonUniform(1, 5)", lambda k: (gammainc(k + 1, 1, 5, regularized=True)) / 4, 0, 90),
           ("Delaporte(2, 1.5, 3)", delaporte(2, mpf(1.5), 3), 0, 220),
           ("BurntFingerPoisson(5, 2)", lambda k: exp(mpf(-5)) if k == 0 else 5 * exp(mpf(-5)) * mpf(2)**(k - 1) / factorial(k - 1) * quad(lambda s: s**(k - 1) * exp(3 * s), [0, 1]), 0, 60)]
for text, mass, first, last in counted:
    whole(text, mass, first, last)
inflated = lambda f, w: lambda k: w * f(k) + (1 - w if k == 0 else 0)
truncated = lambda f: lambda k: f(k) / (1 - f(0))
w = mpf(0.3)
for name, arguments, mass, first, last in (
        ("Poisson", "4", poisson(mpf(4)), 0, 90), ("Binomial", "20, 0.3", binom(20, mpf(0.3)), 0, 20), ("Geometric", "0.25", negbin(mpf(1), mpf(0.25)), 0, 600),
        ("NegBin", "3, 0.4", negbin(mpf(3), mpf(0.4)), 0, 600), ("Polya", "0.5, 4", negbin(half, mpf(1) / 5), 0, 900),
        ("BetaBinomial", "30, 2, 5", bbin(30, 2, 5), 0, 30), ("Delaporte", "2, 1.5, 3", delaporte(2, mpf(1.5), 3), 0, 220),
        ("Hypergeo", "10, 30, 100", hyper(10, 30, 100), 0, 10), ("InvHypergeo", "4, 10, 60", inverse(4, 10, 60), 0, 50)):
    whole(f"ZI{name}({arguments}, 0.3)", inflated(mass, w), first, last)
    whole(f"ZT{name}({arguments})", truncated(mass), max(first, 1), last)
whole("ZISkellam(3, 2, 0.3)", inflated(counted[-4][1], w), -60, 70)
whole("ZILogarithmic(0.7, 0.3)", lambda k: 1 - w if k == 0 else w * counted[9][1](k), 0, 400)
whole("ZTPoisson(1e-3)", truncated(poisson(mpf(0.001))), 1, 20)
for s, a, b in ((3, 6, 2), (2, 4.5, 0.1), (4, 4, 3), (1, 3, 2), (1, 2, 5), (2, 1, 1), (2, 0.5, 3), (40, 300, 7)):
    a_, b_ = mpf(a), mpf(b)
    from_powers(f"BetaNegBin({s}, {a}, {b})", bnb(mpf(s), a_, b_), above=a_)
    zero = beta(a_ + s, b_) / beta(a_, b_)
    from_powers(f"ZTBetaNegBin({s}, {a}, {b})", lambda k: bnb(mpf(s), a_, b_)(k) / (1 - zero) if k else mpf(1), above=a_)
    from_powers(f"ZIBetaNegBin({s}, {a}, {b}, 0.3)", lambda k: bnb(mpf(s), a_, b_)(k) * w if k else mpf(1), above=a_)
for a, b in ((6, 3), (2.5, 4), (1, 5)):
    a_, b_ = mpf(a), mpf(b)
    from_powers(f"BetaGeometric({a}, {b})", bnb(mpf(1), a_, b_), above=a_)
    from_powers(f"ZIBetaGeometric({a}, {b}, 0.3)", lambda k: bnb(mpf(1), a_, b_)(k) * w if k else mpf(1), above=a_)
    from_powers(f"ZTBetaGeometric({a}, {b})", lambda k: bnb(mpf(1), a_, b_)(k) / (1 - a_ / (a_ + b_)) if k else mpf(1), above=a_)

# Truncated, shifted, mixed
Z = Phi(mpf(2)) - Phi(mpf(-1))
real("Normal(0, 1) within [-1, 2]", lambda t: phi(t) / Z, [-1, 0, 2])
Q = exp(mpf(-2)) - exp(mpf(-30))
real("Expon(1) within [2, 30] + 5", lambda t: exp(-t) / Q, [2, 5, 10, 30], lambda t: t + 5)
real("-3 * (Gamma(2, 1)) + 1", gam(2), P, lambda t: 1 - 3 * t)
real("Pareto(1.5, 1) within [1, 1000]", lambda t: exp(-t) / (1 - mpf(1000)**-mpf(1.5)), [0, 2, 5, mpf(1.5) * log(mpf(1000))], lambda t: exp(t / mpf(1.5)))
S = mp.fsum(poisson(mpf(4))(k) for k in range(2, 7))
whole("Poisson(4) within [2, 6]", lambda k: poisson(mpf(4))(k) / S, 2, 6)
real("Mixture(0.3: Normal(0, 1), 0.7: Normal(5, 2))", lambda t: mpf(0.3) * phi(t) + mpf(0.7) * phi((t - 5) / 2) / 2, [-30, -5, 0, 5, 10, 60])
report("Mixture(1: Cauchy(0, 1), 1: Normal(0, 1))", 0, 1, 0, 0, 1, 1)
report("Mixture(1: Pareto(1, 1), 1: Normal(0, 1))", 0, 1, 0, 0, inf, 1)

# Means of tails and limited means
def risk(text, f, F, Q, points, ps=(0.5, 0.95, 0.999), limits=()):
    """f density, F cumulative, Q quantile; `points` are the ends and breaks."""
    for p in ps:
        x = Q(mpf(p))
        up = sorted({x, *[t for t in points if t > x]}) if points[-1] != inf else sorted({x, *[t for t in points[:-1] if t > x]}) + [inf]
        put(text, "upper_tail_mean", p, quad(lambda t: t * f(t), up) / (1 - mpf(p)))
        low = [t for t in points if t < x] + [x]
        put(text, "lower_tail_mean", p, quad(lambda t: t * f(t), low) / mpf(p))
    for limit in limits:
        low = [t for t in points if t < limit] + [mpf(limit)]
        put(text, "limited_mean", limit, quad(lambda t: t * f(t), low) + limit * (1 - F(mpf(limit))))


risk("Normal(3, 2)", lambda x: phi((x - 3) / 2) / 2, lambda x: Phi((x - 3) / 2), lambda p: 3 + 2 * sqrt(mpf(2)) * mp.erfinv(2 * p - 1),
     [-90, -30, -10, 0, 3, 6, 16, 40, 90], (1e-9, 0.5, 0.95, 0.999), (-20, 3, 5, 30))
for theta in (1.1, 2.5):
    t = mpf(theta)
    for p in (0.5, 0.95, 0.999999):
        x = (1 - mpf(p))**(-1 / t)
        put(f"Pareto({theta}, 1)", "upper_tail_mean", p, t / (t - 1) * x)
        put(f"Pareto({theta}, 1)", "lower_tail_mean", p, t / (t - 1) * (1 - (1 - mpf(p)) * x) / mpf(p))
    for d in (0.5, 1.5, 1e6):
        put(f"Pareto({theta}, 1)", "limited_mean", d, mpf(d) if d < 1 else 1 + (1 - mpf(d)**(1 - t)) / (t - 1))
for d in (2, 1e10):
    put("Pareto(0.5, 1)", "limited_mean", d, 1 + (sqrt(mpf(d)) - 1) * 2)
put("Pareto(0.5, 1)", "upper_tail_mean", 0.9, inf)
put("Pareto(0.5, 1)", "lower_tail_mean", 0.9, (1 / (1 - mpf(0.9)) - 1) / mpf(0.9))
for p in (0.5, 0.95):
    s = log(1 / (1 - mpf(p)))
    put("Expon(2)", "upper_tail_mean", p, 2 * (s + 1))
    put("Expon(2)", "lower_tail_mean", p, 2 * (1 - (1 - mpf(p)) * (s + 1)) / mpf(p))
put("Expon(2)", "limited_mean", 3, 2 * (1 - exp(-mpf(3) / 2)))
put("Expon(2) within [1, 10]", "limited_mean", 3, 1 + quad(lambda x: (exp(-x / 2) - exp(mpf(-5))) / (exp(-half) - exp(mpf(-5))), [1, 3]))


def count_risk(text, mass, first, last, ps=(0.5, 0.95, 0.999), limits=()):
    masses = [(k, mass(k)) for k in range(first, last + 1)]
    for p in map(mpf, ps):
        below, cumulative = mpf(0), mpf(0)
        for k, m in masses:
            part = min(m, p - cumulative)
            below, cumulative = below + part * k, cumulative + part
            if cumulative >= p:
                break
        mean = mp.fsum(k * m for k, m in masses)
        put(text, "lower_tail_mean", p, below / p)
        put(text, "upper_tail_mean", p, (mean - below) / (1 - p))
    for d in limits:
        put(text, "limited_mean", d, mp.fsum(min(k, d) * m for k, m in masses))


count_risk("Poisson(4)", poisson(mpf(4)), 0, 100, limits=(0.5, 4, 7.25))
count_risk("Skellam(3, 2)", counted[-4][1], -60, 70, limits=(-2, 0, 3))
count_risk("ZIPoisson(4, 0.3)", inflated(poisson(mpf(4)), w), 0, 100, limits=(2,))
# 1 - F(k) = B(a, b + k + 1)/B(a, b); sums of it telescope
tail = lambda a, b, k: beta(a, b + k + 1) / beta(a, b)
rest = lambda a, b, k: (a + b + k) / (a - 1) * tail(a, b, k)  # the sum of the tails from k on
for a, b in ((1.5, 2), (3, 2), (1.1, 40)):
    a_, b_ = mpf(a), mpf(b)
    for d in (3, 100, 1e6):
        put(f"BetaGeometric({a}, {b})", "limited_mean", d, rest(a_, b_, 0) - rest(a_, b_, int(d)))
    for p in (0.5, 0.99):
        k = 0
        while tail(a_, b_, k) > 1 - mpf(p):
            k += 1
        put(f"BetaGeometric({a}, {b})", "upper_tail_mean", p, k + rest(a_, b_, k) / (1 - mpf(p)))

# Modes
for text, value in (("Normal(3, 2)", 3), ("LognormalE(1, 2)", exp(mpf(-3))), ("Lognormal(2, 1)", 2 / mpf(1.25)**mpf(1.5)), ("Logistic(4, 2)", 4),
                    ("LogLogistic(3, 2)", 2 * mpf(half)**(mpf(1) / 3)), ("LogLogistic(0.5, 2)", 0), ("GLogistic(0, 2, 3)", 2 * log(mpf(3))),
                    ("Dagum(2, 3, 4)", 3 * (mpf(7) / 3)**half), ("Weibull(3, 2)", 2 * (mpf(2) / 3)**(mpf(1) / 3)), ("Weibull(1, 2)", 0), ("Weibull3(2, 2, 5)", 5 + sqrt(mpf(2))),
                    ("ExtValueMin(1, 2)", 1), ("GEV(0, 1, 0.5)", 2 * (mpf(1.5)**-half - 1)), ("GEV(0, 1, -1.5)", mpf(2) / 3), ("Levy(3, 1)", 2),
                    ("InvGauss(2, 3)", 2 * (sqrt(mpf(2)) - 1)), ("Gamma(3, 2)", 4), ("Gamma(0.5, 2)", 0), ("Chi(5)", 2), ("Maxwell(3)", 3 * sqrt(mpf(2))),
                    ("Pearson5(3, 2)", half), ("LogGamma(3, 0.25, 1)", exp(mpf(2) / 5)), ("Beta(2, 5)", mpf(1) / 5), ("Beta(0.5, 0.5)", 0), ("Beta(2, 1)", 1), ("Beta(1, 1)", 0),
                    ("PERT(1, 2, 5)", 2), ("BetaSubj(0, 1, 2, 10)", 1), ("Pearson6(3, 4, 5)", 2), ("F(1, 4)", 0), ("Kumaraswamy(2, 3)", sqrt(mpf(1) / 5)), ("Kumaraswamy(0.5, 0.5)", 0),
                    ("Triangle(0, 2, 3)", 2), ("GTU(0, 1, 2, 3, 1, 2)", 0), ("GTU(0, 1, 2, 3, 3, 2)", 1), ("LogUniform(2, 5)", 2), ("LogLaplace(2, 3, 4)", 4), ("LogLaplace(2, 0.5, 4)", 0),
                    ("Pareto(3, 2)", 2), ("Burr(7, 3, 2, 4)", 7 + 3 * (mpf(7) / 3)**half), ("Poisson(4)", 3), ("Poisson(0.5)", 0), ("Poisson(4.5)", 4), ("Binomial(9, 0.5)", 4),
                    ("Binomial(10, 0.3)", 3), ("NegBin(3, 0.5)", 1), ("Geometric(0.1)", 0), ("BetaBinomial(10, 3, 2)", 7), ("BetaBinomial(10, 0.5, 0.4)", 10), ("BetaNegBin(5, 3, 6)", 4),
                    ("Hypergeo(10, 30, 100)", 3), ("Hypergeo(3, 4, 8)", 1), ("ZIPoisson(4, 0.9)", 3), ("ZIPoisson(4, 0.1)", 0), ("ZTPoisson(0.5)", 1), ("ZTBetaBinomial(10, 0.5, 0.4)", 10),
                    ("Discrete({3, 1, 2}, {2, 1, 2})", 2), ("DUniform({5, 3, 5, 3})", 3), ("Histogram(0, 3, {1, 4, 4})", 1), ("Relative(0, 4, {1, 3}, {2, 1})", 1), ("Lifetime2(1, 2)", (sqrt(mpf(2)) - 1) / 2),
                    ("Bradford(3, 1, 2)", 1)):
    put(text, "mode", "", value)


put("JohnsonB(0, 2, 0, 1)", "searched_mode", "", half)
put("NCChiSq(2, 1e-9)", "searched_mode", "", 0)

# Logarithms of tails that underflow
def log_phi(z):  # ln Phi(z), z far below 0, by the asymptotic series
    z, total, term = mpf(z), mpf(1), mpf(1)
    for k in range(1, 12):
        term *= -(2 * k - 1) / z**2
        total += term
    return -z * z / 2 - log(sqrt(2 * pi)) - log(-z) + log(total)


for x in (50, 1e5, 1e10):
    put("Normal(0, 1)", "logsf", x, log_phi(-x))
    put("Normal(0, 1)", "logcdf", -x, log_phi(-x))
mp.dps = 60
far = 100 / (100 + mpf(10)**12)
log_gamma_upper = lambda a, x: log(gammainc(a, x)) - loggamma(a)
for text, function, x, value in (
        ("Erf(1)", "logsf", 100, log_phi(-100 * sqrt(mpf(2)))), ("NormalMix(0, 1, 1.5)", "logsf", 90, log_phi(-90 / sqrt(1 + sqrt(half))) - log(2)),
        ("SkewNormal(0, 1, 2)", "logsf", 90, log_phi(-90) + log(2)), ("LognormalE(0, 0.01)", "logsf", 3, log_phi(-log(mpf(3)) / mpf(0.01))),
        ("Fatigue(0, 1, 0.5)", "logsf", 1e4, log_phi(-(100 - mpf(1) / 100) * 2)), ("Fatigue(0, 1, 0.5)", "logcdf", 0.0009765625, log_phi(-(32 - mpf(1) / 32) * 2)),
        ("JohnsonU(0, 30, 1, 0)", "logsf", 1000, log_phi(-30 * asinh(mpf(1000)))), ("JohnsonB(0, 30, 0, 1)", "logsf", 0.9990234375, log_phi(-30 * log(mpf(1023)))),
        ("Levy(1, 0)", "logcdf", 1e-6, log_phi(-1 / sqrt(mpf(1e-6))) + log(2)), ("Logistic(1, 2)", "logsf", 5000, -mpf(4999) / 2), ("GLogistic(0, 1, 3)", "logsf", 2000, log(mpf(3)) - 2000),
        ("HS(0, 1)", "logsf", 2000, log(2 / pi) - 1000 * pi), ("Laplace(0, 1)", "logsf", 5000, -log(mpf(2)) - 5000 * sqrt(mpf(2))), ("LogLaplace(500, 2, 1)", "logsf", 100, log(mpf(2) / 502) - 500 * log(mpf(100))),
        ("Error(0, 1, 3)", "logsf", 50, log_gamma_upper(mpf(1) / 3, 50**3 * gamma(mpf(1) / 3)**-mpf(1.5)) - log(mpf(2))),
        ("ExtValueMax(0, 1)", "logsf", 5000, -5000), ("ExtValueMax(0, 1)", "logcdf", -8, -exp(mpf(8))), ("ExtValueMin(0, 1)", "logsf", 8, -exp(mpf(8))), ("Weibull(3, 2)", "logsf", 100, -50**3),
        ("Rayleigh(2)", "logsf", 1000, -mpf(10)**6 / 8), ("GEV(0, 1, 0.001)", "logsf", 5000, -1000 * log(mpf(1) + 5000 * mpf(0.001))), ("Expon(2)", "logsf", 1e5, -50000), ("Pareto(500, 1)", "logsf", 100, -500 * log(mpf(100))),
        ("Pareto2(1, 500)", "logsf", 100, -500 * log(mpf(101))), ("Dagum(500, 1, 2)", "logsf", 100, log(mpf(2)) - 500 * log(mpf(100))),
        ("InvGauss(2, 3)", "logsf", 5000, log(quad(lambda y: exp(-3 * (y - 2)**2 / (8 * y) + 3 * mpf(4998)**2 / 40000) * sqrt(3 / (2 * pi * y**3)), [5000, 5020, 5100, 5500, 8000])) - 3 * mpf(4998)**2 / 40000),
        ("Kumaraswamy(2, 500)", "logsf", 0.9375, 500 * log(1 - mpf(0.9375)**2)), ("GTU(0, 1, 2, 3, 400, 500)", "logsf", 2.9375, log(1 / (mpf(1) / 400 + 1 + mpf(1) / 500) / 500) + 500 * log(mpf(1) / 16)),
        ("LifetimeExp(0, 1)", "logsf", 8, 1 - exp(mpf(8))), ("Gamma(2, 3)", "logsf", 1e4, log_gamma_upper(2, mpf(10000) / 3)), ("Pearson5(2, 3)", "logcdf", 0.0009765625, log_gamma_upper(2, mpf(3072))),
        ("Poisson(2)", "logsf", 1000, log(gammainc(1001, 0, 2)) - loggamma(1001)),
        ("NCChiSq(2, 1)", "logsf", 1e4, log(quad(lambda y: hyp0f1(1, y / 4) * exp(-(y - 10000) / 2 - 50), [10000, 10020, 10100, 10400])) + 50 - half - 5000 - log(mpf(2))),
        ("Student(100)", "logsf", 1e6, log(quad(lambda u: u**49 / sqrt(1 - u * far), [0, 1]) * far**50 / beta(50, half) / 2))):
    put(text, function, x, value)

mp.dps = 30
# Families that only objects have
H = [0, 1, 2, 4, 8, 20, 40]
for sigma in (1, 3):
    real(f"HalfNormal({sigma})", lambda t: 2 * phi(t), H, lambda t: sigma * t)
for a, b in ((mpf(half), mpf(half)), (mpf(1) / 64, mpf(1) / 8), (mpf(8), mpf(half))):
    real(f"Gompertz({float(a)}, {float(b)})", expon, P, lambda t: log1p(b * t / a) / b)
    put(f"Gompertz({float(a)}, {float(b)})", "mode", "", max(log(b / a) / b, 0))
for beta_, xi in ((2, mpf(1) / 8), (1, mpf(1) / 4), (1, mpf(half)), (1, mpf(1)), (3, mpf(0)), (1, -mpf(half)), (2, -mpf(2))):
    real(f"GPD({beta_}, {float(xi)})", expon, P, lambda t: beta_ * (expm1(xi * t) / xi if xi else t), above=1 / xi if xi > 0 else inf)
    put(f"GPD({beta_}, {float(xi)})", "mode", "", 1 if xi == -2 else 0)
    if xi < 1:
        x = beta_ * (expm1(xi * log(mpf(64))) / xi if xi else log(mpf(64)))
        put(f"GPD({beta_}, {float(xi)})", "upper_tail_mean", 0.984375, x + (beta_ + xi * x) / (1 - xi))

Path(__file__).with_name("moments.tsv").write_text("# distribution\tfunction\targument\tvalue\n" + "\n".join(out) + "\n")
