"""Kumaraswamy's and Bradford's distributions."""
import mpmath as m

from reference import Family, expm1, exp


def kumaraswamy4(alpha, beta, low, high):
    y = lambda x: (x - low) / (high - low)

    def log_rest(x):
        """ln(1 - y^alpha)"""
        log_power = alpha * m.log(y(x)) if y(x) > 0 else -m.inf
        return m.log1p(-exp(log_power)) if log_power < -1 else m.log(-expm1(min(log_power, 0)))

    return Family((low, high), lambda x: -expm1(beta * log_rest(x)), lambda x: exp(beta * log_rest(x)),
                  lambda x: m.log(alpha * beta / (high - low)) + (alpha - 1) * m.log(y(x)) + (beta - 1) * log_rest(x))


def bradford(theta, low, high):
    y = lambda x: (x - low) / (high - low)
    return Family((low, high), lambda x: m.log1p(theta * y(x)) / m.log1p(theta),
                  lambda x: m.log1p(theta * (1 - y(x)) / (1 + theta * y(x))) / m.log1p(theta),
                  lambda x: m.log(theta / m.log1p(theta) / (high - low)) - m.log1p(theta * y(x)))


FAMILIES = {
    "Kumaraswamy": (lambda alpha, beta: kumaraswamy4(alpha, beta, m.mpf(0), m.mpf(1)), [(2, 3), (0.5, 0.5), (1, 1)],
                    [(0.01, 0.01), (1e6, 1e6), (0.01, 1e6), (1e6, 0.01)]),
    "Kumaraswamy4": (kumaraswamy4, [(2, 3, -1, 4)], [(0.5, 1e6, 1e-100, 3e-100), (1e6, 2, 0, 1e100), (5, 0.01, -1e6, 7)]),
    "Bradford": (bradford, [(2, 0, 1), (0.1, -3, 5)], [(1e-12, 0, 1), (1e-300, 0, 1), (1e6, 1, 2), (1e100, 0, 1), (10, 0, 1e100)]),
}

TRUNCATED = [
    ("Kumaraswamy", (2, 3), 0, 1 - 2**-30, 1, 1 - 2**-31),
    ("Kumaraswamy", (2, 3), 0, 1e-100, 3e-100, 2e-100),
    ("Kumaraswamy4", (2, 3, -1, 4), 2, 1 - 2**-45, 5, 3.99995),
    ("Bradford", (2, 0, 1), 0, 1 - 2**-40, 1, 1 - 2**-42),
    ("Bradford", (1e6, 0, 1), 1, 0, 1e-100, 5e-106),
]
