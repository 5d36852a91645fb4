#!/usr/bin/env python3
"""Writes tails.tsv: logarithms of tails beyond doubles, and distributions kept between bounds far out or close together, by
mpmath. Columns: distribution, function, argument, value. Run without arguments."""
from pathlib import Path

from mpmath import (betainc, binomial, exp, fsum, gammainc, inf, log, loggamma, log1p, mp, mpf, npdf, quad, sqrt, erfc, nsum,
                    factorial, expm1, hyp0f1, gamma, besseli)

mp.dps = 60
out = []
tiny = mpf(2) ** -1074


def put(text, function, x, value):
    out.append(f"{text}\t{function}\t{float(x)!r}\t{mp.nstr(mpf(value), 20)}")


log_beta = lambda a, b: loggamma(a) + loggamma(b) - loggamma(a + b)


def beta_start(text, a, b, scale, x):
    """F(x) of a variable that is beta next to 0: (x/scale)^a/(a B(a, b))."""
    put(text, "logcdf", x, a * log(mpf(x) / scale) - log(a) - log_beta(a, b))


# Next to the end of a support
beta_start("Beta4(0.01, 0.01, 0, 1e100)", mpf(0.01), mpf(0.01), mpf(10) ** 100, tiny)
beta_start("Beta4(0.01, 0.01, 0, 1e100)", mpf(0.01), mpf(0.01), mpf(10) ** 100, 1e-300)
beta_start("Beta4(2, 3, 0, 1e300)", mpf(2), mpf(3), mpf(1e300), 1e-300)
put("Beta4(0.5, 1, -5, 0)", "logsf", -tiny, log(tiny / 5 / 2))
beta_start("F(2, 5)", mpf(1), mpf(5) / 2, mpf(5) / 2, tiny)
beta_start("Pearson6(0.5, 0.5, 4)", mpf("0.5"), mpf("0.5"), mpf(4), tiny)
beta_start("Pearson6(2, 0.5, 1e100)", mpf(2), mpf("0.5"), mpf(1e100), 1e-250)
put("NCF(2, 5, 1)", "logcdf", tiny, log(tiny) - mpf(1) / 2)
for x in (tiny, mpf(1e-200)):
    put("NCChiSq(1, 1000)", "logcdf", x, log(sqrt(2 * mpf(float(x)) / mp.pi)) - 500)
put("Expon(2)", "logcdf", tiny, log(tiny / 2))
put("Expon(1e300)", "logcdf", 1e-300, log(mpf(1e-300) / mpf(1e300)))
put("Lifetime2(0, 0.5)", "logcdf", 1e-300, 2 * log(mpf(1e-300)) - log(mpf(4)))
put("Lifetime2(1, 2)", "logcdf", tiny, log(tiny))
put("Weibull(5, 2)", "logcdf", 1e-100, 5 * log(mpf(1e-100) / 2))
put("Gamma(3, 2)", "logcdf", 1e-200, 3 * log(mpf(1e-200) / 2) - loggamma(4))
put("HalfNormal(3)", "logcdf", tiny, log(tiny / 3 * sqrt(2 / mp.pi)))
put("HalfNormal(1)", "logsf", 1e5, log(2) - mpf(1e5) ** 2 / 2 - log(sqrt(2 * mp.pi)) - log(mpf(1e5)) + log1p(-mpf(1e-10)))
put("Gompertz(1, 1)", "logsf", 12, -expm1(mpf(12)))
put("GPD(1, 0.25)", "logsf", 1e300, -4 * log1p(mpf(1e300) / 4))
put("GPD(1, -0.001)", "logsf", 999.9990234375, 1000 * log(1 + mpf(-0.001) * mpf(999.9990234375)))
put("GPD(1, -0.5)", "logsf", 2 - 2.0 ** -52, 2 * log(mpf(2) ** -53))

# Counts
poisson = lambda rate, k: k * log(mpf(rate)) - rate - loggamma(k + 1)
trials = lambda n, p, k: log(binomial(n, k)) + k * log(mpf(p)) + (n - k) * log1p(-mpf(p))
log_sum = lambda logs: max(logs) + log(fsum(exp(each - max(logs)) for each in logs))
put("Poisson(5000)", "logcdf", 100, log_sum([poisson(5000, k) for k in range(101)]))
put("Poisson(5000)", "logsf", 20000, log_sum([poisson(5000, k) for k in range(20001, 20200)]))
put("Binomial(100000, 0.25)", "logcdf", 1000, log_sum([trials(100000, 0.25, k) for k in range(1001)]))
put("Binomial(100000, 0.25)", "logsf", 99990, log_sum([trials(100000, 0.25, k) for k in range(99991, 100001)]))
put("ZIPoisson(2, 0.5)", "logsf", 1000, log(mpf("0.5")) + log_sum([poisson(2, k) for k in range(1001, 1100)]))
rest = log(-expm1(-mpf(1000)))
for x in (1, 30, 100):
    put("ZTPoisson(1000)", "logcdf", x, log_sum([poisson(1000, k) for k in range(1, x + 1)]) - rest)
put("ZTPoisson(1e-300)", "logpdf", 2, log(mpf(1e-300) / 2))
put("ZTPoisson(1e-300)", "sf", 1, mpf(1e-300) / 2)
put("ZTNegBin(1e-300, 0.25)", "cdf", 1, -mpf("0.75") / log(mpf("0.25")))  # the logarithmic distribution

# Counts whose shapes are beyond the squares of doubles; far out all of a tail is its first mass.
def negative_binomial(text, s, p, q, xs, function="logpdf"):
    with mp.workdps(700):
        for x in xs:
            k = mpf(x)
            put(text, function, x, loggamma(s + k) - loggamma(s) - loggamma(k + 1) + s * log(p) + k * log(q))


for alpha, beta, xs in ((2.5, 3, (1e149, 1e152, 1e300)), (2.5, 1e150, (1e152, 1e200, 1e300)), (1000, 1e200, (1e152, 1e300)),
                        (0.001, 1e100, (1e200, 1e300))):
    with mp.workdps(700):
        p = 1 / (1 + mpf(beta))
        q = beta * p
    negative_binomial(f"Polya({alpha}, {beta})", mpf(alpha), p, q, xs)
negative_binomial("NegBin(5, 0.25)", mpf(5), mpf("0.25"), mpf("0.75"), (1e152, 1e300))
negative_binomial("NegBin(1e200, 0.5)", mpf(1e200), mpf("0.5"), mpf("0.5"), (1e100, 1e152, 1e300))
negative_binomial("NegBin(1e155, 0.0001220703125)", mpf(1e155), mpf(2) ** -13, 1 - mpf(2) ** -13, (1e100, 1e200, 1e300))
negative_binomial("NegBin(1e155, 0.0001220703125)", mpf(1e155), mpf(2) ** -13, 1 - mpf(2) ** -13, (1e200, 1e300), "logsf")
negative_binomial("NegBin(5, 0.25)", mpf(5), mpf("0.25"), mpf("0.75"), (1e200,), "logsf")
negative_binomial("Delaporte(2.5, 3, 4)", mpf("2.5"), mpf("0.25"), mpf("0.75"), (1e152, 1e300))  # but for a factor
put("Delaporte(2.5, 3, 4)", "logcdf", 1e100, 0)


def delaporte_above(k):
    """ln P(X > k) of Delaporte(2.5, 3, 4): masses by convolution, summed until they no longer count."""
    f = lambda n: fsum(exp(poisson(4, j) + loggamma(mpf("2.5") + n - j) - loggamma(mpf("2.5")) - loggamma(n - j + 1)
                           + mpf("2.5") * log(mpf("0.25")) + (n - j) * log(mpf("0.75"))) for j in range(90))
    return log(fsum(f(n) for n in range(k + 1, k + 250)))


put("Delaporte(2.5, 3, 4)", "logsf", 2500, delaporte_above(2500))
put("Delaporte(2.5, 3, 4)", "logsf", 5000, delaporte_above(5000))


def noncentral(nu, noncentrality, xs):
    """Where the saddle point's exponent is all that counts."""
    text, shape, mean = f"NCChiSq({nu}, {noncentrality})", mpf(nu) / 2, mpf(noncentrality) / 2
    for x in xs:
        point = mpf(x) / 2
        centre = 2 * mean * point / (shape + sqrt(shape * shape + 4 * mean * point))
        w = mean / centre
        exponent = mean / w + point * w - mean - point - shape * log(w)
        put(text, "logpdf", x, exponent)
        put(text, "logsf" if x > nu + noncentrality else "logcdf", x, exponent)


with mp.workdps(700):
    noncentral(3, 5, (1e290, 1e300))
    noncentral(3, 1e300, (1e10, 2e300))
    noncentral(1e300, 1, (1e299,))
    noncentral(1e300, 1e299, (3e300,))

# Kept between bounds
phi = lambda z: erfc(-z / sqrt(mpf(2))) / 2


def kept(text, lower, upper, mass, log_density, xs):
    """`mass` of an interval."""
    lower, upper = mpf(lower), mpf(upper)
    whole = mass(lower, upper)
    for x in map(mpf, xs):
        put(text, "logpdf", x, log_density(x) - log(whole))
        put(text, "cdf", x, mass(lower, x) / whole)
        put(text, "sf", x, mass(x, upper) / whole)
        put(text, "logcdf", x, log(mass(lower, x) / whole))
        put(text, "logsf", x, log(mass(x, upper) / whole))
        put(text, "quantile", mpf(float(mass(lower, x) / whole)), x)


normal = lambda a, b: phi(-a) - phi(-b)
log_normal = lambda z: -z * z / 2 - log(2 * mp.pi) / 2
with mp.workdps(400):
    kept("Normal(0, 1) within [50, 51]", 50, 51, normal, log_normal, ("50.0078125", "50.03125"))
    kept("Normal(0, 1) within [1, 1.0000000000291038]", 1, 1.0000000000291038, normal, log_normal,
         (1 + mpf(2) ** -36, 1 + mpf(2) ** -37))
    kept("(-1 * Normal(0, 1)) within [50, 51]", 50, 51, normal, log_normal, ("50.0078125",))
with mp.workdps(2000):
    gam = lambda a, b: exp(-a / 3) * (1 + a / 3) - exp(-b / 3) * (1 + b / 3)
    kept("Gamma(2, 3) within [3000, 3001]", 3000, 3001, gam, lambda x: log(x) - x / 3 - log(mpf(9)), (3000.5,))
    kept("2 * (Gamma(2, 3) within [1500, 1500.5])", 3000, 3001, lambda a, b: gam(a / 2, b / 2),
         lambda x: log(x / 2) - x / 6 - log(mpf(18)), (3000.5,))
    third = lambda a, b: (exp(-a / 3) - exp(-b / 3)) / 3 + 2 * (exp(-a / 4) - exp(-b / 4)) / 3
    kept("Mixture(1: Expon(3), 2: Expon(4)) within [4000, 4000.25]", 4000, 4000.25, third,
         lambda x: log(exp(-x / 3) / 9 + exp(-x / 4) / 6), (4000.125,))
    kept("GPD(1, 0.25) within [1e100, 1.0000000000000002e100]", 1e100, 1.0000000000000002e100,
         lambda a, b: (1 + a / 4) ** -4 - (1 + b / 4) ** -4, lambda x: -5 * log1p(x / 4), ())


def kept_counts(text, first, last, log_mass, xs):
    logs = [log_mass(k) for k in range(first, last + 1)]
    whole = log_sum(logs)
    for x in xs:
        put(text, "logpdf", x, log_mass(x) - whole)
        put(text, "logcdf", x, log_sum(logs[:x - first + 1]) - whole)
        put(text, "cdf", x, exp(log_sum(logs[:x - first + 1]) - whole))
        put(text, "logsf", x, log_sum(logs[x - first + 1:]) - whole)
        put(text, "quantile", float(exp(log_sum(logs[:x - first + 1]) - whole) * (1 - mpf(2) ** -30)), x)


kept_counts("Poisson(3) within [1000, 1010]", 1000, 1010, lambda k: poisson(3, k), (1000, 1001))
kept_counts("Poisson(5000) within [100, 120]", 100, 120, lambda k: poisson(5000, k), (119, 118))
kept_counts("Binomial(1000, 0.25) within [990, 999]", 990, 999, lambda k: trials(1000, 0.25, k), (990, 991))
kept_counts("ZIPoisson(3, 0.5) within [1000, 1010]", 1000, 1010, lambda k: poisson(3, k), (1000, 1001))
kept_counts("ZTPoisson(3) within [1000, 1010]", 1000, 1010, lambda k: poisson(3, k), (1000,))

Path(__file__).with_name("tails.tsv").write_text("# distribution\tfunction\targument\tvalue\n" + "\n".join(out) + "\n")
