"""What the definitions of the families share."""
import mpmath as m

m.mp.dps = 50
INF = m.inf


class Family:
    """cdf, sf and logpdf take an mpf inside the support; `support` its ends. Points nearer to an end than `margin` are no
    reference points: for families whose ends are computed, and carry a rounding error."""

    def __init__(self, support, cdf, sf, logpdf, margin=0):
        self.support, self.cdf, self.sf, self.logpdf, self.margin = support, cdf, sf, logpdf, margin


def phi(z):
    if abs(z) > 10**6:  # beyond every double, and beyond mpmath's erfc
        return m.mpf(z > 0)
    return m.erfc(-z / m.sqrt(2)) / 2


def exp(x):
    return m.exp(max(min(x, 10**7), -10**7))  # beyond every double, and before mpmath's exponents fill the memory


def expm1(x):
    return m.expm1(max(min(x, 10**7), -10**7))


class Discrete(Family):
    """A distribution on consecutive integers from its mass, the ratio f(k + 1)/f(k) and its mode: both tails are sums from
    the far end of what counts, so that neither is a difference."""

    def __init__(self, support, mass, ratio, mode):
        self.mass, self.ratio, self.mode = mass, ratio, m.floor(mode)
        super().__init__(support, self.lower, self.upper, lambda k: m.log(mass(k)))

    def tail(self, k, step):
        """The sum of the masses from k on in the direction of step."""
        if not self.support[0] <= k <= self.support[1]:
            return m.mpf(0)
        total, term = m.mpf(0), self.mass(k)
        while self.support[0] <= k <= self.support[1]:
            total += term
            if k == self.support[step > 0]:
                break
            following = term * self.ratio(k) if step > 0 else term / self.ratio(k - 1)
            if following < total * m.mpf(10) ** -32 and following < term:
                break
            term, k = following, k + step
        return total

    def lower(self, k):
        return self.tail(k, -1) if k <= self.mode else 1 - self.tail(k + 1, 1)

    def upper(self, k):
        return self.tail(k + 1, 1) if k >= self.mode else 1 - self.tail(k, -1)

    def points(self):
        """Integers at both tails' powers of ten, walking from the mode."""
        found = set()
        for step in (-1, 1):
            k, reach, stride = self.mode, self.lower if step < 0 else self.upper, 1
            for exponent in (0.3, 1, 3, 8, 20, 100, 300):
                target = m.mpf(10) ** -exponent
                with m.workdps(15):
                    inside = lambda j: self.support[0] <= j <= self.support[1]
                    while inside(k + stride * step) and reach(k + stride * step) > target:
                        k, stride = k + stride * step, stride * 2
                    while stride >= 1:
                        if inside(k + stride * step) and reach(k + stride * step) > target:
                            k += stride * step
                        stride //= 2
                    stride = 1
                found.add(k)
        return sorted(float(k) for k in found if inside(k))
