#!/usr/bin/python3
"""The best log-likelihoods of fits, found independently of the library: writes values.tsv and truncated.tsv.

Observations are drawn by the library (seed, true parameters); densities.py tells the families' log-densities,
catalogue.py their coordinates and parameter sets. The maximum is searched from the truth and from places around it by
Nelder-Mead, BFGS and Nelder-Mead again. The densities are checked against the 50-digit definitions of ../families.
Run: tests/reference/fits/make.py LIBRARY.so [FAMILY ...]; with families only their rows of values.tsv change.
"""
import ctypes
import importlib
import os
import sys
import zlib

import mpmath as m
import numpy as np
from scipy.optimize import minimize

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, os.path.join(HERE, "..", "families"))
from catalogue import EXACT, FAMILIES, TRUNCATED, VIA

COUNT = 1000
KINS = [name[:-3] for name in sorted(os.listdir(os.path.join(HERE, "..", "families")))
        if name.endswith(".py") and name not in ("make.py", "reference.py")]
DEFINITIONS = {name: told[0] for kin in KINS for name, told in importlib.import_module(kin).FAMILIES.items()}
HEAD = ["family", "params", "count", "seed", "true_log_likelihood", "best_log_likelihood", "whole_log_likelihood",
        "best_params"]


def draw(library, name, parameters, seed, bounds=None):
    out = (ctypes.c_double * COUNT)()
    library.PralSetRandomSeed(ctypes.c_uint(seed))
    function = getattr(library, f"Pral{name}Array_Core")
    function.restype = ctypes.c_bool
    references = [None] * 3
    if bounds:
        references = [ctypes.byref(cell) for cell in (ctypes.c_int(0), *map(ctypes.c_double, bounds))]
    if not function(out, COUNT, *map(ctypes.c_double, parameters), None, *references, None):
        raise ValueError(f"{name}{parameters} was refused")
    return np.array(out)


class Coordinates:
    """Parameters as functions of unbounded coordinates that are 0 at `start`."""

    def __init__(self, kinds, start, x):
        self.kinds, self.start = [kind.rstrip("#") for kind in kinds.split()], start
        self.whole = [kind.endswith("#") for kind in kinds.split()]
        self.low, self.high, self.spread = np.min(x), np.max(x), np.subtract(*np.percentile(x, (75, 25)))

    def parameter(self, kind, start, t):
        t = np.clip(t, -40, 40)
        if kind == "+":
            return start * np.exp(t)
        if kind == "r":
            return start + t
        if kind == "L":
            return start + self.spread * t
        if kind[0] == ">":
            return float(kind[1:]) + (start - float(kind[1:])) * np.exp(t)
        if kind[0] == "0":
            return float(kind[1]) / (1 + (float(kind[1]) / start - 1) * np.exp(-t))
        if kind == "lo":
            return self.low - (self.low - start) * np.exp(t) if start < self.low else self.low
        beyond = start - self.high
        return self.high + (max(beyond, 1) if kind == "n" else beyond) * np.exp(t)

    def __call__(self, t, held={}):
        free = iter(t)
        return [held[i] if i in held else self.parameter(kind, start, next(free))
                for i, (kind, start) in enumerate(zip(self.kinds, self.start))]


def search(cost, dimension, generator):
    """The best point, and how many of the starts led to it."""
    if dimension == 0:
        return (cost(()), ()), 1
    ends = []
    for spread in (0, 0.1, 0.3, 0.3, 0.6, 1):
        t = generator.normal(size=dimension) * spread
        if not np.isfinite(cost(t)):
            continue
        simplex = np.vstack([t, t + 0.1 * np.eye(dimension)])
        t = minimize(cost, t, method="Nelder-Mead", options={"initial_simplex": simplex, "maxfev": 4000}).x
        t = minimize(cost, t, method="BFGS", options={"gtol": 1e-5}).x
        options = {"initial_simplex": np.vstack([t, t + 0.01 * np.eye(dimension)]), "xatol": 1e-7, "fatol": 1e-8,
                   "maxiter": 2000, "maxfev": 4000}
        found = minimize(cost, t, method="Nelder-Mead", options=options)
        ends.append((found.fun, tuple(found.x)))
    best = min(ends)
    return best, sum(value < best[0] + 1e-4 for value, _ in ends)


def best_fit(name, parameters, x, generator):
    """Own parameters at the maximum and at the maximum with whole counts (or None), and a remark."""
    if name in EXACT:
        return EXACT[name](x), None, ""
    density, kinds, _ = FAMILIES[name]
    if name in VIA:
        kinds, start, own = VIA[name]
        return maximum(density, kinds, start(*parameters), x, generator, own)
    return maximum(density, kinds, parameters, x, generator)


def maximum(density, kinds, start, x, generator, own=lambda x, *searched: searched):
    coordinates, (values, weights) = Coordinates(kinds, start, x), np.unique(x, return_counts=True)

    def cost(t, held={}):
        found = -np.sum(weights * density(values, *own(x, *coordinates(t, held))))
        return found if np.isfinite(found) else np.inf

    (value, t), agreeing = search(cost, len(coordinates.kinds), generator)
    best = coordinates(t)
    remark = "" if agreeing > 2 else f"only {agreeing} starts agree"
    if any(abs(u) > 6 and not (u < 0 and kind in ("lo", "hi", "n")) for u, kind in zip(t, coordinates.kinds)):
        remark += f" far from the truth: {np.array(best)}"
    whole = None
    for i in np.flatnonzero(coordinates.whole):
        least = coordinates.high if coordinates.kinds[i] == "n" else 1
        wholes = {max(np.floor(best[i]) + step, least) for step in (-1, 0, 1, 2)}
        fits = [(search(lambda u: cost(u, {i: k}), len(t) - 1, generator)[0], k) for k in wholes]
        (_, u), k = min(fits)
        whole = own(x, *coordinates(u, {i: k}))
    return own(x, *best), whole, remark


def check(name, density, parameters, x):
    """The density against the definition, at a few of the observations."""
    if name not in DEFINITIONS:
        return "no definition to compare with"
    definition = DEFINITIONS[name](*(m.mpf(float(p)) for p in parameters))
    points = np.quantile(x, (0.01, 0.3, 0.5, 0.8, 0.99), method="nearest")
    exact = np.array([float(definition.logpdf(m.mpf(point))) for point in points])
    error = np.max(np.abs(density(points, *parameters) - exact) / np.maximum(1, np.abs(exact)))
    return "" if error < 1e-8 else f"differs from its definition by {error:.1e}"


def rows(library, name):
    density, _, sets = FAMILIES[name]
    for seed, parameters in enumerate(sets, zlib.crc32(name.encode()) % 10**6):
        x = draw(library, name, parameters, seed)
        likelihood = lambda own: "" if own is None else f"{np.sum(density(x, *own)):.6f}"
        remark = check(name, density, parameters, x)
        best, whole, found = best_fit(name, parameters, x, np.random.default_rng(seed))
        row = [name, ",".join(repr(float(p)) for p in parameters), str(COUNT), str(seed), likelihood(parameters),
               likelihood(best), likelihood(whole), ",".join(f"{p:.9g}" for p in best)]
        print(*row[:2], *row[4:], remark, found, flush=True)
        if not float(row[5]) >= float(row[4]):
            raise ValueError("the maximum is below the truth")
        yield row


def truncated_rows(library):
    for name, (kinds, cumulative, cases) in TRUNCATED.items():
        for seed, (parameters, low, high) in enumerate(cases, zlib.crc32(name.encode()) % 10**6):
            ends = -sys.float_info.max if low == 1e100 else low, sys.float_info.max if high == 1e100 else high
            x = draw(library, name, parameters, seed, ends)
            density = lambda x, *p: FAMILIES[name][0](x, *p) - np.log(cumulative(ends[1], *p) - cumulative(ends[0], *p))
            best, _, remark = maximum(density, kinds, parameters, x, np.random.default_rng(seed))
            row = [name, ",".join(repr(float(p)) for p in parameters), repr(low), repr(high), str(COUNT), str(seed),
                   *(f"{np.sum(density(x, *p)):.6f}" for p in (parameters, best)), ",".join(f"{p:.9g}" for p in best)]
            print(*row[:4], *row[6:], remark, flush=True)
            yield row


def main():
    library, path = ctypes.CDLL(os.path.abspath(sys.argv[1])), os.path.join(HERE, "values.tsv")
    table = {}
    if os.path.exists(path):
        for line in list(open(path))[2:]:
            table.setdefault(line.split("\t")[0], []).append(line.rstrip("\n").split("\t"))
    for name in sys.argv[2:] or FAMILIES:
        if hasattr(library, f"Pral{name}Array_Core"):
            with np.errstate(all="ignore"):
                table[name] = list(rows(library, name))
        else:
            print("not in the library:", name)
    write("values.tsv", HEAD, (row for name in FAMILIES for row in table.get(name, [])))
    if not sys.argv[2:]:
        with np.errstate(all="ignore"):
            write("truncated.tsv", [*HEAD[:2], "trunc_min", "trunc_max", *HEAD[2:6], HEAD[-1]], truncated_rows(library))


def write(name, head, rows):
    rows = list(rows)
    with open(os.path.join(HERE, name), "w") as out:
        out.write("# Generated by tests/reference/fits/make.py; do not edit.\n" + "\t".join(head) + "\n")
        out.writelines("\t".join(row) + "\n" for row in rows)


if __name__ == "__main__":
    main()
