#!/usr/bin/python3
"""Confirms published.tsv by the search of make.py: every fit told there is the maximum, within its tolerances."""
import os

import numpy as np

from catalogue import FAMILIES
from make import HERE, best_fit


def observations(file):
    lines = [line for line in open(os.path.join(HERE, file)) if not line.startswith("#")]
    return np.array([float(line.split(",")[0]) for line in lines[1:]])


def main():
    lines = [line for line in open(os.path.join(HERE, "published.tsv")) if not line.startswith("#")]
    for name, file, *told, source in (line.rstrip("\n").split("\t") for line in lines[1:]):
        x, (params, tolerances) = observations(file), ([float(p) for p in field.split(",")] for field in told[:2])
        with np.errstate(all="ignore"):
            found = best_fit(name, params, x, np.random.default_rng(1))[0]
            if name == "Normal":  # fitted with the divisor n - 1
                found = np.mean(x), np.std(x, ddof=1)
            likelihood = np.sum(FAMILIES[name][0](x, *found))
        agrees = all(abs(p - f) <= t for p, f, t in zip(params, found, tolerances))
        if told[2] != "-":
            agrees = agrees and abs(float(told[2]) - likelihood) <= float(told[3])
        print("agrees" if agrees else "DIFFERS", name, file, *(f"{p:.8g}" for p in found), f"{likelihood:.7f}", told[2])


if __name__ == "__main__":
    main()
