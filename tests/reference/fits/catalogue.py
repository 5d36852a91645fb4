"""The fittable families: log-density, coordinates of the search, and parameter sets from which observations are drawn.

Coordinates, one for each parameter; the search starts at the true parameters, where all coordinates are 0:
    +       positive, by its logarithm                 >1, >2   likewise above that bound
    01, 03  within (0,1) or (0,3), by its logit        r        any real shape; L a location, in units of the spread
    lo, hi  an end of the support beyond the data, by the logarithm of the distance
A trailing # marks a count: real in the search, and once more with whole numbers only. The parameter sets are chosen
such that the likelihood has a maximum inside its domain near the truth, also where it is unbounded elsewhere (an end of
the support at the extreme observation and a shape below 1).
"""
import numpy as np
from scipy import stats
from scipy.optimize import minimize_scalar

import densities as d

CONTINUOUS = {
    "Beta": (d.beta, "+ +", [(2, 5), (0.5, 0.75), (30, 3), (0.3, 4)]),
    "Beta4": (d.beta4, ">1 >1 lo hi", [(2.5, 3.5, -1, 4), (3, 4, 1e-6, 3e-6), (3, 5, -1e9, 2e9)]),
    "BetaSubj": (d.beta_subjective, None,
                 [(0, 0.35, 0.39, 1), (1e-6, 2.3e-6, 2.22e-6, 3e-6), (-2e9, -0.95e9, -0.83e9, 1e9)]),
    "Bradford": (d.bradford, None, [(2, 0, 1), (100, -3, 5), (20, 1e-6, 4e-6), (5, 0, 1e9)]),
    "Burr": (d.burr, "lo + >1 +", [(1, 2, 3, 1.5), (-4e9, 1e9, 4, 2), (1e-6, 1e-6, 6, 0.6)]),
    "Cauchy": (d.cauchy, "L +", [(0, 1), (-3e-6, 5e-7), (1e9, 2e9)]),
    "Chi": (d.chi, "+#", [(2,), (7,), (100,)]),
    "ChiSq": (lambda x, nu: d.gamma(x, nu / 2, 2), "+#", [(3,), (7,), (100,)]),
    "Dagum": (lambda x, a, b, p: d.burr(x, 0, b, a, p), "+ + +",
              [(2, 3, 1.5), (1, 2e-6, 0.5), (4, 1e9, 0.3), (0.8, 1, 2)]),
    "Erf": (lambda x, h: d.normal(x, 0, 1 / (h * np.sqrt(2))), None, [(1,), (1e6,), (1e-9,)]),
    "Erlang": (d.gamma, "+# +", [(1, 3), (7, 5e-7), (50, 1e9)]),
    "Error": (d.exponential_power, "L + +", [(0, 1, 1.5), (3e9, 2e9, 4), (-1e-6, 5e-7, 2.5), (1, 2, 0.7)]),
    "Expon": (lambda x, beta: d.gamma(x, 1, beta), None, [(1,), (1e-6,), (1e9,)]),
    "ExtValueMax": (d.extreme_max, "L +", [(0, 1), (3e-6, 2e-6), (-5e9, 1e9)]),
    "ExtValueMin": (d.extreme_min, "L +", [(0, 1), (3e-6, 2e-6), (-5e9, 1e9)]),
    "F": (lambda x, n1, n2: d.pearson6(x, n1 / 2, n2 / 2, n2 / n1), "+ +", [(2, 5), (12, 8), (5, 40)]),
    "Fatigue": (d.fatigue, "lo + +", [(0, 1, 0.5), (2e-6, 3e-6, 2), (-1e9, 2e9, 1)]),
    "GEV": (d.extreme, "L + r", [(0, 1, 0.2), (5e-6, 1e-6, -0.3), (-1e9, 2e9, 0.6), (3, 2, 0.01)]),
    "GLogistic": (d.general_logistic, "L + +", [(0, 1, 0.5), (2e-6, 3e-6, 3), (1e9, 1e9, 1)]),
    "Gamma": (d.gamma, "+ +", [(0.3, 2), (2.5, 1e-6), (50, 1e9)]),
    "HS": (d.secant, "L +", [(0, 1), (5e-6, 2.5e-7), (-1e9, 3e9)]),
    "InvGauss": (d.inverse_gauss, None, [(1, 1), (3e-6, 5e-7), (5e9, 1.2e10)]),
    "JohnsonB": (d.johnson_b, "r + lo hi", [(0.5, 1.2, -3, 5), (-0.5, 1.5, 1e-6, 3e-6), (0, 1, 0, 1e9)]),
    "JohnsonU": (d.johnson_u, "r + + L", [(0, 1.5, 1, 0), (-1, 1.2, 2e-6, 3e-6), (1, 2, 1e9, -1e9)]),
    "Kumaraswamy": (d.kumaraswamy, "+ +", [(2, 3), (0.5, 0.5), (10, 1.5)]),
    "Kumaraswamy4": (d.kumaraswamy4, ">1 >1 lo hi", [(2.5, 3, -1, 4), (3, 2.5, 1e-6, 4e-6), (2.5, 4, -1e9, 1e9)]),
    "LogGamma": (d.log_gamma, ">1 + lo", [(3, 0.3, 0), (5, 0.1, -2), (2.5, 0.5, 100)]),
    "LogLaplace": (d.log_laplace, None, [(2, 3, 1), (1, 0.5, 1e-5), (3, 0.7, 1e9)]),
    "LogLogistic": (lambda x, a, b: d.burr(x, 0, b, a, 1), "+ +", [(1, 2), (4, 5e-7), (0.5, 3e9)]),
    "LogTriangle": (d.logarithm_of_ends(d.triangle), None, [(1, 2, 5), (1e-6, 1e-5, 2e-5), (1e8, 1e9, 2e9)]),
    "LogUniform": (d.logarithm_of_ends(d.uniform), None, [(1, 10), (1e-6, 3e-6), (1, 1e9)]),
    "Laplace": (d.laplace, None, [(0, 1), (-3e-6, 5e-7), (1e9, 2e9)]),
    "Levy": (d.levy, "+ lo", [(1, 0), (1e-6, 3e-6), (5e8, -1e9)]),
    "Lifetime2": (d.lifetime, "+ +", [(1, 2), (5e5, 1e12), (5e-10, 1e-18)]),
    "Lifetime3": (d.lifetime, None, [(1, -1, 1), (2e6, -3e12, 2e18), (1e-9, -5e-19, 1e-27)]),
    "LifetimeExp": (d.lifetime_exp, "r +", [(0, 1), (12.5, 1e6), (-21, 1e-9), (-5, 2)]),
    "Logistic": (d.logistic, "L +", [(0, 1), (-3e-6, 5e-7), (1e9, 2e9)]),
    "Lognormal": (d.lognormal, None, [(10, 3), (1e-6, 2e-6), (1e9, 1e8)]),
    "LognormalB": (lambda x, mu, sigma, base: d.logarithm(d.normal)(x, mu * np.log(base), sigma * np.log(base)), None,
                   [(0, 1, 10), (2, 0.25, 2), (-6, 0.5, 10)]),
    "LognormalE": (d.logarithm(d.normal), None, [(0, 1), (-14, 0.25), (20, 2)]),
    "Maxwell": (lambda x, scale: d.chi(x, 3, scale), None, [(1,), (1e-6,), (1e9,)]),
    "NCChiSq": (d.nc_chi_square, "+# +", [(3, 5), (10, 20), (2, 50)]),
    "NCF": (d.nc_f, "+ + +", [(5, 10, 20), (10, 30, 40), (4, 6, 30)]),
    "Normal": (d.normal, None, [(0, 1), (1e-6, 2e-6), (-3e9, 1e9)]),
    "NormalMix": (d.normal_mix, "L + 03", [(0, 1, 1.5), (1e-6, 2e-6, 2.5), (-1e9, 1e9, 0.8)]),
    "Pareto": (lambda x, theta, a: d.inside(x, a, np.inf, np.log(theta / x) + theta * np.log(a / x)), None,
               [(2, 1), (0.5, 3e-6), (30, 1e9)]),
    "Pareto2": (d.pareto2, "+ +", [(1, 2), (3e-6, 0.7), (1e9, 4)]),
    "Pearson5": (d.pearson5, "+ +", [(3, 1), (0.7, 2e-6), (20, 7e9)]),
    "Pearson6": (d.pearson6, "+ + +", [(2, 3, 1), (0.6, 1.5, 4e-6), (5, 4, 1e9)]),
    "Rayleigh": (lambda x, b: d.chi(x, 2, b), None, [(1,), (1e-6,), (1e9,)]),
    "Reciprocal": (d.logarithm_of_ends(d.uniform), None, [(1, 10), (1e-6, 3e-6), (1, 1e9)]),
    "SkewNormal": (d.skew_normal, "L + r", [(1, 2, 3), (-3e-6, 5e-7, -2), (1e9, 3e9, 6)]),
    "Slash": (d.slash, "L +", [(0, 1), (-3e-6, 5e-7), (1e9, 2e9)]),
    "Student": (lambda x, nu: d.student3(x, 0, 1, nu), "+#", [(2,), (3,), (12,)]),
    "Student3": (d.student3, "L + +#", [(1, 2, 5), (-5e-6, 5e-7, 8), (1e9, 1e9, 12)]),
    "Triangle": (d.triangle, None, [(0, 1, 3), (-2e-6, -1e-6, 5e-6), (1e9, 4e9, 5e9), (0, 0, 1)]),
    "Uniform": (d.uniform, None, [(0, 1), (1e-6, 3e-6), (-1e9, 1e9)]),
    "Weibull": (lambda x, a, b: d.weibull3(x, a, b, 0), "+ +", [(1, 2), (0.5, 3e-6), (3.5, 1e9)]),
    "Weibull3": (d.weibull3, ">1 + lo", [(2.5, 3, 1), (3, 2e-6, 5e-6), (4, 1e9, 1e9)]),
}

# Base family: log-density, coordinates, parameter sets, those with a weight or a truncation at 0 (None: no variant).
COUNTS = {
    "Bernoulli": (lambda x, p: d.binomial(x, 1, p), None, [(0.25,), (0.7,), (0.01,)], None, None),
    "BetaBinomial": (d.beta_binomial, "n# + +", [(10, 0.6, 0.8), (100, 0.5, 0.25), (300, 2, 1)],
                     [(10, 2, 1, 0.6), (100, 3, 0.8, 0.8)], [(10, 0.8, 0.6), (100, 2, 0.5)]),
    "BetaGeometric": (d.beta_geometric, "+ +", [(3, 2), (2.5, 40), (1.2, 0.7)],
                      [(3, 12, 0.6), (2.5, 40, 0.3)], [(3, 12), (1.5, 40)]),
    "BetaNegBin": (d.beta_negative_binomial, "+# + +", [(3, 4, 2), (1, 2.5, 7), (20, 2, 9)],
                   [(3, 3, 12, 0.7), (8, 2.5, 20, 0.4)], [(3, 3, 12), (8, 2.5, 20)]),
    "Binomial": (d.binomial, "n# 01", [(10, 0.25), (30, 0.7), (1000, 0.6)], [(10, 0.4, 0.3), (300, 0.7, 0.8)],
                 [(10, 0.25), (100, 0.6)]),
    "BurntFingerPoisson": (d.burnt_finger, "+ +", [(2, 1), (0.8, 0.3), (6, 2)], None, None),
    "Delaporte": (d.delaporte, "+ + +", [(1, 4, 5), (0.5, 1.5, 1), (0.8, 60, 50)], [(1, 4, 5, 0.7), (0.6, 30, 20, 0.4)],
                  [(1, 4, 2), (0.8, 30, 10)]),
    "Geometric": (lambda k, p: d.negative_binomial(k, 1, p), None, [(0.25,), (0.01,), (0.9,)],
                  [(0.25, 0.3), (0.01, 0.8)], [(0.25,), (0.01,)]),
    "Logarithmic": (d.logarithmic, "01", [(0.5,), (0.125,), (0.99,)], [(0.5, 0.3), (0.99, 0.8)], None),
    "NegBin": (d.negative_binomial, "+# 01", [(3, 0.25), (1, 0.5), (20, 0.02)], [(3, 0.25, 0.4), (8, 0.05, 0.8)],
               [(3, 0.25), (20, 0.1)]),
    "Poisson": (d.poisson, None, [(0.25,), (3.5,), (1000,)], [(3.5, 0.3), (100, 0.8)], [(0.7,), (3.5,), (100,)]),
    "PoissonUniform": (d.poisson_uniform, "+ +", [(1, 9), (5, 30), (200, 1500)], None, None),
    "Polya": (d.polya, "+ +", [(2.5, 3), (0.25, 40), (30, 5)], [(2.5, 3, 0.3), (5, 40, 0.8)], [(2.5, 3), (0.6, 40)]),
    "Skellam": (d.skellam, "+ +", [(2, 1), (0.2, 0.3), (500, 300)], [(2, 5, 0.3), (60, 20, 0.8)], None),
}


def variants(name, density, coordinates, own, inflated, truncated):
    yield name, (density, coordinates, own)
    searched = coordinates or " ".join("01" if name == "Geometric" else "+" for _ in own[0])
    if inflated:
        yield "ZI" + name, (d.inflated(density), searched + " 01", inflated)
    if truncated:
        yield "ZT" + name, (d.zero_truncated(density), searched, truncated)


# Fits to truncated observations: coordinates, cumulative, (parameters, bounds); 1e100 stands for no bound.
TRUNCATED = {
    "Beta": ("+ +", stats.beta.cdf, [((2, 5), 0.1, 0.8), ((2, 3), 0.25, 1e100)]),
    "Cauchy": ("L +", stats.cauchy.cdf, [((0, 1), -3.0, 5.0)]),
    "Expon": ("+", lambda x, beta: stats.expon.cdf(x, scale=beta), [((2,), 1.0, 1e100), ((2e9,), 1e100, 4e9)]),
    "ExtValueMax": ("L +", stats.gumbel_r.cdf, [((3e-6, 2e-6), 2e-6, 1e-5)]),
    "Gamma": ("+ +", lambda x, a, b: stats.gamma.cdf(x, a, scale=b), [((2.5, 1), 1.0, 6.0), ((4, 1e9), 2e9, 1e100)]),
    "LognormalE": ("r +", lambda x, mu, s: stats.norm.cdf(np.log(x), mu, s),
                   [((0, 1), 0.5, 1e100), ((-14, 0.5), 4e-7, 2e-6)]),
    "Logistic": ("L +", stats.logistic.cdf, [((0, 1), -1.0, 3.0)]),
    "Normal": ("L +", stats.norm.cdf, [((0, 1), -1.0, 2.0), ((3e9, 1e9), 2.5e9, 1e100), ((-1e-6, 5e-7), 1e100, -5e-7)]),
    "Pareto2": ("+ +", lambda x, b, q: stats.lomax.cdf(x, q, scale=b), [((1, 2), 0.25, 20.0)]),
    "Weibull": ("+ +", lambda x, a, b: stats.weibull_min.cdf(x, a, scale=b),
                [((1.5, 2), 1.0, 1e100), ((3, 1e9), 1e100, 1.2e9)]),
}

FAMILIES = CONTINUOUS | {name: told for base, entry in COUNTS.items() for name, told in variants(base, *entry)}


# ------------------------------------------------------------------------- maxima in closed form or by a profile
def log_laplace(x):
    """With the scale at an observation, between which the likelihood has no maximum: both exponents in closed form."""
    y = np.log(x)
    above = np.array([np.mean(np.maximum(y - center, 0)) for center in y])
    below = np.array([np.mean(np.maximum(center - y, 0)) for center in y])
    best = np.argmin(np.sqrt(above) + np.sqrt(below))
    root = np.sqrt(above[best] * below[best])
    return 1 / (above[best] + root), 1 / (below[best] + root), x[best]


def inverse_gauss(x):
    return np.mean(x), 1 / np.mean((x - np.mean(x)) ** 2 / (np.mean(x) ** 2 * x))


def lognormal(x):
    mu, sigma = np.mean(np.log(x)), np.std(np.log(x))
    mean = np.exp(mu + sigma**2 / 2)
    return mean, mean * np.sqrt(np.expm1(sigma**2))


EXACT = {
    "Bernoulli": lambda x: (np.mean(x),),
    "Erf": lambda x: (1 / np.sqrt(2 * np.mean(x**2)),),
    "Expon": lambda x: (np.mean(x),),
    "Geometric": lambda x: (1 / (1 + np.mean(x)),),
    "InvGauss": inverse_gauss,
    "Laplace": lambda x: (np.median(x), np.sqrt(2) * np.mean(np.abs(x - np.median(x)))),
    "LogLaplace": log_laplace,
    "LogUniform": lambda x: (np.min(x), np.max(x)),
    "Lognormal": lognormal,
    "LognormalB": lambda x: (np.mean(np.log(x)), np.std(np.log(x)), np.e),
    "LognormalE": lambda x: (np.mean(np.log(x)), np.std(np.log(x))),
    "Maxwell": lambda x: (np.sqrt(np.mean(x**2) / 3),),
    "Normal": lambda x: (np.mean(x), np.std(x)),
    "Pareto": lambda x: (1 / np.mean(np.log(x / np.min(x))), np.min(x)),
    "Poisson": lambda x: (np.mean(x),),
    "Rayleigh": lambda x: (np.sqrt(np.mean(x**2) / 2),),
    "Reciprocal": lambda x: (np.min(x), np.max(x)),
    "Uniform": lambda x: (np.min(x), np.max(x)),
}


# ------------------------------------------------------------------------------ families searched by other parameters
def triangle_mode(x, low, high):
    """For given ends the likelihood has its maxima over the mode at observations."""
    x = np.sort(x)
    with np.errstate(all="ignore"):
        rising = np.append(0, np.cumsum(np.log(x - low))[:-1]) - np.arange(len(x)) * np.log(x - low)
        falling = np.append(np.cumsum(np.log(high - x)[::-1])[-2::-1], 0) - np.arange(len(x))[::-1] * np.log(high - x)
        return x[np.nanargmax(rising + falling)]


def power_center(x, nu):
    """The center with the least sum of |x - center|^nu: an observation for nu < 1, when it is concave between them."""
    if nu < 1:
        candidates = np.sort(x)[len(x) // 2 - 60 : len(x) // 2 + 60]
        return candidates[np.argmin(np.sum(np.abs(x - candidates[:, None]) ** nu, axis=1))]
    low, high = np.percentile(x, (20, 80))
    center = (low + high) / 2
    cost = lambda t: np.mean(np.abs((x - center) / (high - low) - t) ** nu)
    found = minimize_scalar(cost, bounds=(-0.5, 0.5), method="bounded", options={"xatol": 1e-10})
    return center + (high - low) * found.x


def subjective(a, b, low, high):
    return low, low + (high - low) * (a - 1) / (a + b - 2), low + (high - low) * a / (a + b), high


# Family: coordinates, the searched parameters at the truth, the family's own ones from the data and the searched ones.
VIA = {
    "BetaSubj": (">1 >1 lo hi", lambda low, mode, mean, high: (*d.subjective_shapes(low, mode, mean, high), low, high),
                 lambda x, *beta4: subjective(*beta4)),
    "Bradford": ("+", lambda theta, low, high: (theta,), lambda x, theta: (theta, np.min(x), np.max(x))),
    "Error": ("+ +", lambda mu, sigma, nu: (sigma, nu), lambda x, sigma, nu: (power_center(x, nu), sigma, nu)),
    "Lifetime3": ("+ 01 +", lambda a, b, c: (a, (1 + b / np.sqrt(4 * a * c)) / 2, c),
                  lambda x, a, part, c: (a, (2 * part - 1) * np.sqrt(4 * a * c), c)),
    "LogTriangle": ("lo hi", lambda low, mode, high: (low, high),
                    lambda x, low, high: (low, np.exp(triangle_mode(np.log(x), np.log(low), np.log(high))), high)),
    "Triangle": ("lo hi", lambda low, mode, high: (low, high),
                 lambda x, low, high: (low, triangle_mode(x, low, high), high)),
}
