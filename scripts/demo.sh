#!/usr/bin/env bash
# demo.sh BUILD_FOLDER: a simulated budget, then distributions fitted to two public data sets (examples/README.md tells their
# sources), and a verdict: whether the results are those that are known from elsewhere.
set -euo pipefail
cd "$(dirname "$0")/.."
build=$1
losses=examples/danish_fire_losses.csv
kicks=examples/horse_kicks.csv
failed=0

pral() {
    echo "$ pral $*"
    "$build/pral" "$@"
    echo
}

# check WHAT COLUMN KNOWN ARGUMENTS...: the number after COLUMN= (a parameter), or in column COLUMN, of the best fit.
check() {
    local what=$1 column=$2 known=$3 found
    shift 3
    found=$("$build/pral" fit "$@" --format csv | awk -F, -v column="$column" '
        NR == 1 { for (i = 1; i <= NF; ++i) if ($i == column) place = i }
        NR == 2 { if (place) print $place; else { sub(".*" column "=", ""); sub(" .*", ""); print } }')
    if awk -v a="$found" -v b="$known" 'BEGIN { d = a - b; exit !(a != "" && d * d < 1e-8 * b * b) }'; then
        echo "  as it should be: $what is $found, known to be $known"
    else
        echo "  WRONG: $what is ${found:-missing}, known to be $known"
        failed=1
    fi
}

"$build/pral_demo" || failed=1
echo
echo "Fire losses in Denmark, in millions of kroner; none below 1 was collected."
pral fit $losses --column loss --min 1 --timeout 5 --top 8
echo "Deaths by horse kick in a Prussian army corps and year."
pral fit $kicks --top 5

check "the rate of deaths (Bortkiewicz 1898)" lambda 0.61 $kicks --dist Poisson
check "the lognormal's log-likelihood of all losses (R, fitdistrplus)" log_likelihood -4057.8974613 $losses --dist LognormalE
check "the Weibull's (R, fitdistrplus)" log_likelihood -4803.6213445 $losses --dist Weibull
check "the mean loss above 1 of a truncated exponential (closed form)" beta 2.38508830 $losses --dist Expon --min 1
echo
if [ $failed -eq 0 ]; then
    echo "DEMO PASSED: the simulation and the fits agree with what is known."
else
    echo "DEMO FAILED: see above."
fi
exit $failed
