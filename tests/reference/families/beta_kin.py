"""The beta distribution and its kin, PERT, Student's t and the noncentral distributions. Bisection on these definitions would
take hours: the points come from SciPy's quantiles of the same or a similar distribution, wherever those may lead."""
import mpmath as m
from scipy import special

from gamma_kin import gamma_tails
from reference import INF, Family


TAILS = [10.0**-k for k in (300, 100, 20, 6, 2)] + [0.25, 0.5]


def located(family, candidates):
    """The family with those of the candidates (numbers at which it has two tails) as its points."""
    def points():
        lower, upper = family.support[0] + family.margin, family.support[1] - family.margin
        rounded = {float(x) for x in candidates()}
        return sorted(x for x in rounded if lower < x < upper and abs(x) < 1e305
                      and min(family.cdf(m.mpf(x)), family.sf(m.mpf(x))) > 1e-305)

    family.points = points
    return family


def unit_points(a, b):
    """Points (B, 1 - B) of a beta variable."""
    for p in TAILS:
        x, y = (m.mpf(float(special.betaincinv(*shapes, p))) for shapes in ((float(a), float(b)), (float(b), float(a))))
        yield from [pair for pair in ((x, 1 - x), (1 - y, y)) if min(pair) > 0]


def fraction_tail(a, b, x, y):
    """I_x(a, b) for x below the mean by its continued fraction (DLMF 8.17.22), modified Lentz."""
    c, d, h, k = m.mpf(1), m.mpf(0), m.mpf(1), 0
    while True:
        half, odd = divmod(k, 2)
        term = 1 if k == 0 else (-(a + half) * (a + b + half) / ((a + 2 * half) * (a + 2 * half + 1)) * x if odd
                                 else half * (b - half) / ((a + 2 * half - 1) * (a + 2 * half)) * x)
        d = 1 / (1 + term * d or m.eps**2)
        c = 1 + term / c if k > 1 else m.mpf(1)
        h = d if k == 0 else h * c * d
        k += 1
        if k > 2 and abs(c * d - 1) < m.eps:
            return m.exp(a * m.log(x) + b * m.log(y) - m.log(a) - log_beta(a, b)) * h


def log_beta(a, b):
    with m.workdps(m.mp.dps + 20):
        return m.loggamma(a) + m.loggamma(b) - m.loggamma(a + b)


def beta_tails(a, b, x, y):
    if x <= 0 or y <= 0:
        return (m.mpf(0), m.mpf(1)) if x <= 0 else (m.mpf(1), m.mpf(0))
    if x * (a + b + 2) < a + 1:
        lower = fraction_tail(a, b, x, y)
        return lower, 1 - lower
    upper = fraction_tail(b, a, y, x)
    return 1 - upper, upper


def of_beta(a, b, point, place, log_slope, support, margin=0, dps=400):
    """X = place(B, 1 - B) with a beta variable point(X) = (B, 1 - B); log_slope is ln dB/dx."""
    def at(x):
        with m.workdps(dps):
            return tuple(point(x))

    def precise(which):
        def tail(x):
            found = beta_tails(a, b, *at(x))[which]
            if found > m.mpf(10) ** -25:
                return found
            with m.workdps(340):  # a difference from 1
                return beta_tails(a, b, *at(x))[which]
        return tail

    def log_density(x):
        u, v = at(x)
        return (a - 1) * m.log(u) + (b - 1) * m.log(v) - log_beta(a, b) + log_slope(x)

    return located(Family(support, precise(0), precise(1), log_density, margin),
                   lambda: [place(*pair) for pair in unit_points(a, b)])


def beta4(a, b, low, high, margin=0):
    width = high - low
    return of_beta(a, b, lambda x: ((x - low) / width, (high - x) / width),
                   lambda u, v: low + width * u if u < v else high - width * v, lambda x: -m.log(width), (low, high), margin)


def pert(low, mode, high, weight=4, margin=0):
    return beta4(1 + weight * (mode - low) / (high - low), 1 + weight * (high - mode) / (high - low), low, high, margin)


def beta_subj(low, mode, mean, high):
    mid = (low + high) / 2
    a = 2 * (mean - low) * (mid - mode) / ((mean - mode) * (high - low)) if mean != mid or mode != mid else m.mpf(3)
    return beta4(a, a * (high - mean) / (mean - low), low, high)


def pert_alt(low, mode, high, low_p, high_p):
    """By bisection on the place s of the mode in [min, max]; for each s Low and High stand at two known places."""
    def place(a, b, p):
        below, above = m.mpf(0), m.mpf(1)
        for _ in range(int(m.mp.prec)):
            x = (below + above) / 2
            below, above = (x, above) if beta_tails(a, b, x, 1 - x)[0] < p else (below, x)
        return x

    def places(s):
        a, b = 1 + 4 * s, 5 - 4 * s
        return place(a, b, low_p), place(a, b, high_p)

    with m.workdps(25):
        below, above = m.mpf(0), m.mpf(1)
        for _ in range(80):
            s = (below + above) / 2
            at_low, at_high = places(s)
            rising = (s - at_low) * (high - mode) < (at_high - s) * (mode - low)
            below, above = (s, above) if rising else (below, s)
        width = (high - low) / (at_high - at_low)
    return pert(mode - s * width, mode, mode + (1 - s) * width, margin=width / 64)


def pearson6(a, b, scale):
    return of_beta(a, b, lambda x: (x / (x + scale), scale / (x + scale)), lambda u, v: scale * u / v,
                   lambda x: m.log(scale) - 2 * m.log(x + scale), (m.mpf(0), INF), dps=m.mp.dps)


def student3(mu, sigma, nu):
    half = m.mpf(1) / 2

    def lower(t):
        if t == 0:
            return half
        tails = beta_tails(nu / 2, half, nu / (nu + t * t), t * t / (nu + t * t))
        return tails[0] / 2 if t < 0 else (1 + tails[1]) / 2

    z = lambda x: (x - mu) / sigma
    family = Family((-INF, INF), lambda x: lower(z(x)), lambda x: lower(-z(x)),
                    lambda x: -m.log(sigma) - m.log(nu) / 2 - log_beta(nu / 2, half) - (nu + 1) / 2 * m.log1p(z(x) ** 2 / nu))
    return located(family, lambda: [mu + sign * sigma * m.sqrt(nu * v / u)
                                    for sign in (-1, 1) for u, v in unit_points(nu / 2, half)])


def patnaik(nu, noncentrality):
    """The factor and the degrees of freedom of a central chi-square with the mean and variance of the noncentral one."""
    return (nu + 2 * noncentrality) / (nu + noncentrality), (nu + noncentrality) ** 2 / (nu + 2 * noncentrality)


def poisson_mixture(mean, last, lower_at, upper_at, step_at, ratio, slope):
    """Poisson weights times the tails of a shape raised by the count k = 0 .. last(x): lower(k) = lower(k + 1) + step(k) and
    upper(k + 1) = upper(k) + step(k), so that no sum has a negative term. step(k + 1) = ratio(k, x) step(k); the density is
    slope(k, x) step(k)."""
    def terms(x):
        weight, step = m.exp(-mean), step_at(x)
        for k in range(last(x) + 1):
            yield k, weight, step
            weight, step = weight * mean / (k + 1), step * ratio(k, x)

    def lower(x):
        total, tail = m.mpf(0), lower_at(last(x) + 1, x)
        for _, weight, step in reversed(list(terms(x))):
            tail += step
            total += weight * tail
        return total

    def upper(x):
        total, tail = m.mpf(0), upper_at(0, x)
        for _, weight, step in terms(x):
            total += weight * tail
            tail += step
        return total

    return Family((m.mpf(0), INF), lower, upper,
                  lambda x: m.log(sum(weight * step * slope(k, x) for k, weight, step in terms(x))))


def nc_chi_square(nu, noncentrality):
    mean, half = noncentrality / 2, nu / 2
    factor, central = patnaik(nu, noncentrality)
    family = poisson_mixture(mean, lambda x: int(min(2 * mean + x, 10**5)) + 60,
                           lambda k, x: gamma_tails(half + k, x / 2)[0], lambda k, x: gamma_tails(half + k, x / 2)[1],
                           lambda x: m.exp(half * m.log(x / 2) - x / 2 - m.loggamma(half + 1)),
                           lambda k, x: x / 2 / (half + k + 1), lambda k, x: (half + k) / x)
    return located(family, lambda: [2 * factor * m.mpf(float(inverse(float(central / 2), p)))
                                    for inverse in (special.gammaincinv, special.gammainccinv) for p in TAILS])


def nc_f(nu1, nu2, noncentrality):
    mean, a, b, scale = noncentrality / 2, nu1 / 2, nu2 / 2, nu2 / nu1
    tails = lambda k, x: beta_tails(a + k, b, x / (x + scale), scale / (x + scale))
    factor, central = patnaik(nu1, noncentrality)
    family = poisson_mixture(mean, lambda x: int(4 * mean) + 200, lambda k, x: tails(k, x)[0], lambda k, x: tails(k, x)[1],
                           lambda x: m.exp(a * m.log(x / (x + scale)) + b * m.log(scale / (x + scale)) - m.log(a)
                                           - log_beta(a, b)),
                           lambda k, x: x / (x + scale) * (a + b + k) / (a + k + 1),
                           lambda k, x: (a + k) / x)
    return located(family, lambda: [factor * nu2 / nu1 * u / v for u, v in unit_points(central / 2, b)])


FAMILIES = {
    "Beta": (lambda a, b: beta4(a, b, m.mpf(0), m.mpf(1)), [(2, 5), (0.5, 0.5), (1, 1), (3, 0.25)],
             [(0.01, 0.01), (0.01, 1e6), (1e6, 0.01), (1e6, 1e6), (1e6, 2)]),
    "Beta4": (beta4, [(2, 3, -1, 4), (0.5, 1, -5, 0)],
              [(2, 3, -1e100, 0), (0.01, 0.01, 0, 1e100), (1e6, 1e5, 1e-100, 3e-100), (1e6, 2e6, -1, 1e3)]),
    "BetaSubj": (beta_subj, [(0, 1, 1.25, 3), (1, 3, 2.5, 4), (-1, 0, 0, 1)],
                 [(0, 1, 1.0000001, 1e100), (-1e-100, 1e-101, 0, 1e-100), (0, 0.499, 0.49901, 1), (1e6 + 0.1, 1e6 + 0.10003, 1e6 + 0.10004, 1e6 + 0.1001 + 2**-33)]),
    "PERT": (pert, [(0, 0.5, 1), (-1, 0, 3), (2, 2, 5), (2, 5, 5)], [(0, 1e-10, 1e100), (-1, 0, 0), (1e-100, 2e-100, 4e-100)]),
    "ModPERT": (pert, [(-1, 0, 3, 2), (0, 1, 3, 10)], [(-1, 0, 3, 1e6), (0, 1, 3, 1e-6)]),
    "PERTAlt": (pert_alt, [(1, 2, 4, 0.1, 0.9), (-3, 0, 1, 0.25, 0.75)],
                [(-1e-100, 0, 1e-100, 1e-6, 1 - 2**-30), (-1, 0, 1e6, 0.1, 0.9), (-1e4, 0, 1, 0.4, 0.6)]),
    "Pearson6": (pearson6, [(2, 3, 1), (0.5, 0.5, 4)],
                 [(0.01, 0.01, 1e100), (0.01, 2, 1e-100), (1e6, 1e6, 1e-100), (1e6, 3, 1e100)]),
    "F": (lambda nu1, nu2: pearson6(nu1 / 2, nu2 / 2, nu2 / nu1), [(2, 5), (1, 1), (7.5, 40)],
          [(0.02, 0.02), (1e6, 1e6), (3, 1e6), (1e6, 3)]),
    "Student": (lambda nu: student3(m.mpf(0), m.mpf(1), nu), [(1,), (3,), (30,)], [(1e4,), (1e6,)]),
    "Student3": (student3, [(1, 2, 3), (-5, 0.5, 10)], [(0, 1e-100, 4), (1e100, 1e100, 1e6)]),
    "NCChiSq": (nc_chi_square, [(2, 1), (5, 10), (3, 0)], [(1, 1000), (1000, 1e-100), (1, 0.001)]),
    "NCF": (nc_f, [(2, 5, 1), (5, 10, 20), (3, 4, 0)], [(0.5, 3, 1), (1000, 3, 200), (3, 1000, 500), (4, 6, 1e-100), (1e-16, 5, 10)]),
}

TRUNCATED = [
    ("Beta", (2, 5), 0, 1 - 2**-40, 1, 1 - 2**-41),
    ("Beta", (2, 5), 0, 1e-100, 3e-100, 2e-100),
    ("Beta4", (2, 3, -1, 4), 2, 1 - 2**-45, 5, 3.99995),
    ("BetaSubj", (0, 1, 1.25, 3), 1, 0, 1e-100, 1e-75),
    ("PERT", (-1, 0, 3), 0, 2.9990234375, 3, 2.99951171875),
    ("ModPERT", (0, 1, 3, 10), 3, 1e-20, 1e-10, 0.0025),
    ("PERTAlt", (1, 2, 4, 0.1, 0.9), 3, 0.125, 0.875, 3),
    ("Pearson6", (2, 3, 1), 0, 1e50, 2e50, 1.25e50),
    ("F", (2, 5), 0, 1e-50, 2e-50, 1.25e-50),
    ("F", (2, 5), 0, 1e50, 2e50, 1.25e50),
    ("Student", (3,), 0, 1e50, 2e50, 1.25e50),
    ("Student3", (1, 2, 3), 0, -2e50, -1e50, -1.25e50),
    ("NCChiSq", (5, 10), 0, 300, 302, 300.5),
    ("NCF", (5, 10, 20), 0, 1e-20, 2e-20, 1.5e-20),
]
