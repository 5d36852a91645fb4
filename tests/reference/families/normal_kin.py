"""Families made of the normal distribution, and other symmetric ones."""
import mpmath as m

from reference import INF, Family, phi


def lognormal_e(mu, sigma):
    z = lambda x: (m.log(x) - mu) / sigma
    return Family((m.mpf(0), INF), lambda x: phi(z(x)), lambda x: phi(-z(x)),
                  lambda x: -z(x) ** 2 / 2 - m.log(x * sigma * m.sqrt(2 * m.pi)))


def lognormal(mu, sigma):
    s2 = m.log(1 + (sigma / mu) ** 2)
    return lognormal_e(m.log(mu) - s2 / 2, m.sqrt(s2))


def normal(mu, sigma):
    z = lambda x: (x - mu) / sigma
    return Family((-INF, INF), lambda x: phi(z(x)), lambda x: phi(-z(x)),
                  lambda x: -z(x) ** 2 / 2 - m.log(sigma * m.sqrt(2 * m.pi)))


def quantile(p):
    return -m.sqrt(2) * m.findroot(lambda t: m.log(m.erfc(t) / 2) - m.log(p), m.mpf(0) if p > 0.01 else m.sqrt(-m.log(p)))


def normal_alt(value1, p1, value2, p2):
    z1, z2 = quantile(p1), quantile(p2)
    sigma = (value2 - value1) / (z2 - z1)
    return normal(value1 - sigma * z1, sigma)


def lognormal_alt(value1, p1, value2, p2, minimum):
    z1, z2 = quantile(p1), quantile(p2)
    sigma = m.log((value2 - minimum) / (value1 - minimum)) / (z2 - z1)
    base = lognormal_e(m.log(value1 - minimum) - sigma * z1, sigma)
    return Family((minimum, INF), *((lambda x, f=f: f(x - minimum)) for f in (base.cdf, base.sf, base.logpdf)))


def normal_mix(mu, sigma, excess):
    k = m.sqrt(excess / 3)
    parts = [normal(mu, sigma * m.sqrt(1 + k)), normal(mu, sigma * m.sqrt(1 - k))]
    mean = lambda values: (values[0] + values[1]) / 2
    return Family((-INF, INF), lambda x: mean([f.cdf(x) for f in parts]), lambda x: mean([f.sf(x) for f in parts]),
                  lambda x: m.log(mean([m.exp(f.logpdf(x)) for f in parts])))


def skew_normal_lower(z, alpha):
    """The integral of the density up to z, by its form over x = the slope of the line that cuts the plane (Owen 1956)."""
    if z > 0:
        return 1 - skew_normal_lower(-z, -alpha)
    if z < -200:
        return m.mpf(0)
    if -z < m.mpf(10) ** -40:
        return m.mpf(1) / 2 - m.atan(alpha) / m.pi
    low, high = (m.mpf(0), -alpha) if alpha < 0 else (alpha, INF)
    width = 1 / (1 + z**2 * (1 + low) - z)
    end, ends = min((high - low) / width, 25 / -z / width), [m.mpf(0)]
    while ends[-1] < end:
        ends.append(min(end, 4 + 3 * ends[-1]))
    # Of the order of 1 in its first digits, since mpmath's quadrature has an absolute tolerance.
    f = lambda t: m.exp(-(z**2) * width * t * (low + width * t / 2)) * (1 + low**2) / (1 + (low + width * t) ** 2)
    factor = m.exp(-(z**2) * (1 + low**2) / 2) * width / (1 + low**2) / m.pi
    return factor * m.quad(f, ends) + (phi(z) if alpha < 0 else 0)


def skew_normal(mu, sigma, alpha):
    z = lambda x: (x - mu) / sigma
    return Family((-INF, INF), lambda x: skew_normal_lower(z(x), alpha), lambda x: skew_normal_lower(-z(x), -alpha),
                  lambda x: m.log(2 * m.npdf(z(x)) * phi(alpha * z(x)) / sigma))


def slash(mu, scale):
    gap = lambda z: -m.npdf(0) * m.expm1(-(z**2) / 2)
    upper = lambda z: phi(-z) + (gap(z) / z if z else 0)

    z = lambda x: (x - mu) / scale
    return Family((-INF, INF), lambda x: upper(-z(x)), lambda x: upper(z(x)),
                  lambda x: m.log(gap(z(x)) / z(x) ** 2 if z(x) else m.npdf(0) / 2) - m.log(scale))


def cauchy(a, b):
    z = lambda x: (x - a) / b
    lower = lambda t: m.atan2(1, -t) / m.pi
    return Family((-INF, INF), lambda x: lower(z(x)), lambda x: lower(-z(x)),
                  lambda x: -m.log(m.pi * b * (1 + z(x) ** 2)))


FAMILIES = {
    "Lognormal": (lognormal, [(10, 3), (1, 20)], [(1e-100, 1e-101), (1e50, 1e60), (1, 1e-6)]),
    "LognormalE": (lognormal_e, [(0, 1), (2, 0.25)], [(-200, 0.01), (0, 30), (0.3, 1e-6)]),
    "LognormalB": (lambda mu, sigma, base: lognormal_e(mu * m.log(base), sigma * m.log(base)),
                   [(0, 1, 10), (2, 0.25, 2)], [(-80, 0.01, 10), (30, 3, 1.0001), (0, 1e-6, 1e10)]),
    "LognormalAlt": (lognormal_alt, [(1, 0.1, 5, 0.9, 0), (5, 0.75, 2, 0.25, -1)],
                     [(1e-100, 1e-6, 1e100, 0.5, 0), (1e50, 0.01, 1.0001e50, 0.99, 0), (11, 1e-100, 12, 0.5, 10)]),
    "NormalAlt": (normal_alt, [(1, 0.1, 5, 0.9), (5, 0.75, 2, 0.25)],
                  [(1e100, 1e-6, 3e100, 0.5), (-1e-100, 1e-50, 1e-100, 1e-10), (1e6, 0.5, 1e6 + 1, 0.975)]),
    "Erf": (lambda h: normal(0, 1 / (h * m.sqrt(2))), [(1,), (0.2,)], [(1e-100,), (1e100,)]),
    "NormalMix": (normal_mix, [(0, 1, 0), (1, 2, 1.5), (-3, 0.5, 2.9)], [(0, 1e-100, 1e-8), (0, 1e100, 3 - 2**-40)]),
    "SkewNormal": (skew_normal, [(0, 1, 0), (1, 2, 3), (-3, 0.5, -1)], [(0, 1e-100, 100), (0, 1e100, -0.01)]),
    "Slash": (slash, [(0, 1), (-3, 0.5)], [(1e-100, 1e-100), (0, 1e100)]),
    "Cauchy": (cauchy, [(0, 1), (-3, 0.5)], [(0, 1e-100), (1e6, 1)]),
}

TRUNCATED = [
    ("Lognormal", (10, 3), 0, 200, 1e300, 250),
    ("LognormalAlt", (1, 0.1, 5, 0.9, 0), 0, 1e9, 2e9, 1.25e9),
    ("NormalAlt", (1, 0.1, 5, 0.9), 0, 20, 22, 20.25),
    ("NormalMix", (1, 2, 1.5), 0, -50, -40, -40.5),
    ("SkewNormal", (0, 1, 3), 0, -5, -4, -4.03125),
    ("SkewNormal", (0, 1, 3), 0, 8, 9, 8.125),
    ("Slash", (0, 1), 0, 1e20, 3e20, 2e20),
    ("Cauchy", (0, 1), 0, 1e20, 3e20, 2e20),
]
