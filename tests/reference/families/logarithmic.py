"""The logarithmic series distribution: lower sums by terms, upper ones by terms or the integral of t^k/(1 - t)."""
import mpmath as m

from reference import INF, Discrete


class Logarithmic(Discrete):
    def __init__(self, theta):
        self.theta, self.scale = theta, -m.log1p(-theta)
        super().__init__((1, INF), lambda k: theta**k / (k * self.scale), lambda k: theta * k / (k + 1), 1)

    def upper(self, k):
        """By its terms; for theta next to 1 the integral E1 of exp(-q x)/x from k + 1/2 on, whose Euler-Maclaurin remainder
        is below (q^2 + 1/k^2)/24."""
        if self.theta < 0.999:
            return self.tail(k + 1, 1)
        if k < 10**12:
            return 1 - self.lower(k)
        return m.e1(-m.log(self.theta) * (k + m.mpf(1) / 2)) / self.scale

    def lower(self, k):
        """By its terms; for large k by E1 and the constants that its remainder leaves."""
        if k <= 3000:
            return self.tail(k, -1)
        if self.theta < 0.999 or k >= 10**12:
            return 1 - self.upper(k)
        with m.workdps(30):  # the sum of theta^j/j as that of 1/j less that of (1 - theta^j)/j
            q = -m.log(self.theta)
            rest = m.quad(lambda x: -m.expm1(-q * x) / x, [0, k / 100, k / 10, k + m.mpf(1) / 2])
            return (m.digamma(k + 1) + m.euler - rest) / self.scale


FAMILIES = {
    "Logarithmic": (Logarithmic, [(0.5,), (0.125,), (0.99,)], [(1e-300,), (1 - 2.0**-53,)]),
}

TRUNCATED = [("Logarithmic", (0.5,), 0, 30, 40, 33), ("Logarithmic", (0.99,), 3, 0.25, 0.75, 6)]
