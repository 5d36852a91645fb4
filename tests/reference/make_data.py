#!/usr/bin/python3
"""Reference values of the distributions given by tables and of aggregate claims, in rational arithmetic.

Writes data_values.tsv, data_quantiles.tsv and aggregate.tsv beside itself. Every number that the library is given is the
rational that its double is; results are rounded once. Only the quadratic of Relative's quantile needs a root (350 digits).
"""
import os
from fractions import Fraction as Q

import mpmath as m

m.mp.dps = 350
HERE = os.path.dirname(os.path.abspath(__file__))


def real(q):
    return m.mpf(q.numerator) / q.denominator if isinstance(q, Q) else q


def text(q):
    """The nearest double; those that underflow keep their digits, which the reader's strtod rounds."""
    return m.nstr(real(q), 20) if q else "0"


class Points:
    """Values with weights."""

    def __init__(self, values, weights):
        total = sum(map(Q, weights))
        self.mass = {}
        for value, weight in zip(values, weights):
            self.mass[Q(value)] = self.mass.get(Q(value), Q(0)) + Q(weight) / total
        self.values = sorted(self.mass)
        self.support = self.values[0], self.values[-1]

    def density(self, x):
        return self.mass.get(x, Q(0))

    def lower(self, x):
        return sum((p for v, p in self.mass.items() if v <= x), Q(0))

    def upper(self, x):
        return sum((p for v, p in self.mass.items() if v > x), Q(0))

    def quantile(self, p):
        return next(v for v in self.values if self.lower(v) >= p)

    def tie(self, p):
        """p is so near a running sum that rounding decides."""
        return any(abs(self.lower(v) - p) < Q(1, 10**13) for v in self.values)

    def places(self):
        between = [(a + b) / 2 for a, b in zip(self.values, self.values[1:])]
        return sorted(self.values + between)


class Pieces:
    """Pieces (left, right, mass, height at left, height at right), the density linear in each."""

    def __init__(self, pieces):
        total = sum(piece[2] for piece in pieces)
        self.pieces = [(a, b, mass / total, h, k) for a, b, mass, h, k in pieces]
        self.support = pieces[0][0], pieces[-1][1]

    @staticmethod
    def part(piece, x):
        a, b, _, h, k = piece
        s = (x - a) / (b - a)
        return s * (h * (2 - s) + k * s) / (h + k) if h + k else s

    def density(self, x):
        a, b, mass, h, k = [p for p in self.pieces if p[0] <= x < p[1] or p[0] < x == p[1] == self.support[1]][-1]
        s = (x - a) / (b - a)
        return mass / (b - a) * (2 * (h * (1 - s) + k * s) / (h + k) if h + k else 1)

    def lower(self, x):
        return sum((p[2] if x >= p[1] else p[2] * self.part(p, x) for p in self.pieces if x >= p[0]), Q(0))

    def upper(self, x):
        return sum((p[2] if x < p[0] else p[2] * (1 - self.part(p, x)) for p in self.pieces if x < p[1]), Q(0))

    def quantile(self, p):
        for a, b, mass, h, k in self.pieces:
            if p <= mass:
                break
            p -= mass
        part = p / mass
        s = part if h == k else (m.sqrt(real(h * h + (k * k - h * h) * part)) - real(h)) / real(k - h)
        return real(a) + real(b - a) * real(s)

    def tie(self, p):
        return False

    def places(self):
        inner = [a + (b - a) * s for a, b, *_ in self.pieces if a < b for s in (Q(0), Q(3, 8), Q(1023, 1024))]
        return inner + [self.support[1]]


def polygon(low, high, values, ordinates):
    x = [Q(v) for v in [low, *values, high]]
    f = [Q(0), *ordinates, Q(1)]
    return Pieces([(a, b, g - e, Q(1), Q(1)) for a, b, e, g in zip(x, x[1:], f, f[1:])])


def relative(low, high, values, weights):
    x = [Q(v) for v in [low, *values, high]]
    w = [Q(v) for v in [0, *weights, 0]]
    return Pieces([(a, b, (h + k) * (b - a) / 2, h, k) for a, b, h, k in zip(x, x[1:], w, w[1:]) if a < b])


def histogram(low, high, heights):
    low, high, n = Q(low), Q(high), len(heights)
    edges = [low + (high - low) * i / n for i in range(n + 1)]
    return Pieces([(a, b, Q(f), Q(1), Q(1)) for a, b, f in zip(edges, edges[1:], heights)])


def ogive(low, high, data):
    return polygon(low, high, sorted(data), [Q(i, len(data) + 1) for i in range(1, len(data) + 1)])


MAKE = {
    "Discrete": Points,
    "DUniform": lambda values: Points(values, [1] * len(values)),
    "CumulA": lambda low, high, values, p: polygon(low, high, values, map(Q, p)),
    "CumulD": lambda low, high, values, p: polygon(low, high, values, [1 - Q(v) for v in p]),
    "Histogram": histogram,
    "Relative": relative,
    "Ogive": ogive,
}

FAMILIES = [
    ("Discrete", [3, 1, 2], [1, 1, 2]),
    ("Discrete", [5, 1, 5, 3, -2], [0.1, 0.2, 0.3, 0.4, 0.7]),
    ("Discrete", [-1, 0, 1, 2, 3], [0, 1e-20, 1, 1e-18, 0]),
    ("Discrete", [1, 2, 3], [1.5e308, 1e308, 1.75e308]),
    ("Discrete", [0.5 * i for i in range(300)], [1 + i * 37 % 11 for i in range(300)]),
    ("DUniform", [4, 1, 4, 2]),
    ("DUniform", [0.1 * i for i in range(10)]),
    ("CumulA", 0, 10, [2, 5], [0.2, 0.6]),
    ("CumulA", -1, 3, [-1, 0.5, 3], [1e-20, 0.25, 0.875]),
    ("CumulD", 0, 10, [2, 5, 7], [0.8, 0.4, 1e-18]),
    ("Histogram", 0, 4, [1, 2, 3, 4]),
    ("Histogram", -1, 1.5, [0, 1e-17, 3, 0, 2]),
    ("Histogram", 1e9, 1e9 + 1, [1, 1, 1]),            # far from 0 the edges are no doubles
    ("Histogram", 1e15, 1e15 + 1, [1, 2, 1]),
    ("Relative", 0, 1, [0.5], [1]),
    ("Relative", 0, 10, [0, 2, 5, 10], [1, 3, 3, 0.5]),
    ("Relative", -2, 6, [-1, 0, 1, 3, 5], [1e-12, 4, 4, 0, 1e-9]),
    ("Relative", 0, 3, [1, 1, 2, 2], [1, 2, 0.25, 4]),
    ("Relative", 0, 1, [0.25, 0.75], [1e300, 2e300]),
    ("Ogive", 0, 4, [3, 1, 2]),
    ("Ogive", -1, 8, [5, 2, 5, 5]),
]
STEPS = [(0, 1, 0.25), (-3, 7, 2), (0, 1, 0.1)]

BY_VALUE, MAX_BY_PERCENTILE, MIN_BY_PERCENTILE, BY_PERCENTILE = range(4)
PERCENTILES = [1e-300, 1e-19, 0.015625, 0.3, 0.5, 0.625, 0.9, 1 - 2.0**-40]


def arguments(values):
    numbers = [repr(float(v)) for v in values if not isinstance(v, list)]
    groups = [" ".join(numbers)] * bool(numbers)
    groups += [" ".join(map(repr, map(float, v))) for v in values if isinstance(v, list)]
    return " ; ".join(groups)


def step_points(low, high, step):
    count = (high - low) / step
    assert count == int(count)
    return [low + i * step for i in range(int(count))] + [high]


def rows():
    for name, *given in FAMILIES:
        yield name, given, MAKE[name](*given)
    for given in STEPS:
        points = step_points(*given)
        yield "StepUniform", given, Points(points, [1] * len(points))


def write(file, head, lines):
    with open(os.path.join(HERE, file), "w") as out:
        out.write("# Generated by tests/reference/make_data.py; do not edit.\n# " + head + "\n")
        out.writelines("\t".join(line) + "\n" for line in lines)


def families():
    values, quantiles = [], []
    for name, given, d in rows():
        label = [name, arguments(given)]
        places = d.places()
        for x in places[:: max(1, len(places) // (40 if len(places) < 100 else 6))]:
            x = Q(float(x))
            if not d.support[0] <= x <= d.support[1]:
                continue
            values.append(label + ["-1", "0", "0", repr(float(x)), text(d.density(x)), text(d.lower(x)),
                                   text(d.upper(x))])
        for u in PERCENTILES:
            if not d.tie(Q(u)):
                quantiles.append(label + ["-1", "0", "0", repr(u), text(d.quantile(Q(u)))])
        low, high = d.support
        for mode, bounds in ((BY_VALUE, (low + (high - low) / 8, low + (high - low) * 13 / 16)),
                             (MAX_BY_PERCENTILE, (low + (high - low) / 4, Q(0.78125))),
                             (MIN_BY_PERCENTILE, (Q(0.640625), high)),
                             (BY_PERCENTILE, (Q(0.2421875), Q(0.9765625)))):
            given_bounds = [Q(float(b)) for b in bounds]
            by_percentile = (mode & 2, mode & 1)
            x = [d.quantile(b) if p else b for b, p in zip(given_bounds, by_percentile)]
            p = [b if q else d.lower(b) for b, q in zip(given_bounds, by_percentile)]
            mass = p[1] - p[0]
            if mass <= Q(1, 10**6) or any(q and d.tie(b) for b, q in zip(given_bounds, by_percentile)):
                continue
            bound_text = [str(mode)] + [repr(float(b)) for b in given_bounds]
            for at in places[1 :: max(1, len(places) // (6 if len(places) < 100 else 2))]:
                at = Q(float(at))
                if real(x[0]) < real(at) < real(x[1]):
                    inside = (d.lower(at) - p[0]) / mass
                    values.append(label + bound_text + [repr(float(at)), text(d.density(at) / mass), text(inside),
                                                        text(1 - inside)])
            for u in (0.125, 0.71875):
                at = p[0] + Q(u) * mass
                if not d.tie(at):
                    quantiles.append(label + bound_text + [repr(u), text(d.quantile(at))])
    head = "family\targuments\tboundsMode\tmin\tmax\t"
    write("data_values.tsv", head + "x\tdensity\tcumulative\tsurvival", values)
    write("data_quantiles.tsv", head + "u\tquantile", quantiles)


# q; policies by class; the last amount of the table when it is not the largest sum
GERBER = ([0.03, 0.04, 0.05, 0.06], [2, 3, 1, 2, 0, 0, 1, 2, 2, 1, 0, 2, 4, 2, 2, 0, 2, 2, 2, 1])
PORTFOLIOS = [
    (*GERBER, None),
    (*GERBER, 2),
    ([0.5], [3.0], None),                             # as far as the recursion converges
    ([0.9, 0.25], [2, 1, 1, 0], None),                # beyond
    ([0.1], [80.0], None),
    ([0.375], [60.0], None),                          # amplification 1e11: convolution
    ([0.5, 1.0, 0.0], [1, 1, 2, 1, 9, 9], None),      # certain claims of 4 units
    ([0.25], [0, 2], None),                           # only even amounts
    ([0.75, 0.0625], [1, 0, 0, 0, 0, 0, 0, 3], None),  # a gap below the mean
    ([0.125], [0, 0, 0, 0, 2, 0, 0, 0, 0, 3], None),   # gaps beyond the mean
    ([0.375], [0, 0, 20, 0, 20], None),               # the same by convolution
    ([0.0625], [0, 2, 0, 0, 3], 2),
    ([0.0625, 0.125], [3, 1, 2, 2], 1),
    ([0.125], [5, 4], 3),
]


def claims(q, policies, order):
    """Certain units and g: by convolution without a limit of the order, else by the recursion itself."""
    amounts = len(policies) // len(q)
    kinds = [(Q(q[i]), j + 1, int(policies[i * amounts + j])) for i in range(len(q)) for j in range(amounts)]
    certain = sum(j * n for p, j, n in kinds if p == 1)
    kinds = [(p, j, n) for p, j, n in kinds if 0 < p < 1 and n]
    mean = sum(p * j * n for p, j, n in kinds)
    if order is None:
        g = [Q(1)]
        for p, j, n in kinds:
            for _ in range(n):
                g = [(g[s] if s < len(g) else 0) * (1 - p) + (g[s - j] if s >= j else 0) * p for s in range(len(g) + j)]
        g.append(Q(0))
    else:
        g = [Q(1)]
        for p, j, n in kinds:
            g[0] *= (1 - p) ** n
        h = lambda j, k: j * (-1) ** (k - 1) * sum(n * (p / (1 - p)) ** k for p, i, n in kinds if i == j)
        table = {(j, k): h(j, k) for j in range(1, amounts + 1) for k in range(1, order + 1)}
        row, largest = 0, max(j for _, j, _ in kinds)
        while len(g) < 60 * largest and row < largest:
            s = len(g)
            g.append(sum(c * g[s - j * k] for (j, k), c in table.items() if j * k <= s) / s)
            if s > mean:
                g[s] = max(g[s], Q(0))
                row = row + 1 if g[s] == 0 else 0
    end = max(s for s in range(len(g)) if g[s] > 0) + 1
    return certain, g[:end] + [Q(0)]


def aggregate():
    lines = []
    for q, policies, order in PORTFOLIOS:
        certain, g = claims(q, policies, order)
        d = relative(0, len(g) - 1, range(len(g)), g)
        peak = max(range(len(g)), key=lambda s: g[s])
        for x in sorted({0, 1, 2, 3, peak, peak + 0.375, peak + 5, peak + 20.5, len(g) - 2}):
            x = Q(x)
            if x < len(g) - 1 and d.lower(x) + d.upper(x) == 1 and d.upper(x) > Q(1, 10**20):
                lines.append([" ".join(map(repr, map(float, q))), " ".join(map(repr, map(float, policies))),
                              str(order or 0), repr(float(certain + x)), text(d.density(x)), text(d.lower(x)),
                              text(m.log10(real(d.lower(x)))) if d.lower(x) else "-1.7976931348623157e308",
                              text(real(Q(certain)) + d.quantile(Q(0.8125)))])
    write("aggregate.tsv", "q\tpolicies\tK\tx\tdensity\tcumulative\tlog10 cumulative\tquantile at 0.8125", lines)


if __name__ == "__main__":
    families()
    aggregate()
