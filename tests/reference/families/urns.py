"""Drawing without replacement, by sums of masses from binomial coefficients."""
import mpmath as m

from reference import Discrete


def hypergeo(n, D, M):
    mass = lambda k: m.binomial(D, k) * m.binomial(M - D, n - k) / m.binomial(M, n)
    ratio = lambda k: (D - k) * (n - k) / ((k + 1) * (M - D - n + k + 1))
    return Discrete((max(m.mpf(0), n + D - M), min(n, D)), mass, ratio, (n + 1) * (D + 1) / (M + 2))


def inv_hypergeo(s, D, M):
    mass = lambda x: m.binomial(s + x - 1, x) * m.binomial(M - s - x, D - s) / m.binomial(M, D)
    ratio = lambda x: (s + x) * (M - D - x) / ((x + 1) * (M - s - x))
    return Discrete((m.mpf(0), M - D), mass, ratio, max(0, (s - 1) * (M - D) / D))


def hypergeo_d(s, n, M):
    mass = lambda d: m.binomial(d, s) * m.binomial(M - d, n - s) / m.binomial(M + 1, n + 1)
    ratio = lambda d: (d + 1) / (d + 1 - s) * (M - d - n + s) / (M - d)
    return Discrete((s, M - n + s), mass, ratio, s + (M - n) * s / n)


def hypergeo_m(s, n, D, most):
    weight = lambda size: m.binomial(size - D, n - s) / m.binomial(size, n)
    ratio = lambda size: (size + 1 - D) / (size + 1 - D - n + s) * (size + 1 - n) / (size + 1)
    support = (D + n - s, most)
    mode = min(most, max(support[0], m.floor(D * n / s)))
    unscaled = Discrete(support, lambda size: weight(size) / weight(mode), ratio, mode)
    total = unscaled.tail(mode, -1) + unscaled.tail(mode + 1, 1)
    return Discrete(support, lambda size: weight(size) / weight(mode) / total, ratio, mode)


FAMILIES = {
    "Hypergeo": (hypergeo, [(5, 6, 10), (20, 30, 100), (60, 90, 100)],
                 [(50, 100000, 1000000), (30000, 50000, 100000), (999990, 12, 1000000), (1, 3, 1e9)]),
    "InvHypergeo": (inv_hypergeo, [(2, 5, 20), (4, 4, 12), (3, 40, 100)],
                    [(1, 1, 300), (1000, 500000, 1000000), (3, 5, 600)]),
    "HypergeoD": (hypergeo_d, [(2, 5, 20), (3, 10, 200)], [(0, 1, 300), (5, 1000, 20000)]),
    "HypergeoM": (hypergeo_m, [(2, 5, 6, 40), (3, 10, 20, 1000)],
                  [(1, 1, 1, 500), (50, 200, 300, 3000), (1, 30, 40, 3000)]),
}

TRUNCATED = [
    ("Hypergeo", (20, 30, 100), 0, 8, 15, 10),
    ("Hypergeo", (50, 100000, 1000000), 0, 30, 34, 31),
    ("InvHypergeo", (3, 40, 100), 1, 2, 0.96875, 5),
    ("HypergeoD", (3, 10, 200), 2, 0.25, 90, 70),
    ("HypergeoM", (3, 10, 20, 1000), 3, 0.125, 0.9990234375, 90),
]
