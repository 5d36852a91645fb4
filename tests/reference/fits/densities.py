"""Log-densities of the fittable families for arrays of observations, told by NumPy and SciPy's special functions and
independently of the library; -inf outside the support. Parameters in the library's order."""
import numpy as np
from numpy import exp, expm1, log, log1p, logaddexp, pi, sqrt, where
from scipy.special import betaln, gammainc, gammaincc, gammaln, ive, log_ndtr, logsumexp, xlog1py, xlogy


def inside(x, low, high, value):
    return np.where((x >= low) & (x <= high), value, -np.inf)


def located(standard):
    """location + scale Z from Z's log-density; further parameters go on to it."""
    return lambda x, location, scale, *shape: standard((x - location) / scale, *shape) - log(scale)


def logarithm(family):
    """exp(X), from X's log-density."""
    return lambda x, *parameters: family(log(x), *parameters) - log(x)


def logarithm_of_ends(family):
    """Likewise, with parameters that are places on X's scale."""
    return lambda x, *parameters: family(log(x), *map(log, parameters)) - log(x)


def log_phi(z):
    return -z * z / 2 - log(2 * pi) / 2


# ------------------------------------------------------------------------------------------------ all reals
normal = located(log_phi)
cauchy = located(lambda z: -log(pi) - log1p(z * z))
logistic = located(lambda z: -np.abs(z) - 2 * log1p(exp(-np.abs(z))))
general_logistic = located(lambda z, g: log(g) - z - (g + 1) * logaddexp(0, -z))
secant = located(lambda z: -logaddexp(pi * z / 2, -pi * z / 2))
laplace = located(lambda z: -sqrt(2) * np.abs(z) - log(2) / 2)
extreme_max = located(lambda z: -z - exp(-z))
extreme_min = located(lambda z: z - exp(z))
skew_normal = located(lambda z, a: log(2) + log_phi(z) + log_ndtr(a * z))
slash = located(lambda z: np.where(z == 0, log(0.5), log(-expm1(-z * z / 2)) - 2 * log(np.abs(z))) - log(2 * pi) / 2)


def exponential_power(x, mu, sigma, nu):
    c = sigma * exp((gammaln(1 / nu) - gammaln(3 / nu)) / 2)
    return log(nu / (2 * c)) - gammaln(1 / nu) - (np.abs(x - mu) / c) ** nu


def extreme(x, a, b, c):
    if abs(c) < 1e-9:
        return extreme_max(x, a, b)
    w = log1p(np.maximum(c * (x - a) / b, -1))
    return np.where(w > -np.inf, -(1 + 1 / c) * w - exp(-w / c) - log(b), -np.inf)


def normal_mix(x, mu, sigma, excess):
    k = sqrt(excess / 3)
    return logaddexp(*(normal(x, mu, sigma * sqrt(1 + part)) for part in (k, -k))) - log(2)


def student3(x, mu, sigma, nu):
    return -log(sigma) - log(nu) / 2 - betaln(nu / 2, 0.5) - (nu + 1) / 2 * log1p(((x - mu) / sigma) ** 2 / nu)


def johnson_u(x, a, b, scale, location):
    t = (x - location) / scale
    return log_phi(a + b * np.arcsinh(t)) + log(b / scale) - log1p(t * t) / 2


# ------------------------------------------------------------------------------------- half-lines, from a location
def burr(x, a, b, c, d):
    z = log((x - a) / b)
    return log(c * d / b) - (c + 1) * z - (d + 1) * logaddexp(0, -c * z)


def fatigue(x, a, b, g):
    z = (x - a) / b
    return log_phi((sqrt(z) - 1 / sqrt(z)) / g) + log1p(1 / z) - log(z) / 2 - log(2 * g * b)


def levy(x, c, a):
    return (log(c / (2 * pi)) - 3 * log(x - a) - c / (x - a)) / 2


def log_gamma(x, shape, scale, location):
    y = log1p(x - location)
    return gamma(y, shape, scale) - y


def weibull3(x, shape, scale, location):
    z = log((x - location) / scale)
    return log(shape / scale) + (shape - 1) * z - exp(shape * z)


# ---------------------------------------------------------------------------------------- half-line from 0
def gamma(x, shape, scale):
    return xlogy(shape - 1, x / scale) - x / scale - gammaln(shape) - log(scale)


def chi(x, nu, scale=1):
    return gamma((x / scale) ** 2, nu / 2, 2) + log(2 * x / scale**2)


def pearson5(x, shape, scale):
    return gamma(1 / x, shape, 1 / scale) - 2 * log(x)


def pearson6(x, a, b, scale):
    z = x / scale
    return (a - 1) * log(z) - (a + b) * log1p(z) - betaln(a, b) - log(scale)


def pareto2(x, b, q):
    return log(q / b) - (q + 1) * log1p(x / b)


def inverse_gauss(x, mu, shape):
    return (log(shape / (2 * pi)) - 3 * log(x) - shape * (x / mu - 1) ** 2 / x) / 2


def lognormal(x, mu, sigma):
    s2 = log1p((sigma / mu) ** 2)
    return logarithm(normal)(x, log(mu) - s2 / 2, sqrt(s2))


def log_laplace(x, a, b, delta):
    y = log(x / delta)
    return log(a * b / (a + b)) - log(x) + np.where(y < 0, b * y, -a * y)


def lifetime(x, a, b, c=0):
    return log(a + b * x + c * x**2) - (a * x + b * x**2 / 2 + c * x**3 / 3)


def lifetime_exp(x, a, b):
    return a + b * x - where(b * x < 1, exp(a) * expm1(b * x), exp(a + b * x) - exp(a)) / b


def poisson_weighted(mean, parts):
    """The log-density of a mixture of parts(k) over a Poisson count k, as far as that has weight."""
    k = np.arange(int(mean + 12 * sqrt(mean) + 40))[:, None]
    return logsumexp(poisson(k, mean) + parts(k), axis=0)


def nc_chi_square(x, nu, noncentrality):
    return poisson_weighted(noncentrality / 2, lambda k: gamma(x, nu / 2 + k, 2))


def nc_f(x, nu1, nu2, noncentrality):
    """nu1 F/nu2 is Pearson6 of shapes nu1/2 + k and nu2/2."""
    return poisson_weighted(noncentrality / 2, lambda k: pearson6(x, nu1 / 2 + k, nu2 / 2, nu2 / nu1))


# ------------------------------------------------------------------------------------------------ intervals
def uniform(x, low, high):
    return inside(x, low, high, -log(high - low))


def beta4(x, a, b, low, high):
    y, rest = (x - low) / (high - low), (high - x) / (high - low)
    return inside(x, low, high, xlogy(a - 1, y) + xlogy(b - 1, rest) - betaln(a, b) - log(high - low))


def beta(x, a, b):
    """With 1 - x as it was drawn: observations that are 1 exactly have no density for b < 1."""
    return xlogy(a - 1, x) + xlog1py(b - 1, -x) - betaln(a, b)


def subjective_shapes(low, mode, mean, high):
    a = 2 * (mean - low) * ((low + high) / 2 - mode) / ((mean - mode) * (high - low))
    return a, a * (high - mean) / (mean - low)


def beta_subjective(x, low, mode, mean, high):
    return beta4(x, *subjective_shapes(low, mode, mean, high), low, high)


def johnson_b(x, a, b, low, high):
    y = log(x - low) - log(high - x)
    return inside(x, low, high, log_phi(a + b * y) + log(b * (high - low)) - log(x - low) - log(high - x))


def kumaraswamy4(x, a, b, low, high):
    y = log((x - low) / (high - low))
    return inside(x, low, high, log(a * b / (high - low)) + (a - 1) * y + (b - 1) * log(-expm1(a * y)))


def kumaraswamy(x, a, b):
    return kumaraswamy4(x, a, b, 0, 1)


def bradford(x, theta, low, high):
    y = (x - low) / (high - low)
    return inside(x, low, high, log(theta / log1p(theta) / (high - low)) - log1p(theta * y))


def triangle(x, low, mode, high):
    rising = np.where(x < mode, (x - low) / (mode - low) if mode > low else 1, 1)
    falling = np.where(x > mode, (high - x) / (high - mode) if high > mode else 1, 1)
    return inside(x, low, high, log(2 * rising * falling / (high - low)))


# --------------------------------------------------------------------------------------------------- counts
def poisson(k, mean):
    return xlogy(k, mean) - mean - gammaln(k + 1)


def log_choose(n, k):
    return gammaln(n + 1) - gammaln(k + 1) - gammaln(n - k + 1)


def binomial(k, n, p):
    return inside(k, 0, n, log_choose(n, np.minimum(k, n)) + xlogy(k, p) + xlog1py(n - k, -p))


def negative_binomial(k, s, p):
    return gammaln(k + s) - gammaln(s) - gammaln(k + 1) + s * log(p) + xlog1py(k, -p)


def polya(k, shape, scale):
    return gammaln(k + shape) - gammaln(shape) - gammaln(k + 1) + k * log(scale) - (k + shape) * log1p(scale)


def beta_binomial(k, n, a, b):
    k_in = np.minimum(k, n)
    return inside(k, 0, n, log_choose(n, k_in) + betaln(k_in + a, n - k_in + b) - betaln(a, b))


def beta_negative_binomial(k, s, a, b):
    return gammaln(s + k) - gammaln(s) - gammaln(k + 1) + betaln(a + s, b + k) - betaln(a, b)


def beta_geometric(k, a, b):
    return beta_negative_binomial(k, 1, a, b)


def logarithmic(k, theta):
    return inside(k, 1, np.inf, k * log(theta) - log(np.maximum(k, 1)) - log(-log1p(-theta)))


def delaporte(k, shape, scale, mean):
    """The convolution of Polya and Poisson."""
    reach = np.arange(int(np.max(k)) + 1)
    mass = np.convolve(exp(polya(reach, shape, scale)), exp(poisson(reach, mean)))
    return log(mass[k.astype(int)])


def skellam(k, mean1, mean2):
    z = sqrt(mean1 * mean2)
    return k / 2 * log(mean1 / mean2) - (mean1 + mean2 - 2 * z) + log(ive(np.abs(k), 2 * z))


def burnt_finger(k, rate1, rate2):
    """The integral over s of s^(k - 1) exp(d s) by its series of positive terms d^j/(j! (k + j))."""
    d, j, positive = rate1 - rate2, np.arange(400)[:, None], np.maximum(k, 1)
    integral = logsumexp(xlogy(j, d) - gammaln(j + 1) - log(positive + j), axis=0)
    return -rate1 + np.where(k == 0, 0, log(rate1) + (k - 1) * log(rate2) - gammaln(positive) + integral)


def poisson_uniform(k, low, high):
    lower = gammainc(k + 1, low) < 0.5
    mass = np.where(lower, gammainc(k + 1, high) - gammainc(k + 1, low), gammaincc(k + 1, low) - gammaincc(k + 1, high))
    return log(mass / (high - low))


def inflated(base):
    """Zero-inflated: the last parameter is the weight of the base family."""
    def density(k, *parameters):
        *own, weight = parameters
        mass = log(weight) + base(k, *own)
        return np.where(k == 0, logaddexp(log1p(-weight), mass), mass)
    return density


def zero_truncated(base):
    return lambda k, *own: inside(k, 1, np.inf, base(k, *own) - log(-expm1(base(np.zeros(1), *own)[0])))
