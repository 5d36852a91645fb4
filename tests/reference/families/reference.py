"""What the definitions of the families share."""
import mpmath as m

m.mp.dps = 50
INF = m.inf


class Family:
    """cdf, sf and logpdf take an mpf inside the support; `support` its ends."""

    def __init__(self, support, cdf, sf, logpdf):
        self.support, self.cdf, self.sf, self.logpdf = support, cdf, sf, logpdf


def phi(z):
    if abs(z) > 10**6:  # beyond every double, and beyond mpmath's erfc
        return m.mpf(z > 0)
    return m.erfc(-z / m.sqrt(2)) / 2


def exp(x):
    return m.exp(max(min(x, 10**7), -10**7))  # beyond every double, and before mpmath's exponents fill the memory


def expm1(x):
    return m.expm1(max(min(x, 10**7), -10**7))
