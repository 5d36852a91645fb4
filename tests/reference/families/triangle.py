"""The triangular distributions, their generalisation by powers, and the logarithmic forms."""
import mpmath as m

from reference import Family


def stages(low, left, right, high, p, q, mass_left, mass_level, mass_right, margin=0):
    """Power stages on [low, left] and [right, high], level between."""
    left_end = lambda x: mass_left * ((x - low) / (left - low)) ** p
    right_end = lambda x: mass_right * ((high - x) / (high - right)) ** q

    def part(x):
        if x < left:
            return left_end(x)
        if x > right:
            return mass_left + mass_level + (mass_right - right_end(x))
        return mass_left + (mass_level * (x - left) / (right - left) if right > left else 0)

    def rest(x):
        if x > right:
            return right_end(x)
        if x < left:
            return mass_right + mass_level + (mass_left - left_end(x))
        return mass_right + (mass_level * (right - x) / (right - left) if right > left else 0)

    def log_density(x):
        if x < left:
            return m.log(mass_left * p / (left - low)) + (p - 1) * m.log((x - low) / (left - low))
        if x < right:
            return m.log(mass_level / (right - left))
        return m.log(mass_right * q / (high - right)) + (q - 1) * m.log((high - x) / (high - right))

    def precise(f):
        def at(x):
            with m.workdps(400):  # 1 - F near the ends
                return f(max(low, min(x, high)))
        return at

    return Family((low, high), precise(part), precise(rest), precise(log_density), margin)


def triangle(low, mode, high, margin=0):
    return stages(low, mode, mode, high, 2, 2, (mode - low) / (high - low), 0, (high - mode) / (high - low), margin)


def triangle_alt(low, mode, high, low_p, high_p):
    """For a cumulative k at the mode, k ((low - a)/(mode - a))^2 = low_p gives the lower end a, likewise the upper."""
    def ends(k):
        s, t = m.sqrt(low_p / k), m.sqrt((1 - high_p) / (1 - k))
        return (low - s * mode) / (1 - s), (high - t * mode) / (1 - t)

    below, above = low_p, high_p
    with m.workdps(400):  # flanks of very different widths
        for _ in range(700):
            k = (below + above) / 2
            a, b = ends(k)
            below, above = (below, k) if (mode - a) / (b - a) < k else (k, above)
        a, b = ends(k)
    return triangle(a, mode, b, (b - a) / 256)


def split_triangle(low, medium, high, low_p, medium_p, high_p):
    s, t = m.sqrt(low_p / medium_p), m.sqrt((1 - high_p) / (1 - medium_p))
    a, b = (low - s * medium) / (1 - s), (high - t * medium) / (1 - t)
    return stages(a, medium, medium, b, 2, 2, medium_p, 0, 1 - medium_p, (b - a) / 256)


def gtu(low, left, right, high, p, q):
    c = p * q / ((left - low) * q + (right - left) * p * q + (high - right) * p)
    return stages(low, left, right, high, p, q, c * (left - low) / p, c * (right - left), c * (high - right) / q)


def logarithmic(base, support):
    return Family(support, lambda x: base.cdf(m.log(x)), lambda x: base.sf(m.log(x)),
                  lambda x: base.logpdf(m.log(x)) - m.log(x))


def log_triangle(low, mode, high):
    with m.workdps(100):
        return logarithmic(triangle(m.log(low), m.log(mode), m.log(high)), (low, high))


def log_uniform(low, high):
    a, b = m.log(low), m.log(high)
    return logarithmic(stages(a, a, b, b, 1, 1, 0, 1, 0), (low, high))


FAMILIES = {
    "Triangle": (triangle, [(0, 1, 3), (-2, -2, 5), (-2, 5, 5)], [(0, 1e-10, 1e100), (-1e-100, 0, 2e-100), (-1, 0, 0),
                                                                         (-1.5e308, -1e308, 1.5e308)]),
    "TriangleAlt": (triangle_alt, [(1, 2, 4, 0.1, 0.9), (-3, 0, 1, 0.25, 0.75)],
                    [(-1e-100, 0, 1e-100, 1e-6, 1 - 2**-30), (-1, 0, 1e6, 0.1, 0.9), (-1e4, 0, 1, 0.4, 0.6),
                     (-1, 0, 1e78, 0.4, 0.51)]),
    "LogTriangle": (log_triangle, [(1, 2, 5), (2, 2, 3)], [(1e-100, 1, 1e100), (3, 1e10, 1e10)]),
    "SplitTriangle": (split_triangle, [(1, 2, 4, 0.1, 0.5, 0.9), (-3, 0, 1, 0, 0.75, 0.875)],
                      [(-1e-100, 0, 1e-100, 1e-6, 0.5, 1 - 2**-30), (-1, 0, 1e6, 0.125, 0.25, 0.9)]),
    "GTU": (gtu, [(0, 1, 2, 4, 2, 3), (0, 1, 1, 4, 1.5, 1), (0, 0, 2, 4, 3, 2), (0, 1, 2, 2, 2, 1)],
            [(0, 1, 2, 4, 1e6, 1e3), (-1e100, 0, 0, 1e100, 1, 2), (-1.5e308, -1e308, 1e308, 1.5e308, 1, 3)]),
    "LogUniform": (log_uniform, [(1, 10), (0.5, 2)], [(1e-100, 1e100), (1, 1.0000001)]),
    "Reciprocal": (log_uniform, [(1, 10)], [(1e-300, 1e300)]),
}

TRUNCATED = [
    ("Triangle", (0, 1, 3), 0, 1e-100, 3e-100, 2e-100),
    ("Triangle", (0, 1, 3), 0, 3 - 2**-40, 4, 3 - 2**-42),
    ("TriangleAlt", (1, 2, 4, 0.1, 0.9), 3, 0.125, 0.875, 3),
    ("LogTriangle", (1, 2, 5), 2, 1 - 2**-45, 6, 4.9999995),
    ("SplitTriangle", (1, 2, 4, 0.1, 0.5, 0.9), 1, 1.5, 0.75, 2.25),
    ("GTU", (0, 1, 2, 4, 2, 3), 0, 4 - 2**-30, 5, 4 - 2**-32),
    ("LogUniform", (1, 10), 0, 1, 1 + 2**-40, 1 + 2**-41),
    ("Reciprocal", (1, 10), 0, 10 - 2**-40, 11, 10 - 2**-42),
]
