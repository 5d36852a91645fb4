"""The companion as its users meet it: runs pral with the command lines below and looks at what it writes.

check_pral.py PROGRAM...: PROGRAM may begin with an emulator. Works in tests/, where the CSV file is found.
Expected values are known in closed form or were computed by mpmath with 40 digits; streams by NumPy.
"""

import csv
import io
import json
import math
import os
import re
import shlex
import subprocess
import sys

PROGRAM = sys.argv[1:]
COLUMN = "@cli/losses.csv:"
LOSSES, KICKS, FIRES = "fit cli/losses.csv", "fit ../examples/horse_kicks.csv", "fit ../examples/danish_fire_losses.csv"

# Command line; column that is looked at; its values; how far they may be off, unless 2e-15.
VALUES = [
    ("quantile Normal 0 1 -u 0.975", "quantile", [1.9599639845400542]),
    ("quantile Normal 0 1 -u 0.975 --min 0", "quantile", [2.2414027276049454]),
    ("quantile -u 0.25 -u 0.5,0.75 Uniform -2 -1", "quantile", [-1.75, -1.5, -1.25]),
    ("quantile Uniform -.5 .5 -u .5 --shift -10", "quantile", [-10]),
    ("quantile Uniform 0 10 -u 0.5 --min-percentile 0.2 --max-percentile 0.4", "quantile", [3]),
    ("quantile Uniform 0 10 -u 0,1 --min 2 --max-percentile 0.4", "quantile", [2, 4]),
    ("quantile Uniform 0 10 -u 0,1 --min-percentile 0.3 --max inf", "quantile", [3, 10]),
    (f"quantile uniform 0 1 -u {COLUMN}probability", "quantile", [0.2, 0.4, 0.6, 0.8]),
    ("quantile Normal 0 1 -u 0 -u 1", "quantile", [-math.inf, math.inf]),
    ("prob Normal 0 1 -x 1.96 --cumulative", "cumulative", [0.97500210485177957]),
    ("prob Normal 0 1 -x -40 --cumulative --log10", "log10_cumulative", [-349.43700645934584]),
    ("prob Normal 0 1 -x 1 -x 2,3 --joint", "joint_density", [5.7898701535918517e-5]),
    ("prob Normal 0 1 -x 1 -x 2 --joint --log10", "log10_joint_density", [-1.8839160731162446]),
    ("prob Normal 0 1 -x -inf -x inf --cumulative", "cumulative", [0, 1]),
    ("prob Uniform 0 1 -x 2 --log10", "log10_density", [-math.inf]),
    ("prob Uniform 0 4 -x -8,-7 --shift -10 --cumulative", "cumulative", [0.5, 0.75]),
    ("prob Uniform 0 4 -x -8,-7 --shift -10 --cumulative", "x", [-8, -7]),
    (f"prob Uniform -4 4 -x {COLUMN}3", "density", [0.125] * 4),
    (f"prob Uniform 0 10 -x {COLUMN}few", "x", [7, 8]),  # a table may end before others
    ("prob Normal 0 1 10 --survival", "survival", [7.619853024160526066e-24]),
    ("prob Normal 0 1 40 -inf --survival --log", "log_survival", [-804.60844201375378817, 0]),
    ("prob Normal 0 1 -x 1,2,3 --survival --joint", "joint_survival", [4.8723597001514137951e-6]),
    ("prob Normal 0 1 -x 1 -x 2 --joint --log", "log_joint_density", [-4.3378770664093454836]),
    # Densities of 1e200 come from their logarithms, which have three digits less behind the point.
    ("prob 'Mixture(0.5: Uniform(0, 1e-200), 0.5: Uniform(1, 1e200))' 0,0,2,2 --joint", "joint_density", [0.0625], 2e-13),
    ("prob Uniform 0 1e-200 -x 0,0,0 --joint --log10", "log10_joint_density", [600]),
    ("prob 'Gamma(2, 3) within [1, 9] + 10' 12 15", "x", [12, 15]),
    ("prob 'Gamma(2, 3) within [1, 9] + 10' 12 15 --cumulative", "cumulative", [0.13181215134932313363, 0.59731657510017887036]),
    ("prob gamma 2 3 12 15 --min 1 --max 9 --shift 10 --survival", "survival", [0.86818784865067686637, 0.40268342489982112964]),
    ("prob Poisson 3 2 --min 2", "density", [0.27975441674645920805]),  # both ends are kept
    ("prob Uniform 0 4 --csv cli/losses.csv --column few --skip-missing --shift 5 --cumulative", "cumulative", [0.5, 0.75]),
    ("quantile uniform 0 1 --csv cli/losses.csv --column probability", "quantile", [0.2, 0.4, 0.6, 0.8]),
    ("quantile Normal 0 1 1e-20,1e-300 --upper", "quantile", [9.2623400897984075737, 37.047096299361199237]),
    ("quantile Normal 0 1 -1000 --log", "quantile", [-44.61574773196940302]),
    ("quantile Normal 0 1 -1000 -inf 0 --log --upper", "quantile", [44.61574773196940302, math.inf, -math.inf]),
    ("sample Uniform 0 1 -n 3 --stream 42", "value", [0.08607763073528474, 0.14155732377913244, 0.27009303504774695]),
    ("sample Uniform 0 1 -n 3 --stream 42/7", "value", [0.014469002847556589, 0.07336110440150223, 0.0565375011336019]),
    ("sample 'Uniform(0, 1) + 0' -n 2 --stream 42/7/9", "value", [0.9561481682965401, 0.319656625179105]),
    ("sample Uniform 0 1 --stream 18446744073709551615/4294967294", "value", [0.41223745940801015]),
    ("sample Uniform 3 3 -n 2", "value", [3, 3]),
    ("sample Uniform 3 4 -n 0 --latin-hypercube", "value", []),
    ("sample Uniform 3 4 -n 0", "value", []),
]

# What stands on the standard input; command line; the values of x.
PIPED = [
    ("1 2\n3\n", "prob Normal 0 1", [1, 2, 3]),
    ("value\n  -1.5\n 2\n", "prob Normal 0 1 -", [-1.5, 2]),
    ("4\n", "prob 'Normal(0, 1)' -inf -", [-math.inf, 4]),
    ("a;b\n1,5;2,5\n3,75;4,5\n", "prob Normal 0 1 --column b", [2.5, 4.5]),
    ("5\n\n6\n", "prob Normal 0 1 -x 3,4 -x - --header no --skip-missing", [3, 4, 5, 6]),
    ("inf 1e999\n", "prob Normal 0 1", None),
    (" \n", "prob Normal 0 1", None),
]

# Distribution; fields of its description.
DESCRIBED = [
    ("Gamma 2 3", {"distribution": "Gamma(2, 3)", "kind": "continuous", "parameters/beta": 3, "support/upper": math.inf,
                   "mean": 6, "variance": 18, "skewness": 2**0.5, "excess_kurtosis": 3, "mode": 3, "median": 5.0350409700499819602,
                   "risk/0/value_at_risk": 0.44566422075979784792, "risk/0/expected_shortfall": 0.29339543580294687077,
                   "risk/1/value_at_risk": 1.0660845320959861901, "risk/1/expected_shortfall": 0.68919345098301241506,
                   "risk/2/value_at_risk": 14.231593555171731901, "risk/2/expected_shortfall": 17.753889996947937958,
                   "risk/3/value_at_risk": 19.915056203981433742, "risk/3/expected_shortfall": 23.307811077453499348}),
    ("'Gamma(2, 3) within [1, 9]' --limit 5,9", {
        "mean": 4.5382598645277840062, "variance": 4.5661856910633794261, "standard_deviation": 2.1368635171819887257,
        "skewness": 0.27049444737785394739, "excess_kurtosis": -0.97415356068350167822, "support/lower": 1,
        "limited_means/0/mean": 3.8318150431370656461, "limited_means/1/mean": 4.5382598645277840062}),
    ("Cauchy 0 1", {"mean": math.nan, "variance": math.nan, "risk/1/expected_shortfall": -math.inf, "median": 0}),
    ("Pareto 1.5 2 --shift 1", {"mean": 7, "variance": math.inf, "standard_deviation": math.inf, "skewness": math.nan}),
    ("Discrete 1,2,3 0.25,0.5,0.25", {"parameters/values/2": 3, "mean": 2, "variance": 0.5, "mode": 2, "skewness": 0}),
]

# Command line; the best families; numbers of the first. Closed forms; LognormalE as R's fitdistrplus 1.1.8 has it.
FITS = [
    (f"{KICKS} --top 1", ["Poisson"], {"lambda": 0.61, "log_likelihood": -206.10672147175408, "AIC": 414.21344294350816,
                                       "AICc": 414.21364496371018, "BIC": 417.51176031005620}),
    (f"{FIRES} --dist expon --column loss --dist LognormalE", ["LognormalE", "Expon"],
     {"mu": 0.78695007983834892, "sigma": 0.71655451311764233, "AICc": 8119.8004678173928, "BIC": 8131.1571205339546}),
    (f"{FIRES} --dist LognormalB", ["LognormalB"], {"AICc": 8119.8004678173928, "BIC": 8131.1571205339546}),
    (f"{FIRES} --dist Expon --min 1", ["Expon"], {"beta": 2.3850883036455930, "log_likelihood": -4050.6347332453082}),
    (f"{FIRES} --dist Expon --shift", ["Expon"], {"shift": 1, "AIC": 8105.27}),
    (f"{FIRES} --dist Cauchy --dist Normal --dist Uniform", ["Cauchy", "Normal", "Uniform"], {"weight": 1}),
    (f"{LOSSES} --dist Uniform", ["Uniform"], {"min": 2021, "max": 2024}),
    (f"{LOSSES} --dist Uniform --column probability", ["Uniform"], {"min": 0.2, "max": 0.8}),
    (f"{LOSSES} --dist Uniform --column 3 --max inf", ["Uniform"], {"log_likelihood": 4 * math.log(1 / 0.6)}),
]

STEEL = "225 171 198 189 189 135 162 135 117 162"  # Lockhart and Stephens (1994), sample A
LIVES = "74 57 48 29 502 12 70 21 29 386 59 27 153 26 326"  # sample B, whose likelihood has no maximum
HOURS = "23 261 87 7 120 14 62 47 225 71 246 21 42 20 5 12 120 11 3 14 71 11 14 11 16 90 1 16 52 95"  # Proschan (1963)
MEAN, DEVIATION = 1788 / 30, 1.6448536269514722 * 1788 / 30**1.5

# What stands on the standard input of "fit -"; options; fields of the first fit in JSON; how far they may be off. Published
# numbers and closed forms: of the exponential, most of them.
FITTED = [
    (STEEL, "--dist Weibull3", {"maximum": "regular", "parameters/Theta": 99.0109128, "parameters/Alpha": 2.37546894,
                                "parameters/Beta": 78.2400481, "errors/Theta": 39.8924, "log_likelihood": -48.4513883}, 1e-4),
    (STEEL, "--dist Weibull3 --method spacings", {"parameters/Theta": 67.493, "parameters/Alpha": 2.8335}, 1e-3),
    (STEEL, "--dist Weibull --hold ALPHA=2", {"parameters/alpha": 2, "parameters/beta": 171.21302520535, "free": 1,
                                              "errors/alpha": 0, "errors/beta": 171.21302520535 / 40**0.5}, 1e-4),
    (LIVES, "--dist Weibull3 --cell 1", {"maximum": "cells", "cell": 1, "parameters/Theta": 11.5, "parameters/Alpha": 0.68785,
                                         "parameters/Beta": 84.831}, 2e-3),
    ("2 4", "--dist Expon --method spacings", {"parameters/beta": 3.915}, 1e-4),
    ("2,3 4,1", "--dist Expon --weights 2", {"parameters/beta": 2.5, "data/count": 4, "data/rows": 2}, 1e-9),
    ("2, 4,4", "--dist Expon --right 2", {"parameters/beta": 6}, 1e-6),  # 2 and more; one end for all that was waited
    ("-inf,3 3,", "--dist Expon --censored 2", {"parameters/beta": 3 / math.log(2)}, 1e-5),
    ("-1,0,1 ,,9 0,1,2 1,2,1", "--dist Normal --right 2 --weights 3 --skip-missing",
     {"parameters/mu": 0.5, "data/missing": 1, "data/count": 4}, 1e-6),
    ("0,109 1,65 2,22 3,3 4,1", "--dist Poisson --weights 2",
     {"parameters/lambda": 0.61, "log_likelihood": -206.10672147175408, "AICc": 414.23364496371018}, 1e-9),
    (HOURS, "--dist Expon --interval 0.9 --interval-method wald",
     {"parameters/beta": MEAN, "intervals/beta/0": MEAN - DEVIATION, "intervals/beta/1": MEAN + DEVIATION}, 1e-5),
    (HOURS, "--dist Expon --test ad", {"test/statistic": 1.1631222, "test/replicates": 999, "test/failed": 0}, 1e-6),
    (HOURS, "--dist Expon --test ad", {"test/p": 0.0723}, 0.5),  # four of its errors by simulation
    (HOURS, "--dist Expon --test ks --replicates 99", {"test/statistic": 0.2131677, "test/replicates": 99}, 1e-6),
    (HOURS, "--dist Expon --test cvm --replicates 99", {"test/statistic": 0.2135823}, 1e-6),
]

# Command line; exit code; what stands on the standard error.
REFUSALS = [
    ("sample Normal 0 -1", 1, "Normal: sigma must be >= 0\n"),
    ("sample Normal 0 -1 --seed 1", 1, "Error: sigma must be >= 0\n"),
    ("prob Normal 0 nan -x 1", 1, "Normal: sigma must be a number\n"),
    ("quantile Normal 0 1 -u 1.5", 2, "between 0 and 1, not at 1.5"),
    ("sample Normal 0 1 --min 1 --max 0", 1, "no probability lies between the bounds\n"),
    ("", 2, "a command is wanted"),
    ("frobnicate", 2, "there is no command frobnicate"),
    ("sample Norml 0 1", 2, 'there is no family "Norml"; did you mean Normal?'),
    ("sample Normal 0", 2, "Normal takes 2 parameters (mu, sigma), not 1"),
    ("sample Normal 0 1x", 2, 'sigma: "1x" is not a number'),
    ("sample Normal 0 1 -n 2.5", 2, "a whole number"),
    ("sample Normal 0 1 --seed -1", 2, "a whole number"),
    ("sample Normal 0 1 --format xml", 2, "table, csv or json"),
    ("sample Normal 0 1 --min 0 --min-percentile 0.1", 2, "not both"),
    ("quantile Normal 0 1", 2, "the standard input is empty"),
    ("quantile Normal 0 1 nan", 2, "not at nan"),
    ("quantile Normal 0 1 0.5 --log", 2, "is 0 at most, not 0.5"),
    ("prob 'Gamma(2, 3' 1", 2, "expected ')' at character 11"),
    ("prob 'Gamna(2, 3)' 1", 2, 'there is no family "Gamna"; did you mean Gamma'),
    ("prob 'Gamma(2, -3)' 1", 1, "Gamma: beta must be >= 0\n"),
    ("prob 'No\x1b[1m(2)' 1", 2, "expected"),
    ("prob Normal 0 1 1 -x 1", 2, "in one place only"),
    ("prob Normal 0 1 1 --column 2", 2, "are for --csv FILE and the standard input"),
    ("prob Normal 0 1 1 --cumulative --survival", 2, "only one of them"),
    ("prob Normal 0 1 1 --log --log10", 2, "only one of them"),
    ("prob Normal 0 1 --csv cli/losses.csv --column few", 2, "(--skip-missing leaves them out)"),
    ("sample 'Normal(0, 1)' 2", 2, "is the whole distribution"),
    ("sample Normal 0 1 2", 2, "Normal takes 2 parameters (mu, sigma), not 3"),
    ("sample 'Normal(0, 1)' --seed 1", 2, "--stream draws from any distribution"),
    ("sample Normal 0 1 --seed 1 --stream 1", 2, "only one of them"),
    ("sample Normal 0 1 --stream worker", 2, "a seed"),
    ("sample Normal 0 1 --stream 18446744073709551616", 2, "a seed"),
    ("sample Normal 0 1 --stream 1//2", 2, 'not ""'),
    ("sample Normal 0 1 --stream 1/-2", 2, 'not "-2"'),
    ("sample Normal 0 1 --stream 1/4294967295", 2, "below 4294967295"),
    ("sample Normal 0 1 -n 1e12 --latin-hypercube", 2, "100000000 values are the most"),
    ("sample Normal 0 1 -n 1e99", 2, "a whole number"),
    ("describe Gamma --limit 5", 2, "Gamma takes 2 parameters (alpha, beta), not 0"),
    ("quantile Normal 0 1 -u -1", 2, "between 0 and 1"),
    ("prob Normal 0 1 -x @cli/absent.csv", 2, "cannot read the file cli/absent.csv"),
    (f"prob Normal 0 1 -x {COLUMN}gain", 2, "has no column gain"),
    ("list --kind frob", 2, "the kinds are"),
    (f"{LOSSES} --column 'loss, gross'", 2,
     "cli/losses.csv:5: the cell of column loss, gross is empty; 1 of 4 cells are missing"),
    (f"prob Uniform -4 4 -x '{COLUMN}loss, gross'", 2, "only at its end may a table have empty cells"),
    (f"{LOSSES} --min nan", 2, "--min: a number is wanted, not nan"),
    ("sample Normal 0 1 --shift nan", 2, "--shift: a number is wanted, not nan"),
    (f"{KICKS} --min inf", 2, "--min must be below --max"),
    (f"{KICKS} --dist Poisson --hold rate=2", 2, "a parameter of Poisson (lambda), not rate=2"),
    (f"{KICKS} --hold lambda=2", 2, "goes with one --dist"),
    (f"{KICKS} --interval 90", 2, "between 0 and 1"),
    (f"{KICKS} --test anderson", 2, "ks, cvm, ad or chisq"),
    (f"{KICKS} --dist Poisson --test ks --replicates 0", 2, "a whole number"),
    (f"{LOSSES} --weights 3 --test ks", 2, "exact values without weights"),
    (f"{KICKS} --cell -1", 2, "a positive number"),
    (f"{KICKS} --plot --json", 2, "json has what"),
    (f"{LOSSES} --weights 2", 2, "cli/losses.csv:5: the cell of column loss, gross is empty; 1 of 4 rows"),
    (f"{LOSSES} --weights 2 --skip-missing", 2, "cli/losses.csv:4: weights must be"),
    (f"{LOSSES} --right probability", 2, "cli/losses.csv:2: the left end of an interval must not be above"),
    (f"{LOSSES} --column gain", 2, "has no column gain"),
    (f"{FIRES} --column date", 2, 'danish_fire_losses.csv:2: "1980-01-03" is not a number'),
    ("fit ../LICENSE", 2, "LICENSE"),
    (f"{LOSSES} --column limit --kind continuous", 2, "all values are 5,"),
    (f"{LOSSES} --column 3 --kind discrete", 2, "0.2 is not a whole number"),
    (f"{LOSSES} --kind data", 2, "continuous or discrete is wanted"),
    (f"{LOSSES} --kind continuous --dist Normal", 2, "only one of them"),
    (f"{LOSSES} --dist Discrete", 2, "Discrete cannot be fitted"),
    (f"{LOSSES} --dist Norml", 2, "did you mean Normal?"),
    (f"{LOSSES} --rank best", 2, "AIC, AICc or BIC is wanted"),
    (f"{LOSSES} --top 0", 2, "a whole number, 1 or more"),
    (f"{KICKS} --shift", 2, "only continuous families are shifted"),
    (f"{KICKS} --dist ZTPoisson", 1, "0 - in input data\n"),
    (f"{FIRES} --dist Normal --dist Gamma --min 2", 2, "danish_fire_losses.csv:2: an observation lies outside"),
]

# What stands on the standard input of "fit -"; options; the column's place, count, least, greatest, the words that follow.
COLUMNS = [
    ("x\n1.5\n2\n", "", (1, 2, 1.5, 2, "none missing")),
    ("\ufeffx\r1\r\n2\r3", "", (1, 3, 1, 3, "none missing")),  # every kind of line end
    ("1,2\n3,4\n", "--column 2", (2, 2, 2, 4, "none missing; no row of names")),
    ("a;b\n1,5;2,5\n3,75;4,5\n", "", (1, 2, 1.5, 3.75, "none missing; decimal commas")),
    ("a\tb\n1,5\t2.5\n3,75\t4.5\n", "--column b", (2, 2, 2.5, 4.5, "none missing")),
    ("a,b\n\"1,5\",1\n\"2,5\",2\n", "--decimal comma", (1, 2, 1.5, 2.5, "none missing; decimal commas")),
    ("x\n1,234\n2,345\n", "--decimal comma", (1, 2, 1.234, 2.345, "none missing; decimal commas")),
    ("a;b\n1.234;1\n2.345;3\n", "--decimal point", (1, 2, 1.234, 2.345, "none missing")),
    ("a;b\n1.234;1\n2.3;3\n", "", (1, 2, 1.234, 2.3, "none missing")),
    ('"","x"\n"1",0.5\n"2",0.7\n', "", (2, 2, 0.5, 0.7, "none missing")),  # the names of R's rows
    ('"a\nb",x\n"5 ""in"" ; 6",7\nu,8\n', "", (2, 2, 7, 8, "none missing")),
    ("x\n1\nNA\n#N/A\n\n3\n\n", "--skip-missing", (1, 2, 1, 3, "3 missing and left out")),
    ("x,y\n1,2\n2\n\n3,\n4,5\n", "--column y --skip-missing", (2, 2, 2, 5, "2 missing and left out")),
    ("a,b,\n1,5,,\n2,6,,\n", "--column b", (2, 2, 5, 6, "none missing")),  # ends of rows without text
    ("in,2020,2021\nFR,5,6\nUK,7,8\n", "--column 2021", (3, 2, 6, 8, "none missing")),
    ("2020,2021\n5,6\n7,8\n", "--header yes", (1, 2, 5, 7, "none missing")),
    ("UK,5\nFR,6\n", "--header no --column 2", (2, 2, 5, 6, "none missing; no row of names")),
]

# The same, and what the refusal says.
UNREADABLE = [
    ("x\n1,5\n2,5\n", "", ":2: 2 fields, but the first row has 1"),
    ('"x"\n"1",0.5\n', "", ":2: 2 fields, but the first row has 1"),
    ("1,5;2,5\n3,5;4,5\n", "", "2 columns without names"),
    ("1,5\n2,5\n", "--decimal comma", "commas cannot both separate"),
    ("a;b\n1,234;1\n2,345;3\n", "", '"1,234" and its like may be decimals or thousands'),
    ("a;b\n1.234;1\n2.345;3\n", "", '"1.234" and its like may be decimals or thousands'),
    ("a;b\n1,5;1\n2.5;3\n", "", '-:2: "1,5", -:3: "2.5": both commas and points'),
    ("a;b\n1.234,5;1\n", "", '"1.234,5" is not a number, or beyond the range of numbers; thousands separators'),
    ('a,b\n"1,234",1\n', "", '"1,234" is not a number, or beyond the range of numbers; thousands separators'),
    ("x\n1 234 567\n", "", "thousands separators are not read"),
    ("a,b; c\n1,2\n3;4\n", "", "holds several separators"),
    ("x\n1\n\n2\n", "", "-:3: the cell of column x is empty; 1 of 3 cells are missing (--skip-missing"),
    ("x\nNA\n2\n", "", "-:2: the cell of column x is NA; 1 of 2 cells are missing"),
    ("UK,5\nFR,6\n", "", "names or data?"),
    ("NA\n5\n", "", "names or data?"),
    ("x,x\n1,2\n", "--column x", "x may be column 1 or column 2"),
    ("x\n1\n1e999\n", "", '"1e999" is not a number, or beyond'),
    ("x\n+-1\n", "--header yes --column 1", '"+-1" is not a number'),
    ("x\n1\ninf\n", "", '"inf" is not a finite number'),
    ('x\n"1\n2\n', "", "-:2: a quote is opened and never closed"),
    ('x\n"1"2\n', "", "-:2: a field goes on behind its closing quote"),
    ("x\0\n\0001\0\n\0", "", "save it as CSV in UTF-8"),
    ("x\n1\n" + "\x1b9z" * 1000000 + "\n", "", '"?9z?9z'),
    ("", "", "holds no numbers"),
]

# A word; families that it finds among others.
WORDS = [("exponential", "Expon"), ("GUMBEL", "ExtValueMax"), ("chi-square", "ChiSq"), ("lomax", "Pareto2")]


def run(line, text=""):
    done = subprocess.run(PROGRAM + shlex.split(line), capture_output=True, text=True, timeout=60, input=text)
    return done.returncode, done.stdout, done.stderr


def output_of(line):
    code, output, error = run(line)
    assert code == 0 and error == "", (code, error)
    return output


def read_back(output, form):
    """The rows of an answer, as dictionaries."""
    if form == "json":
        return json.loads(output)
    if form == "csv":
        return list(csv.DictReader(io.StringIO(output)))
    names, *lines = output.splitlines()
    columns = names.split()
    return [dict(zip(columns, line.split(maxsplit=len(columns) - 1), strict=True)) for line in lines]


def check_values(line, column, expected, tolerance=2e-15):
    for form in ("csv", "json", "table"):
        found = [float(row[column]) for row in read_back(output_of(f"{line} --format {form}"), form)]
        assert len(found) == len(expected), (form, found)
        assert all(math.isclose(a, b, rel_tol=tolerance) for a, b in zip(found, expected)), (form, found)


def check_refusal(line, code, text):
    found_code, output, error = run(line)
    assert (found_code, output) == (code, ""), (found_code, output)
    assert (error == text) if code == 1 else (error.startswith("pral: ") and text in error), error


def check_piped(text, line, expected):
    code, output, error = run(f"{line} --format csv", text)
    if expected is None:
        assert (code, output) == (2, "") and error.startswith("pral: "), (code, output, error)
    else:
        assert code == 0 and [float(row["x"]) for row in read_back(output, "csv")] == expected, (output, error)


def check_described(line, expected):
    """JSON and CSV have all digits and one name a field; the page has words for what is no number."""
    object = json.loads(output_of(f"describe {line} --format json"))
    fields = {row["field"]: row["value"] for row in read_back(output_of(f"describe {line} --format csv"), "csv")}
    for path, value in expected.items():
        found = object
        for key in path.split("/"):
            found = found[int(key) if key.isdigit() else key]
        assert str(found) == fields[path] or float(found) == float(fields[path]) or found == "nan", (path, fields[path])
        if isinstance(value, str):
            assert found == value, (path, found)
        else:
            same = math.isclose(float(found), value, rel_tol=1e-12, abs_tol=1e-15)
            assert same or (math.isnan(value) and found == "nan"), (path, found)
    page = output_of(f"describe {line}")
    moments = dict(re.findall(r"^  (mean|variance) +(.*)$", page, re.M))
    for name, word in moments.items():
        value = float(object[name])
        assert word == ("undefined" if math.isnan(value) else "infinite" if math.isinf(value) else f"{value:.10g}"), page
    assert max(map(len, page.splitlines())) <= 80, page


def check_streams():
    """Names of children are kept apart; a Latin hypercube has one value in each slice, in an order that is drawn."""
    draw = lambda options: output_of(f"sample Uniform 0 1 -n 40 --format csv {options}").split()[1:]
    names = "1", "1/1", "1/a", "1/b", "1/a/1", "1/1/a", "2"
    assert len({draw(f"--stream {name}")[0] for name in names}) == len(names)
    assert draw("--stream 1/a") == draw("--stream 1/a") and draw("") != draw("")
    slices = [int(40 * float(value)) for value in draw("--stream 1/a --latin-hypercube")]
    assert sorted(slices) == list(range(40)) and slices != sorted(slices), slices
    assert draw("--latin-hypercube") != draw("--latin-hypercube")


def check_broken_pipe():
    """A reader that has seen enough ends an endless sample."""
    sample = subprocess.Popen(PROGRAM + "sample Normal 0 1 -n 1e15 --format csv".split(), stdout=subprocess.PIPE,
                              stderr=subprocess.PIPE)
    assert sample.stdout.readline().strip() == b"value"
    sample.stdout.close()
    assert sample.wait(timeout=60) != 0
    sample.stderr.close()


def fitted(line, form, text=""):
    """The rows of a fit, and the line before them: beside what programs read it is on the standard error."""
    code, output, error = run(f"{line} --format {form}", text)
    if form == "table":
        told, _, output = output.partition("\n")
        output = output.partition("\n\n")[0]  # what the words mean
        output = "".join(line for line in output.splitlines(True) if not line.startswith("      "))  # what is equal
    else:
        told, _, error = error.partition("\n")
    assert code == 0 and error == "", (code, error)
    rows = read_back(output, form)
    return rows["fits"] if form == "json" else rows, told


def check_fits(line, families, expected):
    for form, tolerance in ("csv", 1e-4), ("json", 1e-4), ("table", 1e-2):
        rows, told = fitted(line, form)
        assert re.match(r"\S+, column \d+ \(.+\) of \d+: \d+ values from \S+ to \S+, none missing$", told), told
        assert [row["family"] for row in rows] == families, (form, rows)
        told = rows[0]["parameters"] if form == "json" else dict(x.split("=") for x in rows[0]["parameters"].split())
        found = {**rows[0], **told}
        wanted = {name: value for name, value in expected.items() if form != "table" or name in found}
        assert all(math.isclose(float(found[x]), wanted[x], rel_tol=tolerance) for x in wanted), (form, found)


def check_fitted(text, options, expected, tolerance):
    code, output, error = run(f"fit - --header no --column 1 {options} --json", text.replace(" ", "\n") + "\n")
    assert code == 0, error
    report = json.loads(output)
    for path, value in expected.items():
        found = report if path.startswith("data/") else report["fits"][0]
        for key in path.split("/"):
            found = found[int(key) if key.isdigit() else key]
        same = found == value if isinstance(value, str) else math.isclose(found, value, rel_tol=tolerance, abs_tol=1e-12)
        assert same, (path, found)


def check_column(text, options, expected):
    code, output, error = run(f"fit - --dist Uniform {options}", text)
    place, count, least, greatest, rest = expected
    assert code == 0 and error == "", (code, error)
    found = re.match(r"standard input, column (\d+)(?: \(.*\))? of \d+: (\d+) values? from (\S+) to (\S+), (.*)", output)
    assert found and [float(x) for x in found.groups()[:4]] == [place, count, least, greatest], output
    assert found[5] == rest, output


def check_unreadable(text, options, refusal):
    code, output, error = run(f"fit - {options}", text)
    assert (code, output) == (2, "") and refusal in error and len(error) < 500, (code, output, error)


def check_criteria():
    """The three criteria from the likelihood and the count, where the correction for small samples weighs: at n = 12."""
    data = "x\n" + "\n".join(["1.2", "0.4", "2.5", "3.1", "0.9", "1.7", "4.4", "2.2", "0.6", "1.1", "5.9", "1.4"])
    free = {"Expon": 1, "Gamma": 2, "LognormalB": 2, "Weibull": 2, "GEV": 3, "Beta4": 4}
    for shift, more in ("", 0), ("--shift", 1):
        names = " ".join(f"--dist {name}" for name in free if not more or name in ("Expon", "Gamma", "Weibull"))
        rows, _ = fitted(f"fit - {names} {shift}", "csv", data)
        assert len(rows) >= 3, rows
        for row in rows:
            k, n, fit = free[row["family"]] + more, 12, float(row["log_likelihood"])
            expected = {"AIC": 2 * k - 2 * fit, "AICc": 2 * k * n / (n - k - 1) - 2 * fit,
                        "BIC": k * math.log(n) - 2 * fit}
            assert all(math.isclose(float(row[x]), expected[x], rel_tol=1e-12) for x in expected), (row, expected)


def check_ranking():
    """Kinds of maximum in their order, by the criterion within them; what has none (AICc of 4 data) at the end of its kind."""
    kinds = ["regular", "edge", "cells"]
    for criterion in "AIC", "AICc", "BIC":
        code, output, told = run(f"{LOSSES} --column probability --rank {criterion.lower()} --verbose --format csv")
        rows = read_back(output, "csv")
        places = [(kinds.index(row["maximum"]), float(row[criterion])) for row in rows]
        assert code == 0 and places == sorted(places) and any(x == math.inf for _, x in places) == (criterion == "AICc")
        assert [int(row["rank"]) for row in rows] == list(range(1, len(rows) + 1))
        told_of = re.search(r"(\d+) families\n(?:(\d+) of \1 left out\n  )?", told)
        equal = [name for row in rows for name in row["also"].split(", ") if name]
        assert len(rows) + len(equal) + int(told_of[2] or 0) == int(told_of[1]), told
        assert {"Normal", "Uniform", "Expon"} < {row["family"] for row in rows} | set(equal) and "LognormalB" not in output
        least = min(value for kind, value in places if kind < 2)
        shares = [math.exp((least - value) / 2) if kind < 2 else 0 for kind, value in places]
        assert all(math.isclose(float(row["weight"]), share / sum(shares), abs_tol=1e-9) for row, share in zip(rows, shares))
        assert all(math.isclose(float(row["difference"]), x - least, abs_tol=1e-9) for row, (_, x) in zip(rows, places))
    found = {row["family"]: row for row in fitted(KICKS, "csv")[0]}
    assert {"Poisson", "Geometric"} < set(found) and "NegBin" in found["Poisson"]["also"].split(", ")
    code, output, told = run(f"{KICKS} --dist ZTPoisson --dist Poisson")
    assert code == 0 and "Poisson" in output and told == "1 of 2 left out\n  0 - in input data (1): ZTPoisson\n"


def check_replicates():
    """The same seed, the same numbers, whatever the number of threads and the other rows; the five best unless told."""
    line = f"{KICKS} --test chisq --replicates 40 --interval 0.8 --interval-method bootstrap --format csv"
    rows = read_back(run(f"{line} --threads 1")[1], "csv")
    assert len(rows) == 5 and rows == read_back(run(f"{line} --threads 3")[1], "csv")
    alone = read_back(run(f"{line} --dist Poisson")[1], "csv")
    assert (alone[0]["p"], alone[0]["lower"]) == (rows[0]["p"], rows[0]["lower"])
    other = read_back(run(f"{line} --dist Poisson --seed 2")[1], "csv")
    assert other[0]["lower"] != rows[0]["lower"]
    for row in rows:
        p, count = float(row["p"]), int(row["replicates"]) - int(row["failed"])
        assert math.isclose(p * (count + 1) % 1, 0, abs_tol=1e-9) or math.isclose(p * (count + 1) % 1, 1, abs_tol=1e-9)
        assert math.isclose(float(row["p_error"]), math.sqrt(p * (1 - p) / count), abs_tol=1e-12)


def check_plots():
    """What a plot needs is in the JSON; the picture fits 80 columns of ASCII, and its numbers are those of the data."""
    report = json.loads(run(f"{FIRES} --dist Pareto --dist Expon --min 0.5 --json")[1])
    data, fit = report["data"], next(fit for fit in report["fits"] if fit["family"] == "Expon")
    beta = fit["parameters"]["beta"]
    assert len(data["quantiles"]) == len(data["percentiles"]) == len(fit["quantiles"]) == 200
    assert (data["quantiles"][0], data["quantiles"][-1], data["least"]) == (1, 263.250366, 1)
    for p, x in zip(data["percentiles"], fit["quantiles"]):
        assert math.isclose(x, 0.5 - beta * math.log1p(-p), rel_tol=1e-9)
    histogram, edges = data["histogram"], data["histogram"]["edges"]
    widths = [b - a for a, b in zip(edges, edges[1:])]
    shares = sum(x * width for x, width in zip(histogram["densities"], widths))
    assert math.isclose(shares + histogram["share_below"] + histogram["share_above"], 1)
    for low, width, density in zip(edges, widths, fit["densities"]):
        low, high = max(low - 0.5, 0), low + width - 0.5
        assert math.isclose(density, (math.exp(-low / beta) - math.exp(-high / beta)) / width, rel_tol=1e-9)
    assert fit["distribution"] == f"Expon({beta!r})" and math.isclose(fit["covariance"][0][0], fit["errors"]["beta"] ** 2)
    for line in f"{KICKS} --top 2 --plot", f"{FIRES} --dist LogLogistic --plot", f"{LOSSES} --dist Normal --weights 1 --plot":
        bars, _, points = output_of(line).partition("\nValues seen")[2].partition("\nQuantiles")
        assert "#" in bars and "o" in points.partition("\n")[2], bars + points
        assert (bars + points).isascii() and max(map(len, (bars + points).splitlines())) <= 80, bars + points
    seen = re.findall(r"^(\d) ([#| ]+?) +(\S+) +(\S+)$", output_of(f"{KICKS} --dist Poisson --plot"), re.M)
    assert [int(count) for _, _, count, _ in seen] == [109, 65, 22, 3, 1], seen
    expected = [200 * math.exp(-0.61) * 0.61**k / math.factorial(k) for k in range(5)]
    assert all(math.isclose(float(row[3]), value, rel_tol=1e-4) for row, value in zip(seen, expected)), seen
    assert all(abs(row[1].count("#") - 40 * int(row[2]) / 109) <= 1.5 for row in seen), seen


def check_progress():
    """A bar where the standard error is a terminal, wiped out at the end."""
    if os.name != "posix" or len(PROGRAM) > 1:
        return
    for options, what in ("", r"\d+ families"), ("--dist Poisson --test ks --replicates 50", "50 refits of Poisson"):
        ours, theirs = os.openpty()
        subprocess.run(PROGRAM + shlex.split(f"{KICKS} {options}"), stdout=subprocess.DEVNULL, stderr=theirs, timeout=60)
        bar = os.read(ours, 1 << 16).decode()
        assert re.match(rf"\r\[\.+\] 1/{what} *\r", bar) and re.search(r"\r +\r$", bar), bar


def check_list_and_describe():
    """Every family that is listed is described, with the five functions of its own."""
    families = json.loads(output_of("list --format json"))
    assert {"Normal", "Uniform", "Expon"} <= {family["family"] for family in families}
    for family in families:
        name = family["family"]
        page = json.loads(output_of(f"describe {name} --format json"))
        assert [p["name"] for p in page["parameters"]] == re.findall(r"\w+", family["parameters"])
        if name in ("HalfNormal", "Gompertz", "GPD"):  # of objects alone
            assert "prototypes" not in page
            continue
        functions = [re.match(r"bool (\w+)\(.*\);$", prototype)[1] for prototype in page["prototypes"]]
        assert functions == [f"Pral{name}{member}_Core" for member in ("", "Array", "ArrayVB", "Prob", "Prob10")]
    normal = json.loads(output_of("describe Normal --format json"))
    assert normal["support"] == "all reals" and normal["parameters"][0]["text"] == "mean, any number", normal
    assert normal["visual_basic"] == (
        'Declare PtrSafe Function PralNormal_Core Lib "pral_core.dll" (ByRef out As Double, ByVal mu As Double, '
        "ByVal sigma As Double, ByRef U As Any, ByRef boundsMode As Any, ByRef boundsMin As Any, "
        "ByRef boundsMax As Any, ByRef shift As Any) As Byte"), normal["visual_basic"]
    assert normal["prototypes"][0] in " ".join(output_of("describe Normal").split())
    assert max(map(len, output_of("describe Normal").splitlines())) <= 80
    assert ["support", "all reals"] in list(csv.reader(io.StringIO(output_of("describe Normal --format csv"))))


def check_search():
    header, *lines = output_of("list --kind continuous --search eXPOn --format csv").splitlines()
    assert header == "family,kind,parameters,text" and any(line.startswith("Expon,continuous,") for line in lines)
    assert not any(line.startswith("Uniform,") for line in lines)
    for word, family in WORDS:
        assert family in {found["family"] for found in json.loads(output_of(f"list --search {word} --format json"))}, word
    assert json.loads(output_of("list --search no_such_word --format json")) == []


def check_samples():
    """One seed, one sequence, whatever the number asked for, across the blocks in which it is written as well."""
    few = output_of("sample Normal 0 1 -n 5 --seed 7 --format csv").splitlines()
    assert few[0] == "value" and len(set(few)) == 6
    assert output_of("sample Normal 0 1 --seed 7 --format csv").splitlines() == few[:2]
    assert output_of("sample Normal 0 1 --seed 8 --format csv").splitlines()[1] != few[1]
    assert output_of("sample Normal 0 1") != output_of("sample Normal 0 1")
    many = output_of("sample Normal 0 1 -n 1100000 --seed 7 --format csv").splitlines()
    assert many[:6] == few and len(many) == 1100001
    values = [float(value) for value in many[1:]]
    assert values[: 1 << 10] != values[1 << 20 :][: 1 << 10]  # the second block does not repeat the first
    assert abs(sum(values)) < 5 * len(values) ** 0.5  # five standard errors


def check_version_and_help():
    assert re.fullmatch(r"pral_core \d+\.\d+\.\d+\n", output_of("--version"))
    assert output_of("version") == output_of("--version")
    for command in ("", "list ", "describe ", "sample ", "quantile ", "prob ", "fit "):
        text = output_of(command + "--help")
        assert f"Usage: pral {command}[OPTIONS]" in text and max(map(len, text.splitlines())) <= 80, text


def main():
    checks = [(check_values, row) for row in VALUES] + [(check_refusal, row) for row in REFUSALS]
    checks += [(check_fits, row) for row in FITS] + [(check_column, row) for row in COLUMNS]
    checks += [(check_unreadable, row) for row in UNREADABLE] + [(check_piped, row) for row in PIPED]
    checks += [(check_described, row) for row in DESCRIBED] + [(check_fitted, row) for row in FITTED]
    checks += [(check, ()) for check in (check_criteria, check_ranking, check_replicates, check_plots,
                                         check_progress, check_list_and_describe, check_search,
                                         check_samples, check_streams, check_broken_pipe, check_version_and_help)]
    failures = 0
    for check, row in checks:
        try:
            check(*row)
        except Exception as problem:
            failures += 1
            print(f"FAILED {check.__name__} {row}: {problem!r}")
    print(f"{len(checks) - failures} of {len(checks)} checks passed")
    sys.exit(failures > 0)


main()
