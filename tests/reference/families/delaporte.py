"""The Delaporte distribution by the recurrence of its masses."""
import mpmath as m

from poisson_mixtures import with_ratio
from reference import INF


def delaporte(alpha, beta, lam):
    """From the differential equation of the generating function, with digits to spare for its difference."""
    q = beta / (1 + beta)
    with m.workdps(150):
        masses = [m.exp(-lam) * (1 + beta) ** -alpha]

    def mass(k):
        with m.workdps(150):
            while len(masses) <= k:
                n = len(masses) - 1
                before = masses[n - 1] if n else 0
                masses.append(((q * n + lam + alpha * q) * masses[n] - lam * q * before) / (n + 1))
        return +masses[int(k)]

    return with_ratio((m.mpf(0), INF), mass, alpha * beta + lam)


FAMILIES = {
    "Delaporte": (delaporte, [(2, 3, 4), (0.5, 2, 1), (10, 0.25, 20)],
                  [(1e-6, 5, 10), (50, 1e-3, 60), (0.01, 6, 0.001),
                   (10000, 2, 20000), (0.5, 64, 10000), (3.5, 1024, 600)]),
}

TRUNCATED = [
    ("Delaporte", (2, 3, 4), 3, 0.5, 0.875, 12),
]
