"""The logarithmic series distribution: lower sums by terms, upper ones by terms or the integral of t^k/(1 - t)."""
import mpmath as m

from reference import INF, Discrete


class Logarithmic(Discrete):
    def __init__(self, theta):
        self.theta, self.scale = theta, -m.log1p(-theta)
        super().__init__((1, INF), lambda k: theta**k / (k * self.scale), lambda k: theta * k / (k + 1), 1)

    def upper(self, k):
        """By its terms, or for theta near 1 by quadrature of t^k/(1 - t) from 0 to theta, in v = -ln(1 - t)."""
        if self.theta < 0.999:
            return self.tail(k + 1, 1)
        top = self.scale
        edge = m.log(max(k, 1))  # below it the integrand is negligible
        offsets = (-8, -7, -6, -5, -4, -3, -2, -1, 0, 1, 2, 4, 8, 16)
        cuts = {max(m.mpf(0), min(top, edge + d)) for d in offsets} | {top - m.mpf(2) ** -i for i in range(12)} | {top}
        cuts = sorted(c for c in cuts if c >= min(edge - 8, top - 1))
        return m.quad(lambda v: m.exp(k * m.log1p(-m.exp(-v))) if v > 0 else m.mpf(0), cuts) / self.scale

    def lower(self, k):
        return 1 - self.upper(k) if k > 3000 else self.tail(k, -1)


FAMILIES = {
    "Logarithmic": (Logarithmic, [(0.5,), (0.125,), (0.99,)], [(1e-300,), (1 - 2.0**-53,)]),
}

TRUNCATED = [("Logarithmic", (0.5,), 0, 30, 40, 33), ("Logarithmic", (0.99,), 3, 0.25, 0.75, 6)]
