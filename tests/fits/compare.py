#!/usr/bin/python3
"""Log-likelihoods of our fits beside those of fitdistrplus (with families of actuar), evd and SciPy, over the public data sets of
compare.R. Prints the tables of docs/fits.md.

    compare.py [--all]        --all: every pair of data set and family

Exits with 1 where a fit of ours is lower than another program's by more than 1e-3."""
import math
import pathlib
import subprocess
import sys
import warnings

import numpy as np
from scipy import stats

import library

SAME = 1e-3
SCIPY = {
    "Normal": (stats.norm, {}), "Logistic": (stats.logistic, {}), "ExtValueMax": (stats.gumbel_r, {}),
    "GEV": (stats.genextreme, {}), "Lognormal": (stats.lognorm, {"floc": 0}), "Gamma": (stats.gamma, {"floc": 0}),
    "Weibull": (stats.weibull_min, {"floc": 0}), "Expon": (stats.expon, {"floc": 0}),
    "LogLogistic": (stats.fisk, {"floc": 0}), "Pareto2": (stats.lomax, {"floc": 0}),
    "Dagum": (stats.burr, {"floc": 0}), "Pearson5": (stats.invgamma, {"floc": 0}),
    "Beta": (stats.beta, {"floc": 0, "fscale": 1}),
}


def read_sets():
    """{set: (left, right, weights)} and [set, family, package, log-likelihood]."""
    script = pathlib.Path(__file__).with_name("compare.R")
    try:
        text = subprocess.run(["Rscript", "--vanilla", script], capture_output=True, text=True, check=True).stdout
    except FileNotFoundError:
        sys.exit(print("skipped: R is not installed"))
    sets, peers = {}, []
    for what, *fields in (line.split("\t") for line in text.splitlines()):
        if what == "missing":
            sys.exit(print("skipped: R lacks", ", ".join(fields)))
        elif what == "values":
            sets[fields[0]] = (column(fields[2]), None, None)
        elif what == "censored":
            sets[fields[0]] = tuple(map(column, fields[1:]))
        elif fields[3] != "NA":
            peers.append([*fields[:3], float(fields[3])])
    return sets, peers


def column(text):
    return np.array([float(number) for number in text.split(",")])


def by_scipy(family, values):
    distribution, options = SCIPY[family]
    with warnings.catch_warnings(), np.errstate(all="ignore"):
        warnings.simplefilter("ignore")
        try:
            return float(np.sum(distribution.logpdf(values, *distribution.fit(values, **options))))
        except Exception:  # it has many ways to give up
            return math.nan


def compared(sets, peers):
    """Rows: set, n, family, fit, package, its log-likelihood."""
    best = {}
    for name, family, package, value in peers:
        if value > best.get((name, family), ("", -math.inf))[1]:
            best[name, family] = (package, value)
    families = sorted({(name, family) for name, family, *_ in peers},
                      key=lambda pair: (list(sets).index(pair[0]), pair[1]))
    for name, family in families:
        left, right, weights = sets[name]
        package, value = best[name, family]
        if right is None and family in SCIPY:
            scipy = by_scipy(family, left)
            # What differs by rounding is no better.
            if math.isfinite(scipy) and scipy > value + 1e-6:
                package, value = "SciPy", scipy
        fit = library.Fit(family, left, right, weights)
        yield name, len(left) if weights is None else int(weights.sum()), family, fit, package, value


def text(row):
    name, n, family, fit, package, value = row
    kind = "" if fit.kind == "regular" else f", {fit.kind}" + (f": {fit.limit}" if fit.limit else "")
    difference = fit.log_likelihood - value
    return (f"| {name} | {n} | {family}{kind} | {fit.log_likelihood:.4f} | {value:.4f} ({package}) | "
            f"{difference if abs(difference) > 5e-7 else 0:+.1e} |")


def main():
    rows = list(compared(*read_sets()))
    difference = {id(row): row[3].log_likelihood - row[5] for row in rows}
    shown = rows if "--all" in sys.argv else []
    for name in dict.fromkeys(row[0] for row in rows):
        if "--all" not in sys.argv:
            of_set = [row for row in rows if row[0] == name]
            shown.append(max(of_set, key=lambda row: abs(difference[id(row)])))
    print("| data | n | family | ours | best of the others | difference |\n| --- | ---: | --- | ---: | ---: | ---: |")
    print("\n".join(map(text, shown)))
    above = [row for row in rows if difference[id(row)] > SAME]
    below = [row for row in rows if difference[id(row)] < -SAME]
    print(f"\n{len(rows)} fits to {len({row[0] for row in rows})} data sets: {len(rows) - len(above) - len(below)} "
          f"agree within {SAME}; higher than all others: {len(above)}; lower than one: {len(below)}.")
    for heading, which in (("Higher", above), ("Lower", below)):
        if which:
            print(f"\n{heading} by more than {SAME}:\n")
            print("\n".join(map(text, which)))
    return len(below) > 0


if __name__ == "__main__":
    sys.exit(main())
