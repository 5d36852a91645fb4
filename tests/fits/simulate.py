#!/usr/bin/python3
"""What the intervals of fits hold, and at which level their tests reject, by simulation. Prints tables for docs/fits.md.

    simulate.py coverage [SAMPLES [BOOTSTRAPPED]]   nominal 90 %: three kinds, a parameter and the 0.95 quantile
    simulate.py levels [SAMPLES]                    p-values of tests under the hypothesis, which should be uniform

Exits with 1 where a p-value below 1e-4 says that the level of a test is wrong."""
import math
import sys

import numpy as np
from scipy import stats

import library

# family: a sampler, the parameter whose interval is wanted, its true value, the true 0.95 quantile
TRUTHS = {
    "Normal": (lambda r, n: r.normal(10, 2, n), 1, "sigma", 2, stats.norm(10, 2).ppf(0.95)),
    "Expon": (lambda r, n: r.exponential(2, n), 0, "beta", 2, stats.expon(scale=2).ppf(0.95)),
    "Gamma": (lambda r, n: r.gamma(2, 3, n), 0, "alpha", 2, stats.gamma(2, scale=3).ppf(0.95)),
    "Weibull": (lambda r, n: 2 * r.weibull(1.5, n), 0, "alpha", 1.5, 2 * (-math.log(0.05)) ** (1 / 1.5)),
    "Poisson": (lambda r, n: r.poisson(4.5, n), 0, "lambda", 4.5, stats.poisson(4.5).ppf(0.95)),
}
METHODS = {"Wald": library.WALD, "profile": library.PROFILE, "bootstrap": library.BOOTSTRAP}
REPLICATES = 199


def percent(hits, of):
    share = hits / of
    return f"{100 * share:.1f} ± {100 * math.sqrt(share * (1 - share) / of):.1f}"


def coverage(samples=2000, bootstrapped=300):
    print("| family | of | n | " + " | ".join(METHODS) + " |\n| --- | --- | ---: |" + " --- |" * len(METHODS))
    for family, (draw, place, name, value, quantile) in TRUTHS.items():
        for target, which, label, truth in ((library.PARAMETER, place, name, value),
                                            (library.QUANTILE, 0.95, "q(0.95)", quantile)):
            for n in (20, 50, 200):
                shares = []
                for method in METHODS.values():
                    count = bootstrapped if method == library.BOOTSTRAP else samples
                    generator = np.random.default_rng([n, place])
                    hits = unknown = 0
                    for seed in range(count):
                        fit = library.Fit(family, draw(generator, n))
                        lower, upper = fit.interval(target, which, method, 0.9, REPLICATES, seed)
                        hits += lower <= truth <= upper
                        unknown += math.isnan(lower) or math.isnan(upper)
                    shares.append("none" if unknown == count
                                  else percent(hits, count) + (f" ({unknown} NaN)" if unknown else ""))
                print(f"| {family} | {label} | {n} | " + " | ".join(shares) + " |", flush=True)


# family: a sampler, the tests
HYPOTHESES = {
    "Normal": (lambda r: r.normal(10, 2, 50), "AD"),
    "Gamma": (lambda r: r.gamma(2, 3, 50), "AD"),
    "Weibull": (lambda r: 2 * r.weibull(1.5, 50), "AD"),
    "Poisson": (lambda r: r.poisson(4, 50), "AD chi-square"),
    "NegBin": (lambda r: r.negative_binomial(3, 0.4, 50), "AD chi-square"),
}
STATISTICS = {"AD": library.ANDERSON_DARLING, "chi-square": library.CHI_SQUARE}


def levels(samples=2000):
    """Ties of discrete statistics count against the hypothesis's rejection: p may be too large, never too small."""
    print("| family | test | p < 0.01 | p < 0.05 | p < 0.1 | uniform, 10 bins: p | failed refits |\n"
          "| --- | --- | --- | --- | --- | --- | --- |")
    wrong = False
    for family, (draw, tests) in HYPOTHESES.items():
        for test in tests.split():
            generator = np.random.default_rng(50)
            results = [library.Fit(family, draw(generator)).test(STATISTICS[test], 99, seed)
                       for seed in range(samples)]
            p = np.array([result[0] for result in results])
            # p is a multiple of 0.01: "at most" is what a user of the level compares
            shares = [percent(np.sum(p < level + 1e-9), samples) for level in (0.01, 0.05, 0.1)]
            bins = np.bincount(np.minimum(np.ceil(p * 10 - 1e-9).astype(int) - 1, 9), minlength=10)
            uniform = stats.chisquare(bins).pvalue
            wrong |= uniform < 1e-4
            failed = sum(result[1] for result in results)
            print(f"| {family} | {test} | {' | '.join(shares)} | {uniform:.3f} | {failed} |", flush=True)
    return wrong


if __name__ == "__main__":
    if len(sys.argv) < 2 or sys.argv[1] not in ("coverage", "levels"):
        sys.exit(__doc__)
    numbers = [int(text) for text in sys.argv[2:]]
    sys.exit(1 if (coverage if sys.argv[1] == "coverage" else levels)(*numbers) else 0)
