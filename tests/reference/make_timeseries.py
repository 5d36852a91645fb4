#!/usr/bin/python3
"""Expected paths of the time series: writes timeseries_paths.tsv and timeseries_moments.tsv beside this script.

A generator and recurrences of its own, in 40-digit arithmetic on the doubles that stand in the table. Each path's row ends with
the number that the stream holds next, so that the number of draws is checked, too.
Run from the top of the tree: tests/reference/make_timeseries.py
"""
import os

import mpmath as m

m.mp.dps = 40
HERE = os.path.dirname(os.path.abspath(__file__))
LIMIT = m.mpf(2) ** 1024 - m.mpf(2) ** 971


class Stream:
    """MT19937 (Matsumoto and Nishimura 1998) and the draws that families make from it when called without modifiers."""

    def __init__(self, seed):
        self.state = [seed]
        for i in range(1, 624):
            last = self.state[-1]
            self.state.append((1812433253 * (last ^ (last >> 30)) + i) & 0xFFFFFFFF)
        self.at = 624

    def uniform(self):
        if self.at == 624:
            s = self.state
            for k in range(624):
                y = (s[k] & 0x80000000) | (s[(k + 1) % 624] & 0x7FFFFFFF)
                s[k] = s[(k + 397) % 624] ^ (y >> 1) ^ (0x9908B0DF if y & 1 else 0)
            self.at = 0
        y = self.state[self.at]
        self.at += 1
        y ^= y >> 11
        y ^= (y << 7) & 0x9D2C5680
        y ^= (y << 15) & 0xEFC60000
        y ^= y >> 18
        return (m.mpf(y) + m.mpf(1) / 2) / 2 ** 32

    def normal(self, mean, deviation):
        u = self.uniform()
        if deviation == 0:
            return m.mpf(mean)
        return mean + deviation * m.sqrt(-2 * m.log(u)) * m.cos(2 * m.pi * self.uniform())

    def bernoulli(self, p):
        return 0 if self.uniform() <= 1 - p else 1

    def by_sum(self, mass, step):
        """The smallest k whose cumulative reaches u, from f(0) and f(k+1)/f(k)."""
        u, k, total = self.uniform(), 0, mass
        while total < u:
            mass *= step(k)
            total += mass
            k += 1
        return k

    def standard_quantile(self, u):
        return m.sqrt(2) * m.erfinv(2 * u - 1)

    def binomial(self, n, p):
        if n * p * (1 - p) > 100000:
            return m.floor(n * p + m.sqrt(n * p * (1 - p)) * self.standard_quantile(self.uniform()) + m.mpf(1) / 2)
        return self.by_sum((1 - p) ** n, lambda k: (n - k) / m.mpf(k + 1) * p / (1 - p))

    def neg_bin(self, s, p):
        if s * (1 - p) / p ** 2 > 100000:
            mean, variance = s / p - s, s * (1 - p) / p ** 2
            return m.floor(mean + m.sqrt(variance) * self.standard_quantile(self.uniform()) + m.mpf(1) / 2)
        return self.by_sum(p ** s, lambda k: (k + s) / m.mpf(k + 1) * (1 - p))


# ------------------------------------------------------------------------------------- models of log returns
def steps(stamps, n, first):
    if stamps is None:
        return [m.mpf(1)] * n
    return [first(stamps[0])] + [stamps[i] - stamps[i - 1] for i in range(1, n)]


def priced(returns, log_return, last):
    if log_return:
        return returns
    prices = []
    for y in returns:
        last = last * m.exp(y)
        prices.append(last)
    return prices


def gbm(d, n, mu, sigma, last, stamps, log_return, now):
    dt = steps(stamps, n, lambda t: t - now)
    return priced([d.normal(mu * h, sigma * m.sqrt(h)) for h in dt], log_return, last)


def gbmjd(d, n, mu, sigma, lam, mu_j, sigma_j, log_return, last):
    def y():
        jump = d.bernoulli(1 - m.exp(-lam))
        return d.normal(mu + jump * mu_j, m.sqrt(jump * sigma_j ** 2 + sigma ** 2))
    return priced([y() for _ in range(n)], log_return, last)


def ou_variance(alpha, h):
    return h if alpha == 0 else (1 - m.exp(-2 * alpha * h)) / (2 * alpha)


def gbmmr(d, n, mu, sigma, alpha, y, last, stamps, log_return):
    path = []
    for h in steps(stamps, n, lambda t: t if t > 0 else m.mpf(1)):
        y = d.normal(mu + (y - mu) * m.exp(-alpha * h), sigma * m.sqrt(ou_variance(alpha, h)))
        path.append(y)
    return priced(path, log_return, last)


def jump_time(lam):
    return m.exp(-lam) / (m.exp(-lam) - 1) + 1 / lam


def gbmjdmr(d, n, mu, sigma, alpha, lam, mu_j, sigma_j, log_return, last):
    y, path = mu, []
    for _ in range(n):
        if d.bernoulli(1 - m.exp(-lam)):
            tau = jump_time(lam)
            y = d.normal(mu + mu_j + (y - mu) * m.exp(-alpha * tau),
                         m.sqrt(sigma ** 2 * ou_variance(alpha, tau) + sigma_j ** 2))
            rest = 1 - tau
        else:
            rest = m.mpf(1)
        y = d.normal(mu + (y - mu) * m.exp(-alpha * rest), sigma * m.sqrt(ou_variance(alpha, rest)))
        path.append(y)
    return priced(path, log_return, last)


def seasonal(d, n, mu, sigma, s1, n1, p1, s2, n2, p2, log_return, last):
    return priced([d.normal(mu + s1[t % int(p1)] + s2[t % int(p2)], sigma) for t in range(n)], log_return, last)


def arma(d, n, mu, sigma, a, b, past, log_return, last):
    """ARMA of any orders; the past returns and the shocks before the start latest first."""
    past = list(past)
    shocks = [d.normal(0, sigma) for _ in b][::-1]
    path = []
    for _ in range(n):
        e = d.normal(0, sigma)
        y = (sum(ai * yi for ai, yi in zip(a, past)) + (1 - sum(a)) * mu + e + sum(bi * ei for bi, ei in zip(b, shocks)))
        past, shocks = [y] + past, [e] + shocks
        path.append(y)
    return priced(path, log_return, last)


def arch(d, n, mu, omega, a, y, log_return, last):
    path = []
    for _ in range(n):
        y = mu + m.sqrt(omega + a * (y - mu) ** 2) * d.normal(0, 1)
        path.append(y)
    return priced(path, log_return, last)


def garch(d, n, mu, omega, a, b, e, log_return, last):
    h, path = a * e + omega, []
    for _ in range(n):
        h = omega + a * e ** 2 + b * h
        e = mu + m.sqrt(h) * d.normal(0, 1)
        path.append(e)
    return priced(path, log_return, last)


def egarch(d, n, mu, omega, gamma, alpha, beta, sigma, log_return, last):
    e, path = sigma * d.normal(0, 1), []
    for _ in range(n):
        r = e / sigma
        sigma = m.sqrt(m.exp(omega + alpha * (abs(r) + gamma * r - 2 / m.pi)) * sigma ** (2 * beta))
        e = mu + sigma * d.normal(0, 1)
        path.append(e)
    return priced(path, log_return, last)


def aparch(d, n, mu, omega, delta, gamma, alpha, beta, sigma, log_return, last):
    e, path = sigma * d.normal(0, 1), []
    for _ in range(n):
        sigma = (omega + alpha * (abs(e) - gamma * e) ** delta + beta * sigma ** delta) ** (1 / delta)
        e = sigma * d.normal(0, 1)
        path.append(mu + e)
    return priced(path, log_return, last)


def population(step):
    def path(d, n, x, beta, t, log):
        counts = []
        for _ in range(n):
            x = m.mpf(step(d, x, m.exp(-beta * t)))
            counts.append(x if not log else m.log10(x) if x > 0 else -LIMIT)
        return counts
    return path


# ---------------------------------------------------------------------------------------- economic projections
def autoregression(d, mu, sd, a, x):
    while True:
        x = d.normal(mu + a * (x - mu), sd)
        yield x


class Simulated:
    def __init__(self, d, mu, sd, a):
        self.first, self.smooth_first = m.mpf(0), mu
        self.draws = autoregression(d, mu, sd, a, m.mpf(0))

    def next(self):
        return next(self.draws)


class Given:
    def __init__(self, rates):
        self.first = self.smooth_first = rates[0]
        self.rest = iter(rates[1:])

    def next(self):
        return next(self.rest)


def prices(d, n, I):
    path = [m.mpf(1)]
    while len(path) < n:
        path.append(path[-1] * m.exp(I.next()))
    return path


def wages(d, n, I, mu, sd, a, w1, w2):
    own, before, path = autoregression(d, mu, sd, a, m.mpf(0)), I.first, [m.mpf(100)]
    while len(path) < n:
        N = next(own)
        now = I.next()
        path.append(path[-1] * m.exp(w1 * now + w2 * before + N))
        before = now
    return path


def dividends(d, n, I, ysd, dmu, dsd, db, dw, dx, dd, dy):
    smooth, path = m.mpf(1), [m.mpf(0)]
    while len(path) < n:
        E = d.normal(0, 1)
        now = I.next()
        smooth = (1 - dd) * smooth + dd * now
        path.append(d.normal(dw * smooth + dx * now + dmu + ysd * dy * E + dsd * db * E, dsd))
    return path


def yields(d, n, I, mu, sd, a, w):
    own, path = autoregression(d, m.log(mu), sd, a, m.log(mu)), [m.mpf(0)]
    while len(path) < n:
        N = next(own)
        path.append(w * I.next() + N)
    return path


def long_term(d, n, I, ysd, mu, sd, ca, cd, caa, caaa, cw, cy):
    smooth, past, path = I.smooth_first, [m.mpf(0)] * 3, [cw * I.smooth_first + mu]
    while len(path) < n:
        e = d.normal(0, ysd)
        smooth = cd * I.next() + (1 - cd) * smooth
        past.insert(0, d.normal(ca * past[0] + caa * past[1] + caaa * past[2] + cy * e, sd))
        path.append(cw * smooth + mu * m.exp(past[0]))
    return path


def short_term_over(d, rates, n, mu, sd, a):
    spread = autoregression(d, mu, sd, a, mu)
    return [rates[t] * m.exp(-(mu if t == 0 else next(spread))) for t in range(n)]


def short_term(d, n, I, *rest):
    return short_term_over(d, long_term(d, n, I, *rest[:-3]), n, *rest[-3:])


def simulated(series):
    return lambda d, n, mu, sd, a, *rest: series(d, n, Simulated(d, mu, sd, a), *rest)


def given(series):
    return lambda d, n, rates, count, *rest: series(d, n, Given(rates), *rest)


# -------------------------------------------------------------------------------------------------------- paths
EVEN, UNEVEN = "[2.5,3,3.5,4,4.5,5]", "[0.25,1,1.125,3,10,10.5]"
RATES = "[0.03,0.025,-0.01,0.04,0.0375,0.02,0.015,0.5]"
PATHS = [
    (gbm, "GBM", 6, ["0.01 0.05 20 null 0 0", "0.01 0.05 -1 null 1 3", f"0.02 0.125 100 {EVEN} 0 2",
                     f"0.02 0.125 100 {UNEVEN} 0 -0.75", f"-0.5 3 0 {UNEVEN} 1 0.25", "0.25 1 0 null 0 0"]),
    (gbmjd, "GBMJD", 40, ["0.01 0.05 0.1599 -0.2 0.3 0 12", "0.01 0.05 0.15 0.5 0.25 1 -1", "0 1 1e-9 5 1 -1 0"]),
    (gbmmr, "GBMMR", 6, ["0.01 0.05 0.5 0.08 20 null 0", "0.01 0.05 0.5 0.08 0 null 1", f"0.02 0.125 2 -1 7 {EVEN} 0",
                         f"0.02 0.125 0.0625 -1 7 {UNEVEN} 1", "1 2 0 3 1 [-3,-2,0.5,1,4,5] 1", "1 2 1e-14 3 1 null 1",
                         f"1 2 -0.5 3 1 {UNEVEN} 1", f"0.5 0.1 800 3 1 {UNEVEN} 0"]),
    (gbmjdmr, "GBMJDMR", 40, ["0.01 0.05 0.5 0.1599 -0.2 0.3 0 12", "0.01 0.05 2 0.15 0.5 0.25 1 -1",
                              "0 1 0.001 1e-9 5 1 -1 0"]),
    (seasonal, "SeasonalGBM", 14, ["0.01 0.05 [0.1,-0.2,0.3] 3 3 [0.5,0.25,0.125,1] 4 4 0 10",
                                   "0.01 0.05 [0.1,-0.2,0.3] 3 2 [0.5,0.25] 2 1 1 0"]),
    (lambda d, n, mu, s, a, y, *out: arma(d, n, mu, s, [a], [], [y], *out), "AR1", 8,
     ["0.02 0.1 0.75 0.5 0 3", "0.02 0.1 -0.75 0.5 1 0", "0.02 0 0.5 0.25 1 0", "0.5 1 1.5 0 1 0"]),
    (lambda d, n, mu, s, a1, a2, y1, y2, *out: arma(d, n, mu, s, [a1, a2], [], [y1, y2], *out), "AR2", 8,
     ["0.02 0.1 0.75 -0.25 0.5 0.25 0 3", "0.02 0.1 -0.75 0.125 0.5 -1 1 0", "1 0 0.5 0.25 3 5 1 0"]),
    (lambda d, n, mu, s, b, *out: arma(d, n, mu, s, [], [b], [], *out), "MA1", 8,
     ["0.02 0.1 0.75 0 3", "0.02 0.1 -2 1 0", "0.02 0 3 1 0"]),
    (lambda d, n, mu, s, b1, b2, *out: arma(d, n, mu, s, [], [b1, b2], [], *out), "MA2", 8,
     ["0.02 0.1 0.75 -0.5 0 3", "0.02 0.1 -2 0.25 1 0"]),
    (lambda d, n, mu, s, a, b, y, *out: arma(d, n, mu, s, [a], [b], [y], *out), "ARMA", 8,
     ["0.02 0.1 0.75 -0.5 0.25 0 3", "0.02 0.1 -0.5 2 -1 1 0"]),
    (arch, "ARCH", 8, ["0.02 0.01 0.75 0.5 0 3", "0.02 0.01 2 -0.5 1 0", "0.02 0.01 0 -0.5 1 0"]),
    (garch, "GARCH", 8, ["0.02 0.01 0.25 0.5 0.5 0 3", "0.5 0.01 0.5 0.25 -0.0625 1 0", "0.5 0.01 0 0 9 1 0"]),
    (egarch, "EGARCH", 8, ["0.02 -0.25 -0.5 0.25 0.875 0.125 0 3", "0.5 0.01 0.5 0.25 -0.5 1 1 0"]),
    (aparch, "APARCH", 8, ["0.02 0.01 2 0.5 0.25 0.5 0.125 0 3", "0.5 0.01 0.75 -0.5 0.5 0.25 2 1 0"]),
    (population(lambda d, x, p: x + d.neg_bin(x, p)), "Yule", 8,
     ["1 0.5 1 0", "7 0.25 0.5 1", "5000 0.125 1.5 0", "40000 1.5 1 0", "3 1e-20 1 0"]),
    (population(Stream.binomial), "Death", 8,
     ["10 0.25 1 0", "3 1 1.5 1", "300 0.125 1 1", "1048576 0.0625 4 0", "5 400 2 0"]),
    (simulated(prices), "PriceInflation", 8, ["0.03 0.02 0.5", "0.03 0 -1", "0.01 0.5 1"]),
    (simulated(prices), "PriceInflation", 1, ["0.03 0.02 0.5"]),
    (simulated(wages), "WageInflation", 1, ["0.03 0.02 0.5 0.01 0.03 -0.25 0.75 0.25"]),
    (simulated(wages), "WageInflation", 8, ["0.03 0.02 0.5 0.01 0.03 -0.25 0.75 0.25", "0.03 0 0.5 0.01 0 1 1 2"]),
    (given(wages), "WageInflationA", 8, [f"{RATES} 8 0.01 0.03 -0.25 0.75 0.25"]),
    (simulated(dividends), "Dividends", 8, ["0.03 0.02 0.5 0.25 0.01 0.1 0.5 0.75 0.25 0.125 -0.5"]),
    (given(dividends), "DividendsA", 8,
     [f"{RATES} 8 0.25 0.01 0.1 0.5 0.75 0.25 0.125 -0.5", f"{RATES} 8 0 1 0 -1 1 2 1 3"]),
    (simulated(yields), "ShareYields", 8, ["0.03 0.02 0.5 0.04 0.125 0.75 1.5"]),
    (given(yields), "ShareYieldsA", 8, [f"{RATES} 8 0.04 0.125 0.75 1.5"]),
    (simulated(long_term), "LongTermInterestRate", 8, ["0.03 0.02 0.5 0.25 0.03 0.125 0.75 0.25 -0.125 0.0625 1 0.5"]),
    (given(long_term), "LongTermInterestRateA", 8, [f"{RATES} 8 0.25 0.03 0.125 0.75 0.25 -0.125 0.0625 1 0.5"]),
    (simulated(short_term), "ShortTermInterestRate", 8,
     ["0.03 0.02 0.5 0.25 0.03 0.125 0.75 0.25 -0.125 0.0625 1 0.5 0.1 0.05 -0.5"]),
    (lambda d, n, rates, count, *rest: short_term_over(d, rates, n, *rest), "ShortTermInterestRateA", 8,
     [f"{RATES} 8 0.1 0.05 -0.5"]),
]


def argument(token):
    if token == "null":
        return None
    if token[0] == "[":
        return [m.mpf(float(x)) for x in token[1:-1].split(",")]
    return m.mpf(float(token))


def text(x):
    return m.nstr(x, 19) if abs(x) < LIMIT else repr(float(x))


def write(name, head, rows):
    with open(os.path.join(HERE, name), "w") as out:
        out.write("# Generated by tests/reference/make_timeseries.py; do not edit.\n# " + head + "\n")
        for row in rows:
            out.write("\t".join(row) + "\n")


rows = []
for function, name, n, cases in PATHS:
    for arguments in cases:
        seed = 1000 + len(rows)
        stream = Stream(seed)
        path = function(stream, n, *(argument(token) for token in arguments.split()))
        rows.append((name, str(seed), str(n), arguments, " ".join(map(text, path)), text(stream.uniform())))
write("timeseries_paths.tsv", "series, seed, steps, arguments; path; next number of the stream", rows)


# ------------------------------------------------------------------------------- stationary means and autocovariances
def exponential_moment(b, c):
    """E exp(b |z| + c z) for a standard normal z."""
    return sum(m.exp((b + s * c) ** 2 / 2) * m.ncdf(b + s * c) for s in (1, -1))


def white(mean, variance):
    return [mean, variance, 0, 0]


def geometric(mean, variance, ratio):
    return [mean, variance, variance * ratio, variance * ratio ** 2]


def ar2_moments(mu, s, a1, a2):
    g0 = (1 - a2) * s ** 2 / ((1 + a2) * ((1 - a2) ** 2 - a1 ** 2))
    g1 = a1 / (1 - a2) * g0
    return [mu, g0, g1, a1 * g1 + a2 * g0]


def arma_moments(mu, s, a, b):
    g1 = (1 + a * b) * (a + b) / (1 - a ** 2) * s ** 2
    return [mu, (1 + 2 * a * b + b ** 2) / (1 - a ** 2) * s ** 2, g1, a * g1]


def egarch_moments(omega, gamma, alpha, beta):
    variance = m.mpf(1)
    for k in range(400):
        w = beta ** k
        variance *= m.exp(w * (omega - alpha * 2 / m.pi)) * exponential_moment(w * alpha, w * alpha * gamma)
    return white(0, variance)


def jumps(mu, s, lam, mu_j, s_j):
    p = 1 - m.exp(-lam)
    return white(mu + p * mu_j, s ** 2 + p * s_j ** 2 + p * (1 - p) * mu_j ** 2)


def reverting_jumps(mu, s, alpha, lam, mu_j, s_j):
    p, kept, rest = 1 - m.exp(-lam), m.exp(-alpha), m.exp(-alpha * (1 - jump_time(lam)))
    noise = s ** 2 * ou_variance(alpha, 1) + p * (s_j * rest) ** 2 + p * (1 - p) * (mu_j * rest) ** 2
    return geometric(mu + p * mu_j * rest / (1 - kept), noise / (1 - kept ** 2), kept)


def yield_moments(qmu, qsd, qa, ymu, ysd, ya, w):
    inflation = geometric(0, w ** 2 * qsd ** 2 / (1 - qa ** 2), qa)
    own = geometric(0, ysd ** 2 / (1 - ya ** 2), ya)
    return [w * qmu + m.log(ymu)] + [a + b for a, b in zip(inflation[1:], own[1:])]


f = m.mpf
MOMENTS = [
    ("GBM", "0.25 0.5 1 null 1 0", white(f(1) / 4, f(1) / 4)),
    ("GBMJD", "0.25 0.5 0.15 2 1 1 1", jumps(f("0.25"), f("0.5"), f(0.15), 2, 1)),
    # sigma^2 (1 - e^(-2 alpha))/(2 alpha) a step over 1 - e^(-2 alpha) is sigma^2/(2 alpha) in the long run
    ("GBMMR", "0.25 0.5 0.25 0 1 null 1", geometric(f("0.25"), f("0.25") * 2, m.exp(-f("0.25")))),
    ("GBMJDMR", "0.25 0.5 0.25 0.15 2 1 1 1", reverting_jumps(f("0.25"), f("0.5"), f("0.25"), f(0.15), 2, 1)),
    ("AR1", "0.25 0.5 -0.75 0 1 1", geometric(f("0.25"), f("0.25") / (1 - f("0.5625")), -f("0.75"))),
    ("AR2", "0.25 0.5 0.5 0.25 0 0 1 1", ar2_moments(f("0.25"), f("0.5"), f("0.5"), f("0.25"))),
    ("MA1", "0.25 0.5 0.75 1 1", arma_moments(f("0.25"), f("0.5"), f(0), f("0.75"))),
    ("MA2", "0.25 1 0.75 0.5 1 1", [f("0.25"), f("1.8125"), f("1.125"), f("0.5")]),
    ("ARMA", "0.25 0.5 0.75 -0.25 0 1 1", arma_moments(f("0.25"), f("0.5"), f("0.75"), f("-0.25"))),
    ("ARCH", "0.25 0.5 0.25 0 1 1", white(f("0.25"), f("0.5") / f("0.75"))),
    # e_t = y_t: E h = omega + a (mu^2 + E h) + b E h
    ("GARCH", "0.5 0.5 0.25 0.5 0 1 1", white(f("0.5"), (f("0.5") + f("0.0625")) / f("0.25"))),
    ("EGARCH", "0 -0.25 -0.5 0.25 0.75 1 1 1", egarch_moments(f("-0.25"), f("-0.5"), f("0.25"), f("0.75"))),
    ("APARCH", "0.25 0.5 2 0.5 0.125 0.5 1 1 1", white(f("0.25"), f("0.5") / (1 - f("0.125") * f("1.25") - f("0.5")))),
    ("ShareYields", "0.5 0.25 0.75 0.25 0.5 -0.5 2",
     yield_moments(f("0.5"), f("0.25"), f("0.75"), f("0.25"), f("0.5"), f("-0.5"), 2)),
]
write("timeseries_moments.tsv", "series, arguments; mean, variance, autocovariances of lags 1 and 2",
      [(name, arguments, " ".join(text(m.mpf(v)) for v in values)) for name, arguments, values in MOMENTS])
