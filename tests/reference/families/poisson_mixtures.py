"""Differences and mixtures of Poisson counts, from their definitions."""
import mpmath as m

from reference import INF, Discrete


def with_ratio(support, mass, mode):
    """Masses that are costly are kept."""
    known = {}

    def keep(k):
        if k not in known:
            known[k] = mass(k)
        return known[k]

    return Discrete(support, keep, lambda k: keep(k + 1) / keep(k), mode)


def skellam(lambda1, lambda2):
    mass = lambda k: (m.exp(-lambda1 - lambda2) * (lambda1 / lambda2) ** (k / 2)
                      * m.besseli(abs(k), 2 * m.sqrt(lambda1 * lambda2)))
    return with_ratio((-INF, INF), mass, lambda1 - lambda2)


def burnt_finger(lambda1, lambda2):
    d = lambda1 - lambda2

    def mass(k):
        if k == 0:
            return m.exp(-lambda1)
        return lambda1 * m.exp(-lambda1) * lambda2 ** (k - 1) / m.factorial(k - 1) * m.hyp1f1(k, k + 1, d) / k

    return with_ratio((m.mpf(0), INF), mass, lambda2)


def poisson_uniform(low, high):
    """F of the Poisson by its sum, with the digits for differences of percentiles next to 1."""
    digits = 1500
    sums, terms = {}, {}

    def mass(k):
        with m.workdps(digits):
            for rate in (low, high):
                known, term = sums.setdefault(rate, [m.exp(-rate)]), terms.setdefault(rate, [m.exp(-rate)])
                while len(known) <= k:
                    term[0] *= rate / len(known)
                    known.append(known[-1] + term[0])
            return (sums[low][int(k)] - sums[high][int(k)]) / (high - low)

    return with_ratio((m.mpf(0), INF), mass, (low + high) / 2)


FAMILIES = {
    "Skellam": (skellam, [(3.5, 2), (0.25, 8), (40, 30)], [(1e-5, 1e-3), (200, 200), (1e-8, 100)]),
    "BurntFingerPoisson": (burnt_finger, [(3.5, 2), (6, 0.25), (30, 30)],
                           [(1e-3, 1e-5), (20.5, 0.5), (500, 1e-3), (100, 99.5)]),
    "PoissonUniform": (poisson_uniform, [(0, 5), (2, 9.5), (20, 20.001)],
                       [(0, 1e-6), (40, 80), (0.5, 0.5000001), (50, 50.5)]),
}

TRUNCATED = [
    ("Skellam", (40, 30), 0, -10, 20, 5),
    ("BurntFingerPoisson", (6, 0.25), 1, 2, 0.999999940395355224609375, 3),
    ("PoissonUniform", (2, 9.5), 2, 0.75, 40, 12),
]
