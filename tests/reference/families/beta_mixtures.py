"""Binomial and negative binomial counts with a beta distributed probability, by sums of their masses."""
import mpmath as m

from reference import INF, Discrete


def log_beta(a, b):
    return m.loggamma(a) + m.loggamma(b) - m.loggamma(a + b)


class PowerOfTheMaximum(Discrete):
    """beta = 1, however many trials: F(k) is the a-th moment of the (k + 1)-th smallest of n uniform variables."""

    def __init__(self, n, a):
        self.n, self.a = n, a
        super().__init__((0, n), lambda k: self.below(k) * a / (k + a), None, n * a / (a + 1))

    @m.workdps(400)
    def below(self, k):
        if not 0 <= k < self.n:
            return m.mpf(k >= 0)
        return m.exp(m.loggamma(k + 1 + self.a) - m.loggamma(k + 1) + m.loggamma(self.n + 1)
                     - m.loggamma(self.n + 1 + self.a))

    def lower(self, k):
        return self.below(k)

    @m.workdps(400)
    def upper(self, k):
        return 1 - self.below(k)


def beta_binomial(n, a, b):
    if b == 1 and n > 10**6:
        return PowerOfTheMaximum(n, a)
    mass = lambda k: m.exp(m.loggamma(n + 1) - m.loggamma(k + 1) - m.loggamma(n - k + 1)
                           + log_beta(k + a, n - k + b) - log_beta(a, b))
    mode = (n - 1) * (a - 1) / (a + b - 2) if a > 1 and b > 1 else n * a / (a + b)
    return Discrete((0, n), mass, lambda k: (n - k) / (k + 1) * (k + a) / (n - k - 1 + b) if k < n else m.mpf(0),
                    mode)


class SlowTail(Discrete):
    """Tails that fall as a power: the upper one by the finite sum that it equals, the lower one as the rest where it is not
    small, else by its terms."""

    def __init__(self, s, a, b):
        self.s, self.a, self.b = s, a, b
        @m.workdps(400)  # k may have 300 digits before the point
        def mass(k):
            return m.exp(m.loggamma(s + k) - m.loggamma(s) - m.loggamma(k + 1) + log_beta(a + s, b + k) - log_beta(a, b))

        super().__init__((0, INF), mass, lambda k: (s + k) / (k + 1) * (b + k) / (a + s + b + k),
                         max((s - 1) * (b - 1) / (a + 1), 0))

    @m.workdps(400)
    def upper(self, k):
        """s successes take more than k + s trials: fewer than s among k + s of them."""
        n, total = k + self.s, m.mpf(0)
        dual = beta_binomial(n, self.a, self.b)
        for j in range(int(self.s)):
            total += dual.mass(m.mpf(j))
        return total

    @m.workdps(400)
    def lower(self, k):
        return 1 - self.upper(k) if k > 3000 else self.tail(k, -1)

    def points(self):
        return [x for x in super().points() if x < 1e300]


FAMILIES = {
    "BetaBinomial": (beta_binomial, [(10, 2, 3), (100, 0.5, 0.25), (300, 20, 5)],
                     [(1, 1e-9, 1), (600, 1e4, 3e4), (200, 1e-3, 2), (10, 1e10, 1e10),
                      (1e12, 0.25, 1), (1e18, 2.5, 1), (1e100, 1e9, 1), (1e300, 4, 1)]),
    "BetaNegBin": (SlowTail, [(3, 4, 2), (1, 2.5, 7), (5, 6, 0.5)],
                   [(2, 2.25, 3), (2, 30, 1e15), (2, 1e9, 1e16), (1, 400, 1e290)]),
    "BetaGeometric": (lambda a, b: SlowTail(m.mpf(1), a, b), [(3, 2), (2.5, 40)],
                      [(2.25, 1)]),
}

TRUNCATED = [
    ("BetaBinomial", (100, 2, 3), 0, 90, 96, 94),
    ("BetaBinomial", (100, 20, 30), 0, 1, 8, 5),
    ("BetaBinomial", (10, 0.5, 3), 0, -3, 8, 2),
    ("BetaBinomial", (300, 20, 5), 3, 0.0625, 0.75, 249),
    ("BetaNegBin", (3, 4, 2), 0, 1000, 1e300, 1500),
    ("BetaNegBin", (5, 6, 0.5), 1, 0, 0.96875, 2),
    ("BetaGeometric", (2.5, 40), 2, 0.25, 30, 17),
]
